#include "microscale/gauss_records.h"

#include "core/stop.h"
#include "core/vector.h"
#include "core/widened_constants.h"
#include "geometry/element_walk.h"
#include "microscale/wall_cells.h"

#include <algorithm>
#include <string>

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
    CutElement cut{};
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

// Records and volumes of the walk's element in hand if a wall cuts it.
template <int Family>
bool TakeCut(CutSearch<Family>& cuts, const ElementWalk<Family>& walk, const FibreSearch& search,
             FibreGroup& marks, FibreModel& model) {
    if (cuts.run.options.wallCells == 0 || !CutByWall(cuts.cells, walk, search, cuts.cut))
        return false;
    marks.cutPoints = cuts.cells.rule.count;
    marks.cutRecords.insert(marks.cutRecords.end(), cuts.cut.records.begin(), cuts.cut.records.end());
    marks.cutShares.insert(marks.cutShares.end(), cuts.cut.share.begin(), cuts.cut.share.end());
    RequireRoomForRecords(cuts.run, cuts.group, static_cast<Word>(marks.cutRecords.size()));
    marks.cutNumber[static_cast<std::size_t>(walk.number - 1)] =
        static_cast<std::int32_t>(static_cast<Word>(marks.cutRecords.size()) / marks.cutPoints);
    model.VOLFLUID += cuts.cut.fluid;
    model.totalVolume += cuts.cut.volume;
    return true;
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
    GaussFibreRecord* record = marks.records.data();
    ElementWalk<Family> walk{run, group};
    BeginWalk(walk, group.NGAUS, NodalPlacesOf(run));
    CutSearch<Family> cuts = BeginCuts<Family>(run, group, marks);
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        TakeWalkElement(walk, n);
        const bool cut = TakeCut(cuts, walk, search, marks, model);
        bool fluid = cut;
        for (int p = 0; p < marks.points; ++p, ++record) {
            double X[3];
            JacobianValues<Family> jacobian;
            PlaceOfPoint(walk, walk.points.point[p], X);
            const double w = LocatePoint(walk, walk.points.point[p], jacobian);
            FillGaussRecord(search, SearchNearestFibre(search, X), X, *record);
            if (cut)
                continue;
            if (record->wall > 0.0) {
                model.VOLFLUID += w;
                fluid = true;
            }
            model.totalVolume += w;
        }
        if (!fluid)
            continue;
        marks.elementMark[static_cast<std::size_t>(n - 1)] = 1;
        for (int k = 0; k < walk.points.active.ND; ++k)
            ++nodeMarks(walk.element.node[k]);
    }
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
    GaussFibreRecord* record = records.data();
    ElementWalk<Family> walk{run, group};
    BeginWalk(walk, kFluxOrders, NodalPlacesOf(run));
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        TakeWalkElement(walk, n);
        for (int p = 0; p < walk.points.count; ++p, ++record) {
            double X[3];
            JacobianValues<Family> jacobian; // judged here, ahead of the solution
            LocatePoint(walk, walk.points.point[p], jacobian);
            PlaceOfPoint(walk, walk.points.point[p], X);
            FillGaussRecord(search, SearchNearestFibre(search, X), X, *record);
        }
    }
}

#define ZURT_GAUSS_RECORDS(FAMILY)                                                                           \
    template void ClassifyGaussPoints<FAMILY>(Run&, FibreModel&, const FibreSearch&, const ElementGroup&,    \
                                              IntArray);                                                     \
    template void FillFluxRecords<FAMILY>(Run&, FibreModel&, const FibreSearch&, const ElementGroup&);
ZURT_FOR_FAMILIES_UNDER_FIBRES(ZURT_GAUSS_RECORDS)
#undef ZURT_GAUSS_RECORDS

} // namespace zurt
