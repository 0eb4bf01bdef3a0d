// The whole road through the external solver: export of a skyline system, mpiexec with two processes, import.
#include "solver/exchange_files.h"
#include "solver/skyline_reference.h"
#include "support/run_deck.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

using zurt::Word;

// mpiexec refuses to run for the administrator, and more processes than processors, unless it is told to.
const std::string kMpiexec = "OMPI_ALLOW_RUN_AS_ROOT=1 OMPI_ALLOW_RUN_AS_ROOT_CONFIRM=1 " ZURT_MPIEXEC
                             " --oversubscribe -np 2 " ZURT_EXTERNAL_SOLVER;

struct Road {
    std::string folder = zurt_test::MakeTemporaryFolder();
    zurt::ExternalRoute route;
};

Road MakeRoad() {
    Road road;
    road.route.parameters = road.folder + "/params.txt";
    road.route.result = road.folder + "/RESENJE.OUT";
    road.route.command = kMpiexec + " " + road.folder + "/ZURF_MUMPS.OUT " + road.folder + "/ZURF_RHS.OUT " +
                         road.route.result;
    zurt_test::WriteFile(road.route.parameters, "cube\nno remark\n1\n");
    return road;
}

// Faults: a triangle counted twice or lost, an index from zero, a vector from the wrong file.
TEST(ExternalSolver, SolvesWhatTheSkylineSolverSolves) {
    const Road road = MakeRoad();
    zurt_test::SkylineSystem system = zurt_test::MakeCube(6);
    std::mt19937 random(3);
    FillDominant(system, random);
    std::vector<double> R(static_cast<std::size_t>(system.NN));
    for (double& value : R)
        value = std::uniform_real_distribution<double>(-1.0, 1.0)(random);
    const std::int32_t N = static_cast<std::int32_t>(system.NN);
    zurt::WriteSkylineForExternal(system.Store(), {R.data(), N}, system.Pointers(), N, road.folder);

    std::vector<double> expected = R;
    zurt_test::ReferenceFactor(system.Store(), system.Pointers(), N);
    zurt_test::ReferenceSubstitute(system.Store(), {expected.data(), N}, system.Pointers(), N);
    zurt::SolveExternal({R.data(), N}, N, road.route);
    for (std::size_t i = 0; i < R.size(); ++i)
        ASSERT_NEAR(R[i], expected[i], 1e-12) << "equation " << i + 1;
}

// Fault: a failed solve that leaves a solution behind, or ends as if all were well.
TEST(ExternalSolver, SingularSystemLeavesNoSolution) {
    const Road road = MakeRoad();
    const std::int32_t MAXA[] = {1, 2, 4};
    double K[] = {1.0, 1.0, 1.0};
    double R[] = {1.0, 2.0};
    zurt::WriteSkylineForExternal({K, 3}, {R, 2}, {MAXA, 3}, 2, road.folder);
    EXPECT_EXIT(zurt::SolveExternal({R, 2}, 2, road.route), testing::ExitedWithCode(2), "RESENJE.OUT");
}

} // namespace
