#include "solver/system_sparse.h"

#include "core/stop.h"
#include "solver/solver_storage.h"
#include "solver/sparse_assembler.h"
#include "solver/sparse_solver.h"
#include "solver/sparse_tree.h"

#include <algorithm>

namespace zurt {

namespace {

constexpr std::int32_t kBothTriangles = 0; // symmetry flag: every element goes in whole
constexpr std::int32_t kSilent = 0;

} // namespace

void BeginTree(Run& run) {
    SparseTree& tree = StorageOf<SparseTree>(run);
    SparseInit(tree, kBothTriangles, kSilent);
    SparseZeroValues(tree);
}

void OpenTree(Run& run, SystemTarget& system) {
    system.storage = &StorageOf<SparseTree>(run);
}

void AddToTree(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND) {
    if (ND > kMaxSparseNodes)
        StopWithLibraryError("an element of more than 8 nodes has reached the sparse assembler");
    double dense[kMaxSparseNodes * kMaxSparseNodes];
    std::int32_t equations[kMaxSparseNodes];
    const RealTable square(dense, ND, ND);
    Word K = 0;
    for (Word i = 1; i <= ND; ++i) {
        equations[i - 1] = std::max(LM(i), 0); // the assembler drops 0 alone
        for (Word j = i; j <= ND; ++j)
            square(i, j) = square(j, i) = S(++K);
    }
    SparseAddElement(*static_cast<SparseTree*>(system.storage), ND, ConstIntArray(equations, ND), square);
    AddElementVector(system.R, FE, LM, ND);
}

void SolveTree(Run& run) {
    SolveSparseSystem(StorageOf<SparseTree>(run), RightHandSide(run), run.sizes.JEDN, 0, run.units.console,
                      MessageUnit(run), run.pass.SolverReportFlag);
}

} // namespace zurt
