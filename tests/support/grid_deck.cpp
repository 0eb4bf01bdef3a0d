#include "support/grid_deck.h"

#include "support/bar_deck.h"

#include <cmath>

namespace zurt_test {

namespace {

std::string Five(const std::vector<int>& values, const char* end = "\n") {
    std::string card;
    for (const int value : values)
        card += Print("%5d", value);
    return card + end;
}

Place PlaceOf(const GridDeck& grid, std::size_t i, std::size_t j, std::size_t k) {
    return {grid.places[0][i], grid.places[1][j], grid.places[2][k]};
}

Place Centre(const Place& low, const Place& high) {
    return {(low[0] + high[0]) / 2, (low[1] + high[1]) / 2, (low[2] + high[2]) / 2};
}

/// Visits the nodes in the order of their numbers.
template <class Visit> void ForAllNodes(const GridDeck& grid, const Visit& visit) {
    for (std::size_t i = 0; i < grid.places[0].size(); ++i)
        for (std::size_t k = 0; k < grid.places[2].size(); ++k)
            for (std::size_t j = 0; j < grid.places[1].size(); ++j)
                visit(NodeAt(grid, i, j, k), PlaceOf(grid, i, j, k));
}

std::string FibreCards(const GridDeck& grid) {
    const double diameter = grid.cylinders.front().diameter;
    const bool spheres = grid.cylinders.front().from == grid.cylinders.front().to;
    std::string cards = Five({1, static_cast<int>(grid.cylinders.size()), 0, spheres}, "") +
                        Print("%10.6f%10.6f%10.4f\n\n", diameter, 1.0, grid.HEQ);
    cards += Print("%5d%5d%5d%10.4f%10.4f%10.4f\n", 2, 2, 2, grid.box[0], grid.box[1], grid.box[2]);
    int number = 0;
    for (const Cylinder& cylinder : grid.cylinders) {
        cards += Print("%5d%5d%10.6f\n", ++number, 2, cylinder.diameter);
        int end = 0;
        for (const Place& at : {cylinder.from, cylinder.to})
            cards += Print("%5d%10.4f%10.4f%10.6f\n", ++end, at[0], at[1], at[2]);
    }
    cards += Five({2, 1}) + Print("%10.2e%10.2e\n%10.4f\n", grid.tableEnds[0], grid.tableEnds[1], 1.0);
    return cards + Print("%10.4f\n%10.4f\n", grid.factors[0], grid.factors[1]);
}

std::string Elements(const GridDeck& grid) {
    static const std::size_t corner[8][3] = {{1, 1, 1}, {0, 1, 1}, {0, 0, 1}, {1, 0, 1},
                                             {1, 1, 0}, {0, 1, 0}, {0, 0, 0}, {1, 0, 0}};
    const bool plane = grid.places[2].size() == 1;
    const std::size_t layers = plane ? 1 : grid.places[2].size() - 1;
    std::string cards;
    int number = 0;
    for (std::size_t i = 0; i + 1 < grid.places[0].size(); ++i)
        for (std::size_t k = 0; k < layers; ++k)
            for (std::size_t j = 0; j + 1 < grid.places[1].size(); ++j) {
                cards += Print("%8d", ++number);
                for (std::size_t c = 0; c < (plane ? 4 : 8); ++c)
                    cards += Print("%8d", NodeAt(grid, i + corner[c][0], j + corner[c][1],
                                                 plane ? 0 : k + corner[c][2]));
                const int material = grid.material(
                    Centre(PlaceOf(grid, i, j, k), PlaceOf(grid, i + 1, j + 1, plane ? 0 : k + 1)));
                cards += plane ? Five({material, 0, 0, 0, 0, 0}) : Print("%3d  0  0  0  0  0\n", material);
            }
    return Print("%5d%10d", plane ? 2 : 3, number) + Five({grid.axisymmetric, 0, 0, 0}) +
           Print("%5d     ", 1) + Five({plane ? 4 : 8, 0, 0, 2, 2, plane ? 0 : 2}) + cards;
}

std::string StartCards(const GridDeck& grid, int NP) {
    std::string cards =
        Print("%10.3e%5d%5d\n%5d%5d%5d\n%5d\n%10.3e%5d%5d\n", 0.0, 0, 1, 1, 1, NP, 0, 1.0, 1, 0);
    std::vector<int> full;
    ForAllNodes(grid, [&](int node, const Place& at) {
        if (grid.startsFull(at))
            full.push_back(node);
    });
    full.resize(full.size() / 14 * 14 + 14, 0); // fourteen to a card, a 0 ends them
    for (std::size_t i = 0; i < full.size(); i += 14)
        cards += Five({full.begin() + static_cast<std::ptrdiff_t>(i),
                       full.begin() + static_cast<std::ptrdiff_t>(i) + 14});
    return cards;
}

} // namespace

double Diameter(double fraction) {
    return fraction > 0.0 ? 2.0 * std::sqrt(fraction / std::acos(-1.0)) : 1e-5;
}

GridDeck Deck(const Channel& channel) {
    const double length = channel.cells, width = 1.0 / static_cast<double>(channel.mesh);
    GridDeck grid;
    grid.places = {std::vector<double>{-channel.reservoir, -channel.reservoir / 2}, {}, {0.0, width}};
    for (std::size_t i = 0; i <= channel.mesh * static_cast<std::size_t>(channel.cells); ++i)
        grid.places[0].push_back(static_cast<double>(i) * width);
    for (std::size_t j = 0; j <= channel.mesh; ++j)
        grid.places[1].push_back(static_cast<double>(j) * width);
    for (const double part : {0.5, 1.0})
        grid.places[0].push_back(length + part * channel.reservoir);
    grid.box = {length, 1.0, width};
    for (int cell = 0; cell < channel.cells; ++cell)
        grid.cylinders.push_back(
            {{cell + 0.5, 0.5, 0.0}, {cell + 0.5, 0.5, width}, Diameter(channel.fraction)});
    grid.D = {channel.DReservoir, 1.0};
    grid.material = [length](const Place& at) { return at[0] < 0.0 || at[0] > length ? 1 : 2; };
    grid.startsFull = [](const Place& at) { return at[0] <= 0.0; };
    grid.size = channel.step;
    return grid;
}

int NodeAt(const GridDeck& grid, std::size_t i, std::size_t j, std::size_t k) {
    return static_cast<int>((i * grid.places[2].size() + k) * grid.places[1].size() + j) + 1;
}

std::string Build(const GridDeck& grid) {
    const auto& [x, y, z] = grid.places;
    const int NP = static_cast<int>(x.size() * y.size() * z.size());
    std::string deck = "Bricks on a grid\n2 3 3 0\n";
    deck += Print("%10.4f%10.4f%10.4f\n\n%10d", grid.box[0], grid.box[1], grid.box[2], NP);
    deck += Five({1, static_cast<int>(grid.D.size()), 1, 1, 1000, 0, -1, 0, 1000, grid.IDIRECTD});
    deck += Five({1, 0, 0, grid.MAXIT}, "") +
            Print("%10.2e%10.2e%5d%5d\n%5d%5d\n", 0.0, grid.EPSTR, 1, grid.IPASS, 1, 0);
    deck += Print("%10d\n%10.3e\n", grid.steps, grid.size);
    ForAllNodes(grid, [&](int node, const Place& at) {
        deck += Print("%10d%5d     %15.8e%15.8e%15.8e%15.8e%5d\n", node, grid.held && grid.held(at) ? 1 : 0,
                      at[0], at[1], at[2], 0.0, 0);
    });
    deck += Five({!grid.cylinders.empty(), 1, 1, grid.NFSTEP, grid.NFITMAX}, "");
    deck += Print("%10.6f", grid.FITERR);
    deck += Five({grid.directions[0], grid.directions[1], grid.directions[2], grid.INDDEG, grid.IHEQ,
                  grid.IDCC, 0, 0});
    if (grid.IDCC == 0)
        deck += Print("%16.6e%16.6e\n", grid.D1D, grid.D2D);
    deck += (grid.cylinders.empty() ? "" : FibreCards(grid)) + Elements(grid) + Five({2});
    int material = 0;
    for (const double D : grid.D)
        deck += Five({++material, 2}) + Print("%20.10e%20.10e\n%20.10e%20.10e\n", -10.0, D, 10.0, D);
    deck += "    1    1\n 1.0000e+3\n 1.0000e+0\n 1.0000e+0\n" + OutletCards(1, 0.0);
    return deck + Five({2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}) + StartCards(grid, NP) + "STOP\n";
}

} // namespace zurt_test
