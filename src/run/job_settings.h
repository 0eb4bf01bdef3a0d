// How a job was asked for: by the dialogue, or by the command line (job/command_line.h).
#pragma once

#include "run/working_vector.h"

#include <string>
#include <vector>

namespace zurt {

/// Statuses of the process. The dialogue ends with kFinished where a job on the command line ends with kStopped.
constexpr int kFinished = 0;
constexpr int kStopped = 1;     // by a message of the program's own
constexpr int kFailed = 2;      // deck, files, memory, arguments
constexpr int kInterrupted = 3; // by a signal

/// Most sub-cells in each direction.
constexpr std::int32_t kMostWallCells = 32;

/// Who solves the linear systems.
enum class SolverChoice { OfDeck, Skyline, Sparse, Gradients };

/// The residual at which conjugate gradients end, relative to the right-hand side.
constexpr double kUsualTolerance = 1e-11;
/// Most threads.
constexpr std::int32_t kMostThreads = 256;

/// What the command line asks of the calculation beyond the deck; without it the deck alone decides.
struct RunOptions {
    // Sub-cells a direction in elements that a fibre wall cuts; 0: none (microscale/wall_cells.h).
    std::int32_t wallCells = 0;
    SolverChoice solver = SolverChoice::OfDeck;
    double tolerance = kUsualTolerance;
    // Under INDFOR 1 no card is taken by columns (input/card.h).
    bool allFree = false;
    // Threads at work in the loops that have them (core/workers.h); 0: one a processor. No digit depends on it.
    std::int32_t threads = 1;
    std::int32_t checkpoint =
        0;                // steps from one checkpoint to the next (timeint/checkpoint.h); 0: none is written
    std::string restart;  // the checkpoint that the run goes on from, empty: none
    std::string progress; // file for a line a step (timeint/progress.h), empty: none
    bool vtu = false;     // written steps go to files for ParaView, too (results/vtu_results.h)
    // File of prescribed values, empty: none (model/prescribed_file.h).
    std::string prescribed;
    // Rows of a balance a step, beside the listing, and the nodes whose values they hold (results/history.h).
    bool history = false;
    std::vector<std::int32_t> probes;
};

struct JobSettings {
    bool dialogue = true; // file names are asked for on the console; of the fields below only `words` counts
    std::string deck;     // its name, "-" for standard input
    std::string folder;   // of all files that the run writes, with a slash at its end; empty: the current one
    bool force = false;   // files of earlier runs are overwritten
    bool quiet = false;   // nothing on standard output
    bool check =
        false;         // the deck is read and tested, and nothing is solved or written (check/check_report.h)
    bool json = false; // what that finds, as JSON
    Word words = kWorkingVectorSize;
    RunOptions options;
};

} // namespace zurt
