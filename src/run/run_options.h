// What the command line asks of the calculation beyond the deck; without it the deck alone decides.
#pragma once

#include <cstdint>

namespace zurt {

/// Most sub-cells in each direction.
constexpr std::int32_t kMostWallCells = 32;

struct RunOptions {
    std::int32_t wallCells =
        0; // sub-cells a direction in elements that a fibre wall cuts; 0: none (microscale/wall_cells.h)
};

} // namespace zurt
