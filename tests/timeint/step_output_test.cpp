// Which steps go to listing and graphics file, through the real binary.
#include "support/bar_deck.h"
#include "support/run_deck.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace zurt_test {
namespace {

using Steps = std::vector<int>;

Steps StepsBehind(const std::string& text, const std::string& label) {
    const std::vector<double> numbers = NumbersBehind(text, label);
    return {numbers.begin(), numbers.end()};
}

std::vector<int> ListedSteps(const RunResult& result) {
    return StepsBehind(result.listing, " S T E P  NUMBER =");
}

// Every fourth number: a step has four datasets.
Steps Fourths(const std::vector<double>& numbers, double unit) {
    Steps steps;
    for (std::size_t k = 0; k < numbers.size(); k += 4)
        steps.push_back(static_cast<int>(numbers[k] / unit + 0.5));
    return steps;
}

// Steps in the graphics file, from their times and the size of all steps.
Steps GraphicsSteps(const RunResult& result, double size) {
    std::vector<double> times;
    for (const double number : NumbersBehind(result.graphics, "SLUCAJ OPTERECENJA:"))
        times.push_back(
            NumbersBehind(result.graphics, Print("\n         1         1%10.0f\n", number)).back());
    return Fourths(times, size);
}

Steps ResultNumbers(const RunResult& result) {
    return Fourths(NumbersBehind(result.graphics, "SLUCAJ OPTERECENJA:"), 1.0);
}

BarDeck SmallBar(int steps, int NPRINT, int IGRAF) {
    BarDeck bar;
    bar.nx = 2;
    bar.periods = {{steps, 0.5}};
    bar.NPRINT = NPRINT;
    bar.IGRAF = IGRAF;
    return bar;
}

// A steady problem of three steps: the basic data ask for three periods. The source is 1 at time 0, and rises by 3.
std::string SteadyDeck() {
    BarDeck bar = SmallBar(1, 1, 1);
    bar.steady = true;
    bar.source = true;
    bar.sourceCurve = {{0.0, 1.0}, {9.0, 28.0}};
    std::string deck = Build(bar);
    const std::string one = "12 1 1 0 1 1 0 3 0 1 0", three = "12 1 1 0 3 1 0 3 0 1 0";
    return deck.replace(deck.find(one), one.size(), three);
}

// Faults: the last step not written, the limit NDT / IGRAF not formed or rounded up, a counter that the last step does
// not clear, a result number of its own for steps that are not written.
TEST(StepOutput, GraphicsAtItsIntervalAndAtTheEnd) {
    const RunResult tens = RunDeck(Build(SmallBar(10, -1, 3)));
    EXPECT_EQ(tens.status, 0) << tens.errors;
    EXPECT_EQ(GraphicsSteps(tens, 0.5), (Steps{3, 6, 9, 10}));
    EXPECT_EQ(ResultNumbers(tens), (Steps{1, 2, 3, 4}));
    EXPECT_EQ(GraphicsSteps(RunDeck(Build(SmallBar(4, 1, 9))), 0.5), Steps{4}); // limit 0
    BarDeck without = SmallBar(3, 1, -1); // its steps count for no graphics of the next problem
    without.end = "";
    EXPECT_EQ(GraphicsSteps(RunDeck(Build(without) + Build(SmallBar(6, 1, 2))), 0.5), (Steps{2, 4, 6}));
}

// Faults: a graphics limit formed by steady problems; the limit of the problem before lost, by which a later steady
// problem writes all its steps; time that advances in a steady problem; its source as a mean rate since the start of
// the last step of the problem before.
TEST(StepOutput, SteadyProblemsInheritTheGraphicsLimit) {
    const RunResult alone = RunDeck(SteadyDeck());
    EXPECT_EQ(alone.status, 0) << alone.errors;
    EXPECT_EQ(ResultNumbers(alone), Steps{3});
    EXPECT_EQ(ListedSteps(alone), (Steps{1, 2, 3}));
    EXPECT_EQ(CountOf(alone.listing, "  T I M E = 0.00000E+00\n"), 3);
    BarDeck first = SmallBar(4, 1, 2);
    first.end = "";
    const RunResult both = RunDeck(Build(first) + SteadyDeck());
    EXPECT_EQ(both.status, 0) << both.errors;
    EXPECT_EQ(ResultNumbers(both), (Steps{1, 2, 1, 2, 3}));
    EXPECT_NEAR(LastConcentrations(both.listing).at(1), 1.0 / 8.0, 1e-6);
}

// Faults: the print counter cleared by the first step, the last step not printed, a second problem that goes on with
// the counter of the first; iterations listed in other steps than those that are printed.
TEST(StepOutput, ListingAtItsInterval) {
    BarDeck first = SmallBar(17, 5, -1);
    first.end = "";
    const RunResult result = RunDeck(Build(first) + Build(SmallBar(6, 3, -1)));
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(ListedSteps(result), (Steps{1, 5, 10, 15, 17, 1, 3, 6}));
    EXPECT_EQ(StepsBehind(result.listing, " ITERATIONS FOR STEP:"), ListedSteps(result));
    EXPECT_EQ(StepsBehind(result.console, " *** END OF TIME STEP NUMBER"), ListedSteps(result));
    EXPECT_EQ(CountOf(result.console, " *** END OF TIME STEP NUMBER        15 /     17 ***\n"), 1);
    EXPECT_EQ(result.graphics, "");
}

// Faults: no graphics when nothing is printed, tables printed all the same.
TEST(StepOutput, GraphicsWithoutPrint) {
    const RunResult result = RunDeck(Build(SmallBar(3, -1, 1)));
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(ListedSteps(result), Steps{});
    EXPECT_EQ(CountOf(result.console, "END OF TIME STEP"), 0);
    EXPECT_EQ(GraphicsSteps(result, 0.5), (Steps{1, 2, 3}));
    EXPECT_EQ(StepsBehind(result.listing, " ITERATIONS FOR STEP:"), (Steps{1, 2, 3}));
}

} // namespace
} // namespace zurt_test
