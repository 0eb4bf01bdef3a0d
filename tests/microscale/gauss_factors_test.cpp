#include "core/widened_constants.h"
#include "microscale/direction_curves.h"
#include "microscale/fibre_models.h"
#include "microscale/gauss_factors.h"
#include "microscale/gauss_records.h"
#include "microscale/merged_tables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace zurt {
namespace {

using namespace testfibres;

using Factors3 = std::array<double, 3>;

// k1 and k3 at c = 1 and any distance below 5: constant along rows.
FibreSet WithTables(FibreSet set, double k1, double k3) {
    set.table = MakeTable({0.0, 4.0, 5.0}, {0.0, 2.0}, {{k1, k1}, {k1, k1}, {k1, k1}});
    set.tableY = MakeTable({0.0, 4.0, 5.0}, {0.0, 2.0}, {{k3, k3}, {k3, k3}, {k3, k3}});
    set.IANISY = 1;
    return set;
}

Factors3 CachedAt(const FibreModel& model, const Point& at, bool factorsOn = true, double c = 1.0) {
    const FibreSearch search = SearchOfAllSets(model, 3, LineEnds::Count);
    const double X[3] = {at[0], at[1], at[2]};
    GaussFibreRecord record;
    FillGaussRecord(search, SearchNearestFibre(search, X), X, record);
    double factor[3] = {1.0, 1.0, 1.0};
    GaussFactorCached(model, record, factorsOn, c, factor);
    return {factor[0], factor[1], factor[2]};
}

void ExpectFactors(const Factors3& found, const Factors3& expected) {
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(found[i], expected[i], 1e-14) << "axis " << i;
}

// A material with one value along some direction n and another across it has the diagonal k1 + (k3 - k1) n n. Faults:
// axes not made units, the second table along the fibre, axis 3 from other than the fibre to the point.
TEST(GaussFactors, ObliqueLinesAndSpheres) {
    std::mt19937 engine(21);
    std::uniform_real_distribution<double> any(-1.0, 1.0);
    const double k1 = 0.3, k3 = 0.07;
    for (int i = 0; i < 200; ++i) {
        const Point P = {any(engine), any(engine), any(engine)};
        Point a = {any(engine), any(engine), any(engine)}, n = {any(engine), any(engine), any(engine)};
        const bool sphere = i % 2 == 1;
        const double share =
            (a[0] * n[0] + a[1] * n[1] + a[2] * n[2]) / (a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
        for (std::size_t k = 0; k < 3 && !sphere; ++k)
            n[k] -= share * a[k]; // across the line
        const double length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
        Point X, Q;
        for (std::size_t k = 0; k < 3; ++k) {
            n[k] /= length;
            Q[k] = P[k] + a[k];
            X[k] = P[k] + (sphere ? 0.0 : 0.4 * a[k]) + 0.5 * n[k];
        }
        const FibreSet set = sphere ? MakeSet(kSphereFibres, 0.2, {FibreThrough({P})})
                                    : MakeSet(kLineFibres, 0.2, {FibreThrough({P, Q})});
        ExpectFactors(
            CachedAt(MakeModel({WithTables(set, k1, k3)}), X),
            {k1 + (k3 - k1) * n[0] * n[0], k1 + (k3 - k1) * n[1] * n[1], k1 + (k3 - k1) * n[2] * n[2]});
    }
}

FibreModel OneFibre(std::int32_t NTYPE, std::initializer_list<Point> points, double k1, double k3) {
    return MakeModel({WithTables(MakeSet(NTYPE, 0.2, {FibreThrough(points)}), k1, k3)});
}

// Faults: axes without a length give no number: a point on the x axis of a sphere, on the line ahead of its end.
TEST(GaussFactors, PointsWithoutADirectionAround) {
    const FibreModel sphere = OneFibre(kSphereFibres, {{0, 0, 0}}, 0.5, 0.2);
    ExpectFactors(CachedAt(sphere, {0.7, 0, 0}), {0.2, 0.5, 0.5});
    ExpectFactors(CachedAt(sphere, {0, -0.7, 0}), {0.5, 0.2, 0.5});
    const FibreModel line = OneFibre(kLineFibres, {{0, 0, 0}, {1, 0, 0}}, 0.5, 0.2);
    const Factors3 ahead = CachedAt(line, {-0.7, 0, 0});
    EXPECT_NEAR(ahead[0], 0.5, 1e-14);
    EXPECT_NEAR(ahead[1] + ahead[2], 0.7, 1e-14);
}

// Faults: a fibre that conducts when factors are off, a factor below the least, a set's own table not used, factors in
// fluid touched with factors off, a point without fibres.
TEST(GaussFactors, InFibresInFluidAndBelowTheLeast) {
    FibreModel model = OneFibre(kLineFibres, {{0, 0, 0}, {1, 0, 0}}, 1e-9, 0.5);
    model.sets.push_back(OneFibre(kLineFibres, {{0, 5, 0}, {1, 5, 0}}, 0.25, 0.5).sets[0]);
    model.sets[1].IANISY = 0; // its second table, were there one, does not count
    constexpr Factors3 none = {1.0, 1.0, 1.0}, least = {kSmallestFactor, kSmallestFactor, kSmallestFactor};
    for (const bool factorsOn : {true, false}) {
        for (const Point& inside : {Point{0.5, 0.05, 0}, {0.5, 0, 0.1}})
            ExpectFactors(CachedAt(model, inside, factorsOn), least);
        EXPECT_EQ(CachedAt(model, {0.5, 0, 50.0}, factorsOn), none); // outside every box
    }
    EXPECT_EQ(CachedAt(model, {0.5, 0, 0.3}, false), none);
    ExpectFactors(CachedAt(model, {0.5, 0, 0.3}), {kSmallestFactor, kSmallestFactor, 0.5});
    EXPECT_EQ(CachedAt(model, {0.5, 0, 0.3})[0], kSmallestFactor);
    ExpectFactors(CachedAt(model, {0.5, 5, 0.3}), {0.25, 0.25, 0.25});
    ExpectFactors(CachedAt(model, {0.5, 0, 6.0}), none); // past the last row
}

// The form from coordinates is the reference of the records. Faults: lines that end in it, records of another fibre.
TEST(GaussFactors, DirectFormAgreesWhereLinesHaveNoEnds) {
    std::mt19937 engine(22);
    std::uniform_real_distribution<double> any(0.0, 1.0);
    std::vector<Fibre> lines;
    for (int i = 0; i < 20; ++i) {
        const Point p = {any(engine), any(engine), -4.0}, q = {any(engine), any(engine), 5.0};
        lines.push_back(FibreThrough({p, q}));
    }
    FibreModel model = MakeModel({WithTables(MakeSet(kLineFibres, 0.1, lines), 0.4, 0.1)});
    model.sets[0].table = MakeTable({0.0, 0.05, 0.1}, {0.0, 2.0}, {{0.1, 0.2}, {0.4, 0.6}, {1.0, 1.0}});
    const FibreSearch endless = SearchOfAllSets(model, 3, LineEnds::Endless);
    for (int i = 0; i < 500; ++i) {
        const Point at = {any(engine), any(engine), any(engine)};
        double direct[3] = {1.0, 1.0, 1.0};
        GaussFactorDirect(model, endless, {at[0], at[1], at[2]}, true, 0.7, direct);
        ExpectFactors(CachedAt(model, at, true, 0.7), {direct[0], direct[1], direct[2]});
    }
    const FibreModel line = OneFibre(kLineFibres, {{0, 0, 0}, {1, 0, 0}}, 0.5, 0.2);
    double past[3];
    GaussFactorDirect(line, SearchOfAllSets(line, 3, LineEnds::Endless), {3.0, 0.05, 0.0}, true, 1.0, past);
    EXPECT_EQ(past[0], kSmallestFactor); // in the line that goes on
}

// Faults: the flags read otherwise; records used in the equivalent medium or HEQ with fibres; the third axis turned.
TEST(GaussFactors, ChoiceByTheStateOfTheFit) {
    FibreModel model = OneFibre(kSphereFibres, {{0, 0, 0}}, 0.5, 0.2);
    model.sets[0].tableY = MakeTable({0.0, 1.0, 2.0}, {0.0}, {{0.0}, {0.4}, {0.8}});
    model.groups.resize(3);
    model.groups[2].points = 2;
    model.groups[2].records.resize(6);
    model.groups[2].records[3] = {
        {1, 0, 0}, 0.25, 1, 0}; // of element 2, point 2; it lies off the fibre along x
    FitState fit;
    const auto factors = [&](bool direct) {
        double factor[3] = {1.0, 1.0, 1.0};
        GaussFactors(model, fit, direct, RecordOf(model.groups[2], 2, 2), 1.0, factor);
        return Factors3{factor[0], factor[1], factor[2]};
    };
    ExpectFactors(factors(false), {0.1, 0.5, 0.5});
    fit.IEHM = 1;
    fit.HEQ = 0.75;
    ExpectFactors(factors(false), {0.5, 0.5, 0.3});
    ExpectFactors(factors(true), {0.1, 0.5, 0.5});
    model.sets[0].tableY = CorrectionTable{};
    ExpectFactors(factors(false), {0.5, 0.5, 1.0});
    fit.ISFOFF = 1;
    ExpectFactors(factors(false), {1.0, 1.0, 1.0});
    fit.card.IDCSF = 1;
    ExpectFactors(factors(false), {0.5, 0.5, 1.0});
    fit.ITERFIT = 1;
    ExpectFactors(factors(false), {1.0, 1.0, 1.0});
}

// Two sets: the axes are spread over both, and the first set is looked up in what already stands in its own storage, so
// at row i and column j it gives its old F(i,j). Faults: the last row left, the first row touched; an intact copy of the first set's table used, D(1) moved,
// weights by count.
TEST(MergedTables, TwoSetsTakeTheStorageOfTheFirst) {
    FibreModel model = MakeModel({MakeSet(kSphereFibres, 0.2, {FibreThrough({{0, 0, 0}})}),
                                  MakeSet(kSphereFibres, 0.2, {FibreThrough({{0, 0, 0}})})});
    model.sets[0].table = MakeTable({0.0, 1.0, 3.0}, {1.0, 2.0}, {{0.1, 0.2}, {0.3, 0.5}, {0.7, 0.9}});
    model.sets[1].table = MakeTable({0.0, 2.0, 6.0, 9.0}, {0.0, 4.0, 50.0},
                                    {{0.0, 0.4, 9}, {0.2, 0.6, 9}, {0.6, 1.0, 9}, {1, 1, 9}});
    model.sets[0].tableY = MakeTable({0.0, 1.0}, {3.0}, {{0.1}, {0.3}});
    model.sets[0].volume = 1.0;
    model.sets[1].volume = 3.0;
    model.fibreVolume = 4.0;
    MergeCorrectionTables(model);
    const CorrectionTable& merged = EhmTableX(model);
    // Columns 0 and 4 out of 1, 2 and 0, 4 (the third column of the second set lies outside the first table's count);
    // rows up to 6, the largest of rows 2 and 3 of both.
    EXPECT_EQ(merged.concentration, (std::vector<double>{0.0, 4.0}));
    EXPECT_EQ(merged.distance, (std::vector<double>{0.0, 3.0, 6.0}));
    const double second[2][2] = {{0.3, 0.7}, {0.6, 1.0}}; // at distances 3 and 6, concentrations 0 and 4
    const double first[2][3] = {{0.1, 0.3, 1.0}, {0.2, 0.5, 1.0}};
    for (std::size_t j = 0; j < 2; ++j) {
        EXPECT_NEAR(merged.factor[3 * j], first[j][0], 1e-15);
        for (std::size_t i = 1; i < 3; ++i)
            EXPECT_NEAR(merged.factor[3 * j + i], (first[j][i] + 3 * second[i - 1][j]) / 4, 1e-15);
    }
    EXPECT_NEAR(EhmTableY(model).factor[1], 1.0, 1e-15); // the second set has no second table: 1
    EXPECT_EQ(EhmTableY(model).concentration[0], 3.0);
}

// Faults: the low end of Z brought into line, the table written to, ends of a curve outside, a constant looked up.
TEST(DirectionCurves, EachDirectionHasItsOwnEnds) {
    // Row 2: concentrations, and coefficients that a fit has left.
    const std::vector<double> good = {0, 0.0, 0, 77.0, 0, 1.0, 0, 77.0, 0, 3.0, 0, 77.0};
    std::vector<double> words = good;
    const RealTable table(words.data(), 2, 6);
    std::int32_t points[2] = {1, 3};
    const double DBULK[3] = {2.0, 4.0, 10.0};
    const double D1DIR[4] = {0, 1.0, 2.0, 3.0}, D2DIR[4] = {0, 9.0, 18.0, 35.0};
    double x = -1, y = -1, z = -1;
    const auto at = [&](double c, std::int32_t material = 2) {
        return CurveForDirection(table, {points, 2}, material, {DBULK, 3}, D1DIR, D2DIR, c, x, y, z);
    };
    EXPECT_EQ(at(0.5), 0);
    EXPECT_DOUBLE_EQ(x, 2.0); // half way from 1 to 3
    EXPECT_DOUBLE_EQ(y, 4.0);
    EXPECT_DOUBLE_EQ(z, 2.0 + 4.0); // its span is 32, but it begins at 2
    EXPECT_EQ(words, good);
    EXPECT_EQ(at(3.0 + 0.5e-10), 0);
    EXPECT_DOUBLE_EQ(z, 34.0);
    EXPECT_EQ(at(-0.5e-10), 0);
    EXPECT_DOUBLE_EQ(x, 1.0);
    EXPECT_EQ(at(3.1), 1);
    EXPECT_EQ(at(99.0, 1), 0); // one point: a constant
    EXPECT_EQ(z, 3.0);
}

} // namespace
} // namespace zurt
