#include "model/time_steps.h"

#include "core/format.h"
#include "run/echo.h"

#include <limits>
#include <string>

namespace zurt {

namespace {

constexpr const char* kStepCountDescriptor = "I10";
constexpr const char* kStepSizeDescriptor = "D10.4";

constexpr CardField kStepCountFields[] = {
    ZURT_INTEGER(StepCountCard, NKDT, kStepCountDescriptor,
                 "steps of each of the NPER periods; below 1: no step"),
};

constexpr CardField kStepSizeFields[] = {
    ZURT_REAL(StepSizeCard, DTDT, kStepSizeDescriptor, "step size of each of the NPER periods"),
};

void ReadPeriodCards(Run& run) {
    const std::int32_t INDFOR = run.control.header.INDFOR;
    const std::int32_t firstCard = NumberOfNextCard(run.deck);
    ReadNumberCards(run.deck, INDFOR, kStepCountCards.group, kStepCountFields[0].name,
                    ZURT_DESCRIPTOR(std::int32_t, kStepCountDescriptor), kPeriodsPerCard,
                    PeriodStepCounts(run));
    ReadNumberCards(run.deck, INDFOR, kStepSizeCards.group, kStepSizeFields[0].name,
                    ZURT_DESCRIPTOR(double, kStepSizeDescriptor), kPeriodsPerCard, PeriodStepSizes(run));
    if (EchoInput(run)) // heads the report, written here because the card counter moves on
        PrintCardNumber(run, firstCard, 1);
}

void RequirePositiveSteps(Run& run) {
    const IntArray NKDT = PeriodStepCounts(run);
    const RealArray DTDT = PeriodStepSizes(run);
    for (Word period = 1; period <= NKDT.length; ++period) {
        const std::string what = "of period " + std::to_string(period);
        if (NKDT(period) < 0)
            NoteOnCard(run.deck, kStepCountCards.group, kStepCountFields[0].name,
                       "the count " + what + " is negative: it has no step");
        if (NKDT(period) > 0 && !(DTDT(period) > 0.0))
            DeckError(run.deck, kStepSizeCards.group, kStepSizeFields[0].name, std::to_string(DTDT(period)),
                      "the step " + what + " must be above 0");
    }
}

void CountSteps(Run& run) {
    const IntArray NKDT = PeriodStepCounts(run);
    std::int64_t total = 0;
    for (Word period = 1; period <= NKDT.length; ++period)
        if (NKDT(period) > 0)
            total += NKDT(period);
    if (total > std::numeric_limits<std::int32_t>::max())
        DeckError(run.deck, kStepCountCards.group, kStepCountFields[0].name, std::to_string(total),
                  "the periods have more steps than can be counted");
    if (total == 0)
        DeckError(run.deck, kStepCountCards.group, kStepCountFields[0].name, "0",
                  "a transient problem has at least one step");
    RequirePositiveSteps(run);
    run.control.counts.NDT = static_cast<std::int32_t>(total);
}

// The sum of all steps.
double ExpandPeriods(Run& run) {
    const IntArray NKDT = PeriodStepCounts(run);
    const RealArray DTDT = PeriodStepSizes(run);
    const RealArray steps = StepSizes(run);
    double total = 0.0;
    Word step = 0;
    for (Word period = 1; period <= NKDT.length; ++period) {
        for (std::int32_t k = 1; k <= NKDT(period); ++k) {
            steps(++step) = DTDT(period);
            total += DTDT(period);
        }
    }
    return total;
}

void WriteStepReport(Run& run) {
    static const Format line("(11X,I10,32X,I10,25X,D10.4)");
    TextUnit& listing = run.units.listing;
    const IntArray NKDT = PeriodStepCounts(run);
    const RealArray DTDT = PeriodStepSizes(run);
    Write(listing, "(6X,A///11X,A/)",
          Say(run, "P O D A C I   O   V R E M E N S K I M   K O R A C I M A",
              "D A T A   F O R   T I M E   S T E P S"),
          Say(run, " PERIOD RESAVANJA       BROJ VREM. KORAKA         VREM. KORAK",
              " SOLUTION PERIOD        NUM. OF TIME STEPS         TIME STEP"));
    for (Word period = 1; period <= NKDT.length; ++period)
        Write(listing, line, period, NKDT(period), DTDT(period));
    Write(listing, "(/11X,60('-'))");
    if (run.job.Language == kSerbian)
        Write(listing, "(11X,' BROJ VREMENSKIH KORAKA NDT =',I4,5X,'UKUPNO VREME =',1PE12.5)",
              run.control.counts.NDT, run.control.counts.TotalTime);
    else
        Write(listing, "(11X,' TOTAL NUMBER OF TIME STEPS    NDT =',I10,5X,'TOTAL TIME =',D12.5)",
              run.control.counts.NDT, run.control.counts.TotalTime);
}

} // namespace

const CardLayout kStepCountCards = Layout("Step count cards", kStepCountFields);
const CardLayout kStepSizeCards = Layout("Step size cards", kStepSizeFields);

void ReadTimeSteps(Run& run, std::int32_t mode) {
    if (mode < 0)
        return;
    if (mode == 0) {
        ReadPeriodCards(run);
        CountSteps(run);
        return;
    }
    run.control.counts.TotalTime = ExpandPeriods(run);
    if (EchoInput(run))
        WriteStepReport(run);
}

void CountSteadySteps(Run& run) {
    run.control.counts.NDT = run.control.header.NPER;
    run.control.counts.TotalTime = 0.0;
}

} // namespace zurt
