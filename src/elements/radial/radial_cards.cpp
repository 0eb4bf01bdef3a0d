#include "elements/radial/radial_cards.h"

#include "core/format.h"
#include "core/stop.h"
#include "elements/cards/element_cards.h"
#include "elements/cards/group_cards.h"
#include "geometry/radial_nodes.h"
#include "geometry/radial_views.h"
#include "run/echo.h"
#include "run/partition.h"

#include <algorithm>
#include <string>

namespace zurt {

namespace {

constexpr CardField kGroupFields[] = {
    ZURT_COUNT(RadialGroup, NSUBEL4MX, "I5", "most sub-elements of an element, up to 10; 0 becomes 1"),
    ZURT_COUNT(RadialGroup, NP4DMX, "I5", "most nodes of a sub-element; 0 becomes 2, more reserves room"),
    ZURT_REAL(RadialGroup, CFIBER0, "D10.2", "initial concentration in the fibres"),
    ZURT_CODE(RadialGroup, IPARTIT, "I5", 0, 1, "acts as 0: no partition values",
              "1: partition values are read"),
};

constexpr CardField kElementFields[] = {
    ZURT_INTEGER(RadialElementCard, NN, "I8", "element number"),
    ZURT_BLANKS("7X"),
    ZURT_AMOUNT(RadialElementCard, D, "D10.4", "diffusion coefficient"),
    ZURT_AMOUNT(RadialElementCard, LENGTH, "D10.4", "length of the fibre"),
    ZURT_AMOUNT(RadialElementCard, RADIUS, "D10.4", "radius of the fibre"),
    ZURT_INTEGER(RadialElementCard, COUNT, "I8", "ISUB4 1: nodes along the radius; else sub-elements"),
    ZURT_DORMANT(RadialElementCard, ContinuumNode, "I8", "ISUB4 1: node of the continuum at its surface",
                 "no effect with `ISUB4` 0"),
    ZURT_REAL(RadialElementCard, CENTRE, "D10.2", "centre of the fibre, for the graphics file"),
    ZURT_FIELD(RadialElementCard, PARTITION, "D10.2", kAnyInteger, "partition value, under IPARTIT 1",
               "no effect with `ISUB4` 1", FieldValues{0.0, HUGE_VAL, ""}),
};

constexpr const char* kNodeDescriptor = "I8";

constexpr CardField kNodeFields[] = {
    ZURT_INTEGER(RadialNodeCard, NODE, kNodeDescriptor,
                 "nodes from the axis outward, or common nodes of the continuum"),
};

#define ZURT_RADIAL_INTEGER(MEMBER, SERBIAN, ENGLISH) ZURT_ECHO_INTEGER(RadialGroup, MEMBER, SERBIAN, ENGLISH)

constexpr EchoLine kGroupEcho[] = {
    ZURT_RADIAL_INTEGER(NSUBEL4MX, "MAX BROJ PODELEMENATA U RADIJALNOM ELEMENTU.NSUBEL4MX =",
                        "MAX NO OF SUBELEMENTS IN ONE RADIAL ELEMENT..NSUBEL4MX ="),
    ZURT_ECHO_REMARK("EQ.0; NSUBEL4MX = 1", "EQ.0; DEFAULT SET \"1\""),
    ZURT_RADIAL_INTEGER(NP4DMX, "MAKSIMALAN BROJ CVOROVA PO ELEMENTU  ......... NP4DMX =",
                        "MAXIMUM NUMBER OF NODAL POINTS PER ELEMENT  ... NP4DMX ="),
    ZURT_ECHO_REMARK("EQ.0; NP4DMX = 2", "EQ.0; DEFAULT SET \"2\""),
    ZURT_ECHO_REAL(RadialGroup, CFIBER0, "POCETNA KONCENTRACIJA U VLAKNIMA .............CFIBER0 =",
                   "INITIAL CONCENTRATION WITIN FIBERS.............CFIBER0 ="),
    ZURT_RADIAL_INTEGER(IPARTIT, "PARTICIJA U RADIJALNOM 1D ELEMENTU ........... IPARTIT =",
                        "PARTITIONING INSIDE 1D RADIAL ELEMENT......... IPARTIT ="),
    ZURT_RADIAL_INTEGER(NODEL4MX, "MAKSIMALAN BROJ CVOROVA PO ELEMENTU(IZRACUNAT) ....... NODEL4MX=",
                        "MAXIMUM NUMBER OF NODES PER ELEMENT(CALCULATED) ....... NODEL4MX="),
};

// --- group card ---------------------------------------------------------------------------------------------------

void CheckSubElementLimit(Run& run, const RadialGroup& radial) {
    if (radial.NSUBEL4MX <= kMaxSubElements)
        return;
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(A)", Say(run, " GRESKA U ULAZNIM PODACIMA:", " INPUT ERROR:"));
    Write(unit, "(A,I5)",
          Say(run, " UCITANI NAJVECI BROJ RADIJALNIH PODELEMENATA, NSUBEL4MX=",
              " MAXIMUM NUMBER OF RADIAL SUBELEMENTS INPUT, NSUBEL4MX="),
          radial.NSUBEL4MX);
    Write(unit, "(A)", Say(run, " NAJVECI BROJ JE =10", " MAXIMUM NUMBER IS =10"));
    Write(unit, "(A)", " STOP");
    StopRun(unit);
}

// Ahead of the family's own card, so that the report points at the element group card.
void CheckCommonNodeIndicator(const Run& run, const ElementGroup& group) {
    if (group.ISUB4 == 1 && (group.IND4N < 0 || group.IND4N > 2))
        DeckError(run.deck, "Element group card", "IND4N", std::to_string(group.IND4N),
                  "common nodes of a fibre: 0 for one, 1 for four, 2 for eight");
}

void ReadRadialGroupCard(Run& run, ElementGroup& group) {
    CheckCommonNodeIndicator(run, group);
    RadialGroup& radial = group.radial;
    radial = RadialGroup();
    ReadImageFields(run.deck, run.control.header.INDFOR, kRadialGroupCard, &radial);
    if (radial.NSUBEL4MX == 0)
        radial.NSUBEL4MX = 1;
    if (radial.NP4DMX == 0)
        radial.NP4DMX = 2;
    CheckSubElementLimit(run, radial);
    radial.ND = radial.NP4DMX < 3 ? 2 : 3;
    radial.NODEL4MX = radial.NSUBEL4MX + 1 + (radial.ND - 2) * radial.NSUBEL4MX;
    radial.substructured = group.ISUB4 == 1;
    if (radial.substructured && group.IND4N > 0)
        radial.CommonNodeCount = 4 * group.IND4N;
}

void WriteGroupNotes(const ElementGroup& group) {
    const RadialGroup& radial = group.radial;
    const std::string which = "group " + std::to_string(group.NGE) + ": ";
    if (radial.NP4DMX > 2)
        WriteNote(which + "radial sub-elements have two nodes, whatever NP4DMX says");
    if (radial.IPARTIT > 0 && radial.substructured)
        WriteNote(which + "partition values act with ISUB4 0 alone");
    else if (radial.IPARTIT > 1)
        WriteNote(which + "partition values are read with IPARTIT 1 alone, others are 0");
}

void EchoRadialGroupCard(Run& run, const ElementGroup& group, std::int32_t first) {
    PrintCardNumber(run, first, 1);
    Write(run.units.listing, "(6X,A/)",
          Say(run, "ULAZNI PODACI ZA IZOPARAMETARSKE RADIJALNE 1/D ELEMENTE",
              "INPUT DATA FOR ISOPARAMETRIC RADIAL 1/D ELEMENTS"));
    WriteEcho(run, kGroupEcho, &group.radial);
}

// --- data block ---------------------------------------------------------------------------------------------------

// Cleared, so that an element without a card has no nodes rather than what an earlier problem left.
void TakeRadialBlock(Run& run, ElementGroup& group) {
    WorkingVector& A = run.A;
    RadialGroup& radial = group.radial;
    const Word NET = group.NET;
    const bool inner = radial.substructured;
    const Word first = A.LMAX;
    radial.LFLUX = TakeWords(A, "FibreFlux", inner ? NET : 0);
    radial.LNODES = TakeWords(A, "RadialNodes", inner ? 0 : radial.NODEL4MX * NET);
    radial.LCOUNT = TakeWords(A, "RadialCount", NET);
    radial.LD = TakeWords(A, "RadialD", NET);
    radial.LLENGTH = TakeWords(A, "RadialLength", NET);
    radial.LRADIUS = TakeWords(A, "RadialRadius", NET);
    radial.LVALUE = TakeWords(A, "FibreValue", inner ? radial.NODEL4MX * NET : 0);
    radial.LVALUE0 = TakeWords(A, "FibreValue0", inner ? radial.NODEL4MX * NET : 0);
    radial.LCONTINUUM = TakeWords(A, "ContinuumNode", inner ? NET : 0);
    radial.LCOMMON =
        TakeWords(A, "CommonNodes", inner && radial.CommonNodeCount > 1 ? radial.CommonNodeCount * NET : 0);
    radial.LPARTITION = TakeWords(A, "PartitionValue", radial.IPARTIT > 0 ? NET : 0);
    StopIfInputOverflows(run);
    ClearWords(A, first, A.LMAX - 1);
    radial.centres.assign(static_cast<std::size_t>(inner ? 3 * NET : 0), 0.0);
}

// --- element cards ------------------------------------------------------------------------------------------------

struct RadialReader {
    Run& run;
    ElementGroup& group;
    bool echo = false;
    bool graphics = false;
    Word node = 0; // the last number given to an inner node of the run
    RadialElementCard card{};
};

void CheckElementNumber(RadialReader& reader) {
    const Deck& deck = reader.run.deck;
    const std::int32_t NET = reader.group.NET;
    if (reader.card.NN > NET && !reader.group.radial.substructured)
        StopOnElementNumber(reader.run, Say(reader.run, "RADIJALNIH 1D", "RADIAL 1D"), reader.card.NN, NET);
    RequireIndex(deck, kRadialElementCard.group, "NN", reader.card.NN, NET);
}

// The sub-elements that the card asks for.
std::int32_t SubElementsOfCard(const RadialReader& reader) {
    const RadialGroup& radial = reader.group.radial;
    const std::int32_t extra = radial.substructured ? 1 : 0; // nodes are one more than sub-elements
    if (reader.card.COUNT < 1 + extra || reader.card.COUNT > radial.NSUBEL4MX + extra)
        DeckError(reader.run.deck, kRadialElementCard.group, "COUNT", std::to_string(reader.card.COUNT),
                  radial.substructured
                      ? "under ISUB4 1 it counts nodes, 2 to NSUBEL4MX + 1 = " +
                            std::to_string(radial.NSUBEL4MX + 1)
                      : "it counts sub-elements, 1 to NSUBEL4MX = " + std::to_string(radial.NSUBEL4MX));
    return reader.card.COUNT - extra;
}

void StoreElement(const RadialReader& reader, std::int32_t count) {
    const Run& run = reader.run;
    RadialGroup& radial = reader.group.radial;
    const Word NET = reader.group.NET, n = reader.card.NN;
    RadialCount(run, reader.group)(n) = count;
    RealSection(run.A, radial.LD, NET)(n) = reader.card.D;
    RealSection(run.A, radial.LLENGTH, NET)(n) = reader.card.LENGTH;
    RealSection(run.A, radial.LRADIUS, NET)(n) = reader.card.RADIUS;
    if (radial.IPARTIT == 1)
        PartitionValue(run, reader.group)(n) = reader.card.PARTITION;
    radial.subElements += count;
}

// `count` node numbers, at most kNodesPerRadialCard, from a card of their own.
void ReadNodeNumbers(const RadialReader& reader, std::int32_t count, RadialNodeCard& card) {
    Run& run = reader.run;
    const CardField& field = kNodeFields[0];
    ReadNumberCards(run.deck, run.control.header.INDFOR, kRadialNodeCard.group, field.name,
                    ZURT_DESCRIPTOR(std::int32_t, kNodeDescriptor), kNodesPerRadialCard,
                    IntArray(card.NODE, count));
    for (std::int32_t k = 0; k < count; ++k)
        RequireIndex(run.deck, kRadialNodeCard.group, field.name, card.NODE[k], run.control.header.NP);
}

// --- substructured fibres -----------------------------------------------------------------------------------------

void WriteInnerNodes(RadialReader& reader, std::int32_t count) {
    static const Format row("(4I10,3D13.5)");
    for (std::int32_t i = 1; i <= count; ++i) {
        ++reader.node;
        if (reader.graphics)
            Write(reader.run.units.graphics, row, reader.node, 0, 0, 8,
                  ConstRealArray(reader.card.CENTRE, 3));
    }
}

void ReadSubstructuredElement(RadialReader& reader) {
    static const Format row("(2X,I8,10X,3(3X,D10.4),I10,7X,3D10.2)");
    Run& run = reader.run;
    const RadialElementCard& card = reader.card;
    const std::int32_t count = SubElementsOfCard(reader);
    RequireIndex(run.deck, kRadialElementCard.group, "ContinuumNode", card.ContinuumNode,
                 run.control.header.NP);
    if (reader.echo)
        Write(run.units.listing, row, card.NN, card.D, card.LENGTH, card.RADIUS, card.COUNT,
              ConstRealArray(card.CENTRE, 3));
    StoreElement(reader, count);
    ContinuumNode(run, reader.group)(card.NN) = card.ContinuumNode;
    std::copy(card.CENTRE, card.CENTRE + 3,
              &reader.group.radial.centres[3 * static_cast<std::size_t>(card.NN - 1)]);
    WriteInnerNodes(reader, count);
    if (reader.group.IND4N == 0)
        return;
    RadialNodeCard common;
    ReadNodeNumbers(reader, reader.group.radial.CommonNodeCount, common);
    const IntTable table = CommonNodes(run, reader.group);
    for (Word k = 1; k <= table.columns; ++k)
        table(card.NN, k) = common.NODE[k - 1];
}

// --- assembled fibres ---------------------------------------------------------------------------------------------

// The format takes no more on its one line of nodes; an element of ten sub-elements has a second one.
constexpr std::int32_t kNodesPerLine = 10;

void ReadAssembledElement(RadialReader& reader) {
    static const Format row("(2X,I8,10X,3(3X,D10.4)/10I8)"), rest("(10I8)");
    const RadialElementCard& card = reader.card;
    const std::int32_t count = SubElementsOfCard(reader);
    RadialNodeCard nodes;
    ReadNodeNumbers(reader, count + 1, nodes);
    StoreElement(reader, count);
    const IntTable table = RadialNodes(reader.run, reader.group);
    for (Word k = 1; k <= count + 1; ++k)
        table(k, card.NN) = nodes.NODE[k - 1];
    if (!reader.echo)
        return;
    const std::int32_t line = std::min(count + 1, kNodesPerLine);
    Write(reader.run.units.listing, row, card.NN, card.D, card.LENGTH, card.RADIUS,
          ConstIntArray(nodes.NODE, line));
    if (count + 1 > line)
        Write(reader.run.units.listing, rest, ConstIntArray(nodes.NODE + line, count + 1 - line));
}

void EchoElementHead(Run& run) {
    Write(run.units.listing, "(///6X,A/)",
          Say(run, "PODACI ZA SVAKI RADIJALNI 1/D ELEMENT U GRUPI",
              "DATA FOR EACH RADIAL 1/D ELEMENT IN GROUP"));
    Write(run.units.listing, "(3X,A,11X,A,5X,A,7X,A/)", Say(run, "ELEMENT", "ELEMENT"),
          Say(run, "KOEF. DIF.", "DIFF COEFF"), Say(run, "DUZINA", "LENGTH"),
          Say(run, "POLUPRECNIK", "RADIUS"));
}

void ReadRadialElements(Run& run, ElementGroup& group) {
    RadialReader reader{run, group};
    TextUnit& graphics = run.units.graphics;
    const bool inner = group.radial.substructured;
    reader.echo = EchoInput(run);
    reader.graphics = inner && IsOpen(graphics) && run.control.header.IGRAF >= 0;
    reader.node = run.control.header.NP + InnerNodesBefore(run, group.NGE);
    if (reader.echo)
        EchoElementHead(run);
    if (reader.graphics)
        Write(graphics, "(I6/I6)", -1, 15);
    BeginCards(run.deck, "elements of group " + std::to_string(group.NGE), "NET", group.NET, group.cardLine);
    for (Word cards = 0; cards < group.NET; ++cards) {
        ReadCardFields(run.deck, run.control.header.INDFOR, kRadialElementCard, &reader.card);
        CheckElementNumber(reader);
        if (inner)
            ReadSubstructuredElement(reader);
        else
            ReadAssembledElement(reader);
        CountCards(run.deck, cards + 1);
    }
    if (reader.graphics)
        Write(graphics, "(I6)", -1);
}

} // namespace

const CardLayout kRadialGroupCard = Layout("Radial group card", kGroupFields);
const CardLayout kRadialElementCard = Layout("Radial element card", kElementFields);
const CardLayout kRadialNodeCard = Layout("Radial node card", kNodeFields);

void ReadGroupRadial(Run& run, ElementGroup& group) {
    const std::int32_t first = NumberOfNextCard(run.deck);
    ClearFamilyFields(group);
    ReadRadialGroupCard(run, group);
    if (EchoInput(run))
        EchoRadialGroupCard(run, group, first);
    WriteGroupNotes(group);
    TakeRadialBlock(run, group);
    SetSubstructureInitialValues(run, group);
    ReadRadialElements(run, group);
    LayOutRadialGroup(run, group, NumberingOf(run));
}

} // namespace zurt
