// The small good decks of tests/data/decks, which among them reach every reader of cards. Each runs in a few milliseconds.
#pragma once

#include <string>
#include <vector>

namespace zurt_test {

struct SmallDeck {
    std::string name, text; // the name is that of its file, with blanks
};

/// Free and fixed format, with and without devices, steady and transient, one problem and two.
const std::vector<SmallDeck>& SmallDecks();

/// The text of the deck of that name.
const std::string& SmallDeckText(const std::string& name);

} // namespace zurt_test
