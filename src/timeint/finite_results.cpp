#include "timeint/finite_results.h"

#include "core/stop.h"

#include <algorithm>
#include <cmath>

namespace zurt {

namespace {

constexpr const char* kCauseOfSolution =
    "look for absurd sizes in the deck: coefficients, coordinates, time steps, a step of no length";
constexpr const char* kCauseOfFluxes = "look for absurd sizes in the deck: AMOLAR, coefficients, coordinates";

std::string Named(double value) {
    return std::isnan(value) ? "not a number" : value > 0.0 ? "infinite" : "minus infinity";
}

// Index of the first entry that is not finite, 0 when all are.
Word FirstNotFinite(ConstRealArray values) {
    for (Word i = 1; i <= values.length; ++i)
        if (!std::isfinite(values(i)))
            return i;
    return 0;
}

std::int32_t NodeOfEquation(const Run& run, Word equation) {
    const ConstIntArray ID = EquationNumbers(run);
    const std::int32_t* const found =
        std::find(ID.data, ID.data + ID.length, static_cast<std::int32_t>(equation));
    return found == ID.data + ID.length ? 0 : static_cast<std::int32_t>(found - ID.data) + 1;
}

void RequireFiniteAtNodes(const Run& run, ConstRealArray values, const char* what, const char* cause) {
    const Word node = FirstNotFinite(values);
    if (node != 0)
        RequireFinite(run, values(node), std::string(what) + " at node " + std::to_string(node), cause);
}

} // namespace

void RequireFinite(const Run& run, double value, const std::string& what, const char* cause) {
    if (std::isfinite(value))
        return;
    StopWithLibraryError("step " + std::to_string(run.clock.KOR) + ", iteration " +
                         std::to_string(run.clock.ITER) + ": the " + what + " is " + Named(value) + "; " +
                         cause);
}

void RequireFiniteTime(const Run& run) {
    RequireFinite(run, run.clock.TIME, "time at the end of the step", "look at the sizes of the time steps");
}

void RequireFiniteSolution(const Run& run) {
    const ConstRealArray solution = RightHandSide(run);
    const Word equation = FirstNotFinite(solution);
    if (equation == 0)
        return;
    const std::int32_t node = NodeOfEquation(run, equation);
    RequireFinite(run, solution(equation),
                  "concentration of equation " + std::to_string(equation) +
                      (node != 0 ? ", node " + std::to_string(node) + "," : std::string()),
                  kCauseOfSolution);
}

void RequireFiniteNodalResults(const Run& run) {
    RequireFiniteAtNodes(run, NodalValues(run), "concentration", kCauseOfSolution);
    if (run.control.header.NDS != 1 && run.control.header.NDS != 3)
        return;
    static const char* const names[10] = {
        "",          "mass flux in x", "mass flux in y",   "mass flux in z",   "flux in x",
        "flux in y", "flux in z",      "coefficient in x", "coefficient in y", "coefficient in z"};
    for (int number = 1; number <= 9; ++number)
        RequireFiniteAtNodes(run, RealSection(run.A, run.control.at.LNDS[number], run.control.header.NP),
                             names[number], kCauseOfFluxes);
}

} // namespace zurt
