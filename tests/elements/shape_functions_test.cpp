#include "shape_reference.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zurt {
namespace {

using namespace shape_reference;

template <int Dimension> struct OfDimension { static constexpr int value = Dimension; };

template <class T> class ShapeFunctions : public testing::Test {};
using Dimensions = testing::Types<OfDimension<1>, OfDimension<2>, OfDimension<3>>;
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

// Fault: corrections that fit the nodes of the full elements but lose constants for a partial list.
TYPED_TEST(ShapeFunctions, SumToOneAndTheirDerivativesToZero) {
    constexpr int D = TypeParam::value;
    std::mt19937 random(2);
    for (const ActiveNodes& active : Elements<D>(random)) {
        const ShapeValues<D> shape = ShapesAt<D>(RandomPoint<D>(random), active);
        double sum = 0.0;
        for (int k = 0; k < active.ND; ++k)
            sum += shape.H[k];
        EXPECT_NEAR(sum, 1.0, 1e-14);
        for (int d = 0; d < D; ++d) {
            double slope = 0.0;
            for (int k = 0; k < active.ND; ++k)
                slope += shape.HR[d][k];
            EXPECT_NEAR(slope, 0.0, 1e-14);
        }
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

// Fault: a function stored under its node's number instead of its place in the list. The values are written out from
// the products.
TEST(ShapeFunctionColumns, ALoneMidSideNodeComesRightBehindTheCorners) {
    const double r = 0.3, s = -0.6, t = 0.2;
    const ActiveNodes brick = ElementWith<3>({18});
    EXPECT_EQ(brick.ND, 9);
    const ShapeValues<3> shape = ShapesAt<3>({r, s, t}, brick);
    const double middle = (1 - r) * (1 + s) * (1 - t * t) / 4;
    EXPECT_DOUBLE_EQ(shape.H[8], middle);
    EXPECT_DOUBLE_EQ(shape.HR[2][8], (1 - r) * (1 + s) * (-2 * t) / 4);
    EXPECT_DOUBLE_EQ(shape.H[1], (1 - r) * (1 + s) * (1 + t) / 8 - middle / 2);
    EXPECT_DOUBLE_EQ(shape.H[5], (1 - r) * (1 + s) * (1 - t) / 8 - middle / 2);
    EXPECT_DOUBLE_EQ(shape.H[0], (1 + r) * (1 + s) * (1 + t) / 8);

    const ShapeValues<3> centre = ShapesAt<3>({r, s, t}, ElementWith<3>({12, 21}));
    const double bubble = (1 - r * r) * (1 - s * s) * (1 - t * t);
    EXPECT_DOUBLE_EQ(centre.H[9], bubble);
    EXPECT_DOUBLE_EQ(centre.H[8], (1 + r) * (1 - s * s) * (1 + t) / 4 - bubble / 4);
    EXPECT_DOUBLE_EQ(centre.H[6], (1 - r) * (1 - s) * (1 - t) / 8 - bubble / 8);
}

// Faults: a corner left out because its number is 0; a list that outlives its element.
TEST(ShapeFunctionColumns, TheListHoldsThePresentColumnsBehindTheCorners) {
    std::int32_t columns[9][2] = {}; // node k of element n at [k - 1][n - 1]
    columns[0][0] = 7;
    columns[5][0] = 9;
    columns[8][0] = 3;
    const ConstIntTable NEL(&columns[0][0], 2, 9);
    ActiveNodes active;
    ListActiveNodes<2>(NEL, 1, active);
    EXPECT_EQ(active.ND, 6);
    EXPECT_EQ(active.midSideCount, 2);
    EXPECT_EQ(active.midSide[0], 6);
    EXPECT_EQ(active.midSide[1], 9);
    ListActiveNodes<2>(NEL, 2, active);
    EXPECT_EQ(active.ND, 4);
    EXPECT_EQ(active.midSideCount, 0);
}

} // namespace
} // namespace zurt
