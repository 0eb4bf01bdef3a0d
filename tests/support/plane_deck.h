// Decks of lines, quadrilaterals and bricks with surface records, in free format: nodes and elements one a card.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace zurt_test {

struct PlaneNode {
    double x = 0.0, y = 0.0, z = 0.0;
    bool held = false;
    double value = 0.0; // on the node card
};

struct PlaneElement {
    std::vector<int> nodes;
    int source = 0;
    double area = 0.0;
};

/// A side by its corners, and its functions: flux, convection, environment, emissivity, shape factor.
struct PlaneSide {
    int element = 0;
    std::vector<int> corners;
    std::vector<int> functions;
};

struct PlaneGroup {
    int family = 2; // NETIP
    int INDAX = 0, IZIP = 0, IPTG = 0, gauss = 2;
    std::vector<PlaneElement> elements;
    std::vector<PlaneSide> sides;
};

using Points = std::vector<std::pair<double, double>>;

/// Functions without points are left out of the deck. Steady without steps: two steps, of which the second is the
/// solution also when the problem is linear.
struct PlaneDeck {
    int solver = 0, ITOR = 0;
    int steps = 0;
    double stepSize = 0.0, start = 0.0, EPSTR = 1e-9;
    std::vector<PlaneNode> nodes;
    std::vector<PlaneGroup> groups;
    Points conductivity, source, flux, environment, convection, emissivity;
    std::vector<Points> environments; // instead of the one, when there are several; of one point each
};

std::string Build(const PlaneDeck& deck);

/// A group of nx x ny equal quadrilaterals over a rectangle, nodes and elements row by row along x.
PlaneDeck Rectangle(int nx, int ny, double x1, double x2, double y1, double y2);

/// Node at column i and row j, from 0, of a rectangle with nx elements in a row.
int GridNode2D(int nx, int i, int j);

/// Sides of a rectangle: of row j at its left and right end, of column i at the top.
PlaneSide LeftSide(int nx, int j, const std::vector<int>& functions);
PlaneSide RightSide(int nx, int j, const std::vector<int>& functions);
PlaneSide TopSide(int nx, int ny, int i, const std::vector<int>& functions);

} // namespace zurt_test
