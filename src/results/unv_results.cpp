#include "results/unv_results.h"

#include "core/format.h"
#include "geometry/radial_views.h"
#include "results/nodal_values.h"
#include "results/rows.h"

#include <string_view>

namespace zurt {

namespace {

struct DatasetHead {
    const char* name;
    const char*
        constants; // model type, analysis type, data characteristic, specific data type, data type, components
};

constexpr DatasetHead kConcentrations = {"CVORNE KONCENTRACIJE",
                                         "         2         1         1         5         2         1"};
constexpr DatasetHead kMassFlux = {"MASS FLUX",
                                   "         2         1         1         7         2         1"};
constexpr DatasetHead kMassFluxPerSurface = {"MASS FLUX PER UNIT TIME AND SURFACE",
                                             "         2         1         1         9         2         1"};
constexpr DatasetHead kCoefficients = {"DIFFUSION COEFFICIENT",
                                       "         2         1         1        14         2         1"};

void WriteHead(Run& run, const DatasetHead& head) {
    TextUnit& graphics = run.units.graphics;
    Write(graphics, "(I6)", -1);
    Write(graphics, "(I6)", 55);
    Write(graphics, "(A)", std::string_view(run.control.header.title, kTitleLength));
    Write(graphics, "(A)", head.name);
    Write(graphics, "('DATUM')");
    Write(graphics, "('PRAZNA')");
    Write(graphics, "('SLUCAJ OPTERECENJA:',I10)", run.outputs.GraphicsWritten);
    Write(graphics, "(A)", head.constants);
    Write(graphics, "('         1         1',I10)", run.outputs.GraphicsWritten);
    Write(graphics, "(D13.5)", run.clock.TIME);
}

void WriteEnd(Run& run) {
    Write(run.units.graphics, "(I6)", -1);
}

const Format& ScalarRow() {
    static const Format row("(I10/D13.5)");
    return row;
}

// Rows of a substructured group: the inner nodes of each fibre, from its axis outward. Returns the last number.
Word WriteRadialNodes(Run& run, const ElementGroup& group, Word number) {
    const ConstRealTable values = FibreValue(run, group);
    const ConstIntArray counts = RadialCount(run, group);
    for (Word n = 1; n <= values.columns; ++n)
        for (Word k = 1; k <= counts(n); ++k)
            Write(run.units.graphics, ScalarRow(), ++number, values(k, n));
    return number;
}

void WriteConcentrations(Run& run, ConstRealArray values) {
    WriteHead(run, kConcentrations);
    WriteRows(run, run.units.graphics, ScalarRow(), values.length, RowStatements::Each,
              [&](RecordWriter& writer, Word i) {
                  Put(writer, i);
                  Put(writer, values(i));
              });
    Word number = values.length;
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (IsRadial(run.groups[NGE]) && run.groups[NGE].ISUB4 == 1)
            number = WriteRadialNodes(run, run.groups[NGE], number);
    WriteEnd(run);
}

// The three components that begin at nodal vector `first`.
void WriteVectors(Run& run, const DatasetHead& head, int first) {
    static const Format row("(I10/3D13.5)");
    WriteHead(run, head);
    const RealArray x = NodalResultVector(run, first);
    const RealArray y = NodalResultVector(run, first + 1);
    const RealArray z = NodalResultVector(run, first + 2);
    WriteRows(run, run.units.graphics, row, run.control.header.NP, RowStatements::Each,
              [&](RecordWriter& writer, Word i) {
                  Put(writer, i);
                  for (const RealArray* component : {&x, &y, &z})
                      Put(writer, ResultAt(*component, i));
              });
    WriteEnd(run);
}

} // namespace

void WriteUnvResults(Run& run) {
    if (!IsOpen(run.units.graphics))
        return;
    const RealArray values = NodalValues(run);
    SetNegligibleToZero(values);
    WriteConcentrations(run, values);
    for (int k = 1; k <= 3; ++k)
        SetNegligibleToZero(NodalResultVector(run, k));
    WriteVectors(run, kMassFlux, 1);
    WriteVectors(run, kMassFluxPerSurface, 4);
    WriteVectors(run, kCoefficients, 7);
}

} // namespace zurt
