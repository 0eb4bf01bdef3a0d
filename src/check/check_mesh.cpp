#include "check/check_mesh.h"

#include "check/node_use.h"
#include "geometry/element_walk.h"
#include "geometry/group_views.h"
#include "geometry/jacobian_cause.h"
#include "geometry/radial_views.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace zurt {

namespace {

// The search for an order of corners takes milliseconds; for more elements of a group than these it is left out.
constexpr int kMostCauses = 100;

// Nodes closer than this part of the model's extent lie at one place.
constexpr double kSamePlace = 1e-9;

std::string ElementText(const ElementGroup& group, std::int32_t n) {
    return "element group " + std::to_string(group.NGE) + ", element " + std::to_string(n);
}

Word LineOfElement(const Run& run, const ElementGroup& group, std::int32_t n) {
    const auto NGE = static_cast<std::size_t>(group.NGE);
    const std::vector<std::vector<Word>>& lines = run.check.elementLine;
    return NGE < lines.size() ? LineOf(lines[NGE], n, group.cardLine) : group.cardLine;
}

template <int Family> void CheckElement(ElementWalk<Family>& walk, std::int32_t n, int& causes) {
    TakeWalkElement(walk, n);
    int bad = 0, first = 0;
    double determinant = 0.0;
    for (int p = 0; p < walk.points.count; ++p) {
        JacobianValues<Family> jacobian;
        if (JacobianVolume<Family>(walk.points.point[p].shape, walk.element.CORE, walk.points.active.ND,
                                   jacobian))
            continue;
        if (bad++ == 0) {
            first = p + 1;
            determinant = jacobian.DET;
        }
    }
    if (bad == 0)
        return;
    char text[120];
    std::snprintf(text, sizeof text,
                  ", Gauss point %d: the Jacobian's determinant is %.5g (at %d of %d points)", first,
                  determinant, bad, walk.points.count);
    std::string cause;
    if (causes++ < kMostCauses)
        cause = "; likely cause: " +
                CauseOfJacobian<Family>({walk.points, walk.element.CORE, walk.element.node}, 0, determinant);
    walk.run.check.findings.push_back(
        {LineOfElement(walk.run, walk.group, n), ElementText(walk.group, n) + text + cause});
}

void CheckRepeats(Run& run, const ElementGroup& group) {
    const ConstIntTable NEL = Connectivity(run, group);
    for (std::int32_t n = 1; n <= group.NET; ++n)
        if (const std::int32_t node = RepeatedNode(NEL, n); node != 0)
            run.check.findings.push_back(
                {LineOfElement(run, group, n),
                 ElementText(group, n) + " names node " + std::to_string(node) +
                     " twice: only the sparse solver takes the whole of its matrix, the others a part"});
}

template <int Family> void CheckJacobians(Run& run, const ElementGroup& group) {
    ElementWalk<Family> walk{run, group};
    BeginWalk(walk, group.NGAUS, NodalPlacesOf(run));
    int causes = 0;
    for (std::int32_t n = 1; n <= group.NET; ++n)
        if (walk.NEL(n, 1) != 0)
            CheckElement(walk, n, causes);
}

void CheckCards(Run& run, const ElementGroup& group) {
    for (std::int32_t n = 1; n <= group.NET; ++n)
        if (IsRadial(group) ? RadialCount(run, group)(n) == 0 : Connectivity(run, group)(n, 1) == 0)
            run.check.findings.push_back(
                {group.cardLine,
                 ElementText(group, n) + " has no card; its number is left out between the cards"});
}

// Substructured fibres count none of their nodes: a surface node must belong to another element, too.
void CheckUse(Run& run, const std::vector<std::int32_t>& uses) {
    const ConstIntArray ID = EquationNumbers(run);
    for (std::int32_t node = 1; node <= run.control.header.NP; ++node)
        if (ID(node) > 0 && uses[static_cast<std::size_t>(node)] == 0)
            run.check.findings.push_back({LineOf(run.check.nodeLine, node, run.job.BasicDataLine),
                                          NodeText(run, node) + " has an equation, and no element uses it"});
}

using Cell = std::array<double, 3>;

// Each node's place in units of the distance that counts as none.
std::vector<Cell> CellsOfNodes(const Run& run) {
    const std::int32_t NP = run.control.header.NP;
    std::vector<Cell> cells(static_cast<std::size_t>(NP) + 1);
    double extent = 0.0;
    for (int axis = 0; axis < 3; ++axis) {
        const ConstRealArray X = CoordinateColumn(run, axis + 1);
        const auto ends = std::minmax_element(X.data, X.data + NP);
        extent = std::max(extent, *ends.second - *ends.first);
    }
    for (std::int32_t node = 1; node <= NP && extent > 0.0; ++node)
        for (int axis = 0; axis < 3; ++axis)
            cells[static_cast<std::size_t>(node)][static_cast<std::size_t>(axis)] =
                std::round(CoordinateColumn(run, axis + 1)(node) / (kSamePlace * extent));
    return cells;
}

// Nodes of fibres lie where they lie: only those that isoparametric elements use are compared.
std::vector<std::int32_t> NodesOfFamilies(const Run& run) {
    std::vector<bool> used(static_cast<std::size_t>(run.control.header.NP) + 1);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        if (IsRadial(run.groups[NGE]))
            continue;
        const ConstIntTable NEL = Connectivity(run, run.groups[NGE]);
        for (Word i = 0; i < NEL.rows * NEL.columns; ++i)
            used[static_cast<std::size_t>(NEL.data[i])] = true;
    }
    std::vector<std::int32_t> nodes;
    for (std::int32_t node = 1; node <= run.control.header.NP; ++node)
        if (used[static_cast<std::size_t>(node)])
            nodes.push_back(node);
    return nodes;
}

void CheckPlaces(Run& run) {
    const std::vector<Cell> cells = CellsOfNodes(run);
    std::vector<std::int32_t> nodes = NodesOfFamilies(run);
    const auto cell = [&](std::int32_t node) -> const Cell& { return cells[static_cast<std::size_t>(node)]; };
    std::stable_sort(nodes.begin(), nodes.end(),
                     [&](std::int32_t a, std::int32_t b) { return cell(a) < cell(b); });
    for (std::size_t i = 1; i < nodes.size(); ++i)
        if (cell(nodes[i]) == cell(nodes[i - 1]))
            run.check.findings.push_back({LineOf(run.check.nodeLine, nodes[i], run.job.BasicDataLine),
                                          NodeText(run, nodes[i]) + " lies where node " +
                                              std::to_string(nodes[i - 1]) +
                                              " lies: elements on one are not joined to those on the other"});
}

} // namespace

void CheckMesh(Run& run) {
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        CheckCards(run, group);
        if (IsRadial(group))
            continue;
        CheckRepeats(run, group);
        WithFamily(group, [&](auto family) { CheckJacobians<family.value>(run, group); });
    }
    CheckUse(run, ElementsOfNodes(run));
    CheckPlaces(run);
}

} // namespace zurt
