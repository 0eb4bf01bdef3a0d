// The input deck on unit 1: cards, comments, the card counter, BACKSPACE and REWIND.
//
// The deck is read whole into memory with an index of its lines; moving back and forth is arithmetic on a line index.
// CRLF line ends are taken. CardCounter counts the records that ReadCard has read, comments included, over all
// problems of the deck; `lineInHand` is the true line number, for error reports.
#pragma once

#include "core/array_view.h"
#include "core/text_unit.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zurt {

constexpr int kCardLength = 105;

struct Deck {
    std::string name;
    std::string bytes;
    std::vector<Word> lineStart; // byte where each line begins, and one entry behind the last line
    Word nextLine = 0;           // zero-based index of the record that is read next
    Word lineInHand = 0;         // one-based number of the record read last
    std::int32_t CardCounter = 0;
    Word imageLine = 0;     // card taken by columns last while the deck has stepped back ahead of it
    Word returnedLine = -1; // record returned last by ReadCard, and how often in a row
    Word timesReturned = 0;
};

/// The image of one card: kCardLength characters, blank padded.
struct CardBuffer {
    char text[kCardLength];
};

inline std::string_view Image(const CardBuffer& card) {
    return {card.text, kCardLength};
}

/// Opens the deck; stops with a library error when it can't be read.
void OpenDeck(Deck& deck, const std::string& name);

/// Number of lines of the deck.
Word LineCount(const Deck& deck);

/// Line `line` (one-based) without its line end.
std::string_view LineText(const Deck& deck, Word line);

/// The next non-comment card. With INDFOR 2 the deck stands behind it, otherwise before it, so that a list-directed
/// read takes the same line again. The end of the deck is a deck error that names `group`, the cards being read.
void ReadCard(Deck& deck, std::int32_t INDFOR, const char* group, CardBuffer& buffer);

/// The next record as it stands, for list-directed reads: no comment check, not counted.
std::string_view NextRecord(Deck& deck, const char* group);

/// Ends the run with status 2 after a report that names deck, line, card group, field, text found and reason.
[[noreturn]] void DeckError(const Deck& deck, const char* group, const char* field, std::string_view found,
                            const std::string& reason);

} // namespace zurt
