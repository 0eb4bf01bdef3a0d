#include "results/history.h"

#include "core/stop.h"
#include "elements/forming/form_elements.h"
#include "elements/radial/radial_form.h"
#include "geometry/cross_section.h"
#include "geometry/element_family.h"
#include "geometry/gather.h"
#include "model/prescribed_values.h"
#include "run/file_names.h"
#include "run/files.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace zurt {

namespace {

// --- the balance of a step ----------------------------------------------------------------------------------------

// Flows are positive into the mesh, in amount per unit time.
struct StepBalance {
    std::vector<double> stored, storing; // by material, from 0
    SurfaceFlows surfaces;
    double sources = 0.0;
    FibreBalance fibres;
    double held = 0.0;                  // through all nodes without an equation
    std::vector<double> heldByFunction; // through those with an entry, by its time function, from 0
    double inlet = 0.0;
    // Absolute values of all flows: what comes in is in it twice, where it comes from and where it goes.
    double moved = 0.0;
};

double SumOf(const std::vector<double>& values) {
    double sum = 0.0;
    for (const double value : values)
        sum += value;
    return sum;
}

StepBalance EmptyBalance(const Run& run) {
    const CurveCounts& counts = run.control.counts;
    StepBalance balance;
    balance.stored.assign(static_cast<std::size_t>(run.control.header.NMATT), 0.0);
    balance.storing = balance.stored;
    if (counts.NZADC > 0)
        balance.heldByFunction.assign(static_cast<std::size_t>(counts.NTABFT), 0.0);
    return balance;
}

RealArray ViewOf(std::vector<double>& values) {
    return {values.data(), static_cast<Word>(values.size())};
}

// All groups; the residuals of the nodes stand in the work space afterwards.
void SumGroups(Run& run, StepBalance& balance) {
    HistoryState& state = run.history;
    ElementBalance sums;
    sums.residual = ViewOf(state.residual);
    sums.volumePart = ViewOf(state.inletResidual);
    sums.stored = ViewOf(balance.stored);
    sums.storing = ViewOf(balance.storing);
    Fill(sums.residual, 0.0);
    Fill(sums.volumePart, 0.0);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        if (IsRadial(group)) {
            AddRadialBalance(run, group, sums.residual, balance.fibres);
            continue;
        }
        const std::vector<std::int32_t>& listed = state.inlet.elements[static_cast<std::size_t>(NGE)];
        sums.listed = ConstIntArray(listed.data(), static_cast<Word>(listed.size()));
        WithFamily(group, [&](auto family) { AddElementBalance<family.value>(run, group, sums); });
    }
    balance.sources = sums.sources;
    balance.surfaces = sums.surfaces;
    balance.moved = sums.moved + balance.fibres.moved + std::fabs(sums.surfaces.flux) +
                    std::fabs(sums.surfaces.convection) + std::fabs(sums.surfaces.radiation);
}

// What a held node lets in is what its equation lacks.
void TakeFlowsOfNodes(Run& run, StepBalance& balance) {
    const ConstIntArray ID = EquationNumbers(run);
    const bool entries = run.control.counts.NZADC > 0;
    for (Word i = 1; i <= ID.length; ++i) {
        if (ID(i) > 0)
            continue;
        const double flow = -run.history.residual[static_cast<std::size_t>(i - 1)];
        balance.held += flow;
        balance.moved += std::fabs(flow);
        const std::int32_t entry = entries ? run.prescribedEntry[static_cast<std::size_t>(i - 1)] : 0;
        if (entry > 0)
            balance.heldByFunction[static_cast<std::size_t>(PrescribedFunctions(run)(entry) - 1)] += flow;
    }
    for (const std::int32_t node : run.history.inlet.nodes)
        balance.inlet -= run.history.inletResidual[static_cast<std::size_t>(node - 1)];
}

// stored - in, per unit time: 0 for an exact solution of the discrete equations.
double Imbalance(const StepBalance& balance) {
    const SurfaceFlows& surfaces = balance.surfaces;
    return SumOf(balance.storing) + balance.fibres.taken - balance.held - balance.sources - surfaces.flux -
           surfaces.convection - surfaces.radiation;
}

// --- columns ------------------------------------------------------------------------------------------------------

struct Column {
    std::string name;
    const char* unit;
    double value;
    bool known = true; // else the place is empty
};
using Columns = std::vector<Column>;

constexpr const char* kAmount = "amount";
constexpr const char* kFlow = "amount/time";

void AddStepColumns(const Run& run, Columns& columns) {
    const Clock& clock = run.clock;
    const bool iterates = run.job.NonlinearFlag == 1;
    columns.push_back({"step", "1", static_cast<double>(clock.KOR)});
    columns.push_back({"time", "time", clock.TIME});
    columns.push_back({"iterations", "1", clock.ITER + 1.0});
    columns.push_back({"ratio", "1",
                       clock.ReferenceNorm > 0.0 ? clock.IncrementNorm / clock.ReferenceNorm : 0.0,
                       iterates});
}

bool HasRadialGroup(const Run& run) {
    return std::any_of(&run.groups[1], &run.groups[1] + run.control.header.NGET, IsRadial);
}

// What a linear transient problem solves for is not the concentration, and without Euler backward no element is formed.
bool BalanceIsKnown(const Run& run) {
    const HeaderFields& header = run.control.header;
    return header.INTEB == 1 && (run.job.NonlinearFlag == 1 || header.NSTAC == 0);
}

void AddStoredColumns(const Run& run, const StepBalance& balance, Columns& columns) {
    const bool known = BalanceIsKnown(run);
    for (std::size_t m = 0; m < balance.stored.size(); ++m)
        columns.push_back({"stored_" + std::to_string(m + 1), kAmount, balance.stored[m], known});
    columns.push_back({"stored", kAmount, SumOf(balance.stored), known});
    if (HasRadialGroup(run))
        columns.push_back({"stored_fibres", kAmount, balance.fibres.stored, known});
    columns.push_back({"storing", kFlow, SumOf(balance.storing), known});
}

void AddFlowColumns(const Run& run, const StepBalance& balance, Columns& columns) {
    const CurveCounts& counts = run.control.counts;
    const bool known = BalanceIsKnown(run);
    const auto add = [&](const std::string& name, bool present, double value) {
        if (present)
            columns.push_back({name, kFlow, value, known});
    };
    add("held", true, balance.held);
    for (std::size_t f = 0; f < balance.heldByFunction.size(); ++f)
        add("held_f" + std::to_string(f + 1), true, balance.heldByFunction[f]);
    add("inlet", run.history.hasInlet, balance.inlet);
    add("flux", counts.NQP > 0, balance.surfaces.flux);
    add("convection", counts.NHP > 0, balance.surfaces.convection);
    add("radiation", counts.NHR > 0, balance.surfaces.radiation);
    add("sources", counts.NQE > 0, balance.sources);
    add("fibres", HasRadialGroup(run), balance.fibres.taken);
    const double imbalance = Imbalance(balance), moved = 0.5 * balance.moved;
    add("imbalance", true, imbalance);
    columns.push_back({"error", "1", moved > 0.0 ? std::fabs(imbalance) / moved : 0.0, known});
}

void AddProbeColumns(const Run& run, Columns& columns) {
    NodalViews views = NodalViewsOf(run);
    views.solutionRead = true;
    for (const std::int32_t node : run.options.probes) {
        double value = 0.0, start = 0.0;
        GatherNodeValue(views, node, value, start);
        columns.push_back({"c_" + std::to_string(node), "concentration", value, views.ID(node) >= 0});
    }
}

Columns ColumnsOf(const Run& run, const StepBalance& balance) {
    Columns columns;
    AddStepColumns(run, columns);
    if (run.control.header.NSTAC != 0)
        AddStoredColumns(run, balance, columns);
    AddFlowColumns(run, balance, columns);
    AddProbeColumns(run, columns);
    return columns;
}

// --- records ------------------------------------------------------------------------------------------------------

// All digits that tell a number from its neighbours.
std::string Shown(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

void WriteNames(Run& run, const Columns& columns) {
    std::string record;
    for (const Column& column : columns)
        record += (record.empty() ? "" : ",") + column.name + " [" + column.unit + "]";
    PutRecord(run.units.history, record);
    FlushTextUnit(run.units.history);
}

// Of the pass before: one pass of a problem writes.
void EndTable(Run& run) {
    TextUnit& unit = run.units.history;
    if (!IsOpen(unit))
        return;
    CloseTextUnit(unit);
    FinishFile(run.units, unit.name);
    unit.name.clear();
}

void FindInlet(Run& run) {
    HistoryState& state = run.history;
    const int direction = run.fit.INDDEG;
    const Extent mesh = MeshExtent(run, CoordinateColumn(run, direction));
    state.inlet = {};
    state.hasInlet = mesh.high > mesh.low;
    if (state.hasInlet)
        FindCrossSection(run, direction, state.inlet);
    state.inlet.elements.resize(static_cast<std::size_t>(run.control.header.NGET) + 1);
}

} // namespace

void CheckProbes(const Run& run) {
    for (const std::int32_t node : run.options.probes)
        if (node < 1 || node > run.control.header.NP)
            StopWithLibraryError("--probe " + std::to_string(node) + ": problem " +
                                 std::to_string(run.job.ProblemNumber) + " has the nodes 1 to " +
                                 std::to_string(run.control.header.NP));
}

void BeginHistory(Run& run) {
    EndTable(run);
    run.history.writes = run.options.history && run.pass.writesResults;
    if (!run.history.writes)
        return;
    const std::string name = HistoryName(run.units, run.job.ProblemNumber);
    RequireUnused(run, name);
    run.units.history.keepsOlder = run.units.keepsOlder;
    OpenTextUnit(run.units.history, name);
    const auto NP = static_cast<std::size_t>(run.control.header.NP);
    run.history.residual.assign(NP, 0.0);
    run.history.inletResidual.assign(NP, 0.0);
    FindInlet(run);
    WriteNames(run, ColumnsOf(run, EmptyBalance(run)));
}

void WriteHistoryRow(Run& run) {
    if (!run.history.writes)
        return;
    StepBalance balance = EmptyBalance(run);
    if (BalanceIsKnown(run)) {
        SumGroups(run, balance);
        TakeFlowsOfNodes(run, balance);
    }
    std::string record;
    for (const Column& column : ColumnsOf(run, balance)) {
        if (!record.empty())
            record += ',';
        if (column.known)
            record += Shown(column.value);
    }
    PutRecord(run.units.history, record);
    FlushTextUnit(run.units.history);
}

} // namespace zurt
