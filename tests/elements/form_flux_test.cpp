// Fluxes and coefficients at the nodes, and how a visit treats the working vector and the kinds of run.
#include "elements/nodal_averaging.h"
#include "form_model.h"
#include "support/small_run.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zurt {
namespace {

using namespace testmodel;
using zurt_test::ListingOfStop;

RealArray Result(const Run& run, int number) {
    return RealSection(run.A, run.control.at.LNDS[number], run.control.header.NP);
}

void EvaluateResults(Run& run) {
    run.control.state.ResultsPhaseFlag = 1;
    DispatchElementPhase(run, run.groups[1], run.groups[1].NETIP, kFormPhase);
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
// that stands for another node, another rule than two points a direction, a wrong mean at the mid-side nodes, parts along
// z in the plane.
TEST(FormFlux, PointsStandForTheirNodes) {
    const std::vector<Point> brick = {
        {1, 1, 1},   {-1, 1, 1}, {-1, -1, 1}, {1, -1, 1}, {1, 1, -1},  {-1, 1, -1}, {-1, -1, -1},
        {1, -1, -1}, {0, 1, 1},  {-1, 0, 1},  {0, -1, 1}, {1, 0, 1},   {0, 1, -1},  {-1, 0, -1},
        {0, -1, -1}, {1, 0, -1}, {1, 1, 0},   {-1, 1, 0}, {-1, -1, 0}, {1, -1, 0},  {0, 0, 0}};
    const std::vector<Point> plane = {{1, 1, 0},  {-1, 1, 0}, {-1, -1, 0}, {1, -1, 0}, {0, 1, 0},
                                      {-1, 0, 0}, {0, -1, 0}, {1, 0, 0},   {0, 0, 0}};
    const std::vector<Point> line = {{1, 0, 0}, {-1, 0, 0}, {0, 0, 0}};
    const double g = 0.5773502588272095;
    for (const std::vector<Point>& places : {brick, plane, line}) {
        const int dimension = places.size() == 21 ? 3 : places.size() == 9 ? 2 : 1;
        Mesh mesh;
        mesh.elements.emplace_back();
        for (const Point& at : places) { // the line lies obliquely
            mesh.nodes.push_back(dimension > 1 ? at
                                               : Point{at[0] / 3.0, -2.0 * at[0] / 3.0, 2.0 * at[0] / 3.0});
            mesh.elements[0].push_back(static_cast<int>(mesh.nodes.size()));
        }
        Problem problem = Device();
        problem.dimension = dimension;
        problem.NGAUS = {3, 1, 3};
        problem.conduction = {{{0.0, 0.0}, {1000.0, 1000.0}}};
        Model model(mesh, problem);
        const auto field = [](const Point& at, double factor) {
            return 200.0 + factor * (3.0 * at[0] + 10.0 * at[1] + 100.0 * at[2]);
        };
        const Point gradient = dimension == 3   ? Point{3.0, 10.0, 100.0}
                               : dimension == 2 ? Point{3.0, 10.0, 0.0}
                                                : Point{1.0, -2.0, 2.0};
        for (std::size_t n = 0; n < places.size(); ++n)
            StepSolution(model.run)(static_cast<Word>(n) + 1) = field(places[n], 1.0);
        EvaluateResults(model.run);
        for (std::size_t n = 0; n < places.size(); ++n)
            for (int axis = 0; axis < 3; ++axis) {
                const double D = field(places[n], g), slope = gradient[static_cast<std::size_t>(axis)];
                const Word node = static_cast<Word>(n) + 1;
                EXPECT_NEAR(Result(model.run, 4 + axis)(node), -D * slope, 1e-8) << node;
                EXPECT_NEAR(Result(model.run, 7 + axis)(node), axis < dimension ? D : 0.0, 1e-11) << node;
            }
    }
}

// Faults: a work block that creeps up from visit to visit, lengths of the block, an absent array that takes room, work
// blocks that stay where they must go.
TEST(FormVisit, WorkBlockBeginsAtTheSameWordEveryTime) {
    Mesh line;
    line.nodes = {{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.5, 0.0, 0.0}};
    line.elements = {{1, 2, 3}};
    for (const int NSTAC : {1, 0, -1}) { // -1: the line
        Problem problem;
        problem.dimension = NSTAC < 0 ? 1 : 3;
        problem.NSTAC = problem.NonlinearFlag = NSTAC == 1 ? 1 : 0;
        Model model(NSTAC < 0 ? line : DistortedBlock(), problem);
        testmodel::FormSystem(model.run);
        const Word words = NSTAC < 0 ? 2 * 6 + 9 : (NSTAC == 1 ? 4 : 2) * 36 + 64;
        const std::size_t sections = model.run.A.sections.size();
        for (int i = 0; i < 200; ++i)
            testmodel::FormSystem(model.run);
        EXPECT_EQ(model.run.A.LMAX, model.run.A.LMAXM + words);
        EXPECT_EQ(model.run.A.sections.size(), sections);
    }
}

// Faults: another time integration that forms lines or goes on without a word (bricks: a deck of
// tests/timeint/equilibrium_test.cpp); the matrix flag ignored.
TEST(FormVisit, WhatIsNotFormed) {
    Problem problem;
    problem.INTEB = 2;
    problem.dimension = 1;
    Mesh line;
    line.nodes = {{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}};
    line.elements = {{1, 2}};
    EXPECT_EQ(ListingOfStop([&](TextUnit& unit) {
                  Model lines(line, problem);
                  lines.run.units.console = unit;
                  testmodel::FormSystem(lines.run);
              }),
              " NIJE UGRADJENA ALFA INTEGRACIJA\n");

    Problem sources;
    sources.IZIP = 1;
    sources.sources = {{{0.0, 1.0}}};
    Model vector(DistortedBlock(), sources);
    vector.run.control.state.FactorFlag = 0;
    testmodel::FormSystem(vector.run);
    EXPECT_EQ(SystemEntry(vector.run, 1, 1), 0.0);
    EXPECT_NE(RightHandSide(vector.run)(1), 0.0);
}

TEST(FormVisit, NoRoomForElementMatrices) {
    Problem problem;
    problem.size = Model(DistortedBlock(), problem).run.A.LMAXM + 100;
    const std::string text = ListingOfStop([&](TextUnit& listing) {
        Model tight(DistortedBlock(), problem);
        tight.run.units.listing = listing;
        testmodel::FormSystem(tight.run);
    });
    EXPECT_EQ(
        text.find(
            " UNSUFFICIENT DIMENSION OF WORKING VECTOR A FOR\n ELEMENT MATRIX\n REQUIRED DIMENSION, LMAX ="),
        0U)
        << text;
    EXPECT_TRUE(zurt_test::Contains(text, " AVAILABLE DIMENSION, NTOTA="));
}

} // namespace
} // namespace zurt
