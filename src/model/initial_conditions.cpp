#include "model/initial_conditions.h"

#include "core/format.h"
#include "core/stop.h"

#include <cmath>

namespace zurt {

namespace {

/// A start value of a held node agrees with the value of its card when they differ by less than this.
constexpr double kSameValue = 1e-10;

constexpr CardField kInitialValueFields[] = {
    ZURT_REAL(InitialValueCard, VALUE, "D10.4", "start value of all nodes"),
};

constexpr CardField kInitialGroupFields[] = {
    ZURT_REAL(InitialValueCard, VALUE, "D10.4", "start value of the nodes of the group"),
    ZURT_INTEGER(InitialValueCard, K1, "I5", "not 0: cards with single nodes follow"),
    ZURT_INTEGER(InitialValueCard, K2, "I5", "not 0: cards with ranges follow, behind the single nodes"),
};

constexpr CardField kInitialNodeListFields[] = {
    ZURT_INTEGER(InitialNodeListCard, NODE, "I5",
                 "node numbers, over as many cards as they need; a 0 ends the list"),
};

constexpr CardField kInitialRangeFields[] = {
    ZURT_INTEGER(InitialRangeCard, N1, "I5", "first node; 0 ends the ranges of the group"),
    ZURT_INTEGER(InitialRangeCard, KOR, "I5", "step, negative for a falling range"),
    ZURT_INTEGER(InitialRangeCard, N2, "I5", "last node, which the steps must meet"),
};

struct StartArrays {
    ConstIntArray ID;
    ConstRealArray nodeValue;
    RealArray start;
    RealArray byNode; // start values of all nodes; empty when they are not wanted
};

// --- one value for all --------------------------------------------------------------------------------------------

void EchoSingleValue(Run& run, double CINITAL) {
    TextUnit& listing = run.units.listing;
    if (run.control.header.NANOCH >= 2) {
        Write(listing, "(/6X,2A,D10.4)",
              Say(run, " TACKE U NANOKANALU IMAJU POCETNU KONCENTRACIJU,",
                  " POINTS IN NANOCHANNEL HAVE INTIAL CONCENTRATION,"),
              "  ...CINITAL =", CINITAL);
        Write(listing, "(6X,A)",
              Say(run, " TACKE U REZERVOARIMA (U MODELU) IMAJU CONCIN0 I CONCOUT0",
                  " POINTS IN RESERVOARS (IN THE MODEL) HAVE CONCIN0 AND CONCOUT0"));
        return;
    }
    if (run.job.Language == kSerbian)
        Write(listing, "(/6X,'SVE TACKE IMAJU ISTU POCETNU TEMPERATURU ... TPOC =',1PE10.3)", CINITAL);
    else
        Write(listing, "(/6X,'ALL POINTS HAVE SAME INITIAL CONCENTRATION.. CINITAL =',D10.4)", CINITAL);
    Write(listing, "(16X,A)", Say(run, "(ZA NSTAC.EQ.1)", "(FOR NSTAC.EQ.1)"));
}

void ReadSingleValue(Run& run, const StartArrays& arrays) {
    if (EchoInput(run))
        Write(
            run.units.listing, "(///6X,A)",
            Say(run, "P O C E T N E   T E M P E R A T U R E", "I N I T I A L   C O N C E N T R A T I O N S"));
    InitialValueCard card;
    card.VALUE = run.control.outlet.OutletStartOfRun;
    ReadCardFields(run.deck, run.control.header.INDFOR, kInitialValueCard, &card);
    run.control.outlet.OutletStartOfRun = card.VALUE;
    if (EchoInput(run))
        EchoSingleValue(run, card.VALUE);
    Fill(arrays.byNode, card.VALUE);
    for (Word i = 1; i <= arrays.ID.length; ++i)
        if (arrays.ID(i) > 0)
            arrays.start(arrays.ID(i)) = card.VALUE;
}

// --- groups of nodes ----------------------------------------------------------------------------------------------

[[noreturn]] void StopOnHeldNode(Run& run, std::int32_t N, double held, double value) {
    // All but one word is the same in both languages.
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(1X,A)", "GRESKA U ULAZNIM PODACIMA:");
    Write(unit, "(1X,A,I5)", Say(run, "CVOR BROJ=", "CVOT BROJ="), N);
    Write(unit, "(1X,A,E12.4)", "UCITANA KONSTANTNA TEMPERATURA=", held);
    Write(unit, "(1X,A,E12.4)", "UCITANA POCETNA    TEMPERATURA=", value);
    Write(unit, "(1X,A)", "NISU JEDNAKE");
    Write(unit, "(1X,A)", "ZA CVOR CIJA JE TEMPERATURA KONSTANTNA NE TREBA UCITAVATI POCETNU TEMPERATURU");
    StopRun(unit);
}

[[noreturn]] void StopOnOpenRange(Run& run) {
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(1X,2A)", "GRESKA U ULAZNIM PODACIMA: POSLEDNJI CVOR MORA SE ",
          "DOBITI SABIRANJEM KORAKA KOR POCEVSI OD PRVOG CVORA N1");
    StopRun(unit);
}

/// Under an INDFOR that takes the same card again and again, a card without a 0 would be read for ever: a deck error.
void RequireProgress(const Run& run, const char* group) {
    if (run.control.header.INDFOR != 2 && !(run.deck.allFree && run.control.header.INDFOR == 1))
        DeckError(run.deck, group, "", "",
                  "this card is always taken by columns and is presented again to the next reader unless "
                  "INDFOR is 2, "
                  "so what it begins never ends: decks with such cards are fixed format decks");
}

/// Sets the start value of a node with an equation. A held node must have the value already; one outside the model
/// takes none.
void ApplyValue(Run& run, const StartArrays& arrays, std::int32_t N, double value) {
    const std::int32_t equation = arrays.ID(N);
    if (arrays.byNode.length > 0)
        arrays.byNode(N) = value;
    if (equation > 0)
        arrays.start(equation) = value;
    else if (equation == 0 && !(std::fabs(arrays.nodeValue(N) - value) < kSameValue))
        StopOnHeldNode(run, N, arrays.nodeValue(N), value);
}

void ReadSingleNodes(Run& run, const StartArrays& arrays, double value) {
    Write(run.units.listing, "(/6X,A)", "POJEDINACNO ZADATI CVOROVI:");
    for (;;) {
        InitialNodeListCard card;
        ReadImageFields(run.deck, run.control.header.INDFOR, kInitialNodeListCard, &card);
        for (const std::int32_t N : card.NODE) {
            if (N == 0)
                return;
            RequireIndex(run.deck, kInitialNodeListCard.group, "NODE", N, arrays.ID.length);
            ApplyValue(run, arrays, N, value);
        }
        RequireProgress(run, kInitialNodeListCard.group);
    }
}

/// Walks from N1 to N2, which both lie in 1..NP. Nodes are collected in batches of as many as a card
/// holds, and take the value batch by batch: a range that misses N2 in a batch is reported before a held node of that batch.
void ApplyToRange(Run& run, const StartArrays& arrays, const InitialRangeCard& range, double value) {
    std::int32_t batch[kNodesPerListCard];
    int collected = 0;
    const std::int64_t N2 = range.N2;
    for (std::int64_t N = range.N1;; N += range.KOR) {
        batch[collected++] = static_cast<std::int32_t>(N);
        if (collected == kNodesPerListCard || N == N2) {
            for (int i = 0; i < collected; ++i)
                ApplyValue(run, arrays, batch[i], value);
            collected = 0;
        }
        if (N == N2)
            return;
        const std::int64_t next = N + range.KOR;
        const bool passed = range.KOR > 0 ? next > N2 : next < N2;
        if (passed || range.KOR == 0)
            StopOnOpenRange(run);
    }
}

void ReadRanges(Run& run, const StartArrays& arrays, double value) {
    for (;;) {
        InitialRangeCard range;
        ReadImageFields(run.deck, run.control.header.INDFOR, kInitialRangeCard, &range);
        if (range.N1 == 0)
            return;
        RequireIndex(run.deck, kInitialRangeCard.group, "N1", range.N1, arrays.ID.length);
        RequireIndex(run.deck, kInitialRangeCard.group, "N2", range.N2, arrays.ID.length);
        Write(run.units.listing, "(6X,A,I5,2X,A,I3,2X,2A,I5)", Say(run, "PRVI CVOR ,N1=", "FIRST NODE ,N1="),
              range.N1, Say(run, "KORAK=", "STEP="), range.KOR, Say(run, "POSLEDNJI CVOR", "LAST NODE"),
              "N2=", range.N2);
        ApplyToRange(run, arrays, range, value);
        RequireProgress(run, kInitialRangeCard.group);
    }
}

void WriteAllValues(Run& run, const StartArrays& arrays) {
    static const Format line("(7(I5,1X,E11.4))");
    TextUnit& listing = run.units.listing;
    Write(listing, "(//6X,2A)", "POCETNE TEMPER. I KONSTANTNE TEMPER. CVOROVA -", " UCITANE I GENERISANE :");
    Write(listing, "(/6X,A/)", "CVOROVI I TEMPERATURE");
    if (!IsOpen(listing))
        return;
    RecordWriter writer;
    BeginWrite(writer, listing, line);
    for (Word i = 1; i <= arrays.ID.length; ++i) {
        const std::int32_t equation = arrays.ID(i);
        Put(writer, static_cast<std::int32_t>(i));
        Put(writer, equation > 0 ? arrays.start(equation) : arrays.nodeValue(i));
    }
    EndWrite(writer);
}

void NoteOnNarrowLists(Run& run) {
    const HeaderFields& header = run.control.header;
    const int width = kInitialNodeListFields[0].descriptor.width;
    if (header.INDFOR == 2 && header.NP > LargestInColumns(width))
        NoteOnCard(run.deck, kInitialNodeListCard.group, kInitialNodeListFields[0].name,
                   "I" + std::to_string(width) + " holds at most " + std::to_string(LargestInColumns(width)) +
                       ", and NP is " + std::to_string(header.NP) +
                       "; zurt --free takes such a deck with free cards (INDFOR 1)");
}

void ReadGroups(Run& run, const StartArrays& arrays) {
    TextUnit& listing = run.units.listing;
    Write(listing, "(///6X,A)",
          Say(run, "TACKE IMAJU RAZLICITE TEMPERATURE:", "POINTS ARE WITH DIFERENT TEMPERATURES:"));
    NoteOnNarrowLists(run);
    for (std::int32_t group = 1; group <= run.control.counts.NPOC; ++group) {
        InitialValueCard card;
        ReadImageFields(run.deck, run.control.header.INDFOR, kInitialGroupCard, &card);
        Write(listing, "(/6X,1PE10.3,2I5)", card.VALUE, card.K1, card.K2);
        if (card.K1 != 0)
            ReadSingleNodes(run, arrays, card.VALUE);
        if (card.K2 != 0)
            ReadRanges(run, arrays, card.VALUE);
    }
    WriteAllValues(run, arrays);
}

} // namespace

const CardLayout kInitialValueCard = Layout("Initial value card", kInitialValueFields);
const CardLayout kInitialGroupCard = Layout("Initial value group", kInitialGroupFields);
const CardLayout kInitialNodeListCard = Layout("Initial value node list", kInitialNodeListFields);
const CardLayout kInitialRangeCard = Layout("Initial value range", kInitialRangeFields);

void ReadInitialConditions(Run& run, RealArray byNode) {
    const StartArrays arrays{EquationNumbers(run), NodeCardValues(run), StepSolution(run), byNode};
    if (byNode.length > 0)
        Copy<double>(NodeCardValues(run), byNode);
    if (run.control.counts.NPOC < 2)
        ReadSingleValue(run, arrays);
    else
        ReadGroups(run, arrays);
}

} // namespace zurt
