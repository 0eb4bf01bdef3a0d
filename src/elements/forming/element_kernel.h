// The sums of one isoparametric element: capacity and conduction at its Gauss points, time term and residual.
//
// `Nodes` is the element without mid-side nodes, the common one with all counts known beforehand; 0 takes the count ND at
// run time. The upper halves of the matrices are summed, the lower ones mirrored. Sums run over the Gauss points in their
// order, and over j in ascending order. Kernels: they take arrays and counts alone.
#pragma once

#include "geometry/jacobian.h"

namespace zurt {

/// Element matrices and load; columns as in ShapeValues.
template <int Family, int Nodes> struct ElementSums {
    static constexpr int kRows = Nodes > 0 ? Nodes : kMaxNodes<Family>;
    double K[kRows][kRows];
    double C[kRows][kRows];
    double FE[kRows];
};

template <int Family, int Nodes> inline void ClearSums(ElementSums<Family, Nodes>& sums, int ND) {
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i) {
        for (int j = 0; j < NodeCount<Nodes>(ND); ++j)
            sums.K[i][j] = sums.C[i][j] = 0.0;
        sums.FE[i] = 0.0;
    }
}

/// K(i,j) += (sum over the axes of conduction(axis) N,axis(i) N,axis(j)) w for i <= j.
template <int Family, int Nodes>
inline void AddConduction(const double (&HX)[kDimension<Family>][kMaxNodes<Family>],
                          const double (&conduction)[3], double w, int ND, ElementSums<Family, Nodes>& sums) {
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i) {
        double flow[kDimension<Family>];
        for (int axis = 0; axis < kDimension<Family>; ++axis)
            flow[axis] = conduction[axis] * HX[axis][i];
        for (int j = i; j < NodeCount<Nodes>(ND); ++j) {
            double product = flow[0] * HX[0][j];
            for (int axis = 1; axis < kDimension<Family>; ++axis)
                product += flow[axis] * HX[axis][j];
            sums.K[i][j] += product * w;
        }
    }
}

/// C(i,j) += CP N(i) N(j) w for i <= j.
template <int Family, int Nodes>
inline void AddCapacity(const double (&H)[kMaxNodes<Family>], double CP, double w, int ND,
                        ElementSums<Family, Nodes>& sums) {
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i) {
        const double c = CP * H[i];
        for (int j = i; j < NodeCount<Nodes>(ND); ++j)
            sums.C[i][j] += c * H[j] * w;
    }
}

/// FE(i) += N(i) w QV.
template <int Family, int Nodes>
inline void AddSource(const double (&H)[kMaxNodes<Family>], double QV, double w, int ND,
                      ElementSums<Family, Nodes>& sums) {
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i)
        sums.FE[i] += H[i] * w * QV;
}

template <int Nodes, int Rows> inline void Mirror(double (&matrix)[Rows][Rows], int ND) {
    for (int i = 1; i < NodeCount<Nodes>(ND); ++i)
        for (int j = 0; j < i; ++j)
            matrix[i][j] = matrix[j][i];
}

/// product(i) = sum over j of matrix(i,j) v(j), for a matrix mirrored beforehand.
template <int Nodes, int Rows>
inline void Multiply(const double (&matrix)[Rows][Rows], const double* v, int ND, double* product) {
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i)
        product[i] = matrix[0][i] * v[0];
    for (int j = 1; j < NodeCount<Nodes>(ND); ++j)
        for (int i = 0; i < NodeCount<Nodes>(ND); ++i)
            product[i] += matrix[j][i] * v[j];
}

/// C := C/dt, FE += C TE0, K := K + C.
template <int Family, int Nodes>
inline void AddTimeTerm(double dt, const double* TE0, int ND, ElementSums<Family, Nodes>& sums) {
    const int n = NodeCount<Nodes>(ND);
    for (int i = 0; i < n; ++i)
        for (int j = i; j < n; ++j) {
            sums.C[i][j] /= dt;
            sums.K[i][j] += sums.C[i][j];
        }
    Mirror<Nodes>(sums.C, ND);
    double product[ElementSums<Family, Nodes>::kRows];
    Multiply<Nodes>(sums.C, TE0, ND, product);
    for (int i = 0; i < n; ++i)
        sums.FE[i] += product[i];
}

/// FE -= K TE1.
template <int Family, int Nodes>
inline void TakeResidual(const double* TE1, int ND, ElementSums<Family, Nodes>& sums) {
    Mirror<Nodes>(sums.K, ND);
    double product[ElementSums<Family, Nodes>::kRows];
    Multiply<Nodes>(sums.K, TE1, ND, product);
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i)
        sums.FE[i] -= product[i];
}

/// The upper triangle of K row by row.
template <int Family, int Nodes>
inline void PackUpper(const ElementSums<Family, Nodes>& sums, int ND, double* packed) {
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i)
        for (int j = i; j < NodeCount<Nodes>(ND); ++j)
            *packed++ = sums.K[i][j];
}

} // namespace zurt
