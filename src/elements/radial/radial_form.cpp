#include "elements/radial/radial_form.h"

#include "core/ranks.h"
#include "core/stop.h"
#include "elements/forming/element_visit.h"
#include "elements/forming/element_work.h"
#include "elements/radial/radial_kernel.h"
#include "geometry/gather.h"
#include "geometry/radial_views.h"
#include "microscale/degradation.h"
#include "solver/linear_system.h"
#include "solver/skyline_assembly.h"

#include <cmath>
#include <string>

namespace zurt {

namespace {

struct RadialVisit {
    Run& run;
    const ElementGroup& group;
    NodalViews nodes{};
    ConstIntArray count{};
    ConstRealArray D{}, length{}, radius{};
    bool transient = false;
    double dt = 0.0;
    bool degrades = false;
    DegradedCoefficient degraded{}; // the same for all fibres
};

RadialVisit BeginVisit(Run& run, const ElementGroup& group) {
    const RadialGroup& radial = group.radial;
    RadialVisit visit{run, group};
    visit.nodes = NodalViewsOf(run);
    visit.count = RadialCount(run, group);
    visit.D = RealSection(run.A, radial.LD, group.NET);
    visit.length = RealSection(run.A, radial.LLENGTH, group.NET);
    visit.radius = RealSection(run.A, radial.LRADIUS, group.NET);
    visit.transient = run.control.header.NSTAC != 0;
    visit.dt = run.clock.TimeStep;
    visit.degrades = run.control.header.INDDEGR == 1;
    if (visit.degrades)
        visit.degraded = DegradedDiffusion(run.control.header, run.clock.TIME);
    return visit;
}

RadialScales ScalesOf(const RadialVisit& visit, Word n) {
    const double D = visit.degrades ? visit.degraded.D : visit.D(n);
    return ScalesOfFibre(D, visit.length(n), visit.radius(n), visit.count(n), visit.transient, visit.dt);
}

// --- assembled fibres ---------------------------------------------------------------------------------------------

// The surface of a fibre with a partition value: concentrations of the continuum times f stand on its side, so the load
// is formed with them and the column of the matrix is multiplied. The row is not; the packed triangle has one
// entry for both places and takes the scaled one.
struct SurfaceRatio {
    bool acts = false;
    double f = 1.0;
};

SurfaceRatio SurfaceOfRing(const RadialVisit& visit, Word n, int i, const RadialScales& scales) {
    const ConstRealArray partition = PartitionValue(visit.run, visit.group);
    SurfaceRatio surface;
    surface.acts = i == scales.count && partition.length > 0;
    if (surface.acts)
        surface.f = partition(n) / (1.0 - visit.degraded.phi);
    return surface;
}

// Values at the two nodes of a ring, now and at the start of the step.
struct RingValues {
    double c[2], c0[2];
};

RingValues GatherRing(const RadialVisit& visit, const std::int32_t node[2], const SurfaceRatio& surface) {
    RingValues values;
    for (int k = 0; k < 2; ++k)
        GatherNodeValue(visit.nodes, node[k], values.c[k], values.c0[k]);
    if (surface.acts) {
        values.c[1] *= surface.f;
        values.c0[1] *= surface.f;
    }
    return values;
}

void AddRing(const RadialVisit& visit, const SystemTarget& system, const RadialRing& ring,
             const std::int32_t node[2], const SurfaceRatio& surface, RealArray packed) {
    const RingValues values = GatherRing(visit, node, surface);
    const std::int32_t LM[2] = {visit.nodes.ID(node[0]), visit.nodes.ID(node[1])};
    double F[2];
    RingLoad(ring, values.c, values.c0, F);
    RingMatrix(ring, packed.data);
    if (surface.acts) {
        packed(2) *= surface.f;
        packed(3) *= surface.f;
    }
    AddElement(system, packed, ConstRealArray(F, 2), ConstIntArray(LM, 2), 2);
}

void FormAssembled(const RadialVisit& visit, RealArray packed) {
    Run& run = visit.run;
    const SystemTarget system = SystemTargetOf(run);
    const ConstIntTable nodes = RadialNodes(run, visit.group);
    const Share share = ShareOf(visit.group.NET);
    for (Word n = share.first; n <= share.last; ++n) {
        const RadialScales scales = ScalesOf(visit, n);
        double r = 0.0;
        for (int i = 1; i <= scales.count; ++i, r += scales.dr)
            AddRing(visit, system, RingAt(scales, r), &nodes(i, n), SurfaceOfRing(visit, n, i, scales),
                    packed);
    }
}

// --- substructured fibres -----------------------------------------------------------------------------------------

// When the continuum node of a fibre is held, the solution of the system does not show that the fibre has none.
void RequireNumber(double flux, Word n) {
    if (std::isnan(flux))
        StopWithLibraryError("radial element " + std::to_string(n) +
                             ": the solution is not a number; look for absurd sizes in the deck");
}

// Fibres that a worker takes at once.
constexpr Word kRangeOfFibres = 64;

void SolveFibres(const RadialVisit& visit) {
    Run& run = visit.run;
    const RealTable values = FibreValue(run, visit.group), starts = FibreValue0(run, visit.group);
    const RealArray flux = FibreFlux(run, visit.group);
    const ConstIntArray continuum = ContinuumNode(run, visit.group);
    if (run.clock.ITER == 0)
        Copy<double>(RealArray(values.data, values.rows * values.columns),
                     RealArray(starts.data, starts.rows * starts.columns));
    Fill(flux, 0.0);
    // A fibre is solved a second time only behind a fault, which ends the run: no result shows its values.
    const Share share = ShareOf(visit.group.NET);
    const Word before = share.first - 1;
    ForRanges(run.workers, share.last - before, kRangeOfFibres, [&](Word first, Word last, int) {
        for (Word n = before + first; n <= before + last; ++n) {
            const RadialScales scales = ScalesOf(visit, n);
            const Word surface = scales.count + 1;
            GatherNodeValue(visit.nodes, continuum(n), values(surface, n), starts(surface, n));
            flux(n) += SolveFibre(scales, RealArray(&values(1, n), surface),
                                  ConstRealArray(&starts(1, n), surface), MessageUnit(run));
            RequireNumber(flux(n), n);
        }
    });
    GatherShares(values);
    GatherShares(RealTable(flux.data, 1, flux.length));
}

void AddFluxes(const RadialVisit& visit) {
    const Run& run = visit.run;
    const ConstRealArray flux = FibreFlux(run, visit.group);
    const ConstIntArray continuum = ContinuumNode(run, visit.group);
    const ConstIntTable common = CommonNodes(run, visit.group);
    const RealArray R = RightHandSide(run);
    const double share = 1.0F / static_cast<float>(visit.group.radial.CommonNodeCount);
    const Share own = ShareOf(visit.group.NET);
    for (Word n = own.first; n <= own.last; ++n) {
        if (common.columns == 0)
            AddElementVector(R, ConstRealArray(&flux(n), 1), ConstIntArray(&visit.nodes.ID(continuum(n)), 1),
                             1);
        const double part = flux(n) * share;
        for (Word k = 1; k <= common.columns; ++k)
            AddElementVector(R, ConstRealArray(&part, 1), ConstIntArray(&visit.nodes.ID(common(n, k)), 1), 1);
    }
}

// --- balance ------------------------------------------------------------------------------------------------------

// What a ring holds. Its capacity is over the time step, so nothing in a steady problem.
double AmountIn(const RadialRing& ring, const double c[2], double dt) {
    return ((ring.C11 + ring.C12) * c[0] + (ring.C12 + ring.C22) * c[1]) * dt;
}

void AddAssembledBalance(const RadialVisit& visit, RealArray residual, FibreBalance& balance) {
    const ConstIntTable nodes = RadialNodes(visit.run, visit.group);
    for (Word n = 1; n <= visit.group.NET; ++n) {
        const RadialScales scales = ScalesOf(visit, n);
        double r = 0.0;
        for (int i = 1; i <= scales.count; ++i, r += scales.dr) {
            const RadialRing ring = RingAt(scales, r);
            const RingValues values = GatherRing(visit, &nodes(i, n), SurfaceOfRing(visit, n, i, scales));
            double F[2];
            RingLoad(ring, values.c, values.c0, F);
            for (int k = 0; k < 2; ++k)
                residual((&nodes(i, n))[k]) += F[k];
            balance.taken -= F[0] + F[1];
            balance.moved += std::fabs(F[0] + F[1]);
            balance.stored += AmountIn(ring, values.c, visit.dt);
        }
    }
}

void AddSubstructuredBalance(const RadialVisit& visit, RealArray residual, FibreBalance& balance) {
    const Run& run = visit.run;
    const ConstRealTable values = FibreValue(run, visit.group);
    const ConstRealArray flux = FibreFlux(run, visit.group);
    const ConstIntArray continuum = ContinuumNode(run, visit.group);
    const ConstIntTable common = CommonNodes(run, visit.group);
    for (Word n = 1; n <= visit.group.NET; ++n) {
        balance.taken -= flux(n);
        balance.moved += std::fabs(flux(n));
        if (common.columns == 0)
            residual(continuum(n)) += flux(n);
        for (Word k = 1; k <= common.columns; ++k)
            residual(common(n, k)) += flux(n) / static_cast<double>(common.columns);
        const RadialScales scales = ScalesOf(visit, n);
        double r = 0.0;
        for (int i = 1; i <= scales.count; ++i, r += scales.dr)
            balance.stored += AmountIn(RingAt(scales, r), &values(i, n), visit.dt);
    }
}

} // namespace

void AddRadialBalance(Run& run, const ElementGroup& group, RealArray residual, FibreBalance& balance) {
    RadialVisit visit = BeginVisit(run, group);
    visit.nodes.solutionRead = true;
    if (group.radial.substructured)
        AddSubstructuredBalance(visit, residual, balance);
    else
        AddAssembledBalance(visit, residual, balance);
}

void FormGroupRadial(Run& run, const ElementGroup& group) {
    CheckGroupOnce(run, group);
    const ElementWork work = LayOutElementWork(run, group.radial.ND);
    const RadialVisit visit = BeginVisit(run, group);
    if (group.radial.substructured) {
        SolveFibres(visit);
        AddFluxes(visit);
    } else {
        FormAssembled(visit, RealSection(run.A, work.conduction, PackedLength(group.radial.ND)));
    }
}

} // namespace zurt
