#include "model/function_tables.h"

#include "core/format.h"
#include "core/stop.h"
#include "model/curve_table.h"
#include "run/echo.h"
#include "run/partition.h"

namespace zurt {

namespace {

constexpr const char* kShapeFactorDescriptor = "F10.3";

constexpr CardField kRadiationFields[] = {
    ZURT_AMOUNT(CurveCounts, SBC, "F15.0", "Stefan-Boltzmann constant"),
    ZURT_COUNT(CurveCounts, NFO, "I5", "shape factors; 0: none, every surface has the factor 1"),
};

constexpr CardField kShapeFactorFields[] = {
    ZURT_AMOUNT(ShapeFactorCard, FO, kShapeFactorDescriptor,
                "shape factors 1 to NFO; a surface takes the one with the number of its emissivity function"),
};

constexpr EchoLine kRadiationEcho[] = {
    ZURT_ECHO_REAL(CurveCounts, SBC, "STEFAN-BOLCMANOVA KONSTANTA ................. SBC =",
                   "STEFAN-BOLZMAN CONSTANT ..................... SBC ="),
    ZURT_ECHO_INTEGER(CurveCounts, NFO, "BROJ FAKTORA OBLIKA POVRSINSKE RADIJACIJE ........ NFO =",
                      "NUMBER OF SURFACE RADIATION SHAPE FACTORS ........ NFO ="),
    ZURT_ECHO_REMARK("EQ.0; FAKTOR OBLIKA JE BEZ UTICAJA", "EQ.0; SURFACE RADIATION SHAPE IS WITHOUT EFFECT"),
};

struct FunctionFamily {
    const char* name; // of the section of `A`
    std::int32_t CurveCounts::*functions;
    std::int32_t CurveCounts::*largest;
    Word Pointers::*countsAt;
    Word Pointers::*tableAt;
    bool ofTime; // must reach the end of the integration
    const char* serbianHeading;
    const char* englishHeading;
    const char* serbianErrorTitle;
    const char* englishErrorTitle;
};

constexpr const char* kSerbianFluxTitle = "GRESKA U ULAZNIM PODACIMA FUNKCIJA POVRSINSKIH FLUKSEVA  :";
constexpr const char* kEnglishFluxTitle = "ERROR IN FUNCTIONS OF SURFACE FLUXES INPUT DATA  :";

// In the order of the deck. Radiation has no error title of its own and takes that of the fluxes.
constexpr FunctionFamily kFamilies[] = {
    {"NQE functions", &CurveCounts::NQE, &CurveCounts::MAXTQE, &Pointers::LQE1, &Pointers::LQE2, true,
     "F U N K C I J E   Z A P R E M I N S K I H   I Z V O R A",
     "F U N C T I O N S   O F   V O L U M E   S O U R C E S",
     "GRESKA U ULAZNIM PODACIMA FUNKCIJA TEMPERATURSKIH IZVORA (PONORA):",
     "ERROR IN FUNCTIONS OF TEMPERATURE SOURCES (SINKS) INPUT DATA:"},
    {"NQP functions", &CurveCounts::NQP, &CurveCounts::MAXTQP, &Pointers::LQP1, &Pointers::LQP2, true,
     "F U N K C I J E   P O V R S I N S K I H   F L U K S E V A",
     "F U N C T I O N S   O F   S U R F A C E   F L U X E S", kSerbianFluxTitle, kEnglishFluxTitle},
    {"NTOK functions", &CurveCounts::NTOK, &CurveCounts::MAXTOK, &Pointers::LTOK1, &Pointers::LTOK2, true,
     "F U N K C I J E   O K O L I N E", "F U N C T I O N S   O F   E N V I R O N M E N T",
     "GRESKA U FUNKCIJAMA TEMPERATURE OKOLINE ULAZNI PODACI :",
     "ERROR IN ENVIRONMENT TEMPERATURE FUNCTIONS INPUT DATA :"},
    {"NHP functions", &CurveCounts::NHP, &CurveCounts::MAXTHP, &Pointers::LHP1, &Pointers::LHP2, false,
     "F U N K C I J E   K O N V E K C I J E", "F U N C T I O N S   O F   C O N V E C T I O N",
     "GRESKA U FUNKCIJAMA ZAVISNOSTI KOEFICIJENTA KONVEKCIJE OD TEMPERATURE  :",
     "ERROR IN FUNCTIONS OF CONVECTION COEFICIENT TEMPERATURE DEPENDENCE  :"},
    {"NHR functions", &CurveCounts::NHR, &CurveCounts::MAXTHR, &Pointers::LHR1, &Pointers::LHR2, false,
     "F U N K C I J E   R A D I J A C I J E", "F U N C T I O N S   O F   R A D I A T I O N",
     kSerbianFluxTitle, kEnglishFluxTitle},
};

[[noreturn]] void StopOnFamilyError(Run& run, const FunctionFamily& family, const CurveTableResult& result) {
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(1X,A)", Say(run, family.serbianErrorTitle, family.englishErrorTitle));
    if (result.endsEarly) {
        Write(unit, "(1X,A)",
              Say(run, " VREMENSKA FUNKCIJA NIJE DEFINISANA U CELOM INTERVALU ",
                  " TIME FUNCTION IS NOT DEFINED WITHIN THE WHOLE RANGE "));
        Write(unit, "(1X,A,I3)", Say(run, " FUNKCIJA BR. =", " FUNCTION NO. ="), result.functionNumber);
        Write(unit, "(1X,A,E12.5)", Say(run, " INTERVAL DEFINISANOSTI =", " DEFINE INTERVAL ="),
              result.lastArgument);
        Write(unit, "(1X,A,E12.5)",
              Say(run, " VREMENSKI INTERVAL INTEGRACIJE, TMAX =", " INTEGRATION TIME INTERVAL, TMAX ="),
              run.control.counts.TotalTime);
        StopRun(unit);
    }
    Write(unit, "(1X,A,I3)", Say(run, "FUNKCIJA BR. =", "FUNCTION NO. ="), result.functionNumber);
    Write(unit, "(1X,A,I5)", Say(run, "UCITAN BROJ TACAKA, IMAX=", "NUMBER OF POINTS READ IN, IMAX="),
          result.pointsRead);
    Write(unit, "(1X,A,I5)",
          Say(run, "ZADATI MAKSIMALNI BROJ TACAKA ZA KRIVU =", "PRESCRIBED MAX. NO. OF POINTS FOR CURVE ="),
          run.control.counts.*family.largest);
    StopRun(unit);
}

void ReadFamily(Run& run, const FunctionFamily& family) {
    const std::int32_t functions = run.control.counts.*family.functions;
    const std::int32_t largest = run.control.counts.*family.largest;
    Pointers& at = run.control.at;
    if (functions == 0)
        return;
    TakeFunctionTable(run, family.name, functions, largest, at.*family.countsAt, at.*family.tableAt);
    if (EchoInput(run))
        Write(run.units.listing, "(///6X,A)", Say(run, family.serbianHeading, family.englishHeading));
    const FunctionTable table =
        FunctionTableAt(run, functions, largest, at.*family.countsAt, at.*family.tableAt);
    const CurveTableResult result =
        ReadCurveTable(run, CardsOfDeck(run), table.points, table.pairs, functions, largest,
                       run.control.counts.TotalTime, family.ofTime);
    if (result.functionNumber != 0)
        StopOnFamilyError(run, family, result);
}

void ReadShapeFactors(Run& run) {
    TakeShapeFactors(run);
    StopIfInputOverflows(run); // here because the factors are written at once
    const RealArray factors = ShapeFactors(run);
    ReadNumberCards(run.deck, run.control.header.INDFOR, kShapeFactorCards.group, kShapeFactorFields[0].name,
                    ZURT_DESCRIPTOR(double, kShapeFactorDescriptor), kShapeFactorsPerCard, factors);
    for (Word i = 1; i <= factors.length; ++i)
        CheckFieldValue(run.deck, kShapeFactorCards.group, kShapeFactorFields[0], factors(i));
    if (!EchoInput(run))
        return;
    Write(run.units.listing, "(//6X,A/)",
          Say(run, "F A K T O R I    O B L I K A", "S H A P E    F A C T O R S"));
    Write(run.units.listing, "(8F10.3)", factors);
}

void ReadRadiation(Run& run) {
    ReadCardFields(run.deck, run.control.header.INDFOR, kRadiationCard, &run.control.counts);
    if (EchoInput(run))
        WriteEcho(run, kRadiationEcho, &run.control.counts);
    if (run.control.counts.NFO != 0)
        ReadShapeFactors(run);
}

} // namespace

const CardLayout kRadiationCard = Layout("Radiation card", kRadiationFields);
const CardLayout kShapeFactorCards = Layout("Shape factor cards", kShapeFactorFields);

void ReadFunctionTables(Run& run) {
    for (const FunctionFamily& family : kFamilies)
        ReadFamily(run, family);
    if (run.control.counts.NHR != 0)
        ReadRadiation(run);
}

} // namespace zurt
