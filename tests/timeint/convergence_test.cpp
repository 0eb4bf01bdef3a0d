// The convergence test, the step file, and equations expanded to nodes.
#include "support/small_run.h"
#include "timeint/convergence.h"
#include "timeint/step.h"
#include "timeint/step_file.h"

#include <cstdio>
#include <tuple>

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

// The run behind the test of one iteration, with what it has written.
struct Outcome : SmallRun {
    bool converged;
    std::string console, listing, messages;
    explicit Outcome(const Iteration& iteration) {
        clock.ITER = iteration.ITER;
        clock.KOR = 2;
        pass.NDT = 3;
        clock.TIME = 0.5;
        clock.ReferenceNorm = iteration.before;
        control.header.NPRINT = 1;
        control.header.EPSTA = iteration.EPSTA;
        control.header.EPSTR = iteration.EPSTR;
        fit.card.NFIT = iteration.NFIT;
        fit.IFINALRUN = iteration.IFINALRUN;
        const double vectors[3][2] = {
            {0.0, -iteration.increment}, {0.0, -iteration.reference}, {0.0, -iteration.solution}};
        converged = ConvergenceTest(*this, ConstRealArray(vectors[0], 2), ConstRealArray(vectors[1], 2),
                                    ConstRealArray(vectors[2], 2));
        console = Written(units.console);
        listing = Written(units.listing);
        messages = Written(units.messages);
    }
};

// Faults: a mean instead of a Euclidean norm, norms of the wrong vectors, the last entry left out; the reference of the step
// before kept at iteration 0, the smaller reference taken later on.
TEST(Convergence, NormsAndTheReferenceOfTheStep) {
    const double increment[3] = {1, 2, 2}, reference[3] = {2, 3, 6}, solution[3] = {0, 0, -5};
    const IterationNorms norms = ComputeIterationNorms(
        ConstRealArray(increment, 3), ConstRealArray(reference, 3), ConstRealArray(solution, 3));
    EXPECT_EQ(norms.increment, 3.0);
    EXPECT_EQ(norms.reference, 7.0);
    EXPECT_EQ(norms.solution, 5.0);
    for (const auto& [ITER, now, expected] : {std::tuple{1, 2.0, 7.0}, {1, 9.0, 9.0}, {0, 2.0, 2.0}}) {
        Iteration iteration;
        iteration.before = 7.0;
        iteration.ITER = ITER;
        iteration.reference = now;
        const Outcome outcome(iteration);
        EXPECT_DOUBLE_EQ(outcome.clock.ReferenceNorm, expected);
        EXPECT_DOUBLE_EQ(outcome.clock.IncrementNorm, 1.0);
    }
}

// Faults: a tolerance compared with < or taken when it must not be; EPSTA of 1e-10 or less taking part; the message of
// the absolute tolerance written for a step that has converged already, or below 1e-10; no convergence below 1e-8; a run
// of a fit that reports its iterations, or takes the absolute tolerance.
TEST(Convergence, EachToleranceInItsRange) {
    const struct {
        double increment, EPSTA, EPSTR;
        bool converged, message;
        bool fit = false; // a run of a fit, which reports nothing
    } branches[] = {
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
        {0.0, 0.0, 0.0, true, false},         //
        {2e-9, 0.0, 1e-12, false, false, true}, {2e-9, 0.0, 1.0, true, false, true},
    };
    for (const auto& branch : branches) {
        Iteration iteration;
        iteration.increment = branch.increment;
        iteration.EPSTA = branch.EPSTA;
        iteration.EPSTR = branch.EPSTR;
        iteration.NFIT = branch.fit ? 1 : 0;
        iteration.IFINALRUN = branch.fit ? 0 : 1;
        const Outcome outcome(iteration);
        SCOPED_TRACE(branch.increment);
        SCOPED_TRACE(branch.EPSTA);
        EXPECT_EQ(outcome.converged, branch.converged);
        EXPECT_EQ(!outcome.messages.empty(), branch.message);
        EXPECT_EQ((outcome.console + outcome.listing).empty(), branch.fit);
        const char* mark = " UNBALANCED NORM.LT.ABS-TOLERANCE =   1.0000E-08\n";
        EXPECT_EQ(zurt_test::CountOf(outcome.console, mark), branch.message ? 1 : 0);
        EXPECT_EQ(zurt_test::CountOf(outcome.listing, mark), branch.message ? 1 : 0);
    }
}

// Faults: a division by a reference or a solution of no size; a step without a reference reported with another ratio, or as
// unfinished, also in a fit; the head written at later iterations, the spacing of the console line used on the listing;
// the lines of the message, their order or spelling; the run that ends a fit silent too.
TEST(Convergence, ReportLinesAndMessage) {
    Iteration none;
    none.ITER = 0;
    none.reference = 0.9e-10;
    none.increment = 5.0; // whatever it is
    const Outcome nothing(none);
    EXPECT_TRUE(nothing.converged);
    EXPECT_EQ(nothing.console, "\n\n ITERATIONS FOR STEP:         2 /      3\n"
                               " ITERATION =  0: INCREMENT      =   5.0000E+00  NORM     =   1.0000E+00\n"
                               "   ICR/ICREMSTEP  =  1.0000E-10  ICR/NORM =   5.0000E+00\n");
    EXPECT_EQ(nothing.messages, "");
    none.reference = 1e-10;
    EXPECT_FALSE(Outcome(none).converged);
    none.reference = 0.0;
    none.NFIT = 1;
    none.IFINALRUN = 0; // the one branch of a fit that does report, without the second ratio
    const Outcome fit(none);
    EXPECT_TRUE(fit.converged);
    EXPECT_EQ(zurt_test::CountOf(fit.console, "ICR/NORM =   0.0000E+00\n"), 1);

    Iteration later;
    later.solution = 0.9e-10;
    later.reference = 4.0;
    const Outcome plain(later);
    EXPECT_EQ(plain.console, " ITERATION =  1: INCREMENT      =   1.0000E+00  NORM     =   9.0000E-11\n"
                             "   ICR/ICREMSTEP  =  2.5000E-01  ICR/NORM =   0.0000E+00\n");
    EXPECT_EQ(plain.listing, " ITERATION =  1: INCREMENT       =   1.0000E+00   NORM        =   9.0000E-11\n"
                             "   ICR/ICREMSTEP =  2.5000E-01   ICR/NORM =   0.0000E+00\n");

    Iteration small;
    small.increment = 5e-9;
    small.EPSTR = 1e-12;
    small.ITER = 4;
    for (small.NFIT = 0; small.NFIT <= 1; ++small.NFIT)
        EXPECT_EQ(Outcome(small).messages,
                  " CONVERGENCE REACHED FOR INCREMENT SMALLER THAN NUMERICAL TOLERANCE IN ZUR-T  \n"
                  " TIME= 5.00000E-01\n STEP NO. =         2\n ITERATION NO. =    4\n"
                  " INCERMENT = 5.00000E-09\n NUMERICAL TOLERANCE IN ZUR-T, TOLABS= 1.00000E-08\n");
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
    struct {
        std::int64_t length;
        double time, values[2];
        std::int64_t again;
    } record;
    std::vector<int> found;
    const long place = std::ftell(steps.file);
    std::rewind(steps.file);
    while (std::fread(&record, 1, sizeof record, steps.file) > 0) {
        const bool good = record.length == 24 && record.again == 24 &&
                          record.time == 0.5 * record.values[0] && record.values[1] == -record.values[0];
        found.push_back(good ? static_cast<int>(record.values[0]) : -1);
    }
    std::fseek(steps.file, place, SEEK_SET);
    return found;
}

// Faults: a rewind at the step that fills the ring, none at the next multiples, old records left behind a rewind,
// NCZZ set back by it.
TEST(StepFile, RingOfThreeOverTenStepsOrOfOne) {
    StepFile steps, single;
    for (int KOR = 1; KOR <= 10; ++KOR) {
        Save(steps, KOR, 3);
        std::vector<int> expected; // filled up to twice its length at first
        for (int step = KOR <= 6 ? 1 : KOR - (KOR - 1) % 3; step <= KOR; ++step)
            expected.push_back(step);
        EXPECT_EQ(StepsOn(steps), expected) << KOR;
        EXPECT_EQ(steps.NCZZ, KOR < 3 ? KOR : 3);
        Save(single, KOR, 1);
    }
    EXPECT_EQ(StepsOn(single), std::vector<int>{10});
}

// Faults: steps lost with NCZK 0; a negative NCZK that divides or rewinds; a second pass written behind the first.
TEST(StepFile, KeepsAllWithoutALimit) {
    for (const std::int32_t NCZK : {0, -2, 100}) {
        StepFile steps;
        for (const int KOR : {1, 2, 3, 4, 5, 6})
            Save(steps, KOR, NCZK);
        EXPECT_EQ(StepsOn(steps), (std::vector<int>{1, 2, 3, 4, 5, 6}));
        EXPECT_EQ(steps.NCZZ, 6);
        Save(steps, 1, NCZK);
        Save(steps, 2, NCZK);
        EXPECT_EQ(StepsOn(steps), (std::vector<int>{1, 2}));
        EXPECT_EQ(steps.NCZZ, 8); // runs on over passes
    }
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
