#include "geometry/cross_section.h"

#include "geometry/element_family.h"

#include <algorithm>

namespace zurt {

namespace {

/// Nodes this close to the plane, relative to the extent of the mesh, lie in it.
constexpr double kInPlane = 1e-9;

Extent ElementExtent(ConstIntTable NEL, Word n, ConstRealArray X) {
    Extent extent;
    for (Word k = 1; k <= NEL.columns; ++k) {
        const std::int32_t node = NEL(n, k);
        if (node == 0)
            continue;
        extent.low = std::min(extent.low, X(node));
        extent.high = std::max(extent.high, X(node));
    }
    return extent;
}

// True when faces of elements lie in the plane of coordinate 0, with elements on both of its sides.
bool PartsAtZero(const Run& run, ConstRealArray X, double tolerance) {
    bool below = false, above = false;
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        if (IsRadial(run.groups[NGE]))
            continue;
        for (Word n = 1; n <= run.groups[NGE].NET; ++n) {
            const Extent extent = ElementExtent(Connectivity(run, run.groups[NGE]), n, X);
            if (extent.low < -tolerance && extent.high > tolerance)
                return false;
            below = below || extent.low < -tolerance;
            above = above || extent.high > tolerance;
        }
    }
    return below && above;
}

} // namespace

Extent MeshExtent(const Run& run, ConstRealArray X) {
    Extent mesh;
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (!IsRadial(run.groups[NGE]))
            for (Word n = 1; n <= run.groups[NGE].NET; ++n) {
                const Extent extent = ElementExtent(Connectivity(run, run.groups[NGE]), n, X);
                mesh.low = std::min(mesh.low, extent.low);
                mesh.high = std::max(mesh.high, extent.high);
            }
    return mesh;
}

void FindCrossSection(const Run& run, int direction, CrossSection& section) {
    const ConstRealArray X = CoordinateColumn(run, direction);
    const Extent mesh = MeshExtent(run, X);
    const double tolerance = kInPlane * (mesh.high - mesh.low);
    const double plane = PartsAtZero(run, X, tolerance) ? 0.0 : mesh.low;
    for (std::int32_t i = 1; i <= X.length; ++i)
        if (std::fabs(X(i) - plane) <= tolerance)
            section.nodes.push_back(i);
    section.elements.resize(static_cast<std::size_t>(run.control.header.NGET) + 1);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        if (IsRadial(group))
            continue;
        for (std::int32_t n = 1; n <= group.NET; ++n)
            if (std::fabs(ElementExtent(Connectivity(run, group), n, X).low - plane) <= tolerance)
                section.elements[static_cast<std::size_t>(NGE)].push_back(n);
    }
    section.found = true;
}

} // namespace zurt
