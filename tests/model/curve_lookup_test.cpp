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
struct PairTable {
    double words[24] = {1, 10, 5, 50, 0, 1, 2, 20, -9, -9, 1, 2, 4, 0, -9, -9, 1, 5, -9, -9, -9, -9, 3, 9};
    std::int32_t points[3] = {3, 1, 4};
    ConstRealTable Pairs() const { return {words, 6, 4}; }
    ConstIntArray Points() const { return {points, 3}; }
};

struct Answer {
    double y;
    std::int32_t n, error;
};

Answer Lookup(std::int32_t curve, double x) {
    const PairTable table;
    Answer answer{kUntouched, -1, -1};
    answer.error = CurveLookup(table.Pairs(), table.Points(), curve, x, answer.y, answer.n);
    return answer;
}

// The same curves 1 and 2 in the layout of diffusion curves.
Answer Diffusion(std::int32_t curve, double x) {
    const double words[12] = {1, 5, 10, 50, 2, -9, 20, -9, 4, -9, 0, -9};
    const std::int32_t points[2] = {3, 1};
    Answer answer{kUntouched, 0, -1};
    answer.error = DiffusionLookup(ConstRealTable(words, 2, 6), ConstIntArray(points, 2), curve, x, answer.y);
    return answer;
}

struct Question {
    std::int32_t curve;
    double x, y;
    std::int32_t error;
};

// Faults: a stride of the wrong length, an interval closed at its upper end; a range test on constants; extrapolation, or a
// value written together with the error.
TEST(CurveLookup, BothLayoutsInterpolateAndReport) {
    const Question questions[] = {{1, 1.0, 10.0, 0},
                                  {1, 1.5, 15.0, 0},
                                  {1, 2.0, 20.0, 0},
                                  {1, 3.5, 5.0, 0},
                                  {2, -1e300, 50.0, 0},
                                  {2, 5.0, 50.0, 0},
                                  {2, kNaN, 50.0, 0},
                                  {1, 4.0 + 1.1e-10, kUntouched, 1},
                                  {1, 1.0 - 1.1e-10, kUntouched, 1},
                                  {1, 1e9, kUntouched, 1},
                                  {1, kNaN, kUntouched, 1}};
    for (auto lookup : {Lookup, Diffusion})
        for (const Question& question : questions) {
            const Answer answer = lookup(question.curve, question.x);
            EXPECT_EQ(answer.y, question.y) << question.x;
            EXPECT_EQ(answer.error, question.error) << question.x;
        }
}

// Faults: the wrong side of a jump; an end value given where the caller's own must stay, or not given by the diffusion curve.
TEST(CurveLookup, JumpsAndEnds) {
    EXPECT_EQ(Lookup(1, 3.5).n, 3);
    EXPECT_EQ(Lookup(2, 0.0).n, 1);
    EXPECT_EQ(Lookup(3, 0.5).y, 1.5);
    EXPECT_EQ(Lookup(3, 1.0).y, 5.0); // not 2: an interval of no length holds nothing
    EXPECT_EQ(Lookup(3, 2.0).y, 7.0);
    for (const double x : {4.0, 4.0 + 0.9e-10, 1.0 - 0.9e-10}) {
        EXPECT_EQ(Lookup(1, x).error, 0) << x;
        EXPECT_EQ(Lookup(1, x).y, kUntouched) << x;
        EXPECT_EQ(Lookup(1, x).n, 3) << x;
        EXPECT_EQ(Diffusion(1, x).error, 0) << x;
        EXPECT_EQ(Diffusion(1, x).y, x < 2.0 ? 10.0 : 0.0) << x;
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

// Functions 1 and 2 of the table above, asked at TIME through entries of multiplier 2.
struct Evaluation {
    double out[4] = {kUntouched, kUntouched, kUntouched, kUntouched};
    std::int32_t undefined = 0;
};

Evaluation Evaluate(double TIME, const std::int32_t (&active)[4], const std::int32_t (&functions)[4]) {
    const PairTable table;
    const double multipliers[4] = {2.0, 2.0, 2.0, 2.0};
    Evaluation evaluation;
    evaluation.undefined = TimeFunctionValues(table.Pairs(), table.Points(), TIME, ConstIntArray(active, 4),
                                              ConstIntArray(functions, 4), ConstRealArray(multipliers, 4), 4,
                                              RealArray(evaluation.out, 4));
    return evaluation;
}

// A value set back to 0 between entries, or the curve's end value read where the running value must stand; an entry that
// is not active evaluated.
TEST(TimeFunctionValues, EntryAtTheEndOfItsFunctionTakesTheValueBefore) {
    const Evaluation at = Evaluate(4.0, {1, -3, 0, 1}, {1, 2, 2, 1});
    EXPECT_EQ(at.undefined, 0);
    EXPECT_EQ(at.out[0], 0.0);
    EXPECT_EQ(at.out[1], 100.0);
    EXPECT_EQ(at.out[2], kUntouched);
    EXPECT_EQ(at.out[3], 100.0);
    EXPECT_EQ(Evaluate(1.5, {1, 0, 1, 0}, {1, 1, 2, 1}).out[0], 30.0);
}

TEST(TimeFunctionValues, NamesTheFunctionThatIsNotDefined) {
    EXPECT_EQ(Evaluate(0.5, {1, 1, 1, 1}, {2, 3, 1, 2}).undefined, 1);
    EXPECT_EQ(Evaluate(0.5, {1, 1, 0, 1}, {2, 3, 1, 2}).undefined, 0);
    EXPECT_EQ(Evaluate(3.5, {1, 1, 1, 1}, {2, 1, 3, 2}).undefined, 3);
}

} // namespace
} // namespace zurt
