// The mesh in the graphics file: universal datasets 15 (nodes) and 71 (elements).
#pragma once

#include "job/run.h"

namespace zurt {

/// Dataset 15: one line a node, number, two zero coordinate systems, colour, x, y, z. Nothing under a negative IGRAF.
void WriteUnvNodes(Run& run);

/// Dataset 71 of one group of bricks, in the node order of linear (8) or parabolic (20) bricks. A group whose largest
/// node count is neither 8 nor 20 is written as the one below, with a warning on the listing; so is an element that
/// lacks one of its mid-side nodes. Labels run on from group to group.
void WriteUnvElements3D(Run& run, const ElementGroup& group);

} // namespace zurt
