// The table of balances while a problem runs. Written by results/ (results/history.h).
#pragma once

#include "run/fit_state.h"

#include <vector>

namespace zurt {

struct HistoryState {
    bool writes = false;               // the pass in work has rows
    bool hasInlet = false;             // the mesh extends along the direction of the inlet
    CrossSection inlet;                // its cross-section
    std::vector<double> residual;      // 1..NP at 0..NP-1: work space
    std::vector<double> inletResidual; // likewise
};

} // namespace zurt
