// The isoparametric element families: what each of them is, said once.
//
// A family's number is the NETIP of its groups. FamilyShape holds what kernels know when they are compiled, ElementFamily
// is the same as a record for whoever takes families as they come. Cards and their texts are in elements/cards, one file a
// family (FamilyCards). A new family is a number in the list below, a FamilyShape and such a file.
#pragma once

#include "run/element_group.h"

#include <cstdint>
#include <type_traits>

namespace zurt {

/// Every family, by number. (4 is what decks say for radial fibres, as they could say any other.)
#define ZURT_FOR_ALL_FAMILIES(DO) DO(1) DO(2) DO(3)

/// The largest NETIP that means something; 4 is that of radial fibres.
constexpr int kLargestElementType = [] {
    int largest = 4;
#define ZURT_LARGER(FAMILY) largest = FAMILY > largest ? FAMILY : largest;
    ZURT_FOR_ALL_FAMILIES(ZURT_LARGER)
#undef ZURT_LARGER
    return largest;
}();

/// Those that fibres can lie under.
#define ZURT_FOR_FAMILIES_UNDER_FIBRES(DO) DO(2) DO(3)

#define ZURT_ONE_MORE(FAMILY) +1
constexpr int kFamilies = ZURT_FOR_ALL_FAMILIES(ZURT_ONE_MORE);
#undef ZURT_ONE_MORE

/// Whether fibres can lie under a family.
template <int Family>
constexpr bool kUnderFibres = [] {
    bool found = false;
#define ZURT_FAMILY_FOUND(FAMILY) found = found || Family == FAMILY;
    ZURT_FOR_FAMILIES_UNDER_FIBRES(ZURT_FAMILY_FOUND)
#undef ZURT_FAMILY_FOUND
    return found;
}();

/// Every element type but those of the isoparametric families.
inline bool IsRadial(const ElementGroup& group) {
    switch (group.NETIP) {
#define ZURT_FAMILY_CASE(FAMILY) case FAMILY:
        ZURT_FOR_ALL_FAMILIES(ZURT_FAMILY_CASE)
#undef ZURT_FAMILY_CASE
        return false;
    default:
        return true;
    }
}

/// An element as the graphics file knows it: descriptor of dataset 71, and the columns of the connectivity in the order
/// of the file. The nodes of parabolic elements go round, corners and mid-sides in turn.
struct GraphicsShape {
    std::int32_t descriptor;
    std::int32_t count;
    std::int32_t columns[20];
};

/// An element as viewers know it (VTK). types: of the smallest element, of the one with a node on every edge, and of the
/// full one. nodes: the full one's, in the viewer's order, the others' being its beginning: k is a column of the
/// connectivity, -k the middle of side k, where elements of the family have no node.
struct ViewerShape {
    std::int32_t types[3];
    std::int32_t count;
    std::int32_t nodes[27];
};

/// kDimension: natural directions, each from -1 to 1. kCorners, kMaxNodes: nodes of the smallest and of the full element.
/// kPlace: natural coordinates of each node; the last one is the centre. kEnds: for each mid-side node but the centre the
/// two corners that it lies between (the line has none). kSideCorners: corners of each end, edge or face, two sides to a
/// direction, the one at +1 ahead. kCornerOfPoint: the corner, from 0, in whose part of the element each point of a rule
/// of order 2 lies. kLinear, kParabolic: see GraphicsShape. kRestriction: what the listing says, in Serbian and in English,
/// of groups that are neither of these; lines always are. kViewer: see ViewerShape. Corners and nodes count from 1.
template <int Family> struct FamilyShape;

/// Lines in space, of 2 or 3 nodes.
template <> struct FamilyShape<1> {
    static constexpr int kDimension = 1, kCorners = 2, kMaxNodes = 3;
    static constexpr int kPlace[3][1] = {{+1}, {-1}, {0}};
    static constexpr int kSideCorners[2][1] = {{1}, {2}};
    static constexpr int kCornerOfPoint[2] = {1, 0};
    static constexpr GraphicsShape kLinear = {21, 2, {1, 2}}, kParabolic = {24, 3, {1, 3, 2}};
    static constexpr ViewerShape kViewer = {{3, 21, 21}, 3, {1, 2, 3}};
    static constexpr const char* kRestriction[2] = {};
};

/// Quadrilaterals in the plane, of 4 to 9 nodes.
template <> struct FamilyShape<2> {
    static constexpr int kDimension = 2, kCorners = 4, kMaxNodes = 9;
    static constexpr int kPlace[9][2] = {{+1, +1}, {-1, +1}, {-1, -1}, {+1, -1}, {0, +1},
                                         {-1, 0},  {0, -1},  {+1, 0},  {0, 0}};
    static constexpr int kEnds[4][2] = {{1, 2}, {2, 3}, {3, 4}, {4, 1}};
    static constexpr int kSideCorners[4][2] = {{1, 4}, {2, 3}, {1, 2}, {4, 3}};
    static constexpr int kCornerOfPoint[4] = {2, 1, 3, 0};
    static constexpr GraphicsShape kLinear = {44, 4, {1, 2, 3, 4}};
    static constexpr GraphicsShape kParabolic = {45, 8, {1, 5, 2, 6, 3, 7, 4, 8}};
    static constexpr ViewerShape kViewer = {{9, 23, 28}, 9, {1, 2, 3, 4, 5, 6, 7, 8, 9}};
    static constexpr const char* kRestriction[2] = {
        " DOZVOLJAVA SAMO 2/D ELEMENTE SA 4 ILI 8 CVOROVA PO ELEMENTU U",
        " PERMITS ONLY 2/D ELEMENTS WITH 4 OR 8 NODES PER ELEMENT IN"};
};

/// Bricks, of 8 to 21 nodes. In the graphics file they begin with the face t = -1, whose normal points towards t = +1, and
/// have the four upright edges in between.
template <> struct FamilyShape<3> {
    static constexpr int kDimension = 3, kCorners = 8, kMaxNodes = 21;
    static constexpr int kPlace[21][3] = {
        {+1, +1, +1}, {-1, +1, +1}, {-1, -1, +1}, {+1, -1, +1}, {+1, +1, -1}, {-1, +1, -1}, {-1, -1, -1},
        {+1, -1, -1}, {0, +1, +1},  {-1, 0, +1},  {0, -1, +1},  {+1, 0, +1},  {0, +1, -1},  {-1, 0, -1},
        {0, -1, -1},  {+1, 0, -1},  {+1, +1, 0},  {-1, +1, 0},  {-1, -1, 0},  {+1, -1, 0},  {0, 0, 0}};
    static constexpr int kEnds[12][2] = {{1, 2}, {2, 3}, {3, 4}, {4, 1}, {5, 6}, {6, 7},
                                         {7, 8}, {8, 5}, {1, 5}, {2, 6}, {3, 7}, {4, 8}};
    static constexpr int kSideCorners[6][4] = {{1, 4, 8, 5}, {2, 6, 7, 3}, {1, 5, 6, 2},
                                               {4, 3, 7, 8}, {1, 2, 3, 4}, {5, 8, 7, 6}};
    static constexpr int kCornerOfPoint[8] = {6, 2, 5, 1, 7, 3, 4, 0};
    static constexpr GraphicsShape kLinear = {115, 8, {5, 6, 7, 8, 1, 2, 3, 4}};
    static constexpr GraphicsShape kParabolic = {
        116, 20, {5, 13, 6, 14, 7, 15, 8, 16, 17, 18, 19, 20, 1, 9, 2, 10, 3, 11, 4, 12}};
    static constexpr ViewerShape kViewer = {{12, 25, 29}, 27, {5,  6,  7,  8,  1,  2,  3,  4,  13,
                                                               14, 15, 16, 9,  10, 11, 12, 17, 18,
                                                               19, 20, -1, -2, -3, -4, -6, -5, 21}};
    static constexpr const char* kRestriction[2] = {
        " DOZVOLJAVA SAMO 3/D ELEMENTE SA 8 ILI 20 CVOROVA PO ELEMENTU U",
        " PERMITS ONLY 3/D ELEMENTS WITH 8 OR 20 NODES PER ELEMENT IN"};
};

template <int Family> constexpr int kDimension = FamilyShape<Family>::kDimension;
template <int Family> constexpr int kCorners = FamilyShape<Family>::kCorners;
template <int Family> constexpr int kMaxNodes = FamilyShape<Family>::kMaxNodes;

/// Ends, edges or faces, and the corners of each.
template <int Family>
constexpr int kSides = static_cast<int>(std::extent_v<decltype(FamilyShape<Family>::kSideCorners), 0>);
template <int Family>
constexpr int kSideCorners = static_cast<int>(std::extent_v<decltype(FamilyShape<Family>::kSideCorners), 1>);

/// Edges that a mid-side node can stand on; a line's one node between its ends is its centre.
template <int Family> constexpr int EdgesOf() {
    if constexpr (kDimension<Family> == 1)
        return 0;
    else
        return static_cast<int>(std::extent_v<decltype(FamilyShape<Family>::kEnds), 0>);
}
template <int Family> constexpr const int* EdgeEndsOf() {
    if constexpr (kDimension<Family> == 1)
        return nullptr;
    else
        return &FamilyShape<Family>::kEnds[0][0];
}

/// A family as a record.
struct ElementFamily {
    int number, dimension, corners, mostNodes, edges, sides, cornersOfSide;
    const int* edgeEnds;    // edge by edge, two corners each
    const int* sideCorners; // side by side, cornersOfSide each
    const GraphicsShape *linear, *parabolic;
    const ViewerShape* viewer;
    const char* const* restriction; // Serbian, English; null when there is none
};

template <int Family>
inline constexpr ElementFamily kElementFamily = {Family,
                                                 kDimension<Family>,
                                                 kCorners<Family>,
                                                 kMaxNodes<Family>,
                                                 EdgesOf<Family>(),
                                                 kSides<Family>,
                                                 kSideCorners<Family>,
                                                 EdgeEndsOf<Family>(),
                                                 &FamilyShape<Family>::kSideCorners[0][0],
                                                 &FamilyShape<Family>::kLinear,
                                                 &FamilyShape<Family>::kParabolic,
                                                 &FamilyShape<Family>::kViewer,
                                                 FamilyShape<Family>::kRestriction};

/// All families, in the order of the list.
#define ZURT_FAMILY_RECORD(FAMILY) &kElementFamily<FAMILY>,
inline constexpr const ElementFamily* kElementFamilies[] = {ZURT_FOR_ALL_FAMILIES(ZURT_FAMILY_RECORD)};
#undef ZURT_FAMILY_RECORD

/// Most nodes and most corners of a side that any family has.
constexpr int LargestOf(int ElementFamily::*field) {
    int largest = 0;
    for (const ElementFamily* family : kElementFamilies)
        largest = family->*field > largest ? family->*field : largest;
    return largest;
}
constexpr int kMostNodes = LargestOf(&ElementFamily::mostNodes);
constexpr int kMostSideCorners = LargestOf(&ElementFamily::cornersOfSide);

/// Calls act(f) with f.value the number of the group's family, a constant that templates take. Radial groups are passed
/// over.
template <class Act> void WithFamily(const ElementGroup& group, const Act& act) {
    switch (group.NETIP) {
#define ZURT_FAMILY_CASE(FAMILY)                                                                             \
    case FAMILY:                                                                                             \
        act(std::integral_constant<int, FAMILY>());                                                          \
        break;
        ZURT_FOR_ALL_FAMILIES(ZURT_FAMILY_CASE)
#undef ZURT_FAMILY_CASE
    default:
        break;
    }
}

/// The family of a group that is not radial.
inline const ElementFamily& FamilyOf(const ElementGroup& group) {
    const ElementFamily* found = nullptr;
    WithFamily(group, [&](auto family) { found = &kElementFamily<family.value>; });
    return *found;
}

} // namespace zurt
