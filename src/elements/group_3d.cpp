#include "elements/group_3d.h"

#include "elements/group_cards.h"

#include <iterator>

namespace zurt {

namespace {

// One integer of the group card under its own name.
#define ZURT_GROUP_INTEGER(NAME, MEMBER, MEANING)                                                            \
    CardField {                                                                                              \
        NAME, Descriptor("I5"), offsetof(FamilyGroupCard, MEMBER), 1, kAnyInteger, MEANING, ""               \
    }
#define ZURT_GROUP_DORMANT(NAME, MEMBER, MEANING, EFFECT)                                                    \
    CardField {                                                                                              \
        NAME, Descriptor("I5"), offsetof(FamilyGroupCard, MEMBER), 1, kAnyInteger, MEANING, EFFECT           \
    }

constexpr CardField kGroupFields[] = {
    ZURT_GROUP_DORMANT("NMAT3D", NMAT, "number of materials of the group", "replaced by 1"),
    ZURT_GROUP_DORMANT("MAT3D", MAT, "material of the group", "replaced by 1"),
    ZURT_GROUP_INTEGER("NP3DMX", NPDMX, "largest node count of an element; 0 becomes 8"),
    ZURT_GROUP_INTEGER("IPR3DC", IPRDC, "Gauss coordinates: 0 none, 1 all elements, above 1 by element"),
    ZURT_GROUP_INTEGER("IPRTG3", IPRTG, "Gauss concentrations: 0 none, 1 all elements, above 1 by element"),
    ZURT_GROUP_INTEGER("NGAUSX", NGAUS[0], "Gauss order in KSI, 1 to 5; 0 becomes 2"),
    ZURT_GROUP_INTEGER("NGAUSY", NGAUS[1], "Gauss order in ETA, 1 to 5; 0 becomes 2"),
    ZURT_GROUP_INTEGER("NGAUSZ", NGAUS[2], "Gauss order in ZETA, 1 to 5; 0 becomes 2"),
};

constexpr CardField kDeviceGroupFields[] = {
    ZURT_GROUP_INTEGER("MAT3DD", MATDD, "material of the group; 0 becomes 1"),
    ZURT_BLANKS("5X"),
    ZURT_GROUP_INTEGER("NP3DMX", NPDMX, "largest node count of an element; 0 becomes 8"),
    ZURT_GROUP_INTEGER("IPR3DC", IPRDC, "Gauss coordinates: 0 none, 1 all elements, above 1 by element"),
    ZURT_GROUP_INTEGER("IPRTG3", IPRTG, "Gauss concentrations: 0 none, 1 all elements, above 1 by element"),
    ZURT_GROUP_INTEGER("NGAUSX", NGAUS[0], "Gauss order in KSI, 1 to 5; 0 becomes 2"),
    ZURT_GROUP_INTEGER("NGAUSY", NGAUS[1], "Gauss order in ETA, 1 to 5; 0 becomes 2"),
    ZURT_GROUP_INTEGER("NGAUSZ", NGAUS[2], "Gauss order in ZETA, 1 to 5; 0 becomes 2"),
};

// Integers of the element card; `NODE` stands for several of them from node FIRST on.
#define ZURT_NODES(NAME, FIRST, COUNT, DESCRIPTOR, MEANING)                                                  \
    CardField {                                                                                              \
        NAME, Descriptor(DESCRIPTOR), offsetof(ElementCard, nodes[(FIRST)-1]), COUNT, kAnyInteger, MEANING,  \
            ""                                                                                               \
    }

constexpr CardField kElementFields[] = {
    ZURT_INTEGER(ElementCard, NN, "I8", "element number"),
    ZURT_NODES("NODE1 to NODE8", 1, 8, "I8", "corner nodes"),
    CardField{"MAT", Descriptor("I3"), offsetof(ElementCard, MAT), 1, kAnyInteger,
              "material; under NDS 0 becomes the group's", "without NDS every element has material 1"},
    CardField{"ISRC", Descriptor("I3"), offsetof(ElementCard, ISRC), 1, kAnyInteger,
              "source curve under IZIP 1; 0 takes the one before, negative: none", ""},
    ZURT_INTEGER(ElementCard, KG, "I3", "node step of the elements to generate"),
    ZURT_INTEGER(ElementCard, KGEN, "I3", "number of elements to generate"),
    CardField{"COORD", Descriptor("I3"), offsetof(ElementCard, IPC), 1, kAnyInteger,
              "print of Gauss coordinates when IPR3DC is above 1; 0 takes the one before, negative: none",
              ""},
    CardField{"CONC", Descriptor("I3"), offsetof(ElementCard, IPT), 1, kAnyInteger,
              "print of Gauss concentrations when IPRTG3 is above 1; 0 takes the one before, negative: none",
              ""},
};

// The columns of the element card again: nodes 18 to 21 have three digits on a fixed card.
constexpr CardField kMidSideFields[] = {
    ZURT_NODES("NODE9 to NODE17", 9, 9, "I8", "mid-side nodes; 0: absent"),
    ZURT_NODES("NODE18 to NODE21", 18, 4, "I3", "mid-side nodes and centre; 0: absent"),
};

#define ZURT_PRINTED_WHERE                                                                                   \
    ZURT_ECHO_REMARK("EQ.0; NE STAMPAJU SE", "EQ.0; NOT PRINTED"),                                           \
        ZURT_ECHO_REMARK("EQ.1; STAMPAJU SE U SVIM ELEMENTIMA", "EQ.1; PRINTED IN ALL ELEMENTS"),            \
        ZURT_ECHO_REMARK("GT.1; STAMPAJU SE U ZADATIM ELEMENTIMA", "GT.1; PRINTED IN PRESCRIBED ELEMENTS")

// What the echoes of both forms of the card share.
#define ZURT_COMMON_ECHO                                                                                     \
    ZURT_ECHO_INTEGER(ElementGroup, NPDMX, "MAKSIMALAN BROJ CVOROVA PO ELEMENTU ........... NP3DMX =",       \
                      "MAXIMUM NUMBER OF NODES PER ELEMENT ........... NP3DMX ="),                           \
        ZURT_ECHO_REMARK("EQ.0; POSTAJE \"8\"", "EQ.0; DEFAULT SET \"8\""),                                  \
        ZURT_ECHO_REMARK("GT.8; ZA ELEMENTE OD 8 DO 21 CVORA", "GT.8; FOR ELEMENTE FROM 8 TO 21 NODES"),     \
        ZURT_ECHO_INTEGER(ElementGroup, IPRDC, "STAMPANJE KOORDINATA GAUSOVIH TACAKA ......... IPR3DC =",    \
                          "PRINT OF GAUSS POINT COORDINATES ............. IPR3DC ="),                        \
        ZURT_PRINTED_WHERE,                                                                                  \
        ZURT_ECHO_INTEGER(ElementGroup, IPRTG, "STAMPANJE KONCENTRACIJA U GAUSOVIM TACKAMA ... IPRTG3 =",    \
                          "PRINT OF GAUSS POINT CONCENTRATION ........... IPRTG3 ="),                        \
        ZURT_PRINTED_WHERE,                                                                                  \
        ZURT_ECHO_INTEGER(ElementGroup, NGAUS[0], "RED GAUSOVE INTEGRACIJE U PRAVCU KSI ......... NGAUSX =", \
                          "ORDER OF GAUSS INTEGRATION IN DIRECTION KSI .. NGAUSX ="),                        \
        ZURT_ECHO_INTEGER(ElementGroup, NGAUS[1], "RED GAUSOVE INTEGRACIJE U PRAVCU ETA ......... NGAUSY =", \
                          "ORDER OF GAUSS INTEGRATION IN DIRECTION ETA .. NGAUSY ="),                        \
        ZURT_ECHO_INTEGER(ElementGroup, NGAUS[2], "RED GAUSOVE INTEGRACIJE U PRAVCU ZETA ........ NGAUSZ =", \
                          "ORDER OF GAUSS INTEGRATION IN DIRECTION ZETA . NGAUSZ ="),                        \
        ZURT_ECHO_REMARK("EQ.0; POSTAJE \"2\"", "EQ.0; DEFAULT SET \"2\"")

constexpr EchoLine kEcho[] = {
    ZURT_ECHO_INTEGER(ElementGroup, NMAT, "BROJ RAZLICITIH MATERIJALA ................... NMAT3D =",
                      "NUMBER OF DIFFERENT MATERIALS ................ NMAT3D ="),
    ZURT_ECHO_INTEGER(ElementGroup, MAT, "BROJ MATERIJALA ............................... MAT3D =",
                      "MATERIAL NUMBER ............................... MAT3D ="),
    ZURT_COMMON_ECHO,
};

constexpr EchoLine kDeviceEcho[] = {
    ZURT_ECHO_INTEGER(ElementGroup, MATDD, "BROJ MATERIJALA ZA GRUPU ELEMENATA............ MAT3DD =",
                      "MATERIAL NUMBER FOR THE ELEMENT GROUP......... MAT3DD ="),
    ZURT_COMMON_ECHO,
};

} // namespace

const FamilyCards& BrickCards() {
    static const Format head("(A,25X,A,33X,A/)");
    static const Format row("(I8,1X,8I8,2X,4I5)");
    static const Format midSides("(9X,8I8/9X,5I8)");
    static const FamilyCards cards{
        3,
        kCorners<3>,
        kMaxNodes<3>,
        Layout("3D group card", kGroupFields),
        Layout("3D group card", kDeviceGroupFields),
        Layout("3D element card", kElementFields),
        Layout("3D mid-side node card", kMidSideFields),
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
        &head,
        &row,
        &midSides};
    return cards;
}

void ReadGroup3D(Run& run, ElementGroup& group) {
    ReadIsoparametricGroup(run, group, BrickCards());
}

} // namespace zurt
