#include "model/analytic_materials.h"

#include "model/curve_messages.h"
#include "model/model_run.h"

#include <cmath>

namespace zurt {
namespace {

// Coefficients of rising powers of T.
struct Polynomial {
    double c[4];
};

long double Horner(const Polynomial& polynomial, long double T) {
    return ((polynomial.c[3] * T + polynomial.c[2]) * T + polynomial.c[1]) * T + polynomial.c[0];
}

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

struct ConductionCase {
    std::int32_t material;
    Polynomial K[3];
};

constexpr ConductionCase kConductionCases[] = {
    {1, {kConduction1, kConduction1, kConduction1}},
    {2, {kConduction2, kConduction2, kConduction2}},
    {3, {kConduction3, kConduction3, kConduction3}},
    {4, {kConduction4, kConduction4, kConduction4}},
    {5, {kA, kB, kA}},
    {6, {kB, kA, kA}},
    {7, {kConduction7, kConduction7, kConduction7}},
    {8, {kConduction8, kConduction8, kConduction8}},
    {9, {kP, kQ, kP}},
    {10, {kQ, kP, kP}},
    {11, {kConduction1, kConduction1, kConduction1}},
};

struct SpecificHeatCase {
    std::int32_t material;
    Polynomial c;
};

constexpr Polynomial kHeat1 = {{1016.47998046875, -1.1699999570846558, 0.00253, -7.49e-07}};
constexpr Polynomial kHeat4 = {{416.1099853515625, 2.140000104904175, -0.00102, 1.7e-07}};
constexpr Polynomial kHeat9 = {{755.5999755859375, 2.2899999618530273, -0.00159, 3.94e-07}};

constexpr SpecificHeatCase kSpecificHeatCases[] = {
    {1, kHeat1},
    {2, {{-85.27999877929688, 2.9200000762939453, -0.00485, 3.02e-06}}},
    {3, {{329.3299865722656, 0.15000000596046448, -3.68e-05, 1.6e-08}}},
    {4, kHeat4},
    {5, kHeat4},
    {6, kHeat4},
    {7, {{189.6300048828125, 0.23999999463558197, -0.000105, 1.59e-08}}},
    {8, {{133.60000610351562, 0.019999999552965164, -7.1e-06, 0.0}}},
    {9, kHeat9},
    {10, kHeat9},
    {11, kHeat1},
};

constexpr double kTemperatures[] = {-40.0, 0.0, 1.0, 293.15, 1234.5};

void ExpectNear(double value, long double expected, std::int32_t material, double T) {
    // The largest term decides how many digits the sum may lose.
    EXPECT_NEAR(value, static_cast<double>(expected),
                1e-12 * (std::fabs(static_cast<double>(expected)) + 1e4))
        << "material " << material << " at " << T;
}

struct Limits {
    double maximum[11], minimum[11];
    Limits() {
        for (int m = 0; m < 11; ++m) {
            maximum[m] = 1e4;
            minimum[m] = -1e4;
        }
    }
};

// A wrong coefficient, sign, power or direction.
TEST(AnalyticMaterials, ConductionFollowsItsPolynomials) {
    const Limits limits;
    for (const ConductionCase& material : kConductionCases) {
        for (const double T : kTemperatures) {
            double K[3] = {};
            ASSERT_EQ(AnalyticConduction(material.material, T, ConstRealArray(limits.maximum, 11),
                                         ConstRealArray(limits.minimum, 11), K[0], K[1], K[2]),
                      AnalyticRange::Within);
            for (int direction = 0; direction < 3; ++direction)
                ExpectNear(K[direction], Horner(material.K[direction], T), material.material, T);
        }
    }
}

TEST(AnalyticMaterials, SpecificHeatFollowsItsPolynomialsTimesTheDensity) {
    double density[11];
    for (int m = 0; m < 11; ++m)
        density[m] = m + 1.0;
    for (const SpecificHeatCase& material : kSpecificHeatCases)
        for (const double T : kTemperatures)
            ExpectNear(AnalyticSpecificHeat(material.material, T, ConstRealArray(density, 11)) /
                           material.material,
                       Horner(material.c, T), material.material, T);
}

// A limit refused, or a limit of another material.
TEST(AnalyticMaterials, LimitsThemselvesAreAllowed) {
    Limits limits;
    limits.maximum[1] = 100.0;
    limits.minimum[1] = 50.0;
    const auto range = [&](double T) {
        double K[3] = {-1.0, -1.0, -1.0};
        const AnalyticRange answer = AnalyticConduction(2, T, ConstRealArray(limits.maximum, 11),
                                                        ConstRealArray(limits.minimum, 11), K[0], K[1], K[2]);
        EXPECT_EQ(K[2] == -1.0, answer != AnalyticRange::Within) << T;
        return answer;
    };
    EXPECT_EQ(range(100.0), AnalyticRange::Within);
    EXPECT_EQ(range(50.0), AnalyticRange::Within);
    EXPECT_EQ(range(std::nextafter(100.0, 200.0)), AnalyticRange::AboveMaximum);
    EXPECT_EQ(range(std::nextafter(50.0, 0.0)), AnalyticRange::BelowMinimum);
}

// Limits taken from each other's section, or a stop with another status.
TEST(CurveMessagesDeathTest, StopTheRunWithTheirLines) {
    const test::RunPointer run = test::MakeRun("", 2);
    run->control.header.NMATT = 2;
    run->control.at.LMAT[4] = TakeWords(run->A, "LMAT4", 2);
    run->control.at.LMAT[5] = TakeWords(run->A, "LMAT5", 2);
    RealSection(run->A, run->control.at.LMAT[4], 2)(2) = 900.0;
    RealSection(run->A, run->control.at.LMAT[5], 2)(2) = 300.0;
    test::ListOnStandardError(*run);
    EXPECT_EXIT(
        StopOnAnalyticRange(*run, AnalyticRange::AboveMaximum, 2, 950.0), testing::ExitedWithCode(0),
        "PREKORACENA MAXIMALNA(.|\n)*MAT=    2\n(.|\n)*TEMP=   0.95000E\\+03\n(.|\n)*TOPM=   0.90000E\\+03");
    EXPECT_EXIT(StopOnAnalyticRange(*run, AnalyticRange::BelowMinimum, 2, 10.0), testing::ExitedWithCode(0),
                "PREKORACENA MINIMALNA(.|\n)*TEMP=   0.10000E\\+02\n(.|\n)*TMNM=   0.30000E\\+03");
    EXPECT_EXIT(StopOnDiffusionRange(*run, 3, 2.5), testing::ExitedWithCode(0),
                "CURVE ARGUMENT IS OUT OF RANGE\n.*NO. =    3\n.*CONC =  2.5000E\\+00\n.*S T O P\n.*CHECK: "
                "INPUT DATA "
                "FOR DIFFUSION COEFFICIENT\n.*AND BOUNDARY CONDITIONS FOR INLET AND OUTLET RESERVOIRS");
    EXPECT_EXIT(StopOnSpecificHeatRange(*run, 2, -1.0), testing::ExitedWithCode(0),
                "CURVE SPECIFIC HEAT - TEMPERATURE,  No. =    2\n.*TEMP = -1.0000E\\+00");
}

} // namespace
} // namespace zurt
