// The sums of one brick: capacity and conduction at its Gauss points, time term and residual.
//
// `Nodes` 8 is the common element with all counts known beforehand; 0 takes the count ND at run time. The upper halves of
// the matrices are summed, the lower ones mirrored. Sums run over the Gauss points in their order, and over j in
// ascending order. Kernels: they take arrays and counts alone.
#pragma once

#include "elements/jacobian.h"

namespace zurt {

/// Element matrices and load; columns as in ShapeValues<3>.
template <int Nodes> struct BrickSums {
    static constexpr int kRows = Nodes > 0 ? Nodes : kMaxNodes<3>;
    double K[kRows][kRows];
    double C[kRows][kRows];
    double FE[kRows];
};

template <int Nodes> inline int NodeCount(int ND) {
    return Nodes > 0 ? Nodes : ND;
}

template <int Nodes> inline void ClearSums(BrickSums<Nodes>& sums, int ND) {
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i) {
        for (int j = 0; j < NodeCount<Nodes>(ND); ++j)
            sums.K[i][j] = sums.C[i][j] = 0.0;
        sums.FE[i] = 0.0;
    }
}

/// K(i,j) += (KX Nx(i) Nx(j) + KY Ny(i) Ny(j) + KZ Nz(i) Nz(j)) w for i <= j.
template <int Nodes>
inline void AddConduction(const double (&HX)[3][kMaxNodes<3>], double KX, double KY, double KZ, double w,
                          int ND, BrickSums<Nodes>& sums) {
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i) {
        const double x = KX * HX[0][i], y = KY * HX[1][i], z = KZ * HX[2][i];
        for (int j = i; j < NodeCount<Nodes>(ND); ++j)
            sums.K[i][j] += (x * HX[0][j] + y * HX[1][j] + z * HX[2][j]) * w;
    }
}

/// C(i,j) += CP N(i) N(j) w for i <= j.
template <int Nodes>
inline void AddCapacity(const double (&H)[kMaxNodes<3>], double CP, double w, int ND,
                        BrickSums<Nodes>& sums) {
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i) {
        const double c = CP * H[i];
        for (int j = i; j < NodeCount<Nodes>(ND); ++j)
            sums.C[i][j] += c * H[j] * w;
    }
}

/// FE(i) += N(i) w QV.
template <int Nodes>
inline void AddSource(const double (&H)[kMaxNodes<3>], double QV, double w, int ND, BrickSums<Nodes>& sums) {
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i)
        sums.FE[i] += H[i] * w * QV;
}

template <int Nodes>
inline void Mirror(double (&matrix)[BrickSums<Nodes>::kRows][BrickSums<Nodes>::kRows], int ND) {
    for (int i = 1; i < NodeCount<Nodes>(ND); ++i)
        for (int j = 0; j < i; ++j)
            matrix[i][j] = matrix[j][i];
}

/// product(i) = sum over j of matrix(i,j) v(j), for a matrix mirrored beforehand.
template <int Nodes>
inline void Multiply(const double (&matrix)[BrickSums<Nodes>::kRows][BrickSums<Nodes>::kRows],
                     const double* v, int ND, double* product) {
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i)
        product[i] = matrix[0][i] * v[0];
    for (int j = 1; j < NodeCount<Nodes>(ND); ++j)
        for (int i = 0; i < NodeCount<Nodes>(ND); ++i)
            product[i] += matrix[j][i] * v[j];
}

/// C := C/dt, FE += C TE0, K := K + C.
template <int Nodes> inline void AddTimeTerm(double dt, const double* TE0, int ND, BrickSums<Nodes>& sums) {
    const int n = NodeCount<Nodes>(ND);
    for (int i = 0; i < n; ++i)
        for (int j = i; j < n; ++j) {
            sums.C[i][j] /= dt;
            sums.K[i][j] += sums.C[i][j];
        }
    Mirror<Nodes>(sums.C, ND);
    double product[BrickSums<Nodes>::kRows];
    Multiply<Nodes>(sums.C, TE0, ND, product);
    for (int i = 0; i < n; ++i)
        sums.FE[i] += product[i];
}

/// FE -= K TE1.
template <int Nodes> inline void TakeResidual(const double* TE1, int ND, BrickSums<Nodes>& sums) {
    Mirror<Nodes>(sums.K, ND);
    double product[BrickSums<Nodes>::kRows];
    Multiply<Nodes>(sums.K, TE1, ND, product);
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i)
        sums.FE[i] -= product[i];
}

/// The upper triangle of K row by row.
template <int Nodes> inline void PackUpper(const BrickSums<Nodes>& sums, int ND, double* packed) {
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i)
        for (int j = i; j < NodeCount<Nodes>(ND); ++j)
            *packed++ = sums.K[i][j];
}

/// sum of N(i) v(i).
template <int Nodes> inline double Interpolate(const double (&H)[kMaxNodes<3>], const double* v, int ND) {
    double sum = 0.0;
    for (int i = 0; i < NodeCount<Nodes>(ND); ++i)
        sum += H[i] * v[i];
    return sum;
}

} // namespace zurt
