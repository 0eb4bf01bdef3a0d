// Fibres in the box of the device cards: clipping, and their volumes.
//
// Lengths are in the mesh's unit. Called by the fibre step.
#pragma once

#include "run/fibre_set.h"

namespace zurt {

/// Lengths and coordinates between these can be multiplied and squared without leaving the range of a double.
constexpr double kLargestLength = 1.0e50;
constexpr double kSmallestLength = 1.0e-50;

/// Forms in which fibre operations exist: `dim` 1 in the plane, 2 in space.
constexpr int kPlaneFibres = 1;
constexpr int kSpaceFibres = 2;

/// A fibre by the numbers of its set and of itself, both from 1; set 0: none.
struct FibrePlace {
    Word set = 0;
    Word fibre = 0;
};

/// Brings the two points of every line fibre into the box [0, size] (in the plane z has the range [0, 0]) and sums the
/// clipped lengths into totalLength of each set. A point outside a face is put on it, and its two other coordinates are
/// shifted along the fibre's direction as read: always up on a low face and always down on a high one. The clipped
/// points replace the fibre's. Clipping once more changes nothing for points that lie in the box.
///   size  the box, x, y, z (input)
/// Returns the first fibre that is left without a length (it lies outside the box); set 0 when all have one.
FibrePlace ClipFibresToBox(FibreModel& model, const double (&size)[3], int dim);

/// Volume of each set and of all fibres; in the plane areas. totalLength has been set by the clip.
void FibreVolumes(FibreModel& model, int dim);

/// The part of a domain that fluid fills; 1 for a domain without volume.
inline double Porosity(double VOLFLUID, double volume) {
    return volume == 0.0 ? 1.0 : VOLFLUID / volume;
}

} // namespace zurt
