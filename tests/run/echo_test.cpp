#include "input/card.h"
#include "run/banner.h"
#include "run/echo.h"
#include "support/small_run.h"

namespace zurt {
namespace {

using namespace zurt_test;

std::vector<std::string> CardListing(SmallRun& small) {
    ListCards(small);
    return Lines(Written(small.units.listing));
}

// Faults: the ruler shifted against the card columns, cards cut at another column or not padded, comments left out,
// head and foot with other lines.
TEST(CardListing, ShowsSeventyColumnsUnderARuler) {
    const std::string digits = "1234567890123456789012345678901234567890123456789012345678901234567890";
    SmallRun small(digits + "X beyond\nC comment\n");
    const std::vector<std::string> lines = CardListing(small);
    const std::string tens = " CARD          1         2         3         4         5         6         7";
    const std::string dashes = " ---- " + std::string(70, '-');
    const std::vector<std::string> expected = {
        "1",
        "",
        "      A   C A R D   I M A G E   L I S T I N G   O F   T H E   I N P U T   D A T A",
        "",
        "                            C O L U M N   N U M B E R",
        "",
        tens,
        " NUMB " + digits,
        dashes,
        "    1 " + digits,
        "    2 C comment" + std::string(61, ' '),
        dashes,
        tens,
        " NUMB " + digits,
        "",
        "",
        "      ******************* E N D   O F   I N P U T   L I S T I N G ***************"};
    EXPECT_EQ(lines, expected);
    EXPECT_EQ(tens.size(), 76u);
}

// Faults: the head repeated at the fiftieth or the fifty-second line, line numbers that start anew on each page, a page
// of other length after the first.
TEST(CardListing, RepeatsItsHeadAtTheFiftyFirstLine) {
    std::string deck;
    for (int count = 1; count <= 101; ++count) {
        deck += "card " + std::to_string(count) + "\n";
        if (count % 50 > 1) // 50, 51, 100 and 101 are looked at
            continue;
        SmallRun small(deck);
        const std::vector<std::string> lines = CardListing(small);
        std::vector<std::string> starts; // the first card below each head
        for (std::size_t i = 0; i + 9 < lines.size(); ++i)
            if (lines[i] == "1")
                starts.push_back(lines[i + 9].substr(0, 11));
        std::vector<std::string> all = {"    1 card ", "   51 card ", "  101 card "};
        const int pages = (count + 49) / 50;
        all.resize(static_cast<std::size_t>(pages));
        EXPECT_EQ(starts, all) << count;
        EXPECT_EQ(CountOf(Written(small.units.listing), " ---- ---"), 2 * pages) << count;
    }
}

// Faults: the deck left at its end, put back to its start, or put back to its true place although the counter is
// short after a read that has run over line ends.
TEST(CardListing, PutsTheDeckBackByTheNumberOfItsCards) {
    SmallRun small("C one\ncard 2\ncard 3\n1\n2\n3\nnext\n");
    CardBuffer card;
    ReadCard(small.deck, 2, "Sample card", card);
    ListCards(small);
    EXPECT_EQ(NextRecord(small.deck, "Sample card"), "card 3");
    std::vector<std::int32_t> numbers(3);
    ReadNumberCards(small.deck, 1, "Sample cards", "N", ZURT_DESCRIPTOR(std::int32_t, "I5"), 3,
                    View(numbers));
    EXPECT_EQ(small.deck.CardCounter, 3);
    ListCards(small);
    EXPECT_EQ(NextRecord(small.deck, "Sample card"), "1");
}

std::string CardNumber(std::int32_t counter, std::int32_t first, std::int32_t page, int language) {
    SmallRun small;
    small.deck.CardCounter = counter;
    small.job.Language = language;
    PrintCardNumber(small, first, page);
    return Written(small.units.listing);
}

// Faults: a wrong count of empty lines, the page break forgotten or not alone on its line, a range printed for one
// card, any text under another value of `page`.
TEST(CardNumber, HasFourForms) {
    EXPECT_EQ(CardNumber(12, 12, 0, kEnglish), "\n\n\n\n\n\n CARD NUMBER    12\n\n\n\n");
    EXPECT_EQ(CardNumber(12, 12, 1, kEnglish), "\n\n\n1\n CARD NUMBER    12\n\n\n\n");
    EXPECT_EQ(CardNumber(12, 7, 0, kEnglish), "\n\n\n\n\n\n CARD FROM NUMBER     7 TO   12\n\n\n\n");
    EXPECT_EQ(CardNumber(12, 7, 1, kEnglish), "\n\n\n1\n CARD FROM NUMBER     7 TO   12\n\n\n\n");
    EXPECT_EQ(CardNumber(12, 12, 1, kSerbian), "\n\n\n1\n KARTICA BROJ   12\n\n\n\n");
    EXPECT_EQ(CardNumber(12, 7, 1, kSerbian), "\n\n\n1\n KARTICE OD BROJA    7 DO   12\n\n\n\n");
    EXPECT_EQ(CardNumber(12, 7, 2, kEnglish), "");
    EXPECT_EQ(CardNumber(12, 12, -1, kEnglish), "");
}

} // namespace
} // namespace zurt
