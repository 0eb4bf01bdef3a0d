#include "elements/forming/brick_kernel.h"

#include "geometry/invert_matrix.h"

#include <algorithm>
#include <cstddef>

namespace zurt {

namespace {

constexpr std::ptrdiff_t kMatrixEntries = std::ptrdiff_t{kBrickNodes} * kBrickNodes;

// --- Gauss points side by side -------------------------------------------------------------------------------------

// kWidth points from point `first` of block `block` on.
template <int kWidth>
ZURT_INLINE void LocatePoints(const BrickRule& rule, int block, int first, const NodeCoordinates<3>& CORE,
                              const double* TE1, BrickValues& brick) {
    using Vector = typename Lanes<kWidth>::Vector;
    Vector XJ[3][3] = {};
    Vector TG = {};
#pragma GCC unroll 8
    for (int k = 0; k < kBrickNodes; ++k) {
        TG += LanesAt<kWidth>(&rule.pointH[block][k][first]) * TE1[k];
#pragma GCC unroll 3
        for (int d = 0; d < 3; ++d) {
            const Vector slope = LanesAt<kWidth>(&rule.pointHR[block][d][k][first]);
#pragma GCC unroll 3
            for (int c = 0; c < 3; ++c)
                XJ[d][c] += slope * CORE[c][k];
        }
    }
    const int p = block * kPointBlock + first;
    LanesAt<kWidth>(&brick.TG[p]) = TG;
    InvertMatrix(XJ, LanesAt<kWidth>(&brick.DET[p]));
#pragma GCC unroll 3
    for (int c = 0; c < 3; ++c)
#pragma GCC unroll 3
        for (int d = 0; d < 3; ++d)
            LanesAt<kWidth>(&brick.inverse[c][d][p]) = XJ[c][d];
}

template <int kWidth>
ZURT_INLINE void LocateAllPoints(const BrickRule& rule, const NodeCoordinates<3>& CORE, const double* TE1,
                                 BrickValues& brick) {
    for (int block = 0; block * kPointBlock < rule.count; ++block)
        for (int first = 0; first < kPointBlock; first += kWidth)
            LocatePoints<kWidth>(rule, block, first, CORE, TE1, brick);
}

// --- sums, nodes side by side --------------------------------------------------------------------------------------

// Of a block of points: global derivatives, these times the conduction of their axis, and CP times the shape functions.
struct alignas(64) BlockFactors {
    double gradient[kPointBlock][3][kBrickNodes];
    double flow[kPointBlock][3][kBrickNodes];
    double capacity[kPointBlock][kBrickNodes];
};

template <int kWidth>
ZURT_INLINE void SetFactors(const BrickRule& rule, int first, int count, bool transient,
                            const BrickValues& brick, BlockFactors& factors) {
    using Vector = typename Lanes<kWidth>::Vector;
    for (int i = 0; i < count; ++i) {
        const int p = first + i;
#pragma GCC unroll 4
        for (int k = 0; k < kBrickNodes; k += kWidth) {
            const Vector slope[3] = {LanesAt<kWidth>(&rule.HR[p][0][k]), LanesAt<kWidth>(&rule.HR[p][1][k]),
                                     LanesAt<kWidth>(&rule.HR[p][2][k])};
#pragma GCC unroll 3
            for (int c = 0; c < 3; ++c) {
                const Vector gradient = brick.inverse[c][0][p] * slope[0] +
                                        brick.inverse[c][1][p] * slope[1] + brick.inverse[c][2][p] * slope[2];
                LanesAt<kWidth>(&factors.gradient[i][c][k]) = gradient;
                LanesAt<kWidth>(&factors.flow[i][c][k]) = brick.conduction[c][p] * gradient;
            }
            if (transient)
                LanesAt<kWidth>(&factors.capacity[i][k]) = brick.CP[p] * LanesAt<kWidth>(&rule.H[p][k]);
        }
    }
}

// Rows kFirst .. kFirst + kWidth - 1 of a matrix from the column of the first on, in registers.
template <int kWidth, int kFirst> struct MatrixRows {
    static constexpr int kVectors = (kBrickNodes - kFirst) / kWidth;
    typename Lanes<kWidth>::Vector row[kWidth][kVectors];
};

template <int kWidth, int kFirst>
ZURT_INLINE void LoadRows(const double (&matrix)[kBrickNodes][kBrickNodes],
                          MatrixRows<kWidth, kFirst>& rows) {
#pragma GCC unroll 8
    for (int r = 0; r < kWidth; ++r)
#pragma GCC unroll 4
        for (int v = 0; v < rows.kVectors; ++v)
            rows.row[r][v] = LanesAt<kWidth>(&matrix[kFirst + r][kFirst + v * kWidth]);
}

template <int kWidth, int kFirst>
ZURT_INLINE void StoreRows(const MatrixRows<kWidth, kFirst>& rows,
                           double (&matrix)[kBrickNodes][kBrickNodes]) {
#pragma GCC unroll 8
    for (int r = 0; r < kWidth; ++r)
#pragma GCC unroll 4
        for (int v = 0; v < rows.kVectors; ++v)
            LanesAt<kWidth>(&matrix[kFirst + r][kFirst + v * kWidth]) = rows.row[r][v];
}

template <int kWidth, int kFirst>
ZURT_INLINE void AddConductionRows(const BlockFactors& factors, const double* measure, int count,
                                   double (&K)[kBrickNodes][kBrickNodes]) {
    using Vector = typename Lanes<kWidth>::Vector;
    MatrixRows<kWidth, kFirst> rows;
    LoadRows(K, rows);
    for (int i = 0; i < count; ++i) {
        const double w = measure[i];
#pragma GCC unroll 4
        for (int v = 0; v < rows.kVectors; ++v) {
            const int column = kFirst + v * kWidth;
            const Vector x = LanesAt<kWidth>(&factors.gradient[i][0][column]);
            const Vector y = LanesAt<kWidth>(&factors.gradient[i][1][column]);
            const Vector z = LanesAt<kWidth>(&factors.gradient[i][2][column]);
#pragma GCC unroll 8
            for (int r = 0; r < kWidth; ++r) {
                const Vector product = factors.flow[i][0][kFirst + r] * x +
                                       factors.flow[i][1][kFirst + r] * y +
                                       factors.flow[i][2][kFirst + r] * z;
                rows.row[r][v] += product * w;
            }
        }
    }
    StoreRows(rows, K);
}

template <int kWidth, int kFirst>
ZURT_INLINE void AddCapacityRows(const BlockFactors& factors, const double (*H)[kBrickNodes],
                                 const double* measure, int count, double (&C)[kBrickNodes][kBrickNodes]) {
    using Vector = typename Lanes<kWidth>::Vector;
    MatrixRows<kWidth, kFirst> rows;
    LoadRows(C, rows);
    for (int i = 0; i < count; ++i) {
        const double w = measure[i];
#pragma GCC unroll 4
        for (int v = 0; v < rows.kVectors; ++v) {
            const Vector shape = LanesAt<kWidth>(&H[i][kFirst + v * kWidth]);
#pragma GCC unroll 8
            for (int r = 0; r < kWidth; ++r)
                rows.row[r][v] += factors.capacity[i][kFirst + r] * shape * w;
        }
    }
    StoreRows(rows, C);
}

// The sums over all points, for the upper triangles (and what else the registers of their rows hold).
template <int kWidth, int kFirst>
ZURT_INLINE void AddRows(const BlockFactors& factors, const BrickRule& rule, int first, int count,
                         bool transient, BrickValues& brick) {
    AddConductionRows<kWidth, kFirst>(factors, &brick.measure[first], count, brick.K);
    if (transient)
        AddCapacityRows<kWidth, kFirst>(factors, &rule.H[first], &brick.measure[first], count, brick.C);
    if constexpr (kFirst + kWidth < kBrickNodes)
        AddRows<kWidth, kFirst + kWidth>(factors, rule, first, count, transient, brick);
}

// --- from the sums to the system -----------------------------------------------------------------------------------

// A symmetric matrix by rows of registers.
template <int kWidth> struct SquareRows {
    static constexpr int kVectors = kBrickNodes / kWidth;
    typename Lanes<kWidth>::Vector row[kBrickNodes][kVectors];
};

// The lower triangle from the upper one.
template <int kWidth> ZURT_INLINE void MirrorRows(SquareRows<kWidth>& square) {
    using Vector = typename Lanes<kWidth>::Vector;
    typename Lanes<kWidth>::Mask number;
    SetLaneNumbers<kWidth>(number);
#pragma GCC unroll 4
    for (int a = 0; a < square.kVectors; ++a)
#pragma GCC unroll 4
        for (int b = a; b < square.kVectors; ++b) {
            Vector mirrored[kWidth];
#pragma GCC unroll 8
            for (int r = 0; r < kWidth; ++r)
                mirrored[r] = square.row[a * kWidth + r][b];
            TransposeLanes<kWidth>(mirrored);
#pragma GCC unroll 8
            for (int r = 0; r < kWidth; ++r) {
                Vector& row = square.row[b * kWidth + r][a];
                row = a == b ? (number < r ? mirrored[r] : row) : mirrored[r];
            }
        }
}

// FE += sign times the product with v, a sum over j in ascending order.
template <int kWidth>
ZURT_INLINE void AddProduct(const SquareRows<kWidth>& square, const double* v, double sign,
                            double (&FE)[kBrickNodes]) {
    using Vector = typename Lanes<kWidth>::Vector;
#pragma GCC unroll 4
    for (std::ptrdiff_t a = 0; a < square.kVectors; ++a) {
        Vector product = square.row[0][a] * v[0];
#pragma GCC unroll 8
        for (int j = 1; j < kBrickNodes; ++j)
            product += square.row[j][a] * v[j];
        LanesAt<kWidth>(&FE[a * kWidth]) += sign * product;
    }
}

// C := C/dt, FE += C TE0, K += C, FE -= K TE1.
template <int kWidth>
ZURT_INLINE void AddTimeTermAndResidual(bool transient, double dt, const double* TE0, const double* TE1,
                                        BrickValues& brick) {
    SquareRows<kWidth> K, C;
#pragma GCC unroll 8
    for (int i = 0; i < kBrickNodes; ++i)
#pragma GCC unroll 4
        for (std::ptrdiff_t a = i / kWidth; a < K.kVectors; ++a) {
            K.row[i][a] = LanesAt<kWidth>(&brick.K[i][a * kWidth]);
            if (transient) {
                C.row[i][a] = LanesAt<kWidth>(&brick.C[i][a * kWidth]) / dt;
                K.row[i][a] += C.row[i][a];
                LanesAt<kWidth>(&brick.K[i][a * kWidth]) = K.row[i][a];
            }
        }
    if (transient) {
        MirrorRows(C);
        AddProduct(C, TE0, 1.0, brick.FE);
    }
    MirrorRows(K);
    AddProduct(K, TE1, -1.0, brick.FE);
}

template <int kWidth>
ZURT_INLINE void SumAllPoints(const BrickRule& rule, bool transient, double dt, const double* TE0,
                              const double* TE1, BrickValues& brick, double* packed) {
    BlockFactors factors;
    std::fill(&brick.K[0][0], &brick.K[0][0] + kMatrixEntries, 0.0);
    if (transient)
        std::fill(&brick.C[0][0], &brick.C[0][0] + kMatrixEntries, 0.0);
    for (int first = 0; first < rule.count; first += kPointBlock) {
        const int count = std::min(kPointBlock, rule.count - first);
        SetFactors<kWidth>(rule, first, count, transient, brick, factors);
        AddRows<kWidth, 0>(factors, rule, first, count, transient, brick);
    }
    AddTimeTermAndResidual<kWidth>(transient, dt, TE0, TE1, brick);
#pragma GCC unroll 8
    for (int i = 0; i < kBrickNodes; ++i)
#pragma GCC unroll 8
        for (int j = i; j < kBrickNodes; ++j)
            *packed++ = brick.K[i][j];
}

// --- one copy for each set of instructions -------------------------------------------------------------------------

ZURT_KERNEL(void, LocateCopy, LocateAllPoints,
            (const BrickRule& rule, const NodeCoordinates<3>& CORE, const double* TE1, BrickValues& brick),
            (rule, CORE, TE1, brick))
ZURT_KERNEL(void, SumCopy, SumAllPoints,
            (const BrickRule& rule, bool transient, double dt, const double* TE0, const double* TE1,
             BrickValues& brick, double* packed),
            (rule, transient, dt, TE0, TE1, brick, packed))

} // namespace

void SetBrickRule(const ElementPoints<3>& points, BrickRule& rule) {
    rule.count = points.count;
    for (int p = 0; p < kBrickPoints; ++p) {
        const ElementPoint<3>& point = points.point[std::min(p, points.count - 1)];
        const int block = p / kPointBlock, lane = p % kPointBlock;
        rule.weight[p] = point.weight;
        for (int k = 0; k < kBrickNodes; ++k) {
            rule.H[p][k] = rule.pointH[block][k][lane] = point.shape.H[k];
            for (int d = 0; d < 3; ++d)
                rule.HR[p][d][k] = rule.pointHR[block][d][k][lane] = point.shape.HR[d][k];
        }
    }
}

void LocateBrickPoints(InstructionSet instructions, const BrickRule& rule, const NodeCoordinates<3>& CORE,
                       const double* TE1, BrickValues& brick) {
    LocateCopy(instructions)(rule, CORE, TE1, brick);
}

void SumBrick(InstructionSet instructions, const BrickRule& rule, bool transient, double dt,
              const double* TE0, const double* TE1, BrickValues& brick, double* packed) {
    SumCopy(instructions)(rule, transient, dt, TE0, TE1, brick, packed);
}

} // namespace zurt
