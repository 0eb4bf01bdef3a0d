#include "support/plane_deck.h"

#include <sstream>

namespace zurt_test {

namespace {

// A card of free format: numbers, and lists of them, with blanks between.
struct CardWriter {
    std::ostringstream out;

    template <class T> void Put(const T& item) { out << item << ' '; }
    void Put(const std::vector<int>& items) {
        for (const int item : items)
            Put(item);
    }
    template <class... Items> void Card(const Items&... items) {
        (Put(items), ...);
        out << '\n';
    }
    void Function(std::size_t number, const Points& points) {
        if (points.empty())
            return;
        Card(number, points.size());
        for (const auto& [x, y] : points)
            Card(x, y);
    }
};

void WriteFunctions(CardWriter& writer, const PlaneDeck& deck, const std::vector<Points>& environments) {
    const auto counts = [](const Points& points) {
        return std::vector<int>{!points.empty(), static_cast<int>(points.size())};
    };
    writer.Card(0, counts(deck.flux), counts(deck.convection), environments.size(),
                environments.empty() ? 0 : environments[0].size(), counts(deck.source),
                counts(deck.emissivity));
    writer.Function(1, deck.source);
    writer.Function(1, deck.flux);
    for (std::size_t i = 0; i < environments.size(); ++i)
        writer.Function(i + 1, environments[i]);
    writer.Function(1, deck.convection);
    writer.Function(1, deck.emissivity);
    if (!deck.emissivity.empty())
        writer.Card("5.67E-8 0");
}

void WriteGroup(CardWriter& writer, const PlaneGroup& group) {
    writer.Card(group.family, group.elements.size(), group.INDAX, group.IZIP, 0, 0);
    const std::vector<int> gauss(static_cast<std::size_t>(group.family), group.gauss);
    writer.Card(1, 1, group.elements[0].nodes.size(), 0, group.IPTG, gauss, group.family == 2 ? "0 1.0" : "");
    int number = 0;
    for (const PlaneElement& element : group.elements)
        if (group.family == 3)
            writer.Card(++number, element.nodes, 0, element.source, "0 0 0 0");
        else
            writer.Card(++number, element.nodes, 0, element.source, "0 0 0 0", element.area);
}

} // namespace

std::string Build(const PlaneDeck& deck) {
    std::vector<Points> environments = deck.environments;
    if (!deck.environment.empty())
        environments = {deck.environment};
    const bool transient = deck.steps > 0;
    const bool iterates =
        deck.conductivity.size() > 1 || deck.convection.size() > 1 || !deck.emissivity.empty();
    CardWriter writer;
    writer.out.precision(16);
    writer.Card("Lines, quadrilaterals, bricks\n1 0 0", deck.solver);
    writer.Card(deck.nodes.size(), deck.groups.size(), 1, transient, transient ? 1 : 2, "0 0 3", deck.ITOR,
                "100000 0");
    writer.Card("1 0 0 60", deck.EPSTR < 1e-10 ? 1e-10 : 0.0, deck.EPSTR, "1 0\n1 0 0 0.0 0");
    if (transient)
        writer.Card(deck.steps, '\n', deck.stepSize);
    int number = 0;
    for (const PlaneNode& node : deck.nodes)
        writer.Card(++number, node.held, node.x, node.y, node.z, node.value, 0);
    writer.Card("0 0 0 0 0 0.0 0 0 0 0 0 0 0 0\n0.0 0.0");
    for (const PlaneGroup& group : deck.groups)
        WriteGroup(writer, group);
    writer.Card(0, 1, deck.conductivity.size(), 0, transient, transient);
    writer.Card("1 0 0 1.0 1.0 1.0 1.0 1E9 -1E9");
    writer.Function(1, deck.conductivity);
    if (transient)
        writer.Function(1, {{0.0, 1.0}});
    WriteFunctions(writer, deck, environments);
    if (transient || iterates)
        writer.Card(deck.start);
    if (!deck.flux.empty() || !environments.empty() || !deck.convection.empty() || !deck.emissivity.empty())
        for (const PlaneGroup& group : deck.groups) {
            for (const PlaneSide& side : group.sides)
                writer.Card(side.element, side.corners, side.functions);
            writer.Card("0/");
        }
    return writer.out.str() + "STOP\n";
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
