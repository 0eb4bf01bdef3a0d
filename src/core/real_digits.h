// The leading decimal digits of a double, rounded exactly.
//
// Used by format_write.cpp alone, for E and D fields.
#pragma once

namespace zurt {

/// Writes the first `count` (1 to 400) significant digits of `magnitude` (finite, not negative), rounded to nearest with ties
/// to even on the exact binary value, and returns the power of ten of the first: 31.25 with count 3 gives "312" and 1.
/// Zero gives zeros and 0. `digits` has room for count + 8 characters.
int WriteSignificantDigits(double magnitude, int count, char* digits);

} // namespace zurt
