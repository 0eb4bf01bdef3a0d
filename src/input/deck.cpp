#include "input/deck.h"

#include "core/interrupt.h"
#include "core/ranks.h"
#include "core/stop.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace zurt {

namespace {

// Under an INDFOR other than 1 and 2 no read consumes a card, so a reader that waits for another card would never
// end. A reader that does end asks for one card far less often.
constexpr Word kLargestRepeat = 100000;

constexpr const char* kImageHint =
    "; some cards are always taken by columns, and under INDFOR 1 such a card "
    "is presented again to the next reader: "
    "decks with such cards are fixed format decks, unless zurt --free runs them";

// Lines behind the last card of a block in which a fault may come from a wrong count.
constexpr Word kFarBehind = 20;

// Longest piece of a card shown in an error report.
constexpr std::size_t kLongestExcerpt = 60;

// Other devices may give bytes without end; the input of a terminal ends when its user says so.
bool IsEndlessDevice(int file, const struct stat& status) {
    return (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode)) && isatty(file) == 0;
}

// Bytes asked for at a time, and the room that a deck of unknown size begins with.
constexpr Word kPiece = Word{1} << 20;

void GrowDeck(Deck& deck, Word& room) {
    room = 2 * room;
    std::unique_ptr<char[]> larger(new char[static_cast<std::size_t>(room)]); // not set to zero
    std::memcpy(larger.get(), deck.bytes.get(), static_cast<std::size_t>(deck.size));
    deck.bytes = std::move(larger);
}

// The pages that so many bytes will fill are asked for in one go, which costs less than one by one as they are
// touched. A system that does not know how refuses, and nothing is lost.
void PreparePages([[maybe_unused]] char* begin, [[maybe_unused]] Word count) {
#ifdef MADV_POPULATE_WRITE
    const std::uintptr_t page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t ahead = reinterpret_cast<std::uintptr_t>(begin) % page;
    madvise(begin - ahead, static_cast<std::size_t>(count) + ahead, MADV_POPULATE_WRITE);
#endif
}

[[noreturn]] void StopOnRead(const Deck& deck, const std::string& reason) {
    StopWithLibraryError("can't read the deck " + deck.name + ": " + reason);
}

// Up to so many bytes, 0 at the end of the file. A pipe may make one wait: a signal ends that.
Word ReadPiece(const Deck& deck, int file, char* target, Word most) {
    while (true) {
        pollfd ready = {file, POLLIN, 0};
        poll(&ready, 1, -1);
        StopIfInterrupted();
        const Word count = read(file, target, static_cast<std::size_t>(most));
        if (count >= 0)
            return count;
        if (errno != EINTR && errno != EAGAIN)
            StopOnRead(deck, std::strerror(errno));
    }
}

// Reads to the end of the file; `expected` bytes are likely to come.
void ReadBytes(Deck& deck, int file, Word expected) {
    Word room = expected + kPiece;
    deck.bytes.reset(new char[static_cast<std::size_t>(room)]);
    for (Word count = 1; count > 0; deck.size += count) {
        if (deck.size + kPiece > room)
            GrowDeck(deck, room);
        if (deck.size < expected)
            PreparePages(deck.bytes.get() + deck.size, std::min(kPiece, expected - deck.size));
        count = ReadPiece(deck, file, deck.bytes.get() + deck.size, kPiece);
    }
}

// The byte order mark, which some editors put ahead of the first line.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

void DropByteOrderMark(Deck& deck) {
    if (std::string_view(deck.bytes.get(), static_cast<std::size_t>(deck.size))
            .substr(0, kByteOrderMark.size()) != kByteOrderMark)
        return;
    deck.size -= static_cast<Word>(kByteOrderMark.size());
    std::memmove(deck.bytes.get(), deck.bytes.get() + kByteOrderMark.size(),
                 static_cast<std::size_t>(deck.size));
}

void ReadDeckFile(Deck& deck, int file) {
    struct stat status = {};
    if (fstat(file, &status) != 0)
        StopOnRead(deck, std::strerror(errno));
    if (IsEndlessDevice(file, status))
        StopOnRead(deck, "it is a device");
    ReadBytes(deck, file, S_ISREG(status.st_mode) ? status.st_size : 0);
    DropByteOrderMark(deck);
}

// Where processes share the run, the first reads the deck for all.
void TakeDeckFromFirstRank(Deck& deck) {
    TakeFromFirstRank(&deck.size, sizeof deck.size);
    if (!IsFirstRank())
        deck.bytes.reset(new char[static_cast<std::size_t>(deck.size + kPiece)]);
    TakeFromFirstRank(deck.bytes.get(), deck.size);
}

// --- lines --------------------------------------------------------------------------------------------------------

// Where the line that begins at `begin` ends: the first byte of the next.
Word EndOfLine(const Deck& deck, Word begin) {
    const char* const first = deck.bytes.get() + begin;
    const void* const end = std::memchr(first, '\n', static_cast<std::size_t>(deck.size - begin));
    return end == nullptr ? deck.size : begin + (static_cast<const char*>(end) - first) + 1;
}

// Goes from a place to a line, from the head of the deck where it lies behind; false, with the last line's place, when
// the deck ends ahead of it.
bool FindLine(const Deck& deck, Word line, LinePlace& place) {
    if (line < place.line)
        place = LinePlace();
    while (place.line < line) {
        if (place.end >= deck.size)
            return false;
        place = {place.line + 1, place.end, EndOfLine(deck, place.end)};
    }
    return true;
}

std::string_view TextAt(const Deck& deck, const LinePlace& place) {
    std::string_view text(deck.bytes.get() + place.begin, static_cast<std::size_t>(place.end - place.begin));
    if (!text.empty() && text.back() == '\n')
        text.remove_suffix(1);
    if (!text.empty() && text.back() == '\r')
        text.remove_suffix(1);
    return text;
}

void GuardAgainstRepetition(Deck& deck, const char* group) {
    if (deck.returnedLine == deck.nextLine) {
        if (++deck.timesReturned > kLargestRepeat)
            DeckError(
                deck, group, "", "",
                "the same card is presented again and again: under this format indicator (INDFOR) no read "
                "consumes it");
        return;
    }
    deck.returnedLine = deck.nextLine;
    deck.timesReturned = 1;
}

// Characters that don't print are shown as dots, so that a binary file does not upset the terminal.
std::string Excerpt(std::string_view found) {
    std::string text(found.substr(0, kLongestExcerpt));
    for (char& c : text)
        if (c < ' ' || c > '~')
            c = '.';
    if (found.size() > kLongestExcerpt)
        text += "...";
    return text;
}

} // namespace

bool IsComment(std::string_view line) {
    if (line.empty() || line[0] != 'C')
        return false;
    return line.size() == 1 || line[1] == ' ' || line[1] == '*' || line[1] == '-';
}

void OpenDeck(Deck& deck, const std::string& name) {
    deck = Deck();
    deck.name = name;
    if (IsFirstRank()) {
        const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC);
        if (file < 0)
            StopWithLibraryError("can't open the deck " + deck.name + ": " + std::strerror(errno));
        ReadDeckFile(deck, file);
        close(file);
    }
    TakeDeckFromFirstRank(deck);
}

void OpenDeckOnStandardInput(Deck& deck) {
    deck = Deck();
    deck.name = "on standard input";
    if (IsFirstRank())
        ReadDeckFile(deck, STDIN_FILENO);
    TakeDeckFromFirstRank(deck);
}

Word LineCount(Deck& deck) {
    if (deck.lineCount < 0) {
        LinePlace last = deck.found;
        FindLine(deck, std::numeric_limits<Word>::max(), last);
        deck.lineCount = last.line;
    }
    return deck.lineCount;
}

std::string_view LineText(Deck& deck, Word line) {
    return FindLine(deck, line, deck.found) ? TextAt(deck, deck.found) : std::string_view();
}

std::string_view NextRecord(Deck& deck, const char* group) {
    if (!FindLine(deck, deck.nextLine + 1, deck.found)) {
        deck.lineInHand = LineCount(deck);
        DeckError(deck, group, "", "", "the deck ends here, but more data are expected");
    }
    deck.lineInHand = ++deck.nextLine;
    return TextAt(deck, deck.found);
}

std::string_view ReadCardLine(Deck& deck, std::int32_t INDFOR, const char* group) {
    std::string_view line;
    do {
        if (interruptRequested != 0)
            StopIfInterrupted();
        if (deck.CardCounter < std::numeric_limits<std::int32_t>::max())
            ++deck.CardCounter;
        GuardAgainstRepetition(deck, group);
        line = NextRecord(deck, group);
    } while (IsComment(line));
    deck.cardLine = deck.lineInHand;
    if (INDFOR != 2)
        --deck.nextLine;
    return line;
}

std::int32_t NumberOfNextCard(Deck& deck) {
    std::int32_t number = deck.CardCounter + 1;
    for (Word line = deck.nextLine + 1; IsComment(LineText(deck, line)); ++line)
        ++number;
    return number;
}

void TakeImage(std::string_view line, CardBuffer& buffer) {
    const std::size_t length = std::min<std::size_t>(line.size(), kCardLength);
    std::memcpy(buffer.text, line.data(), length);
    std::memset(buffer.text + length, ' ', kCardLength - length);
}

void ReadCard(Deck& deck, std::int32_t INDFOR, const char* group, CardBuffer& buffer) {
    TakeImage(ReadCardLine(deck, INDFOR, group), buffer);
}

void BeginCards(Deck& deck, const std::string& what, const char* count, Word due, Word countLine) {
    deck.block = {what, count, countLine, due};
}

void CountCards(Deck& deck, Word read) {
    CardBlock& block = deck.block;
    block.read = read;
    block.lastLine = deck.lineInHand;
}

std::string TrailOfCards(const Deck& deck, bool always) {
    const CardBlock& block = deck.block;
    if (block.what.empty() || block.due == 0)
        return "";
    const std::string count = std::string(block.count) + " = " + std::to_string(block.due) + " on line " +
                              std::to_string(block.countLine);
    std::string text = "line " + std::to_string(deck.cardLine);
    if (block.read < block.due) {
        text += " is taken for one of the " + block.what + ": " + std::to_string(block.read) + " of " +
                std::to_string(block.due) + " have been read (" + count + ")";
    } else {
        if (deck.cardLine > block.lastLine + (always ? kFarBehind : 1))
            return "";
        text += " comes behind the " + block.what + ": all " + std::to_string(block.due) +
                " have been read, to line " + std::to_string(block.lastLine) + " (" + count + ")";
    }
    if (block.wrappedLine > 0)
        text += "; the card on line " + std::to_string(block.wrappedLine) +
                " has too few numbers and took more from the next line";
    return text;
}

void NoteOnCard(Deck& deck, const char* group, const char* field, const std::string& text) {
    const std::string whole =
        std::string(group) + (*field != '\0' ? std::string(", field ") + field : "") + ": " + text;
    for (DeckNote& note : deck.notes)
        if (note.text == whole) {
            ++note.count;
            return;
        }
    deck.notes.push_back({whole, "line " + std::to_string(deck.lineInHand), 1});
}

void WriteDeckNotes(Deck& deck) {
    for (const DeckNote& note : deck.notes)
        WriteNote("deck " + deck.name + ", " + note.place + ", " + note.text +
                  (note.count > 1 ? " (" + std::to_string(note.count) + " such cards)" : ""));
    deck.notes.clear();
}

void DeckError(const Deck& deck, const char* group, const char* field, std::string_view found,
               const std::string& reason) {
    std::string text = "deck " + deck.name + ", line " + std::to_string(deck.lineInHand) + ", " + group;
    if (*field != '\0')
        text += std::string(", field ") + field;
    if (!found.empty())
        text += ": \"" + Excerpt(found) + "\"";
    text += ": " + reason;
    if (deck.imageLine > 0 && deck.imageLine == deck.lineInHand)
        text += kImageHint;
    LinePlace card = deck.found;
    if (deck.lineInHand > 0 && FindLine(deck, deck.lineInHand, card))
        text += "\n  card: " + Excerpt(TextAt(deck, card));
    StopAtCard(text);
}

} // namespace zurt
