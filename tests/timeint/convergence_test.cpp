// The convergence test, the step file, and equations expanded to nodes.
#include "support/small_run.h"
#include "timeint/convergence.h"
#include "timeint/step.h"
#include "timeint/step_file.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace zurt {
namespace {

using zurt_test::SmallRun;
using zurt_test::Written;

// One iteration of a problem with two equations; every vector holds its norm in its last entry.
struct Iteration {
    double increment = 1.0, reference = 1.0, solution = 1.0; // norms
    double EPSTA = 0.0, EPSTR = 1e-3;
    std::int32_t ITER = 1;
    double before = 0.0; // ReferenceNorm of the iterations before
    std::int32_t NFIT = 0, IFINALRUN = 1;
};

struct Outcome {
    bool converged = false;
    double ReferenceNorm = 0.0, IncrementNorm = 0.0;
    std::string console, listing, messages;
};

Outcome TestIteration(const Iteration& iteration) {
    SmallRun run;
    run.clock.ITER = iteration.ITER;
    run.clock.KOR = 2;
    run.pass.NDT = 3;
    run.clock.TIME = 0.5;
    run.clock.ReferenceNorm = iteration.before;
    run.control.header.NPRINT = 1;
    run.control.header.EPSTA = iteration.EPSTA;
    run.control.header.EPSTR = iteration.EPSTR;
    run.fit.card.NFIT = iteration.NFIT;
    run.fit.IFINALRUN = iteration.IFINALRUN;
    double vectors[3][2];
    const double norms[3] = {iteration.increment, iteration.reference, iteration.solution};
    for (int k = 0; k < 3; ++k) {
        vectors[k][0] = 0.0;
        vectors[k][1] = -norms[k];
    }
    Outcome outcome;
    outcome.converged = ConvergenceTest(run, ConstRealArray(vectors[0], 2), ConstRealArray(vectors[1], 2),
                                        ConstRealArray(vectors[2], 2));
    outcome.ReferenceNorm = run.clock.ReferenceNorm;
    outcome.IncrementNorm = run.clock.IncrementNorm;
    outcome.console = Written(run.units.console);
    outcome.listing = Written(run.units.listing);
    outcome.messages = Written(run.units.messages);
    return outcome;
}

// Faults: a mean instead of a Euclidean norm, norms of the wrong vectors, the last entry left out.
TEST(Convergence, NormsAreEuclidean) {
    const double increment[3] = {1, 2, 2}, reference[3] = {2, 3, 6}, solution[3] = {0, 0, -5};
    const IterationNorms norms = ComputeIterationNorms(
        ConstRealArray(increment, 3), ConstRealArray(reference, 3), ConstRealArray(solution, 3));
    EXPECT_EQ(norms.increment, 3.0);
    EXPECT_EQ(norms.reference, 7.0);
    EXPECT_EQ(norms.solution, 5.0);
}

// Faults: the reference of the step before kept at iteration 0, the smaller reference taken later on.
TEST(Convergence, ReferenceIsTheLargestOfTheStep) {
    Iteration iteration;
    iteration.before = 7.0;
    iteration.reference = 2.0;
    EXPECT_DOUBLE_EQ(TestIteration(iteration).ReferenceNorm, 7.0);
    iteration.reference = 9.0;
    EXPECT_DOUBLE_EQ(TestIteration(iteration).ReferenceNorm, 9.0);
    iteration.ITER = 0;
    iteration.reference = 2.0;
    const Outcome first = TestIteration(iteration);
    EXPECT_DOUBLE_EQ(first.ReferenceNorm, 2.0);
    EXPECT_DOUBLE_EQ(first.IncrementNorm, 1.0);
}

// Faults: a division by a reference of no size; such a step reported with another ratio, or as unfinished.
TEST(Convergence, NothingToCompareWithIsConverged) {
    Iteration iteration;
    iteration.ITER = 0;
    iteration.reference = 0.9e-10;
    iteration.increment = 5.0; // whatever it is
    const Outcome outcome = TestIteration(iteration);
    EXPECT_TRUE(outcome.converged);
    EXPECT_EQ(outcome.console, "\n\n ITERATIONS FOR STEP:         2 /      3\n"
                               " ITERATION =  0: INCREMENT      =   5.0000E+00  NORM     =   1.0000E+00\n"
                               "   ICR/ICREMSTEP  =  1.0000E-10  ICR/NORM =   5.0000E+00\n");
    EXPECT_EQ(outcome.messages, "");
    iteration.reference = 1e-10;
    EXPECT_FALSE(TestIteration(iteration).converged);
}

struct Branch {
    double increment, EPSTA, EPSTR;
    bool converged, message;
};

// Faults: a tolerance compared with < or taken when it must not be; EPSTA of 1e-10 or less taking part; the message of
// the absolute tolerance written for a step that has converged already, or below 1e-10; no convergence below 1e-8.
TEST(Convergence, EachToleranceInItsRange) {
    const Branch branches[] = {
        {1e-3, 0.0, 1e-3, true, false},       // relative
        {1e-3, 0.0, 0.9e-3, false, false},    //
        {1e-3, 1e-3, 1e-9, true, false},      // absolute alone
        {1e-3, 0.9e-3, 1e-9, false, false},   //
        {1e-3, 1.1e-3, 0.0, true, false},     // EPSTR 0
        {2e-9, 1e-8, 0.0, true, false},       // absolute, not the message
        {2e-9, 0.0, 3e-9, true, false},       // relative, not the message
        {2e-9, 0.9e-10, 0.0, true, true},     //
        {1e-10, 1e-10, 1e-12, true, true},    // an EPSTA of no size takes no part
        {2e-10, 2e-10, 1e-12, true, false},   //
        {0.9e-8, 0.0, 1e-12, true, true},     //
        {1e-8, 0.0, 1e-12, false, false},     //
        {1e-10, 0.0, 1e-12, true, true},      //
        {0.9e-10, 0.0, 1e-12, true, false},   // silent
        {0.9e-10, 0.5e-10, 0.0, true, false}, //
        {0.0, 0.0, 0.0, true, false},
    };
    for (const Branch& branch : branches) {
        Iteration iteration;
        iteration.increment = branch.increment;
        iteration.EPSTA = branch.EPSTA;
        iteration.EPSTR = branch.EPSTR;
        const Outcome outcome = TestIteration(iteration);
        SCOPED_TRACE(branch.increment);
        SCOPED_TRACE(branch.EPSTA);
        EXPECT_EQ(outcome.converged, branch.converged);
        EXPECT_EQ(!outcome.messages.empty(), branch.message);
        const char* mark = " UNBALANCED NORM.LT.ABS-TOLERANCE =   1.0000E-08\n";
        EXPECT_EQ(zurt_test::CountOf(outcome.console, mark), branch.message ? 1 : 0);
        EXPECT_EQ(zurt_test::CountOf(outcome.listing, mark), branch.message ? 1 : 0);
    }
}

// Faults: the lines of the message, their order or spelling.
TEST(Convergence, AbsoluteToleranceMessage) {
    Iteration iteration;
    iteration.increment = 5e-9;
    iteration.EPSTR = 1e-12;
    iteration.ITER = 4;
    EXPECT_EQ(TestIteration(iteration).messages,
              " CONVERGENCE REACHED FOR INCREMENT SMALLER THAN NUMERICAL TOLERANCE IN ZUR-T  \n"
              " TIME= 5.00000E-01\n STEP NO. =         2\n ITERATION NO. =    4\n INCERMENT = 5.00000E-09\n"
              " NUMERICAL TOLERANCE IN ZUR-T, TOLABS= 1.00000E-08\n");
}

// Faults: a run of a fit reports its iterations, or takes the absolute tolerance; the run that ends it is silent too.
TEST(Convergence, RunsOfAFitAreSilent) {
    Iteration iteration;
    iteration.NFIT = 1;
    iteration.IFINALRUN = 0;
    iteration.increment = 2e-9;
    iteration.EPSTR = 1e-12;
    Outcome outcome = TestIteration(iteration);
    EXPECT_FALSE(outcome.converged);
    EXPECT_EQ(outcome.console + outcome.listing + outcome.messages, "");
    iteration.EPSTR = 1.0;
    EXPECT_TRUE(TestIteration(iteration).converged);
    iteration.reference = 0.0; // the one branch that does report, without the second ratio
    outcome = TestIteration(iteration);
    EXPECT_TRUE(outcome.converged);
    EXPECT_EQ(zurt_test::CountOf(outcome.console, "ICR/NORM =   0.0000E+00\n"), 1);
    iteration.reference = 1.0;
    iteration.EPSTR = 1e-12;
    iteration.IFINALRUN = 1;
    outcome = TestIteration(iteration);
    EXPECT_TRUE(outcome.converged);
    EXPECT_NE(outcome.messages, "");
}

// Faults: a division by a solution of no size, the head written at later iterations, the spacing of the console line
// used on the listing.
TEST(Convergence, ReportLines) {
    Iteration iteration;
    iteration.solution = 0.9e-10;
    iteration.reference = 4.0;
    const Outcome outcome = TestIteration(iteration);
    EXPECT_EQ(outcome.console, " ITERATION =  1: INCREMENT      =   1.0000E+00  NORM     =   9.0000E-11\n"
                               "   ICR/ICREMSTEP  =  2.5000E-01  ICR/NORM =   0.0000E+00\n");
    EXPECT_EQ(outcome.listing,
              " ITERATION =  1: INCREMENT       =   1.0000E+00   NORM        =   9.0000E-11\n"
              "   ICR/ICREMSTEP =  2.5000E-01   ICR/NORM =   0.0000E+00\n");
}

struct StepFile {
    std::FILE* file = std::tmpfile();
    std::int32_t NCZZ = 0;
    ~StepFile() { std::fclose(file); }
};

// Saves step KOR of a problem with two equations: TIME is KOR/2, the solution (KOR, -KOR).
void Save(StepFile& steps, std::int32_t KOR, std::int32_t NCZK) {
    const double solution[2] = {static_cast<double>(KOR), static_cast<double>(-KOR)};
    SaveStep(KOR, 0.5 * KOR, ConstRealArray(solution, 2), NCZK, steps.NCZZ, steps.file);
}

// The steps that stand on the file, read back record by record; -1 where a record is damaged.
std::vector<int> StepsOn(StepFile& steps) {
    std::vector<int> found;
    const long place = std::ftell(steps.file);
    std::rewind(steps.file);
    std::int64_t length = 0;
    while (std::fread(&length, sizeof length, 1, steps.file) == 1) {
        double items[3] = {};
        std::int64_t again = 0;
        const bool good = length == 24 && std::fread(items, sizeof items, 1, steps.file) == 1 &&
                          std::fread(&again, sizeof again, 1, steps.file) == 1 && again == length &&
                          items[0] == 0.5 * items[1] && items[2] == -items[1];
        found.push_back(good ? static_cast<int>(items[1]) : -1);
    }
    std::fseek(steps.file, place, SEEK_SET);
    return found;
}

// Faults: a rewind at the step that fills the ring, none at the next multiples, old records left behind a rewind,
// NCZZ set back by it.
TEST(StepFile, RingOfThreeOverTenSteps) {
    const std::vector<std::vector<int>> after = {
        {1}, {1, 2}, {1, 2, 3}, {1, 2, 3, 4}, {1, 2, 3, 4, 5}, {1, 2, 3, 4, 5, 6},
        {7}, {7, 8}, {7, 8, 9}, {10}};
    StepFile steps;
    for (int KOR = 1; KOR <= 10; ++KOR) {
        Save(steps, KOR, 3);
        EXPECT_EQ(StepsOn(steps), after[static_cast<std::size_t>(KOR - 1)]) << KOR;
        EXPECT_EQ(steps.NCZZ, KOR < 3 ? KOR : 3);
    }
}

// Faults: steps lost with NCZK 0; a negative NCZK that divides or rewinds; a second pass written behind the first.
TEST(StepFile, KeepsAllWithoutALimit) {
    for (const std::int32_t NCZK : {0, -2, 100}) {
        StepFile steps;
        for (int KOR = 1; KOR <= 6; ++KOR)
            Save(steps, KOR, NCZK);
        EXPECT_EQ(StepsOn(steps), (std::vector<int>{1, 2, 3, 4, 5, 6}));
        EXPECT_EQ(steps.NCZZ, 6);
        Save(steps, 1, NCZK);
        Save(steps, 2, NCZK);
        EXPECT_EQ(StepsOn(steps), (std::vector<int>{1, 2}));
        EXPECT_EQ(steps.NCZZ, 8); // runs on over passes
    }
    StepFile single;
    for (int KOR = 1; KOR <= 4; ++KOR)
        Save(single, KOR, 1);
    EXPECT_EQ(StepsOn(single), std::vector<int>{4});
}

// Faults: nodes outside the model given the outlet value, the last matching prescribed value taken, or one put upon a
// node that has an equation; old values kept.
TEST(NodalExpansion, EquationOutletAndPrescribedNodes) {
    std::int32_t ID[6] = {2, 0, 0, -1, 1, -1};
    double solution[2] = {10.0, 20.0};
    double prescribed[5] = {1.0, 2.0, 3.0, 4.0, 5.0};
    std::int32_t nodes[5] = {3, 3, 5, 6, 99};
    double values[6] = {9, 9, 9, 9, 9, 9};
    ExpandToNodes(IntArray(ID, 6), RealArray(values, 6), RealArray(solution, 2), RealArray(prescribed, 5),
                  IntArray(nodes, 5), 7.0);
    const double expected[6] = {20.0, 7.0, 1.0, 0.0, 10.0, 4.0};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(values[i], expected[i]) << i + 1;
}

} // namespace
} // namespace zurt
