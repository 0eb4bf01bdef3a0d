#include "solver/linear_system.h"

#include "solver/system_rows.h"
#include "solver/system_skyline.h"
#include "solver/system_sparse.h"

#include <algorithm>

namespace zurt {

namespace {

/// The one place where the kind of solver is decided.
SolverKind KindOf(const Run& run) {
    if (run.options.solver == SolverChoice::Gradients)
        return SolverKind::Rows;
    return run.sizes.SparseMode == 1 ? SolverKind::Sparse : SolverKind::Skyline;
}

// AddElementBeside's terms of the matrix; entryOf(i, j, k) is the word of nodes i and j, the k-th of the packed matrix.
template <class EntryOf>
void AddTermsBeside(ConstRealArray S, ConstIntArray LM, Word ND, const bool* shared,
                    std::vector<DeferredTerm>& deferred, const EntryOf& entryOf) {
    for (Word i = 1, k = 1; i <= ND; ++i)
        for (Word j = i; j <= ND; ++j, ++k) {
            if (LM(i) <= 0 || LM(j) <= 0)
                continue;
            if (shared[i - 1] && shared[j - 1])
                deferred.push_back({entryOf(i, j, k), S(k)});
            else
                *entryOf(i, j, k) += S(k);
        }
}

/// Room for the terms of one more element.
void TakeTermRoom(std::vector<DeferredTerm>& deferred, Word ND) {
    const std::size_t size = deferred.size() + static_cast<std::size_t>(ND * (ND + 3) / 2);
    if (size > deferred.capacity())
        deferred.reserve(2 * size);
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
    if (system.numbered != nullptr) {
        AddNumberedToRows(system, places.number, S, LM, ND);
    } else if (places.count == 0) {
        AddElement(system, S, FE, LM, ND);
        return;
    } else {
        AddAtPlaces(places, S);
    }
    AddElementVector(system.R, FE, LM, ND);
}

void NumberElements(SystemTarget& system, Word NET, Word NDMAX) {
    if (system.kind == SolverKind::Rows)
        NumberInRows(system, NET, NDMAX);
}

bool AddsSideBySide(const SystemTarget& system) {
    return system.kind != SolverKind::Sparse;
}

void AddElementBeside(const SystemTarget& system, ElementPlaces& places, ConstRealArray S, ConstRealArray FE,
                      ConstIntArray LM, Word ND, const bool* shared, std::vector<DeferredTerm>& deferred) {
    if (std::find(shared, shared + ND, true) == shared + ND)
        return AddLocatedElement(system, places, S, FE, LM, ND);
    TakeTermRoom(deferred, ND);
    if (system.numbered != nullptr) {
        FindInRows(system, places.number, LM, ND);
        AddTermsBeside(S, LM, ND, shared, deferred,
                       [&](Word, Word, Word k) { return EntryInRows(system, places.number, k); });
    } else if (places.count > 0) {
        AddTermsBeside(S, LM, ND, shared, deferred, [&](Word, Word, Word k) { return places.entry[k - 1]; });
    } else if (system.matrixFlag != 0) {
        AddTermsBeside(S, LM, ND, shared, deferred, [&](Word i, Word j, Word) {
            return SkylineEntry(system.matrix, system.MAXA, LM(i), LM(j));
        });
    }
    for (Word i = 1; i <= ND; ++i) {
        if (LM(i) > 0 && shared[i - 1])
            deferred.push_back({&system.R(LM(i)), FE(i)});
        else if (LM(i) > 0)
            system.R(LM(i)) += FE(i);
    }
}

void SolveSystem(Run& run) {
    ByKind(
        KindOf(run), [&] { SolveStore(run); }, [&] { SolveRows(run); }, [&] { SolveTree(run); });
}

} // namespace zurt
