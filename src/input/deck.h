// The input deck on unit 1: cards, comments, the card counter, BACKSPACE and REWIND.
//
// The deck is read whole into memory; a step back only lowers the number of the next line. The place of
// the line found last is kept, and the next one is found from there; lines are counted only when LineCount is
// called. CRLF line ends and a byte order mark are taken. CardCounter counts the records that ReadCard has read,
// comments included, over all problems of the deck; `lineInHand` is the true line number, for error reports.
#pragma once

#include "core/array_view.h"
#include "core/text_unit.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zurt {

constexpr int kCardLength = 105;

/// Where a line lies.
struct LinePlace {
    Word line = 0; // its one-based number; 0: ahead of the first
    Word begin = 0;
    Word end = 0; // first byte of the next line
};

/// What is odd about the values of a field, and how often.
struct DeckNote {
    std::string text;  // without the place
    std::string place; // of the first one
    Word count = 0;
};

/// Cards of one kind whose count an earlier card gives: those in work, or the last ones that were. With them, the report of
/// a fault can say what a card was taken for.
struct CardBlock {
    std::string what;       // "elements of group 2"; "": none yet
    const char* count = ""; // the field that says how many are due
    Word countLine = 0;     // of the card with that field
    Word due = 0, read = 0;
    Word lastLine = 0;    // of the cards read so far
    Word wrappedLine = 0; // of the first card since that went on to another line; 0 none
};

struct Deck {
    std::string name;
    std::vector<DeckNote> notes; // since the last WriteDeckNotes
    std::unique_ptr<char[]> bytes;
    Word size = 0;       // of the deck in bytes
    Word lineCount = -1; // lines, a last one without an end included; below 0 until LineCount is called
    LinePlace found;     // the line found last
    Word nextLine = 0;   // zero-based index of the record that is read next
    Word lineInHand = 0; // one-based number of the record read last
    Word cardLine = 0;   // of the line on which the card in hand begins
    CardBlock block;
    bool allFree = false; // under INDFOR 1 no card is taken by columns
    std::int32_t CardCounter = 0;
    Word imageLine = 0;     // card taken by columns last while the deck has stepped back ahead of it
    Word returnedLine = -1; // record returned last by ReadCard, and how often in a row
    Word timesReturned = 0;
};

/// Where cards come from, and in which format: the deck in its own, a file beside it in that file's.
struct CardSource {
    Deck& deck;
    std::int32_t INDFOR;
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

/// Takes the deck from standard input, to its end.
void OpenDeckOnStandardInput(Deck& deck);

/// Number of lines of the deck.
Word LineCount(Deck& deck);

/// Line `line` (1 to LineCount) without its line end; quick for the line found last and the one behind it.
std::string_view LineText(Deck& deck, Word line);

/// True for a comment: C in the first column and a blank, an asterisk or a minus in the second; a line that ends behind its
/// C is blank there.
bool IsComment(std::string_view line);

/// The next non-comment card. With INDFOR 2 the deck stands behind it, otherwise before it, so that a list-directed
/// read takes the same line again. The end of the deck is a deck error that names `group`, the cards being read.
void ReadCard(Deck& deck, std::int32_t INDFOR, const char* group, CardBuffer& buffer);

/// The same without an image: the line itself, without its line end, which may be longer or shorter than a card.
std::string_view ReadCardLine(Deck& deck, std::int32_t INDFOR, const char* group);

/// The number that the next card will have: comments ahead of it count, and do not belong to the block that it begins.
std::int32_t NumberOfNextCard(Deck& deck);

/// Makes the image of a line.
void TakeImage(std::string_view line, CardBuffer& buffer);

/// The next record as it stands, for list-directed reads: no comment check, not counted.
std::string_view NextRecord(Deck& deck, const char* group);

/// `due` cards of a kind follow, as field `count` of the card on `countLine` says; `what` is their name in reports.
void BeginCards(Deck& deck, const std::string& what, const char* count, Word due, Word countLine);

/// So many of them have been read, with the card in hand the last.
void CountCards(Deck& deck, Word read);

/// What the report of a fault at the card in hand says of the cards around it; empty when there is nothing to say.
///   always  also for a card further behind the last block
std::string TrailOfCards(const Deck& deck, bool always);

/// Keeps a note on the card in hand, of the group and field named (field "": of the card). Equal texts are counted.
void NoteOnCard(Deck& deck, const char* group, const char* field, const std::string& text);

/// Writes the notes kept so far to standard error, each once with the place of the first and the count, and forgets them.
void WriteDeckNotes(Deck& deck);

/// Ends the run with status 2 after a report that names deck, line, card group, field, text found and reason.
[[noreturn]] void DeckError(const Deck& deck, const char* group, const char* field, std::string_view found,
                            const std::string& reason);

} // namespace zurt
