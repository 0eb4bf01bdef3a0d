// Correction factor tables of the equivalent homogeneous medium: those of all sets merged by volume.
//
// Called by the fibre step, after all groups, when IEHM is 1.
#pragma once

#include "run/fibre_set.h"

namespace zurt {

/// Merges the tables of all sets, weighted by the sets' volumes, into those of the first set: the merged tables have their
/// sizes and take their storage, and while a row is made the first set is looked up in what stands there by then. The
/// first row stays. Table Y is merged likewise if the first set has one; a set without the table counts with a factor
/// of 1. With one set all that changes is the last row, which becomes 1.
/// The volumes have been set by FibreVolumes.
void MergeCorrectionTables(FibreModel& model);

/// The merged tables; before the merge, those of the first set.
inline const CorrectionTable& EhmTableX(const FibreModel& model) {
    return model.sets.front().table;
}
inline const CorrectionTable& EhmTableY(const FibreModel& model) {
    return model.sets.front().tableY;
}

} // namespace zurt
