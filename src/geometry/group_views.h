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

/// The node that element n names twice, 0 for none. `NEL` has an element to a row and 0 where it has no node.
inline std::int32_t RepeatedNode(ConstIntTable NEL, Word n) {
    for (Word i = 2; i <= NEL.columns; ++i)
        for (Word k = 1; k < i; ++k)
            if (NEL(n, i) != 0 && NEL(n, i) == NEL(n, k))
                return NEL(n, i);
    return 0;
}

} // namespace zurt
