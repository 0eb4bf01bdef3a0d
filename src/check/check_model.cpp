#include "check/check_model.h"

#include "check/node_use.h"
#include "check/solver_sizes.h"
#include "elements/forming/element_visit.h"
#include "geometry/gather.h"
#include "geometry/group_views.h"
#include "model/curve_lookup.h"
#include "model/material_tables.h"
#include "run/partition.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zurt {

namespace {

// The least and the largest value that the elements of a material begin with, and a node of each.
struct StartRange {
    double low = HUGE_VAL, high = -HUGE_VAL;
    std::int32_t lowNode = 0, highNode = 0;
};

void Widen(StartRange& range, double value, std::int32_t node) {
    if (value < range.low) {
        range.low = value;
        range.lowNode = node;
    }
    if (value > range.high) {
        range.high = value;
        range.highNode = node;
    }
}

// By material, from 1. Device curves are asked for absolute values.
std::vector<StartRange> StartRanges(const Run& run) {
    const HeaderFields& header = run.control.header;
    const NodalViews views = NodalViewsOf(run);
    std::vector<StartRange> ranges(static_cast<std::size_t>(std::max(header.NMATT, 0)) + 1);
    for (std::int32_t NGE = 1; NGE <= header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        if (IsRadial(group))
            continue;
        const ConstIntTable NEL = Connectivity(run, group);
        const ConstIntArray materials = ElementMaterials(run, group);
        for (Word n = 1; n <= group.NET; ++n) {
            const std::int32_t material = materials.length > 0 ? materials(n) : group.MAT;
            for (Word k = 1; k <= NEL.columns; ++k) {
                if (NEL(n, k) == 0 || views.ID(NEL(n, k)) < 0 || material < 1 || material > header.NMATT)
                    continue;
                double now = 0.0, before = 0.0;
                GatherNodeValue(views, NEL(n, k), now, before);
                Widen(ranges[static_cast<std::size_t>(material)], header.NDS != 0 ? std::fabs(now) : now,
                      NEL(n, k));
            }
        }
    }
    return ranges;
}

void CheckCurve(Run& run, const char* what, std::int32_t number, Word line, const CurveView& curve,
                const StartRange& range) {
    if (curve.points < 2 || range.lowNode == 0)
        return;
    const double first = *curve.argument, last = curve.argument[curve.stride * (curve.points - 1)];
    const bool below = range.low < first - kCurveEndTolerance;
    const bool above = range.high > last + kCurveEndTolerance;
    if (!below && !above)
        return;
    char text[200];
    std::snprintf(text, sizeof text,
                  "%s curve %d reaches from %.7g to %.7g, and values begin at %.7g (node %d)", what, number,
                  first, last, below ? range.low : range.high, below ? range.lowNode : range.highNode);
    run.check.findings.push_back({line, text});
}

void CheckMaterialCurves(Run& run, std::int32_t material, const StartRange& range) {
    const Word otherwise = run.job.BasicDataLine;
    const Word curveLine = LineOf(run.check.curveLine, material, otherwise);
    if (run.control.header.NDS != 0)
        return CheckCurve(run, "diffusion", material, curveLine,
                          DiffusionCurve(DiffusionTable(run), DiffusionPoints(run), material), range);
    for (Word axis = 1; axis <= 3 && run.job.ConductivityNonlinear != 0; ++axis) {
        const std::int32_t f = MaterialFunctions(run)(material, axis);
        if (f >= 1 && f <= ConductionDimension(run) &&
            (axis == 1 || f != MaterialFunctions(run)(material, 1)))
            CheckCurve(run, "conduction", f, LineOf(run.check.curveLine, f, otherwise),
                       PairCurve(ConductionPairs(run), ConductionPoints(run), f), range);
    }
    if (run.control.header.NSTAC > 0 && run.job.CapacityNonlinear != 0 && HasSpecificHeatTable(run))
        CheckCurve(run, "capacity", material, LineOf(run.check.capacityLine, material, otherwise),
                   PairCurve(SpecificHeatPairs(run), SpecificHeatPoints(run), material), range);
}

void CheckCurves(Run& run) {
    const bool startValues = run.control.header.NSTAC != 0 || run.job.NonlinearFlag == 1;
    if (!startValues)
        return;
    const std::vector<StartRange> ranges = StartRanges(run);
    for (std::int32_t material = 1; material <= run.control.header.NMATT; ++material)
        CheckMaterialCurves(run, material, ranges[static_cast<std::size_t>(material)]);
}

// Values that cards give for nodes or sides of which there are none.
void CheckHeldSets(Run& run) {
    const ConstIntArray ID = EquationNumbers(run);
    const bool held = std::find(ID.data, ID.data + ID.length, 0) != ID.data + ID.length;
    const CurveCounts& counts = run.control.counts;
    const HeaderFields& header = run.control.header;
    const bool outlet = header.NDS != 0 && header.NDS != 2 && header.NANOCH > 0;
    if (outlet && !held && run.control.outlet.OutletEnd != 0.0)
        run.check.findings.push_back(
            {run.job.BasicDataLine, "the outlet cards give a concentration, and no node is held to take it"});
    std::int32_t records = 0;
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        records += IsRadial(run.groups[NGE]) ? 0 : run.groups[NGE].surfaces.records;
    if (records == 0 && (counts.NQP != 0 || counts.NHP != 0 || counts.NTOK != 0 || counts.NHR != 0))
        run.check.findings.push_back(
            {run.job.BasicDataLine, "functions of surfaces are given, and no surface card uses them"});
}

void CheckIntegration(Run& run) {
    const std::int32_t INTEB = run.control.header.INTEB;
    if (INTEB != 1)
        run.check.findings.push_back(
            {run.job.BasicDataLine, "INTEB is " + std::to_string(INTEB) +
                                        ": only Euler backward, 1, is built, and no element is formed"});
}

void CheckParts(Run& run) {
    if (run.control.header.NSTAC != 0)
        return;
    const MeshParts parts = PartsOfMesh(run);
    std::vector<std::int32_t> nodesOf(parts.first.size()); // of a part, at its first node
    for (std::size_t i = 1; i < parts.first.size(); ++i)
        ++nodesOf[static_cast<std::size_t>(parts.first[i])];
    const std::vector<std::int32_t> uses = ElementsOfNodes(run);
    for (std::int32_t node = 1; node <= run.control.header.NP; ++node) {
        const auto i = static_cast<std::size_t>(node);
        if (parts.first[i] != node || uses[i] == 0 || parts.anchored[i])
            continue;
        run.check.findings.push_back({LineOf(run.check.nodeLine, node, run.job.BasicDataLine),
                                      "the part of the mesh with " + NodeText(run, node) + " (" +
                                          std::to_string(nodesOf[i]) +
                                          " nodes) hangs on nothing: a steady problem needs a held node or a "
                                          "side with convection in each part"});
    }
}

void CheckRoom(Run& run) {
    const std::string fault = FaultOfMatrixLength(run);
    if (run.A.LMAXM > run.A.NTOTA)
        run.check.findings.push_back(
            {run.job.BasicDataLine, "the run needs a working vector of " + std::to_string(run.A.LMAXM) +
                                        " words, and it has " + std::to_string(run.A.NTOTA) +
                                        ": --words, or another --solver"});
    else if (!fault.empty())
        run.check.findings.push_back({run.job.BasicDataLine, fault});
}

} // namespace

void CheckModel(Run& run) {
    CheckCurves(run);
    CheckHeldSets(run);
    CheckIntegration(run);
    CheckParts(run);
    CheckRoom(run);
    run.check.sizes.push_back(SystemSizeOf(run));
    if (!run.check.findings.empty())
        return; // a missing card has been found; what follows ends at the first fault
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (!IsRadial(run.groups[NGE]))
            CheckGroupOnce(run, run.groups[NGE]);
}

} // namespace zurt
