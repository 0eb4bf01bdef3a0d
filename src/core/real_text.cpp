#include "core/real_text.h"

#include <charconv>
#include <limits>

namespace zurt {

namespace {

/// Exponents from here on are beyond any text of digits; a fixed field may not hold them.
constexpr int kExponentLimit = 10000;

/// Texts up to this length are rewritten without touching the heap.
constexpr std::size_t kSmallText = 64;

/// Room for sign, an added zero and a rewritten exponent.
constexpr std::size_t kRewritingRoom = 16;

/// A text on its way through the scanner; `out` receives what std::from_chars understands.
struct RealScan {
    const char* next = nullptr;
    const char* end = nullptr;
    char* out = nullptr;
    bool negative = false;
    bool pointSeen = false;
    bool digitSeen = false;
    bool significantSeen = false; // a digit other than 0
    int order = 0; // decimal order of the first such digit: 1 for 3.5, 0 for 0.35, -1 for 0.035
    int exponent = 0;
    bool exponentSeen = false;
};

char LowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsLetterOrDigit(char c) {
    return IsDigit(c) || (LowerCase(c) >= 'a' && LowerCase(c) <= 'z');
}

void SkipBlanks(RealScan& scan) {
    while (scan.next != scan.end && *scan.next == ' ')
        ++scan.next;
}

/// Takes the sign if the next character is one; true for a minus.
bool TakeSign(RealScan& scan) {
    if (scan.next == scan.end || (*scan.next != '-' && *scan.next != '+'))
        return false;
    return *scan.next++ == '-';
}

/// Equality of a text, in any case, with a word in small letters.
bool IsWord(std::string_view text, std::string_view word) {
    if (text.size() != word.size())
        return false;
    for (std::size_t i = 0; i < word.size(); ++i)
        if (LowerCase(text[i]) != word[i])
            return false;
    return true;
}

/// What may stand behind Inf or NaN: letters, digits and blanks, and behind NaN one pair of parentheses without
/// blanks.
bool IsNameTail(std::string_view tail, bool parenthesesAllowed) {
    int parentheses = 0;
    for (const char c : tail) {
        if (c == '(' || c == ')') {
            if (!parenthesesAllowed || parentheses++ != (c == '(' ? 0 : 1))
                return false;
        } else if (c == ' ' ? parentheses == 1 : !IsLetterOrDigit(c)) {
            return false;
        }
    }
    return parentheses != 1;
}

/// Inf, Infinity or NaN in any case: the name ends at a blank or a parenthesis.
FieldStatus ConvertName(const RealScan& scan, double& value) {
    const std::string_view text(scan.next, static_cast<std::size_t>(scan.end - scan.next));
    const std::size_t nameEnd = text.find_first_of(" (");
    const std::string_view name = text.substr(0, nameEnd);
    const bool isNotANumber = IsWord(name, "nan");
    if (!isNotANumber && !IsWord(name, "inf") && !IsWord(name, "infinity"))
        return FieldStatus::NotANumber;
    if (nameEnd != std::string_view::npos && !IsNameTail(text.substr(nameEnd), isNotANumber))
        return FieldStatus::NotANumber;
    const double magnitude =
        isNotANumber ? std::numeric_limits<double>::quiet_NaN() : std::numeric_limits<double>::infinity();
    value = scan.negative ? -magnitude : magnitude;
    return FieldStatus::Good;
}

void TakeDigit(RealScan& scan, char digit) {
    *scan.out++ = digit;
    scan.digitSeen = true;
    scan.significantSeen = scan.significantSeen || digit != '0';
    if (!scan.pointSeen && scan.significantSeen)
        ++scan.order;
    else if (scan.pointSeen && !scan.significantSeen)
        --scan.order;
}

/// Digits and point up to the exponent or the end. False when something else stands there.
bool ScanMantissa(RealScan& scan) {
    for (; scan.next != scan.end; ++scan.next) {
        const char c = *scan.next;
        if (IsDigit(c)) {
            TakeDigit(scan, c);
        } else if (c == '.') {
            if (scan.pointSeen)
                return false;
            scan.pointSeen = true;
            *scan.out++ = '.';
        } else if (c == '+' || c == '-') {
            return true;
        } else if (c != ' ') {
            const char letter = LowerCase(c);
            return letter == 'e' || letter == 'd' || letter == 'q';
        }
    }
    return true;
}

/// The exponent, which a letter or its sign alone begins; it needs a digit.
bool ScanExponent(RealScan& scan) {
    scan.exponentSeen = true;
    if (*scan.next != '+' && *scan.next != '-')
        ++scan.next;
    SkipBlanks(scan);
    const bool negative = TakeSign(scan);
    if (scan.next == scan.end)
        return false;
    int exponent = 0;
    for (; scan.next != scan.end; ++scan.next) {
        if (*scan.next == ' ')
            continue;
        if (!IsDigit(*scan.next))
            return false;
        if (exponent < kExponentLimit)
            exponent = 10 * exponent + (*scan.next - '0');
    }
    scan.exponent = negative ? -exponent : exponent;
    return true;
}

/// Converts what stands in [first, scan.out): digits with at most one point.
FieldStatus ConvertDigits(RealScan& scan, const RealTextRules& rules, const char* first, double& value) {
    const bool wide = scan.exponent >= kExponentLimit || scan.exponent <= -kExponentLimit;
    if (wide && !rules.wideExponents)
        return FieldStatus::OutOfRange;
    double magnitude = 0.0;
    if (scan.significantSeen) {
        if (scan.exponent != 0) {
            *scan.out++ = 'e';
            scan.out = std::to_chars(scan.out, scan.out + 8, scan.exponent).ptr;
        }
        const std::from_chars_result result = std::from_chars(first, scan.out, magnitude);
        if (result.ec == std::errc::result_out_of_range)
            magnitude = scan.order + scan.exponent > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    }
    value = scan.negative ? -magnitude : magnitude;
    return FieldStatus::Good;
}

/// Scans and converts; `room` holds the text's length and kRewritingRoom more.
FieldStatus ScanReal(std::string_view text, const RealTextRules& rules, char* room, double& value) {
    RealScan scan;
    scan.next = text.data();
    scan.end = text.data() + text.size();
    scan.out = room;
    SkipBlanks(scan);
    scan.negative = TakeSign(scan);
    SkipBlanks(scan);
    if (scan.next == scan.end) { // a sign alone makes no negative zero
        value = 0.0;
        return FieldStatus::Good;
    }
    if (LowerCase(*scan.next) == 'i' || LowerCase(*scan.next) == 'n')
        return ConvertName(scan, value);
    if (!ScanMantissa(scan))
        return FieldStatus::NotANumber;
    if (scan.next != scan.end && !ScanExponent(scan))
        return FieldStatus::NotANumber;
    if (!scan.exponentSeen)
        scan.exponent = scan.pointSeen ? 0 : -rules.decimals;
    return ConvertDigits(scan, rules, room, value);
}

} // namespace

FieldStatus RealFromText(std::string_view text, const RealTextRules& rules, double& value) {
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    if (text.size() <= kSmallText) {
        char room[kSmallText + kRewritingRoom];
        return ScanReal(text, rules, room, value);
    }
    std::string room(text.size() + kRewritingRoom, '\0');
    return ScanReal(text, rules, room.data(), value);
}

} // namespace zurt
