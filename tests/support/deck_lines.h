// A deck as lines and items, to be changed.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zurt_test {

/// The lines of a deck, each with its line end.
std::vector<std::string> SplitDeck(const std::string& deck);
std::string JoinDeck(const std::vector<std::string>& lines);

/// Where the items of a line stand: runs of characters between blanks and commas.
struct DeckItem {
    std::size_t begin = 0;
    std::size_t length = 0;
};
std::vector<DeckItem> ItemsOf(const std::string& line);

/// Puts `text` in the place of an item. What is longer than the item takes the blanks ahead of it, as far as there are
/// more than one, so that the columns behind it stay.
std::string WithItem(const std::string& line, const DeckItem& item, std::string_view text);

/// Puts another deck behind this one as its next problem; fixed decks take a card between the two, free ones don't.
void AddProblem(std::vector<std::string>& lines, const std::vector<std::string>& next, bool cardBetween);

} // namespace zurt_test
