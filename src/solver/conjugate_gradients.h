// Conjugate gradients for symmetric positive definite systems, preconditioned by an incomplete Cholesky factor.
//
// M. R. Hestenes and E. Stiefel, J. Res. Nat. Bur. Standards 49 (1952) 409-436. The system is scaled to a diagonal of 1
// first, so that equations of reservoirs and of narrow channels count alike in the test of the residual. Called by
// solver/system_rows.
#pragma once

#include "solver/incomplete_cholesky.h"

namespace zurt {

enum class GradientsEnd {
    Converged,
    NotConverged,
    NotPositiveDefinite,
    NoNumbers, // b has infinities or entries that are not numbers
};

struct GradientsReport {
    GradientsEnd end = GradientsEnd::NotConverged;
    std::int32_t iterations = 0;
    double residual = 0.0;     // norm of b - A x over the norm of b, both of the scaled system
    std::int32_t equation = 0; // whose diagonal is not positive; 0: the matrix shows it otherwise
    double shift = 0.0;        // of the diagonal of 1 that was factored
    bool factored = false;     // false: no shift of up to 1 sufficed, the diagonal stood in for the factor
};

/// Where the iteration ends: the residual relative to b, and a number of iterations.
struct GradientsLimits {
    double tolerance;
    std::int32_t iterations;
};

/// What one part of the rows gives to sums over all.
struct alignas(64) PartSums {
    double energy = 0.0, rr = 0.0, rz = 0.0; // of v A v, r r, r M^-1 r
    double largest = 0.0;                    // of the magnitudes of b
    double positive = 0.0, negative = 0.0;   // of the magnitudes of entries off the diagonal, by their sign
    bool numbers = true;                     // b has nothing else
    std::int32_t equation = 0;               // least one whose diagonal is not positive; 0: none
};

/// Vectors of an iteration, each with a word for each row in the order of the rows, kept from system to system.
struct GradientsWork {
    std::vector<double> scale;  // row i of the solution over that of the scaled system
    std::vector<double> weight; // 1 / scale
    IncompleteFactor factor;
    std::vector<double> b, x, r, z, p, Ap;
    std::vector<PartSums> sums; // one a part
};

/// Solves A x = b until the residual is at most the tolerance times b, both of the scaled system, or as small as rounding
/// lets it be; starts from zero. The digits do not depend on the number of workers.
///   A      in the order of the rows; values are scaled (output), and the columns of a new pattern are found
///   b      1..JEDN by equations: right-hand side (input), then the solution (output); left alone unless the iteration
///          converges
GradientsReport SolveByGradients(Workers& workers, SymmetricRows& A, const RowOrder& order, RealArray b,
                                 const GradientsLimits& limits, GradientsWork& work);

} // namespace zurt
