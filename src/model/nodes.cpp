#include "model/nodes.h"

#include "core/format.h"
#include "run/echo.h"
#include "run/partition.h"

#include <cmath>
#include <limits>

namespace zurt {

namespace {

constexpr CardField kNodeFields[] = {
    ZURT_INTEGER(NodeCard, N, "I10", "node number, 1 to NP; in any order"),
    ZURT_INTEGER(NodeCard, IND, "I5",
                 "0 free, positive: held, no equation, negative: free and shared with radial elements"),
    ZURT_BLANKS("5X"),
    ZURT_REAL(NodeCard, X, "D15.6", "coordinate x"),
    ZURT_REAL(NodeCard, Y, "D15.6", "coordinate y"),
    ZURT_REAL(NodeCard, Z, "D15.6", "coordinate z"),
    ZURT_REAL(NodeCard, VALUE, "D15.6",
              "value of the node, against which start values of held nodes are checked"),
    ZURT_INTEGER(NodeCard, K, "I5", "step of the generation that the next card closes; 0 none"),
};

/// Marks an item that a card has left out. A list-directed card leaves such an item as it is, so the node keeps what it
/// held; no card can give a NaN.
constexpr double kKeepReal = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t kKeepInteger = std::numeric_limits<std::int32_t>::min();

struct NodeArrays {
    IntArray ID;
    RealArray X, Y, Z, value;
};

/// A generation that a card has opened and the next one closes.
struct PendingRun {
    bool open = false;
    std::int64_t P = 0; // node of the opening card
    std::int64_t S = 0; // its step
};

NodeArrays ArraysOfNodes(const Run& run) {
    return {EquationNumbers(run), CoordinateColumn(run, 1), CoordinateColumn(run, 2),
            CoordinateColumn(run, 3), NodeCardValues(run)};
}

void StoreReal(double cardValue, double& value) {
    if (!std::isnan(cardValue))
        value = cardValue;
}

/// Reads the next card into `card` and the arrays; its number is known to lie in 1..NP afterwards.
void ReadNodeCard(Run& run, const NodeArrays& nodes, NodeCard& card) {
    card.IND = kKeepInteger;
    card.X = card.Y = card.Z = card.VALUE = kKeepReal;
    ReadCardFields(run.deck, run.control.header.INDFOR, kNodeCard, &card);
    RequireIndex(run.deck, kNodeCard.group, "N", card.N, run.control.header.NP);
    if (run.check.on)
        KeepLine(run.check.nodeLine, card.N, run.deck.cardLine);
    if (card.IND != kKeepInteger)
        nodes.ID(card.N) = card.IND;
    StoreReal(card.X, nodes.X(card.N));
    StoreReal(card.Y, nodes.Y(card.N));
    StoreReal(card.Z, nodes.Z(card.N));
    StoreReal(card.VALUE, nodes.value(card.N));
}

void EchoNodeCard(Run& run, const NodeArrays& nodes, const NodeCard& card) {
    static const Format line("(11X,I10,10X,I5,15X,D15.6,3X,D15.6,3X,D15.6,I17)");
    Write(run.units.listing, line, card.N, nodes.ID(card.N), nodes.X(card.N), nodes.Y(card.N),
          nodes.Z(card.N), card.K);
}

/// Fills the nodes between P and N in steps of S, which points from P to N, and returns the intervals covered.
/// Coordinates grow by repeated addition, so that their last digits are those of a running sum.
std::int64_t GenerateNodes(const NodeArrays& nodes, std::int64_t P, std::int64_t N, std::int64_t S) {
    const std::int64_t M = (N - P) / S;
    if (M < 2)
        return M; // no node lies between; N - P may be 0, so nothing is divided by it
    const double R = static_cast<double>(S) / static_cast<double>(N - P);
    const double DX = R * (nodes.X(N) - nodes.X(P));
    const double DY = R * (nodes.Y(N) - nodes.Y(P));
    const double DZ = R * (nodes.Z(N) - nodes.Z(P));
    for (std::int64_t k = 1; k < M; ++k) {
        const std::int64_t Q = P + k * S;
        nodes.ID(Q) = nodes.ID(P);
        nodes.value(Q) = nodes.value(P);
        nodes.X(Q) = nodes.X(Q - S) + DX;
        nodes.Y(Q) = nodes.Y(Q - S) + DY;
        nodes.Z(Q) = nodes.Z(Q - S) + DZ;
    }
    return M;
}

/// Reads cards until they cover NP nodes, and returns the number of the first card. Only a count equal to NP ends
/// the reading; when a generation takes it past NP, reading goes on to the end of the deck, which is an error.
std::int32_t ReadNodeCards(Run& run) {
    const NodeArrays nodes = ArraysOfNodes(run);
    const bool echo = EchoInput(run);
    const std::int64_t NP = run.control.header.NP;
    std::int32_t firstCard = 0;
    std::int64_t count = 0;
    PendingRun pending;
    NodeCard card;
    BeginCards(run.deck, "nodes", "NP", NP, run.job.BasicDataLine);
    for (;;) {
        ReadNodeCard(run, nodes, card);
        if (firstCard == 0)
            firstCard = run.deck.CardCounter;
        if (echo)
            EchoNodeCard(run, nodes, card);
        if (!pending.open) {
            CountCards(run.deck, ++count);
            if (card.K < 1 && count == NP)
                return firstCard;
            pending = {card.K >= 1, card.N, card.K};
            continue;
        }
        if (card.N < pending.P)
            pending.S = -pending.S;
        const std::int64_t M = GenerateNodes(nodes, pending.P, card.N, pending.S);
        for (std::int64_t k = 1; run.check.on && k < M; ++k)
            KeepLine(run.check.nodeLine, pending.P + k * pending.S, run.deck.cardLine);
        CountCards(run.deck, count + M);
        if (count + M == NP)
            return firstCard;
        pending = {card.K != 0, card.N, card.K};
        count += M;
    }
}

std::int32_t CountNegativeIndicators(ConstIntArray ID) {
    std::int32_t count = 0;
    for (Word i = 1; i <= ID.length; ++i)
        count += ID(i) < 0 ? 1 : 0;
    return count;
}

/// Turns indicators into equation numbers; nodes with a negative one go to `shared`, which holds all of them or none.
std::int32_t NumberEquations(IntArray ID, IntArray shared) {
    std::int32_t JEDN = 0;
    Word listed = 0;
    for (Word i = 1; i <= ID.length; ++i) {
        if (ID(i) < 0 && listed < shared.length)
            shared(++listed) = static_cast<std::int32_t>(i);
        ID(i) = ID(i) < 1 ? ++JEDN : 0;
    }
    return JEDN;
}

void WriteNodeHeading(Run& run) {
    TextUnit& listing = run.units.listing;
    Write(listing, "('1'///6X,A//)",
          Say(run, "U L A Z N I   P O D A C I   O   C V O R O V I M A", "I N P U T   N O D A L   D A T A"));
    Write(listing, "(14X,A,5X,A,26X,A,25X,A)", Say(run, " CVOR  ", " NODE  "),
          Say(run, "IND.ZAD.TEMP.", "IND.PRE.CONC."),
          Say(run, " K O O R D I N A T E ", "C O O R D I N A T E S"), "IND.AUT.GEN.");
    Write(listing, "(15X,A,6X,A,72X,A/)", Say(run, "BROJ", "    "),
          Say(run, "(0-NE,<0-DA) ", "(0-NO,<0-YES)"), Say(run, "(0-NE,>0-DA) ", "(0-NO,>0-YES)"));
}

void WriteGeneratedHeading(Run& run) {
    TextUnit& listing = run.units.listing;
    Write(listing, "(6X,A//)",
          Say(run, "G E N E R I S A N I   P O D A C I   O   C V O R O V I M A",
              "G E N E R A T E D   N O D A L   D A T A"));
    if (run.job.Language == kEnglish)
        Write(listing, "(6X,A/)", "IN CASE OF DARCY FLOW, THE SAME EQUATION NUMBERS ARE USED");
    Write(listing, "(15X,A,9X,A,26X,A)", Say(run, "CVOR ", " NODE"),
          Say(run, "JEDN. BR.(>0)", "EQUATION NO."),
          Say(run, "K O O R D I N A T E", "C O O R D I N A T E S"));
    if (run.job.Language == kSerbian)
        Write(listing, "(15X,A,10X,A/)", "BROJ", "KONS.TEMP.(=0)");
}

void WriteGeneratedNodes(Run& run, std::int32_t firstCard) {
    static const Format line("(11X,I10,12X,I10,15X,D15.6,3X,D15.6,3X,D15.6)");
    const NodeArrays nodes = ArraysOfNodes(run);
    PrintCardNumber(run, firstCard, 1);
    WriteGeneratedHeading(run);
    for (Word i = 1; i <= nodes.ID.length; ++i)
        Write(run.units.listing, line, i, nodes.ID(i), nodes.X(i), nodes.Y(i), nodes.Z(i));
}

void WriteSharedNodes(Run& run, ConstIntArray shared) {
    TextUnit& listing = run.units.listing;
    Write(listing, "(//6X,2A)", "NODES COMMON WITH 1D RADIAL ELEMENTS (WITH FLUXES FROM", " FIBERS");
    Write(listing, "(6X,A,I5)", "NUMBER OF NODES, NZADP4=", run.control.counts.NZADP4);
    Write(listing, "(/6X,A)", "N  O  D  E  S");
    Write(listing, "(10I8)", shared);
}

/// The list of shared nodes, empty when it does not lie within `A`: the overflow test of the next section stops that
/// run.
IntArray TakeSharedNodes(Run& run, std::int32_t count) {
    run.control.counts.NZADP4 = count;
    TakeSharedNodeList(run, count);
    const bool within = run.control.at.LSUBS + count - 1 <= run.A.NTOTA;
    return IntSection(run.A, run.control.at.LSUBS, within ? count : 0);
}

} // namespace

const CardLayout kNodeCard = Layout("Node card", kNodeFields);

void ReadNodalData(Run& run) {
    const IntArray ID = EquationNumbers(run);
    // A node without a card is free, in a later problem of the deck too, where `A` holds what the last one left.
    Fill(ID, 0);
    if (EchoInput(run))
        WriteNodeHeading(run);
    const std::int32_t firstCard = ReadNodeCards(run);
    const IntArray shared = TakeSharedNodes(run, CountNegativeIndicators(ID));
    SetEquations(run, NumberEquations(ID, shared));
    run.control.counts.NZADC = 0;
    if (!EchoInput(run))
        return;
    WriteGeneratedNodes(run, firstCard);
    if (shared.length > 0)
        WriteSharedNodes(run, shared);
}

} // namespace zurt
