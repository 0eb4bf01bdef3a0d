// Element matrices of bricks, quadrilaterals and lines against closed forms: patch test, measure, conduction of a box.
//
// Gauss abscissae carry single precision, so a quadratic integrand is off by some 4e-8 of its size; what holds
// without it is held to rounding.
#include "elements/forming/brick_kernel.h"
#include "elements/forming/element_kernel.h"
#include "form_model.h"
#include "geometry/gather.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

namespace zurt {
namespace {

using namespace testmodel;

constexpr double kQuadrature = 2e-7;

// Corner signs and edge ends of the brick's nodes.
constexpr int kSign[8][3] = {{1, 1, 1},  {-1, 1, 1},  {-1, -1, 1},  {1, -1, 1},
                             {1, 1, -1}, {-1, 1, -1}, {-1, -1, -1}, {1, -1, -1}};
constexpr std::size_t kEdge[12][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                      {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};

// 2 x 2 quadrilaterals or 2 x 2 x 2 bricks with straight sides and any number of columns; their corners are moved about when
// `distortion` is not 0, and the whole is sheared, the volume of the bricks being 8 times 0.994. The nodes stand on a grid
// twice as fine, five in a row; those that no element takes stay alone.
Mesh Patch(int dimension, int columns, double distortion) {
    const auto corner = [&](int i, int j, int k) {
        if (dimension == 2)
            return Point{i + distortion * ((2 * i + 3 * j) % 4) + 0.3 * j, j - distortion * ((i + j) % 3),
                         7.0};
        const double x = i + distortion * ((2 * i + 3 * j + 5 * k) % 7),
                     y = j + distortion * ((i + 2 * j + k) % 5),
                     z = k + distortion * ((3 * i + j + 4 * k) % 6);
        return Point{x + 0.3 * y, y - 0.2 * z, z + 0.1 * x};
    };
    Mesh mesh;
    const int layers = dimension == 2 ? 1 : 5, corners = 1 << dimension;
    for (int n = 0; n < 25 * layers; ++n) {
        const int i = n % 5, j = n / 5 % 5, k = n / 25;
        Point at{};
        for (int part = 0; part < 8; ++part)
            for (std::size_t c = 0; c < 3; ++c)
                at[c] += corner((i + part % 2) / 2, (j + part / 2 % 2) / 2, (k + part / 4) / 2)[c] / 8.0;
        mesh.nodes.push_back(at);
    }
    // Twice the place of column m in its element, from 0 to 2 along each axis.
    const auto place = [&](int m, int axis) {
        if (m < corners)
            return 1 + kSign[m][axis];
        if (m - corners >= (dimension == 2 ? 4 : 12))
            return 1;
        const auto [a, b] = kEdge[m - corners];
        return 1 + (kSign[a][axis] + kSign[b][axis]) / 2;
    };
    for (int cell = 0; cell < corners; ++cell) {
        std::vector<int> row;
        for (int m = 0; m < (columns == corners ? corners : dimension == 2 ? 9 : 21); ++m) {
            const int i = cell % 2 * 2 + place(m, 0), j = cell / 2 % 2 * 2 + place(m, 1),
                      k = dimension == 2 ? 0 : cell / 4 * 2 + place(m, 2);
            row.push_back(m < columns ? 1 + i + 5 * (j + 5 * k) : 0);
        }
        mesh.elements.push_back(row);
    }
    return mesh;
}

// Faults: a wrong derivative, Jacobian, shape correction or assembly position; terms of one axis in another; a residual of
// the wrong sign.
TEST(FormMatrices, PatchTest) {
    for (const auto& [dimension, columns] : {std::pair{3, 8}, {3, 20}, {3, 21}, {2, 4}, {2, 8}, {2, 9}})
        for (double distortion : {0.0, 0.03}) {
            const bool plane = dimension == 2;
            Problem problem;
            problem.NonlinearFlag = 1;
            problem.dimension = dimension;
            problem.NDS = plane ? 0 : 1;
            if (columns != 1 << dimension)
                problem.NGAUS = {3, 3, 3};
            problem.conduction = {{{0.0, 2.5}}};
            const Mesh mesh = Patch(dimension, columns, distortion);
            Model model(mesh, problem);
            const RealArray T = StepSolution(model.run), R = RightHandSide(model.run);
            for (Word n = 1; n <= T.length; ++n) {
                const Point& at = mesh.nodes[static_cast<std::size_t>(n) - 1];
                T(n) = 2.0 + at[0] - 3.0 * at[1] + 0.5 * at[2];
            }
            testmodel::FormSystem(model.run);
            double largest = 0.0, total = 0.0;
            for (Word n = 1; n <= R.length; ++n) {
                largest = std::max(largest, std::fabs(R(n)));
                total += R(n);
            }
            EXPECT_GT(largest, 0.1);
            EXPECT_NEAR(total, 0.0, 1e-12 * largest); // what flows in through the closed surface flows out
            for (Word n = 0; n < R.length; ++n) {
                const bool inside = n % 5 % 4 != 0 && n / 5 % 5 % 4 != 0 && (plane || n / 25 % 4 != 0);
                EXPECT_NEAR(inside ? R(n + 1) : 0.0, 0.0, (distortion == 0.0 ? 1e-12 : kQuadrature) * largest)
                    << columns;
            }
        }
}

// The box 2 x 3 x 4 with its nodes numbered in the brick's order.
Mesh Box() {
    Mesh mesh;
    for (const auto& sign : kSign)
        mesh.nodes.push_back({1.0 * sign[0], 1.5 * sign[1], 2.0 * sign[2]});
    mesh.elements = {{1, 2, 3, 4, 5, 6, 7, 8}};
    return mesh;
}

// The capacities of a group sum to its measure. Faults: a capacity that isn't divided by the step, weights wrong; a radius
// from the wrong row (x for lines, y for quadrilaterals) or without INDAX, a factor of two pi, a thickness that acts, an
// area that does not; a length along x.
TEST(FormMatrices, CapacitySumsToTheMeasure) {
    // A frustum of two rectangles has the volume h (A1 + 4 Am + A2) / 6 with the section half way up; shears in turn keep it.
    Mesh frustum = Box(), plane, line;
    for (Point& at : frustum.nodes) {
        const double t = at[2] / 2.0, x = (2.0 + 0.5 * t) * at[0] + 0.9 * t,
                     y = (1.0 - 0.25 * t) * at[1] / 1.5 + 0.2 * x;
        at = {x, y, 3.0 * t - 0.4 * y};
    }
    const double volume = (4.0 * 1.5 * 1.25 + 4.0 * 8.0 + 4.0 * 2.5 * 0.75);
    plane.nodes = {{103.0, 14.0, 9.0}, {100.0, 14.0, 9.0}, {100.0, 12.0, 9.0}, {103.0, 12.0, 9.0}};
    plane.elements = {{1, 2, 3, 4}};
    line.nodes = {{13.0, 104.0, 5.0}, {10.0, 100.0, 5.0}};
    line.elements = {{1, 2}};
    const struct {
        Mesh mesh;
        int dimension, INDAX;
        std::vector<double> thickness;
        double expected;
    } cases[] = {{Patch(3, 8, 0.0), 3, 0, {}, 8.0 * 0.994},
                 {Patch(3, 20, 0.0), 3, 0, {}, 8.0 * 0.994},
                 {Patch(3, 21, 0.0), 3, 0, {}, 8.0 * 0.994},
                 {frustum, 3, 0, {}, volume},
                 {plane, 2, 0, {}, 6.0},
                 {plane, 2, 1, {}, 6.0 * 13.0},
                 {plane, 2, 0, {8.0}, 6.0},
                 {line, 1, 0, {}, 5.0},
                 {line, 1, 0, {0.5}, 2.5},
                 {line, 1, -1, {0.5}, 2.5 * 11.5}};
    for (const auto& one : cases) {
        Problem problem;
        problem.dimension = one.dimension;
        problem.INDAX = one.INDAX;
        problem.thickness = one.thickness;
        problem.NSTAC = 1;
        problem.TimeStep = 0.25;
        problem.NGAUS = {3, 3, 3};
        problem.capacity = {{{0.0, 4.0}}};
        Model model(one.mesh, problem);
        testmodel::FormSystem(model.run);
        EXPECT_NEAR(SystemSum(model.run), 16.0 * one.expected, 1e-5 * one.expected); // K sums to zero
    }
}

// Closed form on a box: in each axis the mass of two linear functions is h/3 or h/6, their stiffness +-1/h.
double BoxEntry(int i, int j, int derivativeAxis) {
    const double size[3] = {2.0, 3.0, 4.0};
    double product = 1.0;
    for (int axis = 0; axis < 3; ++axis) {
        const bool same = kSign[i][axis] == kSign[j][axis];
        product *=
            axis == derivativeAxis ? (same ? 1.0 : -1.0) / size[axis] : size[axis] / (same ? 3.0 : 6.0);
    }
    return product;
}

// Faults: coefficients of the axes exchanged, multipliers ignored or applied under IANIZ 0, an axis function that also
// gets a multiplier, a material other than 1, conduction and capacity mixed up.
TEST(FormMatrices, BoxAgainstClosedForm) {
    struct Case {
        int IANIZ;
        std::array<int, 3> functions;
        Point K;
    };
    const std::vector<Case> cases = {{0, {2, 0, 0}, {3.0, 3.0, 3.0}},
                                     {1, {2, 0, 0}, {6.0, 15.0, 21.0}},
                                     {1, {2, 3, -1}, {6.0, 15.0, 21.0}},
                                     {1, {2, 0, 3}, {6.0, 15.0, 21.0}},
                                     {1, {2, 3, 1}, {3.0, 5.0, 7.0}}};
    for (const auto& expected : cases)
        for (int NSTAC : {0, 1}) {
            Problem problem;
            problem.NSTAC = NSTAC;
            problem.IANIZ = expected.IANIZ;
            problem.TimeStep = 0.5;
            problem.conduction = {{{0.0, 7.0}}, {{0.0, 3.0}}, {{0.0, 5.0}}};
            problem.functions = {expected.functions, {1, 1, 1}};
            problem.multipliers = {2.0, 5.0, 7.0};
            problem.capacity = {{{0.0, 11.0}}, {{0.0, 1.0}}};
            Model model(Box(), problem);
            testmodel::FormSystem(model.run);
            for (int i = 0; i < 8; ++i)
                for (int j = 0; j < 8; ++j) {
                    double entry = NSTAC * 11.0 / 0.5 * BoxEntry(i, j, -1);
                    for (int axis = 0; axis < 3; ++axis)
                        entry += expected.K[static_cast<std::size_t>(axis)] * BoxEntry(i, j, axis);
                    EXPECT_NEAR(SystemEntry(model.run, i + 1, j + 1), entry, 50.0 * kQuadrature);
                }
        }
}

// Faults: a shape table kept for an element with other mid-side nodes, compressed places wrong.
TEST(FormMatrices, MixedElementsOfOneGroup) {
    Mesh mesh = Patch(3, 21, 0.03);
    for (std::size_t n = 0; n < mesh.elements.size(); ++n)
        for (std::size_t k = 8; k < 21; ++k)
            if ((n + k) % (n + 1) != 0 || n == 3)
                mesh.elements[n][k] =
                    0; // element 4 has corners alone, the others every (n + 1)th mid-side node
    Model all(mesh, {});
    testmodel::FormSystem(all.run);
    const Word JEDN = all.run.sizes.JEDN;
    std::vector<double> sum(static_cast<std::size_t>(JEDN * JEDN));
    for (const std::vector<int>& element : mesh.elements) {
        Mesh one = mesh;
        one.elements = {element};
        Model alone(one, {});
        testmodel::FormSystem(alone.run);
        for (Word i = 1; i <= JEDN; ++i)
            for (Word j = 1; j <= JEDN; ++j)
                sum[static_cast<std::size_t>((i - 1) * JEDN + j - 1)] += SystemEntry(alone.run, i, j);
    }
    for (Word i = 1; i <= JEDN; ++i)
        for (Word j = 1; j <= JEDN; ++j)
            EXPECT_NEAR(SystemEntry(all.run, i, j), sum[static_cast<std::size_t>((i - 1) * JEDN + j - 1)],
                        1e-13);
}

// Faults: the kernels for corner nodes alone drift apart from the ones for any count, or one set of instructions from
// another: another order of a sum, rows or columns exchanged, points behind the last one of a rule summed as well.
TEST(FormMatrices, KernelsForCornersGiveTheBitsOfTheGeneralOnes) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> real(-1.0, 1.0);
    const auto points = std::make_unique<ElementPoints<3>>();
    const auto rule = std::make_unique<BrickRule>();
    const auto brick = std::make_unique<BrickValues>();
    ActiveNodes corners;
    corners.ND = 8;
    for (const std::array<std::int32_t, 3>& orders : {std::array{2, 2, 2}, {3, 3, 3}, {1, 2, 5}}) {
        SetElementPoints(corners, orders.data(), *points);
        SetBrickRule(*points, *rule);
        ElementNodes<3>
            nodes; // corners in an order that makes some DET negative, which only the caller judges
        for (int k = 0; k < 8; ++k) {
            for (int c = 0; c < 3; ++c)
                nodes.CORE[c][k] = (k >> c & 1) + 0.2 * real(random);
            nodes.TE0[k] = real(random);
            nodes.TE1[k] = real(random);
        }
        double measures[125], conduction[125][3], CP[125], packed[36];
        for (int p = 0; p < points->count; ++p)
            for (double* value : {conduction[p], conduction[p] + 1, conduction[p] + 2, CP + p})
                *value = 1.5 + real(random);
        for (const bool transient : {false, true}) {
            const auto general = std::make_unique<ElementSums<3, 0>>();
            ClearSums(*general, 8);
            for (int p = 0; p < points->count; ++p) {
                const ElementPoint<3>& point = points->point[p];
                JacobianValues<3> jacobian;
                JacobianVolume<3>(point.shape, nodes.CORE, 8, jacobian);
                measures[p] = point.weight * jacobian.DET;
                AddConduction(jacobian.HX, conduction[p], measures[p], 8, *general);
                AddCapacity(point.shape.H, CP[p], measures[p], 8, *general);
            }
            if (transient)
                AddTimeTerm(0.3, nodes.TE0, 8, *general);
            TakeResidual(nodes.TE1, 8, *general);
            for (const InstructionSet set :
                 {InstructionSet::Portable, InstructionSet::Avx2, InstructionSet::Avx512}) {
                if (set > WidestInstructionSet())
                    continue;
                LocateBrickPoints(set, *rule, nodes.CORE, nodes.TE1, *brick);
                for (int p = 0; p < points->count; ++p) {
                    EXPECT_EQ(points->point[p].weight * brick->DET[p], measures[p]);
                    EXPECT_EQ(brick->TG[p], Interpolate<0>(points->point[p].shape.H, nodes.TE1, 8));
                    brick->measure[p] = measures[p];
                    brick->CP[p] = CP[p];
                    for (int c = 0; c < 3; ++c)
                        brick->conduction[c][p] = conduction[p][c];
                }
                std::fill(brick->FE, brick->FE + 8, 0.0);
                SumBrick(set, *rule, transient, 0.3, nodes.TE0, nodes.TE1, *brick, packed);
                const double* entry = packed;
                for (int i = 0; i < 8; ++i) {
                    EXPECT_EQ(brick->FE[i], general->FE[i]);
                    for (int j = i; j < 8; ++j)
                        EXPECT_EQ(*entry++, general->K[i][j]) << i << " " << j;
                }
            }
        }
    }
}

} // namespace
} // namespace zurt
