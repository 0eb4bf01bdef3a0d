// Card layouts as constant data, and the one routine that reads a card by its layout.
//
// A layout lists the fields of a card in reading order: name, edit descriptor, where the value goes in the record that
// the reader fills, and what it means. The number of fields and their type come from the record; a descriptor that does
// not fit them does not compile. Errors name fields from these rows, and the manual's card tables are checked
// against them. Every card of the deck is read here: list-directed under INDFOR 1, by columns under INDFOR 2, not at
// all under any other value.
#pragma once

#include "input/deck.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace zurt {

/// Iw, Fw.d, Ew.d or Dw.d of one field; 'X' for blank columns.
struct FieldDescriptor {
    char kind = 'X';
    int width = 0;
    int decimals = 0;
};

constexpr int LeadingNumber(const char*& text) {
    int value = 0;
    for (; *text >= '0' && *text <= '9'; ++text)
        value = value * 10 + (*text - '0');
    return value;
}

/// Takes "I10", "D15.6" or "5X" apart; anything else has the kind '?'.
constexpr FieldDescriptor Descriptor(const char* text) {
    const bool isBlank = *text >= '0' && *text <= '9';
    const char kind = isBlank ? 'X' : *text++;
    const int width = LeadingNumber(text);
    const bool isReal = kind == 'F' || kind == 'E' || kind == 'D';
    if ((!isBlank && !isReal && kind != 'I') || width < 1 || (isBlank && *text++ != 'X') ||
        (isReal && *text++ != '.'))
        return {'?', 0, 0};
    const int decimals = isReal ? LeadingNumber(text) : 0;
    if (*text != '\0' || decimals > width)
        return {'?', 0, 0};
    return {kind, width, decimals};
}

/// The number in a member of a record, which may be an array or one of its elements, and how many it holds.
template <typename Member> using FieldNumber = std::remove_all_extents_t<std::remove_reference_t<Member>>;
template <typename Member>
constexpr int kFieldNumbers = sizeof(std::remove_reference_t<Member>) / sizeof(FieldNumber<Member>);

/// Whether a descriptor fits a member: I fits 32-bit integers, F, E and D fit doubles, and nothing fits another type.
template <typename Member> constexpr bool DescriptorFits(const char* text) {
    const char kind = Descriptor(text).kind;
    if (std::is_same_v<FieldNumber<Member>, std::int32_t>)
        return kind == 'I';
    return std::is_same_v<FieldNumber<Member>, double> && (kind == 'F' || kind == 'E' || kind == 'D');
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

/// What a row states beside its place in the record.
struct FieldMeaning {
    std::int32_t least;
    const char* meaning;
    const char* effect;
    FieldValues values = {};
};

/// The row of `count` numbers from `offset` on. Compiles only where the descriptor fits the member and the numbers lie
/// inside it.
template <bool Fits, bool Inside>
constexpr CardField FieldRow(const char* name, const char* descriptor, std::size_t offset, int count,
                             const FieldMeaning& is) {
    static_assert(Fits, "the edit descriptor does not fit the type of the field in the record");
    static_assert(Inside, "the fields reach beyond the end of their array in the record");
    return {name, Descriptor(descriptor), offset, count, is.least, is.meaning, is.effect, is.values};
}

template <bool Blank> constexpr CardField BlankRow(const char* descriptor) {
    static_assert(Blank, "blank columns are written nX");
    return {"", Descriptor(descriptor), 0, 1, kAnyInteger, "", ""};
}

/// A row of a layout: all of MEMBER, which may be an array, whose elements are fields that follow one another. The dots
/// stand for a FieldMeaning.
#define ZURT_ROW(NAME, RECORD, MEMBER, DESCRIPTOR, ...)                                                      \
    ::zurt::FieldRow<::zurt::DescriptorFits<decltype(RECORD::MEMBER)>(DESCRIPTOR), true>(                    \
        NAME, DESCRIPTOR, offsetof(RECORD, MEMBER), ::zurt::kFieldNumbers<decltype(RECORD::MEMBER)>,         \
        ::zurt::FieldMeaning{__VA_ARGS__})
/// The same for COUNT elements of an array from element FIRST (from 1) on.
#define ZURT_PART_ROW(NAME, RECORD, ARRAY, FIRST, COUNT, DESCRIPTOR, ...)                                    \
    ::zurt::FieldRow<::zurt::DescriptorFits<decltype(RECORD::ARRAY)>(DESCRIPTOR),                            \
                     (FIRST) >= 1 && (FIRST)-1 + (COUNT) <= ::zurt::kFieldNumbers<decltype(RECORD::ARRAY)>>( \
        NAME, DESCRIPTOR, offsetof(RECORD, ARRAY[(FIRST)-1]), COUNT, ::zurt::FieldMeaning{__VA_ARGS__})
#define ZURT_FIELD(RECORD, MEMBER, DESCRIPTOR, ...) ZURT_ROW(#MEMBER, RECORD, MEMBER, DESCRIPTOR, __VA_ARGS__)
#define ZURT_INTEGER(RECORD, MEMBER, DESCRIPTOR, MEANING)                                                    \
    ZURT_FIELD(RECORD, MEMBER, DESCRIPTOR, ::zurt::kAnyInteger, MEANING, "")
#define ZURT_COUNT(RECORD, MEMBER, DESCRIPTOR, MEANING) ZURT_FIELD(RECORD, MEMBER, DESCRIPTOR, 0, MEANING, "")
#define ZURT_REAL(RECORD, MEMBER, DESCRIPTOR, MEANING)                                                       \
    ZURT_FIELD(RECORD, MEMBER, DESCRIPTOR, ::zurt::kAnyInteger, MEANING, "")
#define ZURT_DORMANT(RECORD, MEMBER, DESCRIPTOR, MEANING, EFFECT)                                            \
    ZURT_FIELD(RECORD, MEMBER, DESCRIPTOR, ::zurt::kAnyInteger, MEANING, EFFECT)
/// A code of LOW to HIGH; OTHERWISE says what the program does with another one.
#define ZURT_CODE(RECORD, MEMBER, DESCRIPTOR, LOW, HIGH, OTHERWISE, MEANING)                                 \
    ZURT_FIELD(RECORD, MEMBER, DESCRIPTOR, ::zurt::kAnyInteger, MEANING, "",                                 \
               ::zurt::FieldValues{LOW, HIGH, OTHERWISE})
/// A number that has a meaning between LOW and HIGH alone.
#define ZURT_RANGE(RECORD, MEMBER, DESCRIPTOR, LOW, HIGH, MEANING)                                           \
    ZURT_FIELD(RECORD, MEMBER, DESCRIPTOR, ::zurt::kAnyInteger, MEANING, "",                                 \
               ::zurt::FieldValues{LOW, HIGH, ""})
/// A length, an area, a density ...: never negative.
#define ZURT_AMOUNT(RECORD, MEMBER, DESCRIPTOR, MEANING)                                                     \
    ZURT_RANGE(RECORD, MEMBER, DESCRIPTOR, 0.0, HUGE_VAL, MEANING)
#define ZURT_BLANKS(DESCRIPTOR) ::zurt::BlankRow<::zurt::Descriptor(DESCRIPTOR).kind == 'X'>(DESCRIPTOR)

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

/// A card that is always taken from its image by columns, whatever INDFOR says, unless all cards of the deck are free. Under
/// INDFOR 1 ReadCard has stepped back, so the next reader meets the same card again; a failure carries that hint.
void ReadImageFields(Deck& deck, std::int32_t INDFOR, const CardLayout& layout, void* record);

/// The check of a value against a field's row, for numbers that are not read by ReadCardFields.
void CheckFieldValue(Deck& deck, const char* group, const CardField& field, double value);

/// A descriptor known to fit numbers of type Number.
template <typename Number> struct NumberDescriptor { FieldDescriptor form; };

template <typename Number, bool Fits> constexpr NumberDescriptor<Number> CheckedDescriptor(const char* text) {
    static_assert(Fits, "the edit descriptor does not fit the type of the numbers");
    return {Descriptor(text)};
}
#define ZURT_DESCRIPTOR(NUMBER, DESCRIPTOR)                                                                  \
    ::zurt::CheckedDescriptor<NUMBER, ::zurt::DescriptorFits<NUMBER>(DESCRIPTOR)>(DESCRIPTOR)

/// values.length numbers: list-directed in one statement, or `perCard` to a card under `descriptor`.
void ReadNumberCards(Deck& deck, std::int32_t INDFOR, const char* group, const char* field,
                     const NumberDescriptor<std::int32_t>& descriptor, int perCard, IntArray values);
void ReadNumberCards(Deck& deck, std::int32_t INDFOR, const char* group, const char* field,
                     const NumberDescriptor<double>& descriptor, int perCard, RealArray values);

/// The largest number that an integer field of so many columns holds.
Word LargestInColumns(int width);

/// Ends the run with a deck error when an index from the deck lies outside 1..limit.
void RequireIndex(const Deck& deck, const char* group, const char* field, std::int32_t value, Word limit);

} // namespace zurt
