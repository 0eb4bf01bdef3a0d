#include "model/materials.h"

#include "core/format.h"
#include "core/stop.h"
#include "model/curve_checks.h"
#include "model/material_tables.h"

#include <string>

namespace zurt {

namespace {

constexpr CardField kMaterialFields[] = {
    ZURT_INTEGER(MaterialCard, NFUN, "I5", "conduction function of the directions x, y, z; 0: analytic form"),
    ZURT_REAL(MaterialCard, PROP, "F10.0", "multipliers of the directions x, y, z under IANIZ 1"),
    ZURT_AMOUNT(MaterialCard, DENS, "F10.0", "density: factor on the specific heat"),
    ZURT_REAL(MaterialCard, TOPM, "F10.0", "highest concentration of the analytic form"),
    ZURT_REAL(MaterialCard, TMNM, "F10.0", "lowest concentration of the analytic form"),
};

constexpr CardField kConductionHeaderFields[] = {
    ZURT_INTEGER(ConductionHeaderCard, N, "I5", "function number, 1 to NTABK"),
    ZURT_COUNT(ConductionHeaderCard, P, "I5", "points, at most MAXTK; 0 becomes 1"),
};

constexpr CardField kConductionPointFields[] = {
    ZURT_REAL(MaterialPointCard, ARGUMENT, "D20.6", "concentration, rising from card to card"),
    ZURT_REAL(MaterialPointCard, VALUE, "D20.6", "conduction or diffusion coefficient"),
};

constexpr CardField kSpecificHeatHeaderFields[] = {
    ZURT_INTEGER(SpecificHeatHeaderCard, N, "I5", "material number, 1 to NMATT"),
    ZURT_COUNT(SpecificHeatHeaderCard, P, "I5", "points, at most MAXTC; 0 becomes 1"),
};

constexpr CardField kSpecificHeatPointFields[] = {
    ZURT_REAL(MaterialPointCard, ARGUMENT, "F10.0", "concentration, rising from card to card"),
    ZURT_AMOUNT(MaterialPointCard, VALUE, "F10.0", "specific heat; stored multiplied by the density"),
};

/// All nine sections: curves that no card gives are then constants of value 0 whatever an earlier problem left in `A`.
void ClearMaterials(Run& run) {
    const RealTable last = SpecificHeatPairs(run);
    ClearWords(run.A, run.control.at.LMAT[1], run.control.at.LMAT[9] + last.rows * last.columns - 1);
}

void WriteMaterialHeading(Run& run) {
    TextUnit& listing = run.units.listing;
    Write(listing, "('1'///6X,A//)",
          Say(run, "P O D A C I   O   M A T E R I J A L I M A", "M A T E R I A L   D A T A"));
    Write(listing, "(2X,A,5X,A,6X,A,22X,A,5X,A,6X,A/)", Say(run, "MAT. ", "MAT. "),
          Say(run, "FUNKCIJE  ", "FUNCTIONS "), Say(run, "KOEFICIJENTI  ", "MULTIPLIERS   "),
          Say(run, "GUSTINA ", "MAT DENS"), Say(run, "MAX TEMP", "MAX CONC"),
          Say(run, "MIN TEMP", "MIN CONC"));
}

/// A function number below 1 of the second and third direction stands for the first direction's; element code reads
/// the first one as an index whenever any of the three is not 0.
void RequireFunctions(const Run& run, const MaterialCard& card) {
    const std::int32_t NTABK = run.control.counts.NTABK;
    for (int direction = 0; direction < 3; ++direction) {
        const std::int32_t number = card.NFUN[direction];
        if (number > NTABK || (direction == 0 && number < 0))
            DeckError(run.deck, kMaterialCard.group, "NFUN", std::to_string(number),
                      "there is no such function: NTABK is " + std::to_string(NTABK));
    }
}

void ReadMaterialCards(Run& run) {
    static const Format line("(2X,I5,5X,3I5,3X,1P,4D12.4,2D14.4)");
    const IntTable functions = MaterialFunctions(run);
    const RealTable multipliers = MaterialMultipliers(run);
    for (std::int32_t m = 1; m <= run.control.header.NMATT; ++m) {
        MaterialCard card;
        ReadCardFields(run.deck, run.control.header.INDFOR, kMaterialCard, &card);
        RequireFunctions(run, card);
        for (int direction = 1; direction <= 3; ++direction) {
            functions(m, direction) = card.NFUN[direction - 1];
            multipliers(m, direction) = card.PROP[direction - 1];
        }
        MaterialDensities(run)(m) = card.DENS;
        MaterialMaxima(run)(m) = card.TOPM;
        MaterialMinima(run)(m) = card.TMNM;
        if (EchoInput(run))
            Write(run.units.listing, line, m, card.NFUN[0], card.NFUN[1], card.NFUN[2], card.PROP[0],
                  card.PROP[1], card.PROP[2], card.DENS, card.TOPM, card.TMNM);
    }
}

struct CurveLimit {
    const char* serbianTitle;
    const char* englishTitle;
    const char* name;
    std::int32_t most;
};

void StopOnTooManyPoints(Run& run, const CurveLimit& limit, std::int32_t N, std::int32_t P) {
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(1X,A)", Say(run, limit.serbianTitle, limit.englishTitle));
    Write(unit, "(1X,A,I3)", Say(run, " MATERIJAL BROJ =", " MATERIAL NUMBER ="), N);
    Write(unit, "(1X,A,I3)", Say(run, " BROJ TACAKA NA KRIVOJ =", " NUMBER POINTS ON CURVE ="), P);
    Write(unit, "(1X,A,A,A,I3)",
          Say(run, " MAKSIMALNI BROJ TACAKA NA KRIVOJ , ", " MAXIMAL NUMBER POINTS ON CURVE , "), limit.name,
          " =", limit.most);
    StopRun(unit);
}

void EchoCurveHeader(Run& run, const char* label, std::int32_t N, std::int32_t P) {
    TextUnit& listing = run.units.listing;
    Write(listing, "(//6X,A,I5,5X,A,I5)", label, N, Say(run, "BROJ TACAKA", "NUMBER OF POINTS"), P);
    Write(listing, "(/12X,A,13X,A)", "ARGUMENT", Say(run, "FUNKCIJA", "FUNCTION"));
}

/// Reads one point of a curve; absent items stand for what `point` holds.
void ReadPoint(Run& run, const CardLayout& layout, MaterialPointCard& point) {
    static const Format line("(6X,D14.5,7X,D14.5)");
    ReadCardFields(run.deck, run.control.header.INDFOR, layout, &point);
    if (EchoInput(run))
        Write(run.units.listing, line, point.ARGUMENT, point.VALUE);
}

void KeepPoint(TablePoints& points, const MaterialPointCard& point) {
    points.arguments.push_back(point.ARGUMENT);
    points.values.push_back(point.VALUE);
}

void ReadConductionFunction(Run& run) {
    const CurveCounts& counts = run.control.counts;
    ConductionHeaderCard header;
    ReadCardFields(run.deck, run.control.header.INDFOR, kConductionHeaderCard, &header);
    if (header.P == 0)
        header.P = 1;
    if (header.P > counts.MAXTK)
        StopOnTooManyPoints(run,
                            {"GRESKA U ULAZNIM PODACIMA ZA KOEFICIJENT PROVODJENJA:",
                             "ERROR IN INPUT DATA FOR CONDUCTION COEFFICIENT:", "MAXTK", counts.MAXTK},
                            header.N, header.P);
    RequireIndex(run.deck, kConductionHeaderCard.group, "N", header.N, counts.NTABK);
    if (EchoInput(run))
        EchoCurveHeader(run, Say(run, "FUNKCIJA BROJ", "FUNCTION NUMBER"), header.N, header.P);
    if (run.check.on)
        KeepLine(run.check.curveLine, header.N, run.deck.cardLine);
    ConductionPoints(run)(header.N) = header.P;
    const RealTable pairs = ConductionPairs(run);
    const Word row = 2 * Word{header.N};
    TablePoints points;
    for (Word p = 1; p <= header.P; ++p) {
        MaterialPointCard point{pairs(row - 1, p), pairs(row, p)};
        ReadPoint(run, kConductionPointCard, point);
        pairs(row - 1, p) = point.ARGUMENT;
        pairs(row, p) = point.VALUE;
        KeepPoint(points, point);
    }
    const std::string what = "of function " + std::to_string(header.N);
    NoteIfNotRising(run.deck, kConductionPointCard.group, "ARGUMENT", points, what);
    CheckCoefficients(run.deck, kConductionPointCard.group, "VALUE", points, what);
}

void ReadConduction(Run& run) {
    TextUnit& listing = run.units.listing;
    if (run.control.counts.NTABK == 0) {
        if (EchoInput(run))
            Write(listing, "(//6X,A)",
                  Say(run, "SVE ZAVISNOSTI KOEFICIJENATA PROVODJENJA TOPLOTE OD TEMPERATURE - ANALITICKE",
                      "ALL CONDUCTION COEFICIENT TEMPERATURE DEPENDENCE ARE GIVEN IN ANALITICAL FORM "));
        return;
    }
    if (EchoInput(run))
        Write(listing, "(//6X,A)",
              Say(run, "K O E F I C I J E N T   P R O V O D J E N J A - T E M P E R A T U R A",
                  "D I F F U S I O N   C O E F F I C I E N T - C O N C E N T R A T I O N"));
    for (std::int32_t i = 1; i <= run.control.counts.NTABK; ++i)
        ReadConductionFunction(run);
}

/// Reads one curve of a material and scales it by the material's density. Without room (a problem whose NSTAC is not
/// positive) its cards are passed over.
void ReadSpecificHeatCurve(Run& run) {
    const CurveCounts& counts = run.control.counts;
    SpecificHeatHeaderCard header;
    ReadCardFields(run.deck, run.control.header.INDFOR, kSpecificHeatHeaderCard, &header);
    if (header.P == 0)
        header.P = 1;
    if (header.P > counts.MAXTC)
        StopOnTooManyPoints(run,
                            {"GRESKA U ULAZNIM PODACIMA ZA SPECIFICNU TOPLOTU:",
                             "ERROR IN INPUT DATA FOR SPECIFIC HEAT:", "MAXTC", counts.MAXTC},
                            header.N, header.P);
    RequireIndex(run.deck, kSpecificHeatHeaderCard.group, "N", header.N, run.control.header.NMATT);
    if (EchoInput(run))
        EchoCurveHeader(run, Say(run, "MATERIJAL BROJ", "MATERIAL NUMBER"), header.N, header.P);
    if (run.check.on)
        KeepLine(run.check.capacityLine, header.N, run.deck.cardLine);
    const double density = MaterialDensities(run)(header.N);
    const bool stored = HasSpecificHeatTable(run);
    if (stored)
        SpecificHeatPoints(run)(header.N) = header.P;
    const RealTable pairs = SpecificHeatPairs(run);
    const Word row = 2 * Word{header.N};
    TablePoints points;
    for (Word p = 1; p <= header.P; ++p) {
        MaterialPointCard point;
        ReadPoint(run, kSpecificHeatPointCard, point);
        KeepPoint(points, point);
        if (!stored)
            continue;
        pairs(row - 1, p) = point.ARGUMENT;
        pairs(row, p) = point.VALUE * density;
    }
    NoteIfNotRising(run.deck, kSpecificHeatPointCard.group, "ARGUMENT", points,
                    "of material " + std::to_string(header.N));
}

void ReadSpecificHeat(Run& run) {
    const CurveCounts& counts = run.control.counts;
    if (counts.NANLC == 0 && counts.NTABC == 0)
        return;
    TextUnit& listing = run.units.listing;
    if (EchoInput(run)) {
        Write(listing, "(//6X,A)",
              Say(run, "S P E C I F I C N A   T O P L O T A - T E M P E R A T U R A",
                  "S P E C I F I C   H E A T - C O N C E N T R A T I O N"));
        if (counts.NTABC < 1)
            Write(listing, "(//6X,A)",
                  Say(run, "SVE ZAVISNOSTI SPECIFICNE TOPLOTE OD TEMPERATURE - ANALITICKE",
                      "ALL SPECIFIC HEAT TEMPERATURE DEPENDENCE ARE GIVEN IN ANALITICAL FORM "));
    }
    for (std::int32_t i = 1; i <= counts.NTABC; ++i)
        ReadSpecificHeatCurve(run);
}

} // namespace

const CardLayout kMaterialCard = Layout("Material card", kMaterialFields);
const CardLayout kConductionHeaderCard = Layout("Conduction function header", kConductionHeaderFields);
const CardLayout kConductionPointCard = Layout("Conduction function point", kConductionPointFields);
const CardLayout kSpecificHeatHeaderCard = Layout("Specific heat curve header", kSpecificHeatHeaderFields);
const CardLayout kSpecificHeatPointCard = Layout("Specific heat curve point", kSpecificHeatPointFields);

void ReadMaterials(Run& run) {
    ClearMaterials(run);
    if (EchoInput(run))
        WriteMaterialHeading(run);
    ReadMaterialCards(run);
    ReadConduction(run);
    ReadSpecificHeat(run);
}

} // namespace zurt
