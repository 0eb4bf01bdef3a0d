#include "results/unv_mesh.h"

#include "core/format.h"

namespace zurt {

namespace {

constexpr std::int32_t kNodeColour = 8;
constexpr std::int32_t kElementColour = 7;

// Descriptors of solid bricks in dataset 71.
constexpr std::int32_t kLinearBrick = 115;
constexpr std::int32_t kParabolicBrick = 116;

// Columns of the connectivity in the order of the file: the face t = -1 first, its normal towards t = +1; the
// parabolic brick goes round each face, corners and mid-sides in turn, with the four upright edges in between.
constexpr std::int32_t kLinearOrder[8] = {5, 6, 7, 8, 1, 2, 3, 4};
constexpr std::int32_t kParabolicOrder[20] = {5,  13, 6, 14, 7, 15, 8, 16, 17, 18,
                                              19, 20, 1, 9,  2, 10, 3, 11, 4,  12};

std::int32_t LabelsBefore(const Run& run, const ElementGroup& group) {
    std::int32_t labels = 0;
    for (std::int32_t NGE = 1; NGE < group.NGE; ++NGE)
        labels += run.groups[NGE].NET;
    return labels;
}

void WarnOfNodeCount(Run& run, const ElementGroup& group) {
    TextUnit& listing = run.units.listing;
    const char* package = "\"IDEAS\"";
    Write(listing, "(/A,A)", Say(run, " GRAFICKI PAKET   ", " GRAPHIC PACKAGE   "), package);
    Write(listing, "(2A,I5)",
          Say(run, " DOZVOLJAVA SAMO 3/D ELEMENTE SA 8 ILI 20 CVOROVA PO ELEMENTU U",
              " PERMITS ONLY 3/D ELEMENTS WITH 8 OR 20 NODES PER ELEMENT IN"),
          Say(run, " GRUPI   NGE =", " GROUP   NGE ="), group.NGE);
}

bool HasAllMidSides(const IntTable& NEL, Word element) {
    for (Word k = 9; k <= 20; ++k)
        if (NEL(element, k) == 0)
            return false;
    return true;
}

void WriteElement(TextUnit& graphics, std::int32_t label, const IntTable& NEL, Word element, bool parabolic) {
    static const Format row("(8I10)");
    const std::int32_t descriptor = parabolic ? kParabolicBrick : kLinearBrick;
    const std::int32_t count = parabolic ? 20 : 8;
    const std::int32_t* order = parabolic ? kParabolicOrder : kLinearOrder;
    Write(graphics, row, label, descriptor, descriptor, 1, 1, kElementColour, count);
    std::int32_t nodes[20];
    for (std::int32_t k = 0; k < count; ++k)
        nodes[k] = NEL(element, order[k]);
    Write(graphics, row, ConstIntArray(nodes, count));
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

void WriteUnvElements3D(Run& run, const ElementGroup& group) {
    TextUnit& graphics = run.units.graphics;
    if (!IsOpen(graphics) || run.control.header.IGRAF < 0)
        return;
    if (group.NPDMX != 8 && group.NPDMX != 20)
        WarnOfNodeCount(run, group);
    const IntTable NEL = Connectivity(run, group);
    const std::int32_t before = LabelsBefore(run, group);
    Write(graphics, "(I6)", -1);
    Write(graphics, "(I6)", 71);
    for (std::int32_t n = 1; n <= group.NET; ++n)
        WriteElement(graphics, before + n, NEL, n, group.NPDMX >= 20 && HasAllMidSides(NEL, n));
    Write(graphics, "(I6)", -1);
}

} // namespace zurt
