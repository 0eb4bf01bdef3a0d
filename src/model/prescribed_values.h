// Prescribed concentrations: nodes whose value follows a time function times a factor.
//
// No card of the deck sets the count NZADC of the entries: they come from a file of their own (model/prescribed_file.h).
// Element passes and nodal results take the values of nodes without an equation from here (geometry/gather.h,
// timeint/step.h); at a node with an equation an entry has no effect.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

struct PrescribedCard {
    std::int32_t N = 0; // node, 0 for an entry without effect
    std::int32_t F = 0; // time function
    double V = 0.0;     // factor
    std::int32_t K = 0; // generation step up to the next card, 0 none
};

extern const CardLayout kPrescribedCard;

/// Takes the arrays of NZADC entries and reads their cards from `source`, with echo; sets run.prescribedEntry, the first
/// entry of each node. Behind a run the entries between its two cards
/// are generated: their factors go on from the closing card's. Called with NZADC positive.
/// A node outside 0..NP, a time function outside 1..NTABFT and more entries than NZADC are deck errors.
void ReadPrescribedValues(Run& run, const CardSource& source);

/// Values at the current TIME: the end values of the step before become the start values, the functions give the end
/// values, increments are their difference. Nothing happens without entries. Called in every step once time has
/// advanced. A function that is not defined at TIME stops the run.
void EvaluatePrescribedValues(Run& run);

/// The same ahead of the first step, at time 0: what the vectors held before counts as 0.
void StartPrescribedValues(Run& run);

/// Entries 1..NZADC: nodes, and ahead of them in `A` function numbers and factors.
inline IntArray PrescribedNodes(const Run& run) {
    return IntSection(run.A, run.control.at.LPRES, run.control.counts.NZADC);
}
inline IntArray PrescribedFunctions(const Run& run) {
    const Word NZADC = run.control.counts.NZADC;
    return IntSection(run.A, run.control.at.LPRES - NZADC, NZADC);
}
inline RealArray PrescribedFactors(const Run& run) {
    const Word NZADC = run.control.counts.NZADC;
    return RealSection(run.A, run.control.at.LPRES - 2 * NZADC, NZADC);
}

} // namespace zurt
