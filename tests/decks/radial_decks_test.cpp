// Whole runs with radial fibres: what leaves a fibre, where it goes, and that both forms say the same.
#include "orderly_end.h"
#include "support/bar_deck.h"

#include <numeric>

namespace zurt_test {
namespace {

constexpr double kPi = 3.14159265358979;

// Bricks with fibres of one kind; a number of fibres at given nodes.
struct FibreDeck {
    BarDeck bar;
    int ISUB4 = 0, IND4N = 0, NETIP = 4;
    int rings = 5, NSUBEL4MX = 10, NP4DMX = 0;
    double D = 0.05, length = 0.5, radius = 0.2, CFIBER0 = 1.0;
    int IPARTIT = 0;
    double partition = 0.0;
    std::vector<int> surface = {1}; // node at the surface of each fibre
    std::vector<int> common;        // of the one fibre, under IND4N above 0
};

FibreDeck ClosedBrick() {
    FibreDeck deck;
    deck.bar.nx = 1;
    deck.bar.hold = false;
    deck.bar.fixedFormat = true;
    deck.bar.start = 0.0;
    deck.bar.EPSTR = 1e-9;
    deck.bar.MAXIT = 200;
    deck.bar.periods = {{10, 0.02}};
    return deck;
}

int BlockNodes(const BarDeck& bar) {
    return (bar.nx + 1) * (bar.ny + 1) * (bar.nz + 1);
}

std::string NodeList(const std::vector<int>& nodes) {
    std::string card;
    for (const int node : nodes)
        card += Print("%8d", node);
    return card + "\n";
}

std::string Build(const FibreDeck& fibre) {
    BarDeck bar = fibre.bar;
    bar.moreGroupCount = 1;
    const int NET = static_cast<int>(fibre.surface.size());
    const bool inner = fibre.ISUB4 == 1;
    bar.moreGroups = Print("%5d%10d%5d%5d%5d%5d\n", fibre.NETIP, NET, 0, 0, fibre.ISUB4, fibre.IND4N);
    bar.moreGroups += Print("%5d%5d%10.3f%5d\n", fibre.NSUBEL4MX, fibre.NP4DMX, fibre.CFIBER0, fibre.IPARTIT);
    int node = BlockNodes(bar);
    for (int n = 1; n <= NET; ++n) {
        const int surface = fibre.surface[static_cast<std::size_t>(n) - 1];
        bar.moreGroups += Print("%8d       %10.6f%10.6f%10.6f%8d%8d%10.3f%10.3f%10.3f%10.6f\n", n, fibre.D,
                                fibre.length, fibre.radius, fibre.rings + (inner ? 1 : 0),
                                inner ? surface : 0, 0.5, 0.25, 0.125, fibre.partition);
        std::vector<int> nodes;
        for (int i = 0; i < fibre.rings && !inner; ++i) {
            nodes.push_back(++node);
            bar.moreNodes += Print("%10d%5d     %15.8e%15.8e%15.8e\n", node, 0, 0.1 * i, 2.0, 0.0);
        }
        nodes.push_back(surface);
        if (!inner)
            bar.moreGroups += NodeList(nodes);
        else if (fibre.IND4N > 0)
            bar.moreGroups += NodeList(fibre.common);
    }
    return Build(bar);
}

struct FibreResult {
    RunResult run;
    std::vector<double> nodes;  // of the bricks
    std::vector<double> fibres; // inner nodes, one fibre after the other
};

FibreResult Solve(const FibreDeck& deck) {
    FibreResult result;
    result.run = RunWell(Build(deck));
    // In a universal file a dataset stands between two of these.
    EXPECT_EQ(CountOf(result.run.graphics, "    -1\n") % 2, 0) << "a dataset without an end";
    const std::vector<double> all = LastUnvValues(result.run.graphics, 1);
    const auto inner = all.begin() + std::min<std::ptrdiff_t>(BlockNodes(deck.bar), all.end() - all.begin());
    EXPECT_EQ(all.end() - inner, deck.rings * static_cast<int>(deck.surface.size())) << result.run.errors;
    result.nodes.assign(all.begin(), inner);
    result.fibres.assign(inner, all.end());
    return result;
}

// Integral over a fibre of values that are linear between its nodes; `c` from the axis to the surface.
double Stored(const FibreDeck& deck, const std::vector<double>& c) {
    const double dr = deck.radius / deck.rings;
    double sum = 0.0;
    for (int i = 0; i < deck.rings; ++i) {
        const double r = i * dr, a = c[static_cast<std::size_t>(i)], b = c[static_cast<std::size_t>(i) + 1];
        sum += dr * (a * (r / 2.0 + dr / 6.0) + b * (r / 2.0 + dr / 3.0));
    }
    return 2.0 * kPi * deck.length * sum;
}

// All that the closed brick and its first fibre hold; a brick of side 1 has 1/8 at each node.
double Held(const FibreDeck& deck, const FibreResult& result, double ratio = 1.0) {
    std::vector<double> c(result.fibres.begin(), result.fibres.begin() + deck.rings);
    c.push_back(ratio * result.nodes[static_cast<std::size_t>(deck.surface[0]) - 1]);
    return std::accumulate(result.nodes.begin(), result.nodes.end(), 0.0) / 8.0 + Stored(deck, c);
}

void ExpectSame(const std::vector<double>& a, const std::vector<double>& b, std::size_t count) {
    ASSERT_GE(a.size(), count);
    ASSERT_GE(b.size(), count);
    for (std::size_t i = 0; i < count; ++i)
        EXPECT_NEAR(a[i], b[i], 1.1e-5) << i; // the last digit of values below 1
}

// Faults: rings out of place, a capacity without its share of the radius, a start value of the surface or of the fibre.
// Both forms, and without any equation at all in the second.
TEST(RadialDecks, HeldSurfaceFollowsTheCylinderSeries) {
    FibreDeck deck = ClosedBrick();
    deck.bar.hold = true;
    deck.bar.start = deck.CFIBER0 = deck.D = deck.radius = deck.length = 1.0;
    deck.bar.periods = {{200, 0.0005}};
    deck.rings = 10;
    for (const int ISUB4 : {0, 1}) {
        deck.ISUB4 = ISUB4;
        std::vector<double> c = Solve(deck).fibres;
        ASSERT_EQ(c.size(), 10U);
        EXPECT_NEAR(c[0], 0.848355, 0.009) << "the axis converges with h**2 log h";
        c.push_back(0.0);
        EXPECT_NEAR(1.0 - Stored(deck, c) / kPi, 0.605824, 0.003);
    }
}

// A bar that starts full with its fibres and empties through its held ends. A substructured fibre with its flux in four or
// eight parts is as many assembled fibres of a part of its length, where all those nodes are alike. Faults: flux with a
// wrong sign, share or node, start values of a step taken in each iteration, a solver that forgets part of the matrix.
TEST(RadialDecks, BothFormsAndBothSolversAgree) {
    for (const int IND4N : {0, 1, 2}) {
        FibreDeck deck = ClosedBrick();
        deck.bar.hold = true;
        deck.bar.start = 1.0;
        deck.radius = 0.1;
        deck.bar.nx = IND4N == 2 ? 3 : 2;
        deck.bar.NPRINT = 3;
        std::vector<int> inside;
        for (int i = 1; i < deck.bar.nx; ++i)
            for (int j = 0; j < 4; ++j)
                inside.push_back(GridNode(deck.bar, i, j % 2, j / 2));
        deck.surface = IND4N == 0 ? std::vector<int>{inside[2]} : inside;
        deck.common = inside;
        FibreDeck parts = deck;
        parts.length /= static_cast<double>(deck.surface.size());
        deck.ISUB4 = 1;
        deck.IND4N = IND4N;
        deck.surface.resize(1);
        const FibreResult assembled = Solve(parts), substructured = Solve(deck);
        parts.bar.solver = deck.bar.solver = 2;
        for (const FibreResult& result : {substructured, Solve(parts), Solve(deck)}) {
            ExpectSame(assembled.nodes, result.nodes, assembled.nodes.size());
            ExpectSame(assembled.fibres, result.fibres, 5);
        }
        EXPECT_GT(assembled.fibres[0], 1.2 * assembled.nodes[static_cast<std::size_t>(inside[0]) - 1]);
    }
}

// A closed brick at zero and a full fibre. The surface node starts with CFIBER0 when the fibre is assembled, with the
// continuum's value when it is not. Faults: flux that gets lost or is counted twice between fibre and continuum.
TEST(RadialDecks, WhatLeavesTheFibreEntersTheBrick) {
    FibreDeck deck = ClosedBrick();
    const std::vector<double> full(6, 1.0);
    EXPECT_NEAR(Held(deck, Solve(deck)), Stored(deck, full) + 0.125, 2e-6);
    deck.NETIP = -3; // every other element type is this family; the start value comes with 4 alone
    EXPECT_EQ(Held(deck, Solve(deck)), 0.0);
    deck.NETIP = 17;
    deck.ISUB4 = 1;
    const double start = Stored(deck, {1.0, 1.0, 1.0, 1.0, 1.0, 0.0});
    for (const int IND4N : {0, 1, 2}) {
        deck.IND4N = IND4N;
        deck.common = {1, 2, 3, 4, 5, 6, 7, 8};
        EXPECT_NEAR(Held(deck, Solve(deck)), start, 2e-6) << "IND4N " << IND4N;
    }
}

// After a long time nothing moves any more. Faults: the ratio on the wrong side, on the axis, or on the load alone, so
// that mass appears; a partition value that acts in a substructured fibre.
TEST(RadialDecks, PartitionIsTheRatioAtTheSurface) {
    FibreDeck deck = ClosedBrick();
    deck.bar.periods = {{40, 5.0}};
    deck.IPARTIT = 1;
    deck.partition = 0.4;
    const FibreResult result = Solve(deck);
    ASSERT_EQ(result.nodes.size(), 8U);
    for (const double c : result.fibres)
        EXPECT_NEAR(c, 0.4 * result.nodes[0], 3e-5 * c);
    const double start = Stored(deck, {1.0, 1.0, 1.0, 1.0, 1.0, 0.4}) + 0.125;
    EXPECT_NEAR(Held(deck, result, 0.4), start, 5e-6);
    deck.ISUB4 = 1;
    const FibreResult substructured = Solve(deck);
    EXPECT_NEAR(substructured.fibres[2], substructured.nodes[0], 1e-5);
    EXPECT_TRUE(Contains(substructured.run.errors, "partition values act with ISUB4 0 alone"));
}

// With rates of 0 the polymer stays as it is: the same as a card with its coefficient, and a partition value over the
// porosity. Faults: the law taken at a wrong time, or the solid fraction in the place of the porosity.
TEST(RadialDecks, DegradationReplacesTheCoefficientOfTheCard) {
    FibreDeck deck = ClosedBrick();
    deck.bar.NDS = 2;
    deck.bar.NANOCH = 1;
    deck.bar.NULAZ = 2;
    deck.IPARTIT = 1;
    deck.D = (0.02 * 0.75 + 0.3 * 2.0 * 0.25) / (0.75 + 2.0 * 0.25);
    deck.partition = 0.5 / 0.25;
    const FibreResult plain = Solve(deck);
    deck.D = 9.0;
    deck.partition = 0.5;
    const double law[] = {1.0, 0.25, 2.0, 0.0, 0.0, 0.02, 0.3};
    std::string cards = Print("1.0000\n%25d\n", 1);
    for (const double value : law)
        cards += Print("%10.4f", value);
    const std::string text =
        Replaced(Build(deck), "1.0000\n\n", cards + "\n"); // behind the first device card
    ExpectSame(LastUnvValues(plain.run.graphics, 1), LastUnvValues(RunDeck(text).graphics, 1), 13);
}

// Fibres that take brick nodes out of the model leave those of radial fibres in it. Faults: radial nodes without an
// equation, a skyline without room for their couplings; what a substructured fibre gives to a node that is taken out is lost
// unsaid, nodes that stay are refused, too.
TEST(RadialDecks, FibreSetsLeaveRadialNodesTheirEquations) {
    FibreDeck deck = ClosedBrick();
    deck.bar.nx = 4;
    deck.bar.NDS = 2;
    deck.bar.NANOCH = 1;
    deck.bar.NULAZ = 2;
    deck.bar.width = 0.25;
    deck.bar.fibres = OneFibre(0, 0.9, {{1.0, 0.1, 0.1}}, 1.0);
    deck.surface = {6}; // the first section, which is in no fibre
    const FibreResult skyline = Solve(deck);
    EXPECT_EQ(skyline.nodes[4], 0.0) << "the last section lies in the fibre";
    EXPECT_GT(skyline.fibres[0], skyline.nodes[5]);
    EXPECT_GT(skyline.nodes[5], 0.0);
    deck.bar.solver = 2;
    const FibreResult sparse = Solve(deck);
    ExpectSame(skyline.nodes, sparse.nodes, 20);
    ExpectSame(skyline.fibres, sparse.fibres, 5);
    deck.ISUB4 = 1;
    RunWell(Build(deck)); // not refused
    deck.surface = {5};
    const RunResult refused = RunDeck(Build(deck));
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(Contains(refused.errors, "node 5, which takes the flux of radial fibre 1")) << refused.errors;
}

// Steady: the fibre has the value of its surface, and nothing is divided by a step of no length.
TEST(RadialDecks, SteadyFibreTakesTheValueOfTheContinuum) {
    FibreDeck deck = ClosedBrick();
    deck.bar.hold = deck.bar.steady = deck.bar.source = true;
    deck.bar.nx = 2;
    deck.surface = {2};
    for (const int ISUB4 : {0, 1}) {
        deck.ISUB4 = ISUB4;
        const FibreResult result = Solve(deck);
        EXPECT_NEAR(result.nodes[1], 0.125, 1e-5);
        EXPECT_NEAR(result.fibres[0], 0.125, 1e-5);
    }
}

void ExpectEnd(const FibreDeck& deck, const std::string& good, const std::string& bad, int status,
               const std::vector<std::string>& words) {
    std::string text = Build(deck);
    ASSERT_NE(text.find(good), std::string::npos) << good;
    const RunResult run = RunDeck(text.replace(text.rfind(good), good.size(), bad), kSecondsToEnd);
    ExpectOrderlyEnd(run, bad);
    EXPECT_EQ(run.status, status) << bad << run.errors;
    for (const std::string& word : words)
        EXPECT_TRUE(Contains((status == 0 ? run.listing : run.errors), word)) << bad << run.errors;
}

TEST(RadialDecks, DefaultsAndRoom) {
    FibreDeck deck = ClosedBrick();
    deck.NSUBEL4MX = 0;
    deck.rings = 1;
    ExpectEnd(deck, "", "", 0, {"NSUBEL4MX =    1", "NP4DMX =    2", "NODEL4MX=    2"});
    deck.NSUBEL4MX = 10;
    deck.rings = 5;
    deck.NP4DMX = 3;
    EXPECT_TRUE(Contains(Solve(deck).run.errors, "two nodes, whatever NP4DMX says"));
    ExpectEnd(deck, Print("%5d%10d", 4, 1), Print("%5d%10d", 4, 6000000), 0,
              {"WORKING VECTOR A FOR READ IN INPUT DATA", "LMAX = 150000"});
}

// Numbers that lie outside what they point into.
TEST(RadialDecks, IndicesOutsideTheirArrays) {
    FibreDeck deck = ClosedBrick();
    const std::string nodes = NodeList({9, 10, 11, 12, 13, 1});
    const std::string card = Print("%8d%8d", 5, 0), element = "       1         0.05";
    for (const int node : {0, -1, 14, 2147483647})
        ExpectEnd(deck, nodes, NodeList({9, 10, node, 12, 13, 1}), 2, {"Radial node card", "NODE"});
    for (const int count : {0, -1, 11, 2147483647})
        ExpectEnd(deck, card, Print("%8d%8d", count, 0), 2, {"COUNT"});
    ExpectEnd(deck, element, "      -1         0.05", 2, {"NN"});
    ExpectEnd(deck, "    4         1", "    4         2", 2, {"Radial element card"});
    deck.surface = {1, 2};
    ExpectEnd(deck, "       2         0.05", element, 2, {"element 2 has no card"});
    deck.surface = {1};
    deck.ISUB4 = 1;
    const std::string inner = Print("%8d%8d", 6, 1);
    for (const int node : {0, -1, 9, 2147483647})
        ExpectEnd(deck, inner, Print("%8d%8d", 6, node), 2, {"ContinuumNode"});
    for (const int count : {1, 12})
        ExpectEnd(deck, inner, Print("%8d%8d", count, 1), 2, {"COUNT"});
    for (const int NN : {0, 2})
        ExpectEnd(deck, element, Print("%8d         0.05", NN), 2, {"NN"});
    for (const int IND4N : {-1, 3})
        ExpectEnd(deck, Print("%5d%5d%5d", 0, 1, 0), Print("%5d%5d%5d", 0, 1, IND4N), 2, {"IND4N"});
    ExpectEnd(deck, Print("%10.6f", 0.2), Print("%10.6f", 0.0), 2, {"not a number"});
    ExpectEnd(deck, Print("%10.6f", 0.05), Print("%10.6f", -5.0), 2, {"field D", "a negative value"});
    deck.IND4N = 2;
    deck.common = {1, 2, 3, 4, 5, 6, 7, 8};
    ExpectEnd(deck, NodeList(deck.common), NodeList({1, 2, 3, 4, 5, 6, 7}), 2, {"Radial node card"});
}

} // namespace
} // namespace zurt_test
