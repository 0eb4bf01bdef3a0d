// The console dialogue and the files of a run, through the real binary.
#include "support/bar_deck.h"
#include "support/run_deck.h"

#include <filesystem>

namespace zurt_test {
namespace {

namespace fs = std::filesystem;

std::string ShortDeck(int NULAZ = 3, int NPRINT = 1, int IGRAF = 1) {
    BarDeck bar;
    bar.nx = 2;
    bar.periods = {{1, 0.5}};
    bar.NULAZ = NULAZ;
    bar.NPRINT = NPRINT;
    bar.IGRAF = IGRAF;
    return Build(bar);
}

std::string ShortDeckIn(const std::string& name) {
    return FolderWith(name, ShortDeck());
}

void ExpectRefused(const RunResult& run, const std::string& words) {
    EXPECT_EQ(run.status, 2) << words;
    EXPECT_TRUE(Contains(run.errors, words)) << run.errors;
}

struct NameCase {
    const char *answer, *deck, *listing, *graphics;
};

// Faults: extensions in the wrong case, the base cut at the last point or kept whole, a blank ahead of the point taken
// for the end of the name, the name or its default cut or padded at 20 characters.
TEST(Dialogue, DefaultNamesFollowTheDeck) {
    const NameCase cases[] = {
        {"", "zurt.dat", "zurt.lst", "zurt.unv"},
        {"   ", "zurt.dat", "zurt.lst", "zurt.unv"},
        {"deck.txt", "deck.txt", "deck.lst", "deck.unv"},
        {"DECK", "DECK", "DECK.LST", "DECK.UNV"},
        {"Deck.a.b", "Deck.a.b", "Deck.LST", "Deck.UNV"},
        {"1DECK.DAT", "1DECK.DAT", "1DECK.lst", "1DECK.unv"},
        {"abcdefghijklmnopqrst", "abcdefghijklmnopqrst", "abcdefghijklmnopqrst.lst",
         "abcdefghijklmnopqrst.unv"},
        {"Abcdefghijklmnopqrstuvw", "Abcdefghijklmnopqrst", "Abcdefghijklmnopqrst.LST",
         "Abcdefghijklmnopqrst.UNV"},
        {"my deck.dat  ", "my deck.dat", "my deck.lst", "my deck.unv"},
        {"my deck", "my deck", "my.lst", "my.unv"},
        {"deck.txt\r", "deck.txt", "deck.lst", "deck.unv"},
    };
    for (const NameCase& test : cases) {
        const std::string folder = ShortDeckIn(test.deck);
        const RunResult result = RunInFolder(folder, std::string(test.answer) + "\n\n\n");
        EXPECT_EQ(result.status, 0) << test.answer << result.errors;
        EXPECT_EQ(CountOf(result.errors, "up to 20 characters"),
                  std::string(test.answer).size() > 20 ? 1 : 0);
        EXPECT_EQ(result.console.find("   INPUT FILE NAME   <zurt.dat>\n   OUTPUT FILE NAME   <" +
                                      std::string(test.listing) + ">\n   OUTPUT GRAPHICS FILE NAME   <" +
                                      test.graphics + ">\n"),
                  0u)
            << result.console;
        EXPECT_TRUE(fs::exists(folder + "/" + test.listing)) << test.answer;
        EXPECT_TRUE(fs::exists(folder + "/" + test.graphics)) << test.answer;
    }
}

// Faults: a file that exists replaced without asking or after another answer than D, d or ENTER; the name not asked
// again; the question worded otherwise; the graphics file without a question of its own, or with the listing's default.
TEST(Dialogue, OverwriteQuestion) {
    const std::string question = " ALREADY EXISTS\n\n                 PRESS \"ENTER\" TO DELETE OR\n"
                                 "                 KEY   \"N\"     TO BYPASS\n";
    for (const bool graphics : {false, true})
        for (const std::string answer : {"", "D", "d", "  ", "delete", "N", "n", "x", "ND"}) {
            SCOPED_TRACE(answer);
            const bool kept = answer.find_first_of("Nnx") != std::string::npos;
            const std::string name = graphics ? "zurt.unv" : "zurt.lst", folder = ShortDeckIn("zurt.dat");
            WriteFile(folder + "/" + name, "precious\n");
            const std::string ahead = graphics ? "\n\n\n" : "\n\n", again = "\n" + answer + "\nother\n\n";
            const RunResult result = RunInFolder(folder, ahead + answer + "\n" + (kept ? again : "\n"));
            EXPECT_EQ(result.status, 0) << result.errors;
            EXPECT_EQ(CountOf(result.console, "   FILE    " + name + question), kept ? 2 : 1);
            EXPECT_EQ(CountOf(result.console, " FILE NAME   <" + name + ">\n"), kept ? 3 : 1);
            const std::string words = graphics ? "CVORNE KONCENTRACIJE" : "VERSION  1.00";
            EXPECT_EQ(CountOf(ReadFile(folder + (kept ? "/other" : "/" + name)), words), 1);
            EXPECT_EQ(CountOf(ReadFile(folder + "/" + name), "precious"), kept ? 1 : 0);
        }
}

// Faults: names asked or the banner written again, files begun anew by the second problem; its card not read again as
// the title under free format; card numbers or messages that start anew.
TEST(Dialogue, SecondProblemAsksNothing) {
    BarDeck bar;
    bar.nx = 2;
    bar.periods = {{1, 0.5}};
    bar.title = "First of two";
    bar.end = "";
    bar.NULAZ = 1;
    std::string deck = Build(bar);
    bar.title = "Second of two";
    bar.end = "STOPPED\n";
    deck += Build(bar);
    const RunResult result = RunWell(deck);
    EXPECT_EQ(CountOf(result.console, " FILE NAME "), 3);
    EXPECT_EQ(CountOf(result.listing, "VERSION  1.00"), 1);
    EXPECT_EQ(CountOf(result.listing, "\n Second of two  "), 1);
    EXPECT_EQ(CountOf(result.listing, "E X E C U T I O N    T I M I N G"), 2);
    EXPECT_EQ(CountOf(result.listing, "E N D   O F   I N P U T"), 1); // the whole deck, once
    EXPECT_EQ(CountOf(result.listing, " Second of two  "), 2);
    EXPECT_EQ(CountOf(result.graphics, "First of two  "), 4);
    EXPECT_EQ(CountOf(result.graphics, "Second of two  "), 4);
    EXPECT_EQ(result.messages, "      \n      \n");
    EXPECT_EQ(result.mass,
              " NUMBER OF TIME STEPS, POROSITY\n         1   0.10000D+01\n VALUES OF DIFFUSION COEFFICIENTS\n"
              "          C            Dbulk(C)         Deqv(C)\n");
}

// Faults: the separator card of a fixed deck read again as a title; "STOP" looked for beyond the first four columns, in
// small letters or as a whole word.
TEST(Dialogue, CardBehindAProblem) {
    BarDeck bar;
    bar.nx = 2;
    bar.periods = {{1, 0.5}};
    bar.fixedFormat = true;
    bar.title = "First of two";
    bar.end = " STOP and stop\n";
    std::string deck = Build(bar);
    bar.title = "Second of two";
    bar.NULAZ = 1; // the deck is listed and put back in the midst of the second problem
    bar.end = "STOP\nno card of the deck\n";
    const RunResult result = RunWell(deck + Build(bar));
    EXPECT_EQ(CountOf(result.listing, "\n First of two  "), 1);
    EXPECT_EQ(CountOf(result.listing, "\n    1 First of two  "), 1);
    EXPECT_EQ(CountOf(result.listing, "\n Second of two  "), 1);
    EXPECT_EQ(CountOf(result.listing, "E X E C U T I O N    T I M I N G"), 2);

    bar.NULAZ = 3;
    bar.end = "stop\n";
    const RunResult small = RunDeck(Build(bar));
    ExpectRefused(small, "Title card: the deck ends here");
    EXPECT_EQ(CountOf(small.listing, "E X E C U T I O N    T I M I N G"), 1);
}

// Faults: a listing opened or asked for when neither input nor results are to be printed, a failure for want of it;
// none opened when one of the two is; echoes in spite of a negative NULAZ.
TEST(Dialogue, RunsWithoutAListing) {
    const RunResult none = RunWell(ShortDeck(-1, -1)), results = RunWell(ShortDeck(-1, 1)),
                    input = RunWell(ShortDeck(2, -1, -1));
    EXPECT_EQ(none.console.find("   INPUT FILE NAME   <zurt.dat>\n"
                                " NO PRINTOUT INPUT DATA FOR PROBLEM UNDER TITLE \"Block of bricks" +
                                std::string(78 - 15, ' ') +
                                "\"\n   OUTPUT GRAPHICS FILE NAME   <zurt.unv>\n"),
              0u)
        << none.console;
    EXPECT_FALSE(fs::exists(none.folder + "/zurt.lst"));
    EXPECT_EQ(CountOf(none.graphics, "CVORNE KONCENTRACIJE"), 1);
    EXPECT_EQ(CountOf(results.listing, "N O D A L    C O N C E N T R A T I O N S"), 1);
    EXPECT_EQ(CountOf(results.listing, "CARD NUMBER"), 0);
    EXPECT_EQ(CountOf(results.listing, "MTOT =120000000"), 1);
    EXPECT_EQ(CountOf(input.listing, "C A R D   I M A G E"), 1);
    EXPECT_EQ(CountOf(input.listing, "CARD NUMBER"), 0);
    EXPECT_FALSE(fs::exists(input.folder + "/zurt.unv"));
    for (const RunResult& result : {none, results, input})
        EXPECT_EQ(CountOf(result.console + result.listing, "NO PRINTOUT RESULTS"), 0);
}

// Faults: an endless dialogue or a normal end where the console has no more answers; a status of 0, a crash or silence for a
// deck that is not there.
TEST(Dialogue, EndOfTheConsoleInputAndMissingDecks) {
    const std::string taken = ShortDeckIn("zurt.dat");
    WriteFile(taken + "/zurt.lst", "precious\n");
    for (const char* answers : {"", "\n", "zurt.dat\n\n", "\n\nN\n", "\nnew.lst\n"}) {
        const RunResult result = RunInFolder(taken, answers, 20);
        ExpectRefused(result, "zurt: error: the console input ended");
        EXPECT_EQ(result.listing, "precious\n") << answers;
    }
    EXPECT_EQ(RunInFolder(ShortDeckIn("zurt.dat"), "\n\nlast", 20).status, 0); // a line without its end
    ExpectRefused(RunInFolder(MakeTemporaryFolder(), "\n\n\n"), "zurt: error: can't open the deck zurt.dat");
    ExpectRefused(RunInFolder(ShortDeckIn("zurt.dat"), ".\n\n\n"), "zurt: error: can't read the deck .");
    ExpectRefused(RunDeck(""), "Title card: the deck ends here");
}

// Faults: a file that can't be written goes unnoticed or ends the run as a normal end; a folder in its way deleted, or
// the deck, or the open listing.
TEST(Dialogue, FilesThatCantBeWritten) {
    for (const char* name : {"zurt.lst", "zurt.unv", "MESSAGES.LST", "ZITEMP", "MASS-X.LST"}) {
        const std::string folder = ShortDeckIn("zurt.dat");
        fs::create_directory(folder + "/" + name);
        ExpectRefused(RunInFolder(folder, "\n\n\n\n\n"), name);
        EXPECT_TRUE(fs::is_directory(folder + "/" + name)) << name;
    }
    ExpectRefused(RunInFolder(ShortDeckIn("zurt.dat"), "\n/no/such/file.lst\n\n"),
                  "zurt: error: can't open /no/such/file.lst");
    for (const auto& [answers, lost] :
         {std::pair{"\nzurt.dat\n\n\n", "deck"}, {"\nout\n./out\n\n", "listing"}}) {
        const std::string folder = ShortDeckIn("zurt.dat");
        ExpectRefused(RunInFolder(folder, answers), std::string("it is the ") + lost);
        EXPECT_EQ(ReadFile(folder + "/zurt.dat"), ShortDeck());
    }
    for (const char* name :
         {"MESSAGES.LST", "MASS-X.LST", "MASS-Z.LST", "ZITEMP"}) { // fixed names, and links of them
        const std::string named = ShortDeckIn(name), linked = ShortDeckIn("zurt.dat");
        ExpectRefused(RunInFolder(named, std::string(name) + "\nout\nout2\n"), "it is the deck of this run");
        EXPECT_EQ(ReadFile(named + "/" + name), ShortDeck());
        fs::create_hard_link(linked + "/zurt.dat", linked + "/" + name);
        ExpectRefused(RunInFolder(linked, "\nout\nout2\n"), "it is the deck of this run");
        EXPECT_EQ(ReadFile(linked + "/zurt.dat"), ShortDeck());
        ExpectRefused(RunInFolder(ShortDeckIn("zurt.dat"), "\n" + std::string(name) + "\n\n"),
                      std::string("it is the file ") + name);
    }
    const std::string discarding = ShortDeckIn("zurt.dat");
    fs::create_symlink("/dev/null", discarding + "/zurt.unv");
    EXPECT_EQ(RunInFolder(discarding, "\n\n\nD\n").status, 0);
    EXPECT_TRUE(fs::is_symlink(discarding + "/zurt.unv")) << "a device is no file to be deleted";
    for (const char* name : {"MESSAGES.LST", "MASS-X.LST"}) { // opened without a question
        const std::string folder = ShortDeckIn("zurt.dat");
        fs::create_symlink("/dev/full", folder + "/" + name);
        ExpectRefused(RunInFolder(folder, "\n\n\n"), std::string("zurt: error: can't write to ") + name);
    }
}

// Faults: "ZITEMP" written or emptied, the scratch files left behind, old messages kept.
TEST(Dialogue, FilesOfARun) {
    const std::string folder = ShortDeckIn("zurt.dat");
    WriteFile(folder + "/ZITEMP", "as it was");
    WriteFile(folder + "/MESSAGES.LST", "old\nmessages\n");
    const RunResult result = RunInFolder(folder, "\n\n\n");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(ReadFile(folder + "/ZITEMP"), "as it was");
    EXPECT_EQ(result.messages, "      \n");
    EXPECT_EQ(CountOf(result.mass, "         1   0.10000D+01\n"), 1);
    int files = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder))
        ++files;
    EXPECT_EQ(files,
              9); // deck, listing, graphics, messages, mass, ZITEMP; answers, console, errors of the test
    EXPECT_EQ(ReadFile(RunDeck(ShortDeck()).folder + "/ZITEMP"), "");
}

} // namespace
} // namespace zurt_test
