#include "microscale/marked_nodes.h"

#include "geometry/radial_nodes.h"
#include "run/partition.h"
#include "solver/skyline_layout.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

namespace zurt {

namespace {

void RaiseGroupHeights(const Run& run, const std::vector<std::int32_t>* marks, const ElementGroup& group,
                       ConstIntArray ID, std::int32_t JEDN, IntArray MHT) {
    const ConstIntTable NEL = Connectivity(run, group);
    std::int32_t LM[kMostNodes];
    for (Word n = 1; n <= group.NET; ++n)
        if (marks == nullptr || (*marks)[static_cast<std::size_t>(n - 1)] != 0)
            RaiseColumnHeights(MHT, ID, NEL, n, IntArray(LM, kMostNodes), group.NDMAX, JEDN);
}

// Element marks of a group under fibres, null for a group that has none.
const std::vector<std::int32_t>* MarksOfGroup(const FibreModel& model, std::int32_t NGE) {
    if (model.groups.empty())
        return nullptr;
    const std::vector<std::int32_t>& marks = model.groups[static_cast<std::size_t>(NGE)].elementMark;
    return marks.empty() ? nullptr : &marks;
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

Word FormLayout(Run& run, const FibreModel& model, ConstIntArray ID, std::int32_t JEDN,
                LayoutElements elements) {
    if (run.sizes.SparseMode == 1)
        return 0;
    const IntArray MAXA = IntSection(run.A, run.control.at.LMAXA, Word{JEDN} + 1);
    Fill(MAXA, 0);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (IsRadial(run.groups[NGE]))
            RaiseRadialHeights(run, run.groups[NGE], ID, JEDN, MAXA);
        else
            RaiseGroupHeights(run, elements == LayoutElements::All ? nullptr : MarksOfGroup(model, NGE),
                              run.groups[NGE], ID, JEDN, MAXA);
    return MakeColumnPointers(MAXA, JEDN);
}

void ReformEquationNumbers(Run& run) {
    const bool all = run.fit.IEHM != 0;
    const IntArray ID = EquationNumbers(run);
    const bool marked = !run.fibres.groups.empty();
    const ConstIntArray marks = IntSection(run.A, run.control.at.LFIBN, marked ? ID.length : 0);
    std::int32_t JEDN = 0;
    for (Word i = 1; i <= ID.length; ++i)
        ID(i) = all || !marked || marks(i) >= 1 ? ++JEDN : 0;
    if (JEDN == run.sizes.JEDN && !run.fit.keptLayout)
        return; // what is there serves all elements
    SetEquations(run, JEDN);
    run.fit.keptLayout = !all;
    SetMatrixLength(run,
                    FormLayout(run, run.fibres, ID, JEDN, all ? LayoutElements::All : LayoutElements::Kept));
}

void ReserveFullLayout(Run& run) {
    const std::int32_t NP = run.control.header.NP;
    if (run.sizes.SparseMode == 0 && Word{NP} + 1 > run.sizes.DiagonalRoom)
        MoveDiagonalPositions(run, NP);
    const IntArray MAXA = DiagonalPositions(run);
    const std::vector<std::int32_t> own(MAXA.data, MAXA.data + MAXA.length);
    std::vector<std::int32_t> everyNode(static_cast<std::size_t>(NP));
    std::iota(everyNode.begin(), everyNode.end(), 1);
    ReserveRoom(run, NP,
                FormLayout(run, run.fibres, ConstIntArray(everyNode.data(), NP), NP, LayoutElements::All));
    std::copy(own.begin(), own.end(), MAXA.data);
}

} // namespace zurt
