#include "microscale/correction_table.h"

#include "core/format.h"
#include "core/stop.h"
#include "input/card.h"
#include "microscale/correction_lookup.h"
#include "run/partition.h"

#include <algorithm>
#include <string>

namespace zurt {

namespace {

constexpr int kPerCard = 8;
constexpr NumberDescriptor<double> kValueDescriptor = ZURT_DESCRIPTOR(double, "D10.4");
constexpr const char* kValueCards = "Correction factor cards";
constexpr double kNanometresPerUnit = 1000.0;

constexpr CardField kSizesFields[] = {
    ZURT_COUNT(CorrectionTableSizes, NDIST, "I5", "distances from the wall: rows of the table"),
    ZURT_COUNT(CorrectionTableSizes, NCONC, "I5", "concentrations: columns of the table"),
};

} // namespace

const CardLayout kCorrectionTableSizesCard = Layout("Correction table sizes", kSizesFields);

namespace {

Word CardsFor(Word values) {
    return (values + kPerCard - 1) / kPerCard;
}

void RequireCardsInDeck(Run& run, const CorrectionTableSizes& sizes) {
    const Word needed = CardsFor(sizes.NDIST) + CardsFor(sizes.NCONC) + sizes.NDIST * CardsFor(sizes.NCONC);
    const Word left = LineCount(run.deck) - run.deck.nextLine;
    if (needed > left)
        DeckError(run.deck, kCorrectionTableSizesCard.group, "NDIST, NCONC",
                  std::to_string(sizes.NDIST) + ", " + std::to_string(sizes.NCONC),
                  "such a table takes " + std::to_string(needed) + " cards, and the deck has " +
                      std::to_string(left) + " lines left");
}

void RequireSize(const Run& run, const char* field, std::int32_t size) {
    if (size < 1)
        DeckError(run.deck, kCorrectionTableSizesCard.group, field, std::to_string(size),
                  "a correction factor table has at least one row and one column");
}

// --- echo ---------------------------------------------------------------------------------------------------------

void EchoHeading(Run& run, CorrectionTableOwner owner) {
    TextUnit& listing = run.units.listing;
    const char* heading = owner == CorrectionTableOwner::FibreSet
                              ? Say(run, "SET VLAKANA - PODACI  ZA  KOREKCIONE  FAKTORE",
                                    "FIBRE SET - DATA  FOR  CORRECTION  FACTORS")
                          : owner == CorrectionTableOwner::FibreSetY
                              ? Say(run, "SET VLAKANA - PODACI ZA KOREKCIONE FAKTORE - Y",
                                    "FIBRE SET - DATA FOR CORRECTION FACTORS - Y")
                              : Say(run, " P O D A C I   Z A   K O R E K C I O N E   F A K T O R E",
                                    " D A T A   FOR   C O R R E C T I O N   F A C T O R S");
    Write(listing, "(///1X,A)", heading);
    Write(listing, "(/A)",
          Say(run, "     RASTOJANJE OD ZIDA (NANOMETRI)", "     DISTANCE FROM THE WALL (NANOMETERS)"));
}

void EchoTableHead(Run& run) {
    TextUnit& listing = run.units.listing;
    Write(listing, "(/A)",
          Say(run, " TABELA KOREKCIONIH FAKTORA KOEFICIJENTA DIFUZIJE",
              " TABLE OF CORRECTION FACTORS OF DIFFUSION COEFFICIENT"));
    if (run.job.Language == kSerbian)
        Write(listing, "(' BR RED',7X,'RAST ZID(NM)','/ KOEFICIJENTI')");
    else
        Write(listing, "(' ROW NO',7X,'DIST WALL(NM)','/ COEFFICIENTS')");
}

// --- cards --------------------------------------------------------------------------------------------------------

// values.length numbers, eight to a card, each card a read of its own; every card is echoed under `echo`.
void ReadCardsOfEight(Run& run, const char* field, RealArray values, const Format& echo) {
    for (Word first = 1; first <= values.length; first += kPerCard) {
        const RealArray card = Section(values, first, std::min<Word>(kPerCard, values.length - first + 1));
        ReadNumberCards(run.deck, run.control.header.INDFOR, kValueCards, field, kValueDescriptor, kPerCard,
                        card);
        if (EchoInput(run))
            Write(run.units.listing, echo, card);
    }
}

void ReadRow(Run& run, Word i, double distance, RealArray row, RealTable factor) {
    static const Format head("(I5,3X,E11.3)");
    static const Format line("(19X,8D11.4)");
    if (EchoInput(run))
        Write(run.units.listing, head, i, distance * kNanometresPerUnit);
    Fill(row, 0.0);
    ReadCardsOfEight(run, "FACTOR", row, line);
    for (Word j = 1; j <= row.length; ++j) {
        if (row(j) < 0.0)
            DeckError(run.deck, kValueCards, "FACTOR", std::to_string(row(j)),
                      "a negative factor has no meaning");
        factor(i, j) = row(j);
    }
}

void NoteDistancesThatFall(ConstRealArray distance) {
    for (Word i = 1; i < distance.length; ++i) {
        if (distance(i) < distance(i + 1))
            continue;
        WriteNote("the distances of a correction factor table do not rise from row " + std::to_string(i) +
                  " to row " + std::to_string(i + 1) +
                  "; a distance takes the first interval that holds it, and 1 at or beyond the last row");
        return;
    }
}

void NoteConcentrationsThatFall(ConstRealArray concentration) {
    for (Word j = 1; j < concentration.length; ++j) {
        if (concentration(j) < concentration(j + 1))
            continue;
        WriteNote("the concentrations of a correction factor table do not rise from column " +
                  std::to_string(j) + " to column " + std::to_string(j + 1) +
                  "; a concentration takes the first interval that holds it");
        return;
    }
}

} // namespace

CorrectionTableSizes ReadCorrectionTableSizes(Run& run) {
    CorrectionTableSizes sizes;
    ReadCardFields(run.deck, run.control.header.INDFOR, kCorrectionTableSizesCard, &sizes);
    RequireSize(run, "NDIST", sizes.NDIST);
    RequireSize(run, "NCONC", sizes.NCONC);
    RequireCardsInDeck(run, sizes);
    return sizes;
}

void ReadCorrectionTable(Run& run, CorrectionTableOwner owner, RealArray distance, RealArray concentration,
                         RealTable factor) {
    static const Format line("(8D11.4)");
    const bool echo = EchoInput(run);
    if (echo)
        EchoHeading(run, owner);
    // Values that a card passes over are 0, whatever an earlier problem left in `A`.
    Fill(distance, 0.0);
    Fill(concentration, 0.0);
    ReadCardsOfEight(run, "DISTANCE", distance, line);
    for (Word i = 1; i <= distance.length; ++i)
        distance(i) /= kNanometresPerUnit;
    if (echo)
        Write(run.units.listing, "(/A)",
              Say(run, "     KONCENTRACIJE (MOLARNE)", "     CONCENTRATIONS (MOLAR)"));
    ReadCardsOfEight(run, "CONCENTRATION", concentration, line);
    if (echo)
        EchoTableHead(run);
    std::vector<double> row(static_cast<std::size_t>(concentration.length));
    for (Word i = 1; i <= distance.length; ++i)
        ReadRow(run, i, distance(i), {row.data(), concentration.length}, factor);
    NoteDistancesThatFall(distance);
    NoteConcentrationsThatFall(concentration);
}

void ReadCorrectionTable(Run& run, CorrectionTableOwner owner, CorrectionTable& table) {
    const CorrectionTableSizes sizes = ReadCorrectionTableSizes(run);
    const auto rows = static_cast<std::size_t>(sizes.NDIST);
    const auto columns = static_cast<std::size_t>(sizes.NCONC);
    table.NDIST = sizes.NDIST;
    table.NCONC = sizes.NCONC;
    table.distance.assign(rows, 0.0);
    table.concentration.assign(columns, 0.0);
    table.factor.assign(rows * columns, 0.0);
    ReadCorrectionTable(run, owner, Distances(table), Concentrations(table), Factors(table));
    table.rising = RowsAndColumnsRise(table);
}

void ReadNanochannelTable(Run& run) {
    const CorrectionTableSizes sizes = ReadCorrectionTableSizes(run);
    const Word NDIST = sizes.NDIST, NCONC = sizes.NCONC;
    Word* at = run.control.at.LNANO;
    at[1] = TakeWords(run.A, "LNANO1", NDIST);
    at[2] = TakeWords(run.A, "LNANO2", NCONC);
    at[3] = TakeWords(run.A, "LNANO3", NDIST * NCONC);
    StopIfInputOverflows(
        run); // the table is written at once, the next test of the partition would come too late
    ReadCorrectionTable(run, CorrectionTableOwner::Nanochannel, RealSection(run.A, at[1], NDIST),
                        RealSection(run.A, at[2], NCONC), RealTableSection(run.A, at[3], NDIST, NCONC));
}

} // namespace zurt
