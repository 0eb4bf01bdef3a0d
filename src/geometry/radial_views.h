// Arrays of a radial group's data block as views; empty where the group does not have them.
//
// Elements are columns, and nodes of a fibre run from its axis outward. Values are concentrations in the deck's unit.
#pragma once

#include "geometry/element_family.h"
#include "run/run.h"

namespace zurt {

/// Node numbers (node, element) of an assembled group, 0 behind the last node of an element.
inline IntTable RadialNodes(const Run& run, const ElementGroup& group) {
    const RadialGroup& radial = group.radial;
    return IntTableSection(run.A, radial.LNODES, radial.NODEL4MX, radial.substructured ? 0 : group.NET);
}

/// Sub-elements 1..NET.
inline IntArray RadialCount(const Run& run, const ElementGroup& group) {
    return IntSection(run.A, group.radial.LCOUNT, group.NET);
}

/// Concentrations (node, element) of a substructured group; row RadialCount + 1 holds the continuum's.
inline RealTable FibreValue(const Run& run, const ElementGroup& group) {
    const RadialGroup& radial = group.radial;
    return RealTableSection(run.A, radial.LVALUE, radial.NODEL4MX, radial.substructured ? group.NET : 0);
}

/// The same at the start of the step.
inline RealTable FibreValue0(const Run& run, const ElementGroup& group) {
    const RadialGroup& radial = group.radial;
    return RealTableSection(run.A, radial.LVALUE0, radial.NODEL4MX, radial.substructured ? group.NET : 0);
}

/// What left each fibre 1..NET per unit time in the latest iteration, substructured groups.
inline RealArray FibreFlux(const Run& run, const ElementGroup& group) {
    return RealSection(run.A, group.radial.LFLUX, group.radial.substructured ? group.NET : 0);
}

/// The node 1..NET whose value is that of the fibre's surface, substructured groups.
inline IntArray ContinuumNode(const Run& run, const ElementGroup& group) {
    return IntSection(run.A, group.radial.LCONTINUUM, group.radial.substructured ? group.NET : 0);
}

/// The nodes (element, place) that share a fibre's flux; no columns when that is ContinuumNode alone.
inline IntTable CommonNodes(const Run& run, const ElementGroup& group) {
    const bool shared = group.radial.substructured && group.radial.CommonNodeCount > 1;
    return IntTableSection(run.A, group.radial.LCOMMON, group.NET, shared ? group.radial.CommonNodeCount : 0);
}

/// Ratio of the concentrations in the fibre and in the continuum at its surface, 1..NET; empty without IPARTIT.
inline RealArray PartitionValue(const Run& run, const ElementGroup& group) {
    return RealSection(run.A, group.radial.LPARTITION, group.radial.IPARTIT > 0 ? group.NET : 0);
}

} // namespace zurt
