#include "model/prescribed_values.h"

#include "core/format.h"
#include "model/time_functions.h"
#include "run/partition.h"

#include <string>

namespace zurt {

namespace {

constexpr CardField kPrescribedFields[] = {
    ZURT_INTEGER(PrescribedCard, N, "I5", "node; 0: an entry without effect"),
    ZURT_INTEGER(PrescribedCard, F, "I5", "time function"),
    ZURT_REAL(PrescribedCard, V, "F10.2", "factor of the function"),
    ZURT_INTEGER(PrescribedCard, K, "I5", "node step of the entries that the next card closes; 0 none"),
};

struct EntryReader {
    Run& run;
    CardSource source;
    RealArray factors;
    IntArray functions, nodes;
    Word I = 0; // entries so far
};

// A run of entries that a card has opened and the next one closes.
struct PendingEntries {
    bool open = false;
    std::int64_t N0 = 0;
    double V0 = 0.0;
    std::int64_t S = 0;
};

void StoreEntry(EntryReader& reader, std::int64_t node, std::int32_t function, double factor) {
    const Deck& deck = reader.source.deck;
    if (++reader.I > reader.nodes.length)
        DeckError(deck, kPrescribedCard.group, "N", std::to_string(node),
                  "there are more entries than NZADC, which is " + std::to_string(reader.nodes.length));
    const auto N = static_cast<std::int32_t>(node);
    if (N != 0) {
        RequireIndex(deck, kPrescribedCard.group, "N", N, reader.run.control.header.NP);
        RequireIndex(deck, kPrescribedCard.group, "F", function, reader.run.control.counts.NTABFT);
    }
    reader.nodes(reader.I) = N;
    reader.functions(reader.I) = function;
    reader.factors(reader.I) = factor;
}

// The entries between the cards of a run stand behind the closing card's, and their factors go on from it: a factor
// that differs between the two cards grows away from the opening card's.
void GenerateEntries(EntryReader& reader, const PendingEntries& pending, const PrescribedCard& closing) {
    const std::int64_t span = closing.N - pending.N0;
    const std::int64_t M = span / pending.S;
    for (std::int64_t j = 1; j < M; ++j) {
        const double growth =
            static_cast<double>(pending.S) / static_cast<double>(span) * (closing.V - pending.V0);
        StoreEntry(reader, pending.N0 + j * pending.S, closing.F, reader.factors(reader.I) + growth);
    }
}

void EchoPrescribedHeading(Run& run) {
    TextUnit& listing = run.units.listing;
    if (run.job.Language == kSerbian) {
        Write(listing, "('1'///6X,A//)", "P O D A C I    O    Z A D A T I M    T E M P E R A T U R A M A");
    } else {
        Write(listing, "('1'///6X,A)", "D A T A    F O R   P R E S C R I B E D    T E MP E R A T U R E S");
        Write(listing, "(6X,A//)", " C O N C E N T R A T I O N S");
    }
    Write(listing, "(6X,A//)", Say(run, "U C I T A N I     P O D A C I", "I N P U T    D A T A"));
    Write(listing, "(14X,A/)",
          Say(run, "CVOR BR.    FUNK.BR.   FAKTOR MNOZ.   KORAK GEN.",
              "NODE     FUNCTION NO   PROP FACTOR   INCR GENER"));
}

void EchoPrescribedCard(Run& run, const PrescribedCard& card) {
    static const Format line("(10X,I8,13X,I5,12X,1PE12.5,I8)");
    Write(run.units.listing, line, card.N, card.F, card.V, card.K);
}

// Nothing but the count of entries ends the reading.
void ReadPrescribedCards(EntryReader& reader) {
    Run& run = reader.run;
    const Word count = reader.nodes.length;
    const bool echo = EchoInput(run);
    PendingEntries pending;
    PrescribedCard card;
    for (;;) {
        ReadCardFields(reader.source.deck, reader.source.INDFOR, kPrescribedCard, &card);
        StoreEntry(reader, card.N, card.F, card.V);
        if (echo)
            EchoPrescribedCard(run, card);
        const bool closes = pending.open;
        if (closes)
            GenerateEntries(reader, pending, card);
        const bool opens = closes ? card.K != 0 : card.K >= 1;
        if ((closes || !opens) && reader.I == count)
            return;
        pending = {opens, card.N, card.V, card.K};
    }
}

// Written to at once, so the overflow is tested here.
void TakePrescribedArrays(Run& run) {
    const Word NZADC = run.control.counts.NZADC;
    TakeWords(run.A, "factors of prescribed values", NZADC);
    TakeWords(run.A, "functions of prescribed values", NZADC);
    run.control.at.LPRES = TakeWords(run.A, "LPRES", NZADC);
    StopIfInputOverflows(run);
}

// The first entry of a node is the one that counts.
void FindEntriesOfNodes(Run& run) {
    const ConstIntArray nodes = PrescribedNodes(run);
    run.prescribedEntry.assign(static_cast<std::size_t>(run.control.header.NP), 0);
    for (Word i = nodes.length; i >= 1; --i)
        if (nodes(i) != 0)
            run.prescribedEntry[static_cast<std::size_t>(nodes(i) - 1)] = static_cast<std::int32_t>(i);
}

} // namespace

const CardLayout kPrescribedCard = Layout("Prescribed value card", kPrescribedFields);

void ReadPrescribedValues(Run& run, const CardSource& source) {
    TakePrescribedArrays(run);
    if (EchoInput(run))
        EchoPrescribedHeading(run);
    EntryReader reader{run, source, PrescribedFactors(run), PrescribedFunctions(run), PrescribedNodes(run)};
    ReadPrescribedCards(reader);
    FindEntriesOfNodes(run);
}

void EvaluatePrescribedValues(Run& run) {
    const Pointers& at = run.control.at;
    const Word NZADC = run.control.counts.NZADC;
    if (NZADC < 1)
        return;
    const RealArray start = RealSection(run.A, at.LZAD1, NZADC), end = RealSection(run.A, at.LZAD2, NZADC),
                    increment = RealSection(run.A, at.LZAD3, NZADC);
    Copy<double>(end, start);
    EvaluateTimeFunctions(run, end, PrescribedNodes(run), PrescribedFunctions(run), PrescribedFactors(run),
                          NZADC);
    for (Word i = 1; i <= NZADC; ++i)
        increment(i) = end(i) - start(i);
}

void StartPrescribedValues(Run& run) {
    Fill(RealSection(run.A, run.control.at.LZAD2, run.control.counts.NZADC), 0.0);
    EvaluatePrescribedValues(run);
}

} // namespace zurt
