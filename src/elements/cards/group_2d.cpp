// Cards of the 2D family: quadrilaterals in the plane.
#include "elements/cards/family_rows.h"

#include <iterator>

namespace zurt {

namespace {

#define ZURT_QUADRILATERAL_GROUP_ROWS                                                                        \
    ZURT_GROUP_NODES_ROW("2", "4"), ZURT_GROUP_PRINT_ROWS("IPR2DC", "IPTG2"),                                \
        ZURT_GROUP_GAUSS_ROW("NGAU2X", 0, "KSI"), ZURT_GROUP_GAUSS_ROW("NGAU2Y", 1, "ETA"),                  \
        ZURT_GROUP_ROW("NTHIC", NTHIC, "thickness: 0 of the group, 1 by element", ""),                       \
        ZURT_ROW("THIC", FamilyGroupCard, THIC, "F10.3", kAnyInteger,                                        \
                 "thickness of the group; none becomes 1.0", "no effect on any result")

constexpr CardField kGroupFields[] = {ZURT_GROUP_MATERIAL_ROWS("2"), ZURT_QUADRILATERAL_GROUP_ROWS};
constexpr CardField kDeviceGroupFields[] = {ZURT_DEVICE_GROUP_MATERIAL_ROWS("2"),
                                            ZURT_QUADRILATERAL_GROUP_ROWS};

constexpr CardField kElementFields[] = {
    ZURT_ELEMENT_NUMBER_ROW,
    ZURT_NODE_ROW("NODE1 to NODE4", 1, 4, "I8", "corner nodes"),
    ZURT_ELEMENT_ROWS("I5"),
    ZURT_ELEMENT_ROW("THIC", THIC, "F10.0", "thickness under NTHIC 1; none takes the one before",
                     "no effect on any result"),
};

constexpr CardField kMidSideFields[] = {
    ZURT_NODE_ROW("NODE5 to NODE9", 5, 5, "I8", "mid-side nodes and centre; 0: absent"),
};

// What the echoes of both forms of the card share.
#define ZURT_QUADRILATERAL_ECHO                                                                              \
    ZURT_ECHO_GROUP_NODES("2", "4"),                                                                         \
        ZURT_ECHO_REMARK("GT.4; ZA ELEMENTE OD 5 DO 9 CVOROVA", "GT.4; FOR ELEMENTS FROM 5 TO 9 NODES"),     \
        ZURT_ECHO_GROUP_PRINTS(" IPR2DC", ". IPTG2"), ZURT_ECHO_GROUP_GAUSS("NGAU2X", 0, "KSI .."),          \
        ZURT_ECHO_GROUP_GAUSS("NGAU2Y", 1, "ETA .."), ZURT_ECHO_GROUP_GAUSS_DEFAULT,                         \
        ZURT_ECHO_INTEGER(ElementGroup, NTHIC, "INDIKATOR DEBLJINE ELEMENATA ................... NTHIC =",   \
                          "INDICATOR OF ELEMENT THICKNESS ................ NTHIC ="),                        \
        ZURT_ECHO_REMARK("EQ.0; DEBLJINE SU KONSTANTNE", "EQ.0; THICKNESS ARE CONSTANTS"),                   \
        ZURT_ECHO_REMARK("EQ.1; DEBLJINE SU PROMENLJIVE", "EQ.1; THICKNESS ARE VARIABLES"),                  \
        ZURT_ECHO_REAL(ElementGroup, THIC, "DEBLJINA ELEMENATA .............................. THIC =",       \
                       "ELEMENT THICKNESS ............................... THIC =")

constexpr EchoLine kEcho[] = {ZURT_ECHO_GROUP_MATERIALS("2"), ZURT_QUADRILATERAL_ECHO};
constexpr EchoLine kDeviceEcho[] = {ZURT_ECHO_DEVICE_GROUP_MATERIAL("2"), ZURT_QUADRILATERAL_ECHO};

} // namespace

template <> const FamilyCards& CardsOfFamily<2>() {
    static const FamilyCards cards{
        kElementFamily<2>,
        Layout("2D group card", kGroupFields),
        Layout("2D group card", kDeviceGroupFields),
        Layout("2D element card", kElementFields),
        Layout("2D mid-side node card", kMidSideFields),
        {},
        {"NGAU2X", "NGAU2Y", ""},
        "2D",
        {"   BROJ MATERIJALA ZA 2D ELEMENTE, MAT2D=", "   MATERIAL NUMBER FOR 2D ELEMENTS, MAT2D="},
        // The message on one element says 3D in this family too.
        {"   BROJ MATERIJALA ZA 3D ELEMENT, NMAT=", "   MATERIAL NUMBER FOR 3D ELEMENT, NMAT="},
        kEcho,
        std::size(kEcho),
        kDeviceEcho,
        std::size(kDeviceEcho),
        {"ULAZNI PODACI ZA IZOPARAMETARSKE 2/D ELEMENTE", "INPUT DATA FOR ISOPARAMETRIC 2/D ELEMENTS"},
        {"ULAZNI PODACI ZA SVAKI 2/D ELEMENT", "INPUT DATA FOR EACH 2/D ELEMENT"},
        {" ELEMENT             CVOROVI               MAT. IZV. KOO. KONC.   DEBLJINA",
         " ELEMENT              NODES                MAT. SOU. COO. CONC.  THICKNESS"},
        "4I5,1X,1PE10.3"};
    return cards;
}

} // namespace zurt
