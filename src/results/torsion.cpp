#include "results/torsion.h"

#include "core/format.h"
#include "elements/cards/group_checks.h"
#include "geometry/gauss_rules.h"
#include "geometry/jacobian.h"
#include "geometry/jacobian_failure.h"

namespace zurt {

namespace {

struct TorsionElement {
    std::int32_t number = 0;
    ActiveNodes active;
    NodeCoordinates<2> CORE = {};
    double T[kMaxNodes<2>] = {}; // nodal values
};

void TakeElement(const Run& run, const ElementGroup& group, std::int32_t n, TorsionElement& element) {
    const IntTable NEL = Connectivity(run, group);
    const RealArray values = NodalValues(run), X = CoordinateColumn(run, 1), Y = CoordinateColumn(run, 2);
    element.number = n;
    ListActiveNodes<2>(NEL, n, element.active);
    for (int k = 0; k < element.active.ND; ++k) {
        const std::int32_t node = NEL(n, k < kCorners<2> ? k + 1 : element.active.midSide[k - kCorners<2>]);
        element.CORE[0][k] = X(node);
        element.CORE[1][k] = Y(node);
        element.T[k] = values(node);
    }
}

void EvaluatePoint(Run& run, const TorsionElement& element, double r, double s, ShapeValues<2>& shape,
                   JacobianValues<2>& jacobian) {
    if (!ShapeAndJacobian2D(r, s, 0, element.active, element.CORE, shape, jacobian))
        StopOnJacobian2D(MessageUnit(run), run.job.Language, element.number, r, s, jacobian.DET);
}

void PrintStresses(Run& run, const ElementGroup& group, const TorsionElement& element) {
    static const Format row("(2I5,6X,D10.3,5X,D10.3,5X,F5.2,F6.2)");
    TextUnit& listing = run.units.listing;
    Write(listing, "(A,I5)",
          Say(run, " SMICUCI NAPONI U GAUSOVIM TACKAMA ELEMENTA", " SHARE STRESS AT GAUSS POINTS OF ELEMENT"),
          element.number);
    Write(listing, "('   NGX','  NGY',7X,'TAUZY',10X,'TAUZX',10X,'R',5X,'S')");
    for (std::int32_t i = 1; i <= group.NGAUS[0]; ++i)
        for (std::int32_t j = 1; j <= group.NGAUS[1]; ++j) {
            const double r = XG(group.NGAUS[0], i), s = XG(group.NGAUS[1], j);
            ShapeValues<2> shape;
            JacobianValues<2> jacobian;
            EvaluatePoint(run, element, r, s, shape, jacobian);
            double byX = 0.0, byY = 0.0;
            for (int k = 0; k < element.active.ND; ++k) {
                byX += jacobian.HX[0][k] * element.T[k];
                byY += jacobian.HX[1][k] * element.T[k];
            }
            const double TAUZY = -byX, TAUZX = byY;
            Write(listing, row, i, j, TAUZY, TAUZX, r, s);
        }
}

// TORZE: twice the integral of the field over the element.
double ElementMoment(Run& run, const ElementGroup& group, const TorsionElement& element) {
    double sum = 0.0;
    for (std::int32_t i = 1; i <= group.NGAUS[0]; ++i)
        for (std::int32_t j = 1; j <= group.NGAUS[1]; ++j) {
            ShapeValues<2> shape;
            JacobianValues<2> jacobian;
            EvaluatePoint(run, element, XG(group.NGAUS[0], i), XG(group.NGAUS[1], j), shape, jacobian);
            const double w = WGT(group.NGAUS[0], i) * WGT(group.NGAUS[1], j) * jacobian.DET;
            for (int k = 0; k < element.active.ND; ++k)
                sum += w * shape.H[k] * element.T[k];
        }
    return 2.0 * sum;
}

// The elements of the group that are printed; their moments add to TORZM.
void PrintGroupTorsion(Run& run, ElementGroup& group, double& TORZM) {
    CheckGroupIndices(run, group);
    const IntArray flags = IntSection(run.A, group.LIPT, group.hasValueFlags ? group.NET : 0);
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        const std::int32_t flag = group.hasValueFlags ? flags(n) : group.IPRTG;
        if (flag == 0)
            continue;
        TorsionElement element;
        TakeElement(run, group, n, element);
        PrintStresses(run, group, element);
        const double TORZE = ElementMoment(run, group, element);
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
