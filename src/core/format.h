// Writing by edit descriptors, and reading of the numbers that such fields and list-directed records hold.
//
// Every record of the program carries its format exactly as it is documented, for example
// "(11X,I10,10X,I5,3(3X,D15.6))". A format is parsed once into a Format and then drives any number of records: one
// that serves many statements is a constant of its own, a text handed to Write is parsed with every call.
// The reference for every digit is a Fortran compiler; tests/data holds a table made with one.
//
// Descriptors: Iw, Iw.m, Fw.d, Ew.d, Ew.dEe, Dw.d, kP, A, Aw, nX, repeat counts, groups, '/', ':' and literals in
// single or double quotes. After the last descriptor the format reverts to the last top-level group, on a new record.
#pragma once

#include "core/array_view.h"
#include "core/text_unit.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zurt {

enum class EditKind { Integer, Fixed, Exponent, Double, Text, Blanks, Literal, NewRecord, Colon };

/// One descriptor with its repeat counts unrolled.
struct EditDescriptor {
    EditKind kind = EditKind::Blanks;
    int width = 0;
    int decimals = 0;      // d of Fw.d and its like, m of Iw.m (-1: none)
    int exponentWidth = 0; // e of Ew.dEe, 0 when not given
    int scale = 0;         // k of the last kP ahead of it
    std::string literal;
};

struct Format {
    std::vector<EditDescriptor> items;
    std::size_t reversion = 0; // items index where a further pass begins
    bool hasData = false;      // false: literals alone, it takes no value
    bool reverts = false;      // a pass after the first takes values

    Format() = default;
    /// Parses `text`, parentheses included; a malformed format is a fault of the program and aborts.
    Format(const char* text);
};

/// A format that is malformed or doesn't suit its values is a fault of the program: says so and aborts.
[[noreturn]] void ReportFormatFault(const std::string& fault);

// --- writing ------------------------------------------------------------------------------------------------------

/// One output statement in progress: values are put one by one, records go to the unit as they fill.
struct RecordWriter {
    TextUnit* unit = nullptr;    // where records go; null when they are collected in `text`
    std::string* text = nullptr; // collected records, each with its line end
    const Format* format = nullptr;
    std::size_t next = 0;          // the descriptor to be taken next
    std::string record;            // the record being built
    std::size_t pendingBlanks = 0; // from X: written only when something follows them
    bool dropped = false;          // the unit is not open: nothing is formatted
};

void BeginWrite(RecordWriter& writer, TextUnit& unit, const Format& format);
void BeginWrite(RecordWriter& writer, std::string& text, const Format& format);
void Put(RecordWriter& writer, std::int32_t value);
void Put(RecordWriter& writer, std::int64_t value);
void Put(RecordWriter& writer, double value);
void Put(RecordWriter& writer, std::string_view value);
inline void Put(RecordWriter& writer, const char* value) {
    Put(writer, std::string_view(value));
}
inline void Put(RecordWriter& writer, const std::string& value) {
    Put(writer, std::string_view(value));
}
template <class T> void Put(RecordWriter& writer, ArrayView<T> values) {
    for (Word i = 1; i <= values.length; ++i)
        Put(writer, values(i));
}
/// Writes what stands behind the last value (literals up to the next data descriptor) and ends the record.
void EndWrite(RecordWriter& writer);

/// One output statement: all values under the format, to the unit. Arrays are written element by element.
template <class... Values> void Write(TextUnit& unit, const Format& format, const Values&... values) {
    if (!TakesRecords(unit))
        return;
    RecordWriter writer;
    BeginWrite(writer, unit, format);
    (Put(writer, values), ...);
    EndWrite(writer);
}

/// The same into a text; every record ends with a line end.
template <class... Values> std::string FormatText(const Format& format, const Values&... values) {
    std::string text;
    RecordWriter writer;
    BeginWrite(writer, text, format);
    (Put(writer, values), ...);
    EndWrite(writer);
    return text;
}

// --- reading ------------------------------------------------------------------------------------------------------

enum class FieldStatus { Good, NotANumber, OutOfRange };

/// A fixed field read under Iw: all of `field`; blanks anywhere are passed over, an all-blank field is 0.
FieldStatus ReadIntegerField(std::string_view field, std::int32_t& value);

/// A fixed field read under Fw.d, Ew.d or Dw.d (they read alike). An all-blank field is 0. Without a point and
/// without an exponent the last `decimals` digits are decimals; with an exponent and no point the number stands as
/// written. Exponents may begin with E, D, Q or with a sign alone. Infinity and NaN are read as Fortran reads them. A
/// number above the range of a double reads as an infinity; an exponent of five digits is out of range.
FieldStatus ReadRealField(std::string_view field, int decimals, double& value);

/// List-directed reading of a sequence of records: blanks, tabs and commas separate, r*c repeats a value, r* and
/// adjacent commas leave values as they are, '/' ends the statement; semicolons separate as commas do.
struct ListScanner {
    std::string_view record; // the caller's bytes: they stay until the next record or the last value
    std::size_t position = 0;
    int repeatsLeft = 0;        // values still to come from r*c
    std::string repeated;       // the constant of r*c; empty: a null value
    bool separatorSeen = true;  // a value has been ended by a comma, or none has been read yet
    bool recordOpened = true;   // only blanks of the record have been passed so far
    bool ended = false;         // '/' was met
    std::string text;           // the item of the last failure
    std::size_t itemColumn = 0; // zero-based column of the last item
};

enum class ListStatus {
    Value,      // a value was read
    Null,       // a null value: the variable keeps what it held
    NeedRecord, // the record is used up: hand over the next one with ContinueList and ask again
    Ended,      // '/' ended the statement: this and all further variables keep what they held
    NotANumber, // `text` holds what stood there
    OutOfRange
};

void BeginList(ListScanner& scanner, std::string_view record);
void ContinueList(ListScanner& scanner, std::string_view record);
ListStatus NextListInteger(ListScanner& scanner, std::int32_t& value);
ListStatus NextListReal(ListScanner& scanner, double& value);

} // namespace zurt
