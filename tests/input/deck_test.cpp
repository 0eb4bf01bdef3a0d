#include "input/deck.h"
#include "support/small_run.h"

#include <fstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace zurt {
namespace {

using zurt_test::SmallRun;

std::string NextCard(Deck& deck, std::int32_t INDFOR) {
    CardBuffer card;
    ReadCard(deck, INDFOR, "Sample card", card);
    return std::string(Image(card));
}

void ExpectCard(Deck& deck, std::int32_t INDFOR, std::string text, Word counter) {
    text.resize(kCardLength, ' ');
    EXPECT_EQ(NextCard(deck, INDFOR), text) << INDFOR;
    EXPECT_EQ(deck.CardCounter, counter) << text << INDFOR;
}

// Faults: a small c, a C with another letter or a C in column 2 taken for a comment; a lone C, which the blanks of the
// image follow, taken for data; comments left out of the count; a byte order mark that hides the first C.
TEST(Deck, CommentsBeginWithOneOfThreePairsExactly) {
    SmallRun small("\xEF\xBB\xBF"
                   "C a comment\nC*\nC---\nC\nCX title\nc small\n C shifted\nC\ttab\nC\r\nlast\n");
    ExpectCard(small.deck, 2, "CX title", 5);
    ExpectCard(small.deck, 2, "c small", 6);
    ExpectCard(small.deck, 2, " C shifted", 7);
    ExpectCard(small.deck, 2, "C\ttab", 8);
    ExpectCard(small.deck, 2, "last", 10);
}

// Faults: no step back under free format or an unknown indicator, a step back over the comments too, a count that
// stands still or goes back with the step.
TEST(Deck, StepsBackUnlessTheFormatIsFixed) {
    for (const std::int32_t INDFOR : {1, 0, 3, -2}) {
        SmallRun small("C comment\nfirst\nsecond\n");
        ExpectCard(small.deck, INDFOR, "first", 2);
        ExpectCard(small.deck, INDFOR, "first", 3);
        EXPECT_EQ(NextRecord(small.deck, "Sample card"), "first") << INDFOR;
        ExpectCard(small.deck, 2, "second", 4);
    }
}

// Faults: a card cut at 80 columns or not cut at all, remains of the card before behind a short one, a blank line passed
// over, the other kind of line end left in the image, the last line lost for want of a line end.
TEST(Deck, ImagesAreOf105CharactersWhateverTheLineEnds) {
    const std::string line = std::string(104, 'x') + "yz";
    SmallRun small(line + "\r\n\r\nshort\r\nlast");
    EXPECT_EQ(LineCount(small.deck), 4);
    ExpectCard(small.deck, 2, line, 1);
    ExpectCard(small.deck, 2, "", 2);
    ExpectCard(small.deck, 2, "short", 3);
    ExpectCard(small.deck, 2, "last", 4);
}

// Faults: a crash or a status of 0 at the end of the deck, a report that does not say where and what was wanted.
TEST(Deck, ItsEndIsReportedWithLineAndGroup) {
    SmallRun small("only\nC comment\n");
    NextCard(small.deck, 2);
    EXPECT_LIBRARY_ERROR(NextCard(small.deck, 2),
                         "zurt: error: deck .*/deck, line 2, Sample card: the deck ends here");
    SmallRun empty("");
    EXPECT_EQ(LineCount(empty.deck), 0);
    EXPECT_LIBRARY_ERROR(NextCard(empty.deck, 1), "line 0, Sample card");
}

// Faults: a reader that waits for a card which no read consumes hangs for ever; a deck of many equal cards refused.
TEST(Deck, TheSameCardForEverEndsTheRun) {
    SmallRun small("stuck\n");
    EXPECT_LIBRARY_ERROR(while (true) NextCard(small.deck, 3),
                         "line 1, Sample card: the same card is presented again and again");
    std::string deck;
    for (int line = 0; line < 1100; ++line)
        deck += "equal\n";
    SmallRun many(deck);
    for (int line = 0; line < 1000; ++line)
        for (int time = 0; time < 1100; ++time)
            NextCard(many.deck, time == 1099 ? 2 : 1);
    EXPECT_EQ(many.deck.CardCounter, 1100000);
}

// Faults: bytes lost or doubled where the deck grows, or where one read ends and the next begins; a deck of unknown size
// refused; a line in the middle not found again.
TEST(Deck, LongDecksComeWholeFromAPipe) {
    const std::string name = testing::TempDir() + "zurt_deck_pipe" + std::to_string(getpid());
    ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
    std::thread writer([&name] {
        std::ofstream pipe(name);
        for (int line = 1; line <= 400000; ++line)
            pipe << line << '\n';
    });
    Deck deck;
    OpenDeck(deck, name);
    writer.join();
    unlink(name.c_str());
    for (int line = 1; line <= 400000; ++line)
        ASSERT_EQ(NextRecord(deck, ""), std::to_string(line));
    EXPECT_EQ(LineCount(deck), 400000);
    for (const Word line : {399999, 2, 200000, 400000})
        EXPECT_EQ(LineText(deck, line), std::to_string(line));
}

// Fault: a deck that ends in comments behind a whole card, and a report that the card took numbers from the next line.
TEST(Deck, TrailOfCardsThatAreTooFew) {
    SmallRun small("3\n1 2\nC the end\n");
    NextCard(small.deck, 2);
    BeginCards(small.deck, "samples", "N", 3, 1);
    NextCard(small.deck, 2);
    CountCards(small.deck, 1);
    EXPECT_LIBRARY_ERROR(NextCard(small.deck, 2), "the deck ends here");
    EXPECT_EQ(TrailOfCards(small.deck, true),
              "line 2 is taken for one of the samples: 1 of 3 have been read (N = 3 on line 1)");
}

// Faults: bytes that upset a terminal, or a whole file, in an error report.
TEST(Deck, ReportsShowAShortPrintableExcerpt) {
    SmallRun small("\x1b[31m" + std::string(200, 'q') + "\n");
    NextCard(small.deck, 2);
    EXPECT_LIBRARY_ERROR(DeckError(small.deck, "Sample card", "FIELD",
                                   "\x07"
                                   "12",
                                   "no number"),
                         "field FIELD: \"\\.12\": no number\n  card: \\.\\[31mq+\\.\\.\\.\n$");
}

} // namespace
} // namespace zurt
