// Card layouts as constant data, and the one routine that reads a card by its layout.
//
// A layout lists the fields of a card in reading order: name, edit descriptor, where the value goes in the record that
// the reader fills, and what it means. Errors name fields from these rows, and the manual's card tables are checked
// against them. Every card of the deck is read here: list-directed under INDFOR 1, by columns under INDFOR 2, not at
// all under any other value.
#pragma once

#include "input/deck.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace zurt {

/// Iw, Fw.d, Ew.d or Dw.d of one field; 'X' for blank columns.
struct FieldDescriptor {
    char kind = 'X';
    int width = 0;
    int decimals = 0;
};

/// Takes "I10", "D15.6" or "5X" apart.
constexpr FieldDescriptor Descriptor(const char* text) {
    FieldDescriptor field;
    if (*text >= '0' && *text <= '9') {
        for (; *text >= '0' && *text <= '9'; ++text)
            field.width = field.width * 10 + (*text - '0');
        return field;
    }
    field.kind = *text++;
    for (; *text >= '0' && *text <= '9'; ++text)
        field.width = field.width * 10 + (*text - '0');
    if (*text == '.')
        for (++text; *text >= '0' && *text <= '9'; ++text)
            field.decimals = field.decimals * 10 + (*text - '0');
    return field;
}

constexpr std::int32_t kAnyInteger = std::numeric_limits<std::int32_t>::min();

/// Which values of a field have a meaning. Others are refused as a deck error, or, where the program does something with
/// them, taken with a note that says what.
struct FieldValues {
    double low = -HUGE_VAL, high = HUGE_VAL;
    const char* otherwise = ""; // what becomes of others; "": they are refused
};

struct CardField {
    const char* name; // as the deck's documentation calls it; "" for blank columns
    FieldDescriptor descriptor;
    std::size_t offset; // in the record
    int count;          // values of this kind one after the other
    std::int32_t least; // smallest integer that has a meaning; kAnyInteger: no check
    const char* meaning;
    const char* effect; // "" or what the manual says of a field that is read and then decides nothing
    FieldValues values = {};
};

/// A row of a layout. MEMBER may be an array: its elements are fields that follow one another.
#define ZURT_FIELD(RECORD, MEMBER, DESCRIPTOR, LEAST, MEANING, EFFECT)                                       \
    ZURT_CHECKED_FIELD(RECORD, MEMBER, DESCRIPTOR, LEAST, MEANING, EFFECT, ::zurt::FieldValues{})
#define ZURT_CHECKED_FIELD(RECORD, MEMBER, DESCRIPTOR, LEAST, MEANING, EFFECT, ...)                          \
    ::zurt::CardField {                                                                                      \
#MEMBER, ::zurt::Descriptor(DESCRIPTOR), offsetof(RECORD, MEMBER),                                   \
            static_cast < int>(sizeof(RECORD::MEMBER) / (DESCRIPTOR[0] == 'I' ? 4 : 8)), LEAST, MEANING,     \
            EFFECT, __VA_ARGS__                                                                              \
    }
#define ZURT_INTEGER(RECORD, MEMBER, DESCRIPTOR, MEANING)                                                    \
    ZURT_FIELD(RECORD, MEMBER, DESCRIPTOR, ::zurt::kAnyInteger, MEANING, "")
#define ZURT_COUNT(RECORD, MEMBER, DESCRIPTOR, MEANING) ZURT_FIELD(RECORD, MEMBER, DESCRIPTOR, 0, MEANING, "")
#define ZURT_REAL(RECORD, MEMBER, DESCRIPTOR, MEANING)                                                       \
    ZURT_FIELD(RECORD, MEMBER, DESCRIPTOR, ::zurt::kAnyInteger, MEANING, "")
#define ZURT_DORMANT(RECORD, MEMBER, DESCRIPTOR, MEANING, EFFECT)                                            \
    ZURT_FIELD(RECORD, MEMBER, DESCRIPTOR, ::zurt::kAnyInteger, MEANING, EFFECT)
/// A code of LOW to HIGH; OTHERWISE says what the program does with another one.
#define ZURT_CODE(RECORD, MEMBER, DESCRIPTOR, LOW, HIGH, OTHERWISE, MEANING)                                 \
    ZURT_CHECKED_FIELD(RECORD, MEMBER, DESCRIPTOR, ::zurt::kAnyInteger, MEANING, "",                         \
                       ::zurt::FieldValues{LOW, HIGH, OTHERWISE})
/// A number that has a meaning between LOW and HIGH alone.
#define ZURT_RANGE(RECORD, MEMBER, DESCRIPTOR, LOW, HIGH, MEANING)                                           \
    ZURT_CHECKED_FIELD(RECORD, MEMBER, DESCRIPTOR, ::zurt::kAnyInteger, MEANING, "",                         \
                       ::zurt::FieldValues{LOW, HIGH, ""})
/// A length, an area, a density ...: never negative.
#define ZURT_AMOUNT(RECORD, MEMBER, DESCRIPTOR, MEANING)                                                     \
    ZURT_RANGE(RECORD, MEMBER, DESCRIPTOR, 0.0, HUGE_VAL, MEANING)
#define ZURT_BLANKS(DESCRIPTOR)                                                                              \
    ::zurt::CardField {                                                                                      \
        "", ::zurt::Descriptor(DESCRIPTOR), 0, 1, ::zurt::kAnyInteger, "", ""                                \
    }

struct CardLayout {
    const char* group; // the card's name in error reports and in the manual
    const CardField* fields;
    int fieldCount;
    int columns;  // that the fields take when read by columns
    bool limited; // some field has values without a meaning
};

constexpr CardLayout Layout(const char* group, const CardField* fields, int fieldCount) {
    CardLayout layout{group, fields, fieldCount, 0, false};
    for (int f = 0; f < fieldCount; ++f) {
        layout.columns += fields[f].count * fields[f].descriptor.width;
        layout.limited =
            layout.limited || fields[f].values.low > -HUGE_VAL || fields[f].values.high < HUGE_VAL;
    }
    return layout;
}
template <std::size_t N> constexpr CardLayout Layout(const char* group, const CardField (&fields)[N]) {
    return Layout(group, fields, static_cast<int>(N));
}

/// One card by its layout into `record`: ReadCard, then the read that INDFOR asks for. Errors end the run through
/// DeckError.
void ReadCardFields(Deck& deck, std::int32_t INDFOR, const CardLayout& layout, void* record);

/// A card that is always taken from its image by columns, whatever INDFOR says. Under INDFOR 1 ReadCard has stepped
/// back, so the next reader meets the same card again; a failure carries that hint.
void ReadImageFields(Deck& deck, std::int32_t INDFOR, const CardLayout& layout, void* record);

/// The check of a value against a field's row, for numbers that are not read by ReadCardFields.
void CheckFieldValue(Deck& deck, const char* group, const CardField& field, double value);

/// values.length numbers: list-directed in one statement, or `perCard` to a card under `descriptor`.
void ReadIntegerCards(Deck& deck, std::int32_t INDFOR, const char* group, const char* field,
                      const char* descriptor, int perCard, IntArray values);
void ReadRealCards(Deck& deck, std::int32_t INDFOR, const char* group, const char* field,
                   const char* descriptor, int perCard, RealArray values);

/// Ends the run with a deck error when an index from the deck lies outside 1..limit.
void RequireIndex(const Deck& deck, const char* group, const char* field, std::int32_t value, Word limit);

} // namespace zurt
