// Orders of convergence of whole runs, printed for docs/verification.md.
#pragma once

#include "support/run_deck.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

namespace zurt_test {

/// What is expected of the errors at `levels` sizes, each twice the one before.
struct OrderCase {
    const char* label;
    int coarsest, levels;
    double order, tolerance;
};

/// Runs `error(size)` at all sizes; returns the last error.
template <class Error> double ExpectOrder(const OrderCase& expected, const Error& error) {
    double previous = 0.0;
    for (int level = 0, size = expected.coarsest; level < expected.levels; ++level, size *= 2) {
        const double now = error(size), order = level > 0 ? Order(previous, now) : NAN;
        std::printf("%-28s %6d %12.3e %8.2f\n", expected.label, size, now, order);
        if (level > 0) {
            EXPECT_NEAR(order, expected.order, expected.tolerance) << expected.label << ", size " << size;
        }
        previous = now;
    }
    return previous;
}

} // namespace zurt_test
