// Whole decks turned about the axes, written in other units and numbered in another order: none of that is physics, so concentrations
// stay what they are and fluxes turn with the deck.
//
// Faults: an axis taken for another in fibre search, local axes, factor tables, Jacobians, orthotropic coefficients or fluxes; a length
// or a time that is compared with a constant; a result that hangs on node numbers.
#include "support/bar_deck.h"
#include "support/run_deck.h"

#include <cmath>

namespace zurt_test {
namespace {

const double kPi = std::acos(-1.0);

/// Turns the unit cube into itself: axis i of the new frame is this axis of the old one, from its other end where the sign is -1.
struct Frame {
    const char* name;
    std::array<std::size_t, 3> axis;
    std::array<int, 3> sign;
};

const Frame kAsItIs = {"as it is", {0, 1, 2}, {1, 1, 1}};

Place Turned(const Frame& frame, const Place& place) {
    Place turned;
    for (std::size_t i = 0; i < 3; ++i)
        turned[i] = frame.sign[i] > 0 ? place[frame.axis[i]] : 1.0 - place[frame.axis[i]];
    return turned;
}

/// Of a vector field, three components a node.
std::vector<double> TurnedVectors(const Frame& frame, const std::vector<double>& field) {
    std::vector<double> turned(field.size());
    for (std::size_t at = 0; at + 2 < field.size(); at += 3)
        for (std::size_t i = 0; i < 3; ++i)
            turned[at + i] = frame.sign[i] * field[at + frame.axis[i]];
    return turned;
}

/// Units of the deck: those of lengths, times and concentrations in terms of the plain deck's.
struct Units {
    double length = 1.0, time = 1.0, concentration = 1.0;
};

// Factors from 0.1 at a wall, or less, to 1 at 2000 of the table's units of length.
std::string SlopeTable(double atWall, double length) {
    return Print("    2    1\n%10.3f%10.3f\n     1.000\n%10.4f\n    1.0000\n", 0.0, 2000.0 * length, atWall);
}

/// A unit cube, or square, of warped elements of unequal sizes with two oblique fibres and a curve of the concentration.
BarDeck WarpedBlock(bool plane, const Frame& frame = kAsItIs, const Units& units = {}) {
    BarDeck bar;
    bar.plane = plane;
    bar.fixedFormat = true;
    bar.generate = false;
    bar.NDS = bar.NANOCH = 1;
    bar.nx = 6;
    bar.ny = 4;
    bar.nz = 3;
    bar.places = {{{0.0, 0.15, 0.35, 0.5, 0.7, 0.85, 1.0}, {0.0, 0.2, 0.45, 0.7, 1.0}, {0.0, 0.3, 0.6, 1.0}}};
    const auto placed = [frame, units](const Place& at) {
        Place place = Turned(frame, at);
        for (double& x : place)
            x *= units.length;
        return place;
    };
    bar.shape = [plane, placed](const Place& at) {
        const double bump =
            std::sin(kPi * at[0]) * std::sin(kPi * at[1]) * (plane ? 1.0 : std::sin(kPi * at[2]));
        return placed({at[0] + 0.06 * bump, at[1] - 0.05 * bump, at[2] + (plane ? 0.0 : 0.07 * bump)});
    };
    const double low = plane ? 0.0 : 0.2, high = plane ? 0.0 : 0.9;
    bar.box = {units.length, units.length, units.length};
    FibreSetCards set;
    set.diameter = 0.15 * units.length;
    set.boxHigh = units.length;
    set.fibres = {{placed({0.1, 0.1, low}), placed({0.9, 0.4, high})},
                  {placed({0.8, 0.9, low}), placed({0.3, 0.6, high / 2})}};
    set.tables = {SlopeTable(0.1, units.length), SlopeTable(0.05, units.length)};
    bar.fibres = FibreCards(set);
    const double c = units.concentration, D = units.length * units.length / units.time;
    bar.diffusion = {{-10.0 * c, 0.5 * D}, {0.0, 0.5 * D}, {1.0 * c, 2.0 * D}, {10.0 * c, 2.0 * D}};
    bar.outlet = OutletCards(1, 0.25 * c);
    bar.start = c;
    bar.periods = {{3, 0.02 * units.time}};
    return bar;
}

/// Equal to the digits of the tables; components that cancel, to those of the largest.
void ExpectSame(const std::string& what, const std::vector<double>& values,
                const std::vector<double>& expected, double factor = 1.0) {
    ASSERT_FALSE(expected.empty());
    ASSERT_EQ(values.size(), expected.size()) << what;
    double largest = 0.0;
    for (const double value : expected)
        largest = std::max(largest, std::fabs(factor * value));
    EXPECT_GT(largest, 0.0) << what;
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_NEAR(values[i], factor * expected[i], 6e-5 * largest) << what << ", entry " << i;
}

RunResult RunBlock(const BarDeck& bar) {
    RunResult run = RunWell(Build(bar));
    EXPECT_EQ(AllConcentrations(run.listing).size(), 3U) << run.errors;
    return run;
}

TEST(Frames, FluxesTurnWithTheDeckAndNothingElseChanges) {
    const Frame quarterTurn = {"a quarter turn about z", {1, 0, 2}, {-1, 1, 1}};
    const Frame forward = {"y, z, x", {1, 2, 0}, {1, 1, 1}}, backward = {"z, x, y", {2, 0, 1}, {1, 1, 1}};
    const Frame halfTurn = {"half a turn about x", {0, 1, 2}, {1, -1, -1}};
    for (const bool plane : {false, true}) {
        const RunResult plain = RunBlock(WarpedBlock(plane));
        for (const Frame& frame : plane ? std::vector<Frame>{quarterTurn}
                                        : std::vector<Frame>{quarterTurn, forward, backward, halfTurn}) {
            const RunResult turned = RunBlock(WarpedBlock(plane, frame));
            for (std::size_t step = 0; step < 3; ++step)
                ExpectSame(frame.name, AllConcentrations(turned.listing)[step],
                           AllConcentrations(plain.listing)[step]);
            for (const int which : {2, 3})
                ExpectSame(frame.name, LastUnvValues(turned.graphics, which),
                           TurnedVectors(frame, LastUnvValues(plain.graphics, which)));
            EXPECT_NEAR(PorosityOf(turned), PorosityOf(plain), 1e-6) << frame.name;
        }
    }
}

TEST(Frames, OtherUnitsChangeTheScaleAlone) {
    const RunResult plain = RunBlock(WarpedBlock(false));
    for (const Units& units : {Units{8.0, 1.0, 1.0}, Units{1.0, 0.25, 1.0}, Units{1.0, 1.0, 4.0}}) {
        const std::string what =
            Print("length %g, time %g, concentration %g", units.length, units.time, units.concentration);
        const RunResult other = RunBlock(WarpedBlock(false, kAsItIs, units));
        ExpectSame(what, LastConcentrations(other.listing), LastConcentrations(plain.listing),
                   units.concentration);
        ExpectSame(what, LastUnvValues(other.graphics, 3), LastUnvValues(plain.graphics, 3),
                   units.concentration * units.length / units.time);
    }
}

TEST(Frames, AnotherOrderOfNodesGivesEachItsValue) {
    BarDeck along = WarpedBlock(false), across = along;
    across.across = true;
    const std::vector<double> first = LastConcentrations(RunBlock(along).listing),
                              second = LastConcentrations(RunBlock(across).listing);
    std::vector<double> reordered(first.size());
    for (int i = 0; i <= along.nx; ++i)
        for (int j = 0; j <= along.ny; ++j)
            for (int k = 0; k <= along.nz; ++k)
                reordered[GridNode(along, i, j, k) - 1] = second[GridNode(across, i, j, k) - 1];
    ExpectSame("numbers", reordered, first);
}

} // namespace
} // namespace zurt_test
