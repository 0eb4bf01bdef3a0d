// The skyline solver as a row of solver/linear_system.cpp: matrix and column pointers lie in `A`.
#pragma once

#include "solver/solver_row.h"

namespace zurt {

extern const LinearSolver kSkylineSolver;

/// SkylineMatrix: 1..NWK, laid out by MAXA (solver/skyline_layout.h).
inline RealArray SkylineStore(const Run& run) {
    return RealSection(run.A, run.control.at.LSK, run.sizes.NWK);
}

} // namespace zurt
