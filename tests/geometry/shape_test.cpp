// Shape functions, their derivatives and Jacobians, with any choice of mid-side nodes, against an independent description
// of the reference elements: places of nodes are built from the corners and from the pair of corners that each mid-side
// node lies between.
#include "geometry/gauss_rules.h"
#include "geometry/jacobian.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <utility>
#include <vector>

namespace zurt {
namespace {

using Point = std::array<double, 3>; // unused directions are 0

// The two corners of mid-side node m, from 1.
std::array<int, 2> EndsOf(int dimension, int m) {
    constexpr int around[8] = {2, 3, 4, 1, 6, 7, 8, 5};
    if (dimension == 2)
        return {m - 4, around[m - 5]};
    return m <= 16 ? std::array{m - 8, around[m - 9]} : std::array{m - 16, m - 12};
}

// Natural coordinates of node m, from 1.
template <int Dimension> Point PlaceOf(int m) {
    static constexpr double rSign[4] = {1, -1, -1, 1}, sSign[4] = {1, 1, -1, -1};
    if (m == kMaxNodes<Dimension>)
        return {0, 0, 0};
    if (m <= kCorners<Dimension>)
        return {rSign[(m - 1) % 4], Dimension > 1 ? sSign[(m - 1) % 4] : 0.0,
                Dimension < 3 ? 0.0
                : m <= 4      ? 1.0
                              : -1.0};
    const auto [first, second] = EndsOf(Dimension, m);
    const Point a = PlaceOf<Dimension>(first), b = PlaceOf<Dimension>(second);
    return {(a[0] + b[0]) / 2, (a[1] + b[1]) / 2, (a[2] + b[2]) / 2};
}

// The element with these mid-side nodes, by way of a connectivity row.
template <int Dimension> ActiveNodes ElementWith(const std::vector<int>& midSide) {
    std::vector<std::int32_t> row(kMaxNodes<Dimension>, 0);
    for (int k = 0; k < kCorners<Dimension>; ++k)
        row[k] = 100 + k;
    for (int m : midSide)
        row[m - 1] = 200 + m;
    ActiveNodes active;
    ListActiveNodes<Dimension>(ConstIntTable(row.data(), 1, kMaxNodes<Dimension>), 1, active);
    return active;
}

// The element with each of its mid-side nodes, or its centre, of which `has(m)` says so.
template <int Dimension, class Has> ActiveNodes ElementOf(const Has& has) {
    std::vector<int> midSide;
    for (int m = kCorners<Dimension> + 1; m <= kMaxNodes<Dimension>; ++m)
        if (has(m))
            midSide.push_back(m);
    return ElementWith<Dimension>(midSide);
}

template <int Dimension> ActiveNodes FullElement(bool withCentre) {
    return ElementOf<Dimension>([=](int m) { return withCentre || m < kMaxNodes<Dimension>; });
}

// No mid-side nodes, all, all with the centre, every lone one, and random choices.
template <int Dimension> std::vector<ActiveNodes> Elements(std::mt19937& random) {
    std::vector<ActiveNodes> elements = {ElementWith<Dimension>({}), FullElement<Dimension>(false),
                                         FullElement<Dimension>(true)};
    for (int m = kCorners<Dimension> + 1; m <= kMaxNodes<Dimension>; ++m)
        elements.push_back(ElementWith<Dimension>({m}));
    for (int trial = 0; trial < 40; ++trial)
        elements.push_back(ElementOf<Dimension>([&](int) { return random() % 2 == 0; }));
    return elements;
}

// Number in the full element of the node in column k (from 0).
template <int Dimension> int NumberOf(const ActiveNodes& active, int k) {
    return k < kCorners<Dimension> ? k + 1 : active.midSide[k - kCorners<Dimension>];
}

template <int Dimension> Point RandomPoint(std::mt19937& random) {
    std::uniform_real_distribution<double> inside(-1.0, 1.0);
    Point point = {0, 0, 0};
    for (int d = 0; d < Dimension; ++d)
        point[d] = inside(random);
    return point;
}

template <int Dimension> ShapeValues<Dimension> ShapesAt(const Point& p, const ActiveNodes& active) {
    ShapeValues<Dimension> shape;
    if constexpr (Dimension == 3)
        ShapeFunctions3D(p[0], p[1], p[2], active, shape);
    else if constexpr (Dimension == 2)
        ShapeFunctions2D(p[0], p[1], active, shape);
    else
        ShapeFunctions1D(p[0], active, shape);
    return shape;
}

// An element and the places of its active nodes.
template <int Dimension> struct Shaped {
    ActiveNodes active;
    NodeCoordinates<Dimension> CORE = {};
};

template <class T> class ShapeFunctions : public testing::Test {};
using Dimensions = testing::Types<std::integral_constant<int, 1>, std::integral_constant<int, 2>,
                                  std::integral_constant<int, 3>>;
TYPED_TEST_SUITE(ShapeFunctions, Dimensions, );

// Faults: a corner or mid-side node in the wrong place, a wrong pair of corners, a wrong share of a correction, a
// function left out of or put in the wrong compressed column.
TYPED_TEST(ShapeFunctions, AreOneAtTheirOwnNodeAndZeroAtTheOthers) {
    constexpr int D = TypeParam::value;
    std::mt19937 random(1);
    for (const ActiveNodes& active : Elements<D>(random))
        for (int node = 0; node < active.ND; ++node) {
            const ShapeValues<D> shape = ShapesAt<D>(PlaceOf<D>(NumberOf<D>(active, node)), active);
            for (int k = 0; k < active.ND; ++k)
                EXPECT_DOUBLE_EQ(shape.H[k], k == node ? 1.0 : 0.0)
                    << "function " << NumberOf<D>(active, k) << " at node " << NumberOf<D>(active, node);
        }
}

// Fault: a derivative that does not belong to its function. The functions are at most quadratic along a natural
// direction, so central differences are exact for any step.
TYPED_TEST(ShapeFunctions, HaveDerivativesEqualToCentralDifferences) {
    constexpr int D = TypeParam::value;
    constexpr double step = 0.25;
    std::mt19937 random(3);
    for (const ActiveNodes& active : Elements<D>(random)) {
        const Point point = RandomPoint<D>(random);
        const ShapeValues<D> shape = ShapesAt<D>(point, active);
        for (int d = 0; d < D; ++d) {
            Point ahead = point;
            Point behind = point;
            ahead[d] += step;
            behind[d] -= step;
            const ShapeValues<D> high = ShapesAt<D>(ahead, active);
            const ShapeValues<D> low = ShapesAt<D>(behind, active);
            for (int k = 0; k < active.ND; ++k)
                EXPECT_NEAR(shape.HR[d][k], (high.H[k] - low.H[k]) / (2 * step), 1e-14);
        }
    }
}

// Whether r^i s^j t^k belongs to the element: one order in each direction without mid-side nodes; with all of them
// also what is of second order in one direction at most; in the line and the nine-node element every product of
// squares.
bool Spans(int dimension, bool midSides, bool centre, const int (&power)[3]) {
    int squares = 0;
    for (int d = 0; d < dimension; ++d)
        squares += power[d] == 2 ? 1 : 0;
    if (squares == 0)
        return true;
    if (dimension < 3 && centre)
        return true;
    return midSides && dimension > 1 && squares == 1;
}

// Fault: functions with the right values at the nodes and the wrong course between them. Together with the values at
// the nodes the reproduced polynomials leave no freedom.
TYPED_TEST(ShapeFunctions, ReproduceThePolynomialsOfTheirElement) {
    constexpr int D = TypeParam::value;
    std::mt19937 random(4);
    for (int kind = 0; kind < 3; ++kind) {
        const ActiveNodes active = kind == 0 ? ElementWith<D>({}) : FullElement<D>(kind == 2);
        for (int code = 0; code < 27; ++code) {
            const int power[3] = {code % 3, code / 3 % 3, code / 9};
            if ((D < 3 && power[2] > 0) || (D < 2 && power[1] > 0) || !Spans(D, kind > 0, kind == 2, power))
                continue;
            const auto monomial = [&](const Point& p) {
                return std::pow(p[0], power[0]) * std::pow(p[1], power[1]) * std::pow(p[2], power[2]);
            };
            const Point point = RandomPoint<D>(random);
            const ShapeValues<D> shape = ShapesAt<D>(point, active);
            double sum = 0.0;
            for (int k = 0; k < active.ND; ++k)
                sum += shape.H[k] * monomial(PlaceOf<D>(NumberOf<D>(active, k)));
            EXPECT_NEAR(sum, monomial(point), 1e-14) << "powers " << power[0] << power[1] << power[2];
        }
    }
}

// A brick whose edges along r, s, t are the vectors 2a, 2b, 2c.
Shaped<3> Parallelepiped(const Point& a, const Point& b, const Point& c) {
    Shaped<3> brick;
    brick.active = ElementWith<3>({});
    for (int k = 0; k < 8; ++k) {
        const Point place = PlaceOf<3>(k + 1);
        for (int i = 0; i < 3; ++i)
            brick.CORE[i][k] = a[i] * place[0] + b[i] * place[1] + c[i] * place[2];
    }
    return brick;
}

// Faults: rows crossed in another order, a normal turned outward, a scale that forgets the shear, KFIX above 3
// refused or taken as a volume point; an inverted element let pass, a left-handed face refused.
TEST(Jacobian, FaceScaleAndNormalAreTheCrossProductOfTheFreeRows) {
    const Point a = {2, 0, 0}, b = {0, 3, 0}, c = {0, 4, 5};
    const Shaped<3> brick = Parallelepiped(a, b, c);
    // b x c, a x c, a x b
    const struct {
        int KFIX;
        Point cross;
    } cases[] = {{1, {15, 0, 0}}, {2, {0, -10, 8}}, {3, {0, 0, 6}}, {4, {15, 0, 0}}, {9, {15, 0, 0}}};
    for (const auto& face : cases) {
        ShapeValues<3> shape;
        JacobianValues<3> values;
        ASSERT_TRUE(
            ShapeAndJacobian3D(0.4, -1.0, 0.7, face.KFIX, 1, brick.active, brick.CORE, shape, values));
        const double length = std::hypot(face.cross[0], face.cross[1], face.cross[2]);
        EXPECT_NEAR(values.DETS, length, 1e-14 * length) << "KFIX " << face.KFIX;
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(values.VN[i], face.cross[i] / length, 1e-15) << "KFIX " << face.KFIX;
        EXPECT_NEAR(values.DET, 30.0, 1e-13);
    }
    // A left-handed element has a negative determinant, but sound faces.
    const Shaped<3> left = Parallelepiped({1, 0, 0}, {0, 0, 1}, {0, 1, 0});
    ShapeValues<3> shape;
    JacobianValues<3> values;
    for (int KFIX = 0; KFIX <= 3; ++KFIX)
        EXPECT_EQ(ShapeAndJacobian3D(0.1, 0.2, 0.3, KFIX, 0, left.active, left.CORE, shape, values),
                  KFIX > 0);
    EXPECT_DOUBLE_EQ(values.DET, -1.0);
}

// All points of rectangles of half sizes 1 and `height` (and 1 in z), in this order: 3D volume, 3D face, 2D area, 2D
// edge, line. At a corner two nodes alone make each entry of the Jacobian, so that height comes out without rounding.
std::array<bool, 5> SoundAt(double height) {
    const Shaped<3> brick = Parallelepiped({1, 0, 0}, {0, height, 0}, {0, 0, 1});
    Shaped<2> q;
    q.active = ElementWith<2>({});
    for (int k = 0; k < 4; ++k) {
        q.CORE[0][k] = PlaceOf<2>(k + 1)[0];
        q.CORE[1][k] = height * PlaceOf<2>(k + 1)[1];
    }
    const NodeCoordinates<1> line = {{0, 0, 0}, {height, -height, 0}, {0, 0, 0}};
    ShapeValues<3> shape3;
    JacobianValues<3> values3;
    ShapeValues<2> shape2;
    JacobianValues<2> values2;
    ShapeValues<1> shape1;
    JacobianValues<1> values1;
    return {ShapeAndJacobian3D(1, 1, 1, 0, 0, brick.active, brick.CORE, shape3, values3),
            ShapeAndJacobian3D(1, 1, 1, 1, 1, brick.active, brick.CORE, shape3, values3),
            ShapeAndJacobian2D(1, 1, 0, q.active, q.CORE, shape2, values2),
            ShapeAndJacobian2D(1, 1, 1, q.active, q.CORE, shape2, values2),
            ShapeAndJacobian1D(0, ElementWith<1>({}), line, shape1, values1)};
}

// Faults: a comparison with 0, one that lets the limit itself pass, a relative limit, a NaN taken for sound, a check
// missing from one family.
TEST(Jacobian, IsRefusedAtTheLimitAndBelow) {
    const double limit = 1.0e-15;
    constexpr std::array<bool, 5> all = {true, true, true, true, true};
    constexpr std::array<bool, 5> none = {};
    EXPECT_EQ(SoundAt(std::nextafter(limit, 1.0)), all);
    EXPECT_EQ(SoundAt(limit), none);
    EXPECT_EQ(SoundAt(0.0), none);
    EXPECT_EQ(SoundAt(std::numeric_limits<double>::quiet_NaN()), none);
}

// Abscissa k of an order, from the largest down, and its weight: the roots of the Legendre polynomial by Newton's method.
std::array<double, 2> ExactRule(int order, int k) {
    double x = std::cos(std::acos(-1.0) * (k - 0.25) / (order + 0.5)), slope = 1.0;
    for (int iteration = 0; iteration < 20; ++iteration) {
        double P = 1.0, before = 0.0;
        for (int n = 1; n <= order; ++n)
            before = std::exchange(P, ((2 * n - 1) * x * P - (n - 1) * before) / n);
        slope = order * (x * P - before) / (x * x - 1.0);
        x -= P / slope;
    }
    return {2 * k == order + 1 ? 0.0 : x, 2.0 / ((1.0 - x * x) * slope * slope)};
}

double Widened(double exact) {
    return static_cast<double>(static_cast<float>(exact));
}

// Faults: a digit lost or "improved" to double precision, an offset of one order pointing into another.
TEST(GaussRules, AreTheClosedFormsRoundedToSinglePrecision) {
    for (int order = 1; order <= kMaxGaussOrder; ++order)
        for (int k = 1; k <= (order + 1) / 2; ++k) {
            const auto [x, weight] = ExactRule(order, k);
            EXPECT_EQ(XG(order, k), -Widened(x)) << order << " " << k;
            EXPECT_EQ(XG(order, order + 1 - k), Widened(x)) << order << " " << k;
            EXPECT_EQ(WGT(order, k), Widened(weight)) << order << " " << k;
            EXPECT_EQ(WGT(order, order + 1 - k), Widened(weight)) << order << " " << k;
        }
    // What single precision leaves of them, so that the rounding itself is held fast.
    EXPECT_EQ(XG(2, 2), 0.5773502588272095);
    EXPECT_EQ(WGT(3, 1), 0.5555555820465088);
}

} // namespace
} // namespace zurt
