// Whole runs of problems with a nanochannel and with fibres: what the outlet cards hold, what a time multiplier and the
// tables of fibres make of the coefficients, which elements and nodes take part; porosity against exact volumes, two
// reservoirs on a channel against their decay, fibres without influence, fibres in the plane, factors of the fluxes. Prints
// the tables of docs/verification.md.
#include "support/bar_deck.h"
#include "support/orders.h"

#include <array>
#include <set>

namespace zurt_test {
namespace {

const double kPi = std::acos(-1.0);

using Fibres = std::vector<std::vector<std::array<double, 3>>>;

BarDeck DeviceDeck(int nx, int ny, int nz) {
    BarDeck bar;
    bar.nx = nx;
    bar.ny = ny;
    bar.nz = nz;
    bar.width = 1.0 / ny;
    bar.fixedFormat = true;
    bar.NDS = bar.NANOCH = 1;
    bar.periods = {{3, 0.02}};
    return bar;
}

RunResult RunBar(const BarDeck& bar) {
    RunResult result = RunWell(Build(bar));
    EXPECT_EQ(result.errors, "");
    EXPECT_TRUE(Contains(result.listing, "N O D A L"));
    return result;
}

std::vector<double> Concentrations(const BarDeck& bar) {
    return LastConcentrations(RunWell(Build(bar)).listing);
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
        BarDeck bar = DeviceDeck(2, 1, 1);
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
    BarDeck bar = DeviceDeck(4, 1, 1);
    bar.NULAZ = 2;
    bar.outlet = OutletCards(1, 0.0);
    const std::vector<double> plain = Concentrations(bar);
    bar.outlet = Print("%5d\n%20.6e%20.6e\n%20.6e%20.6e\n\n", 2, 0.0, 7.0, 1.0, 8.0);
    const RunResult pairs = RunBar(bar);
    bar.outlet = Print("%5d\n%15.5e%15.5e%15.5e%15.5e\n    0    0    9\n", -3, 1.0, 2.0, 3.0, 4.0);
    const RunResult analytic = RunWell(Build(bar));
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
    BarDeck bar = DeviceDeck(4, 1, 1);
    bar.groups = 2;
    const auto with = [&](double D, const std::string& outlet) {
        SetCoefficient(bar, D);
        bar.outlet = outlet;
        return Concentrations(bar);
    };
    const std::string constant = OutletCards(1, 0.0), halving = Multiplier(1, 1, {{0.0, 0.5}, {0.01, 0.5}});
    const std::vector<double> whole = with(1.0, constant), half = with(0.5, constant);
    ExpectEqual(with(1.0, halving), half);
    bar.NDS = 4; // reads the cards as well
    ExpectEqual(with(1.0, halving), half);
    bar.NDS = 1;
    const std::vector<double> first = with(1.0, Multiplier(1, 0, {{0.0, 0.5}}));
    const std::vector<double> second = with(1.0, Multiplier(0, 1, {{0.0, 0.5}}));
    ASSERT_EQ(first.size(), 20U);
    EXPECT_GT(first[1], second[1]) << "the first half is the slow one";
    EXPECT_NEAR(first[1], second[3], 1e-5) << "and the other way round it mirrors";
    EXPECT_GT(first[1], whole[1]);
    bar.periods = {{1, 0.02}};
    ExpectEqual(with(0.5, Multiplier(1, 1, {{0.0, 0.0}, {0.04, 4.0}})), with(1.0, constant));
}

// Faults: memory for a table of no or endless points; counts that pass for switches.
TEST(Outlet, CountsWithoutAMeaningEndTheRun) {
    BarDeck bar = DeviceDeck(4, 1, 1);
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

// Faults: factors that are applied twice, to the fluxes alone or not to them; a plain run of the equivalent medium whose curve
// is not lowered by porosity (here 1) and 1.1 times the factor.
TEST(FibreDecks, FactorsOfATableScaleTheCoefficientInFormingAndFluxes) {
    for (const int IEHM : {0, 1}) {
        BarDeck bar = DeviceDeck(6, 2, 2);
        SetCoefficient(bar, IEHM == 0 ? 0.5 : 0.5 * 0.5 * 1.1);
        const RunResult plain = RunBar(bar);
        SetCoefficient(bar, 1.0);
        bar.fibres = OneFibre(IEHM, 0.01, {{0.0, 0.5, 0.5}, {1.0, 0.5, 0.5}}, 0.5);
        const RunResult fibres = RunWell(Build(bar));
        ExpectEqual(LastConcentrations(fibres.listing), LastConcentrations(plain.listing));
        const std::vector<double> flux = LastUnvValues(fibres.graphics, 3);
        const std::vector<double> expected = LastUnvValues(plain.graphics, 3);
        ASSERT_EQ(flux.size(), expected.size());
        ASSERT_FALSE(flux.empty());
        for (std::size_t i = 0; i < flux.size(); i += 3)
            EXPECT_NEAR(flux[i], expected[i], 1e-4) << IEHM;
    }
}

// Nodes of a block of cubes that some element outside the sphere touches.
std::set<int> NodesInFluid(const BarDeck& bar, double radius) {
    const double g = 0.5 / std::sqrt(3.0), h = 1.0 / bar.nx;
    std::set<int> nodes;
    for (int n = 0; n < bar.nx * bar.ny * bar.nz; ++n) {
        const int i = n % bar.nx, j = n / bar.nx % bar.ny, k = n / (bar.nx * bar.ny);
        bool fluid = false;
        for (int p = 0; p < 8; ++p) {
            const double x = h * (i + 0.5 + (p % 2 ? g : -g)) - 0.5;
            const double y = h * (j + 0.5 + (p / 2 % 2 ? g : -g)) - 0.5;
            const double z = h * (k + 0.5 + (p / 4 ? g : -g)) - 0.5;
            fluid = fluid || std::hypot(x, y, z) > radius;
        }
        for (int c = 0; fluid && c < 8; ++c)
            nodes.insert(GridNode(bar, i + c % 2, j + c / 2 % 2, k + c / 4));
    }
    return nodes;
}

// Faults: elements in a fibre that are formed, or kept ones that are not; nodes outside that reach the sparse solver;
// equations that are not numbered anew.
TEST(FibreDecks, ASphereTakesItsElementsAndNodesOutOfTheModel) {
    BarDeck bar = DeviceDeck(6, 6, 6);
    bar.fibres = OneFibre(0, 0.7, {{0.5, 0.5, 0.5}}, 1.0);
    const std::set<int> fluid = NodesInFluid(bar, 0.35);
    ASSERT_GT(fluid.size(), 300U);
    ASSERT_LT(fluid.size(), 343U);
    const RunResult skyline = RunBar(bar);
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
    BarDeck bar = DeviceDeck(6, 2, 2);
    const std::vector<double> plain = Concentrations(bar);
    bar.fibres = OneFibre(0, 0.01, {{0.0, 0.5, 0.5}, {1.0, 0.5, 0.5}}, 0.25);
    bar.end = "";
    const RunResult both = RunWell(Build(bar) + "   \n" + Build(DeviceDeck(6, 2, 2)));
    ExpectEqual(LastConcentrations(both.listing), plain);
}

// Whether a point counts is a step function, so the error of one diameter jumps about; its mean square over several falls
// with the mesh. Faults: weights, a radius for a diameter, fibres that the clip loses.
TEST(MicroscaleVerification, PorosityFollowsTheVolumeFraction) {
    struct Shape {
        const char* name;
        Fibres fibres;
        double diameter;
        double power; // volume = factor * diameter^power
        double factor;
        std::vector<int> meshes;
    };
    Fibres array;
    for (const double y : {0.25, 0.75})
        for (const double z : {0.25, 0.75})
            array.push_back({{0.0, y, z}, {1.0, y, z}});
    const Shape shapes[] = {
        {"fibre", {{{-0.2, 0.47, 0.53}, {1.3, 0.47, 0.53}}}, 0.6, 2, kPi / 4, {8, 16, 32, 64}},
        {"array", array, 0.3, 2, kPi, {8, 16, 32, 64}},
        {"sphere", {{{0.47, 0.53, 0.5}}}, 0.8, 3, kPi / 6, {4, 8, 16}}};
    for (const Shape& shape : shapes) {
        double previous = 0.0, first = 0.0;
        for (const int n : shape.meshes) {
            double square = 0.0;
            for (int i = 0; i < 10; ++i) {
                BarDeck bar = DeviceDeck(shape.power == 3 ? n : 1, n, n);
                bar.hold = false;
                bar.periods = {{1, 0.01}};
                const double diameter = (0.9 + 0.02 * i) * shape.diameter;
                bar.fibres = FibreCards({diameter, shape.fibres, {ConstantTable(1.0)}});
                const double error =
                    PorosityOf(RunBar(bar)) - (1.0 - shape.factor * std::pow(diameter, shape.power));
                square += error * error / 10.0;
            }
            const double error = std::sqrt(square);
            std::printf("%-7s %3d  %.3e  %s\n", shape.name, n, error,
                        previous > 0.0 ? Print("%.2f", Order(previous, error)).c_str() : "");
            first = first > 0.0 ? first : error;
            previous = error;
        }
        EXPECT_GT(Order(first, previous) / static_cast<double>(shape.meshes.size() - 1), 1.2) << shape.name;
        EXPECT_LT(previous, 3e-3) << shape.name;
    }
}

// The least positive root of tan mu = mu (k1 + k2) / (mu^2 - k1 k2), in the form that has no poles.
double DecayRoot(double k1, double k2) {
    const auto f = [&](double mu) {
        return std::sin(mu) * (mu * mu - k1 * k2) - mu * (k1 + k2) * std::cos(mu);
    };
    double low = 1e-3, high = kPi;
    for (int i = 0; i < 60; ++i) {
        const double middle = (low + high) / 2;
        (f(low) * f(middle) <= 0.0 ? high : low) = middle;
    }
    return low;
}

// A bar of equal parts, of which `left` are one reservoir, then `channel` ones, and one the other reservoir. Returns the
// rate, for a channel of length 1 and D = 1, at which the difference between the ends falls late in time.
struct Parts {
    int left, channel;
};

double MeasuredRate(const Parts& parts, int elementsOfChannel, int steps) {
    const int all = parts.left + parts.channel + 1, perPart = elementsOfChannel / parts.channel;
    BarDeck bar = DeviceDeck(all * perPart, 1, 1);
    bar.NANOCH = bar.NDS = 3;
    bar.hold = false;
    bar.across = true;
    bar.length = static_cast<double>(all) / parts.channel;
    bar.width = 0.1;
    bar.groups = all;
    for (int part = 0; part < all; ++part)
        bar.groupFactors.push_back(part < parts.left || part == all - 1 ? 1e6 : 1.0);
    // The sum of all is zero, so that the digits of the listing are those of the difference.
    const double ramp = 0.5 / perPart, right = -(parts.left + ramp) / (parts.channel + 1 - ramp);
    bar.startRanges = {{4 * (parts.left * perPart + 1), 1.0}, {4 * (all * perPart + 1), right}};
    bar.EPSTA = bar.EPSTR = 1e-8;
    bar.periods = {{4 * steps, 0.5 / steps}};
    bar.NPRINT = bar.IGRAF = 2 * steps;
    const std::string listing = RunBar(bar).listing;
    const std::string half = listing.substr(0, listing.rfind(" S T E P  NUMBER ="));
    const std::vector<double> early = LastConcentrations(half), late = LastConcentrations(listing);
    return std::log((early.front() - early.back()) / (late.front() - late.back()));
}

// Faults: a group's material or start value in another group, storage at the joints of groups.
TEST(MicroscaleVerification, ReservoirsEqualiseAsTwoStirredOnes) {
    for (const Parts& parts : {Parts{1, 1}, Parts{1, 2}, Parts{2, 1}, Parts{2, 2}}) {
        const double k1 = static_cast<double>(parts.channel) / parts.left, k2 = parts.channel;
        const double mu = DecayRoot(k1, k2), exact = mu * mu;
        std::printf("k1 %.1f k2 %.1f  mu^2 %.5f\n", k1, k2, exact);
        // Euler backward makes of the rate r a factor 1 / (1 + r dt) a step: solved for r, only the mesh is left.
        ExpectOrder({"mesh", 4, 3, 2.0, 0.375}, [&](int n) {
            const double dt = 0.5 / 100;
            return std::expm1(MeasuredRate(parts, n, 100) * dt) / dt / exact - 1.0;
        });
        ExpectOrder({"steps", 10, 3, 1.0, 0.25},
                    [&](int steps) { return MeasuredRate(parts, 32, steps) / exact - 1.0; });
    }
}

// The plain run has the same device cards (NDS, NANOCH) and no set. Factors of 1, and points that no search box holds,
// do not change a bit. Faults: factors that are not put back to 1 between points, elements or nodes lost, fluxes of
// another coefficient.
TEST(MicroscaleVerification, FibresWithoutInfluenceLeaveThePlainRun) {
    for (const bool plane : {false, true})
        for (const int gauss : {2, 3}) {
            BarDeck bar = DeviceDeck(6, 4, 4);
            bar.plane = plane;
            bar.gauss = gauss;
            bar.diffusion = {{-10.0, 2.0}, {0.0, 1.0}, {10.0, 3.0}};
            bar.NDS = 3;
            const RunResult plain = RunBar(bar);
            const double z = plane ? 0.0 : 0.5;
            FibreSetCards set{1e-6, {{{0.0, 0.5, z}, {1.0, 0.5, z}}}, {ConstantTable(1.0)}};
            for (const double boxHigh : {1.0, 0.0}) {
                set.boxHigh = boxHigh;
                bar.fibres = FibreCards(set);
                const RunResult fibres = RunBar(bar);
                EXPECT_EQ(ResultsOfListing(fibres.listing), ResultsOfListing(plain.listing));
                EXPECT_TRUE(fibres.graphics == plain.graphics);
                EXPECT_EQ(fibres.mass, plain.mass);
                set.tables = {ConstantTable(0.25)}; // of no effect outside the box
            }
        }
}

BarDeck Sheet(int n) {
    BarDeck bar = DeviceDeck(n, n, 1);
    bar.plane = bar.across = true;
    bar.box = {1.0, 1.0, 0.0};
    bar.periods = {{5, 0.02}};
    return bar;
}

// Faults: clipping in the plane, an end's distance that knows left from right, content lost or made under fibres.
TEST(MicroscaleVerification, StripsInThePlaneKeepSymmetryAndContent) {
    const int n = 20;
    BarDeck bar = Sheet(n);
    const Fibres strips = {{{0.25, 0.2, 0.0}, {0.25, 0.8, 0.0}}, {{0.75, 0.8, 0.0}, {0.75, 0.2, 0.0}}};
    const std::string wall = "    2    1\n     0.000   100.000\n     1.000\n    0.2000\n    1.0000\n";
    bar.fibres = FibreCards({0.05, strips, {wall}}); // no element lies in them as a whole
    const std::vector<double> uptake = Concentrations(bar);
    ASSERT_EQ(uptake.size(), 441U);
    const auto at = [&](int i, int j) {
        return uptake[static_cast<std::size_t>(GridNode(bar, i, j, 0)) - 1];
    };
    bar.nz = 0; // one layer of nodes, for GridNode
    for (int i = 0; i <= n; ++i)
        for (int j = 0; j <= n; ++j) {
            EXPECT_NEAR(at(i, j), at(n - i, j), 1e-6) << i << ", " << j;
            EXPECT_NEAR(at(i, j), at(i, n - j), 1e-6) << i << ", " << j;
        }
    bar.hold = false;
    bar.periods = {{20, 0.01}};
    bar.startRanges = {{21 * 7, 1.0}, {21 * 21, 0.0}};
    const std::vector<double> closed = Concentrations(bar);
    double content = 0.0;
    for (std::size_t node = 0; node < 441;
         ++node) // the consistent capacity matrix adds up to the trapezoidal rule
        content +=
            closed[node] / 400.0 * (node % 21 % 20 == 0 ? 0.5 : 1.0) * (node / 21 % 20 == 0 ? 0.5 : 1.0);
    EXPECT_NEAR(content, 6.5 / 20.0, 1e-5);
    // A strip from side to side lets nothing through.
    bar.fibres = FibreCards({0.1, {{{0.625, -0.5, 0.0}, {0.625, 1.5, 0.0}}}, {wall}});
    const std::vector<double> dammed = Concentrations(bar);
    EXPECT_NEAR(dammed.front(), 6.5 / 12.0, 0.1);
    EXPECT_NEAR(dammed.back(), 0.0, 1e-4);
}

// The first table acts along the fibre, the second towards it. Faults: axes exchanged, z taken for an axis of the plane.
TEST(MicroscaleVerification, TablesActAlongTheirAxes) {
    const double along = 0.5, towards = 0.25;
    for (const bool plane : {true, false}) {
        BarDeck bar = plane ? Sheet(8) : DeviceDeck(8, 4, 4);
        bar.across = true;
        bar.periods = {{5, 0.02}};
        const double z = plane ? 0.0 : 0.5;
        const auto run = [&](double D, const std::string& fibres) {
            bar.diffusion = {{-1000.0, D}, {1000.0, D}};
            bar.fibres = fibres;
            return Concentrations(bar);
        };
        const std::vector<std::string> tables = {ConstantTable(along), ConstantTable(towards)};
        EXPECT_EQ(run(1.0, FibreCards({1e-6, {{{0.0, 0.5, z}, {1.0, 0.5, z}}}, tables})), run(along, ""));
        const std::vector<double> across =
            run(1.0, FibreCards({1e-6, {{{0.5, 0.0, z}, {0.5, 1.0, z}}}, tables}));
        if (plane) {
            EXPECT_EQ(across, run(towards, ""));
        } else { // towards and around in turns
            const std::vector<double> least = run(towards, ""), most = run(along, "");
            const std::size_t middle = 4 * 25 + 12;
            EXPECT_GT(across[middle], most[middle]);
            EXPECT_LT(across[middle], least[middle]);
        }
    }
}

// The coefficients of the fluxes are those of their own points. Fault: those of the group's points, by number.
TEST(MicroscaleVerification, FluxesTakeTheFactorsOfTheirPoints) {
    const std::string slope = "    2    1\n     0.000  2000.000\n     1.000\n    0.1000\n    1.0000\n";
    const std::string steep = "    2    1\n     0.000  2000.000\n     1.000\n    0.0500\n    0.7000\n";
    for (const bool plane : {false, true}) {
        BarDeck bar = DeviceDeck(4, 3, 3);
        bar.plane = plane;
        bar.fibres = FibreCards(
            {0.05, {{{0.0, 0.1, plane ? 0.0 : 0.2}, {1.0, 0.4, plane ? 0.0 : 0.9}}}, {slope, steep}});
        std::vector<double> coefficients[2];
        for (const int gauss : {2, 3, 5}) {
            bar.gauss = gauss;
            coefficients[gauss == 2 ? 0 : 1] = LastUnvValues(RunBar(bar).graphics, 4);
            if (gauss != 2) {
                EXPECT_EQ(coefficients[1], coefficients[0]) << gauss;
            }
        }
        EXPECT_GT(coefficients[0].size(), 50U);
    }
}

// Faults: an empty system handed to a solver, zeros listed as if they were a solution.
TEST(MicroscaleVerification, FibresThatFillTheDomainEndTheRun) {
    for (const int solver : {0, 2})
        for (const double diameter : {4.0, 1.6}) { // all of it; all but corners, whose nodes are held
            BarDeck bar = DeviceDeck(4, 4, 4);
            bar.solver = solver;
            bar.fibres = FibreCards({diameter, {{{0.5, 0.5, 0.5}}}, {ConstantTable(1.0)}});
            const RunResult result = RunDeck(Build(bar));
            EXPECT_EQ(result.status, 2);
            EXPECT_TRUE(Contains(result.errors, "there is nothing to solve")) << result.errors;
            EXPECT_FALSE(Contains(result.listing, "N O D A L    C O N C E N T R A T I O N S"));
        }
}

} // namespace
} // namespace zurt_test
