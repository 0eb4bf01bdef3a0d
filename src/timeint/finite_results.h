// Results that are not finite end the run where they first appear.
#pragma once

#include "run/run.h"

#include <string>

namespace zurt {

/// The end of the step must be a finite time.
void RequireFiniteTime(const Run& run);

/// The solution of the system (RHS) by equation, as it comes from the solver; names the first node whose value is not finite.
void RequireFiniteSolution(const Run& run);

/// The concentrations at the nodes, and with NDS 1 and 3 mass fluxes, fluxes and coefficients, ahead of being written.
void RequireFiniteNodalResults(const Run& run);

/// Ends the run when `value` is not finite: "step k, iteration n: `what` ... `cause`", status 2.
void RequireFinite(const Run& run, double value, const std::string& what, const char* cause);

} // namespace zurt
