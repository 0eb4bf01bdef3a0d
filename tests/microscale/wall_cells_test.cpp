// Elements that a fibre wall cuts.
#include "microscale/fibre_models.h"
#include "microscale/wall_cells.h"
#include "support/small_run.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace zurt {
namespace {

using namespace testfibres;

constexpr std::int32_t kCells = 2;
constexpr double kRadius = 0.5;
constexpr double kRuleDigits = 1e-6; // the weights of order 3 are rounded constants

// A brick with straight edges: corners at centre + r edge 1 + s edge 2 + t edge 3, the natural coordinates from -1 to 1.
struct Parallelepiped {
    Point centre, edge[3];
    Point At(double r, double s, double t) const {
        Point X = centre;
        for (std::size_t axis = 0; axis < 3; ++axis)
            X[axis] += r * edge[0][axis] + s * edge[1][axis] + t * edge[2][axis];
        return X;
    }
};

// Long and thin, along any direction.
Parallelepiped AnyBrickNear(const Point& ball, std::mt19937& engine) {
    std::uniform_real_distribution<double> any(-1.0, 1.0);
    Parallelepiped brick{};
    for (std::size_t axis = 0; axis < 3; ++axis)
        brick.centre[axis] = ball[axis] + any(engine);
    for (int natural = 0; natural < 3; ++natural) {
        for (double& x : brick.edge[natural])
            x = 0.02 * any(engine);
        brick.edge[natural][static_cast<std::size_t>(natural)] += 0.1;
    }
    const std::size_t along = engine() % 3;
    brick.edge[along][along] += 1.5;
    brick.centre[along] += any(engine);
    return brick;
}

// The part of its sub-points, two by the Gauss rule in each cell and direction, that lies outside the ball.
double FluidPart(const Parallelepiped& brick, const Point& ball) {
    constexpr int along = 2 * kCells;
    const auto place = [](int i) {
        return (2 * (i / 2) + 1 + (i % 2 == 0 ? -1 : 1) / std::sqrt(3.0)) / kCells - 1;
    };
    int fluid = 0;
    for (int i = 0; i < along * along * along; ++i) {
        const Point X = brick.At(place(i / (along * along)), place(i / along % along), place(i % along));
        fluid += std::hypot(X[0] - ball[0], X[1] - ball[1], X[2] - ball[2]) > kRadius;
    }
    return fluid / static_cast<double>(along * along * along);
}

// Faults: an element whose nodes alone reach a wall passed over by the quick look, most of all flat ones, or for fibres of other kinds; shares that don't
// integrate a constant over the fluid.
TEST(WallCells, ThinBricksNearABall) {
    zurt_test::SmallRun small;
    ElementWalk<3> walk{small, small.groups[1]};
    walk.points.active.ND = 8;
    WallCells<3> cells = MakeWallCells<3>(kCells, 8);
    std::mt19937 engine(31);
    int cutBricks = 0;
    for (int i = 0; i < 3000; ++i) {
        std::uniform_real_distribution<double> any(-1.5, 1.5);
        const Point ball = {any(engine), any(engine), any(engine)};
        FibreModel model = MakeModel({MakeSet(kSphereFibres, 2 * kRadius, {FibreThrough({ball})})});
        if (i % 3 > 0) // far away: a fibre, of the same radius or another one
            model.sets.push_back(
                MakeSet(kLineFibres, i % 3 * kRadius, {FibreThrough({{9, 9, 0}, {9, 9, 9}})}));
        const FibreSearch search = SearchOfAllSets(model, 3, LineEnds::Count);
        const Parallelepiped brick = AnyBrickNear(ball, engine);
        const auto& edge = brick.edge;
        const double volume = 8 * (edge[0][0] * (edge[1][1] * edge[2][2] - edge[1][2] * edge[2][1]) -
                                   edge[0][1] * (edge[1][0] * edge[2][2] - edge[1][2] * edge[2][0]) +
                                   edge[0][2] * (edge[1][0] * edge[2][1] - edge[1][1] * edge[2][0]));
        if (volume < 1e-4)
            continue;
        for (std::size_t node = 0; node < 8; ++node) {
            const auto& natural = FamilyShape<3>::kPlace[node];
            const Point X = brick.At(natural[0], natural[1], natural[2]);
            for (std::size_t axis = 0; axis < 3; ++axis)
                walk.element.CORE[axis][node] = X[axis];
        }
        CutElement cut;
        const double part = FluidPart(brick, ball);
        const bool expected = part > 0.0 && part < 1.0;
        ASSERT_EQ(CutByWall(cells, walk, search, cut), expected) << "brick " << i << ", fluid " << part;
        cutBricks += expected;
        if (expected) {
            EXPECT_NEAR(cut.volume, volume, kRuleDigits * volume);
            EXPECT_NEAR(cut.fluid, part * volume, kRuleDigits * volume);
        }
    }
    EXPECT_GT(cutBricks, 200);
}

} // namespace
} // namespace zurt
