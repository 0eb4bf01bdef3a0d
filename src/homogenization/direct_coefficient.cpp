#include "homogenization/direct_coefficient.h"

#include "core/format.h"
#include "core/ranks.h"
#include "elements/forming/element_visit.h"
#include "homogenization/mass_files.h"
#include "homogenization/mass_monitor.h"
#include "homogenization/recorded_pass.h"
#include "microscale/marked_nodes.h"
#include "model/curve_lookup.h"
#include "model/material_tables.h"

#include <algorithm>
#include <cmath>

namespace zurt {

namespace {

/// Nodes this close to an end of the domain, relative to its length, lie in the end's cross-section.
constexpr double kInPlane = 1e-9;

struct Domain {
    int axis = 0;                              // direction INDDEG, from 0
    double boxLow[3] = {}, boxHigh[3] = {};    // elements whose centre lies within belong to it
    double low = HUGE_VAL, high = -HUGE_VAL;   // its ends along the axis
    double volume = 0.0, fluid = 0.0;          // of all points, of those in fluid
    double amount = 0.0, flow = 0.0;           // sums of c over fluid, of K dc/dx over all points
    double endArea[2] = {}, endAmount[2] = {}; // at the low and at the high end
};

void SumDomainOverRanks(Domain& domain) {
    for (double* sum : {&domain.volume, &domain.fluid, &domain.amount, &domain.flow})
        SumOverRanks(RealArray(sum, 1));
    SumOverRanks(RealArray(domain.endArea, 2));
    SumOverRanks(RealArray(domain.endAmount, 2));
}

Domain DomainOf(const Run& run) {
    const HeaderFields& header = run.control.header;
    Domain domain;
    domain.axis = run.fit.INDDEG - 1;
    const double size[3] = {header.ELFIB, header.DFIB, header.WFIB};
    const bool boxed = header.NANOCH > 0 && header.NDS != 0;
    for (int axis = 0; axis < 3; ++axis) {
        const bool bounded = boxed && size[axis] > 0.0;
        domain.boxLow[axis] = bounded ? 0.0 : -HUGE_VAL;
        domain.boxHigh[axis] = bounded ? size[axis] : HUGE_VAL;
    }
    return domain;
}

template <int Family> bool LiesWithin(const Domain& domain, const ElementWalk<Family>& walk) {
    const int ND = walk.points.active.ND;
    for (int axis = 0; axis < kDimension<Family>; ++axis) {
        double centre = 0.0;
        for (int k = 0; k < ND; ++k)
            centre += walk.element.CORE[axis][k];
        centre /= ND;
        if (centre < domain.boxLow[axis] || centre > domain.boxHigh[axis])
            return false;
    }
    return true;
}

template <int Family> void FindEnds(Run& run, const ElementGroup& group, Domain& domain) {
    ElementWalk<Family> walk{run, group};
    BeginWalk(walk, group.NGAUS, NodalPlacesOf(run));
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        TakeWalkElement(walk, n);
        if (!LiesWithin(domain, walk))
            continue;
        const double* x = walk.element.CORE[domain.axis];
        const auto [low, high] = std::minmax_element(x, x + walk.points.active.ND);
        domain.low = std::min(domain.low, *low);
        domain.high = std::max(domain.high, *high);
    }
}

// By the divergence theorem the volume integral of dN/dx along the axis is the integral of N over the high end face minus
// that over the low one, whose sign cancels in its mean. Along the radius the divergence is dN/dr + N / r.
template <int Family>
void AddEndNodes(const JacobianValues<Family>& jacobian, const ElementWalk<Family>& walk,
                 const ElementPoint<Family>& point, double w, Domain& domain) {
    const bool alongRadius =
        kDimension<Family> == 2 && walk.axisymmetric && domain.axis == kRadiusAxis<Family>;
    const double tolerance = kInPlane * (domain.high - domain.low);
    for (int k = 0; k < walk.points.active.ND; ++k) {
        const double x = walk.element.CORE[domain.axis][k];
        const int end = std::fabs(x - domain.low) <= tolerance ? 0 : 1;
        if (end == 1 && std::fabs(x - domain.high) > tolerance)
            continue;
        double area = w * jacobian.HX[domain.axis][k];
        if (alongRadius)
            area += point.weight * jacobian.DET * point.shape.H[k];
        domain.endArea[end] += area;
        domain.endAmount[end] += area * walk.element.TE1[k];
    }
}

// What of point p (from 1) is fluid.
template <int Family> double FluidShare(const ElementVisit<Family>& visit, int p) {
    if (visit.fibres == nullptr)
        return 1.0;
    if (visit.atPoints.shares.length > 0)
        return visit.atPoints.shares(p);
    return visit.atPoints.records(p).wall > 0.0 ? 1.0 : 0.0;
}

template <int Family>
void AddPointToDomain(ElementVisit<Family>& visit, int p, bool takesPart, Domain& domain) {
    const ElementPoint<Family>& point = visit.rule->point[p];
    const ElementWalk<Family>& walk = visit.walk;
    const int ND = walk.points.active.ND;
    JacobianValues<Family> jacobian;
    const double w = LocatePoint(walk, point, jacobian);
    domain.volume += w;
    if (!takesPart)
        return;
    const double TG = Interpolate<0>(point.shape.H, walk.element.TE1, ND);
    EvaluateCoefficientsAt(visit, p + 1, TG);
    const double K[3] = {visit.coefficients.KX, visit.coefficients.KY, visit.coefficients.KZ};
    domain.flow += w * K[domain.axis] * Interpolate<0>(jacobian.HX[domain.axis], walk.element.TE1, ND);
    const double inFluid = FluidShare(visit, p + 1) * w;
    domain.fluid += inFluid;
    domain.amount += inFluid * TG;
    AddEndNodes(jacobian, walk, point, w, domain);
}

template <int Family> void AddGroup(Run& run, const ElementGroup& group, Domain& domain) {
    ElementVisit<Family> visit{run, group};
    BeginElementVisit(visit, group.NGAUS);
    const Share share = ShareOf(group.NET);
    for (auto n = static_cast<std::int32_t>(share.first); n <= share.last; ++n) {
        VisitElement(visit, n);
        if (!LiesWithin(domain, visit.walk))
            continue;
        const bool takesPart = TakesPart(visit, n);
        for (int p = 0; p < visit.rule->count; ++p)
            AddPointToDomain(visit, p, takesPart, domain);
    }
}

double BulkCoefficient(const Run& run, double c) {
    double D = 0.0;
    if (run.control.header.NDS != 0)
        DiffusionLookup(DiffusionTable(run), DiffusionPoints(run), 1, std::fabs(c), D);
    return D;
}

// DIRECTTAB: concentration and coefficient of step KOR.
RealTable DirectTable(const Run& run) {
    return RealTableSection(run.A, run.control.at.LDIRD, 2, run.control.counts.NDT);
}

void PrintDirectTable(Run& run) {
    TextUnit& listing = run.units.listing;
    const std::int32_t NDT = run.control.counts.NDT;
    Write(listing, "(A)",
          Say(run, " DIREKTNO IZRACUNAT EKVIVALENTNI KOEFICIJENT DIFUZIJE",
              " DIRECTLY CALCULATED EQUIVALENT DIFFUSION COEFFICIENT"));
    Write(listing, "(A,I10)", Say(run, " BROJ VREMENSKIH KORAKA, NDT=", " NUMBER OF TIME STEPS, NDT="), NDT);
    Write(listing, "(A)",
          Say(run, "  KORAK    KONCENTRACIJA  EKVIV KOEFICIJENT DIFUZIJE",
              "  STEP NO  CONCENTRATION  EQUIV DIFF COEFFICIENT"));
    const ConstRealTable table = DirectTable(run);
    for (std::int32_t step = 1; step <= NDT; ++step)
        Write(listing, "(I9,2X,E12.3,2X,E12.3)", step, table(1, step), table(2, step));
}

void BeginSecondPass(Run& run) {
    run.fit.IEHM = 1;
    ReformEquationNumbers(run);
    Fill(StepSolution(run), 0.0);
    ClearMatrix(run);
    RestoreInitialConcentrations(run);
}

// The groups that have a cross-section; lines have none.
template <class Visit> void ForGroupsAcross(const Run& run, const Domain& domain, const Visit& visit) {
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        WithFamily(run.groups[NGE], [&](auto family) {
            constexpr int dimension = kDimension<family.value>;
            if constexpr (dimension > 1)
                if (domain.axis < dimension)
                    visit(family, run.groups[NGE]);
        });
}

} // namespace

void RecordDirectStep(Run& run) {
    Domain domain = DomainOf(run);
    ForGroupsAcross(run, domain, [&](auto family, const ElementGroup& group) {
        FindEnds<family.value>(run, group, domain);
    });
    ForGroupsAcross(run, domain, [&](auto family, const ElementGroup& group) {
        AddGroup<family.value>(run, group, domain);
    });
    SumDomainOverRanks(domain);
    const double concentration = domain.fluid > 0.0 ? domain.amount / domain.fluid : 0.0;
    const double bulk = BulkCoefficient(run, concentration);
    const double gradient =
        (domain.endAmount[1] / domain.endArea[1] - domain.endAmount[0] / domain.endArea[0]) /
        (domain.high - domain.low);
    const double flux = domain.flow / domain.volume;
    const bool meaningful = std::isfinite(flux / gradient);
    const RealTable table = DirectTable(run);
    const std::int32_t KOR = run.clock.KOR;
    table(1, KOR) = concentration;
    table(2, KOR) = meaningful ? flux / gradient : bulk;
    WriteDirectRow(run, concentration, bulk, table(2, KOR));
}

void RunDirectCalculation(Run& run) {
    Pass pass;
    pass.NDT = run.control.counts.NDT;
    pass.writesResults = run.control.header.IPASSPRINT == 1;
    RecordedPass(run, pass);
    PrintDirectTable(run);
    BeginSecondPass(run);
    pass.PassCounter = 2;
    pass.writesResults = run.control.header.IPASSPRINT == 2;
    RecordedPass(run, pass);
    WriteMassChange(run);
}

} // namespace zurt
