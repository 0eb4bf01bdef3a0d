#include "model/materials.h"

#include "job/partition.h"
#include "model/curve_lookup.h"
#include "model/diffusion_curves.h"
#include "model/material_tables.h"
#include "model/model_run.h"

namespace zurt {
namespace {

using test::Contains;
using test::Line;
using test::ListingOf;
using test::MakeRun;
using test::RunPointer;

struct Header {
    std::int32_t NMATT, NTABK, MAXTK, NANLC, NTABC, MAXTC, NSTAC;
};

RunPointer MaterialRun(const std::string& deck, const Header& header, std::int32_t INDFOR = 1) {
    RunPointer run = MakeRun(deck, INDFOR);
    run->control.header.NMATT = header.NMATT;
    run->control.header.NSTAC = header.NSTAC;
    CurveCounts& counts = run->control.counts;
    counts.NTABK = header.NTABK;
    counts.MAXTK = header.MAXTK;
    counts.NANLC = header.NANLC;
    counts.NTABC = header.NTABC;
    counts.MAXTC = header.MAXTC;
    TakeMaterialTables(*run);
    return run;
}

double Lookup(ConstRealTable pairs, ConstIntArray points, std::int32_t curve, double x) {
    double y = -1.0;
    std::int32_t n = 0;
    EXPECT_EQ(CurveLookup(pairs, points, curve, x, y, n), 0);
    return y;
}

// Sections that overlap, a density of another material, columns that are off.
void ExpectTwoMaterials(const Run& run) {
    EXPECT_EQ(MaterialFunctions(run)(1, 1), 2);
    EXPECT_EQ(MaterialFunctions(run)(1, 3), 0);
    EXPECT_EQ(MaterialFunctions(run)(2, 2), 1);
    EXPECT_EQ(MaterialMultipliers(run)(2, 1), 4.0);
    EXPECT_EQ(MaterialMultipliers(run)(1, 3), 3.0);
    EXPECT_EQ(MaterialDensities(run)(1), 10.0);
    EXPECT_EQ(MaterialDensities(run)(2), 20.0);
    EXPECT_EQ(MaterialMaxima(run)(2), 500.0);
    EXPECT_EQ(MaterialMinima(run)(1), -5.0);
    EXPECT_EQ(ConductionPoints(run)(1), 1);
    EXPECT_EQ(Lookup(ConductionPairs(run), ConductionPoints(run), 1, 99.0), 7.5);
    EXPECT_EQ(Lookup(ConductionPairs(run), ConductionPoints(run), 2, 1.5), 3.0);
    EXPECT_EQ(Lookup(SpecificHeatPairs(run), SpecificHeatPoints(run), 2, 1.0), 20.0 * 3.0);
    EXPECT_EQ(SpecificHeatPoints(run)(1), 0) << "a material without a curve has no points";
}

TEST(Materials, FreeForm) {
    const RunPointer run =
        MaterialRun("2 1 0 1 2 3 10 100 -5\n1 1 1 4 5 6 20 500 0\nC K\n2 2\n1 2\n2 4\n1 0\n0 7.5\n"
                    "2 2\n0 2\nC-\n2 4\n777\n",
                    {2, 2, 2, 0, 1, 3, 1});
    ReadMaterials(*run);
    ExpectTwoMaterials(*run);
    EXPECT_EQ(run->deck.nextLine, 12);
}

TEST(Materials, FixedForm) {
    const char* card = "%5d%5d%5d%10.1f%10.1f%10.1f%10.1f%10.1f%10.1f";
    const char* point = "%20.6E%20.6E";
    const RunPointer run = MaterialRun(
        Line(card, 2, 1, 0, 1.0, 2.0, 3.0, 10.0, 100.0, -5.0) +
            Line(card, 1, 1, 1, 4.0, 5.0, 6.0, 20.0, 500.0, 0.0) + Line("%5d%5d", 2, 2) +
            Line(point, 1.0, 2.0) + Line(point, 2.0, 4.0) + Line("%5d%5s", 1, "") + Line(point, 0.0, 7.5) +
            Line("%5d%5d", 2, 2) + Line("%10s%10d", "", 2) + Line("%10d%10d", 2, 4),
        {2, 2, 2, 0, 1, 3, 1}, 2);
    ReadMaterials(*run);
    ExpectTwoMaterials(*run);
}

// Echo of the values after their multiplication, and missing remarks.
TEST(Materials, EchoShowsTheCardsValues) {
    const RunPointer run = MaterialRun("0 0 0 1 1 1 8 300 200\n1 1\n0 5\n", {1, 0, 1, 0, 1, 1, 1});
    run->control.header.NULAZ = 3;
    ReadMaterials(*run);
    const std::string listing = ListingOf(*run);
    EXPECT_TRUE(Contains(listing,
                         "\n      1         0    0    0     1.0000D+00  1.0000D+00  1.0000D+00  8.0000D+00"
                         "    3.0000D+02    2.0000D+02\n"));
    EXPECT_TRUE(
        Contains(listing, "ALL CONDUCTION COEFICIENT TEMPERATURE DEPENDENCE ARE GIVEN IN ANALITICAL FORM"));
    EXPECT_TRUE(Contains(listing, "0.50000D+01\n"));
    EXPECT_FALSE(Contains(listing, "0.40000D+02"));
    EXPECT_EQ(Lookup(SpecificHeatPairs(*run), SpecificHeatPoints(*run), 1, 0.0), 40.0);
}

// In a steady problem the curves have no room: their cards must be consumed and must not reach the next section.
TEST(Materials, SpecificHeatOfASteadyProblemIsReadAndDropped) {
    const RunPointer run = MaterialRun("0 0 0 1 1 1 8 300 200\n1 2\n0 5\n1 6\n777\n", {1, 0, 0, 0, 1, 2, 0});
    const Word after = TakeWords(run->A, "next", 10);
    Fill(RealSection(run->A, after, 10), 1.5);
    ReadMaterials(*run);
    EXPECT_EQ(run->deck.nextLine, 4);
    for (Word i = 1; i <= 10; ++i)
        EXPECT_EQ(RealSection(run->A, after, 10)(i), 1.5);
    EXPECT_FALSE(HasSpecificHeatTable(*run));
    EXPECT_EQ(SpecificHeatPoints(*run).length, 0);
}

RunPointer DiffusionRun(const std::string& deck, std::int32_t NMATT, std::int32_t MAXPMAT,
                        std::int32_t INDFOR = 2) {
    RunPointer run = MakeRun(deck, INDFOR);
    run->control.header.NDS = 1;
    run->control.header.NMATT = NMATT;
    run->control.counts.MAXPMAT = MAXPMAT;
    TakeDiffusionCurves(*run);
    ReadDiffusionCurves(*run);
    return run;
}

double Diffusion(const Run& run, std::int32_t material, double x) {
    double y = -1.0;
    EXPECT_EQ(DiffusionLookup(DiffusionTable(run), DiffusionPoints(run), material, x, y), 0);
    return y;
}

// Curve and point exchanged in the table, zeros that are not taken for ones.
TEST(DiffusionCurves, ReadByColumnsWithZerosAsOnes) {
    const char* point = "%20.6E%20.6E";
    const RunPointer run = DiffusionRun(
        Line("%5d%5d", 3, 2) + Line(point, 0.0, 1.0) + "C between\n" + Line(point, 2.0, 3.0) + "\n" +
            Line(point, 0.0, 8.0) + Line("%5d%5d", 3, 2) + Line(point, 0.0, 5.0) + Line(point, 2.0, 7.0),
        3, 4);
    EXPECT_EQ(Diffusion(*run, 1, 123.0), 8.0);
    EXPECT_EQ(Diffusion(*run, 3, 1.0), 6.0);
    EXPECT_EQ(Diffusion(*run, 3, 2.0), 7.0);
    EXPECT_EQ(DiffusionPoints(*run)(2), 0);
    EXPECT_EQ(Diffusion(*run, 2, 1.0), 0.0) << "the table is cleared ahead of the cards";
    EXPECT_EQ(DiffusionTable(*run)(1, 4), 0.0);
}

} // namespace
} // namespace zurt
