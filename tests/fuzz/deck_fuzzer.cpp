// The target of libFuzzer: decks through the whole job. See run in this folder.
//
// A deck to which an oracle objects ends the process, as a crash does. With ZURT_FUZZ_KEEP in the environment it goes into
// that folder instead, up to a number of each oracle, and the search goes on.
#include "fuzz/deck_mutator.h"
#include "fuzz/oracles.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

namespace zurt_fuzz {

namespace {

constexpr int kMostKept = 20;

std::string TextOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

std::size_t PutText(const std::string& text, std::uint8_t* out) {
    std::memcpy(out, text.data(), text.size());
    return text.size();
}

void KeepDeck(const std::string& folder, const std::string& deck, const std::string& objection) {
    static std::map<std::string, int> kept;
    const std::string oracle = objection.substr(0, objection.find(':'));
    if (kept[oracle] == kMostKept)
        return;
    char name[40];
    std::snprintf(name, sizeof name, "-%016llx", static_cast<unsigned long long>(HashOf(deck)));
    std::FILE* file = std::fopen((folder + "/" + oracle + name).c_str(), "wbx");
    if (file == nullptr) // as a rule an earlier search has kept it
        return;
    ++kept[oracle];
    std::fwrite(deck.data(), 1, deck.size(), file);
    std::fclose(file);
    std::fprintf(stderr, "kept %s%s: %s\n", oracle.c_str(), name, objection.c_str());
}

} // namespace

} // namespace zurt_fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zurt_fuzz;
    static const char* const folder = std::getenv("ZURT_FUZZ_KEEP");
    const std::string deck = TextOf(data, size);
    const std::string objection = CheckDeck(deck);
    if (objection.empty())
        return 0;
    if (folder == nullptr) {
        std::fprintf(stderr, "an oracle objects: %s\n", objection.c_str());
        std::abort();
    }
    KeepDeck(folder, deck, objection);
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most,
                                               unsigned seed) {
    using namespace zurt_fuzz;
    return PutText(ChangeDeck(TextOf(data, size), seed, most), data);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* first, std::size_t firstSize,
                                                 const std::uint8_t* second, std::size_t secondSize,
                                                 std::uint8_t* out, std::size_t most, unsigned seed) {
    using namespace zurt_fuzz;
    return PutText(CrossDecks(TextOf(first, firstSize), TextOf(second, secondSize), seed, most), out);
}
