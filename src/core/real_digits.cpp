#include "core/real_digits.h"

#include <charconv>
#include <cmath>
#include <cstdint>

namespace zurt {

namespace {

/// Powers of ten that a double holds exactly.
constexpr int kLargestExactPower = 22;
constexpr double kPower[kLargestExactPower + 1] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// Up to this many digits the scaled value and its fraction are exact in a double.
constexpr int kQuickDigits = 15;

/// magnitude times 10^power as a double and the sign of what the double lacks, which the fused product gives exactly.
struct ScaledValue {
    double value = 0.0;
    double rest = 0.0;
};

ScaledValue ScaleByPowerOfTen(double magnitude, int power) {
    ScaledValue scaled;
    if (power >= 0) {
        scaled.value = magnitude * kPower[power];
        scaled.rest = std::fma(magnitude, kPower[power], -scaled.value);
    } else {
        scaled.value = magnitude / kPower[-power];
        scaled.rest = std::fma(-scaled.value, kPower[-power], magnitude);
    }
    return scaled;
}

/// The integer nearest to a scaled value below 2^53, ties to even.
std::int64_t RoundScaled(const ScaledValue& scaled) {
    const std::int64_t whole = static_cast<std::int64_t>(scaled.value);
    const double overHalf = (scaled.value - static_cast<double>(whole)) - 0.5;
    const bool up =
        overHalf > 0.0 || (overHalf == 0.0 && (scaled.rest > 0.0 || (scaled.rest == 0.0 && whole % 2 != 0)));
    return up ? whole + 1 : whole;
}

/// The digits by one scaling to an integer. False for magnitudes and counts for which that is not exact enough.
bool QuickDigits(double magnitude, int count, char* digits, int& power) {
    if (count > kQuickDigits || !(magnitude >= 1e-15 && magnitude < 1e30))
        return false;
    power = static_cast<int>(
        std::floor(std::ilogb(magnitude) * 0.30102999566398120)); // the true one, or 1 below it
    if (power - (count - 1) > kLargestExactPower - 1 || count - 1 - power > kLargestExactPower)
        return false;
    ScaledValue scaled = ScaleByPowerOfTen(magnitude, count - 1 - power);
    if (scaled.value > kPower[count]) {
        ++power;
        scaled = ScaleByPowerOfTen(magnitude, count - 1 - power);
    }
    std::int64_t number = RoundScaled(scaled);
    if (number == static_cast<std::int64_t>(kPower[count])) { // 9.96 became 10.0, or 10.0 stood there
        number /= 10;
        ++power;
    }
    std::to_chars(digits, digits + count, number);
    return true;
}

} // namespace

int WriteSignificantDigits(double magnitude, int count, char* digits) {
    int power = 0;
    if (QuickDigits(magnitude, count, digits, power))
        return power;
    const char* end =
        std::to_chars(digits, digits + count + 8, magnitude, std::chars_format::scientific, count - 1).ptr;
    char* mark = digits + count + (count > 1 ? 1 : 0); // the letter e
    std::from_chars(mark[1] == '+' ? mark + 2 : mark + 1, end, power);
    for (int i = 1; i < count; ++i) // close the gap of the point
        digits[i] = digits[i + 1];
    return power;
}

} // namespace zurt
