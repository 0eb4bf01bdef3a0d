#include "elements/cards/group_checks.h"

#include "core/stop.h"
#include "geometry/group_views.h"
#include "geometry/radial_views.h"
#include "model/material_tables.h"

#include <string>

namespace zurt {

namespace {

[[noreturn]] void Refuse(const Run& run, const ElementGroup& group, const std::string& what) {
    StopAtCard("deck " + run.deck.name + ", element group " + std::to_string(group.NGE) + ": " + what);
}

// `numbers` holds one number of each element that every card sets above 0: a 0 means that no card gave the element.
void RequireCards(const Run& run, const ElementGroup& group, ConstIntArray numbers) {
    for (Word n = 1; n <= group.NET; ++n)
        if (numbers(n) == 0)
            Refuse(run, group,
                   "element " + std::to_string(n) + " has no card; its number is left out between the cards");
}

void RequireSources(const Run& run, const ElementGroup& group) {
    const ConstIntArray sources = ElementSources(run, group);
    const std::int32_t NQE = run.control.counts.NQE;
    for (Word n = 1; n <= sources.length; ++n)
        if (sources(n) > NQE)
            Refuse(run, group,
                   "element " + std::to_string(n) + " asks for source curve " + std::to_string(sources(n)) +
                       ", but there are " + std::to_string(NQE));
}

// A coefficient that comes from functions needs one for the first axis; all numbers lie within the table.
void RequireConductionFunctions(const Run& run, const ElementGroup& group, std::int32_t material) {
    const ConstIntTable functions = MaterialFunctions(run);
    bool any = run.job.ConductivityNonlinear == 0;
    for (Word axis = 1; axis <= 3; ++axis) {
        any = any || functions(material, axis) != 0;
        if (functions(material, axis) > ConductionDimension(run))
            Refuse(run, group,
                   "material " + std::to_string(material) + " asks for conduction function " +
                       std::to_string(functions(material, axis)) + ", but there are " +
                       std::to_string(ConductionDimension(run)));
    }
    if (any && (functions(material, 1) < 1 || run.control.counts.MAXTK < 1))
        Refuse(run, group,
               "material " + std::to_string(material) +
                   " has no conduction function for its first axis; built-in polynomials serve only "
                   "materials without any function, in problems that iterate on the conduction");
}

// Nonlinear capacity of a material without a curve comes from the built-in polynomials.
void RequireCapacity(const Run& run, const ElementGroup& group, std::int32_t material) {
    const HeaderFields& header = run.control.header;
    if (header.NSTAC == 0)
        return;
    if (header.NSTAC < 0)
        Refuse(run, group,
               "a transient problem without device modelling needs capacity curves, and a negative NSTAC "
               "leaves no room for them");
    const bool analytic = run.job.CapacityNonlinear != 0 && SpecificHeatPoints(run)(material) == 0;
    if (!analytic && !HasSpecificHeatTable(run))
        Refuse(run, group,
               "material " + std::to_string(material) +
                   " has no capacity curve, which a transient problem needs (MAXTC is 0)");
}

void RequireMaterialCurves(const Run& run, const ElementGroup& group) {
    if (run.control.header.NDS != 0)
        return;
    const bool all = group.hasMaterials;
    const std::int32_t last = all ? run.control.header.NMATT : group.MAT;
    for (std::int32_t material = all ? 1 : group.MAT; material <= last; ++material) {
        RequireConductionFunctions(run, group, material);
        RequireCapacity(run, group, material);
    }
}

} // namespace

void CheckGroupCards(const Run& run, const ElementGroup& group) {
    if (IsRadial(group)) {
        RequireCards(run, group, RadialCount(run, group));
        return;
    }
    RequireCards(run, group, IntSection(run.A, group.LNEL, group.NET)); // first corners
    RequireSources(run, group);
    RequireMaterialCurves(run, group);
}

} // namespace zurt
