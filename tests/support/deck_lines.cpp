#include "support/deck_lines.h"

#include <algorithm>

namespace zurt_test {

std::vector<std::string> SplitDeck(const std::string& deck) {
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < deck.size();) {
        const std::size_t end = std::min(deck.find('\n', at), deck.size() - 1);
        lines.push_back(deck.substr(at, end + 1 - at));
        at = end + 1;
    }
    return lines;
}

std::string JoinDeck(const std::vector<std::string>& lines) {
    std::string deck;
    for (const std::string& line : lines)
        deck += line;
    return deck;
}

std::vector<DeckItem> ItemsOf(const std::string& line) {
    std::vector<DeckItem> items;
    for (std::size_t at = 0; (at = line.find_first_not_of(" ,\n", at)) != std::string::npos;) {
        const std::size_t end = std::min(line.find_first_of(" ,\n", at), line.size());
        items.push_back({at, end - at});
        at = end;
    }
    return items;
}

std::string WithItem(const std::string& line, const DeckItem& item, std::string_view text) {
    std::string head = line.substr(0, item.begin);
    while (head.size() + text.size() > item.begin + item.length && head.size() > 1 && head.back() == ' ' &&
           head[head.size() - 2] == ' ')
        head.pop_back();
    while (head.size() + text.size() < item.begin + item.length)
        head += ' ';
    return head.append(text) + line.substr(item.begin + item.length);
}

void AddProblem(std::vector<std::string>& lines, const std::vector<std::string>& next, bool cardBetween) {
    while (lines.size() > 1 && lines.back().compare(0, 4, "STOP") == 0)
        lines.pop_back();
    if (cardBetween)
        lines.emplace_back("NEXT\n");
    lines.insert(lines.end(), next.begin(), next.end());
}

} // namespace zurt_test
