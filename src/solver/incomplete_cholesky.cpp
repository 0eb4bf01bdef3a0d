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

void SubstituteAlone(const SymmetricRows& A, const float* L, const double* r, double* z) {
    const auto JEDN = static_cast<std::size_t>(A.JEDN);
    const std::int32_t* const column = A.column.data();
    for (std::size_t i = 0; i < JEDN; ++i) {
        const Word diagonal = A.start[i + 1] - 1;
        double sum = r[i];
        for (Word k = A.start[i]; k < diagonal; ++k)
            sum -= L[k] * z[column[k]];
        z[i] = sum * L[diagonal];
    }
    for (std::size_t i = JEDN; i-- > 0;) {
        const Word diagonal = A.start[i + 1] - 1;
        const double known = z[i] *= L[diagonal];
        for (Word k = A.start[i]; k < diagonal; ++k)
            z[column[k]] -= L[k] * known;
    }
}

// What is left of `rest` behind the entries of the row that comes n-th, in the order in which SubstituteAlone takes them off.
double TakeOff(const ScheduledEntries& entries, const float* values, std::size_t n, const double* y,
               double rest) {
    const std::int32_t* const other = entries.other.data();
    for (Word k = entries.start[n]; k < entries.start[n + 1]; ++k)
        rest -= values[k] * y[other[k]];
    return rest;
}

// Calls body(n, row) for this worker's share of the rows of a level, which come n-th; waits for the others.
template <class Body>
void ForLevel(const TeamMember& member, const LevelSchedule& schedule, std::size_t level, const Body& body) {
    const Word first = schedule.level[level], count = schedule.level[level + 1] - first;
    const Word workers = member.workers.count, begin = first + count * member.worker / workers,
               end = first + count * (member.worker + 1) / workers;
    for (Word at = begin; at < end; ++at)
        body(static_cast<std::size_t>(at),
             static_cast<std::size_t>(schedule.row[static_cast<std::size_t>(at)]));
    MeetWorkers(member.workers);
}

std::size_t LevelCount(const LevelSchedule& schedule) {
    return schedule.level.empty() ? 0 : schedule.level.size() - 1;
}

// This worker's share of L in the orders of the schedule.
void CopyFactor(const TeamMember& member, const SymmetricRows& A, const LevelSchedule& schedule,
                IncompleteFactor& factor) {
    const auto workers = static_cast<std::size_t>(member.workers.count),
               worker = static_cast<std::size_t>(member.worker);
    const std::size_t entries = factor.forward.size(), JEDN = factor.diagonal.size();
    for (std::size_t k = entries * worker / workers; k < entries * (worker + 1) / workers; ++k) {
        factor.forward[k] = factor.L[schedule.forward.place[k]];
        factor.backward[k] = factor.L[schedule.backward.place[k]];
    }
    for (std::size_t n = JEDN * worker / workers; n < JEDN * (worker + 1) / workers; ++n)
        factor.diagonal[n] =
            factor.L[static_cast<std::size_t>(A.start[static_cast<std::size_t>(schedule.row[n]) + 1]) - 1];
    MeetWorkers(member.workers);
}

} // namespace

void TakeFactorRoom(const SymmetricRows& A, const LevelSchedule& schedule, int workers,
                    IncompleteFactor& factor) {
    factor.L.resize(A.column.size());
    factor.forward.resize(schedule.forward.place.size());
    factor.backward.resize(schedule.backward.place.size());
    factor.diagonal.resize(schedule.row.size());
    factor.z.resize(schedule.row.size());
    factor.failed.resize(static_cast<std::size_t>(workers));
    factor.expanded.resize(schedule.level.empty() ? 1 : static_cast<std::size_t>(workers));
    for (std::vector<double>& expanded : factor.expanded)
        expanded.assign(static_cast<std::size_t>(A.JEDN), 0.0);
}

bool FactorRows(const TeamMember& member, const SymmetricRows& A, const LevelSchedule& schedule, double shift,
                IncompleteFactor& factor) {
    const auto worker = static_cast<std::size_t>(member.worker);
    bool failed = false;
    if (schedule.level.empty()) {
        for (std::size_t i = 0; member.worker == 0 && !failed && i < static_cast<std::size_t>(A.JEDN); ++i)
            failed = !FactorRow(A, i, shift, factor.L.data(), factor.expanded[0].data());
    } else {
        double* const expanded = factor.expanded[worker].data();
        for (std::size_t level = 0; level < LevelCount(schedule); ++level)
            ForLevel(member, schedule, level, [&](std::size_t, std::size_t i) {
                failed = !FactorRow(A, i, shift, factor.L.data(), expanded) || failed;
            });
        CopyFactor(member, A, schedule, factor);
    }
    factor.failed[worker] = failed ? 1 : 0;
    MeetWorkers(member.workers);
    const bool good = std::find(factor.failed.begin(), factor.failed.end(), 1) == factor.failed.end();
    MeetWorkers(member.workers);
    return good;
}

void SubstituteRows(const TeamMember& member, const SymmetricRows& A, const LevelSchedule& schedule,
                    IncompleteFactor& factor, const double* r, double* z) {
    const float* const L = factor.L.data();
    if (schedule.level.empty()) {
        if (member.worker == 0)
            SubstituteAlone(A, L, r, z);
        MeetWorkers(member.workers);
        return;
    }
    const float* const diagonal = factor.diagonal.data();
    double* const y = factor.z.data();
    for (std::size_t level = 0; level < LevelCount(schedule); ++level)
        ForLevel(member, schedule, level, [&](std::size_t n, std::size_t i) {
            y[n] = TakeOff(schedule.forward, factor.forward.data(), n, y, r[i]) * diagonal[n];
        });
    for (std::size_t level = LevelCount(schedule); level-- > 0;)
        ForLevel(member, schedule, level, [&](std::size_t n, std::size_t i) {
            z[i] = y[n] = TakeOff(schedule.backward, factor.backward.data(), n, y, y[n]) * diagonal[n];
        });
}

} // namespace zurt
