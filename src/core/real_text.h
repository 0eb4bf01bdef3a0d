// Decimal text to double, as Fortran fields spell reals.
//
// Used by the fixed fields of format_read.cpp and the items of list_read.cpp alone.
#pragma once

#include "core/format.h"

namespace zurt {

inline bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// How a text without a point is to be taken.
struct RealTextRules {
    int decimals = 0; // without point and exponent this many of the last digits are decimals
    bool wideExponents =
        false; // exponents of five digits are taken for what they are, else they are out of range
};

/// Converts all of `text`, rounded to nearest; blanks (not tabs) anywhere are passed over, an all-blank text is 0.
/// Above the range of a double the result is an infinity, below it a denormal or zero. `value` changes only with
/// Good.
FieldStatus RealFromText(std::string_view text, const RealTextRules& rules, double& value);

} // namespace zurt
