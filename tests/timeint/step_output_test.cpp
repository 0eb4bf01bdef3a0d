// Which steps go to listing and graphics file, through the real binary.
#include "support/bar_deck.h"
#include "support/run_deck.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace zurt_test {
namespace {

// Numbers that follow `label` in the text, one for each place where it stands.
std::vector<int> NumbersBehind(const std::string& text, const std::string& label) {
    std::vector<int> numbers;
    for (std::size_t at = text.find(label); at != std::string::npos; at = text.find(label, at + 1))
        numbers.push_back(std::atoi(text.c_str() + at + label.size()));
    return numbers;
}

std::vector<int> ListedSteps(const RunResult& result) {
    return NumbersBehind(result.listing, " S T E P  NUMBER =");
}

// Steps of the first datasets of the graphics file, from their times and the size of all steps.
std::vector<int> GraphicsSteps(const RunResult& result, double size) {
    std::vector<int> steps;
    const std::string head = "CVORNE KONCENTRACIJE\n";
    const std::string& text = result.graphics;
    for (std::size_t at = text.find(head); at != std::string::npos; at = text.find(head, at + 1)) {
        std::size_t line = at;
        for (int k = 0; k < 6; ++k)
            line = text.find('\n', line) + 1;
        std::string time = text.substr(line, 13);
        time[time.find('D')] = 'E';
        steps.push_back(static_cast<int>(std::atof(time.c_str()) / size + 0.5));
    }
    return steps;
}

std::vector<int> ResultNumbers(const RunResult& result) {
    std::vector<int> numbers;
    const std::vector<int> all = NumbersBehind(result.graphics, "SLUCAJ OPTERECENJA:");
    for (std::size_t k = 0; k < all.size(); k += 4)
        numbers.push_back(all[k]);
    return numbers;
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

using Steps = std::vector<int>;

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
    EXPECT_EQ(NumbersBehind(result.listing, " ITERATIONS FOR STEP:"), ListedSteps(result));
    EXPECT_EQ(NumbersBehind(result.console, " *** END OF TIME STEP NUMBER"), ListedSteps(result));
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
    EXPECT_EQ(NumbersBehind(result.listing, " ITERATIONS FOR STEP:"), (Steps{1, 2, 3}));
}

} // namespace
} // namespace zurt_test
