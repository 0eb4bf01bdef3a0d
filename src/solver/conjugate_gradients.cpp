#include "solver/conjugate_gradients.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zurt {

namespace {

constexpr double kShifts[] = {0.0, 1e-3, 1e-2, 1e-1, 1.0};

/// |b - A x| <= kRoundings |x| can't be made smaller: a direct solver leaves a residual of this size.
constexpr double kRoundings = 100.0 * std::numeric_limits<double>::epsilon();

// The system in hand as one worker of the team sees it. Each does the blocks of rows that are its own, and all come to the
// same scalars from the sums of the blocks.
struct Gradients {
    TeamMember member;
    SymmetricRows& A;
    const LevelSchedule& schedule;
    GradientsWork& work;
    bool factored = false;
};

// The rows of a block, from 0.
struct RowRange {
    std::size_t first, end;
};

// Calls body(block, rows) for this worker's blocks, and waits for the others.
template <class Body> void ForBlocks(const Gradients& gradients, const Body& body) {
    const std::int32_t count = BlockCount(gradients.A), workers = gradients.member.workers.count,
                       worker = gradients.member.worker;
    for (std::int32_t b = count * worker / workers; b < count * (worker + 1) / workers; ++b) {
        const auto block = static_cast<std::size_t>(b);
        body(block, RowRange{static_cast<std::size_t>(gradients.A.block[block]),
                             static_cast<std::size_t>(gradients.A.block[block + 1])});
    }
    MeetWorkers(gradients.member.workers);
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

void ScaleBlock(SymmetricRows& A, RowRange rows, const std::vector<double>& scale) {
    for (std::size_t i = rows.first; i < rows.end; ++i) {
        const auto diagonal = static_cast<std::size_t>(A.start[i + 1]) - 1;
        for (auto k = static_cast<std::size_t>(A.start[i]); k < diagonal; ++k)
            A.value[k] *= scale[i] * scale[static_cast<std::size_t>(A.column[k])];
        A.value[diagonal] = 1.0;
    }
}

void Factor(Gradients& gradients, GradientsReport& report) {
    for (const double shift : kShifts) {
        report.shift = shift;
        gradients.factored =
            FactorRows(gradients.member, gradients.A, gradients.schedule, shift, gradients.work.factor);
        if (gradients.factored)
            break;
    }
    report.factored = gradients.factored;
}

struct Norms {
    double rr, rz; // r r and r z
};

// z = M^-1 r.
Norms Precondition(const Gradients& gradients) {
    GradientsWork& work = gradients.work;
    if (gradients.factored)
        SubstituteRows(gradients.member, gradients.A, gradients.schedule, work.factor, work.r.data(),
                       work.z.data());
    ForBlocks(gradients, [&](std::size_t block, RowRange rows) {
        if (!gradients.factored)
            std::copy(&work.r[rows.first], &work.r[rows.first] + (rows.end - rows.first),
                      &work.z[rows.first]);
        work.sums[block] = Dot(work.r, work.r, rows);
        work.moreSums[block] = Dot(work.r, work.z, rows);
    });
    return {Total(work.sums), Total(work.moreSums)};
}

// Ap = A v; returns v A v.
double Multiply(const Gradients& gradients, const std::vector<double>& v) {
    GradientsWork& work = gradients.work;
    ForBlocks(gradients, [&](std::size_t block, RowRange) {
        MultiplyBlock(gradients.A, block, v.data(), work.Ap.data(), work.ahead[block]);
    });
    ForBlocks(gradients, [&](std::size_t block, RowRange rows) {
        AddFromBlocksBehind(gradients.A, block, work.ahead, work.Ap.data());
        work.sums[block] = Dot(v, work.Ap, rows);
    });
    return Total(work.sums);
}

// x += step p, r -= step Ap.
void Advance(const Gradients& gradients, double step) {
    GradientsWork& work = gradients.work;
    ForBlocks(gradients, [&](std::size_t, RowRange rows) {
        for (std::size_t i = rows.first; i < rows.end; ++i) {
            work.x[i] += step * work.p[i];
            work.r[i] -= step * work.Ap[i];
        }
    });
}

// r = b - A x; returns x x.
double TakeResidual(const Gradients& gradients) {
    GradientsWork& work = gradients.work;
    Multiply(gradients, work.x);
    ForBlocks(gradients, [&](std::size_t block, RowRange rows) {
        for (std::size_t i = rows.first; i < rows.end; ++i)
            work.r[i] = work.b[i] - work.Ap[i];
        work.moreSums[block] = Dot(work.x, work.x, rows);
    });
    const double size = Total(work.moreSums);
    MeetWorkers(gradients.member.workers); // the sums have been read
    return size;
}

// p = z + ratio p.
void TurnDirection(const Gradients& gradients, double ratio) {
    GradientsWork& work = gradients.work;
    ForBlocks(gradients, [&](std::size_t, RowRange rows) {
        for (std::size_t i = rows.first; i < rows.end; ++i)
            work.p[i] = work.z[i] + ratio * work.p[i];
    });
}

// Iterates until the residual of the recurrence is at most `small`, squared. False when the matrix is not positive definite.
bool Iterate(const Gradients& gradients, double small, std::int32_t limit, Norms norms,
             GradientsReport& report) {
    double ratio = 0.0;
    while (norms.rr > small && report.iterations < limit) {
        TurnDirection(gradients, ratio);
        const double energy = Multiply(gradients, gradients.work.p);
        if (!(energy > 0.0 && norms.rz > 0.0 && std::isfinite(energy)))
            return false;
        const double before = norms.rz;
        Advance(gradients, before / energy);
        norms = Precondition(gradients);
        ratio = norms.rz / before;
        ++report.iterations;
    }
    return std::isfinite(norms.rr);
}

// Turns of the iteration, each from the residual of the solution itself: that of the recurrence drifts away from it.
GradientsEnd IterateInTurns(const Gradients& gradients, const GradientsLimits& limits,
                            GradientsReport& report) {
    const double tolerance = limits.tolerance;
    const Norms begin = Precondition(gradients);
    if (!std::isfinite(begin.rr))
        return GradientsEnd::NotConverged;
    Norms norms = begin;
    while (begin.rr > 0.0) {
        const double before = norms.rr;
        if (!Iterate(gradients, tolerance * tolerance * begin.rr, limits.iterations, norms, report))
            return GradientsEnd::NotPositiveDefinite;
        const double size = TakeResidual(gradients);
        norms = Precondition(gradients);
        report.residual = std::sqrt(norms.rr / begin.rr);
        if (report.residual <= tolerance || norms.rr <= kRoundings * kRoundings * size)
            break;
        if (report.iterations >= limits.iterations || norms.rr > 0.25 * before)
            return GradientsEnd::NotConverged;
    }
    return GradientsEnd::Converged;
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

// What each worker of the team does.
GradientsReport SolveInTeam(Gradients gradients, RealArray b, const GradientsLimits& limits) {
    GradientsReport report;
    GradientsWork& work = gradients.work;
    int exponent = 0; // of the largest entry of b: squares of what is left neither over- nor underflow
    std::frexp(*std::max_element(b.data, b.data + b.length, SmallerMagnitude), &exponent);
    ForBlocks(gradients, [&](std::size_t, RowRange rows) {
        ScaleBlock(gradients.A, rows, work.scale);
        for (std::size_t i = rows.first; i < rows.end; ++i)
            work.b[i] = work.r[i] = work.scale[i] * std::ldexp(b.data[i], -exponent);
    });
    Factor(gradients, report);
    report.end = IterateInTurns(gradients, limits, report);
    ForBlocks(gradients, [&](std::size_t, RowRange rows) {
        if (report.end == GradientsEnd::Converged)
            for (std::size_t i = rows.first; i < rows.end; ++i)
                b.data[i] = std::ldexp(work.scale[i] * work.x[i], exponent);
    });
    return report;
}

} // namespace

GradientsReport SolveByGradients(Workers& workers, SymmetricRows& A, const LevelSchedule& schedule,
                                 RealArray b, const GradientsLimits& limits, GradientsWork& work) {
    GradientsReport report;
    report.end = GradientsEnd::Converged;
    report.factored = A.JEDN == 0;
    if (report.factored)
        return report;
    if (!std::all_of(b.data, b.data + b.length, [](double entry) { return std::isfinite(entry); })) {
        report.end = GradientsEnd::NoNumbers;
        return report;
    }
    Workers alone; // with a single block the others would only wait
    Workers& sharing = BlockCount(A) > 1 ? workers : alone;
    TakeRoom(A, work);
    TakeFactorRoom(A, schedule, sharing.count, work.factor);
    report.equation = TakeScale(A, work.scale);
    report.end = GradientsEnd::NotPositiveDefinite;
    if (report.equation == 0)
        InTeam(sharing, [&](int worker) {
            const GradientsReport found = SolveInTeam({{sharing, worker}, A, schedule, work}, b, limits);
            if (worker == 0)
                report = found;
        });
    return report;
}

} // namespace zurt
