// Code under test that ends the run: what it stops with, and what it has written by then.
#pragma once

#include "core/stop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace zurt_test {

/// The kind of stop that ends a run, and its text: what stood on standard error, then the stop's own text if no unit holds it.
struct StopSeen {
    std::string kind = "none";
    std::string text;
};

template <class Action> StopSeen StopOf(const Action& action) {
    StopSeen seen;
    std::string own;
    testing::internal::CaptureStderr();
    try {
        action();
    } catch (const zurt::RunStop& stop) {
        seen.kind = stop.kind == zurt::StopKind::Message ? "message" : "error";
        if (stop.kind == zurt::StopKind::LibraryError)
            own = "zurt: error: " + stop.text + "\n";
    }
    std::fflush(stderr);
    seen.text = testing::internal::GetCapturedStderr() + own;
    return seen;
}

template <class Action>
testing::AssertionResult StopsWith(const char* kind, const std::string& pattern, const Action& action) {
    const StopSeen seen = StopOf(action);
    if (seen.kind == kind && testing::Matches(testing::ContainsRegex(pattern))(seen.text))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "stopped by: " << seen.kind << "\n"
                                       << seen.text << "\nwanted: " << pattern;
}

} // namespace zurt_test

/// The statement ends the run with a library error, or with a message, whose text the pattern is found in.
#define EXPECT_LIBRARY_ERROR(statement, pattern)                                                             \
    EXPECT_TRUE(zurt_test::StopsWith("error", pattern, [&] { statement; }))
#define EXPECT_MESSAGE(statement, pattern)                                                                   \
    EXPECT_TRUE(zurt_test::StopsWith("message", pattern, [&] { statement; }))
