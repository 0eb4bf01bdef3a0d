#include "solver/incomplete_cholesky.h"

#include <cmath>

namespace zurt {

namespace {

/// The least pivot, against a diagonal of 1: smaller ones are what rounding has left of a singular matrix.
constexpr double kSmallestPivot = 1e-12;

// Row i of L. `expanded` has a word for each row, all zero before and after.
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

bool FactorRows(const SymmetricRows& A, double shift, std::vector<float>& L) {
    std::vector<double> expanded(static_cast<std::size_t>(A.JEDN), 0.0);
    for (std::size_t i = 0; i < expanded.size(); ++i)
        if (!FactorRow(A, i, shift, L.data(), expanded.data()))
            return false;
    return true;
}

void SubstituteRows(const SymmetricRows& A, const std::vector<float>& values, const std::vector<double>& r,
                    std::vector<double>& z) {
    const float* const L = values.data();
    const std::int32_t* const column = A.column.data();
    for (std::size_t i = 0; i < z.size(); ++i) {
        const Word diagonal = A.start[i + 1] - 1;
        double sum = r[i];
        for (Word k = A.start[i]; k < diagonal; ++k)
            sum -= L[k] * z[static_cast<std::size_t>(column[k])];
        z[i] = sum * L[diagonal];
    }
    for (std::size_t i = z.size(); i-- > 0;) {
        const Word diagonal = A.start[i + 1] - 1;
        const double known = z[i] *= L[diagonal];
        for (Word k = A.start[i]; k < diagonal; ++k)
            z[static_cast<std::size_t>(column[k])] -= L[k] * known;
    }
}

} // namespace zurt
