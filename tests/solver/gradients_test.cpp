// Conjugate gradients against systems whose solution is known, and the program with them against the skyline solver.
#include "run/partition.h"
#include "solver/conjugate_gradients.h"
#include "solver/linear_system.h"
#include "support/run_deck.h"
#include "support/small_decks.h"
#include "support/small_run.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <set>
#include <sstream>

namespace {

using namespace zurt_test;
using zurt::GradientsEnd;

struct System {
    zurt::RowOrder order;
    zurt::SymmetricRows A;
    std::vector<double> b;

    zurt::RealArray Right() { return {b.data(), static_cast<zurt::Word>(b.size())}; }
    void Add(std::int32_t i, std::int32_t j, double value) {
        const auto row = [&](std::int32_t k) { return order.row[static_cast<std::size_t>(k - 1)] + 1; };
        A.value[static_cast<std::size_t>(PlaceOfEntry(A, row(i), row(j)))] += value;
    }
};

// Equations i and i + stride couple by -1, and i and i + 1 unless i ends a line of the grid.
System MakeGrid(std::int32_t JEDN, std::int32_t stride, double diagonal, bool lines = false) {
    System system;
    zurt::ElementEquations elements;
    for (std::int32_t i = 1; i <= JEDN; ++i)
        for (const std::int32_t j : {i + 1, i + stride}) {
            const std::int32_t pair[] = {i, j > JEDN || (lines && j == i + 1 && i % stride == 0) ? 0 : j};
            AddElementEquations(elements, {pair, 2}, 2);
        }
    system.order = MakeRowOrder(elements, JEDN);
    RenumberEquations(elements, system.order);
    MakePattern(system.A, elements, JEDN);
    for (std::int32_t i = 1; i <= JEDN; ++i)
        system.Add(i, i, diagonal);
    for (std::int32_t i = 1; i < JEDN; ++i)
        if (!lines || i % stride != 0)
            system.Add(i, i + 1, -1.0);
    for (std::int32_t i = 1; i + stride <= JEDN; ++i)
        system.Add(i + stride, i, -1.0);
    system.b.assign(static_cast<std::size_t>(JEDN), 0.0);
    return system;
}

// b = A x by the definition of the grid, entry by entry.
void TakeRightHandSide(System& system, std::int32_t stride, double diagonal, const std::vector<double>& x) {
    const auto JEDN = static_cast<std::int32_t>(x.size());
    const auto at = [&](std::int32_t i) { return i >= 0 && i < JEDN ? x[static_cast<std::size_t>(i)] : 0.0; };
    for (std::int32_t i = 0; i < JEDN; ++i)
        system.b[static_cast<std::size_t>(i)] = diagonal * at(i) - (i % stride == 0 ? 0.0 : at(i - 1)) -
                                                ((i + 1) % stride == 0 ? 0.0 : at(i + 1)) - at(i - stride) -
                                                at(i + stride);
}

zurt::GradientsReport Solve(System& system, double tolerance, std::int32_t limit, int threads = 1) {
    zurt::Workers workers;
    zurt::StartWorkers(workers, threads);
    zurt::GradientsWork work;
    return SolveByGradients(workers, system.A, system.order, system.Right(), {tolerance, limit}, work);
}

// Faults: what rows of one part give to those of another is lost or counted twice (70,000 equations are cut), magnitudes
// whose squares are no numbers any more, equations of very different size.
TEST(Gradients, FindTheSolutionThatTheRightHandSideWasMadeOf) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> entry(-1.0, 1.0);
    for (const double magnitude : {1.0, 1e-200, 1e200}) {
        const std::int32_t JEDN = 70000, stride = 260;
        System system = MakeGrid(JEDN, stride, 4.01, true);
        std::vector<double> x(static_cast<std::size_t>(JEDN));
        for (double& value : x)
            value = entry(random);
        TakeRightHandSide(system, stride, 4.01, x);
        // Row and column i times weight(i): the solution is divided by it.
        const auto weight = [](std::int32_t i) { return i % 3 == 0 ? 1e-6 : i % 3 == 1 ? 1e3 : 1.0; };
        for (std::int32_t i = 0; i < JEDN; ++i) {
            const std::int32_t equation = system.order.equation[static_cast<std::size_t>(i)];
            system.b[static_cast<std::size_t>(equation)] *= magnitude * weight(equation);
            for (auto k = system.A.start[static_cast<std::size_t>(i)];
                 k < system.A.start[static_cast<std::size_t>(i) + 1]; ++k) {
                const auto column = static_cast<std::size_t>(system.A.column[static_cast<std::size_t>(k)]);
                system.A.value[static_cast<std::size_t>(k)] *=
                    weight(equation) * weight(system.order.equation[column]);
            }
        }
        const auto report = Solve(system, 1e-13, 1000);
        ASSERT_EQ(report.end, GradientsEnd::Converged) << magnitude;
        EXPECT_TRUE(report.factored && report.shift == 0.0);
        double worst = 0.0;
        for (std::int32_t i = 0; i < JEDN; ++i)
            worst = std::max(worst, std::abs(system.b[static_cast<std::size_t>(i)] * weight(i) / magnitude -
                                             x[static_cast<std::size_t>(i)]));
        EXPECT_LT(worst, 1e-10) << magnitude;
    }
}

// L L^T takes the uniform solution where A takes it, since the diagonal holds all that is left out; most of a Laplacian's fill is. Faults:
// fill of one part that another's rows never hear of, entries of the pattern counted as left out, weights of the other row.
TEST(Gradients, FactorDoesToTheUniformSolutionWhatTheMatrixDoes) {
    System system = MakeGrid(20000, 141, 4.4, true);
    ASSERT_GT(PartCount(system.order), 1U);
    const auto JEDN = static_cast<std::size_t>(system.A.JEDN);
    std::vector<double> weight(JEDN), product(JEDN), expected(JEDN), half(JEDN, 0.0);
    for (std::size_t i = 0; i < JEDN; ++i)
        weight[i] = 1.0 + 0.05 * std::sin(static_cast<double>(i));
    for (double& value : system.A.value)
        value /= 4.4;
    zurt::Workers workers;
    zurt::IncompleteFactor factor;
    IndexColumns(system.A);
    TakeFactorRoom(system.A, system.order, 1, factor);
    ASSERT_TRUE(FactorRows({workers, 0}, system.A, system.order, {weight.data(), 1.0, 0.0}, factor));
    const auto entries = [&](std::size_t i, const auto& visit) { // of row i of L
        for (auto k = static_cast<std::size_t>(system.A.start[i]);
             k < static_cast<std::size_t>(system.A.start[i + 1]); ++k) {
            const auto column = static_cast<std::size_t>(system.A.column[k]);
            visit(column, column == i ? 1.0 / factor.L[k] : static_cast<double>(factor.L[k]));
        }
    };
    for (std::size_t i = 0; i < JEDN; ++i) {
        MultiplyRow(system.A, i, weight.data(), expected.data());
        entries(i, [&](std::size_t j, double L) { half[j] += L * weight[i]; });
    }
    for (std::size_t i = 0; i < JEDN; ++i)
        entries(i, [&](std::size_t j, double L) { product[i] += L * half[j]; });
    for (std::size_t i = 0; i < JEDN; ++i)
        ASSERT_NEAR(product[i], expected[i], 2e-6) << i;
}

// Fault: a sum whose order hangs on who makes it.
TEST(Gradients, HaveTheSameDigitsWithTwoThreads) {
    System alone = MakeGrid(20000, 141, 4.01, true);
    for (std::size_t i = 0; i < alone.b.size(); ++i)
        alone.b[i] = std::sin(static_cast<double>(i));
    System shared = alone;
    ASSERT_GT(PartCount(shared.order), 1U);
    EXPECT_EQ(Solve(shared, 1e-4, 100, 2).iterations, Solve(alone, 1e-4, 100).iterations);
    EXPECT_EQ(shared.b, alone.b);
}

// Fault: a factor whose diagonal never takes what is left out: twice as many.
TEST(Gradients, TakeFewIterationsInLargeUniformSystems) {
    System system = MakeGrid(40000, 200, 4.0005, true);
    system.b.assign(system.b.size(), 1.0);
    const auto report = Solve(system, 1e-10, 1000);
    EXPECT_EQ(report.end, GradientsEnd::Converged);
    EXPECT_LT(report.iterations, 100);
}

// D. S. Kershaw's matrix (J. Comp. Phys. 26, 1978): positive definite, and its incomplete factor has a negative pivot.
TEST(Gradients, ShiftTheDiagonalWhereAPivotFails) {
    System system = MakeGrid(4, 3, 3.0);
    system.Add(1, 2, -1.0), system.Add(2, 3, -1.0), system.Add(3, 4, -1.0), system.Add(1, 4, 3.0);
    system.b = {3.0 - 4.0 + 8.0, -2.0 + 6.0 - 6.0, -4.0 + 9.0 - 8.0, 2.0 - 6.0 + 12.0}; // solution 1, 2, 3, 4
    const auto report = Solve(system, 1e-12, 100);
    ASSERT_EQ(report.end, GradientsEnd::Converged);
    EXPECT_GT(report.shift, 0.0);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(system.b[i], static_cast<double>(i) + 1.0, 1e-10);
}

// Never a silent answer: the right-hand side stays as it was, and the report says why.
TEST(Gradients, SayWhatTheyCantSolve) {
    System few = MakeGrid(400, 20, 4.0);
    few.b[7] = 1.0;
    EXPECT_EQ(Solve(few, 1e-12, 3).end, GradientsEnd::NotConverged);
    EXPECT_EQ(few.b[7], 1.0);
    System indefinite = MakeGrid(400, 20, 1.0);
    indefinite.b[7] = 1.0;
    EXPECT_EQ(Solve(indefinite, 1e-12, 1000).end, GradientsEnd::NotPositiveDefinite);
    System noNumber = MakeGrid(400, 20, 4.0);
    noNumber.b[7] = std::nan("");
    EXPECT_EQ(Solve(noNumber, 1e-12, 10).end, GradientsEnd::NoNumbers);
    EXPECT_TRUE(std::isnan(noNumber.b[7]));
    System empty = MakeGrid(3, 2, 1.0);
    empty.Add(2, 2, -1.0);
    EXPECT_EQ(Solve(empty, 1e-12, 10).equation, 2);
}

// Two elements of two nodes: equations 1 and 2 with these entries, and 3 and 4 with 2 and -1.
void Solve(SmallRun& run, double diagonal, double coupling, std::vector<double> load) {
    const zurt::Numbering numbering = zurt::NumberingOf(run);
    std::int32_t nodes[] = {1, 3, 2, 4};
    BeginLayout(run, numbering);
    LayOutElements(run, numbering, {nodes, 2, 2}, 2, {});
    EXPECT_EQ(FinishLayout(run, numbering), 0);
    ClearSystem(run);
    const zurt::SystemTarget system = SystemTargetOf(run);
    const double first[] = {diagonal, coupling, diagonal}, second[] = {2.0, -1.0, 2.0};
    const std::int32_t LM[] = {1, 2, 3, 4};
    AddElement(system, {first, 3}, {load.data(), 2}, {LM, 2}, 2);
    AddElement(system, {second, 3}, {load.data() + 2, 2}, {LM + 2, 2}, 2);
    SolveSystem(run);
}

RunPointer GradientsRun() {
    RunPointer run = MakeRun("", 2, 4);
    run->options.solver = zurt::SolverChoice::Gradients;
    run->sizes.JEDN = 4;
    run->clock.FactorFlag = 1;
    TakeNodeArrays(*run);
    TakeSolverVectors(*run);
    for (std::int32_t i = 1; i <= 4; ++i)
        EquationNumbers (*run)(i) = i;
    return run;
}

// A pair of equations whose coupling leaves no factor even with a doubled diagonal, and no load: the other pair has its
// solution by the diagonal alone. Faults: the factor that failed used all the same; a note at every system, or none; an
// equation of the message counted from 0.
TEST(Gradients, TheDiagonalStandsInForAFactorThatFails) {
    const RunPointer run = GradientsRun();
    testing::internal::CaptureStderr();
    for (int system = 0; system < 3; ++system) {
        Solve(*run, 1.0, -5.0, {0.0, 0.0, 3.0, 0.0});
        const double expected[] = {0.0, 0.0, 2.0, 1.0};
        for (int i = 0; i < 4; ++i)
            EXPECT_NEAR(RightHandSide(*run)(i + 1), expected[i], 1e-12);
    }
    const std::string notes = testing::internal::GetCapturedStderr();
    EXPECT_EQ(CountOf(notes, "its diagonal stands in"), 1) << notes;
    EXPECT_EQ(CountOf(notes, "note:"), 1) << notes;

    const RunPointer shifted = GradientsRun();
    testing::internal::CaptureStderr();
    for (const double coupling : {-1.0001, -1.5, -1.0001})
        Solve(*shifted, 1.0, coupling, {0.0, 0.0, 3.0, 0.0});
    EXPECT_EQ(CountOf(testing::internal::GetCapturedStderr(), "needs a diagonal larger by"), 2);

    const RunPointer negative = GradientsRun();
    const std::string message = WrittenByStop(negative->units.listing, [&] {
        Solve(*negative, -1.0, 0.0, {1.0, 1.0, 1.0, 1.0});
    });
    EXPECT_TRUE(Contains(message, "NOT POSITIVE DEFINITE") && Contains(message, "EQUATION NO.         1"))
        << message;
}

RunResult RunWith(const std::string& deck, const std::vector<std::string>& options) {
    const std::string folder = MakeTemporaryFolder();
    WriteFile(folder + "/zurt.dat", deck);
    Invocation invocation;
    invocation.arguments = options;
    invocation.arguments.push_back("zurt.dat");
    return RunProgram(folder, invocation);
}

double Largest(const std::vector<double>& values) {
    double largest = 0.0;
    for (const double value : values)
        largest = std::max(largest, std::abs(value));
    return largest;
}

// The deck of an example; a small one where a script makes it.
std::string ExampleDeck(const std::filesystem::path& folder) {
    if (std::filesystem::exists(folder / "zurt.dat"))
        return ReadFile(folder / "zurt.dat");
    const std::string made = MakeTemporaryFolder();
    EXPECT_EQ(std::system(("cd " + made + " && " + (folder / "make_deck").string() + " 12").c_str()), 0);
    return ReadFile(made + "/zurt.dat");
}

// All examples: steps and iterations as with the skyline solver, concentrations and fluxes to the digits shown.
TEST(Gradients, GiveTheResultsOfTheSkylineSolver) {
    for (const auto& entry : std::filesystem::directory_iterator(ZURT_SOURCE_DIR "/examples")) {
        if (!entry.is_directory())
            continue;
        SCOPED_TRACE(entry.path());
        const std::string deck = ExampleDeck(entry.path());
        const RunResult direct = RunWith(deck, {"--solver", "skyline"});
        const RunResult run = RunWith(deck, {"--solver", "cg"});
        ASSERT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(run.errors, direct.errors);
        EXPECT_EQ(NumbersBehind(run.listing, "ITER ="), NumbersBehind(direct.listing, "ITER ="));
        const auto tables = AllConcentrations(run.listing), expected = AllConcentrations(direct.listing);
        ASSERT_EQ(tables.size(), expected.size());
        for (std::size_t step = 0; step < tables.size(); ++step)
            for (std::size_t node = 0; node < tables[step].size(); ++node)
                EXPECT_NEAR(tables[step][node], expected[step][node],
                            1.01e-4 * std::abs(expected[step][node]) + 1e-9 * Largest(expected[step]));
        for (const int which : {2, 3, 4}) {
            const auto values = LastUnvValues(run.graphics, which),
                       shown = LastUnvValues(direct.graphics, which);
            ASSERT_EQ(values.size(), shown.size());
            for (std::size_t i = 0; i < values.size(); ++i)
                EXPECT_NEAR(values[i], shown[i], 1.01e-4 * std::abs(shown[i]) + 1e-9 * Largest(shown) + 1e-13)
                    << which;
        }
    }
}

// Faults: a message that is passed over, --tolerance that isn't heard, or whose square underflows and the matrix is
// blamed, a matrix that still takes room in the working vector.
TEST(Gradients, EndTheRunWithAMessage) {
    std::istringstream deck(SmallDeckText("steady free"));
    std::string singular, line;
    for (int number = 1; std::getline(deck, line); ++number) {
        if (number > 5 && number <= 5 + 32) // the cards of its nodes: none is held any more
            line.replace(line.find(' '), 2, " 0");
        singular += line + "\n";
    }
    const RunResult stopped = RunWith(singular, {"--solver", "cg"});
    EXPECT_EQ(stopped.status, 1) << stopped.errors;
    EXPECT_TRUE(Contains(stopped.listing, "CONJUGATE GRADIENTS")) << stopped.errors;
    const std::string spheres = ReadFile(ZURT_SOURCE_DIR "/examples/spheres/zurt.dat");
    const RunResult loose = RunWith(spheres, {"--solver", "cg", "--tolerance", "0.5"});
    EXPECT_GT(CountOf(loose.console, "ITERATION ="), CountOf(RunWith(spheres, {}).console, "ITERATION ="));
    EXPECT_TRUE(Contains(loose.listing, "SOLUTION BY CONJUGATE GRADIENTS, MATRIX OUTSIDE WORKING VECTOR"));
    EXPECT_TRUE(Contains(loose.listing, "NWK =        0"));
    const std::string sheet = ReadFile(ZURT_SOURCE_DIR "/examples/fibrous_sheet/zurt.dat");
    EXPECT_EQ(RunWith(sheet, {"--solver", "cg", "--tolerance", "1e-300"}).status, 0);
}

} // namespace
