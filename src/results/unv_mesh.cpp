#include "results/unv_mesh.h"

#include "core/format.h"
#include "geometry/radial_views.h"
#include "results/rows.h"

namespace zurt {

namespace {

constexpr std::int32_t kNodeColour = 8;
constexpr std::int32_t kElementColour = 7;

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

void WarnOfNodeCount(Run& run, const ElementGroup& group, const ElementFamily& family) {
    TextUnit& listing = run.units.listing;
    const char* package = "\"IDEAS\"";
    Write(listing, "(/A,A)", Say(run, " GRAFICKI PAKET   ", " GRAPHIC PACKAGE   "), package);
    Write(listing, "(2A,I5)", Say(run, family.restriction[0], family.restriction[1]),
          Say(run, " GRUPI   NGE =", " GROUP   NGE ="), group.NGE);
}

bool HasNodesOf(const GraphicsShape& shape, const IntTable& NEL, Word element) {
    for (std::int32_t k = 0; k < shape.count; ++k)
        if (NEL(element, shape.columns[k]) == 0)
            return false;
    return true;
}

void WriteElement(TextUnit& graphics, std::int32_t label, const IntTable& NEL, Word element,
                  const GraphicsShape& shape) {
    static const Format row("(8I10)");
    Write(graphics, row, label, shape.descriptor, shape.descriptor, 1, 1, kElementColour, shape.count);
    std::int32_t nodes[20];
    for (std::int32_t k = 0; k < shape.count; ++k)
        nodes[k] = NEL(element, shape.columns[k]);
    Write(graphics, row, ConstIntArray(nodes, shape.count));
}

void WriteFamilyElements(Run& run, const ElementGroup& group) {
    const ElementFamily& family = FamilyOf(group);
    const GraphicsShape &linear = *family.linear, &parabolic = *family.parabolic;
    TextUnit& graphics = run.units.graphics;
    if (family.restriction[0] != nullptr && group.NPDMX != linear.count && group.NPDMX != parabolic.count)
        WarnOfNodeCount(run, group, family);
    const IntTable NEL = Connectivity(run, group);
    const std::int32_t before = LabelsBefore(run, group);
    const bool tryParabolic = group.NPDMX >= parabolic.count;
    Write(graphics, "(I6)", -1);
    Write(graphics, "(I6)", 71);
    for (std::int32_t n = 1; n <= group.NET; ++n)
        WriteElement(graphics, before + n, NEL, n,
                     tryParabolic && HasNodesOf(parabolic, NEL, n) ? parabolic : linear);
    Write(graphics, "(I6)", -1);
}

void WriteRadialElements(Run& run, const ElementGroup& group) {
    TextUnit& graphics = run.units.graphics;
    const IntTable nodes = RadialNodes(run, group);
    const ConstIntArray counts = RadialCount(run, group);
    std::int32_t label = LabelsBefore(run, group);
    Write(graphics, "(I6/I6)", -1, 71);
    for (Word n = 1; n <= nodes.columns; ++n)
        for (Word i = 1; i <= counts(n); ++i) // two neighbours of the column as an element of its own
            WriteElement(graphics, ++label, IntTable(&nodes(i, n), 1, 2), 1, FamilyShape<1>::kLinear);
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
    WriteRows(run, graphics, row, run.control.header.NP, RowStatements::Each,
              [&](RecordWriter& writer, Word i) {
                  for (const Word number : {i, Word{0}, Word{0}, Word{kNodeColour}})
                      Put(writer, number);
                  for (const RealArray* axis : {&x, &y, &z})
                      Put(writer, (*axis)(i));
              });
    Write(graphics, "(I6)", -1);
}

void WriteUnvElements(Run& run, const ElementGroup& group) {
    if (!IsOpen(run.units.graphics) || run.control.header.IGRAF < 0)
        return;
    if (!IsRadial(group))
        WriteFamilyElements(run, group);
    else if (group.ISUB4 == 0)
        WriteRadialElements(run, group);
}

} // namespace zurt
