#include "results/vtu_results.h"

#include "core/whole_file.h"
#include "geometry/radial_views.h"
#include "results/nodal_values.h"
#include "results/vtk_file.h"
#include "results/vtp_fibres.h"
#include "results/vtu_mesh.h"
#include "run/file_names.h"
#include "run/files.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <memory>

namespace zurt {

namespace {

// The mesh of a problem, which is compressed once.
struct VtuStorage {
    std::int32_t problem = 0;
    VtuMesh mesh;
    std::vector<VtkArray> pointArrays, cellArrays, points, cells;
};

// --- the mesh, once a problem -------------------------------------------------------------------------------------

void CompressMesh(Run& run, VtuStorage& storage) {
    VtuMesh& mesh = storage.mesh;
    storage.pointArrays = {MakeVtkArray(run.workers, "node", 1, mesh.node),
                           MakeVtkArray(run.workers, "fluid", 1, mesh.fluid)};
    if (!mesh.wallDistance.empty())
        storage.pointArrays.push_back(MakeVtkArray(run.workers, "wall_distance", 1, mesh.wallDistance));
    storage.cellArrays = {MakeVtkArray(run.workers, "group", 1, mesh.group),
                          MakeVtkArray(run.workers, "element", 1, mesh.element),
                          MakeVtkArray(run.workers, "material", 1, mesh.material),
                          MakeVtkArray(run.workers, "fibre_mark", 1, mesh.fibreMark)};
    storage.points = {MakeVtkArray(run.workers, "points", 3, mesh.places)};
    storage.cells = {MakeVtkArray(run.workers, "connectivity", 1, mesh.connectivity),
                     MakeVtkArray(run.workers, "offsets", 1, mesh.offsets),
                     MakeVtkArray(run.workers, "types", 1, mesh.types)};
}

// Only what the steps need is kept in its full length.
void FreeMeshArrays(VtuMesh& mesh) {
    mesh.places = mesh.wallDistance = {};
    mesh.connectivity = mesh.group = mesh.element = mesh.material = {};
    mesh.offsets = {};
    mesh.types = mesh.fibreMark = {};
}

std::string ListName(const Run& run) {
    return ViewerName(run.units, run.viewer.problem) + ".pvd";
}

// Nothing where a run goes on within a problem.
void BeginViewerProblem(Run& run) {
    ViewerState& viewer = run.viewer;
    if (viewer.problem == run.job.ProblemNumber)
        return;
    if (viewer.problem == 0)
        RemoveOldViewerFiles(run.units);
    else
        FinishFile(run.units, ListName(run));
    WriteVtpFibres(run);
    viewer = {run.job.ProblemNumber, ""};
}

VtuStorage& StorageOfProblem(Run& run) {
    using Owner = std::shared_ptr<VtuStorage>;
    Owner* owner = std::any_cast<Owner>(&run.vtuStorage);
    if (owner != nullptr && (*owner)->problem == run.job.ProblemNumber)
        return **owner;
    BeginViewerProblem(run);
    run.vtuStorage.reset(); // ahead of the next one, which may be as large
    auto storage = std::make_shared<VtuStorage>();
    storage->problem = run.job.ProblemNumber;
    storage->mesh = MakeVtuMesh(run);
    CompressMesh(run, *storage);
    FreeMeshArrays(storage->mesh);
    run.vtuStorage = storage;
    return *storage;
}

// --- values of a step ---------------------------------------------------------------------------------------------

void AppendRadialValues(const Run& run, std::vector<double>& values) {
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        if (!IsRadial(run.groups[NGE]) || !run.groups[NGE].radial.substructured)
            continue;
        const ConstRealTable fibre = FibreValue(run, run.groups[NGE]);
        const ConstIntArray counts = RadialCount(run, run.groups[NGE]);
        for (Word n = 1; n <= fibre.columns; ++n)
            for (Word k = 1; k <= counts(n) + 1; ++k)
                values.push_back(fibre(k, n));
    }
}

// Elements that a wall cuts have nodes in the fibre, whose values are no concentrations and out of any range.
void BlankNodesInFibres(const VtuMesh& mesh, int components, std::vector<double>& values) {
    const auto width = static_cast<std::size_t>(components);
    for (std::size_t i = 0; i < mesh.fluid.size(); ++i)
        if (mesh.fluid[i] == 0)
            std::fill_n(&values[i * width], width, std::nan(""));
}

bool IsMasked(const VtuMesh& mesh) {
    return std::find(mesh.fluid.begin(), mesh.fluid.end(), 0) != mesh.fluid.end();
}

// Concentrations; with nodes in fibres also the solution as it is, which interpolates the fluid's part of the elements that a
// wall cuts.
void AddConcentrations(Run& run, const VtuMesh& mesh, std::vector<VtkArray>& arrays) {
    const ConstRealArray nodal = NodalValues(run);
    std::vector<double> values(nodal.data, nodal.data + nodal.length);
    values.reserve(static_cast<std::size_t>(mesh.points));
    AppendRadialValues(run, values);
    ValuesAtAddedPoints(mesh, 1, values);
    if (IsMasked(mesh)) {
        arrays.push_back(MakeVtkArray(run.workers, "solution", 1, values));
        BlankNodesInFibres(mesh, 1, values);
    }
    arrays.push_back(MakeVtkArray(run.workers, "concentration", 1, values));
}

// The three components that begin at nodal vector `first`; substructured fibres have none.
void AddVectors(Run& run, const VtuMesh& mesh, const char* name, int first, std::vector<VtkArray>& arrays) {
    const ConstRealArray x = NodalResultVector(run, first), y = NodalResultVector(run, first + 1),
                         z = NodalResultVector(run, first + 2);
    std::vector<double> values;
    values.reserve(3 * static_cast<std::size_t>(mesh.points));
    for (Word i = 1; i <= x.length; ++i)
        values.insert(values.end(), {x(i), y(i), z(i)});
    values.insert(values.end(), 3 * static_cast<std::size_t>(mesh.radialPoints), std::nan(""));
    ValuesAtAddedPoints(mesh, 3, values);
    BlankNodesInFibres(mesh, 3, values);
    arrays.push_back(MakeVtkArray(run.workers, name, 3, values));
}

std::vector<VtkArray> StepArrays(Run& run, const VtuMesh& mesh) {
    std::vector<VtkArray> arrays;
    AddConcentrations(run, mesh, arrays);
    const HeaderFields& header = run.control.header;
    if (header.NDS != 1 && header.NDS != 3)
        return arrays;
    AddVectors(run, mesh, "flux", 4, arrays);
    if (header.AMOLAR > 0.0)
        AddVectors(run, mesh, "mass_flux", 1, arrays);
    AddVectors(run, mesh, "coefficient", 7, arrays);
    return arrays;
}

// --- files --------------------------------------------------------------------------------------------------------

void AddTime(Run& run, VtkFile& file, std::vector<VtkArray>& kept) {
    kept.push_back(MakeVtkArray(run.workers, "TimeValue", 1, std::vector<double>{run.clock.TIME}));
    OpenVtkElement(file, "FieldData");
    AddVtkArray(file, kept.back(), " NumberOfTuples=\"1\"");
    CloseVtkElement(file);
}

void WriteStepFile(Run& run, const VtuStorage& storage, const std::string& name) {
    const std::vector<VtkArray> values = StepArrays(run, storage.mesh);
    std::vector<VtkArray> time;
    VtkFile file = BeginVtkFile("UnstructuredGrid");
    AddTime(run, file, time);
    OpenVtkElement(file, "Piece",
                   "NumberOfPoints=\"" + std::to_string(storage.mesh.points) + "\" NumberOfCells=\"" +
                       std::to_string(storage.mesh.cells) + "\"");
    OpenVtkElement(file, "PointData", "Scalars=\"concentration\"");
    for (const VtkArray& array : values)
        AddVtkArray(file, array);
    for (const VtkArray& array : storage.pointArrays)
        AddVtkArray(file, array);
    CloseVtkElement(file);
    AddVtkArrays(file, "CellData", storage.cellArrays);
    AddVtkArrays(file, "Points", storage.points);
    AddVtkArrays(file, "Cells", storage.cells);
    StoreVtkFile(file, name);
}

std::string EscapedForXml(const std::string& text) {
    std::string escaped;
    for (const char c : text)
        escaped += c == '&' ? "&amp;" : c == '<' ? "&lt;" : c == '"' ? "&quot;" : std::string(1, c);
    return escaped;
}

void StoreList(const Run& run) {
    StoreWholeFile(ListName(run),
                   {"<?xml version=\"1.0\"?>\n<VTKFile type=\"Collection\" version=\"0.1\">\n<Collection>\n",
                    run.viewer.listed, "</Collection>\n</VTKFile>\n"});
}

void ListStep(Run& run, const std::string& name) {
    char time[32] = {}; // as short as gives the same number again
    std::to_chars(time, time + sizeof time - 1, run.clock.TIME);
    run.viewer.listed += std::string("<DataSet timestep=\"") + time + "\" part=\"0\" file=\"" +
                         EscapedForXml(name.substr(run.units.Folder.size())) + "\"/>\n";
    StoreList(run);
}

} // namespace

void GoOnWithVtu(Run& run) {
    if (!run.options.vtu)
        return;
    const bool lists = run.viewer.problem != 0;
    if (lists)
        StoreList(run);
    RemoveOldViewerFiles(run.units, lists ? ListName(run) : "");
}

void WriteVtuStep(Run& run) {
    const VtuStorage& storage = StorageOfProblem(run);
    char number[16];
    std::snprintf(number, sizeof number, "-%04d.vtu", run.clock.KOR);
    const std::string name = ViewerName(run.units, run.job.ProblemNumber) + number;
    WriteStepFile(run, storage, name);
    FinishFile(run.units, name);
    ListStep(run, name);
}

} // namespace zurt
