#include "geometry/shape_functions.h"

namespace zurt {

namespace {

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
template <int Family>
void SetProduct(const DirectionFactors (&factors)[kDimension<Family>], int number, int k,
                ShapeValues<Family>& shape) {
    const auto& place = FamilyShape<Family>::kPlace[number - 1];
    double product = 1.0;
    for (int d = 0; d < kDimension<Family>; ++d)
        product *= factors[d].value[place[d] + 1];
    shape.H[k] = product;
    for (int d = 0; d < kDimension<Family>; ++d) {
        double derivative = factors[d].slope[place[d] + 1];
        for (int e = 0; e < kDimension<Family>; ++e)
            if (e != d)
                derivative *= factors[e].value[place[e] + 1];
        shape.HR[d][k] = derivative;
    }
}

// Takes a share of the function in column `from` out of the one in column `to`.
template <int Family> void TakeShare(double share, int from, int to, ShapeValues<Family>& shape) {
    shape.H[to] -= share * shape.H[from];
    for (int d = 0; d < kDimension<Family>; ++d)
        shape.HR[d][to] -= share * shape.HR[d][from];
}

// Adds the present mid-side functions. They are made in their compressed columns at once: a column's number never
// exceeds its node's number, so moving them there one by one in list order would give the same.
template <int Family>
void AddMidSideNodes(const DirectionFactors (&factors)[kDimension<Family>], const ActiveNodes& active,
                     ShapeValues<Family>& shape) {
    constexpr int corners = kCorners<Family>;
    for (int i = 0; i < active.midSideCount; ++i)
        SetProduct(factors, active.midSide[i], corners + i, shape);

    const int last = active.midSideCount - 1;
    const bool hasCentre = active.midSide[last] == kMaxNodes<Family>;
    if (hasCentre)
        for (int k = 0; k < corners; ++k)
            TakeShare(1.0 / corners, corners + last, k, shape);
    if constexpr (kDimension<Family> != 1) {
        const int onSides = hasCentre ? last : last + 1;
        if (hasCentre)
            for (int k = corners; k < corners + last; ++k)
                TakeShare(2.0 / corners, corners + last, k, shape);
        for (int i = 0; i < onSides; ++i) {
            int ends[2];
            EndsOfEdge<Family>(active.midSide[i], ends);
            TakeShare(0.5, corners + i, ends[0], shape);
            TakeShare(0.5, corners + i, ends[1], shape);
        }
    }
}

template <int Family>
void EvaluateShapes(const DirectionFactors (&factors)[kDimension<Family>], const ActiveNodes& active,
                    ShapeValues<Family>& shape) {
    for (int k = 0; k < kCorners<Family>; ++k)
        SetProduct(factors, k + 1, k, shape);
    if (active.midSideCount > 0)
        AddMidSideNodes(factors, active, shape);
}

} // namespace

template <int Family> void ListActiveNodes(ConstIntTable NEL, Word n, ActiveNodes& active) {
    active.midSideCount = 0;
    for (Word column = kCorners<Family> + 1; column <= NEL.columns; ++column)
        if (NEL(n, column) != 0)
            active.midSide[active.midSideCount++] = static_cast<std::int32_t>(column);
    active.ND = kCorners<Family> + active.midSideCount;
}

template <int Family>
void ShapeFunctionsAt(const double* place, const ActiveNodes& active, ShapeValues<Family>& shape) {
    DirectionFactors factors[kDimension<Family>];
    for (int d = 0; d < kDimension<Family>; ++d)
        factors[d] = FactorsAt(place[d]);
    EvaluateShapes(factors, active, shape);
}

#define ZURT_SHAPE_FUNCTIONS(FAMILY)                                                                         \
    template void ListActiveNodes<FAMILY>(ConstIntTable, Word, ActiveNodes&);                                \
    template void ShapeFunctionsAt(const double*, const ActiveNodes&, ShapeValues<FAMILY>&);
ZURT_FOR_ALL_FAMILIES(ZURT_SHAPE_FUNCTIONS)
#undef ZURT_SHAPE_FUNCTIONS

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
