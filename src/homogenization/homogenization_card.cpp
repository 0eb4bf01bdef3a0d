#include "homogenization/homogenization_card.h"

#include "core/format.h"
#include "core/stop.h"
#include "run/echo.h"

#include <algorithm>

namespace zurt {

namespace {

constexpr const char* kNotCounted =
    "is no code: the direction runs but is not counted, and results may stay unwritten";

constexpr CardField kHomogenizationFields[] = {
    ZURT_COUNT(HomogenizationCard, NSETS, "I5", "number of fibre sets"),
    ZURT_CODE(HomogenizationCard, IEHM, "I5", 0, 1,
              "is no code: the elements take it for 1, the fibre step for 0",
              "1: equivalent homogeneous medium; 0 without fibre sets"),
    ZURT_CODE(HomogenizationCard, NFIT, "I5", 0, 1, "acts as 0: no fit",
              "1: homogenization; 0 without fibre sets or with IEHM 0"),
    ZURT_CODE(HomogenizationCard, NFSTEP, "I5", 0, HUGE_VAL, "acts as 0: the runs of a fit take no step",
              "time steps of one run of the fit"),
    ZURT_CODE(HomogenizationCard, NFITMAX, "I5", 0, HUGE_VAL, "ends a fit ahead of its first run",
              "iteration limit of the fit"),
    ZURT_CODE(HomogenizationCard, FITERR, "F10.6", 0.0, HUGE_VAL, "is met by no run: a fit ends at NFITMAX",
              "relative tolerance on mass"),
    ZURT_CODE(HomogenizationCard, INDFITX, "I5", 0, 1, kNotCounted, "1: homogenize for diffusion in X"),
    ZURT_CODE(HomogenizationCard, INDFITY, "I5", 0, 1, kNotCounted, "1: homogenize for diffusion in Y"),
    ZURT_CODE(HomogenizationCard, INDFITZ, "I5", 0, 1, kNotCounted, "1: homogenize for diffusion in Z"),
    ZURT_CODE(HomogenizationCard, INDDEG, "I5", 0, 3, "becomes 1 or 3, whichever is nearer",
              "main diffusion direction: below 1 becomes 1, above 3 becomes 3"),
    ZURT_CODE(HomogenizationCard, IHEQ, "I5", 0, 1, "is no code: it acts as 0",
              "1: fit HEQ after the D-C curve; 0 without a fit"),
    ZURT_CODE(HomogenizationCard, IDCC, "I5", 0, 1,
              "is no code: neither a fit of the curve nor one of HEQ alone runs as it should",
              "1: fit the D-C curve; 0 without a fit"),
    ZURT_CODE(HomogenizationCard, IDIAM, "I5", 0, 1, "is no code: it acts as 0",
              "1: subtract the molecule's radius from wall distances"),
    ZURT_CODE(HomogenizationCard, IDCSF, "I5", 0, 1,
              "is no code: factors are on in the first runs as with 1, the rest acts as 0",
              "1: IDCC becomes 1 and IHEQ 0"),
};

constexpr CardField kCurveEndsFields[] = {
    ZURT_REAL(HomogenizationCard, D1D, "D16.6", "first value of the D-C curve to start from"),
    ZURT_REAL(HomogenizationCard, D2D, "D16.6", "last value of the D-C curve to start from"),
};

void SetActiveDirections(FitState& fit) {
    const HomogenizationCard& card = fit.card;
    const bool fitting = card.NFIT == 1;
    fit.activeDirection[1] = fitting ? card.INDFITX : 0;
    fit.activeDirection[2] = fitting ? card.INDFITY : 0;
    fit.activeDirection[3] = fitting ? card.INDFITZ : 0;
    fit.NACTDIR = static_cast<std::int32_t>(std::count(fit.activeDirection + 1, fit.activeDirection + 4, 1));
}

void SwitchOffWithoutFibres(HomogenizationCard& card) {
    if (card.NSETS == 0)
        card.IEHM = card.NFIT = 0;
    if (card.IEHM == 0)
        card.NFIT = 0;
    if (card.NFIT == 0)
        card.IHEQ = card.IDCC = 0;
}

// Thirteen labels for twelve values: INDFITX is not written, and the values from NFITMAX on do not stand at their own
// labels. The record ends at the last label, which has no value.
void EchoHomogenizationCard(Run& run) {
    static const Format serbian("(/11X,'BROJ SETOVA VLAKANA ........................ NSETS   =',I5"
                                "/11X,'INDIKATOR EKVIVALENTNE HOMOGENE SREDINE .... IEHM    =',I5"
                                "/11X,'INDIKATOR HOMOGENIZACIJE ................... NFIT    =',I5"
                                "/11X,'BROJ KORAKA ZA HOMOGENIZACIJU .............. NFSTEP  =',I5"
                                "/11X,'NAJVECI BROJ ITERACIJA HOMOGENIZACIJE ...... NFITMAX =',I5"
                                "/11X,'GRESKA MASE ZA HOMOGENIZACIJU .............. FITERR  =',1PE10.3"
                                "/11X,'INDIKATOR HOMOGENIZACIJE U X PRAVCU ........ INDFITX =',I5"
                                "/11X,'INDIKATOR HOMOGENIZACIJE U Y PRAVCU ........ INDFITY =',I5"
                                "/11X,'INDIKATOR HOMOGENIZACIJE U Z PRAVCU ........ INDFITZ =',I5"
                                "/11X,'GLAVNI PRAVAC DIFUZIJE ..................... INDDEG  =',I5"
                                "/11X,'INDIKATOR HOMOGENIZACIJE HEQ ............... IHEQ    =',I5"
                                "/11X,'INDIKATOR HOMOGENIZACIJE D-C KRIVE ......... IDCC    =',I5"
                                "/11X,'INDIKATOR PRECNIKA MOLEKULA U SF ........... IDIAM   =',I5)");
    static const Format english("(/11X,'NUMBER OF FIBRE SETS ....................... NSETS   =',I5"
                                "/11X,'INDICATOR FOR EQUIVALENT HOMOGENOUS MEDIUM . IEHM    =',I5"
                                "/11X,'INDICATOR FOR HOMOGENIZATION................ NFIT    =',I5"
                                "/11X,'NUMBER OF TIMESTEPS FOR HOMOGENIZATION...... NFSTEP  =',I5"
                                "/11X,'MAX NUMBER OF ITERATIONS FOR HOMOGENIZATION. NFITMAX =',I5"
                                "/11X,'MASS ERROR FOR HOMOGENIZATION............... FITERR  =',1PE10.3"
                                "/11X,'INDICATOR FOR HOMOGENIZATION IN X DIRECTION. INDFITX =',I5"
                                "/11X,'INDICATOR FOR HOMOGENIZATION IN Y DIRECTION. INDFITY =',I5"
                                "/11X,'INDICATOR FOR HOMOGENIZATION IN Z DIRECTION. INDFITZ =',I5"
                                "/11X,'MAIN DIFFUSION DIRECTION.................... INDDEG  =',I5"
                                "/11X,'INDICATOR FOR HOMOGENIZATION OF HEQ......... IHEQ    =',I5"
                                "/11X,'INDICATOR FOR HOMOGENIZATION OF D-C CURVE... IDCC    =',I5"
                                "/11X,'INDICATOR FOR INCLUDING MOL. DIAMETER IN SF. IDIAM   =',I5)");
    const HomogenizationCard& card = run.fit.card;
    const Format& format = run.job.Language == kSerbian ? serbian : english;
    Write(run.units.listing, format, card.NSETS, card.IEHM, card.NFIT, card.NFITMAX, card.NFSTEP, 0.0,
          card.INDFITY, card.INDFITZ, card.INDDEG, card.IHEQ, card.IDCC, card.IDIAM);
}

} // namespace

const CardLayout kHomogenizationCard = Layout("Homogenization card", kHomogenizationFields);
const CardLayout kCurveEndsCard = Layout("Card of the curve ends", kCurveEndsFields);

void ForgetFit(Run& run) {
    FitState fresh;
    fresh.card = run.fit.card;
    fresh.card.IEHM = run.fit.IEHM;
    fresh.card.INDDEG = run.fit.INDDEG;
    run.fit = fresh;
    run.mass = MassTables{};
}

void ReadHomogenizationCard(Run& run) {
    HomogenizationCard& card = run.fit.card;
    const std::int32_t INDFOR = run.control.header.INDFOR;
    const std::int32_t first = NumberOfNextCard(run.deck);
    ReadCardFields(run.deck, INDFOR, kHomogenizationCard, &card);
    card.INDDEG = std::clamp(card.INDDEG, 1, 3);
    if (card.IDCSF == 1) {
        card.IDCC = 1;
        card.IHEQ = 0;
    } else if (card.IDCC == 0) {
        ReadCardFields(run.deck, INDFOR, kCurveEndsCard, &card);
    }
    SetActiveDirections(run.fit);
    const bool wanted = card.NFIT == 1;
    SwitchOffWithoutFibres(card);
    if (wanted && card.NFIT != 1)
        WriteNote("a fit (NFIT 1) needs fibre sets (NSETS) and IEHM 1: this problem runs without one");
    if (EchoInput(run)) {
        PrintCardNumber(run, first, 0);
        EchoHomogenizationCard(run);
    }
    if (run.control.header.IDIRECTD == 1) // takes the model with fibres first; a fit beside it is not made
        card.IEHM = card.NFIT = 0;
    run.fit.IEHM = card.IEHM;
    run.fit.INDDEG = card.INDDEG;
    run.fit.IFINALRUN = card.NFIT != 1;
}

void TakeHeqStart(Run& run) {
    FitState& fit = run.fit;
    fit.HEQ = run.fibres.HEQ;
    if (run.fibres.dimension != 3)
        return;
    fit.HEQ0 = fit.HEQ;
    for (int direction = 1; direction <= 3; ++direction)
        fit.HEQDIR[direction] = fit.HEQ;
}

} // namespace zurt
