#include "core/format.h"

#include "core/real_text.h"

#include <limits>

namespace zurt {

namespace {

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

} // namespace zurt
