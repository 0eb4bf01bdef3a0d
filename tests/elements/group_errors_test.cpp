// What ends the reading of an element group: messages of the family, deck errors, features that are not there yet.
#include "group_deck.h"

namespace zurt {
namespace {

using namespace testmodel;

constexpr const char* kCorners = " 1 2 3 4 5 6 7 8";

void ReadCards(const GroupProblem& problem, const std::string& cards, TextUnit* listing = nullptr) {
    Run run;
    PrepareGroup(run, problem, cards);
    if (listing != nullptr)
        run.units.listing = *listing;
    ReadGroup(run);
}

std::string StopOf(const GroupProblem& problem, const std::string& cards) {
    return ListingOfStop([&](TextUnit& listing) { ReadCards(problem, cards, &listing); });
}

std::string Element(const std::string& number, const std::string& rest) {
    return "1 1 8 0 0 2 2 2\n" + number + kCorners + rest + "\n";
}

// Faults: the stop lost, its words changed, an error status; a generated element that is written past the group.
TEST(GroupErrors, ElementNumberAboveTheGroup) {
    const std::string expected = " ERROR IN INPUT DATA FOR 3D ELEMENT GROUP:\n"
                                 " INPUT ELEMENT NUMBER IS GREATER THANTHE TOTAL NUMBER WITHIN THE GROUP\n"
                                 " INPUT ELEMENT NUMBER  NN=       3\n"
                                 " TOTAL NUMBER OF ELEMENTS WITHIN THE GROUP, NET=       2\n"
                                 " S T O P\n";
    GroupProblem problem;
    problem.NET = 2;
    EXPECT_EQ(StopOf(problem, Element("3", " 0 0 0 0 0 0")), expected);
    EXPECT_EQ(StopOf(problem, Element("2", " 0 0 1 5 0 0")), expected);
}

TEST(GroupErrors, MaterialNumbers) {
    GroupProblem problem;
    problem.NDS = 1;
    const std::string head = " E R R O R\nMATERIAL NUMBER IS GREATER THAN THE TOTAL NUMBER OF MATERIALS\n";
    const std::string foot = "   TOTAL NUMBER OF MATERIALS, NMATT=    3\n   S T O P\n";
    EXPECT_EQ(StopOf(problem, "4 8 0 0 2 2 2\n"),
              head + "   MATERIAL NUMBER FOR 3D ELEMENTS, MAT3D=    4\n" + foot);
    EXPECT_EQ(StopOf(problem, std::string("1 8 0 0 2 2 2\n1") + kCorners + " 5 0 0 0 0 0\n"),
              head + "   MATERIAL NUMBER FOR 3D ELEMENT, NMAT=    5\n" + foot);
    const auto deckError = testing::ExitedWithCode(2);
    EXPECT_EXIT(ReadCards(problem, "-1 8 0 0 2 2 2\n"), deckError,
                "line 1, 3D group card, field MAT3DD: \"-1\"");
    EXPECT_EXIT(ReadCards(problem, std::string("1 8 0 0 2 2 2\n1") + kCorners + " -5 0 0 0 0 0\n"), deckError,
                "line 2, 3D element card, field MAT: \"-5\": element 1: ");
}

// Faults: a number from a card that becomes an index unchecked.
TEST(GroupErrors, NumbersWithoutMeaning) {
    const auto deckError = testing::ExitedWithCode(2);
    GroupProblem problem;
    problem.NET = 9;
    problem.NP = 20;
    EXPECT_EXIT(ReadCards(problem, Element("0", " 0 0 0 0 0 0")), deckError,
                "line 2, 3D element card, field NN: \"0\"");
    EXPECT_EXIT(ReadCards(problem, "1 1 8 0 0 2 6 2\n"), deckError, "field NGAUSY: \"6\".*between 1 and 5");
    EXPECT_EXIT(ReadCards(problem, "1 1 8 0 0 2 2 -1\n"), deckError, "field NGAUSZ: \"-1\"");
    EXPECT_EXIT(ReadCards(problem, "1 1 8 0 0 2 2 2\n4 1 2 3 21 5 6 7 8 0 0 0 0 0 0\n"), deckError,
                "field node 4: \"21\": element 4: node numbers lie between 1 and 20");
    EXPECT_EXIT(ReadCards(problem, "1 1 8 0 0 2 2 2\n4 1 2 3 0 5 6 7 8 0 0 0 0 0 0\n"), deckError,
                "field node 4: \"0\"");
    EXPECT_EXIT(ReadCards(problem, Element("1", " 0 0 7 3 0 0")), deckError,
                "field node 7: \"21\": element 3, generated from the card of element 1: ");
    EXPECT_EXIT(ReadCards(problem, Element("1", " 0 0 2147483647 3 0 0")), deckError,
                "field node 1: \"2147483648\"");
    EXPECT_EXIT(
        ReadCards(problem, "1 1 9 0 0 2 2 2\n1 1 2 3 4 5 6 7 8 0 0 0 0 0 0\n0 -1 0 0 0 0 0 0 0 0 0 0 0\n"),
        deckError,
        "3D mid-side node card, field node 10: \"-1\": element 1: node numbers lie between 0 and 20");
    EXPECT_EXIT(ReadCards(problem, Element("1", " 0 0 0 0 0 0")), deckError, "the deck ends here");
}

TEST(GroupErrors, FullWorkingVector) {
    GroupProblem problem;
    problem.NET = 100000000;
    const std::string text = StopOf(problem, "1 1 21 0 0 2 2 2\n");
    EXPECT_NE(text.find("UNSUFFICIENT DIMENSION OF WORKING VECTOR A FOR READ IN INPUT DATA"),
              std::string::npos);
    EXPECT_NE(text.find("REQUIRED DIMENSION, LMAX =2100001"), std::string::npos) << text;
}

// Faults: phase 3 that acts, an unknown phase that does not act as reading.
TEST(GroupErrors, Phases) {
    GroupRun model;
    PrepareGroup(model.run, {}, Element("1", " 0 0 0 0 0 0"));
    DispatchElementPhase(model.run, model.run.groups[1], 3, kEmptyPhase);
    EXPECT_EQ(model.run.deck.nextLine, 0);
    DispatchElementPhase(model.run, model.run.groups[1], 3, -7);
    EXPECT_EQ(model.run.deck.nextLine, 2);
}

} // namespace
} // namespace zurt
