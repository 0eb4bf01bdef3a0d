#include "solver/incomplete_cholesky.h"

#include <algorithm>
#include <cmath>

namespace zurt {

namespace {

/// The least pivot, against a diagonal of 1: smaller ones are what rounding has left of a singular matrix.
constexpr double kSmallestPivot = 1e-12;

// Row i of L; false when its pivot fails.
bool FactorRow(const SymmetricRows& A, std::size_t i, double shift, float* L, double* expanded) {
    const std::int32_t* const column = A.column.data();
    const Word first = A.start[i], diagonal = A.start[i + 1] - 1;
    double pivot = 1.0 + shift;
    for (Word k = first; k < diagonal; ++k) {
        const auto other = static_cast<std::size_t>(column[k]);
        const Word end = A.start[other + 1] - 1;
        double rest = A.value[static_cast<std::size_t>(k)];
        for (Word m = A.start[other]; m < end; ++m)
            rest -= L[m] * expanded[column[m]];
        L[k] = static_cast<float>(rest * L[end]);
        expanded[other] = L[k];
        pivot -= expanded[other] * expanded[other];
    }
    for (Word k = first; k < diagonal; ++k)
        expanded[column[k]] = 0.0;
    L[diagonal] = static_cast<float>(1.0 / std::sqrt(pivot));
    return pivot > kSmallestPivot;
}

} // namespace

void TakeFactorRoom(const SymmetricRows& A, const RowOrder& order, int workers, IncompleteFactor& factor) {
    factor.L.resize(A.column.size());
    factor.failed.resize(PartCount(order));
    factor.expanded.resize(static_cast<std::size_t>(workers));
    for (std::vector<double>& expanded : factor.expanded)
        expanded.assign(static_cast<std::size_t>(A.JEDN), 0.0);
}

bool FactorRows(const TeamMember& member, const SymmetricRows& A, const RowOrder& order, double shift,
                IncompleteFactor& factor) {
    double* const expanded = factor.expanded[static_cast<std::size_t>(member.worker)].data();
    ForStages(member, order, [&](std::size_t part, std::size_t first, std::size_t end) {
        std::size_t i = first;
        while (i < end && FactorRow(A, i, shift, factor.L.data(), expanded))
            ++i;
        factor.failed[part] = i < end ? 1 : 0;
    });
    const bool good = std::find(factor.failed.begin(), factor.failed.end(), 1) == factor.failed.end();
    MeetWorkers(member.workers); // all have looked
    return good;
}

void FactorNothing(const TeamMember& member, const SymmetricRows& A, const RowOrder& order,
                   IncompleteFactor& factor) {
    ForStages(member, order, [&](std::size_t, std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end; ++i) {
            std::fill(factor.L.data() + A.start[i], factor.L.data() + A.start[i + 1], 0.0F);
            factor.L[static_cast<std::size_t>(A.start[i + 1]) - 1] = 1.0F;
        }
    });
}

} // namespace zurt
