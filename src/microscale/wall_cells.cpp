#include "microscale/wall_cells.h"

#include "core/widened_constants.h"
#include "microscale/gauss_records.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zurt {

namespace {

constexpr std::int32_t kOrderInCell = 2;
constexpr int kMostShares = kMaxPoints<3>;

// L_k at x: 1 at point k of the rule, 0 at its others.
double LagrangeAt(std::int32_t order, std::int32_t k, double x) {
    double value = 1.0;
    for (std::int32_t j = 1; j <= order; ++j)
        if (j != k)
            value *= (x - XG(order, j)) / (XG(order, k) - XG(order, j));
    return value;
}

// Sub-points run as those of a rule do, the last direction fastest; in the plane the third direction has one.
template <int Family, class Visit> void ForAllSubPoints(const WallCells<Family>& cells, const Visit& visit) {
    const std::int32_t last = kDimension<Family> == 3 ? cells.along : 1;
    std::size_t q = 0;
    for (std::int32_t i = 0; i < cells.along; ++i)
        for (std::int32_t j = 0; j < cells.along; ++j)
            for (std::int32_t k = 0; k < last; ++k, ++q)
                visit(q, i, j, k);
}

template <int Family> void TakeShapes(WallCells<Family>& cells, const ActiveNodes& active) {
    cells.active = active;
    std::int32_t orders[kDimension<Family>];
    std::fill(orders, orders + kDimension<Family>, cells.order);
    SetElementPoints(active, orders, cells.rule);
    cells.H.clear();
    ForAllSubPoints(cells, [&](std::size_t, std::int32_t i, std::int32_t j, std::int32_t k) {
        const double at[3] = {cells.place[static_cast<std::size_t>(i)],
                              cells.place[static_cast<std::size_t>(j)],
                              cells.place[static_cast<std::size_t>(k)]};
        ShapeValues<Family> shape;
        ShapeFunctionsAt(at, active, shape);
        cells.H.insert(cells.H.end(), shape.H, shape.H + active.ND);
    });
    cells.nearest.resize(cells.H.size() / static_cast<std::size_t>(active.ND));
}

template <int Family>
void PlaceSubPoint(const WallCells<Family>& cells, const ElementNodes<Family>& element, std::size_t q,
                   double (&X)[3]) {
    const double* H = cells.H.data() + q * static_cast<std::size_t>(cells.active.ND);
    X[0] = X[1] = X[2] = 0.0;
    for (int i = 0; i < cells.active.ND; ++i)
        for (int axis = 0; axis < kDimension<Family>; ++axis)
            X[axis] += H[i] * element.CORE[axis][i];
}

// --- elements that need no second look ----------------------------------------------------------------------------

struct Ball {
    double centre[3] = {};
    double radius = 0.0;
};

double Distance(const double (&a)[3], const double (&b)[3]) {
    return std::sqrt((a[0] - b[0]) * (a[0] - b[0]) + (a[1] - b[1]) * (a[1] - b[1]) +
                     (a[2] - b[2]) * (a[2] - b[2]));
}

// Around the element's nodes.
template <int Family> Ball BallAround(const ElementNodes<Family>& element, int ND) {
    Ball ball;
    for (int axis = 0; axis < kDimension<Family>; ++axis) {
        for (int i = 0; i < ND; ++i)
            ball.centre[axis] += element.CORE[axis][i];
        ball.centre[axis] /= ND;
    }
    for (int i = 0; i < ND; ++i) {
        double node[3] = {};
        for (int axis = 0; axis < kDimension<Family>; ++axis)
            node[axis] = element.CORE[axis][i];
        ball.radius = std::max(ball.radius, Distance(node, ball.centre));
    }
    return ball;
}

bool EndOfLineWithin(const FibreSearch& search, const double (&centre)[3], double distance) {
    return std::any_of(search.fibres.begin(), search.fibres.end(), [&](const SearchFibre& fibre) {
        return fibre.shape != FibreShape::Sphere &&
               (Distance(fibre.P1, centre) < distance || Distance(fibre.P2, centre) < distance);
    });
}

template <int Family> bool BoxesHold(const FibreSearch& search, const Ball& ball) {
    for (const SearchBox& box : search.boxes)
        for (int axis = 0; axis < kDimension<Family>; ++axis)
            if (ball.centre[axis] - ball.radius < box.low[axis] ||
                ball.centre[axis] + ball.radius > box.high[axis])
                return false;
    return true;
}

// The computed distance d to a wall has |d(X) - d(Y)| <= |X - Y|, except at ends of lines, at faces of search boxes, and
// between fibres of different diameters, of which the one with the nearest axis counts.
template <int Family>
bool IsFarFromWalls(const FibreSearch& search, const ElementNodes<Family>& element, int ND) {
    constexpr double kCurved = 1.1; // sides may bulge beyond their nodes
    Ball ball = BallAround<Family>(element, ND);
    ball.radius *= kCurved;
    if (search.radii.size() != 1 || !BoxesHold<Family>(search, ball))
        return false;
    return std::fabs(WallDistance(SearchNearestFibre(search, ball.centre))) > ball.radius &&
           !EndOfLineWithin(search, ball.centre, search.radii[0] + ball.radius);
}

// --- condensing ---------------------------------------------------------------------------------------------------

bool InFluid(const NearestFibre& nearest) {
    return WallDistance(nearest) > kDistanceTolerance;
}

// shares := sum over sub-points in fluid of the moments, the rule's points in their order.
template <int Family> void SumMoments(const WallCells<Family>& cells, std::vector<double>& sums) {
    const std::int32_t order = cells.order;
    const auto at = [&](std::int32_t i) { return cells.moment.data() + i * order; };
    sums.assign(static_cast<std::size_t>(cells.rule.count), 0.0);
    ForAllSubPoints(cells, [&](std::size_t q, std::int32_t i, std::int32_t j, std::int32_t k) {
        if (!InFluid(cells.nearest[q]))
            return;
        std::size_t p = 0;
        for (std::int32_t a = 0; a < order; ++a)
            for (std::int32_t b = 0; b < order; ++b) {
                const double plane = at(i)[a] * at(j)[b];
                if constexpr (kDimension<Family> == 2)
                    sums[p++] += plane;
                else
                    for (std::int32_t c = 0; c < order; ++c)
                        sums[p++] += plane * at(k)[c];
            }
    });
}

// Means over the fluid sub-points that lie nearest to each point of the rule, for points that lie in a fibre.
template <int Family>
void TakeFluidNearby(const WallCells<Family>& cells, const ElementWalk<Family>& walk,
                     const FibreSearch& search, CutElement& cut) {
    const std::int32_t order = cells.order;
    const auto pointOf = [&](std::int32_t i) { return i * order / cells.along; };
    GaussFibreRecord sums[kMostShares + 1] = {}; // the last one is that of the whole element
    double counts[kMostShares + 1] = {};
    ForAllSubPoints(cells, [&](std::size_t q, std::int32_t i, std::int32_t j, std::int32_t k) {
        if (!InFluid(cells.nearest[q]))
            return;
        double X[3];
        PlaceSubPoint(cells, walk.element, q, X);
        GaussFibreRecord record;
        FillGaussRecord(search, cells.nearest[q], X, record);
        const std::int32_t p = kDimension<Family> == 2
                                   ? pointOf(i) * order + pointOf(j)
                                   : (pointOf(i) * order + pointOf(j)) * order + pointOf(k);
        for (const int slot : {static_cast<int>(p), kMostShares}) {
            for (int axis = 0; axis < 3; ++axis)
                sums[slot].towards[axis] += record.towards[axis];
            sums[slot].wall += record.wall;
            sums[slot].set = record.set;
            counts[slot] += 1.0;
        }
    });
    for (std::size_t p = 0; p < cut.records.size(); ++p) {
        GaussFibreRecord& record = cut.records[p];
        if (record.wall > 0.0)
            continue;
        const int slot = counts[p] > 0.0 ? static_cast<int>(p) : kMostShares;
        record = sums[slot];
        record.wall /= counts[slot];
        for (double& component : record.towards)
            component /= counts[slot];
    }
}

template <int Family>
void Condense(const WallCells<Family>& cells, const ElementWalk<Family>& walk, const FibreSearch& search,
              CutElement& cut) {
    SumMoments(cells, cut.share);
    cut.records.resize(cut.share.size());
    cut.fluid = cut.volume = 0.0;
    for (int p = 0; p < cells.rule.count; ++p) {
        const auto place = static_cast<std::size_t>(p);
        double X[3];
        PlaceOfPoint(walk, cells.rule.point[p], X);
        JacobianValues<Family> jacobian;
        const double w = LocatePoint(walk, cells.rule.point[p], jacobian);
        cut.share[place] /= cells.rule.point[p].weight;
        cut.fluid += w * cut.share[place];
        cut.volume += w;
        FillGaussRecord(search, SearchNearestFibre(search, X), X, cut.records[place]);
    }
    TakeFluidNearby(cells, walk, search, cut);
}

} // namespace

template <int Family> WallCells<Family> MakeWallCells(std::int32_t N, std::int32_t NDMAX) {
    WallCells<Family> cells;
    cells.along = kOrderInCell * N;
    cells.order = CondensedOrder<Family>(NDMAX);
    for (std::int32_t cell = 0; cell < N; ++cell)
        for (std::int32_t k = 1; k <= kOrderInCell; ++k) {
            const double x = (2 * cell + 1 + XG(kOrderInCell, k)) / N - 1.0;
            cells.place.push_back(x);
            for (std::int32_t point = 1; point <= cells.order; ++point)
                cells.moment.push_back(WGT(kOrderInCell, k) / N * LagrangeAt(cells.order, point, x));
        }
    return cells;
}

template <int Family>
bool CutByWall(WallCells<Family>& cells, const ElementWalk<Family>& walk, const FibreSearch& search,
               CutElement& cut) {
    const ActiveNodes& active = walk.points.active;
    if (IsFarFromWalls<Family>(search, walk.element, active.ND))
        return false;
    if (!ServesNodes(cells.active, active))
        TakeShapes(cells, active);
    std::size_t fluid = 0;
    for (std::size_t q = 0; q < cells.nearest.size(); ++q) {
        double X[3];
        PlaceSubPoint(cells, walk.element, q, X);
        cells.nearest[q] = SearchNearestFibre(search, X);
        fluid += InFluid(cells.nearest[q]) ? 1 : 0;
    }
    if (fluid == 0 || fluid == cells.nearest.size())
        return false;
    Condense(cells, walk, search, cut);
    return true;
}

#define ZURT_WALL_CELLS(FAMILY)                                                                              \
    template WallCells<FAMILY> MakeWallCells<FAMILY>(std::int32_t, std::int32_t);                            \
    template bool CutByWall(WallCells<FAMILY>&, const ElementWalk<FAMILY>&, const FibreSearch&, CutElement&);
ZURT_FOR_FAMILIES_UNDER_FIBRES(ZURT_WALL_CELLS)
#undef ZURT_WALL_CELLS

} // namespace zurt
