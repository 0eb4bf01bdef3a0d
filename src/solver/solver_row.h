// What a linear solver is to the rest of the program: a row of operations behind solver/linear_system.h.
//
// A solver is a pair of files that defines one such row; solver/linear_system.cpp chooses among the rows, once. What a solver
// keeps beside the arrays of `A` is a record of its own in the run (StorageOf). Included by solver/ alone.
#pragma once

#include "run/run.h"
#include "solver/linear_system.h"

#include <memory>

namespace zurt {

struct LinearSolver {
    const char* title; // in messages, behind "with"
    Word mostNodes;    // of an element; 0: any number

    // The layout: begun, fed group by group, finished. `finishLayout` returns the words of `A` that the matrix takes.
    void (*beginLayout)(Run& run, const Numbering& numbering);
    void (*layOutElements)(Run& run, const Numbering& numbering, ConstIntTable NEL, Word NDIM,
                           ConstIntArray marks);
    Word (*finishLayout)(Run& run, const Numbering& numbering);
    void (*setLayoutAside)(Run& run, std::int32_t JEDN);
    void (*putLayoutBack)(Run& run);

    // One system: cleared, summed, solved. `openMatrix` sets what the solver needs of the target for its elements;
    // `locate` may be null.
    void (*clearMatrix)(Run& run);
    void (*openMatrix)(Run& run, SystemTarget& system);
    void (*addElement)(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM,
                       Word ND);
    void (*locate)(const SystemTarget& system, ConstIntArray LM, Word ND, ElementPlaces& places);
    void (*solve)(Run& run);
};

/// The record that a solver keeps in the run, made at its first use; what another solver has left there is given up.
template <class Storage> Storage& StorageOf(Run& run) {
    using Owner = std::shared_ptr<Storage>;
    if (std::any_cast<Owner>(&run.solverStorage) == nullptr)
        run.solverStorage = std::make_shared<Storage>();
    return **std::any_cast<Owner>(&run.solverStorage);
}

} // namespace zurt
