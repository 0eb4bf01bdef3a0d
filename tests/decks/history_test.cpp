// The table of balances, through the real binary: that it closes, that each column is what its name says, and that nothing
// else changes.
#include "support/bar_deck.h"
#include "support/history_table.h"
#include "support/plane_deck.h"
#include "support/small_decks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace zurt_test {
namespace {

// Concentrations are large: an iteration also ends when its increment is small by itself.
constexpr double kScale = 1e5;
constexpr double kCloses = 1e-10;

// --- decks of all kinds -------------------------------------------------------------------------------------------

const Points kCurve = {{-10 * kScale, 0.2}, {0, 1.0}, {10 * kScale, 11.0}};

// Two quadrilaterals along, one of lines or a brick, with what they can have: a source, held nodes, surfaces.
PlaneDeck Transient(PlaneDeck deck) {
    deck.conductivity = kCurve;
    deck.steps = 4;
    deck.stepSize = 0.02;
    deck.start = kScale;
    deck.EPSTR = 1e-12;
    for (PlaneNode& node : deck.nodes)
        node.held = node.x == 0.0;
    deck.groups[0].IZIP = 1;
    deck.source = {{0, kScale}, {0.05, 3 * kScale}, {1, 4 * kScale}};
    return deck;
}

PlaneDeck Line() {
    PlaneDeck deck;
    for (int i = 0; i <= 4; ++i)
        deck.nodes.push_back({0.25 * i, 0.1 * i});
    PlaneGroup group;
    group.family = 1;
    group.elements = {{{1, 3, 2}, 1, 0.5}, {{3, 5, 4}, 1, 0.5}};
    deck.groups = {group};
    return Transient(deck);
}

PlaneDeck Surfaces(int INDAX) {
    PlaneDeck deck = Transient(Rectangle(3, 2, 0, 1, 0.5, 1.5));
    deck.groups[0].INDAX = INDAX;
    deck.flux = {{0, 2 * kScale}, {1, 5 * kScale}};
    deck.environment = {{0, 3 * kScale}, {1, 2 * kScale}};
    deck.convection = {{-10 * kScale, 1}, {10 * kScale, 3}};
    deck.emissivity = {{-10 * kScale, 1e-8}, {10 * kScale, 1e-8}};
    deck.groups[0].sides = {TopSide(3, 2, 0, {1, 0, 0, 0, 0}), RightSide(3, 0, {0, 1, 1, 0, 0}),
                            RightSide(3, 1, {0, 0, 1, 1, 0})};
    return deck;
}

BarDeck Bar(int NDS, bool plane) {
    BarDeck bar;
    bar.nx = 4;
    bar.NDS = NDS;
    bar.plane = plane;
    bar.fixedFormat = true;
    bar.diffusion = kCurve;
    bar.start = kScale;
    bar.periods = {{3, 0.01}, {2, 0.02}};
    bar.source = true;
    bar.sourceCurve = {{0.0, 0.0}, {0.03, 1e4}, {1.0, 3e4}};
    bar.EPSTA = 1e-10;
    bar.EPSTR = 1e-12;
    bar.MAXIT = 60;
    return bar;
}

std::string DeviceLines() {
    std::string deck = "Lines under NDS\n2 1 0 0\n         5    1    1    1    1    1    0    3    0    1\n";
    deck += "    1    0    0   60  1.00e-10  1.00e-12    1    0\n    1    0\n         4\n      0.02\n";
    for (int i = 1; i <= 5; ++i)
        deck += Print("%10d%5d     %15.6e%15.6e%15.6e%15.6e\n", i, i == 1, 0.25 * i, 0.0, 0.0, 0.0);
    deck += "\n\n    1         4\n    1         2    0    0    2\n";
    for (int i = 1; i <= 4; ++i)
        deck += Print("%8d%8d%8d%5d%5d%5d%5d%5d%5d%10.3f\n", i, i, i + 1, 0, 0, 0, 0, 0, 0, 0.5);
    deck += "    2\n    1    2\n" + Print("%20.6e%20.6e\n%20.6e%20.6e\n", 0.0, 1.0, 10 * kScale, 11.0);
    return deck + "    0    0\n    1\n" + Print("%10.3e\n", kScale) + "STOP\n";
}

// Bricks through which a fibre goes, with and without elements inside it.
std::string Fibres(double diameter) {
    BarDeck bar = Bar(1, false);
    bar.ny = bar.nz = 4;
    bar.NANOCH = 1;
    bar.source = false;
    bar.fibres = OneFibre(0, diameter, {{0.5, 0.5, -0.5}, {0.5, 0.5, 1.5}}, 0.5);
    bar.outlet = OutletCards(1, 0.3 * kScale);
    return Build(bar);
}

// Radial fibres: the last three groups of the small deck, its values made large.
std::string RadialFibres() {
    std::string deck = SmallDeckText("radial fibres");
    const auto replace = [&](const std::string& old, const std::string& by) {
        const std::size_t at = deck.find(old);
        ASSERT_NE(at, std::string::npos) << old;
        deck.replace(at, old.size(), by);
    };
    replace("  0.00e+00  1.00e-08", "  1.00e-10  1.00e-12");
    replace("    9  1.00e-10", "   60  1.00e-10");
    replace("    3    2      1.00    1\n", "    3    2  1.00E+04    1\n");
    replace("    4    2      1.00    0\n", "    4    2  3.00E+04    0\n");
    replace("   -1.0000000000e+03    1.0000000000e+00\n", "   -1.0000000000e+06    1.0000000000e+00\n");
    replace("    1.0000000000e+03    1.0000000000e+00\n", "    1.0000000000e+06    5.0000000000e+00\n");
    replace("\n 1.000e+00\nSTOP", "\n 1.000e+05\nSTOP");
    return deck;
}

const std::string kWithoutSource = "capacity curve"; // its source function is 0

struct BalanceCase {
    std::string name;
    std::string deck;
    std::string prescribed;
};

std::vector<BalanceCase> BalanceCases() {
    PlaneDeck steady = Surfaces(0);
    steady.steps = 0;
    PlaneDeck linear = steady;
    linear.conductivity = {{0, 1}};
    linear.convection = {{0, 2}};
    linear.emissivity = {};
    for (PlaneSide& side : linear.groups[0].sides)
        side.functions[3] = 0;
    PlaneDeck sparse = Surfaces(0);
    sparse.solver = 2;
    return {{"lines", Build(Line()), ""},
            {"quadrilaterals", Build(Surfaces(0)), ""},
            {"axisymmetric", Build(Surfaces(1)), ""},
            {"steady", Build(steady), ""},
            {"steady and linear", Build(linear), ""},
            {"sparse", Build(sparse), ""},
            {"bricks", Build(Bar(0, false)), ""},
            {"lines, NDS 1", DeviceLines(), ""},
            {"quadrilaterals, NDS 1", Build(Bar(1, true)), ""},
            {"bricks, NDS 1", Build(Bar(1, false)), "2\n1 2\n1 2\n0 0\n1 1E6\n1 1 1. 0\n6 1 3. 0\n"},
            {kWithoutSource, SmallDeckText("built-in"), ""},
            {"thin fibre", Fibres(0.1), ""},
            {"thick fibre", Fibres(0.6), ""},
            {"radial fibres", RadialFibres(), ""}};
}

// Faults: a term of the balance that is left out, counted twice or has the wrong sign; a state that is not the converged one;
// nodes without an equation that are passed over.
TEST(History, BalanceClosesForEveryFamily) {
    for (const BalanceCase& one : BalanceCases()) {
        SCOPED_TRACE(one.name);
        const HistoryRun result = RunWithHistory(one.deck, one.prescribed);
        ASSERT_EQ(result.run.status, 0) << result.run.errors;
        const std::vector<double>& error = result.table.at("error");
        ASSERT_FALSE(error.empty());
        for (std::size_t row = 0; row < error.size(); ++row) {
            EXPECT_LT(error[row], kCloses) << "row " << row + 1;
            double through = std::fabs(result.table.at("held")[row]);
            for (const char* name : {"storing", "sources", "flux", "convection", "radiation", "fibres"})
                if (result.table.count(name) > 0) {
                    EXPECT_TRUE(result.table.at(name)[row] != 0.0 || one.name == kWithoutSource) << name;
                    through += std::fabs(result.table.at(name)[row]);
                }
            EXPECT_GT(through, 0.0) << "nothing moves";
        }
    }
}

// --- what the columns say -----------------------------------------------------------------------------------------

double Last(const HistoryTable& table, const std::string& name) {
    return table.at(name).back();
}

// A closed block at rest but for a uniform source: all is known by hand. Faults: amounts by the wrong material or volume,
// capacity left out, a source per step instead of per time.
TEST(History, AmountsAndSourcesOfAUniformBlock) {
    BarDeck bar = Bar(0, false);
    bar.hold = false;
    bar.start = 10.0;
    bar.diffusion = {{-1e6, 1}, {1e6, 1}};
    bar.sourceCurve = {{0.0, 0.0}, {1.0, 5.0}}; // one function: its slope is the source
    std::string deck = Build(bar);
    const std::string capacity = "\n 0.000e+00 1.000e+00\n";
    const std::size_t at = deck.find(capacity);
    ASSERT_NE(at, std::string::npos);
    deck.replace(at, capacity.size(), "\n 0.000e+00 2.500e+00\n");
    const HistoryRun result = RunWithHistory(deck, "", "1,7");
    ASSERT_EQ(result.run.status, 0) << result.run.errors;
    const double volume = 1.0 / 16, time = 0.07; // four cubes of a quarter
    const double c = 10.0 + 5.0 * time / 2.5;
    EXPECT_NEAR(Last(result.table, "time"), time, 1e-14);
    EXPECT_NEAR(Last(result.table, "c_1"), c, 1e-12);
    EXPECT_NEAR(Last(result.table, "c_7"), c, 1e-12);
    EXPECT_NEAR(Last(result.table, "stored"), 2.5 * c * volume, 1e-12);
    EXPECT_NEAR(Last(result.table, "stored_1"), 2.5 * c * volume, 1e-12);
    EXPECT_NEAR(Last(result.table, "storing"), 5.0 * volume, 1e-11);
    EXPECT_NEAR(Last(result.table, "sources"), 5.0 * volume, 1e-13);
    EXPECT_EQ(Last(result.table, "held"), 0.0);
    EXPECT_EQ(result.text.substr(0, result.text.find('\n')),
              "step [1],time [time],iterations [1],ratio [1],stored_1 [amount],stored [amount],"
              "storing [amount/time],held [amount/time],inlet [amount/time],sources [amount/time],"
              "imbalance [amount/time],error [1],c_1 [concentration],c_7 [concentration]");
    EXPECT_EQ(result.table.at("step"), (std::vector<double>{1, 2, 3, 4, 5}));
}

// Materials apart: each group of the bar has its own start value.
TEST(History, AmountsByMaterial) {
    BarDeck bar = Bar(1, false);
    bar.source = bar.hold = false;
    bar.groups = 2;
    bar.groupFactors = {1.0, 0.0};
    bar.across = true;
    bar.startRanges = {{8, 3.0}, {20, 7.0}};
    const HistoryRun result = RunWithHistory(Build(bar));
    ASSERT_EQ(result.run.status, 0) << result.run.errors;
    double sum = 0.0;
    for (const char* name : {"stored_1", "stored_2"})
        sum += Last(result.table, name);
    EXPECT_NEAR(sum, Last(result.table, "stored"), 1e-14);
    // Sections at 3, 3, 7, 7, 7 to begin with: a block's mean is that of its sections; what goes from one to the other stays.
    EXPECT_NEAR(Last(result.table, "stored"), (3.0 / 2 + 3.0 + 7.0 + 7.0 + 7.0 / 2) / 64, 1e-12);
    EXPECT_GT(Last(result.table, "stored_1"), (3.0 / 2 + 3.0 + 7.0 / 2) / 64 - 1e-12);
}

// At rest against each other: convection at one edge, radiation at the other, a flux through the third; by hand.
// Faults: kinds exchanged, a flow out of the mesh counted as one into it.
TEST(History, FlowsThroughSurfaces) {
    PlaneDeck deck = Rectangle(1, 1, 0, 2, 0, 1);
    deck.conductivity = {{0, 1e3}, {4000, 1e3}};
    deck.start = 1000;
    deck.EPSTR = 1e-9;
    deck.flux = {{0, 7}};
    deck.environments = {{{0, 500}}, {{0, 1500}}};
    deck.convection = {{0, 3}};
    deck.emissivity = {{0, 0.8}};
    deck.groups[0].sides = {TopSide(1, 1, 0, {1, 0, 0, 0, 0}), LeftSide(1, 0, {0, 1, 1, 0, 0}),
                            RightSide(1, 0, {0, 0, 2, 1, 0})};
    const HistoryRun result = RunWithHistory(Build(deck), "", "1,2,3,4");
    ASSERT_EQ(result.run.status, 0) << result.run.errors;
    EXPECT_NEAR(Last(result.table, "flux"), 2 * 7.0, 1e-10);
    const double left = 0.5 * (Last(result.table, "c_1") + Last(result.table, "c_3"));
    EXPECT_NEAR(Last(result.table, "convection"), 3 * (500 - left), 1e-6);
    const double right = 0.5 * (Last(result.table, "c_2") + Last(result.table, "c_4"));
    EXPECT_NEAR(Last(result.table, "radiation"), 0.8 * 5.67e-8 * (std::pow(1500, 4) - std::pow(right, 4)),
                1e-3 * Last(result.table, "radiation"));
    EXPECT_GT(Last(result.table, "radiation"), 0.0);
    EXPECT_LT(Last(result.table, "convection"), 0.0);
}

// What fibres give off is what they hold less, and what the continuum holds more.
TEST(History, FibresAndContinuumExchangeWhatTheyHold) {
    const HistoryRun result = RunWithHistory(RadialFibres());
    ASSERT_EQ(result.run.status, 0) << result.run.errors;
    const std::vector<double>&stored = result.table.at("stored"), &fibres = result.table.at("stored_fibres");
    for (std::size_t row = 1; row < stored.size(); ++row) {
        const double dt = result.table.at("time")[row] - result.table.at("time")[row - 1];
        EXPECT_NEAR((fibres[row] - fibres[row - 1]) / dt, result.table.at("fibres")[row],
                    1e-9 * fibres[row] / dt);
        EXPECT_NEAR((stored[row] - stored[row - 1]) / dt, result.table.at("storing")[row],
                    1e-9 * stored[row] / dt);
        EXPECT_NE(result.table.at("fibres")[row], 0.0);
    }
}

// --- the file -----------------------------------------------------------------------------------------------------

// Faults: digits of listing or graphics file that depend on the option; what a curve gave last, kept by a group, not put back.
TEST(History, OtherOutputsStayToTheByte) {
    for (const char* name :
         {"functions", "quadrilaterals", "fibres", "radial fibres", "direct", "two fixed"}) {
        SCOPED_TRACE(name);
        const std::string& deck = SmallDeckText(name);
        const HistoryRun with = RunWithHistory(deck);
        const std::string folder = MakeTemporaryFolder();
        WriteFile(folder + "/zurt.dat", deck);
        const RunResult without = RunProgram(folder, {{"zurt.dat"}, ""});
        EXPECT_EQ(with.run.status, without.status);
        EXPECT_TRUE(with.run.listing == without.listing);
        EXPECT_TRUE(with.run.graphics == without.graphics);
        EXPECT_EQ(with.run.mass, without.mass);
        EXPECT_EQ(with.run.errors, without.errors);
        EXPECT_FALSE(with.text.empty());
    }
}

// A linear transient problem computes no concentrations. Faults: flows of a state that is none.
TEST(History, PlacesWithoutMeaningAreEmpty) {
    BarDeck bar = Bar(0, false);
    bar.diffusion = {{0, 1}};
    const HistoryTable table = RunWithHistory(Build(bar)).table;
    ASSERT_EQ(table.at("held").size(), 5U);
    for (const char* name : {"ratio", "stored", "held", "inlet", "sources", "error"})
        EXPECT_TRUE(std::isnan(Last(table, name))) << name;
    const std::string steady = RunWithHistory(SmallDeckText("steady free")).text;
    EXPECT_FALSE(Contains(steady.substr(0, steady.find('\n')), "stor"));
}

// Faults: rows lost with a run that ends early, a file of an earlier run replaced, a node that the mesh does not have.
TEST(History, RowsOfAnEndedRunStayAndFilesAreNotReplaced) {
    BarDeck bar = Bar(0, false);
    bar.source = false;
    bar.diffusion = {{0.5 * kScale, 1}, {2 * kScale, 1}}; // the middle falls below in the end
    bar.outlet = "";
    bar.hold = false;
    bar.source = true;
    bar.sourceCurve = {{0.0, 0.0}, {0.04, 0.0}, {1.0, 1e8}};
    const HistoryRun ended = RunWithHistory(Build(bar));
    EXPECT_EQ(ended.run.status, 1) << ended.run.errors;
    EXPECT_EQ(ended.table.at("step"), (std::vector<double>{1, 2, 3})) << ended.run.errors;
    const RunResult again = RunProgram(ended.run.folder, {{"--history", "-o", "x", "zurt.dat"}, ""});
    EXPECT_EQ(again.status, 1);
    for (const char* name : {"zurt.lst", "zurt.unv", "MASS-X.LST", "MESSAGES.LST", "ZITEMP"})
        std::filesystem::remove(ended.run.folder + "/x/" + name);
    const RunResult refused = RunProgram(ended.run.folder, {{"--history", "-o", "x", "zurt.dat"}, ""});
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(Contains(refused.errors, "zurt-history.csv exists and would be overwritten"))
        << refused.errors;
    EXPECT_EQ(ReadFile(ended.run.folder + "/x/zurt-history.csv"), ended.text);

    const HistoryRun outside = RunWithHistory(SmallDeckText("free"), "", "1,999");
    EXPECT_EQ(outside.run.status, 2);
    EXPECT_TRUE(Contains(outside.run.errors, "--probe 999: problem 1 has the nodes 1 to "))
        << outside.run.errors;
}

} // namespace
} // namespace zurt_test
