// Numbers in the plain spelling that nearly every field of a deck has, read eight characters at a time.
//
// Used by input/card.cpp and list_read.cpp ahead of the full readers: what is not plain is left to those; what is
// plain gets the value that they would give it, to the last bit. A number is given as a place in its record, because eight
// characters are loaded at once; nothing outside the record is touched, and records of less than eight are never plain.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace zurt {

constexpr std::uint64_t kEightZeros = 0x3030303030303030;  // the digit 0, eight times
constexpr std::uint64_t kEightBlanks = 0x2020202020202020; // likewise

/// The eight characters at `place`, the first in the lowest byte.
inline std::uint64_t LoadEight(const char* place) {
    std::uint64_t text = 0;
    std::memcpy(&text, place, 8);
#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    text = __builtin_bswap64(text);
#endif
    return text;
}

/// The characters of `record` from `at` on, zeros behind its end; the record has eight or more.
inline std::uint64_t EightFrom(std::string_view record, std::size_t at) {
    const std::size_t left = record.size() - at;
    if (left >= 8)
        return LoadEight(record.data() + at);
    return left == 0 ? 0 : LoadEight(record.data() + record.size() - 8) >> (64 - 8 * left);
}

/// How many of eight characters are digits ahead of the first other character.
inline int LeadingDigits(std::uint64_t text) {
    const std::uint64_t digits = text ^ kEightZeros; // 0 to 9 for a digit
    // A carry reaches only characters behind one that is no digit.
    const std::uint64_t others = ((digits + 0x7676767676767676) | digits) & 0x8080808080808080;
    return others == 0 ? 8 : __builtin_ctzll(others) / 8;
}

/// The number that eight digits spell; a zero byte counts as the digit 0.
inline std::uint32_t EightDigits(std::uint64_t text) {
    // Neighbours are joined in pairs, pairs in fours, fours in eights.
    text = (text & 0x0f0f0f0f0f0f0f0f) * (10 * 256 + 1) >> 8;
    text = (text & 0x00ff00ff00ff00ff) * (100 * 65536 + 1) >> 16;
    text = (text & 0x0000ffff0000ffff) * (std::uint64_t{10000} << 32 | 1) >> 32;
    return static_cast<std::uint32_t>(text);
}

/// The number that the first `count` (1 to 8) of eight characters spell, all digits.
inline std::uint32_t FirstDigits(std::uint64_t text, int count) {
    return EightDigits(text << (64 - 8 * count));
}

/// A sign, if any, and one to seven digits from `at` on. Returns the position behind them, 0 when no such number begins
/// there.
inline std::size_t ReadPlainInteger(std::string_view record, std::size_t at, std::int32_t& value) {
    if (record.size() < 8 || at >= record.size())
        return 0;
    const char sign = record[at];
    at += sign == '-' || sign == '+';
    const std::uint64_t text = EightFrom(record, at);
    const int count = LeadingDigits(text);
    if (count == 0 || count == 8)
        return 0;
    const std::int32_t magnitude = static_cast<std::int32_t>(FirstDigits(text, count));
    value = sign == '-' ? -magnitude : magnitude;
    return at + static_cast<std::size_t>(count);
}

/// The field of `width` columns from `column` on, when it holds blanks and then at most eight digits up to its end, or
/// blanks alone; false for anything else.
inline bool ReadPlainIntegerField(std::string_view record, std::size_t column, std::size_t width,
                                  std::int32_t& value) {
    const std::size_t end = column + width;
    if (record.size() < 8 || end > record.size() || width == 0)
        return false;
    for (; column + 8 < end; ++column)
        if (record[column] != ' ')
            return false;
    std::uint64_t text = end >= 8 ? LoadEight(&record[end - 8]) : LoadEight(&record[0]) << (64 - 8 * end);
    const std::uint64_t ahead = end - column < 8 ? ~std::uint64_t{0} >> (8 * (end - column)) : 0;
    text = (text & ~ahead) | (kEightBlanks & ahead); // columns ahead of the field
    // A digit gives 0 and its value, a blank 16 and 0; a blank may stand at the front or behind another one.
    const std::uint64_t digits = text ^ kEightZeros;
    const std::uint64_t blanks = digits & 0x1010101010101010;
    const std::uint64_t values = digits ^ blanks;
    const std::uint64_t notDigits = ((values + 0x7676767676767676) | values) & 0x8080808080808080;
    const std::uint64_t notBlanks = values & (blanks - (blanks >> 4));
    const std::uint64_t behindDigits = blanks & ~((blanks << 8) | 0x10);
    if ((notDigits | notBlanks | behindDigits) != 0)
        return false;
    value = static_cast<std::int32_t>(EightDigits(values));
    return true;
}

/// A sign, if any, up to 19 digits with at most one point among them, and behind E or D an exponent, if any, from `at` on;
/// without point and exponent the last `decimals` digits are decimals. Returns the position behind the number, 0 when no
/// such number begins there or its value takes more than one rounding to find.
std::size_t ReadPlainReal(std::string_view record, std::size_t at, int decimals, double& value);

/// The field of `width` columns from `column` on, when it holds such a number and blanks around it; false for anything
/// else.
bool ReadPlainRealField(std::string_view record, std::size_t column, std::size_t width, int decimals,
                        double& value);

} // namespace zurt
