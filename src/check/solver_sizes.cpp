#include "check/solver_sizes.h"

#include "check/node_use.h"
#include "solver/symmetric_rows.h"

namespace zurt {

namespace {

// Heights of the skyline's columns and what couples, from the same walk.
struct Couplings {
    std::vector<std::int32_t> height; // entries above the diagonal, of equation 1..JEDN at 0..JEDN-1
    ElementEquations elements;
};

void AddCouplings(ConstIntArray ID, const std::int32_t* nodes, Word count, Couplings& couplings) {
    std::int32_t LM[kMostLayoutNodes];
    std::int32_t least = 0;
    for (Word k = 0; k < count; ++k) {
        LM[k] = nodes[k] > 0 ? ID(nodes[k]) : 0;
        if (LM[k] > 0 && (least == 0 || LM[k] < least))
            least = LM[k];
    }
    for (Word k = 0; k < count; ++k)
        if (LM[k] > 0) {
            std::int32_t& height = couplings.height[static_cast<std::size_t>(LM[k]) - 1];
            height = height > LM[k] - least ? height : LM[k] - least;
        }
    AddElementEquations(couplings.elements, ConstIntArray(LM, count), count);
}

} // namespace

SystemSize SystemSizeOf(const Run& run) {
    SystemSize size;
    size.problem = run.job.ProblemNumber;
    size.equations = run.sizes.JEDN;
    size.steps = run.control.counts.NDT;
    Couplings couplings;
    couplings.height.resize(static_cast<std::size_t>(run.sizes.JEDN));
    const ConstIntArray ID = EquationNumbers(run);
    ForEachElement(run,
                   [&](const std::int32_t* nodes, Word count) { AddCouplings(ID, nodes, count, couplings); });
    for (const std::int32_t height : couplings.height) {
        size.skylineWords += height + 1.0;
        size.skylineOperations +=
            static_cast<double>(height) * height; // a multiplication and an addition for each pair
    }
    SymmetricRows rows;
    MakePattern(rows, couplings.elements, run.sizes.JEDN);
    size.entries = static_cast<double>(rows.column.size());
    // A product with both triangles, the two substitutions, and the vectors.
    size.gradientsOperations = 8.0 * size.entries + 12.0 * size.equations;
    return size;
}

} // namespace zurt
