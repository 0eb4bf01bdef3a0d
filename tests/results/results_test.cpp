// Tables of results on the listing, mesh and results in the UNV file.
#include "results/listing.h"
#include "results/unv_mesh.h"
#include "results/unv_results.h"
#include "run/partition.h"
#include "support/small_decks.h"
#include "support/small_run.h"

#include <cstring>
#include <map>
#include <regex>

namespace zurt {
namespace {

using zurt_test::CountOf;
using zurt_test::SmallRun;
using zurt_test::Written;

std::string WithoutEmptyLines(const std::string& text) {
    return std::regex_replace("\n" + text, std::regex("\n *(?=\n)"), "");
}

// What the listing shows of input and results: the passages of tests/data/listing_lines.txt stand in the listings of the
// small decks, empty lines aside. A passage follows a line that begins with "@ " and names its deck. Faults: a label, a
// format, a column or a line of an echo; values ahead of their defaults or behind a multiplication; an echo left out, or out
// of its order.
TEST(ListingLines, StandInTheListingsOfTheSmallDecks) {
    const std::string passages = zurt_test::ReadFile(ZURT_SOURCE_DIR "/tests/data/listing_lines.txt");
    std::map<std::string, std::string> listings;
    int count = 0;
    for (std::size_t at = 0, end = 0; at < passages.size(); at = end, ++count) {
        const std::size_t first = passages.find('\n', at);
        const std::string deck = passages.substr(at + 2, first - at - 2);
        end = std::min(passages.find("@ ", first), passages.size());
        std::string& listing = listings[deck];
        if (listing.empty())
            listing = WithoutEmptyLines(zurt_test::RunDeck(zurt_test::SmallDeckText(deck)).listing);
        const std::string passage = passages.substr(first, end - first);
        EXPECT_TRUE(zurt_test::Contains(listing, passage)) << "not in the listing of " << deck << passage;
    }
    EXPECT_GT(count, 30);
}

void Prepare(zurt::Run& run, std::int32_t NP, std::int32_t NDS) {
    run.control.header.NP = NP;
    run.control.header.NDS = NDS;
    run.control.header.IGRAF = 1;
    const std::string title = "A title" + std::string(73, ' ');
    std::memcpy(run.control.header.title, title.data(), kTitleLength);
    run.outputs.GraphicsWritten = 7;
    run.clock.TIME = 0.25;
    TakeNodeArrays(run);
    TakeSolverVectors(run);
}

// Six nodes with values 1.5, 2.5 ...; under NDS mass fluxes too.
void Prepare(zurt::Run& run) {
    Prepare(run, 6, 1);
    for (int i = 1; i <= 6; ++i) {
        NodalValues(run)(i) = i + 0.5;
        RealSection(run.A, run.control.at.LNDS[1], 6)(i) = 10.0 * i;
        RealSection(run.A, run.control.at.LNDS[2], 6)(i) = -i;
    }
}

// Faults: IFORM without effect, or a form of its own for other values; flux y in the place of flux x; the Serbian head torn apart.
TEST(NodalListing, FixedFormAndFluxes) {
    SmallRun run;
    Prepare(run);
    run.control.header.IFORM = 1;
    PrintNodalResults(run);
    const std::string listing = ListingOf(run);
    for (const char* lines :
         {"       1         1.500       2         2.500       3         3.500       4         4.500\n"
          "       5         5.500       6         6.500\n",
          "       3      0.30000E+02   -0.30000E+01       4      0.40000E+02   -0.40000E+01\n"})
        EXPECT_TRUE(zurt_test::Contains(listing, lines)) << listing;
    run.control.header.IFORM = 2;
    PrintNodalResults(run);
    EXPECT_EQ(CountOf(ListingOf(run), "      0.15000E+01"), 1);
    run.job.Language = kSerbian;
    run.job.NonlinearFlag = 1;
    PrintNodalResults(run);
    EXPECT_TRUE(zurt_test::Contains(
        ListingOf(run),
        "V R E M E = 2.50000E-01\n               T   E   M   P   E   R   A   T   U   R   E\n"
        " BROJ ITERACIJA ............................. ITER =    0\n                  C V O R N E"));
}

// Faults: small values printed, set to 0 in print alone, or values of 1e-15 and above set to 0; fluxes changed too.
TEST(NodalListing, SmallConcentrationsBecomeZero) {
    SmallRun run;
    Prepare(run);
    const double before[] = {1e-16, -0.99e-15, 1.01e-15, -1e-15}, after[] = {0.0, 0.0, 1.01e-15, -1e-15};
    std::copy(before, before + 4, NodalValues(run).data);
    const RealArray flux = RealSection(run.A, run.control.at.LNDS[1], 6);
    flux(1) = 1e-16;
    PrintNodalResults(run);
    for (int i = 1; i <= 4; ++i)
        EXPECT_EQ(NodalValues(run)(i), after[i - 1]);
    EXPECT_EQ(flux(1), 1e-16);
    EXPECT_TRUE(zurt_test::Contains(ListingOf(run), "       1      0.00000E+00       2      0.00000E+00"));
}

std::string Head(const std::string& name, const std::string& constants) {
    return "    -1\n    55\nA title" + std::string(73, ' ') + "\n" + name +
           "\nDATUM\nPRAZNA\nSLUCAJ OPTERECENJA:         7\n" + constants +
           "\n         1         1         7\n  0.25000D+00\n";
}

// Faults: a line of the head missing, out of order or in another format; datasets in another order; vectors taken from
// the wrong nodal vectors; small values left, or set to 0 in the last two datasets, which show them as they are.
TEST(UnvResults, FourDatasetsLineByLine) {
    SmallRun small;
    zurt::Run& run = small;
    Prepare(run, 2, 1);
    NodalValues(run)(1) = 1.5;
    NodalValues(run)(2) = -1e-16;
    for (int k = 1; k <= 9; ++k)
        for (int i = 1; i <= 2; ++i)
            RealSection(run.A, run.control.at.LNDS[k], 2)(i) = i == 1 ? k : 1e-16;
    WriteUnvResults(run);
    const std::string zeros = "  0.00000D+00  0.00000D+00  0.00000D+00\n";
    const std::string smallest = "  0.10000D-15  0.10000D-15  0.10000D-15\n";
    EXPECT_EQ(
        Written(run.units.graphics),
        Head("CVORNE KONCENTRACIJE", "         2         1         1         5         2         1") +
            "         1\n  0.15000D+01\n         2\n  0.00000D+00\n    -1\n" +
            Head("MASS FLUX", "         2         1         1         7         2         1") +
            "         1\n  0.10000D+01  0.20000D+01  0.30000D+01\n         2\n" + zeros + "    -1\n" +
            Head("MASS FLUX PER UNIT TIME AND SURFACE",
                 "         2         1         1         9         2         1") +
            "         1\n  0.40000D+01  0.50000D+01  0.60000D+01\n         2\n" + smallest + "    -1\n" +
            Head("DIFFUSION COEFFICIENT", "         2         1         1        14         2         1") +
            "         1\n  0.70000D+01  0.80000D+01  0.90000D+01\n         2\n" + smallest + "    -1\n");
    EXPECT_EQ(NodalValues(run)(2), 0.0);
    EXPECT_EQ(RealSection(run.A, run.control.at.LNDS[3], 2)(2), 0.0);
    EXPECT_EQ(RealSection(run.A, run.control.at.LNDS[4], 2)(2), 1e-16);
}

// Faults: nodal vectors read in a model that has none.
TEST(UnvResults, VectorsAreZeroWithoutDevice) {
    SmallRun small;
    Prepare(small, 3, 0);
    Fill(RealArray(small.A.words, small.A.LMAX - 1), 7.0);
    WriteUnvResults(small);
    const std::string graphics = Written(small.units.graphics);
    EXPECT_EQ(CountOf(graphics, "\n  0.00000D+00  0.00000D+00  0.00000D+00\n"), 9);
    EXPECT_EQ(CountOf(graphics, "0.70000D+01"), 3);
}

// One group of one element whose nodes are numbered by their place; `nodes` of them are there.
ElementGroup& MakeGroup(zurt::Run& run, std::int32_t NPDMX, int nodes, std::int32_t NETIP = 3) {
    ElementGroup& group = run.groups[2];
    group.NGE = 2;
    group.NETIP = NETIP;
    group.NET = 1;
    group.NPDMX = NPDMX;
    const std::int32_t corners = 1 << NETIP, columns = NETIP == 3 ? 21 : NETIP == 2 ? 9 : 3;
    group.NDMAX = NPDMX > corners ? columns : corners;
    group.LNEL = TakeWords(run.A, "LNEL", group.NDMAX);
    for (int k = 1; k <= group.NDMAX; ++k)
        Connectivity(run, group)(1, k) = k <= nodes ? 100 + k : 0;
    run.groups[1].NGE = 1;
    run.groups[1].NET = 40;
    run.groups[1].NETIP = 3;
    return group;
}

// Faults: labels that begin anew in each group; descriptors of another shape; a group of 9 to 19 nodes a brick not written as
// 8, one of 21 not as 20, quadrilaterals of 5 to 7 not as 4, of 9 not as 8; an element without all of its mid-sides
// written with node 0; a middle node behind the ends; the warning missing, given to good groups or to lines.
TEST(UnvMesh, ElementsOfAllFamilies) {
    const char *const
        brick = "       115       115         1         1         7         8\n       105       106"
                "       107       108       101       102       103       104\n",
        *const brick20 = "       116       116         1         1         7        20\n"
                         "       105       113       106       114       107       115       108       116\n"
                         "       117       118       119       120       101       109       102       110\n"
                         "       103       111       104       112\n",
        *const plane = "        44        44         1         1         7         4\n"
                       "       101       102       103       104\n",
        *const plane8 = "        45        45         1         1         7         8\n"
                        "       101       105       102       106       103       107       104       108\n",
        *const line = "        21        21         1         1         7         2\n"
                      "       101       102\n",
        *const line3 = "        24        24         1         1         7         3\n"
                       "       101       103       102\n";
    const struct {
        std::int32_t NETIP, NPDMX;
        int nodes;
        bool warned;
        const char* rows;
    } cases[] = {{3, 8, 8, false, brick},    {3, 20, 20, false, brick20}, {3, 19, 20, true, brick},
                 {3, 21, 21, true, brick20}, {3, 20, 19, false, brick},   {3, 21, 20, true, brick20},
                 {2, 4, 4, false, plane},    {2, 7, 8, true, plane},      {2, 8, 8, false, plane8},
                 {2, 8, 7, false, plane},    {2, 9, 9, true, plane8},     {1, 2, 2, false, line},
                 {1, 3, 3, false, line3},    {1, 3, 2, false, line}};
    for (const auto& one : cases) {
        SCOPED_TRACE(one.NPDMX);
        SmallRun small;
        Prepare(small, 2, 0);
        ElementGroup& group = MakeGroup(small, one.NPDMX, one.nodes, one.NETIP);
        WriteUnvElements(small, group);
        EXPECT_EQ(Written(small.units.graphics),
                  "    -1\n    71\n        41" + std::string(one.rows) + "    -1\n");
        EXPECT_EQ(Written(small.units.listing),
                  one.warned ? "\n GRAPHIC PACKAGE   \"IDEAS\"\n PERMITS ONLY " +
                                   std::string(one.NETIP == 2 ? "2/D ELEMENTS WITH 4 OR 8"
                                                              : "3/D ELEMENTS WITH 8 OR 20") +
                                   " NODES PER ELEMENT IN GROUP   NGE =    2\n"
                             : "");
    }
}

// Faults: the mesh written although this problem asks for no graphics, after an earlier one has opened the file.
TEST(UnvMesh, NothingUnderANegativeInterval) {
    SmallRun small;
    Prepare(small, 2, 0);
    ElementGroup& group = MakeGroup(small, 8, 8);
    small.control.header.IGRAF = -1;
    WriteUnvNodes(small);
    WriteUnvElements(small, group);
    EXPECT_EQ(Written(small.units.graphics), "");
    small.control.header.IGRAF = 2;
    CoordinateColumn(small, 1)(2) = 1.5;
    CoordinateColumn(small, 3)(1) = -2.0;
    WriteUnvNodes(small);
    EXPECT_EQ(
        Written(small.units.graphics),
        "    -1\n    15\n         1         0         0         8  0.00000D+00  0.00000D+00 -0.20000D+01\n"
        "         2         0         0         8  0.15000D+01  0.00000D+00  0.00000D+00\n    -1\n");
}

} // namespace
} // namespace zurt
