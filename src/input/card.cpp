#include "input/card.h"

#include "core/format.h"
#include "core/plain_number.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace zurt {

namespace {

struct CardPlace {
    const Deck& deck;
    const char* group;
};

[[noreturn]] void ReportField(const CardPlace& place, const char* field, std::string_view found,
                              const char* reason) {
    DeckError(place.deck, place.group, field, found, reason);
}

const char* Expected(const FieldDescriptor& descriptor) {
    return descriptor.kind == 'I' ? "an integer is expected" : "a number is expected";
}

std::string Shown(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

std::string RangeText(const FieldValues& values) {
    if (values.low == 0.0 && std::isinf(values.high))
        return "a negative value has no meaning here";
    if (std::isinf(values.high))
        return "values below " + Shown(values.low) + " have no meaning here";
    return "values outside " + Shown(values.low) + " to " + Shown(values.high) + " have no meaning here";
}

void CheckInteger(const CardPlace& place, const CardField& field, std::int32_t value) {
    if (field.least != kAnyInteger && value < field.least)
        ReportField(place, field.name, std::to_string(value), "a negative count has no meaning here");
}

void CheckReal(const CardPlace& place, const char* field, std::string_view found, double value) {
    if (!std::isfinite(value))
        ReportField(place, field, found, "a finite number is expected");
}

// Up to `end`, where the field ends, a tab has shifted what stands behind it.
void CheckFieldStatus(const CardPlace& place, const char* field, const FieldDescriptor& descriptor,
                      std::string_view card, std::size_t end, std::string_view found, FieldStatus status) {
    if (status == FieldStatus::NotANumber && card.substr(0, end).find('\t') != std::string_view::npos)
        ReportField(place, field, found,
                    "the card holds a tab, which takes one column alone: cards by columns are written with "
                    "blanks");
    if (status == FieldStatus::NotANumber)
        ReportField(place, field, found, Expected(descriptor));
    if (status == FieldStatus::OutOfRange)
        ReportField(place, field, found, "the number is too large");
}

// --- by columns ---------------------------------------------------------------------------------------------------

// The characters of a card, blanks behind a line that does not reach to its last column.
std::string_view CardText(std::string_view line, int columns, CardBuffer& image) {
    if (line.size() >= static_cast<std::size_t>(columns))
        return line.substr(0, kCardLength);
    TakeImage(line, image);
    return Image(image);
}

std::string_view ColumnsOf(std::string_view card, int column, int width) {
    const int begin = std::min(column, static_cast<int>(card.size()));
    return card.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(width));
}

void ReadColumns(const CardPlace& place, const char* name, const FieldDescriptor& descriptor,
                 std::string_view card, int column, std::int32_t& value) {
    if (ReadPlainIntegerField(card, static_cast<std::size_t>(column),
                              static_cast<std::size_t>(descriptor.width), value))
        return;
    const std::string_view text = ColumnsOf(card, column, descriptor.width);
    CheckFieldStatus(place, name, descriptor, card,
                     static_cast<std::size_t>(column) + static_cast<std::size_t>(descriptor.width), text,
                     ReadIntegerField(text, value));
}

void ReadColumns(const CardPlace& place, const char* name, const FieldDescriptor& descriptor,
                 std::string_view card, int column, double& value) {
    if (ReadPlainRealField(card, static_cast<std::size_t>(column), static_cast<std::size_t>(descriptor.width),
                           descriptor.decimals, value))
        return;
    const std::string_view text = ColumnsOf(card, column, descriptor.width);
    CheckFieldStatus(place, name, descriptor, card,
                     static_cast<std::size_t>(column) + static_cast<std::size_t>(descriptor.width), text,
                     ReadRealField(text, descriptor.decimals, value));
    CheckReal(place, name, text, value);
}

// The check of every value, in line because most layouts have no limits and nearly all values lie within theirs.
inline void CheckRange(Deck& deck, const CardLayout& layout, const CardField& field, double value) {
    if (layout.limited && (value < field.values.low || value > field.values.high))
        CheckFieldValue(deck, layout.group, field, value);
}

void ReadFieldsByColumns(Deck& deck, const CardLayout& layout, std::string_view line, char* record) {
    const CardPlace place{deck, layout.group};
    CardBuffer image;
    const std::string_view card = CardText(line, layout.columns, image);
    int column = 0;
    for (int f = 0; f < layout.fieldCount; ++f) {
        const CardField& field = layout.fields[f];
        const FieldDescriptor& descriptor = field.descriptor;
        if (descriptor.kind == 'X') {
            column += descriptor.width;
            continue;
        }
        for (int k = 0; k < field.count; ++k, column += descriptor.width) {
            if (descriptor.kind == 'I') {
                std::int32_t& value = reinterpret_cast<std::int32_t*>(record + field.offset)[k];
                ReadColumns(place, field.name, descriptor, card, column, value);
                CheckInteger(place, field, value);
                CheckRange(deck, layout, field, value);
            } else {
                double& value = reinterpret_cast<double*>(record + field.offset)[k];
                ReadColumns(place, field.name, descriptor, card, column, value);
                CheckRange(deck, layout, field, value);
            }
        }
    }
}

// --- list-directed ------------------------------------------------------------------------------------------------

struct ListRead {
    Deck& deck;
    const char* group;
    ListScanner scanner;
    bool oneCard; // all numbers belong on one line
};

void BeginListRead(ListRead& read) {
    BeginList(read.scanner, NextRecord(read.deck, read.group));
}

void ContinueListRead(ListRead& read) {
    if (read.oneCard && read.deck.block.wrappedLine == 0)
        read.deck.block.wrappedLine = read.deck.cardLine;
    ContinueList(read.scanner, NextRecord(read.deck, read.group));
}

// Asks for records until the item is there; false when '/' has ended the statement.
bool NextNumber(ListRead& read, const char* name, std::int32_t& value) {
    ListStatus status;
    while ((status = NextListInteger(read.scanner, value)) == ListStatus::NeedRecord)
        ContinueListRead(read);
    const CardPlace place{read.deck, read.group};
    if (status == ListStatus::NotANumber)
        ReportField(place, name, read.scanner.text, "an integer is expected");
    if (status == ListStatus::OutOfRange)
        ReportField(place, name, read.scanner.text, "the number is too large");
    return status != ListStatus::Ended;
}

bool NextNumber(ListRead& read, const char* name, double& value) {
    ListStatus status;
    while ((status = NextListReal(read.scanner, value)) == ListStatus::NeedRecord)
        ContinueListRead(read);
    const CardPlace place{read.deck, read.group};
    if (status == ListStatus::NotANumber)
        ReportField(place, name, read.scanner.text, "a number is expected");
    if (status == ListStatus::OutOfRange)
        ReportField(place, name, read.scanner.text, "the number is too large");
    if (status == ListStatus::Value) {
        const ListScanner& scanner = read.scanner;
        CheckReal(place, name,
                  scanner.record.substr(scanner.itemColumn, scanner.position - scanner.itemColumn), value);
    }
    return status != ListStatus::Ended;
}

// Text behind the last field is taken for a remark. A number there was probably meant for a field, so it gets a note.
void NoteWhatIsLeft(ListRead& read) {
    const std::string_view record = read.scanner.record;
    std::size_t at = read.scanner.position;
    while (at < record.size() && (record[at] == ' ' || record[at] == '\t' || record[at] == ','))
        ++at;
    const auto isDigit = [&](std::size_t i) {
        return i < record.size() && record[i] >= '0' && record[i] <= '9';
    };
    const bool sign = at < record.size() && (record[at] == '-' || record[at] == '+' || record[at] == '.');
    if (isDigit(at) || (sign && isDigit(at + 1)) || read.scanner.repeatsLeft > 0)
        NoteOnCard(read.deck, read.group, "",
                   "numbers are left over behind the last field; a decimal comma, or a card that is missing "
                   "further up, shifts "
                   "what follows");
}

void ReadFieldsByList(Deck& deck, const CardLayout& layout, char* record) {
    ListRead read{deck, layout.group, {}, true};
    BeginListRead(read);
    for (int f = 0; f < layout.fieldCount; ++f) {
        const CardField& field = layout.fields[f];
        if (field.descriptor.kind == 'X')
            continue;
        for (int k = 0; k < field.count; ++k) {
            if (field.descriptor.kind == 'I') {
                std::int32_t& value = reinterpret_cast<std::int32_t*>(record + field.offset)[k];
                if (!NextNumber(read, field.name, value))
                    return;
                CheckInteger({deck, layout.group}, field, value);
                CheckRange(deck, layout, field, value);
            } else {
                double& value = reinterpret_cast<double*>(record + field.offset)[k];
                if (!NextNumber(read, field.name, value))
                    return;
                CheckRange(deck, layout, field, value);
            }
        }
    }
    NoteWhatIsLeft(read);
}

// --- many numbers of one kind -------------------------------------------------------------------------------------

template <typename Number>
void ReadNumbers(Deck& deck, std::int32_t INDFOR, const char* group, const char* field,
                 const FieldDescriptor& form, int perCard, ArrayView<Number> values) {
    if (INDFOR == 1) {
        ReadCardLine(deck, INDFOR, group);
        ListRead read{deck, group, {}, false};
        BeginListRead(read);
        for (Word i = 1; i <= values.length && NextNumber(read, field, values(i)); ++i) {
        }
    } else if (INDFOR == 2) {
        CardBuffer image;
        for (Word first = 1; first <= values.length; first += perCard) {
            const std::string_view line = ReadCardLine(deck, INDFOR, group);
            const std::string_view card = CardText(line, perCard * form.width, image);
            const Word last = std::min(values.length, first + perCard - 1);
            for (Word i = first; i <= last; ++i)
                ReadColumns({deck, group}, field, form, card, static_cast<int>(i - first) * form.width,
                            values(i));
        }
    } else {
        ReadCardLine(deck, INDFOR, group); // counted, and no field is read from it
    }
}

} // namespace

void CheckFieldValue(Deck& deck, const char* group, const CardField& field, double value) {
    const FieldValues& values = field.values;
    if (!(value < values.low || value > values.high))
        return;
    if (*values.otherwise == '\0')
        DeckError(deck, group, field.name, Shown(value), RangeText(values));
    NoteOnCard(deck, group, field.name, Shown(value) + " " + values.otherwise);
}

void ReadCardFields(Deck& deck, std::int32_t INDFOR, const CardLayout& layout, void* record) {
    const std::string_view line = ReadCardLine(deck, INDFOR, layout.group);
    if (INDFOR == 1)
        ReadFieldsByList(deck, layout, static_cast<char*>(record));
    else if (INDFOR == 2)
        ReadFieldsByColumns(deck, layout, line, static_cast<char*>(record));
}

void ReadImageFields(Deck& deck, std::int32_t INDFOR, const CardLayout& layout, void* record) {
    if (deck.allFree && INDFOR == 1)
        return ReadCardFields(deck, INDFOR, layout, record);
    const std::string_view line = ReadCardLine(deck, INDFOR, layout.group);
    if (INDFOR != 2)
        deck.imageLine = deck.lineInHand; // a failure on this card brings a hint
    ReadFieldsByColumns(deck, layout, line, static_cast<char*>(record));
}

void ReadNumberCards(Deck& deck, std::int32_t INDFOR, const char* group, const char* field,
                     const NumberDescriptor<std::int32_t>& descriptor, int perCard, IntArray values) {
    ReadNumbers(deck, INDFOR, group, field, descriptor.form, perCard, values);
}

void ReadNumberCards(Deck& deck, std::int32_t INDFOR, const char* group, const char* field,
                     const NumberDescriptor<double>& descriptor, int perCard, RealArray values) {
    ReadNumbers(deck, INDFOR, group, field, descriptor.form, perCard, values);
}

Word LargestInColumns(int width) {
    Word power = 1;
    for (int column = 0; column < width; ++column)
        power *= 10;
    return power - 1;
}

void RequireIndex(const Deck& deck, const char* group, const char* field, std::int32_t value, Word limit) {
    if (value < 1 || value > limit)
        DeckError(deck, group, field, std::to_string(value),
                  "the number must lie between 1 and " + std::to_string(limit));
}

} // namespace zurt
