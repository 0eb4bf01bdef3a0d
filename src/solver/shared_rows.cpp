#include "solver/shared_rows.h"

#include <algorithm>
#include <utility>

namespace zurt {

namespace {

// True when the element is the one that stands next among those known.
bool ComesInTurn(const SharedRows& shared, ConstIntArray LM, Word ND) {
    const AddedElements& known = shared.known;
    return shared.late.nodes.empty() && shared.elementInHand < known.nodes.size() &&
           known.nodes[shared.elementInHand] == ND &&
           std::equal(LM.data, LM.data + ND,
                      known.equation.begin() + static_cast<std::ptrdiff_t>(shared.equationInHand));
}

std::uint32_t PlaceOf(const SymmetricRows& rows, std::int32_t i, std::int32_t j) {
    if (i <= 0 || j <= 0)
        return static_cast<std::uint32_t>(rows.column.size()); // the word for what is dropped
    return static_cast<std::uint32_t>(PlaceOfEntry(rows, i, j));
}

// Places of all elements in the pattern.
void FindPlaces(const SymmetricRows& rows, AddedElements& elements) {
    elements.place.clear();
    const std::int32_t* LM = elements.equation.data();
    for (const std::int32_t ND : elements.nodes) {
        for (std::int32_t i = 0; i < ND; ++i)
            for (std::int32_t j = i; j < ND; ++j)
                elements.place.push_back(PlaceOf(rows, LM[i], LM[j]));
        LM += ND;
    }
}

SymmetricRows PatternOf(const AddedElements& elements, std::int32_t JEDN) {
    ElementEquations equations;
    const std::int32_t* LM = elements.equation.data();
    for (const std::int32_t ND : elements.nodes) {
        AddElementEquations(equations, ConstIntArray(LM, ND), ND);
        LM += ND;
    }
    if (elements.nodes.empty())
        equations.start.push_back(0);
    SymmetricRows rows;
    MakePattern(rows, equations, JEDN);
    return rows;
}

// Elements of this system alone have given values, so whatever is not 0 has a place among theirs.
void TakeValues(const SymmetricRows& from, SymmetricRows& to) {
    for (std::int32_t i = 0; i < from.JEDN; ++i)
        for (auto k = static_cast<std::size_t>(from.start[static_cast<std::size_t>(i)]);
             k < static_cast<std::size_t>(from.start[static_cast<std::size_t>(i) + 1]); ++k)
            if (from.value[k] != 0.0)
                to.value[PlaceOf(to, i + 1, from.column[k] + 1)] = from.value[k];
}

// Rows that no element of this process has an equation in.
std::vector<bool> UntouchedRows(const SharedRows& shared) {
    std::vector<bool> untouched(static_cast<std::size_t>(shared.rows.JEDN), true);
    for (const std::int32_t equation : shared.known.equation)
        if (equation > 0)
            untouched[static_cast<std::size_t>(equation) - 1] = false;
    return untouched;
}

} // namespace

void ClearSharedRows(SharedRows& shared) {
    std::fill(shared.rows.value.begin(), shared.rows.value.end(), 0.0);
    shared.late = {};
    shared.elementInHand = shared.equationInHand = shared.placeInHand = 0;
}

void AddToSharedRows(SharedRows& shared, ConstRealArray S, ConstIntArray LM, Word ND) {
    const Word entries = ND * (ND + 1) / 2;
    if (!ComesInTurn(shared, LM, ND)) {
        AddedElements& late = shared.late;
        late.nodes.push_back(static_cast<std::int32_t>(ND));
        late.equation.insert(late.equation.end(), LM.data, LM.data + ND);
        late.matrix.insert(late.matrix.end(), S.data, S.data + entries);
        return;
    }
    const std::uint32_t* const place = shared.known.place.data() + shared.placeInHand;
    double* const value = shared.rows.value.data();
    for (Word k = 0; k < entries; ++k)
        value[place[k]] += S.data[k];
    ++shared.elementInHand;
    shared.equationInHand += static_cast<std::size_t>(ND);
    shared.placeInHand += static_cast<std::size_t>(entries);
}

bool FinishSharedRows(SharedRows& shared, std::int32_t JEDN) {
    AddedElements& known = shared.known;
    AddedElements& late = shared.late;
    if (late.nodes.empty() && shared.rows.JEDN == JEDN)
        return false;
    known.nodes.resize(shared.elementInHand);
    known.equation.resize(shared.equationInHand);
    known.nodes.insert(known.nodes.end(), late.nodes.begin(), late.nodes.end());
    known.equation.insert(known.equation.end(), late.equation.begin(), late.equation.end());
    SymmetricRows rows = PatternOf(known, JEDN);
    FindPlaces(rows, known);
    if (shared.elementInHand > 0)
        TakeValues(shared.rows, rows);
    const std::uint32_t* const place = known.place.data() + shared.placeInHand;
    for (std::size_t k = 0; k < late.matrix.size(); ++k)
        rows.value[place[k]] += late.matrix[k];
    shared.rows = std::move(rows);
    late = {};
    return true;
}

void ListEntries(const SharedRows& shared, std::vector<std::int32_t>& row,
                 std::vector<std::int32_t>& column) {
    const SymmetricRows& rows = shared.rows;
    const std::vector<bool> untouched = UntouchedRows(shared);
    row.clear();
    column.clear();
    for (std::size_t r = 0; r < untouched.size(); ++r)
        for (Word k = rows.start[r]; !untouched[r] && k < rows.start[r + 1]; ++k) {
            const auto i = static_cast<std::int32_t>(r);
            const std::int32_t j = rows.column[static_cast<std::size_t>(k)];
            row.push_back(i);
            column.push_back(j);
            if (i == j)
                continue;
            row.push_back(j);
            column.push_back(i);
        }
}

void ListValues(const SharedRows& shared, std::vector<double>& value) {
    const SymmetricRows& rows = shared.rows;
    const std::vector<bool> untouched = UntouchedRows(shared);
    std::size_t next = 0;
    for (std::size_t r = 0; r < untouched.size(); ++r) {
        if (untouched[r])
            continue;
        const Word diagonal = rows.start[r + 1] - 1;
        for (Word k = rows.start[r]; k < diagonal; ++k) {
            value[next++] = rows.value[static_cast<std::size_t>(k)];
            value[next++] = rows.value[static_cast<std::size_t>(k)];
        }
        value[next++] = rows.value[static_cast<std::size_t>(diagonal)];
    }
}

} // namespace zurt
