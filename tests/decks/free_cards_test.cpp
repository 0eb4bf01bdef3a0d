// Decks with all their cards free (--free): the same listings as by columns, and models that columns can't number.
#include "support/deck_lines.h"
#include "support/run_deck.h"
#include "support/small_decks.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace zurt_test {
namespace {

RunResult RunFree(const std::string& deck) {
    const std::string folder = MakeTemporaryFolder();
    WriteFile(folder + "/zurt.dat", deck);
    return RunProgram(folder, {{"--free", "zurt.dat"}, ""});
}

// A deck by columns with its items one behind the other; what a card leaves blank, it ends with a slash.
std::string WithFreeCards(const std::string& deck) {
    std::string text;
    int number = 0;
    for (std::string line : SplitDeck(deck)) {
        if (Contains(line, "0-1")) // fields without a blank between them
            line = Replaced(line, "0-1", "0 -1");
        if (++number == 1 || line == "STOP\n") {
            text += line;
            continue;
        }
        for (const DeckItem& item : ItemsOf(line))
            text += (number == 2 && &line[item.begin] == line.data() ? "1"
                                                                     : line.substr(item.begin, item.length)) +
                    " ";
        text += "/\n";
    }
    return text;
}

// The listing without the line that names the format, the clock and the card numbers.
std::string Comparable(const std::string& listing) {
    std::istringstream lines(listing);
    std::string text;
    for (std::string line; std::getline(lines, line);)
        if (!Contains(line, "INDFOR =") && !Contains(line, "TIME AT THE") && !Contains(line, "END OF JOB"))
            text += line + "\n";
    return text;
}

// Faults: a card that still takes columns, fields in another order, a card read twice or passed over, a list that doesn't end.
TEST(FreeCards, GiveTheListingOfColumns) {
    for (const char* name : {"device", "device cards", "device lists", "fibres", "fit", "direct",
                             "radial fibres", "sparse", "steady fixed"}) {
        const std::string deck = SmallDeckText(name);
        const RunResult free = RunFree(WithFreeCards(deck)), fixed = RunWell(deck);
        EXPECT_EQ(free.status, 0) << name << free.errors;
        EXPECT_TRUE(Comparable(free.listing) == Comparable(fixed.listing)) << name;
        EXPECT_TRUE(free.graphics == fixed.graphics) << name;
    }
}

// Each card cut by a slash behind two thirds of its items. Faults: a record that begins with another value than 0, or keeps one of
// the card before.
TEST(FreeCards, FieldsLeftOutAreZero) {
    const std::vector<std::string> lines = SplitDeck(SmallDeckText("free"));
    for (std::size_t card = 2; card + 1 < lines.size(); ++card) {
        const std::vector<DeckItem> items = ItemsOf(lines[card]);
        const std::size_t kept = 2 * items.size() / 3;
        if (items.size() < 3 || (card > 7 && card < 22)) // nodes are alike
            continue;
        std::vector<std::string> cut = lines, zeros = lines;
        cut[card] = zeros[card] = lines[card].substr(0, items[kept].begin);
        cut[card] += "/\n";
        for (std::size_t i = kept; i < items.size(); ++i)
            zeros[card] += i + 1 < items.size() ? "0 " : "0\n";
        const RunResult left = RunDeck(JoinDeck(cut)), given = RunDeck(JoinDeck(zeros));
        EXPECT_EQ(left.status, given.status) << lines[card] << left.errors << given.errors;
        EXPECT_EQ(left.graphics, given.graphics) << lines[card];
        if (card > 7) { // a fault ahead of it leaves the deck repeated
            EXPECT_EQ(Comparable(left.listing), Comparable(given.listing)) << lines[card];
        }
    }
}

// A cube of one brick of 20 nodes with `first` as the number of its first node, its upper corners held; nodes ahead of it
// are held and stand alone.
std::string BrickDeck(int first, bool free) {
    constexpr int kEnds[12][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                  {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
    std::array<std::array<double, 3>, 20> place{};
    for (std::size_t c = 0; c < 8; ++c)
        place[c] = {c % 4 == 0 || c % 4 == 3 ? 1.0 : 0.0, c % 4 < 2 ? 1.0 : 0.0, c < 4 ? 1.0 : 0.0};
    for (std::size_t e = 0; e < 12; ++e)
        for (std::size_t axis = 0; axis < 3; ++axis)
            place[8 + e][axis] = (place[static_cast<std::size_t>(kEnds[e][0])][axis] +
                                  place[static_cast<std::size_t>(kEnds[e][1])][axis]) /
                                 2.0;
    std::string text = "Brick\n" + std::string(free ? "1" : "2") + " 1 0 0\n";
    const auto card = [&](const char* format, auto... values) {
        char line[200];
        std::snprintf(line, sizeof line, format, values..., 0); // cards without values have a value to spare
        text += line;
        text += "\n";
    };
    card("%10d    1    1    1    1    1    0    0    0   -1    0", first + 19);
    card("    1    0    0    9       0.0   1.0e-08    1    0");
    card("    1    0    0       0.0    0");
    card("         1");
    card(" 1.000e-01");
    const char* const node = "%10d%5d     %15.8e%15.8e%15.8e%15.8e%5d";
    if (first > 1) {
        card(free ? "%d %d %g %g %g %g %d" : node, 1, 1, 9.0, 9.0, 9.0, 0.0, 1);
        card(free ? "%d %d %g %g %g %g %d" : node, first - 1, 1, 9.0, 9.0, 9.0, 0.0, 0);
    }
    for (std::size_t i = 0; i < 20; ++i)
        card(free ? "%d %d %g %g %g %g %d" : node, first + static_cast<int>(i), i < 4 ? 1 : 0, place[i][0],
             place[i][1], place[i][2], 0.0, 0);
    card(free ? "0 /" : "");
    card(free ? "0 /" : "");
    card("    3         1    0    0    0    0");
    card(free ? "1 20 0 0 3 3 3" : "    1        20    0    0    3    3    3");
    card(free ? "%d %d %d %d %d %d %d %d %d 0 0 0 0 0 0" : "%8d%8d%8d%8d%8d%8d%8d%8d%8d  0  0  0  0  0  0", 1,
         first, first + 1, first + 2, first + 3, first + 4, first + 5, first + 6, first + 7);
    card(free ? "%d %d %d %d %d %d %d %d %d %d %d %d 0" : "%8d%8d%8d%8d%8d%8d%8d%8d%8d%3d%3d%3d  0",
         first + 8, first + 9, first + 10, first + 11, first + 12, first + 13, first + 14, first + 15,
         first + 16, first + 17, first + 18, first + 19);
    card("    2    0    0    0    0    0");
    card("    1    2");
    card("                 0.0                 1.0");
    card("                10.0                 1.0");
    card(free ? "0 0" : "");
    card("    1    0    0    0    0    0    0    0    0    0    0");
    card("       1.0");
    return text + "STOP\n";
}

// Faults: numbers of four digits that a field of three columns cuts, without a word or under --free.
TEST(FreeCards, MidSideNodesBeyondThreeDigits) {
    const std::vector<double> small = LastConcentrations(RunWell(BrickDeck(1, false)).listing);
    const RunResult large = RunFree(BrickDeck(1001, true));
    EXPECT_EQ(large.status, 0) << large.errors;
    const std::vector<double> values = LastConcentrations(large.listing);
    ASSERT_EQ(values.size(), 1020U);
    EXPECT_EQ(std::vector<double>(values.begin() + 1000, values.end()), small);
    EXPECT_GT(small.at(4), 0.1);
    const RunResult fixed = RunDeck(BrickDeck(1001, false));
    EXPECT_TRUE(Contains(fixed.errors, "a node field of I3 holds at most 999, and NP is 1020; zurt --free"))
        << fixed.errors;
}

// The deck of the manual. Faults: node numbers of six digits that a list of start values cuts. One implicit step of a line from 0 to 1, held at 0,
// that starts with 1 and 0.5; l is the root of D dt.
TEST(FreeCards, StartValuesBeyondFiveDigits) {
    const std::string manual = ReadFile(ZURT_SOURCE_DIR "/docs/manual.md");
    const std::size_t begin = manual.find("Long line\n1 1 0 0\n");
    const RunResult run = RunFree(manual.substr(begin, manual.find("STOP\n", begin) + 5 - begin));
    ASSERT_EQ(run.status, 0) << run.errors;
    const std::vector<double> values = LastConcentrations(run.listing);
    ASSERT_EQ(values.size(), 100001U);
    EXPECT_NEAR(values.at(25000), 1.0 - 1.25 * std::exp(-2.5), 2e-3);
    EXPECT_NEAR(values.at(50000), 0.75 - std::exp(-5.0), 2e-3);
    EXPECT_NEAR(values.at(100000), 0.5 + 0.5 * std::exp(-5.0), 2e-3);
}

} // namespace
} // namespace zurt_test
