#include "core/format.h"
#include "run/partition.h"
#include "solver/linear_system.h"
#include "support/small_run.h"

#include <iterator>

namespace zurt {
namespace {

using namespace zurt_test;

// Faults: a section of another size or in another place, the step list taken behind its room for counting, the gap of NP
// words forgotten or cleared, nodal vectors not cleared, material tables taken under NDS.
TEST(Partition, TransientDeviceProblem) {
    SmallRun run;
    Control& control = run.control;
    const Pointers& at = control.at;
    TakeWords(run.A, "what the problem before has left", 200);
    Fill(RealSection(run.A, 1, 200), 7.0);
    RestartWorkingVector(run.A);
    HeaderFields& header = control.header;
    header.NP = header.NPER = header.ITOR = 2;
    header.NDS = header.NMATT = header.NSTAC = header.IDIRECTD = 1;
    header.PotentialFunctionSize = 3;
    control.counts.MAXPMAT = 4;
    control.counts.MAXTC = 5;
    TakePeriodTables(run);
    EXPECT_EQ(run.A.LMAX, 7); // room for one step a period
    control.counts.NDT = 5;
    TakeStepList(run);
    TakeNodeArrays(run);
    TakeSharedNodeList(run, 2);
    run.sizes.JEDN = 2;
    TakeDiagonalPositions(run);
    TakeDiffusionCurves(run);
    TakeNanochannelVectors(run);
    TakeFitColumn(run);
    TakeFibreNodes(run);
    TakeMaterialTables(run);
    TakeSolutionVectors(run);
    TakeSolverVectors(run);
    const std::vector<Word> places = {at.LNKDT,   at.LDTDT,   at.LDT,      at.LCORD,    at.LID,     at.LNODEV,
                                      at.LPOT,    at.LDIRD,   at.LNDS[1],  at.LNDS[9],  at.LSUBS,   at.LMAXA,
                                      at.LNPMAT,  at.LDCT,    at.LNANO[4], at.LNANO[5], at.LFIT,    at.LFIBN,
                                      at.LMAT[1], at.LMAT[9], at.LSK,      at.LRHS,     run.A.LMAXM};
    EXPECT_EQ(places, (std::vector<Word>{1,  3,  5,  10, 16, 18, 20, 23, 35, 51, 53, 55,
                                         58, 59, 67, 73, 75, 79, 81, 81, 91, 91, 93}));
    for (const Word stale : {34, 53}) // the gap and the shared nodes
        EXPECT_EQ(run.A.words[stale - 1], 7.0);
    for (const Word cleared : {35, 52, 57, 86})
        EXPECT_EQ(run.A.words[cleared - 1], 0.0);
}

// Fault: no room for shared nodes under the ISUB4 that the problem before has left.
TEST(Partition, SharedNodesAfterASubstructure) {
    SmallRun run;
    run.control.header.NP = 5;
    run.job.LastISUB4 = 1;
    TakeSharedNodeList(run, 0);
    EXPECT_EQ(run.A.LMAX, 6);
    TakeSharedNodeList(run, 2);
    EXPECT_EQ(run.A.LMAX, 8);
}

// A problem of 4 nodes, 3 equations, one transient material, one source function; every count is run.
void PrepareSmallProblem(Run& run) {
    HeaderFields& header = run.control.header;
    CurveCounts& counts = run.control.counts;
    header.NP = 4;
    header.NPER = counts.NDT = counts.MAXPMAT = 2;
    header.NMATT = header.NSTAC = counts.MAXTK = counts.MAXTC = counts.NQE = counts.MAXTQE = 1;
    run.sizes.JEDN = 3;
    run.sizes.NWK = 6;
}

const struct {
    const char* name;
    void (*take)(Run&);
    bool fullIsRefused = false; // where a section that leaves no free word is refused already
} kSteps[] = {
    {"period tables", TakePeriodTables},
    {"step list", TakeStepList},
    {"node arrays", TakeNodeArrays, true},
    {"MAXA", TakeDiagonalPositions},
    {"diffusion curves", TakeDiffusionCurves},
    {"material tables", TakeMaterialTables},
    {"source functions",
     [](Run& run) { TakeFunctionTable(run, "LQE", 1, 1, run.control.at.LQE1, run.control.at.LQE2); }},
    {"solution vectors", TakeSolutionVectors},
};

// Takes the steps up to number `last` in a working vector of `size` words; returns LMAX behind them.
Word TakeUpTo(SmallRun& run, std::size_t last) {
    PrepareSmallProblem(run);
    for (std::size_t k = 0; k <= last; ++k)
        kSteps[k].take(run);
    return run.A.LMAX;
}

// Faults: a test for overflow missing at its place, or one word too sharp or too lax there; another message; the node
// arrays' second test forgotten, by which LMAX equal to NTOTA is refused.
TEST(Partition, OverflowIsTestedAtItsPlaces) {
    for (std::size_t k = 0; k < std::size(kSteps); ++k) {
        SCOPED_TRACE(kSteps[k].name);
        SmallRun large;
        const Word LMAX = TakeUpTo(large, k);
        SmallRun fits("", kSteps[k].fullIsRefused ? LMAX + 1 : LMAX);
        EXPECT_EQ(TakeUpTo(fits, k), LMAX);
        EXPECT_EQ(Written(fits.units.listing), "");
        for (const Word size : {fits.A.NTOTA - 1, Word{1}}) {
            SmallRun tight("", size);
            const std::string listing = WrittenByStop(tight.units.listing, [&] { TakeUpTo(tight, k); });
            const std::string head = " UNSUFFICIENT DIMENSION OF WORKING VECTOR A FOR READ IN INPUT DATA\n";
            EXPECT_EQ(listing.substr(0, head.size()), head);
            if (size > 1) {
                EXPECT_EQ(listing.substr(head.size()), FormatText("(' REQUIRED DIMENSION, LMAX =',I10/"
                                                                  "' AVAILABLE DIMENSION, NTOTA=',I10)",
                                                                  LMAX, size));
            }
        }
    }
}

Word TakeSystem(SmallRun& small) {
    PrepareSmallProblem(small);
    TakeSolverVectors(small);
    StopIfSystemOverflows(small);
    return small.A.LMAXM;
}

// Faults: LMAXM equal to NTOTA refused, one more let through; MESSAGES.LST written without NDS or not under it.
TEST(Partition, SystemMustFit) {
    SmallRun large;
    const Word LMAXM = TakeSystem(large);
    EXPECT_EQ(LMAXM, 1 + 4 + 3 + 6 + 3);
    SmallRun fits("", LMAXM);
    EXPECT_EQ(TakeSystem(fits), LMAXM);
    fits.sizes.SparseMode = 1;
    EXPECT_EQ(FinishLayout(fits, {}), 0) << "the sparse solver has no words there";
    for (const std::int32_t NDS : {0, 2, -1}) {
        SmallRun tight("", LMAXM - 1);
        tight.control.header.NDS = NDS;
        const std::string sizes =
            ":\n REQUIRED DIMENSION LMAXM =        17\n AVAILABLE DIMENSION NTOT =        16\n";
        EXPECT_EQ(WrittenByStop(tight.units.listing, [&] { TakeSystem(tight); }),
                  " UNSUFFICIENT DIMENSION OF WORKING VECTOR" + sizes);
        EXPECT_EQ(
            Written(tight.units.messages),
            NDS <= 0
                ? ""
                : " UNSUFFICIENT DIMENSION OF WORKING ARRAY" + sizes +
                      "\n ** CONTACT THE SOFTWARE ZUR-T DEVELOPER TO INCREASE THE SIZE OF TH WORKING ARRAY\n"
                      " ** OR USE COARSER MESH\n\n  PROGRAM STOPS\n");
    }
}

// Faults: old contents lost or LMAX kept between problems; words given back that a later section still holds.
TEST(WorkingVector, RestartsAndReleases) {
    SmallRun small("", 20);
    WorkingVector& A = small.A;
    EXPECT_EQ(TakeWords(A, "first", 5), 1);
    EXPECT_EQ(TakeWords(A, "none", -3), 6);
    EXPECT_EQ(TakeWords(A, "second", 4), 6);
    RealSection(A, 1, 5)(5) = 2.5;
    IntSection(A, 6, 4)(3) = 77; // the low half of word 7
    ReleaseFrom(A, 6);
    EXPECT_EQ(A.LMAX, 6);
    RestartWorkingVector(A);
    EXPECT_EQ(TakeWords(A, "again", 9), 1);
    EXPECT_EQ(RealSection(A, 1, 9)(5), 2.5);
    EXPECT_EQ(IntSection(A, 6, 4)(3), 77);
    EXPECT_LIBRARY_ERROR(RealSection(A, 20, 2), "outside it: word 20, length 2");
    EXPECT_LIBRARY_ERROR(IntSection(A, 0, 1), "outside it");
}

} // namespace
} // namespace zurt
