// The order in which several threads factor and substitute the rows of a sparse symmetric matrix.
//
// The level of a row is 1 above the highest level among the columns of its lower triangle: all rows of a level can be
// done side by side, level after level, and, from the last level to the first, all columns. E. Anderson and Y. Saad, Int. J. High Speed
// Computing 1 (1989) 73-95. Called by solver/system_rows and solver/incomplete_cholesky.
#pragma once

#include "solver/symmetric_rows.h"

namespace zurt {

/// Entries off the diagonal that are summed row after row, as they are met.
struct ScheduledEntries {
    std::vector<Word> start;          // of the row that comes n-th, from 0; the end of the last one behind it
    std::vector<std::int32_t> other;  // when the row that an entry is multiplied with comes, from 0
    std::vector<std::uint32_t> place; // of the entry in the lower triangle
};

struct LevelSchedule {
    std::vector<std::int32_t>
        level; // where each level begins in `row`, from 0; JEDN behind the last; empty: no schedule
    std::vector<std::int32_t> row; // rows from 0, level by level, rising within a level
    ScheduledEntries forward;      // rows of the lower triangle, in the order of `row`
    ScheduledEntries backward;     // its columns, in the same order; entries by falling rows
};

/// The schedule of a pattern; none where levels are too narrow to be shared.
LevelSchedule MakeSchedule(const SymmetricRows& rows);

} // namespace zurt
