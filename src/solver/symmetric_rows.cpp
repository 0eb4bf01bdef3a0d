#include "solver/symmetric_rows.h"

#include <algorithm>

namespace zurt {

namespace {

/// The elements of each equation: of equation i at element[start[i-1]] and behind, each from 0.
struct ElementsOfEquations {
    std::vector<Word> start;
    std::vector<std::int32_t> element;
};

ElementsOfEquations ElementsByEquation(const ElementEquations& elements, std::int32_t JEDN) {
    ElementsOfEquations by;
    by.start.assign(static_cast<std::size_t>(JEDN) + 1, 0);
    for (const std::int32_t i : elements.equation)
        ++by.start[static_cast<std::size_t>(i)];
    for (std::size_t i = 1; i < by.start.size(); ++i)
        by.start[i] += by.start[i - 1];
    by.element.resize(elements.equation.size());
    std::vector<Word> next(by.start.begin(), by.start.end() - 1);
    for (std::size_t e = 0; e + 1 < elements.start.size(); ++e)
        for (Word k = elements.start[e]; k < elements.start[e + 1]; ++k) {
            const auto row = static_cast<std::size_t>(elements.equation[static_cast<std::size_t>(k)] - 1);
            by.element[static_cast<std::size_t>(next[row]++)] = static_cast<std::int32_t>(e);
        }
    return by;
}

} // namespace

void AddElementEquations(ElementEquations& elements, ConstIntArray LM, Word ND) {
    if (elements.start.empty())
        elements.start.push_back(0);
    for (Word k = 1; k <= ND; ++k)
        if (LM(k) > 0)
            elements.equation.push_back(LM(k));
    elements.start.push_back(static_cast<Word>(elements.equation.size()));
}

void MakePattern(SymmetricRows& rows, const ElementEquations& elements, std::int32_t JEDN) {
    const ElementsOfEquations by = ElementsByEquation(elements, JEDN);
    rows.JEDN = JEDN;
    rows.start.assign(1, 0);
    rows.start.reserve(static_cast<std::size_t>(JEDN) + 1);
    rows.column.clear();
    std::vector<std::int32_t> seenIn(static_cast<std::size_t>(JEDN),
                                     -1); // the last row that took this column
    for (std::int32_t i = 0; i < JEDN; ++i) {
        const auto first = static_cast<std::ptrdiff_t>(rows.column.size());
        for (Word k = by.start[static_cast<std::size_t>(i)]; k < by.start[static_cast<std::size_t>(i) + 1];
             ++k) {
            const auto e = static_cast<std::size_t>(by.element[static_cast<std::size_t>(k)]);
            for (Word at = elements.start[e]; at < elements.start[e + 1]; ++at) {
                const std::int32_t j = elements.equation[static_cast<std::size_t>(at)] - 1;
                if (j < i && seenIn[static_cast<std::size_t>(j)] != i) {
                    seenIn[static_cast<std::size_t>(j)] = i;
                    rows.column.push_back(j);
                }
            }
        }
        std::sort(rows.column.begin() + first, rows.column.end());
        rows.column.push_back(i);
        rows.start.push_back(static_cast<Word>(rows.column.size()));
    }
    rows.value.assign(rows.column.size() + 1, 0.0);
    rows.below.clear();
}

void IndexColumns(SymmetricRows& rows) {
    const auto JEDN = static_cast<std::size_t>(rows.JEDN);
    rows.below.assign(JEDN + 1, 0);
    for (const std::int32_t column : rows.column)
        ++rows.below[static_cast<std::size_t>(column) + 1];
    for (std::size_t i = 0; i < JEDN; ++i)
        rows.below[i + 1] += rows.below[i] - 1; // without the diagonal
    rows.row.resize(rows.column.size() - JEDN);
    rows.at.resize(rows.row.size());
    std::vector<Word> next(rows.below.begin(), rows.below.end() - 1);
    for (std::size_t i = 0; i < JEDN; ++i)
        for (Word k = rows.start[i]; k < rows.start[i + 1] - 1; ++k) {
            Word& place = next[static_cast<std::size_t>(rows.column[static_cast<std::size_t>(k)])];
            rows.row[static_cast<std::size_t>(place)] = static_cast<std::int32_t>(i);
            rows.at[static_cast<std::size_t>(place++)] = static_cast<std::int32_t>(k - rows.start[i]);
        }
}

Word PlaceOfEntry(const SymmetricRows& rows, std::int32_t i, std::int32_t j) {
    const auto row = static_cast<std::size_t>(std::max(i, j));
    const std::int32_t column = std::min(i, j) - 1;
    const auto first = rows.column.begin() + rows.start[row - 1],
               last = rows.column.begin() + rows.start[row];
    const auto found = std::lower_bound(first, last, column);
    return found == last || *found != column ? -1 : found - rows.column.begin();
}

} // namespace zurt
