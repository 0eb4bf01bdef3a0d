#include "support/small_decks.h"

#include "support/bar_deck.h"

#include <stdexcept>

namespace zurt_test {

namespace {

BarDeck Bar(bool fixedFormat, int NDS) {
    BarDeck bar;
    bar.nx = 3;
    bar.periods = {{2, 0.01}, {1, 0.02}};
    bar.fixedFormat = fixedFormat;
    bar.NDS = NDS;
    bar.MAXIT = 9;
    return bar;
}

/// The deck with other cards from the material header on.
std::string WithTail(const BarDeck& bar, const std::string& header, const std::string& tail) {
    const std::string deck = Build(bar);
    const std::size_t at = deck.rfind(header);
    if (at == std::string::npos)
        throw std::logic_error("the deck has no such material header");
    return deck.substr(0, at) + tail;
}

std::string Replaced(std::string deck, const std::string& old, const std::string& text) {
    const std::size_t at = deck.find(old);
    if (at == std::string::npos)
        throw std::logic_error("the deck has no such card");
    return deck.replace(at, old.size(), text);
}

std::string TwoGroupsWithSources() {
    BarDeck bar = Bar(false, 0);
    bar.groups = 2;
    bar.source = true;
    bar.sourceCurve = {{0.0, 1.0}, {0.02, 2.0}, {1.0, 1.0}};
    bar.hold = false;
    bar.start = 0.0;
    return Build(bar);
}

/// Bricks of 20 nodes without generation; the coefficient is a curve, so the steady steps iterate.
std::string SteadyWithMidSideNodes(bool fixedFormat) {
    BarDeck bar = Bar(fixedFormat, 0);
    bar.nx = 2;
    bar.nodes = 20;
    bar.steady = true;
    bar.source = true;
    bar.diffusion = {{-10.0, 1.0}, {0.0, 1.0}, {10.0, 2.0}};
    return Build(bar);
}

std::string TwoProblems(bool fixedFormat) {
    BarDeck first = Bar(fixedFormat, 0), second = Bar(fixedFormat, fixedFormat ? 1 : 0);
    first.end = fixedFormat ? "NEXT PROBLEM\n" : "";
    first.diffusion = {{0.0, 1.0}};
    second.nx = 2;
    second.title = "Second block";
    return Build(first) + Build(second);
}

/// Time functions of a device, sources of two functions, start values by lists and by ranges of nodes.
std::string DeviceWithLists() {
    BarDeck bar = Bar(true, 3);
    bar.source = true;
    bar.hold = false;
    return WithTail(bar, "    2    0    0    0    0    0\n",
                    "    2    0    0    0    0    0\n"
                    "    1    2\n"
                    "                 0.0                 1.0\n"
                    "                10.0                 2.0\n"
                    "    2    2\n"
                    "    1    2\n"
                    "       0.0       1.0\n"
                    "       1.0       1.0\n"
                    "    2    1\n"
                    "       9.0       1.0\n"
                    "    2    0    0    0    0    0    0    2    2    0    0\n"
                    "    1    2\n"
                    "       0.0       1.0\n"
                    "       1.0       3.0\n"
                    "    2    1\n"
                    "       1.0       0.0\n"
                    "       1.0    1    1\n"
                    "    1    2    3    4    5    0\n"
                    "    6    1   10\n"
                    "    0    0    0\n"
                    "       2.0    0    1\n"
                    "   16   -1   11\n"
                    "    0\n"
                    "STOP\n");
}

/// Built-in polynomials and functions by axis, two materials, all five families of functions, shape factors.
std::string BuiltInMaterials() {
    BarDeck bar = Bar(false, 0);
    const std::string deck = WithTail(bar, "0 1 2 0 1 1 \n",
                                      "1 3 2 1 1 2\n"
                                      "1 2 3 1. 1. 1. 1. 1e6 -1e6\n"
                                      "0 0 0 1. 1. 1. 1. 1e6 -1e6\n"
                                      "1 1\n0. 1.\n"
                                      "2 2\n-9. 2.\n9. 2.\n"
                                      "3 1\n0. 3.\n"
                                      "2 2\n-9. 2.\n9. 2.\n"
                                      "0 0 0 0 0 0 0 1 1 0 0\n"
                                      "1 1\n9. 1.\n"
                                      "1.\nSTOP\n");
    return Replaced(deck, "16 1 1 1 2 1 0 3", "16 1 2 1 2 1 1 3");
}

/// Bricks with surface records, which have no effect.
std::string FunctionTables() {
    BarDeck bar = Bar(false, 0);
    return WithTail(bar, "0 1 2 0 1 1 \n",
                    "0 1 1 0 1 1\n"
                    "1 0 0 1. 1. 1. 1. 1e6 -1e6\n"
                    "1 1\n0. 1.\n"
                    "1 1\n0. 1.\n"
                    "1 1 2 1 2 1 2 1 2 1 2\n"
                    "1 2\n0. 1.\n1. 1.\n"
                    "1 2\n0. 1.\n1. 1.\n"
                    "1 2\n0. 1.\n1. 1.\n"
                    "1 2\n0. 1.\n1. 1.\n"
                    "1 2\n0. 1.\n1. 1.\n"
                    "5.67e-8 2\n0.5 1.\n"
                    "1.\n"
                    "1 14 10 2 6 1 1 1 1 1\n"
                    "0 0 0 0 0 0 0 0 0 0\n"
                    "STOP\n");
}

/// Two axisymmetric quadrilaterals with sources, thickness, flux, convection and radiation.
std::string Quadrilaterals() {
    return "Two quadrilaterals\n"
           "1 0 0 0\n"
           "6 1 1 1 2 1 0 3 0 1 0\n"
           "1 0 0 9 0 1e-8 1 0\n"
           "1 0 0 0. 0\n"
           "2 1\n0.01 0.02\n"
           "1 0 0. 1. 0. 0. 1\n3 0 1. 1. 0. 0. 0\n4 0 0. 2. 0. 0. 1\n6 0 1. 2. 0. 0. 0\n"
           "0 0 0 0 0 0. 0 0 0 0 0 0 0 0\n0. 0.\n"
           "2 2 1 1 0 0\n"
           "1 1 4 1 1 2 3 1 0.5\n"
           "1 5 4 1 2 0 1 1 1 0 0 0.1\n"
           "0 1 2 0 1 1\n"
           "1 0 0 1. 2. 3. 8. 1e6 -1e6\n"
           "1 2\n-100. 1.\n100. 2.\n"
           "1 1\n0. 1.\n"
           "1 1 2 1 2 1 2 1 1 1 2\n"
           "1 1\n9. 1.\n"
           "1 2\n0. 1.\n1. 1.\n"
           "1 2\n0. 2.\n1. 2.\n"
           "1 2\n-100. 1.\n100. 2.\n"
           "1 2\n-100. .5\n100. .6\n"
           "5.67e-8 1\n1.\n"
           "1.\n"
           "1 4 1 1 1 1 1 0\n2 3 6 0 0 0 0 0\n0 0 0 0 0 0 0 0\n"
           "STOP\n";
}

/// A square shaft of one quadrilateral with nine nodes, in fixed format.
std::string Torsion() {
    return "Shaft\n"
           "2 0 0 0\n"
           "         9    1    1    0    1    1    0    1    1    1    0\n"
           "    1    0    0    9\n"
           "    1\n"
           "         1    1            1.             1.             0.             0.    0\n"
           "         2    1           -1.             1.             0.             0.    0\n"
           "         3    1           -1.            -1.             0.             0.    0\n"
           "         4    1            1.            -1.             0.             0.    0\n"
           "         5    1            0.             1.             0.             0.    0\n"
           "         6    1           -1.             0.             0.             0.    0\n"
           "         7    1            0.            -1.             0.             0.    0\n"
           "         8    1            1.             0.             0.             0.    0\n"
           "         9    0            0.             0.             0.             0.    0\n"
           "\n\n"
           "    2         1    0    1    0    0\n"
           "    1    1    9    2    2    3    3    0    0.0\n"
           "       1       1       2       3       4    0    1    0    0    1    1       0.0\n"
           "       5       6       7       8       9\n"
           "    0    1    2    0    1    1\n"
           "    1    0    0       1.0       1.0       1.0       1.0       1E6      -1E6\n"
           "    1    2\n"
           "               -99.0                 1.0\n"
           "                99.0                 1.0\n"
           "    1    1\n"
           "       0.0       1.0\n"
           "    1    0    0    0    0    0    0    1    1    0    0\n"
           "    1    1\n"
           "       9.0       2.0\n"
           "       0.0\n"
           "STOP\n";
}

/// Lines of two nodes and of three, solved by the sparse solver.
std::string Lines() {
    return "Lines\n"
           "1 0 0 2\n"
           "5 2 1 1 1 1 0 3 0 1 0\n"
           "1 0 0 9 0 1e-8 1 0\n"
           "1 0 0 0. 0\n"
           "2\n0.1\n"
           "1 1 0. 0. 0. 0. 0\n2 -1 1. 0. 0. 0. 1\n5 0 4. 0. 0. 0. 0\n"
           "0 0 0 0 0 0. 0 0 0 0 0 0 0 0\n0. 0.\n"
           "1 2 0 0 0 0\n"
           "1 1 2 0 0 2\n"
           "1 2 1 0 0 1 1 0 0 0.5\n"
           "1 1 0 0 0 0\n"
           "1 1 3 0 0 3\n"
           "1 5 3 4 0 0 0 0 0 0 0.25\n"
           "0 1 2 0 1 1\n"
           "1 0 0 1. 1. 1. 1. 1e6 -1e6\n"
           "1 2\n-100. 1.\n100. 2.\n"
           "1 1\n0. 1.\n"
           "1 0 0 0 0 0 0 0 0 0 0\n"
           "1.\n"
           "STOP\n";
}

/// Device, degradation, nanochannel cards.
std::string DeviceCards() {
    BarDeck bar = Bar(true, 1);
    bar.NANOCH = 1;
    return Replaced(Build(bar), "    1.0000    1.0000    1.0000\n\n",
                    "       1.0       1.0       1.0       0.0       1.0       0.1\n"
                    "    3    1    1    0    1\n"
                    "       0.5       0.5       0.5       0.1       0.1       0.5       0.5\n");
}

// A sphere in a block, an outlet by pairs and a time multiplier.
std::string Fibres() {
    BarDeck bar = Bar(true, 1);
    bar.NANOCH = 1;
    bar.fibres = OneFibre(0, 0.1, {{0.5, 0.1, 0.1}}, 0.5);
    bar.outlet = Print("%5d\n%20.6e%20.6e\n%20.6e%20.6e\n", 2, 0.0, 1.0, 1.0, 2.0) +
                 Print("%5d%5d%5d\n%20.6e%20.6e\n%20.6e%20.6e\n", 1, 0, 2, 0.0, 1.0, 1.0, 0.5);
    return Build(bar);
}

// Both stages of a fit, or the direct calculation, over a row of cubes that begins empty; ends held at 1.
std::string Fit(int IDIRECTD) {
    BarDeck bar = Bar(true, 3);
    bar.IDIRECTD = IDIRECTD;
    bar.NANOCH = 3;
    bar.hold = true;
    bar.start = 0.0;
    bar.outlet = OutletCards(1, 1.0);
    const std::string set = OneFibre(1, 0.1, {{0.5, 0.1, 0.1}}, 0.5);
    bar.fibres = Print("%5d%5d%5d%5d%5d%10.6f", 1, 1, 1, 2, 4, 0.01) +
                 Print("%5d%5d%5d%5d%5d%5d%5d%5d\n", 1, 0, 1, 1, 1, 1, 0, 0) +
                 set.substr(set.find("\n\n") + 2);
    return Build(bar);
}

// Two assembled fibres with partition values, and one that is substructured with four common nodes.
std::string RadialFibres() {
    BarDeck bar = Bar(true, 0);
    bar.periods = {{3, 0.01}};
    const int first = (bar.nx + 1) * (bar.ny + 1) * (bar.nz + 1);
    for (int i = 1; i <= 5; ++i)
        bar.moreNodes += Print("%10d    0     %15.6e\n", first + i, 0.1 * i);
    bar.moreGroupCount = 2;
    bar.moreGroups = Print("%5d%10d%5d%5d%5d%5d\n%5d%5d%10.2f%5d\n", 4, 2, 0, 0, 0, 0, 3, 2, 1.0, 1);
    const char* element = "%8d       %10.4f%10.4f%10.4f%8d%8d%10.2f%10.2f%10.2f%10.2f\n";
    bar.moreGroups += Print(element, 1, 0.1, 0.05, 0.02, 3, 0, 0., 0., 0., 0.5);
    bar.moreGroups += Print("%8d%8d%8d%8d\n", first + 1, first + 2, first + 3, 2);
    bar.moreGroups += Print(element, 2, 0.1, 0.05, 0.02, 2, 0, 0., 0., 0., 0.8);
    bar.moreGroups += Print("%8d%8d%8d\n", first + 4, first + 5, 3);
    bar.moreGroups += Print("%5d%10d%5d%5d%5d%5d\n%5d%5d%10.2f%5d\n", 4, 1, 0, 0, 1, 1, 4, 2, 1.0, 0);
    bar.moreGroups += Print(element, 1, 0.1, 0.05, 0.02, 5, 2, 0.5, 0.1, 0.1, 0.);
    bar.moreGroups += Print("%8d%8d%8d%8d\n", 2, 3, 4, 5);
    return Build(bar);
}

std::vector<SmallDeck> MakeSmallDecks() {
    BarDeck listed = Bar(true, 0);
    listed.generate = false;
    listed.NULAZ = 1;
    BarDeck device = Bar(true, 1);
    device.source = true;
    device.sourceCurve = {{0.0, 1.0}, {1.0, 1.0}};
    return {{"free", Build(Bar(false, 0))},
            {"fixed", Build(listed)},
            {"device", Build(device)},
            {"device lists", DeviceWithLists()},
            {"sources", TwoGroupsWithSources()},
            {"steady free", SteadyWithMidSideNodes(false)},
            {"steady fixed", SteadyWithMidSideNodes(true)},
            {"two free", TwoProblems(false)},
            {"two fixed", TwoProblems(true)},
            {"built-in", BuiltInMaterials()},
            {"functions", FunctionTables()},
            {"device cards", DeviceCards()},
            {"quadrilaterals", Quadrilaterals()},
            {"torsion", Torsion()},
            {"lines", Lines()},
            {"fibres", Fibres()},
            {"fit", Fit(0)},
            {"direct", Fit(1)},
            {"radial fibres", RadialFibres()},
            {"sparse", Replaced(Build(device), "2 1 0 0\n", "2 1 0 2\n")}};
}

} // namespace

const std::vector<SmallDeck>& SmallDecks() {
    static const std::vector<SmallDeck> decks = MakeSmallDecks();
    return decks;
}

const std::string& SmallDeckText(const std::string& name) {
    for (const SmallDeck& deck : SmallDecks())
        if (name == deck.name)
            return deck.text;
    throw std::logic_error("no small deck is called " + name);
}

} // namespace zurt_test
