// What every run must come to, whatever its deck holds: an end of its own with status 0 or 2, in time, in little
// memory, without a finding of the sanitizers.
#pragma once

#include "support/run_deck.h"

#include <sys/resource.h>

namespace zurt_test {

/// A run that takes longer hangs: good decks of this size end in milliseconds.
constexpr int kSecondsToEnd = 20;

#ifdef ZURT_SANITIZE
constexpr bool kSanitized = true;
constexpr long kMostMegabytes = 700; // with the sanitizer's map of the working vector
#else
constexpr bool kSanitized = false;
constexpr long kMostMegabytes = 200; // the working vector takes memory as it is touched
#endif

inline bool EndsOrderly(const RunResult& run) {
    return (run.status == 0 || run.status == 2) && !Contains(run.errors, "Sanitizer") &&
           !Contains(run.errors, "runtime error:") &&
           (run.status == 2) == Contains(run.errors, "zurt: error: ");
}

inline void ExpectOrderlyEnd(const RunResult& run, const std::string& what) {
    EXPECT_TRUE(EndsOrderly(run)) << what << "\nstatus " << run.status << "\n" << run.errors;
}

/// The largest of the runs of this test so far.
inline void ExpectLittleMemory() {
    rusage usage = {};
    getrusage(RUSAGE_CHILDREN, &usage);
    EXPECT_LT(usage.ru_maxrss / 1024, kMostMegabytes);
}

} // namespace zurt_test
