#include "job/model_notes.h"

#include "core/stop.h"
#include "geometry/group_views.h"
#include "geometry/radial_nodes.h"
#include "model/material_tables.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace zurt {

namespace {

// Tables of correction factors that end below the first, or begin beyond the second, of these parts of the fibre box are
// likely given in another unit.
constexpr double kFarBelow = 1e-5, kFarAbove = 1e3;

struct NodesFound {
    Word count = 0, first = 0;
};

template <class Predicate> NodesFound FindNodes(Word length, Predicate isFound) {
    NodesFound found;
    for (Word i = 1; i <= length; ++i)
        if (isFound(i)) {
            found.first = found.first == 0 ? i : found.first;
            ++found.count;
        }
    return found;
}

std::string Count(Word count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

void NoteKindOfProblem(const Run& run) {
    const HeaderFields& header = run.control.header;
    const bool linear = run.job.NonlinearFlag == 0;
    if (header.NSTAC != 0 && linear)
        WriteNote(
            "a transient problem with constant coefficients takes one solve a step, and its solution is not "
            "the concentration: give a curve two points (of equal value), so that the steps iterate");
    if (header.NSTAC == 0 && linear && (header.NDS == 1 || header.NDS == 3))
        WriteNote(
            "a steady problem with constant coefficients has no sound fluxes at the nodes, free nodes count "
            "as 0 there: give a curve two points (of equal value), so that it iterates");
    if (header.NSTAC == 0 && linear && run.control.counts.NDT == 1)
        WriteNote("each step of a steady problem with constant coefficients shows the solution of the step "
                  "before: ask for two steps (NPER 2) and take the second");
}

// The skyline solver and conjugate gradients keep one of the two equal terms that such an element brings to a diagonal entry.
void NoteRepeatedNodes(const Run& run) {
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        if (IsRadial(group))
            continue;
        const ConstIntTable NEL = Connectivity(run, group);
        const NodesFound found = FindNodes(group.NET, [&](Word n) { return RepeatedNode(NEL, n) != 0; });
        if (found.count > 0)
            WriteNote(
                "group " + std::to_string(NGE) + ": " + Count(found.count, "element names", "elements name") +
                " a node twice (element " + std::to_string(found.first) +
                " first): only the sparse solver takes the whole of such a matrix (--solver sparse), the "
                "others give another solution");
    }
}

void NoteSources(const Run& run) {
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (run.groups[NGE].IZIP == 2)
            WriteNote("group " + std::to_string(NGE) +
                      ": volume sources by concentration (IZIP 2) add no load");
}

// A held node has the outlet's value, 0 without outlet cards, from the first step on.
void NoteValuesOfHeldNodes(const Run& run) {
    const ConstIntArray ID = EquationNumbers(run);
    const ConstRealArray values = NodeCardValues(run);
    const CurveCounts& counts = run.control.counts;
    if (counts.IGATH == 1)
        return;
    const double used = run.control.outlet.OutletEnd;
    const auto hasEntry = [&](Word i) {
        return counts.NZADC > 0 && run.prescribedEntry[static_cast<std::size_t>(i - 1)] > 0;
    };
    const NodesFound found = FindNodes(ID.length, [&](Word i) {
        return ID(i) == 0 && values(i) != 0.0 && values(i) != used && !hasEntry(i);
    });
    if (found.count > 0)
        WriteNote(Count(found.count, "held node has a value", "held nodes have values") +
                  " on the node card that is not used (node " + std::to_string(found.first) +
                  " first): all held nodes have one value, that of the outlet cards, else 0");
}

void MarkNodesOfGroup(const Run& run, const ElementGroup& group, IntArray marks) {
    if (IsRadial(group)) {
        MarkRadialNodes(run, group, marks);
        return;
    }
    const ConstIntTable NEL = Connectivity(run, group);
    for (Word j = 1; j <= NEL.columns; ++j)
        for (Word n = 1; n <= NEL.rows; ++n)
            if (NEL(n, j) >= 1 && NEL(n, j) <= marks.length)
                marks(NEL(n, j)) = 1;
}

void NoteNodesInNoElement(const Run& run) {
    const ConstIntArray ID = EquationNumbers(run);
    std::vector<std::int32_t> store(static_cast<std::size_t>(ID.length));
    const IntArray marks(store.data(), ID.length);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        MarkNodesOfGroup(run, run.groups[NGE], marks);
    const NodesFound found = FindNodes(ID.length, [&](Word i) { return marks(i) == 0 && ID(i) > 0; });
    if (found.count > 0)
        WriteNote(Count(found.count, "node that is not held stands", "nodes that are not held stand") +
                  " in no element (node " + std::to_string(found.first) +
                  " first): the system has no equation for them");
}

bool IsOne(double value) {
    return value == 0.0 || value == 1.0;
}

// What a card gives and no term takes.
void NoteFactorsWithoutEffect(const Run& run) {
    const HeaderFields& header = run.control.header;
    if (header.NDS == 0 && header.IANIZ != 1) {
        const ConstRealTable multipliers = MaterialMultipliers(run);
        if (!std::all_of(multipliers.data, multipliers.data + multipliers.rows * multipliers.columns, IsOne))
            WriteNote("the multipliers of the material cards take no part without IANIZ 1");
    }
    if (header.NDS != 0 && header.IANIZ == 1)
        WriteNote("IANIZ 1 has no effect with NDS: no card gives multipliers, they are 1");
    for (std::int32_t NGE = 1; NGE <= header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        if (group.NETIP != 2)
            continue;
        const ConstRealArray each = ElementThickness(run, group);
        if (!IsOne(group.THIC) || !std::all_of(each.data, each.data + each.length, IsOne))
            WriteNote("group " + std::to_string(NGE) +
                      ": the thickness of quadrilaterals has no effect on any result");
    }
}

void NoteUnitOfTable(const CorrectionTable& table, double size, std::size_t set) {
    double smallest = HUGE_VAL, largest = 0.0;
    for (const double distance : table.distance) {
        if (distance > 0.0)
            smallest = std::min(smallest, distance);
        largest = std::max(largest, distance);
    }
    if (largest == 0.0 || (largest > kFarBelow * size && smallest < kFarAbove * size))
        return;
    WriteNote("fibre set " + std::to_string(set) + ": the distances of its correction factors lie far " +
              (largest <= kFarBelow * size ? "below" : "above") +
              " the size of the box of the fibres; they are given in nanometres, and the mesh's unit is a "
              "thousand of them");
}

void NoteUnitsOfTables(const Run& run) {
    const HeaderFields& header = run.control.header;
    const double size = std::max({header.ELFIB, header.DFIB, header.WFIB});
    for (std::size_t s = 0; s < run.fibres.sets.size(); ++s) {
        NoteUnitOfTable(run.fibres.sets[s].table, size, s + 1);
        if (run.fibres.sets[s].IANISY == 1)
            NoteUnitOfTable(run.fibres.sets[s].tableY, size, s + 1);
    }
}

} // namespace

void WriteModelNotes(Run& run) {
    NoteKindOfProblem(run);
    NoteSources(run);
    NoteRepeatedNodes(run);
    NoteValuesOfHeldNodes(run);
    NoteNodesInNoElement(run);
    NoteFactorsWithoutEffect(run);
    NoteUnitsOfTables(run);
}

} // namespace zurt
