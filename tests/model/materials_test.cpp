// Cards and curves of materials, and the built-in polynomials.
#include "model/analytic_materials.h"
#include "model/curve_lookup.h"
#include "model/diffusion_curves.h"
#include "model/material_tables.h"
#include "model/materials.h"
#include "run/partition.h"
#include "support/bar_deck.h"
#include "support/small_run.h"

#include <cmath>

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
    for (const std::int32_t NSTAC : {1, 0, -1})
        EXPECT_EQ(MaterialRun("", {1, 0, 0, 0, 1, 2, NSTAC})->A.LMAX, NSTAC == 1 ? 16 : 11) << NSTAC;
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
    const char* point = "%20.6E%20.6E\n";
    const RunPointer run =
        DiffusionRun(Print("%5d%5d\n", 3, 2) + Print(point, 0.0, 1.0) + "C between\n" +
                         Print(point, 2.0, 3.0) + "\n" + Print(point, 0.0, 8.0) + Print("%5d%5d\n", 3, 2) +
                         Print(point, 0.0, 5.0) + Print(point, 2.0, 7.0),
                     3, 4);
    EXPECT_EQ(Diffusion(*run, 1, 123.0), 8.0);
    EXPECT_EQ(Diffusion(*run, 3, 1.0), 6.0);
    EXPECT_EQ(Diffusion(*run, 3, 2.0), 7.0);
    EXPECT_EQ(DiffusionPoints(*run)(2), 0);
    EXPECT_EQ(Diffusion(*run, 2, 1.0), 0.0) << "the table is cleared ahead of the cards";
    EXPECT_EQ(DiffusionTable(*run)(1, 4), 0.0);
}

// Coefficients of rising powers of T; many are single precision decimals, widened.
struct Polynomial {
    double c[4];
};

constexpr Polynomial kA = {{459.6700134277344, -0.20999999344348907, 2.6e-05, 1.4e-09}};
constexpr Polynomial kB = {{3.2300000190734863, -0.00283, 1.13e-06, -1.44e-10}};
constexpr Polynomial kP = {{442.0, -0.3100000023841858, 0.000139, -3.43e-08}};
constexpr Polynomial kQ = {{2.809999942779541, -0.00329, 2.08e-06, -4.64e-10}};
constexpr Polynomial kConduction1 = {{-471.8699951171875, 3.140000104904175, -0.00483, 2.38e-07}};
constexpr Polynomial kConduction2 = {{71.75, -0.07999999821186066, 7.08e-05, -3.86e-08}};
constexpr Polynomial kConduction3 = {{404.6700134277344, -0.07999999821186066, 5.03e-05, -3.81e-08}};
constexpr Polynomial kConduction4 = {{204.7899932861328, -0.27000001072883606, 0.000142, -2.5e-08}};
constexpr Polynomial kConduction7 = {{142.64999389648438, -0.009999999776482582, -1.04e-05, 1.81e-09}};
constexpr Polynomial kConduction8 = {{169.0, -0.14000000059604645, 6.1e-05, 0.0}};
constexpr Polynomial kHeat1 = {{1016.47998046875, -1.1699999570846558, 0.00253, -7.49e-07}};
constexpr Polynomial kHeat2 = {{-85.27999877929688, 2.9200000762939453, -0.00485, 3.02e-06}};
constexpr Polynomial kHeat3 = {{329.3299865722656, 0.15000000596046448, -3.68e-05, 1.6e-08}};
constexpr Polynomial kHeat4 = {{416.1099853515625, 2.140000104904175, -0.00102, 1.7e-07}};
constexpr Polynomial kHeat7 = {{189.6300048828125, 0.23999999463558197, -0.000105, 1.59e-08}};
constexpr Polynomial kHeat8 = {{133.60000610351562, 0.019999999552965164, -7.1e-06, 0.0}};
constexpr Polynomial kHeat9 = {{755.5999755859375, 2.2899999618530273, -0.00159, 3.94e-07}};

// Conduction along the three axes and specific heat of materials 1 to 11.
constexpr Polynomial kMaterials[11][4] = {{kConduction1, kConduction1, kConduction1, kHeat1},
                                          {kConduction2, kConduction2, kConduction2, kHeat2},
                                          {kConduction3, kConduction3, kConduction3, kHeat3},
                                          {kConduction4, kConduction4, kConduction4, kHeat4},
                                          {kA, kB, kA, kHeat4},
                                          {kB, kA, kA, kHeat4},
                                          {kConduction7, kConduction7, kConduction7, kHeat7},
                                          {kConduction8, kConduction8, kConduction8, kHeat8},
                                          {kP, kQ, kP, kHeat9},
                                          {kQ, kP, kP, kHeat9},
                                          {kConduction1, kConduction1, kConduction1, kHeat1}};

// A wrong coefficient, sign, power or direction; a density of another material.
TEST(AnalyticMaterials, FollowTheirPolynomials) {
    double maximum[11], minimum[11], density[11];
    for (int m = 0; m < 11; ++m) {
        maximum[m] = 1e4;
        minimum[m] = -1e4;
        density[m] = m + 1.0;
    }
    for (std::int32_t material = 1; material <= 11; ++material)
        for (const double T : {-40.0, 0.0, 1.0, 293.15, 1234.5}) {
            double values[4] = {};
            ASSERT_EQ(AnalyticConduction(material, T, ConstRealArray(maximum, 11),
                                         ConstRealArray(minimum, 11), values[0], values[1], values[2]),
                      AnalyticRange::Within);
            values[3] = AnalyticSpecificHeat(material, T, ConstRealArray(density, 11)) / material;
            for (int k = 0; k < 4; ++k) {
                const double(&c)[4] = kMaterials[material - 1][k].c;
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
    const auto range = [&](double T) {
        double K[3] = {-1.0, -1.0, -1.0};
        const AnalyticRange answer = AnalyticConduction(2, T, ConstRealArray(maximum, 3),
                                                        ConstRealArray(minimum, 3), K[0], K[1], K[2]);
        EXPECT_EQ(K[2] == -1.0, answer != AnalyticRange::Within) << T;
        return answer;
    };
    EXPECT_EQ(range(100.0), AnalyticRange::Within);
    EXPECT_EQ(range(50.0), AnalyticRange::Within);
    EXPECT_EQ(range(std::nextafter(100.0, 200.0)), AnalyticRange::AboveMaximum);
    EXPECT_EQ(range(std::nextafter(50.0, 0.0)), AnalyticRange::BelowMinimum);
}

} // namespace
} // namespace zurt
