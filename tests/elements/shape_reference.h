// Independent description of the reference elements for the shape and Jacobian tests, and elements to try them on.
//
// Places of nodes are built here from the corners and from the pair of corners that each mid-side node lies between.
#pragma once

#include "elements/jacobian.h"

#include <array>
#include <random>
#include <vector>

namespace zurt::shape_reference {

using Point = std::array<double, 3>; // unused directions are 0

// The two corners of mid-side node m, from 1.
template <int Dimension> std::array<int, 2> EndsOf(int m) {
    constexpr int around[8] = {2, 3, 4, 1, 6, 7, 8, 5};
    if constexpr (Dimension == 2)
        return {m - 4, around[m - 5]};
    else if (m <= 16)
        return {m - 8, around[m - 9]};
    else
        return {m - 16, m - 12};
}

// Natural coordinates of node m, from 1.
template <int Dimension> Point PlaceOf(int m) {
    static constexpr double rSign[4] = {1, -1, -1, 1};
    static constexpr double sSign[4] = {1, 1, -1, -1};
    if (m == kMaxNodes<Dimension>)
        return {0, 0, 0};
    if constexpr (Dimension == 1) {
        return {rSign[m - 1], 0, 0};
    } else {
        if (m <= kCorners<Dimension>)
            return {rSign[(m - 1) % 4], sSign[(m - 1) % 4], Dimension == 2 ? 0.0 : m <= 4 ? 1.0 : -1.0};
        const std::array<int, 2> ends = EndsOf<Dimension>(m);
        const Point first = PlaceOf<Dimension>(ends[0]);
        const Point second = PlaceOf<Dimension>(ends[1]);
        return {(first[0] + second[0]) / 2, (first[1] + second[1]) / 2, (first[2] + second[2]) / 2};
    }
}

// The element with these mid-side nodes, by way of a connectivity row.
template <int Dimension> ActiveNodes ElementWith(const std::vector<int>& midSide) {
    std::vector<std::int32_t> row(kMaxNodes<Dimension>, 0);
    for (int k = 0; k < kCorners<Dimension>; ++k)
        row[k] = 100 + k;
    for (int m : midSide)
        row[m - 1] = 200 + m;
    ActiveNodes active;
    ListActiveNodes<Dimension>(ConstIntTable(row.data(), 1, kMaxNodes<Dimension>), 1, active);
    return active;
}

template <int Dimension> ActiveNodes FullElement(bool withCentre) {
    std::vector<int> midSide;
    for (int m = kCorners<Dimension> + 1; m < kMaxNodes<Dimension> + (withCentre ? 1 : 0); ++m)
        midSide.push_back(m);
    return ElementWith<Dimension>(midSide);
}

// No mid-side nodes, all, all with the centre, every lone one, and random choices.
template <int Dimension> std::vector<ActiveNodes> Elements(std::mt19937& random) {
    std::vector<ActiveNodes> elements = {ElementWith<Dimension>({}), FullElement<Dimension>(false),
                                         FullElement<Dimension>(true)};
    for (int m = kCorners<Dimension> + 1; m <= kMaxNodes<Dimension>; ++m)
        elements.push_back(ElementWith<Dimension>({m}));
    for (int trial = 0; trial < 40; ++trial) {
        std::vector<int> midSide;
        for (int m = kCorners<Dimension> + 1; m <= kMaxNodes<Dimension>; ++m)
            if (random() % 2 == 0)
                midSide.push_back(m);
        elements.push_back(ElementWith<Dimension>(midSide));
    }
    return elements;
}

// Number in the full element of the node in column k (from 0).
template <int Dimension> int NumberOf(const ActiveNodes& active, int k) {
    return k < kCorners<Dimension> ? k + 1 : active.midSide[k - kCorners<Dimension>];
}

template <int Dimension> Point RandomPoint(std::mt19937& random) {
    std::uniform_real_distribution<double> inside(-1.0, 1.0);
    Point point = {0, 0, 0};
    for (int d = 0; d < Dimension; ++d)
        point[d] = inside(random);
    return point;
}

template <int Dimension> ShapeValues<Dimension> ShapesAt(const Point& p, const ActiveNodes& active) {
    ShapeValues<Dimension> shape;
    if constexpr (Dimension == 3)
        ShapeFunctions3D(p[0], p[1], p[2], active, shape);
    else if constexpr (Dimension == 2)
        ShapeFunctions2D(p[0], p[1], active, shape);
    else
        ShapeFunctions1D(p[0], active, shape);
    return shape;
}

// Coordinates of the active nodes: natural ones under an affine map, each node then moved at random by up to `bend`.
template <int Dimension> struct Shaped {
    ActiveNodes active;
    NodeCoordinates<Dimension> CORE = {};
};

template <int Dimension>
Shaped<Dimension> Distorted(const ActiveNodes& active, double bend, std::mt19937& random) {
    static constexpr double map[3][3] = {{1.5, 0.3, -0.2}, {0.1, 2.0, 0.4}, {-0.3, 0.2, 1.2}};
    std::uniform_real_distribution<double> move(-bend, bend);
    Shaped<Dimension> element;
    element.active = active;
    for (int k = 0; k < active.ND; ++k) {
        const Point place = PlaceOf<Dimension>(NumberOf<Dimension>(active, k));
        for (int c = 0; c < 3; ++c)
            element.CORE[c][k] =
                5.0 * c + map[c][0] * place[0] + map[c][1] * place[1] + map[c][2] * place[2] + move(random);
    }
    return element;
}

} // namespace zurt::shape_reference
