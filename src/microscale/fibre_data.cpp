#include "microscale/fibre_data.h"

#include "core/format.h"
#include "core/vector.h"
#include "input/card.h"
#include "microscale/correction_table.h"
#include "microscale/fibre_geometry.h"
#include "run/echo.h"

#include <cmath>
#include <string>
#include <utility>

namespace zurt {

namespace {

struct SearchBoxCard {
    double LOW[3] = {};
    double BASE[3] = {};
};

struct SearchGridCard {
    std::int32_t N[3] = {};
    double STEP[3] = {};
};

struct FibrePointCard {
    std::int32_t ID = 0;
    double POINT[3] = {};
};

constexpr CardField kFibreSetFields[] = {
    ZURT_INTEGER(FibreSet, NSETID, "I5", "number of the set, for the listing"),
    ZURT_COUNT(FibreSet, NUMFIB, "I5", "fibres in the set"),
    ZURT_INTEGER(FibreSet, IANISY, "I5", "1: a second correction factor table follows the first"),
    ZURT_INTEGER(FibreSet, NTYPE, "I5", "0: lines, 1: spheres"),
    ZURT_REAL(FibreSet, DIAM, "F10.6", "diameter of all fibres of the set"),
    ZURT_DORMANT(FibreSet, DLENGTH, "F10.6", "length of the fibres", "echoed only"),
    ZURT_AMOUNT(FibreSet, WALLCUT, "F10.6", "wall distances above it stay out of the start value of HEQ"),
};

constexpr CardField kSearchBoxFields[] = {
    ZURT_REAL(SearchBoxCard, LOW, "F10.6", "low corner of the search box, x, y, z"),
    ZURT_REAL(SearchBoxCard, BASE, "F10.6", "base point of its high corner, x, y, z"),
};

constexpr CardField kSearchGridFields[] = {
    ZURT_COUNT(SearchGridCard, N, "I5", "counts: the high corner is (n - 1) x step + base, axis by axis"),
    ZURT_REAL(SearchGridCard, STEP, "F10.6", "steps, x, y, z"),
};

constexpr CardField kFibreFields[] = {
    ZURT_INTEGER(Fibre, NFIBID, "I5", "number of the fibre, for the listing"),
    ZURT_COUNT(Fibre, NPOINTS, "I5", "points: a line takes its first two, a sphere its first"),
    ZURT_DORMANT(Fibre, DIAMFIB, "F10.6", "diameter of the fibre",
                 "echoed only; distances use DIAM of the set"),
};

constexpr CardField kFibrePointFields[] = {
    ZURT_DORMANT(FibrePointCard, ID, "I5", "number of the point",
                 "echoed only; points stand in the order of the cards"),
    ZURT_REAL(FibrePointCard, POINT, "F10.6", "x, y, z"),
};

} // namespace

const CardLayout kFibreSetCard = Layout("Fibre set card", kFibreSetFields);
const CardLayout kSearchBoxCard = Layout("Fibre search box card", kSearchBoxFields);
const CardLayout kSearchGridCard = Layout("Fibre search grid card", kSearchGridFields);
const CardLayout kFibreCard = Layout("Fibre card", kFibreFields);
const CardLayout kFibrePointCard = Layout("Fibre point card", kFibrePointFields);

namespace {

constexpr EchoLine kFibreSetEcho[] = {
    ZURT_ECHO_INTEGER(FibreSet, NSETID, "OZNAKA SETA VLAKANA ............... NSETID  =",
                      "FIBRE SET ID   .................... NSETID  ="),
    ZURT_ECHO_INTEGER(FibreSet, NUMFIB, "BROJ VLAKANA U SETU ............... NUMFIB  =",
                      "NUMBER OF FIBRES IN SET ........... NUMFIB  ="),
    ZURT_ECHO_INTEGER(FibreSet, IANISY, "INDIKATOR OSNE SIMETRIJE Y ........ IANISY  =",
                      "INDICATOR FOR AXISIMETRY Y ........ IANISY  ="),
    ZURT_ECHO_INTEGER(FibreSet, NTYPE, "TIP VLAKANA ....................... NTYPE   =",
                      "FIBER TYPE ........................ NTYPE   ="),
    ZURT_ECHO_REMARK("EQ.0; LINIJA ", "EQ.0; LINE "),
    ZURT_ECHO_REMARK("EQ.1; SFERA ", "EQ.1; SPHERE "),
    ZURT_ECHO_REAL(FibreSet, DIAM, "PRECNIK VLAKANA  .................. DIAM    =",
                   "DIAMETER OF FIBRES  ............... DIAM    ="),
    ZURT_ECHO_REAL(FibreSet, DLENGTH, "DUZINA VLAKANA  ................... DLENGTH =",
                   "LENGTH OF FIBRES  ................. DLENGTH ="),
};

constexpr EchoLine kFibreEcho[] = {
    ZURT_ECHO_INTEGER(Fibre, NFIBID, "OZNAKA VLAKNA ................. NFIBID  =",
                      "FIBRE ID   ...................... NFIBID  ="),
    ZURT_ECHO_INTEGER(Fibre, NPOINTS, "BROJ TACAKA U VLAKNU ............ NPOINTS =",
                      "NUMBER OF POINTS IN FIBRE ....... NPOINTS ="),
    ZURT_ECHO_REAL(Fibre, DIAMFIB, "PRECNIK VLAKNA .................. DIAMFIB =",
                   "FIBER DIAMETER .................. DIAMFIB ="),
};

// --- checks -------------------------------------------------------------------------------------------------------

void RequireSaneLength(const Run& run, const CardLayout& card, const char* field, double value) {
    if (!(std::fabs(value) <= kLargestLength))
        DeckError(run.deck, card.group, field, std::to_string(value),
                  "a length or coordinate of this size can't be calculated with");
}

void RequireSaneLengths(const Run& run, const CardLayout& card, const char* field,
                        const double (&values)[3]) {
    for (const double value : values)
        RequireSaneLength(run, card, field, value);
}

void RequireFibreBox(const Run& run) {
    const HeaderFields& header = run.control.header;
    const std::string NSETS = std::to_string(run.fit.card.NSETS);
    if (header.NDS == 0 || header.NANOCH <= 0)
        DeckError(run.deck, "Homogenization card", "NSETS", NSETS,
                  "fibre sets lie in the box of the device cards, which a deck has only with NDS not 0 and "
                  "NANOCH above 0");
    const double sizes[3] = {header.ELFIB, header.DFIB, header.WFIB};
    for (const double size : sizes)
        if (!(size >= 0.0 && size <= kLargestLength))
            DeckError(run.deck, "Homogenization card", "NSETS", NSETS,
                      "the box of the fibres on the device cards (ELFIB, DFIB, WFIB) has a size that means "
                      "nothing");
    if (header.ELFIB == 0.0 || header.DFIB == 0.0)
        DeckError(run.deck, "Homogenization card", "NSETS", NSETS,
                  "the box of the fibres on the device cards (ELFIB, DFIB, WFIB) has no size");
}

void CheckFibreSet(const Run& run, const FibreSet& set) {
    const char* const group = kFibreSetCard.group;
    if (set.NUMFIB < 1)
        DeckError(run.deck, group, "NUMFIB", std::to_string(set.NUMFIB),
                  "a fibre set has at least one fibre");
    if (set.IANISY > 1)
        DeckError(run.deck, group, "IANISY", std::to_string(set.IANISY),
                  "1 announces a second table; no other value does, and above 1 it would be missed");
    if (set.NTYPE != kLineFibres && set.NTYPE != kSphereFibres)
        DeckError(run.deck, group, "NTYPE", std::to_string(set.NTYPE), "0 is a line, 1 a sphere");
    RequireSaneLength(run, kFibreSetCard, "DIAM", set.DIAM);
    if (!(set.DIAM >= kSmallestLength))
        DeckError(run.deck, group, "DIAM", std::to_string(set.DIAM), "fibres have a diameter above 0");
}

void CheckPoints(const Run& run, const FibreSet& set, const Fibre& fibre) {
    const std::int32_t least = set.NTYPE == kLineFibres ? 2 : 1;
    if (fibre.NPOINTS < least)
        DeckError(run.deck, kFibreCard.group, "NPOINTS", std::to_string(fibre.NPOINTS),
                  least == 2 ? "a line takes two points" : "a sphere takes a point");
}

void CheckLine(const Run& run, const Fibre& fibre) {
    const double* p = fibre.points.data();
    const double a[3] = {p[3] - p[0], p[4] - p[1], p[5] - p[2]};
    if (!(VectorLength(a) >= kSmallestLength))
        DeckError(run.deck, kFibrePointCard.group, "POINT", "",
                  "the first two points of fibre " + std::to_string(fibre.NFIBID) +
                      " are equal; a line has a direction");
}

// --- cards --------------------------------------------------------------------------------------------------------

void ReadSearchBox(Run& run, FibreSet& set) {
    const std::int32_t INDFOR = run.control.header.INDFOR;
    SearchBoxCard box;
    SearchGridCard grid;
    ReadCardFields(run.deck, INDFOR, kSearchBoxCard, &box);
    RequireSaneLengths(run, kSearchBoxCard, "LOW", box.LOW);
    RequireSaneLengths(run, kSearchBoxCard, "BASE", box.BASE);
    ReadCardFields(run.deck, INDFOR, kSearchGridCard, &grid);
    for (int axis = 0; axis < 3; ++axis) {
        set.low[axis] = box.LOW[axis];
        set.high[axis] = (grid.N[axis] - 1) * grid.STEP[axis] + box.BASE[axis];
        RequireSaneLength(run, kSearchGridCard, "STEP", set.high[axis]);
        if (set.high[axis] < set.low[axis])
            DeckError(run.deck, kSearchGridCard.group, "STEP", std::to_string(grid.STEP[axis]),
                      "the high corner of the search box lies below its low corner on axis " +
                          std::to_string(axis + 1));
    }
}

void EchoPointHead(Run& run) {
    Write(run.units.listing, "(/6X,A)", Say(run, "PODACI O TACKAMA VLAKNA", "DATA ABOUT FIBRE POINTS"));
    Write(run.units.listing, "(6X,A)",
          Say(run, "   BR        X          Y          Z", "   ID        X          Y          Z"));
}

void ReadPoints(Run& run, Fibre& fibre) {
    static const Format line("(6X,I5,3D12.4)");
    const bool echo = EchoInput(run);
    if (echo)
        EchoPointHead(run);
    for (std::int32_t i = 1; i <= fibre.NPOINTS; ++i) {
        FibrePointCard card;
        ReadCardFields(run.deck, run.control.header.INDFOR, kFibrePointCard, &card);
        RequireSaneLengths(run, kFibrePointCard, "POINT", card.POINT);
        fibre.points.insert(fibre.points.end(), card.POINT, card.POINT + 3);
        if (echo)
            Write(run.units.listing, line, card.ID, ConstRealArray(card.POINT, 3));
    }
}

void ReadFibre(Run& run, const FibreSet& set, std::int32_t number, Fibre& fibre) {
    if (EchoInput(run))
        Write(run.units.listing, "(//6X,A,I5)", Say(run, "PODACI ZA VLAKNO BR = ", "DATA FOR FIBRE ID = "),
              number);
    ReadCardFields(run.deck, run.control.header.INDFOR, kFibreCard, &fibre);
    CheckPoints(run, set, fibre);
    if (EchoInput(run))
        WriteEcho(run, kFibreEcho, &fibre);
    ReadPoints(run, fibre);
    if (set.NTYPE == kLineFibres)
        CheckLine(run, fibre);
}

void ReadFibreSet(Run& run, std::int32_t number, FibreSet& set) {
    if (EchoInput(run))
        Write(run.units.listing, "(///6X,A,I5)",
              Say(run, " PODACI ZA SET VLAKANA BR = ", " DATA FOR FIBRE SET ID = "), number);
    ReadCardFields(run.deck, run.control.header.INDFOR, kFibreSetCard, &set);
    CheckFibreSet(run, set);
    ReadSearchBox(run, set);
    if (EchoInput(run))
        WriteEcho(run, kFibreSetEcho, &set);
    for (std::int32_t i = 1; i <= set.NUMFIB; ++i) {
        set.fibres.emplace_back();
        ReadFibre(run, set, i, set.fibres.back());
    }
    ReadCorrectionTable(run, CorrectionTableOwner::FibreSet, set.table);
    if (set.IANISY == 1)
        ReadCorrectionTable(run, CorrectionTableOwner::FibreSetY, set.tableY);
}

} // namespace

void ReadFibreData(Run& run, FibreModel& model) {
    FreeFibreModel(model);
    const std::int32_t NSETS = run.fit.card.NSETS;
    if (NSETS > 0)
        RequireFibreBox(run);
    for (std::int32_t i = 1; i <= NSETS; ++i) {
        model.sets.emplace_back();
        ReadFibreSet(run, i, model.sets.back());
    }
}

} // namespace zurt
