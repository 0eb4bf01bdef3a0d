#include "elements/surfaces/surface_cards.h"

#include "core/format.h"
#include "core/stop.h"
#include "elements/cards/family_cards.h"
#include "run/partition.h"

#include <algorithm>
#include <array>
#include <string>

namespace zurt {

namespace {

// --- cards --------------------------------------------------------------------------------------------------------

constexpr int kCardFields = 2 + kSurfaceFields;
using SurfaceCardFields = std::array<CardField, kCardFields>;

#define ZURT_CURVE_ROW(NAME, FIELD, MEANING, EFFECT)                                                         \
    ZURT_PART_ROW(NAME, SurfaceCard, curves, FIELD, 1, "I5", kAnyInteger, MEANING, EFFECT)

template <int Corners> constexpr SurfaceCardFields FieldsOf(const char* nodeNames) {
    return {
        ZURT_INTEGER(SurfaceCard, NE, "I5", "element; 0 ends the cards of the group"),
        ZURT_PART_ROW(nodeNames, SurfaceCard, nodes, 1, Corners, "I5", kAnyInteger,
                      "corners of the side, in any order", ""),
        ZURT_CURVE_ROW("FLUX", kFluxCurve, "surface flux function", ""),
        ZURT_CURVE_ROW("CONV", kConvectionCurve, "convection function", ""),
        ZURT_CURVE_ROW("ENVI", kEnvironmentCurve, "environment function", ""),
        ZURT_CURVE_ROW("EMIS", kEmissivityCurve, "radiation function; also the number of the shape factor",
                       ""),
        ZURT_CURVE_ROW("SHAPE", kShapeFactorField, "shape factor number", "stored and printed only"),
    };
}

constexpr SurfaceCardFields kFields1D = FieldsOf<kSideCorners<1>>("NODE1");
constexpr SurfaceCardFields kFields2D = FieldsOf<kSideCorners<2>>("NODE1 to NODE2");
constexpr SurfaceCardFields kFields3D = FieldsOf<kSideCorners<3>>("NODE1 to NODE4");

// What the families of one dimension have of their own.
struct SideWords {
    const CardLayout& card;
    TwinText nodes;  // ahead of the nodes of a card that names no side
    TwinText noSide; // and behind them
};

const SideWords kSideWords[] = {
    {kSurfaceCard1D,
     {"UCITANI GRANICNI CVOROVI :", "READIN BOUNDARY NODES :"},
     {"NE CINE KRAJ ELEMENTA", "DO NOT CONSTITUTE SIDE OF ELEMENT"}},
    {kSurfaceCard2D,
     {"UCITANI GRANICNI CVOROVI :", "READ IN BOUNDARY NODES :"},
     {"NE CINE JEDNU IVICU ELEMENTA", "DO NOT CONSTITUTE ONE EDGE OF ELEMENT"}},
    {kSurfaceCard3D,
     {"UCITANI GRANICNI CVOROVI :", "READIN BOUNDARY NODES :"},
     {"NE CINE JEDNU POVRSINU ELEMENTA", "DO NOT CONSTITUTE ONE SURFACE OF ELEMENT"}},
};

// A radial group goes by the cards of the brick.
const ElementFamily& FamilyOfSides(const ElementGroup& group) {
    return IsRadial(group) ? kElementFamily<3> : FamilyOf(group);
}

// --- sides --------------------------------------------------------------------------------------------------------

struct BoundaryReader {
    Run& run;
    const ElementGroup& group;
    const ElementFamily& family;
    const SideWords& words;
    IntTable NEL;
    IntArray NSURF;
    IntArray ISURF; // all records one behind the other
    std::int32_t records = 0;
    SurfaceCard card{};
    std::int32_t carried[kSurfaceFields] = {}; // the fields stored last
};

// The nodes of side `side` (from 0) of element NE; a column that the group does not have counts as node 0.
void TakeSideNodes(const BoundaryReader& reader, int side, std::int32_t (&nodes)[kMostSideCorners]) {
    const int corners = reader.family.cornersOfSide;
    for (int k = 0; k < corners; ++k) {
        const int corner = reader.family.sideCorners[side * corners + k];
        nodes[k] = corner <= reader.NEL.columns ? reader.NEL(reader.card.NE, corner) : 0;
    }
}

// The first side with the corners of the card, from 1; 0 when there is none.
int FindSide(const BoundaryReader& reader) {
    for (int side = 0; side < reader.family.sides; ++side) {
        std::int32_t nodes[kMostSideCorners] = {};
        TakeSideNodes(reader, side, nodes);
        if (std::is_permutation(nodes, nodes + reader.family.cornersOfSide, reader.card.nodes))
            return side + 1;
    }
    return 0;
}

[[noreturn]] void StopOnSide(BoundaryReader& reader) {
    Run& run = reader.run;
    const SideWords& words = reader.words;
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(1X,A)",
          Say(run, "GRESKA U ULAZNIM PODACIMA GRANICNIH USLOVA:", "ERROR IN BOUNDARY CONDITION INPUT DATA:"));
    Write(unit, "(1X,A,I8)", Say(run, "ELEMENT BR.", "ELEMENT NO."), reader.card.NE);
    Write(unit, "(1X,A,4I8)", Say(run, words.nodes.serbian, words.nodes.english),
          IntArray(reader.card.nodes, reader.family.cornersOfSide));
    Write(unit, "(1X,A)", Say(run, words.noSide.serbian, words.noSide.english));
    StopRun(unit);
}

// --- fields -------------------------------------------------------------------------------------------------------

void RequireCurve(const BoundaryReader& reader, SurfaceField field, const char* table, std::int32_t limit) {
    const std::int32_t number = reader.carried[field - 1];
    if (number < 0 || number > limit)
        DeckError(reader.run.deck, reader.words.card.group, reader.words.card.fields[field + 1].name,
                  std::to_string(number),
                  "the number must lie between 0, none, and " + std::to_string(limit) + ", which is " +
                      table);
}

void RequireCurves(const BoundaryReader& reader) {
    const CurveCounts& counts = reader.run.control.counts;
    RequireCurve(reader, kFluxCurve, "NQP", counts.NQP);
    RequireCurve(reader, kConvectionCurve, "NHP", counts.NHP);
    RequireCurve(reader, kEnvironmentCurve, "NTOK", counts.NTOK);
    RequireCurve(reader, kEmissivityCurve, "NHR", counts.NHR);
    if (counts.NFO != 0) // it chooses the shape factor, too
        RequireCurve(reader, kEmissivityCurve, "NFO", counts.NFO);
}

// A card without any curve takes those of the card before.
void CarryFields(BoundaryReader& reader) {
    const std::int32_t* curves = reader.card.curves;
    const bool none = std::all_of(curves, curves + kSurfaceFields, [](std::int32_t c) { return c < 1; });
    if (!none)
        std::copy(curves, curves + kSurfaceFields, reader.carried);
}

void EchoHead(Run& run, const ElementGroup& group) {
    TextUnit& listing = run.units.listing;
    Write(listing, "('1'///6X,A,I3)",
          Say(run, "P O D A C I   O   G R A N I C N I M   P O V R S I N A M A   G R U P E",
              "D A T A   F O R   B O U N D A R Y   S U R F A C E S   O F   G R O U P"),
          group.NGE);
    Write(listing, "(6X,A//)",
          Say(run, "(UCITAVANJE SE ZAVRSAVA PRAZNOM LINIJOM)", "(READING ENDS WITH A BLANK LINE)"));
    Write(listing, "(7X,'ELEMENT',6X,A,3(2X,A),1X,A,8X,A/)", Say(run, " FLUKS", "  FLUX"),
          Say(run, "KOEF.KONV.", "CONV.COEF."), Say(run, "TEMP.OKOL.", "ENVI.TEMP."),
          Say(run, "KOEF.EMIS.", "EMIS.COEF."), Say(run, "FUN.OBLIKA ", "SHAPE FUNC."),
          Say(run, "CVOROVI", "NODES"));
}

void EchoCard(const BoundaryReader& reader) {
    static const Format row("(6X,I8,5I12,4X,4I8)");
    Write(reader.run.units.listing, row, reader.card.NE, ConstIntArray(reader.carried, kSurfaceFields),
          ConstIntArray(reader.card.nodes, reader.family.cornersOfSide));
}

// --- one group ----------------------------------------------------------------------------------------------------

// The block is written to at once, so its overflow is tested here.
void TakeSurfaceBlock(Run& run, ElementGroup& group, Word recordWords) {
    StopIfInputOverflows(run);
    group.surfaces.LNSURF = TakeWords(run.A, "surface record numbers", group.NET);
    group.surfaces.LISURF = TakeWords(run.A, "surface records", recordWords * group.NET);
    StopIfInputOverflows(run);
    ClearWords(run.A, group.surfaces.LNSURF, run.A.LMAX - 1);
}

void StoreSide(BoundaryReader& reader) {
    const SurfaceCard& card = reader.card;
    RequireIndex(reader.run.deck, reader.words.card.group, "NE", card.NE, reader.group.NET);
    const int side = FindSide(reader);
    if (side == 0)
        StopOnSide(reader);
    std::int32_t& record = reader.NSURF(card.NE);
    if (record == 0)
        record = ++reader.records;
    CarryFields(reader);
    RequireCurves(reader);
    const Word sides = reader.family.sides;
    const Word first = kSurfaceFields * (sides * (record - 1) + side - 1) + 1;
    Copy<std::int32_t>(ConstIntArray(reader.carried, kSurfaceFields),
                       Section(reader.ISURF, first, kSurfaceFields));
}

void ReadBoundary(Run& run, ElementGroup& group) {
    const ElementFamily& family = FamilyOfSides(group);
    const Word recordWords = Word{kSurfaceFields} * family.sides;
    TakeSurfaceBlock(run, group, recordWords);
    BoundaryReader reader{run,
                          group,
                          family,
                          kSideWords[family.dimension - 1],
                          Connectivity(run, group),
                          SurfaceRecordNumbers(run, group),
                          IntSection(run.A, group.surfaces.LISURF, recordWords * group.NET)};
    const bool echo = EchoInput(run);
    if (echo)
        EchoHead(run, group);
    for (;;) {
        ReadCardFields(run.deck, run.control.header.INDFOR, reader.words.card, &reader.card);
        if (reader.card.NE == 0)
            break;
        StoreSide(reader);
        if (echo)
            EchoCard(reader);
    }
    group.surfaces.records = reader.records;
}

} // namespace

const CardLayout kSurfaceCard1D = Layout("1D surface card", kFields1D.data(), kCardFields);
const CardLayout kSurfaceCard2D = Layout("2D surface card", kFields2D.data(), kCardFields);
const CardLayout kSurfaceCard3D = Layout("3D surface card", kFields3D.data(), kCardFields);

void ReadSurfaceData(Run& run) {
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        ElementGroup& group = run.groups[NGE];
        ReadBoundary(run, group);
        if (group.surfaces.records > 0 && group.NETIP != 2)
            WriteNote("group " + std::to_string(NGE) +
                      ": surface records act in 2D groups alone, those of this group have no effect");
        if (group.surfaces.records > 0 && group.NETIP == 2 && group.INDAX != 0)
            WriteNote(
                "group " + std::to_string(NGE) +
                ": surface terms of axisymmetric groups take x as their radius, volumes take y: those on the "
                "mantle of a body along x come out with the wrong one");
    }
}

} // namespace zurt
