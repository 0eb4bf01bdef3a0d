// Conservation in full precision: what has gone through the inlet cross-section is what is stored behind it and what has
// left, in the model with fibres and in the equivalent medium. Amounts are integrated here, element by element.
#include "homogenization/mass_files.h"
#include "homogenization/mass_monitor.h"
#include "homogenization/recorded_pass.h"
#include "job/read_problem.h"
#include "job/solve_problem.h"
#include "run/partition.h"
#include "support/grid_deck.h"
#include "support/small_run.h"

#include <cmath>
#include <filesystem>
#include <numeric>

namespace zurt_test {
namespace {

using zurt::Run;

constexpr double kRadius = 0.3, kOutlet = 3.0; // end of the reservoir behind the cell
constexpr double kReservoir = 20.0;            // its coefficient

// Points of the rule of two, whose abscissa is a single-precision one: integrals of squares differ from 1/3 by 1e-8.
constexpr double kPoint = 0.5 * 0.5773502588272095;

/// A square cell 0 < x < 1 with a cylinder along z, between reservoirs.
GridDeck Cell(bool heldOutlet) {
    GridDeck grid = Deck({1, 10, std::acos(-1.0) * kRadius * kRadius, 2.0, kReservoir, 0.05});
    grid.D[1] = 0.5;
    if (heldOutlet)
        grid.held = [](const Place& at) { return at[0] == kOutlet; };
    grid.EPSTR = 1e-12;
    grid.IDIRECTD = 1;
    return grid;
}

/// The run stands in a folder of its own while it writes files by fixed names.
struct JobRun {
    SmallRun small;
    std::string before = std::filesystem::current_path();
    explicit JobRun(const GridDeck& grid) : small(Build(grid), 400000) {
        std::filesystem::current_path(small.folder);
        small.units.ListingOpen = small.units.GraphicsOpen = 1;
        small.job.Language = zurt::kEnglish;
        small.units.stepFile = std::tmpfile();
        ReadProblem(small);
    }
    ~JobRun() {
        std::filesystem::current_path(before);
        std::fclose(small.units.stepFile);
    }
};

/// Integrals over the column of elements behind node column i.
struct Column {
    double low, high;         // of c by the weights 1 - s and s, s from 0 to 1 along x
    double meanLow, meanHigh; // of c over both faces
};

Column ColumnOf(const GridDeck& grid, zurt::ConstRealArray c, std::size_t i, bool withFibres) {
    Column sums{};
    const auto& [x, y, z] = grid.places;
    const double length = x[i + 1] - x[i];
    for (std::size_t j = 0; j + 1 < y.size(); ++j) {
        const double middle = (x[i] + x[i + 1]) / 2, height = (y[j] + y[j + 1]) / 2, width = y[j + 1] - y[j];
        bool within = withFibres;
        for (const double side : {-kPoint, kPoint})
            for (const double up : {-kPoint, kPoint})
                within =
                    within && std::hypot(middle + side * length - 0.5, height + up * width - 0.5) < kRadius;
        double low = 0.0, high = 0.0; // means over the faces, bilinear
        for (std::size_t corner = 0; corner < 4; ++corner) {
            low += c(NodeAt(grid, i, j + corner % 2, corner / 2)) / 4;
            high += c(NodeAt(grid, i + 1, j + corner % 2, corner / 2)) / 4;
        }
        const double area = width * (z[1] - z[0]);
        sums.meanLow += low * area;
        sums.meanHigh += high * area;
        if (!within) {
            const double same = 0.25 + kPoint * kPoint, other = 0.25 - kPoint * kPoint;
            sums.low += area * length * (low * same + high * other);
            sums.high += area * length * (low * other + high * same);
        }
    }
    return sums;
}

/// What stands behind x = 0; next to held nodes their own share is not the model's.
double Stored(const GridDeck& grid, zurt::ConstRealArray c, bool withFibres) {
    double stored = 0.0;
    const std::size_t last = grid.places[0].size() - 2;
    for (std::size_t i = 2; i <= last; ++i) {
        const Column column = ColumnOf(grid, c, i, withFibres && i < last - 1);
        stored += column.low + (grid.held && i == last ? 0.0 : column.high);
    }
    return stored;
}

double TotalFlow(const std::vector<double>& flows, double size) {
    return size * std::accumulate(flows.begin(), flows.end(), 0.0);
}

double StoredAtStart(const GridDeck& grid, bool withFibres) {
    std::vector<double> start;
    for (const double x : grid.places[0])
        start.insert(start.end(), grid.places[1].size() * 2, x <= 0.0 ? 1.0 : 0.0);
    return Stored(grid, {start.data(), static_cast<zurt::Word>(start.size())}, withFibres);
}

/// What a recorded pass stands on; the pass of all steps.
zurt::Pass BeginTables(Run& run) {
    BeginMassTables(run);
    KeepInitialConcentrations(run);
    OpenMassFiles(run);
    zurt::Pass pass;
    pass.NDT = run.control.counts.NDT;
    return pass;
}

// Faults: half of the plane's storage, elements of both sides, a residual of the iteration before, the other model's elements, flows that are
// rounded on their way.
TEST(Balance, WhatPassesTheInletIsStoredBehindIt) {
    const GridDeck grid = Cell(false);
    for (const bool withFibres : {true, false}) {
        JobRun job(grid);
        auto& run = job.small;
        if (withFibres)
            RecordedPass(run, BeginTables(run));
        else
            SolveProblem(run); // its second pass is that of the equivalent medium
        const double passed = TotalFlow(withFibres ? run.mass.FLUXMICRO : run.mass.FLUXEQUIV, grid.size);
        const double stored = Stored(grid, NodalValues(run), withFibres) - StoredAtStart(grid, withFibres);
        std::printf("%s: passed %.12f, stored %.12f, ratio - 1 %.1e\n", withFibres ? "fibres" : "medium",
                    passed, stored, passed / stored - 1.0);
        EXPECT_GT(stored, 0.02);
        EXPECT_NEAR(passed / stored, 1.0, 1e-10);
    }
}

// The far end of the second reservoir is held at 0. Behind it the weight of the nodes with an equation falls from 1 to 0: what leaves is the
// flux through the last column.
TEST(Balance, WhatPassesTheInletIsStoredOrLeaves) {
    const GridDeck grid = Cell(true);
    JobRun job(grid);
    auto& run = job.small;
    double stored = 0.0, left = 0.0;
    // One step more at a time: the solution of every step is needed.
    zurt::Pass pass = BeginTables(run);
    for (pass.NDT = 1; pass.NDT <= run.control.counts.NDT; ++pass.NDT) {
        RestoreInitialConcentrations(run);
        RecordedPass(run, pass);
        const Column last = ColumnOf(grid, NodalValues(run), grid.places[0].size() - 2, false);
        left += grid.size * kReservoir * (last.meanLow - last.meanHigh) / (kOutlet - 2.0);
        stored = Stored(grid, NodalValues(run), true) - StoredAtStart(grid, true);
    }
    const double passed = TotalFlow(run.mass.FLUXMICRO, grid.size);
    const double ratio = (stored + left) / passed;
    std::printf("passed %.12f, stored %.12f, left %.12f, ratio - 1 %.1e\n", passed, stored, left,
                ratio - 1.0);
    EXPECT_GT(left, 0.1 * passed);
    EXPECT_NEAR(ratio, 1.0, 1e-10);
}

// A mesh that begins behind x = 0 with a held face: there is no plane of elements to both sides, and the flow is taken at the
// lowest one. Fault: the other end's plane, or none.
TEST(Balance, WithoutAPlaneAtZeroTheLowestOneIsTheInlet) {
    GridDeck grid = Cell(false);
    grid.places = {std::vector<double>{5.0, 5.5, 6.5, 8.0}, {0.0, 1.0}, {0.0, 0.2}};
    grid.cylinders.clear();
    grid.material = [](const Place&) { return 2; };
    grid.held = [](const Place& at) { return at[0] == 5.0; };
    grid.startsFull = [](const Place& at) { return at[0] > 5.0; };
    JobRun job(grid);
    auto& run = job.small;
    RecordedPass(run, BeginTables(run));
    double change = -0.2 * (0.5 / 2 + 2.5); // the start: from 0 to 1 over the first column, then 1
    for (std::size_t i = 0; i < 3; ++i) {
        const Column column = ColumnOf(grid, NodalValues(run), i, false);
        change += column.low + column.high;
    }
    EXPECT_LT(change, -0.05);
    EXPECT_NEAR(TotalFlow(run.mass.FLUXMICRO, grid.size) / change, 1.0, 1e-10);
}

} // namespace
} // namespace zurt_test
