#include "results/unv_mesh.h"

#include "core/format.h"
#include "geometry/radial_views.h"

namespace zurt {

namespace {

constexpr std::int32_t kNodeColour = 8;
constexpr std::int32_t kElementColour = 7;

// Columns of the connectivity in the order of the file. The nodes of parabolic elements go round, corners and mid-sides in turn. Bricks
// begin with the face t = -1, whose normal points towards t = +1, and have the four upright edges in between.
constexpr std::int32_t kLinearLine[2] = {1, 2};
constexpr std::int32_t kParabolicLine[3] = {1, 3, 2};
constexpr std::int32_t kLinearPlane[4] = {1, 2, 3, 4};
constexpr std::int32_t kParabolicPlane[8] = {1, 5, 2, 6, 3, 7, 4, 8};
constexpr std::int32_t kLinearBrick[8] = {5, 6, 7, 8, 1, 2, 3, 4};
constexpr std::int32_t kParabolicBrick[20] = {5,  13, 6, 14, 7, 15, 8, 16, 17, 18,
                                              19, 20, 1, 9,  2, 10, 3, 11, 4,  12};

// An element in the file: the descriptor of dataset 71, its nodes and their order.
struct UnvShape {
    std::int32_t descriptor;
    std::int32_t count;
    const std::int32_t* order;
};

// The two shapes of a family, and what the listing says of groups that are neither; lines are always one of them.
struct UnvFamily {
    UnvShape linear, parabolic;
    const char* serbianRestriction;
    const char* englishRestriction;
};

constexpr UnvFamily kLines = {{21, 2, kLinearLine}, {24, 3, kParabolicLine}, nullptr, nullptr};
constexpr UnvFamily kPlanes = {{44, 4, kLinearPlane},
                               {45, 8, kParabolicPlane},
                               " DOZVOLJAVA SAMO 2/D ELEMENTE SA 4 ILI 8 CVOROVA PO ELEMENTU U",
                               " PERMITS ONLY 2/D ELEMENTS WITH 4 OR 8 NODES PER ELEMENT IN"};
constexpr UnvFamily kBricks = {{115, 8, kLinearBrick},
                               {116, 20, kParabolicBrick},
                               " DOZVOLJAVA SAMO 3/D ELEMENTE SA 8 ILI 20 CVOROVA PO ELEMENTU U",
                               " PERMITS ONLY 3/D ELEMENTS WITH 8 OR 20 NODES PER ELEMENT IN"};

// A radial fibre stands in the file as its sub-elements, or not at all.
std::int32_t ElementsInFile(const ElementGroup& group) {
    if (!IsRadial(group))
        return group.NET;
    return group.ISUB4 == 0 ? static_cast<std::int32_t>(group.radial.subElements) : 0;
}

std::int32_t LabelsBefore(const Run& run, const ElementGroup& group) {
    std::int32_t labels = 0;
    for (std::int32_t NGE = 1; NGE < group.NGE; ++NGE)
        labels += ElementsInFile(run.groups[NGE]);
    return labels;
}

void WarnOfNodeCount(Run& run, const ElementGroup& group, const UnvFamily& family) {
    TextUnit& listing = run.units.listing;
    const char* package = "\"IDEAS\"";
    Write(listing, "(/A,A)", Say(run, " GRAFICKI PAKET   ", " GRAPHIC PACKAGE   "), package);
    Write(listing, "(2A,I5)", Say(run, family.serbianRestriction, family.englishRestriction),
          Say(run, " GRUPI   NGE =", " GROUP   NGE ="), group.NGE);
}

bool HasNodesOf(const UnvShape& shape, const IntTable& NEL, Word element) {
    for (std::int32_t k = 0; k < shape.count; ++k)
        if (NEL(element, shape.order[k]) == 0)
            return false;
    return true;
}

void WriteElement(TextUnit& graphics, std::int32_t label, const IntTable& NEL, Word element,
                  const UnvShape& shape) {
    static const Format row("(8I10)");
    Write(graphics, row, label, shape.descriptor, shape.descriptor, 1, 1, kElementColour, shape.count);
    std::int32_t nodes[20];
    for (std::int32_t k = 0; k < shape.count; ++k)
        nodes[k] = NEL(element, shape.order[k]);
    Write(graphics, row, ConstIntArray(nodes, shape.count));
}

void WriteUnvElements(Run& run, const ElementGroup& group, const UnvFamily& family) {
    TextUnit& graphics = run.units.graphics;
    if (!IsOpen(graphics) || run.control.header.IGRAF < 0)
        return;
    if (family.englishRestriction != nullptr && group.NPDMX != family.linear.count &&
        group.NPDMX != family.parabolic.count)
        WarnOfNodeCount(run, group, family);
    const IntTable NEL = Connectivity(run, group);
    const std::int32_t before = LabelsBefore(run, group);
    const bool parabolic = group.NPDMX >= family.parabolic.count;
    Write(graphics, "(I6)", -1);
    Write(graphics, "(I6)", 71);
    for (std::int32_t n = 1; n <= group.NET; ++n)
        WriteElement(graphics, before + n, NEL, n,
                     parabolic && HasNodesOf(family.parabolic, NEL, n) ? family.parabolic : family.linear);
    Write(graphics, "(I6)", -1);
}

} // namespace

void WriteUnvNodes(Run& run) {
    TextUnit& graphics = run.units.graphics;
    if (!IsOpen(graphics) || run.control.header.IGRAF < 0)
        return;
    static const Format row("(4I10,3D13.5)");
    const RealArray x = CoordinateColumn(run, 1), y = CoordinateColumn(run, 2), z = CoordinateColumn(run, 3);
    Write(graphics, "(I6)", -1);
    Write(graphics, "(I6)", 15);
    for (Word i = 1; i <= run.control.header.NP; ++i)
        Write(graphics, row, i, 0, 0, kNodeColour, x(i), y(i), z(i));
    Write(graphics, "(I6)", -1);
}

void WriteUnvElements1D(Run& run, const ElementGroup& group) {
    WriteUnvElements(run, group, kLines);
}

void WriteUnvElements2D(Run& run, const ElementGroup& group) {
    WriteUnvElements(run, group, kPlanes);
}

void WriteUnvElements3D(Run& run, const ElementGroup& group) {
    WriteUnvElements(run, group, kBricks);
}

void WriteUnvElementsRadial(Run& run, const ElementGroup& group) {
    TextUnit& graphics = run.units.graphics;
    if (!IsOpen(graphics) || run.control.header.IGRAF < 0)
        return;
    const IntTable nodes = RadialNodes(run, group);
    const ConstIntArray counts = RadialCount(run, group);
    std::int32_t label = LabelsBefore(run, group);
    Write(graphics, "(I6/I6)", -1, 71);
    for (Word n = 1; n <= nodes.columns; ++n)
        for (Word i = 1; i <= counts(n); ++i) // two neighbours of the column as an element of its own
            WriteElement(graphics, ++label, IntTable(&nodes(i, n), 1, 2), 1, kLines.linear);
    Write(graphics, "(I6)", -1);
}

} // namespace zurt
