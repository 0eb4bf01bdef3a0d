#include "fuzz/deck_mutator.h"

#include "support/deck_lines.h"
#include "support/small_decks.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string_view>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace zurt_fuzz {

namespace {

using zurt_test::DeckItem;
using Dice = std::minstd_rand;
using Lines = std::vector<std::string>;

constexpr std::string_view kNumbers[] = {
    "0",      "1",     "-1",     "2",     "3",      "4",     "5",          "6",           "7",
    "8",      "9",     "10",     "12",    "20",     "21",    "22",         "23",          "27",
    "-2",     "50",    "99",     "100",   "1000",   "30000", "2147483647", "-2147483648", "2147483648",
    "1E-300", "1E300", "-1E300", "1E155", "1E-160", "1E999", "Infinity",   "-Infinity",   "NaN",
    "0.5",    "-0.5",  "0,5",    "1E-8",  "1E8",    "1D0",   "0.",         "-0.",         "1E-320",
    "1.5",    "0.1",   "3*1",    "2*0.5", "/",      "1E38",  "1E-10",      "99999999999"};

std::size_t Choose(Dice& dice, std::size_t count) {
    return count == 0 ? 0 : static_cast<std::size_t>(dice() / 7) % count;
}

Lines::iterator At(Lines& lines, std::size_t i) {
    return lines.begin() + static_cast<std::ptrdiff_t>(i);
}

/// As a rule a line that is not like the one above, since node cards are many; often one of the first.
std::size_t ChooseCard(Dice& dice, const Lines& lines) {
    std::size_t at = 0;
    for (int attempt = 0; attempt < 8; ++attempt) {
        at = Choose(dice, Choose(dice, 4) == 0 ? std::min<std::size_t>(lines.size(), 8) : lines.size());
        const std::size_t items = zurt_test::ItemsOf(lines[at]).size();
        const bool alike =
            at > 0 && zurt_test::ItemsOf(lines[at - 1]).size() == items && Choose(dice, 4) != 0;
        if (items != 0 && lines[at][0] != 'C' && !alike)
            break;
    }
    return at;
}

std::string ItemText(const std::string& line, const DeckItem& item) {
    return line.substr(item.begin, item.length);
}

// --- fields ---------------------------------------------------------------------------------------------------------

/// Another number near the one that stands there, or far from it by powers of ten.
std::string Moved(Dice& dice, const std::string& text) {
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (end == text.c_str())
        return "1";
    constexpr double kFactors[] = {-1.0, 0.5, 2.0, 10.0, 0.1, 1E3, 1E-3, 1E6, 1E-6, 1E12};
    const bool whole = text.find_first_of(".eEdD") == std::string::npos && std::abs(value) < 1E8;
    char moved[40];
    if (whole)
        std::snprintf(moved, sizeof moved, "%ld",
                      static_cast<long>(value) + static_cast<long>(Choose(dice, 7)) - 3);
    else
        std::snprintf(moved, sizeof moved, "%.6G", value * kFactors[Choose(dice, std::size(kFactors))]);
    return moved;
}

std::string NewText(Dice& dice, const Lines& lines, const std::string& text) {
    const std::size_t kind = Choose(dice, 8);
    if (kind < 2)
        return Moved(dice, text);
    if (kind == 2) {
        const std::string& other = lines[Choose(dice, lines.size())];
        const std::vector<DeckItem> items = zurt_test::ItemsOf(other);
        return items.empty() ? "" : ItemText(other, items[Choose(dice, items.size())]);
    }
    if (kind == 3)
        return Choose(dice, 4) == 0 ? "" : std::string(1, static_cast<char>('0' + Choose(dice, 4)));
    return std::string(kNumbers[Choose(dice, std::size(kNumbers))]);
}

/// Another text in the place of a field; at times none, or the field twice.
void ChangeField(Dice& dice, Lines& lines) {
    std::string& line = lines[ChooseCard(dice, lines)];
    const std::vector<DeckItem> items = zurt_test::ItemsOf(line);
    if (items.empty())
        return;
    const DeckItem item = items[Choose(dice, items.size())];
    const std::size_t kind = Choose(dice, 16);
    if (kind == 0)
        line.erase(item.begin, item.length);
    else if (kind == 1)
        line.insert(item.begin, ItemText(line, item) + " ");
    else
        line = zurt_test::WithItem(line, item, NewText(dice, lines, ItemText(line, item)));
}

/// The same field in a run of cards, such as a value at every node.
void ChangeColumn(Dice& dice, Lines& lines) {
    const std::size_t first = ChooseCard(dice, lines);
    const std::size_t count = zurt_test::ItemsOf(lines[first]).size();
    if (count == 0)
        return;
    const std::size_t column = Choose(dice, count);
    const std::string text =
        NewText(dice, lines, ItemText(lines[first], zurt_test::ItemsOf(lines[first])[column]));
    const std::size_t rows = 2 + Choose(dice, 30);
    for (std::size_t i = first; i < std::min(first + rows, lines.size()); ++i) {
        const std::vector<DeckItem> items = zurt_test::ItemsOf(lines[i]);
        if (items.size() == count)
            lines[i] = zurt_test::WithItem(lines[i], items[column], text);
    }
}

/// A card in the other of the two ways of the deck: columns of five, or items between blanks.
void Realign(Dice& dice, Lines& lines) {
    std::string& line = lines[ChooseCard(dice, lines)];
    std::string aligned;
    const std::size_t width = Choose(dice, 2) == 0 ? 5 : 10;
    for (const DeckItem& item : zurt_test::ItemsOf(line)) {
        const std::string text = ItemText(line, item);
        aligned += std::string(text.size() < width ? width - text.size() : 1, ' ') + text;
    }
    line = aligned + "\n";
}

// --- lines ----------------------------------------------------------------------------------------------------------

void ChangeLines(Dice& dice, Lines& lines) {
    const std::size_t from = Choose(dice, lines.size()), to = Choose(dice, lines.size());
    const std::size_t count = std::min(1 + Choose(dice, 3), lines.size() - from);
    const Lines block(At(lines, from), At(lines, from + count));
    const std::size_t kind = Choose(dice, 5);
    if (kind == 0)
        std::swap(lines[from], lines[to]);
    else if (kind < 3)
        lines.insert(At(lines, kind == 1 ? from : to), block.begin(), block.end());
    else if (kind == 3)
        lines.insert(At(lines, from), Choose(dice, 2) == 0 ? "\n" : "STOP\n");
    else if (lines.size() > count)
        lines.erase(At(lines, from), At(lines, from + count));
}

void CutEnd(Dice& dice, Lines& lines) {
    lines.resize(1 + Choose(dice, lines.size()));
    if (Choose(dice, 2) == 0)
        lines.emplace_back("STOP\n");
}

/// Cards of the other deck in the place of some of this one, or between them.
void TakeCards(Dice& dice, Lines& lines, const Lines& other) {
    if (other.empty())
        return;
    const std::size_t from = Choose(dice, other.size());
    const std::size_t count = std::min(1 + Choose(dice, 8), other.size() - from);
    const std::size_t to = Choose(dice, 2) == 0 ? std::min(from, lines.size()) : Choose(dice, lines.size());
    if (Choose(dice, 2) == 0)
        lines.erase(At(lines, to), At(lines, std::min(to + count, lines.size())));
    const auto first = other.begin() + static_cast<std::ptrdiff_t>(from);
    lines.insert(At(lines, to), first, first + static_cast<std::ptrdiff_t>(count));
}

// --- bytes ----------------------------------------------------------------------------------------------------------

// What libFuzzer itself does to bytes.
void ChangeBytes(Dice& dice, Lines& lines) {
    std::string& line = lines[Choose(dice, lines.size())];
    const std::size_t size = line.size();
    line.resize(2 * size + 16);
    line.resize(LLVMFuzzerMutate(reinterpret_cast<std::uint8_t*>(line.data()), size, line.size()));
}

void InsertMass(Dice& dice, Lines& lines) {
    constexpr char kFill[] = {' ', '0', '1', ',', ';', '.', '*', '\0', '\n', '9'};
    std::string& line = lines[Choose(dice, lines.size())];
    const char fill = kFill[Choose(dice, sizeof kFill)];
    line.insert(Choose(dice, line.size() + 1), std::string(Choose(dice, 2) == 0 ? 120 : 10000, fill));
}

// --- decks ----------------------------------------------------------------------------------------------------------

const Lines& AnySmallDeck(Dice& dice) {
    static const std::vector<Lines> decks = [] {
        std::vector<Lines> all;
        for (const zurt_test::SmallDeck& deck : zurt_test::SmallDecks())
            all.push_back(zurt_test::SplitDeck(deck.text));
        return all;
    }();
    return decks[Choose(dice, decks.size())];
}

void ChangeOnce(Dice& dice, Lines& lines) {
    if (lines.empty())
        lines.emplace_back("\n");
    const std::size_t kind = Choose(dice, 32);
    if (kind < 17)
        ChangeField(dice, lines);
    else if (kind < 20)
        ChangeColumn(dice, lines);
    else if (kind < 21)
        Realign(dice, lines);
    else if (kind < 25)
        ChangeLines(dice, lines);
    else if (kind < 28)
        TakeCards(dice, lines, AnySmallDeck(dice));
    else if (kind < 29)
        zurt_test::AddProblem(lines, AnySmallDeck(dice), Choose(dice, 2) == 0);
    else if (kind < 30)
        CutEnd(dice, lines);
    else if (Choose(dice, 4) != 0)
        ChangeBytes(dice, lines);
    else
        InsertMass(dice, lines);
}

/// Near seeds give near first numbers.
Dice MakeDice(std::uint32_t seed) {
    Dice dice(seed * 2654435761U + 1U);
    dice.discard(3);
    return dice;
}

} // namespace

std::string ChangeDeck(const std::string& deck, std::uint32_t seed, std::size_t most) {
    Dice dice = MakeDice(seed);
    Lines lines = zurt_test::SplitDeck(deck);
    for (std::size_t changes = 1 + Choose(dice, 2) * Choose(dice, 4); changes > 0; --changes)
        ChangeOnce(dice, lines);
    return zurt_test::JoinDeck(lines).substr(0, most);
}

std::string CrossDecks(const std::string& deck, const std::string& other, std::uint32_t seed,
                       std::size_t most) {
    Dice dice = MakeDice(seed);
    Lines lines = zurt_test::SplitDeck(deck);
    const Lines second = zurt_test::SplitDeck(other);
    if (lines.empty() || second.empty())
        return deck + other;
    const std::size_t kind = Choose(dice, 4);
    if (kind == 0) {
        lines.resize(1 + Choose(dice, lines.size()));
        const std::size_t from =
            Choose(dice, 2) == 0 ? std::min(lines.size(), second.size()) : Choose(dice, second.size());
        lines.insert(lines.end(), second.begin() + static_cast<std::ptrdiff_t>(from), second.end());
    } else if (kind == 1) {
        zurt_test::AddProblem(lines, second, Choose(dice, 2) == 0);
    } else {
        TakeCards(dice, lines, second);
    }
    return zurt_test::JoinDeck(lines).substr(0, most);
}

} // namespace zurt_fuzz
