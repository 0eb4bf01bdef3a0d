#include "input/card.h"
#include "support/small_run.h"

namespace zurt {
namespace {

using namespace zurt_test;

struct Sample {
    std::int32_t N = -7;
    double X[2] = {-7.0, -7.0};
    std::int32_t COUNT = -7;
};

constexpr CardField kSampleFields[] = {
    ZURT_INTEGER(Sample, N, "I5", ""),
    ZURT_BLANKS("3X"),
    ZURT_REAL(Sample, X, "F10.2", ""),
    ZURT_COUNT(Sample, COUNT, "I5", ""),
};
const CardLayout kSample = Layout("Sample card", kSampleFields);

Sample ReadSample(const std::string& deck, std::int32_t INDFOR) {
    SmallRun small(deck);
    Sample sample;
    ReadCardFields(small.deck, INDFOR, kSample, &sample);
    return sample;
}

void ExpectSample(const Sample& sample, std::int32_t N, double X1, double X2, std::int32_t COUNT) {
    EXPECT_EQ(sample.N, N);
    EXPECT_EQ(sample.X[0], X1);
    EXPECT_EQ(sample.X[1], X2);
    EXPECT_EQ(sample.COUNT, COUNT);
}

// Faults: columns miscounted over blanks or over an array, a blank field that keeps the old value, implied decimals
// given to a number with a point or an exponent, a short card read past its end.
TEST(Card, ByColumns) {
    ExpectSample(ReadSample("  -12###       150      1.50   34\n", 2), -12, 1.5, 1.5, 34);
    ExpectSample(ReadSample("\n", 2), 0, 0.0, 0.0, 0);
    ExpectSample(ReadSample("    1         1E3    -.5D+2", 2), 1, 1000.0, -50.0, 0);
    ExpectSample(ReadSample("C comment\n    9\n", 2), 9, 0.0, 0.0, 0);
}

// Faults: repeats, null values and the slash not honoured; items behind the last one taken for the next card.
TEST(Card, ByList) {
    ExpectSample(ReadSample("3, 2*1.5 8 left over\n", 1), 3, 1.5, 1.5, 8);
    ExpectSample(ReadSample("3,,2.5,\n8\n", 1), 3, -7.0, 2.5, 8);
    ExpectSample(ReadSample("3 1.5 /\n", 1), 3, 1.5, -7.0, -7);
    SmallRun small("1 2. 3. 4 junk\n5 6. 7. 8\n");
    Sample sample;
    ReadCardFields(small.deck, 1, kSample, &sample);
    ReadCardFields(small.deck, 1, kSample, &sample);
    ExpectSample(sample, 5, 6.0, 7.0, 8);
    EXPECT_EQ(small.deck.CardCounter, 2);
}

// Faults: lines on which a list-directed read goes on are counted as cards, or looked at for comments.
TEST(Card, ContinuationLinesAreNeitherCountedNorComments) {
    SmallRun small("C comment\n1\n\n2.5\n3.5 4\nnext\n");
    Sample sample;
    ReadCardFields(small.deck, 1, kSample, &sample);
    ExpectSample(sample, 1, 2.5, 3.5, 4);
    EXPECT_EQ(small.deck.CardCounter, 2);
    EXPECT_EQ(NextRecord(small.deck, "Sample card"), "next");
    EXPECT_LIBRARY_ERROR(ReadSample("1\nC comment\n2.5 3.5 4\n", 1),
                         "line 2, Sample card, field X: \"C\": a number is expected");
}

// Faults: fields read under an unknown format indicator; the card consumed or not counted by it.
TEST(Card, UnknownIndicatorReadsNothing) {
    SmallRun small("1 2. 3. 4\n");
    Sample sample;
    std::int32_t number = -7;
    ReadCardFields(small.deck, 3, kSample, &sample);
    ReadNumberCards(small.deck, 3, "Sample cards", "N", ZURT_DESCRIPTOR(std::int32_t, "I5"), 1,
                    IntArray(&number, 1));
    ReadNumberCards(small.deck, 0, "Sample cards", "X", ZURT_DESCRIPTOR(double, "F5.0"), 1,
                    RealArray(sample.X, 2));
    ExpectSample(sample, -7, -7.0, -7.0, -7);
    EXPECT_EQ(number, -7);
    EXPECT_EQ(small.deck.CardCounter, 3);
    EXPECT_EQ(small.deck.nextLine, 0);
}

// Faults: a field that does not convert is taken as 0 or ends the run without its name, line and text.
TEST(Card, ErrorsNameTheField) {
    EXPECT_LIBRARY_ERROR(ReadSample("   1x\n", 2),
                         "line 1, Sample card, field N: \"   1x\": an integer is expected\n  card:    1x");
    EXPECT_LIBRARY_ERROR(ReadSample("    1         abc\n", 2), "field X: .*: a number is expected");
    EXPECT_LIBRARY_ERROR(ReadSample("C\n 1.5 2. 3. 4\n", 1),
                         "line 2, Sample card, field N: \"1.5\": an integer is expected");
    EXPECT_LIBRARY_ERROR(ReadSample("1 2. x3 4\n", 1), "field X: \"x3\": a number is expected");
    EXPECT_LIBRARY_ERROR(ReadSample("1 2. 3.\n", 1), "line 1, Sample card: the deck ends here");
    EXPECT_LIBRARY_ERROR(ReadSample("99999999999 2. 3. 4\n", 1),
                         "field N: \"99999999999\": the number is too large");
    EXPECT_LIBRARY_ERROR(ReadSample("1 inf 3. 4\n", 1), "field X: \"inf\": a finite number");
    EXPECT_LIBRARY_ERROR(ReadSample("1 2. 3. -4\n", 1), "field COUNT: \"-4\": a negative count");
    EXPECT_LIBRARY_ERROR(ReadSample("                               -1\n", 2), "field COUNT: \"-1\": a neg");
}

// Fault: a card that is always taken by columns fails in a free format deck without the hint that such decks are fixed
// format decks.
TEST(Card, ImageCardsSayThatTheyAreTakenByColumns) {
    SmallRun bad("x\n");
    Sample sample;
    EXPECT_LIBRARY_ERROR(ReadImageFields(bad.deck, 1, kSample, &sample),
                         "an integer is expected; some cards are always taken by columns");
    SmallRun fixed("x\n");
    EXPECT_LIBRARY_ERROR(ReadImageFields(fixed.deck, 2, kSample, &sample), "an integer is expected\n");
}

// Faults: a table's cards cut at the wrong count, comments between them taken as data, a list-directed table read card
// by card instead of in one statement.
TEST(Card, TablesOfNumbers) {
    const auto real = ZURT_DESCRIPTOR(double, "F5.1");
    const auto integer = ZURT_DESCRIPTOR(std::int32_t, "I5");
    std::vector<double> values(5);
    SmallRun fixed("  1.0  2.0\nC comment\n  3.0   40\n  5.0  9.0\nnext\n");
    ReadNumberCards(fixed.deck, 2, "Sample cards", "X", real, 2, View(values));
    EXPECT_EQ(values, (std::vector<double>{1, 2, 3, 4, 5}));
    EXPECT_EQ(fixed.deck.CardCounter, 4);
    std::vector<std::int32_t> numbers(5);
    SmallRun free("1 2\n3*7 9\nnext\n");
    ReadNumberCards(free.deck, 1, "Sample cards", "N", integer, 2, View(numbers));
    EXPECT_EQ(numbers, (std::vector<std::int32_t>{1, 2, 7, 7, 7}));
    EXPECT_EQ(free.deck.CardCounter, 1);
    EXPECT_EQ(NextRecord(free.deck, "Sample cards"), "next");
    SmallRun bad("    1    x\n");
    EXPECT_LIBRARY_ERROR(ReadNumberCards(bad.deck, 2, "Sample cards", "N", integer, 2, View(numbers)),
                         "line 1, Sample cards, field N: \"    x\"");
}

// Faults: an index of 0 or one past the end let through, or a good one refused.
TEST(Card, IndicesOutsideTheirArrayEndTheRun) {
    SmallRun small("1\n");
    RequireIndex(small.deck, "Sample card", "N", 1, 4);
    RequireIndex(small.deck, "Sample card", "N", 4, 4);
    for (const std::int32_t value : {0, 5, -1})
        EXPECT_LIBRARY_ERROR(RequireIndex(small.deck, "Sample card", "N", value, 4),
                             "must lie between 1 and 4");
}

} // namespace
} // namespace zurt
