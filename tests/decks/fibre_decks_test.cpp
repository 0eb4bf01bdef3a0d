// Whole runs of problems with a nanochannel and with fibres: what the outlet cards hold, what a time multiplier and the
// tables of fibres make of the coefficients, which elements and nodes take part.
#include "support/bar_deck.h"
#include "support/run_deck.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace zurt_test {
namespace {

BarDeck ChannelDeck(int nx, int across) {
    BarDeck bar;
    bar.nx = nx;
    bar.ny = bar.nz = across;
    bar.width = 1.0 / across;
    bar.fixedFormat = true;
    bar.NDS = bar.NANOCH = 1;
    bar.periods = {{3, 0.02}};
    return bar;
}

std::vector<double> Concentrations(const BarDeck& bar) {
    const RunResult result = RunDeck(Build(bar));
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(Contains(result.listing, "N O D A L")) << result.errors;
    return LastConcentrations(result.listing);
}

void ExpectEqual(const std::vector<double>& values, const std::vector<double>& expected) {
    ASSERT_FALSE(expected.empty());
    ASSERT_EQ(values.size(), expected.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_NEAR(values[i], expected[i], 2e-5 * std::fabs(expected[i])) << "node " << i + 1;
}

void SetCoefficient(BarDeck& bar, double D) {
    bar.diffusion = {{-1000.0, D}, {1000.0, D}};
}

// Two elements, one equation. Faults: held nodes without CONCOUT0 or with it at the start of the step already, where the
// initial value stands.
TEST(Outlet, HeldNodesRiseFromTheInitialValueToTheOutletInTheFirstStep) {
    for (const int NPOUT2 : {0, 1}) {
        BarDeck bar = ChannelDeck(2, 1);
        bar.start = 0.5;
        bar.periods = {{1, 0.1}};
        bar.outlet = OutletCards(NPOUT2, 2.0);
        const std::vector<double> values = Concentrations(bar);
        const double h = 0.5, dt = 0.1, Cii = 2.0 * h / 3.0 / dt, Cih = h / 6.0 / dt;
        const double T = (Cii * 0.5 - 2.0 * Cih * (2.0 - 0.5) + 2.0 / h * 2.0) / (Cii + 2.0 / h);
        ASSERT_EQ(values.size(), 12U);
        EXPECT_EQ(values[0], 2.0);
        EXPECT_EQ(values[2], 2.0);
        EXPECT_NEAR(values[1], T, 1e-5);
    }
}

// Faults: a mode that takes effect, or whose cards are not passed over; an echo that NULAZ switches off.
TEST(Outlet, PairsAndCoefficientsAreEchoedAndChangeNothing) {
    BarDeck bar = ChannelDeck(4, 1);
    bar.NULAZ = 2;
    bar.outlet = OutletCards(1, 0.0);
    const std::vector<double> plain = Concentrations(bar);
    bar.outlet = Print("%5d\n%20.6e%20.6e\n%20.6e%20.6e\n\n", 2, 0.0, 7.0, 1.0, 8.0);
    const RunResult pairs = RunDeck(Build(bar));
    bar.outlet = Print("%5d\n%15.5e%15.5e%15.5e%15.5e\n    0    0    9\n", -3, 1.0, 2.0, 3.0, 4.0);
    const RunResult analytic = RunDeck(Build(bar));
    ExpectEqual(LastConcentrations(pairs.listing), plain);
    ExpectEqual(LastConcentrations(analytic.listing), plain);
    EXPECT_TRUE(Contains(pairs.listing, "   0.10000D+01              0.80000D+01"));
    EXPECT_TRUE(Contains(analytic.listing, "    0.10000D+01    0.20000D+01    0.30000D+01    0.40000D+01"));
}

std::string Multiplier(int ITMF1, int ITMF2, const std::vector<std::pair<double, double>>& pairs) {
    std::string cards =
        Print("%5d\n%13.5e\n%5d%5d%5d\n", 1, 0.0, ITMF1, ITMF2, static_cast<int>(pairs.size()));
    for (const auto& [t, value] : pairs)
        cards += Print("%20.6e%20.6e\n", t, value);
    return cards;
}

// Faults: the multiplier at the start of the step, or 0 behind its last point; one group's switch in another group.
TEST(Outlet, TimeMultiplierActsAtTheEndOfTheStepInItsGroups) {
    BarDeck bar = ChannelDeck(4, 1);
    bar.groups = 2;
    const std::vector<double> whole = Concentrations(bar);
    SetCoefficient(bar, 0.5);
    const std::vector<double> half = Concentrations(bar);
    SetCoefficient(bar, 1.0);
    bar.outlet = Multiplier(1, 1, {{0.0, 0.5}, {0.01, 0.5}});
    ExpectEqual(Concentrations(bar), half);
    bar.NDS = 4; // reads the cards as well
    ExpectEqual(Concentrations(bar), half);
    bar.NDS = 1;
    SetCoefficient(bar, 0.5);
    bar.periods = {{1, 0.02}};
    bar.outlet = Multiplier(1, 1, {{0.0, 0.0}, {0.04, 4.0}});
    const std::vector<double> oneStep = Concentrations(bar);
    bar.outlet = OutletCards(1, 0.0);
    SetCoefficient(bar, 1.0);
    ExpectEqual(oneStep, Concentrations(bar));

    bar.periods = {{3, 0.02}};
    bar.outlet = Multiplier(1, 0, {{0.0, 0.5}});
    const std::vector<double> first = Concentrations(bar);
    bar.outlet = Multiplier(0, 1, {{0.0, 0.5}});
    const std::vector<double> second = Concentrations(bar);
    ASSERT_EQ(first.size(), 20U);
    EXPECT_GT(first[1], second[1]) << "the first half is the slow one";
    EXPECT_NEAR(first[1], second[3], 1e-5) << "and the other way round it mirrors";
    EXPECT_GT(first[1], whole[1]);
}

// Faults: memory for a table of no or endless points; counts that pass for switches.
TEST(Outlet, CountsWithoutAMeaningEndTheRun) {
    BarDeck bar = ChannelDeck(4, 1);
    for (const int NTMF : {0, -4}) {
        bar.outlet = Print("%5d\n%13.5e\n%5d%5d%5d\n", 1, 0.0, 0, 1, NTMF);
        const RunResult result = RunDeck(Build(bar));
        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(Contains(result.errors, "NTMF")) << result.errors;
    }
    bar.outlet = Print("%5d\n%13.5e\n%5d%5d%5d\n", 1, 0.0, 0, 0, 99999);
    EXPECT_EQ(Concentrations(bar).size(), 20U) << "no switch, no table";
    bar.NDS = 2;
    EXPECT_EQ(Concentrations(bar).size(), 20U) << "no outlet cards under NDS 2";
}

// Faults: factors that do not start at 1, are applied twice, to the fluxes alone or not to them; a plain run of the
// equivalent medium whose curve is not lowered by porosity (here 1) and 1.1 times the factor.
TEST(FibreDecks, FactorsOfATableScaleTheCoefficientInFormingAndFluxes) {
    const std::vector<std::array<double, 3>> line = {{0.0, 0.5, 0.5}, {1.0, 0.5, 0.5}};
    for (const double factor : {1.0, 0.5}) {
        for (const int IEHM : {0, 1}) {
            SCOPED_TRACE(Print("factor %.1f, IEHM %d", factor, IEHM));
            BarDeck bar = ChannelDeck(6, 2);
            SetCoefficient(bar, IEHM == 0 ? factor : factor * factor * 1.1);
            const RunResult plain = RunDeck(Build(bar));
            SetCoefficient(bar, 1.0);
            bar.fibres = OneFibre(IEHM, 0.01, line, factor);
            const RunResult fibres = RunDeck(Build(bar));
            EXPECT_EQ(fibres.status, 0) << fibres.errors;
            ExpectEqual(LastConcentrations(fibres.listing), LastConcentrations(plain.listing));
            const std::vector<double> flux = LastUnvValues(fibres.graphics, 3);
            const std::vector<double> expected = LastUnvValues(plain.graphics, 3);
            ASSERT_EQ(flux.size(), expected.size());
            ASSERT_FALSE(flux.empty());
            for (std::size_t i = 0; i < flux.size(); i += 3)
                EXPECT_NEAR(flux[i], expected[i], 1e-4);
        }
    }
}

// Nodes of a block of cubes that some element outside the sphere touches.
std::set<int> NodesInFluid(const BarDeck& bar, double radius) {
    const double g = 1.0 / std::sqrt(3.0), h = 1.0 / bar.nx;
    std::set<int> nodes;
    const auto inFluid = [&](int i, int j, int k, int p) {
        const double x = h * (i + 0.5 + (p % 2 ? g : -g) / 2) - 0.5;
        const double y = h * (j + 0.5 + (p / 2 % 2 ? g : -g) / 2) - 0.5;
        const double z = h * (k + 0.5 + (p / 4 ? g : -g) / 2) - 0.5;
        return std::sqrt(x * x + y * y + z * z) > radius;
    };
    for (int n = 0; n < bar.nx * bar.ny * bar.nz; ++n) {
        const int i = n % bar.nx, j = n / bar.nx % bar.ny, k = n / (bar.nx * bar.ny);
        bool fluid = false;
        for (int p = 0; p < 8; ++p)
            fluid = fluid || inFluid(i, j, k, p);
        for (int c = 0; fluid && c < 8; ++c)
            nodes.insert(GridNode(bar, i + c % 2, j + c / 2 % 2, k + c / 4));
    }
    return nodes;
}

// Faults: elements in a fibre that are formed, or kept ones that are not; nodes outside that reach the sparse solver;
// equations that are not numbered anew.
TEST(FibreDecks, ASphereTakesItsElementsAndNodesOutOfTheModel) {
    BarDeck bar = ChannelDeck(6, 6);
    bar.fibres = OneFibre(0, 0.7, {{0.5, 0.5, 0.5}}, 1.0);
    const std::set<int> fluid = NodesInFluid(bar, 0.35);
    ASSERT_GT(fluid.size(), 300U);
    ASSERT_LT(fluid.size(), 343U);
    bar.solver = 0;
    const RunResult skyline = RunDeck(Build(bar));
    ASSERT_EQ(skyline.status, 0) << skyline.errors;
    const int equations = static_cast<int>(fluid.size()) - 2 * 49;
    EXPECT_TRUE(Contains(skyline.listing, Print("JEDN =%9d", equations))) << equations;
    bar.solver = 2;
    const std::vector<double> values = LastConcentrations(skyline.listing);
    ExpectEqual(Concentrations(bar), values);
    ASSERT_EQ(values.size(), 343U);
    for (int node = 1; node <= 343; ++node) {
        const bool held = (node - 1) % 7 == 0 || (node - 1) % 7 == 6;
        const double value = values[static_cast<std::size_t>(node - 1)];
        EXPECT_EQ(value > 0.0, fluid.count(node) == 1 && !held) << "node " << node;
    }
}

// Faults: sets of a problem that the next one of the deck still sees.
TEST(FibreDecks, FibresEndWithTheirProblem) {
    BarDeck bar = ChannelDeck(6, 2);
    const std::vector<double> plain = Concentrations(bar);
    bar.fibres = OneFibre(0, 0.01, {{0.0, 0.5, 0.5}, {1.0, 0.5, 0.5}}, 0.25);
    bar.end = "";
    BarDeck second = ChannelDeck(6, 2);
    const RunResult both = RunDeck(Build(bar) + "   \n" + Build(second));
    ExpectEqual(LastConcentrations(both.listing), plain);
}

} // namespace
} // namespace zurt_test
