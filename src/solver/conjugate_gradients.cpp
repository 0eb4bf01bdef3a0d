#include "solver/conjugate_gradients.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zurt {

namespace {

/// Of the fill that is left out, in the diagonal: all of it lets single pivots come near to 0.
constexpr double kShareOfFill = 0.99;
/// It pays in meshes that are large enough, where neighbours of like coefficients take from one another: entries off the diagonal are
/// negative, and those of the capacity or of elongated elements that are not stay below this part of them.
constexpr std::int32_t kManyRows = 4096;
constexpr double kFewPositive = 0.12;
constexpr double kShifts[] = {0.0, 1e-3, 1e-2, 1e-1, 1.0};

/// Squares of less underflow, and rounding ends the turns long before.
constexpr double kLeastTolerance = 1e-100;

/// |b - A x| <= kRoundings |x| can't be made smaller: a direct solver leaves a residual of this size.
constexpr double kRoundings = 100.0 * std::numeric_limits<double>::epsilon();

// The system in hand as one worker of the team sees it. Each does the parts of the rows that are its own, and all come to the
// same scalars from the sums of the parts. An iteration goes three times through the rows: backward through the factor, which
// ends with the direction p; forward through A, for A p; forward through the factor, which begins with the residual.
struct Gradients {
    TeamMember member;
    SymmetricRows& A;
    const RowOrder& order;
    GradientsWork& work;
};

// Calls body(row) for the rows of this worker's parts, in any order of the parts, and waits for the others.
template <class Body> void ForRows(const Gradients& gradients, const Body& body) {
    const auto part = [&](std::size_t, std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end; ++i)
            body(i);
    };
    ForStages(gradients.member, gradients.order, part);
}

double Total(const GradientsWork& work, double PartSums::*what) {
    double total = 0.0;
    for (const PartSums& sums : work.sums)
        total += sums.*what;
    return total;
}

struct Norms {
    double rr, rz; // r r and r M^-1 r
};

// x += step p, r -= step Ap, z = L^-1 r, of which r M^-1 r is the square.
Norms Advance(const Gradients& gradients, double step) {
    GradientsWork& work = gradients.work;
    const float* const L = work.factor.L.data();
    double* const z = work.z.data();
    ForStages(gradients.member, gradients.order, [&](std::size_t part, std::size_t first, std::size_t end) {
        double rr = 0.0, rz = 0.0;
        for (std::size_t i = first; i < end; ++i) {
            work.x[i] += step * work.p[i];
            const double rest = work.r[i] -= step * work.Ap[i];
            const double entry = z[i] = SubstituteForward(gradients.A, L, i, rest, z);
            rr += rest * rest;
            rz += entry * entry;
        }
        work.sums[part].rr = rr;
        work.sums[part].rz = rz;
    });
    return {Total(work, &PartSums::rr), Total(work, &PartSums::rz)};
}

// z = L^-T z, p = z + ratio p.
void TurnDirection(const Gradients& gradients, double ratio) {
    GradientsWork& work = gradients.work;
    const float* const L = work.factor.L.data();
    double* const z = work.z.data();
    for (std::size_t stage = StageCount(gradients.order); stage-- > 0;)
        ForPartsOfStage(gradients.member, gradients.order, stage,
                        [&](std::size_t, std::size_t first, std::size_t end) {
                            for (std::size_t i = end; i-- > first;)
                                work.p[i] = SubstituteBackward(gradients.A, L, i, z) + ratio * work.p[i];
                        });
}

// Ap = A v; returns v A v.
double Multiply(const Gradients& gradients, const double* v) {
    GradientsWork& work = gradients.work;
    double* const product = work.Ap.data();
    ForStages(gradients.member, gradients.order, [&](std::size_t part, std::size_t first, std::size_t end) {
        double energy = 0.0;
        for (std::size_t i = first; i < end; ++i) {
            const double lower = MultiplyRow(gradients.A, i, v, product);
            energy += v[i] * (product[i] + lower);
        }
        work.sums[part].energy = energy;
    });
    return Total(work, &PartSums::energy);
}

// r = b - A x; returns x x.
double TakeResidual(const Gradients& gradients) {
    GradientsWork& work = gradients.work;
    Multiply(gradients, work.x.data());
    ForStages(gradients.member, gradients.order, [&](std::size_t part, std::size_t first, std::size_t end) {
        double size = 0.0;
        for (std::size_t i = first; i < end; ++i) {
            work.r[i] = work.b[i] - work.Ap[i];
            size += work.x[i] * work.x[i];
        }
        work.sums[part].rr = size;
    });
    const double size = Total(work, &PartSums::rr);
    MeetWorkers(gradients.member.workers); // the sums have been read
    return size;
}

void Factor(const Gradients& gradients, GradientsReport& report) {
    GradientsWork& work = gradients.work;
    const auto factored = [&](double share) {
        return FactorRows(gradients.member, gradients.A, gradients.order,
                          {work.weight.data(), share, report.shift}, work.factor);
    };
    const bool sharing = gradients.A.JEDN >= kManyRows &&
                         Total(work, &PartSums::positive) <= kFewPositive * Total(work, &PartSums::negative);
    report.factored = sharing && factored(kShareOfFill);
    for (const double shift : kShifts) {
        if (report.factored)
            return;
        report.shift = shift;
        report.factored = factored(0.0);
    }
    if (!report.factored)
        FactorNothing(gradients.member, gradients.A, gradients.order, work.factor);
}

// Iterates until the residual of the recurrence is at most `small`, squared. False when the matrix is not positive definite.
bool Iterate(const Gradients& gradients, double small, std::int32_t limit, Norms norms,
             GradientsReport& report) {
    double ratio = 0.0;
    while (norms.rr > small && report.iterations < limit) {
        TurnDirection(gradients, ratio);
        const double energy = Multiply(gradients, gradients.work.p.data());
        if (!(energy > 0.0 && norms.rz > 0.0 && std::isfinite(energy)))
            return false;
        const double before = norms.rz;
        norms = Advance(gradients, before / energy);
        ratio = norms.rz / before;
        ++report.iterations;
    }
    return std::isfinite(norms.rr);
}

// Turns of the iteration, each from the residual of the solution itself: that of the recurrence drifts away from it.
GradientsEnd IterateInTurns(const Gradients& gradients, const GradientsLimits& limits,
                            GradientsReport& report) {
    const double tolerance = std::max(limits.tolerance, kLeastTolerance);
    const Norms begin = Advance(gradients, 0.0);
    if (!std::isfinite(begin.rr))
        return GradientsEnd::NotConverged;
    Norms norms = begin;
    while (begin.rr > 0.0) {
        const double before = norms.rr;
        if (!Iterate(gradients, tolerance * tolerance * begin.rr, limits.iterations, norms, report))
            return GradientsEnd::NotPositiveDefinite;
        const double size = TakeResidual(gradients);
        norms = Advance(gradients, 0.0);
        report.residual = std::sqrt(norms.rr / begin.rr);
        if (report.residual <= tolerance || norms.rr <= kRoundings * kRoundings * size)
            break;
        if (report.iterations >= limits.iterations || norms.rr > 0.25 * before)
            return GradientsEnd::NotConverged;
    }
    return GradientsEnd::Converged;
}

// Scale, and what is to be known of b and of the diagonal.
void TakeScale(const Gradients& gradients, RealArray b) {
    GradientsWork& work = gradients.work;
    const SymmetricRows& A = gradients.A;
    ForStages(gradients.member, gradients.order, [&](std::size_t part, std::size_t first, std::size_t end) {
        PartSums sums;
        for (std::size_t i = first; i < end; ++i) {
            const std::int32_t equation = gradients.order.equation[i];
            const double entry = A.value[static_cast<std::size_t>(A.start[i + 1]) - 1];
            if (!(entry > 0.0) && (sums.equation == 0 || equation + 1 < sums.equation))
                sums.equation = equation + 1;
            work.weight[i] = std::sqrt(entry);
            work.scale[i] = 1.0 / work.weight[i];
            work.b[i] = b.data[equation];
            sums.numbers = sums.numbers && std::isfinite(work.b[i]);
            sums.largest = std::max(sums.largest, std::abs(work.b[i]));
        }
        work.sums[part] = sums;
    });
}

// The scaled system: A has a diagonal of 1, the largest entry of b lies between a half and 1, so that no squares of what is left of
// it over- or underflow.
void ScaleSystem(const Gradients& gradients, int exponent) {
    GradientsWork& work = gradients.work;
    SymmetricRows& A = gradients.A;
    ForStages(gradients.member, gradients.order, [&](std::size_t part, std::size_t first, std::size_t end) {
        double positive = 0.0, negative = 0.0;
        for (std::size_t i = first; i < end; ++i) {
            const auto diagonal = static_cast<std::size_t>(A.start[i + 1]) - 1;
            for (auto k = static_cast<std::size_t>(A.start[i]); k < diagonal; ++k) {
                A.value[k] *= work.scale[i] * work.scale[static_cast<std::size_t>(A.column[k])];
                positive += std::max(A.value[k], 0.0);
                negative -= std::min(A.value[k], 0.0);
            }
            A.value[diagonal] = 1.0;
            work.b[i] = work.r[i] = work.scale[i] * std::ldexp(work.b[i], -exponent);
            work.x[i] = work.p[i] = work.Ap[i] = 0.0;
        }
        work.sums[part].positive = positive;
        work.sums[part].negative = negative;
    });
}

// What each worker of the team does.
GradientsReport SolveInTeam(const Gradients& gradients, RealArray b, const GradientsLimits& limits) {
    GradientsReport report;
    GradientsWork& work = gradients.work;
    TakeScale(gradients, b);
    double largest = 0.0;
    for (const PartSums& sums : work.sums) {
        largest = std::max(largest, sums.largest);
        if (!sums.numbers)
            report.end = GradientsEnd::NoNumbers;
        if (sums.equation > 0 && (report.equation == 0 || sums.equation < report.equation))
            report.equation = sums.equation;
    }
    if (report.end == GradientsEnd::NoNumbers)
        return report;
    report.end = GradientsEnd::NotPositiveDefinite;
    if (report.equation != 0)
        return report;
    int exponent = 0;
    std::frexp(largest, &exponent);
    ScaleSystem(gradients, exponent);
    Factor(gradients, report);
    report.end = IterateInTurns(gradients, limits, report);
    if (report.end == GradientsEnd::Converged)
        ForRows(gradients, [&](std::size_t i) {
            b.data[gradients.order.equation[i]] = std::ldexp(work.scale[i] * work.x[i], exponent);
        });
    return report;
}

void TakeRoom(const SymmetricRows& A, const RowOrder& order, int workers, GradientsWork& work) {
    for (std::vector<double>* vector :
         {&work.scale, &work.weight, &work.b, &work.x, &work.r, &work.z, &work.p, &work.Ap})
        vector->resize(static_cast<std::size_t>(A.JEDN));
    work.sums.resize(PartCount(order));
    TakeFactorRoom(A, order, workers, work.factor);
}

} // namespace

GradientsReport SolveByGradients(Workers& workers, SymmetricRows& A, const RowOrder& order, RealArray b,
                                 const GradientsLimits& limits, GradientsWork& work) {
    GradientsReport report;
    report.end = GradientsEnd::Converged;
    report.factored = A.JEDN == 0;
    if (report.factored)
        return report;
    Workers alone; // with a single part the others would only wait
    Workers& sharing = PartCount(order) > 1 ? workers : alone;
    TakeRoom(A, order, sharing.count, work);
    if (A.below.empty())
        IndexColumns(A);
    InTeam(sharing, [&](int worker) {
        const GradientsReport found = SolveInTeam({{sharing, worker}, A, order, work}, b, limits);
        if (worker == 0)
            report = found;
    });
    return report;
}

} // namespace zurt
