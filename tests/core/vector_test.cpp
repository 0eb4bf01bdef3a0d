#include "core/vector.h"

#include <cmath>
#include <gtest/gtest.h>

namespace zurt {
namespace {

// Faults: the limit compared before the division, with a sign, as the shorter 1e-10, or with equality on the wrong
// side. The limit is a single-precision 1e-10.
TEST(Vector, NormalizeClearsComponentsBelowTheWidenedLimit) {
    const double limit = static_cast<double>(1.0e-10f), below = std::nextafter(limit, 0.0);
    const double vectors[][2][3] = {{{limit, 1.0, -limit}, {limit, 1.0, -limit}},
                                    {{1.0, below, -1.0e-10}, {1.0, 0.0, 0.0}},
                                    {{3.0e6, -4.0e6, 1.0e-5}, {0.6, -0.8, 0.0}},
                                    {{3.0e-12, 4.0e-12, 0.0}, {0.6, 0.8, 0.0}}};
    for (const auto& [given, expected] : vectors) {
        double v[3] = {given[0], given[1], given[2]};
        VectorNormalize(v);
        for (int i = 0; i < 3; ++i)
            EXPECT_DOUBLE_EQ(v[i], expected[i]);
        EXPECT_EQ(v[2], expected[2]);
    }
}

} // namespace
} // namespace zurt
