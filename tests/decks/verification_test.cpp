// Whole runs against closed forms: orders of convergence, the fixed-point iteration, one problem in many guises.
#include "support/bar_deck.h"
#include "support/orders.h"

namespace {

using namespace zurt_test;

// Release from a slab held at zero on both faces (Crank 1975), a = 1/2: amount released over all, centre over start.
constexpr double kReleasedAt02 = 0.504088;
constexpr double kCentreAt02 = 0.772312;

struct SlabResult {
    double released = 0.0;
    double centre = 0.0;
};

SlabResult RunSlab(int elements, int steps) {
    BarDeck bar;
    bar.nx = elements;
    bar.across = true;
    bar.periods = {{steps, 0.05 / steps}}; // Fo = t / a^2 = 0.2
    bar.NPRINT = bar.IGRAF = 100000;
    const std::vector<double> c = LastConcentrations(RunWell(Build(bar)).listing);
    const auto at = [&](int i) { return c.at(static_cast<std::size_t>(GridNode(bar, i, 0, 0) - 1)); };
    double left = 0.0;
    for (int i = 0; i < elements; ++i) // the exact integral of the linear interpolation
        left += (at(i) + at(i + 1)) / (2.0 * elements);
    return {1.0 - left, at(elements / 2)};
}

// Without the first-order error of the step.
SlabResult ExtrapolateInStep(int elements, int steps) {
    const SlabResult coarse = RunSlab(elements, steps), fine = RunSlab(elements, 2 * steps);
    return {2.0 * fine.released - coarse.released, 2.0 * fine.centre - coarse.centre};
}

TEST(Verification, SlabReleaseIsOfFirstOrderInTheStep) {
    const double last = ExpectOrder({"slab, steps to Fo 0.2", 20, 4, 1.0, 0.12},
                                    [](int steps) { return RunSlab(160, steps).centre - kCentreAt02; });
    EXPECT_LT(std::fabs(last), 4e-4);
}

TEST(Verification, SlabReleaseIsOfSecondOrderInTheMesh) {
    ExpectOrder({"slab, elements: centre", 8, 3, 2.0, 0.15},
                [](int elements) { return ExtrapolateInStep(elements, 400).centre - kCentreAt02; });
    ExpectOrder({"slab, elements: released", 8, 3, 2.0, 0.15},
                [](int elements) { return ExtrapolateInStep(elements, 400).released - kReleasedAt02; });
}

// D = 1 + c, source Q, both faces at zero: c = -1 + sqrt(1 + Q x (L - x)).
BarDeck SteadyNonlinearBar(int elements, int nodes) {
    BarDeck bar;
    bar.nx = elements;
    bar.nodes = nodes;
    bar.steady = true;
    bar.source = true;
    bar.sourceCurve = {{0.0, 8.0}};
    bar.start = 0.0;
    bar.diffusion = {{0.0, 1.0}, {10.0, 11.0}};
    bar.EPSTR = 1e-9; // below 1e-10 the default would stand in its place
    bar.MAXIT = 60;
    return bar;
}

// Linear elements are exact at the nodes here (the integral of D over an element is the difference of its primitive), so
// the error is taken in the middle of the elements; quadratic ones have nodes there.
double LargestSteadyError(int elements, int nodes) {
    const std::vector<double> c =
        LastConcentrations(RunWell(Build(SteadyNonlinearBar(elements, nodes))).listing);
    double largest = 0.0;
    for (int e = 0; e < elements; ++e) {
        const std::size_t i = static_cast<std::size_t>(e);
        const double middle = nodes == 20 ? c.at(2 * i + 1) : 0.5 * (c.at(i) + c.at(i + 1));
        const double x = (e + 0.5) / elements, exact = -1.0 + std::sqrt(1.0 + 8.0 * x * (1.0 - x));
        largest = std::max(largest, std::fabs(middle - exact));
    }
    return largest;
}

TEST(Verification, SteadyNonlinearSourceIsOfSecondOrderInTheMesh) {
    const double last = ExpectOrder({"steady 1 + c, elements", 8, 4, 2.0, 0.35},
                                    [](int elements) { return LargestSteadyError(elements, 8); });
    EXPECT_LT(last, 1e-3);
    ExpectOrder({"steady 1 + c, 20 nodes", 8, 2, 2.8, 0.2},
                [](int elements) { return LargestSteadyError(elements, 20); });
}

// The iteration on a bar of linear elements in one dimension: K(c) dc = q - K(c) c, so that the new solution carries the
// known flux Q (x - L / 2) through each element with the coefficient of the old one, 1 + c in its middle.
std::vector<double> FixedPointIncrements(int elements, double Q, int count) {
    const double h = 1.0 / elements;
    std::vector<double> c(static_cast<std::size_t>(elements) + 1, 0.0), increments;
    for (int iteration = 0; iteration < count; ++iteration) {
        std::vector<double> next(c.size(), 0.0);
        double norm = 0.0;
        for (std::size_t e = 0; e + 1 < c.size(); ++e) {
            const double flux = Q * ((static_cast<double>(e) + 0.5) * h - 0.5);
            next[e + 1] = next[e] - flux * h / (1.0 + 0.5 * (c[e] + c[e + 1]));
            norm += 4.0 * std::pow(next[e + 1] - c[e + 1], 2); // four nodes of the bar share each place
        }
        increments.push_back(std::sqrt(norm));
        c = next;
    }
    return increments;
}

TEST(Verification, IterationHistoryIsThatOfTheFixedPoint) {
    const RunResult run = RunDeck(Build(SteadyNonlinearBar(8, 8)));
    const std::vector<double> listed = NumbersBehind(run.listing, ": INCREMENT       = ");
    ASSERT_GT(listed.size(), 8u);
    const std::vector<double> expected = FixedPointIncrements(8, 8.0, static_cast<int>(listed.size()));
    for (std::size_t i = 0; i < listed.size() && expected[i] > 1e-7; ++i)
        EXPECT_NEAR(listed[i], expected[i], 1e-4 * expected[i] + 1e-12) << "iteration " << i;
    // The method field changes nothing.
    BarDeck newton = SteadyNonlinearBar(8, 8);
    newton.NJRAP = 2;
    EXPECT_EQ(ResultsOfListing(RunDeck(Build(newton)).listing), ResultsOfListing(run.listing));
}

// Catches readers of the two formats or of generated cards that drift apart.
TEST(Verification, FreeFixedAndGeneratedDecksGiveTheSameResults) {
    BarDeck bar;
    bar.nx = 8;
    bar.ny = 2;
    bar.diffusion = {{0.0, 1.0}, {2.0, 3.0}};
    bar.periods = {{3, 0.01}, {2, 0.02}};
    const std::string reference = ResultsOfListing(RunDeck(Build(bar)).listing);
    ASSERT_NE(reference, "");
    for (bool fixedFormat : {false, true})
        for (bool generate : {false, true}) {
            bar.fixedFormat = fixedFormat;
            bar.generate = generate;
            EXPECT_EQ(ResultsOfListing(RunDeck(Build(bar)).listing), reference) << fixedFormat << generate;
        }
}

// Catches groups that disturb each other's data blocks, heights or curves. With NDS the same material comes from a diffusion
// curve and the capacity is 1: results must not differ.
TEST(Verification, GroupsAndDeviceCurvesGiveTheSameResults) {
    BarDeck bar;
    bar.nx = 9;
    bar.diffusion = {{0.0, 1.0}, {2.0, 3.0}};
    const std::vector<double> one = LastConcentrations(RunWell(Build(bar)).listing);
    bar.groups = 3;
    const std::vector<double> three = LastConcentrations(RunWell(Build(bar)).listing);
    ASSERT_EQ(one.size(), three.size());
    for (std::size_t i = 0; i < one.size(); ++i)
        EXPECT_NEAR(one[i], three[i], 1e-5) << i;
    bar.groups = bar.NDS = 1;
    bar.fixedFormat = true; // cards of diffusion curves are always taken by columns
    EXPECT_EQ(LastConcentrations(RunWell(Build(bar)).listing), one);
}

// A linear problem shows the step before (a steady one zero: the example two_problems): required, and easy to mend by mistake.
TEST(Verification, LinearProblemsShowTheStepBefore) {
    BarDeck bar;
    bar.diffusion = {{0.0, 1.0}};
    bar.periods = {{1, 0.01}};
    const std::vector<double> first = LastConcentrations(RunWell(Build(bar)).listing);
    EXPECT_EQ(first.at(1), 1.0); // the initial value
    EXPECT_EQ(first.at(0), 0.0); // held
}

} // namespace
