#include "model/function_tables.h"

#include "model/curve_lookup.h"
#include "model/curve_table.h"
#include "model/model_run.h"
#include "model/time_functions.h"

namespace zurt {
namespace {

using test::Contains;
using test::Line;
using test::ListingOf;
using test::MakeRun;
using test::RunPointer;

double ValueOf(const FunctionTable& table, std::int32_t f, double x) {
    double y = -1.0;
    std::int32_t n = 0;
    EXPECT_EQ(CurveLookup(table.pairs, table.points, f, x, y, n), 0);
    return y;
}

// A run with one family of `functions` functions of up to `most` points, whose end of integration is 2.
RunPointer FamilyRun(const std::string& deck, std::int32_t CurveCounts::*number,
                     std::int32_t CurveCounts::*largest, std::int32_t functions, std::int32_t most) {
    RunPointer run = MakeRun(deck, 1);
    run->control.counts.*number = functions;
    run->control.counts.*largest = most;
    run->control.state.TIME = 2.0;
    return run;
}

void ReadListed(const RunPointer& run) {
    test::ListOnStandardError(*run);
    ReadFunctionTables(*run);
}

// Families in the order of the boundary card, or tables that share their words.
TEST(FunctionTables, FamiliesFollowTheOrderOfTheDeck) {
    RunPointer run = MakeRun("2 2\n0 1\n9 10\nC\n1 1\n0 20\n" // NQE, functions given backwards
                             "1 1\n2 30\n1 1\n2 40\n"         // NQP, NTOK
                             "1 3\n0 1\n1 2\n2 6\n1 0\n"      // NHP, NHR
                             "5.67e-8 10\n.1 .2 .3 .4 .5\n.6 .7 .8 .9 1\n",
                             1);
    CurveCounts& counts = run->control.counts;
    counts.NQE = 2;
    counts.MAXTQE = 2;
    counts.NQP = counts.NTOK = counts.NHP = counts.NHR = 1;
    counts.MAXTQP = counts.MAXTOK = 2;
    counts.MAXTHP = 4;
    counts.MAXTHR = 1;
    ReadFunctionTables(*run);
    EXPECT_EQ(SourceFunctions(*run).points(2), 2);
    EXPECT_EQ(ValueOf(SourceFunctions(*run), 2, 4.5), 5.5);
    EXPECT_EQ(ValueOf(SourceFunctions(*run), 1, 4.5), 20.0);
    EXPECT_EQ(ValueOf(FluxFunctions(*run), 1, 0.0), 30.0);
    EXPECT_EQ(ValueOf(EnvironmentFunctions(*run), 1, 0.0), 40.0);
    EXPECT_EQ(ValueOf(ConvectionFunctions(*run), 1, 1.5), 4.0);
    EXPECT_EQ(RadiationFunctions(*run).points(1), 0);
    EXPECT_EQ(ValueOf(RadiationFunctions(*run), 1, 1.5), 0.0)
        << "a function of no points is 0, not what `A` held";
    EXPECT_EQ(counts.SBC, 5.67e-8);
    ASSERT_EQ(ShapeFactors(*run).length, 10);
    EXPECT_EQ(ShapeFactors(*run)(9), 0.9);
    EXPECT_EQ(run->A.LMAX, 1 + (2 + 8) + (1 + 4) + (1 + 4) + (1 + 8) + (1 + 2) + 10);
}

TEST(FunctionTables, FixedColumns) {
    RunPointer run = MakeRun(
        "    1    2\n    0.D+00     12345\n    3.D+00    2.D+00\n"
        "    1    1\n                 5.0\n         5.67-8    9\n" +
            Line("%10d%10d%10d%10d%10.3f%10d%10d%10d", 1000, 2000, 3000, 4000, 5.0, 6000, 7000, 8000) +
            Line("%10d", 9000),
        2);
    run->control.counts.NTOK = run->control.counts.NHR = 1;
    run->control.counts.MAXTOK = run->control.counts.MAXTHR = 2;
    ReadFunctionTables(*run);
    EXPECT_EQ(ValueOf(EnvironmentFunctions(*run), 1, 0.0), 1.2345)
        << "D10.4 without a point has four decimals";
    EXPECT_EQ(ValueOf(RadiationFunctions(*run), 1, 0.0), 5.0);
    EXPECT_EQ(run->control.counts.SBC, 5.67e-8);
    EXPECT_EQ(ShapeFactors(*run)(8), 8.0);
    EXPECT_EQ(ShapeFactors(*run)(9), 9.0);
}

TEST(FunctionTables, EchoShowsPairsAndFactors) {
    RunPointer run = MakeRun("1 1\n0.5 2\n0 2\n0.25 0.5\n", 1);
    run->control.counts.NHR = run->control.counts.MAXTHR = 1;
    run->control.header.NULAZ = 1;
    ReadFunctionTables(*run);
    const std::string listing = ListingOf(*run);
    EXPECT_TRUE(Contains(listing, "FUNCTION NO.=  1     NUMBER OF POINTS ON CURVE=  1\n"));
    EXPECT_TRUE(Contains(listing, "0.5000D+00     0.2000D+01\n"));
    EXPECT_TRUE(Contains(listing, "NUMBER OF SURFACE RADIATION SHAPE FACTORS ........ NFO =    2\n"));
    EXPECT_TRUE(Contains(listing, "S H A P E    F A C T O R S\n\n     0.250     0.500\n"));
}

TEST(FunctionTablesDeathTest, TooManyPointsNameTheFamily) {
    struct Family {
        std::int32_t CurveCounts::*number;
        std::int32_t CurveCounts::*largest;
        const char* head;
    };
    for (const Family& family :
         {Family{&CurveCounts::NQE, &CurveCounts::MAXTQE,
                 "ERROR IN FUNCTIONS OF TEMPERATURE SOURCES \\(SINKS\\) INPUT DATA:"},
          Family{&CurveCounts::NQP, &CurveCounts::MAXTQP,
                 "ERROR IN FUNCTIONS OF SURFACE FLUXES INPUT DATA  :"},
          Family{&CurveCounts::NTOK, &CurveCounts::MAXTOK,
                 "ERROR IN ENVIRONMENT TEMPERATURE FUNCTIONS INPUT DATA :"},
          Family{&CurveCounts::NHP, &CurveCounts::MAXTHP,
                 "ERROR IN FUNCTIONS OF CONVECTION COEFICIENT TEMPERATURE DEPENDENCE  :"},
          Family{&CurveCounts::NHR, &CurveCounts::MAXTHR,
                 "ERROR IN FUNCTIONS OF SURFACE FLUXES INPUT DATA  :"}})
        EXPECT_EXIT(ReadListed(FamilyRun("1 3\n0 1\n1 1\n3 1\n", family.number, family.largest, 1, 2)),
                    testing::ExitedWithCode(0),
                    family.head +
                        std::string("(.|\n)*FUNCTION NO. =  1\n.*NUMBER OF POINTS READ IN, IMAX=    3\n"
                                    ".*PRESCRIBED MAX. NO. OF POINTS FOR CURVE =    2\n"));
}

TEST(FunctionTablesDeathTest, FunctionsOfTimeMustReachTheEnd) {
    const std::string lines =
        "(.|\n)*TIME FUNCTION IS NOT DEFINED WITHIN THE WHOLE RANGE (.|\n)*FUNCTION NO. =  1\n"
        ".*DEFINE INTERVAL = 0.19000E\\+01\n.*TMAX = 0.20000E\\+01\n";
    const std::string early = "1 2\n0 1\n1.9 1\n";
    EXPECT_EXIT(ReadListed(FamilyRun(early, &CurveCounts::NQE, &CurveCounts::MAXTQE, 1, 2)),
                testing::ExitedWithCode(0), "SOURCES" + lines);
    EXPECT_EXIT(ReadListed(FamilyRun(early, &CurveCounts::NTOK, &CurveCounts::MAXTOK, 1, 2)),
                testing::ExitedWithCode(0), "ENVIRONMENT" + lines);
    const RunPointer exact = FamilyRun("1 2\n0 1\n2 1\n", &CurveCounts::NQP, &CurveCounts::MAXTQP, 1, 2);
    ReadFunctionTables(*exact); // reaching it is enough
    const RunPointer coefficient = FamilyRun(early, &CurveCounts::NHP, &CurveCounts::MAXTHP, 1, 2);
    ReadFunctionTables(*coefficient); // no function of time
}

TEST(TimeFunctions, StandBehindOneAnotherAndScaleTheirEntries) {
    RunPointer run =
        MakeRun("    2    3\n    2    1\n       9.0      50.0\n    1    3\n       0.0      10.0\n"
                "       1.0      20.0\n       4.0       0.0\n",
                2);
    run->control.state.TIME = 4.0;
    ReadTimeFunctions(*run);
    EXPECT_EQ(run->control.at.LTFT2, run->control.at.LTFT1 + 12);
    EXPECT_EQ(run->A.LMAX, 15);
    const std::int32_t active[3] = {5, 0, 7}, functions[3] = {1, 1, 2};
    const double multipliers[3] = {2.0, 2.0, 3.0};
    double out[3] = {-1.0, -1.0, -1.0};
    run->control.state.TIME = 1.0;
    EvaluateTimeFunctions(*run, RealArray(out, 3), ConstIntArray(active, 3), ConstIntArray(functions, 3),
                          ConstRealArray(multipliers, 3), 3);
    EXPECT_EQ(out[0], 40.0);
    EXPECT_EQ(out[1], -1.0);
    EXPECT_EQ(out[2], 150.0);
}

TEST(TimeFunctions, NoneTakeNoRoom) {
    RunPointer run = MakeRun("0 5\n1 1\n", 1);
    run->control.header.NULAZ = 1;
    ReadTimeFunctions(*run);
    EXPECT_EQ(run->A.LMAX, 1);
    EXPECT_EQ(run->deck.nextLine, 1);
    EXPECT_TRUE(Contains(ListingOf(*run), "NUMBER OF DIFFERENT TIME FUNCTIONS ............ NTABFT =    0\n"));
}

TEST(TimeFunctionsDeathTest, FailuresPrintTheirLines) {
    const auto read = [](const char* deck, Word words) {
        const RunPointer run = MakeRun(deck, 1, 1, words);
        test::ListOnStandardError(*run);
        run->control.state.TIME = 2.0;
        ReadTimeFunctions(*run);
        run->control.state.TIME = 5.0;
        const std::int32_t one[1] = {1};
        double out[1] = {1.0};
        EvaluateTimeFunctions(*run, RealArray(out, 1), ConstIntArray(one, 1), ConstIntArray(one, 1),
                              ConstRealArray(out, 1), 1);
    };
    EXPECT_EXIT(
        read("1 2\n1 3\n", 100), testing::ExitedWithCode(0),
        "ERROR IN INPUT DATA FOR TIME FUNCTIONS\n.*FUNKCIJA BR. =    1\n.*UCITAN BROJ TACAKA, IMAX=    3\n"
        ".*ZADATI MAKSIMALNI BROJ TACAKA ZA KRIVU , MAXTFT=    2\n");
    EXPECT_EXIT(read("1 2\n1 2\n0 0\n1.5 0\n", 100), testing::ExitedWithCode(0),
                "ERROR IN INPUT DATA FOR TIME FUNCTIONS\n.*CELOM INREVALU\n.*FUNKCIJA BR. =    1\n"
                ".*INTERVAL DEFINISANOSTI = 1.50000E\\+00\n.*TMAX = 2.00000E\\+00\n");
    EXPECT_EXIT(read("1 2\n1 2\n0 0\n4 0\n", 100), testing::ExitedWithCode(0),
                "ARGUMENT IS OUT OF PRESCRIBED CURVE RANGE\n.*TIME FUNCTION NO. =    1\n"
                ".*ARGUMENT TIME  =  5.0000E\\+00\n");
    EXPECT_EXIT(read("10 5\n", 100), testing::ExitedWithCode(0),
                "BASIC VECTOR FOR DATA ENTRY\n.*REQURED DIMENSION , LMAX=       111\n"
                ".*AVAILABLE DIMENSION  , MTOT=       100\n");
    EXPECT_EXIT(read("-1 5\n", 100), testing::ExitedWithCode(2), "field NTABFT");
}

} // namespace
} // namespace zurt
