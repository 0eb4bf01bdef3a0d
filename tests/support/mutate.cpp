#include "support/mutate.h"

#include <algorithm>

namespace zurt_test {

namespace {

using Lines = std::vector<std::string>;

// A generator of our own: the distributions of the standard library differ from one implementation to the next.
struct Dice {
    std::uint64_t state;
};

std::uint64_t Roll(Dice& dice) { // splitmix64 (Steele, Lea and Flood 2014)
    std::uint64_t z = dice.state += 0x9e3779b97f4a7c15U;
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
    return z ^ (z >> 31);
}

/// 0..count-1; 0 for an empty choice.
std::size_t Choose(Dice& dice, std::size_t count) {
    return count == 0 ? 0 : static_cast<std::size_t>(Roll(dice) % count);
}

template <std::size_t N> std::string_view Pick(Dice& dice, const std::string_view (&texts)[N]) {
    return texts[Choose(dice, N)];
}

constexpr std::string_view kNumbers[] = {
    "-1",       "0",      "1",     "2",           "3",      "4",          "5",           "6",
    "7",        "8",      "9",     "10",          "11",     "20",         "21",          "22",
    "27",       "-2",     "99",    "-2147483648", "-99999", "2147483648", "99999999999", "1E-320",
    "1E308",    "-1E308", "1E999", "1E-999",      "0.5",    "-0.",        "1D99999",     "NaN",
    "Infinity", "x",      "1.2.3", "+",           "1*",     "3*1",        "199999999*0"};

constexpr std::string_view kInsertions[] = {
    "/", ",",      ";",    ",,", "*",    " ", "\n", "\r", "\t", "\n\n", "-",        ".",   "E",  "D",  "0",
    "9", "1 1 1 ", "STOP", "C ", "5*1 ", "!", "'",  "\"", "(",  "\xff", "\xc3\xa9", "0*1", "5*", " / "};

std::string& AnyLine(Dice& dice, Lines& lines) {
    return lines[Choose(dice, lines.size())];
}

/// A line with items, as a rule one that is not like the line above: node cards are many and their reader is one.
std::string& AnyCard(Dice& dice, Lines& lines) {
    std::size_t at = 0;
    for (int attempt = 0; attempt < 8; ++attempt) {
        at = Choose(dice, lines.size());
        const std::size_t items = ItemsOf(lines[at]).size();
        const bool alike = at > 0 && ItemsOf(lines[at - 1]).size() == items && Choose(dice, 4) != 0;
        if (items != 0 && lines[at][0] != 'C' && !alike)
            break;
    }
    return lines[at];
}

void ReplaceNumber(Dice& dice, Lines& lines) {
    std::string& line = AnyCard(dice, lines);
    const std::vector<DeckItem> items = ItemsOf(line);
    if (!items.empty())
        line = WithItem(line, items[Choose(dice, items.size())], Pick(dice, kNumbers));
}

void ChangeDigit(Dice& dice, Lines& lines) {
    std::string& line = AnyCard(dice, lines);
    const std::size_t start = Choose(dice, line.size());
    for (std::size_t i = 0; i < line.size(); ++i) {
        char& c = line[(start + i) % line.size()];
        if (c >= '0' && c <= '9') {
            c = static_cast<char>('0' + Choose(dice, 10));
            return;
        }
    }
}

void ExchangeItems(Dice& dice, Lines& lines) {
    std::string& line = AnyCard(dice, lines);
    const std::vector<DeckItem> items = ItemsOf(line);
    std::size_t a = Choose(dice, items.size()), b = Choose(dice, items.size());
    if (a == b)
        return;
    if (a > b)
        std::swap(a, b);
    const std::string first = line.substr(items[a].begin, items[a].length);
    const std::string second = line.substr(items[b].begin, items[b].length);
    line.replace(items[b].begin, items[b].length, first); // from behind, so that the other place holds
    line.replace(items[a].begin, items[a].length, second);
}

void ChangeBytes(Dice& dice, Lines& lines) {
    std::string& line = AnyLine(dice, lines);
    if (line.empty())
        return;
    const std::size_t at = Choose(dice, line.size());
    switch (Choose(dice, 4)) {
    case 0:
        line[at] = static_cast<char>(Choose(dice, 256));
        break;
    case 1:
        line[at] = static_cast<char>(line[at] ^ (1 << Choose(dice, 8)));
        break;
    case 2:
        line.erase(at, 1 + Choose(dice, 8));
        break;
    default:
        line.insert(at, Pick(dice, kInsertions));
    }
}

void InsertMass(Dice& dice, Lines& lines) {
    constexpr char kFill[] = {' ', '0', '1', ',', ';', '.', '*', '\0', '\n', '9'};
    std::string& line = AnyLine(dice, lines);
    const char fill = kFill[Choose(dice, sizeof kFill)];
    line.insert(Choose(dice, line.size() + 1), std::string(Choose(dice, 2) == 0 ? 120 : 10000, fill));
}

void ChangeLines(Dice& dice, Lines& lines) {
    const std::size_t from = Choose(dice, lines.size()), to = Choose(dice, lines.size());
    const auto place = lines.begin() + static_cast<std::ptrdiff_t>(from);
    switch (Choose(dice, 4)) {
    case 0:
        if (lines.size() > 1)
            lines.erase(place);
        break;
    case 1:
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(to), std::string(*place));
        break;
    case 2:
        std::swap(lines[from], lines[to]);
        break;
    default:
        lines.insert(place, "\n");
    }
}

void CutEnd(Dice& dice, Lines& lines) {
    const std::string deck = JoinDeck(lines);
    lines = SplitDeck(deck.substr(0, Choose(dice, deck.size())));
    if (lines.empty())
        lines.emplace_back("");
}

/// The tail of another deck behind the head of this one.
void JoinTail(Dice& dice, Lines& lines, const Lines& other) {
    lines.resize(1 + Choose(dice, lines.size()));
    const std::size_t from = Choose(dice, other.size());
    lines.insert(lines.end(), other.begin() + static_cast<std::ptrdiff_t>(from), other.end());
}

} // namespace

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

void AddProblem(Lines& lines, const Lines& next, bool cardBetween) {
    while (lines.size() > 1 && lines.back().compare(0, 4, "STOP") == 0)
        lines.pop_back();
    if (cardBetween)
        lines.emplace_back("NEXT\n");
    lines.insert(lines.end(), next.begin(), next.end());
}

std::string MutateDeck(const std::vector<std::string>& decks, std::uint32_t seed) {
    Dice dice{seed};
    Lines lines = SplitDeck(decks[Choose(dice, decks.size())]);
    if (Choose(dice, 4) == 0) {
        const Lines next = SplitDeck(decks[Choose(dice, decks.size())]);
        AddProblem(lines, next, Choose(dice, 2) == 0);
    }
    for (std::size_t faults = 1 + Choose(dice, 4); faults > 0; --faults) {
        const std::size_t kind = Choose(dice, 16);
        if (kind < 6)
            ReplaceNumber(dice, lines);
        else if (kind < 8)
            ChangeDigit(dice, lines);
        else if (kind < 9)
            ExchangeItems(dice, lines);
        else if (kind < 11)
            ChangeBytes(dice, lines);
        else if (kind < 12)
            InsertMass(dice, lines);
        else if (kind < 14)
            ChangeLines(dice, lines);
        else if (kind < 15)
            CutEnd(dice, lines);
        else
            JoinTail(dice, lines, SplitDeck(decks[Choose(dice, decks.size())]));
    }
    return JoinDeck(lines);
}

} // namespace zurt_test
