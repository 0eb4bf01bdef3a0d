#include "core/vector.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zurt {
namespace {

// Faults: the limit compared before the division, with a sign, as the shorter 1e-10, or with equality on the wrong
// side. The limit is a single-precision 1e-10.
TEST(Vector, NormalizeClearsComponentsBelowTheWidenedLimit) {
    const double limit = static_cast<double>(1.0e-10f);
    double atLimit[3] = {limit, 1.0, -limit};
    VectorNormalize(atLimit);
    EXPECT_EQ(atLimit[0], limit);
    EXPECT_EQ(atLimit[1], 1.0);
    EXPECT_EQ(atLimit[2], -limit);

    double below[3] = {1.0, std::nextafter(limit, 0.0), -1.0e-10};
    VectorNormalize(below);
    EXPECT_EQ(below[0], 1.0);
    EXPECT_EQ(below[1], 0.0);
    EXPECT_EQ(below[2], 0.0);

    double longVector[3] = {3.0e6, -4.0e6, 1.0e-5};
    VectorNormalize(longVector);
    EXPECT_DOUBLE_EQ(longVector[0], 0.6);
    EXPECT_DOUBLE_EQ(longVector[1], -0.8);
    EXPECT_EQ(longVector[2], 0.0);

    double shortVector[3] = {3.0e-12, 4.0e-12, 0.0};
    VectorNormalize(shortVector);
    EXPECT_DOUBLE_EQ(shortVector[0], 0.6);
    EXPECT_DOUBLE_EQ(shortVector[1], 0.8);
}

// Faults: entries without an equation written, repeated numbers overwritten, entries past n taken.
TEST(Vector, AddScatterAddsWhereThereIsAnEquation) {
    double room[6] = {1,  2,  10,
                      20, 30, 40}; // the array begins at the third, so that numbers below 1 would show
    double* target = room + 2;
    const double source[5] = {1, 2, 3, 4, 5};
    const std::int32_t LM[5] = {3, 0, 3, -1, 1};
    AddScatter(RealArray(target, 4), ConstRealArray(source, 5), ConstIntArray(LM, 5), 4);
    EXPECT_EQ(room[0], 1);
    EXPECT_EQ(room[1], 2);
    EXPECT_EQ(target[0], 10);
    EXPECT_EQ(target[1], 20);
    EXPECT_EQ(target[2], 34);
    EXPECT_EQ(target[3], 40);
}

} // namespace
} // namespace zurt
