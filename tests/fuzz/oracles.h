// What must hold for every deck whose job ends normally, beyond that it does not crash.
//
//   finite   no result of listing or graphics file is infinite or not a number
//   results  a problem that asks for results has a table of them
//   pairs    a good problem behind those of the deck has the results that it has alone
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zurt_fuzz {

struct Oracles {
    bool finite = true;
    bool results = true;
    int pairs = 50; // one deck of so many; 0: none
};

/// From the environment: ZURT_FUZZ_ORACLES, names with commas between them, "none", or "all", which is the default;
/// ZURT_FUZZ_PAIRS, one deck of so many.
Oracles OraclesAskedFor();

/// Runs the deck and asks the oracles. Empty, or the name of the one that objects, a colon, and why.
std::string CheckDeck(std::string_view deck, const Oracles& oracles);

/// A number for a text, the same everywhere.
std::uint64_t HashOf(std::string_view text);

} // namespace zurt_fuzz
