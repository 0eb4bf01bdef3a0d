// The step file on unit 20: the last steps of a run, held on disk as a scratch file. Nothing reads it back.
#pragma once

#include "core/array_view.h"

#include <cstdio>

namespace zurt {

/// Writes one unformatted record, TIME and then the JEDN values of StepSolution. The first step rewinds the file.
/// NCZK 0 keeps all steps and NCZZ counts them; otherwise NCZZ counts up to NCZK, and from then on the file is rewound
/// after every step whose number is a multiple of NCZK. A write behind a rewind truncates what followed it.
void SaveStep(std::int32_t KOR, double TIME, ConstRealArray solution, std::int32_t NCZK, std::int32_t& NCZZ,
              std::FILE* unit);

} // namespace zurt
