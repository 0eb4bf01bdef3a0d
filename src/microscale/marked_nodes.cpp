#include "microscale/marked_nodes.h"

#include "geometry/radial_nodes.h"
#include "run/partition.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

namespace zurt {

namespace {

// Element marks of a group under fibres, empty for a group that has none.
ConstIntArray MarksOfGroup(const FibreModel& model, std::int32_t NGE) {
    if (model.groups.empty())
        return {};
    const std::vector<std::int32_t>& marks = model.groups[static_cast<std::size_t>(NGE)].elementMark;
    return {marks.data(), static_cast<Word>(marks.size())};
}

} // namespace

bool LeaveOutUnmarkedNodes(IntArray ID, ConstIntArray marks, std::int32_t& JEDN) {
    if (*std::min_element(marks.data, marks.data + marks.length) >= 1)
        return false;
    JEDN = 0;
    for (Word i = 1; i <= ID.length; ++i) {
        if (ID(i) <= 0)
            continue;
        ID(i) = marks(i) < 1 ? -1 : ++JEDN;
    }
    return true;
}

Word FormLayout(Run& run, const FibreModel& model, const Numbering& numbering, LayoutElements elements) {
    BeginLayout(run, numbering);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        if (IsRadial(group))
            LayOutRadialGroup(run, group, numbering);
        else
            LayOutElements(run, numbering, Connectivity(run, group), group.NDMAX,
                           elements == LayoutElements::All ? ConstIntArray() : MarksOfGroup(model, NGE));
    }
    return FinishLayout(run, numbering);
}

void ReformEquationNumbers(Run& run) {
    const bool all = run.fit.IEHM != 0;
    const IntArray ID = EquationNumbers(run);
    const bool marked = !run.fibres.groups.empty();
    const ConstIntArray marks = IntSection(run.A, run.control.at.LFIBN, marked ? ID.length : 0);
    std::int32_t JEDN = 0;
    for (Word i = 1; i <= ID.length; ++i)
        ID(i) = all || !marked || marks(i) >= 1 ? ++JEDN : 0;
    if (JEDN == run.sizes.JEDN && !run.fibres.keptLayout)
        return; // what is there serves all elements
    SetEquations(run, JEDN);
    run.fibres.keptLayout = !all;
    SetMatrixLength(
        run, FormLayout(run, run.fibres, NumberingOf(run), all ? LayoutElements::All : LayoutElements::Kept));
}

void ReserveFullLayout(Run& run) {
    const std::int32_t NP = run.control.header.NP;
    std::vector<std::int32_t> everyNode(static_cast<std::size_t>(NP));
    std::iota(everyNode.begin(), everyNode.end(), 1);
    SetLayoutAside(run, NP);
    ReserveRoom(run, NP, FormLayout(run, run.fibres, {{everyNode.data(), NP}, NP}, LayoutElements::All));
    PutLayoutBack(run);
}

} // namespace zurt
