#include "microscale/gauss_records.h"

#include "core/stop.h"
#include "core/vector.h"
#include "core/widened_constants.h"
#include "geometry/element_walk.h"
#include "microscale/wall_cells.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace zurt {

namespace {

constexpr Word kMostRecords = Word{1} << 25;

// Some direction across v.
void Across(const double v[3], double across[3]) {
    const double x[3] = {1.0, 0.0, 0.0};
    const double y[3] = {0.0, 1.0, 0.0};
    VectorCross(v, x, across);
    if (VectorLength(across) < kParallelLimit)
        VectorCross(v, y, across);
}

// Along the fibre and around it, of any length.
void LocalAxes(const SearchFibre& fibre, const double (&X)[3], double (&axis1)[3], double (&axis2)[3]) {
    const double v[3] = {X[0] - fibre.P1[0], X[1] - fibre.P1[1], X[2] - fibre.P1[2]};
    if (fibre.shape == FibreShape::Sphere) {
        Across(v, axis2);
        VectorCross(axis2, v, axis1);
        return;
    }
    std::copy(fibre.a, fibre.a + 3, axis1);
    VectorCross(v, fibre.a, axis2);
    // Ahead of an end and exactly on the axis no direction around the fibre is marked out.
    if (!(VectorLength(axis2) > 0.0))
        Across(fibre.a, axis2);
}

void RequireRoomForRecords(const Run& run, const ElementGroup& group, Word records) {
    if (records > kMostRecords)
        StopWithLibraryError("deck " + run.deck.name + ", element group " + std::to_string(group.NGE) + ": " +
                             std::to_string(records) + " Gauss points are too many under fibres (at most " +
                             std::to_string(kMostRecords) + ")");
}

// --- elements that a wall cuts ------------------------------------------------------------------------------------

template <int Family> struct CutSearch {
    const Run& run;
    const ElementGroup& group;
    WallCells<Family> cells{}; // without sub-points when none are asked for
};

template <int Family>
CutSearch<Family> BeginCuts(const Run& run, const ElementGroup& group, FibreGroup& marks) {
    CutSearch<Family> cuts{run, group};
    if (run.options.wallCells > 0) {
        cuts.cells = MakeWallCells<Family>(run.options.wallCells, group.NDMAX);
        marks.cutNumber.assign(static_cast<std::size_t>(group.NET), 0);
    }
    return cuts;
}

// Records and volumes of element n, which a wall cuts.
template <int Family>
void AddCut(const CutSearch<Family>& cuts, const CutElement& cut, std::int32_t n, FibreGroup& marks,
            FibreModel& model) {
    marks.cutPoints = cuts.cells.rule.count;
    marks.cutRecords.insert(marks.cutRecords.end(), cut.records.begin(), cut.records.end());
    marks.cutShares.insert(marks.cutShares.end(), cut.share.begin(), cut.share.end());
    RequireRoomForRecords(cuts.run, cuts.group, static_cast<Word>(marks.cutRecords.size()));
    marks.cutNumber[static_cast<std::size_t>(n - 1)] =
        static_cast<std::int32_t>(static_cast<Word>(marks.cutRecords.size()) / marks.cutPoints);
    model.VOLFLUID += cut.fluid;
    model.totalVolume += cut.volume;
}

// --- elements side by side ----------------------------------------------------------------------------------------

// Elements that a worker takes at once.
constexpr Word kElementsOfRange = 16;

constexpr Word kElementsOfFluxRange = 256; // each has a walk of its own

// What is summed and marked in the order of the elements.
template <int Family> struct ClassifiedElement {
    bool isCut = false;
    CutElement cut{};
    int ND = 0;
    std::int32_t node[kMaxNodes<Family>];
    double measure[kMaxPoints<Family>];
};

// One worker's.
template <int Family> struct Classification {
    ElementWalk<Family> walk;
    CutSearch<Family> cuts;
    std::vector<ClassifiedElement<Family>> elements; // of the range in hand
};

template <int Family>
void ClassifyElement(Classification<Family>& own, const FibreSearch& search, std::int32_t n,
                     GaussFibreRecord* record, ClassifiedElement<Family>& element) {
    ElementWalk<Family>& walk = own.walk;
    TakeWalkElement(walk, n);
    element.isCut =
        own.cuts.run.options.wallCells > 0 && CutByWall(own.cuts.cells, walk, search, element.cut);
    element.ND = walk.points.active.ND;
    std::copy(walk.element.node, walk.element.node + kMaxNodes<Family>, element.node);
    for (int p = 0; p < walk.points.count; ++p, ++record) {
        double X[3];
        JacobianValues<Family> jacobian;
        PlaceOfPoint(walk, walk.points.point[p], X);
        element.measure[p] = LocatePoint(walk, walk.points.point[p], jacobian);
        FillGaussRecord(search, SearchNearestFibre(search, X), X, *record);
    }
}

template <int Family>
void AddClassified(const CutSearch<Family>& cuts, const ClassifiedElement<Family>& element, std::int32_t n,
                   FibreModel& model, FibreGroup& marks, IntArray nodeMarks) {
    bool fluid = element.isCut;
    if (element.isCut)
        AddCut(cuts, element.cut, n, marks, model);
    const GaussFibreRecord* record = marks.records.data() + Word{marks.points} * (n - 1);
    for (int p = 0; p < marks.points && !element.isCut; ++p) {
        if (record[p].wall > 0.0) {
            model.VOLFLUID += element.measure[p];
            fluid = true;
        }
        model.totalVolume += element.measure[p];
    }
    if (!fluid)
        return;
    marks.elementMark[static_cast<std::size_t>(n - 1)] = 1;
    for (int k = 0; k < element.ND; ++k)
        ++nodeMarks(element.node[k]);
}

} // namespace

void FillGaussRecord(const FibreSearch& search, const NearestFibre& nearest, const double (&X)[3],
                     GaussFibreRecord& record) {
    record = GaussFibreRecord{};
    const double wall = WallDistance(nearest);
    if (wall <= kDistanceTolerance) {
        record.wall = kInFibre;
        return;
    }
    record.wall = wall;
    if (nearest.fibre < 0)
        return;
    const SearchFibre& fibre = search.fibres[static_cast<std::size_t>(nearest.fibre)];
    record.set = fibre.set + 1;
    double axis1[3], axis2[3], axis3[3];
    LocalAxes(fibre, X, axis1, axis2);
    VectorCross(axis1, axis2, axis3);
    VectorNormalize(axis3);
    for (int k = 0; k < 3; ++k)
        record.towards[k] = axis3[k] * axis3[k];
}

template <int Family>
void ClassifyGaussPoints(Run& run, FibreModel& model, const FibreSearch& search, const ElementGroup& group,
                         IntArray nodeMarks) {
    FibreGroup& marks = model.groups[static_cast<std::size_t>(group.NGE)];
    marks.points = PointsPerElement<Family>(group);
    RequireRoomForRecords(run, group, marks.points * group.NET);
    marks.elementMark.assign(static_cast<std::size_t>(group.NET), 0);
    marks.records.resize(static_cast<std::size_t>(marks.points * group.NET));
    const CutSearch<Family> cuts = BeginCuts<Family>(run, group, marks);
    const Word grain = run.workers.count == 1 ? 1 : kElementsOfRange;
    std::vector<std::unique_ptr<Classification<Family>>> all(static_cast<std::size_t>(run.workers.count));
    const auto classify = [&](Word chunk, int worker) {
        std::unique_ptr<Classification<Family>>& own = all[static_cast<std::size_t>(worker)];
        if (own == nullptr) {
            own.reset(new Classification<Family>{ElementWalk<Family>{run, group}, cuts, {}});
            BeginWalk(own->walk, group.NGAUS, NodalPlacesOf(run));
            own->elements.resize(static_cast<std::size_t>(grain));
        }
        const ChunkRange range = RangeOfChunk(group.NET, grain, chunk);
        for (Word n = range.first; n <= range.last; ++n)
            ClassifyElement(*own, search, static_cast<std::int32_t>(n),
                            marks.records.data() + Word{marks.points} * (n - 1),
                            own->elements[static_cast<std::size_t>(n - range.first)]);
    };
    const auto add = [&](Word chunk, int worker) {
        const Classification<Family>& own = *all[static_cast<std::size_t>(worker)];
        const ChunkRange range = RangeOfChunk(group.NET, grain, chunk);
        for (Word n = range.first; n <= range.last; ++n)
            AddClassified(own.cuts, own.elements[static_cast<std::size_t>(n - range.first)],
                          static_cast<std::int32_t>(n), model, marks, nodeMarks);
    };
    InTurn(run.workers, ChunkCount(group.NET, grain), classify, add);
}

template <int Family>
void FillFluxRecords(Run& run, FibreModel& model, const FibreSearch& search, const ElementGroup& group) {
    std::vector<GaussFibreRecord>& records = model.groups[static_cast<std::size_t>(group.NGE)].fluxRecords;
    records.clear();
    if (std::equal(kFluxOrders, kFluxOrders + kDimension<Family>, group.NGAUS))
        return;
    const Word points = Word{1} << kDimension<Family>;
    RequireRoomForRecords(run, group, points * group.NET);
    records.resize(static_cast<std::size_t>(points * group.NET));
    ForRanges(run.workers, group.NET, kElementsOfFluxRange, [&](Word first, Word last, int) {
        GaussFibreRecord* record = records.data() + points * (first - 1);
        ElementWalk<Family> walk{run, group};
        BeginWalk(walk, kFluxOrders, NodalPlacesOf(run));
        for (Word n = first; n <= last; ++n) {
            TakeWalkElement(walk, static_cast<std::int32_t>(n));
            for (int p = 0; p < walk.points.count; ++p, ++record) {
                double X[3];
                JacobianValues<Family> jacobian; // judged here, ahead of the solution
                LocatePoint(walk, walk.points.point[p], jacobian);
                PlaceOfPoint(walk, walk.points.point[p], X);
                FillGaussRecord(search, SearchNearestFibre(search, X), X, *record);
            }
        }
    });
}

#define ZURT_GAUSS_RECORDS(FAMILY)                                                                           \
    template void ClassifyGaussPoints<FAMILY>(Run&, FibreModel&, const FibreSearch&, const ElementGroup&,    \
                                              IntArray);                                                     \
    template void FillFluxRecords<FAMILY>(Run&, FibreModel&, const FibreSearch&, const ElementGroup&);
ZURT_FOR_FAMILIES_UNDER_FIBRES(ZURT_GAUSS_RECORDS)
#undef ZURT_GAUSS_RECORDS

} // namespace zurt
