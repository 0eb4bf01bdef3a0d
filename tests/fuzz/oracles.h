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

/// Runs the deck and asks the oracles. Empty, or the name of the one that objects, a colon, and why.
std::string CheckDeck(std::string_view deck);

/// A number for a text, the same everywhere.
std::uint64_t HashOf(std::string_view text);

} // namespace zurt_fuzz
