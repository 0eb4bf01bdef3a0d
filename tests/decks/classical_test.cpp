// Lines and quadrilaterals in whole runs against closed forms and published values: convection, radiation, flux, rings,
// oblique lines, networks, torsion. Both solvers; the figures stand in docs/verification.md.
#include "geometry/gauss_rules.h"
#include "orderly_end.h"
#include "support/orders.h"
#include "support/plane_deck.h"
#include "support/small_decks.h"

#include <filesystem>
#include <iterator>
#include <regex>

namespace {

using namespace zurt_test;

constexpr double kPi = 3.14159265358979323846;

// One unit of the fifth digit of a printed value of size `about`.
double Digit(double about) {
    return std::pow(10.0, std::floor(std::log10(std::fabs(about))) - 4.0);
}

std::vector<double> Concentrations(const PlaneDeck& deck, RunResult* whole = nullptr) {
    const RunResult run = RunWell(Build(deck));
    EXPECT_EQ(CountOf(run.listing, "END OF JOB"), 1) << run.listing.substr(run.listing.size() / 2);
    std::vector<double> values = LastConcentrations(run.listing);
    if (whole != nullptr)
        *whole = run;
    if (values.size() != deck.nodes.size()) {
        ADD_FAILURE() << "no table of results: " << run.errors;
        values.assign(deck.nodes.size(), 0.0);
    }
    return values;
}

// Concentration of node `number`.
double At(const std::vector<double>& values, int number) {
    return values[static_cast<std::size_t>(number - 1)];
}

// NAFEMS T4: 0.6 x 1.0, k = 52; bottom at 100, left insulated, right and top h = 750 to 0. Counted from 100.
double ValueOfT4(int times, int solver) {
    const int nx = 6 * times, ny = 10 * times;
    PlaneDeck deck = Rectangle(nx, ny, 0.0, 0.6, 0.0, 1.0);
    deck.solver = solver;
    for (int i = 0; i <= nx; ++i)
        deck.nodes[static_cast<std::size_t>(i)].held = true;
    deck.conductivity = {{0.0, 52.0}};
    deck.environment = {{0.0, -100.0}};
    deck.convection = {{0.0, 750.0}};
    for (int j = 0; j < ny; ++j)
        deck.groups[0].sides.push_back(RightSide(nx, j, {0, 1, 1, 0, 0}));
    for (int i = 0; i < nx; ++i)
        deck.groups[0].sides.push_back(TopSide(nx, ny, i, {0, 1, 1, 0, 0}));
    const std::vector<double> values = Concentrations(deck);
    return 100.0 + At(values, GridNode2D(nx, nx, ny / 5));
}

// Faults: an edge term on the wrong edge, of wrong length or lost in one of the solvers, a matrix of an edge left out.
TEST(Classical, T4ConvergesToTheSeries) {
    constexpr double series = 18.2538;
    const double error = ExpectOrder({"T4, elements along x", 12, 3, 2.0, 0.1}, [](int elements) {
        const double skyline = ValueOfT4(elements / 6, 0);
        EXPECT_NEAR(skyline, ValueOfT4(elements / 6, 2), 1.01e-3) << "a digit of the listing";
        return skyline - series;
    });
    EXPECT_NEAR(series + error, 18.3, 0.06) << "the published value";
}

// NAFEMS T2: length 0.1, k = 55.6, 1000 at one end; the other radiates to 300 with emissivity 0.98. The hot end is held
// by a convection to 1000 with a coefficient `hold`. Returns the temperatures of the hot end and of the other.
std::array<double, 2> RunRadiatingEdge(double hold, int elements, int solver) {
    PlaneDeck deck = Rectangle(elements, 1, 0.0, 0.1, 0.0, 0.01);
    deck.solver = solver;
    deck.conductivity = {{0.0, 55.6}};
    deck.environments = {{{0.0, 1000.0}}, {{0.0, 300.0}}};
    deck.convection = {{0.0, hold}};
    deck.emissivity = {{0.0, 0.98}};
    deck.start = 1000.0;
    deck.groups[0].sides = {LeftSide(elements, 0, {0, 1, 1, 0, 0}), RightSide(elements, 0, {0, 0, 2, 1, 0})};
    const std::vector<double> values = Concentrations(deck);
    EXPECT_NEAR(At(values, elements + 1), At(values, 2 * elements + 2), 0.011) << "both corners of the end";
    return {At(values, 1), At(values, elements + 1)};
}

// The end's temperature between the resistance of bar and convection on one side, radiation on the other.
double RadiatingEnd(double hold) {
    double low = 300.0, high = 1000.0;
    for (int i = 0; i < 100; ++i) {
        const double T = 0.5 * (low + high);
        const double in = (1000.0 - T) / (0.1 / 55.6 + 1.0 / hold);
        const double out = 0.98 * 5.67e-8 * (std::pow(T, 4) - std::pow(300.0, 4));
        (in > out ? low : high) = T;
    }
    return low;
}

// Faults: powers of the radiation coefficient, the environment of the side before, the residual form of an edge term.
TEST(Classical, T2RadiatesAsPublished) {
    EXPECT_NEAR(RadiatingEnd(1e12), 927.0, 0.05) << "the reference itself";
    for (const double hold : {1e6, 1e7, 1e8, 1e9}) {
        const auto [hot, edge] = RunRadiatingEdge(hold, 4, 0);
        const double sparse = RunRadiatingEdge(hold, 4, 2)[1];
        std::printf("T2 h = %.0e: %9.3f, sparse %9.3f, exact for this h %10.4f, hot end %9.3f\n", hold, edge,
                    sparse, RadiatingEnd(hold), hot);
        EXPECT_NEAR(edge, RadiatingEnd(hold), 0.011);
        EXPECT_NEAR(sparse, edge, 0.011);
    }
    EXPECT_NEAR(RunRadiatingEdge(1e9, 1, 0)[1], 927.0, 0.05) << "linear along the bar: one element will do";
}

// What flows into a body without another side stays in it: the mean at the end is the sum of flux and step, taken at the
// ends of the steps. Faults: sign and length of an edge flux, its time; a flux lost while the problem iterates; the capacity
// matrix of a quadrilateral.
TEST(Classical, FluxInTimeFillsAClosedSlab) {
    PlaneDeck deck = Rectangle(4, 1, 0.0, 0.5, 0.0, 0.2);
    deck.conductivity = {{-100.0, 1.0}, {100.0, 1.0}};
    deck.steps = 10;
    deck.stepSize = 0.05;
    deck.flux = {{0.0, 0.0}, {1.0, 2.0}}; // q = 2 t
    deck.groups[0].sides = {RightSide(4, 0, {1, 0, 0, 0, 0})};
    for (const int solver : {0, 2}) {
        deck.solver = solver;
        const std::vector<double> values = Concentrations(deck);
        double mean = 0.0, given = 0.0;
        for (int i = 0; i < 4; ++i)
            mean += 0.125 * (At(values, i + 1) + At(values, i + 2));
        for (int n = 1; n <= 10; ++n)
            given += 0.05 * 2.0 * 0.05 * n;
        std::printf("closed slab: mean %.6f, given %.6f\n", mean, given / 0.5);
        EXPECT_NEAR(mean, given / 0.5, 1e-5);
    }
}

// A hollow cylinder with uniform source, both surfaces at zero.
double HollowCylinder(double r, double a, double b, double Q, double k) {
    return Q / (4.0 * k) * (a * a - r * r + (b * b - a * a) * std::log(r / a) / std::log(b / a));
}

using RingErrors = std::array<double, 2>;

// Two rings side by side in one deck, each a group with an end of its own; y is the radius. Largest nodal error of each.
RingErrors RunRings(int elements, int solver) {
    PlaneDeck deck = Rectangle(1, elements, 0.0, 0.4, 0.5, 2.0);
    const PlaneDeck second = Rectangle(1, elements, 7.0, 7.3, 3.0, 4.0);
    const std::size_t shift = deck.nodes.size();
    deck.nodes.insert(deck.nodes.end(), second.nodes.begin(), second.nodes.end());
    deck.groups.push_back(second.groups[0]);
    for (PlaneElement& element : deck.groups[1].elements)
        for (int& node : element.nodes)
            node += static_cast<int>(shift);
    for (PlaneGroup& group : deck.groups)
        group.INDAX = group.IZIP = 1;
    for (PlaneNode& node : deck.nodes)
        node.held = node.y == 0.5 || node.y == 2.0 || node.y == 3.0 || node.y == 4.0;
    deck.solver = solver;
    deck.conductivity = {{0.0, 2.0}};
    deck.source = {{0.0, 60.0}};
    const std::vector<double> values = Concentrations(deck);
    RingErrors errors = {};
    for (std::size_t n = 0; n < deck.nodes.size(); ++n) {
        const bool first = n < shift;
        const double exact = HollowCylinder(deck.nodes[n].y, first ? 0.5 : 3.0, first ? 2.0 : 4.0, 60.0, 2.0);
        errors[first ? 0 : 1] = std::max(errors[first ? 0 : 1], std::fabs(values[n] - exact));
    }
    return errors;
}

// Faults: a radius left out of conduction or source, or taken from the other coordinate; the radius of the first group
// used for the second.
TEST(Classical, RingsConvergeToTheHollowCylinder) {
    double slab = 0.0;
    ExpectOrder({"ring 0.5 to 2.0, elements", 8, 3, 2.0, 0.2}, [&](int elements) {
        const RingErrors skyline = RunRings(elements, 0), sparse = RunRings(elements, 2);
        for (const std::size_t ring : {0U, 1U})
            EXPECT_NEAR(sparse[ring], skyline[ring], 1.1e-4) << "a digit of the listing";
        slab = skyline[1];
        return skyline[0];
    });
    std::printf("ring 3.0 to 4.0, 32 elements: error %10.3e\n", slab);
    EXPECT_LT(slab, 1e-3) << "farther out the ring is nearly a slab, whose nodal values are exact";
}

// A straight line of `elements` 3-node lines from the origin along (x, y, z), held at both ends.
PlaneDeck SourceLine(int elements, double x, double y, double z, int nodesOfElement) {
    PlaneDeck deck;
    const int per = nodesOfElement - 1, count = per * elements;
    for (int n = 0; n <= count; ++n) {
        const double part = static_cast<double>(n) / count;
        deck.nodes.push_back({x * part, y * part, z * part, n == 0 || n == count});
    }
    PlaneGroup group;
    group.family = 1;
    group.IZIP = 1;
    group.gauss = 3;
    for (int e = 0; e < elements; ++e) {
        std::vector<int> nodes = {per * e + 1, per * (e + 1) + 1};
        if (nodesOfElement == 3)
            nodes.push_back(per * e + 2);
        group.elements.push_back({nodes, 1, 0.7});
    }
    deck.groups = {group};
    deck.source = {{0.0, 6.0}};
    deck.conductivity = {{0.0, 1.5}};
    return deck;
}

// Faults: a coordinate left out of the length, the area in one of conduction and source only.
TEST(Classical, ObliqueLineIsTheLineAlongX) {
    for (const int nodesOfElement : {2, 3}) {
        const std::vector<double> along = Concentrations(SourceLine(4, 7.0, 0.0, 0.0, nodesOfElement));
        PlaneDeck oblique = SourceLine(4, 2.0, -3.0, 6.0, nodesOfElement);
        const std::vector<double> across = Concentrations(oblique);
        oblique.solver = 2;
        const std::vector<double> sparse = Concentrations(oblique);
        for (std::size_t n = 0; n < along.size(); ++n) {
            const double x = 7.0 * static_cast<double>(n) / static_cast<double>(along.size() - 1);
            const double exact = 6.0 * x * (7.0 - x) / (2.0 * 1.5);
            EXPECT_NEAR(along[n], exact, 0.51 * Digit(20.0));
            EXPECT_NEAR(across[n], along[n], 1.01 * Digit(20.0));
            EXPECT_NEAR(sparse[n], across[n], 1.01 * Digit(20.0));
        }
    }
}

// Moment of a square shaft of side a = 1 over G theta a^4 (Timoshenko and Goodier, article 109).
double SquareShaft() {
    double sum = 0.0;
    for (int n = 1; n < 200; n += 2)
        sum += std::tanh(0.5 * n * kPi) / std::pow(n, 5);
    return (1.0 - 192.0 / std::pow(kPi, 5) * sum) / 3.0;
}

// TORZM: G = 80, theta = 0.02; the coefficient is 0.5 / G, the source theta.
double SquareShaftMoment(int elements, int solver) {
    PlaneDeck deck = Rectangle(elements, elements, -0.5, 0.5, -0.5, 0.5);
    deck.solver = solver;
    deck.ITOR = 1;
    deck.groups[0].IZIP = 1;
    deck.groups[0].IPTG = 1;
    for (PlaneNode& node : deck.nodes)
        node.held = std::fabs(node.x) > 0.4999 || std::fabs(node.y) > 0.4999;
    deck.conductivity = {{0.0, 0.5 / 80.0}};
    deck.source = {{0.0, 0.02}};
    RunResult run;
    Concentrations(deck, &run);
    return NumbersBehind(run.listing, "TORZM =").back();
}

// Faults: a weight of the moment's integral, the factor 2, elements counted twice or left out.
TEST(Classical, SquareShaftMeetsTheSeries) {
    EXPECT_NEAR(SquareShaft(), 0.1406, 5e-5) << "the reference itself";
    const double exact = SquareShaft() * 80.0 * 0.02;
    ExpectOrder({"square shaft, elements", 4, 3, 2.0, 0.15}, [=](int elements) {
        const double moment = SquareShaftMoment(elements, 0);
        EXPECT_NEAR(SquareShaftMoment(elements, 2), moment, 1.1e-6);
        return (moment - exact) / 1.6; // over G theta a^4
    });
}

// One element of nine nodes over (-1, 1) x (-1, 1) holds c (1 - x x) (1 - y y) exactly; a source f makes c = 5 f / 16.
// Faults: stresses swapped or of the wrong sign, points in another order, a moment without its 2 or its Jacobian.
TEST(Torsion, StressesAndMomentOfOneElement) {
    const RunResult run = RunWell(SmallDeckText("torsion"));
    const double c = 5.0 * 2.0 / 16.0;
    const auto rows = RowsBelow(run.listing, "   NGX  NGY       TAUZY", 1);
    ASSERT_EQ(rows.size(), 9U);
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) {
            const std::vector<double>& row = rows[static_cast<std::size_t>(3 * i + j - 4)];
            const double x = zurt::XG(3, i), y = zurt::XG(3, j); // the element is the reference element
            const double expected[] = {
                1.0 * i, 1.0 * j, 2.0 * c * x * (1.0 - y * y), -2.0 * c * y * (1.0 - x * x), x, y};
            for (std::size_t k = 0; k < 6; ++k)
                EXPECT_NEAR(row.at(k), expected[k], k < 4 ? 5e-4 : 5.1e-3);
        }
    for (const char* label : {"TORZE =", "TORZM ="})
        EXPECT_NEAR(NumbersBehind(run.listing, label).at(0), 2.0 * c * 16.0 / 9.0, 5e-5);
}

// Faults: flags of other elements, moments that don't add up, a line without sources that is followed by others.
TEST(Torsion, MomentOfTheElementsWithAFlag) {
    PlaneDeck deck = Rectangle(4, 4, -1.0, 1.0, -1.0, 1.0);
    deck.ITOR = 1;
    deck.groups[0].IZIP = 1;
    deck.groups[0].IPTG = 2;
    for (PlaneNode& node : deck.nodes)
        node.held = std::fabs(node.x) == 1.0 || std::fabs(node.y) == 1.0;
    deck.conductivity = {{-9.0, 1.0}, {9.0, 1.0}};
    deck.source = {{0.0, 2.0}};
    std::string text = Build(deck);
    const std::pair<std::string, const char*> cards[] = {
        {"\n7 14 13 8 9 0 1 0 0 0 ", "5"}, // carried on until a card takes it back
        {"\n8 15 14 9 10 0 1 0 0 0 ", "-1"},
        {"\n16 25 24 19 20 0 1 0 0 0 ", "1"}};
    for (const auto& [card, flag] : cards) {
        text = Replaced(text, card + text.at(text.find(card) + card.size()), card + flag);
    }
    const std::string listing = RunDeck(text).listing;
    const std::vector<double> moments = NumbersBehind(listing, "TORZE =");
    ASSERT_GE(moments.size(), 2U);
    EXPECT_NEAR(NumbersBehind(listing, "TORZM =").at(0), moments[0] + moments[1], 1e-5);
    EXPECT_GT(moments[0], 2.0 * moments[1]) << "an element at the middle, another at a corner";
    EXPECT_TRUE(Contains(listing, " SHARE STRESS AT GAUSS POINTS OF ELEMENT   16\n"));

    deck.source.clear();
    deck.groups[0].IZIP = 0;
    const std::string none = RunDeck(Build(deck)).listing;
    EXPECT_TRUE(Contains(none, "  THERE IS NOT TORSION, NQE=0\n"));
    EXPECT_FALSE(Contains(none, "TORZ"));
}

// The deck with the fourth number of every format card replaced; `cards` counts them. In the examples only a format card
// is four single digits of this kind.
std::string WithSolver(const std::string& deck, int solver, int& cards) {
    static const std::regex formatCard("\n([12] [0-3] [0-3]) [02](?=\n)");
    cards = static_cast<int>(std::distance(std::sregex_iterator(deck.begin(), deck.end(), formatCard), {}));
    return std::regex_replace(deck, formatCard, "\n$1 " + std::to_string(solver));
}

// Faults: a group, a term or a restart of the iteration that one of the two assemblies treats in its own way.
TEST(Classical, BothSolversAgreeOnEveryExample) {
    for (const auto& entry : std::filesystem::directory_iterator(ZURT_SOURCE_DIR "/examples")) {
        const std::string name = entry.path().filename().string();
        if (!std::filesystem::exists(entry.path() / "zurt.dat") || // made by a script, or a script
            (kSanitized && (name == "fibre_box" || name == "homogenization"))) // minutes
            continue;
        SCOPED_TRACE(name);
        const std::string deck = ReadFile((entry.path() / "zurt.dat").string());
        int cards = 0;
        const RunResult skyline = RunWell(WithSolver(deck, 0, cards)),
                        sparse = RunDeck(WithSolver(deck, 2, cards));
        EXPECT_EQ(CountOf(skyline.listing, "END OF JOB"), cards) << "one format card a problem";
        const bool takes20 = name == "brick20"; // the sparse assembly takes 8 nodes an element
        EXPECT_EQ(sparse.status, takes20 ? 2 : 0) << sparse.errors;
        const auto expected = AllConcentrations(skyline.listing), found = AllConcentrations(sparse.listing);
        ASSERT_FALSE(expected.empty());
        double largest = 0.0; // in units of the last digit
        for (std::size_t t = 0; t < expected.size() && !takes20; ++t) {
            ASSERT_EQ(found.at(t).size(), expected[t].size());
            for (std::size_t n = 0; n < expected[t].size(); ++n)
                if (std::fabs(expected[t][n]) > 1e-12)
                    largest =
                        std::max(largest, std::fabs(found[t][n] - expected[t][n]) / Digit(expected[t][n]));
        }
        std::printf("%-18s %2zu tables, largest difference %.2f units of the last digit\n", name.c_str(),
                    expected.size(), largest);
        EXPECT_LT(largest, 1.01);
    }
}

// A bar of bricks along x with a source, four nodes to a section, held at x = 0.
PlaneDeck BrickBar(int elements) {
    PlaneDeck deck;
    PlaneGroup group;
    group.family = 3;
    group.IZIP = 1;
    for (int section = 0; section <= elements; ++section)
        for (int corner = 0; corner < 4; ++corner)
            deck.nodes.push_back({1.0 * section, corner == 1 || corner == 2 ? 1.0 : 0.0,
                                  corner > 1 ? 1.0 : 0.0, section == 0});
    for (int n = 0; n < 4 * elements; n += 4)
        group.elements.push_back({{n + 7, n + 3, n + 4, n + 8, n + 6, n + 2, n + 1, n + 5}, 1});
    deck.groups = {group};
    return deck;
}

// Faults: a surface term of a line or a brick in matrix, load or convergence; a record that moves the data behind it.
TEST(Classical, RecordsOfLinesAndBricksChangeNothing) {
    PlaneDeck line = SourceLine(4, 1.0, 2.0, 2.0, 2);
    line.groups[0].sides = {{4, {5}, {1, 1, 1, 1, 0}}, {2, {2}, {1, 1, 1, 1, 0}}};
    line.nodes[4].held = false;
    PlaneDeck bricks = BrickBar(3);
    bricks.groups[0].sides = {{3, {13, 14, 15, 16}, {1, 1, 1, 1, 0}}, {1, {1, 2, 5, 6}, {1, 1, 1, 1, 0}}};
    for (const PlaneDeck& one : {line, bricks})
        for (const int solver : {0, 2}) {
            PlaneDeck deck = one;
            deck.solver = solver;
            deck.conductivity = {{-100.0, 1.0}, {100.0, 5.0}};
            deck.source = {{100.0, 0.5}};
            deck.flux = {{100.0, 7.0}};
            deck.environment = {{100.0, 3.0}};
            deck.convection = {{0.0, 2.0}};
            deck.emissivity = {{0.0, 0.9}};
            const RunResult with = RunWell(Build(deck));
            deck.groups[0].sides.clear();
            const RunResult without = RunWell(Build(deck));
            EXPECT_EQ(CountOf(with.errors, "surface records act in 2D groups alone"), 1) << with.errors;
            EXPECT_EQ(without.errors, "");
            EXPECT_GT(LastConcentrations(without.listing).back(), 0.1) << "a result to be changed";
            EXPECT_EQ(ResultsOfListing(with.listing), ResultsOfListing(without.listing));
            EXPECT_EQ(CountOf(with.listing, " ITERATION ="), CountOf(without.listing, " ITERATION ="));
            EXPECT_GT(CountOf(with.listing, " ITERATION ="), 2);
        }
}

// A bar of bricks along x, quadrilaterals on its face z = 0 and lines along two of its edges, all on the same nodes. A
// uniform source over conductivity 1 gives -u'' = f in each of them, so that all together keep the parabola of one, which
// linear elements meet at their nodes. Faults: heights or equations of one family lost beside another, a group formed by
// the wrong family or from the connectivity of another, labels of the graphics file that begin anew.
TEST(Classical, BarOfBricksPlanesAndLines) {
    constexpr int kElements = 4;
    PlaneDeck deck = BrickBar(kElements);
    PlaneGroup planes, lines;
    planes.family = 2;
    lines.family = 1;
    planes.IZIP = lines.IZIP = 1;
    for (int n = 0; n < 4 * kElements; n += 4) {
        planes.elements.push_back({{n + 6, n + 2, n + 1, n + 5}, 1});
        lines.elements.push_back({{n + 3, n + 7}, 1, 0.25});
        lines.elements.push_back({{n + 4, n + 8}, 1, 8.0});
    }
    deck.groups = {lines, deck.groups[0], planes};
    for (std::size_t n = 16; n < 20; ++n)
        deck.nodes[n].held = true;
    deck.conductivity = {{0.0, 1.0}};
    deck.source = {{0.0, 2.0}};
    for (const int solver : {0, 2}) {
        deck.solver = solver;
        RunResult run;
        const std::vector<double> values = Concentrations(deck, &run);
        for (std::size_t n = 0; n < values.size(); ++n)
            EXPECT_NEAR(values[n], deck.nodes[n].x * (kElements - deck.nodes[n].x), 1e-4);
        for (const char* element : {"\n         8        21        21", "\n         9       115       115",
                                    "\n        12       115       115", "\n        13        44        44"})
            EXPECT_EQ(CountOf(run.graphics, element), 1) << element;
    }
}

} // namespace
