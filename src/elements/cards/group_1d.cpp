// Cards of the 1D family: lines in space, each with an area.
#include "elements/cards/family_rows.h"

#include <iterator>

namespace zurt {

namespace {

#define ZURT_LINE_GROUP_ROWS                                                                                 \
    ZURT_GROUP_NODES_ROW("1", "2"), ZURT_GROUP_PRINT_ROWS("IPR1DC", "IPTG1"),                                \
        ZURT_GROUP_GAUSS_ROW("NGAU1X", 0, "KSI")

constexpr CardField kGroupFields[] = {ZURT_GROUP_MATERIAL_ROWS("1"), ZURT_LINE_GROUP_ROWS};
constexpr CardField kDeviceGroupFields[] = {ZURT_DEVICE_GROUP_MATERIAL_ROWS("1"), ZURT_LINE_GROUP_ROWS};

#define ZURT_AREA_ROW                                                                                        \
    ZURT_ROW("AREA", ElementCard, THIC, "F10.0", kAnyInteger,                                                \
             "cross-section area; none takes the one before, at first 1.0", "",                              \
             FieldValues{-1e-10, HUGE_VAL, ""})

constexpr CardField kElementFields[] = {
    ZURT_ELEMENT_NUMBER_ROW,
    ZURT_NODE_ROW("NODE1 to NODE2", 1, 2, "I8", "end nodes"),
    ZURT_ELEMENT_ROWS("I5"),
    ZURT_AREA_ROW,
};

constexpr CardField kFullElementFields[] = {
    ZURT_ELEMENT_NUMBER_ROW,
    ZURT_NODE_ROW("NODE1 to NODE3", 1, 3, "I8", "end nodes, centre; centre 0: absent"),
    ZURT_ELEMENT_ROWS("I5"),
    ZURT_AREA_ROW,
};

// What the echoes of both forms of the card share.
#define ZURT_LINE_ECHO                                                                                       \
    ZURT_ECHO_GROUP_NODES("1", "2"),                                                                         \
        ZURT_ECHO_REMARK("GT.2; ZA ELEMENTE SA 3 CVORA", "GT.2; FOR ELEMENTS WITH 3 NODES"),                 \
        ZURT_ECHO_GROUP_PRINTS(" IPR1DC", ". IPTG1"), ZURT_ECHO_GROUP_GAUSS("NGAU1X", 0, "KSI .."),          \
        ZURT_ECHO_GROUP_GAUSS_DEFAULT

constexpr EchoLine kEcho[] = {ZURT_ECHO_GROUP_MATERIALS("1"), ZURT_LINE_ECHO};
constexpr EchoLine kDeviceEcho[] = {
    ZURT_ECHO_DEVICE_GROUP_MATERIAL("1"),
    ZURT_ECHO_REMARK("EQ.1; ZA MAT1DD.EQ.0", "EQ.1; FOR MAT1DD.EQ.0"),
    ZURT_LINE_ECHO,
};

} // namespace

template <> const FamilyCards& CardsOfFamily<1>() {
    static const FamilyCards cards{
        kElementFamily<1>,
        Layout("1D group card", kGroupFields),
        Layout("1D group card", kDeviceGroupFields),
        Layout("1D element card", kElementFields),
        {},
        Layout("1D element card", kFullElementFields),
        {"NGAU1X", "", ""},
        "1D",
        {"   BROJ MATERIJALA ZA 1D ELEMENTE, MAT1D=", "   MATERIAL NUMBER FOR 1D ELEMENTS, MAT1D="},
        {"   BROJ MATERIJALA ZA 1D ELEMENT, NMAT=", "   MATERIAL NUMBER FOR 1D ELEMENT, NMAT="},
        kEcho,
        std::size(kEcho),
        kDeviceEcho,
        std::size(kDeviceEcho),
        {"ULAZNI PODACI ZA IZOPARAMETARSKE 1/D ELEMENTE", "INPUT DATA FOR ISOPARAMETRIC 1/D ELEMENTS"},
        {"PODACI ZA SVAKI 1/D ELEMENT U GRUPI", "DATA FOR EACH 1/D ELEMENT IN GROUP"},
        {" ELEM.       CVOROVI         MAT.  IZVOR KOORD.  KONC.   POVRSINA",
         " ELEM.        NODES          MAT. SOURCE COORD.  CONC.       AREA"},
        "I6,3I7,1X,1PE10.3"};
    return cards;
}

} // namespace zurt
