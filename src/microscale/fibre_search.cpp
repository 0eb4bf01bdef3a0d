#include "microscale/fibre_search.h"

#include "core/widened_constants.h"

#include <algorithm>
#include <cmath>

namespace zurt {

namespace {

SearchFibre FibreForSearch(const FibreSet& set, const Fibre& fibre, std::int32_t number, int dimension,
                           LineEnds ends) {
    SearchFibre out{};
    const double* const p1 = fibre.points.data();
    const double* const p2 = set.NTYPE == kLineFibres ? p1 + 3 : p1;
    for (int axis = 0; axis < dimension; ++axis) {
        out.P1[axis] = p1[axis];
        out.P2[axis] = p2[axis];
        out.a[axis] = p2[axis] - p1[axis];
    }
    out.length = std::sqrt(out.a[0] * out.a[0] + out.a[1] * out.a[1] + out.a[2] * out.a[2]);
    out.radius = set.DIAM / 2.0;
    out.set = number;
    out.shape = set.NTYPE == kSphereFibres  ? FibreShape::Sphere
                : ends == LineEnds::Endless ? FibreShape::EndlessLine
                : fibre.NPOINTS == 2        ? FibreShape::Line
                                            : FibreShape::LongLine;
    return out;
}

void AddSet(const FibreModel& model, std::size_t s, int dimension, LineEnds ends, FibreSearch& search) {
    const FibreSet& set = model.sets[s];
    const double radius = set.DIAM / 2.0;
    const auto number = static_cast<std::int32_t>(search.boxes.size());
    SearchBox box{};
    for (int axis = 0; axis < dimension; ++axis) {
        box.low[axis] = set.low[axis] - radius;
        box.high[axis] = set.high[axis] + radius;
    }
    search.boxes.push_back(box);
    if (std::find(search.radii.begin(), search.radii.end(), radius) == search.radii.end())
        search.radii.push_back(radius);
    for (const Fibre& fibre : set.fibres) {
        search.fibres.push_back(FibreForSearch(set, fibre, number, dimension, ends));
        search.fibres.back().radiiSoFar = static_cast<std::int32_t>(search.radii.size());
    }
    search.firstOfSet.push_back(static_cast<Word>(search.fibres.size()));
}

bool BoxHolds(const SearchBox& box, const double (&X)[3]) {
    return X[0] >= box.low[0] && X[0] <= box.high[0] && X[1] >= box.low[1] && X[1] <= box.high[1] &&
           X[2] >= box.low[2] && X[2] <= box.high[2];
}

// Where a point lies from a fibre. Past an end of a line (`pastEnd`) the distance is R plus one of the two, by R.
struct FibreDistance {
    double distance; // to the line or the centre
    bool pastEnd;
    double toEnd;   // past an end: distance to the end point
    double overEnd; // and along the axis
};

inline double Length(double x, double y, double z) {
    return std::sqrt(x * x + y * y + z * z);
}

inline FibreDistance DistanceTo(const SearchFibre& fibre, const double (&X)[3]) {
    const double v0 = X[0] - fibre.P1[0], v1 = X[1] - fibre.P1[1], v2 = X[2] - fibre.P1[2];
    if (fibre.shape == FibreShape::Sphere)
        return {Length(v0, v1, v2), false, 0.0, 0.0};
    const double* const a = fibre.a;
    const double h =
        Length(v1 * a[2] - v2 * a[1], v2 * a[0] - v0 * a[2], v0 * a[1] - v1 * a[0]) / fibre.length;
    if (fibre.shape == FibreShape::EndlessLine)
        return {h, false, 0.0, 0.0};
    const double s = (v0 * a[0] + v1 * a[1] + v2 * a[2]) / fibre.length;
    if (-kDistanceTolerance < s && s < fibre.length + kDistanceTolerance)
        return {h, false, 0.0, 0.0};
    if (s <= -kDistanceTolerance)
        return {h, true, Length(v0, v1, v2), std::fabs(s)};
    const double beyond = Length(X[0] - fibre.P2[0], X[1] - fibre.P2[1], X[2] - fibre.P2[2]);
    if (fibre.shape == FibreShape::LongLine)
        return {beyond, false, 0.0, 0.0};
    return {h, true, beyond, std::fabs(s) - fibre.length};
}

// The distance that counts when the best fibre so far has radius R.
inline double CountedDistance(const FibreDistance& at, double R) {
    if (!at.pastEnd)
        return at.distance;
    return R + (R <= at.distance ? at.toEnd : at.overEnd);
}

inline double RadiusSoFar(const NearestFibre& nearest, const SearchFibre& fibre) {
    return nearest.fibre < 0 ? fibre.radius : nearest.radius;
}

// The smallest and the largest distance that may count, whatever fibre is best so far.
struct DistanceRange {
    double low, high;
};

inline DistanceRange CountedDistances(const FibreSearch& search, const SearchFibre& fibre,
                                      const FibreDistance& at) {
    const double first = CountedDistance(at, search.radii.front());
    DistanceRange range{first, first};
    if (at.pastEnd)
        for (std::int32_t i = 1; i < fibre.radiiSoFar; ++i) {
            const double d = CountedDistance(at, search.radii[static_cast<std::size_t>(i)]);
            range.low = std::min(range.low, d);
            range.high = std::max(range.high, d);
        }
    return range;
}

// Looks at the fibres of one cell, in card order; true when the result is that of SearchAllFibres. Let e be the tolerance,
// low(i) <= d(i) <= high(i) the distance of fibre i that counts, which depends on the best fibre before it, and r the reach
// of the cell: d(j) >= r for every fibre j that is not listed. Fibre i is taken, whatever came before it, if
//     min(r, low(k) of all listed k < i) - high(i) > e.
// From the first such fibre on the best one, b, is known, and no unlisted j is taken, as d(b) < r - e <= d(j). A later i is
// taken if low(b) - d(i) > e, passed over if high(b) - d(i) <= e, and undecided otherwise.
bool SearchCell(const FibreSearch& search, const FibreCells& cells, Word cell, const double (&X)[3],
                NearestFibre& nearest) {
    const auto first = static_cast<std::size_t>(cells.start[static_cast<std::size_t>(cell)]);
    const auto last = static_cast<std::size_t>(cells.start[static_cast<std::size_t>(cell) + 1]);
    std::int32_t set = -1;
    bool seen = true;
    double leastBefore = std::min(kNoDistance, cells.reach[static_cast<std::size_t>(cell)]);
    DistanceRange best{};
    for (std::size_t i = first; i < last; ++i) {
        const SearchFibre& fibre = search.fibres[static_cast<std::size_t>(cells.listed[i])];
        if (search.boxesCount && fibre.set != set) {
            set = fibre.set;
            seen = BoxHolds(search.boxes[static_cast<std::size_t>(set)], X);
        }
        if (!seen)
            continue;
        const FibreDistance at = DistanceTo(fibre, X);
        if (nearest.fibre < 0) {
            const DistanceRange range = CountedDistances(search, fibre, at);
            if (leastBefore - range.high > search.tolerance) {
                best = range;
                nearest = {range.low, fibre.radius, cells.listed[i]};
            }
            leastBefore = std::min(leastBefore, range.low);
            continue;
        }
        const double d = CountedDistance(at, nearest.radius);
        if (best.low - d > search.tolerance) {
            best = {d, d};
            nearest = {d, fibre.radius, cells.listed[i]};
        } else if (best.high - d > search.tolerance) {
            return false; // undecided
        }
    }
    return nearest.fibre >= 0 && best.low == best.high;
}

} // namespace

FibreSearch EmptySearch() {
    FibreSearch search;
    search.firstOfSet = {0};
    return search;
}

FibreSearch SearchOfAllSets(const FibreModel& model, int dimension, LineEnds ends) {
    FibreSearch search = EmptySearch();
    search.planar = dimension == 2;
    search.boxesCount = true;
    search.tolerance = kDistanceTolerance;
    for (std::size_t s = 0; s < model.sets.size(); ++s)
        AddSet(model, s, dimension, ends, search);
    return search;
}

FibreSearch SearchOfOneSet(const FibreModel& model, Word set, int dimension, double tolerance) {
    FibreSearch search = EmptySearch();
    search.planar = dimension == 2;
    search.tolerance = tolerance;
    AddSet(model, static_cast<std::size_t>(set - 1), dimension, LineEnds::Endless, search);
    return search;
}

NearestFibre SearchAllFibres(const FibreSearch& search, const double (&X)[3]) {
    NearestFibre nearest;
    for (std::size_t set = 0; set < search.boxes.size(); ++set) {
        if (search.boxesCount && !BoxHolds(search.boxes[set], X))
            continue;
        for (Word i = search.firstOfSet[set]; i < search.firstOfSet[set + 1]; ++i) {
            const SearchFibre& fibre = search.fibres[static_cast<std::size_t>(i)];
            const double d = CountedDistance(DistanceTo(fibre, X), RadiusSoFar(nearest, fibre));
            if (nearest.distance - d > search.tolerance)
                nearest = {d, fibre.radius, i};
        }
    }
    return nearest;
}

NearestFibre SearchNearestFibre(const FibreSearch& search, const double (&X)[3]) {
    // The finest cells know least of what a visit of all fibres has seen before; a larger one knows more.
    for (auto cells = search.divisions.rbegin(); cells != search.divisions.rend(); ++cells) {
        const Word cell = CellOf(*cells, X);
        NearestFibre nearest;
        if (cell >= 0 && SearchCell(search, *cells, cell, X, nearest))
            return nearest;
    }
    return SearchAllFibres(search, X);
}

} // namespace zurt
