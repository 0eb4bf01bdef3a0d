// Homogenization by whole decks: balance of the flow through the inlet, media without influence, square arrays of cylinders,
// a known mean of a distance, layers, runs that can not be fitted. Prints the figures of docs/verification.md.
#include "support/bar_deck.h"
#include "support/run_deck.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace zurt_test {
namespace {

using Place = std::array<double, 3>;

const double kPi = std::acos(-1.0);

/// A channel 0 < x < cells of square cells between two reservoirs of the same cross-section, the left one at 1, the rest
/// at 0. Each cell has a cylinder along z in its middle, or there is one fibre of the test's own.
struct Channel {
    int cells = 2, mesh = 8;
    double fraction = 0.2;   // of the cylinders; 0: fibres too thin for any point
    bool alongFlow = false;  // the cylinders lie along x, one for all cells
    double reservoir = 40.0; // length of one
    int steps = 12;
    double size = 4.0;
    double D = 1.0, DReservoir = 1e3;
    double DSecond = 0.0; // above 0: of the second half of the channel, along x or along y
    bool halvesAcross = false;
    int IDIRECTD = 0, IPASSPRINT = 2, NFSTEP = -1, NFITMAX = 30, IDCC = 1;
    int INDFITX = 1, INDFITY = 0;
    bool fibres = true;
    bool slope = false; // one fibre across the inlet; the factor is (1 + distance) / 4
};

std::string Five(const std::vector<int>& values, const char* end = "\n") {
    std::string card;
    for (const int value : values)
        card += Print("%5d", value);
    return card + end;
}

std::vector<double> Places(const Channel& channel) {
    std::vector<double> x = {-channel.reservoir, -channel.reservoir / 2};
    for (int i = 0; i <= channel.mesh * channel.cells; ++i)
        x.push_back(static_cast<double>(i) / channel.mesh);
    x.push_back(channel.cells + channel.reservoir / 2);
    x.push_back(channel.cells + channel.reservoir);
    return x;
}

/// Node of column i, at height j, in layer k of one or two layers, from 0.
int NodeAt(const Channel& channel, int i, int j, int k) {
    return (i * 2 + k) * (channel.mesh + 1) + j + 1;
}

double Diameter(const Channel& channel) {
    return channel.fraction > 0.0 ? 2.0 * std::sqrt(channel.fraction / kPi) : 1e-5;
}

std::string FibreCards(const Channel& channel) {
    const double width = 1.0 / channel.mesh, diameter = channel.slope ? 1e-5 : Diameter(channel);
    const int count = channel.alongFlow || channel.slope ? 1 : channel.cells;
    std::string cards = Five({1, count, 0, 0}, "") + Print("%10.6f%10.6f%10.4f\n\n", diameter, 1.0, 1000.0);
    cards += Print("%5d%5d%5d%10.4f%10.4f%10.4f\n", 2, 2, 2, 1.0 * channel.cells, 1.0, width);
    for (int n = 0; n < count; ++n) {
        cards += Print("%5d%5d%10.6f\n", n + 1, 2, diameter);
        const Place from = channel.slope       ? Place{0.0, -99.0, width / 2}
                           : channel.alongFlow ? Place{0.0, 0.5, width / 2}
                                               : Place{n + 0.5, 0.5, 0.0};
        const Place to = channel.slope       ? Place{0.0, 99.0, width / 2}
                         : channel.alongFlow ? Place{1.0 * channel.cells, 0.5, width / 2}
                                             : Place{n + 0.5, 0.5, width};
        for (int end = 1; end <= 2; ++end) {
            const Place& at = end == 1 ? from : to;
            cards += Print("%5d%10.4f%10.4f%10.6f\n", end, at[0], at[1], at[2]);
        }
    }
    cards += Five({2, 1}) + Print("%10.2e%10.2e\n%10.4f\n", 1e-3, channel.slope ? 3000.0 : 1000.0, 1.0);
    return cards + Print("%10.4f\n%10.4f\n", channel.slope ? 0.25 : 1.0, 1.0);
}

std::string Elements(const Channel& channel, int columns) {
    static const int corner[8][3] = {{1, 1, 1}, {0, 1, 1}, {0, 0, 1}, {1, 0, 1},
                                     {1, 1, 0}, {0, 1, 0}, {0, 0, 0}, {1, 0, 0}};
    const int n = channel.mesh;
    std::string cards = Print("%5d%10d", 3, columns * n) + Five({0, 0, 0, 0}) + Print("%5d     ", 1) +
                        Five({8, 0, 0, 2, 2, 2});
    for (int i = 0; i < columns; ++i)
        for (int j = 0; j < n; ++j) {
            const bool second = channel.halvesAcross ? 2 * j >= n : 2 * (i - 2) >= columns - 4;
            const bool inside = i >= 2 && i < columns - 2;
            cards += Print("%8d", i * n + j + 1);
            for (const auto& c : corner)
                cards += Print("%8d", NodeAt(channel, i + c[0], j + c[1], c[2]));
            cards += Print("%3d%3d%3d%3d%3d%3d\n",
                           !inside                           ? 1
                           : channel.DSecond > 0.0 && second ? 2
                                                             : 3,
                           0, 0, 0, 0, 0);
        }
    return cards;
}

std::string Build(const Channel& channel) {
    const std::vector<double> x = Places(channel);
    const int columns = static_cast<int>(x.size()) - 1, n = channel.mesh;
    const double width = 1.0 / n;
    const int NP = NodeAt(channel, columns, n, 1);
    std::string deck = "Channel between two reservoirs\n2 3 3 0\n";
    deck += Print("%10.4f%10.4f%10.4f\n\n%10d", 1.0 * channel.cells, 1.0, width, NP);
    deck += Five({1, 3, 1, 1, 1000, 0, -1, 0, 1000, channel.IDIRECTD});
    deck += Five({1, 0, 0, 40}, "") +
            Print("%10.2e%10.2e%5d%5d\n%5d%5d\n", 0.0, 1e-6, 1, channel.IPASSPRINT - 1, 1, 0);
    deck += Print("%10d\n%10.3e\n", channel.steps, channel.size);
    for (int i = 0; i <= columns; ++i)
        for (int k = 0; k < 2; ++k)
            for (int j = 0; j <= n; ++j)
                deck += Print("%10d%5d     %15.8e%15.8e%15.8e%15.8e%5d\n", NodeAt(channel, i, j, k), 0,
                              x[static_cast<std::size_t>(i)], j * width, k * width, 0.0, 0);
    const int NFSTEP = channel.NFSTEP < 0 ? channel.steps : channel.NFSTEP;
    deck += Five({channel.fibres, 1, 1, NFSTEP, channel.NFITMAX}, "");
    deck += Print("%10.6f", 1e-5);
    deck += Five({channel.INDFITX, channel.INDFITY, 0, 1, 0, channel.IDCC, 0, 0});
    if (channel.IDCC == 0)
        deck += Print("%16.6e%16.6e\n", channel.D, channel.D);
    deck += (channel.fibres ? FibreCards(channel) : "") + Elements(channel, columns) + Five({2});
    int material = 0;
    for (const double D : {channel.DReservoir, channel.DSecond > 0.0 ? channel.DSecond : 1.0, channel.D})
        deck += Five({++material, 2}) + Print("%20.10e%20.10e\n%20.10e%20.10e\n", -10.0, D, 10.0, D);
    deck += "    1    1\n 1.0000e+3\n 1.0000e+0\n 1.0000e+0\n" + OutletCards(1, 0.0);
    deck += Five({2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    deck += Print("%10.3e%5d%5d\n%5d%5d%5d\n%5d\n", 0.0, 0, 1, 1, 1, NP, 0);
    return deck + Print("%10.3e%5d%5d\n%5d%5d%5d\n%5d\nSTOP\n", 1.0, 0, 1, 1, 1, NodeAt(channel, 2, n, 1), 0);
}

/// Reservoirs so large that the channel passes on what it takes, but for half a percent.
void SlowDown(Channel& channel) {
    channel.reservoir = 400.0;
    channel.DReservoir = 1e5;
    channel.size = 40.0;
}

RunResult RunWell(const Channel& channel) {
    const RunResult result = RunDeck(Build(channel));
    EXPECT_EQ(result.status, 0) << result.errors;
    return result;
}

/// The rows of numbers that follow the last line of the file with these words and the head below it.
std::vector<std::vector<double>> RowsAfter(const std::string& text, const std::string& words, int heads) {
    std::vector<std::vector<double>> rows;
    const std::size_t at = text.rfind(words);
    if (at == std::string::npos)
        return rows;
    std::istringstream lines(text.substr(at));
    std::string line;
    for (int head = 0; head < heads; ++head)
        std::getline(lines, line);
    while (std::getline(lines, line)) {
        std::replace(line.begin(), line.end(), 'D', 'E');
        std::istringstream items(line);
        rows.emplace_back();
        for (double value = 0.0; items >> value;)
            rows.back().push_back(value);
        if (rows.back().empty())
            return rows.pop_back(), rows;
    }
    return rows;
}

/// D1D, D2D, HEQ, HEQ0 of the mass file.
std::vector<double> Fitted(const RunResult& result) {
    const auto rows = RowsAfter(result.mass, " VALUES OF FITTED", 2);
    return rows.empty() ? std::vector<double>(4, NAN) : rows[0];
}

double PorosityOf(const RunResult& direct) {
    const auto rows = RowsAfter(direct.mass, " NUMBER OF TIME", 1);
    return rows.empty() ? NAN : rows[0].at(1);
}

// --- balance ------------------------------------------------------------------------------------------------------

/// Integral of c behind x = 0 over all elements but those whose points all lie in a cylinder.
double StoredBehindInlet(const Channel& channel, const std::vector<double>& c, bool withFibres) {
    const std::vector<double> x = Places(channel);
    const int n = channel.mesh;
    const double g = 0.5 / std::sqrt(3.0), radius = Diameter(channel) / 2.0;
    double stored = 0.0;
    for (int i = 2; i + 1 < static_cast<int>(x.size()); ++i)
        for (int j = 0; j < n; ++j) {
            const double from = x[static_cast<std::size_t>(i)], to = x[static_cast<std::size_t>(i) + 1];
            bool within = withFibres && to <= channel.cells;
            double mean = 0.0;
            for (const double side : {-1.0, 1.0})
                for (const double up : {-1.0, 1.0}) {
                    const double px = (from + to) / 2 + side * g * (to - from), py = (j + 0.5 + up * g) / n;
                    within = within && std::hypot(px - std::floor(px) - 0.5, py - 0.5) < radius;
                    for (int k = 0; k < 2; ++k) {
                        const int node = NodeAt(channel, i + (side > 0.0), j + (up > 0.0), k);
                        mean += c[static_cast<std::size_t>(node) - 1] / 8.0;
                    }
                }
            stored += within ? 0.0 : mean * (to - from) / n / n;
        }
    return stored;
}

// What has gone through the plane x = 0 is what stands behind it; start values are 0 there but on the plane itself. To the
// five digits of the files. Faults: half of the plane's storage, elements of both sides, flows of the other model.
TEST(Homogenization, WhatPassesTheInletIsWhatIsStoredBehindIt) {
    for (const int pass : {1, 2}) {
        Channel channel;
        channel.IDIRECTD = 1;
        channel.IPASSPRINT = pass;
        const RunResult result = RunWell(channel);
        const auto flows = RowsAfter(result.mass, " CHANGE OF MASS", 2);
        ASSERT_EQ(flows.size(), 12U);
        double passed = 0.0;
        for (const auto& row : flows)
            passed += row.at(static_cast<std::size_t>(pass)) * channel.size;
        const std::vector<double> end = LastConcentrations(result.listing);
        ASSERT_EQ(end.size(), 378U);
        std::vector<double> start(end.size(), 0.0);
        std::fill_n(start.begin(), NodeAt(channel, 2, 8, 1), 1.0);
        const double stored =
            StoredBehindInlet(channel, end, pass == 1) - StoredBehindInlet(channel, start, pass == 1);
        std::printf("pass %d  passed %.6f  stored %.6f  ratio - 1 %.1e\n", pass, passed, stored,
                    passed / stored - 1.0);
        EXPECT_NEAR(passed / stored, 1.0, 2e-5) << pass;
    }
}

// --- coefficients -------------------------------------------------------------------------------------------------

// Faults: a porosity that is not 1, a lowered curve that the search does not get out of, fluxes of another volume.
TEST(Homogenization, MediumWithoutInfluenceHasTheBulkCoefficient) {
    Channel channel;
    channel.fraction = 0.0;
    channel.D = 0.7;
    EXPECT_NEAR(Fitted(RunWell(channel)).at(0), 0.7, 0.7e-4);
    channel.IDIRECTD = 1;
    const auto rows = RowsAfter(RunWell(channel).mass, " VALUES OF DIFFUSION", 2);
    ASSERT_GE(rows.size(), 12U);
    for (std::size_t step = 0; step < 12; ++step)
        EXPECT_EQ(rows[step].at(2), 0.7) << step + 1;
}

// References: series of Perrins, McKenzie and McPhedran (Proc. R. Soc. Lond. A 369, 1979). Along the flow the fluid alone
// conducts. Faults: a medium that keeps the fibres' numbering, a porosity applied twice, targets of another model.
TEST(Homogenization, SquareArraysOfCylinders) {
    for (const auto& [fraction, reference] : {std::pair{0.2, 0.666531}, std::pair{0.4, 0.425351}})
        for (const int mesh : {8, 16}) {
            Channel channel;
            channel.mesh = mesh;
            channel.fraction = fraction;
            const double fitted = Fitted(RunWell(channel)).at(0);
            std::printf("fraction %.1f mesh %2d  %.5f  %.4f\n", fraction, mesh, fitted, fitted / reference);
            EXPECT_NEAR(fitted / reference, 1.0, 0.04) << fraction << ' ' << mesh;
        }
    Channel channel;
    channel.alongFlow = true;
    channel.IDIRECTD = 1;
    channel.reservoir = 1.0; // what is printed is of the whole mesh, four cells long
    const double porosity = 1.0 - 2.0 * (1.0 - PorosityOf(RunWell(channel)));
    SlowDown(channel);
    const double direct = RowsAfter(RunWell(channel).mass, " VALUES OF DIFFUSION", 2).at(11).at(2);
    channel.IDIRECTD = 0;
    const double along = Fitted(RunWell(channel)).at(0);
    std::printf("along the flow  %.5f  porosity %.5f  direct %.5f\n", along, porosity, direct);
    EXPECT_NEAR(along / porosity, 1.0, 0.01);
    EXPECT_NEAR(direct, porosity, 1e-4);
}

// In series D = (1 + d) / 4, d from 0 to 2: the mean is 1 + HEQ = 2 / ln 3. Faults: a mean of distances, HEQ in another unit, reservoirs
// that take part, a search that stops at its start.
TEST(Homogenization, FittedDistanceIsTheMeanOfTheResistances) {
    Channel channel;
    channel.slope = true;
    channel.IDCC = 0;
    SlowDown(channel);
    const std::vector<double> fitted = Fitted(RunWell(channel));
    std::printf("HEQ %.5f, start %.5f, exact %.5f\n", fitted.at(2), fitted.at(3), 2.0 / std::log(3.0) - 1.0);
    EXPECT_NEAR(fitted.at(2), 2.0 / std::log(3.0) - 1.0, 5e-3);
}

// Layers of 1 and 10 across and along the flow. Faults: coefficients of the wrong element, means of the wrong weights.
TEST(Homogenization, LayersInSeriesAndSideBySide) {
    Channel channel;
    channel.fraction = 0.0;
    channel.IDIRECTD = 1;
    channel.DSecond = 10.0;
    SlowDown(channel);
    for (const bool across : {false, true}) {
        channel.halvesAcross = across;
        const auto rows = RowsAfter(RunWell(channel).mass, " VALUES OF DIFFUSION", 2);
        ASSERT_GE(rows.size(), 12U);
        std::printf("layers %s  %.5f\n", across ? "side by side" : "in series", rows[11].at(2));
        EXPECT_NEAR(rows[11].at(2), across ? 5.5 : 20.0 / 11.0, 1e-3);
    }
}

// --- runs that can not be fitted ----------------------------------------------------------------------------------

// Faults: a search on a target of zero that never ends, a fit without fibres, a direction's file left shut.
TEST(Homogenization, RunsThatCanNotBeFittedEnd) {
    const std::string none = "NO MASS PASSES THE INLET";
    Channel channel;
    channel.mesh = 2;
    channel.steps = 3;
    channel.NFSTEP = 0; // without a step the sum is zero to the last bit
    channel.NFITMAX = 7;
    const RunResult result = RunWell(channel);
    EXPECT_NE(result.console.find("Max number of iterations"), std::string::npos);
    EXPECT_EQ(CountOf(result.console, none), 1);
    EXPECT_EQ(CountOf(result.listing, none), 1);
    channel = Channel{};
    channel.INDFITX = 0;
    channel.INDFITY = 1;
    channel.NFITMAX = 3;
    const RunResult twoFiles = RunWell(channel);
    EXPECT_TRUE(ReadFile(twoFiles.folder + "/MASS-Y.LST").find("FITTED") != std::string::npos);
    EXPECT_EQ(twoFiles.mass, "");
    channel.fibres = false;
    const RunResult plain = RunWell(channel);
    EXPECT_EQ(plain.console.find("HOMOGENIZATION"), std::string::npos);
    EXPECT_EQ(LastConcentrations(plain.listing).size(), 378U);
}

} // namespace
} // namespace zurt_test
