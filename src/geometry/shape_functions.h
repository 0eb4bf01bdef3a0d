// Isoparametric shape functions of the line (2 to 3 nodes), the quadrilateral (4 to 9) and the brick (8 to 21).
//
// Natural coordinates r, s, t run from -1 to 1. Node 1 lies at (+,+,+); corners 1 to 4 go round in the plane t = +1,
// 5 to 8 lie below them. Any mid-side node may be absent. All results stand in the compressed order of the element:
// corners, then the present mid-side nodes in ascending number. Values depend on the point and on the list of
// mid-side nodes alone, not on the element's coordinates, so a loop over like elements makes them once.
// Called by the Gauss loops of the families, by the surface terms and by whoever locates Gauss points.
// Source: O. C. Zienkiewicz, The Finite Element Method, 1977, chapter 7 (hierarchical removal of mid-side nodes).
#pragma once

#include "core/array_view.h"
#include "geometry/element_family.h"

#include <cstdint>

namespace zurt {

/// Most mid-side nodes, the centre included, of any family.
constexpr int kMostMidSideNodes = [] {
    int most = 0;
    for (const ElementFamily* family : kElementFamilies)
        most = family->mostNodes - family->corners > most ? family->mostNodes - family->corners : most;
    return most;
}();

/// Which nodes an element has: its corners, and these mid-side (and centre) nodes.
struct ActiveNodes {
    std::int32_t ND = 0;           // all nodes: corners and midSideCount
    std::int32_t midSideCount = 0; // entries of midSide in use
    std::int32_t midSide[kMostMidSideNodes] =
        {}; // numbers of the present mid-side nodes, ascending, from corners + 1
};

/// Values at one point of the reference element; column k (from 0) belongs to the element's node k + 1 in compressed
/// order, columns from ND on are not set.
template <int Family> struct ShapeValues {
    double H[kMaxNodes<Family>];                      // shape functions
    double HR[kDimension<Family>][kMaxNodes<Family>]; // their derivatives by r, s, t
};

/// Lists the nodes of element n from its row of the connectivity NEL (1..NET, 1..NDMAX): the corners always count,
/// a further column counts if its node number is not 0.
template <int Family> void ListActiveNodes(ConstIntTable NEL, Word n, ActiveNodes& active);

/// The two corners, from 0, between which mid-side node `number` lies; not for the centre node.
template <int Family> inline void EndsOfEdge(int number, int (&ends)[2]) {
    for (int i = 0; i < 2; ++i)
        ends[i] = FamilyShape<Family>::kEnds[number - kCorners<Family> - 1][i] - 1;
}

/// H and HR at the point (r, s, t). Where the centre node is present, its function is first taken out of the corners
/// and the other mid-side functions; then half of every mid-side function is taken out of its two corners.
void ShapeFunctions3D(double r, double s, double t, const ActiveNodes& active, ShapeValues<3>& shape);

/// The same for the quadrilateral.
void ShapeFunctions2D(double r, double s, const ActiveNodes& active, ShapeValues<2>& shape);

/// The same for the line; its third node is its centre.
void ShapeFunctions1D(double r, const ActiveNodes& active, ShapeValues<1>& shape);

/// The same for each family at `place`: kDimension natural coordinates.
template <int Family>
void ShapeFunctionsAt(const double* place, const ActiveNodes& active, ShapeValues<Family>& shape);

/// How many nodes an element has: `Nodes`, a count known when the program is compiled; 0 takes ND.
template <int Nodes> inline int NodeCount(int ND) {
    return Nodes > 0 ? Nodes : ND;
}

/// sum of N(i) v(i).
template <int Nodes, int Columns>
inline double Interpolate(const double (&H)[Columns], const double* v, int ND) {
    double sum = 0.0;
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i)
        sum += H[i] * v[i];
    return sum;
}

} // namespace zurt
