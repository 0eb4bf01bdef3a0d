#include "solver/incomplete_cholesky.h"

#include <algorithm>
#include <cmath>

namespace zurt {

namespace {

/// The least pivot, against a diagonal of 1: smaller ones are what rounding has left of a singular matrix.
constexpr double kSmallestPivot = 1e-12;

/// A pivot keeps this part of itself at least; where the fill would take more, it takes nothing.
constexpr double kLeastShare = 0.1;

// The part that a worker has in hand. Its columns reach its own rows and those behind the stage.
struct PartInHand {
    const SymmetricRows& A;
    const FactorTerms& terms;
    std::int32_t stage, first, end,
        behind; // first rows of the stage, of the part, behind the part and behind the stage
    float* L;
    double *expanded, *fill, *outside; // outside: from row `behind` on
};

double& FillOf(const PartInHand& part, std::int32_t row) {
    return row < part.end ? part.fill[row] : part.outside[row - part.behind];
}

// Products of the row that is expanded with another one, from `from` up to `place`. Columns of the stage's other parts have entries in
// rows behind the stage, but none in the expanded row, and their workers are still at them.
double SumOfProducts(const PartInHand& part, Word from, Word place) {
    const std::int32_t* const column = part.A.column.data();
    double sum = 0.0;
    for (; from < place && column[from] < part.stage; ++from)
        sum += part.L[from] * part.expanded[column[from]];
    while (from < place && column[from] < part.first)
        ++from;
    for (; from < place; ++from)
        sum += part.L[from] * part.expanded[column[from]];
    return sum;
}

// 1 + shift less the squares of row k, which is expanded.
double ExpandRow(const PartInHand& part, std::size_t k) {
    double pivot = 1.0 + part.terms.shift;
    for (Word m = part.A.start[k]; m < part.A.start[k + 1] - 1; ++m) {
        const double entry = part.expanded[part.A.column[static_cast<std::size_t>(m)]] = part.L[m];
        pivot -= entry * entry;
    }
    return pivot;
}

// Column k of L; false when its pivot fails. What is left out in rows i and j, of the column's product of the two, is all of it but
// what an entry of the pattern takes.
bool FactorColumn(const PartInHand& part, std::size_t k) {
    const SymmetricRows& A = part.A;
    const double* const weight = part.terms.weight;
    const auto first = static_cast<std::size_t>(A.below[k]), end = static_cast<std::size_t>(A.below[k + 1]);
    const auto place = [&A](std::size_t entry) {
        return A.start[static_cast<std::size_t>(A.row[entry])] + A.at[entry];
    };
    const double plain = ExpandRow(part, k);
    double fill = part.fill[k];
    for (std::size_t entry = first; entry < end; ++entry) {
        const std::int32_t row = A.row[entry];
        const double sum = SumOfProducts(part, A.start[static_cast<std::size_t>(row)], place(entry));
        part.L[place(entry)] = static_cast<float>(A.value[static_cast<std::size_t>(place(entry))] - sum);
        fill -= sum * weight[row];
        FillOf(part, row) -= sum * weight[k];
    }
    for (Word m = A.start[k]; m < A.start[k + 1] - 1; ++m)
        part.expanded[A.column[static_cast<std::size_t>(m)]] = 0.0;
    const double lowered = plain - part.terms.share * fill / weight[k];
    const double pivot = lowered >= kLeastShare * plain ? lowered : plain;
    const double reciprocal = 1.0 / std::sqrt(pivot);
    double sum = 0.0;
    for (std::size_t entry = first; entry < end; ++entry) {
        float& L = part.L[place(entry)];
        L = static_cast<float>(L * reciprocal);
        sum += L * weight[A.row[entry]];
    }
    for (std::size_t entry = first; entry < end; ++entry) {
        const double L = part.L[place(entry)];
        FillOf(part, A.row[entry]) += L * (sum - L * weight[A.row[entry]]);
    }
    part.L[A.start[k + 1] - 1] = static_cast<float>(reciprocal);
    return pivot > kSmallestPivot;
}

// What the parts of earlier stages have left out in the rows of this one.
void BeginFill(const RowOrder& order, std::size_t stage, const PartInHand& part, IncompleteFactor& factor) {
    std::fill(factor.fill.begin() + part.first, factor.fill.begin() + part.end, 0.0);
    for (std::size_t earlier = 0; earlier < stage; ++earlier) {
        const auto end = static_cast<std::size_t>(order.stage[earlier + 1]);
        const std::int32_t behind = order.part[end];
        for (auto p = static_cast<std::size_t>(order.stage[earlier]); p < end; ++p)
            for (std::int32_t i = part.first; i < part.end; ++i)
                part.fill[i] += factor.outside[p][static_cast<std::size_t>(i - behind)];
    }
}

} // namespace

void TakeFactorRoom(const SymmetricRows& A, const RowOrder& order, int workers, IncompleteFactor& factor) {
    factor.L.resize(A.column.size());
    factor.fill.resize(static_cast<std::size_t>(A.JEDN));
    factor.outside.resize(PartCount(order));
    factor.failed.resize(PartCount(order));
    factor.expanded.resize(static_cast<std::size_t>(workers));
    for (std::vector<double>& expanded : factor.expanded)
        expanded.assign(static_cast<std::size_t>(A.JEDN), 0.0);
}

bool FactorRows(const TeamMember& member, const SymmetricRows& A, const RowOrder& order,
                const FactorTerms& terms, IncompleteFactor& factor) {
    double* const expanded = factor.expanded[static_cast<std::size_t>(member.worker)].data();
    for (std::size_t stage = 0; stage < StageCount(order); ++stage) {
        const std::int32_t begin = order.part[static_cast<std::size_t>(order.stage[stage])],
                           behind = order.part[static_cast<std::size_t>(order.stage[stage + 1])];
        ForPartsOfStage(member, order, stage, [&](std::size_t number, std::size_t first, std::size_t end) {
            std::vector<double>& outside = factor.outside[number];
            outside.assign(static_cast<std::size_t>(A.JEDN - behind), 0.0);
            const PartInHand part{A,
                                  terms,
                                  begin,
                                  static_cast<std::int32_t>(first),
                                  static_cast<std::int32_t>(end),
                                  behind,
                                  factor.L.data(),
                                  expanded,
                                  factor.fill.data(),
                                  outside.data()};
            BeginFill(order, stage, part, factor);
            std::size_t k = first;
            while (k < end && FactorColumn(part, k))
                ++k;
            factor.failed[number] = k < end ? 1 : 0;
        });
    }
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
