#include "results/torsion.h"

#include "core/format.h"
#include "elements/forming/element_visit.h"
#include "geometry/element_walk.h"

namespace zurt {

namespace {

// An element of the group with the nodal values that are printed. A shaft's cross-section is plane: no radius counts.
struct TorsionWalk {
    ElementWalk<2> walk;
    ConstRealArray values; // 1..NP
    double T[kMaxNodes<2>] = {};
};

void TakeTorsionElement(TorsionWalk& torsion, std::int32_t n) {
    TakeWalkElement(torsion.walk, n);
    for (int k = 0; k < torsion.walk.points.active.ND; ++k)
        torsion.T[k] = torsion.values(torsion.walk.element.node[k]);
}

void PrintStresses(Run& run, const TorsionWalk& torsion) {
    static const Format row("(2I5,6X,D10.3,5X,D10.3,5X,F5.2,F6.2)");
    const ElementWalk<2>& walk = torsion.walk;
    TextUnit& listing = run.units.listing;
    Write(listing, "(A,I5)",
          Say(run, " SMICUCI NAPONI U GAUSOVIM TACKAMA ELEMENTA", " SHARE STRESS AT GAUSS POINTS OF ELEMENT"),
          walk.number);
    Write(listing, "('   NGX','  NGY',7X,'TAUZY',10X,'TAUZX',10X,'R',5X,'S')");
    for (int p = 0; p < walk.points.count; ++p) {
        const ElementPoint<2>& point = walk.points.point[p];
        JacobianValues<2> jacobian;
        LocatePoint(walk, point, jacobian);
        const double TAUZY = -Interpolate<0>(jacobian.HX[0], torsion.T, walk.points.active.ND);
        const double TAUZX = Interpolate<0>(jacobian.HX[1], torsion.T, walk.points.active.ND);
        Write(listing, row, p / walk.NGAUS[1] + 1, p % walk.NGAUS[1] + 1, TAUZY, TAUZX, point.place[0],
              point.place[1]);
    }
}

// TORZE: twice the integral of the field over the element.
double ElementMoment(const TorsionWalk& torsion) {
    const ElementWalk<2>& walk = torsion.walk;
    double sum = 0.0;
    for (int p = 0; p < walk.points.count; ++p) {
        const ElementPoint<2>& point = walk.points.point[p];
        JacobianValues<2> jacobian;
        const double w = LocatePoint(walk, point, jacobian);
        for (int k = 0; k < walk.points.active.ND; ++k)
            sum += w * point.shape.H[k] * torsion.T[k];
    }
    return 2.0 * sum;
}

// The elements of the group that are printed; their moments add to TORZM.
void PrintGroupTorsion(Run& run, const ElementGroup& group, double& TORZM) {
    CheckGroupOnce(run, group);
    TorsionWalk torsion{{run, group}, NodalValues(run)};
    BeginWalk(torsion.walk, group.NGAUS, NodalPlacesOf(run));
    torsion.walk.axisymmetric = false;
    const IntArray flags = IntSection(run.A, group.LIPT, group.hasValueFlags ? group.NET : 0);
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        const std::int32_t flag = group.hasValueFlags ? flags(n) : group.IPRTG;
        if (flag == 0)
            continue;
        TakeTorsionElement(torsion, n);
        PrintStresses(run, torsion);
        const double TORZE = ElementMoment(torsion);
        Write(run.units.listing, "(A,D12.5)",
              Say(run, " TORZIONI MOMENT ELEMENTA ........TORZE =",
                  " TORSIONAL MOMENT OF ELEMENT ........TORZE ="),
              TORZE);
        TORZM += TORZE;
    }
}

} // namespace

void PrintTorsion(Run& run) {
    TextUnit& listing = run.units.listing;
    if (run.control.counts.NQE == 0) {
        Write(listing, "(A)", Say(run, "  NE POSTOJI UVIJANJE, NQE=0", "  THERE IS NOT TORSION, NQE=0"));
        return;
    }
    double TORZM = 0.0;
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (run.groups[NGE].NETIP == 2)
            PrintGroupTorsion(run, run.groups[NGE], TORZM);
    Write(listing, "(A,D12.5)",
          Say(run, " TORZIONI MOMENT POPRECNOG PRESEKA ....TORZM =",
              " TORSIONAL MOMENT OF CROSS SECTION ....TORZM ="),
          TORZM);
}

} // namespace zurt
