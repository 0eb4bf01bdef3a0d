#include "results/vtp_fibres.h"

#include "geometry/radial_views.h"
#include "results/vtk_file.h"
#include "run/file_names.h"
#include "run/files.h"

#include <cmath>

namespace zurt {

namespace {

enum FibreKind { kLine, kSphere, kRadial };

// Points of the file, and its cells: those of one point, then lines of two, each with what it is.
struct FibreCellsOfKind {
    std::vector<std::int32_t> connectivity, kind, set, fibre;
    std::vector<std::int64_t> offsets;
    std::vector<double> length;
};

struct FibreShapes {
    std::vector<double> places, radius;
    FibreCellsOfKind single, lines;
};

void AddFibrePoint(FibreShapes& shapes, FibreCellsOfKind& cells, const double* place, double radius) {
    cells.connectivity.push_back(static_cast<std::int32_t>(shapes.radius.size()));
    shapes.places.insert(shapes.places.end(), place, place + 3);
    shapes.radius.push_back(radius);
}

void EndFibre(FibreCellsOfKind& cells, FibreKind kind, std::int32_t set, std::int32_t fibre, double length) {
    cells.offsets.push_back(static_cast<std::int64_t>(cells.connectivity.size()));
    cells.kind.push_back(kind);
    cells.set.push_back(set);
    cells.fibre.push_back(fibre);
    cells.length.push_back(length);
}

void AddSetsOfFibres(const FibreModel& model, FibreShapes& shapes) {
    for (const FibreSet& set : model.sets)
        for (const Fibre& fibre : set.fibres) {
            const bool line = set.NTYPE == kLineFibres;
            FibreCellsOfKind& cells = line ? shapes.lines : shapes.single;
            double ends[2][3] = {};
            for (int k = 0; k < (line ? 2 : 1); ++k) {
                for (int axis = 0; axis < model.dimension; ++axis)
                    ends[k][axis] = fibre.points.data()[Word{3} * k + axis];
                AddFibrePoint(shapes, cells, ends[k], 0.5 * set.DIAM);
            }
            const double length =
                std::hypot(ends[1][0] - ends[0][0], ends[1][1] - ends[0][1], ends[1][2] - ends[0][2]);
            EndFibre(cells, line ? kLine : kSphere, set.NSETID, fibre.NFIBID, line ? length : 0.0);
        }
}

// An assembled fibre stands at the node on its axis.
void AddRadialFibres(const Run& run, const ElementGroup& group, FibreShapes& shapes) {
    const ConstIntTable nodes = RadialNodes(run, group);
    const ConstRealArray radius = RealSection(run.A, group.radial.LRADIUS, group.NET);
    const ConstRealArray length = RealSection(run.A, group.radial.LLENGTH, group.NET);
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        double centre[3] = {};
        for (int axis = 0; axis < 3; ++axis)
            centre[axis] = group.radial.substructured ? group.radial.centres.data()[Word{3} * (n - 1) + axis]
                                                      : CoordinateColumn(run, axis + 1)(nodes(1, n));
        AddFibrePoint(shapes, shapes.single, centre, radius(n));
        EndFibre(shapes.single, kRadial, group.NGE, n, length(n));
    }
}

template <class T>
VtkArray OfAllCells(Workers& workers, const char* name, std::vector<T> single, const std::vector<T>& lines) {
    single.insert(single.end(), lines.begin(), lines.end());
    return MakeVtkArray(workers, name, 1, single);
}

void StoreShapes(Workers& workers, const FibreShapes& shapes, const std::string& name) {
    const FibreCellsOfKind &single = shapes.single, &lines = shapes.lines;
    const std::vector<VtkArray> pointData = {MakeVtkArray(workers, "radius", 1, shapes.radius)};
    const std::vector<VtkArray> cellData = {OfAllCells(workers, "kind", single.kind, lines.kind),
                                            OfAllCells(workers, "set", single.set, lines.set),
                                            OfAllCells(workers, "fibre", single.fibre, lines.fibre),
                                            OfAllCells(workers, "length", single.length, lines.length)};
    const std::vector<VtkArray> points = {MakeVtkArray(workers, "points", 3, shapes.places)};
    const std::vector<VtkArray> verts = {MakeVtkArray(workers, "connectivity", 1, single.connectivity),
                                         MakeVtkArray(workers, "offsets", 1, single.offsets)};
    const std::vector<VtkArray> segments = {MakeVtkArray(workers, "connectivity", 1, lines.connectivity),
                                            MakeVtkArray(workers, "offsets", 1, lines.offsets)};
    VtkFile file = BeginVtkFile("PolyData");
    OpenVtkElement(file, "Piece",
                   "NumberOfPoints=\"" + std::to_string(shapes.radius.size()) + "\" NumberOfVerts=\"" +
                       std::to_string(single.kind.size()) + "\" NumberOfLines=\"" +
                       std::to_string(lines.kind.size()) + "\" NumberOfStrips=\"0\" NumberOfPolys=\"0\"");
    AddVtkArrays(file, "PointData", pointData);
    AddVtkArrays(file, "CellData", cellData);
    AddVtkArrays(file, "Points", points);
    AddVtkArrays(file, "Verts", verts);
    AddVtkArrays(file, "Lines", segments);
    StoreVtkFile(file, name);
}

} // namespace

void WriteVtpFibres(Run& run) {
    FibreShapes shapes;
    if (run.fibres.dimension != 0)
        AddSetsOfFibres(run.fibres, shapes);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (IsRadial(run.groups[NGE]))
            AddRadialFibres(run, run.groups[NGE], shapes);
    if (shapes.radius.empty())
        return;
    const std::string name = ViewerName(run.units, run.job.ProblemNumber) + "-fibres.vtp";
    StoreShapes(run.workers, shapes, name);
    FinishFile(run.units, name);
}

} // namespace zurt
