// Element matrices of the brick against closed forms: patch test, volume, capacity and conduction of a box.
//
// Gauss abscissae carry single precision, so a quadratic integrand is off by some 4e-8 of its size; what holds
// without it is held to rounding.
#include "elements/brick_kernel.h"
#include "elements/element_kernel.h"
#include "elements/gather.h"
#include "form_model.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>

namespace zurt {
namespace {

using namespace testmodel;

constexpr double kQuadrature = 2e-7;

struct Model {
    zurt::Run run;
    ~Model() { DestroyWorkingVector(run.A); }
};

// Corner signs and edge ends of the brick's nodes.
constexpr int kSign[8][3] = {{1, 1, 1},  {-1, 1, 1},  {-1, -1, 1},  {1, -1, 1},
                             {1, 1, -1}, {-1, 1, -1}, {-1, -1, -1}, {1, -1, -1}};
constexpr int kEdge[12][2] = {{1, 2}, {2, 3}, {3, 4}, {4, 1}, {5, 6}, {6, 7},
                              {7, 8}, {8, 5}, {1, 5}, {2, 6}, {3, 7}, {4, 8}};

// Straight edges with their mid-side nodes, shared between elements, and for 21 nodes the centres.
Mesh WithMidSides(Mesh mesh, int columns) {
    std::vector<std::array<int, 3>> known;
    for (std::vector<int>& element : mesh.elements) {
        const auto middle = [&](std::vector<int> ends) {
            Point sum{};
            for (int node : ends)
                for (std::size_t c = 0; c < 3; ++c)
                    sum[c] +=
                        mesh.nodes[static_cast<std::size_t>(node) - 1][c] / static_cast<double>(ends.size());
            mesh.nodes.push_back(sum);
            return static_cast<int>(mesh.nodes.size());
        };
        const std::vector<int> corners(element.begin(), element.begin() + 8);
        for (const auto& edge : kEdge) {
            const int a = corners[static_cast<std::size_t>(edge[0] - 1)],
                      b = corners[static_cast<std::size_t>(edge[1] - 1)];
            int found = 0;
            for (const auto& entry : known)
                if (entry[0] == std::min(a, b) && entry[1] == std::max(a, b))
                    found = entry[2];
            if (found == 0) {
                found = middle({a, b});
                known.push_back({std::min(a, b), std::max(a, b), found});
            }
            element.push_back(found);
        }
        element.push_back(columns == 21 ? middle(corners) : 0);
    }
    return mesh;
}

// 2 x 2 x 2 bricks; the corners off the surface and on it are moved about when `distortion` is not 0, and the whole is
// sheared.
Mesh Patch(int columns, double distortion) {
    const Mesh mesh = BlockOfBricks(2, 2, 2, [&](int i, int j, int k) {
        const double x = i + distortion * ((2 * i + 3 * j + 5 * k) % 7),
                     y = j + distortion * ((i + 2 * j + k) % 5),
                     z = k + distortion * ((3 * i + j + 4 * k) % 6);
        return Point{x + 0.3 * y, y - 0.2 * z, z + 0.1 * x};
    });
    return columns == 8 ? mesh : WithMidSides(mesh, columns);
}

// Faults: a wrong derivative, Jacobian, shape correction or assembly position; terms of one axis in another.
TEST(FormMatrices, PatchTest) {
    for (int columns : {8, 20, 21})
        for (double distortion : {0.0, 0.03}) {
            Problem problem;
            problem.NonlinearFlag = 1;
            problem.NDS = 1;
            problem.NGAUS = columns == 8 ? std::array<int, 3>{2, 2, 2} : std::array<int, 3>{3, 3, 3};
            problem.conduction = {{{0.0, 2.5}}};
            Model model;
            const Mesh mesh = Patch(columns, distortion);
            BuildModel(model.run, mesh, problem);
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
            EXPECT_NEAR(R(14), 0.0, (distortion == 0.0 ? 1e-12 : kQuadrature) * largest) << columns;
        }
}

double BoxVolume(const Mesh& mesh, const std::vector<int>& element) {
    // Trilinear brick: detJ integrated exactly by the three-point rule in full double precision.
    const double x[3] = {-std::sqrt(0.6), 0.0, std::sqrt(0.6)}, w[3] = {5.0 / 9.0, 8.0 / 9.0, 5.0 / 9.0};
    double volume = 0.0;
    for (int a = 0; a < 3; ++a)
        for (int b = 0; b < 3; ++b)
            for (int c = 0; c < 3; ++c) {
                double J[3][3] = {};
                const double at[3] = {x[a], x[b], x[c]};
                for (int k = 0; k < 8; ++k)
                    for (int d = 0; d < 3; ++d) {
                        double slope = kSign[k][d] / 8.0;
                        for (int e = 0; e < 3; ++e)
                            if (e != d)
                                slope *= 1.0 + kSign[k][e] * at[e];
                        const Point& place =
                            mesh.nodes[static_cast<std::size_t>(element[static_cast<std::size_t>(k)]) - 1];
                        for (std::size_t i = 0; i < 3; ++i)
                            J[d][i] += slope * place[i];
                    }
                volume += w[a] * w[b] * w[c] *
                          (J[0][0] * (J[1][1] * J[2][2] - J[1][2] * J[2][1]) -
                           J[0][1] * (J[1][0] * J[2][2] - J[1][2] * J[2][0]) +
                           J[0][2] * (J[1][0] * J[2][1] - J[1][1] * J[2][0]));
            }
    return volume;
}

// Faults: a capacity that isn't divided by the step, weights or determinants wrong, functions that don't sum to one.
TEST(FormMatrices, CapacitySumsToVolume) {
    for (int columns : {8, 20, 21}) {
        Problem problem;
        problem.NSTAC = 1;
        problem.TimeStep = 0.25;
        problem.NGAUS = {3, 3, 3};
        problem.capacity = {{{0.0, 4.0}}};
        Model model;
        const Mesh mesh = Patch(columns, 0.03);
        BuildModel(model.run, mesh, problem);
        testmodel::FormSystem(model.run);
        double volume = 0.0;
        for (const std::vector<int>& element : mesh.elements)
            volume += BoxVolume(mesh, element);
        const double sum = SystemSum(model.run);
        EXPECT_NEAR(sum, 4.0 / 0.25 * volume, 4.0 * kQuadrature * sum) << columns; // K sums to zero
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
    for (const Case& expected : cases)
        for (int NSTAC : {0, 1}) {
            Problem problem;
            problem.NSTAC = NSTAC;
            problem.IANIZ = expected.IANIZ;
            problem.TimeStep = 0.5;
            problem.conduction = {{{0.0, 7.0}}, {{0.0, 3.0}}, {{0.0, 5.0}}};
            problem.functions = {expected.functions, {1, 1, 1}};
            problem.multipliers = {2.0, 5.0, 7.0};
            problem.capacity = {{{0.0, 11.0}}, {{0.0, 1.0}}};
            Model model;
            BuildModel(model.run, Box(), problem);
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
    Mesh mesh = Patch(21, 0.03);
    for (std::size_t n = 0; n < mesh.elements.size(); ++n)
        for (std::size_t k = 8; k < 21; ++k)
            if ((n + k) % (n + 1) != 0 || n == 3)
                mesh.elements[n][k] =
                    0; // element 4 has corners alone, the others every (n + 1)th mid-side node
    Model all;
    BuildModel(all.run, mesh, {});
    testmodel::FormSystem(all.run);
    const Word JEDN = all.run.control.state.JEDN;
    std::vector<double> sum(static_cast<std::size_t>(JEDN * JEDN));
    for (const std::vector<int>& element : mesh.elements) {
        Mesh one = mesh;
        one.elements = {element};
        Model alone;
        BuildModel(alone.run, one, {});
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
