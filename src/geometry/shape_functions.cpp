#include "geometry/shape_functions.h"

namespace zurt {

namespace {

// For each node its natural coordinates, and for each mid-side node but the centre (the line has no other) the two
// corners that it lies between, from 1.
template <int Dimension> struct ReferenceElement;

template <> struct ReferenceElement<1> { static constexpr int kPlace[3][1] = {{+1}, {-1}, {0}}; };

template <> struct ReferenceElement<2> {
    static constexpr int kPlace[9][2] = {{+1, +1}, {-1, +1}, {-1, -1}, {+1, -1}, {0, +1},
                                         {-1, 0},  {0, -1},  {+1, 0},  {0, 0}};
    static constexpr int kEnds[4][2] = {{1, 2}, {2, 3}, {3, 4}, {4, 1}};
};

template <> struct ReferenceElement<3> {
    static constexpr int kPlace[21][3] = {
        {+1, +1, +1}, {-1, +1, +1}, {-1, -1, +1}, {+1, -1, +1}, {+1, +1, -1}, {-1, +1, -1}, {-1, -1, -1},
        {+1, -1, -1}, {0, +1, +1},  {-1, 0, +1},  {0, -1, +1},  {+1, 0, +1},  {0, +1, -1},  {-1, 0, -1},
        {0, -1, -1},  {+1, 0, -1},  {+1, +1, 0},  {-1, +1, 0},  {-1, -1, 0},  {+1, -1, 0},  {0, 0, 0}};
    static constexpr int kEnds[12][2] = {{1, 2}, {2, 3}, {3, 4}, {4, 1}, {5, 6}, {6, 7},
                                         {7, 8}, {8, 5}, {1, 5}, {2, 6}, {3, 7}, {4, 8}};
};

// The factor of one direction, by the node's coordinate in it (-1, 0, +1 at index 0, 1, 2): (1 - r)/2, 1 - r*r,
// (1 + r)/2. Halving is exact, so a product of factors has the bits of the product over 8, 4 or 2.
struct DirectionFactors {
    double value[3];
    double slope[3];
};

DirectionFactors FactorsAt(double r) {
    return {{0.5 * (1.0 - r), 1.0 - r * r, 0.5 * (1.0 + r)}, {-0.5, -2.0 * r, 0.5}};
}

// The uncorrected function of node `number` (from 1) and its derivatives, into column k.
template <int Dimension>
void SetProduct(const DirectionFactors (&factors)[Dimension], int number, int k,
                ShapeValues<Dimension>& shape) {
    const auto& place = ReferenceElement<Dimension>::kPlace[number - 1];
    double product = 1.0;
    for (int d = 0; d < Dimension; ++d)
        product *= factors[d].value[place[d] + 1];
    shape.H[k] = product;
    for (int d = 0; d < Dimension; ++d) {
        double derivative = factors[d].slope[place[d] + 1];
        for (int e = 0; e < Dimension; ++e)
            if (e != d)
                derivative *= factors[e].value[place[e] + 1];
        shape.HR[d][k] = derivative;
    }
}

// Takes a share of the function in column `from` out of the one in column `to`.
template <int Dimension> void TakeShare(double share, int from, int to, ShapeValues<Dimension>& shape) {
    shape.H[to] -= share * shape.H[from];
    for (int d = 0; d < Dimension; ++d)
        shape.HR[d][to] -= share * shape.HR[d][from];
}

// Adds the present mid-side functions. They are made in their compressed columns at once: a column's number never
// exceeds its node's number, so moving them there one by one in list order would give the same.
template <int Dimension>
void AddMidSideNodes(const DirectionFactors (&factors)[Dimension], const ActiveNodes& active,
                     ShapeValues<Dimension>& shape) {
    constexpr int corners = kCorners<Dimension>;
    for (int i = 0; i < active.midSideCount; ++i)
        SetProduct(factors, active.midSide[i], corners + i, shape);

    const int last = active.midSideCount - 1;
    const bool hasCentre = active.midSide[last] == kMaxNodes<Dimension>;
    if (hasCentre)
        for (int k = 0; k < corners; ++k)
            TakeShare(1.0 / corners, corners + last, k, shape);
    if constexpr (Dimension > 1) {
        const int onSides = hasCentre ? last : last + 1;
        if (hasCentre)
            for (int k = corners; k < corners + last; ++k)
                TakeShare(2.0 / corners, corners + last, k, shape);
        for (int i = 0; i < onSides; ++i) {
            int ends[2];
            EndsOfEdge<Dimension>(active.midSide[i], ends);
            TakeShare(0.5, corners + i, ends[0], shape);
            TakeShare(0.5, corners + i, ends[1], shape);
        }
    }
}

template <int Dimension>
void EvaluateShapes(const DirectionFactors (&factors)[Dimension], const ActiveNodes& active,
                    ShapeValues<Dimension>& shape) {
    for (int k = 0; k < kCorners<Dimension>; ++k)
        SetProduct(factors, k + 1, k, shape);
    if (active.midSideCount > 0)
        AddMidSideNodes(factors, active, shape);
}

} // namespace

template <int Dimension> void ListActiveNodes(ConstIntTable NEL, Word n, ActiveNodes& active) {
    active.midSideCount = 0;
    for (Word column = kCorners<Dimension> + 1; column <= NEL.columns; ++column)
        if (NEL(n, column) != 0)
            active.midSide[active.midSideCount++] = static_cast<std::int32_t>(column);
    active.ND = kCorners<Dimension> + active.midSideCount;
}

template void ListActiveNodes<1>(ConstIntTable NEL, Word n, ActiveNodes& active);
template void ListActiveNodes<2>(ConstIntTable NEL, Word n, ActiveNodes& active);
template void ListActiveNodes<3>(ConstIntTable NEL, Word n, ActiveNodes& active);

template <int Dimension> void EndsOfEdge(int number, int (&ends)[2]) {
    for (int i = 0; i < 2; ++i)
        ends[i] = ReferenceElement<Dimension>::kEnds[number - kCorners<Dimension> - 1][i] - 1;
}

template void EndsOfEdge<2>(int number, int (&ends)[2]);
template void EndsOfEdge<3>(int number, int (&ends)[2]);

template <int Dimension>
void ShapeFunctionsAt(const double* place, const ActiveNodes& active, ShapeValues<Dimension>& shape) {
    DirectionFactors factors[Dimension];
    for (int d = 0; d < Dimension; ++d)
        factors[d] = FactorsAt(place[d]);
    EvaluateShapes(factors, active, shape);
}

template void ShapeFunctionsAt(const double*, const ActiveNodes&, ShapeValues<1>&);
template void ShapeFunctionsAt(const double*, const ActiveNodes&, ShapeValues<2>&);
template void ShapeFunctionsAt(const double*, const ActiveNodes&, ShapeValues<3>&);

void ShapeFunctions3D(double r, double s, double t, const ActiveNodes& active, ShapeValues<3>& shape) {
    const double place[3] = {r, s, t};
    ShapeFunctionsAt(place, active, shape);
}

void ShapeFunctions2D(double r, double s, const ActiveNodes& active, ShapeValues<2>& shape) {
    const double place[2] = {r, s};
    ShapeFunctionsAt(place, active, shape);
}

void ShapeFunctions1D(double r, const ActiveNodes& active, ShapeValues<1>& shape) {
    ShapeFunctionsAt(&r, active, shape);
}

} // namespace zurt
