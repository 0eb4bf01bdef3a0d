// What a run knows of its checkpoints and of its progress. Written by timeint/ (checkpoint.h and progress.h there).
#pragma once

#include "core/array_view.h"
#include "run/units.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace zurt {

/// Files that a run goes on with; the mass files are the last three of them.
constexpr int kContinuedUnits = 7;

/// What stands ahead of the state in a checkpoint.
struct CheckpointHead {
    std::string version;                          // of the program
    std::string options;                          // those that change what a run writes
    Word deckSize = 0, prescribedSize = 0;        // of the deck, of the file of prescribed values
    std::uint64_t deckSum = 0, prescribedSum = 0; // core/word_sum.h
    std::int32_t problem = 0;                     // of the deck, from 1
    std::int32_t pass = 0;                        // over the steps, from 1, of all problems of the deck
    std::int32_t step = 0;   // of the pass: the last one that has been solved and written
    bool massTables = false; // else the one mass file is that of plain runs, which is written anew
    std::array<UnitPlace, kContinuedUnits> places; // of ContinuedUnits (run/files.h)
    std::vector<FinishedFile> finished;
    Word LSK = 0, LRHS = 0, LMAXM = 0; // the partition of `A`
};

/// Flows of a recorded pass (MassTables in run/fit_state.h), from which a fit takes its decisions; empty of a plain pass.
struct PassFlows {
    std::vector<double> micro, equivalent;
};

struct CheckpointState {
    std::uint64_t deckSum = 0, prescribedSum = 0; // of the files in hand
    std::int32_t pass = 0;                        // in work
    std::int32_t steps = 0;                       // since the last checkpoint
    std::vector<PassFlows> flows;                 // of the passes that have ended
    // The checkpoint that the run goes on from: pass 0 without one; its file, behind the flows, until it is taken over.
    CheckpointHead head;
    std::FILE* source = nullptr;
};

struct ProgressState {
    using Moment = std::chrono::steady_clock::time_point;
    bool onTerminal = false;        // the line is wanted and standard error can show it
    bool consoleOnTerminal = false; // standard output is a terminal, too
    Moment start;                   // of the run
    Moment passStart;               // of the pass in work
    Moment shown;                   // when the terminal had its last line
    std::int32_t firstStep = 0;     // of the pass: those up to it had been done at its start
};

} // namespace zurt
