// The files for viewers that a run has written so far. Written by results/ (results/vtu_results.h).
#pragma once

#include <cstdint>
#include <string>

namespace zurt {

struct ViewerState {
    std::int32_t problem = 0; // of the last written step, 0: no step has been written
    std::string listed;       // lines of its .pvd file, which is stored anew with each step
};

} // namespace zurt
