#include "solver/linear_system.h"

#include "solver/system_rows.h"
#include "solver/system_skyline.h"
#include "solver/system_sparse.h"

namespace zurt {

namespace {

/// The one place where the kind of solver is decided.
SolverKind KindOf(const Run& run) {
    if (run.options.solver == SolverChoice::Gradients)
        return SolverKind::Rows;
    return run.sizes.SparseMode == 1 ? SolverKind::Sparse : SolverKind::Skyline;
}

} // namespace

Numbering NumberingOf(const Run& run) {
    return {EquationNumbers(run), run.sizes.JEDN};
}

void BeginLayout(Run& run, const Numbering& numbering) {
    switch (KindOf(run)) {
    case SolverKind::Skyline:
        return BeginSkyline(run, numbering);
    case SolverKind::Rows:
        return BeginRows(run);
    case SolverKind::Sparse:
        return;
    }
}

void LayOutElements(Run& run, const Numbering& numbering, ConstIntTable NEL, Word NDIM, ConstIntArray marks) {
    switch (KindOf(run)) {
    case SolverKind::Skyline:
        return RaiseHeights(run, numbering, NEL, NDIM, marks);
    case SolverKind::Rows:
        return CoupleRows(run, numbering, NEL, NDIM, marks);
    case SolverKind::Sparse:
        return;
    }
}

Word FinishLayout(Run& run, const Numbering& numbering) {
    switch (KindOf(run)) {
    case SolverKind::Skyline:
        return FinishSkyline(run, numbering);
    case SolverKind::Rows:
        FinishRows(run, numbering);
        break;
    case SolverKind::Sparse:
        break;
    }
    return 0;
}

void SetLayoutAside(Run& run, std::int32_t JEDN) {
    switch (KindOf(run)) {
    case SolverKind::Skyline:
        return SetPointersAside(run, JEDN);
    case SolverKind::Rows:
        return SetRowsAside(run);
    case SolverKind::Sparse:
        return;
    }
}

void PutLayoutBack(Run& run) {
    switch (KindOf(run)) {
    case SolverKind::Skyline:
        return PutPointersBack(run);
    case SolverKind::Rows:
        return PutRowsBack(run);
    case SolverKind::Sparse:
        return;
    }
}

void ReportSystem(Run& run) {
    switch (KindOf(run)) {
    case SolverKind::Rows:
        return ReportRows(run);
    case SolverKind::Skyline:
    case SolverKind::Sparse:
        return;
    }
}

ElementLimit ElementLimitOf(const Run& run) {
    switch (KindOf(run)) {
    case SolverKind::Skyline:
        break;
    case SolverKind::Rows:
        return {0, "conjugate gradients"};
    case SolverKind::Sparse:
        return {kMaxSparseNodes, "the sparse solver (SolverSelector 2)"};
    }
    return {0, "the skyline solver"};
}

void ClearMatrix(Run& run) {
    switch (KindOf(run)) {
    case SolverKind::Skyline:
        return ClearStore(run);
    case SolverKind::Rows:
        return ClearRows(run);
    case SolverKind::Sparse:
        return BeginTree(run);
    }
}

void ClearSystem(Run& run) {
    ClearMatrix(run);
    Fill(RightHandSide(run), 0.0);
}

SystemTarget SystemTargetOf(Run& run) {
    SystemTarget system;
    system.kind = KindOf(run);
    system.R = RightHandSide(run);
    system.matrixFlag = run.clock.FactorFlag;
    switch (system.kind) {
    case SolverKind::Skyline:
        OpenStore(run, system);
        break;
    case SolverKind::Rows:
        OpenRows(run, system);
        break;
    case SolverKind::Sparse:
        OpenTree(run, system);
        break;
    }
    return system;
}

void AddElement(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND) {
    switch (system.kind) {
    case SolverKind::Skyline:
        return AddToStore(system, S, FE, LM, ND);
    case SolverKind::Rows:
        return AddToRows(system, S, FE, LM, ND);
    case SolverKind::Sparse:
        return AddToTree(system, S, FE, LM, ND);
    }
}

void LocateElement(const SystemTarget& system, ConstIntArray LM, Word ND, ElementPlaces& places) {
    places.count = 0;
    if (system.matrixFlag == 0)
        return;
    switch (system.kind) {
    case SolverKind::Skyline:
        return LocateInStore(system, LM, ND, places);
    case SolverKind::Rows:
    case SolverKind::Sparse:
        return;
    }
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
    switch (KindOf(run)) {
    case SolverKind::Skyline:
        return SolveStore(run);
    case SolverKind::Rows:
        return SolveRows(run);
    case SolverKind::Sparse:
        return SolveTree(run);
    }
}

} // namespace zurt
