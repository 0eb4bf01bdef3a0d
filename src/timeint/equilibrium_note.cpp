#include "timeint/equilibrium_note.h"

#include "core/stop.h"
#include "elements/forming/form_elements.h"
#include "geometry/element_family.h"
#include "timeint/convergence.h"

#include <cmath>
#include <cstdio>
#include <string>

namespace zurt {

namespace {

// Increments this far below the solution that no longer fall come from rounding, not from the problem's curves.
constexpr double kHeightOfRounding = 1e-6;

std::string Short(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1E", value);
    return text;
}

StiffestElement FindStiffest(Run& run) {
    StiffestElement stiffest;
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        WithFamily(group, [&](auto family) { FindStiffestElement<family.value>(run, group, stiffest); });
    }
    return stiffest;
}

// Increments of rounding vary: a tolerance of this multiple of the lowest one is met again.
constexpr double kScatter = 10.0;

double RoundedUp(double ratio) {
    return std::pow(10.0, std::ceil(std::log10(kScatter * ratio)));
}

std::string RoundingText(Run& run, double ratio) {
    const HeaderFields& header = run.control.header;
    const StiffestElement stiffest = FindStiffest(run);
    std::string text =
        "; they rest at " + Short(ratio) + " of the step's largest, which is rounding. EPSTA " +
        Short(RoundedUp(run.clock.LowestIncrement)) + " works, or EPSTR " + Short(RoundedUp(ratio));
    if (stiffest.element > 0 && header.EPSTR > 0.0)
        text +=
            "; so does a smaller coefficient, or a shorter or wider shape, of the stiffest elements (group " +
            std::to_string(stiffest.group) + ", element " + std::to_string(stiffest.element) +
            " for one, entry " + Short(stiffest.entry) + "): smaller by a factor of about " +
            Short(kScatter * ratio / header.EPSTR);
    return text;
}

} // namespace

void NoteNoEquilibrium(Run& run) {
    std::string text = "step " + std::to_string(run.clock.KOR) +
                       ": no equilibrium within MAXIT = " + std::to_string(run.control.header.MAXIT) +
                       " iterations, the run ends (see the end of the listing)";
    const double ratio = run.clock.LowestIncrement / run.clock.ReferenceNorm;
    const ConstRealArray solution = StepSolution(run);
    const double size = ComputeIterationNorms(solution, solution, solution).solution;
    const bool rests = 2 * run.clock.LowestIteration <= run.clock.ITER ||
                       run.clock.IncrementNorm > 0.5 * run.clock.LowestIncrement;
    if (ratio > 0.0 && run.clock.LowestIncrement < kHeightOfRounding * size && rests &&
        run.clock.LowestIteration != run.clock.ITER)
        text += RoundingText(run, ratio);
    else if (run.clock.LowestIteration == run.clock.ITER)
        text += "; the increments still fall: a larger MAXIT";
    else
        text += "; the increments don't fall: shorter steps, or a less abrupt curve";
    WriteNote(text);
}

} // namespace zurt
