// Cards and curves of materials, and the built-in polynomials.
#include "model/analytic_materials.h"
#include "model/curve_lookup.h"
#include "model/diffusion_curves.h"
#include "model/material_tables.h"
#include "model/materials.h"
#include "run/partition.h"
#include "support/bar_deck.h"
#include "support/small_run.h"

namespace zurt {
namespace {

using namespace zurt_test;

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
    EXPECT_EQ(Values(MaterialFunctions(run)), (std::vector<std::int32_t>{2, 1, 1, 1, 0, 1}));
    EXPECT_EQ(Values(MaterialMultipliers(run)), (std::vector<double>{1, 4, 2, 5, 3, 6}));
    EXPECT_EQ(Values(MaterialDensities(run)), (std::vector<double>{10, 20}));
    EXPECT_EQ(Values(MaterialMaxima(run)), (std::vector<double>{100, 500}));
    EXPECT_EQ(Values(MaterialMinima(run)), (std::vector<double>{-5, 0}));
    EXPECT_EQ(Values(ConductionPoints(run)), (std::vector<std::int32_t>{1, 2}));
    EXPECT_EQ(Values(SpecificHeatPoints(run)), (std::vector<std::int32_t>{0, 2}))
        << "a material without a curve has none";
    EXPECT_EQ(Lookup(ConductionPairs(run), ConductionPoints(run), 1, 99.0), 7.5);
    EXPECT_EQ(Lookup(ConductionPairs(run), ConductionPoints(run), 2, 1.5), 3.0);
    EXPECT_EQ(Lookup(SpecificHeatPairs(run), SpecificHeatPoints(run), 2, 1.0), 20.0 * 3.0);
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
    EXPECT_EQ(Values(RealSection(run->A, after, 10)), std::vector<double>(10, 1.5));
    for (const std::int32_t NSTAC : {1, 0, -1})
        EXPECT_EQ(MaterialRun("", {1, 0, 0, 0, 1, 2, NSTAC})->A.LMAX, NSTAC == 1 ? 16 : 11) << NSTAC;
    EXPECT_FALSE(HasSpecificHeatTable(*run));
    EXPECT_EQ(SpecificHeatPoints(*run).length, 0);
}

// Curve and point exchanged in the table, zeros that are not taken for ones.
TEST(DiffusionCurves, ReadByColumnsWithZerosAsOnes) {
    const char* point = "%20.6E%20.6E\n";
    const RunPointer run =
        MakeRun(Print("%5d%5d\n", 3, 2) + Print(point, 0.0, 1.0) + "C between\n" + Print(point, 2.0, 3.0) +
                    "\n" + Print(point, 0.0, 8.0) + Print("%5d%5d\n", 3, 2) + Print(point, 0.0, 5.0) +
                    Print(point, 2.0, 7.0),
                2);
    run->control.header.NDS = 1;
    run->control.header.NMATT = 3;
    run->control.counts.MAXPMAT = 4;
    TakeDiffusionCurves(*run);
    ReadDiffusionCurves(*run);
    EXPECT_EQ(Values(DiffusionPoints(*run)), (std::vector<std::int32_t>{1, 0, 2}));
    EXPECT_EQ(Values(DiffusionTable(*run)), // what no card gives is cleared
              (std::vector<double>{0, 0, 0, 8, 0, 5, 0, 0, 2, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
}

// Coefficients of rising powers of T; many are single precision decimals, widened. Conduction of materials 1 to 4, 7, 8:
// rows 0 to 5; the two of 5 and 6: 6, 7; of 9 and 10: 8, 9; specific heat of 1 to 4, 7 to 9: rows 10 to 16.
constexpr double kPolynomials[][4] = {{-471.8699951171875, 3.140000104904175, -0.00483, 2.38e-07},
                                      {71.75, -0.07999999821186066, 7.08e-05, -3.86e-08},
                                      {404.6700134277344, -0.07999999821186066, 5.03e-05, -3.81e-08},
                                      {204.7899932861328, -0.27000001072883606, 0.000142, -2.5e-08},
                                      {142.64999389648438, -0.009999999776482582, -1.04e-05, 1.81e-09},
                                      {169.0, -0.14000000059604645, 6.1e-05, 0.0},
                                      {459.6700134277344, -0.20999999344348907, 2.6e-05, 1.4e-09},
                                      {3.2300000190734863, -0.00283, 1.13e-06, -1.44e-10},
                                      {442.0, -0.3100000023841858, 0.000139, -3.43e-08},
                                      {2.809999942779541, -0.00329, 2.08e-06, -4.64e-10},
                                      {1016.47998046875, -1.1699999570846558, 0.00253, -7.49e-07},
                                      {-85.27999877929688, 2.9200000762939453, -0.00485, 3.02e-06},
                                      {329.3299865722656, 0.15000000596046448, -3.68e-05, 1.6e-08},
                                      {416.1099853515625, 2.140000104904175, -0.00102, 1.7e-07},
                                      {189.6300048828125, 0.23999999463558197, -0.000105, 1.59e-08},
                                      {133.60000610351562, 0.019999999552965164, -7.1e-06, 0.0},
                                      {755.5999755859375, 2.2899999618530273, -0.00159, 3.94e-07}};

// Rows of conduction along the three axes and of specific heat, of materials 1 to 11.
constexpr int kMaterials[11][4] = {{0, 0, 0, 10}, {1, 1, 1, 11}, {2, 2, 2, 12}, {3, 3, 3, 13},
                                   {6, 7, 6, 13}, {7, 6, 6, 13}, {4, 4, 4, 14}, {5, 5, 5, 15},
                                   {8, 9, 8, 16}, {9, 8, 8, 16}, {0, 0, 0, 10}};

// A wrong coefficient, sign, power or direction; a density of another material.
TEST(AnalyticMaterials, FollowTheirPolynomials) {
    const std::vector<double> maximum(11, 1e4), minimum(11, -1e4),
        density = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
    for (std::int32_t material = 1; material <= 11; ++material)
        for (const double T : {-40.0, 0.0, 1.0, 293.15, 1234.5}) {
            double values[4] = {};
            ASSERT_EQ(AnalyticConduction(material, T, {maximum.data(), 11}, {minimum.data(), 11}, values[0],
                                         values[1], values[2]),
                      AnalyticRange::Within);
            values[3] = AnalyticSpecificHeat(material, T, {density.data(), 11}) / material;
            for (int k = 0; k < 4; ++k) {
                const double(&c)[4] = kPolynomials[kMaterials[material - 1][k]];
                const double expected = ((c[3] * T + c[2]) * T + c[1]) * T + c[0];
                // The largest term decides how many digits the sum may lose.
                EXPECT_NEAR(values[k], expected, 1e-12 * (std::fabs(expected) + 1e4))
                    << "material " << material << " at " << T;
            }
        }
}

// A limit refused, or a limit of another material.
TEST(AnalyticMaterials, LimitsThemselvesAreAllowed) {
    const double maximum[3] = {1.0, 100.0, 1.0}, minimum[3] = {1.0, 50.0, 1.0};
    for (const auto& [T, expected] : {std::pair{100.0, AnalyticRange::Within},
                                      {50.0, AnalyticRange::Within},
                                      {std::nextafter(100.0, 200.0), AnalyticRange::AboveMaximum},
                                      {std::nextafter(50.0, 0.0), AnalyticRange::BelowMinimum}}) {
        double K[3] = {-1.0, -1.0, -1.0};
        EXPECT_EQ(AnalyticConduction(2, T, {maximum, 3}, {minimum, 3}, K[0], K[1], K[2]), expected) << T;
        EXPECT_EQ(K[2] == -1.0, expected != AnalyticRange::Within) << T;
    }
}

} // namespace
} // namespace zurt
