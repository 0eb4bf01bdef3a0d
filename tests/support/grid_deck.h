// Decks of homogenization: bricks or quadrilaterals on a grid of any spacing, cylinders through it, curves by material, start values by place.
#pragma once

#include "support/bar_deck.h"

namespace zurt_test {

/// A sphere (in the plane a circle) when its ends are one.
struct Cylinder {
    Place from, to;
    double diameter;
};

/// Quadrilaterals where z has one place.
struct GridDeck : BarDeck {
    GridDeck();
    std::function<bool(const Place&)> startsFull;     // at 1 instead of 0
    std::vector<double> D;                            // by material
    std::vector<Cylinder> cylinders;                  // none: no fibre card at all
    std::array<double, 2> tableEnds = {1e-3, 1000.0}; // distances of the factor's table
    std::array<double, 2> factors = {1.0, 1.0};       // at them
    int steps = 12;
    double size = 4.0, FITERR = 1e-5;
    int NFSTEP = 12, NFITMAX = 30;
    std::array<int, 3> directions = {1, 0, 0}; // INDFITX, INDFITY, INDFITZ
    int INDDEG = 1, IHEQ = 0, IDCC = 1;
    double HEQ = 1000.0, D1D = 1.0, D2D = 1.0;
};

/// A channel 0 < x < cells of square cells between two reservoirs of the same cross-section, the left one at 1, the rest
/// at 0. Each cell has a cylinder along z in its middle.
struct Channel {
    int cells = 2;
    std::size_t mesh = 8;
    double fraction = 0.2;                     // of the cylinders; 0: fibres too thin for any point
    double reservoir = 40.0, DReservoir = 1e3; // length and coefficient of one
    double step = 4.0;
};

/// Of a cylinder that takes this part of a square cell.
double Diameter(double fraction);

GridDeck Deck(const Channel& channel);

/// Node of column i along x, j along y, k along z, from 0.
int NodeAt(const GridDeck& grid, std::size_t i, std::size_t j, std::size_t k);

std::string Build(const GridDeck& grid);

} // namespace zurt_test
