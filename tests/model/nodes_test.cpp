#include "model/nodes.h"
#include "run/partition.h"
#include "support/bar_deck.h"
#include "support/small_run.h"

#include <cmath>

namespace zurt {
namespace {

using namespace zurt_test;

using Reals = std::vector<double>;
using Integers = std::vector<std::int32_t>;

RunPointer ReadNodes(const std::string& deck, std::int32_t NP, std::int32_t NZADC = 0, Word words = 100000) {
    RunPointer run = MakeRun(deck, 1, NP, words);
    run->control.counts.NZADC = NZADC;
    TakeNodeArrays(*run);
    ReadNodalData(*run);
    return run;
}

// Cards for nodes first, first + step, ... last, at x equal to 100 times the number.
std::string SingleCards(int first, int step, int last) {
    std::string deck;
    for (int N = first; N <= last; N += step)
        deck += Print("%d 0 %d 0 0 0 0\n", N, 100 * N);
    return deck;
}

// Coordinates by multiplication differ from a running sum in their last digits; so would a step that is not turned.
TEST(Nodes, GenerationUpAndDownAddsItsIncrementAgainAndAgain) {
    const double X1 = 0.1, X11 = 1.3;
    const std::string ends[2] = {"1 5 0.1 -1 3 7.5 2\n11 0 1.3 1 3 8.5 0\n",
                                 "11 5 0.1 -1 3 7.5 2\n1 0 1.3 1 3 8.5 0\n"};
    for (int down = 0; down < 2; ++down) {
        const RunPointer run = ReadNodes(ends[down] + SingleCards(2, 2, 10), 11);
        const double DX = (2.0 / 10.0) * (X11 - X1);
        double X = X1;
        for (int k = 1; k <= 4; ++k) {
            const int N = down == 1 ? 11 - 2 * k : 1 + 2 * k;
            X += DX;
            EXPECT_EQ(CoordinateColumn(*run, 1)(N), X) << N;
            EXPECT_NEAR(CoordinateColumn(*run, 2)(N), -1 + 0.4 * k, 1e-15);
            EXPECT_EQ(CoordinateColumn(*run, 3)(N), 3.0);
        }
        // Generated nodes copy the value and the indicator of the opening card.
        const double first = down == 1 ? 8.5 : 7.5, last = down == 1 ? 7.5 : 8.5;
        EXPECT_EQ(Values(NodeCardValues(*run)), (Reals{first, 0, 7.5, 0, 7.5, 0, 7.5, 0, 7.5, 0, last}));
        EXPECT_EQ(Values(EquationNumbers(*run)), down == 1 ? (Integers{1, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0})
                                                           : (Integers{0, 1, 0, 2, 0, 3, 0, 4, 0, 5, 6}));
        EXPECT_EQ(run->sizes.JEDN, 6);
    }
}

// A last node reached by a step that does not divide, or counted as covered.
TEST(Nodes, StepThatDoesNotDivideLeavesTheRestAlone) {
    const std::string deck = SingleCards(9, 1, 9) + "1 0 0 0 0 0 4\n10 0 9 0 0 0 0\n" + SingleCards(2, 1, 4) +
                             SingleCards(6, 1, 8) + "777\n";
    const RunPointer run = ReadNodes(deck, 10);
    EXPECT_DOUBLE_EQ(CoordinateColumn(*run, 1)(5), 4.0);
    EXPECT_EQ(CoordinateColumn(*run, 1)(9), 900.0);
    EXPECT_EQ(run->deck.nextLine, 9) << "reading ends with the tenth node covered";
}

TEST(Nodes, ClosingCardMayOpenTheNextRun) {
    const RunPointer run =
        ReadNodes("1 0 0 0 0 0 1\n4 0 3 0 0 0 2\n8 0 5 0 0 0 0\n5 0 1 0 0 0 0\n7 0 7 0 0 0 0\n", 8);
    EXPECT_EQ(Values(CoordinateColumn(*run, 1)), (Reals{0, 1, 2, 3, 1, 4, 7, 5}));
}

// Division by zero, overflow of a step's sign, or a loop that never ends.
TEST(Nodes, RunsOfNoLengthAndAbsurdStepsGenerateNothing) {
    const RunPointer same = ReadNodes("1 0 5 0 0 0 1\n1 0 6 0 0 0 0\n2 0 7 0 0 0 0\n", 2);
    EXPECT_EQ(CoordinateColumn(*same, 1)(1), 6.0);
    const RunPointer huge = ReadNodes("2 0 5 0 0 0 2147483647\n1 0 6 0 0 0 -2147483648\n"
                                      "3 0 7 0 0 0 0\n1 0 1 0 0 0 0\n2 0 2 0 0 0 0\n",
                                      3);
    EXPECT_EQ(CoordinateColumn(*huge, 1)(2), 2.0);
    EXPECT_EQ(CoordinateColumn(*huge, 1)(3), 7.0);
    // A closing card may open a run with a negative step, which only a falling run turns: here it takes two nodes
    // back from the count, and four more cards are needed.
    const RunPointer back =
        ReadNodes("1 0 5 0 0 0 1\n2 0 6 0 0 0 -1\n4 0 8 0 0 0 0\n" + SingleCards(1, 1, 4), 4);
    EXPECT_EQ(CoordinateColumn(*back, 1)(4), 400.0);
}

// Indicators of an earlier problem left in `A`.
TEST(Nodes, WithoutACardAreFree) {
    const RunPointer run = ReadNodes("1 0 5 0 0 0 0\n1 0 5 0 0 0 0\n1 1 5 0 0 0 0\n", 3);
    EXPECT_EQ(Values(EquationNumbers(*run)), (Integers{0, 1, 2}));
}

TEST(Nodes, NegativeIndicatorsAreFreeAndListed) {
    const RunPointer run = ReadNodes("4 -1 0 0 0 0 0\n1 1 0 0 0 0 0\n2 -7 0 0 0 0 0\n3 0 0 0 0 0 0\n", 4, 9);
    EXPECT_EQ(Values(EquationNumbers(*run)), (Integers{0, 1, 2, 3}));
    ASSERT_EQ(run->control.counts.NZADP4, 2);
    EXPECT_EQ(Values(IntSection(run->A, run->control.at.LSUBS, 2)), (Integers{2, 4}));
    EXPECT_EQ(run->A.LMAX, run->control.at.LSUBS + 2);
    EXPECT_EQ(run->control.counts.NZADC, 0);
}

// A list that is written although its place lies beyond the end of `A`.
TEST(Nodes, ListThatDoesNotFitIsLeftToTheNextOverflowTest) {
    const RunPointer run = ReadNodes("1 -1 0 0 0 0 1\n4 -1 0 0 0 0 0\n", 4, 0, 22);
    EXPECT_EQ(run->control.counts.NZADP4, 4);
    EXPECT_EQ(run->A.LMAX, 25);
}

// An item left out in free form must not become 0, nor the value of the card before.
TEST(Nodes, ItemsLeftOutKeepWhatTheNodeHeld) {
    const RunPointer run = ReadNodes("1 0 0 0 0 2 1\n5 0 8 4 0 2 0\n3 1 /\n4,,,9,,5/\n6 0 1 1 1 1 0\n", 8);
    EXPECT_EQ(Values(CoordinateColumn(*run, 1)), (Reals{0, 2, 4, 6, 8, 1, 77.25, 77.25}));
    EXPECT_EQ(Values(CoordinateColumn(*run, 2)), (Reals{0, 1, 2, 9, 4, 1, 77.25, 77.25}));
    EXPECT_EQ(EquationNumbers(*run)(3), 0);
    EXPECT_EQ(NodeCardValues(*run)(4), 5.0);
}

// Two nodes were asked for, the run covers three: only meeting NP ends the reading.
TEST(NodesStops, CountingPastTheLastNodeGoesOn) {
    EXPECT_LIBRARY_ERROR(ReadNodes("1 0 0 0 0 0 0\n1 0 0 0 0 0 1\n2 0 0 0 0 0 1\n1 0 0 0 0 0 0\n", 2),
                         "Node card.*deck ends");
}

} // namespace
} // namespace zurt
