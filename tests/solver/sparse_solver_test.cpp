#include "core/text_unit.h"
#include "solver/skyline_reference.h"
#include "solver/sparse_assembler.h"
#include "solver/sparse_solver.h"
#include "solver/sparse_tree.h"
#include "support/expect_stop.h"
#include "support/run_deck.h"
#include "support/views.h"

#include <cmath>

namespace {

using zurt::Word;
using zurt_test::View;
zurt::SparseTree tree;
using Reals = std::vector<double>;

/// Solves what is assembled; returns what was written to the console.
std::string Solve(Reals& R, std::int32_t SolverReportFlag) {
    zurt::TextUnit console, listing;
    zurt::AttachTextUnit(console, stdout, "the console");
    testing::internal::CaptureStdout();
    zurt::SolveSparseSystem(tree, View(R), static_cast<std::int32_t>(R.size()), 0, console, listing,
                            SolverReportFlag);
    return testing::internal::GetCapturedStdout();
}

// Fault: the system handed over as a symmetric or a transposed one.
TEST(SparseSolver, TakesAnUnsymmetricSystem) {
    zurt::SparseInit(tree, 0, 0);
    const double K[3][3] = {{0, 2, 0}, {1, 0, 4}, {0, 3, 5}};
    for (std::int32_t r = 1; r <= 3; ++r)
        for (std::int32_t c = 1; c <= 3; ++c)
            zurt::SparseAddEntry(tree, r, c, K[r - 1][c - 1]);
    Reals R = {4, 13, 21};
    Solve(R, 0);
    EXPECT_THAT(R, testing::Pointwise(testing::DoubleNear(1e-14), Reals{1, 2, 3}));
}

TEST(SparseSolver, ReportsItsStagesUnderFlagOneOnly) {
    for (const std::int32_t flag : {0, 1, 2}) {
        zurt::SparseInit(tree, 0, 0);
        zurt::SparseAddEntry(tree, 1, 1, 4.0);
        Reals R = {2.0};
        EXPECT_EQ(Solve(R, flag), flag != 1 ? ""
                                            : " Initializing solver...\n Starting analysis...\n Starting "
                                              "factorization...\n Killing solver...\n");
        EXPECT_EQ(R[0], 0.5);
    }
}

using Places = std::vector<std::pair<int, int>>;

/// Solves a system of ones in these rows and columns, and stops; console on standard error, listing in a file. The
/// listing is returned.
std::string ExpectStop(const Places& places, std::int32_t N, std::int32_t SolverReportFlag,
                       const std::string& console) {
    zurt::SparseInit(tree, 0, 0);
    for (const auto& [row, column] : places)
        zurt::SparseAddEntry(tree, row, column, 1.0);
    const std::string name = zurt_test::MakeTemporaryFolder() + "/listing";
    Reals R(static_cast<std::size_t>(std::max(N, 1)), 1.0);
    zurt::TextUnit units[2];
    zurt::AttachTextUnit(units[0], stderr, "the console");
    zurt::OpenTextUnit(units[1], name);
    EXPECT_MESSAGE(zurt::SolveSparseSystem(tree, View(R), N, 0, units[0], units[1], SolverReportFlag),
                   console);
    zurt::CloseTextUnit(units[1]);
    return zurt_test::ReadFile(name);
}

/// A cube of side^3 bricks, each pair of its nodes coupled.
void AssembleCube(std::int32_t side) {
    Reals S(64, -1.0);
    for (std::size_t i = 0; i < 8; ++i)
        S[9 * i] = 7.25;
    std::vector<std::int32_t> nodes = zurt_test::NodesOfCube(side);
    zurt::SparseInit(tree, 0, 0);
    for (std::size_t element = 0; element < nodes.size(); element += 8)
        zurt::SparseAddElement(tree, 8, {&nodes[element], 8}, {S.data(), 8, 8});
}

// Fault: an ordering in threads, whose outcome differs from run to run. The system is large enough for the solver to
// leave its ordering for small ones.
TEST(SparseSolverDeathTest, SameBitsInEveryProcess) {
    Reals vector;
    for (int i = 1; i <= 8000; ++i)
        vector.push_back(std::sin(i));
    const std::string folder = zurt_test::MakeTemporaryFolder();
    std::string first;
    for (const char* name : {"/1", "/2", "/3", "/4"}) {
        EXPECT_EXIT(
            {
                Reals R = vector;
                AssembleCube(19);
                Solve(R, 0);
                zurt_test::WriteFile(folder + name, {reinterpret_cast<const char*>(R.data()), 8 * R.size()});
                std::exit(0);
            },
            testing::ExitedWithCode(0), "");
        const std::string solution = zurt_test::ReadFile(folder + name);
        EXPECT_EQ(solution.size(), 8 * vector.size());
        if (first.empty())
            first = solution;
        EXPECT_TRUE(solution == first) << name;
    }
}

// Fault: an empty system that reaches the solver.
TEST(SparseSolverDeathTest, StopsWithoutEquationsOrEntries) {
    EXPECT_EQ(ExpectStop({}, 3, 0, "^ Error in solver calling!\n$"), "");
    EXPECT_EQ(ExpectStop({}, 3, 1, "^ Initializing solver...\n Error in solver calling!\n$"), "");
    EXPECT_EQ(ExpectStop({{1, 1}}, 0, 0, "^ Error in solver calling!\n$"), "");
}

const std::string kReport =
    " INFO1: +-10\n INFO2: +[0-9]+\n INFO3: +[0-9]+\n INFO7: +[0-9]+\n INFO8: +[0-9]+\n"
    " INFO9: +-?[0-9]+\n INFO15: +[0-9]+\n ICNTL14: {9}120\n";

// Faults: a singular system that passes, the report lost, shortened or without its stop.
TEST(SparseSolverDeathTest, ReportsASingularSystemAndStops) {
    const Places singular = {{1, 1}, {1, 2}, {2, 1}, {2, 2}};
    const std::string end = " ERROR IN SOLVER EXECUTION - STOPPING CALCULATION\n$";
    const std::string listing = ExpectStop(singular, 2, 0, "^" + kReport + end);
    EXPECT_EQ(listing.substr(0, 22), " INFO1  :         -10\n");
    EXPECT_EQ(zurt_test::CountOf(listing, "\n"), 8);
    for (const char* text : {" INFO2  :", " INFO3  :", " INFO7  :", " INFO8  :", " INFO9  :", " INFO15 :",
                             " ICNTL14:         120\n"})
        EXPECT_EQ(zurt_test::CountOf(listing, text), 1) << text;
    ExpectStop(singular, 2, 1,
               "^ Initializing solver...\n Starting analysis...\n Starting factorization...\n" + kReport +
                   " Killing solver...\n" + end);
}

// Faults: a row without entries that crashes the solver or passes; the factorisation not asked for after the analysis has
// failed.
TEST(SparseSolverDeathTest, StopsAtARowWithoutEntries) {
    ExpectStop({{1, 1}, {2, 2}}, 4, 1,
               "Starting factorization...\n INFO1: +-[0-9]+\n(.|\n)*STOPPING CALCULATION\n$");
}

} // namespace
