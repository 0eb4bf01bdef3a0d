// The inlet cross-section of a direction: the plane where its coordinate is 0 when elements stand on both sides of it, else
// the mesh's lowest plane.
//
// Lengths are in the mesh's unit; radial elements have no part in it. Called where the flow through it is taken: for the
// masses of a homogenization and for the table of balances.
#pragma once

#include "run/run.h"

#include <cmath>

namespace zurt {

struct Extent {
    double low = HUGE_VAL, high = -HUGE_VAL;
};

/// Lowest and highest coordinate X (1..NP) of the nodes of all elements; without elements low is above high.
Extent MeshExtent(const Run& run, ConstRealArray X);

/// Finds the nodes in the plane of direction 1, 2 or 3 and the elements on its high side. `section` is empty beforehand.
void FindCrossSection(const Run& run, int direction, CrossSection& section);

} // namespace zurt
