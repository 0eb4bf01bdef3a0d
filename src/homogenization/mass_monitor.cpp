#include "homogenization/mass_monitor.h"

#include "core/ranks.h"
#include "elements/forming/form_elements.h"
#include "geometry/cross_section.h"
#include "geometry/element_family.h"
#include "timeint/finite_results.h"

#include <algorithm>
#include <cmath>

namespace zurt {

namespace {

/// A mass up to this part of what the box around the mesh could hold is rounding.
constexpr double kRounding = 1e-11;

double FlowThrough(Run& run, const CrossSection& section) {
    const RealArray sums(run.mass.nodalSums.data(), static_cast<Word>(run.mass.nodalSums.size()));
    Fill(sums, 0.0);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        const std::vector<std::int32_t>& elements = section.elements[static_cast<std::size_t>(NGE)];
        if (!elements.empty())
            WithFamily(run.groups[NGE], [&](auto family) {
                AddElementResiduals<family.value>(
                    run, run.groups[NGE], ConstIntArray(elements.data(), static_cast<Word>(elements.size())),
                    false, sums);
            });
    }
    double flow = 0.0;
    for (const std::int32_t node : section.nodes)
        flow -= sums(node);
    SumOverRanks(RealArray(&flow, 1));
    return flow;
}

} // namespace

void BeginMassTables(Run& run) {
    const auto steps = static_cast<std::size_t>(std::max(run.control.counts.NDT, 1));
    run.mass.FLUXMICRO.assign(steps, 0.0);
    run.mass.FLUXEQUIV.assign(steps, 0.0);
    run.mass.nodalSums.assign(static_cast<std::size_t>(run.control.header.NP), 0.0);
    for (CrossSection& section : run.mass.section)
        section = {};
}

void RecordFlow(Run& run) {
    CrossSection& section = run.mass.section[run.fit.INDDEG];
    if (!section.found)
        FindCrossSection(run, run.fit.INDDEG, section);
    std::vector<double>& flux = run.fit.IEHM == 0 ? run.mass.FLUXMICRO : run.mass.FLUXEQUIV;
    const double flow = FlowThrough(run, section);
    RealArray(flux.data(), static_cast<Word>(flux.size()))(run.clock.KOR) = flow;
    RequireFinite(run, flow, "flow through the inlet cross-section", "look for absurd sizes in the deck");
}

bool IsMassOfRounding(const Run& run, double mass) {
    const std::vector<double>& start = run.mass.startValues;
    double content = 0.0;
    for (const double c : start)
        content = std::max(content, std::fabs(c));
    for (int direction = 1; direction <= 3; ++direction) {
        const Extent mesh = MeshExtent(run, CoordinateColumn(run, direction));
        if (mesh.high > mesh.low)
            content *= mesh.high - mesh.low;
    }
    return mass <= kRounding * content;
}

double MassOfRun(const Run& run, const std::vector<double>& flux, std::int32_t steps) {
    const bool steady = run.control.header.NSTAC == 0;
    const ConstRealArray sizes = RealSection(run.A, run.control.at.LDT, steady ? 0 : run.control.counts.NDT);
    const ConstRealArray flows(flux.data(), static_cast<Word>(flux.size()));
    double mass = 0.0;
    for (Word step = 1; step <= steps; ++step)
        mass += flows(step) * (steady ? 1.0 : sizes(step));
    return std::fabs(mass);
}

} // namespace zurt
