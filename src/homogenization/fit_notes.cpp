#include "homogenization/fit_notes.h"

#include "core/format.h"
#include "core/stop.h"
#include "core/widened_constants.h"
#include "homogenization/fit_update.h"
#include "homogenization/mass_monitor.h"
#include "run/file_names.h"

#include <cmath>
#include <string>

namespace zurt {

namespace {

// Values of a bracket that differ by less, relative to their size, leave nothing to search between them.
constexpr double kNarrow = 1e-9;

std::string Number(double value) {
    const std::string text = FormatText("(1PE13.5)", value);
    const std::size_t first = text.find_first_not_of(' ');
    return text.substr(first, text.find_last_not_of(" \n") + 1 - first);
}

struct SearchSeen {
    bool ofDistance = false; // HEQ, else the diffusion curve
    double tried = 0.0, above = 0.0, below = 0.0;
    bool narrow = false; // nothing is left between the ends of the bracket
};

SearchSeen SearchOf(const FitState& fit) {
    SearchSeen seen;
    seen.ofDistance = fit.ISFOFF == 0;
    seen.tried = seen.ofDistance ? fit.HEQTRY : fit.DCTRY;
    seen.above = seen.ofDistance ? fit.HEQPOS : fit.DCPOS;
    seen.below = seen.ofDistance ? fit.HEQNEG : fit.DCNEG;
    seen.narrow = std::fabs(seen.above - seen.below) <= kNarrow * std::fabs(seen.above);
    return seen;
}

std::string ErrorAt(double value, double error) {
    return Number(value) + " (mass " + Number(100.0 * std::fabs(error)) + " % too " +
           (error > 0.0 ? "large)" : "small)");
}

// The values of the search between which, or beyond which, the result would lie.
std::string Bracket(const FitState& fit, const SearchSeen& seen) {
    if (fit.ITERFIT <= 2)
        return "none of its runs could be compared";
    if (fit.SEENPOS != 0 && fit.SEENNEG != 0)
        return "it lies between " + ErrorAt(seen.below, fit.ERRNEG) + " and " +
               ErrorAt(seen.above, fit.ERRPOS);
    return "all values tried err to one side, the last one was " +
           (fit.SEENPOS != 0 ? ErrorAt(seen.above, fit.ERRPOS) : ErrorAt(seen.below, fit.ERRNEG));
}

std::string Remedy(const FitState& fit, const SearchSeen& seen) {
    const bool bothSigns = fit.SEENPOS != 0 && fit.SEENNEG != 0;
    if (fit.ITERFIT <= 3)
        return "a larger NFITMAX";
    if (seen.ofDistance && seen.tried <= kLowestHeq)
        return "HEQ stands at its lower bound of 0.6 nm: no distance makes the medium slow enough; look at "
               "the factors near "
               "the wall, or fit the curve alone (IHEQ 0)";
    if (!seen.ofDistance && (fit.clampedCurve || (fit.D1 != fit.D2 && (seen.narrow || !bothSigns))))
        return std::string("a curve that depends on the concentration is moved as a whole by one amount") +
               (fit.clampedCurve ? ", an end of it would fall below 0 and is held," : "") +
               " and no amount may give the mass: the direct calculation (IDIRECTD 1) gives the coefficient "
               "by concentration";
    if (seen.narrow)
        return "the mass jumps between these values: a smaller EPSTR or a larger FITERR";
    if (bothSigns)
        return "a larger NFITMAX (or FITERR)";
    return std::string(seen.ofDistance ? "the factors at no distance" : "no coefficient") +
           " may give this mass: look at reservoirs, steps and tables; a larger NFITMAX only if the error "
           "still falls";
}

std::string Begun(const Run& run, const SearchSeen& seen) {
    return MassFileName(run.units, run.fit.INDDEG) + " shows the " + (seen.ofDistance ? "HEQ" : "curve") +
           " that it began with";
}

} // namespace

void NoteSearchWithoutResult(const Run& run) {
    const FitState& fit = run.fit;
    const SearchSeen seen = SearchOf(fit);
    const std::string direction = std::string("direction ") + "?XYZ"[fit.INDDEG & 3];
    const std::string search = seen.ofDistance ? "wall distance HEQ" : "diffusion curve";
    const std::string runs = std::to_string(fit.ITERFIT - 1) + " runs (NFITMAX)";
    if (IsMassOfRounding(run, fit.MASSFIB))
        WriteNote("the model with fibres passes no mass in " + direction + ": the fit of the " + search +
                  " has no target and ended without a result after " + runs + "; " + Begun(run, seen) +
                  ". Start values and reservoirs must drive a flow, NFSTEP lie above 0, and the fibres leave "
                  "a way");
    else
        WriteNote("the fit of the " + search + " in " + direction + " ended without a result after " + runs +
                  ": " + Bracket(fit, seen) + "; " + Begun(run, seen) + ". What helps: " + Remedy(fit, seen));
}

} // namespace zurt
