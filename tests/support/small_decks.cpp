#include "support/small_decks.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace zurt_test {

namespace {

std::vector<SmallDeck> ReadSmallDecks() {
    std::vector<SmallDeck> decks;
    for (const auto& entry : std::filesystem::directory_iterator(ZURT_SOURCE_DIR "/tests/data/decks")) {
        std::ifstream file(entry.path(), std::ios::binary);
        std::string name = entry.path().stem().string();
        std::replace(name.begin(), name.end(), '_', ' ');
        decks.push_back({name, {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()}});
    }
    std::sort(decks.begin(), decks.end(),
              [](const auto& one, const auto& other) { return one.name < other.name; });
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
