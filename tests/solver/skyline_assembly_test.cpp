#include "solver/skyline_assembly.h"

#include "skyline_reference.h"

#include <gtest/gtest.h>

namespace {

using zurt::ConstIntArray;
using zurt::ConstRealArray;
using zurt::RealArray;
using zurt::Word;

using Dense = std::vector<std::vector<double>>;

// Elements of 4 degrees of freedom over 6 equations: descending, with gaps, one twice in the same element,
// all empty.
const std::int32_t kElements[][4] = {{1, 2, 5, 6}, {6, 3, 0, 2}, {0, 0, 0, 0}, {4, 0, 3, 4}, {5, -1, 4, 1}};

// Faults: an upper entry added to the wrong column when the equations descend, the packed index left behind
// on a row without equation, F skipped; the places of an element's entries in another order than its packed matrix.
TEST(SkylineAssembly, AgreesWithADenseSumAndLeavesTheMatrixAloneWithoutTheFlag) {
    zurt_test::SkylineSystem system = zurt_test::MakeSystem({0, 1, 2, 3, 4, 5}), placed = system;
    Dense K(6, std::vector<double>(6, 0.0));
    std::vector<double> R(6, 0.5), expectedR(6, 0.5), S(10), F(4);
    double value = 1.0;
    for (const auto& LM : kElements) {
        for (double& s : S)
            s = value += 1.0; // whole numbers: every sum is exact
        for (double& f : F)
            f = value += 1.0;
        std::size_t packed = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            for (std::size_t j = i; j < 4; ++j, ++packed) {
                if (LM[i] <= 0 || LM[j] <= 0)
                    continue;
                const std::size_t r = static_cast<std::size_t>(std::min(LM[i], LM[j]) - 1);
                const std::size_t c = static_cast<std::size_t>(std::max(LM[i], LM[j]) - 1);
                K[r][c] += S[packed];
            }
            if (LM[i] > 0)
                expectedR[static_cast<std::size_t>(LM[i] - 1)] += F[i];
        }
        zurt::SkylineAddElement(system.Store(), system.Pointers(), RealArray{R.data(), 6},
                                RealArray{S.data(), 10}, RealArray{F.data(), 4}, ConstIntArray{LM, 4}, 4, 1);
        zurt::SkylinePlaces places;
        zurt::LocateSkylineElement(placed.Store(), placed.Pointers(), ConstIntArray{LM, 4}, 4, places);
        zurt::AddAtPlaces(places, ConstRealArray{S.data(), 10});
    }
    EXPECT_EQ(placed.store, system.store);
    EXPECT_EQ(R, expectedR);
    for (Word c = 1; c <= 6; ++c)
        for (Word r = 1; r <= c; ++r)
            EXPECT_EQ(system.Store()(system.Pointers()(c) + c - r),
                      K[static_cast<std::size_t>(r - 1)][static_cast<std::size_t>(c - 1)])
                << r << "," << c;

    const std::vector<double> before = system.store;
    zurt::SkylineAddElement(system.Store(), system.Pointers(), RealArray{R.data(), 6},
                            RealArray{S.data(), 10}, RealArray{F.data(), 4}, ConstIntArray{kElements[0], 4},
                            4, 0);
    EXPECT_EQ(system.store, before);
    EXPECT_EQ(R[4], expectedR[4] + F[2]);
}

// Faults: the mirrored half left out, the diagonal counted twice, Y overwritten instead of added to.
TEST(SkylineAssembly, MultiplyIsTheSymmetricProductAddedToY) {
    zurt_test::SkylineSystem system = zurt_test::MakeSystem({0, 1, 0, 2, 4, 1});
    Dense K(6, std::vector<double>(6, 0.0));
    double value = 0.0;
    for (std::size_t c = 0; c < 6; ++c) {
        const Word diagonal = system.MAXA[c];
        for (Word position = diagonal; position < system.MAXA[c + 1]; ++position) {
            const std::size_t r = c - static_cast<std::size_t>(position - diagonal);
            K[r][c] = K[c][r] = system.Store()(position) = value += 1.0;
        }
    }
    std::vector<double> X{1.0, -2.0, 3.0, -4.0, 5.0, 6.0}, Y(6, 10.0), expected(6, 10.0);
    for (std::size_t r = 0; r < 6; ++r)
        for (std::size_t c = 0; c < 6; ++c)
            expected[r] += -0.5 * K[r][c] * X[c];
    zurt::SkylineMultiply(system.Store(), ConstRealArray{X.data(), 6}, RealArray{Y.data(), 6},
                          system.Pointers(), 6, -0.5);
    EXPECT_EQ(Y, expected);
}

// Fault: the sum of the heights wraps around in 32 bits and an absurd deck passes the test of storage.
TEST(SkylineLayout, SizeBeyond32BitsIsExact) {
    const Word JEDN = 70000;
    std::vector<std::int32_t> slot(static_cast<std::size_t>(JEDN + 1));
    for (std::size_t c = 0; c < slot.size(); ++c)
        slot[c] = static_cast<std::int32_t>(c);
    EXPECT_EQ(zurt::MakeColumnPointers({slot.data(), JEDN + 1}, JEDN), JEDN * (JEDN + 1) / 2);
    EXPECT_EQ(slot.back(), 2147483647);
}

} // namespace
