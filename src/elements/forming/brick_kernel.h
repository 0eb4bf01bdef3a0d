// The brick of 8 nodes without mid-side nodes, the common element: Jacobians at its Gauss points and its sums, in wide
// registers.
//
// The same operations in the same order as geometry/jacobian.h and elements/forming/element_kernel.h take one by one for any
// element, so every result has the same bits. Jacobians run over 8 Gauss points side by side, sums over 8 nodes.
// Called by elements/forming/form_elements.cpp. Kernels: they take arrays and counts alone.
#pragma once

#include "core/lanes.h"
#include "geometry/element_points.h"
#include "geometry/jacobian.h"

namespace zurt {

constexpr int kBrickFamily = 3;
constexpr int kBrickNodes = kCorners<kBrickFamily>;

/// Gauss points that go side by side, and how many such blocks the largest rule has. Points behind the last one of a
/// rule repeat it and enter no sum.
constexpr int kPointBlock = 8;
constexpr int kMostBlocks = (kMaxPoints<3> + kPointBlock - 1) / kPointBlock;
constexpr int kBrickPoints = kMostBlocks * kPointBlock;

/// Shape functions at the points of a rule, by nodes for the sums and by points for the Jacobians.
struct alignas(64) BrickRule {
    double H[kBrickPoints][kBrickNodes];
    double HR[kBrickPoints][3][kBrickNodes];
    double pointH[kMostBlocks][kBrickNodes][kPointBlock];
    double pointHR[kMostBlocks][3][kBrickNodes][kPointBlock];
    double weight[kBrickPoints]; // wr*ws*wt
    int count;
};

/// One brick: what its Gauss points give, and what becomes of it.
struct alignas(64) BrickValues {
    // by Gauss point
    double DET[kBrickPoints];
    double inverse[3][3][kBrickPoints]; // of the Jacobian, [c][d]
    double TG[kBrickPoints];            // concentration
    double measure[kBrickPoints];       // w: weight times DET, by the caller
    double conduction[3][kBrickPoints]; // coefficients in the three axes, by the caller
    double CP[kBrickPoints];            // by the caller, for transient problems
    // by node
    double FE[kBrickNodes]; // by the caller: the sums of its source; afterwards the right-hand side
    double K[kBrickNodes][kBrickNodes];
    double C[kBrickNodes][kBrickNodes];
};

/// The rule's tables from those of a brick of 8 nodes.
void SetBrickRule(const ElementPoints<3>& points, BrickRule& rule);

/// Sets DET, the inverse and TG at all points. A point whose DET is not above kSmallestJacobian has no other values
/// that are of use; the caller tests.
///   CORE  rows x, y, z, the 8 nodes of each (input)
///   TE1   1..8: nodal values (input)
void LocateBrickPoints(InstructionSet instructions, const BrickRule& rule, const NodeCoordinates<3>& CORE,
                       const double* TE1, BrickValues& brick);

/// Conduction, and in transient problems capacity, summed over the points; FE += C/dt TE0, K += C/dt, FE -= K TE1.
///   dt        the time step; 0 when the problem is steady, which has no capacity
///   TE0, TE1  1..8: nodal values at the start of the step and now (input)
///   packed    36 entries: the upper triangle of K row by row (output)
void SumBrick(InstructionSet instructions, const BrickRule& rule, bool transient, double dt,
              const double* TE0, const double* TE1, BrickValues& brick, double* packed);

} // namespace zurt
