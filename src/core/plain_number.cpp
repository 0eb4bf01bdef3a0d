#include "core/plain_number.h"

namespace zurt {

namespace {

__extension__ typedef unsigned __int128 WideInteger;

constexpr int kMostDigits = 19;                // of a number below 2^64
constexpr int kMostExactPower = 22;            // 10^22 is a double, 10^23 is not
constexpr int kMostPowerOfFive = 27;           // 5^27 is below 2^63
constexpr std::size_t kMostExponentDigits = 4; // more are left to the full readers
constexpr std::uint64_t kMostExactInteger = std::uint64_t{1} << 53;

constexpr double kTen[kMostExactPower + 1] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                              1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                              1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::uint32_t kTenToDigits[9] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

struct PowersOfFive {
    std::uint64_t power[kMostPowerOfFive + 1];
};

constexpr PowersOfFive MakePowersOfFive() {
    PowersOfFive five{};
    five.power[0] = 1;
    for (int i = 1; i <= kMostPowerOfFive; ++i)
        five.power[i] = 5 * five.power[i - 1];
    return five;
}

constexpr PowersOfFive kFive = MakePowersOfFive();

double PowerOfTwo(int power) {
    const std::uint64_t bits = static_cast<std::uint64_t>(power + 1023) << 52;
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

bool IsDigitAt(std::string_view record, std::size_t at) {
    return at < record.size() && record[at] >= '0' && record[at] <= '9';
}

/// Appends the digits from `at` on to `number` and returns how many they are. Beyond kMostDigits the number has overflowed.
inline int TakeDigits(std::string_view record, std::size_t& at, std::uint64_t& number) {
    int taken = 0;
    while (IsDigitAt(record, at)) {
        const std::uint64_t text = EightFrom(record, at);
        const int count = LeadingDigits(text);
        number = number * kTenToDigits[count] + FirstDigits(text, count);
        at += static_cast<std::size_t>(count);
        taken += count;
        if (count < 8)
            break;
    }
    return taken;
}

/// number / 10^power, rounded to nearest with ties to even: a quotient of 62 or 63 bits, the last of which also stands
/// for the remainder, is rounded once, as it becomes a double.
double DivideByTen(std::uint64_t number, int power) {
    const int shift = __builtin_clzll(number), fiveShift = __builtin_clzll(kFive.power[power]);
    const std::uint64_t divisor = kFive.power[power] << fiveShift;
    const WideInteger dividend = WideInteger{number << shift} << 62;
    const std::uint64_t quotient = static_cast<std::uint64_t>(dividend / divisor);
    const bool exact = WideInteger{quotient} * divisor == dividend;
    const std::int64_t rounded = static_cast<std::int64_t>(quotient | (exact ? 0 : 1));
    return static_cast<double>(rounded) * PowerOfTwo(fiveShift - shift - power - 62);
}

/// number * 10^power where that takes one exact step; false elsewhere.
bool ScaleInOneStep(std::uint64_t number, int power, double& magnitude) {
    if (number == 0)
        magnitude = 0.0;
    else if (number <= kMostExactInteger && power >= 0 && power <= kMostExactPower)
        magnitude = static_cast<double>(number) * kTen[power];
    else if (number <= kMostExactInteger && power < 0 && power >= -kMostExactPower)
        magnitude = static_cast<double>(number) / kTen[-power];
    else if (power < 0 && power >= -kMostPowerOfFive)
        magnitude = DivideByTen(number, -power);
    else
        return false;
    return true;
}

/// The exponent whose letter stands at `at`; false when it is not plain.
inline bool TakeExponent(std::string_view record, std::size_t& at, int& exponent) {
    ++at;
    const char sign = at < record.size() ? record[at] : '\0';
    at += sign == '-' || sign == '+';
    const std::size_t first = at;
    int magnitude = 0;
    for (; IsDigitAt(record, at) && at < first + kMostExponentDigits; ++at)
        magnitude = 10 * magnitude + (record[at] - '0');
    exponent = sign == '-' ? -magnitude : magnitude;
    return at > first && !IsDigitAt(record, at);
}

} // namespace

std::size_t ReadPlainReal(std::string_view record, std::size_t at, int decimals, double& value) {
    if (record.size() < 8 || at >= record.size())
        return 0;
    const bool negative = record[at] == '-';
    at += negative || record[at] == '+';
    std::uint64_t number = 0;
    const int whole = TakeDigits(record, at, number);
    const int significant = number == 0 && whole <= kMostDigits ? 0 : whole;
    int fraction = 0, power = -decimals;
    if (at < record.size() && record[at] == '.') {
        fraction = TakeDigits(record, ++at, number);
        power = -fraction;
    }
    if (whole + fraction == 0 || significant + fraction > kMostDigits)
        return 0;
    const char letter = at < record.size() ? static_cast<char>(record[at] | 0x20) : ' ';
    if (letter == 'e' || letter == 'd') {
        int exponent = 0;
        if (!TakeExponent(record, at, exponent))
            return 0;
        power = exponent - fraction;
    }
    double magnitude = 0.0;
    if (!ScaleInOneStep(number, power, magnitude))
        return 0;
    value = negative ? -magnitude : magnitude;
    return at;
}

bool ReadPlainRealField(std::string_view record, std::size_t column, std::size_t width, int decimals,
                        double& value) {
    const std::size_t end = column + width;
    if (end > record.size())
        return false;
    while (column < end && record[column] == ' ')
        ++column;
    double number = 0.0;
    std::size_t behind = ReadPlainReal(record.substr(0, end), column, decimals, number);
    if (behind == 0)
        return false;
    while (behind < end && record[behind] == ' ')
        ++behind;
    if (behind < end)
        return false;
    value = number;
    return true;
}

} // namespace zurt
