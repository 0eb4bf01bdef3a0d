// Periods of constant time step, expanded to one step size a step.
//
// Called by the driver twice a problem, when NSTAC is not 0: mode 0 behind TakePeriodTables, mode 1 behind TakeStepList.
// Times are in the units of the deck.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

constexpr int kPeriodsPerCard = 9;

/// The cards of a group of NPER values, nine to a card; list-directed all values stand in one statement.
struct StepCountCard {
    std::int32_t NKDT[kPeriodsPerCard];
};
struct StepSizeCard {
    double DTDT[kPeriodsPerCard];
};

extern const CardLayout kStepCountCards;
extern const CardLayout kStepSizeCards;

/// Mode 0: reads steps per period and step size per period, sets NDT. Mode 1: fills the list of step sizes, sets
/// TotalTime to their running sum, in the order of the steps, and writes the report. Mode below 0: nothing.
/// A period with a count below 1 adds neither steps nor time. More steps than a 32-bit integer can count are a deck error.
void ReadTimeSteps(Run& run, std::int32_t mode);

/// A steady problem has a step a period: sets NDT, and TotalTime to 0.
void CountSteadySteps(Run& run);

/// Steps of each period, step size of each period, and the size of each step.
inline IntArray PeriodStepCounts(const Run& run) {
    return IntSection(run.A, run.control.at.LNKDT, run.control.header.NPER);
}
inline RealArray PeriodStepSizes(const Run& run) {
    return RealSection(run.A, run.control.at.LDTDT, run.control.header.NPER);
}
inline RealArray StepSizes(const Run& run) {
    return RealSection(run.A, run.control.at.LDT, run.control.counts.NDT);
}

} // namespace zurt
