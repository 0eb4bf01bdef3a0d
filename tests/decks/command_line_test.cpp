// The console dialogue and the command line, and the ends and files of a run, through the real binary.
#include "support/bar_deck.h"
#include "support/run_deck.h"
#include "support/small_decks.h"

#include <fcntl.h>
#include <filesystem>
#include <set>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zurt_test {
namespace {

namespace fs = std::filesystem;

const std::string kGood = SmallDeckText("free");

// Names of the files in a folder but those of the test itself.
std::set<std::string> FilesIn(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        if (const std::string name = entry.path().filename();
            name != "answers" && name != "console" && name != "errors")
            names.insert(name);
    return names;
}

void ExpectRefused(const RunResult& run, const std::string& words) {
    EXPECT_EQ(run.status, 2) << words;
    EXPECT_TRUE(Contains(run.errors, words)) << run.errors;
}

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

struct OptionCase {
    std::vector<std::string> arguments;
    int status;
    std::string console; // its end; "": nothing at all
    std::string errors;  // a part of it; "": nothing at all
    std::set<std::string> newFiles;
};

// A good run with results of these names.
OptionCase Good(const std::vector<std::string>& arguments, const std::string& listing = "zurt.lst",
                const std::string& graphics = "zurt.unv") {
    return {arguments,
            0,
            "Results: listing " + listing + ", UNV file " + graphics + ", mass table MASS-X.LST\n",
            "",
            {listing, graphics, "MASS-X.LST", "MESSAGES.LST", "ZITEMP"}};
}

OptionCase Silent(OptionCase good) {
    good.console = "";
    return good;
}

OptionCase Refused(const std::vector<std::string>& arguments, const std::string& errors) {
    return {arguments, 2, "", errors, {}};
}

// Faults: options taken for decks or passed over, a fault of the arguments that starts a run, asks a question or ends as
// success; more than a line about it; outputs elsewhere than told; silence that isn't; help on the wrong stream.
TEST(CommandLine, OptionsAndEnds) {
    const std::string name = "a long name that the dialogue would cut", longDeck = "sub/" + name + ".v2.dat";
    const OptionCase cases[] = {
        Good({"zurt.dat"}),
        Good({"-"}),
        Silent(Good({"-q", "zurt.dat"})),
        Silent(Good({"--quiet", "-f", "--words=2000", "./zurt.dat"})),
        Good({longDeck}, name + ".lst", name + ".unv"),
        Good({"sub/Plate"}, "Plate.LST", "Plate.UNV"),
        Good({"--", "-x"}, "-x.lst", "-x.unv"),
        {{"--output", "sub", "zurt.dat"},
         0,
         "Results: listing sub/zurt.lst, UNV file sub/zurt.unv, mass table sub/MASS-X.LST\n",
         "",
         {}},
        {{"zurt.dat", "--vtu"},
         0,
         "mass table MASS-X.LST, ParaView file zurt.pvd\n",
         "",
         {"zurt.lst", "zurt.unv", "MASS-X.LST", "MESSAGES.LST", "ZITEMP", "zurt.pvd", "zurt-0001.vtu",
          "zurt-0002.vtu", "zurt-0003.vtu"}},
        {{"--words", "100", "zurt.dat"},
         1,
         "Stopped; written so far: listing zurt.lst, UNV file zurt.unv\n",
         "zurt: stopped: UNSUFF",
         {"zurt.lst", "zurt.unv", "MESSAGES.LST", "ZITEMP"}},
        {{"--help"}, 0, "3 interrupted.\n", "", {}},
        {{"--version"}, 0, "zurt " ZURT_VERSION "\n", "", {}},
        Refused({"missing.dat"},
                "can't open the deck missing.dat: No such file or directory; see zurt --help"),
        Refused({"sub"}, "can't read the deck sub: Is a directory"),
        Refused({"zurt.dat", "sub/Plate"}, "one deck at a time, not zurt.dat and sub/Plate; see zurt --help"),
        Refused({"--quite", "zurt.dat"}, "no such option: --quite; see zurt --help"),
        Refused({"--quiet"}, "no deck is named; see zurt --help"),
        Refused({""}, "no deck is named; see zurt --help"),
        Refused({"--words", "many", "zurt.dat"}, "a number is expected"),
        Refused({"--words", "0", "zurt.dat"}, "--words takes a count between 1 and"),
        Refused({"--solver", "lu", "zurt.dat"}, "--solver takes skyline, sparse or cg, not lu"),
        Refused({"--tolerance", "1e-8", "zurt.dat"}, "--tolerance belongs to --solver cg"),
        Refused({"--solver", "cg", "--tolerance", "0", "zurt.dat"}, "--tolerance takes a number"),
        Refused({"--json", "zurt.dat"}, "--json belongs to --check"),
        Refused({"--check", "--force", "zurt.dat"}, "--check writes no files"),
        Refused({"--solver", "cg", "--tolerance", "1", "zurt.dat"}, "--tolerance takes a number"),
        Refused({"--words", "9000000000000", "zurt.dat"}, "--words takes a count between 1 and"),
        Refused({"--prescribed", "none", "zurt.dat"}, "can't open the file of prescribed values none"),
        Refused({"--probe", "3", "zurt.dat"}, "--probe names nodes for the table of --history"),
        Refused({"--wall-cells", "1", "zurt.dat"}, "--wall-cells takes a count between 2 and"),
        Refused({"--wall-cells", "33", "zurt.dat"}, "--wall-cells takes a count between 2 and"),
        Refused({"--threads", "-1", "zurt.dat"}, "--threads takes a count between 0 and"),
        Refused({"--threads", "100000", "zurt.dat"}, "--threads takes a count between 0 and"),
        Refused({"--checkpoint", "0", "zurt.dat"}, "--checkpoint takes a count of steps"),
        Refused({"zurt.dat", "--restart", ""}, "--restart needs the name"),
        Refused({"zurt.dat", "--progress", ""}, "--progress needs the name"),
        Refused({"zurt.dat", "--progress", "zurt.unv"}, "zurt.unv for writing: it is the file of --progress"),
        Refused({"zurt.dat", "--progress", "MASS-Y.LST"}, "MASS-Y.LST for writing: it is the file of"),
        Refused({"zurt.dat", "--progress", "zurt.dat"}, "zurt.dat for writing: it is the deck"),
        Refused({"zurt\x01.dat"}, "can't open the deck zurt"),
        Refused({"zurt.dat", "--output"}, "--output"),
        Refused({"zurt.dat", "--output", ""}, "--output needs the name of a folder"),
        Refused({"zurt.dat", "--output", "zurt.dat"}, "can't make the folder zurt.dat"),
    };
    for (const OptionCase& test : cases) {
        const std::string folder = FolderWith("zurt.dat", kGood);
        fs::create_directory(folder + "/sub");
        for (const std::string& deck : {longDeck, std::string("sub/Plate"), std::string("-x")})
            WriteFile(folder + "/" + deck, kGood);
        std::set<std::string> expected = FilesIn(folder);
        expected.insert(test.newFiles.begin(), test.newFiles.end());
        const RunResult run = RunProgram(folder, {test.arguments, kGood});
        std::string what;
        for (const std::string& argument : test.arguments)
            what += " " + argument;
        EXPECT_EQ(run.status, test.status) << what << run.errors;
        EXPECT_TRUE(EndsWith(run.console, test.console) && run.console.empty() == test.console.empty())
            << what << "\n"
            << run.console;
        EXPECT_TRUE(Contains(run.errors, test.errors) && run.errors.empty() == test.errors.empty())
            << what << run.errors;
        EXPECT_EQ(CountOf(run.errors, "\n"), test.status == 2 ? 1 : CountOf(run.errors, "\n")) << run.errors;
        EXPECT_EQ(FilesIn(folder), expected) << what;
    }
}

// Faults: an option, the way of the deck or of its names that changes a byte of an output.
TEST(CommandLine, OutputsAreThoseOfTheDialogue) {
    for (const SmallDeck& deck : SmallDecks()) {
        const RunResult dialogue = RunDeck(deck.text);
        const std::string folder = FolderWith("zurt.dat", deck.text);
        const RunResult direct = RunProgram(folder, {{"--output=a/b", "zurt.dat"}, "", "a/b"});
        const RunResult piped = RunProgram(folder, {{"-", "-q", "--output", "c/"}, deck.text, "c"});
        const RunResult viewed = RunProgram(folder, {{"--vtu", "--output=d", "zurt.dat"}, "", "d"});
        for (const RunResult& run : {direct, piped, viewed}) {
            EXPECT_EQ(run.status, dialogue.status) << deck.name << run.errors;
            EXPECT_TRUE(run.listing == dialogue.listing && run.graphics == dialogue.graphics &&
                        run.messages == dialogue.messages && run.mass == dialogue.mass)
                << deck.name;
        }
        EXPECT_TRUE(FilesIn(folder) == (std::set<std::string>{"zurt.dat", "a", "c", "d"}))
            << "all within the folders asked for";
    }
}

// Faults: an older result, or the deck, that is overwritten without leave, or in spite of being the deck; some files of a
// refused run written already.
TEST(CommandLine, NothingIsOverwrittenWithoutLeave) {
    for (const char* name :
         {"zurt.lst", "zurt.unv", "MESSAGES.LST", "MASS-X.LST", "MASS-Y.LST", "MASS-Z.LST"}) {
        const std::string folder = FolderWith("zurt.dat", kGood);
        WriteFile(folder + "/" + name, "precious\n");
        ExpectRefused(RunProgram(folder, {{"zurt.dat"}, ""}),
                      std::string("zurt: error: ") + name + " exists and would be overwritten");
        EXPECT_EQ(ReadFile(folder + "/" + name), "precious\n");
        EXPECT_TRUE(FilesIn(folder) == (std::set<std::string>{"zurt.dat", name}));
        EXPECT_EQ(RunProgram(folder, {{"-f", "zurt.dat"}, ""}).status, 0);
        EXPECT_EQ(ReadFile(folder + "/" + name) == "precious\n",
                  std::string(name) == "MASS-Y.LST" || std::string(name) == "MASS-Z.LST");
    }
    for (const char* name : {"a.lst", "MESSAGES.LST", "MASS-X.LST", "a.pvd"}) {
        const std::string folder = FolderWith(name, kGood);
        ExpectRefused(RunProgram(folder, {{"--force", "--vtu", name}, ""}), "it is the deck of this run");
        EXPECT_EQ(ReadFile(folder + "/" + name), kGood);
    }
    for (const char* name : {"zurt.lst", "MESSAGES.LST", "zurt.pvd"}) {
        const std::string folder = FolderWith("zurt.dat", kGood);
        WriteFile(folder + "/" + name, "0 1\n");
        ExpectRefused(RunProgram(folder, {{"--force", "--vtu", "--prescribed", name, "zurt.dat"}, ""}),
                      "it is the file of prescribed values of this run");
        EXPECT_EQ(ReadFile(folder + "/" + name), "0 1\n");
    }
}

// Faults: files for viewers of an earlier run that are mixed with this one's, or go without leave; files of somebody else that go; a
// problem's files under the names of another's.
TEST(CommandLine, FilesForViewersOfEarlierRuns) {
    const std::set<std::string> others = {"zurt-12.vtu", "zurt-0001.vtu.part", "zurt-x-0001.vtu",
                                          "zurt2.pvd"};
    const std::string folder = FolderWith("zurt.dat", SmallDeckText("two free"));
    for (const char* name : {"/zurt-0001.vtu", "/zurt-0099.vtu", "/zurt-p7.pvd", "/.zurt-0002.vtu.part"})
        WriteFile(folder + name, "older\n");
    for (const std::string& name : others)
        WriteFile(folder + "/" + name, "precious\n");
    ExpectRefused(RunProgram(folder, {{"--vtu", "zurt.dat"}, ""}),
                  "error: zurt-p7.pvd and 2 more exist and would be overwritten");
    EXPECT_EQ(ReadFile(folder + "/zurt-0099.vtu"), "older\n");
    EXPECT_EQ(RunProgram(folder, {{"-f", "--vtu", "zurt.dat"}, ""}).status, 0);
    std::set<std::string> expected = {"zurt.dat",   "zurt.lst",     "zurt.unv",
                                      "MASS-X.LST", "MESSAGES.LST", "ZITEMP"};
    expected.insert(others.begin(), others.end());
    for (const std::string problem : {"zurt", "zurt-p2"})
        for (const char* ending : {".pvd", "-0001.vtu", "-0002.vtu", "-0003.vtu"})
            expected.insert(problem + ending);
    EXPECT_EQ(FilesIn(folder), expected);
    EXPECT_TRUE(Contains(ReadFile(folder + "/zurt-p2.pvd"), "part=\"0\" file=\"zurt-p2-0003.vtu\"/>"));
    for (const std::string& name : others)
        EXPECT_EQ(ReadFile(folder + "/" + name), "precious\n") << name;
}

// Faults: a second run that cuts the files of the first, or isn't told why it may not. The first one is this process, which
// holds the locks that a run holds.
TEST(CommandLine, RunsInOneFolderAreKeptApart) {
    for (const auto& [name, words] :
         {std::pair{"ZITEMP", "another run is writing to this folder (it holds ZITEMP)"},
          {"zurt.lst", "can't open zurt.lst for writing: another run is writing to it"}}) {
        const std::string folder = FolderWith("zurt.dat", kGood);
        WriteFile(folder + "/" + name, "of the first run");
        const int held = open((folder + "/" + name).c_str(), O_WRONLY | O_CLOEXEC);
        ASSERT_EQ(flock(held, LOCK_EX), 0);
        const RunResult direct = RunProgram(folder, {{"-f", "zurt.dat"}, ""});
        EXPECT_EQ(ReadFile(folder + "/" + name), "of the first run");
        close(held);
        ExpectRefused(direct, words);
        EXPECT_EQ(RunProgram(folder, {{"-f", "zurt.dat"}, ""}).status, 0) << "the lock ends with its run";
    }
    const std::string folder = FolderWith("zurt.dat", kGood);
    const RunResult nowhere = RunInFolder(folder, "zurt.dat\n/dev/null\n\n/dev/null\n\n", 60);
    EXPECT_EQ(nowhere.status, 0) << "a device is nobody's: " << nowhere.errors;
}

// Faults: an interrupt that loses or cuts results, that ends as success, or says nothing of how far the run came.
TEST(CommandLine, InterruptLeavesFilesWhole) {
    BarDeck bar;
    bar.periods = {{1000000, 1e-6}};
    const std::string folder = FolderWith("zurt.dat", Build(bar));
    Invocation invocation = {{"--vtu", "zurt.dat"}, ""};
    invocation.interruptAfterSteps = 3;
    const RunResult run = RunProgram(folder, invocation);
    EXPECT_EQ(run.status, 3);
    int step = 0, iteration = 0;
    double time = 0.0;
    ASSERT_EQ(std::sscanf(run.errors.c_str(),
                          "zurt: interrupted: problem 1, step %d, iteration %d of 1000000 steps, time %lf;",
                          &step, &iteration, &time),
              3)
        << run.errors;
    EXPECT_TRUE(EndsWith(run.errors, "; what was written so far is whole\n"));
    const int steps = step - 1;
    EXPECT_NEAR(time, 1e-6 * step, 1e-6);
    EXPECT_GE(steps, 3);
    const auto tables = AllConcentrations(run.listing);
    ASSERT_EQ(static_cast<int>(tables.size()), steps);
    EXPECT_EQ(tables.back().size(), tables.front().size());
    EXPECT_EQ(CountOf(run.graphics, "CVORNE KONCENTRACIJE"), steps);
    EXPECT_TRUE(EndsWith(run.graphics, "    -1\n"));
    EXPECT_EQ(CountOf(ReadFile(folder + "/zurt.pvd"), "<DataSet timestep="), steps);
    EXPECT_TRUE(Contains(run.console, "\nInterrupted; written so far: listing zurt.lst, ")) << run.console;
}

// Faults: a signal or a crash in the place of a message; a stream that the parent has closed whose number a file of the run takes.
TEST(CommandLine, HostileSurroundings) {
    const struct {
        const char* command; // by the shell; $ZURT is the program
        int status;
        const char* errors;
    } cases[] = {
        {"(ulimit -f 8; $ZURT -q zurt.dat)", 2, "can't write to zurt.lst: File too large"},
        {"$ZURT zurt.dat | true; exec 3>&-; exit 0", 0, "can't write to the console: Broken pipe"},
        {"$ZURT zurt.dat >&-", 2, "can't write to the console: Bad file descriptor"},
        {"$ZURT -q zurt.dat 2>&-", 0, ""},
        {"$ZURT - <&-", 2, "can't read the deck on standard input"},
        {"$ZURT zurt.dat > /dev/full", 2, "can't write to the console: No space left on device"},
        {"(ulimit -s 64; $ZURT -q zurt.dat)", 0, ""},
    };
    setenv("ZURT", ZURT_BINARY, 1);
    BarDeck bar;
    bar.periods = {{200, 1e-3}};
    for (const auto& test : cases) {
#ifdef ZURT_SANITIZE
        if (std::string(test.command).find("ulimit -s") != std::string::npos)
            continue; // the sanitizers need more themselves
#endif
        const std::string folder = FolderWith("zurt.dat", Build(bar));
        const std::string command = "cd " + folder + " && { " + test.command + "; } > console 2> errors";
        const int status = std::system(command.c_str());
        EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, test.status) << test.command;
        EXPECT_TRUE(Contains(ReadFile(folder + "/errors"), test.errors))
            << test.command << ReadFile(folder + "/errors");
        EXPECT_EQ(ReadFile(folder + "/zurt.dat"), Build(bar));
        EXPECT_TRUE(test.status != 0 || *test.errors != '\0' ||
                    AllConcentrations(ReadFile(folder + "/zurt.lst")).size() == 200U)
            << test.command;
    }
}

std::string ShortDeck(int NULAZ, int NPRINT, int IGRAF = 1, const char* title = "Block of bricks",
                      const char* end = "STOP\n", bool fixedFormat = false) {
    BarDeck bar;
    bar.title = title;
    bar.end = end;
    bar.fixedFormat = fixedFormat;
    bar.nx = 2;
    bar.periods = {{1, 0.5}};
    bar.NULAZ = NULAZ;
    bar.NPRINT = NPRINT;
    bar.IGRAF = IGRAF;
    return Build(bar);
}

// Faults: extensions in the wrong case, the base cut at the last point or kept whole, a blank ahead of the point taken
// for the end of the name, the name or its default cut or padded at 20 characters.
TEST(Dialogue, DefaultNamesFollowTheDeck) {
    const struct {
        const char *answer, *deck, *listing, *graphics;
    } cases[] = {
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
    for (const auto& test : cases) {
        const std::string folder = FolderWith(test.deck, kGood);
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
            const std::string name = graphics ? "zurt.unv" : "zurt.lst",
                              folder = FolderWith("zurt.dat", kGood);
            WriteFile(folder + "/" + name, "precious\n");
            const std::string ahead = graphics ? "\n\n\n" : "\n\n", again = "\n" + answer + "\nother\n\n";
            const RunResult result = RunInFolder(folder, ahead + answer + "\n" + (kept ? again : "\n"));
            EXPECT_EQ(result.status, 0) << result.errors;
            EXPECT_EQ(CountOf(result.console, "   FILE    " + name + question), kept ? 2 : 1);
            EXPECT_EQ(CountOf(result.console, " FILE NAME   <" + name + ">\n"), kept ? 3 : 1);
            const std::string words = graphics ? "CVORNE KONCENTRACIJE" : "VERSION  1.00";
            EXPECT_EQ(CountOf(ReadFile(folder + (kept ? "/other" : "/" + name)), words), graphics ? 3 : 1);
            EXPECT_EQ(CountOf(ReadFile(folder + "/" + name), "precious"), kept ? 1 : 0);
        }
}

// Faults: names asked or the banner written again, files begun anew by the second problem; its card not read again as
// the title under free format; card numbers or messages that start anew.
TEST(Dialogue, SecondProblemAsksNothing) {
    const RunResult result =
        RunWell(ShortDeck(1, 1, 1, "First of two", "") + ShortDeck(1, 1, 1, "Second of two", "STOPPED\n"));
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
    // The deck is listed and put back in the midst of the second problem.
    const RunResult result =
        RunWell(ShortDeck(3, 1, 1, "First of two", " STOP and stop\n", true) +
                ShortDeck(1, 1, 1, "Second of two", "STOP\nno card of the deck\n", true));
    EXPECT_EQ(CountOf(result.listing, "\n First of two  "), 1);
    EXPECT_EQ(CountOf(result.listing, "\n    1 First of two  "), 1);
    EXPECT_EQ(CountOf(result.listing, "\n Second of two  "), 1);
    EXPECT_EQ(CountOf(result.listing, "E X E C U T I O N    T I M I N G"), 2);
    const RunResult small = RunDeck(ShortDeck(3, 1, 1, "One", "stop\n", true));
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
    const std::string taken = FolderWith("zurt.dat", kGood);
    WriteFile(taken + "/zurt.lst", "precious\n");
    for (const char* answers : {"", "\n", "zurt.dat\n\n", "\n\nN\n", "\nnew.lst\n"}) {
        const RunResult result = RunInFolder(taken, answers, 20);
        ExpectRefused(result, "zurt: error: the console input ended");
        EXPECT_EQ(result.listing, "precious\n") << answers;
    }
    EXPECT_EQ(RunInFolder(FolderWith("zurt.dat", kGood), "\n\nlast", 20).status, 0); // a line without its end
    ExpectRefused(RunInFolder(MakeTemporaryFolder(), "\n\n\n"), "zurt: error: can't open the deck zurt.dat");
    ExpectRefused(RunInFolder(FolderWith("zurt.dat", kGood), ".\n\n\n"),
                  "zurt: error: can't read the deck .");
    ExpectRefused(RunDeck(""), "Title card: the deck ends here");
}

// Faults: a file that can't be written goes unnoticed or ends the run as a normal end; a folder in its way deleted, or
// the deck, or the open listing.
TEST(Dialogue, FilesThatCantBeWritten) {
    for (const char* name : {"zurt.lst", "zurt.unv", "MESSAGES.LST", "ZITEMP", "MASS-X.LST"}) {
        const std::string folder = FolderWith("zurt.dat", kGood);
        fs::create_directory(folder + "/" + name);
        ExpectRefused(RunInFolder(folder, "\n\n\n\n\n"), name);
        EXPECT_TRUE(fs::is_directory(folder + "/" + name)) << name;
    }
    ExpectRefused(RunInFolder(FolderWith("zurt.dat", kGood), "\n/no/such/file.lst\n\n"),
                  "zurt: error: can't open /no/such/file.lst");
    for (const auto& [answers, lost] :
         {std::pair{"\nzurt.dat\n\n\n", "deck"}, {"\nout\n./out\n\n", "listing"}}) {
        const std::string folder = FolderWith("zurt.dat", kGood);
        ExpectRefused(RunInFolder(folder, answers), std::string("it is the ") + lost);
        EXPECT_EQ(ReadFile(folder + "/zurt.dat"), kGood);
    }
    for (const char* name :
         {"MESSAGES.LST", "MASS-X.LST", "MASS-Z.LST", "ZITEMP"}) { // fixed names, and links of them
        const std::string named = FolderWith(name, kGood), linked = FolderWith("zurt.dat", kGood);
        ExpectRefused(RunInFolder(named, std::string(name) + "\nout\nout2\n"), "it is the deck of this run");
        EXPECT_EQ(ReadFile(named + "/" + name), kGood);
        fs::create_hard_link(linked + "/zurt.dat", linked + "/" + name);
        ExpectRefused(RunInFolder(linked, "\nout\nout2\n"), "it is the deck of this run");
        EXPECT_EQ(ReadFile(linked + "/zurt.dat"), kGood);
        ExpectRefused(RunInFolder(FolderWith("zurt.dat", kGood), "\n" + std::string(name) + "\n\n"),
                      std::string("it is the file ") + name);
    }
    const std::string discarding = FolderWith("zurt.dat", kGood);
    fs::create_symlink("/dev/null", discarding + "/zurt.unv");
    EXPECT_EQ(RunInFolder(discarding, "\n\n\nD\n").status, 0);
    EXPECT_TRUE(fs::is_symlink(discarding + "/zurt.unv")) << "a device is no file to be deleted";
    for (const char* name : {"MESSAGES.LST", "MASS-X.LST"}) { // opened without a question
        const std::string folder = FolderWith("zurt.dat", kGood);
        fs::create_symlink("/dev/full", folder + "/" + name);
        ExpectRefused(RunInFolder(folder, "\n\n\n"), std::string("zurt: error: can't write to ") + name);
    }
}

// Faults: "ZITEMP" written or emptied, the scratch files left behind, old messages kept.
TEST(Dialogue, FilesOfARun) {
    const std::string folder = FolderWith("zurt.dat", kGood);
    WriteFile(folder + "/ZITEMP", "as it was");
    WriteFile(folder + "/MESSAGES.LST", "old\nmessages\n");
    const RunResult result = RunInFolder(folder, "\n\n\n");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(ReadFile(folder + "/ZITEMP"), "as it was");
    EXPECT_EQ(result.messages, "      \n");
    EXPECT_EQ(CountOf(result.mass, "         3   0.10000D+01\n"), 1);
    int files = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder))
        ++files;
    EXPECT_EQ(files,
              9); // deck, listing, graphics, messages, mass, ZITEMP; answers, console, errors of the test
    EXPECT_EQ(ReadFile(RunDeck(kGood).folder + "/ZITEMP"), "");
}

} // namespace
} // namespace zurt_test
