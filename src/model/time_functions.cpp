#include "model/time_functions.h"

#include "core/format.h"
#include "core/stop.h"
#include "model/curve_lookup.h"
#include "model/curve_table.h"
#include "run/echo.h"
#include "run/partition.h"

namespace zurt {

namespace {

constexpr CardField kTimeFunctionCountFields[] = {
    ZURT_COUNT(CurveCounts, NTABFT, "I5", "time functions; 0: none, and no cards of functions follow"),
    ZURT_COUNT(CurveCounts, MAXTFT, "I5", "most points of one of them"),
};

constexpr EchoLine kTimeFunctionEcho[] = {
    ZURT_ECHO_INTEGER(CurveCounts, NTABFT, "BROJ RAZLICITIH VREMENSKIH FUNKCIJA ............ NTABFT =",
                      "NUMBER OF DIFFERENT TIME FUNCTIONS ............ NTABFT ="),
    ZURT_ECHO_REMARK("EQ.0; NEMA VREMENSKIH FUNKCIJA", "EQ.0; THERE ARE NO TIME FUNCTIONS"),
    ZURT_ECHO_INTEGER(CurveCounts, MAXTFT, "MAKS. BROJ TACAKA ZA DEFINISANJE VREM. FUNKCIJE  MAXTFT =",
                      "MAX. NUM. OF POINTS FOR DEFINITION OF TIME FUN. MAXTFT ="),
    ZURT_ECHO_REMARK("EQ.0; NEMA VREMENSKIH FUNKCIJA", "EQ.0; THERE ARE NO TIME FUNCTIONS"),
    ZURT_ECHO_REMARK("EQ.1; VREMENSKE FUNKCIJE SU KONSTANTNE", "EQ.1; TIME FUNCTIONS ARE CONSTANT"),
    ZURT_ECHO_REMARK("GT.1; VREMENSKE FUNKCIJE SU PROMENLJIVE", "GT.1; TIME FUNCTIONS ARE VARIABLE"),
};

void EchoCounts(Run& run, std::int32_t card) {
    PrintCardNumber(run, card, 1);
    Write(run.units.listing, "(6X,A)",
          Say(run, "P O D A C I    O    V R E M E N S K I M    F U N K C I J A M A",
              "D A T A    F O R    T I M E    F U N C T I O N S"));
    WriteEcho(run, kTimeFunctionEcho, &run.control.counts);
}

void TakeTimeFunctions(Run& run) {
    const CurveCounts& counts = run.control.counts;
    run.control.at.LTFT1 = TakeWords(run.A, "LTFT1", 2 * Word{counts.NTABFT} * counts.MAXTFT);
    run.control.at.LTFT2 = TakeWords(run.A, "LTFT2", counts.NTABFT);
    if (run.A.LMAX <= run.A.NTOTA)
        return;
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(1X,A)",
          Say(run, "NEDOVOLJNA DIMENZIJA U OSNOVNOM VEKTORU ZA UCITAVANJE PODATAKA",
              "UNSUFFICIENT DIMENSION OF BASIC VECTOR FOR DATA ENTRY"));
    Write(unit, "(1X,A,I10)", Say(run, "POTREBNA DIMENZIJA , LMAX=", "REQURED DIMENSION , LMAX="),
          run.A.LMAX);
    Write(unit, "(1X,A,I10)", Say(run, "RASPOLOZIVA DIMENZIJA , MTOT=", "AVAILABLE DIMENSION  , MTOT="),
          run.A.NTOTA);
    NoteSectionOutside(run);
    StopRun(unit);
}

/// The lines behind the first are the same in both languages.
TextUnit& BeginInputError(Run& run) {
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(1X,A)",
          Say(run, "GRESKA U ULAZNIM PODACIMA ZA VREMENSKE FUNKCIJE",
              "ERROR IN INPUT DATA FOR TIME FUNCTIONS"));
    return unit;
}

[[noreturn]] void StopOnTooManyPoints(Run& run, const CurveTableResult& result) {
    TextUnit& unit = BeginInputError(run);
    Write(unit, "(1X,A,I5)", "FUNKCIJA BR. =", result.functionNumber);
    Write(unit, "(1X,A,I5)", "UCITAN BROJ TACAKA, IMAX=", result.pointsRead);
    Write(unit, "(1X,A,I5)", "ZADATI MAKSIMALNI BROJ TACAKA ZA KRIVU , MAXTFT=", run.control.counts.MAXTFT);
    StopRun(unit);
}

[[noreturn]] void StopOnEarlyEnd(Run& run, const CurveTableResult& result) {
    TextUnit& unit = BeginInputError(run);
    Write(unit, "(1X,A)", "VREMENSKA FUNKCIJA NIJE DEFINISANA U CELOM INREVALU");
    Write(unit, "(1X,A,I5)", "FUNKCIJA BR. =", result.functionNumber);
    Write(unit, "(1X,A,1PE12.5)", "INTERVAL DEFINISANOSTI =", result.lastArgument);
    Write(unit, "(1X,A,1PE12.5)", "VREMENSKI INTERVAL INTEGRACIJE, TMAX =", run.control.counts.TotalTime);
    StopRun(unit);
}

[[noreturn]] void StopOnTimeRange(Run& run, std::int32_t function) {
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(1X,A)",
          Say(run, "ARGUMENT VAN OPSEGA ZADATE KRIVE", "ARGUMENT IS OUT OF PRESCRIBED CURVE RANGE"));
    Write(unit, "(1X,A,I5)", Say(run, "VREMENSKA FUNKCIJA BROJ =", "TIME FUNCTION NO. ="), function);
    Write(unit, "(1X,A,1PE12.4)", Say(run, "ARGUMENT VREME =", "ARGUMENT TIME  ="), run.clock.TIME);
    StopRun(unit);
}

} // namespace

const CardLayout kTimeFunctionCountCard = Layout("Time function counts", kTimeFunctionCountFields);

void ReadTimeFunctions(Run& run, const CardSource& source) {
    CurveCounts& counts = run.control.counts;
    ReadCardFields(source.deck, source.INDFOR, kTimeFunctionCountCard, &counts);
    if (EchoInput(run))
        EchoCounts(run, source.deck.CardCounter);
    if (counts.NTABFT == 0)
        return;
    TakeTimeFunctions(run);
    if (EchoInput(run))
        Write(run.units.listing, "(//6X,A)",
              Say(run, "V R E M E N S K E    F U N K C I J E", "T I M E    F U N C T I O N S"));
    const CurveTableResult result =
        ReadCurveTable(run, source, TimeFunctionPoints(run), TimeFunctionPairs(run), counts.NTABFT,
                       counts.MAXTFT, run.control.counts.TotalTime, true);
    if (result.functionNumber == 0)
        return;
    if (result.endsEarly)
        StopOnEarlyEnd(run, result);
    StopOnTooManyPoints(run, result);
}

void EvaluateTimeFunctions(Run& run, RealArray out, ConstIntArray active, ConstIntArray functions,
                           ConstRealArray multipliers, Word count) {
    const std::int32_t undefined =
        TimeFunctionValues(TimeFunctionPairs(run), TimeFunctionPoints(run), run.clock.TIME, active, functions,
                           multipliers, count, out);
    if (undefined != 0)
        StopOnTimeRange(run, undefined);
}

} // namespace zurt
