// Group and element cards of all families: defaults, field rules, generation, data block, column heights, messages, and what
// a deck may not ask of them. Numbers outside their arrays are refused in tests/decks/damaged_test.cpp.
#include "elements/group_views.h"
#include "group_deck.h"

#include <vector>

namespace zurt {
namespace {

using namespace testmodel;

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

GroupProblem OfFamily(int NETIP, int NET = 1) {
    GroupProblem problem;
    problem.NETIP = NETIP;
    problem.NET = NET;
    return problem;
}

// The first `columns` nodes of element n, or all that its group has room for.
std::vector<int> Row(const Run& run, Word n, int columns = 0) {
    const ElementGroup& group = run.groups[1];
    std::vector<int> row;
    for (Word k = 1; k <= (columns > 0 ? columns : group.NDMAX); ++k)
        row.push_back(Connectivity(run, group)(n, k));
    return row;
}

std::vector<double> Thicknesses(const Run& run) {
    const RealArray array = ElementThickness(run, run.groups[1]);
    return {array.data, array.data + array.length};
}

struct ReadModel : GroupRun {
    ReadModel(const GroupProblem& problem, const std::string& cards) {
        PrepareGroup(run, problem, cards);
        ReadGroup(run);
    }
    const ElementGroup& Group() const { return run.groups[1]; }
};

std::string StopOf(const GroupProblem& problem, const std::string& cards) {
    return ListingOfStop([&](TextUnit& listing) {
        zurt::Run run;
        PrepareGroup(run, problem, cards);
        run.units.listing = listing;
        ReadGroup(run);
    });
}

void ExpectDeckError(const GroupProblem& problem, const std::string& cards, const char* pattern) {
    const auto read = [&] {
        zurt::Run run;
        PrepareGroup(run, problem, cards);
        ReadGroup(run);
    };
    EXPECT_EXIT(read(), testing::ExitedWithCode(2), pattern);
}

// Faults: a default of the group cards lost, columns by the wrong limit, a thickness of 0 kept under NTHIC 0 or replaced
// under NTHIC 1, NMAT or MAT of the card acting, NDS cards read by the other layout.
TEST(GroupFamilies, Defaults) {
    const ReadModel brick(OfFamily(3), "3 2 0 1 1 0 5 0\n1" + Corners(1) + " 3 0 0 0 0 0\n");
    EXPECT_EQ(brick.Group().NMAT, 1);
    EXPECT_EQ(brick.Group().MAT, 1);
    EXPECT_EQ(brick.run.A.LMAX, brick.Group().LNEL + 8); // neither materials nor print flags by element
    EXPECT_EQ(brick.Group().NPDMX, 8);
    EXPECT_EQ(brick.Group().NDMAX, 8);
    EXPECT_EQ(std::vector<int>(brick.Group().NGAUS, brick.Group().NGAUS + 3), (std::vector<int>{2, 5, 2}));
    GroupProblem bricks = OfFamily(3);
    bricks.NDS = 1;
    const ReadModel full(bricks,
                         "0 9 0 0 0 0 0\n1" + Corners(1) + " 0 0 0 0 0 0\n0 0 0 0 0 0 0 0 0 0 0 0 0\n");
    EXPECT_EQ(full.Group().MATDD, 1);
    EXPECT_EQ(full.Group().NDMAX, 21);

    const ReadModel plane(OfFamily(2), "3 2 0 0 0 0 3 0 1e-11\n1 1 2 3 4 0 0 0 0 0 0 0\n");
    EXPECT_EQ(plane.Group().NDMAX, 4);
    EXPECT_EQ(plane.Group().NPDMX, 4);
    EXPECT_EQ(plane.Group().NMAT, 1);
    EXPECT_EQ(plane.Group().MAT, 1);
    EXPECT_EQ(plane.Group().NGAUS[0], 2);
    EXPECT_EQ(plane.Group().NGAUS[1], 3);
    EXPECT_EQ(plane.Group().THIC, 1.0);
    EXPECT_EQ(plane.run.A.LMAX, plane.Group().LNEL + 4);
    GroupProblem device = OfFamily(2);
    device.NDS = 1;
    const ReadModel wide(device, "0 5 0 0 1 0 1 0\n1 1 2 3 4 0 0 0 0 0 0 0\n0 0 7 0 0\n");
    EXPECT_EQ(wide.Group().MATDD, 1);
    EXPECT_EQ(wide.Group().NDMAX, 9);
    EXPECT_EQ(wide.Group().NGAUS[0], 1);
    EXPECT_EQ(wide.Group().THIC, 0.0);
    EXPECT_EQ(Row(wide.run, 1), (std::vector<int>{1, 2, 3, 4, 0, 0, 7, 0, 0}));

    const ReadModel line(OfFamily(1), "9 9 0 0 0 0\n1 5 6 0 0 0 0 0 0 0\n");
    EXPECT_EQ(line.Group().NPDMX, 2);
    EXPECT_EQ(line.Group().NDMAX, 2);
    EXPECT_EQ(line.Group().NGAUS[0], 2);
    EXPECT_EQ(Thicknesses(line.run), std::vector<double>{1.0});
    device.NETIP = 1;
    const ReadModel curved(device, "2 7 0 0 5\n1 5 6 0 0 0 0 0 0 0 4.0\n");
    EXPECT_EQ(curved.Group().MATDD, 2);
    EXPECT_EQ(curved.Group().NDMAX, 3);
    EXPECT_EQ(curved.Group().NGAUS[0], 5);
    EXPECT_EQ(Row(curved.run, 1), (std::vector<int>{5, 6, 0}));
}

// Faults: a blank material under NDS that takes the element before; a source or print field that loses its carried
// value, that stores a negative one, or that carries the stored 0 instead of the negative value.
TEST(GroupFamilies, CarriedFields) {
    GroupProblem problem;
    problem.NDS = 1;
    problem.IZIP = 1;
    problem.NET = 5;
    const std::string corners = Corners(1);
    const ReadModel model(problem, "2 8 5 7 2 2 2\n"
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
    const ElementGroup& group = model.run.groups[1];
    EXPECT_EQ(Values(ElementMaterials(model.run, group)), (std::vector<int>{2, 3, 2, 1, 2}));
    EXPECT_EQ(Values(ElementSources(model.run, group)), (std::vector<int>{0, 4, 4, 0, 0}));
    EXPECT_EQ(Values(IntSection(model.run.A, group.LIPC, 5)), (std::vector<int>{0, 9, 9, 0, 0}));
    EXPECT_EQ(Values(IntSection(model.run.A, group.LIPT, 5)), (std::vector<int>{0, 1, 1, 0, 0}));
}

// Faults: arrays out of order, an absent array that takes room, integers counted in half words.
TEST(GroupFamilies, DataBlockOrder) {
    GroupProblem problem;
    problem.NDS = 1;
    problem.IZIP = 2;
    problem.NET = 3;
    const ReadModel model(problem, "1 8 2 1 2 2 2\n1" + Corners(1) + " 0 0 1 9 0 0\n");
    const Word LMAX = model.Group().LNEL;
    const ElementGroup& group = model.run.groups[1];
    EXPECT_EQ(group.LMATE, LMAX + 24);
    EXPECT_EQ(group.LISRC, LMAX + 27);
    EXPECT_EQ(group.LIPT, LMAX + 30); // the value flag is 1: no array
    EXPECT_EQ(group.LIPC, LMAX + 30);
    EXPECT_EQ(model.run.A.LMAX, LMAX + 33);
}

// Faults: generation off by one, a run that reads past the element count or stops short of it, a mid-side card read for
// generated elements, an absent mid-side node that is generated, a card that must lie in sequence.
TEST(GroupFamilies, Generation) {
    GroupProblem problem;
    problem.NET = 7;
    const ReadModel model(problem, "1 1 20 0 0 2 2 2\n"
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
    EXPECT_EQ(model.run.deck.nextLine, 9);
    EXPECT_EQ(Row(model.run, 3, 21),
              (std::vector<int>{7, 8, 9, 10, 11, 12, 13, 14, 0, 56, 0, 0, 0, 0, 0, 0, 0, 0, 0, 66, 0}));
    EXPECT_EQ(Row(model.run, 4, 2), (std::vector<int>{90, 91}));
    EXPECT_EQ(Row(model.run, 5, 2), (std::vector<int>{100, 101}));
    EXPECT_EQ(Row(model.run, 7, 8), Row(model.run, 6, 8)); // node step 0, still counted
    EXPECT_EQ(Row(model.run, 7, 21).back(), 1);
}

// Faults: widths of the fixed cards; the mid-side card goes under the element card's columns, 9 of 8 and 4 of 3.
TEST(GroupFamilies, FixedColumnsOfBricks) {
    GroupProblem problem;
    problem.INDFOR = 2;
    problem.NET = 2;
    problem.NDS = 1;
    const ReadModel model(
        problem,
        "    2        21    0    1    3         4\n"
        "       1       1       2       3       4       5       6       7       8  3  0 10  1  0  0\n"
        "       9      10      11      12      13      14      15      16      17 18 19 20 21\n");
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
TEST(GroupFamilies, CountsAloneEndTheReading) {
    GroupProblem none;
    none.NET = 0;
    const ReadModel empty(none, "1 1 8 0 0 2 2 2\nan unread card\n");
    EXPECT_EQ(empty.run.deck.nextLine, 1);

    GroupProblem two;
    two.NET = 2;
    const ReadModel gap(two, "1 1 8 0 0 2 2 2\n2" + Corners(1) + " 0 0 0 0 0 0\n2" + Corners(9) +
                                 " 0 0 0 0 0 0\n");
    EXPECT_EQ(Row(gap.run, 1, 2), (std::vector<int>{0, 0}));
    EXPECT_EQ(Row(gap.run, 2, 2), (std::vector<int>{9, 10}));
}

// Faults: heights of an earlier group lost, MAXA made before the last group, NWK wrong.
TEST(GroupFamilies, LastGroupFinishesColumnPointers) {
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

// Faults: thickness or area that is not carried from card to card and along generated elements, carried although given, or
// an area that is 0 ahead of the first; the array out of its place behind the print flags, or there under NTHIC 0.
TEST(GroupFamilies, ThicknessAndAreaAreCarried) {
    const std::string cards = "1 1 2 0 0 0 0 0 0 0\n2 1 2 0 0 0 0 0 0 2.5\n3 1 2 0 0 3 1 0 0 -1e-11\n"
                              "5 1 2 0 0 0 0 0 0 -7\n";
    EXPECT_EQ(Thicknesses(ReadModel(OfFamily(1, 5), "1 1 2 0 0 2\n" + cards).run),
              (std::vector<double>{1.0, 2.5, 2.5, 2.5, -7.0}));

    GroupProblem plane = OfFamily(2, 2);
    const std::string quadrilaterals = "1 1 2 3 4 0 0 0 0 0 0 0\n2 1 2 3 4 0 0 0 0 0 0 3.0\n";
    const ReadModel each(plane, "1 1 4 2 0 2 2 1 0.5\n" + quadrilaterals);
    EXPECT_EQ(Thicknesses(each.run), (std::vector<double>{0.5, 3.0}));
    EXPECT_EQ(each.Group().LTHIC, each.Group().LIPC + 2);
    EXPECT_EQ(each.run.A.LMAX, each.Group().LTHIC + 2);
    EXPECT_TRUE(Thicknesses(ReadModel(plane, "1 1 4 2 0 2 2 0 0.5\n" + quadrilaterals).run).empty());
}

// Faults: widths of the fixed cards of either family; a mid-side card under other columns than the element card's.
TEST(GroupFamilies, FixedColumns) {
    GroupProblem problem = OfFamily(2, 2);
    problem.INDFOR = 2;
    const ReadModel plane(problem,
                          "    1    1    9    0    0    3    4    1     2.125\n"
                          "       1      11      12      13      14    1    0   10    1    0    0      0.75\n"
                          "      15      16       0      18      19\n");
    EXPECT_EQ(plane.Group().NGAUS[1], 4);
    EXPECT_EQ(plane.Group().THIC, 2.125);
    EXPECT_EQ(Row(plane.run, 2), (std::vector<int>{21, 22, 23, 24, 25, 26, 0, 28, 29}));
    EXPECT_EQ(Thicknesses(plane.run), (std::vector<double>{0.75, 0.75}));
    problem.NDS = 1;
    const ReadModel device(problem,
                           "    2         4    0    0    3    4    0    7125\n"
                           "       1      11      12      13      14    3    0   10    1    0    0\n");
    EXPECT_EQ(device.Group().MATDD, 2);
    EXPECT_EQ(device.Group().NGAUS[1], 4);
    EXPECT_EQ(device.Group().THIC, 7.125);

    problem.NETIP = 1;
    const ReadModel curved(problem,
                           "    2         3    0    0    3\n"
                           "       1      11      12      13    3    0   10    1    0    0       0.5\n");
    EXPECT_EQ(curved.Group().NGAUS[0], 3);
    EXPECT_EQ(Row(curved.run, 2), (std::vector<int>{21, 22, 23}));
    EXPECT_EQ(ElementMaterials(curved.run, curved.Group())(2), 3);
    EXPECT_EQ(Thicknesses(curved.run), (std::vector<double>{0.5, 0.5}));
    problem.NDS = 0;
    problem.NET = 1;
    const ReadModel straight(problem, "    1    1    2    0    0    5\n"
                                      "       1      11      12    0    0    0    0    0    0        25\n");
    EXPECT_EQ(straight.Group().NGAUS[0], 5);
    EXPECT_EQ(Row(straight.run, 1), (std::vector<int>{11, 12}));
    EXPECT_EQ(Thicknesses(straight.run), (std::vector<double>{25.0}));
}

// Faults: words of another family; the message on one quadrilateral, which says 3D too, mended; an element written past the
// group by its card or by generation.
TEST(GroupFamilies, Messages) {
    const std::string material =
        " E R R O R\nMATERIAL NUMBER IS GREATER THAN THE TOTAL NUMBER OF MATERIALS\n";
    struct Case {
        int family;
        std::string cards, line;
    };
    for (const Case& one :
         {Case{3, "4 8 0 0 2 2 2\n", "   MATERIAL NUMBER FOR 3D ELEMENTS, MAT3D=    4\n"},
          Case{3, "1 8 0 0 2 2 2\n1" + Corners(1) + " 5 0 0 0 0 0\n",
               "   MATERIAL NUMBER FOR 3D ELEMENT, NMAT=    5\n"},
          Case{2, "4 4 0 0 2 2 0 0\n", "   MATERIAL NUMBER FOR 2D ELEMENTS, MAT2D=    4\n"},
          Case{2, "1 4 0 0 2 2 0 0\n1 1 2 3 4 5 0 0 0 0 0 0\n",
               "   MATERIAL NUMBER FOR 3D ELEMENT, NMAT=    5\n"},
          Case{1, "4 2 0 0 2\n", "   MATERIAL NUMBER FOR 1D ELEMENTS, MAT1D=    4\n"},
          Case{1, "1 2 0 0 2\n1 1 2 5 0 0 0 0 0 0\n", "   MATERIAL NUMBER FOR 1D ELEMENT, NMAT=    5\n"}}) {
        GroupProblem problem = OfFamily(one.family);
        problem.NDS = 1;
        EXPECT_EQ(StopOf(problem, one.cards),
                  material + one.line + "   TOTAL NUMBER OF MATERIALS, NMATT=    3\n   S T O P\n");
    }
    const auto beyond = [](const char* family) {
        return " ERROR IN INPUT DATA FOR " + std::string(family) +
               " ELEMENT GROUP:\n INPUT ELEMENT NUMBER IS GREATER THANTHE TOTAL NUMBER WITHIN THE GROUP\n"
               " INPUT ELEMENT NUMBER  NN=       3\n"
               " TOTAL NUMBER OF ELEMENTS WITHIN THE GROUP, NET=       2\n S T O P\n";
    };
    EXPECT_EQ(StopOf(OfFamily(3, 2), "1 1 8 0 0 2 2 2\n3" + Corners(1) + " 0 0 0 0 0 0\n"), beyond("3D"));
    EXPECT_EQ(StopOf(OfFamily(3, 2), "1 1 8 0 0 2 2 2\n2" + Corners(1) + " 0 0 1 5 0 0\n"), beyond("3D"));
    EXPECT_EQ(StopOf(OfFamily(2, 2), "1 1 4 0 0 2 2 0 0\n3 1 2 3 4 0 0 0 0 0 0 0\n"), beyond("2D"));
    EXPECT_EQ(StopOf(OfFamily(1, 2), "1 1 2 0 0 2\n3 1 2 0 0 0 0 0 0 0\n"), beyond("1D"));
}

// Faults: an element that overruns the dense scratch of the sparse assembler, or one refused that fits; heights or MAXA
// made in sparse mode.
TEST(GroupFamilies, SparseModeTakesEightNodes) {
    const std::string limit = "with the sparse solver .SolverSelector 2. an element has at most 8 nodes";
    const std::string plane = "1 1 9 0 0 2 2 0 0\n1 1 2 3 4 0 0 9 1 0 0 0\n5 6 7 8 ";
    GroupProblem problem = OfFamily(2, 2);
    problem.SparseMode = 1;
    ExpectDeckError(problem, plane + "9\n",
                    ("2D mid-side node card, field number of nodes: \"9\": element 1: " + limit).c_str());
    const ReadModel eight(problem, plane + "0\n");
    EXPECT_EQ(DiagonalPositions(eight.run)(8), 0);
    EXPECT_EQ(Row(eight.run, 2).back(), 0);
    problem.NETIP = 3;
    problem.NET = 1;
    const std::string brick = "1 1 20 0 0 2 2 2\n1 1 2 3 4 5 6 7 8 0 0 0 0 0 0\n0 0 0 0 0 0 0 0 0 0 0 ";
    ExpectDeckError(problem, brick + "9 0\n", ("field number of nodes: \"9\": element 1: " + limit).c_str());
    EXPECT_EQ(Row(ReadModel(problem, brick + "0 0\n").run, 1)[7], 8);
}

// Faults: a potential read outside its words; decks refused whose sources, family or kind of problem need none.
TEST(GroupFamilies, PotentialOfASource) {
    GroupProblem problem = OfFamily(2);
    problem.ITOR = 2;
    problem.IZIP = 1;
    problem.PotentialFunctionSize = 3;
    const std::string cards = "1 1 4 0 0 2 2 0 0\n1 1 2 3 4 0 ";
    ExpectDeckError(problem, cards + "1 0 0 0 0 0\n",
                    "2D element card, field node 4: \"4\": element 1: .*PotentialFunctionSize .* is 3");
    const ReadModel none(problem, cards + "-1 0 0 0 0 0\n");
    problem.PotentialFunctionSize = 4;
    const ReadModel enough(problem, cards + "1 0 0 0 0 0\n");
    problem.PotentialFunctionSize = 0;
    problem.IZIP = 2;
    const ReadModel noLoad(problem, cards + "1 0 0 0 0 0\n");
    problem.ITOR = 1;
    problem.IZIP = 1;
    const ReadModel torsion(problem, cards + "1 0 0 0 0 0\n");
    EXPECT_EQ(ElementSources(torsion.run, torsion.Group())(1), 1);
}

// Faults: phase 3 that acts, an unknown phase that does not act as reading.
TEST(GroupFamilies, Phases) {
    GroupRun model;
    PrepareGroup(model.run, {}, "1 1 8 0 0 2 2 2\n1" + Corners(1) + " 0 0 0 0 0 0\n");
    DispatchElementPhase(model.run, model.run.groups[1], 3, kEmptyPhase);
    EXPECT_EQ(model.run.deck.nextLine, 0);
    DispatchElementPhase(model.run, model.run.groups[1], 3, -7);
    EXPECT_EQ(model.run.deck.nextLine, 2);
}

std::string EchoOf(GroupProblem problem, const std::string& cards) {
    problem.NULAZ = 1;
    GroupRun model;
    PrepareGroup(model.run, problem, cards);
    const std::string listing = zurt_test::MakeTemporaryFolder() + "/listing";
    OpenTextUnit(model.run.units.listing, listing);
    ReadGroup(model.run);
    CloseTextUnit(model.run.units.listing);
    return zurt_test::ReadFile(listing);
}

// Faults: echo of another family, columns off their heads, thickness or area not shown.
TEST(GroupFamilies, Echo) {
    GroupProblem bricks = OfFamily(3, 2);
    bricks.NDS = 1;
    const std::string brick =
        EchoOf(bricks, "2 20 0 1 2 2 2\n1" + Corners(1) + " 0 0 1 1 0 0\n0 0 0 0 0 0 0 0 0 0 0 0 42\n");
    for (const char* part :
         {"MATERIAL NUMBER FOR THE ELEMENT GROUP......... MAT3DD =    2\n",
          "GT.8; FOR ELEMENTE FROM 8 TO 21 NODES", "EQ.1; PRINTED IN ALL ELEMENTS",
          "INPUT DATA FOR EACH 3/D ELEMENT", " ELEMENT ", "MAT. SOU. COO. CONC.",
          "       2        2       3       4       5       6       7       8       9      2    0    0    1\n",
          "       0       0       0       0      43\n"})
        EXPECT_NE(brick.find(part), std::string::npos) << part;
    const std::string plane =
        EchoOf(OfFamily(2), "1 1 9 0 1 2 2 1 0.5\n1 11 12 13 14 0 0 0 0 0 0 0\n15 16 17 18 0\n");
    for (const char* part : {"NUMBER OF DIFFERENT MATERIALS ................ NMAT2D =    1\n",
                             "GT.4; FOR ELEMENTS FROM 5 TO 9 NODES", "EQ.1; THICKNESS ARE VARIABLES",
                             " THIC = 5.000E-01\n", "INPUT DATA FOR EACH 2/D ELEMENT",
                             " ELEMENT              NODES                MAT. SOU. COO. CONC.  THICKNESS\n",
                             "       1       11      12      13      14      1    0    0    1  5.000E-01\n",
                             "               15      16      17      18       0\n"})
        EXPECT_NE(plane.find(part), std::string::npos) << part << plane;
    GroupProblem device = OfFamily(1);
    device.NDS = 1;
    const std::string line = EchoOf(device, "2 2 1 0 2\n1 11 12 0 0 0 0 0 0 0.25\n");
    for (const char* part :
         {"MATERIAL NUMBER FOR THE ELEMENT GROUP......... MAT1DD =    2\n", "EQ.1; FOR MAT1DD.EQ.0",
          "GT.2; FOR ELEMENTS WITH 3 NODES", "DATA FOR EACH 1/D ELEMENT IN GROUP",
          " ELEM.        NODES          MAT. SOURCE COORD.  CONC.       AREA\n",
          "       1       11      12       2      0      1      0  2.500E-01\n"})
        EXPECT_NE(line.find(part), std::string::npos) << part << line;
}

} // namespace
} // namespace zurt
