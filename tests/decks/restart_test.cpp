// Checkpoints, restarts and progress through the real binary.
#include "support/bar_deck.h"
#include "support/run_deck.h"
#include "support/small_decks.h"
#include "timeint/progress.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace zurt_test {
namespace {

using Arguments = std::vector<std::string>;

RunResult RunIn(const std::string& folder, Arguments arguments, const std::string& deck = "zurt.dat") {
    arguments.push_back(deck);
    return RunProgram(folder, {arguments, ""});
}

// Faults: anything that a step leaves for the next missing in a checkpoint; files cut elsewhere than at its step; problems ahead
// of it solved or written again; a run changed by the writing of checkpoints.
TEST(Restart, EveryFamilyGivesTheSameFiles) {
    int restarts = 0;
    for (const SmallDeck& deck : SmallDecks()) {
        const std::string name = deck.name;
        for (const Arguments& more : {Arguments{"--vtu", "--history"}, {"--solver", "cg"}}) {
            const std::string folder = FolderWith("zurt.dat", deck.text);
            Arguments options = more;
            options.push_back("--force");
            const RunResult plain = RunIn(folder, options);
            const auto whole = ResultFiles(folder);
            options.insert(options.end(), {"--checkpoint", restarts % 2 == 0 ? "1" : "2"});
            const RunResult writing = RunIn(folder, options);
            ASSERT_EQ(writing.status, 0) << name << writing.errors;
            EXPECT_EQ(ResultFiles(folder), whole) << name;
            if (!std::filesystem::exists(folder + "/zurt.checkpoint")) {
                EXPECT_LE(CountOf(plain.console, "END OF TIME STEP"), 2) << name;
                continue;
            }
            options = more;
            options.insert(options.end(), {"--restart", "zurt.checkpoint"});
            const RunResult again = RunIn(folder, options);
            EXPECT_EQ(again.status, 0) << name << again.errors;
            EXPECT_LT(CountOf(again.console, "END OF TIME STEP"), CountOf(plain.console, "END OF TIME STEP"));
            EXPECT_EQ(ResultFiles(folder), whole) << name;
            ++restarts;
        }
    }
    EXPECT_GE(restarts, 32);
}

struct Refusal {
    const char* name;
    std::string file, text; // what is put in its place ahead of the restart
    Arguments options;
    const char* message;
};

// Faults: a run that goes on from what is not its own, or whole; files cut or written by one that does not begin.
TEST(Restart, Refusals) {
    const std::string deck = SmallDeckText("device"), folder = FolderWith("zurt.dat", deck);
    WriteFile(folder + "/faces", "0\n");
    const Arguments same = {"--vtu", "--prescribed", "faces", "--history"};
    Arguments writing = same;
    writing.insert(writing.end(), {"--checkpoint", "1"});
    const RunResult good = RunIn(folder, writing);
    ASSERT_EQ(good.status, 0) << good.errors;
    const auto results = ResultFiles(folder);
    const std::string whole = ReadFile(folder + "/zurt.checkpoint");
    std::string damaged = whole, foreignFormat = whole, otherListing = good.listing;
    damaged[whole.size() / 2] = static_cast<char>(damaged[whole.size() / 2] ^ 16);
    foreignFormat[24] = 99;
    // The last digit that stands ahead of the checkpoint, as in the listing of another run.
    const std::size_t lastStep = good.listing.rfind("ITERATIONS FOR STEP:");
    otherListing[good.listing.find_last_of("0123456789", lastStep)] ^= 1;
    const std::string name = "zurt.checkpoint";
    Arguments elsewhere = same;
    elsewhere.insert(elsewhere.end(), {"--output", "elsewhere"});
    const Refusal refusals[] = {
        {"one bit", name, damaged, same, "is damaged: its checksum is not that of its bytes"},
        {"a word short", name, whole.substr(0, whole.size() - 8), same, "is damaged: its checksum"},
        {"a byte short", name, whole.substr(0, whole.size() - 1), same,
         "is damaged: a part of it is missing"},
        {"empty", name, "", same, "is no checkpoint"},
        {"a deck", name, deck, same, "is no checkpoint"},
        {"other format", name, foreignFormat, same, "was written by another version of the program"},
        {"other deck", "zurt.dat", deck + "\n", same, "is of another deck than zurt.dat"},
        {"other options",
         name,
         whole,
         {"--solver", "cg"},
         "then --vtu --prescribed --history, now --solver cg --tolerance"},
        {"other prescribed values", "faces", "0 0\n", same, "another file of prescribed values than faces"},
        {"no step", "zurt-0001.vtu", "", same, "zurt-0001.vtu has 0 bytes, and had"},
        {"other table", "zurt-history.csv", "step\n", same, "zurt-history.csv has 5 bytes, and had"},
        {"listing cut", "zurt.lst", good.listing.substr(0, 900), same, "zurt.lst has 900 bytes, and had"},
        {"other listing", "zurt.lst", otherListing, same,
         "zurt.lst is not what the run of the checkpoint wrote"},
        {"other folder", name, whole, elsewhere, "can't open elsewhere/zurt.lst"},
    };
    for (const Refusal& refusal : refusals) {
        const std::string before = ReadFile(folder + "/" + refusal.file);
        WriteFile(folder + "/" + refusal.file, refusal.text);
        const auto files = ResultFiles(folder);
        Arguments options = refusal.options;
        options.insert(options.end(), {"--restart", name});
        const RunResult run = RunIn(folder, options);
        EXPECT_EQ(run.status, 2) << refusal.name;
        EXPECT_TRUE(Contains(run.errors, refusal.message)) << refusal.name << ": " << run.errors;
        EXPECT_EQ(ResultFiles(folder), files) << refusal.name;
        WriteFile(folder + "/" + refusal.file, before);
    }
    Arguments again = same;
    again.insert(again.end(), {"--restart", name});
    EXPECT_EQ(RunIn(folder, again).status, 0);
    EXPECT_EQ(ResultFiles(folder), results);
}

// Faults: an older checkpoint overwritten without leave.
TEST(Restart, LeaveToWrite) {
    const std::string folder = FolderWith("zurt.dat", SmallDeckText("free"));
    WriteFile(folder + "/zurt.checkpoint", "older");
    const RunResult kept = RunIn(folder, {"--checkpoint", "1"});
    EXPECT_EQ(kept.status, 2);
    EXPECT_TRUE(Contains(kept.errors, "zurt.checkpoint exists")) << kept.errors;
    EXPECT_EQ(ReadFile(folder + "/zurt.checkpoint"), "older");
}

// Faults: steps without a line, or only once the run has ended; lines of a restart in the place of earlier ones; a fit
// that does not say where it is; a line on standard error, which is no terminal here, or on the console.
TEST(Progress, FileOfSteps) {
    EXPECT_EQ(zurt::DurationText(7384.4), "2:03:04");
    const std::string folder = FolderWith("zurt.dat", SmallDeckText("device"));
    const RunResult plain = RunIn(folder, {});
    const auto files = ResultFiles(folder);
    const Arguments options = {"--progress", "steps.log", "--checkpoint", "2", "--force"};
    const RunResult run = RunIn(folder, options);
    EXPECT_EQ(run.console, plain.console);
    EXPECT_EQ(run.errors, plain.errors);
    EXPECT_EQ(ResultFiles(folder), files);
    const std::string lines = ReadFile(folder + "/steps.log");
    EXPECT_EQ(CountOf(lines, "\n"), 3);
    EXPECT_EQ(lines.find("step 1/3, time "), 0U);
    EXPECT_EQ(CountOf(lines, ", ratio "), 3);
    EXPECT_TRUE(Contains(lines, ", left 0:00:00, ")) << lines;
    RunIn(folder, {"--progress", "steps.log", "--restart", "zurt.checkpoint"});
    const std::string more = ReadFile(folder + "/steps.log");
    EXPECT_EQ(more.substr(0, lines.size()), lines);
    EXPECT_EQ(CountOf(more, "\n"), 4);
    EXPECT_EQ(RunIn(folder, {"--progress", "steps.log", "--output", "new"}).status, 2); // exists
    WriteFile(folder + "/fit.dat", SmallDeckText("fit"));
    EXPECT_EQ(RunIn(folder, {"--progress", "fit.log", "--force"}, "fit.dat").status, 0);
    const std::string ofFit = ReadFile(folder + "/fit.log");
    EXPECT_TRUE(Contains(ofFit, "fit in x, model with fibres, step 1/")) << ofFit;
    EXPECT_TRUE(Contains(ofFit, "fit in x, run 2, curve from ")) << ofFit;
    EXPECT_TRUE(Contains(ofFit, "closing run, step ")) << ofFit;
    const std::pair<const char*, const char*> others[] = {
        {"direct", "pass 2 of the direct calculation, step 1/"},
        {"two free", "problem 2, step 1/"},
        {"steady free", "step 1/1, iteration "}};
    for (const auto& [deck, place] : others) {
        WriteFile(folder + "/other.dat", SmallDeckText(deck));
        EXPECT_EQ(RunIn(folder, {"--progress", "other.log", "--force"}, "other.dat").status, 0);
        EXPECT_TRUE(Contains(ReadFile(folder + "/other.log"), place)) << ReadFile(folder + "/other.log");
    }
}

// Faults: no line on a terminal, one that stays, one that comes to standard output or that --quiet does not take away.
TEST(Progress, LineOnTheTerminal) {
    BarDeck bar;
    bar.nx = 40;
    bar.NPRINT = bar.IGRAF = 1000;
    bar.periods = {{3000, 0.001}};
    const std::string folder = FolderWith("zurt.dat", Build(bar));
    const auto onTerminal = [&](const std::string& options) {
        const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
        EXPECT_EQ(grantpt(terminal) + unlockpt(terminal), 0);
        const std::string command = "cd " + folder + " && TERM=xterm " ZURT_BINARY " --force " + options +
                                    " zurt.dat > console 2> " + ptsname(terminal);
        EXPECT_EQ(std::system(command.c_str()), 0);
        std::string shown(1 << 16, '\0');
        std::size_t count = 0;
        for (ssize_t n = 0; (n = read(terminal, &shown[count], shown.size() - count)) > 0;)
            count += static_cast<std::size_t>(n);
        close(terminal);
        return shown.substr(0, count);
    };
    const std::string shown = onTerminal(""), erase = "\r\033[K";
    const std::string console = ReadFile(folder + "/console");
    EXPECT_TRUE(Contains(shown, erase + "step ")) << shown;
    EXPECT_TRUE(Contains(shown, "/3000, ")) << shown;
    ASSERT_GE(shown.size(), erase.size());
    EXPECT_EQ(shown.substr(shown.size() - erase.size()), erase) << shown;
    EXPECT_EQ(console, RunIn(folder, {"--force"}).console);
    EXPECT_FALSE(Contains(onTerminal("--quiet"), "step "));
}

} // namespace
} // namespace zurt_test
