// A budget of work for one job, counted and not timed, so that a deck that asks for hours ends at the same place on
// every machine.
//
// The linker (--wrap, see CMakeLists.txt) leads calls of some functions of the program through ticks.cpp, which counts.
// A tick is about a microsecond.
#pragma once

#include <cstdint>

namespace zurt_fuzz {

constexpr std::int64_t kTicksOfJob = 20000;

/// Begins to count. A job that takes more ticks is stopped as if a signal had come.
void AllowTicks(std::int64_t ticks);

/// What is left; below 0 once the job has been stopped for it.
std::int64_t TicksLeft();

} // namespace zurt_fuzz
