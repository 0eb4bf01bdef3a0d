#include "model/outlet.h"

#include "core/format.h"
#include "model/curve_checks.h"
#include "model/curve_lookup.h"
#include "run/echo.h"
#include "run/partition.h"

#include <string>

namespace zurt {

namespace {

struct TimePair {
    double TIME = 0.0;
    double VALUE = 0.0;
};

enum class TimePairKind { Inlet = 1, Outlet = 2, Multiplier = 3 };

constexpr CardField kOutletModeFields[] = {
    ZURT_CODE(OutletFields, NPOUT2, "I5", 0, HUGE_VAL,
              "asks for a function of time that nothing evaluates: the outlet stays at its start",
              "mode of the outlet; above 1 the number of its pairs"),
};

constexpr CardField kOutletConcentrationFields[] = {
    ZURT_REAL(OutletFields, CONCOUT0, "D13.5", "concentration of all nodes without an equation"),
};

constexpr CardField kOutletCoefficientsFields[] = {
    ZURT_DORMANT(OutletFields, coefficients, "D15.5", "A, B, D, E of the outlet's function of time",
                 "echoed only"),
};

constexpr CardField kTimeMultiplierFields[] = {
    ZURT_CODE(OutletFields, ITMF1, "I5", 0, 1, "acts as 0: no multiplier",
              "1: the time multiplier acts in element group 1"),
    ZURT_CODE(OutletFields, ITMF2, "I5", 0, 1, "acts as 0: no multiplier",
              "1: the time multiplier acts in element group 2"),
    ZURT_COUNT(OutletFields, NTMF, "I5", "points of the time multiplier"),
};

constexpr CardField kTimePairFields[] = {
    ZURT_REAL(TimePair, TIME, "D20.6", "time"),
    ZURT_REAL(TimePair, VALUE, "D20.6", "value at this time"),
};

constexpr EchoLine kOutletModeEcho[] = {
    ZURT_ECHO_INTEGER(OutletFields, NPOUT2, "BROJ TACAKA ZA IZLAZNU KONCENTRACIJU.............NPOUT2=",
                      "NUMBER OF POINTS FOR OUTLET CONCENTRATION........NPOUT2="),
    ZURT_ECHO_REMARK("EQ.0 - RACUNA SE IZ IZLAZNE ZAPREMINE I OSLOBODJENE MASE",
                     "EQ.0 - CALCULATED FROM OUTLET VOLUME AND MASS RELEASE"),
    ZURT_ECHO_REMARK("EQ.1 - KONSTANTNA IZLAZNA KONCENTRACIJA", "EQ.1 - CONSTANT OUTLET CONCENTRATION"),
    ZURT_ECHO_REMARK("GT.1 - NPOUT2 PAROVA VREME-KONCENTRACIJA", "GT.1 - NPOUT2 PAIRS TIME-CONCENTRATION"),
    ZURT_ECHO_REMARK("LT.1 - ANALITICKI IZRAZ (ZAVISNOST OD VREMENA):",
                     "LT.1 - ANALYTICAL EXPRESSION (DEPENDENCE ON TIME):"),
    ZURT_ECHO_REMARK("-1   LINEARNI", "-1   LINEAR"),
    ZURT_ECHO_REMARK("-2   KVADRATNI", "-2   KVADRATIC"),
    ZURT_ECHO_REMARK("-3   EKSPONENCIJALNI", "-3   EXPONENTIAL"),
    ZURT_ECHO_REMARK("-4   SINUSNI", "-4   SINUSOIDAL"),
};

void WritePairsHeading(Run& run, TimePairKind kind) {
    TextUnit& listing = run.units.listing;
    const char* heading =
        kind == TimePairKind::Inlet ? Say(run, "ULAZNA GRANICA MAKROKANALA: KONCENTRACIJA - VREME",
                                          "INLET BOUNDARY OF MACROCHANNEL: CONCENTRATIN VS TIME")
        : kind == TimePairKind::Outlet
            ? Say(run, "IZLAZNA GRANICA NDS1-2: KONCENTRACIJA - VREME",
                  "OUTLET BOUNDARY OF NDS1-2: CONCENTRATIN VS TIME")
            : Say(run, "TMF: KOEFICIJENT DIFUZIJE - VREME", "TMF: DIFFUSION COEFFICENT VS TIME");
    const char* column = kind == TimePairKind::Multiplier ? Say(run, "KOEF. DIFUZIJE", "DIFF. COEFF")
                                                          : Say(run, "KONCENTRACIJA", "CONCENTRATION");
    Write(listing, "(//6X,A)", heading);
    Write(listing, "(/5X,A,20X,A)", Say(run, "VREME", "TIME"), column);
}

void ReadTimePairs(Run& run, RealArray table, TimePairKind kind) {
    static const Format line("(D14.5,11X,D14.5)");
    WritePairsHeading(run, kind);
    TablePoints points;
    for (Word i = 1; i < table.length; i += 2) {
        TimePair pair;
        ReadImageFields(run.deck, run.control.header.INDFOR, kTimePairCard, &pair);
        table(i) = pair.TIME;
        table(i + 1) = pair.VALUE;
        Write(run.units.listing, line, pair.TIME, pair.VALUE);
        points.arguments.push_back(pair.TIME);
        points.values.push_back(pair.VALUE);
    }
    NoteIfNotRising(run.deck, kTimePairCard.group, "TIME", points,
                    kind == TimePairKind::Multiplier ? "of the time multiplier" : "of the outlet");
}

void ReadConstantOutlet(Run& run) {
    OutletFields& outlet = run.control.outlet;
    ReadImageFields(run.deck, run.control.header.INDFOR, kOutletConcentrationCard, &outlet);
    Write(run.units.listing, "(/A,A,D13.5)",
          Say(run, " POCETNA ILI KONSTANTNA KONCENTR NA", " INITIAL OR CONSTANT CONCENTR AT"),
          Say(run, " IZLAZU, CONCOUT0=", " THE OUTLET, CONCOUT0="), outlet.CONCOUT0);
    outlet.OutletStartOfRun = outlet.OutletEnd = outlet.CONCOUT0;
}

void ReadAnalyticOutlet(Run& run) {
    OutletFields& outlet = run.control.outlet;
    ReadImageFields(run.deck, run.control.header.INDFOR, kOutletCoefficientsCard, &outlet);
    Write(run.units.listing, "(/A)",
          Say(run, " IZLAZ - KOEFICIJENTI FUNKCIJE VREMENA: A,B,D,E",
              " OUTLET - COEFFICIENTS FOR TIME FUNCTION: A,B,D,E"));
    Write(run.units.listing, "(4D15.5)", ConstRealArray(outlet.coefficients, 4));
}

void ReadOutletMode(Run& run) {
    OutletFields& outlet = run.control.outlet;
    ReadImageFields(run.deck, run.control.header.INDFOR, kOutletModeCard, &outlet);
    WriteEcho(run, kOutletModeEcho, &outlet);
    if (outlet.NPOUT2 < 0)
        return ReadAnalyticOutlet(run);
    if (outlet.NPOUT2 <= 1)
        return ReadConstantOutlet(run);
    TakeOutletPairs(run, outlet.NPOUT2);
    ReadTimePairs(run, RealSection(run.A, run.control.at.LOUT1, 2 * Word{outlet.NPOUT2}),
                  TimePairKind::Outlet);
}

void ReadTimeMultiplier(Run& run) {
    OutletFields& outlet = run.control.outlet;
    ReadImageFields(run.deck, run.control.header.INDFOR, kTimeMultiplierCard, &outlet);
    if (outlet.ITMF1 != 1 && outlet.ITMF2 != 1)
        return;
    if (outlet.NTMF < 1)
        DeckError(run.deck, kTimeMultiplierCard.group, "NTMF", std::to_string(outlet.NTMF),
                  "a time multiplier that is switched on has at least one point");
    TakeTimeMultiplierPairs(run, outlet.NTMF);
    ReadTimePairs(run, RealSection(run.A, run.control.at.LOUT2, 2 * Word{outlet.NTMF}),
                  TimePairKind::Multiplier);
}

} // namespace

void CarryOutletOver(Run& run) {
    run.control.outlet.OutletStartOfRun = run.clock.OutletStart;
}

const CardLayout kOutletModeCard = Layout("Outlet mode card", kOutletModeFields);
const CardLayout kOutletConcentrationCard = Layout("Outlet concentration card", kOutletConcentrationFields);
const CardLayout kOutletCoefficientsCard = Layout("Outlet coefficients card", kOutletCoefficientsFields);
const CardLayout kTimeMultiplierCard = Layout("Time multiplier card", kTimeMultiplierFields);
const CardLayout kTimePairCard = Layout("Time pair card", kTimePairFields);

void ReadOutletData(Run& run) {
    Write(run.units.listing, "(///1X,A)",
          Say(run, " P O D A C I  O  I Z L A Z N O J  K O N C E N T R A C I J I",
              " D A T A  F O R  O U T L E T  C O N C E T R A T I O N"));
    ReadOutletMode(run);
    ReadTimeMultiplier(run);
    const HomogenizationCard& card = run.fit.card;
    if (run.control.header.NDS == 3 && (card.INDFITX == 1 || run.fit.INDDEG == 1))
        TakeReservoirVectors(run, run.control.outlet.NPOUT2 > 0);
}

double TimeMultiplierOfGroup(const Run& run, std::int32_t NGE) {
    const HeaderFields& header = run.control.header;
    const OutletFields& outlet = run.control.outlet;
    const bool cardsRead = header.NANOCH > 0 && header.NDS != 0 && header.NDS != 2;
    const bool on = (NGE == 1 && outlet.ITMF1 == 1) || (NGE == 2 && outlet.ITMF2 == 1);
    if (!cardsRead || !on)
        return 1.0;
    const ConstRealArray pairs = RealSection(run.A, run.control.at.LOUT2, 2 * Word{outlet.NTMF});
    return TimeMultiplierLookup(pairs, outlet.NTMF, run.clock.TIME);
}

} // namespace zurt
