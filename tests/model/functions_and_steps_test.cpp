// What is given over time: steps, and functions of time or of a value.
#include "model/curve_lookup.h"
#include "model/curve_table.h"
#include "model/function_tables.h"
#include "model/time_functions.h"
#include "model/time_steps.h"
#include "run/partition.h"
#include "support/small_run.h"

namespace zurt {
namespace {

using namespace zurt_test;

double ValueOf(const FunctionTable& table, std::int32_t f, double x) {
    double y = -1.0;
    std::int32_t n = 0;
    EXPECT_EQ(CurveLookup(table.pairs, table.points, f, x, y, n), 0);
    return y;
}

// The counts of one family of functions, and how its errors begin.
struct Family {
    std::int32_t CurveCounts::*number;
    std::int32_t CurveCounts::*largest;
    std::string head;
    bool ofTime = true;
};
const Family kFamilies[] = {
    {&CurveCounts::NQE, &CurveCounts::MAXTQE,
     "ERROR IN FUNCTIONS OF TEMPERATURE SOURCES \\(SINKS\\) INPUT DATA:"},
    {&CurveCounts::NQP, &CurveCounts::MAXTQP, "ERROR IN FUNCTIONS OF SURFACE FLUXES INPUT DATA  :"},
    {&CurveCounts::NTOK, &CurveCounts::MAXTOK, "ERROR IN ENVIRONMENT TEMPERATURE FUNCTIONS INPUT DATA :"},
    {&CurveCounts::NHP, &CurveCounts::MAXTHP,
     "ERROR IN FUNCTIONS OF CONVECTION COEFICIENT TEMPERATURE DEPENDENCE  :", false},
    {&CurveCounts::NHR, &CurveCounts::MAXTHR, "ERROR IN FUNCTIONS OF SURFACE FLUXES INPUT DATA  :", false}};

// One function of up to two points of the family; the end of integration is 2.
void ReadFamily(const Family& family, const std::string& deck) {
    const RunPointer run = MakeRun(deck + "5.67e-8 0\n", 1); // the radiation card, for those who read it
    run->control.counts.*family.number = 1;
    run->control.counts.*family.largest = 2;
    run->control.counts.TotalTime = 2.0;
    ListOnStandardError(*run);
    ReadFunctionTables(*run);
}

// A product in place of the running sum, or periods of no steps that add time.
TEST(TimeSteps, TotalIsARunningSumOverTheStepsOfAllPeriods) {
    const RunPointer run =
        MakeRun("C a comment is no part of the block\nC-\n10 0 3 -4\n0.1 5.0 0.25 7.0\n", 1);
    run->control.header.NULAZ = 3;
    run->control.header.NSTAC = 1;
    run->control.header.NPER = 4;
    TakePeriodTables(*run);
    ReadTimeSteps(*run, 0);
    TakeStepList(*run);
    ReadTimeSteps(*run, 1);
    double total = 0.0;
    for (int k = 0; k < 10; ++k)
        total += 0.1;
    ASSERT_NE(total, 1.0);
    EXPECT_EQ(run->control.counts.TotalTime, total + 0.25 + 0.25 + 0.25);
    std::vector<double> sizes(10, 0.1);
    sizes.resize(13, 0.25);
    EXPECT_EQ(Values(StepSizes(*run)), sizes);
    EXPECT_TRUE(Contains(ListingOf(*run), " CARD FROM NUMBER     3 TO    4\n"));
    EXPECT_EQ(run->A.LMAX, run->control.at.LDT + 13) << "the room of the period cards is given back";
}

// Families in the order of the boundary card, or tables that share their words.
TEST(FunctionTables, FamiliesFollowTheOrderOfTheDeck) {
    RunPointer run = MakeRun("2 2\n0 1\n9 10\nC\n1 1\n0 20\n" // NQE, functions given backwards
                             "1 1\n2 30\n1 1\n2 40\n"         // NQP, NTOK
                             "1 3\n0 1\n1 2\n2 6\n1 0\n"      // NHP, NHR
                             "5.67e-8 10\n.1 .2 .3 .4 .5\n.6 .7 .8 .9 1\n",
                             1);
    CurveCounts& counts = run->control.counts;
    counts.NQE = counts.MAXTQE = counts.MAXTQP = counts.MAXTOK = 2;
    counts.NQP = counts.NTOK = counts.NHP = counts.NHR = counts.MAXTHR = 1;
    counts.MAXTHP = 4;
    ReadFunctionTables(*run);
    EXPECT_EQ(ValueOf(SourceFunctions(*run), 2, 4.5), 5.5);
    EXPECT_EQ(ValueOf(SourceFunctions(*run), 1, 4.5), 20.0);
    EXPECT_EQ(ValueOf(FluxFunctions(*run), 1, 0.0), 30.0);
    EXPECT_EQ(ValueOf(EnvironmentFunctions(*run), 1, 0.0), 40.0);
    EXPECT_EQ(ValueOf(ConvectionFunctions(*run), 1, 1.5), 4.0);
    EXPECT_EQ(ValueOf(RadiationFunctions(*run), 1, 1.5), 0.0)
        << "a function of no points is 0, not what `A` held";
    EXPECT_EQ(ShapeFactors(*run)(9), 0.9);
    EXPECT_EQ(run->A.LMAX, 1 + (2 + 8) + (1 + 4) + (1 + 4) + (1 + 8) + (1 + 2) + 10);
}

TEST(FunctionTablesStops, TooManyPointsAndFunctionsOfTimeThatEndEarly) {
    for (const Family& family : kFamilies) {
        SCOPED_TRACE(family.head);
        EXPECT_MESSAGE(ReadFamily(family, "1 3\n0 1\n1 1\n3 1\n"),
                       family.head + "(.|\n)*FUNCTION NO. =  1\n.*NUMBER OF POINTS READ IN, IMAX=    3\n"
                                     ".*PRESCRIBED MAX. NO. OF POINTS FOR CURVE =    2\n");
        ReadFamily(family, "1 2\n0 1\n2 1\n"); // reaching the end is enough
        if (family.ofTime)
            EXPECT_MESSAGE(
                ReadFamily(family, "1 2\n0 1\n1.9 1\n"),
                family.head +
                    "(.|\n)*TIME FUNCTION IS NOT DEFINED WITHIN THE WHOLE RANGE (.|\n)*FUNCTION NO. =  1\n"
                    ".*DEFINE INTERVAL = 0.19000E\\+01\n.*TMAX = 0.20000E\\+01\n");
        else
            ReadFamily(family, "1 2\n0 1\n1.9 1\n");
    }
}

TEST(TimeFunctionsStops, FailuresPrintTheirLines) {
    const auto read = [](const char* deck, Word words) {
        const RunPointer run = MakeRun(deck, 1, 1, words);
        ListOnStandardError(*run);
        run->control.counts.TotalTime = 2.0;
        ReadTimeFunctions(*run, CardsOfDeck(*run));
        run->clock.TIME = 5.0;
        const std::int32_t one[1] = {1};
        double out[1] = {1.0};
        EvaluateTimeFunctions(*run, RealArray(out, 1), ConstIntArray(one, 1), ConstIntArray(one, 1),
                              ConstRealArray(out, 1), 1);
    };
    EXPECT_MESSAGE(
        read("1 2\n1 3\n", 100),
        "ERROR IN INPUT DATA FOR TIME FUNCTIONS\n.*FUNKCIJA BR. =    1\n.*UCITAN BROJ TACAKA, IMAX=    3\n"
        ".*ZADATI MAKSIMALNI BROJ TACAKA ZA KRIVU , MAXTFT=    2\n");
    EXPECT_MESSAGE(read("1 2\n1 2\n0 0\n1.5 0\n", 100),
                   "ERROR IN INPUT DATA FOR TIME FUNCTIONS\n.*CELOM INREVALU\n.*FUNKCIJA BR. =    1\n"
                   ".*INTERVAL DEFINISANOSTI = 1.50000E\\+00\n.*TMAX = 2.00000E\\+00\n");
    EXPECT_MESSAGE(read("1 2\n1 2\n0 0\n4 0\n", 100),
                   "ARGUMENT IS OUT OF PRESCRIBED CURVE RANGE\n.*TIME FUNCTION NO. =    1\n"
                   ".*ARGUMENT TIME  =  5.0000E\\+00\n");
    EXPECT_MESSAGE(read("10 5\n", 100), "BASIC VECTOR FOR DATA ENTRY\n.*REQURED DIMENSION , LMAX=       111\n"
                                        ".*AVAILABLE DIMENSION  , MTOT=       100\n");
    EXPECT_LIBRARY_ERROR(read("-1 5\n", 100), "field NTABFT");
}

} // namespace
} // namespace zurt
