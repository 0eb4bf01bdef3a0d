// Forming of radial fibre groups, assembled (the fibre's nodes are nodes of the model) or substructured (only what leaves
// the fibre reaches the system).
#pragma once

#include "run/run.h"

namespace zurt {

/// One visit of a radial group at an iteration. An assembled fibre adds its
/// rings to the system. A substructured one is brought to equilibrium with the value of its continuum node first, and
/// then its flux is added to the right-hand side alone, at that node or in equal parts at the common nodes. The
/// coefficient is that of the card, or under INDDEGR 1 that of the degrading polymer at TIME.
void FormGroupRadial(Run& run, const ElementGroup& group);

/// Fibres in the balance of a step: amounts, and flows per unit time.
struct FibreBalance {
    double stored = 0.0; // in the fibres
    double taken = 0.0;  // what they take in from the continuum
    double moved = 0.0;  // the absolute values of that
};

/// Adds the group's fibres at the solution in hand; substructured ones as the latest iteration left them.
///   residual  1..NP: what the fibres give off to the nodes (in and out)
void AddRadialBalance(Run& run, const ElementGroup& group, RealArray residual, FibreBalance& balance);

} // namespace zurt
