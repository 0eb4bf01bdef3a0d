#include "results/torsion.h"

#include "elements/gauss_rules.h"
#include "model/model_run.h"

#include <cmath>
#include <sstream>
#include <vector>

namespace zurt {
namespace {

using test::Contains;
using test::RunPointer;

// A field that is 0 on the outline of the square (-1, 1) x (-1, 1), of second order in each direction: elements of nine
// nodes hold it exactly, and its integral is 16/9.
double Field(double x, double y) {
    return (1.0 - x * x) * (1.0 - y * y);
}

// The square in n x n elements of nine nodes under `order` x `order` points, the field as nodal values.
RunPointer MakeSquare(int n, int order) {
    const int side = 2 * n + 1;
    RunPointer run = test::MakeRun("", 1, side * side);
    run->control.header.NGET = 2;
    run->control.counts.NQE = 1;
    run->groups[1].NETIP = 3; // passed over
    ElementGroup& group = run->groups[2];
    group.NETIP = 2;
    group.NET = n * n;
    group.NDMAX = 9;
    group.IPRTG = 1;
    group.NGAUS[0] = order;
    group.NGAUS[1] = order;
    group.indicesChecked = true; // its numbers are sound, and it has no materials
    run->control.at.LCORD = TakeWords(run->A, "coordinates", 3 * side * side);
    run->control.at.LNODAL = TakeWords(run->A, "NodalValues", side * side);
    group.LNEL = TakeWords(run->A, "NEL", 9 * group.NET);
    group.LIPT = TakeWords(run->A, "flags", group.NET);
    for (int j = 0; j < side; ++j)
        for (int i = 0; i < side; ++i) {
            const Word node = 1 + i + side * j;
            const double x = i * 1.0 / n - 1.0, y = j * 1.0 / n - 1.0;
            CoordinateColumn(*run, 1)(node) = x;
            CoordinateColumn(*run, 2)(node) = y;
            NodalValues (*run)(node) = Field(x, y);
        }
    const int column[] = {2, 0, 0, 2, 1, 0, 1, 2, 1}, row[] = {2, 2, 0, 0, 2, 1, 0, 1, 1};
    for (int e = 0; e < n * n; ++e)
        for (int k = 0; k < 9; ++k)
            Connectivity(*run, group)(e + 1, k + 1) =
                1 + 2 * (e % n) + column[k] + side * (2 * (e / n) + row[k]);
    return run;
}

struct StressRow {
    int i, j;
    double TAUZY, TAUZX, r, s;
};
struct Report {
    std::vector<StressRow> rows;
    std::vector<double> TORZE;
    double TORZM = std::nan("");
};

Report Print(Run& run) {
    PrintTorsion(run);
    std::istringstream listing(test::ListingOf(run));
    Report report;
    const auto number = [](std::string text) {
        for (char& c : text)
            c = c == 'D' ? 'E' : c;
        return std::stod(text);
    };
    for (std::string line; std::getline(listing, line);) {
        if (Contains(line, "TORZE ="))
            report.TORZE.push_back(number(line.substr(line.find('=') + 1)));
        else if (Contains(line, "TORZM ="))
            report.TORZM = number(line.substr(line.find('=') + 1));
        else if (line.size() == 57)
            report.rows.push_back({std::stoi(line.substr(0, 5)), std::stoi(line.substr(5, 5)),
                                   number(line.substr(16, 10)), number(line.substr(31, 10)),
                                   number(line.substr(46, 5)), number(line.substr(51, 6))});
    }
    return report;
}

// Faults: stresses swapped or of the wrong sign, points in another order, a moment without its 2 or its Jacobian.
TEST(Torsion, StressesAndMomentOfOneElement) {
    RunPointer run = MakeSquare(1, 3);
    const Report report = Print(*run);
    ASSERT_EQ(report.rows.size(), 9U);
    for (std::size_t p = 0; p < 9; ++p) {
        const StressRow& row = report.rows[p];
        EXPECT_EQ(row.i, static_cast<int>(p) / 3 + 1);
        EXPECT_EQ(row.j, static_cast<int>(p) % 3 + 1);
        const double x = XG(3, row.i), y = XG(3, row.j); // the element is the reference element
        EXPECT_NEAR(row.r, x, 0.005);
        EXPECT_NEAR(row.s, y, 0.005);
        EXPECT_NEAR(row.TAUZY, 2.0 * x * (1.0 - y * y), 5e-3);
        EXPECT_NEAR(row.TAUZX, -2.0 * y * (1.0 - x * x), 5e-3);
    }
    ASSERT_EQ(report.TORZE.size(), 1U);
    EXPECT_NEAR(report.TORZE[0], 32.0 / 9.0, 5e-5);
    EXPECT_NEAR(report.TORZM, 32.0 / 9.0, 5e-5);
}

// Faults: elements that take the first one's nodes or number, moments that don't add up, flags of other elements.
TEST(Torsion, MomentOfTheElementsWithAFlag) {
    RunPointer run =
        MakeSquare(4, 2); // two points integrate the second order exactly, but for their last digits
    Report report = Print(*run);
    ASSERT_EQ(report.TORZE.size(), 16U);
    EXPECT_EQ(report.rows.size(), 64U);
    EXPECT_NEAR(report.TORZM, 32.0 / 9.0, 5e-5);
    const auto strip = [](double a, double b) { return (b - b * b * b / 3.0) - (a - a * a * a / 3.0); };
    EXPECT_NEAR(report.TORZE[6], 2.0 * strip(0.0, 0.5) * strip(-0.5, 0.0), 5e-6); // column 3, row 2

    run = MakeSquare(4, 2);
    ElementGroup& group = run->groups[2];
    group.IPRTG = 2;
    group.hasValueFlags = true;
    const IntArray flags = IntSection(run->A, group.LIPT, group.NET);
    Fill(flags, 0);
    flags(7) = 1;
    flags(16) = 5;
    report = Print(*run);
    ASSERT_EQ(report.TORZE.size(), 2U);
    EXPECT_NEAR(report.TORZM, report.TORZE[0] + report.TORZE[1], 1e-5);
    EXPECT_TRUE(Contains(test::ListingOf(*run), " SHARE STRESS AT GAUSS POINTS OF ELEMENT   16\n"));

    run = MakeSquare(4, 2);
    run->groups[2].IPRTG = 0;
    report = Print(*run);
    EXPECT_TRUE(report.TORZE.empty());
    EXPECT_EQ(report.TORZM, 0.0);
}

// Faults: mid-side nodes that are not there and are read, a line without sources that is followed by others, an element
// inside out that is printed.
TEST(Torsion, AbsentNodesSourcesAndJacobians) {
    RunPointer run = MakeSquare(1, 2);
    for (Word k = 5; k <= 9; ++k)
        Connectivity(*run, run->groups[2])(1, k) = 0;
    Fill(NodalValues(*run), 2.0); // constant over an area of 4
    EXPECT_NEAR(Print(*run).TORZM, 16.0, 1e-4);

    run = MakeSquare(1, 2);
    run->control.counts.NQE = 0;
    PrintTorsion(*run);
    EXPECT_EQ(test::ListingOf(*run), "  THERE IS NOT TORSION, NQE=0\n");

    run = MakeSquare(1, 2);
    for (Word node = 1; node <= 9; ++node)
        CoordinateColumn(*run, 1)(node) *= -1.0;
    test::ListOnStandardError(*run);
    EXPECT_EXIT(PrintTorsion(*run), testing::ExitedWithCode(0), "FOR ELEMENT No.         1\n.*R=");
}

} // namespace
} // namespace zurt
