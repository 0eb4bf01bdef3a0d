#include "model/initial_conditions.h"
#include "run/partition.h"
#include "support/bar_deck.h"
#include "support/small_run.h"

namespace zurt {
namespace {

using namespace zurt_test;

// Nodes 1..NP with equations in falling order; node 2 is held at 5.0 and node 3 lies outside the model.
RunPointer StartRun(const std::string& deck, std::int32_t NPOC, std::int32_t INDFOR = 2,
                    std::int32_t NP = 40) {
    RunPointer run = MakeRun(deck, INDFOR, NP);
    TakeNodeArrays(*run);
    for (std::int32_t N = 1; N <= NP; ++N) {
        EquationNumbers (*run)(N) = N == 1 ? NP - 2 : N - 3;
        NodeCardValues (*run)(N) = N == 2 ? 5.0 : 0.25;
    }
    EquationNumbers (*run)(2) = 0;
    EquationNumbers (*run)(3) = -1;
    run->sizes.JEDN = NP - 2;
    run->control.counts.NPOC = NPOC;
    TakeSolutionVectors(*run);
    return run;
}

void ReadListed(const RunPointer& run) {
    ListOnStandardError(*run);
    ReadInitialConditions(*run, {});
}

std::string Group(double value, int K1, int K2) {
    return Print("%10.4f%5d%5d\n", value, K1, K2);
}

std::string Range(int N1, int KOR, int N2) {
    return Print("%5d%5d%5d\n", N1, KOR, N2);
}

// Both forms; a free card of one item must not take the next line along.
TEST(InitialConditions, OneValueForAllNodesWithAnEquation) {
    const std::pair<const char*, std::int32_t> decks[] = {
        {"C\n2.5\n777\n", 1}, {"C\n2.5 1 1\n777\n", 1}, {"C\n   2.5\n777\n", 2}};
    for (const auto& [deck, INDFOR] : decks) {
        for (const std::int32_t NPOC : {-1, 0, 1}) {
            const RunPointer run = StartRun(deck, NPOC, INDFOR);
            ReadInitialConditions(*run, {});
            EXPECT_EQ(ListingOf(*run), "") << "no echo is asked for";
            EXPECT_EQ(Values(StepSolution(*run)), std::vector<double>(38, 2.5));
            EXPECT_EQ(run->control.outlet.OutletStartOfRun, 2.5);
            EXPECT_EQ(run->control.outlet.OutletEnd, 0.0);
            EXPECT_EQ(run->deck.nextLine, 2);
            if (NPOC == 1) {
                run->deck.nextLine = 0;
                run->control.header.NULAZ = 3;
                run->job.Language = kSerbian;
                ReadInitialConditions(*run, {});
                EXPECT_TRUE(
                    Contains(ListingOf(*run), " TPOC = 2.500E+00\n                (ZA NSTAC.EQ.1)\n"));
            }
        }
    }
}

// Lists over several cards, ranges up, down and of one node, and the order lists before ranges.
TEST(InitialConditions, GroupsOfListsAndRanges) {
    std::string list;
    for (int N = 4; N <= 17; ++N)
        list += Print("%5d", N);
    const std::string deck = Group(1.5, 1, 0) + list + "\nC between\n" + Print("%5d%5d%5d\n", 18, 1, 0) +
                             Group(2.5, 1, 1) + Print("%5d%5d\n", 40, 0) + Range(4, 2, 8) +
                             Range(39, -1, 20) + Range(19, 0, 19) + "\n" + Group(5.0, 0, 1) + Range(1, 1, 3) +
                             "\n" + "777\n";
    const RunPointer run = StartRun(deck, 3);
    run->control.outlet.OutletStartOfRun = 9.0;
    ReadInitialConditions(*run, {});
    for (int N = 4; N <= 40; ++N)
        EXPECT_EQ(StepSolution(*run)(N - 3), N == 4 || N == 6 || N == 8 || N >= 19 ? 2.5 : 1.5) << N;
    EXPECT_EQ(StepSolution(*run)(38), 5.0);
    EXPECT_EQ(run->control.outlet.OutletStartOfRun, 9.0) << "only the one value becomes CINITAL";
    EXPECT_EQ(run->deck.nextLine, LineCount(run->deck) - 1);
    EXPECT_TRUE(Contains(ListingOf(*run), "\n    1  0.5000E+01    2  0.5000E+01    3  0.2500E+00"))
        << "printed although the echo is off";
}

TEST(InitialConditionsStops, HeldNodeTakesNoOtherValue) {
    for (const double held : {5.0 + 0.9e-10, 5.0 - 0.9e-10, 5.0 + 1.1e-10}) {
        const RunPointer run = StartRun(Group(5.0, 1, 0) + "    2    0\n" + Group(1.0, 0, 0), 2);
        NodeCardValues (*run)(2) = held;
        EXPECT_EQ(StopOf([&] { ReadListed(run); }).kind, held > 5.0 + 1e-10 ? "message" : "none")
            << held - 5.0;
    }
    EXPECT_MESSAGE(
        ReadListed(StartRun(Group(4.0, 1, 0) + "    4    2    0\n", 2)),
        "GRESKA U ULAZNIM PODACIMA:\n.*CVOT BROJ=    2\n.*UCITANA KONSTANTNA TEMPERATURA=  0.5000E\\+01\n"
        ".*UCITANA POCETNA    TEMPERATURA=  0.4000E\\+01\n.*NISU JEDNAKE\n.*NE TREBA UCITAVATI");
}

TEST(InitialConditionsStops, RangeMustMeetItsLastNode) {
    const char* message = "POSLEDNJI CVOR MORA SE DOBITI SABIRANJEM KORAKA KOR POCEVSI OD PRVOG CVORA N1";
    for (const std::string& range : {Range(4, 3, 9), Range(4, 0, 9), Range(4, -1, 9), Range(9, 1, 4),
                                     Range(9, -3, 4), Range(4, 99999, 9)})
        EXPECT_MESSAGE(ReadListed(StartRun(Group(1.0, 0, 1) + range, 2)), message) << range;
    // Nodes are collected fourteen at a time: a held node of the batch that goes astray is not reached, one of an
    // earlier batch is.
    EXPECT_MESSAGE(ReadListed(StartRun(Group(1.0, 0, 1) + Range(2, 2, 11), 2)), message);
    EXPECT_MESSAGE(ReadListed(StartRun(Group(1.0, 0, 1) + Range(2, 2, 39), 2)), "CVOT BROJ=");
}

// In a free deck the card that opens the group is also its list, and never ends.
TEST(InitialConditionsStops, FreeDecksHaveNoGroups) {
    EXPECT_LIBRARY_ERROR(
        ReadListed(
            StartRun("    4    4    4    4    4    4    4    4    4    4    4    4    4    4\n", 2, 1)),
        "Initial value node list: .*fixed format decks");
    EXPECT_LIBRARY_ERROR(ReadListed(StartRun("    4    1    5    1\n", 2, 1)),
                         "Initial value range: .*fixed format decks");
}

} // namespace
} // namespace zurt
