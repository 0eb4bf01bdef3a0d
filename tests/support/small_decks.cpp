#include "support/small_decks.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace zurt_test {

namespace {

constexpr const char* kNames[] = {
    "free",     "fixed",     "device",   "device lists", "sources",       "steady free",    "steady fixed",
    "two free", "two fixed", "built-in", "functions",    "device cards",  "quadrilaterals", "torsion",
    "lines",    "fibres",    "fit",      "direct",       "radial fibres", "sparse"};

std::string FileOf(std::string name) {
    std::replace(name.begin(), name.end(), ' ', '_');
    return ZURT_SOURCE_DIR "/tests/data/decks/" + name + ".dat";
}

std::vector<SmallDeck> ReadSmallDecks() {
    std::vector<SmallDeck> decks;
    for (const char* name : kNames) {
        std::ifstream file(FileOf(name), std::ios::binary);
        decks.push_back({name, {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()}});
        if (decks.back().text.empty())
            throw std::runtime_error(std::string("no file of the small deck ") + name);
    }
    return decks;
}

} // namespace

const std::vector<SmallDeck>& SmallDecks() {
    static const std::vector<SmallDeck> decks = ReadSmallDecks();
    return decks;
}

const std::string& SmallDeckText(const std::string& name) {
    for (const SmallDeck& deck : SmallDecks())
        if (name == deck.name)
            return deck.text;
    throw std::logic_error("no small deck is called " + name);
}

} // namespace zurt_test
