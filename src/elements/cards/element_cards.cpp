#include "elements/cards/element_cards.h"

#include "core/stop.h"
#include "core/widened_constants.h"
#include "geometry/group_views.h"
#include "solver/linear_system.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

namespace zurt {

namespace {

// Source and print fields before any card has given a value.
constexpr std::int32_t kNoneBefore = -1;

// The group while its cards are read: the card in hand, the element being made, and what the element before had.
struct ElementReader {
    Run& run;
    const ElementGroup& group;
    const FamilyCards& family;
    const CardLayout& layout; // of the element card
    int columnsOnCard;        // node columns of the element card; the others stand on the mid-side card
    double previousThickness;
    IntTable NEL{};
    IntArray materials{}, sources{}, valueFlags{}, coordinateFlags{}; // empty when absent
    RealArray thickness{};                                            // likewise
    bool echo = false;
    Format row{}; // of the listed elements
    ElementCard card{};
    std::int32_t number = 0;             // of the element being made
    std::int32_t nodes[kMostNodes] = {}; // and its nodes
    Word count = 0;                      // elements made
    Word line = 0;                       // of the deck, with the card in hand
    std::int32_t previousMaterial = 1;
    std::int32_t previousSource = kNoneBefore;
    std::int32_t previousValueFlag = kNoneBefore;
    std::int32_t previousCoordinateFlag = kNoneBefore;
};

// --- checks -------------------------------------------------------------------------------------------------------

void CheckElementNumber(ElementReader& reader, Word number) {
    if (number < 1)
        DeckError(reader.run.deck, reader.layout.group, "NN", std::to_string(number),
                  "element numbers begin with 1");
    if (number > reader.group.NET)
        StopOnElementNumber(reader.run, reader.family.name, number, reader.group.NET);
}

// `what` says which number is wrong; the card may be one that this element was generated from.
[[noreturn]] void ReportElementField(const ElementReader& reader, const CardLayout& layout,
                                     const std::string& field, Word found, const std::string& reason) {
    std::string element = "element " + std::to_string(reader.number);
    if (reader.number != reader.card.NN)
        element += ", generated from the card of element " + std::to_string(reader.card.NN);
    DeckError(reader.run.deck, layout.group, field.c_str(), std::to_string(found), element + ": " + reason);
}

void CheckNode(const ElementReader& reader, int column, Word node) {
    const std::int32_t NP = reader.run.control.header.NP;
    const bool corner = column < reader.family.shape.corners;
    if (node <= NP && (node >= 1 || (node == 0 && !corner)))
        return;
    ReportElementField(reader, column < reader.columnsOnCard ? reader.layout : reader.family.midSideCard,
                       "node " + std::to_string(column + 1), node,
                       "node numbers lie between " + std::string(corner ? "1" : "0") + " and " +
                           std::to_string(NP));
}

// A solver may take elements of so many nodes and no more.
void CheckNodeCount(const ElementReader& reader) {
    const ElementLimit limit = ElementLimitOf(reader.run);
    if (limit.nodes == 0)
        return;
    Word count = 0;
    for (int column = 0; column < reader.group.NDMAX; ++column)
        count += reader.nodes[column] != 0;
    if (count > limit.nodes)
        ReportElementField(reader, reader.family.midSideCard, "number of nodes", count,
                           std::string("with ") + limit.solver + " an element has at most " +
                               std::to_string(limit.nodes) + " nodes");
}

// Under ITOR 2 a source of a quadrilateral asks for the potential of the element's nodes.
void CheckPotential(const ElementReader& reader, std::int32_t source) {
    const HeaderFields& header = reader.run.control.header;
    if (header.ITOR != 2 || reader.family.shape.dimension != 2 || reader.group.IZIP != 1 || source <= 0)
        return;
    for (int column = 0; column < reader.group.NDMAX; ++column)
        if (reader.nodes[column] > header.PotentialFunctionSize)
            ReportElementField(reader, reader.layout, "node " + std::to_string(column + 1),
                               reader.nodes[column],
                               "its source under ITOR 2 needs the potential at its nodes, and "
                               "PotentialFunctionSize on the execution card is " +
                                   std::to_string(header.PotentialFunctionSize));
}

// --- field rules --------------------------------------------------------------------------------------------------

// The element's material; the arrays of absent fields are empty.
std::int32_t ElementMaterial(ElementReader& reader) {
    Run& run = reader.run;
    const std::int32_t NMATT = run.control.header.NMATT;
    const std::int32_t field = reader.card.MAT;
    if (run.control.header.NDS != 0) {
        if (field < 0)
            ReportElementField(reader, reader.layout, "MAT", field, "a material number can't be negative");
        const std::int32_t material = field == 0 ? reader.group.MATDD : field;
        if (material > NMATT)
            StopOnMaterial(run, reader.family.elementMaterial, material);
        return material;
    }
    if (field > 1)
        NoteOnCard(run.deck, reader.layout.group, "MAT",
                   "is passed over: without NDS every element has material 1");
    if (NMATT == 1)
        return 1;
    if (reader.group.NMAT < 2)
        return reader.group.MAT;
    return field == 0 ? reader.previousMaterial : field;
}

// A field that is stored per element: 0 takes the value before, a negative value counts as 0 but is carried on.
std::int32_t CarriedField(std::int32_t field, std::int32_t& previous) {
    if (field != 0)
        previous = field;
    return previous < 0 ? 0 : previous;
}

// A thickness or area that is stored per element: none takes the one before.
double CarriedThickness(double field, double& previous) {
    if (!(std::fabs(field) < kNoThickness))
        previous = field;
    return previous;
}

struct ElementFields {
    std::int32_t material, source, valueFlag, coordinateFlag;
    double thickness;
};

ElementFields ResolveFields(ElementReader& reader) {
    const ElementGroup& group = reader.group;
    const ElementCard& card = reader.card;
    ElementFields fields{};
    fields.material = ElementMaterial(reader);
    reader.previousMaterial = fields.material;
    fields.source = group.hasSources ? CarriedField(card.ISRC, reader.previousSource) : 0;
    fields.valueFlag = group.hasValueFlags ? CarriedField(card.IPT, reader.previousValueFlag) : group.IPRTG;
    fields.coordinateFlag =
        group.hasCoordinateFlags ? CarriedField(card.IPC, reader.previousCoordinateFlag) : group.IPRDC;
    fields.thickness =
        group.hasThickness ? CarriedThickness(card.THIC, reader.previousThickness) : group.THIC;
    return fields;
}

// --- storing and echo ---------------------------------------------------------------------------------------------

// For the check of a deck.
void KeepElementLine(const ElementReader& reader) {
    std::vector<std::vector<Word>>& lines = reader.run.check.elementLine;
    lines.resize(kMaxGroups + 1);
    KeepLine(lines[static_cast<std::size_t>(reader.group.NGE)], reader.number, reader.line);
}

void StoreElement(ElementReader& reader, const ElementFields& fields) {
    const Word n = reader.number;
    for (int column = 0; column < reader.group.NDMAX; ++column) {
        CheckNode(reader, column, reader.nodes[column]);
        reader.NEL(n, column + 1) = reader.nodes[column];
    }
    if (reader.run.check.on)
        KeepElementLine(reader);
    if (reader.group.hasMaterials)
        reader.materials(n) = fields.material;
    if (reader.group.hasSources)
        reader.sources(n) = fields.source;
    if (reader.group.hasValueFlags)
        reader.valueFlags(n) = fields.valueFlag;
    if (reader.group.hasCoordinateFlags)
        reader.coordinateFlags(n) = fields.coordinateFlag;
    if (reader.group.hasThickness)
        reader.thickness(n) = fields.thickness;
}

void EchoElementTableHead(ElementReader& reader) {
    Run& run = reader.run;
    const FamilyCards& family = reader.family;
    TextUnit& listing = run.units.listing;
    Write(listing, "(///6X,A/)", Say(run, family.tableTitle.serbian, family.tableTitle.english));
    Write(listing, "(A/)", Say(run, family.tableHead.serbian, family.tableHead.english));
}

void EchoElement(ElementReader& reader, const ElementFields& fields) {
    static const Format midSides("(9X,8I8)");
    TextUnit& listing = reader.run.units.listing;
    const IntArray nodes(reader.nodes, reader.columnsOnCard);
    if (reader.family.shape.dimension == 3)
        Write(listing, reader.row, reader.number, nodes, fields.material, fields.source,
              fields.coordinateFlag, fields.valueFlag);
    else
        Write(listing, reader.row, reader.number, nodes, fields.material, fields.source,
              fields.coordinateFlag, fields.valueFlag, fields.thickness);
    if (reader.group.NDMAX > reader.columnsOnCard)
        Write(listing, midSides,
              IntArray(reader.nodes + reader.columnsOnCard, reader.group.NDMAX - reader.columnsOnCard));
}

// --- one card and the elements made from it -----------------------------------------------------------------------

void ReadMidSideCard(ElementReader& reader) {
    ReadCardFields(reader.run.deck, reader.run.control.header.INDFOR, reader.family.midSideCard,
                   &reader.card);
    for (int column = reader.columnsOnCard; column < reader.group.NDMAX; ++column)
        reader.nodes[column] = reader.card.nodes[column];
}

void MakeElement(ElementReader& reader) {
    const ElementFields fields = ResolveFields(reader);
    if (reader.number == reader.card.NN && reader.group.NDMAX > reader.columnsOnCard)
        ReadMidSideCard(reader);
    StoreElement(reader, fields);
    CheckNodeCount(reader);
    CheckPotential(reader, fields.source);
    if (reader.echo)
        EchoElement(reader, fields);
    ++reader.count;
}

// The next element of a generated run: KG on every node number, an absent mid-side node stays absent.
void StepToNextElement(ElementReader& reader) {
    ++reader.number;
    CheckElementNumber(reader, reader.number);
    for (int column = 0; column < reader.group.NDMAX; ++column) {
        if (reader.nodes[column] == 0)
            continue;
        const Word node = Word{reader.nodes[column]} + reader.card.KG;
        CheckNode(reader, column, node);
        reader.nodes[column] = static_cast<std::int32_t>(node);
    }
}

void ReadElementRun(ElementReader& reader) {
    const ElementCard& card = reader.card;
    ReadCardFields(reader.run.deck, reader.run.control.header.INDFOR, reader.layout, &reader.card);
    CheckElementNumber(reader, card.NN);
    reader.number = card.NN;
    reader.line = reader.run.deck.cardLine;
    for (int column = 0; column < reader.columnsOnCard; ++column)
        reader.nodes[column] = card.nodes[column];
    MakeElement(reader);
    if (card.KG == 0 && card.KGEN == 0)
        return;
    const Word last = Word{card.NN} + card.KGEN;
    while (reader.count < reader.group.NET && reader.number < last) {
        StepToNextElement(reader);
        MakeElement(reader);
    }
}

// Nodes whose numbers a field by columns can't hold: the card shifts, and what follows makes little sense.
void NoteOnNarrowFields(const ElementReader& reader) {
    Run& run = reader.run;
    const HeaderFields& header = run.control.header;
    const CardLayout& last =
        reader.group.NDMAX > reader.columnsOnCard ? reader.family.midSideCard : reader.layout;
    int width = last.fields[0].descriptor.width;
    for (int f = 0; f < last.fieldCount; ++f)
        if (std::strncmp(last.fields[f].name, "NODE", 4) == 0)
            width = std::min(width, last.fields[f].descriptor.width);
    const Word most = LargestInColumns(width);
    if (header.INDFOR == 2 && header.NP > most)
        NoteOnCard(run.deck, last.group, "",
                   "a node field of I" + std::to_string(width) + " holds at most " + std::to_string(most) +
                       ", and NP is " + std::to_string(header.NP) +
                       "; zurt --free takes such a deck with free cards (INDFOR 1)");
}

} // namespace

void StopOnElementNumber(Run& run, const char* family, Word number, std::int32_t NET) {
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(3A)", Say(run, " GRESKA U ULAZNIM PODACIMA ZA GRUPU ", " ERROR IN INPUT DATA FOR "), family,
          Say(run, " ELEMENATA:", " ELEMENT GROUP:"));
    Write(unit, "(A)",
          Say(run, " UCITANI BROJ ELEMENTA JE VECI OD UKUPNOG BROJA U GRUPI",
              " INPUT ELEMENT NUMBER IS GREATER THANTHE TOTAL NUMBER WITHIN THE GROUP"));
    Write(unit, "(A,I8)", Say(run, " UCITANI BROJ ELEMENTA  NN=", " INPUT ELEMENT NUMBER  NN="), number);
    Write(
        unit, "(A,I8)",
        Say(run, " UKUPAN BROJ ELEMENATA U GRUPI, NET=", " TOTAL NUMBER OF ELEMENTS WITHIN THE GROUP, NET="),
        NET);
    Write(unit, "(A)", " S T O P");
    StopRun(unit);
}

void StopOnMaterial(Run& run, const TwinText& label, std::int32_t material) {
    TextUnit& unit = BeginMessage(run);
    Write(unit, "(A)", Say(run, " G R E S K A", " E R R O R"));
    Write(unit, "(A)",
          Say(run, "BROJ MATERIJALA JE VECI OD UKUPNOG BROJA MATERIJALA",
              "MATERIAL NUMBER IS GREATER THAN THE TOTAL NUMBER OF MATERIALS"));
    Write(unit, "(A,I5)", Say(run, label.serbian, label.english), material);
    Write(unit, "(A,I5)",
          Say(run, "   UKUPAN BROJ MATERIJALA, NMATT=", "   TOTAL NUMBER OF MATERIALS, NMATT="),
          run.control.header.NMATT);
    Write(unit, "(A)", "   S T O P");
    StopRun(unit);
}

void ReadElementCards(Run& run, const ElementGroup& group, const FamilyCards& family) {
    const Word NET = group.NET;
    const bool full = group.NDMAX > family.shape.corners && family.fullElementCard.fieldCount > 0;
    ElementReader reader{run,
                         group,
                         family,
                         full ? family.fullElementCard : family.elementCard,
                         full ? group.NDMAX : family.shape.corners,
                         group.THIC};
    reader.NEL = Connectivity(run, group);
    reader.materials = ElementMaterials(run, group);
    reader.sources = ElementSources(run, group);
    reader.valueFlags = IntSection(run.A, group.LIPT, group.hasValueFlags ? NET : 0);
    reader.coordinateFlags = IntSection(run.A, group.LIPC, group.hasCoordinateFlags ? NET : 0);
    reader.thickness = ElementThickness(run, group);
    reader.echo = EchoInput(run) && IsOpen(run.units.listing);
    if (reader.echo) {
        const std::string nodes = std::to_string(reader.columnsOnCard);
        reader.row = Format(("(I8,1X," + nodes + "I8,2X," + family.tableFields + ")").c_str());
        EchoElementTableHead(reader);
    }
    NoteOnNarrowFields(reader);
    BeginCards(run.deck, "elements of group " + std::to_string(group.NGE), "NET", NET, group.cardLine);
    while (reader.count < NET) {
        ReadElementRun(reader);
        CountCards(run.deck, reader.count);
    }
}

} // namespace zurt
