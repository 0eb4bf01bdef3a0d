// What the listing shows of input and results: the passages of tests/data/listing_lines.txt stand in the listings of the
// small decks, empty lines aside. Faults: a label, a format, a column or a line of an echo; values ahead of their
// defaults or behind a multiplication; an echo left out, or out of its order.
#include "support/run_deck.h"
#include "support/small_decks.h"

#include <map>
#include <regex>

namespace {

using namespace zurt_test;

std::string WithoutEmptyLines(const std::string& text) {
    return std::regex_replace("\n" + text, std::regex("\n *(?=\n)"), "");
}

// A passage follows a line that begins with "@ " and names its deck.
TEST(ListingLines, StandInTheListingsOfTheSmallDecks) {
    const std::string passages = ReadFile(ZURT_SOURCE_DIR "/tests/data/listing_lines.txt");
    std::map<std::string, std::string> listings;
    int count = 0;
    for (std::size_t at = 0, end = 0; at < passages.size(); at = end, ++count) {
        const std::size_t first = passages.find('\n', at);
        const std::string deck = passages.substr(at + 2, first - at - 2);
        end = std::min(passages.find("@ ", first), passages.size());
        std::string& listing = listings[deck];
        if (listing.empty())
            listing = WithoutEmptyLines(RunDeck(SmallDeckText(deck)).listing);
        const std::string passage = passages.substr(first, end - first);
        EXPECT_TRUE(Contains(listing, passage)) << "not in the listing of " << deck << passage;
    }
    EXPECT_GT(count, 30);
}

} // namespace
