#include "model/curve_lookup.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace zurt {
namespace {

constexpr double kUntouched = -321.0;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Three curves of up to four points: (1, 10) (2, 20) (4, 0); one point (5, 50); a jump (0, 1) (1, 2) (1, 5) (3, 9).
const double kPairs[24] = {1, 10, 5, 50, 0, 1, 2, 20, -9, -9, 1, 2, 4, 0, -9, -9, 1, 5, -9, -9, -9, -9, 3, 9};
// The same in the layout of diffusion curves.
const double kRows[24] = {1, 5, 0, 10, 50, 1, 2, -9, 1, 20, -9, 2, 4, -9, 1, 0, -9, 5, -9, -9, 3, -9, -9, 9};
const std::int32_t kPoints[3] = {3, 1, 4};

struct Question {
    std::int32_t curve;
    double x, ofPairs, ofRows;
    std::int32_t error;
};

// Faults: a stride of the wrong length, an interval closed at its upper end, the wrong side of a jump; a range test on
// constants; extrapolation, or a value written together with the error; an end value given where the caller's own must
// stay, or not given by the diffusion curve.
TEST(CurveLookup, BothLayoutsInterpolateAndReport) {
    const Question questions[] = {{1, 1.0, 10.0, 10.0, 0},
                                  {1, 1.5, 15.0, 15.0, 0},
                                  {1, 2.0, 20.0, 20.0, 0},
                                  {1, 3.5, 5.0, 5.0, 0},
                                  {2, -1e300, 50.0, 50.0, 0},
                                  {2, 5.0, 50.0, 50.0, 0},
                                  {2, kNaN, 50.0, 50.0, 0},
                                  {3, 0.5, 1.5, 1.5, 0},
                                  {3, 1.0, 5.0, 5.0, 0}, // not 2: an interval of no length holds nothing
                                  {3, 2.0, 7.0, 7.0, 0},
                                  {1, 4.0, kUntouched, 0.0, 0},
                                  {1, 4.0 + 0.9e-10, kUntouched, 0.0, 0},
                                  {1, 1.0 - 0.9e-10, kUntouched, 10.0, 0},
                                  {1, 4.0 + 1.1e-10, kUntouched, kUntouched, 1},
                                  {1, 1.0 - 1.1e-10, kUntouched, kUntouched, 1},
                                  {1, 1e9, kUntouched, kUntouched, 1},
                                  {1, kNaN, kUntouched, kUntouched, 1}};
    for (const auto& [curve, x, ofPairs, ofRows, error] : questions) {
        SCOPED_TRACE(x);
        double y = kUntouched, D = kUntouched;
        std::int32_t n = -1;
        EXPECT_EQ(CurveLookup({kPairs, 6, 4}, {kPoints, 3}, curve, x, y, n), error);
        EXPECT_EQ(DiffusionLookup({kRows, 3, 8}, {kPoints, 3}, curve, x, D), error);
        EXPECT_EQ(y, ofPairs);
        EXPECT_EQ(D, ofRows);
        EXPECT_EQ(n, kPoints[curve - 1]);
    }
}

// An interval too far to either side, other bits than the scan gives, ends without their tolerance, an argument outside
// passed as one inside, curves that only the scan knows taken for rising ones.
TEST(RisingCurve, HalvingGivesTheBitsOfTheScan) {
    const std::int32_t counts[] = {2, 3, 4, 5, 8, 9, 21};
    for (const std::int32_t& points : counts) {
        std::vector<double> words;
        for (int p = 0; p < points; ++p)
            words.insert(words.end(), {std::exp(0.3 * p) - 2.0, std::sin(7.0 * p)});
        const double first = words[0], last = words[2 * points - 2];
        const ConstRealTable table(words.data(), 1, 2 * points);
        const ConstIntArray count(&points, 1);
        CurveView curve = DiffusionCurve(table, count, 1);
        ASSERT_TRUE(ArgumentsRise(curve));
        std::vector<double> x{first - 0.9e-10, last, last + 0.9e-10};
        for (int p = 0; p + 1 < points; ++p)
            for (const double part : {0.0, 0.1, 0.7, 1.0 - 1e-15})
                x.push_back(words[2 * p] + part * (words[2 * p + 2] - words[2 * p]));
        std::vector<double> values = x;
        ASSERT_TRUE(LookUpRisingCurve(curve, static_cast<int>(x.size()), values.data()));
        for (std::size_t i = 0; i < x.size(); ++i) {
            double y = kUntouched;
            EXPECT_EQ(DiffusionLookup(table, count, 1, x[i], y), 0);
            EXPECT_EQ(values[i], y) << x[i];
        }
        for (const double outside : {first - 1.1e-10, last + 1.1e-10, kNaN}) {
            double three[3] = {x[3], outside, x[3]};
            EXPECT_FALSE(LookUpRisingCurve(curve, 3, three)) << outside;
        }
        for (const double wrong : {first, kNaN}) {
            words[2] = wrong;
            EXPECT_FALSE(ArgumentsRise(curve));
        }
        curve.points = 1;
        EXPECT_FALSE(ArgumentsRise(curve));
    }
    const double narrow[4] = {0.0, 3.0, 5e-11, 4.0};
    double beyond = 6e-11; // within the tolerance of both ends: the scan takes the first
    EXPECT_FALSE(LookUpRisingCurve({narrow, narrow + 1, 2, 2}, 1, &beyond));
}

TEST(TimeMultiplierLookup, HoldsTheLastValueAndNeverReadsAheadOfTheFirst) {
    const double words[8] = {-999.0, -999.0, 0.0, 2.0, 1.0, 4.0, 3.0, 1.0};
    const ConstRealArray pairs(words + 2, 6);
    const double times[] = {0.25, 1.0, 2.0, 3.0, 50.0, -1.0}, values[] = {2.5, 4.0, 2.5, 1.0, 1.0, 2.0};
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_EQ(TimeMultiplierLookup(pairs, 3, times[i]), values[i]) << times[i];
    EXPECT_EQ(TimeMultiplierLookup(pairs, 1, 7.0), 2.0);
}

// A value set back to 0 between entries, or the curve's end value read where the running value must stand; an entry that
// is not active evaluated; another function named as the one that is not defined.
TEST(TimeFunctionValues, EntryAtTheEndOfItsFunctionTakesTheValueBefore) {
    using Entries = std::vector<std::int32_t>;
    const struct {
        double TIME;
        Entries active, functions;
        std::int32_t undefined;
        std::vector<double> out;
    } cases[] = {{4.0, {1, -3, 0, 1}, {1, 2, 2, 1}, 0, {0.0, 100.0, kUntouched, 100.0}},
                 {1.5, {1, 0, 1, 0}, {1, 1, 2, 1}, 0, {30.0, kUntouched, 100.0, kUntouched}},
                 {0.5, {1, 1, 0, 1}, {2, 3, 1, 2}, 0, {100.0, 3.0, kUntouched, 100.0}},
                 {0.5, {1, 1, 1, 1}, {2, 3, 1, 2}, 1, {100.0, 3.0, kUntouched, kUntouched}},
                 {3.5, {1, 1, 1, 1}, {2, 1, 3, 2}, 3, {100.0, 10.0, kUntouched, kUntouched}}};
    const double multipliers[4] = {2.0, 2.0, 2.0, 2.0};
    for (const auto& [TIME, active, functions, undefined, expected] : cases) {
        std::vector<double> out(4, kUntouched);
        EXPECT_EQ(TimeFunctionValues({kPairs, 6, 4}, {kPoints, 3}, TIME, {active.data(), 4},
                                     {functions.data(), 4}, {multipliers, 4}, 4, {out.data(), 4}),
                  undefined);
        EXPECT_EQ(out, expected) << TIME;
    }
}

} // namespace
} // namespace zurt
