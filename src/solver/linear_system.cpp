#include "solver/linear_system.h"

#include "solver/solver_row.h"
#include "solver/system_skyline.h"
#include "solver/system_sparse.h"

namespace zurt {

namespace {

/// The one place where the kind of solver is decided.
const LinearSolver& SolverOf(const Run& run) {
    return run.sizes.SparseMode == 1 ? kSparseSolver : kSkylineSolver;
}

} // namespace

Numbering NumberingOf(const Run& run) {
    return {EquationNumbers(run), run.sizes.JEDN};
}

void BeginLayout(Run& run, const Numbering& numbering) {
    SolverOf(run).beginLayout(run, numbering);
}

void LayOutElements(Run& run, const Numbering& numbering, ConstIntTable NEL, Word NDIM, ConstIntArray marks) {
    SolverOf(run).layOutElements(run, numbering, NEL, NDIM, marks);
}

Word FinishLayout(Run& run, const Numbering& numbering) {
    return SolverOf(run).finishLayout(run, numbering);
}

void SetLayoutAside(Run& run, std::int32_t JEDN) {
    SolverOf(run).setLayoutAside(run, JEDN);
}

void PutLayoutBack(Run& run) {
    SolverOf(run).putLayoutBack(run);
}

ElementLimit ElementLimitOf(const Run& run) {
    return {SolverOf(run).mostNodes, SolverOf(run).title};
}

void ClearMatrix(Run& run) {
    SolverOf(run).clearMatrix(run);
}

void ClearSystem(Run& run) {
    ClearMatrix(run);
    Fill(RightHandSide(run), 0.0);
}

SystemTarget SystemTargetOf(Run& run) {
    SystemTarget system;
    system.solver = &SolverOf(run);
    system.R = RightHandSide(run);
    system.matrixFlag = run.clock.FactorFlag;
    system.solver->openMatrix(run, system);
    return system;
}

void AddElement(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND) {
    system.solver->addElement(system, S, FE, LM, ND);
}

void LocateElement(const SystemTarget& system, ConstIntArray LM, Word ND, ElementPlaces& places) {
    places.count = 0;
    if (system.solver->locate != nullptr && system.matrixFlag != 0)
        system.solver->locate(system, LM, ND, places);
}

void AddLocatedElement(const SystemTarget& system, ElementPlaces& places, ConstRealArray S, ConstRealArray FE,
                       ConstIntArray LM, Word ND) {
    if (places.count == 0) {
        AddElement(system, S, FE, LM, ND);
        return;
    }
    AddAtPlaces(places, S);
    AddElementVector(system.R, FE, LM, ND);
}

void SolveSystem(Run& run) {
    SolverOf(run).solve(run);
}

} // namespace zurt
