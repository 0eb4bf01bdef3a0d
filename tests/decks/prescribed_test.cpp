// Held nodes at values of their own, through the real binary: membranes and a wave against their closed forms, and what the
// file of these values is refused for.
#include "support/bar_deck.h"
#include "support/history_table.h"
#include "support/plane_deck.h"
#include "support/small_decks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <functional>
#include <string>
#include <vector>

namespace zurt_test {
namespace {

constexpr int kElements = 8;
constexpr double kWidth = 0.5;            // of the membranes across
constexpr double kLow = 0.5, kHigh = 2.0; // at their faces

// A coefficient, its integral over the concentration, and the inverse of that.
struct Law {
    const char* name;
    Points curve;
    std::function<double(double)> integral, inverse;
    double tolerance;
};

// The last is a table, and its rule of integration is not exact; the others are met by linear elements at the nodes.
std::vector<Law> Laws() {
    Points exponential;
    for (int i = 0; i <= 300; ++i)
        exponential.push_back({0.01 * i, std::exp(0.01 * i)});
    return {{"constant",
             {{-10, 3}, {10, 3}},
             [](double c) { return 3 * c; },
             [](double F) { return F / 3; },
             1e-8},
            {"1 + c",
             {{0, 1}, {10, 11}},
             [](double c) { return c + c * c / 2; },
             [](double F) { return std::sqrt(1 + 2 * F) - 1; },
             1e-8},
            {"exp c", exponential, [](double c) { return std::exp(c); }, [](double F) { return std::log(F); },
             3e-5}};
}

// A deck of one membrane from x = 0 to 1, its nodes by section, and the area that is passed through.
struct Membrane {
    std::string deck;
    std::vector<std::vector<int>> sections;
    double area = 1.0;
    std::string onCards; // the same, with the values of the faces on the node cards; "": none
};

void HoldFaces(PlaneDeck& deck) {
    for (PlaneNode& node : deck.nodes)
        node.held = node.x == 0.0 || node.x == 1.0;
}

Membrane FromPlaneDeck(PlaneDeck deck, const Law& law, double area) {
    HoldFaces(deck);
    deck.conductivity = law.curve;
    Membrane membrane{Build(deck), std::vector<std::vector<int>>(kElements + 1), area, ""};
    for (std::size_t n = 0; n < deck.nodes.size(); ++n) {
        PlaneNode& node = deck.nodes[n];
        membrane.sections[static_cast<std::size_t>(std::lround(node.x * kElements))].push_back(
            static_cast<int>(n) + 1);
        node.value = node.x == 0.0 ? kLow : kHigh;
    }
    membrane.onCards = Build(deck);
    return membrane;
}

Membrane Lines(const Law& law) {
    PlaneDeck deck;
    PlaneGroup group;
    group.family = 1;
    for (int i = 0; i <= kElements; ++i)
        deck.nodes.push_back({static_cast<double>(i) / kElements});
    for (int i = 1; i <= kElements; ++i)
        group.elements.push_back({{i, i + 1}, 0, 0.25});
    deck.groups = {group};
    return FromPlaneDeck(deck, law, 0.25);
}

Membrane Bricks(const Law& law) {
    PlaneDeck deck;
    PlaneGroup group;
    group.family = 3;
    const double y[4] = {0, kWidth, kWidth, 0}, z[4] = {0, 0, kWidth, kWidth};
    for (int i = 0; i <= kElements; ++i)
        for (int corner = 0; corner < 4; ++corner)
            deck.nodes.push_back({static_cast<double>(i) / kElements, y[corner], z[corner]});
    for (int i = 0; i < kElements; ++i) {
        const int a = 4 * i;
        group.elements.push_back({{a + 7, a + 3, a + 4, a + 8, a + 6, a + 2, a + 1, a + 5}});
    }
    deck.groups = {group};
    return FromPlaneDeck(deck, law, kWidth * kWidth);
}

// Under NDS 1, quadrilaterals or bricks.
Membrane Device(const Law& law, bool plane) {
    BarDeck bar;
    bar.nx = kElements;
    bar.NDS = 1;
    bar.fixedFormat = bar.steady = true;
    bar.plane = plane;
    bar.width = kWidth;
    bar.diffusion = law.curve;
    bar.EPSTR = 1e-9;
    Membrane membrane{Build(bar), {}, plane ? kWidth : kWidth * kWidth, ""};
    for (int i = 0; i <= kElements; ++i) {
        membrane.sections.emplace_back();
        for (int k = 0; k <= (plane ? 0 : 1); ++k)
            for (int j = 0; j <= 1; ++j)
                membrane.sections.back().push_back(GridNode(bar, i, j, k));
    }
    return membrane;
}

std::string ProbesOf(const Membrane& membrane) {
    std::string probes;
    for (const auto& section : membrane.sections)
        probes += (probes.empty() ? "" : ",") + std::to_string(section.back());
    return probes;
}

void ExpectClosedForm(const HistoryRun& result, const Membrane& membrane, const Law& law) {
    ASSERT_EQ(result.run.status, 0) << result.run.errors;
    const double low = law.integral(kLow), high = law.integral(kHigh);
    for (std::size_t i = 0; i < membrane.sections.size(); ++i) {
        const std::vector<double>& c = result.table.at("c_" + std::to_string(membrane.sections[i].back()));
        EXPECT_NEAR(c.back(), law.inverse(low + (high - low) * static_cast<double>(i) / kElements),
                    law.tolerance)
            << "section " << i;
    }
    const double flow = (high - low) * membrane.area;
    EXPECT_NEAR(result.table.at("inlet").back(), -flow, 10 * law.tolerance);
    if (result.table.count("held_f1") == 0)
        return;
    EXPECT_NEAR(result.table.at("held_f1").back(), -flow, 10 * law.tolerance);
    EXPECT_NEAR(result.table.at("held_f2").back(), flow, 10 * law.tolerance);
}

// Faults: a family or a way of forming that does not see the values; faces exchanged; the first form of the gather taken for
// the second; a flow of the wrong sign or without the area.
TEST(Prescribed, MembranesBetweenTwoConcentrations) {
    for (const Law& law : Laws())
        for (const Membrane& membrane :
             {Lines(law), FromPlaneDeck(Rectangle(kElements, 1, 0, 1, 0, kWidth), law, kWidth), Bricks(law),
              Device(law, true), Device(law, false)}) {
            SCOPED_TRACE(law.name + ("\n" + membrane.deck.substr(0, 40)));
            const std::string faces =
                TwoFaces(membrane.sections.front(), kLow, membrane.sections.back(), kHigh);
            ExpectClosedForm(RunWithHistory(membrane.deck, faces, ProbesOf(membrane)), membrane, law);
            if (!membrane.onCards.empty() && law.tolerance < 1e-7)
                ExpectClosedForm(RunWithHistory(membrane.onCards, "0 1\n", ProbesOf(membrane)), membrane,
                                 law);
        }
}

// Nodes that no function moves show in the listing what the elements took.
TEST(Prescribed, TablesOfTheListingShowTheValues) {
    const Law law = Laws()[0];
    const Membrane membrane = Lines(law);
    for (const bool onCards : {false, true}) {
        const HistoryRun result =
            onCards ? RunWithHistory(membrane.onCards, "0 1\n")
                    : RunWithHistory(membrane.deck, TwoFaces({1}, kLow, {kElements + 1}, kHigh));
        const std::vector<double> shown = LastConcentrations(result.run.listing);
        ASSERT_EQ(shown.size(), kElements + 1U);
        EXPECT_NEAR(shown.front(), kLow, 1e-5);
        EXPECT_NEAR(shown[kElements / 2], 0.5 * (kLow + kHigh), 1e-5);
        EXPECT_NEAR(shown.back(), kHigh, 1e-5);
    }
}

// c = sin(omega t) at one face of a slab, 0 at the other. The equations of the nodes with Euler backward have the solution
// Im(A_j exp(i omega t)) with A_j = sinh(kappa (N - j)) / sinh(kappa N).
// Faults: values of the step's end taken for those of its start, a function looked up one step late.
TEST(Prescribed, WaveThroughASlab) {
    constexpr int steps = 160, aPeriod = 40;
    const double scale = 1e4, dt = 1.0 / aPeriod, omega = 2 * M_PI, h = 1.0 / kElements;
    PlaneDeck deck;
    PlaneGroup group;
    group.family = 1;
    for (int i = 0; i <= kElements; ++i)
        deck.nodes.push_back({i * h, 0, 0, i == 0 || i == kElements});
    for (int i = 1; i <= kElements; ++i)
        group.elements.push_back({{i, i + 1}, 0, 1.0});
    deck.groups = {group};
    deck.conductivity = {{-2 * scale, 1}, {2 * scale, 1}};
    deck.steps = steps;
    deck.stepSize = dt;
    deck.EPSTR = 1e-12;
    std::string wave = Print("1\n1 %d\n1 %d\n", steps + 2, steps + 2);
    for (int k = 0; k <= steps + 1; ++k)
        wave += Print("%.17g %.17g\n", k * dt, std::sin(omega * k * dt));
    const HistoryRun result = RunWithHistory(Build(deck), wave + "1 1 1E4 0\n", "3,5,7");
    ASSERT_EQ(result.run.status, 0) << result.run.errors;
    ASSERT_EQ(result.table.at("held_f1").size(), static_cast<std::size_t>(steps));

    using Complex = std::complex<double>;
    const Complex i(0, 1), rate = (1.0 - std::exp(-i * omega * dt)) / dt;
    const Complex kappa = std::acosh((1 / h + h * rate / 3.0) / (1 / h - h * rate / 6.0));
    const auto amplitude = [&](int j) {
        return std::sinh(kappa * static_cast<double>(kElements - j)) /
               std::sinh(kappa * static_cast<double>(kElements));
    };
    const Complex flow =
        h / 6 * rate * (2.0 * amplitude(0) + amplitude(1)) + (amplitude(0) - amplitude(1)) / h;
    for (int k = steps - aPeriod; k < steps; ++k) {
        const auto row = static_cast<std::size_t>(k);
        const Complex turn = scale * std::exp(i * (omega * dt * (k + 1)));
        for (const int node : {3, 5, 7})
            EXPECT_NEAR(result.table.at("c_" + std::to_string(node))[row],
                        (amplitude(node - 1) * turn).imag(), 3e-10 * scale);
        EXPECT_NEAR(result.table.at("held_f1")[row], (flow * turn).imag(), 1e-9 * scale);
        EXPECT_LT(result.table.at("error")[row], 1e-10);
    }
}

// Faults: a fault of the file that is passed over or reported without its place; a file that is asked for and has no
// effect; values that a fit would lose.
TEST(Prescribed, FilesAreRefusedOrNotedWithTheirPlace) {
    const Law law = Laws()[1];
    const std::string line = Lines(law).deck;
    const std::string functions = "1 1\n1 1\n0. 1.\n";
    struct Case {
        std::string deck, file;
        int status;
        const char* says;
    };
    PlaneDeck linear = Rectangle(2, 1, 0, 1, 0, 1);
    HoldFaces(linear);
    linear.conductivity = {{0, 1}};
    PlaneDeck linearSteps = linear;
    linearSteps.steps = 2;
    linearSteps.stepSize = 0.1;
    const Case cases[] = {
        {line, "-1\n", 2, "deck faces, line 1, Prescribed value count, field NZADC: \"-1\""},
        {line, "1 2\n", 2, "line 1, Prescribed value count, field IGATH: \"2\""},
        {line, "1\n0 0\n", 2,
         "line 2, Time function counts, field NTABFT: \"0\": prescribed values need a time function"},
        {line, "C x\n1 0\n" + functions + "99 1 1. 0\n", 2, "line 6, Prescribed value card, field N: \"99\""},
        {line, "1\n" + functions + "1 2 1. 0\n", 2, "line 5, Prescribed value card, field F: \"2\""},
        {line, "1\n" + functions + "1 1 one 0\n", 2, "line 5, Prescribed value card, field V: \"one\""},
        {line, "2\n" + functions + "1 1 1. 0\n", 2, "the deck ends here"},
        {Build(linear), "1\n" + functions + "1 1 1. 0\n", 2,
         "faces: a steady problem with constant coefficients"},
        {Build(linear), "0 1\n", 0, ""},
        {Build(linear), "0,1\n", 0, ""},
        {Build(linear), "0\t1\n", 0, ""},
        {Build(linearSteps), "0 1\n", 2, "faces: a transient problem with constant coefficients"},
        {SmallDeckText("direct"), "0 1\n", 2,
         "field IGATH: \"1\": a fit and the direct calculation free all"},
        {line, "2\n" + functions + "2 1 1. 0\n3 1 1. 0\n", 0,
         "2 entries are for nodes that are not held (node 2 first)"},
        {SmallDeckText("fit"), "1\n" + functions + "1 1 1. 0\n", 2,
         "a fit and the direct calculation free all held"},
        {line, "1\n" + functions + "2 1 1. 0\n", 0, "1 entry is for a node that is not held (node 2)"},
        {line, "1\n1 2\n1 2\n-1. 1.\n0. 2.\n1 1 1. 0\n", 0, "time function 1 ends with the run"},
        {line, "0\n\nC rest\n1\n", 0, "faces, line 4: cards from here on were not read"},
    };
    for (const Case& one : cases) {
        const RunResult run = RunWithHistory(one.deck, one.file).run;
        EXPECT_EQ(run.status, one.status) << one.file;
        EXPECT_TRUE(Contains(run.errors, one.says)) << one.file << run.errors;
        EXPECT_FALSE(Contains(run.errors, "have been read")) << "cards of the deck" << run.errors;
    }
}

// A block of the file for each problem; a device deck's own functions serve where the file has none.
TEST(Prescribed, ProblemsAndFunctionsOfTheDeck) {
    const Law law = Laws()[1];
    const std::string first = Lines(law).deck;
    const std::string two = first.substr(0, first.rfind("STOP")) + first;
    const HistoryRun both = RunWithHistory(two, TwoFaces({1}, 1, {9}, 1) + TwoFaces({1}, 2, {9}, 2), "5");
    ASSERT_EQ(both.run.status, 0) << both.run.errors;
    EXPECT_NEAR(both.table.at("c_5").back(), 1.0, 1e-9);
    const HistoryTable second = ReadHistory(ReadFile(both.run.folder + "/zurt-history-2.csv"));
    EXPECT_NEAR(second.at("c_5").back(), 2.0, 1e-9);

    std::string device = Device(law, false).deck;
    const std::string none = "\n    0    0\n", own = "\n    1    1\n    1    1\n       0.0       3.0\n";
    device.replace(device.rfind(none), none.size(), own);
    std::string entries = "36\n0 0\n";
    for (int node = 1; node <= 36; ++node)
        entries += std::to_string(node) + " 1 0.5 0\n";
    const HistoryRun owned = RunWithHistory(device, entries, "5");
    ASSERT_EQ(owned.run.status, 0) << owned.run.errors;
    EXPECT_NEAR(owned.table.at("c_5").back(), 1.5, 1e-9);
}

} // namespace
} // namespace zurt_test
