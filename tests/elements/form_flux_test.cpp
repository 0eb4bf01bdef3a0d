// Fluxes and coefficients at the nodes, and how a visit treats the working vector and the kinds of run.
#include "elements/nodal_averaging.h"
#include "form_model.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zurt {
namespace {

using namespace testmodel;

struct Model {
    zurt::Run run;
    Model(const Mesh& mesh, const Problem& problem) { BuildModel(run, mesh, problem); }
    ~Model() { DestroyWorkingVector(run.A); }
};

RealArray Result(const Run& run, int number) {
    return RealSection(run.A, run.control.at.LNDS[number], run.control.header.NP);
}

void EvaluateResults(Run& run) {
    run.control.state.ResultsPhaseFlag = 1;
    DispatchElementPhase(run, run.groups[1], 3, kFormPhase);
    AverageNodalResults(run);
}

Mesh DistortedBlock() {
    return BlockOfBricks(2, 2, 2, [](int i, int j, int k) {
        return Point{i + 0.05 * ((i + 2 * j + k) % 3), j + 0.3 * i, k + 0.05 * ((2 * i + j + 3 * k) % 4)};
    });
}

Problem Device() {
    Problem problem;
    problem.NDS = 1;
    problem.NonlinearFlag = 1;
    problem.conduction = {{{0.0, 2.5}}};
    return problem;
}

// Faults: flux of the wrong sign or axis, sums that are not averaged, counters or sums kept from the step before, the
// molar mass on the wrong vectors.
TEST(FormFlux, LinearFieldOnADistortedBlock) {
    for (double AMOLAR : {0.0, -3.0, 4.0}) {
        Problem problem = Device();
        problem.AMOLAR = AMOLAR;
        const Mesh mesh = DistortedBlock();
        Model model(mesh, problem);
        for (Word n = 1; n <= model.run.control.header.NP; ++n) {
            const Point& at = mesh.nodes[static_cast<std::size_t>(n) - 1];
            StepSolution(model.run)(n) = 1.0 + 2.0 * at[0] - at[1] + 0.5 * at[2];
        }
        EvaluateResults(model.run);
        EvaluateResults(model.run);
        const double flux[3] = {-5.0, 2.5, -1.25};
        for (Word n = 1; n <= model.run.control.header.NP; ++n)
            for (int axis = 0; axis < 3; ++axis) {
                EXPECT_NEAR(Result(model.run, 4 + axis)(n), flux[axis], 1e-12);
                EXPECT_NEAR(Result(model.run, 1 + axis)(n), (AMOLAR > 0.0 ? AMOLAR : 1.0) * flux[axis],
                            1e-11);
                EXPECT_NEAR(Result(model.run, 7 + axis)(n), 2.5, 1e-12);
            }
        EXPECT_EQ(model.run.averaging.contributions[13], 8);
    }
}

// With D(c) = c the coefficient at a node is the concentration at the Gauss point that stands for it. Faults: a point
// that stands for another node, another rule than 2 x 2 x 2, a wrong mean at the mid-side nodes.
TEST(FormFlux, PointsStandForTheirNodes) {
    constexpr int place[21][3] = {{1, 1, 1},    {-1, 1, 1},  {-1, -1, 1}, {1, -1, 1}, {1, 1, -1}, {-1, 1, -1},
                                  {-1, -1, -1}, {1, -1, -1}, {0, 1, 1},   {-1, 0, 1}, {0, -1, 1}, {1, 0, 1},
                                  {0, 1, -1},   {-1, 0, -1}, {0, -1, -1}, {1, 0, -1}, {1, 1, 0},  {-1, 1, 0},
                                  {-1, -1, 0},  {1, -1, 0},  {0, 0, 0}};
    Mesh mesh;
    mesh.elements.emplace_back();
    for (const auto& at : place) {
        mesh.nodes.push_back({1.0 * at[0], 1.0 * at[1], 1.0 * at[2]});
        mesh.elements[0].push_back(static_cast<int>(mesh.nodes.size()));
    }
    Problem problem = Device();
    problem.NGAUS = {3, 1, 3};
    problem.conduction = {{{0.0, 0.0}, {1000.0, 1000.0}}};
    Model model(mesh, problem);
    const auto field = [](double x, double y, double z) { return 200.0 + x + 10.0 * y + 100.0 * z; };
    for (Word n = 1; n <= 21; ++n)
        StepSolution(model.run)(n) = field(place[n - 1][0], place[n - 1][1], place[n - 1][2]);
    EvaluateResults(model.run);
    const double g = 0.5773502588272095;
    for (Word n = 1; n <= 21; ++n) {
        const double D = field(g * place[n - 1][0], g * place[n - 1][1], g * place[n - 1][2]);
        EXPECT_NEAR(Result(model.run, 8)(n), D, 1e-11) << n;
        EXPECT_NEAR(Result(model.run, 6)(n), -100.0 * D, 1e-8) << n;
    }
}

// Faults: nodal vectors that don't exist without NDS are written, the results phase that assembles.
TEST(FormFlux, ResultsPhaseLeavesTheSystemAlone) {
    for (int NDS : {0, 1}) {
        Problem problem = Device();
        problem.NDS = NDS;
        Model model(DistortedBlock(), problem);
        Fill(StepSolution(model.run), 1.0);
        const double before = CoordinateColumn(model.run, 1)(2);
        EvaluateResults(model.run);
        EXPECT_EQ(CoordinateColumn(model.run, 1)(2), before);
        EXPECT_EQ(SystemEntry(model.run, 1, 1), 0.0);
    }
}

// Faults: a work block that creeps up from visit to visit, lengths of the block, an absent array that takes room.
TEST(FormVisit, WorkBlockBeginsAtTheSameWordEveryTime) {
    Problem problem;
    problem.NSTAC = 1;
    problem.NonlinearFlag = 1;
    Model model(DistortedBlock(), problem);
    testmodel::FormSystem(model.run);
    const Word LMAX = model.run.A.LMAX;
    const std::size_t sections = model.run.A.sections.size();
    EXPECT_EQ(LMAX, model.run.A.LMAXM + 4 * 36 + 64);
    for (int i = 0; i < 200; ++i)
        testmodel::FormSystem(model.run);
    EXPECT_EQ(model.run.A.LMAX, LMAX);
    EXPECT_EQ(model.run.A.sections.size(), sections);

    Model steady(DistortedBlock(), {});
    testmodel::FormSystem(steady.run);
    EXPECT_EQ(steady.run.A.LMAX, steady.run.A.LMAXM + 2 * 36 + 64);
}

// Faults: another time integration that forms elements or says something, the matrix flag ignored.
TEST(FormVisit, WhatIsNotFormed) {
    Problem problem;
    problem.INTEB = 2;
    Model alpha(DistortedBlock(), problem);
    testmodel::FormSystem(alpha.run);
    EXPECT_EQ(SystemEntry(alpha.run, 1, 1), 0.0);

    problem.INTEB = 1;
    problem.IZIP = 1;
    problem.sources = {{{0.0, 1.0}}};
    Model vector(DistortedBlock(), problem);
    vector.run.control.state.FactorFlag = 0;
    testmodel::FormSystem(vector.run);
    EXPECT_EQ(SystemEntry(vector.run, 1, 1), 0.0);
    EXPECT_NE(RightHandSide(vector.run)(1), 0.0);
}

} // namespace
} // namespace zurt
