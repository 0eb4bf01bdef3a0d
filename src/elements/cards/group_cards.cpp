#include "elements/cards/group_cards.h"

#include "core/stop.h"
#include "core/widened_constants.h"
#include "elements/cards/element_cards.h"
#include "elements/cards/family_cards.h"
#include "geometry/gauss_rules.h"
#include "run/partition.h"
#include "solver/linear_system.h"

#include <cmath>
#include <string>

namespace zurt {

namespace {

constexpr CardField kGroupFields[] = {
    ZURT_CODE(ElementGroup, NETIP, "I5", 1, kLargestElementType, "acts as 4: radial fibre elements",
              "element type: 1, 2, 3 by dimension, any other the radial fibre element"),
    ZURT_COUNT(ElementGroup, NET, "I10", "number of elements"),
    ZURT_CODE(ElementGroup, INDAX, "I5", 0, 1, "acts as 1: axisymmetric", "1: axisymmetric"),
    ZURT_CODE(ElementGroup, IZIP, "I5", 0, 2, "asks for no source: the group has none",
              "volume source: 0 none, 1 by time, 2 by concentration"),
    ZURT_CODE(ElementGroup, ISUB4, "I5", 0, 1, "is no code: below 1 it acts as 0, above in part as 1",
              "radial element: 1 with substructuring"),
    ZURT_INTEGER(ElementGroup, IND4N, "I5", "radial element: common nodes, 0 one, 1 four, 2 eight"),
};

// --- group card ---------------------------------------------------------------------------------------------------

void CheckGaussOrders(Run& run, const FamilyCards& family, const CardLayout& card, ElementGroup& group) {
    for (int d = 0; d < family.shape.dimension; ++d) {
        group.NGAUS[d] = GaussOrderOfCard(group.NGAUS[d]);
        if (group.NGAUS[d] < 1 || group.NGAUS[d] > kMaxGaussOrder)
            DeckError(run.deck, card.group, family.gaussNames[d], std::to_string(group.NGAUS[d]),
                      "the order of a Gauss rule must lie between 1 and " + std::to_string(kMaxGaussOrder));
    }
}

// Lines have an area each, quadrilaterals a thickness each when the card says so.
void SetThickness(const FamilyCards& family, const FamilyGroupCard& card, ElementGroup& group) {
    group.NTHIC = card.NTHIC;
    group.THIC = card.THIC;
    group.hasThickness = family.shape.dimension == 1 || card.NTHIC != 0;
    if (card.NTHIC == 0 && std::fabs(card.THIC) < kNoThickness)
        group.THIC = 1.0;
}

void ReadFamilyGroupCard(Run& run, ElementGroup& group, const FamilyCards& family) {
    const HeaderFields& header = run.control.header;
    const bool device = header.NDS != 0;
    const CardLayout& layout = device ? family.deviceGroupCard : family.groupCard;
    FamilyGroupCard card;
    ReadCardFields(run.deck, header.INDFOR, layout, &card);

    group.MATDD = card.MATDD == 0 ? 1 : card.MATDD;
    group.NPDMX = card.NPDMX == 0 ? family.shape.corners : card.NPDMX;
    group.IPRDC = card.IPRDC;
    group.IPRTG = card.IPRTG;
    for (int d = 0; d < 3; ++d)
        group.NGAUS[d] = card.NGAUS[d];
    // Whatever the card says: one material, or under NDS the count that is the group material's number.
    group.MAT = 1;
    group.NMAT = device ? group.MATDD : 1;
    group.NDMAX = group.NPDMX > family.shape.corners ? family.shape.mostNodes : family.shape.corners;

    SetThickness(family, card, group);
    CheckGaussOrders(run, family, layout, group);
    if (device && group.MATDD < 0)
        RequireIndex(run.deck, layout.group, layout.fields[0].name, group.MATDD, header.NMATT);
    if (device && group.MATDD > header.NMATT)
        StopOnMaterial(run, family.groupMaterial, group.MATDD);
}

void EchoFamilyGroupCard(Run& run, const ElementGroup& group, const FamilyCards& family, std::int32_t first) {
    PrintCardNumber(run, first, 1);
    Write(run.units.listing, "(6X,A/)", Say(run, family.heading.serbian, family.heading.english));
    if (run.control.header.NDS != 0)
        WriteEchoLines(run, family.deviceEcho, family.deviceEchoCount, &group);
    else
        WriteEchoLines(run, family.echo, family.echoCount, &group);
}

// --- data block ---------------------------------------------------------------------------------------------------

Word TakeIfPresent(Run& run, const char* name, Word n, bool present) {
    return present ? TakeWords(run.A, name, n) : run.A.LMAX;
}

// Cleared, so that an element without a card has no nodes rather than what an earlier problem left.
void TakeDataBlock(Run& run, ElementGroup& group) {
    const Word NET = group.NET;
    group.hasMaterials = group.NMAT > 1 || run.control.header.NDS != 0;
    group.hasSources = group.IZIP > 0;
    group.hasValueFlags = group.IPRTG > 1;
    group.hasCoordinateFlags = group.IPRDC > 1;
    group.LNEL = TakeWords(run.A, "NEL", group.NDMAX * NET);
    group.LMATE = TakeIfPresent(run, "element materials", NET, group.hasMaterials);
    group.LISRC = TakeIfPresent(run, "element sources", NET, group.hasSources);
    group.LIPT = TakeIfPresent(run, "element value print flags", NET, group.hasValueFlags);
    group.LIPC = TakeIfPresent(run, "element coordinate print flags", NET, group.hasCoordinateFlags);
    group.LTHIC = TakeIfPresent(run, "element thickness", NET, group.hasThickness);
    StopIfInputOverflows(run);
    ClearWords(run.A, group.LNEL, run.A.LMAX - 1);
}

} // namespace

static_assert(kMostNodes <= kMostLayoutNodes);

const CardLayout kGroupCard = Layout("Element group card", kGroupFields);

void ReadGroupCard(Run& run, std::int32_t NGE) {
    ElementGroup& group = run.groups[NGE];
    group.NGE = NGE;
    ReadCardFields(run.deck, run.control.header.INDFOR, kGroupCard, &group);
    group.cardLine = run.deck.cardLine;
}

void ClearFamilyFields(ElementGroup& group) {
    group.NDMAX = 0;
    group.hasMaterials = group.hasSources = group.hasValueFlags = group.hasCoordinateFlags = false;
    group.hasThickness = false;
}

void ReadIsoparametricGroup(Run& run, ElementGroup& group) {
    const FamilyCards& family = CardsOf(group);
    const std::int32_t first = NumberOfNextCard(run.deck);
    ReadFamilyGroupCard(run, group, family);
    if (EchoInput(run))
        EchoFamilyGroupCard(run, group, family, first);
    TakeDataBlock(run, group);
    ReadElementCards(run, group, family);
    LayOutElements(run, NumberingOf(run), Connectivity(run, group), group.NDMAX, {});
}

} // namespace zurt
