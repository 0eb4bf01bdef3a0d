#include "solver/row_order.h"

#include <algorithm>

namespace zurt {

namespace {

using Rows = std::vector<std::int32_t>; // equations less 1, in the order of their elimination

/// Rows of the parts on average, from which on they are cut, and the parts from which on they are not.
constexpr std::int32_t kLargePart = 2048;
constexpr std::size_t kMostParts = 2;
/// A separator takes at most one row in so many of the part that is cut.
constexpr std::size_t kSeparatorShare = 4;

// Where an equation stands while parts are cut: its part's number, and whether it lies behind the cut.
struct Place {
    std::int32_t part = -1; // -1: in a separator
    bool behind = false, couples = false;
};

// Places the rows of a part that is cut behind `cut` of them.
void PlaceRows(const Rows& part, std::int32_t number, std::size_t cut, std::vector<Place>& places) {
    for (std::size_t i = 0; i < part.size(); ++i)
        places[static_cast<std::size_t>(part[i])] = {number, i >= cut, false};
}

// Marks what lies behind a cut and couples with rows ahead of it. An element lies in one part, separators left aside.
void MarkSeparators(const ElementEquations& elements, std::vector<Place>& places) {
    for (std::size_t e = 0; e + 1 < elements.start.size(); ++e) {
        const std::int32_t* const first = elements.equation.data() + elements.start[e];
        const std::int32_t* const end = elements.equation.data() + elements.start[e + 1];
        const auto at = [&](std::int32_t equation) -> Place& {
            return places[static_cast<std::size_t>(equation - 1)];
        };
        if (std::any_of(first, end, [&](std::int32_t i) { return at(i).part >= 0 && !at(i).behind; }))
            for (const std::int32_t* i = first; i != end; ++i)
                at(*i).couples = at(*i).behind;
    }
}

std::size_t CountCoupling(const Rows& part, const std::vector<Place>& places) {
    return static_cast<std::size_t>(std::count_if(part.begin(), part.end(), [&](std::int32_t i) {
        return places[static_cast<std::size_t>(i)].couples;
    }));
}

// Marks the separators of all parts; false when one of them is too large.
bool CutParts(const ElementEquations& elements, const std::vector<Rows>& parts, std::vector<Place>& places) {
    std::vector<std::size_t> width(parts.size(), 0); // of the separator
    for (int turn = 0; turn < 2; ++turn) { // first in the middle, then with the separator in the middle
        for (std::size_t p = 0; p < parts.size(); ++p)
            PlaceRows(parts[p], static_cast<std::int32_t>(p), (parts[p].size() - width[p]) / 2, places);
        MarkSeparators(elements, places);
        for (std::size_t p = 0; p < parts.size(); ++p) {
            width[p] = CountCoupling(parts[p], places);
            if (width[p] > parts[p].size() / kSeparatorShare)
                return false;
        }
    }
    return true;
}

// The rows ahead of the cut, those behind it from the far end, and the separator.
void TakeApart(const Rows& part, std::vector<Place>& places, std::vector<Rows>& halves,
               std::vector<Rows>& separators) {
    Rows ahead, behind, separator;
    for (const std::int32_t i : part)
        if (!places[static_cast<std::size_t>(i)].behind)
            ahead.push_back(i);
    for (auto i = part.rbegin(); i != part.rend(); ++i) {
        Place& place = places[static_cast<std::size_t>(*i)];
        if (place.behind)
            (place.couples ? separator : behind).push_back(*i);
        if (place.couples)
            place = {};
    }
    halves.push_back(std::move(ahead));
    halves.push_back(std::move(behind));
    separators.push_back(std::move(separator));
}

void AddStage(const std::vector<Rows>& parts, RowOrder& order) {
    order.stage.push_back(static_cast<std::int32_t>(order.part.size()));
    for (const Rows& part : parts) {
        order.part.push_back(static_cast<std::int32_t>(order.equation.size()));
        order.equation.insert(order.equation.end(), part.begin(), part.end());
    }
}

} // namespace

RowOrder MakeRowOrder(const ElementEquations& elements, std::int32_t JEDN) {
    std::vector<Rows> parts(1);
    for (std::int32_t i = 0; i < JEDN; ++i)
        parts[0].push_back(i);
    std::vector<Place> places(static_cast<std::size_t>(JEDN));
    std::vector<std::vector<Rows>> separators; // from the last stage on
    while (parts.size() < kMostParts && static_cast<std::size_t>(JEDN) >= parts.size() * kLargePart &&
           CutParts(elements, parts, places)) {
        std::vector<Rows> halves;
        separators.emplace_back();
        for (const Rows& part : parts)
            TakeApart(part, places, halves, separators.back());
        parts = std::move(halves);
    }
    RowOrder order;
    AddStage(parts, order);
    for (auto stage = separators.rbegin(); stage != separators.rend(); ++stage)
        AddStage(*stage, order);
    order.stage.push_back(static_cast<std::int32_t>(order.part.size()));
    order.part.push_back(JEDN);
    order.row.resize(static_cast<std::size_t>(JEDN));
    for (std::size_t i = 0; i < order.row.size(); ++i)
        order.row[static_cast<std::size_t>(order.equation[i])] = static_cast<std::int32_t>(i);
    return order;
}

void RenumberEquations(ElementEquations& elements, const RowOrder& order) {
    for (std::int32_t& equation : elements.equation)
        equation = order.row[static_cast<std::size_t>(equation - 1)] + 1;
}

} // namespace zurt
