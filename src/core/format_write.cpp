#include "core/format.h"
#include "core/real_digits.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace zurt {

namespace {

/// Room for the digits of any double: 309 before the point and up to 330 behind it.
constexpr std::size_t kDigitRoom = 700;

/// Unsigned parts of a real field, in the order in which they are written.
struct RealParts {
    const char* before = nullptr; // digits ahead of the point, none for values below 1
    int beforeCount = 0;
    int zeros = 0; // zeros between the point and the digits behind it
    const char* after = nullptr;
    int afterCount = 0;
    char exponent[16] = {};
    int exponentCount = 0;
};

void EndRecord(RecordWriter& writer) {
    if (writer.unit != nullptr) {
        PutRecord(*writer.unit, writer.record);
    } else {
        *writer.text += writer.record;
        *writer.text += '\n';
    }
    writer.record.clear();
    writer.pendingBlanks = 0;
}

/// Blanks of X reach the record only when a field or a literal follows, so that no record ends in them.
void WritePendingBlanks(RecordWriter& writer) {
    writer.record.append(writer.pendingBlanks, ' ');
    writer.pendingBlanks = 0;
}

bool TakesValue(EditKind kind) {
    return kind <= EditKind::Text;
}

void WriteControl(RecordWriter& writer, const EditDescriptor& item) {
    if (item.kind == EditKind::Blanks) {
        writer.pendingBlanks += static_cast<std::size_t>(item.width);
    } else if (item.kind == EditKind::NewRecord) {
        EndRecord(writer);
    } else if (item.kind == EditKind::Literal) {
        WritePendingBlanks(writer);
        writer.record += item.literal;
    }
}

/// The descriptor of the next value; what stands ahead of it is written.
const EditDescriptor& NextField(RecordWriter& writer) {
    const Format& format = *writer.format;
    for (;;) {
        if (writer.next == format.items.size()) {
            if (!format.reverts)
                ReportFormatFault("a value for a format that takes none");
            EndRecord(writer);
            writer.next = format.reversion;
        }
        const EditDescriptor& item = format.items[writer.next++];
        if (TakesValue(item.kind)) {
            if (writer.pendingBlanks != 0)
                WritePendingBlanks(writer);
            return item;
        }
        WriteControl(writer, item);
    }
}

/// Appends a field of `width` asterisks, or of `width` blanks when it is to be filled; returns its first place.
char* AppendField(std::string& record, int width, char filling) {
    const std::size_t start = record.size();
    record.append(static_cast<std::size_t>(width), filling);
    return record.data() + start;
}

void AppendInteger(std::string& record, const EditDescriptor& item, std::int64_t value) {
    char digits[24];
    const bool negative = value < 0;
    const std::uint64_t magnitude =
        negative ? std::uint64_t{0} - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    int count = static_cast<int>(std::to_chars(digits, digits + sizeof digits, magnitude).ptr - digits);
    if (item.decimals == 0 && value == 0)
        count = 0;
    const int zeros = item.decimals > count ? item.decimals - count : 0;
    const int length = (negative ? 1 : 0) + zeros + count;
    const int width = item.width != 0 ? item.width : (length == 0 ? 1 : length);
    if (length > width) {
        AppendField(record, width, '*');
        return;
    }
    char* place = AppendField(record, width, ' ') + (width - length);
    if (negative)
        *place++ = '-';
    std::memset(place, '0', static_cast<std::size_t>(zeros));
    std::memcpy(place + zeros, digits, static_cast<std::size_t>(count));
}

/// Infinity in full where the field has room, else Inf; asterisks where not even that fits.
void AppendNonFinite(std::string& record, const EditDescriptor& item, double value) {
    const bool negative = !std::isnan(value) && std::signbit(value);
    const int least = negative ? 4 : 3;
    const int width = item.width == 0 ? least : item.width;
    if (width < least) {
        AppendField(record, width, '*');
        return;
    }
    const std::string_view name =
        std::isnan(value) ? "NaN" : (width >= (negative ? 9 : 8) ? "Infinity" : "Inf");
    char* place = AppendField(record, width, ' ') + width - name.size();
    std::memcpy(place, name.data(), name.size());
    if (negative)
        place[-1] = '-';
}

/// Puts the parts right-justified. The zero ahead of a bare point is written only when the field has room for it, or
/// when there is no other digit.
void AppendReal(std::string& record, int fieldWidth, bool negative, const RealParts& parts) {
    const int digits = parts.beforeCount + parts.zeros + parts.afterCount;
    int length = (negative ? 1 : 0) + (digits == 0 ? 1 : digits) + 1 + parts.exponentCount;
    const int width = fieldWidth == 0 ? length : fieldWidth;
    if (length > width) {
        AppendField(record, width, '*');
        return;
    }
    const bool leadingZero = digits == 0 || (parts.beforeCount == 0 && length < width);
    if (leadingZero && digits != 0)
        ++length;
    char* place = AppendField(record, width, ' ') + (width - length);
    if (negative)
        *place++ = '-';
    if (leadingZero)
        *place++ = '0';
    std::memcpy(place, parts.before, static_cast<std::size_t>(parts.beforeCount));
    place += parts.beforeCount;
    *place++ = '.';
    std::memset(place, '0', static_cast<std::size_t>(parts.zeros));
    place += parts.zeros;
    std::memcpy(place, parts.after, static_cast<std::size_t>(parts.afterCount));
    std::memcpy(place + parts.afterCount, parts.exponent, static_cast<std::size_t>(parts.exponentCount));
}

/// Fw.d: the exact decimal value, rounded once, with the point moved k places to the right.
void AppendFixed(std::string& record, const EditDescriptor& item, double value) {
    char digits[kDigitRoom];
    const int precision = item.decimals + item.scale;
    if (precision < 0)
        ReportFormatFault("the scale moves every decimal out of an F field");
    char* end =
        std::to_chars(digits, digits + sizeof digits, std::fabs(value), std::chars_format::fixed, precision)
            .ptr;
    if (precision > 0) { // take the point out
        char* point = end - precision - 1;
        std::memmove(point, point + 1, static_cast<std::size_t>(precision));
        --end;
    }
    const int count = static_cast<int>(end - digits);
    RealParts parts;
    parts.afterCount = item.decimals < count ? item.decimals : count;
    parts.zeros = item.decimals - parts.afterCount;
    parts.after = end - parts.afterCount;
    parts.before = digits;
    while (parts.before < parts.after && *parts.before == '0')
        ++parts.before;
    parts.beforeCount = static_cast<int>(parts.after - parts.before);
    AppendReal(record, item.width, std::signbit(value), parts);
}

/// Letter, sign and digits of an exponent; three digits push the letter out. False when the digits do not fit.
bool WriteExponent(RealParts& parts, const EditDescriptor& item, int exponent) {
    const int magnitude = exponent < 0 ? -exponent : exponent;
    int count = item.exponentWidth;
    char* place = parts.exponent;
    if (count == 0)
        count = magnitude > 99 ? 3 : 2;
    if (item.exponentWidth != 0 || count == 2)
        *place++ = item.kind == EditKind::Double ? 'D' : 'E';
    *place++ = exponent < 0 ? '-' : '+';
    int rest = magnitude;
    for (int i = count - 1; i >= 0; --i, rest /= 10)
        place[i] = static_cast<char>('0' + rest % 10);
    parts.exponentCount = static_cast<int>(place - parts.exponent) + count;
    return rest == 0;
}

/// Ew.d and Dw.d. With a scale k above 0 there are k digits ahead of the point and d + 1 in all, else -k zeros and
/// d + k digits stand behind it.
void AppendExponent(std::string& record, const EditDescriptor& item, double value) {
    const int scale = item.scale;
    const int significant = scale > 0 ? item.decimals + 1 : item.decimals + scale;
    if (significant < 1 || scale > item.decimals + 1)
        ReportFormatFault("E or D without a digit, or with a scale out of range");
    char digits[kDigitRoom];
    const int power = WriteSignificantDigits(std::fabs(value), significant, digits);

    RealParts parts;
    parts.before = digits;
    parts.beforeCount = scale > 0 ? scale : 0;
    parts.zeros = scale < 0 ? -scale : 0;
    parts.after = digits + parts.beforeCount;
    parts.afterCount = significant - parts.beforeCount;
    if (!WriteExponent(parts, item, value == 0.0 ? 0 : power + 1 - scale)) {
        AppendField(record, item.width, '*');
        return;
    }
    AppendReal(record, item.width, std::signbit(value), parts);
}

void Start(RecordWriter& writer, const Format& format) {
    writer.format = &format;
    writer.next = 0;
    writer.record.clear();
    writer.record.reserve(128);
    writer.pendingBlanks = 0;
}

} // namespace

void BeginWrite(RecordWriter& writer, TextUnit& unit, const Format& format) {
    writer.unit = &unit;
    writer.text = nullptr;
    writer.dropped = !TakesRecords(unit);
    if (!writer.dropped)
        Start(writer, format);
}

void BeginWrite(RecordWriter& writer, std::string& text, const Format& format) {
    writer.unit = nullptr;
    writer.text = &text;
    writer.dropped = false;
    Start(writer, format);
}

void Put(RecordWriter& writer, std::int64_t value) {
    if (writer.dropped)
        return;
    const EditDescriptor& item = NextField(writer);
    if (item.kind != EditKind::Integer)
        ReportFormatFault("an integer for a descriptor of another kind");
    AppendInteger(writer.record, item, value);
}

void Put(RecordWriter& writer, std::int32_t value) {
    Put(writer, static_cast<std::int64_t>(value));
}

void Put(RecordWriter& writer, double value) {
    if (writer.dropped)
        return;
    const EditDescriptor& item = NextField(writer);
    if (item.kind != EditKind::Fixed && item.kind != EditKind::Exponent && item.kind != EditKind::Double)
        ReportFormatFault("a real for a descriptor of another kind");
    if (!std::isfinite(value))
        AppendNonFinite(writer.record, item, value);
    else if (item.kind == EditKind::Fixed)
        AppendFixed(writer.record, item, value);
    else
        AppendExponent(writer.record, item, value);
}

void Put(RecordWriter& writer, std::string_view value) {
    if (writer.dropped)
        return;
    const EditDescriptor& item = NextField(writer);
    if (item.kind != EditKind::Text)
        ReportFormatFault("a text for a descriptor of another kind");
    const std::size_t width = item.width == 0 ? value.size() : static_cast<std::size_t>(item.width);
    if (width > value.size())
        writer.record.append(width - value.size(), ' ');
    writer.record.append(value.substr(0, width));
}

void EndWrite(RecordWriter& writer) {
    if (writer.dropped)
        return;
    const Format& format = *writer.format;
    while (writer.next < format.items.size()) {
        const EditDescriptor& item = format.items[writer.next++];
        if (TakesValue(item.kind) || item.kind == EditKind::Colon)
            break;
        WriteControl(writer, item);
    }
    EndRecord(writer);
}

} // namespace zurt
