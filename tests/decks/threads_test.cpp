// Whole runs by one thread and by several: every output must be the same to the byte, that of runs which end early too.
//
// Faults: elements added in another order, what a curve gave last (at its exact end) taken from the wrong element, a message of an
// element that is not the first to fail, work of two threads in one place.
#include "support/bar_deck.h"
#include "support/run_deck.h"
#include "support/small_decks.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace zurt_test {
namespace {

// Lines that tell the time of day or a time that something took.
bool TellsClock(const std::string& line) {
    const std::size_t colon = line.find(':');
    return Contains(line, "econds") || Contains(line, "SECONDS") ||
           (colon != std::string::npos && line.find(':', colon + 1) == colon + 3);
}

std::string WithoutClocks(const std::string& text) {
    std::istringstream lines(text);
    std::string kept, line;
    while (std::getline(lines, line))
        if (!TellsClock(line))
            kept += line + '\n';
    return kept;
}

/// All that a run leaves, by name, without clock times.
std::map<std::string, std::string> OutputsOf(const std::string& deck, int threads,
                                             const std::string& solver) {
    const std::string folder = MakeTemporaryFolder();
    WriteFile(folder + "/zurt.dat", deck);
    Invocation invocation = {{"--threads", std::to_string(threads), "zurt.dat"}, ""};
    if (!solver.empty())
        invocation.arguments.insert(invocation.arguments.end(), {"--solver", solver});
    const RunResult run = RunProgram(folder, invocation);
    std::map<std::string, std::string> outputs = {
        {"status", std::to_string(run.status)}, {"console", run.console}, {"errors", run.errors}};
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        outputs[entry.path().filename()] = WithoutClocks(ReadFile(entry.path()));
    return outputs;
}

std::map<std::string, std::string> ExpectSameOutputs(const std::string& what, const std::string& deck,
                                                     const std::string& solver = "") {
    std::map<std::string, std::string> one = OutputsOf(deck, 1, solver);
    for (const int threads : {2, 5}) {
        const std::map<std::string, std::string> several = OutputsOf(deck, threads, solver);
        EXPECT_EQ(one.size(), several.size()) << what;
        for (const auto& [name, text] : one)
            EXPECT_TRUE(several.count(name) > 0 && several.at(name) == text)
                << what << ", " << threads << " threads: " << name << " differs";
    }
    return one;
}

std::string Example(const std::string& name) {
    return ReadFile(ZURT_SOURCE_DIR "/examples/" + name + "/zurt.dat");
}

TEST(Threads, SmallDecksAndExamplesGiveTheSameBytes) {
    for (const SmallDeck& deck : SmallDecks())
        if (std::string(deck.name) != "sparse")
            ExpectSameOutputs(deck.name, deck.text);
    for (const char* name : {"brick20", "fibrous_sheet", "line_network", "nanochannel_reservoirs",
                             "radiating_edge", "ring", "torsion"})
        ExpectSameOutputs(name, Example(name));
}

TEST(Threads, ConjugateGradientsGiveTheSameBytes) {
    for (const char* name : {"brick20", "fibrous_sheet", "ring"})
        ExpectSameOutputs(name, Example(name), "cg");
    for (const char* name : {"fixed", "lines", "radial fibres"})
        ExpectSameOutputs(name, SmallDeckText(name), "cg");
}

// A block of bricks or, in the plane, of quadrilaterals, by a curve of two points.
BarDeck Block(bool plane) {
    BarDeck bar;
    bar.nx = 10;
    bar.ny = bar.nz = 5;
    bar.plane = plane;
    bar.periods = {{2, 0.01}};
    bar.diffusion = {{0.0, 1.0}, {1.0, 2.0}};
    return bar;
}

TEST(Threads, CurvesAtTheirExactEndGiveTheSameBytes) {
    BarDeck bar = Block(false); // it starts at 1.0, where the curve gives nothing
    EXPECT_EQ(ExpectSameOutputs("end of the curve", Build(bar))["status"], "0");
    bar.source = true;
    bar.sourceCurve = {{0.0, 1.0}, {0.01, 2.0}}; // and at the end of the first step neither does this one
    ExpectSameOutputs("end of the source", Build(bar));
}

// The curve ends at 0.8: the elements from the middle of the mesh on lie outside it.
TEST(Threads, TheFirstElementThatFailsStopsTheRun) {
    for (const bool plane : {false, true}) {
        BarDeck bar = Block(plane);
        bar.NDS = plane ? 1 : 0;
        bar.fixedFormat = true;
        bar.hold = false;
        bar.diffusion.back().first = 0.8;
        const int nodes = plane ? 11 * 6 : 11 * 6 * 6;
        bar.startRanges = {{nodes / 2, 0.5}, {nodes * 3 / 4, 0.9}, {nodes, 0.95}};
        const auto outputs = ExpectSameOutputs(plane ? "quadrilaterals" : "bricks", Build(bar));
        EXPECT_EQ(outputs.at("status"), "1");
        EXPECT_TRUE(Contains(outputs.at("errors"), "CURVE ARGUMENT IS OUT OF RANGE")) << outputs.at("errors");
    }
}

} // namespace
} // namespace zurt_test
