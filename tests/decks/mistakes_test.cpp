// docs/mistakes.md walked: each usual mistake in a small deck, its status, and what the user is told. And --check on the same
// decks, and on what only it finds.
#include "support/grid_deck.h"
#include "support/run_deck.h"
#include "support/small_decks.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace zurt_test {
namespace {

struct Mistake {
    std::string what, deck, good, bad;
    std::vector<std::string> options;
    int status;
    std::vector<std::string> lines; // on standard error, in this order
};

std::vector<std::string> Split(const std::string& text, const std::string& by) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t at; (at = text.find(by, begin)) != std::string::npos; begin = at + by.size())
        parts.push_back(text.substr(begin, at - begin));
    parts.push_back(text.substr(begin));
    return parts;
}

// What stands between back quotes, with \n and \t for what they stand for.
std::string Code(const std::string& cell) {
    std::string text = cell.substr(cell.find('`') + 1);
    text.erase(text.rfind('`'));
    for (const auto& [code, stands] : {std::pair<const char*, const char*>{"\\n", "\n"}, {"\\t", "\t"}})
        while (Contains(text, code))
            text = Replaced(text, code, stands);
    return text;
}

std::vector<Mistake> ReadMistakes() {
    std::vector<Mistake> mistakes;
    std::istringstream table(ReadFile(ZURT_SOURCE_DIR "/docs/mistakes.md"));
    for (std::string line; std::getline(table, line);) {
        const std::vector<std::string> cells = Split(line, " | ");
        if (cells.size() != 7 || !Contains(line, "`"))
            continue;
        Mistake mistake{cells[0].substr(2), cells[1], Code(cells[2]), Code(cells[3]), {}, 0, {}};
        if (cells[4] != "-")
            mistake.options = Split(cells[4], " ");
        mistake.status = std::stoi(cells[5]);
        mistake.lines = Split(cells[6].substr(0, cells[6].size() - 2), "<br>");
        mistakes.push_back(mistake);
    }
    return mistakes;
}

RunResult RunOn(const std::string& deck, std::vector<std::string> options) {
    const std::string folder = MakeTemporaryFolder();
    WriteFile(folder + "/zurt.dat", deck);
    options.emplace_back("zurt.dat");
    return RunProgram(folder, {options, ""});
}

int FilesIn(const std::string& folder) {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder))
        ++count;
    return count;
}

// Faults: a place, a range, an order of corners, a node, a card or a count that isn't told, or is another one; a deck that
// --check takes for good though a run stops on it, another line than the run's, a file that the check leaves.
TEST(Mistakes, AsTheManualTells) {
    const std::vector<Mistake> mistakes = ReadMistakes();
    EXPECT_GE(mistakes.size(), 40U);
    for (const Mistake& mistake : mistakes) {
        const std::string deck = Replaced(SmallDeckText(mistake.deck), mistake.good, mistake.bad);
        const RunResult run = RunOn(deck, mistake.options);
        EXPECT_EQ(run.status, mistake.status) << mistake.what << run.errors;
        std::size_t at = 0;
        for (const std::string& line : mistake.lines) {
            at = run.errors.find(line, at);
            ASSERT_NE(at, std::string::npos) << mistake.what << "\n" << line << "\n" << run.errors;
        }
        std::vector<std::string> options = mistake.options;
        options.emplace_back("--check");
        const RunResult check = RunOn(deck, options);
        const std::string error = "zurt: error: deck zurt.dat, line ";
        if (run.errors.find(error) != std::string::npos) {
            const std::string text = run.errors.substr(run.errors.find(error) + error.size());
            const std::size_t comma = text.find(", ");
            const std::string finding = "zurt.dat:" + text.substr(0, comma) + ": " +
                                        text.substr(comma + 2, text.find('\n') - comma - 2);
            EXPECT_TRUE(Contains(check.console, finding)) << mistake.what << finding << check.console;
        }
        EXPECT_EQ(check.status, Contains(mistake.what, "(only in a run)") ? 0 : 1)
            << mistake.what << check.console;
        EXPECT_LE(FilesIn(check.folder), 4) << "the deck and the files of the test";
    }
}

// Faults: an order that the program calls right and is not.
TEST(Mistakes, TheOrderOfCornersIsRight) {
    for (const char* bad :
         {"10 9 13 14 2 1 5 6", "14 13 10 9 6 5 1 2", "13 14 9 10 5 6 1 2", "1 9 14 6 2 13 10 5"}) {
        const std::string good = "14 13 9 10 6 5 1 2 0 0 1 2", words = "right in the order ";
        const auto with = [&](const std::string& order) {
            return Replaced(SmallDeckText("free"), good, order + " 0 0 1 2");
        };
        const std::string errors = RunDeck(with(bad)).errors;
        ASSERT_TRUE(Contains(errors, words)) << errors;
        const std::string told = errors.substr(errors.find(words) + words.size());
        RunWell(with(told.substr(0, told.find('\n'))));
    }
}

// Faults: only the first finding, findings without their line, status 0 with findings or 1 without any, no sizes, other
// counts than the listing's, JSON that a reader of JSON refuses, a message of several lines of which the
// first alone is told.
TEST(Check, AllFindingsAndSizes) {
    for (const SmallDeck& deck : SmallDecks()) {
        const RunResult check = RunOn(deck.text, {"--check"}), run = RunDeck(deck.text);
        const std::string equations = " NUMBER OF EQUATIONS ......................... JEDN =";
        EXPECT_EQ(check.status,
                  CountOf(check.console, "zurt.dat:") > CountOf(check.console, "zurt.dat: problem"))
            << deck.name << check.console;
        EXPECT_EQ(CountOf(check.console, "zurt.dat: problem"), CountOf(run.listing, equations)) << deck.name;
        for (const double count : NumbersBehind(run.listing, equations))
            EXPECT_TRUE(
                Contains(check.console, ": " + std::to_string(static_cast<int>(count)) + " equations"))
                << deck.name << check.console;
    }
    std::string deck = SmallDeckText("free");
    deck = Replaced(deck, "\n1 14 13 9 10 6 5 1 2 0 0 1 2 0 0 \n", "\n1 10 9 13 14 2 1 5 6 0 0 1 2 0 0 \n");
    const std::string shown = RunOn(deck, {"--check"}).console; // the manual's example
    EXPECT_TRUE(Contains(ReadFile(ZURT_SOURCE_DIR "/docs/manual.md"), shown)) << shown;
    deck = Replaced(deck, "\n1000 1", "\n.5 1");
    deck = Replaced(deck, "\n16 1 1 1 2", "\n18 1 1 1 2");
    deck = Replaced(
        deck, "\n16 1 1 0.33333333333333331 0.33333333333333331 0.0 0\n",
        "\n16 1 1 0.33333333333333331 0.33333333333333331 0.0 0\n17 0 9 9 9 0 0\n18 0 1 1 0.333 0 0\n");
    const RunResult check = RunOn(deck, {"--check"});
    EXPECT_EQ(check.status, 1);
    for (const char* words :
         {"zurt.dat:24: node 17 at (9, 9, 9) has an equation, and no element uses it\n",
          "zurt.dat:30: element group 1, element 1, Gauss point 1: the Jacobian's determinant is -",
          "zurt.dat:30: element group 1, element 3, Gauss point 1:",
          "zurt.dat:33: conduction curve 1 reaches from -1000 to 0.5, and values begin at 1"})
        EXPECT_TRUE(Contains(check.console, words)) << words << check.console;
    const std::string twice = Replaced(SmallDeckText("device"), "\n    1         8", "\n    2         8");
    EXPECT_TRUE(Contains(RunOn(twice, {"--check"}).console,
                         ": E R R O R; MATERIAL NUMBER IS GREATER THAN THE TOTAL NUMBER OF MATERIALS; "));
    const RunResult json = RunOn(deck, {"--check", "--json"});
    EXPECT_EQ(json.status, 1);
    WriteFile(json.folder + "/check.json", json.console);
    EXPECT_EQ(
        std::system(
            ("python3 -c \"import json; d = json.load(open('" + json.folder +
             "/check.json')); assert len(d['findings']) == 6 and d['problems'][0]['equations'] == 10, d\"")
                .c_str()),
        0)
        << json.console;
}

// Faults: JSON with bytes of a file's name that are no text, a line or a text that a name of two lines hides.
TEST(Check, NamesOfAnyBytes) {
    const std::string name = "a\"b\\\n\x01\xff\xc3\xa9\xed\xa0\x80.dat";
    const std::string folder =
        FolderWith(name, Replaced(SmallDeckText("free"), "\n12 1 1 0 0.33", "\n12 1 1 O 0.33"));
    const RunResult json = RunProgram(folder, {{"--check", "--json", name}, ""});
    EXPECT_EQ(json.status, 1) << json.errors;
    WriteFile(folder + "/check.json", json.console);
    WriteFile(folder + "/test.py", R"(import json
d = json.load(open("check.json", encoding="utf-8"))
assert d["deck"] == "a\"b\\\n\x01\ufffd\u00e9\ufffd\ufffd\ufffd.dat", d
assert d["findings"][0]["line"] == 19 and "field Y" in d["findings"][0]["text"], d
)");
    EXPECT_EQ(std::system(("cd '" + folder + "' && python3 test.py").c_str()), 0) << json.console;
}

// Fault: in a mesh in the plane under fibres, what ends the reading told once more.
TEST(Check, QuadrilateralsInsideOutUnderFibres) {
    GridDeck grid = Deck(Channel());
    grid.places[2] = {0.0};
    grid.cylinders = {{{0.5, 0.5, 0.0}, {0.5, 0.5, 0.0}, 0.1}};
    std::reverse(grid.places[1].begin(), grid.places[1].end());
    const RunResult check = RunOn(Build(grid), {"--check"});
    EXPECT_EQ(check.status, 1) << check.errors;
    EXPECT_EQ(CountOf(check.console, "the Jacobian's determinant is"), CountOf(check.console, "zurt.dat:"))
        << check.console;
}

} // namespace
} // namespace zurt_test
