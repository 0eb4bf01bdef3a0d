#include "results/vtu_mesh.h"

#include "core/widened_constants.h"
#include "geometry/group_views.h"
#include "geometry/radial_nodes.h"
#include "geometry/radial_views.h"
#include "microscale/fibre_search.h"
#include "microscale/fibre_step.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace zurt {

namespace {

constexpr std::uint8_t kLineCell = 3;

// Marks of cells: all Gauss points in fibres, some, none.
constexpr std::uint8_t kInFibres = 0, kCutByWall = 1, kInFluid = 2;

struct MeshBuilder {
    const Run& run;
    VtuMesh mesh{};
    // Added points by the points that they lie between, two or eight in rising order: elements side by side share them.
    std::map<std::array<std::int32_t, 8>, std::int32_t> between{};
};

// --- points -------------------------------------------------------------------------------------------------------

void AddNodes(MeshBuilder& builder) {
    const Run& run = builder.run;
    const RealArray x = CoordinateColumn(run, 1), y = CoordinateColumn(run, 2), z = CoordinateColumn(run, 3);
    VtuMesh& mesh = builder.mesh;
    mesh.places.reserve(3 * static_cast<std::size_t>(x.length));
    for (Word i = 1; i <= x.length; ++i) {
        mesh.places.insert(mesh.places.end(), {x(i), y(i), z(i)});
        mesh.node.push_back(static_cast<std::int32_t>(i));
    }
}

std::int32_t AddPoint(VtuMesh& mesh, const double (&place)[3], std::int32_t node) {
    mesh.places.insert(mesh.places.end(), place, place + 3);
    mesh.node.push_back(node);
    return static_cast<std::int32_t>(mesh.node.size()) - 1;
}

// The place of an added point is that of the nodes around it, weighted as their values are.
std::int32_t AddPointBetween(MeshBuilder& builder, const AddedPoint& point) {
    VtuMesh& mesh = builder.mesh;
    mesh.added.push_back(point);
    mesh.node.push_back(0);
    ValuesAtAddedPoints(mesh, 3, mesh.places);
    return static_cast<std::int32_t>(mesh.node.size()) - 1;
}

std::int32_t PointBetween(MeshBuilder& builder, const AddedPoint& point) {
    std::array<std::int32_t, 8> key;
    key.fill(-1);
    std::copy(point.from, point.from + point.count, key.begin());
    std::sort(key.begin(), key.end());
    const auto [found, isNew] = builder.between.emplace(key, 0);
    if (isNew)
        found->second = AddPointBetween(builder, point);
    return found->second;
}

// --- cells --------------------------------------------------------------------------------------------------------

struct CellElement {
    const ElementFamily& family;
    ConstIntTable NEL;
    Word number;
};

// The point of a column of the connectivity, -1 for a node that the element lacks.
std::int32_t PointOf(const CellElement& element, int column) {
    return column <= element.NEL.columns ? element.NEL(element.number, column) - 1 : -1;
}

// The middle of the edge between two corners, from 1.
std::int32_t MiddleOfEdge(MeshBuilder& builder, const CellElement& element, int corner, int other) {
    const ElementFamily& family = element.family;
    for (int edge = 0; edge < family.edges; ++edge) {
        const int* ends = family.edgeEnds + Word{2} * edge;
        if ((ends[0] != corner || ends[1] != other) && (ends[0] != other || ends[1] != corner))
            continue;
        const std::int32_t point = PointOf(element, family.corners + 1 + edge);
        if (point >= 0)
            return point;
    }
    return PointBetween(builder, {2, {PointOf(element, corner), PointOf(element, other)}});
}

// The corners of a side go round.
std::int32_t MiddleOfSide(MeshBuilder& builder, const CellElement& element, int side) {
    const int corners = element.family.cornersOfSide;
    const int* corner = element.family.sideCorners + Word{side - 1} * corners;
    AddedPoint point{2 * corners, {}};
    for (int k = 0; k < corners; ++k) {
        point.from[k] = PointOf(element, corner[k]);
        point.from[corners + k] = MiddleOfEdge(builder, element, corner[k], corner[(k + 1) % corners]);
    }
    return PointBetween(builder, point);
}

std::int32_t CellPoint(MeshBuilder& builder, const CellElement& element, int node) {
    const ElementFamily& family = element.family;
    if (node < 0)
        return MiddleOfSide(builder, element, -node);
    const std::int32_t point = PointOf(element, node);
    if (point >= 0)
        return point;
    const int* ends = family.edgeEnds + Word{2} * (node - family.corners - 1);
    return MiddleOfEdge(builder, element, ends[0], ends[1]);
}

// 0 with corners alone, 1 with nodes on edges, 2 with a centre.
int KindOfCell(const CellElement& element) {
    if (PointOf(element, element.family.mostNodes) >= 0)
        return 2;
    for (int column = element.family.corners + 1; column < element.family.mostNodes; ++column)
        if (PointOf(element, column) >= 0)
            return 1;
    return 0;
}

void EndCell(VtuMesh& mesh, std::uint8_t type, const ElementGroup& group, Word element, std::int32_t material,
             std::uint8_t fibreMark) {
    mesh.types.push_back(type);
    mesh.offsets.push_back(static_cast<std::int64_t>(mesh.connectivity.size()));
    mesh.group.push_back(group.NGE);
    mesh.element.push_back(static_cast<std::int32_t>(element));
    mesh.material.push_back(material);
    mesh.fibreMark.push_back(fibreMark);
}

// Under the equivalent medium all elements take part.
bool FibresInForce(const Run& run) {
    return run.fibres.dimension != 0 && run.fit.IEHM == 0;
}

std::uint8_t FibreMarkOf(const Run& run, const ElementGroup& group, Word element) {
    if (!FibresInForce(run))
        return kInFluid;
    const FibreGroup& fibres = run.fibres.groups[static_cast<std::size_t>(group.NGE)];
    if (fibres.elementMark.empty())
        return kInFluid;
    if (!ElementMarked(fibres, element))
        return kInFibres;
    if (!fibres.cutNumber.empty() && fibres.cutNumber[static_cast<std::size_t>(element - 1)] != 0)
        return kCutByWall;
    const GaussFibreRecord* records = fibres.records.data() + (element - 1) * fibres.points;
    const bool fluid = std::all_of(records, records + fibres.points,
                                   [](const GaussFibreRecord& record) { return record.wall > 0.0; });
    return fluid ? kInFluid : kCutByWall;
}

void AddFamilyCells(MeshBuilder& builder, const ElementGroup& group) {
    const Run& run = builder.run;
    const ElementFamily& family = FamilyOf(group);
    const ViewerShape& shape = *family.viewer;
    const ConstIntTable NEL = Connectivity(run, group);
    const ConstIntArray materials = ElementMaterials(run, group);
    const int counts[3] = {family.corners, family.corners + family.edges, shape.count};
    std::vector<std::int32_t>& connectivity = builder.mesh.connectivity;
    connectivity.reserve(connectivity.size() + static_cast<std::size_t>(Word{group.NET} * family.corners));
    for (Word n = 1; n <= group.NET; ++n) {
        const CellElement element{family, NEL, n};
        const int kind = KindOfCell(element);
        for (int k = 0; k < counts[kind]; ++k) {
            const std::int32_t point = CellPoint(builder, element, shape.nodes[k]);
            connectivity.push_back(point);
        }
        EndCell(builder.mesh, static_cast<std::uint8_t>(shape.types[kind]), group, n,
                materials.length > 0 ? materials(n) : group.MAT, FibreMarkOf(run, group, n));
    }
}

void AddLine(VtuMesh& mesh, std::int32_t point, std::int32_t other, const ElementGroup& group, Word fibre) {
    mesh.connectivity.insert(mesh.connectivity.end(), {point, other});
    EndCell(mesh, kLineCell, group, fibre, 0, kInFluid);
}

void AddAssembledFibres(VtuMesh& mesh, const Run& run, const ElementGroup& group) {
    const ConstIntTable nodes = RadialNodes(run, group);
    const ConstIntArray counts = RadialCount(run, group);
    for (Word fibre = 1; fibre <= group.NET; ++fibre)
        for (Word k = 1; k <= counts(fibre); ++k)
            AddLine(mesh, nodes(k, fibre) - 1, nodes(k + 1, fibre) - 1, group, fibre);
}

// A substructured fibre is a line along x from its centre, as long as its radius.
void AddSubstructuredFibres(VtuMesh& mesh, const Run& run, const ElementGroup& group) {
    const ConstIntArray counts = RadialCount(run, group);
    const ConstRealArray radius = RealSection(run.A, group.radial.LRADIUS, group.NET);
    std::int32_t number = run.control.header.NP + static_cast<std::int32_t>(InnerNodesBefore(run, group.NGE));
    for (Word fibre = 1; fibre <= group.NET; ++fibre) {
        const double* centre = &group.radial.centres[3 * static_cast<std::size_t>(fibre - 1)];
        for (Word k = 0; k <= counts(fibre); ++k) {
            const double r = radius(fibre) * static_cast<double>(k) / static_cast<double>(counts(fibre));
            const std::int32_t point = AddPoint(mesh, {centre[0] + r, centre[1], centre[2]},
                                                k < counts(fibre) ? ++number : 0); // last: the surface
            ++mesh.radialPoints;
            if (k > 0)
                AddLine(mesh, point - 1, point, group, fibre);
        }
    }
}

// --- fluid --------------------------------------------------------------------------------------------------------

void MeasureWallDistances(MeshBuilder& builder) {
    VtuMesh& mesh = builder.mesh;
    const FibreSearch search = SearchOverMesh(builder.run, builder.run.fibres, mesh.points);
    for (std::size_t i = 0; i < mesh.node.size(); ++i) {
        const double* place = &mesh.places[3 * i];
        const double X[3] = {place[0], place[1], search.planar ? 0.0 : place[2]};
        const NearestFibre nearest = SearchNearestFibre(search, X);
        mesh.wallDistance.push_back(nearest.fibre < 0 ? std::nan("") : WallDistance(nearest));
    }
}

// Nodes that no element outside fibres has, and those of the others that lie in a fibre; none of radial elements, whose
// nodes stand for a place of their own.
void MaskNodesInFibres(MeshBuilder& builder) {
    const Run& run = builder.run;
    VtuMesh& mesh = builder.mesh;
    const Word NP = run.control.header.NP;
    std::vector<std::int32_t> radial(static_cast<std::size_t>(NP), 0);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (IsRadial(run.groups[NGE]))
            MarkRadialNodes(run, run.groups[NGE], IntArray(radial.data(), NP));
    const ConstIntArray marks = IntSection(run.A, run.control.at.LFIBN, NP);
    for (Word i = 1; i <= NP; ++i) {
        const auto place = static_cast<std::size_t>(i - 1);
        const bool inFibre = marks(i) < 1 || mesh.wallDistance[place] <= kDistanceTolerance;
        if (inFibre && radial[place] == 0)
            mesh.fluid[place] = 0;
    }
    const std::size_t first = mesh.node.size() - mesh.added.size();
    for (std::size_t k = 0; k < mesh.added.size(); ++k)
        for (int j = 0; j < mesh.added[k].count; ++j)
            if (mesh.fluid[static_cast<std::size_t>(mesh.added[k].from[j])] == 0)
                mesh.fluid[first + k] = 0;
}

} // namespace

VtuMesh MakeVtuMesh(const Run& run) {
    MeshBuilder builder{run};
    AddNodes(builder);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (IsRadial(run.groups[NGE]) && run.groups[NGE].radial.substructured)
            AddSubstructuredFibres(builder.mesh, run, run.groups[NGE]);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        if (!IsRadial(group))
            AddFamilyCells(builder, group);
        else if (!group.radial.substructured)
            AddAssembledFibres(builder.mesh, run, group);
    }
    VtuMesh& mesh = builder.mesh;
    mesh.points = static_cast<std::int32_t>(mesh.node.size());
    mesh.cells = static_cast<std::int32_t>(mesh.types.size());
    mesh.fluid.assign(mesh.node.size(), 1);
    if (run.fibres.dimension != 0)
        MeasureWallDistances(builder);
    if (FibresInForce(run))
        MaskNodesInFibres(builder);
    return std::move(mesh);
}

void ValuesAtAddedPoints(const VtuMesh& mesh, int components, std::vector<double>& values) {
    const std::size_t points = mesh.node.size(), width = static_cast<std::size_t>(components);
    const std::size_t first = points - mesh.added.size();
    for (std::size_t point = values.size() / width; point < points; ++point) {
        const AddedPoint& added = mesh.added[point - first];
        for (std::size_t c = 0; c < width; ++c) {
            double sum = 0.0;
            for (int k = 0; k < added.count; ++k) {
                const double weight = added.count == 2 ? 0.5 : k < 4 ? -0.25 : 0.5;
                sum += weight * values[static_cast<std::size_t>(added.from[k]) * width + c];
            }
            values.push_back(sum);
        }
    }
}

} // namespace zurt
