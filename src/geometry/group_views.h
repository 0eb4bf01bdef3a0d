// Arrays of a group's data block that not every group has, as views; empty when the group does not have them.
#pragma once

#include "run/run.h"

namespace zurt {

/// Material numbers 1..NET.
inline IntArray ElementMaterials(const Run& run, const ElementGroup& group) {
    return IntSection(run.A, group.LMATE, group.hasMaterials ? group.NET : 0);
}

/// Source curve numbers 1..NET, 0 for no source.
inline IntArray ElementSources(const Run& run, const ElementGroup& group) {
    return IntSection(run.A, group.LISRC, group.hasSources ? group.NET : 0);
}

/// Thickness (2D) or area (1D) 1..NET.
inline RealArray ElementThickness(const Run& run, const ElementGroup& group) {
    return RealSection(run.A, group.LTHIC, group.hasThickness ? group.NET : 0);
}

} // namespace zurt
