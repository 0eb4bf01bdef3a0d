// Decks with one fault each: every fault ends the run with status 2 and a report on standard error that says where the deck
// is wrong, or with the message that belongs to it (most of these: stops_test.cpp). And hundreds of decks with a bad field or
// no end: a crash, a hang, a read of foreign memory, endless memory.
#include "orderly_end.h"
#include "support/bar_deck.h"
#include "support/deck_lines.h"
#include "support/small_decks.h"

#include <algorithm>
#include <filesystem>
#include <random>

namespace {

using namespace zurt_test;

constexpr std::size_t kAll = 99; // no item: all that stands there

struct Fault {
    const char* deck;  // a small deck
    const char* good;  // stands once in it
    std::size_t item;  // of that, from 0
    const char* bad;   // what stands there instead
    std::string words; // on the listing for status 0, else on standard error
    int status = 2;
};

std::string Damaged(const Fault& fault) {
    const std::string deck = SmallDeckText(fault.deck), good = fault.good;
    EXPECT_EQ(CountOf(deck, good), 1) << fault.deck << ": " << good;
    return Replaced(deck, good,
                    fault.item == kAll ? fault.bad : WithItem(good, ItemsOf(good).at(fault.item), fault.bad));
}

void ExpectFault(const Fault& fault) {
    const RunResult run = RunDeck(Damaged(fault), kSecondsToEnd);
    const std::string what = std::string(fault.deck) + ": " + fault.good + fault.bad;
    ExpectOrderlyEnd(run, what);
    EXPECT_EQ(run.status, fault.status) << what << "\n" << run.errors;
    const std::string& report = fault.status == 0 ? run.listing : run.errors;
    EXPECT_TRUE(Contains(report, fault.words))
        << what << "\n"
        << run.errors
        << run.listing.substr(run.listing.size() - std::min<std::size_t>(run.listing.size(), 600));
}

template <std::size_t N> void ExpectFaults(const Fault (&faults)[N]) {
    for (const Fault& fault : faults)
        ExpectFault(fault);
    ExpectLittleMemory();
}

constexpr const char* kOverflow = "UNSUFFICIENT DIMENSION OF WORKING VECTOR A FOR READ IN INPUT DATA";

constexpr std::size_t kStride = kSanitized ? 5 : 1;

bool BeginsWith(const std::string& text, const std::string& head) {
    return text.compare(0, head.size(), head) == 0;
}

/// Cuts a deck behind every line and in the middle of every line, in sanitized runs, which take long, of some. What a cut
/// run lists is the head of what the whole deck lists, and with each line there is no less of it.
void ExpectCutsReported(const std::string& name) {
    const std::vector<std::string> lines = SplitDeck(SmallDeckText(name));
    const std::string whole = RunDeck(SmallDeckText(name), kSecondsToEnd).listing;
    std::size_t listed = 0;
    for (std::size_t n = 0; n < lines.size(); ++n) {
        if (n % kStride != 0 && n + 1 < lines.size())
            continue;
        const std::string head = JoinDeck({lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(n)});
        const std::string where = name + ", " + std::to_string(n) + " lines";
        const RunResult run = RunDeck(head, kSecondsToEnd);
        ExpectOrderlyEnd(run, where);
        EXPECT_EQ(run.status, 2) << where;
        EXPECT_TRUE(Contains(run.errors, "deck zurt.dat, line " + std::to_string(n) + ", ")) << run.errors;
        EXPECT_TRUE(Contains(run.errors, "the deck ends here")) << run.errors;
        EXPECT_TRUE(BeginsWith(whole, run.listing)) << where;
        EXPECT_GE(run.listing.size(), listed) << where;
        listed = run.listing.size();
        ExpectOrderlyEnd(RunDeck(head + lines[n].substr(0, lines[n].size() / 2), kSecondsToEnd),
                         where + " and a half");
    }
    EXPECT_GT(2 * listed, whole.size()) << "results of the last problem are listed ahead of its end";
}

TEST(Damaged, DecksCutAnywhere) {
    for (const char* name : {"free", "device lists", "built-in"})
        ExpectCutsReported(name);
}

/// Calls for every item of the deck but those of the title, of the last line and of most lines that follow others like
/// them (node cards); sanitized runs, which take long, for some of them.
template <class Action> void ForEachItem(const std::vector<std::string>& lines, const Action& action) {
    std::size_t seen = 0, alike = 0;
    for (std::size_t n = 1; n + 1 < lines.size(); ++n) {
        const std::vector<DeckItem> items = ItemsOf(lines[n]);
        alike = ItemsOf(lines[n - 1]).size() == items.size() ? alike + 1 : 0;
        if (alike > 2)
            continue;
        for (const DeckItem& item : items)
            if (seen++ % kStride == 0)
                action(n, item);
    }
}

// Faults: a field that takes a letter for a number, or names another line; a count that is believed: endless loops, memory
// without end, sizes that overflow.
TEST(Damaged, LettersAndHugeNumbersInAnyField) {
    for (const char* name : {"free", "built-in", "quadrilaterals", "device lists"}) {
        const std::vector<std::string> lines = SplitDeck(SmallDeckText(name));
        ForEachItem(lines, [&](std::size_t n, const DeckItem& item) {
            const std::string what = name + (": " + lines[n]);
            std::vector<std::string> bad = lines;
            bad[n] = WithItem(lines[n], item, "x");
            const RunResult run = RunDeck(JoinDeck(bad), kSecondsToEnd);
            ExpectOrderlyEnd(run, what);
            EXPECT_EQ(run.status, 2) << what;
            for (const std::string& words : {"deck zurt.dat, line " + std::to_string(n + 1) + ", ",
                                             std::string(", field "), std::string("x\"")})
                EXPECT_TRUE(Contains(run.errors, words)) << what << run.errors;
            bad[n] = WithItem(lines[n], item, "2000000000");
            ExpectOrderlyEnd(RunDeck(JoinDeck(bad), kSecondsToEnd), what);
        });
    }
    ExpectLittleMemory();
}

TEST(Damaged, Counts) {
    constexpr const char* kBasic = "16 1 1 1 2 1 0 3 0 1 0 ";
    constexpr const char* kMaterials = "0 1 2 0 1 1 ";
    constexpr const char* kBoundary = "1 0 0 0 0 0 0 1 3 0 0 ";
    constexpr const char* kCurves = "    2    0    0    0    0    0\n";
    ExpectFaults({
        {"free", kBasic, 0, "2000000000", kOverflow, 0},
        {"free", kBasic, 0, "17", "line 24, Node card, field N: \"0\""},
        {"free", kBasic, 2, "-1", "field NMATT: \"-1\""},
        {"free", kBasic, 4, "-2", "field NPER: \"-2\""},
        {"free", kBasic, 1, "-1", "field NGET: \"-1\": a negative count"},
        {"free", "2 1 \n", 0, "2147483646",
         " REQUIRED DIMENSION, LMAX =2147483652\n AVAILABLE DIMENSION, NTOTA= 120000000\n", 0},
        {"free", "2 1 \n", kAll, "2000000000 2000000000\n",
         "the periods have more steps than can be counted"},
        {"free", "1 0 0 0. 0\n", 4, "-1", "field PotentialFunctionSize: \"-1\""},
        {"free", "3 3 0 0 0 0 ", 1, "-3", "Element group card, field NET: \"-3\""},
        {"free", kMaterials, kAll, "0 2000000000 2000000000 0 1 2000000000 ", kOverflow, 0},
        {"free", kMaterials, 1, "-1", "a negative count has no meaning here"},
        {"sources", kBoundary, kAll, "1 0 0 0 0 0 0 2000000000 2000000000 0 0 ", kOverflow, 0},
        {"sources", kBoundary, 8, "-3", "field MAXTQE: \"-3\""},
        {"sources", kBoundary, 0, "2000000000", "Initial value "},
        {"device", kCurves, kAll, "99999    0    0    0    0    0\n", "END OF JOB", 0},
        {"device", kCurves, 0, "-2", "field MAXPMAT"},
        {"device lists", "    2    0    0    0    0    0    0    2    2    0    0\n", kAll,
         "99999    0    0    0    0    0    0    2    2    0    0\n", "Initial value group"},
        {"device lists", "    6    1   10\n", 2, "17", "Initial value range, field N2: \"17\""},
        {"device lists", "    1    2    3    4    5    0\n", 2, "-3", "field NODE: \"-3\""},
    });
}

TEST(Damaged, NodesAndElements) {
    constexpr const char* kElement = "1 14 13 9 10 6 5 1 2 0 0 1 2 0 0 ";
    constexpr const char* kMiddles = "29 25 21 26 10 6 2 7 18 17 14 15 0 ";
    ExpectFaults({
        {"free", "16 1 1 0.3", 0, "17",
         "line 23, Node card, field N: \"17\": the number must lie between 1 and 16"},
        {"free", "16 1 1 0.3", 0, "0", "line 23, Node card, field N: \"0\""},
        {"free", "15 0 0.66666666666666663 0.33333333333333331 0.33333333333333331 0.0 0", 6, "-2000000000",
         "Node card"},
        {"free", "6 0 0.33333333333333331 ", 2, "0.3e333",
         "deck zurt.dat, line 13, Node card, field X: \"0.3e333\": a finite number"},
        {"free", kElement, 8, "0", "3D element card, field node 8: \"0\": element 1"},
        {"free", kElement, 1, "17", "field node 1: \"17\""},
        {"free", kElement, 11, "2", "field node 1: \"18\": element 3, generated from the card of element 1"},
        {"free", kElement, 11, "-1", "field node 7: \"0\": element 2"},
        {"free", kElement, 11, "2147483647", "\"2147483661\""},
        {"free", kElement, 0, "0", "field NN: \"0\""},
        {"free", "16 1 1 1 2 1 0 3 0 1 0 ", 8, "3",
         " ELEMENT....................       1\n ELEMENT....................       2\n", 0},
        {"free", "1 1 8 0 0 0 0 0 ", 6, "6", "3D group card, field NGAUSY: \"6\""},
        {"free", "3 3 0 0 0 0 \n1 1 8 0 0 0 0 0 \n1 14 13 9 10 6 5 1 2 0 0 1 2 0 0 \n", kAll,
         "3 0 0 0 0 0 \n1 1 8 0 0 0 0 0 \n", "PIVOT NIJE POZITIVAN ZA JEDNACINU BR.   1", 0},
        {"fixed", "       2      15      14", 0, "1", "element group 1: element 2 has no card"},
        {"steady free", kMiddles, 11, "33", "3D mid-side node card, field node 20: \"33\""},
        {"steady free", kMiddles, 12, "-1", "field node 21: \"-1\""},
        {"device", "       2  0  1  1  2  0  0", 1, "-1", "field MAT: \"-1\""},
        {"device", "    1         8    0    0    0    0    0", 0, "-1",
         "3D group card, field MAT3DD: \"-1\""},
        {"fibres", "       2  0  0  1  2  0  0", kAll,
         "       2  0  0  1  1  0  0\n       2      15      14      10      11       7       6       2       "
         "3",
         "element group 1: element 3 has no card"},
    });
}

TEST(Damaged, Materials) {
    constexpr const char* kHeader = "1 3 2 1 1 2\n";
    constexpr const char* kPlain =
        "0 1 2 0 1 1 \n1 0 0 1. 1. 1. 1. 1e6 -1e6\n1 2 \n-1000 1 \n1000 1 \n1 1 \n0 1 \n";
    constexpr const char* kFirst = "1 2 3 1. 1.";
    ExpectFaults({
        {"built-in", kFirst, 0, "4", "Material card, field NFUN: \"4\": there is no such function"},
        {"built-in", kFirst, 0, "-1", "field NFUN: \"-1\""},
        {"built-in", kFirst, 0, "0", "material 1 has no conduction function for its first axis"},
        {"built-in", kHeader, 2, "0", "MAXIMAL NUMBER POINTS ON CURVE , MAXTK =  0", 0},
        {"built-in", kHeader, 1, "2", "field NFUN: \"3\""},
        {"built-in", kHeader, 4, "2", "Specific heat curve header, field N: \"0\""},
        {"built-in", "3 1\n0. 3.", 0, "4", "Conduction function header, field N: \"4\""},
        {"built-in", "3 1\n0. 3.", kAll, "3 -1\n0. 3.", "field P: \"-1\""},
        {"built-in", "9. 2.\n3", 0, ".5", "DIFFUSION COEFICIENT - CONCENTRATION,  NO. =    2", 0},
        {"built-in", "2 2\n-9. 2.\n9. 2.\n0", 0, "3", "Specific heat curve header, field N: \"3\""},
        {"built-in", "16 1 2 1 2 1 1 3", 3, "-1", "a negative NSTAC leaves no room for them"},
        {"free", kPlain, kAll, "0 1 2 0 0 0 \n1 0 0 1. 1. 1. 1. 1e6 -1e6\n1 2 \n-1000 1 \n1000 1 \n",
         "material 1 has no capacity curve"},
        {"device", "    1    2\n   -1.0", 0, "2", "Diffusion curve header, field N: \"2\""},
        {"device", "    1    2\n   -1.0", kAll, "    1    3\n   -1.0", "MAXPMAT = 2 points a curve"},
        {"device", "    1    2\n   -1.0", 0, "-1", "field N: \"-1\""},
        {"device", "    1.0000000000e+03    1.0000000000e+00\n", 0, "0.5000000000e+00",
         " CURVE ARGUMENT IS OUT OF RANGE\n DIFFUSION COEFICIENT - CONCENTRATION,  NO. =    1\n"
         " CONCENTRARION,  CONC =  7.8868E-01\n S T O P\n  CHECK: INPUT DATA FOR DIFFUSION COEFFICIENT\n"
         " AND BOUNDARY CONDITIONS FOR INLET AND OUTLET RESERVOIRS\n",
         0},
    });
}

TEST(Damaged, FunctionsAndSurfaces) {
    constexpr const char* kCurve = "1 3 \n0 1 \n";
    constexpr const char* kSide = "1 4 1 1 1 1 1 0\n";
    ExpectFaults({
        {"sources", kCurve, 0, "2", "Function header card, field F: \"2\""},
        {"sources", kCurve, 1, "0", "a function needs at least one point"},
        {"sources", "1 14 13 9 10 6 5 1 2 0 1 ", 10, "2",
         "element group 1: element 1 asks for source curve 2, but there are 1"},
        {"device lists", "    2    1\n       9.0", 0, "3", "Function header card, field F: \"3\""},
        {"quadrilaterals", "\n2 3 6 0 0 0 0 0\n", kAll, "\n3 3 6 0 0 0 0 0\n",
         "2D surface card, field NE: \"3\""},
        {"quadrilaterals", kSide, 3, "2", "field FLUX: \"2\""},
        {"quadrilaterals", kSide, 4, "2", "field CONV: \"2\""},
        {"quadrilaterals", kSide, 5, "2", "field ENVI: \"2\""},
        {"quadrilaterals", kSide, 6, "2", "field EMIS: \"2\""},
        {"quadrilaterals", kSide, 7, "77", "END OF JOB", 0}, // no term reads the last one
    });
}

TEST(Damaged, Rubbish) {
    std::mt19937 random(1);
    std::string noise;
    for (int i = 0; i < 20000; ++i)
        noise += static_cast<char>(random() & 255U);
    const std::string good = SmallDeckText("free");
    const std::string title = "Block of bricks\n";
    const std::string longLine(10000, '7');
    const std::string decks[] = {"",
                                 "\n",
                                 "STOP\n",
                                 noise,
                                 std::string(5000, '\0'),
                                 std::string(5000, '\n'),
                                 "\xef\xbb\xbf" + good,
                                 title + noise,
                                 title + longLine + "\n",
                                 title + "1 " + longLine + "\n",
                                 title + "1 0 0 0" + longLine + "\n" + longLine,
                                 title + std::string(10000, ',') + "\n" + std::string(10000, ';'),
                                 title + "4*1\n200000000*1\n",
                                 title + "4*1\n200000001*1\n",
                                 title + "4*1\n99999999999999999999*1\n",
                                 title + "1 0 0 0\n11*\n",
                                 title + "/\n/\n/\n/\n/\n/\n",
                                 title + "1 0 0 0\n16 1 1 1 /\n/\n/\n",
                                 std::string(300000, 'C') + "\n" + good};
    int number = 0;
    for (const std::string& deck : decks) {
        const RunResult run = RunDeck(deck, kSecondsToEnd);
        ExpectOrderlyEnd(run, "deck " + std::to_string(++number));
        EXPECT_LT(run.errors.size(), 500U) << "a report shows no more than a piece of a line";
    }
    for (const std::string name : {"/dev/zero", "/proc/self/mem"}) { // decks without an end
        const RunResult run = RunInFolder(MakeTemporaryFolder(), name + "\n", kSecondsToEnd);
        EXPECT_EQ(run.status, 2) << name;
        EXPECT_TRUE(Contains(run.errors, "can't read the deck " + name)) << run.errors;
    }
    ExpectLittleMemory();
}

// Faults: a read that waits for a card which no read consumes; the fields of the problem before taken for indices.
TEST(Damaged, UnknownFormatIndicator) {
    for (const char* format : {"3 0 0 0\n", "-1 1 0 0\n", "2000000000 3 1 2\n"}) {
        RunResult run = RunDeck(Damaged({"free", "1 0 0 0\n", kAll, format, ""}), kSecondsToEnd);
        ExpectOrderlyEnd(run, format);
        const std::string head = "Second block\n";
        run = RunDeck(Replaced(SmallDeckText("two free"), head + "1 0 0 0\n", head + format), kSecondsToEnd);
        ExpectOrderlyEnd(run, format);
        EXPECT_EQ(run.status, 2) << run.errors;
        EXPECT_EQ(CountOf(run.listing, "E X E C U T I O N    T I M I N G"), 1);
    }
}

TEST(Damaged, ExecutionIndicator) {
    for (const char* card : {"-5 0 2000000000 1e300 0\n", "1 -3 0 0. 0\n", "1 2000000000 0 0. 2000000000\n"})
        ExpectFaults({{"free", "1 0 0 0. 0\n", kAll, card, "END OF JOB", 0}});
}

// Faults: results of a good problem lost with the bad one behind it; a report without the line in the whole deck.
TEST(Damaged, SecondProblem) {
    const std::string good = SmallDeckText("two fixed");
    std::vector<std::string> lines = SplitDeck(good);
    const auto ahead = static_cast<std::size_t>(CountOf(good.substr(0, good.find("Second block")), "\n"));
    lines.at(ahead + 8) = "       999\n";
    const RunResult run = RunDeck(JoinDeck(lines), kSecondsToEnd), whole = RunWell(good);
    EXPECT_EQ(run.status, 2);
    const std::string place = "deck zurt.dat, line " + std::to_string(ahead + 9);
    EXPECT_TRUE(Contains(run.errors, place + ", Node card, field N: \"999\"")) << run.errors;
    EXPECT_TRUE(BeginsWith(whole.listing, run.listing));
    EXPECT_TRUE(BeginsWith(whole.graphics, run.graphics));
    EXPECT_EQ(CountOf(run.listing, "E X E C U T I O N    T I M I N G"), 1);
    EXPECT_EQ(CountOf(whole.listing, "E X E C U T I O N    T I M I N G"), 2);
}

} // namespace
