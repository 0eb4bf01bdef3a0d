// A process's rows: elements that come in another order than before, or not at all, must not reach the places of others.
#include "solver/shared_rows.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>
#include <vector>

namespace zurt {
namespace {

struct Element {
    std::vector<std::int32_t> LM;
    std::vector<double> S; // packed
};

const Element kLine{{1, 3}, {2.0, -1.0, 5.0}};
const Element kDropped{{3, 0, 4}, {1.0, 9.0, -0.75, 9.0, 9.0, 1.5}}; // its second node has no equation
const Element kTriangle{{4, 1, 3}, {3.0, 0.25, 0.5, 7.0, 0.125, 8.0}};
const Element kTwice{{3, 3}, {1.0, 4.0, 2.0}}; // both nodes have one equation

using Entries = std::map<std::pair<std::int32_t, std::int32_t>, double>;

Entries Sum(const std::vector<Element>& elements) {
    Entries sum;
    for (const Element& element : elements) {
        std::size_t k = 0;
        for (std::size_t a = 0; a < element.LM.size(); ++a)
            for (std::size_t b = a; b < element.LM.size(); ++b, ++k) {
                const std::int32_t i = element.LM[a] - 1, j = element.LM[b] - 1;
                if (i < 0 || j < 0)
                    continue;
                sum[{i, j}] += element.S[k];
                if (i != j)
                    sum[{j, i}] += element.S[k];
            }
    }
    return sum;
}

// The entries that are not 0 after these elements have been added to the rows.
Entries EntriesOf(SharedRows& shared, const std::vector<Element>& elements) {
    constexpr std::int32_t kEquations = 5; // the second and the last have no element
    ClearSharedRows(shared);
    for (const Element& element : elements)
        AddToSharedRows(shared, ConstRealArray(element.S.data(), static_cast<Word>(element.S.size())),
                        ConstIntArray(element.LM.data(), static_cast<Word>(element.LM.size())),
                        static_cast<Word>(element.LM.size()));
    FinishSharedRows(shared, kEquations);
    std::vector<std::int32_t> row, column;
    ListEntries(shared, row, column);
    std::vector<double> value(row.size());
    ListValues(shared, value);
    Entries entries;
    for (std::size_t k = 0; k < row.size(); ++k)
        if (value[k] != 0.0) {
            EXPECT_TRUE(entries.insert({{row[k], column[k]}, value[k]}).second) << "an entry twice";
        }
    return entries;
}

TEST(SharedRows, TakeElementsInAnyOrder) {
    SharedRows shared;
    for (const std::vector<Element>& elements :
         std::vector<std::vector<Element>>{{kLine, kDropped, kTriangle, kTwice}, // found
                                           {kLine, kDropped, kTriangle, kTwice}, // known
                                           {kLine, kTriangle, kDropped}, // out of turn behind the first
                                           {kLine, kTriangle, kDropped, kTwice}, // one more behind all
                                           {kLine, kTriangle},                   // fewer
                                           {kTwice},
                                           {}})
        EXPECT_EQ(EntriesOf(shared, elements), Sum(elements));
}

} // namespace
} // namespace zurt
