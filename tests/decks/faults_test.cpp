// The program while memory, files and the power fail, through the real binary and tests/faults/fail_preload.c.
#include "support/bar_deck.h"
#include "support/plane_deck.h"
#include "support/run_deck.h"
#include "support/small_decks.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <sys/resource.h>

#ifdef ZURT_FAIL_PRELOAD

namespace zurt_test {
namespace {

using Settings = std::map<std::string, std::string>;

constexpr int kSecondsAllowed = 20;

// A deck in a folder of its own. In the dialogue an older listing stands in the way and is deleted.
struct Subject {
    std::string name, deck;
    bool dialogue;
    std::vector<std::string> options = {};
    std::string folder = MakeTemporaryFolder();
    RunResult good = {};
    std::map<std::string, long> calls = {}; // of the good run, by kind
};

RunResult RunUnder(const Settings& settings, const Subject& subject, bool keepOutputs = false) {
    const std::string folder = subject.folder + "/";
    if (!keepOutputs)
        for (const auto& [name, text] : ResultFiles(subject.folder))
            std::filesystem::remove(folder + name);
    if (subject.dialogue)
        WriteFile(folder + "zurt.lst", "");
    Invocation invocation = {subject.options, ""};
    invocation.arguments.insert(invocation.arguments.end(), {"--force", "zurt.dat"});
    if (subject.dialogue)
        invocation = {{}, "\n\n\n\n"};
    setenv("LD_PRELOAD", ZURT_FAIL_PRELOAD, 1);
    for (const auto& [name, value] : settings)
        setenv(name.c_str(), value.c_str(), 1);
    RunResult run = RunProgram(subject.folder, invocation, kSecondsAllowed);
    for (const auto& setting : settings)
        unsetenv(setting.first.c_str());
    unsetenv("LD_PRELOAD");
    return run;
}

void RunWhole(Subject& subject) {
    WriteFile(subject.folder + "/zurt.dat", subject.deck);
    subject.good = RunUnder({{"FAULTS_COUNTS", "counts"}}, subject);
    EXPECT_EQ(subject.good.status, 0) << subject.name << subject.good.errors;
    std::istringstream counts(ReadFile(subject.folder + "/counts"));
    std::string kind;
    for (long count = 0; counts >> kind >> count;)
        subject.calls[kind] = count;
}

Subject Prepare(const std::string& name, const std::string& deck, bool dialogue = false,
                const std::vector<std::string>& options = {}) {
    Subject subject{name, deck, dialogue, options};
    RunWhole(subject);
    return subject;
}

std::vector<Subject> Subjects() {
    return {Prepare("free", SmallDeckText("free"), true),
            Prepare("sparse", SmallDeckText("sparse"), false, {"--vtu"}),
            Prepare("fit", SmallDeckText("fit"))};
}

std::vector<std::string> OutputsOf(const RunResult& run) {
    return {run.listing, run.graphics, run.messages, run.mass, ReadFile(run.folder + "/MASS-Z.LST")};
}

bool IsBeginning(const std::string& part, const std::string& whole) {
    return whole.compare(0, part.size(), part) == 0;
}

// Where the steps of a good listing end: behind the last row of their last table.
std::vector<std::size_t> StepsOfListing(const std::string& listing) {
    std::vector<std::size_t> ends;
    const std::string table = "M A S S   F L U X E S";
    for (std::size_t at = listing.find(table); at != std::string::npos; at = listing.find(table, at + 1))
        ends.push_back(std::min(listing.find("\n\n", at), listing.find("\n1\n", at)) + 1);
    return ends;
}

std::vector<std::size_t> StepsOfGraphics(const std::string& graphics) {
    std::vector<std::size_t> ends;
    const std::string first = "CVORNE KONCENTRACIJE", between = "    -1\n    -1\n";
    for (std::size_t at = graphics.find(first); at != std::string::npos;) {
        at = graphics.find(first, at + 1);
        ends.push_back(at == std::string::npos ? graphics.size() : graphics.rfind(between, at) + 7);
    }
    return ends;
}

// A file that is listed and not there, or a part of one.
std::string LossOfViewer(const std::string& folder, const std::string& listed) {
    const std::string key = "file=\"";
    for (std::size_t at = listed.find(key); at != std::string::npos; at = listed.find(key, at + 1)) {
        const std::size_t start = at + key.size();
        const std::string name = listed.substr(start, listed.find('"', start) - start);
        if (!Contains(ReadFile(folder + "/" + name), "</VTKFile>\n"))
            return name + " is listed and not there";
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".part")
            return "a part of a file is left";
    return "";
}

// What is wrong with a run that was disturbed: the last `unfinished` of the steps that the console shows may be
// missing from the files.
std::string LossOf(const RunResult& run, const Subject& subject, int unfinished) {
    if (ReadFile(subject.folder + "/zurt.dat") != subject.deck)
        return "the deck has changed";
    if (const std::string loss = LossOfViewer(subject.folder, ReadFile(subject.folder + "/zurt.pvd"));
        !loss.empty())
        return loss;
    const std::vector<std::string> outputs = OutputsOf(run), whole = OutputsOf(subject.good);
    for (std::size_t i = 0; i < outputs.size(); ++i)
        if (!IsBeginning(outputs[i], whole[i]))
            return "output " + std::to_string(i) + " is not the beginning of the good one";
    const int steps = CountOf(run.console, " ***\n") - unfinished;
    if (steps > 0 && run.listing.size() < StepsOfListing(subject.good.listing).at(steps - 1))
        return "step " + std::to_string(steps) + " is not in the listing";
    if (steps > 0 && run.graphics.size() < StepsOfGraphics(subject.good.graphics).at(steps - 1))
        return "step " + std::to_string(steps) + " is not in the graphics file";
    return "";
}

// What is wrong with a run in which a call failed: it ends with an error and with what was written before, or the failure
// has done no harm.
std::string VerdictOn(const RunResult& run, const Subject& subject) {
    if (run.status != 0 && run.status != 2)
        return "status " + std::to_string(run.status);
    if (run.status == 0 && OutputsOf(run) != OutputsOf(subject.good))
        return "success with other outputs";
    int errors = 0;
    std::istringstream lines(run.errors);
    for (std::string line; std::getline(lines, line);)
        if (!IsBeginning("zurt: note: ", line))
            errors += IsBeginning("zurt: error: ", line) ? 1 : 100;
    if (errors != (run.status == 2 ? 1 : 0))
        return "other lines on standard error than one of the error";
    return LossOf(run, subject, 1);
}

// The solver's own library checks part of its memory only and ends the process elsewhere, but never with success.
std::string VerdictOnSolver(const RunResult& run, const Subject& subject) {
    if (run.status == -1)
        return "no end";
    return run.status == 0 && OutputsOf(run) != OutputsOf(subject.good) ? "success with other outputs" : "";
}

// Runs once for each call of the kind, or for so many of them that are spread out.
void FailCalls(const Subject& subject, const std::string& kind, const std::string& mode, long most,
               std::string (*verdictOn)(const RunResult&, const Subject&) = VerdictOn) {
    const long calls = subject.calls.at(kind), runs = std::min(most, calls);
    std::map<std::string, std::set<long>> faults;
    for (long i = 0; i < runs; ++i) {
        const long at = runs == 1 ? 1 : 1 + i * (calls - 1) / (runs - 1);
        const RunResult run = RunUnder(
            {{"FAULTS_KIND", kind}, {"FAULTS_AT", std::to_string(at)}, {"FAULTS_MODE", mode}}, subject);
        if (const std::string fault = verdictOn(run, subject); !fault.empty())
            faults[fault + "; " + run.errors.substr(0, 200)].insert(at);
    }
    for (const auto& [fault, places] : faults)
        ADD_FAILURE() << subject.name << ", " << kind << " " << mode << ", call " << *places.begin()
                      << " and " << places.size() - 1 << " others of " << calls << ": " << fault;
}

struct FaultCase {
    const char *kind, *mode;
    long most; // runs, spread over the calls
};

void FailAll(const std::vector<FaultCase>& cases) {
    for (const Subject& subject : Subjects())
        for (const FaultCase& fault : cases)
            FailCalls(subject, fault.kind, fault.mode, fault.most);
}

// Faults: a refused open, lock, read, flush, close or scratch file passed over, reported twice or not as what it is; a
// crash; records behind the failure; files of the run, or its deck, harmed; a state of a file that the system doesn't tell
// ends a run that is complete by an uncaught exception.
TEST(Faults, FailingFiles) {
    std::vector<FaultCase> cases = {
        {"open", "on", 8}, {"flush", "on", 8}, {"close", "on", 8}, {"stat", "once", 30}};
    for (const char* kind : {"map", "open", "scratch", "flush", "close", "truncate", "seek", "unlink",
                             "rename", "read", "lock", "thread"})
        cases.push_back({kind, "once", 16});
    FailAll(cases);
}

// Faults: a record that is not written passed over, what stands ahead of it lost; a disk that stays full ends the run by a
// second stop that nobody catches.
TEST(Faults, FailingWrites) {
    FailAll({{"write", "once", 30}, {"write", "on", 12}});
}

// Faults: memory that is missing while the arguments are read, in the run or while its end is reported: a crash.
TEST(Faults, NoMemory) {
    FailAll({{"memory", "once", 50}, {"memory", "on", 8}});
}

// Faults: a call of the solver without an answer, or an end of the process within it, taken for success; a wait without end
// for address space that the process may not have.
TEST(Faults, NoMemoryInTheSolver) {
    const Subject subject = Prepare("sparse", SmallDeckText("sparse"));
    FailCalls(subject, "solver", "once", 120, VerdictOnSolver);
    for (int megabytes = 900; megabytes <= 1200; megabytes += 20) {
        const RunResult run = RunUnder({{"FAULTS_SPACE", std::to_string(megabytes)}}, subject);
        ASSERT_EQ(VerdictOnSolver(run, subject), "") << megabytes << run.errors;
    }
}

// Faults: bytes that the disk has no room for passed over; what it has room for not written.
TEST(Faults, LimitedFileSize) {
    std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    for (const char* name : {"sparse", "fit"}) {
        const Subject subject = Prepare(name, SmallDeckText(name));
        for (rlim_t limit = 1000; limit < subject.good.listing.size(); limit += 1977) {
            const struct rlimit lower = {limit, before.rlim_max};
            setrlimit(RLIMIT_FSIZE, &lower);
            const RunResult run = RunUnder({}, subject);
            setrlimit(RLIMIT_FSIZE, &before);
            EXPECT_EQ(run.status, 2) << limit;
            EXPECT_EQ(VerdictOn(run, subject), "") << name << limit << run.errors;
            EXPECT_TRUE(run.listing.size() == limit || run.graphics.size() == limit) << limit;
        }
    }
    std::signal(SIGXFSZ, SIG_DFL);
}

// Faults: a step shown on the console ahead of what it stands for; a file that is cut between two flushes; a power cut at
// any moment that harms the deck or loses steps that were shown; remains that keep the next run from its work.
TEST(Faults, Killed) {
    BarDeck bar;
    bar.periods = {{60, 0.001}};
    const Subject many = Prepare("many steps", Build(bar)), fit = Prepare("fit", SmallDeckText("fit"));
    const long flushes = many.calls.at("flush");
    for (long at = 1; at <= flushes; at += 1 + flushes / 40) {
        const RunResult run = RunUnder(
            {{"FAULTS_KIND", "flush"}, {"FAULTS_AT", std::to_string(at)}, {"FAULTS_MODE", "kill"}}, many);
        ASSERT_EQ(run.status, 128 + SIGKILL);
        ASSERT_EQ(LossOf(run, many, 0), "") << "killed at flush " << at << " of " << flushes;
    }
    std::mt19937 random(20);
    int killed = 0;
    for (const auto& [subject, runs] : {std::pair{&many, 150}, {&fit, 50}}) {
        const auto start = std::chrono::steady_clock::now();
        RunUnder({}, *subject);
        const std::chrono::duration<double, std::micro> whole = std::chrono::steady_clock::now() - start;
        for (int i = 1; i <= runs; ++i) {
            const auto moment = 1 + static_cast<unsigned>(whole.count()) * (random() % 800) / 1000;
            const RunResult run = RunUnder({{"FAULTS_KILL", std::to_string(moment)}}, *subject, true);
            ASSERT_EQ(LossOf(run, *subject, 0), "")
                << subject->name << " after " << moment << " us, run " << i;
            killed += run.status == 128 + SIGKILL ? 1 : 0;
            if (i % 10 != 0)
                continue;
            const RunResult again = RunUnder({}, *subject, true);
            EXPECT_EQ(again.status, 0) << again.errors;
            EXPECT_EQ(OutputsOf(again), OutputsOf(subject->good)) << subject->name;
        }
    }
    EXPECT_GT(killed, 50);
}

// Faults: a checkpoint that can't be written ends the run, passes without a note or takes the last good one with it.
TEST(Faults, CheckpointsThatFail) {
    const Subject subject = Prepare("two free", SmallDeckText("two free"), false, {"--checkpoint", "1"});
    for (const char* kind : {"sync", "rename", "open", "write", "flush", "close", "stat"})
        FailCalls(subject, kind, "once", 5);
    const std::string name = subject.folder + "/zurt.checkpoint";
    for (const char* kind : {"sync", "rename"}) {
        std::filesystem::remove(name);
        const RunResult run =
            RunUnder({{"FAULTS_KIND", kind}, {"FAULTS_AT", "2"}, {"FAULTS_MODE", "on"}}, subject);
        EXPECT_EQ(run.status, 0);
        EXPECT_TRUE(Contains(run.errors, "can't write the checkpoint zurt.checkpoint")) << run.errors;
        EXPECT_FALSE(std::filesystem::exists(name + ".part"));
    }
    Subject again = subject;
    again.options = {"--restart", "zurt.checkpoint"};
    const RunResult run = RunUnder({}, again, true);
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(OutputsOf(run), OutputsOf(subject.good));
}

// Two problems of a plate whose left side follows a function of time.
constexpr const char* kFaces = "3\n1 3\n1 3\n0. 0.5\n0.1 2.\n9. 3.\n1 1 1. 3\n7 1 1. 0\n"
                               "1\n1 2\n1 2\n0. 1.\n9. 9.\n4 1 2. 0\n";

std::string Membranes() {
    PlaneDeck deck = Rectangle(2, 2, 0, 1, 0, 1);
    for (PlaneNode& node : deck.nodes)
        node.held = node.x == 0.0;
    deck.conductivity = {{-10, 0.5}, {10, 4}};
    deck.steps = 5;
    deck.stepSize = 0.04;
    const std::string one = Replaced(Build(deck), " 100000 ", " 1 "); // every step to the viewer
    return one.substr(0, one.rfind("STOP")) + one;
}

// Faults: a run that was killed, in a step or while a checkpoint is written, goes on with other digits, records lost or twice.
TEST(Faults, KilledAndRestarted) {
    const std::string names[] = {"free",          "fixed",     "device",   "functions", "sources",
                                 "lines",         "membranes", "fit",      "fibres",    "quadrilaterals",
                                 "radial fibres", "sparse",    "two free", "two fixed", "direct"};
    long moment = 0, restarts = 0;
    for (const std::string& name : names) {
        const bool held = name == "membranes";
        Subject first{name, held ? Membranes() : SmallDeckText(name), false, {"--vtu", "--history"}};
        if (held) {
            WriteFile(first.folder + "/faces", kFaces);
            first.options.insert(first.options.end(), {"--prescribed", "faces"});
        }
        Subject second = first;
        first.options.insert(first.options.end(), {"--checkpoint", "1"});
        second.options.insert(second.options.end(), {"--checkpoint", "2", "--restart", "zurt.checkpoint"});
        RunWhole(first);
        const auto whole = ResultFiles(first.folder);
        for (const char* kind : {"flush", "sync", "rename", "write"}) {
            std::filesystem::remove(first.folder + "/zurt.checkpoint");
            // The moment moves on from deck to deck; most have no checkpoint in the first third of their calls.
            const long calls = first.calls.at(kind), at = 1 + calls / 3 + ++moment * 7 % (calls - calls / 3);
            Settings kill = {
                {"FAULTS_KIND", kind}, {"FAULTS_AT", std::to_string(at)}, {"FAULTS_MODE", "kill"}};
            ASSERT_EQ(RunUnder(kill, first).status, 128 + SIGKILL) << name << kind << at;
            if (!std::filesystem::exists(first.folder + "/zurt.checkpoint"))
                continue;
            kill["FAULTS_AT"] = std::to_string(std::max(at / 2, 1L));
            const RunResult killed = RunUnder(kill, second, true);
            const RunResult run = killed.status == 0 ? killed : RunUnder({}, second, true);
            EXPECT_EQ(run.status, 0) << name << run.errors;
            EXPECT_EQ(ResultFiles(first.folder), whole) << name << ", " << kind << " " << at;
            ++restarts;
        }
    }
    EXPECT_GT(restarts, 20);
}

} // namespace
} // namespace zurt_test

#else

// Faults: none; libraries are not preloaded under the sanitizers.
TEST(Faults, Skipped) {
    GTEST_SKIP() << "a preloaded library and the sanitizers don't go together";
}

#endif
