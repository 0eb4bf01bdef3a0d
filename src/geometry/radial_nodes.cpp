#include "geometry/radial_nodes.h"

#include "geometry/radial_views.h"
#include "solver/skyline_layout.h"

namespace zurt {

namespace {

constexpr Word kMostRadialNodes =
    2 * kMaxSubElements + 1; // rows of RadialNodes with room for three-node sub-elements

} // namespace

void SetFibreInitialValues(Run& run, const ElementGroup& group) {
    const ConstIntTable nodes = RadialNodes(run, group);
    const ConstIntArray ID = EquationNumbers(run);
    const RealArray solution = StepSolution(run);
    for (Word n = 1; n <= nodes.columns; ++n)
        for (Word k = 1; k <= nodes.rows; ++k)
            if (nodes(k, n) != 0 && ID(nodes(k, n)) > 0)
                solution(ID(nodes(k, n))) = group.radial.CFIBER0;
}

void SetSubstructureInitialValues(Run& run, const ElementGroup& group) {
    for (const RealTable& values : {FibreValue(run, group), FibreValue0(run, group)})
        for (Word n = 1; n <= values.columns; ++n)
            for (Word k = 1; k <= values.rows; ++k)
                values(k, n) = k < values.rows ? group.radial.CFIBER0 : 0.0;
}

void MarkRadialNodes(const Run& run, const ElementGroup& group, IntArray marks) {
    const ConstIntTable nodes = RadialNodes(run, group);
    for (Word n = 1; n <= nodes.columns; ++n)
        for (Word k = 1; k <= nodes.rows; ++k)
            if (nodes(k, n) != 0)
                ++marks(nodes(k, n));
}

void RaiseRadialHeights(const Run& run, const ElementGroup& group, ConstIntArray ID, Word JEDN,
                        IntArray MHT) {
    const IntTable nodes = RadialNodes(run, group);
    std::int32_t LM[kMostRadialNodes];
    for (Word n = 1; n <= nodes.columns; ++n)
        RaiseColumnHeights(MHT, ID, ConstIntTable(&nodes(1, n), 1, nodes.rows), 1,
                           IntArray(LM, kMostRadialNodes), nodes.rows, JEDN);
}

Word InnerNodesBefore(const Run& run, std::int32_t NGE) {
    Word count = 0;
    for (std::int32_t before = 1; before < NGE; ++before)
        if (IsRadial(run.groups[before]) && run.groups[before].radial.substructured)
            count += run.groups[before].radial.subElements;
    return count;
}

} // namespace zurt
