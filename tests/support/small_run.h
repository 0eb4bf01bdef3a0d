// A run without the driver: its text units stand on temporary files, its deck comes from a text, its working vector
// has any size. For tests of single steps of the job, of the time loop and of the results.
#pragma once

#include "job/files.h"
#include "job/run.h"
#include "support/run_deck.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zurt_test {

struct SmallRun {
    zurt::Run run;
    std::string folder;

    explicit SmallRun(const std::string& deck = "", zurt::Word size = 4000);
    ~SmallRun();
    SmallRun(const SmallRun&) = delete;
    SmallRun& operator=(const SmallRun&) = delete;
};

/// What the unit holds so far.
std::string Written(zurt::TextUnit& unit);

/// Its lines, without their ends.
std::vector<std::string> Lines(const std::string& text);

/// Runs `action`, which must end its process with status 0, in a child; returns what the unit holds afterwards.
template <class Action>
std::string WrittenByStop(SmallRun& small, zurt::TextUnit& unit, const Action& action) {
    zurt::FlushUnits(small.run); // else the child would write what is buffered, too
    EXPECT_EXIT(action(), testing::ExitedWithCode(0), "");
    return ReadFile(unit.name);
}

} // namespace zurt_test
