// How a job was asked for: by the dialogue, or by the command line (job/command_line.h).
#pragma once

#include "run/run_options.h"
#include "run/working_vector.h"

#include <string>

namespace zurt {

/// Statuses of the process. The dialogue ends with kFinished where a job on the command line ends with kStopped.
constexpr int kFinished = 0;
constexpr int kStopped = 1;     // by a message of the program's own
constexpr int kFailed = 2;      // deck, files, memory, arguments
constexpr int kInterrupted = 3; // by a signal

struct JobSettings {
    bool dialogue =
        true; // file names are asked for on the console, and none of the fields below but `words` counts
    std::string deck;   // its name, "-" for standard input
    std::string folder; // of all files that the run writes, with its stroke; empty: the current one
    bool force = false; // files of earlier runs are overwritten
    bool quiet = false; // nothing on standard output
    Word words = kWorkingVectorSize;
    RunOptions options;
};

} // namespace zurt
