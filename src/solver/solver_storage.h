// What a linear solver keeps in the run beside the arrays of `A`. Included by solver/ alone.
#pragma once

#include "run/run.h"

#include <memory>

namespace zurt {

/// The record that a solver keeps in the run, made at its first use; what another solver has left there is given up.
template <class Storage> Storage& StorageOf(Run& run) {
    using Owner = std::shared_ptr<Storage>;
    if (std::any_cast<Owner>(&run.solverStorage) == nullptr)
        run.solverStorage = std::make_shared<Storage>();
    return **std::any_cast<Owner>(&run.solverStorage);
}

} // namespace zurt
