// A run without the driver: its text units stand on temporary files, its deck comes from a text, its working vector
// has any size. For tests of single steps of the job, of card readers, of the time loop and of the results.
#pragma once

#include "run/files.h"
#include "run/run.h"
#include "support/expect_stop.h"
#include "support/run_deck.h"
#include "support/views.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zurt_test {

struct SmallRun : zurt::Run {
    std::string folder;

    explicit SmallRun(const std::string& deckText = "", zurt::Word words = 4000);
    ~SmallRun();
    SmallRun(const SmallRun&) = delete;
    SmallRun& operator=(const SmallRun&) = delete;
};
using RunPointer = std::unique_ptr<SmallRun>;

/// A run for one reader of model data: echo off, one material, NP nodes, all words of `A` stale as behind another problem.
RunPointer MakeRun(const std::string& deckText, std::int32_t INDFOR, std::int32_t NP = 1,
                   zurt::Word words = 100000);

/// What the unit holds so far.
std::string Written(zurt::TextUnit& unit);
inline std::string ListingOf(zurt::Run& run) {
    return Written(run.units.listing);
}

/// Turns the listing to standard error, where a death test looks.
void ListOnStandardError(zurt::Run& run);

/// The lines of a text, without their ends.
std::vector<std::string> Lines(const std::string& text);

/// Runs `action`, which must end the run with a message; returns what the unit holds afterwards.
template <class Action> std::string WrittenByStop(zurt::TextUnit& unit, const Action& action) {
    EXPECT_MESSAGE(action(), "");
    return Written(unit);
}

/// The same for an action that takes the listing.
template <class Action> std::string ListingOfStop(const Action& action) {
    SmallRun run;
    return WrittenByStop(run.units.listing, [&] { action(run.units.listing); });
}

} // namespace zurt_test
