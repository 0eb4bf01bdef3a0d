#include "check/node_use.h"

#include "core/stop.h"
#include "elements/surfaces/surface_cards.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

namespace zurt {

namespace {

std::size_t At(std::int32_t node) {
    return static_cast<std::size_t>(node);
}

// The node that stands for a node's part: next(head) = head. Links that are followed are shortened on the way.
std::int32_t HeadOf(std::vector<std::int32_t>& next, std::int32_t node) {
    while (next[At(node)] != node) {
        next[At(node)] = next[At(next[At(node)])];
        node = next[At(node)];
    }
    return node;
}

void JoinNodes(std::vector<std::int32_t>& next, const std::int32_t* nodes, Word count) {
    for (Word k = 1; k < count; ++k) {
        if (nodes[k] == 0 || nodes[0] == 0)
            continue;
        const std::int32_t a = HeadOf(next, nodes[0]), b = HeadOf(next, nodes[k]);
        next[At(std::max(a, b))] = std::min(a, b);
    }
}

// Sides act in quadrilaterals alone.
void AnchorBySides(const Run& run, MeshParts& parts) {
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        if (group.NETIP != 2 || group.surfaces.records == 0)
            continue;
        const ConstIntTable NEL = Connectivity(run, group), records = SurfaceRecords<2>(run, group);
        const ConstIntArray numbers = SurfaceRecordNumbers(run, group);
        for (Word n = 1; n <= group.NET; ++n)
            for (Word field = 1; numbers(n) > 0 && field <= records.rows; ++field) {
                const Word kind = (field - 1) % kSurfaceFields + 1;
                if ((kind == kConvectionCurve || kind == kEmissivityCurve) && records(field, numbers(n)) > 0)
                    parts.anchored[At(parts.first[At(NEL(n, 1))])] = true;
            }
    }
}

void AnchorByNodes(const Run& run, MeshParts& parts) {
    const ConstIntArray ID = EquationNumbers(run);
    for (std::int32_t node = 1; node <= run.control.header.NP; ++node)
        if (ID(node) == 0)
            parts.anchored[At(parts.first[At(node)])] = true;
}

// The first node with an equation that no element uses, and how many there are.
void NoteOnUnusedNodes(const Run& run, const std::vector<std::int32_t>& uses) {
    const ConstIntArray ID = EquationNumbers(run);
    std::int32_t first = 0, count = 0;
    for (std::int32_t node = 1; node <= run.control.header.NP; ++node)
        if (ID(node) > 0 && uses[At(node)] == 0) {
            first = first == 0 ? node : first;
            ++count;
        }
    if (count > 0)
        WriteNote(NodeText(run, first) + " has an equation, and no element uses it" +
                  (count > 1 ? " (" + std::to_string(count) + " such nodes)" : ""));
}

void NoteOnLooseParts(const Run& run) {
    if (run.control.header.NSTAC != 0)
        return;
    const MeshParts parts = PartsOfMesh(run);
    const std::vector<std::int32_t> uses = ElementsOfNodes(run);
    for (std::int32_t node = 1; node <= run.control.header.NP; ++node)
        if (parts.first[At(node)] == node && uses[At(node)] > 0 && !parts.anchored[At(node)])
            return WriteNote("the problem is steady, and nothing holds the part of the mesh with " +
                             NodeText(run, node) + ": no held node, no convection");
}

std::int32_t NodeOfEquation(const Run& run, Word equation) {
    const ConstIntArray ID = EquationNumbers(run);
    for (Word node = 1; equation > 0 && node <= ID.length; ++node)
        if (ID(node) == equation)
            return static_cast<std::int32_t>(node);
    return 0;
}

} // namespace

std::vector<std::int32_t> ElementsOfNodes(const Run& run) {
    std::vector<std::int32_t> uses(At(run.control.header.NP) + 1);
    ForEachElement(run, [&](const std::int32_t* nodes, Word count) {
        for (Word k = 0; k < count; ++k)
            uses[At(nodes[k])] += nodes[k] > 0;
    });
    return uses;
}

MeshParts PartsOfMesh(const Run& run) {
    MeshParts parts;
    parts.first.resize(At(run.control.header.NP) + 1);
    std::iota(parts.first.begin(), parts.first.end(), 0);
    ForEachElement(run, [&](const std::int32_t* nodes, Word count) { JoinNodes(parts.first, nodes, count); });
    for (std::int32_t node = 1; node <= run.control.header.NP; ++node)
        parts.first[At(node)] = HeadOf(parts.first, node);
    parts.anchored.resize(parts.first.size());
    AnchorByNodes(run, parts);
    AnchorBySides(run, parts);
    return parts;
}

std::string NodeText(const Run& run, std::int32_t node) {
    char text[120];
    std::snprintf(text, sizeof text, "node %d at (%.6g, %.6g, %.6g)", node, CoordinateColumn(run, 1)(node),
                  CoordinateColumn(run, 2)(node), CoordinateColumn(run, 3)(node));
    return text;
}

void NoteOnEquation(const Run& run, Word equation) {
    char step[64];
    std::snprintf(step, sizeof step, "step %d has the length %.6g", run.clock.KOR, run.clock.TimeStep);
    if (run.control.header.NSTAC != 0 && !(run.clock.TimeStep > 0.0))
        WriteNote(std::string(step) + ": a step below zero, or without length, has no solution");
    const std::vector<std::int32_t> uses = ElementsOfNodes(run);
    const std::int32_t node = NodeOfEquation(run, equation);
    if (node > 0 && uses[At(node)] > 0)
        WriteNote("equation " + std::to_string(equation) + " is that of " + NodeText(run, node) + ", which " +
                  std::to_string(uses[At(node)]) + (uses[At(node)] == 1 ? " element uses" : " elements use"));
    else if (node > 0)
        WriteNote("equation " + std::to_string(equation) + " is that of " + NodeText(run, node) +
                  ": no element uses it");
    if (node == 0)
        NoteOnUnusedNodes(run, uses);
    NoteOnLooseParts(run);
}

} // namespace zurt
