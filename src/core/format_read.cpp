#include "core/format.h"

#include "core/real_text.h"

#include <limits>

namespace zurt {

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string_view WithoutOuterBlanks(std::string_view text) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

} // namespace

FieldStatus ReadIntegerField(std::string_view field, std::int32_t& value) {
    std::string_view rest = WithoutOuterBlanks(field);
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

/// Takes the characters of a field: fewer than its width where the record ends in it.
std::string_view TakeField(RecordReader& reader, std::size_t width) {
    const std::size_t start = reader.column < reader.record.size() ? reader.column : reader.record.size();
    reader.column += width;
    return reader.record.substr(start, width);
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
    const std::string_view field = TakeField(reader, static_cast<std::size_t>(item->width));
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
    const std::string_view field = TakeField(reader, static_cast<std::size_t>(item->width));
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
    const std::size_t restOfRecord = reader.record.size();
    const std::size_t width = item->width == 0 ? restOfRecord : static_cast<std::size_t>(item->width);
    value = TakeField(reader, width);
    if (item->width != 0)
        value.resize(width, ' ');
}

} // namespace zurt
