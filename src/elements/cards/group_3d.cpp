// Cards of the 3D family: bricks.
#include "elements/cards/family_rows.h"

#include <iterator>

namespace zurt {

namespace {

#define ZURT_BRICK_GROUP_ROWS                                                                                \
    ZURT_GROUP_NODES_ROW("3", "8"), ZURT_GROUP_PRINT_ROWS("IPR3DC", "IPRTG3"),                               \
        ZURT_GROUP_GAUSS_ROW("NGAUSX", 0, "KSI"), ZURT_GROUP_GAUSS_ROW("NGAUSY", 1, "ETA"),                  \
        ZURT_GROUP_GAUSS_ROW("NGAUSZ", 2, "ZETA")

constexpr CardField kGroupFields[] = {ZURT_GROUP_MATERIAL_ROWS("3"), ZURT_BRICK_GROUP_ROWS};
constexpr CardField kDeviceGroupFields[] = {ZURT_DEVICE_GROUP_MATERIAL_ROWS("3"), ZURT_BRICK_GROUP_ROWS};

constexpr CardField kElementFields[] = {
    ZURT_ELEMENT_NUMBER_ROW,
    ZURT_NODE_ROW("NODE1 to NODE8", 1, 8, "I8", "corner nodes"),
    ZURT_ELEMENT_ROWS("I3"),
};

// The columns of the element card again: nodes 18 to 21 have three digits on a fixed card.
constexpr CardField kMidSideFields[] = {
    ZURT_NODE_ROW("NODE9 to NODE17", 9, 9, "I8", "mid-side nodes; 0: absent"),
    ZURT_NODE_ROW("NODE18 to NODE21", 18, 4, "I3", "mid-side nodes and centre; 0: absent"),
};

// What the echoes of both forms of the card share.
#define ZURT_BRICK_ECHO                                                                                      \
    ZURT_ECHO_GROUP_NODES("3", "8"),                                                                         \
        ZURT_ECHO_REMARK("GT.8; ZA ELEMENTE OD 8 DO 21 CVORA", "GT.8; FOR ELEMENTE FROM 8 TO 21 NODES"),     \
        ZURT_ECHO_GROUP_PRINTS(" IPR3DC", " IPRTG3"), ZURT_ECHO_GROUP_GAUSS("NGAUSX", 0, "KSI .."),          \
        ZURT_ECHO_GROUP_GAUSS("NGAUSY", 1, "ETA .."), ZURT_ECHO_GROUP_GAUSS("NGAUSZ", 2, "ZETA ."),          \
        ZURT_ECHO_GROUP_GAUSS_DEFAULT

constexpr EchoLine kEcho[] = {ZURT_ECHO_GROUP_MATERIALS("3"), ZURT_BRICK_ECHO};
constexpr EchoLine kDeviceEcho[] = {ZURT_ECHO_DEVICE_GROUP_MATERIAL("3"), ZURT_BRICK_ECHO};

} // namespace

template <> const FamilyCards& CardsOfFamily<3>() {
    static const FamilyCards cards{
        kElementFamily<3>,
        Layout("3D group card", kGroupFields),
        Layout("3D group card", kDeviceGroupFields),
        Layout("3D element card", kElementFields),
        Layout("3D mid-side node card", kMidSideFields),
        {},
        {"NGAUSX", "NGAUSY", "NGAUSZ"},
        "3D",
        {"   BROJ MATERIJALA ZA 3D ELEMENTE, MAT3D=", "   MATERIAL NUMBER FOR 3D ELEMENTS, MAT3D="},
        {"   BROJ MATERIJALA ZA 3D ELEMENT, NMAT=", "   MATERIAL NUMBER FOR 3D ELEMENT, NMAT="},
        kEcho,
        std::size(kEcho),
        kDeviceEcho,
        std::size(kDeviceEcho),
        {"ULAZNI PODACI ZA IZOPARAMETARSKE 3/D ELEMENTE", "INPUT DATA FOR ISOPARAMETRIC 3/D ELEMENTS"},
        {"ULAZNI PODACI ZA SVAKI 3/D ELEMENT", "INPUT DATA FOR EACH 3/D ELEMENT"},
        {" ELEMENT                          CVOROVI                                 MAT. IZV. KOO. KONC.",
         " ELEMENT                           NODES                                  MAT. SOU. COO. CONC."},
        "4I5"};
    return cards;
}

} // namespace zurt
