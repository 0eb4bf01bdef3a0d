// What a fit and the direct calculation keep on the heap: flows through the inlet cross-section, and the start of runs.
//
// Plain records, filled by homogenization/mass_monitor.h and homogenization/initial_state.h, empty in other problems.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace zurt {

/// The cross-section of one direction: a plane of the mesh, and the elements that stand on its high side.
struct CrossSection {
    bool found = false;
    std::vector<std::int32_t> nodes;                 // in the plane
    std::vector<std::vector<std::int32_t>> elements; // by group at 1..NGET
};

struct MassTables {
    std::vector<double> FLUXMICRO;       // flow by step 1..NDT at 0..NDT-1, in the model with fibres
    std::vector<double> FLUXEQUIV;       // and in the equivalent medium
    std::array<CrossSection, 4> section; // by direction 1..3
    std::vector<double> nodalSums;       // 1..NP at 0..NP-1: residuals on hand
    std::vector<double>
        startValues; // 1..NP: initial concentration of every node, with or without an equation
};

} // namespace zurt
