// One job in process: a deck from memory goes through the order of the driver, with a small working vector, its files in
// memory, its notes dropped and its work limited (ticks.h). Nothing of a job is left for the next.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zurt_fuzz {

enum class End {
    Finished, // by a card STOP
    Checked,  // a check run
    Stopped,  // by a message of the program's own
    Failed,   // deck, files, memory
    OutOfTicks,
};

/// What a solved problem has written: from here to there.
struct Stretch {
    std::size_t begin = 0, end = 0;
};

/// A problem that was solved to its end.
struct Problem {
    Stretch listing, graphics;
    std::int32_t INDFOR = 0;
    std::int32_t NDT = 0;
    bool asksForResults = false;
    bool listsCards = false;
    bool leavesOutlet = false; // a concentration at held nodes, which a later problem may keep
};

struct Job {
    End end = End::Failed;
    std::string reason; // of a stop
    std::vector<Problem> problems;
    std::size_t bytesRead = 0; // of the deck, ahead of its card STOP, when the job has finished
    std::string listing, graphics;
};

/// Runs the deck. The texts of a job that did not finish are left out.
Job RunJob(std::string_view deck, std::int64_t ticks);

} // namespace zurt_fuzz
