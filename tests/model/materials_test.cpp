#include "model/materials.h"

#include "job/partition.h"
#include "model/curve_lookup.h"
#include "model/diffusion_curves.h"
#include "model/material_tables.h"
#include "support/small_run.h"

namespace zurt {
namespace {

using zurt_test::Contains;
using zurt_test::Line;
using zurt_test::ListingOf;
using zurt_test::MakeRun;
using zurt_test::RunPointer;

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
TEST(Materials, TwoMaterials) {
    const RunPointer read =
        MaterialRun("2 1 0 1 2 3 10 100 -5\n1 1 1 4 5 6 20 500 0\nC K\n2 2\n1 2\n2 4\n1 0\n0 7.5\n"
                    "2 2\n0 2\nC-\n2 4\n777\n",
                    {2, 2, 2, 0, 1, 3, 1});
    zurt::Run& run = *read;
    ReadMaterials(run);
    EXPECT_EQ(run.deck.nextLine, 12);
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

// In a steady problem the curves have no room: their cards must be consumed and must not reach the next section.
TEST(Materials, SpecificHeatOfASteadyProblemIsReadAndDropped) {
    const RunPointer run = MaterialRun("0 0 0 1 1 1 8 300 200\n1 2\n0 5\n1 6\n777\n", {1, 0, 0, 0, 1, 2, 0});
    const Word after = TakeWords(run->A, "next", 10);
    Fill(RealSection(run->A, after, 10), 1.5);
    run->control.header.NULAZ = 3;
    ReadMaterials(*run);
    EXPECT_EQ(run->deck.nextLine, 4);
    EXPECT_TRUE(Contains(ListingOf(*run), "DEPENDENCE ARE GIVEN IN ANALITICAL FORM"));
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
