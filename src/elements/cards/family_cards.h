// What the isoparametric families have of their own in reading: one FamilyCards row each, and the records that their
// cards are read into.
//
// The reading itself stands once, in elements/cards/group_cards.h and elements/cards/element_cards.h.
#pragma once

#include "core/format.h"
#include "geometry/element_family.h"
#include "input/card.h"
#include "run/echo.h"

#include <array>

namespace zurt {

/// A text in both languages.
struct TwinText {
    const char* serbian;
    const char* english;
};

/// Fields of a family's group card; a family reads those that it has.
struct FamilyGroupCard {
    std::int32_t NMAT = 0;      // number of materials, replaced after reading
    std::int32_t MAT = 0;       // one material number, replaced after reading
    std::int32_t MATDD = 0;     // group material under NDS
    std::int32_t NPDMX = 0;     // largest node count of an element
    std::int32_t IPRDC = 0;     // Gauss coordinate print flag
    std::int32_t IPRTG = 0;     // Gauss value print flag
    std::int32_t NGAUS[3] = {}; // Gauss orders by direction
    std::int32_t NTHIC = 0;     // 2D: thickness by element
    double THIC = 0.0;          // 2D: thickness of the group
};

/// Fields of an element card and of the card of mid-side nodes behind it.
struct ElementCard {
    std::int32_t NN = 0;
    std::int32_t nodes[kMostNodes] = {}; // corners, then mid-side nodes
    std::int32_t MAT = 0;
    std::int32_t ISRC = 0; // source curve
    std::int32_t KG = 0;   // node step of the generation
    std::int32_t KGEN = 0; // how many elements to generate
    std::int32_t IPC = 0;  // Gauss coordinate print
    std::int32_t IPT = 0;  // Gauss value print
    double THIC = 0.0;     // thickness (2D), area (1D)
};

/// What one isoparametric family has of its own in reading.
struct FamilyCards {
    const ElementFamily&
        shape;            // its corners are the default of NPDMX; above them elements have mostNodes columns
    CardLayout groupCard; // NDS 0
    CardLayout deviceGroupCard; // NDS not 0
    CardLayout elementCard;     // with the corners
    CardLayout midSideCard;     // the columns behind the corners, on a card of their own; or, without fields:
    CardLayout fullElementCard; // an element card with all columns
    const char* gaussNames[3];  // of the orders, one for each dimension
    const char* name;           // "3D", in messages
    TwinText groupMaterial;     // label of the group's material in the message
    TwinText elementMaterial;   // label of an element's material in the message
    const EchoLine* echo;       // group card under NDS 0, values from ElementGroup
    std::size_t echoCount;
    const EchoLine* deviceEcho; // group card under NDS
    std::size_t deviceEchoCount;
    TwinText heading;        // of the echoed group card
    TwinText tableTitle;     // of the listed elements
    TwinText tableHead;      // over their columns
    const char* tableFields; // descriptors behind the nodes: MAT, SOU, COO, CONC, and thickness or area
};

/// The cards of a family; each has a file of its own that puts them together.
template <int Family> const FamilyCards& CardsOfFamily();
#define ZURT_FAMILY_CARDS(FAMILY) template <> const FamilyCards& CardsOfFamily<FAMILY>();
ZURT_FOR_ALL_FAMILIES(ZURT_FAMILY_CARDS)
#undef ZURT_FAMILY_CARDS

/// Those of a group's family; not for radial groups.
inline const FamilyCards& CardsOf(const ElementGroup& group) {
    const FamilyCards* cards = nullptr;
    WithFamily(group, [&](auto family) { cards = &CardsOfFamily<family.value>(); });
    return *cards;
}

/// Those of all families, in the order of the list.
#define ZURT_FAMILY_CARDS(FAMILY) &CardsOfFamily<FAMILY>(),
inline std::array<const FamilyCards*, kFamilies> CardsOfAllFamilies() {
    return {ZURT_FOR_ALL_FAMILIES(ZURT_FAMILY_CARDS)};
}
#undef ZURT_FAMILY_CARDS

} // namespace zurt
