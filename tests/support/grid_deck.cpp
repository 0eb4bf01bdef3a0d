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

std::string FibreCards(const GridDeck& grid) {
    FibreSetCards set;
    for (const Cylinder& cylinder : grid.cylinders)
        set.fibres.push_back({cylinder.from, cylinder.to});
    set.tables = {Five({2, 1}) + Print("%10.2e%10.2e\n%10.4f\n%10.4f\n%10.4f\n", grid.tableEnds[0],
                                       grid.tableEnds[1], 1.0, grid.factors[0], grid.factors[1])};
    const bool spheres = grid.cylinders[0].from == grid.cylinders[0].to;
    return Five({1, static_cast<int>(set.fibres.size()), 0, spheres}, "") +
           Print("%10.6f%10.6f%10.4f\n", grid.cylinders[0].diameter, 1.0, grid.HEQ) +
           FibresOfSet(set, grid.box);
}

// The nodes that start full, fourteen to a card.
std::string StartCards(const GridDeck& grid, int NP) {
    const auto& [x, y, z] = grid.places;
    std::vector<int> full;
    for (std::size_t i = 0; i < x.size(); ++i)
        for (std::size_t k = 0; k < z.size(); ++k)
            for (std::size_t j = 0; j < y.size(); ++j)
                if (grid.startsFull({x[i], y[j], z[k]}))
                    full.push_back(NodeAt(grid, i, j, k));
    full.resize(full.size() / 14 * 14 + 14, 0); // a 0 ends them
    std::string cards =
        Print("%10.3e%5d%5d\n%5d%5d%5d\n%5d\n%10.3e%5d%5d\n", 0.0, 0, 1, 1, 1, NP, 0, 1.0, 1, 0);
    for (auto at = full.begin(); at != full.end(); at += 14)
        cards += Five({at, at + 14});
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

GridDeck::GridDeck() {
    title = "Bricks on a grid";
    fixedFormat = across = true;
    generate = hold = false;
    NDS = NANOCH = 3;
    diffusion = {{-10.0, 1.0}, {10.0, 1.0}};
    gauss = 2;
    NPRINT = IGRAF = 1000;
    NULAZ = -1;
    MAXIT = 40;
    EPSTR = 1e-6;
    IPASS = 1;
}

std::string Build(const GridDeck& grid) {
    BarDeck bar = grid;
    bar.nx = static_cast<int>(grid.places[0].size()) - 1;
    bar.ny = static_cast<int>(grid.places[1].size()) - 1;
    bar.nz = static_cast<int>(grid.places[2].size()) - 1;
    bar.plane = bar.nz == 0;
    bar.groupFactors = grid.D;
    bar.periods = {{grid.steps, grid.size}};
    bar.fibres =
        Five({!grid.cylinders.empty(), 1, 1, grid.NFSTEP, grid.NFITMAX}, "") + Print("%10.6f", grid.FITERR);
    bar.fibres +=
        Five({grid.directions[0], grid.directions[1], grid.directions[2], grid.INDDEG, grid.IHEQ, grid.IDCC},
             "    0    0\n");
    if (grid.IDCC == 0)
        bar.fibres += Print("%16.6e%16.6e\n", grid.D1D, grid.D2D);
    bar.fibres += grid.cylinders.empty() ? "" : FibreCards(grid);
    bar.startCards = StartCards(grid, (bar.nx + 1) * (bar.ny + 1) * (bar.nz + 1));
    return Build(bar);
}

} // namespace zurt_test
