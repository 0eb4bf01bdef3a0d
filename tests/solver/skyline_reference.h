// The plain loops of the skyline solver, one product after the other, and systems to try it on. The solver
// must give the same bits on every machine; the benchmarks time these loops beside it.
#pragma once

#include "core/array_view.h"
#include "solver/skyline_layout.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace zurt_test {

using zurt::Word;

struct SkylineSystem {
    Word NN = 0;
    std::vector<std::int32_t> MAXA;
    std::vector<double> store;

    zurt::RealArray Store() { return {store.data(), static_cast<Word>(store.size())}; }
    zurt::ConstIntArray Pointers() const { return {MAXA.data(), NN + 1}; }
};

/// An empty store for the heights above the diagonal; heights[0] is that of equation 1.
inline SkylineSystem MakeSystem(const std::vector<std::int32_t>& heights) {
    SkylineSystem system;
    system.NN = static_cast<Word>(heights.size());
    system.MAXA = heights;
    system.MAXA.push_back(0);
    const Word NWK = zurt::MakeColumnPointers({system.MAXA.data(), system.NN + 1}, system.NN);
    system.store.assign(static_cast<std::size_t>(NWK), 0.0);
    return system;
}

/// Random entries, and diagonals that outweigh them: positive definite.
inline void FillDominant(SkylineSystem& system, std::mt19937& random) {
    std::uniform_real_distribution<double> entry(-1.0, 1.0);
    std::vector<double> weight(static_cast<std::size_t>(system.NN) + 1, 0.5);
    for (Word n = 1; n <= system.NN; ++n) {
        const Word diagonal = system.Pointers()(n);
        for (Word i = 1; diagonal + i < system.Pointers()(n + 1); ++i) {
            const double value = entry(random);
            system.Store()(diagonal + i) = value;
            weight[static_cast<std::size_t>(n)] += std::abs(value);
            weight[static_cast<std::size_t>(n - i)] += std::abs(value);
        }
    }
    for (Word n = 1; n <= system.NN; ++n)
        system.Store()(system.Pointers()(n)) = weight[static_cast<std::size_t>(n)];
}

/// The nodes of side^3 eight-node bricks in a cube, element by element, numbered with x fastest.
inline std::vector<std::int32_t> NodesOfCube(std::int32_t side) {
    const std::int32_t row = side + 1;
    std::vector<std::int32_t> nodes;
    for (std::int32_t element = 0; element < side * side * side; ++element)
        for (std::int32_t corner = 0; corner < 8; ++corner) {
            const std::int32_t x = element % side + (corner & 1),
                               y = element / side % side + (corner >> 1 & 1);
            nodes.push_back(1 + x + row * (y + row * (element / side / side + (corner >> 2))));
        }
    return nodes;
}

/// The system of such a cube, all nodes free.
inline SkylineSystem MakeCube(std::int32_t side) {
    const Word NE = static_cast<Word>(side) * side * side,
               JEDN = static_cast<Word>(side + 1) * (side + 1) * (side + 1);
    const std::vector<std::int32_t> byElements = NodesOfCube(side);
    std::vector<std::int32_t> nodes, ID(static_cast<std::size_t>(JEDN));
    for (std::size_t corner = 0; corner < 8; ++corner)
        for (std::size_t at = corner; at < byElements.size(); at += 8)
            nodes.push_back(byElements[at]);
    std::iota(ID.begin(), ID.end(), 1);
    SkylineSystem system;
    system.NN = JEDN;
    system.MAXA.assign(static_cast<std::size_t>(JEDN + 1), 0);
    std::int32_t LM[8];
    Word NWK = 0;
    zurt::ComputeColumnHeights({system.MAXA.data(), JEDN + 1}, {ID.data(), JEDN}, {nodes.data(), NE, 8},
                               {LM, 8}, NE, JEDN, true, 8, NWK);
    system.store.assign(static_cast<std::size_t>(NWK), 0.0);
    return system;
}

/// The plain factorisation; returns the equation of the pivot that failed, 0 for none. Entry (r, n) stands at D - r.
inline Word ReferenceFactor(zurt::RealArray A, zurt::ConstIntArray MAXA, Word NN) {
    for (Word n = 1; n <= NN; ++n) {
        const Word D = MAXA(n) + n, top = D + 1 - MAXA(n + 1);
        for (Word i = top + 1; i < n; ++i) {
            const Word E = MAXA(i) + i, first = std::max(top, E + 1 - MAXA(i + 1));
            double C = 0.0;
            for (Word r = i - 1; r >= first; --r)
                C += A(E - r) * A(D - r);
            if (first < i)
                A(D - i) -= C;
        }
        double B = 0.0;
        for (Word i = n - 1; i >= top; --i) {
            const double C = A(D - i) / A(MAXA(i));
            B += C * A(D - i);
            A(D - i) = C;
        }
        if (top < n)
            A(D - n) -= B;
        if (0.0 >= A(D - n))
            return n;
    }
    return 0;
}

/// The plain reduction and back-substitution.
inline void ReferenceSubstitute(zurt::ConstRealArray A, zurt::RealArray V, zurt::ConstIntArray MAXA,
                                Word NN) {
    for (Word n = 1; n <= NN; ++n) {
        double C = 0.0;
        for (Word at = MAXA(n) + 1, i = n - 1; at < MAXA(n + 1); ++at, --i)
            C += A(at) * V(i);
        if (MAXA(n) + 1 < MAXA(n + 1))
            V(n) -= C;
    }
    for (Word n = 1; n <= NN; ++n)
        V(n) = V(n) / A(MAXA(n));
    for (Word n = NN; n >= 2; --n)
        for (Word at = MAXA(n) + 1, i = n - 1; at < MAXA(n + 1); ++at, --i)
            V(i) -= A(at) * V(n);
}

} // namespace zurt_test
