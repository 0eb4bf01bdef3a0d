#include "../elements/form_model.h"
#include "geometry/element_family.h"
#include "homogenization/homogenization_card.h"
#include "microscale/fibre_models.h"
#include "microscale/fibre_step.h"
#include "results/vtu_mesh.h"
#include "support/expect_stop.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace zurt {
namespace {

using namespace testfibres;
using namespace testmodel;

// A mesh under fibres, with the box of the device cards around it.
struct Medium {
    zurt::Run run;
    FibreModel model;

    Medium(const Mesh& mesh, FibreModel fibres, Problem problem = {}) : model(std::move(fibres)) {
        problem.size = 12000000;
        problem.NDS = 1;
        BuildModel(run, mesh, problem);
        HeaderFields& header = run.control.header;
        for (const Point& node : mesh.nodes) {
            header.ELFIB = std::max(header.ELFIB, node[0]);
            header.DFIB = std::max(header.DFIB, node[1]);
            header.WFIB = std::max(header.WFIB, node[2]);
        }
        run.fit.card.NSETS = static_cast<std::int32_t>(model.sets.size());
        for (FibreSet& set : model.sets)
            if (set.table.NDIST == 0)
                set.table = MakeTable({0.0, 1.0}, {1.0}, {{0.5}, {1.0}});
    }
    ~Medium() { DestroyWorkingVector(run.A); }
    Medium(const Medium&) = delete;
    Medium& operator=(const Medium&) = delete;
};

FibreModel OneSphere(const Point& centre, double DIAM) {
    return MakeModel({MakeSet(kSphereFibres, DIAM, {FibreThrough({centre})})});
}

const double kPi = std::acos(-1.0);

// In the plane a line is a strip and a sphere a circle, and z does not count. (The nearest fibre is the one with the
// nearest axis or centre: the thin strip lies so far off that it is not nearer than the circle's to any point in there.)
TEST(FibreStep, PorosityInThePlane) {
    const Mesh mesh = BlockOfBricks(40, 40, 0, [](int i, int j, int) {
        return Point{i / 40.0, j / 40.0, 0.0};
    });
    Problem problem;
    problem.dimension = 2;
    Medium medium(mesh,
                  MakeModel({MakeSet(kLineFibres, 0.1, {FibreThrough({{0, 0.9, 0}, {1, 0.9, 0}})}),
                             MakeSet(kSphereFibres, 0.5, {FibreThrough({{0.5, 0.4, 0.7}})})}),
                  problem);
    for (FibreSet& set : medium.model.sets)
        set.WALLCUT = 10.0;
    medium.run.fit.IEHM = 1;
    ApplyFibres(medium.run, medium.model);
    EXPECT_NEAR(medium.model.POROSITY, 1 - 0.1 - kPi / 4 * 0.25, 0.004);
    EXPECT_NEAR(medium.model.sets[0].volume, 0.1, 1e-15);
    EXPECT_DOUBLE_EQ(medium.model.HEQ,
                     (medium.model.sets[0].meanDistance + medium.model.sets[1].meanDistance) / 2);
    EXPECT_GT(medium.model.HEQ, 0.0);
    medium.run.fibres = medium.model;
    TakeHeqStart(medium.run);
    EXPECT_EQ(medium.run.fit.HEQ, medium.model.HEQ);
    EXPECT_EQ(medium.run.fit.HEQ0, 0.0) << "HEQ alone is set in the plane, the plain mean of the sets";
}

Mesh Bar(int n) {
    Mesh mesh = BlockOfBricks(n, 1, 1, [](int i, int j, int k) { return Point{1.0 * i, 1.0 * j, 1.0 * k}; });
    mesh.held = {1, 4, n + 2};
    return mesh;
}

// Six bricks in a row; a sphere swallows the third and the fourth. Node i + 7 (j + 2 k) + 1 lies at (i, j, k).
FibreModel SphereInTheBar() {
    return OneSphere({3.0, 0.5, 0.5}, 3.0);
}

// Faults: held nodes freed or numbered, a node of some marked element taken out, heights of swallowed elements or of the
// old numbers left in the layout.
TEST(FibreStep, NodesOutsideTheFluidLeaveTheModel) {
    const Mesh mesh = Bar(6);
    Medium medium(mesh, SphereInTheBar());
    ApplyFibres(medium.run, medium.model);
    EXPECT_EQ(medium.model.groups[1].elementMark, (std::vector<std::int32_t>{1, 1, 0, 0, 1, 1}));
    const ConstIntArray ID = EquationNumbers(medium.run),
                        marks = IntSection(medium.run.A, medium.run.control.at.LFIBN, 28);
    std::int32_t next = 0;
    for (Word node = 1; node <= 28; ++node) {
        const Word i = (node - 1) % 7;
        const std::int32_t mark = i == 0 || i == 6 || i == 2 || i == 4 ? 1 : i == 3 ? 0 : 2;
        EXPECT_EQ(marks(node), mark);
        const bool held = std::count(mesh.held.begin(), mesh.held.end(), node) == 1;
        EXPECT_EQ(ID(node), held ? 0 : mark == 0 ? -1 : ++next) << node;
    }
    EXPECT_EQ(medium.run.sizes.JEDN, next);
    Mesh kept = mesh; // the layout is that of the elements that stay, on these nodes
    kept.elements = {mesh.elements[0], mesh.elements[1], mesh.elements[4], mesh.elements[5]};
    for (int node : {4, 11, 18, 25})
        kept.held.push_back(node);
    const testmodel::Model same(kept, {});
    const IntArray MAXA = DiagonalPositions(medium.run), expected = DiagonalPositions(same.run);
    EXPECT_TRUE(
        std::equal(MAXA.data, MAXA.data + MAXA.length, expected.data, expected.data + expected.length));
    EXPECT_EQ(medium.run.sizes.NWK, same.run.sizes.NWK);
}

// The same bar for viewers: the first brick has a centre, the second a node on one edge. Faults: points that a viewer's element
// has in the wrong place, twice or with another value; distances, marks and fluid of another fibre, or of places inside it.
TEST(VtuMesh, PointsAndMarksOverAFibre) {
    Mesh mesh = Bar(6);
    for (std::vector<int>& element : mesh.elements)
        element.resize(21, 0);
    const auto addNode = [&](std::size_t element, std::size_t column, const Point& place) {
        mesh.nodes.push_back(place);
        mesh.elements[element][column - 1] = static_cast<int>(mesh.nodes.size());
    };
    addNode(0, 21, {0.5, 0.5, 0.5});
    const auto& ends = FamilyShape<3>::kEnds[0];
    Point middle{};
    for (const int end : ends)
        for (std::size_t axis = 0; axis < 3; ++axis)
            middle[axis] +=
                mesh.nodes[static_cast<std::size_t>(mesh.elements[1][static_cast<std::size_t>(end - 1)] - 1)]
                          [axis] /
                2;
    addNode(1, 9, middle);
    Medium medium(mesh, SphereInTheBar());
    ApplyFibres(medium.run, medium.model);
    medium.run.fibres = medium.model;
    const VtuMesh seen = MakeVtuMesh(medium.run);
    EXPECT_EQ(seen.fibreMark, (std::vector<std::uint8_t>{2, 1, 0, 0, 1, 2}));
    EXPECT_EQ(seen.offsets, (std::vector<std::int64_t>{27, 47, 55, 63, 71, 79}));
    EXPECT_GT(seen.added.size(), 20U);

    const auto field = [](const double* X) { return X[0] + 2 * X[1] + 4 * X[2]; };
    std::vector<double> values;
    for (const Point& node : mesh.nodes)
        values.push_back(field(node.data()));
    ValuesAtAddedPoints(seen, 1, values);
    ASSERT_EQ(values.size(), static_cast<std::size_t>(seen.points));
    std::set<std::vector<double>> places;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double* X = &seen.places[3 * i];
        EXPECT_TRUE(places.insert({X[0], X[1], X[2]}).second) << "a place twice";
        EXPECT_NEAR(values[i], field(X), 1e-14);
        EXPECT_NEAR(seen.wallDistance[i], std::hypot(X[0] - 3.0, X[1] - 0.5, X[2] - 0.5) - 1.5, 1e-14);
        const bool isNode = seen.node[i] != 0; // other points are in fluid when all that they lie between are
        EXPECT_EQ(seen.fluid[i], isNode ? seen.wallDistance[i] > 0.0 : X[0] <= 1.0 || X[0] >= 5.0) << X[0];
    }
    for (std::size_t k = 0; k < 27; ++k) // all places of the first brick
        EXPECT_EQ(places.count({static_cast<double>(k % 3) / 2, static_cast<double>(k / 3 % 3) / 2,
                                static_cast<double>(k / 9) / 2}),
                  1U);
    for (std::size_t k = 0; k < 27; ++k)
        EXPECT_LE(seen.places[3 * static_cast<std::size_t>(seen.connectivity[k])], 1.0);
}

// The equivalent medium keeps all nodes, unless a fit begins with fibres; a sparse run has no layout; where every node
// touches fluid nothing is done.
TEST(FibreStep, WhenNodesStayInTheModel) {
    const Mesh mesh = Bar(6);
    for (const int NFIT : {0, 1}) {
        Medium medium(mesh, SphereInTheBar());
        medium.run.fit.IEHM = 1;
        medium.run.fit.card.NFIT = NFIT;
        const std::int32_t before = medium.run.sizes.JEDN;
        ApplyFibres(medium.run, medium.model);
        EXPECT_EQ(medium.run.sizes.JEDN, NFIT == 0 ? before : before - 3); // node 4 is held
    }
    Problem sparse;
    sparse.SparseMode = 1;
    Medium medium(mesh, SphereInTheBar(), sparse);
    const Word NWK = medium.run.sizes.NWK;
    ApplyFibres(medium.run, medium.model);
    EXPECT_EQ(medium.run.sizes.NWK, NWK);
    Medium loose(mesh, OneSphere({3.0, 0.5, 0.5}, 0.1));
    Fill(DiagonalPositions(loose.run), 77);
    ApplyFibres(loose.run, loose.model);
    EXPECT_EQ(DiagonalPositions(loose.run)(5), 77);
}

// Records of elements and points stand where the element loops look for them.
TEST(FibreStep, RecordsByElementAndPoint) {
    Problem problem;
    problem.NGAUS = {1, 2, 3};
    Medium medium(Bar(3), OneSphere({0.0, 0.0, 0.0}, 0.2), problem);
    ApplyFibres(medium.run, medium.model);
    const FibreGroup& group = medium.model.groups[1];
    EXPECT_EQ(group.points, 6);
    // KSI falls with x, ETA with y, ZETA with z: the last point of an element is the nearest to its low corner, but
    // the nodes begin at the high one, so the first natural place is the low end of each axis.
    const double y[2] = {0.5 - 0.5 / std::sqrt(3.0), 0.5 + 0.5 / std::sqrt(3.0)};
    const double z[3] = {0.5 - 0.5 * std::sqrt(0.6), 0.5, 0.5 + 0.5 * std::sqrt(0.6)};
    for (Word n = 1; n <= 3; ++n)
        for (Word p = 1; p <= 6; ++p) {
            const double x = static_cast<double>(n) - 0.5;
            const double r =
                std::sqrt(x * x + y[(p - 1) / 3] * y[(p - 1) / 3] + z[(p - 1) % 3] * z[(p - 1) % 3]);
            EXPECT_NEAR(RecordOf(group, n, p).wall, r - 0.1, 1e-7);
            EXPECT_EQ(RecordOf(group, n, p).set, 1);
        }
}

struct HeqCase {
    double WALLCUT;
    double moleculeRadius;
};

// The mean over nodes of exactly one marked element, for unit bricks in a row and one sphere: shape functions and the
// rule written out.
double ExpectedHeq(int bricks, const Point& centre, double radius, const HeqCase& test) {
    const double g = 0.5773502588272095;
    double total = 0.0;
    int nodes = 0;
    for (int e = 0; e < bricks; ++e)
        for (int corner = 0; corner < 8; ++corner) {
            const int c[3] = {corner & 1, corner >> 1 & 1, corner >> 2};
            if (c[0] == 0 ? e > 0 : e < bricks - 1)
                continue; // shared with the next brick
            double A = 0.0, B = 0.0;
            for (int point = 0; point < 8; ++point) {
                double N = 1.0, square = 0.0;
                for (int axis = 0; axis < 3; ++axis) {
                    const double local = 0.5 + 0.5 * ((point >> axis & 1) == 0 ? -g : g);
                    N *= c[axis] == 1 ? local : 1.0 - local;
                    const double away = local + (axis == 0 ? e : 0) - centre[static_cast<std::size_t>(axis)];
                    square += away * away;
                }
                const double wall = std::sqrt(square) - radius;
                if (wall > test.WALLCUT || wall - test.moleculeRadius <= 1e-6 * bricks)
                    continue;
                A += N / 8;
                B += N / 8 * (wall - test.moleculeRadius);
            }
            if (A <= 1e-6 * bricks)
                continue;
            total += B / A;
            ++nodes;
        }
    return (nodes == 0 ? test.WALLCUT : total / nodes) + test.moleculeRadius;
}

// Faults: nodes of several elements counted, distances beyond WALLCUT kept, the molecule's radius on the wrong side, a set
// without a node given zero, sets weighted by count.
TEST(HeqStart, OneSphereInARowOfBricks) {
    const Point centre = {0.4, 0.45, 0.55};
    for (const HeqCase& test :
         {HeqCase{10.0, 0.0}, HeqCase{10.0, 0.05}, HeqCase{1.4, 0.0}, HeqCase{0.001, 0.02}}) {
        Medium medium(Bar(3), OneSphere(centre, 0.6));
        medium.model.sets[0].WALLCUT = test.WALLCUT;
        FitState& fit = medium.run.fit;
        fit.IEHM = 1;
        fit.card.IDIAM = test.moleculeRadius > 0.0 ? 1 : 0;
        medium.run.control.header.DMOLECULE = test.moleculeRadius > 0.0 ? 2 * test.moleculeRadius : 0.4;
        ApplyFibres(medium.run, medium.model);
        medium.run.fibres = medium.model;
        TakeHeqStart(medium.run);
        const double expected = ExpectedHeq(3, centre, 0.3, test);
        EXPECT_NEAR(fit.HEQ0, expected, 1e-12) << test.WALLCUT;
        EXPECT_EQ(fit.HEQ, fit.HEQ0);
        for (int direction = 1; direction <= 3; ++direction)
            EXPECT_EQ(fit.HEQDIR[direction], fit.HEQ0);
    }
}

TEST(HeqStart, SetsWeighByTheirVolumes) {
    Medium medium(Bar(3), MakeModel({MakeSet(kSphereFibres, 0.6, {FibreThrough({{0.4, 0.45, 0.55}})}),
                                     MakeSet(kLineFibres, 0.2,
                                             {FibreThrough({{0, 2, 0}, {2, 0.5, 0.5}}),
                                              FibreThrough({{1.0, 0.2, 0.2}, {1.1, 0.2, 0.2}})})}));
    medium.model.sets[0].WALLCUT = medium.model.sets[1].WALLCUT = 10.0;
    medium.run.fit.IEHM = 1;
    ApplyFibres(medium.run, medium.model);
    const FibreSet &spheres = medium.model.sets[0], &lines = medium.model.sets[1];
    EXPECT_NEAR(spheres.meanDistance, ExpectedHeq(3, {0.4, 0.45, 0.55}, 0.3, {10.0, 0.0}), 1e-12);
    EXPECT_NEAR(medium.model.HEQ,
                (spheres.meanDistance * spheres.volume + lines.meanDistance * lines.volume) /
                    (spheres.volume + lines.volume),
                1e-14);
    EXPECT_NEAR(medium.model.sets[0].table.factor[1], 1.0, 1e-15); // merged
}

TEST(FibreStep, Errors) {
    Medium flat(Bar(2), OneSphere({0.5, 0.5, 0.5}, 0.1));
    flat.run.control.header.WFIB = 0.0;
    EXPECT_LIBRARY_ERROR(ApplyFibres(flat.run, flat.model), "no depth");
    Medium outside(Bar(2),
                   MakeModel({MakeSet(kLineFibres, 0.1, {FibreThrough({{0, 0.5, 7}, {1, 0.5, 7}})})}));
    EXPECT_LIBRARY_ERROR(ApplyFibres(outside.run, outside.model), "fibre set 1, fibre 1");
}

} // namespace
} // namespace zurt
