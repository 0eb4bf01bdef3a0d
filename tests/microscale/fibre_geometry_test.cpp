#include "microscale/fibre_geometry.h"

#include "microscale/fibre_models.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zurt {
namespace {

using namespace testfibres;

constexpr double kUnitBox[3] = {1.0, 1.0, 1.0};

std::vector<double> Clipped(const Point& p, const Point& q, int dim = kSpaceFibres) {
    FibreModel model = MakeModel({MakeSet(kLineFibres, 0.1, {FibreThrough({p, q})})});
    EXPECT_EQ(ClipFibresToBox(model, kUnitBox, dim).set, 0);
    return model.sets[0].fibres[0].points;
}

void ExpectPoints(const std::vector<double>& found, const std::vector<double>& expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_NEAR(found[i], expected[i], 1e-14) << "coordinate " << i;
}

// Faults: the shift made with its sign (a true clip) where its size is asked for; the direction updated between the two
// points; the order of the faces; a face's own coordinate shifted, too.
TEST(ClipFibres, ShiftsByTheSizeOnly) {
    // Rising in x and y: a true clip on both faces of x.
    ExpectPoints(Clipped({-0.2, 0.3, 0.5}, {1.2, 0.7, 0.5}),
                 {0, 0.3 + 0.2 * 0.4 / 1.4, 0.5, 1, 0.7 - 0.2 * 0.4 / 1.4, 0.5});
    // Falling in y: low faces still shift y up, high faces down, away from the line.
    ExpectPoints(Clipped({-0.2, 0.7, 0.5}, {1.2, 0.3, 0.5}),
                 {0, 0.7 + 0.2 * 0.4 / 1.4, 0.5, 1, 0.3 - 0.2 * 0.4 / 1.4, 0.5});
    // Two faces in their order: x low moves y up, then y high moves x down again, out of the box; x is not looked at again.
    ExpectPoints(Clipped({-0.5, 0.9, 0.5}, {0.5, 0.5, 0.5}), {-0.25, 1, 0.5, 0.5, 0.5, 0.5});
    // Both ends of the second point's clip use the direction of the card.
    ExpectPoints(Clipped({-1, -1, 0.5}, {1, 0.5, 0.5}), {1.0 / 3, 0, 0.5, 1, 0.5, 0.5});
}

// Faults: the tolerance of 1e-9 left out or applied to the limit that is set.
TEST(ClipFibres, Tolerance) {
    ExpectPoints(Clipped({-0.9e-9, 0.5, 0.5}, {1.0 + 0.9e-9, 0.5, 0.5}),
                 {-0.9e-9, 0.5, 0.5, 1.0 + 0.9e-9, 0.5, 0.5});
    const std::vector<double> points = Clipped({-1.1e-9, 0.5, 0.5}, {1.0 + 1.1e-9, 0.5, 0.5});
    EXPECT_EQ(points[0], 0.0);
    EXPECT_EQ(points[3], 1.0);
}

// Faults: the lengths of all sets in one, of unclipped lines, added up over two calls; spheres clipped.
TEST(ClipFibres, LengthsBySet) {
    FibreModel model =
        MakeModel({MakeSet(kLineFibres, 0.1,
                           {FibreThrough({{-1, 0.5, 0.5}, {0.5, 0.5, 0.5}}),
                            FibreThrough({{0.5, 0.5, 0}, {0.5, 0.5, 4}})}),
                   MakeSet(kSphereFibres, 0.2, {FibreThrough({{-1, 0.5, 0.5}}), FibreThrough({{0, 0, 0}})}),
                   MakeSet(kLineFibres, 0.3, {FibreThrough({{0, 0, 0}, {0.3, 0.4, 0}})})});
    for (int call = 0; call < 2; ++call) {
        EXPECT_EQ(ClipFibresToBox(model, kUnitBox, kSpaceFibres).set, 0);
        EXPECT_NEAR(model.sets[0].totalLength, 1.5, 1e-15);
        EXPECT_EQ(model.sets[1].totalLength, 0.0);
        EXPECT_NEAR(model.sets[2].totalLength, 0.5, 1e-15);
    }
    EXPECT_EQ(model.sets[1].fibres[0].points[0], -1.0);
    const double pi = std::acos(-1.0);
    FibreVolumes(model, kSpaceFibres);
    EXPECT_NEAR(model.sets[0].volume, pi / 4 * 0.01 * 1.5, 1e-15);
    EXPECT_DOUBLE_EQ(model.sets[1].volume, 2 * 0.008 * 0.5235987912027583); // the single-precision pi/6
    EXPECT_NEAR(model.fibreVolume, model.sets[0].volume + model.sets[1].volume + pi / 4 * 0.09 * 0.5, 1e-15);
    FibreVolumes(model, kPlaneFibres);
    EXPECT_NEAR(model.sets[0].volume, 0.15, 1e-15);
    EXPECT_NEAR(model.sets[1].volume, 2 * 0.04 * pi / 4, 1e-15);
}

// In the plane z has the range [0, 0].
TEST(ClipFibres, Plane) {
    ExpectPoints(Clipped({0.5, 0.5, 0}, {2.0, 0.5, 0}, kPlaneFibres), {0.5, 0.5, 0, 1, 0.5, 0});
    ExpectPoints(Clipped({0.8, 0.5, -0.25}, {0.2, 0.5, 0.25}, kPlaneFibres), {1.1, 0.5, 0, -0.1, 0.5, 0});
}

// Faults: a division by a direction of zero, or a line without a length, goes on into the search.
TEST(ClipFibres, LinesOutsideTheBoxAreReported) {
    const FibreSet good = MakeSet(kLineFibres, 0.1, {FibreThrough({{0, 0, 0}, {1, 1, 1}})});
    const Point outside[][2] = {{{0.2, -1, 0.5}, {0.8, -1, 0.5}}, // along a face
                                {{-2, 0.5, 0.5}, {-1, 0.5, 0.5}}, // ahead of a face, across it
                                {{-2, 0.2, 0.2}, {-1, 0.4, 0.4}}, // oblique: both ends come to one point
                                {{0.5, 0.5, 3}, {0.6, 0.6, 3}}};
    for (const auto& ends : outside) {
        FibreModel model = MakeModel(
            {good, MakeSet(kLineFibres, 0.1,
                           {FibreThrough({{0, 0, 0}, {1, 0, 0}}), FibreThrough({ends[0], ends[1]})})});
        const FibrePlace place = ClipFibresToBox(model, kUnitBox, kSpaceFibres);
        EXPECT_EQ(place.set, 2);
        EXPECT_EQ(place.fibre, 2);
    }
}

} // namespace
} // namespace zurt
