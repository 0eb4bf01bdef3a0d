// Quadrilaterals and lines: what forming and nodal results do differently from bricks.
//
// Gauss abscissae carry single precision, so a quadratic integrand is off by some 4e-8 of its size.
#include "elements/nodal_averaging.h"
#include "form_model.h"
#include "group_deck.h"

#include <gtest/gtest.h>

#include <cmath>

namespace zurt {
namespace {

using namespace testmodel;

constexpr double kQuadrature = 2e-7;

struct Model {
    zurt::Run run;
    Model(const Mesh& mesh, const Problem& problem) { BuildModel(run, mesh, problem); }
    ~Model() { DestroyWorkingVector(run.A); }
};

Problem OfDimension(int dimension) {
    Problem problem;
    problem.dimension = dimension;
    return problem;
}

// 2 x 2 quadrilaterals of 4, 8 or 9 nodes with straight sides, their corners off the unit grid when `distortion` is not 0.
// The nodes stand on a grid twice as fine; those that no element takes stay alone.
Mesh Plane(int columns, double distortion) {
    const auto corner = [&](int i, int j) {
        return Point{i + distortion * ((2 * i + 3 * j) % 4) + 0.3 * j, j - distortion * ((i + j) % 3), 7.0};
    };
    Mesh mesh;
    for (int j = 0; j < 5; ++j)
        for (int i = 0; i < 5; ++i) {
            Point at{};
            for (int a : {i / 2, (i + 1) / 2})
                for (int b : {j / 2, (j + 1) / 2})
                    for (std::size_t c = 0; c < 3; ++c)
                        at[c] += 0.25 * corner(a, b)[c];
            mesh.nodes.push_back(at);
        }
    constexpr int place[9][2] = {{2, 2}, {0, 2}, {0, 0}, {2, 0}, {1, 2}, {0, 1}, {1, 0}, {2, 1}, {1, 1}};
    for (int j : {0, 2})
        for (int i : {0, 2}) {
            mesh.elements.emplace_back();
            for (int k = 0; k < (columns == 4 ? 4 : 9); ++k)
                mesh.elements.back().push_back(k < columns ? 1 + i + place[k][0] + 5 * (j + place[k][1]) : 0);
        }
    return mesh;
}

// A chain of lines from `start` in the direction `way` (of length 1), 2 or 3 nodes each, of unequal lengths.
Mesh Chain(int columns, Point start, Point way) {
    Mesh mesh;
    double s = 0.0;
    for (int n = 0; n < 9; ++n, s += 0.5 + 0.25 * (n / 2 % 3))
        mesh.nodes.push_back({start[0] + s * way[0], start[1] + s * way[1], start[2] + s * way[2]});
    for (int n = 1; n < 9; n += 2) {
        mesh.elements.push_back({n, n + 2});
        if (columns == 3)
            mesh.elements.back().push_back(n + 1);
    }
    return mesh;
}

const Point kOblique = {1.0 / 3.0, -2.0 / 3.0, 2.0 / 3.0};

// --- matrices -----------------------------------------------------------------------------------------------------

// Faults: a wrong derivative, determinant, shape correction or position of a quadrilateral's entry.
TEST(FormPlane, PatchTest) {
    for (int columns : {4, 8, 9})
        for (double distortion : {0.0, 0.05}) {
            Problem problem = OfDimension(2);
            problem.NonlinearFlag = 1;
            problem.NGAUS = columns == 4 ? std::array<int, 3>{2, 2, 2} : std::array<int, 3>{3, 3, 3};
            const Mesh mesh = Plane(columns, distortion);
            Model model(mesh, problem);
            const RealArray T = StepSolution(model.run), R = RightHandSide(model.run);
            for (Word n = 1; n <= T.length; ++n) {
                const Point& at = mesh.nodes[static_cast<std::size_t>(n) - 1];
                T(n) = 2.0 + at[0] - 3.0 * at[1];
            }
            testmodel::FormSystem(model.run);
            double largest = 0.0, total = 0.0;
            for (Word n = 1; n <= R.length; ++n) {
                largest = std::max(largest, std::fabs(R(n)));
                total += R(n);
            }
            EXPECT_GT(largest, 0.1);
            EXPECT_NEAR(total, 0.0, 1e-12);
            for (Word inner : {7, 8, 9, 12, 13, 14, 17, 18, 19})
                EXPECT_NEAR(R(inner), 0.0, (distortion == 0.0 ? 1e-12 : kQuadrature) * largest)
                    << columns << " " << inner;
        }
}

// Closed form: K is KX A/L (1, -1; -1, 1). Faults: a length taken along x, an area left out, KY or KZ for KX.
TEST(FormLine, MatrixOfAnObliqueLine) {
    Problem problem = OfDimension(1);
    problem.functions = {{1, 2, 2}};
    problem.conduction = {{{0.0, 5.0}}, {{0.0, 99.0}}};
    problem.thickness = {1.0, 2.0, 0.25, 3.0};
    const Mesh mesh = Chain(2, {4.0, 5.0, 6.0}, kOblique);
    Model model(mesh, problem);
    testmodel::FormSystem(model.run);
    for (std::size_t e = 0; e < 4; ++e) {
        const auto first = static_cast<Word>(mesh.elements[e][0]),
                   last = static_cast<Word>(mesh.elements[e][1]);
        const double length = (mesh.nodes[2 * e + 2][1] - mesh.nodes[2 * e][1]) / kOblique[1];
        EXPECT_NEAR(SystemEntry(model.run, first, last), -5.0 * problem.thickness[e] / length, 1e-12);
    }
    EXPECT_NEAR(SystemSum(model.run), 0.0, 1e-12);
}

// Faults: a quadratic line whose middle node is not between its ends, a third node 0 that counts.
TEST(FormLine, ThirdNode) {
    Problem problem = OfDimension(1);
    problem.NonlinearFlag = 1;
    const Mesh three = Chain(3, {1.0, 2.0, 3.0}, kOblique);
    Model full(three, problem);
    for (Word n = 1; n <= 9; ++n)
        StepSolution(full.run)(n) = 4.0 * three.nodes[static_cast<std::size_t>(n) - 1][2];
    testmodel::FormSystem(full.run);
    const double gradient = 4.0 * kOblique[2];
    for (Word n = 1; n <= 9; ++n)
        EXPECT_NEAR(RightHandSide(full.run)(n), n == 1 ? gradient : n == 9 ? -gradient : 0.0, kQuadrature);

    Mesh absent = three;
    for (std::vector<int>& element : absent.elements)
        element[2] = 0;
    Model without(absent, problem), two(Chain(2, {1.0, 2.0, 3.0}, kOblique), problem);
    testmodel::FormSystem(without.run);
    testmodel::FormSystem(two.run);
    for (Word i = 1; i <= 9; ++i)
        for (Word j = 1; j <= 9; ++j)
            EXPECT_EQ(SystemEntry(without.run, i, j), SystemEntry(two.run, i, j));
}

// The capacities of a group sum to its measure. Faults: a radius from the wrong row (x for lines, y for quadrilaterals) or
// without INDAX, a factor of two pi, a thickness that acts, an area that does not.
TEST(FormFamilies, Measure) {
    struct Case {
        int dimension, INDAX;
        std::vector<double> thickness;
        double expected;
    };
    Mesh plane, line;
    plane.nodes = {{103.0, 14.0, 9.0}, {100.0, 14.0, 9.0}, {100.0, 12.0, 9.0}, {103.0, 12.0, 9.0}};
    plane.elements = {{1, 2, 3, 4}};
    line.nodes = {{13.0, 104.0, 5.0}, {10.0, 100.0, 5.0}};
    line.elements = {{1, 2}};
    for (const Case& one : {Case{2, 0, {}, 6.0}, Case{2, 1, {}, 6.0 * 13.0}, Case{2, 0, {8.0}, 6.0},
                            Case{1, 0, {}, 5.0}, Case{1, 0, {0.5}, 2.5}, Case{1, -1, {0.5}, 2.5 * 11.5}}) {
        Problem problem = OfDimension(one.dimension);
        problem.INDAX = one.INDAX;
        problem.thickness = one.thickness;
        problem.NSTAC = 1;
        problem.TimeStep = 0.5;
        problem.capacity = {{{0.0, 2.0}}};
        Model model(one.dimension == 2 ? plane : line, problem);
        testmodel::FormSystem(model.run);
        EXPECT_NEAR(SystemSum(model.run), 4.0 * one.expected, 1e-6 * one.expected);
    }
}

// Two rings of one section: with one Gauss point each, their matrices are as their radii.
TEST(FormPlane, RingsAreAsTheirRadii) {
    Mesh mesh;
    for (double y : {1.0, 11.0})
        for (const Point& at :
             {Point{3.0, 1.0, 0.0}, Point{0.0, 1.0, 0.0}, Point{0.0, 0.0, 0.0}, Point{3.0, 0.0, 0.0}})
            mesh.nodes.push_back({at[0], at[1] + y, 0.0});
    mesh.elements = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    Problem problem = OfDimension(2);
    problem.INDAX = 1;
    problem.NGAUS = {1, 1, 1};
    Model model(mesh, problem);
    testmodel::FormSystem(model.run);
    for (Word i = 1; i <= 4; ++i)
        for (Word j = 1; j <= 4; ++j)
            EXPECT_NEAR(SystemEntry(model.run, i + 4, j + 4), 11.5 / 1.5 * SystemEntry(model.run, i, j),
                        1e-13);
    EXPECT_GT(SystemEntry(model.run, 1, 1), 0.1);
}

// --- sources and surfaces -----------------------------------------------------------------------------------------

double Load(const Run& run) {
    double sum = 0.0;
    for (Word i = 1; i <= run.control.state.JEDN; ++i)
        sum += RightHandSide(run)(i);
    return sum;
}

// Faults: the factor of a potential missing under ITOR 2 or there without it; a derivative by x alone.
TEST(FormPlane, SourceOfAPotential) {
    for (int ITOR : {0, 2}) {
        Problem problem = OfDimension(2);
        problem.ITOR = ITOR;
        problem.IZIP = 1;
        problem.sources = {{{0.0, 0.5}}, {{0.0, 1.0}}};
        const Mesh mesh = Plane(9, 0.05);
        Model model(mesh, problem);
        zurt::Run& run = model.run;
        run.control.header.PotentialFunctionSize = 25;
        run.control.at.LPOT = TakeWords(run.A, "LPOT", 25);
        run.A.LMAXM = run.A.LMAX;
        for (Word n = 1; n <= 25; ++n) {
            const Point& at = mesh.nodes[static_cast<std::size_t>(n) - 1];
            RealSection(run.A, run.control.at.LPOT, 25)(n) = 2.0 * at[0] - 3.0 * at[1];
        }
        Problem unit = OfDimension(2);
        unit.NSTAC = 1;
        Model area(mesh, unit);
        testmodel::FormSystem(area.run);
        testmodel::FormSystem(run);
        EXPECT_NEAR(Load(run) / SystemSum(area.run), ITOR == 2 ? 13.0 * 0.5 : 0.5, 1e-6);
    }
}

// One unit square, or a unit line, whose first side has a flux of 3 and convection 5 towards 2.
void AddSurface(Run& run) {
    CurveCounts& counts = run.control.counts;
    Pointers& at = run.control.at;
    const auto take = [&](double value, std::int32_t& functions, std::int32_t& points, Word& countsAt,
                          Word& tableAt) {
        functions = points = 1;
        TakeFunctionTable(run, "curve", 1, 1, countsAt, tableAt);
        IntSection(run.A, countsAt, 1)(1) = 1;
        RealSection(run.A, tableAt, 2)(2) = value;
    };
    take(3.0, counts.NQP, counts.MAXTQP, at.LQP1, at.LQP2);
    take(5.0, counts.NHP, counts.MAXTHP, at.LHP1, at.LHP2);
    take(2.0, counts.NTOK, counts.MAXTOK, at.LTOK1, at.LTOK2);
    ElementGroup& group = run.groups[1];
    group.LNSURF = TakeWords(run.A, "NSURF", 1);
    group.LISURF = TakeWords(run.A, "ISURF", 30);
    ClearWords(run.A, group.LNSURF, run.A.LMAX - 1);
    IntSection(run.A, group.LNSURF, 1)(1) = 1;
    Fill(IntSection(run.A, group.LISURF, 3), 1);
    run.A.LMAXM = run.A.LMAX;
}

// Faults: surface terms left out in the plane, applied to lines, or there when the residual is taken: the convection of a
// problem that does not iterate must not appear in K T.
TEST(FormFamilies, SurfaceTermsOfThePlaneAlone) {
    Mesh mesh;
    mesh.nodes = {{1.0, 1.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}};
    for (int dimension : {1, 2})
        for (int NonlinearFlag : {0, 1}) {
            mesh.elements = {dimension == 2 ? std::vector<int>{1, 2, 3, 4} : std::vector<int>{1, 2}};
            Problem problem = OfDimension(dimension);
            problem.NonlinearFlag = NonlinearFlag;
            Model model(mesh, problem);
            AddSurface(model.run);
            Fill(StepSolution(model.run), 7.0);
            testmodel::FormSystem(model.run);
            const double load = NonlinearFlag == 1 ? 3.0 + 5.0 * (2.0 - 7.0) : 3.0 + 5.0 * 2.0;
            EXPECT_NEAR(Load(model.run), dimension == 2 ? load : 0.0, 1e-12);
            EXPECT_NEAR(SystemSum(model.run), dimension == 2 ? 5.0 : 0.0, 1e-12);
        }
}

// --- the system ---------------------------------------------------------------------------------------------------

std::vector<double> DenseSystem(const Run& run) {
    const Word JEDN = run.control.state.JEDN;
    std::vector<double> dense(static_cast<std::size_t>(JEDN * JEDN));
    if (run.control.state.SparseMode == 0) {
        for (Word i = 1; i <= JEDN; ++i)
            for (Word j = 1; j <= JEDN; ++j)
                dense[static_cast<std::size_t>((i - 1) * JEDN + j - 1)] = SystemEntry(run, i, j);
        return dense;
    }
    std::int32_t count = 0;
    SparseNonzeroCount(count);
    const auto length = static_cast<std::size_t>(count);
    std::vector<std::int32_t> IRN(length), JCN(length);
    std::vector<double> A(length);
    SparseExtract(count, IntArray(IRN.data(), count), IntArray(JCN.data(), count), RealArray(A.data(), count),
                  0);
    SparseKill(0);
    for (std::size_t k = 0; k < length; ++k)
        dense[static_cast<std::size_t>((IRN[k] - 1) * JEDN + JCN[k] - 1)] = A[k];
    return dense;
}

// Faults: a triangle lost or transposed on its way to the tree, an order of rows that only symmetric sizes hide, a node
// without an equation (0 or negative) that reaches the tree, a right-hand side left out.
TEST(FormFamilies, SparseAndSkylineSystemsAgree) {
    const Mesh bricks = BlockOfBricks(3, 2, 2, [](int i, int j, int k) {
        return Point{i + 0.1 * ((j + k) % 3), j + 0.1 * ((i + 2 * k) % 3), k + 0.05 * i};
    });
    const std::pair<int, Mesh> models[] = {
        {3, bricks}, {2, Plane(8, 0.05)}, {2, Plane(4, 0.05)}, {1, Chain(3, {0.0, 0.0, 0.0}, kOblique)}};
    for (const auto& [dimension, whole] : models) {
        Mesh mesh = whole;
        mesh.held = {2, 5};
        std::vector<double> system[2], R[2];
        for (int SparseMode : {0, 1}) {
            Problem problem = OfDimension(dimension);
            problem.SparseMode = SparseMode;
            problem.NonlinearFlag = problem.NSTAC = 1;
            problem.conduction = {{{-100.0, 1.0}, {100.0, 3.0}}};
            Model model(mesh, problem);
            EquationNumbers(model.run)(3) = -1;
            const RealArray T = StepSolution(model.run);
            for (Word i = 1; i <= T.length; ++i)
                T(i) = std::sin(2.0 * static_cast<double>(i));
            testmodel::FormSystem(model.run);
            system[SparseMode] = DenseSystem(model.run);
            const RealArray side = RightHandSide(model.run);
            R[SparseMode].assign(side.data, side.data + side.length);
        }
        EXPECT_EQ(system[0], system[1]);
        EXPECT_EQ(R[0], R[1]);
        EXPECT_GT(std::fabs(system[1].front()), 0.1);
    }
}

// Faults: lines that go on under INTEB 2 or stop without the words, quadrilaterals that say something or form; work blocks
// that stay where they must go or the other way round.
TEST(FormFamilies, VisitsOfTheFamilies) {
    Problem line = OfDimension(1), plane = OfDimension(2);
    Model lines(Chain(3, {0.0, 0.0, 0.0}, kOblique), line), planes(Plane(9, 0.0), plane);
    testmodel::FormSystem(lines.run);
    testmodel::FormSystem(planes.run);
    EXPECT_EQ(lines.run.A.LMAX, lines.run.A.LMAXM + 2 * 6 + 9);
    EXPECT_EQ(planes.run.A.LMAX, planes.run.A.LMAXM);

    planes.run.control.header.INTEB = 2;
    testmodel::FormSystem(planes.run);
    EXPECT_EQ(SystemEntry(planes.run, 1, 1), 0.0);
    EXPECT_EQ(planes.run.A.LMAX, planes.run.A.LMAXM);
    const std::string console = ListingOfStop([&](TextUnit& unit) {
        lines.run.control.header.INTEB = 2;
        lines.run.units.console = unit;
        testmodel::FormSystem(lines.run);
    });
    EXPECT_EQ(console, " NIJE UGRADJENA ALFA INTEGRACIJA\n");
}

// Faults: the message of another family, or without the element.
TEST(FormFamilies, JacobianMessages) {
    for (int dimension : {1, 2}) {
        Mesh mesh = dimension == 2 ? Plane(4, 0.0) : Chain(2, {0.0, 0.0, 0.0}, kOblique);
        if (dimension == 2)
            std::swap(mesh.elements[2][0], mesh.elements[2][1]);
        else
            mesh.elements[2][1] = mesh.elements[2][0];
        const std::string text = ListingOfStop([&](TextUnit& unit) {
            zurt::Run run;
            BuildModel(run, mesh, OfDimension(dimension));
            run.units.listing = unit;
            testmodel::FormSystem(run);
        });
        EXPECT_EQ(
            text.find(dimension == 2
                          ? " ** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ELEMENT No.         3\n"
                          : " ** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ELENMENT No. =         3\n"),
            0U)
            << text;
    }
}

// --- nodal results ------------------------------------------------------------------------------------------------

double Result(const Run& run, int number, Word node) {
    return RealSection(run.A, run.control.at.LNDS[number], run.control.header.NP)(node);
}

void EvaluateResults(Run& run) {
    run.control.state.ResultsPhaseFlag = 1;
    DispatchElementPhase(run, run.groups[1], run.groups[1].NETIP, kFormPhase);
    AverageNodalResults(run);
}

// With D(c) = c the coefficient at a node is the concentration at the Gauss point that stands for it. Faults: a point that
// stands for another corner, a wrong mean at the mid-side nodes, parts along z.
TEST(FormFamilies, PointsStandForTheirNodes) {
    constexpr int place[9][2] = {{1, 1},  {-1, 1}, {-1, -1}, {1, -1}, {0, 1},
                                 {-1, 0}, {0, -1}, {1, 0},   {0, 0}};
    constexpr int onLine[3] = {1, -1, 0};
    const double g = 0.5773502588272095;
    for (int dimension : {1, 2}) {
        Mesh mesh;
        mesh.elements.emplace_back();
        for (int k = 0; k < (dimension == 2 ? 9 : 3); ++k) {
            const double r = dimension == 2 ? place[k][0] : onLine[k];
            mesh.nodes.push_back(dimension == 2 ? Point{r, 1.0 * place[k][1], 5.0}
                                                : Point{r * kOblique[0], r * kOblique[1], r * kOblique[2]});
            mesh.elements[0].push_back(k + 1);
        }
        Problem problem = OfDimension(dimension);
        problem.NDS = problem.NonlinearFlag = 1;
        problem.NGAUS = {3, 1, 1};
        problem.conduction = {{{0.0, 0.0}, {1000.0, 1000.0}}};
        Model model(mesh, problem);
        const auto field = [&](Word n, double factor) {
            return dimension == 2 ? 200.0 + factor * (place[n - 1][0] + 10.0 * place[n - 1][1])
                                  : 200.0 + factor * 3.0 * onLine[n - 1];
        };
        for (Word n = 1; n <= model.run.control.header.NP; ++n)
            StepSolution(model.run)(n) = field(n, 1.0);
        EvaluateResults(model.run);
        const Point gradient = dimension == 2
                                   ? Point{1.0, 10.0, 0.0}
                                   : Point{3.0 * kOblique[0], 3.0 * kOblique[1], 3.0 * kOblique[2]};
        for (Word n = 1; n <= model.run.control.header.NP; ++n) {
            const double D = field(n, g);
            for (int axis = 0; axis < 3; ++axis) {
                EXPECT_NEAR(Result(model.run, 4 + axis, n), -D * gradient[static_cast<std::size_t>(axis)],
                            1e-9)
                    << n;
                EXPECT_NEAR(Result(model.run, 7 + axis, n), axis < dimension ? D : 0.0, 1e-11) << n;
            }
        }
    }
}

} // namespace
} // namespace zurt
