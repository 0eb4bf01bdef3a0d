// Hundreds of decks with random faults through the real binary: a crash, a hang, a read of foreign memory, endless
// memory. Seeds are fixed, so a failure comes again; the deck of a failing run is kept beside the test.
#include "orderly_end.h"
#include "support/mutate.h"
#include "support/small_decks.h"

#include <algorithm>
#include <filesystem>

namespace {

using namespace zurt_test;

// A sanitized run takes a tenth of a second where a plain one takes a few milliseconds.
constexpr std::uint32_t kRuns = kSanitized ? 100 : 250;

void RunMutations(const std::vector<std::string>& decks, std::uint32_t firstSeed) {
    for (std::uint32_t seed = firstSeed; seed < firstSeed + kRuns; ++seed) {
        const std::string deck = MutateDeck(decks, seed);
        const std::string folder = MakeTemporaryFolder();
        WriteFile(folder + "/zurt.dat", deck);
        const RunResult run = RunInFolder(folder, "\n\n\n", kSecondsToEnd);
        if (!EndsOrderly(run)) {
            const std::string kept = "damaged-" + std::to_string(seed) + ".dat";
            WriteFile(kept, deck);
            ExpectOrderlyEnd(run, "the deck is kept in " + kept);
        }
        std::filesystem::remove_all(folder);
    }
    ExpectLittleMemory();
}

std::vector<std::string> TextsOfSmallDecks() {
    std::vector<std::string> decks;
    for (const SmallDeck& deck : SmallDecks())
        decks.push_back(deck.text);
    return decks;
}

// A deck that is not good reaches few readers.
TEST(Fuzz, SmallDecksAreGood) {
    for (const SmallDeck& deck : SmallDecks()) {
        const RunResult run = RunDeck(deck.text, kSecondsToEnd);
        EXPECT_EQ(run.status, 0) << deck.name << "\n" << run.errors;
    }
}

TEST(Fuzz, SmallDecks1) {
    RunMutations(TextsOfSmallDecks(), 10000);
}

TEST(Fuzz, SmallDecks2) {
    RunMutations(TextsOfSmallDecks(), 20000);
}

TEST(Fuzz, SmallDecks3) {
    RunMutations(TextsOfSmallDecks(), 30000);
}

// The examples bring what the small decks don't have; those that solve much are left out.
TEST(Fuzz, Examples) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(ZURT_SOURCE_DIR "/examples"))
        names.push_back(entry.path().string() + "/zurt.dat");
    std::sort(names.begin(), names.end());
    std::vector<std::string> decks;
    for (const std::string& name : names)
        if (std::filesystem::exists(name) && std::filesystem::file_size(name) < 20000)
            decks.push_back(ReadFile(name));
    ASSERT_FALSE(decks.empty());
    RunMutations(decks, 40000);
}

} // namespace
