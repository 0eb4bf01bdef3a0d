// Group and element cards of the 3D family: defaults, field rules, generation, data block, column heights.
#include "elements/group_views.h"
#include "group_deck.h"

namespace zurt {
namespace {

using namespace testmodel;

std::vector<int> Row(const Run& run, Word n, int columns) {
    std::vector<int> row;
    for (Word k = 1; k <= columns; ++k)
        row.push_back(Connectivity(run, run.groups[1])(n, k));
    return row;
}

std::vector<int> Values(IntArray array) {
    return {array.data, array.data + array.length};
}

// Corners of an element card from node `first` on.
std::string Corners(int first) {
    std::string text;
    for (int k = 0; k < 8; ++k)
        text += " " + std::to_string(first + k);
    return text;
}

// Faults: a default lost; NMAT3D or MAT3D of the card acting; a group material that acts without NDS.
TEST(GroupCards, DefaultsAndReplacedFields) {
    GroupRun plain;
    PrepareGroup(plain.run, {}, "3 2 0 1 1 0 5 0\n1" + Corners(1) + " 3 0 0 0 0 0\n");
    ReadGroup(plain.run);
    const ElementGroup& group = plain.run.groups[1];
    EXPECT_EQ(group.NMAT, 1);
    EXPECT_EQ(group.MAT, 1);
    EXPECT_EQ(plain.run.A.LMAX, group.LNEL + 8); // neither materials nor print flags by element
    EXPECT_EQ(group.NPDMX, 8);
    EXPECT_EQ(group.NDMAX, 8);
    EXPECT_EQ(group.NGAUS[0], 2);
    EXPECT_EQ(group.NGAUS[1], 5);
    EXPECT_EQ(group.NGAUS[2], 2);

    GroupProblem device;
    device.NDS = 1;
    GroupRun withDevice;
    PrepareGroup(withDevice.run, device,
                 "0 9 0 0 0 0 0\n1" + Corners(1) + " 0 0 0 0 0 0\n0 0 0 0 0 0 0 0 0 0 0 0 0\n");
    ReadGroup(withDevice.run);
    EXPECT_EQ(withDevice.run.groups[1].MATDD, 1);
    EXPECT_EQ(withDevice.run.groups[1].NDMAX, 21);
    EXPECT_EQ(Values(ElementMaterials(withDevice.run, withDevice.run.groups[1])), std::vector<int>{1});
}

// Faults: a blank material under NDS that takes the element before; a source or print field that loses its carried
// value, that stores a negative one, or that carries the stored 0 instead of the negative value.
TEST(GroupCards, CarriedFields) {
    GroupProblem problem;
    problem.NDS = 1;
    problem.IZIP = 1;
    problem.NET = 5;
    GroupRun model;
    const std::string corners = Corners(1);
    PrepareGroup(model.run, problem,
                 "2 8 5 7 2 2 2\n"
                 "1" +
                     corners +
                     " 0 0 0 0 0 0\n"
                     "2" +
                     corners +
                     " 3 4 0 0 9 1\n"
                     "3" +
                     corners +
                     " 0 0 0 0 0 0\n"
                     "4" +
                     corners +
                     " 1 -2 0 0 -1 -5\n"
                     "5" +
                     corners + " 0 0 0 0 0 0\n");
    ReadGroup(model.run);
    const ElementGroup& group = model.run.groups[1];
    EXPECT_EQ(Values(ElementMaterials(model.run, group)), (std::vector<int>{2, 3, 2, 1, 2}));
    EXPECT_EQ(Values(ElementSources(model.run, group)), (std::vector<int>{0, 4, 4, 0, 0}));
    EXPECT_EQ(Values(IntSection(model.run.A, group.LIPC, 5)), (std::vector<int>{0, 9, 9, 0, 0}));
    EXPECT_EQ(Values(IntSection(model.run.A, group.LIPT, 5)), (std::vector<int>{0, 1, 1, 0, 0}));
}

// Faults: arrays out of order, an absent array that takes room, integers counted in half words.
TEST(GroupCards, DataBlockOrder) {
    GroupProblem problem;
    problem.NDS = 1;
    problem.IZIP = 2;
    problem.NET = 3;
    GroupRun model;
    PrepareGroup(model.run, problem, "1 8 2 1 2 2 2\n1" + Corners(1) + " 0 0 1 9 0 0\n");
    const Word LMAX = model.run.A.LMAX;
    ReadGroup(model.run);
    const ElementGroup& group = model.run.groups[1];
    EXPECT_EQ(group.LNEL, LMAX);
    EXPECT_EQ(group.LMATE, LMAX + 24);
    EXPECT_EQ(group.LISRC, LMAX + 27);
    EXPECT_EQ(group.LIPT, LMAX + 30); // the value flag is 1: no array
    EXPECT_EQ(group.LIPC, LMAX + 30);
    EXPECT_EQ(model.run.A.LMAX, LMAX + 33);
}

// Faults: generation off by one, a run that reads past the element count or stops short of it, a mid-side card read for
// generated elements, an absent mid-side node that is generated, a card that must lie in sequence.
TEST(GroupCards, Generation) {
    GroupProblem problem;
    problem.NET = 7;
    GroupRun model;
    PrepareGroup(model.run, problem,
                 "1 1 20 0 0 2 2 2\n"
                 "5" +
                     Corners(100) +
                     " 0 0 0 0 0 0\n"
                     "0 0 0 0 0 0 0 0 0 0 0 0 0\n"
                     "1" +
                     Corners(1) +
                     " 0 0 3 2 0 0\n"
                     "0 50 0 0 0 0 0 0 0 0 0 60 0\n"
                     "4" +
                     Corners(90) +
                     " 0 0 7 0 0 0\n"
                     "0 0 0 0 0 0 0 0 0 0 0 0 0\n"
                     "6" +
                     Corners(110) +
                     " 0 0 0 44 0 0\n"
                     "0 0 0 0 0 0 0 0 0 0 0 0 1\n"
                     "an unread card\n");
    ReadGroup(model.run);
    EXPECT_EQ(model.run.deck.nextLine, 9);
    EXPECT_EQ(Row(model.run, 3, 21),
              (std::vector<int>{7, 8, 9, 10, 11, 12, 13, 14, 0, 56, 0, 0, 0, 0, 0, 0, 0, 0, 0, 66, 0}));
    EXPECT_EQ(Row(model.run, 4, 2), (std::vector<int>{90, 91}));
    EXPECT_EQ(Row(model.run, 5, 2), (std::vector<int>{100, 101}));
    EXPECT_EQ(Row(model.run, 7, 8), Row(model.run, 6, 8)); // node step 0, still counted
    EXPECT_EQ(Row(model.run, 7, 21).back(), 1);
}

// Faults: widths of the fixed cards; the mid-side card goes under the element card's columns, 9 of 8 and 4 of 3.
TEST(GroupCards, FixedColumns) {
    GroupProblem problem;
    problem.INDFOR = 2;
    problem.NET = 2;
    problem.NDS = 1;
    GroupRun model;
    PrepareGroup(
        model.run, problem,
        "    2        21    0    1    3         4\n"
        "       1       1       2       3       4       5       6       7       8  3  0 10  1  0  0\n"
        "       9      10      11      12      13      14      15      16      17 18 19 20 21\n");
    ReadGroup(model.run);
    const ElementGroup& group = model.run.groups[1];
    EXPECT_EQ(group.MATDD, 2);
    EXPECT_EQ(group.NPDMX, 21);
    EXPECT_EQ(group.IPRTG, 1);
    EXPECT_EQ(group.NGAUS[0], 3);
    EXPECT_EQ(group.NGAUS[1], 2);
    EXPECT_EQ(group.NGAUS[2], 4);
    const std::vector<int> second = Row(model.run, 2, 21);
    EXPECT_EQ(second.front(), 11);
    EXPECT_EQ(second[16], 27);
    EXPECT_EQ(second.back(), 31);
    EXPECT_EQ(Values(ElementMaterials(model.run, group)), (std::vector<int>{3, 3}));
}

// Faults: a group without elements that takes a card, and one whose cards leave gaps that is refused at reading.
TEST(GroupCards, CountsAloneEndTheReading) {
    GroupProblem none;
    none.NET = 0;
    GroupRun empty;
    PrepareGroup(empty.run, none, "1 1 8 0 0 2 2 2\nan unread card\n");
    ReadGroup(empty.run);
    EXPECT_EQ(empty.run.deck.nextLine, 1);

    GroupProblem two;
    two.NET = 2;
    GroupRun gap;
    PrepareGroup(gap.run, two,
                 "1 1 8 0 0 2 2 2\n2" + Corners(1) + " 0 0 0 0 0 0\n2" + Corners(9) + " 0 0 0 0 0 0\n");
    ReadGroup(gap.run);
    EXPECT_EQ(Row(gap.run, 1, 2), (std::vector<int>{0, 0}));
    EXPECT_EQ(Row(gap.run, 2, 2), (std::vector<int>{9, 10}));
}

// Faults: heights of an earlier group lost, MAXA made before the last group, NWK wrong.
TEST(GroupCards, LastGroupFinishesColumnPointers) {
    GroupProblem problem;
    problem.NGET = 2;
    problem.NP = 20;
    GroupRun model;
    auto& run = model.run;
    PrepareGroup(run, problem,
                 "1 1 8 0 0 2 2 2\n1" + Corners(1) + " 0 0 0 0 0 0\n1 1 8 0 0 2 2 2\n1" + Corners(13) +
                     " 0 0 0 0 0 0\n");
    ReadGroup(run);
    EXPECT_EQ(run.control.state.NWK, 0);
    EXPECT_EQ(DiagonalPositions(run)(8), 7); // still the height
    run.groups[2] = run.groups[1];
    run.groups[2].NGE = 2;
    DispatchElementPhase(run, run.groups[2], 3, kReadPhase);
    // Two full triangles of 8 equations and 4 lone diagonals.
    EXPECT_EQ(run.control.state.NWK, 36 + 4 + 36);
    EXPECT_EQ(DiagonalPositions(run)(21), 77);
}

// Faults: echo lost or written unasked, titles changed.
TEST(GroupCards, Echo) {
    GroupProblem problem;
    problem.NET = 2;
    problem.NDS = 1;
    problem.NULAZ = 1;
    GroupRun model;
    PrepareGroup(model.run, problem,
                 "2 20 0 1 2 2 2\n1" + Corners(1) + " 0 0 1 1 0 0\n0 0 0 0 0 0 0 0 0 0 0 0 42\n");
    OpenTextUnit(model.run.units.listing, TemporaryName(".lst"));
    ReadGroup(model.run);
    CloseTextUnit(model.run.units.listing);
    const std::string text = TextOf(TemporaryName(".lst"));
    std::filesystem::remove(TemporaryName(".lst"));
    for (const char* part :
         {"MATERIAL NUMBER FOR THE ELEMENT GROUP......... MAT3DD =    2\n",
          "GT.8; FOR ELEMENTE FROM 8 TO 21 NODES", "EQ.1; PRINTED IN ALL ELEMENTS",
          "INPUT DATA FOR EACH 3/D ELEMENT", " ELEMENT ", "MAT. SOU. COO. CONC.",
          "       2        2       3       4       5       6       7       8       9      2    0    0    1\n",
          "       0       0       0       0      43\n"})
        EXPECT_NE(text.find(part), std::string::npos) << part;
}

} // namespace
} // namespace zurt
