#include "solver/skyline_layout.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using zurt::Word;
using Integers = std::vector<std::int32_t>;

zurt::IntArray View(Integers& values) {
    return {values.data(), static_cast<Word>(values.size())};
}

// Three groups of nodes around 6 equations; node 4 has no equation, 0 is an empty place.
struct Layout {
    Integers ID{3, 1, 5, 0, 2, 6, 4};
    Integers MHT = Integers(7, 0);
    Integers LM = Integers(3, 0);
    Word NWK = -1;

    void Add(Integers nodes, Word NE, bool finish) {
        const Word NDIM = static_cast<Word>(nodes.size()) / NE;
        zurt::ComputeColumnHeights(View(MHT), View(ID), zurt::IntTable{nodes.data(), NE, NDIM}, View(LM), NE,
                                   6, finish, NDIM, NWK);
    }
};

// Faults: a node without equation or an empty place counted as equation 0, heights replaced instead of
// raised, the element table walked by rows.
TEST(SkylineLayout, HeightsComeFromTheLowestEquationOfEachElement) {
    Layout layout;
    layout.Add({1, 4, 3, 7, 0, 6}, 2, false); // equations 3 5 -, none 4 6
    EXPECT_EQ(layout.MHT, (Integers{0, 0, 0, 0, 2, 2, 0}));
    layout.Add({4, 2, 0, 0, 0, 4}, 3, false); // single equations and none at all
    EXPECT_EQ(layout.MHT, (Integers{0, 0, 0, 0, 2, 2, 0}));
    layout.Add({3, 7, 5, 6, 2, 3}, 2, false); // equations 5 2 1 and 4 6 5
    EXPECT_EQ(layout.MHT, (Integers{0, 1, 0, 0, 4, 2, 0}));
    EXPECT_EQ(layout.NWK, -1) << "NWK belongs to the last group";
}

// Faults: pointers one off, a height overwritten before it was read, NWK not set with the flag.
TEST(SkylineLayout, TheLastGroupTurnsHeightsIntoPointersInTheSameSlot) {
    Layout layout;
    layout.Add({1, 5, 3, 2}, 2, false); // equations 3 5, 2 1
    layout.Add({6, 6, 7, 3}, 2, true);  // equations 6 4, 6 5
    EXPECT_EQ(layout.MHT, (Integers{1, 2, 4, 5, 6, 9, 12}));
    EXPECT_EQ(layout.NWK, 11);
}

// Fault: the sum of the heights wraps around in 32 bits and an absurd deck passes the test of storage.
TEST(SkylineLayout, SizeBeyond32BitsIsExact) {
    const Word JEDN = 70000;
    Integers slot(static_cast<std::size_t>(JEDN + 1));
    for (std::size_t c = 0; c < slot.size(); ++c)
        slot[c] = static_cast<std::int32_t>(c);
    EXPECT_EQ(zurt::MakeColumnPointers(View(slot), JEDN), JEDN * (JEDN + 1) / 2);
    EXPECT_EQ(slot.back(), 2147483647);
}

} // namespace
