// Rows of card layouts and echoes that the isoparametric families share; their group_Xd.cpp files put them together.
//
// NAME is a field's name in the family, D the digit of its dimension as a text, TAIL a name with the points ahead of it
// that fill its label up to a fixed length.
#pragma once

#include "elements/cards/family_cards.h"
#include "run/element_group.h"

#include <cstddef>

// --- group card ---------------------------------------------------------------------------------------------------

#define ZURT_GROUP_ROW(NAME, MEMBER, MEANING, EFFECT)                                                        \
    ZURT_ROW(NAME, ::zurt::FamilyGroupCard, MEMBER, "I5", ::zurt::kAnyInteger, MEANING, EFFECT)

#define ZURT_GROUP_MATERIAL_ROWS(D)                                                                          \
    ZURT_GROUP_ROW("NMAT" D "D", NMAT, "number of materials of the group", "replaced by 1"),                 \
        ZURT_GROUP_ROW("MAT" D "D", MAT, "material of the group", "replaced by 1")

#define ZURT_DEVICE_GROUP_MATERIAL_ROWS(D)                                                                   \
    ZURT_GROUP_ROW("MAT" D "DD", MATDD, "material of the group; 0 becomes 1", ""), ZURT_BLANKS("5X")

#define ZURT_GROUP_NODES_ROW(D, CORNERS)                                                                     \
    ZURT_GROUP_ROW("NP" D "DMX", NPDMX, "largest node count of an element; 0 becomes " CORNERS, "")

#define ZURT_GROUP_PRINT_ROWS(COORDINATES, VALUES)                                                           \
    ZURT_GROUP_ROW(COORDINATES, IPRDC, "Gauss coordinates: 0 none, 1 all elements, above 1 by element", ""), \
        ZURT_GROUP_ROW(VALUES, IPRTG, "Gauss concentrations: 0 none, 1 all elements, above 1 by element",    \
                       "")

#define ZURT_GROUP_GAUSS_ROW(NAME, DIRECTION, KSI)                                                           \
    ZURT_GROUP_ROW(NAME, NGAUS[DIRECTION], "Gauss order in " KSI ", 1 to 5; 0 becomes 2", "")

// --- element card -------------------------------------------------------------------------------------------------

// COUNT nodes from node FIRST on.
#define ZURT_NODE_ROW(NAME, FIRST, COUNT, DESCRIPTOR, MEANING)                                               \
    ZURT_PART_ROW(NAME, ::zurt::ElementCard, nodes, FIRST, COUNT, DESCRIPTOR, ::zurt::kAnyInteger, MEANING,  \
                  "")

#define ZURT_ELEMENT_ROW(NAME, MEMBER, DESCRIPTOR, MEANING, EFFECT)                                          \
    ZURT_ROW(NAME, ::zurt::ElementCard, MEMBER, DESCRIPTOR, ::zurt::kAnyInteger, MEANING, EFFECT)

#define ZURT_ELEMENT_NUMBER_ROW ZURT_ELEMENT_ROW("NN", NN, "I8", "element number", "")

#define ZURT_ELEMENT_ROWS(DESCRIPTOR)                                                                        \
    ZURT_ELEMENT_ROW("MAT", MAT, DESCRIPTOR, "material; under NDS 0 becomes the group's",                    \
                     "without NDS every element has material 1"),                                            \
        ZURT_ELEMENT_ROW("ISRC", ISRC, DESCRIPTOR,                                                           \
                         "source curve under IZIP 1; 0 takes the one before, negative: none", ""),           \
        ZURT_ELEMENT_ROW("KG", KG, DESCRIPTOR, "node step of the elements to generate", ""),                 \
        ZURT_ELEMENT_ROW("KGEN", KGEN, DESCRIPTOR, "number of elements to generate", ""),                    \
        ZURT_ELEMENT_ROW("COORD", IPC, DESCRIPTOR,                                                           \
                         "print of Gauss coordinates when the group's flag is above 1; 0 takes the one "     \
                         "before, negative: none",                                                           \
                         ""),                                                                                \
        ZURT_ELEMENT_ROW("CONC", IPT, DESCRIPTOR,                                                            \
                         "print of Gauss concentrations when the group's flag is above 1; 0 takes the one "  \
                         "before, negative: none",                                                           \
                         "")

// --- echo of the group card ---------------------------------------------------------------------------------------

#define ZURT_ECHO_GROUP_MATERIALS(D)                                                                         \
    ZURT_ECHO_INTEGER(::zurt::ElementGroup, NMAT,                                                            \
                      "BROJ RAZLICITIH MATERIJALA ................... NMAT" D "D =",                         \
                      "NUMBER OF DIFFERENT MATERIALS ................ NMAT" D "D ="),                        \
        ZURT_ECHO_INTEGER(::zurt::ElementGroup, MAT,                                                         \
                          "BROJ MATERIJALA ............................... MAT" D "D =",                     \
                          "MATERIAL NUMBER ............................... MAT" D "D =")

#define ZURT_ECHO_DEVICE_GROUP_MATERIAL(D)                                                                   \
    ZURT_ECHO_INTEGER(::zurt::ElementGroup, MATDD,                                                           \
                      "BROJ MATERIJALA ZA GRUPU ELEMENATA............ MAT" D "DD =",                         \
                      "MATERIAL NUMBER FOR THE ELEMENT GROUP......... MAT" D "DD =")

#define ZURT_ECHO_GROUP_NODES(D, CORNERS)                                                                    \
    ZURT_ECHO_INTEGER(::zurt::ElementGroup, NPDMX,                                                           \
                      "MAKSIMALAN BROJ CVOROVA PO ELEMENTU ........... NP" D "DMX =",                        \
                      "MAXIMUM NUMBER OF NODES PER ELEMENT ........... NP" D "DMX ="),                       \
        ZURT_ECHO_REMARK("EQ.0; POSTAJE \"" CORNERS "\"", "EQ.0; DEFAULT SET \"" CORNERS "\"")

#define ZURT_ECHO_PRINTED_WHERE                                                                              \
    ZURT_ECHO_REMARK("EQ.0; NE STAMPAJU SE", "EQ.0; NOT PRINTED"),                                           \
        ZURT_ECHO_REMARK("EQ.1; STAMPAJU SE U SVIM ELEMENTIMA", "EQ.1; PRINTED IN ALL ELEMENTS"),            \
        ZURT_ECHO_REMARK("GT.1; STAMPAJU SE U ZADATIM ELEMENTIMA", "GT.1; PRINTED IN PRESCRIBED ELEMENTS")

#define ZURT_ECHO_GROUP_PRINTS(COORDINATES_TAIL, VALUES_TAIL)                                                \
    ZURT_ECHO_INTEGER(::zurt::ElementGroup, IPRDC,                                                           \
                      "STAMPANJE KOORDINATA GAUSOVIH TACAKA ........." COORDINATES_TAIL " =",                \
                      "PRINT OF GAUSS POINT COORDINATES ............." COORDINATES_TAIL " ="),               \
        ZURT_ECHO_PRINTED_WHERE,                                                                             \
        ZURT_ECHO_INTEGER(::zurt::ElementGroup, IPRTG,                                                       \
                          "STAMPANJE KONCENTRACIJA U GAUSOVIM TACKAMA ..." VALUES_TAIL " =",                 \
                          "PRINT OF GAUSS POINT CONCENTRATION ..........." VALUES_TAIL " ="),                \
        ZURT_ECHO_PRINTED_WHERE

// KSI_TAIL: the direction, with points that make up for its length.
#define ZURT_ECHO_GROUP_GAUSS(NAME, DIRECTION, KSI_TAIL)                                                     \
    ZURT_ECHO_INTEGER(::zurt::ElementGroup, NGAUS[DIRECTION],                                                \
                      "RED GAUSOVE INTEGRACIJE U PRAVCU " KSI_TAIL "....... " NAME " =",                     \
                      "ORDER OF GAUSS INTEGRATION IN DIRECTION " KSI_TAIL " " NAME " =")

#define ZURT_ECHO_GROUP_GAUSS_DEFAULT ZURT_ECHO_REMARK("EQ.0; POSTAJE \"2\"", "EQ.0; DEFAULT SET \"2\"")
