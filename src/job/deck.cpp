#include "job/deck.h"

#include "core/stop.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <sys/stat.h>

namespace zurt {

namespace {

// Under an INDFOR other than 1 and 2 no read consumes a card, so a reader that waits for the next card would wait for
// ever. No reader that ends asks for one card this often.
constexpr Word kLargestRepeat = 100000;

constexpr const char* kImageHint = "; some cards are always taken by columns, and under INDFOR 1 such a card "
                                   "is presented again to the next reader: "
                                   "decks with such cards are fixed format decks";

// Longest piece of a card shown in an error report.
constexpr std::size_t kLongestExcerpt = 60;

// Many a device gives bytes without end.
bool IsDevice(std::FILE* file) {
    struct stat status;
    return fstat(fileno(file), &status) == 0 && (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode));
}

// Lines are found while their bytes are still in the processor's cache.
void AppendBlock(Deck& deck, const char* block, std::size_t count) {
    const Word first = static_cast<Word>(deck.bytes.size());
    deck.bytes.append(block, count);
    const char* const end = block + count;
    const void* stop = nullptr;
    for (const char* at = block;
         (stop = std::memchr(at, '\n', static_cast<std::size_t>(end - at))) != nullptr;) {
        at = static_cast<const char*>(stop) + 1;
        deck.lineStart.push_back(first + (at - block));
    }
}

void ReadWholeFile(Deck& deck) {
    std::FILE* file = std::fopen(deck.name.c_str(), "rb");
    if (file == nullptr)
        StopWithLibraryError("can't open the deck " + deck.name + ": " + std::strerror(errno));
    if (IsDevice(file))
        StopWithLibraryError("can't read the deck " + deck.name + ": it is a device");
    if (std::fseek(file, 0, SEEK_END) == 0) {
        const long size = std::ftell(file);
        if (size > 0 && size < std::numeric_limits<long>::max())
            deck.bytes.reserve(static_cast<std::size_t>(size) + 1);
        std::rewind(file);
    }
    std::vector<char> block(std::size_t{1} << 20);
    std::size_t count = 0;
    deck.lineStart.push_back(0);
    while ((count = std::fread(block.data(), 1, block.size(), file)) > 0)
        AppendBlock(deck, block.data(), count);
    const bool failed = std::ferror(file) != 0;
    const int reason = errno;
    std::fclose(file);
    if (failed)
        StopWithLibraryError("can't read the deck " + deck.name + ": " + std::strerror(reason));
    const Word size = static_cast<Word>(deck.bytes.size());
    if (deck.lineStart.back() != size) // the last line has no end
        deck.lineStart.push_back(size);
}

bool IsComment(const CardBuffer& card) {
    return card.text[0] == 'C' && (card.text[1] == ' ' || card.text[1] == '*' || card.text[1] == '-');
}

void TakeImage(std::string_view line, CardBuffer& buffer) {
    const std::size_t length = std::min<std::size_t>(line.size(), kCardLength);
    std::memcpy(buffer.text, line.data(), length);
    std::memset(buffer.text + length, ' ', kCardLength - length);
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

void OpenDeck(Deck& deck, const std::string& name) {
    deck = Deck();
    deck.name = name;
    ReadWholeFile(deck);
}

Word LineCount(const Deck& deck) {
    return static_cast<Word>(deck.lineStart.size()) - 1;
}

std::string_view LineText(const Deck& deck, Word line) {
    const std::size_t at = static_cast<std::size_t>(line - 1);
    const Word begin = deck.lineStart[at];
    std::string_view text(deck.bytes.data() + begin,
                          static_cast<std::size_t>(deck.lineStart[at + 1] - begin));
    if (!text.empty() && text.back() == '\n')
        text.remove_suffix(1);
    if (!text.empty() && text.back() == '\r')
        text.remove_suffix(1);
    return text;
}

std::string_view NextRecord(Deck& deck, const char* group) {
    if (deck.nextLine >= LineCount(deck)) {
        deck.lineInHand = LineCount(deck);
        DeckError(deck, group, "", "", "the deck ends here, but more data are expected");
    }
    deck.lineInHand = ++deck.nextLine;
    return LineText(deck, deck.lineInHand);
}

void ReadCard(Deck& deck, std::int32_t INDFOR, const char* group, CardBuffer& buffer) {
    do {
        if (deck.CardCounter < std::numeric_limits<std::int32_t>::max())
            ++deck.CardCounter;
        GuardAgainstRepetition(deck, group);
        TakeImage(NextRecord(deck, group), buffer);
    } while (IsComment(buffer));
    if (INDFOR != 2)
        --deck.nextLine;
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
    if (deck.lineInHand > 0 && deck.lineInHand <= LineCount(deck))
        text += "\n  card: " + Excerpt(LineText(deck, deck.lineInHand));
    StopWithLibraryError(text);
}

} // namespace zurt
