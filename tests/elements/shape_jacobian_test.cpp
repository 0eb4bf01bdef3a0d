#include "elements/gauss_rules.h"
#include "shape_reference.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zurt {
namespace {

using namespace shape_reference;

// The gradient of a linear field by the HX of one point.
template <int Dimension>
void ExpectLinearFieldExact(const Shaped<Dimension>& element, const JacobianValues<Dimension>& values) {
    const double slope[3] = {0.7, -1.3, 2.1};
    for (int c = 0; c < Dimension; ++c) {
        double gradient = 0.0;
        for (int k = 0; k < element.active.ND; ++k) {
            double field = 4.0;
            for (int e = 0; e < Dimension; ++e)
                field += slope[e] * element.CORE[e][k];
            gradient += values.HX[c][k] * field;
        }
        EXPECT_NEAR(gradient, slope[c], 1e-12);
    }
}

// Faults: a transposed inverse or Jacobian, a wrong cofactor, coordinates taken out of compressed order.
TEST(Jacobian, GivesTheGradientOfALinearFieldOnDistortedElements) {
    std::mt19937 random(5);
    for (const ActiveNodes& active : Elements<3>(random)) {
        const Shaped<3> brick = Distorted<3>(active, 0.1, random);
        const Point p = RandomPoint<3>(random);
        ShapeValues<3> shape;
        JacobianValues<3> values;
        ASSERT_TRUE(ShapeAndJacobian3D(p[0], p[1], p[2], 0, 0, active, brick.CORE, shape, values));
        ExpectLinearFieldExact(brick, values);
        for (int KFIX = 1; KFIX <= 3; ++KFIX) {
            ASSERT_TRUE(ShapeAndJacobian3D(p[0], p[1], p[2], KFIX, 1, active, brick.CORE, shape, values));
            ExpectLinearFieldExact(brick, values);
        }
    }
    for (const ActiveNodes& active : Elements<2>(random)) {
        const Shaped<2> quadrilateral = Distorted<2>(active, 0.1, random);
        const Point p = RandomPoint<2>(random);
        ShapeValues<2> shape;
        JacobianValues<2> values;
        ASSERT_TRUE(ShapeAndJacobian2D(p[0], p[1], 0, active, quadrilateral.CORE, shape, values));
        ExpectLinearFieldExact(quadrilateral, values);
    }
}

// Six times the volume between the origin and the triangle of three nodes.
double SixTetrahedra(const NodeCoordinates<3>& x, int a, int b, int c) {
    return x[0][a] * (x[1][b] * x[2][c] - x[2][b] * x[1][c]) +
           x[1][a] * (x[2][b] * x[0][c] - x[0][b] * x[2][c]) +
           x[2][a] * (x[0][b] * x[1][c] - x[1][b] * x[0][c]);
}

// A bilinear face halves the tetrahedron of its corners, so the volume under it is the mean of the two ways to cut it
// into triangles.
double HexahedronVolume(const NodeCoordinates<3>& x) {
    static constexpr int outward[6][4] = {{1, 4, 8, 5}, {2, 6, 7, 3}, {1, 5, 6, 2},
                                          {4, 3, 7, 8}, {1, 2, 3, 4}, {5, 8, 7, 6}};
    double sum = 0.0;
    for (const auto& face : outward) {
        const int a = face[0] - 1, b = face[1] - 1, c = face[2] - 1, d = face[3] - 1;
        sum += SixTetrahedra(x, a, b, c) + SixTetrahedra(x, a, c, d) + SixTetrahedra(x, a, b, d) +
               SixTetrahedra(x, b, c, d);
    }
    return sum / 12.0;
}

double VolumeByQuadrature(const Shaped<3>& brick, int order) {
    double volume = 0.0;
    for (int i = 1; i <= order; ++i)
        for (int j = 1; j <= order; ++j)
            for (int k = 1; k <= order; ++k) {
                ShapeValues<3> shape;
                JacobianValues<3> values;
                EXPECT_TRUE(ShapeAndJacobian3D(XG(order, i), XG(order, j), XG(order, k), 0, 0, brick.active,
                                               brick.CORE, shape, values));
                volume += WGT(order, i) * WGT(order, j) * WGT(order, k) * values.DET;
            }
    return volume;
}

// Fault: a determinant off by sign, factor or term. The rules are good to single precision.
TEST(Jacobian, DeterminantsSumToTheVolumeOfADistortedHexahedron) {
    std::mt19937 random(6);
    for (int trial = 0; trial < 20; ++trial) {
        const Shaped<3> brick = Distorted<3>(ElementWith<3>({}), 0.3, random);
        const double volume = HexahedronVolume(brick.CORE);
        for (int order = 2; order <= 5; ++order)
            EXPECT_NEAR(VolumeByQuadrature(brick, order), volume, 5e-7 * volume) << "order " << order;
    }
}

// The same fault in the plane, against the polygon formula, which holds for straight edges.
TEST(Jacobian, DeterminantsSumToTheAreaOfAQuadrilateral) {
    std::mt19937 random(7);
    const Shaped<2> q = Distorted<2>(ElementWith<2>({}), 0.4, random);
    double twice = 0.0;
    for (int k = 0; k < 4; ++k)
        twice += q.CORE[0][k] * q.CORE[1][(k + 1) % 4] - q.CORE[0][(k + 1) % 4] * q.CORE[1][k];
    double area = 0.0;
    for (int i = 1; i <= 2; ++i)
        for (int j = 1; j <= 2; ++j) {
            ShapeValues<2> shape;
            JacobianValues<2> values;
            ASSERT_TRUE(ShapeAndJacobian2D(XG(2, i), XG(2, j), 0, q.active, q.CORE, shape, values));
            area += values.DET;
        }
    EXPECT_NEAR(area, twice / 2.0, 1e-7 * area);
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
// refused or taken as a volume point.
TEST(Jacobian, FaceScaleAndNormalAreTheCrossProductOfTheFreeRows) {
    const Point a = {2, 0, 0}, b = {0, 3, 0}, c = {0, 4, 5};
    const Shaped<3> brick = Parallelepiped(a, b, c);
    struct Case {
        int KFIX;
        Point cross;
    };
    // b x c, a x c, a x b
    const Case cases[] = {
        {1, {15, 0, 0}}, {2, {0, -10, 8}}, {3, {0, 0, 6}}, {4, {15, 0, 0}}, {9, {15, 0, 0}}};
    for (const Case& face : cases) {
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
}

// Fault: the scale of the held direction's row instead of the free one's.
TEST(Jacobian, EdgeScaleIsTheLengthOfTheFreeTangent) {
    Shaped<2> q;
    q.active = ElementWith<2>({});
    for (int k = 0; k < 4; ++k) {
        const Point place = PlaceOf<2>(k + 1);
        q.CORE[0][k] = 3.0 * place[0] + 5.0 * place[1];
        q.CORE[1][k] = 4.0 * place[0] + 12.0 * place[1];
    }
    const double scale[5] = {0, 13.0, 5.0, 13.0, 13.0};
    for (int KFIX = 1; KFIX <= 4; ++KFIX) {
        ShapeValues<2> shape;
        JacobianValues<2> values;
        ASSERT_TRUE(ShapeAndJacobian2D(1.0, 0.2, KFIX, q.active, q.CORE, shape, values));
        EXPECT_NEAR(values.DETS, scale[KFIX], 1e-14 * scale[KFIX]) << "KFIX " << KFIX;
    }
}

// Faults: a length that depends on the direction, a derivative by r instead of by arc length.
TEST(Jacobian, AnObliqueLineIsTheSameAsOneAlongX) {
    NodeCoordinates<1> straight = {{7, 1, 5}, {}, {}};
    NodeCoordinates<1> oblique = {{2 + 7 * 2 / 7.0, 2 + 2 / 7.0, 2 + 5 * 2 / 7.0},
                                  {-7 * 3 / 7.0, -3 / 7.0, -5 * 3 / 7.0},
                                  {7 * 6 / 7.0, 6 / 7.0, 5 * 6 / 7.0}};
    for (const ActiveNodes& active : {ElementWith<1>({}), ElementWith<1>({3})})
        for (double r : {-0.6, 0.0, 0.8}) {
            ShapeValues<1> shape;
            JacobianValues<1> along, across;
            ASSERT_TRUE(ShapeAndJacobian1D(r, active, straight, shape, along));
            ASSERT_TRUE(ShapeAndJacobian1D(r, active, oblique, shape, across));
            EXPECT_NEAR(across.DET, along.DET, 1e-14);
            double slope = 0.0;
            for (int k = 0; k < active.ND; ++k) {
                EXPECT_NEAR(across.HX[0][k], along.HX[0][k], 1e-14);
                slope += 2.5 * straight[0][k] * along.HX[0][k];
            }
            EXPECT_NEAR(slope, 2.5, 1e-14);
        }
}

// Faults: an inverted element let pass, a left-handed face refused.
TEST(Jacobian, ALeftHandedElementHasANegativeDeterminantButSoundFaces) {
    const Shaped<3> brick = Parallelepiped({1, 0, 0}, {0, 0, 1}, {0, 1, 0});
    ShapeValues<3> shape;
    JacobianValues<3> values;
    EXPECT_FALSE(ShapeAndJacobian3D(0.1, 0.2, 0.3, 0, 0, brick.active, brick.CORE, shape, values));
    EXPECT_DOUBLE_EQ(values.DET, -1.0);
    for (int KFIX = 1; KFIX <= 3; ++KFIX)
        EXPECT_TRUE(ShapeAndJacobian3D(0.1, 0.2, 0.3, KFIX, 0, brick.active, brick.CORE, shape, values));
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

} // namespace
} // namespace zurt
