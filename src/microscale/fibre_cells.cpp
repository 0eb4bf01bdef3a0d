#include "microscale/fibre_cells.h"

#include "core/vector.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zurt {

namespace {

constexpr std::size_t kFewFibres = 12;       // a visit of so many costs no more than the way through a cell
constexpr Word kMostCells = 1 << 18;         // all cells together
constexpr std::size_t kMostListed = 1 << 23; // entries of all lists together
constexpr double kSplitRatio = 0.7; // an axis is halved when its cells are not much shorter than the longest

// The cells of one stage; the next stage halves them.
struct Stage {
    FibreCells cells;
    double edge[3] = {}; // of a cell
};

// What distances computed in double precision, and the tolerances at the ends of a line (twice 1e-10), can be off by. The
// error of a distance is some 1e-15 of the coordinates; a thousand times that is given.
double Slack(const FibreSearch& search, const double (&low)[3], const double (&high)[3]) {
    double largest = 0.0;
    for (int axis = 0; axis < 3; ++axis)
        largest = std::max({largest, std::fabs(low[axis]), std::fabs(high[axis])});
    for (const SearchFibre& fibre : search.fibres) {
        largest = std::max(largest, fibre.radius);
        for (int axis = 0; axis < 3; ++axis)
            largest = std::max({largest, std::fabs(fibre.P1[axis]), std::fabs(fibre.P2[axis])});
    }
    return 4.0e-10 + 1.0e-12 * largest;
}

// Distance of M to the axis or centre of a fibre, and whether the foot lies on a line for all points closer to M than
// `around` (spheres have no ends).
struct AxisDistance {
    double distance;
    bool footInside;
};

AxisDistance DistanceToAxis(const SearchFibre& fibre, const double (&M)[3], double around) {
    const double v[3] = {M[0] - fibre.P1[0], M[1] - fibre.P1[1], M[2] - fibre.P1[2]};
    if (fibre.shape == FibreShape::Sphere)
        return {VectorLength(v), true};
    const double s = VectorDot(v, fibre.a) / fibre.length;
    const bool endless = fibre.shape == FibreShape::EndlessLine;
    const double held = endless ? s : std::clamp(s, 0.0, fibre.length);
    double w[3];
    for (int axis = 0; axis < 3; ++axis)
        w[axis] = v[axis] - held / fibre.length * fibre.a[axis];
    return {VectorLength(w), endless || (s - around > 0.0 && s + around < fibre.length)};
}

void CentreOf(const Stage& stage, Word i, Word j, Word k, double (&M)[3]) {
    const Word place[3] = {i, j, k};
    for (int axis = 0; axis < 3; ++axis)
        M[axis] = stage.cells.low[axis] + (static_cast<double>(place[axis]) + 0.5) * stage.edge[axis];
}

struct CellBuilder {
    const FibreSearch& search;
    double slack = 0.0;
    double largestRadius = 0.0;
    std::vector<double> distance{}; // of the parent's fibres to the cell in hand
};

// Lists the fibres of one cell around M out of those of its parent. A fibre whose distance from M exceeds the smallest
// one by the cell's size can't be the nearest of any point inside; past the end of a line a distance may also hold a
// radius.
void ListCell(CellBuilder& builder, const FibreCells& parent, Word parentCell, const double (&M)[3],
              double halfDiagonal, FibreCells& cells) {
    const auto first = static_cast<std::size_t>(parent.start[static_cast<std::size_t>(parentCell)]);
    const auto last = static_cast<std::size_t>(parent.start[static_cast<std::size_t>(parentCell) + 1]);
    const double around = halfDiagonal + builder.slack;
    double nearest = HUGE_VAL;
    builder.distance.clear();
    for (std::size_t i = first; i < last; ++i) {
        const auto place = static_cast<std::size_t>(parent.listed[i]);
        const AxisDistance axis = DistanceToAxis(builder.search.fibres[place], M, around);
        const double most = axis.distance + around + (axis.footInside ? 0.0 : builder.largestRadius);
        nearest = std::min(nearest, most);
        builder.distance.push_back(axis.distance);
    }
    const double wanted = nearest + builder.search.tolerance + 3.0 * builder.slack;
    for (std::size_t i = first; i < last; ++i)
        if (!(builder.distance[i - first] - around > wanted))
            cells.listed.push_back(parent.listed[i]);
    cells.reach.push_back(
        std::min(parent.reach[static_cast<std::size_t>(parentCell)], wanted - builder.slack));
    cells.start.push_back(static_cast<Word>(cells.listed.size()));
}

// Halves the cells along those axes where they are long.
Stage NextDivision(const Stage& stage, bool (&halved)[3]) {
    Stage next;
    const double longest = std::max({stage.edge[0], stage.edge[1], stage.edge[2]});
    for (int axis = 0; axis < 3; ++axis) {
        halved[axis] = stage.edge[axis] > 0.0 && stage.edge[axis] >= kSplitRatio * longest;
        const std::int32_t factor = halved[axis] ? 2 : 1;
        next.cells.low[axis] = stage.cells.low[axis];
        next.cells.divisions[axis] = factor * stage.cells.divisions[axis];
        next.cells.perCell[axis] = factor * stage.cells.perCell[axis];
        next.edge[axis] = stage.edge[axis] / factor;
    }
    next.cells.start.push_back(0);
    return next;
}

Word CellCount(const FibreCells& cells) {
    return Word{cells.divisions[0]} * cells.divisions[1] * cells.divisions[2];
}

// False when the lists grow too long to be of use.
bool ListCells(CellBuilder& builder, const Stage& parent, const bool (&halved)[3], Stage& stage) {
    const std::int32_t* n = stage.cells.divisions;
    const std::int32_t* m = parent.cells.divisions;
    const double halfDiagonal = 0.5 * VectorLength(stage.edge);
    for (Word k = 0; k < n[2]; ++k)
        for (Word j = 0; j < n[1]; ++j)
            for (Word i = 0; i < n[0]; ++i) {
                double M[3];
                CentreOf(stage, i, j, k, M);
                const Word parentCell = i / (halved[0] ? 2 : 1) +
                                        m[0] * (j / (halved[1] ? 2 : 1) + m[1] * (k / (halved[2] ? 2 : 1)));
                ListCell(builder, parent.cells, parentCell, M, halfDiagonal, stage.cells);
                if (stage.cells.listed.size() > kMostListed)
                    return false;
            }
    return true;
}

// One cell that lists every fibre.
Stage WholeRegion(const FibreSearch& search, const double (&low)[3], const double (&high)[3]) {
    Stage stage;
    for (int axis = 0; axis < 3; ++axis) {
        stage.cells.low[axis] = low[axis];
        stage.cells.divisions[axis] = 1;
        stage.edge[axis] = high[axis] - low[axis];
        stage.cells.perCell[axis] = stage.edge[axis] > 0.0 ? 1.0 / stage.edge[axis] : 0.0;
    }
    const auto fibres = static_cast<std::int32_t>(search.fibres.size());
    for (std::int32_t i = 0; i < fibres; ++i)
        stage.cells.listed.push_back(i);
    stage.cells.start = {0, fibres};
    stage.cells.reach = {HUGE_VAL};
    return stage;
}

bool HasPoints(const FibreSearch& search, const double (&low)[3], const double (&high)[3]) {
    const int axes = search.planar ? 2 : 3;
    for (int axis = 0; axis < axes; ++axis)
        if (!(low[axis] < high[axis]) || !std::isfinite(1.0 / (high[axis] - low[axis])))
            return false;
    return true;
}

} // namespace

void MakeFibreCells(FibreSearch& search, const double (&low)[3], const double (&high)[3], Word points) {
    search.divisions.clear();
    if (!HasPoints(search, low, high))
        return;
    CellBuilder builder{search};
    builder.slack = Slack(search, low, high);
    for (const double radius : search.radii)
        builder.largestRadius = std::max(builder.largestRadius, radius);
    Stage stage = WholeRegion(search, low, high);
    const Word mostCells = std::min(kMostCells, points);
    // Longer lists than these are worth another division.
    while (stage.cells.listed.size() > kFewFibres * static_cast<std::size_t>(CellCount(stage.cells))) {
        bool halved[3];
        Stage next = NextDivision(stage, halved);
        if (CellCount(next.cells) > mostCells || !ListCells(builder, stage, halved, next))
            break;
        stage = std::move(next);
        search.divisions.push_back(stage.cells);
    }
}

} // namespace zurt
