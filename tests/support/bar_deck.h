// Decks of rectangular blocks of bricks, in free or fixed format, with or without generation cards.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zurt_test {

using Place = std::array<double, 3>;

/// Printf into a string of up to 255 characters.
__attribute__((format(printf, 1, 2))) std::string Print(const char* format, ...);

/// The cards of a constant outlet, without a time multiplier.
std::string OutletCards(int NPOUT2, double CONCOUT0);

/// A table of factors that does not change up to a distance that no point of a mesh reaches.
std::string ConstantTable(double factor);

/// One fibre set; tables: one, or two with IANISY 1.
struct FibreSetCards {
    double diameter = 0.1;
    std::vector<std::vector<Place>> fibres; // of one point: spheres
    std::vector<std::string> tables;
    double boxHigh = 1.0; // of the search box, which begins at 0, in all directions
    int IEHM = 0;
};

/// The cards of a set behind its first one.
std::string FibresOfSet(const FibreSetCards& set, const Place& box);

/// The homogenization card of the set, its card of the curve ends, and the set.
std::string FibreCards(const FibreSetCards& set);

/// The same with one fibre and a constant factor.
std::string OneFibre(int IEHM, double diameter, const std::vector<Place>& points, double factor);

/// A block nx x ny x nz of bricks along x, both end faces x = 0 and x = length held (or free), uniform start.
struct BarDeck {
    int nx = 4, ny = 1, nz = 1;
    double length = 1.0; // in x
    double width = 0.0;  // element size in y and z; 0: as in x
    std::array<std::vector<double>, 3>
        places; // of the nodes along x, y and z, where they are not equally far apart
    std::function<Place(const Place&)>
        shape; // where the node at this place of the block goes; empty: it stays
    bool fixedFormat = false;
    bool generate = true;
    bool plane = false; // quadrilaterals instead of bricks: nz does not count; with NDS and fixed format
    bool axisymmetric = false; // these with y as their radius
    bool across = false;       // nodes numbered across the bar first, for a narrow band; else along x
    int NDS = 0;
    int NANOCH = 0, solver = 0;                  // with NANOCH above 0 a fixed format deck with NDS 1, 2 or 3
    std::array<double, 3> box = {1.0, 1.0, 1.0}; // of the device cards
    std::string fibres;                          // homogenization card and what follows; "": none
    std::string outlet = OutletCards(1, 0.0);    // with NANOCH above 0 and NDS 1 or 3
    bool hold = true;                            // end faces have no equation
    std::function<bool(const Place&)> held;      // instead: which nodes have none
    std::function<int(const Place&)> material;   // of the element with this centre; empty: of its group
    bool steady = false;
    std::vector<std::pair<int, double>> periods = {{10, 0.01}}; // steps, size
    double start = 1.0;
    std::vector<std::pair<int, double>>
        startRanges;        // up to which node, start value; instead of the one value
    std::string startCards; // or two groups of cards in its place
    std::vector<std::pair<double, double>> diffusion = {{-1000.0, 1.0}, {1000.0, 1.0}};
    bool source = false; // uniform volume source by time (IZIP 1)
    std::vector<std::pair<double, double>> sourceCurve = {{0.0, 1.0}};
    int NPRINT = 1, NULAZ = 3, IGRAF = 1, IDIRECTD = 0;
    int INTEB = 1, MAXIT = 30, NJRAP = 1;
    double EPSTA = 0.0, EPSTR = 1e-8;
    int IREST = 1, IPASS = 0; // IPASS 0 prints the first pass, 1 the second
    int groups = 1;           // the block is cut along x into this many groups
    std::vector<double>
        groupFactors; // on the diffusion curve of each group, with NDS; empty: one material for all
    int gauss = 0;    // order of the Gauss rule, with NDS and fixed format; 0: default
    int nodes = 8;    // 8 or 20 to an element
    std::string moreNodes, moreGroups; // cards behind those of the block; the nodes one a card
    int moreGroupCount = 0;
    std::string title = "Block of bricks";
    std::string end = "STOP\n";
};

std::string Build(const BarDeck& bar);

/// Node number at grid position (i, j, k), from 0, of a block of 8-node bricks.
int GridNode(const BarDeck& bar, int i, int j, int k);

} // namespace zurt_test
