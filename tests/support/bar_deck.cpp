#include "support/bar_deck.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace zurt_test {

std::string Print(const char* format, ...) {
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

std::string OutletCards(int NPOUT2, double CONCOUT0) {
    return Print("%5d\n%13.5e\n%5d%5d%5d\n", NPOUT2, CONCOUT0, 0, 0, 0);
}

std::string ConstantTable(double factor) {
    return Print("%5d%5d\n%10.2e%10.2e\n%10.4f\n%10.4f\n%10.4f\n", 2, 1, 1.0, 1.0e6, 1.0, factor, factor);
}

std::string FibresOfSet(const FibreSetCards& set, const Place& box) {
    std::string cards = "\n" + Print("%5d%5d%5d%10.4f%10.4f%10.4f\n", 2, 2, 2, box[0], box[1], box[2]);
    for (const std::vector<Place>& points : set.fibres) {
        cards += Print("%5d%5d\n", 1, static_cast<int>(points.size()));
        for (const auto& [x, y, z] : points)
            cards += Print("%5d%10.6f%10.6f%10.6f\n", 1, x, y, z);
    }
    for (const std::string& table : set.tables)
        cards += table;
    return cards;
}

std::string FibreCards(const FibreSetCards& set) {
    return Print("%5d%5d\n\n%5d%5d%5d%5d%10.6f\n", 1, set.IEHM, 1, static_cast<int>(set.fibres.size()),
                 set.tables.size() == 2, set.fibres[0].size() == 1, set.diameter) +
           FibresOfSet(set, {set.boxHigh, set.boxHigh, set.boxHigh});
}

std::string OneFibre(int IEHM, double diameter, const std::vector<std::array<double, 3>>& points,
                     double factor) {
    return FibreCards({diameter, {points}, {ConstantTable(factor)}, 1.0, IEHM});
}

namespace {

// Grid of node places: corners only, or corners and edge middles (twice as fine, places with two odd indices empty).
struct Grid {
    int stride; // grid steps to an element
    int mx, my, mz;
    std::vector<int> number; // 0: no node there
};

int& NumberAt(Grid& grid, int i, int j, int k) {
    return grid.number[static_cast<std::size_t>((k * grid.my + j) * grid.mx + i)];
}

Grid MakeGrid(const BarDeck& bar) {
    const int stride = bar.nodes == 20 ? 2 : 1;
    Grid grid{stride, bar.nx * stride + 1, bar.ny * stride + 1, bar.plane ? 1 : bar.nz * stride + 1, {}};
    grid.number.assign(static_cast<std::size_t>(grid.mx) * grid.my * grid.mz, 0);
    int next = 0;
    const int slices = bar.across ? grid.mx : 1, sliceLength = bar.across ? 1 : grid.mx;
    for (int s = 0; s < slices; ++s)
        for (int k = 0; k < grid.mz; ++k)
            for (int j = 0; j < grid.my; ++j)
                for (int i = s; i < s + sliceLength; ++i)
                    if (stride == 1 || i % 2 + j % 2 + k % 2 <= 1)
                        NumberAt(grid, i, j, k) = ++next;
    return grid;
}

struct Writer {
    const BarDeck& bar;
    std::string text;

    template <class... Values> void Card(const char* fixed, const char* free, Values... values) {
        text += Print(bar.fixedFormat ? fixed : free, values...);
    }
    void Integers(const std::vector<int>& values, const std::vector<int>& widths = {5}) {
        for (std::size_t i = 0; i < values.size(); ++i)
            text += bar.fixedFormat ? Print("%*d", widths[std::min(i, widths.size() - 1)], values[i])
                                    : Print("%d ", values[i]);
        text += '\n';
    }
    void Reals(const std::vector<double>& values, int width, int digits) {
        for (const double value : values)
            text += bar.fixedFormat ? Print("%*.*e", width, digits, value) : Print("%.17g ", value);
        text += '\n';
    }
};

Place PlaceOf(const BarDeck& bar, const Grid& grid, int i, int j, int k) {
    if (!bar.places[0].empty())
        return {bar.places[0].at(i), bar.places[1].at(j), bar.places[2].at(k)};
    const double width = (bar.width > 0.0 ? bar.width : bar.length / bar.nx) / grid.stride;
    return {i * (bar.length / (bar.nx * grid.stride)), j * width, k * width};
}

void WriteNodes(Writer& writer, Grid& grid) {
    const BarDeck& bar = writer.bar;
    const int last = grid.mx - 1, step = bar.across ? grid.my * grid.mz : 1;
    const bool run = bar.generate && grid.stride == 1 && last >= 3;
    for (int k = 0; k < grid.mz; ++k)
        for (int j = 0; j < grid.my; ++j)
            for (int i = 0; i <= last; ++i) {
                const int number = NumberAt(grid, i, j, k);
                if (number == 0 || (run && i > 1 && i < last - 1))
                    continue;
                const Place at = PlaceOf(bar, grid, i, j, k);
                const bool held = bar.held ? bar.held(at) : bar.hold && (i == 0 || i == last);
                const Place node = bar.shape ? bar.shape(at) : at;
                writer.Card("%10d%5d     %15.8e%15.8e%15.8e%15.8e%5d\n", "%d %d %.17g %.17g %.17g %g %d\n",
                            number, held, node[0], node[1], node[2], 0.0, run && i == 1 ? step : 0);
            }
}

// Corners and then mid-sides of the brick whose low corner stands at (i, j, k), all in grid steps.
std::vector<int> ElementNodes(Grid& grid, int i, int j, int k) {
    static const int corner[8][3] = {{1, 1, 1}, {0, 1, 1}, {0, 0, 1}, {1, 0, 1},
                                     {1, 1, 0}, {0, 1, 0}, {0, 0, 0}, {1, 0, 0}};
    static const int ends[12][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                    {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
    const int s = grid.stride;
    std::vector<int> nodes;
    for (const auto& c : corner)
        nodes.push_back(NumberAt(grid, i + s * c[0], j + s * c[1], grid.mz == 1 ? 0 : k + s * c[2]));
    if (s == 2)
        for (const auto& e : ends)
            nodes.push_back(NumberAt(grid, i + corner[e[0]][0] + corner[e[1]][0],
                                     j + corner[e[0]][1] + corner[e[1]][1],
                                     k + corner[e[0]][2] + corner[e[1]][2]));
    return nodes;
}

// Generated elements lie one step along x apart.
void WriteElement(Writer& writer, Grid& grid, int number, int i, int j, int k, int generated) {
    std::vector<int> nodes = ElementNodes(grid, i * grid.stride, j * grid.stride, k * grid.stride);
    std::vector<int> card = {number};
    card.insert(card.end(), nodes.begin(), nodes.begin() + (writer.bar.plane ? 4 : 8));
    const int step = NumberAt(grid, 1, 0, 0) - NumberAt(grid, 0, 0, 0);
    const Place low = PlaceOf(writer.bar, grid, i, j, k),
                high = PlaceOf(writer.bar, grid, i + 1, j + 1, std::min(k + 1, grid.mz - 1));
    const Place centre = {(low[0] + high[0]) / 2, (low[1] + high[1]) / 2, (low[2] + high[2]) / 2};
    const int material = writer.bar.material ? writer.bar.material(centre) : 0;
    for (int field : {material, writer.bar.source ? 1 : 0, generated > 0 ? step : 0, generated, 0, 0})
        card.push_back(field);
    const std::vector<int> widths = writer.bar.plane ? std::vector<int>{8, 8, 8, 8, 8, 5}
                                                     : std::vector<int>{8, 8, 8, 8, 8, 8, 8, 8, 8, 3};
    writer.Integers(card, widths);
    if (grid.stride == 2) {
        std::vector<int> middles(nodes.begin() + 8, nodes.end());
        middles.push_back(0);
        writer.Integers(middles, widths);
    }
}

void WriteGroups(Writer& writer, Grid& grid) {
    const BarDeck& bar = writer.bar;
    for (int g = 0; g < bar.groups; ++g) {
        const int from = bar.nx * g / bar.groups, to = bar.nx * (g + 1) / bar.groups;
        const int layers = bar.plane ? 1 : bar.nz, material = bar.groupFactors.empty() ? 1 : g + 1;
        writer.Integers(
            {bar.plane ? 2 : 3, (to - from) * bar.ny * layers, bar.axisymmetric, bar.source ? 1 : 0, 0, 0},
            {5, 10, 5});
        if (bar.NDS == 0)
            writer.Integers({1, 1, bar.nodes, 0, 0, 0, 0, 0});
        else
            writer.Card("%5d     %5d    0    0%5d%5d%5d\n", "%d %d 0 0 %d %d %d\n", material,
                        bar.plane ? 4 : bar.nodes, bar.gauss, bar.gauss, bar.plane ? 0 : bar.gauss);
        int number = 0;
        for (int k = 0; k < layers; ++k)
            for (int j = 0; j < bar.ny; ++j) {
                const int count = to - from;
                const bool run = bar.generate && grid.stride == 1 && count > 1 && count <= 1000;
                for (int i = from; i < to; i += run ? count : 1) {
                    WriteElement(writer, grid, number + 1, i, j, k, run ? count - 1 : 0);
                    number += run ? count : 1;
                }
            }
    }
}

// The cards of diffusion curves are always taken by columns.
void WriteDeviceMaterials(Writer& writer) {
    const BarDeck& bar = writer.bar;
    const int points = static_cast<int>(bar.diffusion.size());
    writer.Integers({points, 0, 0, 0, 0, 0});
    const std::vector<double> one = {1.0};
    int material = 0;
    for (const double factor : bar.groupFactors.empty() ? one : bar.groupFactors) {
        writer.text += Print("%5d%5d\n", ++material, points);
        for (const auto& [c, D] : bar.diffusion)
            writer.text += Print("%20.10e%20.10e\n", c, factor * D);
    }
    if (bar.NANOCH > 0)
        writer.text += "    1    1\n 1.0000e+3\n 1.0000e+0\n 1.0000e+0\n"; // correction factor table
    if (bar.NDS != 2)
        writer.text += bar.NANOCH > 0 ? bar.outlet : std::string(bar.fixedFormat ? "    0    0\n" : "0 0\n");
}

void WriteMaterials(Writer& writer) {
    const BarDeck& bar = writer.bar;
    const int points = static_cast<int>(bar.diffusion.size());
    writer.Integers({0, 1, points, 0, 1, 1});
    writer.Card("    1    0    0%10.1f%10.1f%10.1f%10.1f%10.1f%10.1f\n", "1 0 0 %g %g %g %g %g %g\n", 1.0,
                1.0, 1.0, 1.0, 1e6, -1e6);
    writer.Integers({1, points});
    for (const auto& [c, D] : bar.diffusion)
        writer.Reals({c, D}, 20, 10);
    writer.Integers({1, 1});
    writer.Reals({0.0, 1.0}, 10, 3);
}

// As many groups as NPOC says, at least two; always taken by columns.
void WriteStartRanges(Writer& writer) {
    int first = 1;
    for (const auto& [last, value] : writer.bar.startRanges) {
        writer.text += Print("%10.6f%5d%5d\n%5d%5d%5d\n%5d\n", value, 0, 1, first, 1, last, 0);
        first = last + 1;
    }
}

void WriteBoundary(Writer& writer) {
    const BarDeck& bar = writer.bar;
    const int points = static_cast<int>(bar.sourceCurve.size());
    const int ranges = static_cast<int>(bar.startRanges.size()),
              NPOC = bar.startCards.empty() ? std::max(1, ranges) : 2;
    writer.Integers({NPOC, 0, 0, 0, 0, 0, 0, bar.source ? 1 : 0, bar.source ? points : 0, 0, 0});
    if (bar.source) {
        writer.Integers({1, points});
        for (const auto& [t, Q] : bar.sourceCurve)
            writer.Reals({t, Q}, 10, 3);
    }
    const bool nonlinear = bar.diffusion.size() > 1;
    if (!bar.startCards.empty())
        writer.text += bar.startCards;
    else if (ranges > 0)
        WriteStartRanges(writer);
    else if (!bar.steady || nonlinear)
        writer.Reals({bar.start}, 10, 3);
}

} // namespace

int GridNode(const BarDeck& bar, int i, int j, int k) {
    if (bar.across)
        return (i * (bar.nz + 1) + k) * (bar.ny + 1) + j + 1;
    return (k * (bar.ny + 1) + j) * (bar.nx + 1) + i + 1;
}

std::string Build(const BarDeck& bar) {
    Grid grid = MakeGrid(bar);
    int NP = 0;
    for (int number : grid.number)
        NP = number > NP ? number : NP;
    NP += static_cast<int>(std::count(bar.moreNodes.begin(), bar.moreNodes.end(), '\n'));
    Writer writer{bar, ""};
    writer.text =
        bar.title + "\n" + Print("%d %d %d %d\n", bar.fixedFormat ? 2 : 1, bar.NDS, bar.NANOCH, bar.solver);
    if (bar.NANOCH > 0)
        writer.text += Print("%10.4f%10.4f%10.4f\n\n", bar.box[0], bar.box[1], bar.box[2]);
    const int NPER = static_cast<int>(bar.periods.size());
    const int NMATT = std::max(1, static_cast<int>(bar.groupFactors.size()));
    writer.Integers({NP, bar.groups + bar.moreGroupCount, NMATT, bar.steady ? 0 : 1, bar.steady ? 1 : NPER,
                     bar.NPRINT, 0, bar.NULAZ, 0, bar.IGRAF, bar.IDIRECTD},
                    {10, 5});
    writer.Card("%5d    0    0%5d%10.2e%10.2e%5d%5d\n", "%d 0 0 %d %.17g %.17g %d %d\n", bar.INTEB, bar.MAXIT,
                bar.EPSTA, bar.EPSTR, bar.NJRAP, bar.IPASS);
    writer.Card("%5d\n", "%d 0 0 0. 0\n", bar.IREST);
    if (!bar.steady) {
        std::vector<int> steps;
        std::vector<double> sizes;
        for (const auto& [count, size] : bar.periods) {
            steps.push_back(count);
            sizes.push_back(size);
        }
        writer.Integers(steps, {10});
        writer.Reals(sizes, 10, 3);
    }
    WriteNodes(writer, grid);
    writer.text += bar.moreNodes;
    if (!bar.fibres.empty())
        writer.text += bar.fibres;
    else
        writer.text += bar.fixedFormat ? "\n\n" : "0 0 0 0 0 0. 0 0 0 0 0 0 0 0\n0. 0.\n";
    WriteGroups(writer, grid);
    writer.text += bar.moreGroups;
    if (bar.NDS == 0)
        WriteMaterials(writer);
    else
        WriteDeviceMaterials(writer);
    WriteBoundary(writer);
    return writer.text + bar.end;
}

} // namespace zurt_test
