// The nearest fibre of a point.
//
// A search is a copy of the fibres made for calculation, in the order of the cards. The order is part of the result: a
// later fibre replaces the best one only when it is nearer by more than the tolerance, and past the end of a line its
// distance holds the radius of the fibre that was best until then. SearchAllFibres visits every fibre and defines the
// result; SearchNearestFibre looks at the fibres near the point's cell (microscale/fibre_cells.h) and gives the same
// result to the last bit. Lengths are in the mesh's unit; in the plane all z are 0.
// Called at every Gauss point once a problem, by the fibre step and by the start value of HEQ.
#pragma once

#include "microscale/fibre_cells.h"
#include "run/fibre_set.h"

#include <cstdint>
#include <vector>

namespace zurt {

/// The best distance before any fibre has been seen.
constexpr double kNoDistance = 1.0e10;

/// A search without fibres.
FibreSearch EmptySearch();

enum class LineEnds { Count, Endless };

/// All sets, a set being seen only from inside its box grown by half its diameter. `dimension` 2 or 3. Points are
/// classified with lines that end; endless ones serve the factors that are made directly from coordinates.
FibreSearch SearchOfAllSets(const FibreModel& model, int dimension, LineEnds ends);

/// One set (from 1) alone, for mean wall distances: lines are endless, the box does not count, `tolerance` decides between
/// fibres.
FibreSearch SearchOfOneSet(const FibreModel& model, Word set, int dimension, double tolerance);

struct NearestFibre {
    double distance = kNoDistance; // to the axis or centre, with what the rule of the ends adds
    double radius = 0.0;           // of its set
    Word fibre = -1;               // in search.fibres, from 0; -1: none
};

/// Distance to the wall of the nearest fibre; above kDistanceTolerance the point lies in fluid.
inline double WallDistance(const NearestFibre& nearest) {
    return nearest.distance - nearest.radius;
}

/// The nearest fibre of X by a visit of all of them.
NearestFibre SearchAllFibres(const FibreSearch& search, const double (&X)[3]);

/// The same by the cells.
NearestFibre SearchNearestFibre(const FibreSearch& search, const double (&X)[3]);

} // namespace zurt
