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

/// What an operation is for each kind of solver; a further kind is asked for in all of them.
template <class Skyline, class Rows, class Sparse>
auto ByKind(SolverKind kind, const Skyline& skyline, const Rows& rows, const Sparse& sparse) {
    if (kind == SolverKind::Skyline)
        return skyline();
    return kind == SolverKind::Rows ? rows() : sparse();
}

/// Of a solver for which there is nothing to be done.
constexpr auto kNothing = [] {};

} // namespace

Numbering NumberingOf(const Run& run) {
    return {EquationNumbers(run), run.sizes.JEDN};
}

void BeginLayout(Run& run, const Numbering& numbering) {
    ByKind(
        KindOf(run), [&] { BeginSkyline(run, numbering); }, [&] { BeginRows(run); }, kNothing);
}

void LayOutElements(Run& run, const Numbering& numbering, ConstIntTable NEL, Word NDIM, ConstIntArray marks) {
    ByKind(
        KindOf(run), [&] { RaiseHeights(run, numbering, NEL, NDIM, marks); },
        [&] { CoupleRows(run, numbering, NEL, NDIM, marks); }, kNothing);
}

Word FinishLayout(Run& run, const Numbering& numbering) {
    return ByKind(
        KindOf(run), [&] { return FinishSkyline(run, numbering); },
        [&] {
            FinishRows(run, numbering);
            return Word{0};
        },
        [] { return Word{0}; });
}

void SetLayoutAside(Run& run, std::int32_t JEDN) {
    ByKind(
        KindOf(run), [&] { SetPointersAside(run, JEDN); }, [&] { SetRowsAside(run); }, kNothing);
}

void PutLayoutBack(Run& run) {
    ByKind(
        KindOf(run), [&] { PutPointersBack(run); }, [&] { PutRowsBack(run); }, kNothing);
}

void ReportSystem(Run& run) {
    ByKind(
        KindOf(run), kNothing, [&] { ReportRows(run); }, kNothing);
}

ElementLimit ElementLimitOf(const Run& run) {
    return ByKind(
        KindOf(run),
        [] {
            return ElementLimit{0, "the skyline solver"};
        },
        [] {
            return ElementLimit{0, "conjugate gradients"};
        },
        [] {
            return ElementLimit{kMaxSparseNodes, "the sparse solver (SolverSelector 2)"};
        });
}

void ClearMatrix(Run& run) {
    ByKind(
        KindOf(run), [&] { ClearStore(run); }, [&] { ClearRows(run); }, [&] { BeginTree(run); });
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
    ByKind(
        system.kind, [&] { OpenStore(run, system); }, [&] { OpenRows(run, system); },
        [&] { OpenTree(run, system); });
    return system;
}

void AddElement(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND) {
    ByKind(
        system.kind, [&] { AddToStore(system, S, FE, LM, ND); }, [&] { AddToRows(system, S, FE, LM, ND); },
        [&] { AddToTree(system, S, FE, LM, ND); });
}

void LocateElement(const SystemTarget& system, ConstIntArray LM, Word ND, ElementPlaces& places) {
    places.count = 0;
    if (system.matrixFlag != 0)
        ByKind(
            system.kind, [&] { LocateInStore(system, LM, ND, places); }, kNothing, kNothing);
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
    ByKind(
        KindOf(run), [&] { SolveStore(run); }, [&] { SolveRows(run); }, [&] { SolveTree(run); });
}

} // namespace zurt
