// The driver: start-up, the problem loop, and within it the order of the deck and of the run.
#pragma once

#include "job/run.h"

namespace zurt {

/// Runs the whole job on the console streams given: asks for the deck, goes through its problems, ends the process.
/// `size` is the length of the working vector in words.
[[noreturn]] void JobDriver(std::FILE* consoleInput, std::FILE* consoleOutput, Word size);

} // namespace zurt
