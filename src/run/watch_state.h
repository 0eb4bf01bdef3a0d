// What a run knows of its checkpoints and of its progress. Written by timeint/ (checkpoint.h and progress.h there).
#pragma once

#include "core/array_view.h"
#include "core/unit_place.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <string>

namespace zurt {

/// What stands ahead of the state in a checkpoint.
struct CheckpointHead {
    std::string version; // of the program
    std::string options; // those that change what a run writes
    Word deckSize = 0;
    std::uint64_t deckSum = 0;         // core/word_sum.h
    std::int32_t problem = 0;          // of the deck, from 1
    std::int32_t step = 0;             // the last one that has been solved and written
    std::array<UnitPlace, 3> places;   // of the units that ContinuedUnits (run/files.h) names
    Word LSK = 0, LRHS = 0, LMAXM = 0; // the partition of `A`
};

struct CheckpointState {
    std::uint64_t deckSum = 0; // of the deck in hand
    std::FILE* source =
        nullptr; // the checkpoint that the run goes on from, behind its head, until it has been taken over
    CheckpointHead head; // its head; problem is 0 when there is none
};

struct ProgressState {
    using Moment = std::chrono::steady_clock::time_point;
    bool onTerminal = false;        // the line is wanted and standard error can show it
    bool consoleOnTerminal = false; // standard output is a terminal, too
    Moment start;                   // of the run
    Moment passStart;               // of the pass in work
    Moment shown;                   // when the terminal had its last line
    std::int32_t firstStep =
        0; // steps of the pass that had been done at its start: not 0 behind a checkpoint
};

} // namespace zurt
