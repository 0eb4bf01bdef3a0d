// Small models built in memory, for the tests and benchmarks of the element families: nodes, elements of one dimension,
// coefficients, and the system that a forming visit leaves.
#pragma once

#include "elements/element_phases.h"
#include "model/function_tables.h"
#include "model/material_tables.h"
#include "run/partition.h"
#include "run/run.h"
#include "solver/system_skyline.h"

#include <array>
#include <utility>
#include <vector>

namespace zurt::testmodel {

using Point = std::array<double, 3>;
using Curve = std::vector<std::pair<double, double>>;

struct Mesh {
    std::vector<Point> nodes;
    std::vector<std::vector<int>> elements; // node numbers from 1, 0 absent
    std::vector<int> held;                  // nodes without an equation
};

// Everything besides the mesh; the defaults are a steady linear problem of one material with coefficient 1.
struct Problem {
    int dimension = 3, SparseMode = 0, INDAX = 0;
    std::vector<double> thickness; // thickness or area by element; empty: lines have area 1
    int NDS = 0, NSTAC = 0, IANIZ = 0, NonlinearFlag = 0, IZIP = 0, ITOR = 0;
    double TIME = 0.0, StartTime = 0.0, TimeStep = 1.0;
    double AMOLAR = 0.0;
    int NANLK = 0, NANLC = 0;
    std::vector<Curve> conduction = {
        {{0.0, 1.0}}}; // K functions, or the diffusion curves of the materials under NDS
    std::vector<Curve> capacity = {{{0.0, 1.0}}}; // by material
    std::vector<std::array<int, 3>> functions = {{1, 0, 0}};
    std::array<double, 3> multipliers = {1.0, 1.0, 1.0};
    double density = 1.0, maximum = 0.0;
    std::vector<Curve> sources;
    std::vector<int> elementMaterials; // under NDS; empty: all 1
    std::vector<int> elementSources;   // under IZIP above 0; empty: all 1
    std::array<int, 3> NGAUS = {2, 2, 2};
    Word size = 400000;
};

/// Transient, with a diffusion curve of four points: what the benchmarks form.
inline Problem TransientCurveProblem() {
    Problem problem;
    problem.NSTAC = 1;
    problem.NonlinearFlag = 1;
    problem.NDS = 1;
    problem.conduction = {{{0.0, 1.0}, {0.3, 1.5}, {0.6, 1.8}, {1.0, 2.0}}};
    return problem;
}

inline int MostPoints(const std::vector<Curve>& curves) {
    std::size_t most = 0;
    for (const Curve& curve : curves)
        most = std::max(most, curve.size());
    return static_cast<int>(most);
}

inline void SetPairs(const std::vector<Curve>& curves, IntArray points, RealTable pairs) {
    for (std::size_t f = 0; f < curves.size(); ++f) {
        const Word row = static_cast<Word>(2 * f) + 1;
        points(static_cast<Word>(f) + 1) = static_cast<std::int32_t>(curves[f].size());
        for (std::size_t p = 0; p < curves[f].size(); ++p) {
            pairs(row, static_cast<Word>(p) + 1) = curves[f][p].first;
            pairs(row + 1, static_cast<Word>(p) + 1) = curves[f][p].second;
        }
    }
}

inline void SetNodes(Run& run, const Mesh& mesh) {
    run.control.header.NP = static_cast<std::int32_t>(mesh.nodes.size());
    TakeNodeArrays(run);
    const IntArray ID = EquationNumbers(run);
    Fill(ID, 0);
    for (int node : mesh.held)
        ID(node) = -1;
    std::int32_t& JEDN = run.sizes.JEDN;
    JEDN = 0;
    for (Word n = 1; n <= ID.length; ++n) {
        for (int axis = 1; axis <= 3; ++axis)
            CoordinateColumn(run, axis)(n) =
                mesh.nodes[static_cast<std::size_t>(n) - 1][static_cast<std::size_t>(axis) - 1];
        ID(n) = ID(n) == 0 ? ++JEDN : 0;
    }
    TakeDiagonalPositions(run);
}

inline void SetGroup(Run& run, const Mesh& mesh, const Problem& problem) {
    ElementGroup& group = run.groups[1];
    group.NGE = 1;
    group.NETIP = problem.dimension;
    group.INDAX = problem.INDAX;
    group.NET = static_cast<std::int32_t>(mesh.elements.size());
    group.IZIP = problem.IZIP;
    group.NMAT = group.MAT = group.MATDD = 1;
    group.NDMAX = static_cast<std::int32_t>(mesh.elements.front().size());
    for (std::size_t d = 0; d < 3; ++d)
        group.NGAUS[d] = problem.NGAUS[d];
    group.LNEL = TakeWords(run.A, "NEL", Word{group.NDMAX} * group.NET);
    group.hasMaterials = problem.NDS != 0;
    group.hasSources = problem.IZIP > 0;
    group.LMATE = TakeWords(run.A, "materials", group.NET);
    group.LISRC = TakeWords(run.A, "sources", group.NET);
    group.LTHIC = TakeWords(run.A, "thickness", group.NET);
    group.hasThickness = problem.dimension == 1 || !problem.thickness.empty();
    Fill(RealSection(run.A, group.LTHIC, group.NET), 1.0);
    const IntArray materials = IntSection(run.A, group.LMATE, group.NET);
    const IntArray sources = IntSection(run.A, group.LISRC, group.NET);
    const IntTable NEL = Connectivity(run, group);
    for (Word n = 1; n <= group.NET; ++n) {
        const std::size_t at = static_cast<std::size_t>(n) - 1;
        for (Word k = 1; k <= group.NDMAX; ++k)
            NEL(n, k) = mesh.elements[at][static_cast<std::size_t>(k) - 1];
        materials(n) = problem.elementMaterials.empty() ? 1 : problem.elementMaterials[at];
        sources(n) = problem.elementSources.empty() ? 1 : problem.elementSources[at];
        if (!problem.thickness.empty())
            RealSection(run.A, group.LTHIC, group.NET)(n) = problem.thickness[at];
    }
    const Numbering numbering = NumberingOf(run);
    BeginLayout(run, numbering);
    LayOutElements(run, numbering, NEL, group.NDMAX, {});
    run.sizes.NWK = FinishLayout(run, numbering);
}

inline void SetDeviceCurves(Run& run, const Problem& problem) {
    const IntArray points = DiffusionPoints(run);
    const RealTable table = DiffusionTable(run);
    for (std::size_t m = 0; m < problem.conduction.size(); ++m) {
        const Word row = static_cast<Word>(m) + 1;
        points(row) = static_cast<std::int32_t>(problem.conduction[m].size());
        for (std::size_t p = 0; p < problem.conduction[m].size(); ++p) {
            table(row, static_cast<Word>(2 * p) + 1) = problem.conduction[m][p].first;
            table(row, static_cast<Word>(2 * p) + 2) = problem.conduction[m][p].second;
        }
    }
}

inline void SetMaterials(Run& run, const Problem& problem) {
    SetPairs(problem.conduction, ConductionPoints(run), ConductionPairs(run));
    if (HasSpecificHeatTable(run))
        SetPairs(problem.capacity, SpecificHeatPoints(run), SpecificHeatPairs(run));
    for (Word m = 1; m <= run.control.header.NMATT; ++m) {
        for (Word axis = 1; axis <= 3; ++axis) {
            MaterialFunctions(run)(m, axis) =
                problem.functions[static_cast<std::size_t>(m) - 1][static_cast<std::size_t>(axis) - 1];
            MaterialMultipliers(run)(m, axis) = problem.multipliers[static_cast<std::size_t>(axis) - 1];
        }
        MaterialDensities(run)(m) = problem.density;
        MaterialMaxima(run)(m) = problem.maximum;
        MaterialMinima(run)(m) = 0.0;
    }
}

inline void SetCurves(Run& run, const Problem& problem) {
    CurveCounts& counts = run.control.counts;
    const bool device = problem.NDS != 0;
    run.control.header.NMATT =
        static_cast<std::int32_t>(device ? problem.conduction.size() : problem.functions.size());
    counts.NTABK = static_cast<std::int32_t>(problem.conduction.size());
    counts.MAXTK = counts.MAXPMAT = MostPoints(problem.conduction);
    counts.NTABC = static_cast<std::int32_t>(problem.capacity.size());
    counts.MAXTC = MostPoints(problem.capacity);
    counts.NQE = static_cast<std::int32_t>(problem.sources.size());
    counts.MAXTQE = MostPoints(problem.sources);
    run.job.ConductivityNonlinear = problem.NANLK > 0 || counts.MAXTK > 1;
    run.job.CapacityNonlinear = !device && (problem.NANLC > 0 || counts.MAXTC > 1);
    TakeDiffusionCurves(run);
    TakeMaterialTables(run);
    if (device)
        SetDeviceCurves(run, problem);
    else
        SetMaterials(run, problem);
    if (counts.NQE > 0) {
        TakeFunctionTable(run, "sources", counts.NQE, counts.MAXTQE, run.control.at.LQE1,
                          run.control.at.LQE2);
        SetPairs(problem.sources, SourceFunctions(run).points, SourceFunctions(run).pairs);
    }
}

// One run with the model in it; group 1 is ready to be formed.
inline void BuildModel(Run& run, const Mesh& mesh, const Problem& problem) {
    CreateWorkingVector(run.A, problem.size);
    HeaderFields& header = run.control.header;
    header.NGET = 1;
    header.NDS = problem.NDS;
    header.NSTAC = problem.NSTAC;
    header.IANIZ = problem.IANIZ;
    header.INTEB = 1;
    header.ITOR = problem.ITOR;
    header.AMOLAR = problem.AMOLAR;
    run.job.NonlinearFlag = problem.NonlinearFlag;
    run.sizes.SparseMode = problem.SparseMode;
    run.clock.TIME = problem.TIME;
    run.clock.StartTime = problem.StartTime;
    run.clock.TimeStep = problem.TimeStep;
    run.clock.FactorFlag = 1;
    SetNodes(run, mesh);
    SetGroup(run, mesh, problem);
    SetCurves(run, problem);
    TakeSolutionVectors(run);
    TakeSolverVectors(run);
}

/// A run with the model in it, for as long as a test needs it.
struct Model {
    Run run;
    Model(const Mesh& mesh, const Problem& problem) { BuildModel(run, mesh, problem); }
    ~Model() { DestroyWorkingVector(run.A); }
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;
};

// What one forming visit adds to a cleared system.
inline void FormSystem(Run& run) {
    ClearSystem(run);
    FormElementGroup(run, run.groups[1]);
}

// Entry (i, j) of the system matrix, by equation.
inline double SystemEntry(const Run& run, Word i, Word j) {
    const IntArray MAXA = DiagonalPositions(run);
    const Word row = std::min(i, j), column = std::max(i, j);
    const Word position = MAXA(column) + column - row;
    return position < MAXA(column + 1) ? SkylineStore(run)(position) : 0.0;
}

// Sum of all entries of the system matrix: of a matrix of capacities alone, what the volume holds.
inline double SystemSum(const Run& run) {
    double sum = 0.0;
    for (Word i = 1; i <= run.sizes.JEDN; ++i)
        for (Word j = 1; j <= run.sizes.JEDN; ++j)
            sum += SystemEntry(run, i, j);
    return sum;
}

// A block of nx * ny * nz bricks of 8 nodes with its corners moved by `place` from the unit spacing; with nz 0 of
// quadrilaterals.
template <class Place> Mesh BlockOfBricks(int nx, int ny, int nz, Place place) {
    Mesh mesh;
    for (int k = 0; k <= nz; ++k)
        for (int j = 0; j <= ny; ++j)
            for (int i = 0; i <= nx; ++i)
                mesh.nodes.push_back(place(i, j, k));
    const auto number = [&](int i, int j, int k) { return 1 + i + (nx + 1) * (j + (ny + 1) * k); };
    for (int k = 0; k < nz; ++k)
        for (int j = 0; j < ny; ++j)
            for (int i = 0; i < nx; ++i)
                mesh.elements.push_back({number(i + 1, j + 1, k + 1), number(i, j + 1, k + 1),
                                         number(i, j, k + 1), number(i + 1, j, k + 1),
                                         number(i + 1, j + 1, k), number(i, j + 1, k), number(i, j, k),
                                         number(i + 1, j, k)});
    for (int j = 0; nz == 0 && j < ny; ++j)
        for (int i = 0; i < nx; ++i)
            mesh.elements.push_back(
                {number(i + 1, j + 1, 0), number(i, j + 1, 0), number(i, j, 0), number(i + 1, j, 0)});
    return mesh;
}

} // namespace zurt::testmodel
