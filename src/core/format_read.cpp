#include "core/format.h"

#include "core/real_text.h"

#include <limits>

namespace zurt {

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string_view WithoutLeadingBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

} // namespace

FieldStatus ReadIntegerField(std::string_view field, std::int32_t& value) {
    std::string_view rest = WithoutLeadingBlanks(field);
    const bool negative = !rest.empty() && rest[0] == '-';
    if (negative || (!rest.empty() && rest[0] == '+')) {
        rest.remove_prefix(1);
        if (rest.empty())
            return FieldStatus::NotANumber;
    }
    const std::int64_t limit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + (negative ? 1 : 0);
    std::int64_t magnitude = 0;
    for (const char c : rest) {
        if (c == ' ')
            continue;
        if (!IsDigit(c))
            return FieldStatus::NotANumber;
        magnitude = 10 * magnitude + (c - '0');
        if (magnitude > limit)
            return FieldStatus::OutOfRange;
    }
    value = static_cast<std::int32_t>(negative ? -magnitude : magnitude);
    return FieldStatus::Good;
}

FieldStatus ReadRealField(std::string_view field, int decimals, double& value) {
    RealTextRules rules;
    rules.decimals = decimals;
    return RealFromText(field, rules, value);
}

namespace {

void Fail(RecordReader& reader, FieldStatus status, std::size_t column, std::string_view text) {
    reader.failure.status = status;
    reader.failure.item = reader.item;
    reader.failure.column = static_cast<int>(column) + 1;
    reader.failure.text = text;
}

/// The descriptor of the next value, or null, with the failure noted, when the record has no place for it: formats
/// are walked to their end or to a '/' only, since there is no further record to go to.
const EditDescriptor* NextField(RecordReader& reader) {
    const Format& format = *reader.format;
    ++reader.item;
    while (reader.next < format.items.size()) {
        const EditDescriptor& item = format.items[reader.next];
        if (item.kind == EditKind::NewRecord)
            break;
        ++reader.next;
        if (item.kind <= EditKind::Text)
            return &item;
        if (item.kind == EditKind::Literal)
            ReportFormatFault("a literal in a format for reading");
        if (item.kind == EditKind::Blanks)
            reader.column += static_cast<std::size_t>(item.width);
    }
    Fail(reader, FieldStatus::NotANumber, reader.column, {});
    return nullptr;
}

/// Takes the characters of a field; a field that the record's end cuts short is filled up with blanks in `filled`.
std::string_view TakeField(RecordReader& reader, int width, std::string& filled) {
    const std::size_t size = static_cast<std::size_t>(width);
    const std::size_t start = reader.column;
    reader.column += size;
    if (reader.column <= reader.record.size())
        return reader.record.substr(start, size);
    if (start < reader.record.size())
        filled = reader.record.substr(start);
    filled.resize(size, ' ');
    return filled;
}

} // namespace

void BeginRead(RecordReader& reader, std::string_view record, const Format& format) {
    reader.record = record;
    reader.format = &format;
    reader.next = 0;
    reader.column = 0;
    reader.item = 0;
    reader.failure = ReadFailure();
}

void Get(RecordReader& reader, std::int32_t& value) {
    if (reader.failure.status != FieldStatus::Good)
        return;
    const EditDescriptor* item = NextField(reader);
    if (item == nullptr)
        return;
    if (item->kind != EditKind::Integer)
        ReportFormatFault("an integer read by a descriptor of another kind");
    const std::size_t column = reader.column;
    std::string filled;
    const std::string_view field = TakeField(reader, item->width, filled);
    const FieldStatus status = ReadIntegerField(field, value);
    if (status != FieldStatus::Good)
        Fail(reader, status, column, field);
}

void Get(RecordReader& reader, double& value) {
    if (reader.failure.status != FieldStatus::Good)
        return;
    const EditDescriptor* item = NextField(reader);
    if (item == nullptr)
        return;
    if (item->kind == EditKind::Integer || item->kind == EditKind::Text)
        ReportFormatFault("a real read by a descriptor of another kind");
    const std::size_t column = reader.column;
    std::string filled;
    const std::string_view field = TakeField(reader, item->width, filled);
    RealTextRules rules;
    rules.decimals = item->decimals;
    rules.scale = item->scale;
    const FieldStatus status = RealFromText(field, rules, value);
    if (status != FieldStatus::Good)
        Fail(reader, status, column, field);
}

void Get(RecordReader& reader, std::string& value) {
    if (reader.failure.status != FieldStatus::Good)
        return;
    const EditDescriptor* item = NextField(reader);
    if (item == nullptr)
        return;
    if (item->kind != EditKind::Text)
        ReportFormatFault("a text read by a descriptor of another kind");
    if (item->width == 0) {
        value =
            reader.column < reader.record.size() ? reader.record.substr(reader.column) : std::string_view();
        reader.column += value.size();
        return;
    }
    std::string filled;
    value = TakeField(reader, item->width, filled);
}

} // namespace zurt
