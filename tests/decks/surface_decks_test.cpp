// Whole runs of 2D decks with surface terms and with the torsion analogue, against published and series solutions.
#include "support/run_deck.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace zurt_test;

// A steady plane problem on a rectangle of nx x ny quadrilaterals, in free format. Nodes run along x first.
struct PlateDeck {
    int nx = 1, ny = 1;
    double width = 1.0, height = 1.0;
    double conductivity = 1.0, start = 0.0;
    std::function<bool(int, int)> held = [](int, int) { return false; };
    bool source = false; // a uniform source of 1
    int ITOR = 0, valueFlag = 0;
    int NHP = 0, NTOK = 0, NHR = 0;
    std::string functions; // of NTOK, NHP, NHR, and the radiation card
    std::string surfaces;  // cards, and the one that ends them
};

int PlateNode(const PlateDeck& plate, int i, int j) {
    return 1 + i + (plate.nx + 1) * j;
}

template <class... Values> std::string Card(const char* form, Values... values) {
    char text[200];
    std::snprintf(text, sizeof text, form, values...);
    return std::string(text) + "\n";
}

std::string Build(const PlateDeck& plate) {
    const int nx = plate.nx, ny = plate.ny;
    std::string deck = "Plate\n1 0 0 0\n";
    deck += Card("%d 1 1 0 1 1 0 2 %d -1 0", (nx + 1) * (ny + 1), plate.ITOR) +
            "1 0 0 60 0 1e-10 1 0\n1 0 0 0 0\n";
    for (int j = 0; j <= ny; ++j)
        for (int i = 0; i <= nx; ++i)
            deck += Card("%d %d %.17g %.17g 0 0 0", PlateNode(plate, i, j), plate.held(i, j) ? 1 : 0,
                         plate.width * i / nx, plate.height * j / ny);
    deck += "0/\n0/\n";
    deck +=
        Card("2 %d 0 %d 0 0", nx * ny, plate.source ? 1 : 0) + Card("1 1 4 0 %d 2 2 0 0", plate.valueFlag);
    for (int j = 0; j < ny; ++j)
        for (int i = 0; i < nx; ++i)
            deck += Card("%d %d %d %d %d 0 1 0 0 0 0 0", 1 + i + nx * j, PlateNode(plate, i + 1, j + 1),
                         PlateNode(plate, i, j + 1), PlateNode(plate, i, j), PlateNode(plate, i + 1, j));
    deck += "0 1 2 0 0 0\n1 0 0 1 1 1 1 1e6 -1e6\n1 2\n";
    deck += Card("-1e6 %.17g", plate.conductivity) + Card("1e6 %.17g", plate.conductivity);
    deck += Card("1 0 0 %d 1 %d 1 %d 1 %d 1", plate.NHP, plate.NTOK, plate.source ? 1 : 0, plate.NHR);
    deck += (plate.source ? "1 1\n0 1\n" : "") + plate.functions + Card("%.17g", plate.start);
    return deck + plate.surfaces + "STOP\n";
}

// The side of element (i, j) between two of its grid points, with its functions.
std::string Side(const PlateDeck& plate, int i, int j, int from, int to, const char* numbers) {
    return Card("%d %d %d %s", 1 + i + plate.nx * j, from, to, numbers);
}

// Order of convergence of an error that falls from `coarse` to `fine` on a mesh of half the size.
double Order(double coarse, double fine) {
    return std::log2(std::fabs(coarse) / std::fabs(fine));
}

// Conduction with convection on two sides: NAFEMS test T4, whose series is 18.2538 at (0.6, 0.2). The unknown is shifted
// by 100, since nodes are held at 0.
double PlateWithConvection(int n) {
    PlateDeck plate;
    plate.nx = 3 * n;
    plate.ny = 5 * n;
    plate.width = 0.6;
    plate.conductivity = 52.0;
    plate.held = [](int, int j) { return j == 0; };
    plate.NHP = plate.NTOK = 1;
    plate.functions = "1 1\n0 -100\n1 1\n0 750\n";
    const int nx = plate.nx, ny = plate.ny;
    for (int j = 0; j < ny; ++j) // the first card has the numbers
        plate.surfaces += Side(plate, nx - 1, j, PlateNode(plate, nx, j), PlateNode(plate, nx, j + 1),
                               j == 0 ? "0 1 1 0 0" : "0 0 0 0 0");
    for (int i = 0; i < nx; ++i)
        plate.surfaces +=
            Side(plate, i, ny - 1, PlateNode(plate, i + 1, ny), PlateNode(plate, i, ny), "0 0 0 0 0");
    plate.surfaces += "0/\n";
    const RunResult run = RunDeck(Build(plate));
    EXPECT_EQ(run.status, 0) << run.errors;
    const std::vector<double> u = LastConcentrations(run.listing);
    const auto node = static_cast<std::size_t>(PlateNode(plate, nx, n));
    return node <= u.size() ? 100.0 + u[node - 1] : 0.0;
}

// Faults: terms that are not applied, doubled, or put on other nodes; edges that miss each other at a corner.
TEST(SurfaceDecks, PlateWithConvection) {
    double before = 0.0;
    for (int n : {4, 8, 16}) {
        const double value = PlateWithConvection(n), error = value - 18.2538;
        const double order = before == 0.0 ? 0.0 : Order(before, error);
        std::printf("NAFEMS T4, %3d x %3d %10.4f %11.3e %6.2f\n", 3 * n, 5 * n, value, error, order);
        if (before != 0.0) {
            EXPECT_NEAR(order, 2.0, 0.2) << n;
        }
        before = error;
    }
    EXPECT_LT(std::fabs(before), 0.02);
}

// Bar of length 0.1 between 1000 and a radiating end: NAFEMS test T2, 927.0076. The temperature is absolute, so the hot
// end is held by a convection without resistance; the field is linear, so one element is enough.
TEST(SurfaceDecks, RadiatingBar) {
    PlateDeck plate;
    plate.width = 0.1;
    plate.conductivity = 55.6;
    plate.start = 900.0;
    plate.NHP = plate.NHR = 1;
    plate.NTOK = 2;
    plate.functions = "1 1\n0 1000\n2 1\n0 300\n1 1\n0 1e12\n1 1\n0 0.98\n5.67e-8 0\n";
    plate.surfaces = "1 1 3 0 1 1 0 0\n1 4 2 0 0 2 1 0\n0/\n";
    const RunResult run = RunDeck(Build(plate));
    EXPECT_EQ(run.status, 0) << run.errors;
    const std::vector<double> T = LastConcentrations(run.listing);
    ASSERT_EQ(T.size(), 4U);
    EXPECT_NEAR(T[0], 1000.0, 1e-6);
    EXPECT_NEAR(T[1], 927.0076, 0.006); // five digits are printed
    EXPECT_NEAR(T[3], 927.0076, 0.006);
}

// Moment of a square shaft: 0.140577 G theta a^4 (Timoshenko and Goodier), with G 0.5, theta 1, a 1.
double MomentOfSquare(int n) {
    PlateDeck plate;
    plate.nx = plate.ny = n;
    plate.held = [n](int i, int j) { return i == 0 || j == 0 || i == n || j == n; };
    plate.source = true;
    plate.ITOR = plate.valueFlag = 1;
    const RunResult run = RunDeck(Build(plate));
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(CountOf(run.listing, "SHARE STRESS"), n * n);
    const std::size_t at = run.listing.find("TORZM =");
    if (at == std::string::npos) {
        ADD_FAILURE() << "no moment";
        return 0.0;
    }
    std::string text = run.listing.substr(at + 7, 12);
    text.replace(text.find('D'), 1, "E");
    return std::stod(text);
}

// Faults: a torsion step that is not called, or called on other values than those of the step.
TEST(SurfaceDecks, TorsionOfASquare) {
    double before = 0.0;
    for (int n : {4, 8, 16}) {
        const double moment = MomentOfSquare(n), error = moment - 0.5 * 0.140577;
        const double order = before == 0.0 ? 0.0 : Order(before, error);
        std::printf("torsion, %3d x %3d %12.6f %11.3e %6.2f\n", n, n, moment, error, order);
        if (before != 0.0) {
            EXPECT_NEAR(order, 2.0, 0.1) << n;
        }
        before = error;
    }
}

} // namespace
