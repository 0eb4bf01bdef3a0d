#include "microscale/fibre_step.h"

#include "core/stop.h"
#include "geometry/element_walk.h"
#include "geometry/radial_nodes.h"
#include "geometry/radial_views.h"
#include "microscale/fibre_geometry.h"
#include "microscale/fibre_search.h"
#include "microscale/gauss_records.h"
#include "microscale/heq_start.h"
#include "microscale/marked_nodes.h"
#include "microscale/merged_tables.h"
#include "run/partition.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace zurt {

namespace {

// Calls act(f) with f.value the number of the group's family when fibres can lie under it.
template <class Act> void WithFamilyUnderFibres(const ElementGroup& group, const Act& act) {
    WithFamily(group, [&](auto family) {
        if constexpr (kUnderFibres<family.value>)
            act(family);
    });
}

bool HasGaussPoints(const ElementGroup& group) {
    bool has = false;
    WithFamilyUnderFibres(group, [&](auto) { has = true; });
    return has;
}

// The first group that counts, 0 when there is none.
std::int32_t FirstGroup(const Run& run) {
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (HasGaussPoints(run.groups[NGE]))
            return NGE;
    return 0;
}

void ClipFibres(const Run& run, FibreModel& model) {
    const HeaderFields& header = run.control.header;
    const double size[3] = {header.ELFIB, header.DFIB, header.WFIB};
    if (model.dimension == 3 && !(header.WFIB > 0.0))
        StopWithLibraryError("deck " + run.deck.name +
                             ": the box of the fibres on the device cards has no depth (WFIB)");
    const FibrePlace outside =
        ClipFibresToBox(model, size, model.dimension == 2 ? kPlaneFibres : kSpaceFibres);
    if (outside.set != 0)
        StopWithLibraryError(
            "deck " + run.deck.name + ", fibre set " + std::to_string(outside.set) + ", fibre " +
            std::to_string(outside.fibre) +
            ": nothing of this line lies in the box of the fibres on the device cards" +
            (model.dimension == 2
                 ? "; circles under quadrilaterals are asked for as spheres (NTYPE 1), lines lie in "
                   "the plane"
                 : ""));
}

// Where points can see fibres: the part of the mesh inside the sets' boxes. Without any, low lies above high.
struct Region {
    double low[3] = {}, high[3] = {};
};

Region RegionOfFibres(const Run& run, const FibreModel& model, const FibreSearch& search) {
    Region region;
    for (int axis = 0; axis < model.dimension; ++axis) {
        const ConstRealArray X = CoordinateColumn(run, axis + 1);
        double low = HUGE_VAL, high = -HUGE_VAL;
        for (const SearchBox& box : search.boxes) {
            low = std::min(low, box.low[axis]);
            high = std::max(high, box.high[axis]);
        }
        region.low[axis] = std::max(low, *std::min_element(X.data, X.data + X.length));
        region.high[axis] = std::min(high, *std::max_element(X.data, X.data + X.length));
    }
    return region;
}

Word GaussPointsUnderFibres(const Run& run) {
    Word points = 0;
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        WithFamilyUnderFibres(
            group, [&](auto family) { points += group.NET * PointsPerElement<family.value>(group); });
    }
    return points;
}

void ClassifyGroup(Run& run, FibreModel& model, const FibreSearch& search, const ElementGroup& group,
                   IntArray nodeMarks) {
    const std::int32_t NDS = run.control.header.NDS;
    const bool hasFluxes = NDS == 1 || NDS == 3;
    WithFamilyUnderFibres(group, [&](auto family) {
        ClassifyGaussPoints<family.value>(run, model, search, group, nodeMarks);
        if (hasFluxes)
            FillFluxRecords<family.value>(run, model, search, group);
    });
}

void StartHeq(Run& run, FibreModel& model, const ElementGroup& group, IntArray nodeMarks,
              const Region& region) {
    WithFamilyUnderFibres(group, [&](auto family) {
        ComputeHeqStart<family.value>(run, model, group, nodeMarks, region.low, region.high);
    });
}

void ClassifyGroups(Run& run, FibreModel& model, std::int32_t first, IntArray nodeMarks) {
    const FibreSearch search = SearchOverMesh(run, model, GaussPointsUnderFibres(run));
    const Region region = RegionOfFibres(run, model, search);
    model.groups.resize(static_cast<std::size_t>(run.control.header.NGET) + 1);
    model.VOLFLUID = model.totalVolume = 0.0;
    for (std::int32_t NGE = first; NGE <= run.control.header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        if (!HasGaussPoints(group))
            continue;
        ClassifyGroup(run, model, search, group, nodeMarks);
        if (NGE == first && run.fit.IEHM == 1)
            StartHeq(run, model, group, nodeMarks, region);
    }
}

// What a substructured fibre gives to a node outside the model would be lost.
void RequireNodeInModel(const Run& run, const ElementGroup& group, Word fibre, std::int32_t node) {
    if (EquationNumbers(run)(node) < 0)
        StopWithLibraryError("deck " + run.deck.name + ": node " + std::to_string(node) +
                             ", which takes the flux of radial fibre " + std::to_string(fibre) +
                             " of group " + std::to_string(group.NGE) +
                             ", lies in the fibres under the mesh and has no equation");
}

void RequireNodesOfSubstructures(const Run& run) {
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        if (!IsRadial(group) || !group.radial.substructured)
            continue;
        const ConstIntTable common = CommonNodes(run, group);
        for (Word fibre = 1; fibre <= group.NET; ++fibre) {
            RequireNodeInModel(run, group, fibre, ContinuumNode(run, group)(fibre));
            for (Word k = 1; k <= common.columns; ++k)
                RequireNodeInModel(run, group, fibre, common(fibre, k));
        }
    }
}

// Without an equation there is nothing to solve, and the solvers say so each in its own way or not at all.
void LeaveOutNodesInFibres(Run& run, FibreModel& model, ConstIntArray nodeMarks) {
    std::int32_t JEDN = 0;
    if (!LeaveOutUnmarkedNodes(EquationNumbers(run), nodeMarks, JEDN))
        return;
    SetEquations(run, JEDN);
    if (JEDN == 0)
        StopWithLibraryError(
            "deck " + run.deck.name +
            ": no element with a Gauss point outside the fibres has a node that is not held; "
            "there is nothing to solve");
    RequireNodesOfSubstructures(run);
    SetMatrixLength(run, FormLayout(run, model, NumberingOf(run), LayoutElements::Kept));
    model.keptLayout = true;
}

} // namespace

FibreSearch SearchOverMesh(const Run& run, const FibreModel& model, Word points) {
    FibreSearch search = SearchOfAllSets(model, model.dimension, LineEnds::Count);
    const Region region = RegionOfFibres(run, model, search);
    MakeFibreCells(search, region.low, region.high, points);
    return search;
}

void ApplyFibres(Run& run, FibreModel& model) {
    TakeFibreNodes(run);
    StopIfInputOverflows(run); // the marks are written at once
    const std::int32_t first = FirstGroup(run);
    if (first == 0)
        return;
    const HomogenizationCard& card = run.fit.card;
    const IntArray nodeMarks = IntSection(run.A, run.control.at.LFIBN, run.control.header.NP);
    Fill(nodeMarks, 0);
    model.dimension = FamilyOf(run.groups[first]).dimension;
    ClipFibres(run, model);
    ClassifyGroups(run, model, first, nodeMarks);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (IsRadial(run.groups[NGE]))
            MarkRadialNodes(run, run.groups[NGE], nodeMarks);
    if (run.fit.IEHM == 1)
        MergeCorrectionTables(model);
    if (run.fit.IEHM != 1 || card.NFIT != 0)
        LeaveOutNodesInFibres(run, model, nodeMarks);
    if (card.NFIT == 0) // a fit keeps that of its first group
        model.POROSITY = Porosity(model.VOLFLUID, model.totalVolume);
}

} // namespace zurt
