// Group and element cards of all families: defaults, field rules, generation, data block, messages, and what a deck may
// not ask of them. Numbers outside their arrays are refused in tests/decks/damaged_test.cpp.
#include "elements/element_phases.h"
#include "geometry/group_views.h"
#include "run/partition.h"
#include "support/small_run.h"

namespace zurt {
namespace {

using zurt_test::RunPointer;

// The header data that the group readers look at.
struct GroupProblem {
    int NETIP = 3, NET = 1, NDS = 0, IZIP = 0;
    int SparseMode = 0, ITOR = 0, PotentialFunctionSize = 0;
};

// A run that stands in front of the cards of group 1, with 200 free nodes and three materials.
RunPointer PrepareGroup(const GroupProblem& problem, const std::string& cards) {
    RunPointer run = zurt_test::MakeRun(cards, 1, 200, 20000);
    HeaderFields& header = run->control.header;
    header.NMATT = 3;
    header.NDS = problem.NDS;
    header.NGET = header.INTEB = 1;
    header.ITOR = problem.ITOR;
    header.PotentialFunctionSize = problem.PotentialFunctionSize;
    run->sizes.SparseMode = problem.SparseMode;
    TakeNodeArrays(*run);
    run->sizes.JEDN = header.NP;
    for (std::int32_t n = 1; n <= header.NP; ++n)
        EquationNumbers (*run)(n) = n;
    TakeDiagonalPositions(*run);
    ElementGroup& group = run->groups[1];
    group.NGE = 1;
    group.NETIP = problem.NETIP;
    group.NET = problem.NET;
    group.IZIP = problem.IZIP;
    return run;
}

struct ReadModel {
    RunPointer run;
    const ElementGroup& group;
    ReadModel(const GroupProblem& problem, const std::string& cards)
        : run(PrepareGroup(problem, cards)), group(run->groups[1]) {
        ReadElementGroup(*run, run->groups[1]);
    }
};

void ExpectDeckError(const GroupProblem& problem, const std::string& cards, const std::string& pattern) {
    const RunPointer run = PrepareGroup(problem, cards);
    EXPECT_LIBRARY_ERROR(ReadElementGroup(*run, run->groups[1]), pattern);
}

template <class Number> std::vector<Number> Values(ArrayView<Number> array) {
    return {array.data, array.data + array.length};
}

// Corners of an element card from node `first` on.
std::string Corners(int first) {
    std::string text;
    for (int k = 0; k < 8; ++k)
        text += " " + std::to_string(first + k);
    return text;
}

// The first `columns` nodes of element n, or all that its group has room for.
std::vector<int> Row(const ReadModel& model, Word n, int columns = 0) {
    std::vector<int> row;
    for (Word k = 1; k <= (columns > 0 ? columns : model.group.NDMAX); ++k)
        row.push_back(Connectivity(*model.run, model.group)(n, k));
    return row;
}

std::vector<double> Thicknesses(const ReadModel& model) {
    return Values(ElementThickness(*model.run, model.group));
}

// Faults: a default of the group cards lost, columns by the wrong limit, a thickness of 0 kept under NTHIC 0 or replaced
// under NTHIC 1, NMAT or MAT of the card acting, NDS cards read by the other layout.
TEST(GroupFamilies, Defaults) {
    const std::string brick = "1" + Corners(1) + " 3 0 0 0 0 0\n", plane = "1 1 2 3 4 0 0 0 0 0 0 0\n";
    const struct {
        GroupProblem problem;
        std::string cards;
        int material, NPDMX, NDMAX; // NMAT and MAT, or MATDD under NDS
        std::vector<int> NGAUS;
        double THIC;
    } cases[] = {
        {{3}, "3 2 0 1 1 0 5 0\n" + brick, 1, 8, 8, {2, 5, 2}, 0.0},
        {{3, 1, 1}, "0 9 0 0 0 0 0\n" + brick + "0 0 0 0 0 0 0 0 0 0 0 0 0\n", 1, 9, 21, {2, 2, 2}, 0.0},
        {{2}, "3 2 0 0 0 0 3 0 1e-11\n" + plane, 1, 4, 4, {2, 3}, 1.0},
        {{2, 1, 1}, "0 5 0 0 1 0 1 0\n" + plane + "0 0 7 0 0\n", 1, 5, 9, {1, 2}, 0.0},
        {{1}, "9 9 0 0 0 0\n1 5 6 0 0 0 0 0 0 0\n", 1, 2, 2, {2}, 0.0},
        {{1, 1, 1}, "2 7 0 0 5\n1 5 6 0 0 0 0 0 0 0 4.0\n", 2, 7, 3, {5}, 0.0}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.cards);
        const ReadModel model(one.problem, one.cards);
        const ElementGroup& group = model.group;
        EXPECT_EQ(one.problem.NDS == 0 ? group.MAT : group.MATDD, one.material);
        if (one.problem.NDS == 0) {
            EXPECT_EQ(group.NMAT, one.material);
        }
        EXPECT_EQ(group.NPDMX, one.NPDMX);
        EXPECT_EQ(group.NDMAX, one.NDMAX);
        EXPECT_EQ(std::vector<int>(group.NGAUS, group.NGAUS + one.NGAUS.size()), one.NGAUS);
        if (one.problem.NETIP == 2) {
            EXPECT_EQ(group.THIC, one.THIC);
        }
        if (one.problem.NDS == 0 && one.problem.NETIP > 1) { // neither materials nor print flags by element
            EXPECT_EQ(model.run->A.LMAX, group.LNEL + group.NDMAX);
        }
    }
    EXPECT_EQ(Row(ReadModel(cases[3].problem, cases[3].cards), 1),
              (std::vector<int>{1, 2, 3, 4, 0, 0, 7, 0, 0}));
    EXPECT_EQ(Thicknesses(ReadModel(cases[4].problem, cases[4].cards)), std::vector<double>{1.0});
    EXPECT_EQ(Row(ReadModel(cases[5].problem, cases[5].cards), 1), (std::vector<int>{5, 6, 0}));
}

// Faults: a blank material under NDS that takes the element before; a source or print field that loses its carried
// value, that stores a negative one, or that carries the stored 0 instead of the negative value.
TEST(GroupFamilies, CarriedFields) {
    std::string cards = "2 8 5 7 2 2 2\n";
    int n = 0;
    for (const char* fields :
         {" 0 0 0 0 0 0", " 3 4 0 0 9 1", " 0 0 0 0 0 0", " 1 -2 0 0 -1 -5", " 0 0 0 0 0 0"})
        cards += std::to_string(++n) + Corners(1) + fields + "\n";
    const ReadModel model({3, 5, 1, 1}, cards);
    EXPECT_EQ(Values(ElementMaterials(*model.run, model.group)), (std::vector<int>{2, 3, 2, 1, 2}));
    EXPECT_EQ(Values(ElementSources(*model.run, model.group)), (std::vector<int>{0, 4, 4, 0, 0}));
    EXPECT_EQ(Values(IntSection(model.run->A, model.group.LIPC, 5)), (std::vector<int>{0, 9, 9, 0, 0}));
    EXPECT_EQ(Values(IntSection(model.run->A, model.group.LIPT, 5)), (std::vector<int>{0, 1, 1, 0, 0}));
}

// Faults: arrays out of order, an absent array that takes room, integers counted in half words.
TEST(GroupFamilies, DataBlockOrder) {
    const ReadModel model({3, 3, 1, 2}, "1 8 2 1 2 2 2\n1" + Corners(1) + " 0 0 1 9 0 0\n");
    const ElementGroup& group = model.group;
    EXPECT_EQ(group.LMATE, group.LNEL + 24);
    EXPECT_EQ(group.LISRC, group.LNEL + 27);
    EXPECT_EQ(group.LIPT, group.LNEL + 30); // the value flag is 1: no array
    EXPECT_EQ(group.LIPC, group.LNEL + 30);
    EXPECT_EQ(model.run->A.LMAX, group.LNEL + 33);
}

// Faults: generation off by one, a run that reads past the element count or stops short of it, a mid-side card read for
// generated elements, an absent mid-side node that is generated, a card that must lie in sequence.
TEST(GroupFamilies, Generation) {
    const ReadModel model({3, 7}, "1 1 20 0 0 2 2 2\n5" + Corners(100) +
                                      " 0 0 0 0 0 0\n0 0 0 0 0 0 0 0 0 0 0 0 0\n1" + Corners(1) +
                                      " 0 0 3 2 0 0\n0 50 0 0 0 0 0 0 0 0 0 60 0\n4" + Corners(90) +
                                      " 0 0 7 0 0 0\n0 0 0 0 0 0 0 0 0 0 0 0 0\n6" + Corners(110) +
                                      " 0 0 0 44 0 0\n0 0 0 0 0 0 0 0 0 0 0 0 1\nan unread card\n");
    EXPECT_EQ(model.run->deck.nextLine, 9);
    EXPECT_EQ(Row(model, 3, 21),
              (std::vector<int>{7, 8, 9, 10, 11, 12, 13, 14, 0, 56, 0, 0, 0, 0, 0, 0, 0, 0, 0, 66, 0}));
    EXPECT_EQ(Row(model, 4, 2), (std::vector<int>{90, 91}));
    EXPECT_EQ(Row(model, 5, 2), (std::vector<int>{100, 101}));
    EXPECT_EQ(Row(model, 7, 8), Row(model, 6, 8)); // node step 0, still counted
    EXPECT_EQ(Row(model, 7, 21).back(), 1);
}

// Faults: thickness or area that is not carried from card to card and along generated elements, carried although given, or
// an area that is 0 ahead of the first; the array out of its place behind the print flags, or there under NTHIC 0.
TEST(GroupFamilies, ThicknessAndAreaAreCarried) {
    const std::string cards = "1 1 2 0 0 0 0 0 0 0\n2 1 2 0 0 0 0 0 0 2.5\n3 1 2 0 0 3 1 0 0 -1e-11\n"
                              "5 1 2 0 0 0 0 0 0 7\n";
    EXPECT_EQ(Thicknesses(ReadModel({1, 5}, "1 1 2 0 0 2\n" + cards)),
              (std::vector<double>{1.0, 2.5, 2.5, 2.5, 7.0}));
    const std::string quadrilaterals = "1 1 2 3 4 0 0 0 0 0 0 0\n2 1 2 3 4 0 0 0 0 0 0 3.0\n";
    const ReadModel each({2, 2}, "1 1 4 2 0 2 2 1 0.5\n" + quadrilaterals);
    EXPECT_EQ(Thicknesses(each), (std::vector<double>{0.5, 3.0}));
    EXPECT_EQ(each.group.LTHIC, each.group.LIPC + 2);
    EXPECT_EQ(each.run->A.LMAX, each.group.LTHIC + 2);
    EXPECT_TRUE(Thicknesses(ReadModel({2, 2}, "1 1 4 2 0 2 2 0 0.5\n" + quadrilaterals)).empty());
}

// Faults: words of another family; the message on one quadrilateral, which says 3D too, mended. (Bricks, and elements past
// the group: tests/decks/stops_test.cpp.)
TEST(GroupFamilies, MaterialsThatAreNotThere) {
    const struct {
        int family;
        const char *cards, *line;
    } cases[] = {{2, "4 4 0 0 2 2 0 0\n", "2D ELEMENTS, MAT2D=    4\n"},
                 {2, "1 4 0 0 2 2 0 0\n1 1 2 3 4 5 0 0 0 0 0 0\n", "3D ELEMENT, NMAT=    5\n"},
                 {1, "4 2 0 0 2\n", "1D ELEMENTS, MAT1D=    4\n"},
                 {1, "1 2 0 0 2\n1 1 2 5 0 0 0 0 0 0\n", "1D ELEMENT, NMAT=    5\n"}};
    for (const auto& [family, cards, line] : cases) {
        const RunPointer run = PrepareGroup({family, 1, 1}, cards);
        EXPECT_EQ(
            zurt_test::WrittenByStop(run->units.listing, [&] { ReadElementGroup(*run, run->groups[1]); }),
            " E R R O R\nMATERIAL NUMBER IS GREATER THAN THE TOTAL NUMBER OF MATERIALS\n"
            "   MATERIAL NUMBER FOR " +
                std::string(line) + "   TOTAL NUMBER OF MATERIALS, NMATT=    3\n   S T O P\n");
    }
}

// Faults: an element that overruns the dense scratch of the sparse assembler, or one refused that fits; heights or MAXA
// made in sparse mode.
TEST(GroupFamilies, SparseModeTakesEightNodes) {
    const std::string limit = "field number of nodes: \"9\": element 1: with the sparse solver "
                              ".SolverSelector 2. an element has at "
                              "most 8 nodes";
    const std::string plane = "1 1 9 0 0 2 2 0 0\n1 1 2 3 4 0 0 9 1 0 0 0\n5 6 7 8 ";
    GroupProblem problem = {2, 2};
    problem.SparseMode = 1;
    ExpectDeckError(problem, plane + "9\n", "2D mid-side node card, " + limit);
    const ReadModel eight(problem, plane + "0\n");
    EXPECT_EQ(DiagonalPositions(*eight.run)(8), 0);
    EXPECT_EQ(Row(eight, 2).back(), 0);
    problem.NETIP = 3;
    problem.NET = 1;
    const std::string brick = "1 1 20 0 0 2 2 2\n1 1 2 3 4 5 6 7 8 0 0 0 0 0 0\n0 0 0 0 0 0 0 0 0 0 0 ";
    ExpectDeckError(problem, brick + "9 0\n", limit);
    EXPECT_EQ(Row(ReadModel(problem, brick + "0 0\n"), 1)[7], 8);
}

// Faults: a potential read outside its words; decks refused whose sources, family or kind of problem need none.
TEST(GroupFamilies, PotentialOfASource) {
    const std::string cards = "1 1 4 0 0 2 2 0 0\n1 1 2 3 4 0 ";
    ExpectDeckError({2, 1, 0, 1, 0, 2, 3}, cards + "1 0 0 0 0 0\n",
                    "2D element card, field node 4: \"4\": element 1: .*PotentialFunctionSize .* is 3");
    const ReadModel noSource({2, 1, 0, 1, 0, 2, 3}, cards + "-1 0 0 0 0 0\n");
    const ReadModel enough({2, 1, 0, 1, 0, 2, 4}, cards + "1 0 0 0 0 0\n");
    const ReadModel noLoad({2, 1, 0, 2, 0, 2, 0}, cards + "1 0 0 0 0 0\n");
    const ReadModel torsion({2, 1, 0, 1, 0, 1, 0}, cards + "1 0 0 0 0 0\n");
    EXPECT_EQ(ElementSources(*torsion.run, torsion.group)(1), 1);
}

} // namespace
} // namespace zurt
