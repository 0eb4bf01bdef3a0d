#include "solver/level_schedule.h"

#include <algorithm>
#include <numeric>

namespace zurt {

namespace {

/// The least mean number of rows in a level for which it pays to share levels among threads, which meet behind each.
constexpr std::int32_t kWideLevel = 32;

void SortByLevels(const SymmetricRows& rows, LevelSchedule& schedule) {
    const auto JEDN = static_cast<std::size_t>(rows.JEDN);
    std::vector<std::int32_t> levelOf(JEDN, 0);
    schedule.level.assign(1, 0);
    for (std::size_t i = 0; i < JEDN; ++i) {
        for (auto k = static_cast<std::size_t>(rows.start[i]);
             k + 1 < static_cast<std::size_t>(rows.start[i + 1]); ++k)
            levelOf[i] = std::max(levelOf[i], levelOf[static_cast<std::size_t>(rows.column[k])] + 1);
        const auto next = static_cast<std::size_t>(levelOf[i]) + 1;
        if (next >= schedule.level.size())
            schedule.level.push_back(0);
        ++schedule.level[next];
    }
    std::partial_sum(schedule.level.begin(), schedule.level.end(), schedule.level.begin());
    schedule.row.resize(JEDN);
    std::vector<std::int32_t> next = schedule.level;
    for (std::size_t i = 0; i < JEDN; ++i)
        schedule.row[static_cast<std::size_t>(next[static_cast<std::size_t>(levelOf[i])]++)] =
            static_cast<std::int32_t>(i);
}

void TakeStarts(const std::vector<std::int32_t>& counts, const LevelSchedule& schedule,
                ScheduledEntries& entries) {
    entries.start.assign(1, 0);
    for (const std::int32_t row : schedule.row)
        entries.start.push_back(entries.start.back() + counts[static_cast<std::size_t>(row)]);
    entries.other.resize(static_cast<std::size_t>(entries.start.back()));
    entries.place.resize(entries.other.size());
}

void ScheduleEntries(const SymmetricRows& rows, LevelSchedule& schedule) {
    const auto JEDN = static_cast<std::size_t>(rows.JEDN);
    std::vector<std::int32_t> inRow(JEDN, 0), inColumn(JEDN, 0);
    for (std::size_t i = 0; i < JEDN; ++i)
        for (auto k = static_cast<std::size_t>(rows.start[i]);
             k + 1 < static_cast<std::size_t>(rows.start[i + 1]); ++k) {
            ++inRow[i];
            ++inColumn[static_cast<std::size_t>(rows.column[k])];
        }
    TakeStarts(inRow, schedule, schedule.forward);
    TakeStarts(inColumn, schedule, schedule.backward);
    std::vector<Word> nextOfRow(JEDN), nextOfColumn(JEDN);
    std::vector<std::int32_t> turn(JEDN); // when a row comes
    for (std::size_t n = 0; n < JEDN; ++n) {
        turn[static_cast<std::size_t>(schedule.row[n])] = static_cast<std::int32_t>(n);
        nextOfRow[static_cast<std::size_t>(schedule.row[n])] = schedule.forward.start[n];
        nextOfColumn[static_cast<std::size_t>(schedule.row[n])] = schedule.backward.start[n];
    }
    const auto put = [&](ScheduledEntries& entries, Word& next, std::size_t other, std::size_t k) {
        entries.other[static_cast<std::size_t>(next)] = turn[other];
        entries.place[static_cast<std::size_t>(next++)] = static_cast<std::uint32_t>(k);
    };
    for (std::size_t i = JEDN; i-- > 0;)
        for (auto k = static_cast<std::size_t>(rows.start[i]);
             k + 1 < static_cast<std::size_t>(rows.start[i + 1]); ++k) {
            const auto column = static_cast<std::size_t>(rows.column[k]);
            put(schedule.forward, nextOfRow[i], column, k);
            put(schedule.backward, nextOfColumn[column], i, k);
        }
}

} // namespace

LevelSchedule MakeSchedule(const SymmetricRows& rows) {
    LevelSchedule schedule;
    SortByLevels(rows, schedule);
    if (schedule.row.size() < kWideLevel * schedule.level.size())
        return {};
    ScheduleEntries(rows, schedule);
    return schedule;
}

} // namespace zurt
