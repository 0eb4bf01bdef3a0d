// The element work block in `A`: element matrices behind all arrays of the problem, reused for every element.
//
// It is laid out anew from LMAXM at every visit of a group, so thousands of iterations take no more room than one.
// The kernels sum in fixed arrays of their own and leave the matrix that is assembled in `conduction`.
#pragma once

#include "run/run.h"

namespace zurt {

struct ElementWork {
    Word first = 0;      // where the block begins
    Word capacity = 0;   // packed; shares its start with `conduction` when the problem is steady
    Word conduction = 0; // packed
    Word radiation = 0;  // packed, when the problem iterates or NDS is not 0
    Word convection = 0; // packed
    Word square = 0;     // NDMAX*NDMAX
};

/// Lays the block out for elements of `columns` nodes; LMAX then stands behind it. Stops the run when it passes the end
/// of `A`.
ElementWork LayOutElementWork(Run& run, std::int32_t columns);

} // namespace zurt
