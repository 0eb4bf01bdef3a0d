// The iteration within a step, and which steps go to listing and graphics file, through the real binary.
#include "support/bar_deck.h"
#include "support/run_deck.h"

#include <cstdlib>

namespace zurt_test {
namespace {

using Steps = std::vector<int>;

// Two bricks, one step, a coefficient that grows with concentration when `growing`.
BarDeck OneStep(bool growing) {
    BarDeck bar;
    bar.nx = 2;
    bar.periods = {{1, 0.05}};
    if (growing)
        bar.diffusion = {{-1000.0, 1.0}, {0.0, 1.0}, {1000.0, 2001.0}};
    return bar;
}

RunResult RunWith(BarDeck bar, int MAXIT, double EPSTR, double EPSTA = 0.0) {
    bar.MAXIT = MAXIT;
    bar.EPSTR = EPSTR;
    bar.EPSTA = EPSTA;
    return RunWell(Build(bar));
}

int Iterations(const RunResult& result) {
    return CountOf(result.console, " ITERATION =");
}

bool Finished(const RunResult& result) {
    return CountOf(result.listing, "S T E P  NUMBER") == 1;
}

// Faults: the limit compared with the count of solves, or tested ahead of convergence; a step given up at the very
// iteration that converges; a reference other than the largest accumulated increment (it makes the first ratio 1), tolerances
// tested at other iterations.
TEST(Equilibrium, LimitIsTestedAfterConvergenceAndTheFirstRatioIsOne) {
    EXPECT_TRUE(Finished(RunWith(OneStep(false), 1, 1e-8))); // a constant coefficient takes two solves
    const int needed = Iterations(RunWith(OneStep(true), 100, 1e-8));
    ASSERT_GT(needed, 3);
    const RunResult enough = RunWith(OneStep(true), needed - 1, 1e-8);
    EXPECT_TRUE(Finished(enough));
    EXPECT_EQ(Iterations(enough), needed);
    EXPECT_EQ(CountOf(enough.listing, " NUMBER OF ITERATIONS ....................... ITER =" +
                                          std::string(needed - 1 < 10 ? 4 : 3, ' ') +
                                          std::to_string(needed - 1) + "\n"),
              1);
    const RunResult short1 = RunWith(OneStep(true), needed - 2, 1e-8);
    EXPECT_FALSE(Finished(short1));
    EXPECT_EQ(Iterations(short1), needed - 1);
    EXPECT_TRUE(Finished(RunWith(OneStep(true), -1, 1e-8))); // a negative limit is never met
    EXPECT_EQ(Iterations(RunWith(OneStep(true), 30, 1.0)), 1);
    EXPECT_GT(Iterations(RunWith(OneStep(true), 30, 0.999)), 1);
    EXPECT_EQ(Iterations(RunWith(OneStep(true), 30, 1e-8, 1e3)), 1);
    EXPECT_EQ(CountOf(enough.console, "   ICR/ICREMSTEP  =  1.0000E+00"), 1);
}

// Faults: bricks formed under another time integration, or a run that ends without the report of the empty system.
TEST(Equilibrium, OtherTimeIntegrationHasAnEmptySystem) {
    BarDeck bar = OneStep(true);
    bar.INTEB = 2;
    EXPECT_EQ(CountOf(RunWell(Build(bar)).listing, "\n\n MATRICA SISTEMA NIJE POZITIVNO DEFINITNA\n"
                                                   "\n PIVOT NIJE POZITIVAN ZA JEDNACINU BR.   1\n"
                                                   "\n PIVOT=  0.000000000000E+00\n"),
              1);
}

Steps StepsBehind(const std::string& text, const std::string& label) {
    const std::vector<double> numbers = NumbersBehind(text, label);
    return {numbers.begin(), numbers.end()};
}

Steps ListedSteps(const RunResult& result) {
    return StepsBehind(result.listing, " S T E P  NUMBER =");
}

constexpr double kStep = 0.5;

// Result numbers in the graphics file, and their steps by their times. Every fourth: a step has four datasets.
struct Graphics {
    Steps numbers, steps;
};

Graphics GraphicsOf(const RunResult& result) {
    const std::vector<double> numbers = NumbersBehind(result.graphics, "SLUCAJ OPTERECENJA:");
    Graphics graphics;
    for (std::size_t k = 0; k < numbers.size(); k += 4) {
        const std::string head = Print("\n         1         1%10.0f\n", numbers[k]);
        graphics.numbers.push_back(static_cast<int>(numbers[k]));
        graphics.steps.push_back(static_cast<int>(NumbersBehind(result.graphics, head).back() / kStep + 0.5));
    }
    return graphics;
}

std::string SmallBar(int steps, int NPRINT, int IGRAF, const char* end = "STOP\n") {
    BarDeck bar;
    bar.nx = 2;
    bar.periods = {{steps, kStep}};
    bar.NPRINT = NPRINT;
    bar.IGRAF = IGRAF;
    bar.end = end;
    return Build(bar);
}

// Faults: the last step not written or printed, the limit NDT / IGRAF not formed or rounded up, a counter that the first
// or the last step does not clear, or that goes on in the second problem; a result number for steps that are not
// written; iterations listed in other steps than those that are printed; nothing printed, and so no graphics.
TEST(StepOutput, AtItsIntervalAndAtTheEnd) {
    const struct {
        std::string deck;
        Steps listed, graphics, iterations;
    } cases[] = {{SmallBar(5, -1, 2), {}, {2, 4, 5}, {1, 2, 3, 4, 5}},
                 {SmallBar(10, 20, 3), {1, 10}, {3, 6, 9, 10}, {1, 10}},
                 {SmallBar(4, 1, 9), {1, 2, 3, 4}, {4}, {1, 2, 3, 4}}, // limit 0
                 {SmallBar(3, 2, -1, "") + SmallBar(6, 6, 2), {1, 2, 3, 1, 6}, {2, 4, 6}, {1, 2, 3, 1, 6}},
                 {SmallBar(17, 5, -1, "") + SmallBar(6, 3, -1),
                  {1, 5, 10, 15, 17, 1, 3, 6},
                  {},
                  {1, 5, 10, 15, 17, 1, 3, 6}}};
    for (const auto& test : cases) {
        const RunResult result = RunWell(test.deck);
        EXPECT_EQ(ListedSteps(result), test.listed);
        EXPECT_EQ(StepsBehind(result.console, " *** END OF TIME STEP NUMBER"), test.listed);
        EXPECT_EQ(StepsBehind(result.listing, " ITERATIONS FOR STEP:"), test.iterations);
        const Graphics graphics = GraphicsOf(result);
        EXPECT_EQ(graphics.steps, test.graphics);
        for (std::size_t i = 0; i < graphics.numbers.size(); ++i)
            EXPECT_EQ(graphics.numbers[i], static_cast<int>(i) + 1);
        EXPECT_EQ(result.graphics.empty(), test.graphics.empty());
        if (test.listed.size() == 8) {
            EXPECT_EQ(CountOf(result.console, " *** END OF TIME STEP NUMBER        15 /     17 ***\n"), 1);
        }
    }
}

// Three steps: the basic data ask for three periods. The source is 1 at time 0, and rises by 3. Faults: a graphics limit
// formed by steady problems; the limit of the problem before lost, by which a later steady problem writes all its steps;
// time that advances in a steady problem; its source as a mean rate since the start of the last step of the problem before.
TEST(StepOutput, SteadyProblemsInheritTheGraphicsLimit) {
    BarDeck bar;
    bar.nx = 2;
    bar.steady = true;
    bar.source = true;
    bar.sourceCurve = {{0.0, 1.0}, {9.0, 28.0}};
    const std::string steady = Replaced(Build(bar), "12 1 1 0 1 1 0 3 0 1 0", "12 1 1 0 3 1 0 3 0 1 0");
    const RunResult alone = RunWell(steady), both = RunWell(SmallBar(4, 1, 2, "") + steady);
    EXPECT_EQ(GraphicsOf(alone).numbers, Steps{3});
    EXPECT_EQ(ListedSteps(alone), (Steps{1, 2, 3}));
    EXPECT_EQ(CountOf(alone.listing, "  T I M E = 0.00000E+00\n"), 3);
    EXPECT_EQ(GraphicsOf(both).numbers, (Steps{1, 2, 1, 2, 3}));
    EXPECT_NEAR(LastConcentrations(both.listing).at(1), 1.0 / 8.0, 1e-6);
}

} // namespace
} // namespace zurt_test
