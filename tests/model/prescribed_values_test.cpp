#include "model/prescribed_values.h"
#include "model/time_functions.h"
#include "run/partition.h"
#include "support/bar_deck.h"
#include "support/small_run.h"

#include <tuple>

namespace zurt {
namespace {

using namespace zurt_test;

// Two time functions: f1 = 10 t up to 10, f2 the constant 7; NZADC entries.
RunPointer MakePrescribed(const std::string& deck, std::int32_t NZADC, std::int32_t INDFOR = 1,
                          Word words = 2000) {
    RunPointer run = MakeRun(deck, INDFOR, 100, words);
    CurveCounts& counts = run->control.counts;
    counts.NTABFT = counts.MAXTFT = 2;
    counts.NZADC = NZADC;
    run->control.at.LTFT1 = TakeWords(run->A, "functions", 8);
    run->control.at.LTFT2 = TakeWords(run->A, "points", 2);
    const double pairs[8] = {0, 0, 0, 7, 10, 100, 0, 0};
    std::copy(std::begin(pairs), std::end(pairs), TimeFunctionPairs(*run).data);
    TimeFunctionPoints (*run)(1) = 2;
    TimeFunctionPoints (*run)(2) = 1;
    return run;
}

using Entry = std::tuple<std::int32_t, std::int32_t, double>; // node, function, factor

std::vector<Entry> EntriesOf(const Run& run) {
    std::vector<Entry> entries;
    for (Word i = 1; i <= run.control.counts.NZADC; ++i)
        entries.push_back({PrescribedNodes(run)(i), PrescribedFunctions(run)(i), PrescribedFactors(run)(i)});
    return entries;
}

std::vector<Entry> Read(const std::string& deck, std::int32_t NZADC, std::int32_t INDFOR = 1) {
    RunPointer run = MakePrescribed(deck, NZADC, INDFOR);
    run->control.header.NULAZ = 3;
    ReadPrescribedValues(*run, CardsOfDeck(*run));
    EXPECT_TRUE(Contains(ListingOf(*run), "NODE     FUNCTION NO   PROP FACTOR   INCR GENER"));
    return EntriesOf(*run);
}

// Faults: factors between those of the two cards instead of beyond the closing one, entries ahead of the closing card's,
// a count tested where a run opens, a step on the closing card that opens nothing.
TEST(PrescribedValues, RunsOfEntries) {
    EXPECT_EQ(Read("4 1 2.5 0\n", 1), (std::vector<Entry>{{4, 1, 2.5}}));
    EXPECT_EQ(Read("10 1 1. 5\n20 2 3. 0\n", 3),
              (std::vector<Entry>{{10, 1, 1.0}, {20, 2, 3.0}, {15, 2, 4.0}}));
    EXPECT_EQ(Read("10 1 1. 5\n30 1 3. 0\n3 2 8. 0\n", 6),
              (std::vector<Entry>{
                  {10, 1, 1.0}, {30, 1, 3.0}, {15, 1, 3.5}, {20, 1, 4.0}, {25, 1, 4.5}, {3, 2, 8.0}}));
    // The closing card opens the next run, by a step that need not divide the distance.
    EXPECT_EQ(
        Read("1 1 2. 1\n3 1 2. 4\n16 1 2. 0\n", 6),
        (std::vector<Entry>{{1, 1, 2.0}, {3, 1, 2.0}, {2, 1, 2.0}, {16, 1, 2.0}, {7, 1, 2.0}, {11, 1, 2.0}}));
    // Downward nothing is generated, unless a closing card brings a negative step.
    EXPECT_EQ(Read("20 1 1. 5\n10 1 1. 0\n", 2), (std::vector<Entry>{{20, 1, 1.0}, {10, 1, 1.0}}));
    EXPECT_EQ(Read("20 1 1. 5\n21 1 1. -2\n15 1 1. 0\n", 5),
              (std::vector<Entry>{{20, 1, 1.0}, {21, 1, 1.0}, {15, 1, 1.0}, {19, 1, 1.0}, {17, 1, 1.0}}));
    // A negative step alone opens no run; an entry for node 0 needs no function.
    EXPECT_EQ(Read("9 1 1. -2\n0 0 1. 0\n", 2), (std::vector<Entry>{{9, 1, 1.0}, {0, 0, 1.0}}));
    EXPECT_EQ(Read(Print("%5d%5d%10s%5d\n", 5, 2, "150", 0), 1, 2), (std::vector<Entry>{{5, 2, 1.5}}));
}

// Faults: entries written behind their arrays, nodes and functions that become indices unchecked.
TEST(PrescribedValues, NumbersOutsideTheirTablesAreDeckErrors) {
    const auto refuse = [](const char* deck, std::int32_t NZADC, const char* report) {
        RunPointer run = MakePrescribed(deck, NZADC);
        EXPECT_LIBRARY_ERROR(ReadPrescribedValues(*run, CardsOfDeck(*run)), report);
    };
    refuse("101 1 1. 0\n", 1, "Prescribed value card, field N: \"101\"");
    refuse("-1 1 1. 0\n", 1, "field N: \"-1\"");
    refuse("1 3 1. 0\n", 1, "field F: \"3\"");
    refuse("1 0 1. 0\n", 1, "field F: \"0\"");
    refuse("1 1 1. 1\n9 1 1. 0\n", 5, "more entries than NZADC, which is 5");
    refuse("1 1 1. 1\n2 1 1. 0\n", 1, "more entries than NZADC"); // a run is never open at the end
    refuse("1 1 1. 1\n2 1 1. 0\n", 3, "the deck ends here");
    RunPointer full = MakePrescribed("", 2000);
    ListOnStandardError(*full);
    EXPECT_MESSAGE(ReadPrescribedValues(*full, CardsOfDeck(*full)), "UNSUFFICIENT DIMENSION");
}

// Faults: a start value that is not the last end value, stale words that survive the start, a dead entry that gets one.
TEST(PrescribedValues, ValuesOverTheSteps) {
    RunPointer run = MakePrescribed("4 1 2. 0\n0 1 1. 0\n6 2 3. 0\n", 3);
    ReadPrescribedValues(*run, CardsOfDeck(*run));
    TakeSolverVectors(*run);
    using Reals = std::vector<double>;
    const auto expect = [&](double TIME, const Reals& start, const Reals& end, const Reals& increment) {
        const Pointers& at = run->control.at;
        run->clock.TIME = TIME;
        TIME == 0.0 ? StartPrescribedValues(*run) : EvaluatePrescribedValues(*run);
        EXPECT_EQ(Values(RealSection(run->A, at.LZAD1, 3)), start) << TIME;
        EXPECT_EQ(Values(RealSection(run->A, at.LZAD2, 3)), end) << TIME;
        EXPECT_EQ(Values(RealSection(run->A, at.LZAD3, 3)), increment) << TIME;
    };
    expect(0.0, {0, 0, 0}, {0, 0, 21}, {0, 0, 21});
    expect(1.0, {0, 0, 21}, {20, 0, 21}, {20, 0, 0});
    expect(4.0, {20, 0, 21}, {80, 0, 21}, {60, 0, 0});
    run->clock.TIME = 11.0;
    ListOnStandardError(*run);
    EXPECT_MESSAGE(EvaluatePrescribedValues(*run), "TIME FUNCTION NO. =    1");
}

} // namespace
} // namespace zurt
