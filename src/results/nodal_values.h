// What listing and graphics file share of the nodal results.
#pragma once

#include "run/run.h"

namespace zurt {

/// Nodal vector k of the results pass (1-3 mass flux, 4-6 per unit time and surface, 7-9 coefficients), 1..NP; of
/// length 0 in models without NDS, which have none.
inline RealArray NodalResultVector(const Run& run, int k) {
    const Word NP = run.control.header.NDS == 0 ? 0 : run.control.header.NP;
    return RealSection(run.A, run.control.at.LNDS[k], NP);
}

/// Entry i, 0 where the vector is not there.
inline double ResultAt(ConstRealArray vector, Word i) {
    return vector.length == 0 ? 0.0 : vector(i);
}

/// Sets every entry below 1e-15 in size to 0.
void SetNegligibleToZero(RealArray values);

} // namespace zurt
