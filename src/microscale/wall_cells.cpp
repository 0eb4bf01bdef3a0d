#include "microscale/wall_cells.h"

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
template <int Dimension, class Visit>
void ForAllSubPoints(const WallCells<Dimension>& cells, const Visit& visit) {
    const std::int32_t last = Dimension == 3 ? cells.along : 1;
    std::size_t q = 0;
    for (std::int32_t i = 0; i < cells.along; ++i)
        for (std::int32_t j = 0; j < cells.along; ++j)
            for (std::int32_t k = 0; k < last; ++k, ++q)
                visit(q, i, j, k);
}

template <int Dimension> void TakeShapes(WallCells<Dimension>& cells, const ActiveNodes& active) {
    cells.active = active;
    std::int32_t orders[Dimension];
    std::fill(orders, orders + Dimension, cells.order);
    SetElementPoints(active, orders, cells.rule);
    cells.H.clear();
    ForAllSubPoints(cells, [&](std::size_t, std::int32_t i, std::int32_t j, std::int32_t k) {
        const double at[3] = {cells.place[static_cast<std::size_t>(i)],
                              cells.place[static_cast<std::size_t>(j)],
                              cells.place[static_cast<std::size_t>(k)]};
        ShapeValues<Dimension> shape;
        ShapeFunctionsAt(at, active, shape);
        cells.H.insert(cells.H.end(), shape.H, shape.H + active.ND);
    });
    cells.nearest.resize(cells.H.size() / static_cast<std::size_t>(active.ND));
}

template <int Dimension>
void PlaceSubPoint(const WallCells<Dimension>& cells, const ElementNodes<Dimension>& element, std::size_t q,
                   double (&X)[3]) {
    const double* H = cells.H.data() + q * static_cast<std::size_t>(cells.active.ND);
    X[0] = X[1] = X[2] = 0.0;
    for (int i = 0; i < cells.active.ND; ++i)
        for (int axis = 0; axis < Dimension; ++axis)
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
template <int Dimension> Ball BallAround(const ElementNodes<Dimension>& element, int ND) {
    Ball ball;
    for (int axis = 0; axis < Dimension; ++axis) {
        for (int i = 0; i < ND; ++i)
            ball.centre[axis] += element.CORE[axis][i];
        ball.centre[axis] /= ND;
    }
    for (int i = 0; i < ND; ++i) {
        double node[3] = {};
        for (int axis = 0; axis < Dimension; ++axis)
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

template <int Dimension> bool BoxesHold(const FibreSearch& search, const Ball& ball) {
    for (const SearchBox& box : search.boxes)
        for (int axis = 0; axis < Dimension; ++axis)
            if (ball.centre[axis] - ball.radius < box.low[axis] ||
                ball.centre[axis] + ball.radius > box.high[axis])
                return false;
    return true;
}

// The computed distance to a wall changes by no more than the way that one goes, except at ends of lines, at faces of search
// boxes, and between fibres of different diameters, whose order goes by their axes.
template <int Dimension>
bool IsFarFromWalls(const FibreSearch& search, const ElementNodes<Dimension>& element, int ND) {
    constexpr double kCurved = 1.1; // sides may bulge beyond their nodes
    Ball ball = BallAround<Dimension>(element, ND);
    ball.radius *= kCurved;
    if (search.radii.size() != 1 || !BoxesHold<Dimension>(search, ball))
        return false;
    return std::fabs(WallDistance(SearchNearestFibre(search, ball.centre))) > ball.radius &&
           !EndOfLineWithin(search, ball.centre, search.radii[0] + ball.radius);
}

// --- condensing ---------------------------------------------------------------------------------------------------

bool InFluid(const NearestFibre& nearest) {
    return WallDistance(nearest) > kDistanceTolerance;
}

// shares := sum over sub-points in fluid of the moments, the rule's points in their order.
template <int Dimension> void SumMoments(const WallCells<Dimension>& cells, std::vector<double>& sums) {
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
                if constexpr (Dimension == 2)
                    sums[p++] += plane;
                else
                    for (std::int32_t c = 0; c < order; ++c)
                        sums[p++] += plane * at(k)[c];
            }
    });
}

// Means over the fluid sub-points that lie nearest to each point of the rule, for points that lie in a fibre.
template <int Dimension>
void TakeFluidNearby(const WallCells<Dimension>& cells, const ElementWalk<Dimension>& walk,
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
        const std::int32_t p = Dimension == 2 ? pointOf(i) * order + pointOf(j)
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

template <int Dimension>
void Condense(const WallCells<Dimension>& cells, const ElementWalk<Dimension>& walk,
              const FibreSearch& search, CutElement& cut) {
    SumMoments(cells, cut.share);
    cut.records.resize(cut.share.size());
    cut.fluid = cut.volume = 0.0;
    for (int p = 0; p < cells.rule.count; ++p) {
        const auto place = static_cast<std::size_t>(p);
        double X[3];
        PlaceOfPoint(walk, cells.rule.point[p], X);
        JacobianValues<Dimension> jacobian;
        const double w = LocatePoint(walk, cells.rule.point[p], jacobian);
        cut.share[place] /= cells.rule.point[p].weight;
        cut.fluid += w * cut.share[place];
        cut.volume += w;
        FillGaussRecord(search, SearchNearestFibre(search, X), X, cut.records[place]);
    }
    TakeFluidNearby(cells, walk, search, cut);
}

} // namespace

template <int Dimension> WallCells<Dimension> MakeWallCells(std::int32_t N, std::int32_t NDMAX) {
    WallCells<Dimension> cells;
    cells.along = kOrderInCell * N;
    cells.order = CondensedOrder<Dimension>(NDMAX);
    for (std::int32_t cell = 0; cell < N; ++cell)
        for (std::int32_t k = 1; k <= kOrderInCell; ++k) {
            const double x = (2 * cell + 1 + XG(kOrderInCell, k)) / N - 1.0;
            cells.place.push_back(x);
            for (std::int32_t point = 1; point <= cells.order; ++point)
                cells.moment.push_back(WGT(kOrderInCell, k) / N * LagrangeAt(cells.order, point, x));
        }
    return cells;
}

template <int Dimension>
bool CutByWall(WallCells<Dimension>& cells, const ElementWalk<Dimension>& walk, const FibreSearch& search,
               CutElement& cut) {
    const ActiveNodes& active = walk.points.active;
    if (IsFarFromWalls<Dimension>(search, walk.element, active.ND))
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

template WallCells<2> MakeWallCells<2>(std::int32_t, std::int32_t);
template WallCells<3> MakeWallCells<3>(std::int32_t, std::int32_t);
template bool CutByWall<2>(WallCells<2>&, const ElementWalk<2>&, const FibreSearch&, CutElement&);
template bool CutByWall<3>(WallCells<3>&, const ElementWalk<3>&, const FibreSearch&, CutElement&);

} // namespace zurt
