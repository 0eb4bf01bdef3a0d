// Fibres sorted into cells: which of them can be the nearest one of a point.
//
// A region is divided into equal cells, each division having cells of half the size of the one before. A cell lists, in
// card order, the fibres that may decide for a point inside, and holds a reach: at every point of the cell, every fibre
// that is not listed has a computed distance of at least the reach. Lengths are in the mesh's unit. Made once by the
// fibre step, read by SearchNearestFibre.
#pragma once

#include "core/array_view.h"

#include <cstdint>
#include <vector>

namespace zurt {

enum class FibreShape : std::int32_t {
    Line,     // of exactly two points
    LongLine, // of more points; the first two count, but past the second one the distance is that to the point
    EndlessLine, // through the first two points
    Sphere
};

/// One fibre as the search sees it.
struct SearchFibre {
    double P1[3], P2[3]; // for a sphere its centre, twice
    double a[3];         // P2 - P1
    double length;       // of a
    double radius;       // half the diameter of the set
    std::int32_t set;    // from 0
    FibreShape shape;
    std::int32_t radiiSoFar; // so many of FibreSearch::radii belong to this set or to one before it
};

/// Search box of a set, grown by half its diameter.
struct SearchBox {
    double low[3], high[3];
};

/// One division of the region.
struct FibreCells {
    double low[3] = {};
    double perCell[3] = {}; // cells to a unit of length; 0 where there is one cell only
    std::int32_t divisions[3] = {};
    std::vector<double> reach;
    std::vector<Word> start;          // of each cell's list in `listed`, and one entry behind the last cell
    std::vector<std::int32_t> listed; // places in FibreSearch::fibres
};

struct FibreSearch {
    std::vector<SearchFibre> fibres; // in card order
    std::vector<SearchBox> boxes;    // by set
    std::vector<Word> firstOfSet;    // place of the first fibre of each set, and one entry behind the last
    std::vector<double> radii;       // the different radii, in the order of the sets
    double tolerance = 0.0;
    bool boxesCount = false; // a point sees only the sets whose box holds it
    bool planar = false;
    std::vector<FibreCells> divisions; // from coarse to fine
};

/// Divides the region low..high into cells for about `points` searches, as long as the lists are worth being shortened.
/// A region without room gets no cells.
void MakeFibreCells(FibreSearch& search, const double (&low)[3], const double (&high)[3], Word points);

/// The cell that holds X, or -1.
inline Word CellOf(const FibreCells& cells, const double (&X)[3]) {
    Word place[3];
    for (int axis = 0; axis < 3; ++axis) {
        const double t = (X[axis] - cells.low[axis]) * cells.perCell[axis];
        if (!(t >= 0.0 && t < cells.divisions[axis]))
            return -1;
        place[axis] = static_cast<Word>(t);
    }
    return place[0] + cells.divisions[0] * (place[1] + Word{cells.divisions[1]} * place[2]);
}

} // namespace zurt
