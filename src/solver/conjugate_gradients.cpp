#include "solver/conjugate_gradients.h"

#include "solver/incomplete_cholesky.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zurt {

namespace {

constexpr double kShifts[] = {0.0, 1e-3, 1e-2, 1e-1, 1.0};

/// A residual of so many roundings of the solution can't be made smaller: what a direct solver leaves is no less.
constexpr double kRoundings = 100.0 * std::numeric_limits<double>::epsilon();

// The rows of a block, from 0.
struct RowRange {
    std::size_t first, end;
};

RowRange RowsOf(const SymmetricRows& A, std::int32_t b) {
    const auto block = static_cast<std::size_t>(b);
    return {static_cast<std::size_t>(A.block[block]), static_cast<std::size_t>(A.block[block + 1])};
}

template <class Body> void ForBlocks(const SymmetricRows& A, const Body& body) {
    for (std::int32_t b = 0; b < BlockCount(A); ++b)
        body(b, RowsOf(A, b));
}

double Dot(const std::vector<double>& u, const std::vector<double>& v, RowRange rows) {
    double sum = 0.0;
    for (std::size_t i = rows.first; i < rows.end; ++i)
        sum += u[i] * v[i];
    return sum;
}

double Total(const std::vector<double>& sums) {
    double total = 0.0;
    for (const double sum : sums)
        total += sum;
    return total;
}

// The first equation whose diagonal is not positive; 0: none.
std::int32_t TakeScale(const SymmetricRows& A, std::vector<double>& scale) {
    for (std::size_t i = 0; i < scale.size(); ++i) {
        const double entry = A.value[static_cast<std::size_t>(A.start[i + 1]) - 1];
        if (!(entry > 0.0))
            return static_cast<std::int32_t>(i) + 1;
        scale[i] = 1.0 / std::sqrt(entry);
    }
    return 0;
}

void ScaleBlock(SymmetricRows& A, RowRange rows, const std::vector<double>& scale) {
    for (std::size_t i = rows.first; i < rows.end; ++i) {
        const auto diagonal = static_cast<std::size_t>(A.start[i + 1]) - 1;
        for (auto k = static_cast<std::size_t>(A.start[i]); k < diagonal; ++k)
            A.value[k] *= scale[i] * scale[static_cast<std::size_t>(A.column[k])];
        A.value[diagonal] = 1.0;
    }
}

void Factor(const SymmetricRows& A, GradientsWork& work, GradientsReport& report) {
    work.L.resize(A.column.size());
    for (const double shift : kShifts) {
        report.shift = shift;
        report.factored = FactorRows(A, shift, work.L);
        if (report.factored)
            return;
    }
}

struct Norms {
    double rr, rz; // r r and r z
};

// z = M^-1 r.
Norms Precondition(const SymmetricRows& A, bool factored, GradientsWork& work) {
    if (factored)
        SubstituteRows(A, work.L, work.r, work.z);
    else
        work.z = work.r;
    ForBlocks(A, [&](std::int32_t b, RowRange rows) {
        work.sums[static_cast<std::size_t>(b)] = Dot(work.r, work.r, rows);
        work.moreSums[static_cast<std::size_t>(b)] = Dot(work.r, work.z, rows);
    });
    return {Total(work.sums), Total(work.moreSums)};
}

// Ap = A v; returns v A v.
double Multiply(const SymmetricRows& A, const std::vector<double>& v, GradientsWork& work) {
    ForBlocks(A, [&](std::int32_t b, RowRange) {
        MultiplyBlock(A, b, v.data(), work.Ap.data(), work.ahead[static_cast<std::size_t>(b)]);
    });
    ForBlocks(A, [&](std::int32_t b, RowRange rows) {
        AddFromBlocksBehind(A, b, work.ahead, work.Ap.data());
        work.sums[static_cast<std::size_t>(b)] = Dot(v, work.Ap, rows);
    });
    return Total(work.sums);
}

// x += step p, r -= step Ap.
void Advance(const SymmetricRows& A, double step, GradientsWork& work) {
    ForBlocks(A, [&](std::int32_t, RowRange rows) {
        for (std::size_t i = rows.first; i < rows.end; ++i) {
            work.x[i] += step * work.p[i];
            work.r[i] -= step * work.Ap[i];
        }
    });
}

// r = b - A x.
void TakeResidual(const SymmetricRows& A, GradientsWork& work) {
    Multiply(A, work.x, work);
    ForBlocks(A, [&](std::int32_t, RowRange rows) {
        for (std::size_t i = rows.first; i < rows.end; ++i)
            work.r[i] = work.b[i] - work.Ap[i];
    });
}

// p = z + ratio p.
void TurnDirection(const SymmetricRows& A, double ratio, GradientsWork& work) {
    ForBlocks(A, [&](std::int32_t, RowRange rows) {
        for (std::size_t i = rows.first; i < rows.end; ++i)
            work.p[i] = work.z[i] + ratio * work.p[i];
    });
}

// Iterates until the residual of the recurrence is at most `small`, squared. False when the matrix is not positive definite.
bool Iterate(const SymmetricRows& A, double small, std::int32_t limit, Norms norms, GradientsWork& work,
             GradientsReport& report) {
    double ratio = 0.0;
    while (norms.rr > small && report.iterations < limit) {
        TurnDirection(A, ratio, work);
        const double energy = Multiply(A, work.p, work);
        if (!(energy > 0.0 && norms.rz > 0.0 && std::isfinite(energy)))
            return false;
        const double before = norms.rz;
        Advance(A, before / energy, work);
        norms = Precondition(A, report.factored, work);
        ratio = norms.rz / before;
        ++report.iterations;
    }
    return std::isfinite(norms.rr);
}

// Turns of the iteration, each from the residual of the solution itself: that of the recurrence drifts away from it.
void IterateInTurns(const SymmetricRows& A, double tolerance, std::int32_t limit, GradientsWork& work,
                    GradientsReport& report) {
    work.r = work.b;
    const Norms begin = Precondition(A, report.factored, work);
    Norms norms = begin;
    report.end = GradientsEnd::NotPositiveDefinite;
    while (begin.rr > 0.0) {
        const double before = norms.rr;
        if (!Iterate(A, tolerance * tolerance * begin.rr, limit, norms, work, report))
            return;
        TakeResidual(A, work);
        norms = Precondition(A, report.factored, work);
        report.residual = std::sqrt(norms.rr / begin.rr);
        double size = 0.0;
        ForBlocks(A, [&](std::int32_t, RowRange rows) { size += Dot(work.x, work.x, rows); });
        if (report.residual <= tolerance || norms.rr <= kRoundings * kRoundings * size)
            break;
        if (report.iterations >= limit || norms.rr > 0.25 * before) {
            report.end = GradientsEnd::NotConverged;
            return;
        }
    }
    report.end = GradientsEnd::Converged;
}

bool SmallerMagnitude(double one, double other) {
    return std::abs(one) < std::abs(other);
}

void TakeRoom(const SymmetricRows& A, GradientsWork& work) {
    for (std::vector<double>* vector : {&work.scale, &work.b, &work.r, &work.z, &work.Ap})
        vector->resize(static_cast<std::size_t>(A.JEDN));
    for (std::vector<double>* vector : {&work.x, &work.p})
        vector->assign(static_cast<std::size_t>(A.JEDN), 0.0);
    const auto blocks = static_cast<std::size_t>(BlockCount(A));
    work.ahead.resize(blocks);
    work.sums.assign(blocks, 0.0);
    work.moreSums.assign(blocks, 0.0);
}

} // namespace

GradientsReport SolveByGradients(SymmetricRows& A, RealArray b, double tolerance, std::int32_t limit,
                                 GradientsWork& work) {
    GradientsReport report;
    if (A.JEDN == 0) {
        report.end = GradientsEnd::Converged;
        return report;
    }
    TakeRoom(A, work);
    report.equation = TakeScale(A, work.scale);
    if (report.equation != 0) {
        report.end = GradientsEnd::NotPositiveDefinite;
        return report;
    }
    int exponent = 0; // of the largest entry of b: squares of what is left neither over- nor underflow
    std::frexp(*std::max_element(b.data, b.data + b.length, SmallerMagnitude), &exponent);
    ForBlocks(A, [&](std::int32_t, RowRange rows) {
        ScaleBlock(A, rows, work.scale);
        for (std::size_t i = rows.first; i < rows.end; ++i)
            work.b[i] = std::ldexp(work.scale[i] * b.data[i], -exponent);
    });
    Factor(A, work, report);
    IterateInTurns(A, tolerance, limit, work, report);
    if (report.end == GradientsEnd::Converged)
        for (std::size_t i = 0; i < work.x.size(); ++i)
            b.data[i] = std::ldexp(work.scale[i] * work.x[i], exponent);
    return report;
}

} // namespace zurt
