// Changes to decks that know lines and fields.
#pragma once

#include <cstdint>
#include <string>

namespace zurt_fuzz {

/// The deck with one to four changes: fields, lines, cards of the small decks of the tests, problems, bytes. No longer than
/// `most` bytes. The same for the same seed, but for bytes, where libFuzzer's own dice are thrown.
std::string ChangeDeck(const std::string& deck, std::uint32_t seed, std::size_t most);

/// A deck of two: the head of one and the tail of the other, cards of one in the other, or both as two problems.
std::string CrossDecks(const std::string& deck, const std::string& other, std::uint32_t seed,
                       std::size_t most);

} // namespace zurt_fuzz
