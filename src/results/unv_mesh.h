// The mesh in the graphics file: universal datasets 15 (nodes) and 71 (elements).
#pragma once

#include "run/run.h"

namespace zurt {

/// Dataset 15: one line a node, number, two zero coordinate systems, colour, x, y, z. Nothing under a negative IGRAF.
void WriteUnvNodes(Run& run);

/// Dataset 71 of one group: linear (2 nodes) or parabolic (3) beams, linear (4) or parabolic (8) plane quadrilaterals,
/// linear (8) or parabolic (20) bricks, in the node order of these. A group of quadrilaterals or bricks whose largest node
/// count is neither of the two is written as the one below, with a warning on the listing; so is, without one, an element
/// that lacks one of its mid-side nodes. Of radial fibres whose nodes are nodes of the model (ISUB4 0) each sub-element is
/// a linear beam; others are left out. Labels run on from group to group. Nothing under a negative IGRAF.
void WriteUnvElements(Run& run, const ElementGroup& group);

} // namespace zurt
