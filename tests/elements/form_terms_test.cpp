// Forming beyond the matrices: time term and residual, values of nodes without an equation, sources, where the
// coefficients come from, fluxes at the nodes, and how a visit treats the working vector and the kinds of run.
#include "elements/forming/nodal_averaging.h"
#include "form_model.h"
#include "geometry/gather.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numeric>

namespace zurt {
namespace {

using namespace testmodel;

constexpr double kQuadrature = 2e-7;

Mesh Block() {
    return BlockOfBricks(2, 1, 1, [](int i, int j, int k) {
        return Point{1.0 * i, 2.0 * j + 0.1 * i, 3.0 * k};
    });
}
constexpr double kVolume = 12.0;

double Sum(RealArray values) {
    return std::accumulate(values.data, values.data + values.length, 0.0);
}

// Faults: the order of precedence of list, equation and outlet; the second form of the gather taken for the first.
TEST(FormTerms, GatherOfOneNode) {
    std::int32_t ID[4] = {3, 0, -1, 1}, entries[4] = {0, 1, 0, 2};
    double T[3] = {1.0, 2.0, 3.0}, T0[3] = {10.0, 20.0, 30.0}, card[4] = {5.0, 6.0, 7.0, 8.0};
    double end[2] = {-1.0, -2.0}, start[2] = {-10.0, -20.0};
    NodalViews views;
    views.ID = ConstIntArray(ID, 4);
    views.T = ConstRealArray(T, 3);
    views.T0 = ConstRealArray(T0, 3);
    views.nodeValues = ConstRealArray(card, 4);
    views.solutionRead = true;
    views.outletStart = 0.5;
    views.outletEnd = 0.25;
    const auto expect = [&](std::int32_t node, double value, double valueAtStart) {
        double TE1 = 99.0, TE0 = 99.0;
        GatherNodeValue(views, node, TE1, TE0);
        EXPECT_EQ(TE1, value) << node;
        EXPECT_EQ(TE0, valueAtStart) << node;
    };
    expect(1, 3.0, 30.0);
    expect(2, 0.25, 0.5);
    expect(3, 0.0, 0.0);
    expect(4, 1.0, 10.0);
    views.prescribedEntry = ConstIntArray(entries, 4);
    views.prescribedStart = ConstRealArray(start, 2);
    views.prescribedEnd = ConstRealArray(end, 2);
    expect(2, -1.0, -10.0);
    expect(4, 1.0, 10.0);
    views.byPrescribedValue = true;
    expect(2, -1.0, -1.0);
    entries[1] = 0;
    expect(2, 6.0, 6.0);
    expect(3, 7.0, 7.0);
    expect(4, 1.0, 10.0);
    views.solutionRead = false;
    expect(1, 0.0, 0.0);
}

// The load of a group at one time; the total over all nodes is QV times the volume.
double Load(Problem problem, double StartTime, double TIME) {
    problem.StartTime = StartTime;
    problem.TIME = TIME;
    Model model(Block(), problem);
    testmodel::FormSystem(model.run);
    return Sum(RightHandSide(model.run)) / kVolume;
}

// Faults: one source function taken by its plain value or several by their mean rate; a step of no length divided by;
// an element's curve mistaken; a load under IZIP 0 or 2; a source number 0 that loads.
TEST(FormTerms, Sources) {
    Problem one;
    one.IZIP = 1;
    one.sources = {{{0.0, 1.0}, {2.0, 5.0}, {9.0, 5.0}}};
    EXPECT_NEAR(Load(one, 0.5, 1.5), 2.0, kQuadrature);   // slope, not value
    EXPECT_NEAR(Load(one, 1.0, 3.0), 1.0, kQuadrature);   // (5 - 3) / 2
    EXPECT_NEAR(Load(one, 1.0, 1.0), 3.0, kQuadrature);   // no length
    EXPECT_NEAR(Load(one, 5.0, 9.0), -1.25, kQuadrature); // no value yet at the exact end: 0 stands for it
    Problem several = one;
    several.sources.push_back({{0.0, 10.0}});
    EXPECT_NEAR(Load(several, 0.5, 1.5), 4.0, kQuadrature);
    several.elementSources = {2, 0};
    EXPECT_NEAR(Load(several, 0.5, 1.5), 5.0, kQuadrature); // half the volume
    for (int IZIP : {0, 2}) {
        several.IZIP = IZIP;
        EXPECT_EQ(Load(several, 0.5, 1.5), 0.0);
    }
    // At its exact end a curve gives no value, and the one before holds: no load of zero in the last step of a run.
    one.sources = {{{0.0, 4.0}, {1.0, 6.0}}, {{0.0, 0.0}, {9.0, 0.0}}};
    one.TIME = 0.5;
    Model model(Block(), one);
    testmodel::FormSystem(model.run);
    model.run.clock.TIME = 1.0;
    testmodel::FormSystem(model.run);
    EXPECT_NEAR(Sum(RightHandSide(model.run)), 5.0 * kVolume, kQuadrature * kVolume);
}

// Sum of the system's diagonal, in units of the same with coefficient 1.
double Stiffness(const Problem& problem, double concentration) {
    Problem unit;
    unit.conduction = {{{0.0, 1.0}}};
    const auto diagonal = [=](const Problem& of) {
        Model model(Block(), of);
        Fill(StepSolution(model.run), concentration);
        testmodel::FormSystem(model.run);
        double sum = 0.0;
        for (Word i = 1; i <= model.run.sizes.JEDN; ++i)
            sum += SystemEntry(model.run, i, i);
        return sum;
    };
    return diagonal(problem) / diagonal(unit);
}

// Faults: the sign of a concentration kept, the material of an element ignored, multipliers applied under NDS, the end of
// a diffusion curve out of range.
TEST(FormTerms, DiffusionCurvesUnderNDS) {
    Problem problem;
    problem.NDS = 1;
    problem.NonlinearFlag = 1;
    problem.IANIZ = 1;
    problem.multipliers = {9.0, 9.0, 9.0};
    problem.conduction = {{{0.0, 1.0}, {2.0, 5.0}}, {{0.0, 7.0}}};
    EXPECT_NEAR(Stiffness(problem, 0.5), 2.0, 1e-12);
    EXPECT_NEAR(Stiffness(problem, -0.5), 2.0, 1e-12);
    EXPECT_NEAR(Stiffness(problem, 2.0 + 5e-11), 5.0, 1e-12);
    problem.elementMaterials = {1, 2};
    EXPECT_NEAR(Stiffness(problem, 0.5), 0.5 * (2.0 + 7.0), 1e-12);
}

// Faults: a curve asked at 0 instead of the concentration, the polynomial of another material or used beside a function,
// limits of the polynomial ignored, density left out.
TEST(FormTerms, NonlinearMaterialTables) {
    Problem problem;
    problem.NonlinearFlag = 1;
    problem.conduction = {{{0.0, 1.0}, {2.0, 5.0}}};
    EXPECT_NEAR(Stiffness(problem, 1.5), 4.0, 1e-12);
    problem.NANLK = 1;
    problem.functions = {{0, 0, 0}};
    problem.maximum = 500.0;
    const double T = 400.0;
    const double K1 = (T * T * 2.38e-07 + 3.140000104904175) * T + (-471.8699951171875 - T * T * 0.00483);
    EXPECT_NEAR(Stiffness(problem, T) / K1, 1.0, 1e-12);

    problem.conduction = {{{0.0, 0.0}, {1000.0, 0.0}}}; // nothing but capacity
    problem.functions = {{1, 0, 0}};
    problem.NSTAC = 1;
    problem.TimeStep = 1.0;
    problem.density = 2.0;
    problem.NANLC = 1;
    for (bool table : {false, true}) {
        problem.capacity = table ? std::vector<Curve>{{{300.0, 6.0}, {500.0, 8.0}}} : std::vector<Curve>{{}};
        Model model(Block(), problem);
        if (!table) {
            model.run.control.counts.MAXTC = 0;
            Fill(SpecificHeatPoints(model.run), 0);
        }
        Fill(StepSolution(model.run), T);
        testmodel::FormSystem(model.run);
        const double c =
            2.0 * ((-1.1699999570846558 - T * T * 7.49e-07) * T + T * T * 0.00253 + 1016.47998046875);
        EXPECT_NEAR(-Sum(RightHandSide(model.run)) / ((table ? 7.0 : c) * kVolume * T), 1.0, kQuadrature);
    }
}

// Faults: the factor of a potential missing under ITOR 2 or there without it; a derivative by x alone.
TEST(FormTerms, SourceOfAPotential) {
    for (int ITOR : {0, 2}) {
        Problem problem;
        problem.dimension = 2;
        problem.ITOR = ITOR;
        problem.IZIP = 1;
        problem.sources = {{{0.0, 0.5}}, {{0.0, 1.0}}};
        Mesh mesh;
        for (int n = 0; n < 25; ++n)
            mesh.nodes.push_back({n % 5 + 0.3 * (n / 5), 1.0 * (n / 5) - 0.2 * (n % 5), 0.0});
        mesh.elements = {{13, 11, 1, 3, 12, 6, 2, 8, 7}, {25, 23, 13, 15, 24, 18, 14, 20, 19}};
        Model model(mesh, problem);
        zurt::Run& run = model.run;
        run.control.header.PotentialFunctionSize = 25;
        run.control.at.LPOT = TakeWords(run.A, "LPOT", 25);
        run.A.LMAXM = run.A.LMAX;
        for (Word n = 1; n <= 25; ++n) {
            const Point& at = mesh.nodes[static_cast<std::size_t>(n) - 1];
            RealSection(run.A, run.control.at.LPOT, 25)(n) = 2.0 * at[0] - 3.0 * at[1];
        }
        testmodel::FormSystem(run);
        EXPECT_NEAR(Sum(RightHandSide(run)) / (8.0 * 1.06), ITOR == 2 ? 13.0 * 0.5 : 0.5, 1e-6);
    }
}

RealArray Result(const Run& run, int number) {
    return RealSection(run.A, run.control.at.LNDS[number], run.control.header.NP);
}

Mesh DistortedBlock() {
    return BlockOfBricks(2, 2, 2, [](int i, int j, int k) {
        return Point{i + 0.05 * ((i + 2 * j + k) % 3), j + 0.3 * i, k + 0.05 * ((2 * i + j + 3 * k) % 4)};
    });
}

// With D(c) = c the coefficient at a node is the concentration at the Gauss point that stands for it. (Means over several
// elements: tests/decks/examples_test.cpp.) Faults: flux of the wrong sign or axis, sums that are not averaged or kept from
// the visit before, the molar mass on the wrong vectors or below 0; a point that stands for another node, another rule than two points a direction, a wrong mean at the mid-side nodes, parts along
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
        Problem problem;
        problem.NDS = problem.NonlinearFlag = 1;
        problem.dimension = dimension;
        problem.NGAUS = {3, 1, 3};
        problem.conduction = {{{0.0, 0.0}, {1000.0, 1000.0}}};
        problem.AMOLAR = dimension == 3 ? 4.0 : dimension == 2 ? -3.0 : 0.0;
        const double molar = dimension == 3 ? 4.0 : 1.0;
        Model model(mesh, problem);
        const auto field = [](const Point& at, double factor) {
            return 200.0 + factor * (3.0 * at[0] + 10.0 * at[1] + 100.0 * at[2]);
        };
        const Point gradient = dimension == 3   ? Point{3.0, 10.0, 100.0}
                               : dimension == 2 ? Point{3.0, 10.0, 0.0}
                                                : Point{1.0, -2.0, 2.0};
        for (std::size_t n = 0; n < places.size(); ++n)
            StepSolution(model.run)(static_cast<Word>(n) + 1) = field(places[n], 1.0);
        for (int visit = 0; visit < 2; ++visit) {
            AddGroupResults(model.run, model.run.groups[1]);
            AverageNodalResults(model.run);
        }
        for (std::size_t n = 0; n < places.size(); ++n)
            for (int axis = 0; axis < 3; ++axis) {
                const double D = field(places[n], g), slope = gradient[static_cast<std::size_t>(axis)];
                const Word node = static_cast<Word>(n) + 1;
                EXPECT_NEAR(Result(model.run, 1 + axis)(node), -molar * D * slope, 1e-7) << node;
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

// Fault: the matrix flag ignored.
TEST(FormVisit, VectorAlone) {
    Problem sources;
    sources.IZIP = 1;
    sources.sources = {{{0.0, 1.0}}};
    Model vector(DistortedBlock(), sources);
    vector.run.clock.FactorFlag = 0;
    testmodel::FormSystem(vector.run);
    EXPECT_EQ(SystemEntry(vector.run, 1, 1), 0.0);
    EXPECT_NE(RightHandSide(vector.run)(1), 0.0);
}

} // namespace
} // namespace zurt
