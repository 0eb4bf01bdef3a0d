// Group and element cards of the 2D and 1D families, and what a deck may not ask of them.
#include "elements/group_views.h"
#include "group_deck.h"

#include <vector>

namespace zurt {
namespace {

using namespace testmodel;

GroupProblem OfFamily(int NETIP, int NET = 1) {
    GroupProblem problem;
    problem.NETIP = NETIP;
    problem.NET = NET;
    return problem;
}

std::vector<int> Row(const Run& run, Word n) {
    const ElementGroup& group = run.groups[1];
    std::vector<int> row;
    for (Word k = 1; k <= group.NDMAX; ++k)
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

// Faults: words of another family; the message on one element, which says 3D for quadrilaterals too, mended.
TEST(GroupFamilies, Messages) {
    const std::string head = " E R R O R\nMATERIAL NUMBER IS GREATER THAN THE TOTAL NUMBER OF MATERIALS\n";
    const std::string foot = "   TOTAL NUMBER OF MATERIALS, NMATT=    3\n   S T O P\n";
    GroupProblem plane = OfFamily(2), line = OfFamily(1);
    plane.NDS = line.NDS = 1;
    EXPECT_EQ(StopOf(plane, "4 4 0 0 2 2 0 0\n"),
              head + "   MATERIAL NUMBER FOR 2D ELEMENTS, MAT2D=    4\n" + foot);
    EXPECT_EQ(StopOf(plane, "1 4 0 0 2 2 0 0\n1 1 2 3 4 5 0 0 0 0 0 0\n"),
              head + "   MATERIAL NUMBER FOR 3D ELEMENT, NMAT=    5\n" + foot);
    EXPECT_EQ(StopOf(line, "4 2 0 0 2\n"), head + "   MATERIAL NUMBER FOR 1D ELEMENTS, MAT1D=    4\n" + foot);
    EXPECT_EQ(StopOf(line, "1 2 0 0 2\n1 1 2 5 0 0 0 0 0 0\n"),
              head + "   MATERIAL NUMBER FOR 1D ELEMENT, NMAT=    5\n" + foot);
    EXPECT_EQ(StopOf(plane, "1 4 0 0 2 2 0 0\n2 1 2 3 4 0 0 0 0 0 0 0\n")
                  .find(" ERROR IN INPUT DATA FOR 2D ELEMENT GROUP:\n"),
              0U);
    EXPECT_EQ(
        StopOf(line, "1 2 0 0 2\n2 1 2 0 0 0 0 0 0 0\n").find(" ERROR IN INPUT DATA FOR 1D ELEMENT GROUP:\n"),
        0U);
}

// Faults: a number that becomes an index unchecked, a field or card named that the family does not have.
TEST(GroupFamilies, NumbersWithoutMeaning) {
    GroupProblem plane = OfFamily(2, 3), line = OfFamily(1, 3);
    plane.NP = line.NP = 20;
    ExpectDeckError(plane, "1 1 4 0 0 2 6 0 0\n", "2D group card, field NGAU2Y: \"6\"");
    ExpectDeckError(plane, "1 1 4 0 0 2 2 0 0\n1 1 2 3 21 0 0 0 0 0 0 0\n",
                    "2D element card, field node 4: \"21\"");
    ExpectDeckError(plane, "1 1 4 0 0 2 2 0 0\n1 1 2 3 0 0 0 0 0 0 0 0\n",
                    "2D element card, field node 4: \"0\"");
    ExpectDeckError(plane, "1 1 9 0 0 2 2 0 0\n1 1 2 3 4 0 0 0 0 0 0 0\n5 6 -7 8 9\n",
                    "2D mid-side node card, field node 7: \"-7\"");
    ExpectDeckError(line, "1 1 2 0 0 -1\n", "1D group card, field NGAU1X: \"-1\"");
    ExpectDeckError(
        line, "1 1 3 0 0 2\n1 1 2 19 0 0 1 2 0 0 0\n",
        "1D element card, field node 3: \"21\": element 3, generated from the card of element 1: ");
    ExpectDeckError(line, "1 1 3 0 0 2\n0 1 2 3 0 0 0 0 0 0 0\n", "1D element card, field NN: \"0\"");
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

std::string EchoOf(GroupProblem problem, const std::string& cards) {
    problem.NULAZ = 1;
    GroupRun model;
    PrepareGroup(model.run, problem, cards);
    OpenTextUnit(model.run.units.listing, TemporaryName(".lst"));
    ReadGroup(model.run);
    CloseTextUnit(model.run.units.listing);
    const std::string text = TextOf(TemporaryName(".lst"));
    std::filesystem::remove(TemporaryName(".lst"));
    return text;
}

// Faults: echo of another family, columns off their heads, thickness or area not shown.
TEST(GroupFamilies, Echo) {
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
