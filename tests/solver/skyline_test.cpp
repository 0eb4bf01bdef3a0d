// The skyline solver: the product by hand, factors and solutions against the plain loops.
#include "skyline_reference.h"
#include "solver/skyline_assembly.h"
#include "solver/skyline_factor.h"
#include "solver/skyline_solve.h"
#include "support/views.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <immintrin.h>
#include <limits>
#include <numeric>
#include <string>

namespace {

using Heights = std::vector<std::int32_t>;
using Reals = std::vector<double>;
using zurt::Word;
using namespace zurt_test;

// Faults: the mirrored half left out, the diagonal counted twice, Y overwritten instead of added to.
TEST(SkylineAssembly, MultiplyIsTheSymmetricProductAddedToY) {
    SkylineSystem system = MakeSystem({0, 1, 0, 2, 4, 1});
    std::iota(system.store.begin(), system.store.end(), 1.0);
    // By columns from the diagonal up: 1 | 2 3 | 4 | 5 6 7 | 8 9 10 11 12 | 13 14.
    const double K[6][6] = {{1, 3, 0, 0, 12, 0}, {3, 2, 0, 7, 11, 0},    {0, 0, 4, 6, 10, 0},
                            {0, 7, 6, 5, 9, 0},  {12, 11, 10, 9, 8, 14}, {0, 0, 0, 0, 14, 13}};
    Reals X{1.0, -2.0, 3.0, -4.0, 5.0, 6.0}, Y(6, 10.0);
    zurt::SkylineMultiply(system.Store(), View(X), View(Y), system.Pointers(), 6, -0.5);
    for (std::size_t r = 0; r < 6; ++r)
        EXPECT_EQ(Y[r], 10.0 - 0.5 * std::inner_product(X.begin(), X.end(), K[r], 0.0)) << r;
}

// Fault: the sum of the heights wraps around in 32 bits and an absurd deck passes the test of storage.
TEST(SkylineLayout, SizeBeyond32BitsIsExact) {
    const Word JEDN = 70000;
    Heights slot(70001);
    std::iota(slot.begin(), slot.end(), 0);
    EXPECT_EQ(zurt::MakeColumnPointers(View(slot), JEDN), JEDN * (JEDN + 1) / 2);
    EXPECT_EQ(slot.back(), 2147483647);
}

// The first entry whose bits differ, 0 for none. Two entries that are both not a number count as the same.
Word FirstDifference(const Reals& a, const Reals& b) {
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::memcmp(&a[i], &b[i], sizeof(double)) != 0 && !(std::isnan(a[i]) && std::isnan(b[i])))
            return static_cast<Word>(i + 1);
    return 0;
}

using zurt::InstructionSet;

// Every set of instructions that this machine runs must give the bits of the plain loops, and the substitution with its factors too.
void ExpectSameBits(const SkylineSystem& system, std::mt19937& random, const std::string& what,
                    int threads = 1) {
    zurt::Workers workers;
    zurt::StartWorkers(workers, threads);
    SkylineSystem reference = system;
    const Word failed = ReferenceFactor(reference.Store(), reference.Pointers(), reference.NN);
    for (const InstructionSet set :
         {InstructionSet::Portable, InstructionSet::Avx2, InstructionSet::Avx512}) {
        if (set > zurt::WidestInstructionSet())
            break;
        const std::string where = what + " set " + std::to_string(static_cast<int>(set));
        SkylineSystem solved = system;
        ASSERT_EQ(zurt::FactorSkyline(solved.Store(), solved.Pointers(), solved.NN, set, workers), failed)
            << where;
        const Word diagonal = failed == 0 ? 0 : reference.Pointers()(failed);
        if (failed != 0) // the diagonal there, by which it failed
            EXPECT_EQ(FirstDifference({solved.Store()(diagonal)}, {reference.Store()(diagonal)}), 0) << where;
        else
            EXPECT_EQ(FirstDifference(solved.store, reference.store), 0) << where;
    }
    if (failed != 0)
        return;
    std::uniform_real_distribution<double> entry(-1.0, 1.0);
    Reals V(static_cast<std::size_t>(system.NN));
    for (double& v : V)
        v = entry(random);
    Reals expected = V;
    SkylineSystem solved = reference;
    ReferenceSubstitute(reference.Store(), View(expected), reference.Pointers(), reference.NN);
    zurt::SubstituteSkyline(solved.Store(), View(V), solved.Pointers(), solved.NN);
    EXPECT_EQ(FirstDifference(V, expected), 0) << what;
    EXPECT_EQ(FirstDifference(solved.store, reference.store), 0)
        << what << ": substitution changed the factors";
}

Heights RandomHeights(Word NN, std::int32_t band, std::mt19937& random) {
    Heights heights;
    for (std::int32_t c = 0; c < NN; ++c)
        heights.push_back(std::min<std::int32_t>(c, static_cast<std::int32_t>(random() % (band + 1u))));
    return heights;
}

// Faults: a sum in another order, a fused multiply-add, a product with what lies above a column; on ragged layouts and on
// some with a shape of their own.
TEST(SkylineSolve, SameBitsAsThePlainLoops) {
    std::mt19937 random(1);
    std::vector<SkylineSystem> systems;
    for (const Word NN : {1, 2, 3, 7, 8, 9, 16, 17, 33, 64, 100, 257})
        for (const std::int32_t band : {0, 1, 2, 5, 13, 40, 300})
            systems.push_back(MakeSystem(RandomHeights(NN, band, random)));
    Heights full, arrow, steps, late, smooth;
    for (std::int32_t c = 0; c < 150; ++c) {
        full.push_back(c);
        arrow.push_back(c == 149 ? c : 0);
        steps.push_back(c % 40);
        late.push_back(c < 100 ? std::min(c, 1) : 90 + c % 7);
        smooth.push_back(std::min(c, 60 + (c % 9 == 0 ? 8 : 0)));
    }
    for (const Heights& heights : {full, arrow, steps, late, smooth})
        systems.push_back(MakeSystem(heights));
    systems.push_back(zurt_test::MakeCube(7));
    int number = 0;
    for (SkylineSystem& system : systems) {
        FillDominant(system, random);
        ExpectSameBits(system, random, "system " + std::to_string(++number));
    }
}

#ifdef __x86_64__
// A run flushes denormal numbers to zero, so that a sum may become -0.0, which a further product of zero
// turns into 0.0. Faults: a product with what lies above a column, a subtraction where the plain loops have
// none.
TEST(SkylineSolve, SameBitsAsThePlainLoopsWhenDenormalsAreFlushed) {
    const unsigned int state = _mm_getcsr();
    _mm_setcsr(state | _MM_FLUSH_ZERO_ON | 0x0040u);
    std::mt19937 random(5);
    for (const std::int32_t band : {12, 40, 90}) {
        SkylineSystem system = MakeSystem(RandomHeights(200, band, random));
        std::uniform_real_distribution<double> size(1.5e-154,
                                                    1.8e-154); // two products may differ by a denormal
        for (double& value : system.store)
            value = random() % 3 == 0 ? -0.0 : random() % 2 == 0 ? size(random) : -size(random);
        for (Word n = 1; n <= system.NN; ++n)
            system.Store()(system.Pointers()(n)) = 1.0;
        ExpectSameBits(system, random, "band " + std::to_string(band));
    }
    Heights tall(100, 0);
    for (std::int32_t c = 40; c < 100; ++c)
        tall[static_cast<std::size_t>(c)] = c == 70 ? 0 : 40;
    SkylineSystem system = MakeSystem(tall);
    FillDominant(system, random);
    system.Store()(system.Pointers()(71)) = std::numeric_limits<double>::denorm_min();
    ExpectSameBits(system, random, "denormal pivot");
    _mm_setcsr(state);
}
#endif

// Faults: a pivot reported for another equation, a later pivot reported first, a pivot that is not a number
// stopped.
TEST(SkylineSolve, PivotsFailWhereThePlainLoopsFail) {
    std::mt19937 random(4);
    for (const Word equation : {1, 2, 40, 41, 64, 99, 100})
        for (const double spoiled :
             {0.0, -0.0, -3.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
            SkylineSystem system = MakeSystem(RandomHeights(100, 40, random));
            FillDominant(system, random);
            system.Store()(system.Pointers()(equation)) = spoiled;
            ExpectSameBits(system, random, "equation " + std::to_string(equation));
        }
    SkylineSystem two = MakeSystem(Heights(90, 0));
    two.store.assign(90, 1.0);
    two.store[70] = -1.0;
    two.store[66] = 0.0;
    EXPECT_EQ(zurt::FactorSkyline(two.Store(), two.Pointers(), 90), 67);
}

// Panels side by side: columns taken before they are finished, a later pivot's failure ahead of an earlier one's, workers
// that wait for a panel that will not come.
TEST(SkylineSolve, SameBitsByAnyNumberOfWorkers) {
    std::mt19937 random(5);
    for (const int threads : {2, 5}) {
        const std::string by = std::to_string(threads) + " workers, ";
        SkylineSystem cube = MakeCube(9);
        FillDominant(cube, random);
        ExpectSameBits(cube, random, by + "cube", threads);
        for (const Word equation : {0, 1, 17, 300, 301, 599}) {
            SkylineSystem ragged = MakeSystem(RandomHeights(600, 500, random));
            FillDominant(ragged, random);
            if (equation > 0) {
                ragged.Store()(ragged.Pointers()(equation)) = -1.0;
                ragged.Store()(ragged.Pointers()(600)) = -1.0;
            }
            ExpectSameBits(ragged, random, by + "equation " + std::to_string(equation), threads);
        }
    }
}

} // namespace
