#include "support/plane_deck.h"

#include <algorithm>
#include <sstream>

namespace zurt_test {

namespace {

void WriteFunction(std::ostringstream& out, int number, const Points& points) {
    out << number << ' ' << points.size() << '\n';
    for (const auto& point : points)
        out << point.first << ' ' << point.second << '\n';
}

void WriteFunctions(std::ostringstream& out, const PlaneDeck& deck, const std::vector<Points>& environments) {
    using Functions = std::vector<Points>;
    const auto one = [](const Points& points) { return points.empty() ? Functions{} : Functions{points}; };
    const Functions source = one(deck.source), flux = one(deck.flux), convection = one(deck.convection),
                    emissivity = one(deck.emissivity);
    out << '0';
    for (const Functions& functions : {flux, convection, environments, source, emissivity})
        out << ' ' << functions.size() << ' ' << (functions.empty() ? 0 : functions[0].size());
    out << '\n';
    for (const Functions& functions : {source, flux, environments, convection, emissivity})
        for (std::size_t i = 0; i < functions.size(); ++i)
            WriteFunction(out, static_cast<int>(i) + 1, functions[i]);
    if (!emissivity.empty())
        out << "5.67E-8 0\n";
}

void WriteGroup(std::ostringstream& out, const PlaneGroup& group) {
    out << group.family << ' ' << group.elements.size() << ' ' << group.INDAX << ' ' << group.IZIP
        << " 0 0\n";
    const std::size_t most = group.elements[0].nodes.size();
    out << "1 1 " << most << " 0 " << group.IPTG;
    for (int direction = 0; direction < group.family; ++direction)
        out << ' ' << group.gauss;
    out << (group.family == 2 ? " 0 1.0\n" : "\n");
    for (std::size_t e = 0; e < group.elements.size(); ++e) {
        const PlaneElement& element = group.elements[e];
        out << e + 1;
        for (const int node : element.nodes)
            out << ' ' << node;
        out << " 0 " << element.source << " 0 0 0 0";
        if (group.family != 3)
            out << ' ' << element.area;
        out << '\n';
    }
}

void WriteSides(std::ostringstream& out, const PlaneGroup& group) {
    for (const PlaneSide& side : group.sides) {
        out << side.element;
        for (const int node : side.corners)
            out << ' ' << node;
        for (const int function : side.functions)
            out << ' ' << function;
        out << '\n';
    }
    out << "0/\n";
}

} // namespace

std::string Build(const PlaneDeck& deck) {
    std::vector<Points> environments = deck.environments;
    if (!deck.environment.empty())
        environments = {deck.environment};
    const bool transient = deck.steps > 0;
    const bool iterates =
        deck.conductivity.size() > 1 || deck.convection.size() > 1 || !deck.emissivity.empty();
    std::ostringstream out;
    out.precision(16);
    out << "Lines, quadrilaterals, bricks\n1 0 0 " << deck.solver << '\n';
    out << deck.nodes.size() << ' ' << deck.groups.size() << " 1 " << (transient ? 1 : 0) << ' '
        << (transient ? 1 : 2) << " 0 0 3 " << deck.ITOR << " 100000 0\n";
    out << "1 0 0 60 0.0 " << deck.EPSTR << " 1 0\n1 0 0 0.0 0\n";
    if (transient)
        out << deck.steps << '\n' << deck.stepSize << '\n';
    for (std::size_t n = 0; n < deck.nodes.size(); ++n) {
        const PlaneNode& node = deck.nodes[n];
        out << n + 1 << ' ' << (node.held ? 1 : 0) << ' ' << node.x << ' ' << node.y << ' ' << node.z
            << " 0.0 0\n";
    }
    out << "0 0 0 0 0 0.0 0 0 0 0 0 0 0 0\n0.0 0.0\n";
    for (const PlaneGroup& group : deck.groups)
        WriteGroup(out, group);
    out << "0 1 " << deck.conductivity.size() << " 0 " << (transient ? "1 1" : "0 0") << '\n';
    out << "1 0 0 1.0 1.0 1.0 1.0 1E9 -1E9\n";
    WriteFunction(out, 1, deck.conductivity);
    if (transient)
        WriteFunction(out, 1, {{0.0, 1.0}});
    WriteFunctions(out, deck, environments);
    if (transient || iterates)
        out << deck.start << '\n';
    if (!deck.flux.empty() || !environments.empty() || !deck.convection.empty() || !deck.emissivity.empty())
        for (const PlaneGroup& group : deck.groups)
            WriteSides(out, group);
    out << "STOP\n";
    return out.str();
}

int GridNode2D(int nx, int i, int j) {
    return j * (nx + 1) + i + 1;
}

PlaneDeck Rectangle(int nx, int ny, double x1, double x2, double y1, double y2) {
    PlaneDeck deck;
    for (int j = 0; j <= ny; ++j)
        for (int i = 0; i <= nx; ++i)
            deck.nodes.push_back(
                {i == nx ? x2 : x1 + (x2 - x1) * i / nx, j == ny ? y2 : y1 + (y2 - y1) * j / ny});
    PlaneGroup group;
    for (int j = 0; j < ny; ++j)
        for (int i = 0; i < nx; ++i)
            group.elements.push_back({{GridNode2D(nx, i + 1, j + 1), GridNode2D(nx, i, j + 1),
                                       GridNode2D(nx, i, j), GridNode2D(nx, i + 1, j)},
                                      1});
    deck.groups = {group};
    return deck;
}

PlaneSide LeftSide(int nx, int j, const std::vector<int>& functions) {
    return {j * nx + 1, {GridNode2D(nx, 0, j), GridNode2D(nx, 0, j + 1)}, functions};
}

PlaneSide RightSide(int nx, int j, const std::vector<int>& functions) {
    return {(j + 1) * nx, {GridNode2D(nx, nx, j), GridNode2D(nx, nx, j + 1)}, functions};
}

PlaneSide TopSide(int nx, int ny, int i, const std::vector<int>& functions) {
    return {(ny - 1) * nx + i + 1, {GridNode2D(nx, i, ny), GridNode2D(nx, i + 1, ny)}, functions};
}

} // namespace zurt_test
