#include "microscale/marked_nodes.h"

#include "elements/radial_nodes.h"
#include "elements/shape_functions.h"
#include "solver/skyline_layout.h"

#include <algorithm>

namespace zurt {

namespace {

void RaiseGroupHeights(const Run& run, const FibreGroup& marks, const ElementGroup& group, IntArray MHT) {
    const std::int32_t JEDN = run.control.state.JEDN;
    const ConstIntTable NEL = Connectivity(run, group);
    const bool byMark = !marks.elementMark.empty();
    std::int32_t LM[kMaxNodes<3>];
    for (Word n = 1; n <= group.NET; ++n)
        if (!byMark || ElementMarked(marks, n))
            RaiseColumnHeights(MHT, EquationNumbers(run), NEL, n, IntArray(LM, kMaxNodes<3>), group.NDMAX,
                               JEDN);
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

void FormKeptLayout(Run& run, const FibreModel& model) {
    RunState& state = run.control.state;
    if (state.SparseMode == 1)
        return;
    const IntArray MAXA = DiagonalPositions(run);
    Fill(MAXA, 0);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (IsRadial(run.groups[NGE]))
            RaiseRadialHeights(run, run.groups[NGE], MAXA);
        else
            RaiseGroupHeights(run, model.groups[static_cast<std::size_t>(NGE)], run.groups[NGE], MAXA);
    state.NWK = MakeColumnPointers(MAXA, state.JEDN);
}

} // namespace zurt
