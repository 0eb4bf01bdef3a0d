// The skyline solver behind solver/linear_system.h, where each operation is told: matrix and column pointers lie in `A`.
#pragma once

#include "solver/linear_system.h"

namespace zurt {

/// SkylineMatrix: 1..NWK, laid out by MAXA (solver/skyline_layout.h).
inline RealArray SkylineStore(const Run& run) {
    return RealSection(run.A, run.control.at.LSK, run.sizes.NWK);
}

void BeginSkyline(Run& run, const Numbering& numbering);
void RaiseHeights(Run& run, const Numbering& numbering, ConstIntTable NEL, Word NDIM, ConstIntArray marks);
Word FinishSkyline(Run& run, const Numbering& numbering);
void SetPointersAside(Run& run, std::int32_t JEDN);
void PutPointersBack(Run& run);

void ClearStore(Run& run);
void OpenStore(Run& run, SystemTarget& system);
void AddToStore(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND);
void LocateInStore(const SystemTarget& system, ConstIntArray LM, Word ND, ElementPlaces& places);
void SolveStore(Run& run);

} // namespace zurt
