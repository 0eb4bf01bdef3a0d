#include "microscale/heq_start.h"

#include "core/widened_constants.h"
#include "geometry/element_walk.h"
#include "microscale/fibre_geometry.h"
#include "microscale/fibre_search.h"

#include <vector>

namespace zurt {

namespace {

template <int Family> double HeqTolerance(const HeaderFields& header) {
    if (kDimension<Family> == 2)
        return header.ELFIB * kMillionth * header.DFIB;
    return header.ELFIB * header.DFIB * header.WFIB * kMillionth;
}

// The pass of one set: what it adds to the nodes of the element in hand, and the nodes' means.
template <int Family> struct HeqPass {
    const FibreSearch& search;
    double tolerance = 0.0;
    double wallCut = 0.0;
    double moleculeRadius = 0.0;      // 0 unless IDIAM is 1
    double A[kMaxNodes<Family>] = {}; // of the element in hand: sum of w N
    double B[kMaxNodes<Family>] = {}; // sum of w N d
    std::vector<double> sum{};        // by node: mean distances of its elements
    std::vector<std::int32_t> count{};
};

template <int Family>
void AddWallDistance(HeqPass<Family>& pass, const double (&H)[kMaxNodes<Family>], int ND,
                     const double (&X)[3], double w) {
    double d = WallDistance(SearchNearestFibre(pass.search, X));
    if (d > pass.wallCut)
        return;
    d -= pass.moleculeRadius;
    if (!(d > pass.tolerance))
        return;
    for (int k = 0; k < ND; ++k) {
        pass.A[k] += w * H[k];
        pass.B[k] += w * H[k] * d;
    }
}

// Nodes that several marked elements share are passed over.
template <int Family>
void AddElementMeans(HeqPass<Family>& pass, const ElementWalk<Family>& walk, ConstIntArray nodeMarks) {
    for (int k = 0; k < walk.points.active.ND; ++k) {
        const std::int32_t node = walk.element.node[k];
        if (!(pass.A[k] > pass.tolerance) || nodeMarks(node) != 1)
            continue;
        pass.sum[static_cast<std::size_t>(node - 1)] += pass.B[k] / pass.A[k];
        ++pass.count[static_cast<std::size_t>(node - 1)];
    }
}

template <int Family> double MeanOverNodes(const HeqPass<Family>& pass, ConstIntArray nodeMarks) {
    double total = 0.0;
    Word nodes = 0;
    for (std::size_t i = 0; i < pass.sum.size(); ++i) {
        if (pass.count[i] == 0 || nodeMarks(static_cast<Word>(i) + 1) != 1)
            continue;
        total += pass.count[i] > 1 ? pass.sum[i] / pass.count[i] : pass.sum[i];
        ++nodes;
    }
    return nodes == 0 ? pass.wallCut : total / static_cast<double>(nodes);
}

// Mean wall distance of one set; domainVolume gets the weights of all points.
template <int Family>
double SetMeanDistance(Run& run, const FibreGroup& marks, const ElementGroup& group, ConstIntArray nodeMarks,
                       HeqPass<Family>& pass, double& domainVolume) {
    pass.sum.assign(static_cast<std::size_t>(nodeMarks.length), 0.0);
    pass.count.assign(static_cast<std::size_t>(nodeMarks.length), 0);
    ElementWalk<Family> walk{run, group};
    BeginWalk(walk, group.NGAUS, NodalPlacesOf(run));
    domainVolume = 0.0;
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        TakeWalkElement(walk, n);
        const int ND = walk.points.active.ND;
        for (int k = 0; k < ND; ++k)
            pass.A[k] = pass.B[k] = 0.0;
        for (int p = 0; p < walk.points.count; ++p) {
            double X[3];
            JacobianValues<Family> jacobian;
            PlaceOfPoint(walk, walk.points.point[p], X);
            const double w = LocatePoint(walk, walk.points.point[p], jacobian);
            domainVolume += w;
            if (ElementMarked(marks, n))
                AddWallDistance(pass, walk.points.point[p].shape.H, ND, X, w);
        }
        AddElementMeans(pass, walk, nodeMarks);
    }
    return MeanOverNodes(pass, nodeMarks);
}

double SpaceHeq(const FibreModel& model, double moleculeRadius) {
    double weighted = 0.0;
    for (const FibreSet& set : model.sets)
        weighted += set.volume * set.meanDistance;
    return weighted / model.fibreVolume + moleculeRadius;
}

double PlaneHeq(const FibreModel& model, double moleculeRadius) {
    double HEQ = 0.0;
    for (const FibreSet& set : model.sets)
        HEQ += set.meanDistance;
    if (model.sets.size() > 1)
        HEQ /= static_cast<double>(model.sets.size());
    return HEQ + moleculeRadius;
}

} // namespace

template <int Family>
void ComputeHeqStart(Run& run, FibreModel& model, const ElementGroup& group, ConstIntArray nodeMarks,
                     const double (&low)[3], const double (&high)[3]) {
    const HeaderFields& header = run.control.header;
    const FibreGroup& marks = model.groups[static_cast<std::size_t>(group.NGE)];
    const double tolerance = HeqTolerance<Family>(header);
    const double moleculeRadius = run.fit.card.IDIAM == 1 ? header.DMOLECULE / 2.0 : 0.0;
    double domainVolume = 0.0;
    FibreVolumes(model, kDimension<Family> == 2 ? kPlaneFibres : kSpaceFibres);
    for (std::size_t s = 0; s < model.sets.size(); ++s) {
        FibreSearch search = SearchOfOneSet(model, static_cast<Word>(s) + 1, kDimension<Family>, tolerance);
        MakeFibreCells(search, low, high, marks.points * group.NET);
        HeqPass<Family> pass{search, tolerance, model.sets[s].WALLCUT, moleculeRadius};
        model.sets[s].meanDistance = SetMeanDistance(run, marks, group, nodeMarks, pass, domainVolume);
    }
    model.POROSITY = Porosity(model.VOLFLUID, domainVolume);
    model.HEQ = kDimension<Family> == 2 ? PlaneHeq(model, moleculeRadius) : SpaceHeq(model, moleculeRadius);
}

#define ZURT_HEQ_START(FAMILY)                                                                               \
    template void ComputeHeqStart<FAMILY>(Run&, FibreModel&, const ElementGroup&, ConstIntArray,             \
                                          const double(&)[3], const double(&)[3]);
ZURT_FOR_FAMILIES_UNDER_FIBRES(ZURT_HEQ_START)
#undef ZURT_HEQ_START

} // namespace zurt
