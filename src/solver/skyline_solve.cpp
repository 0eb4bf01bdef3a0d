#include "solver/skyline_solve.h"

#include "core/format.h"
#include "core/stop.h"
#include "solver/skyline_factor.h"

namespace zurt {

namespace {

[[noreturn]] void StopAtPivot(TextUnit& listing, Word equation, double pivot, bool ofNodes) {
    Write(BeginMessage(listing),
          "(/' MATRICA SISTEMA NIJE POZITIVNO DEFINITNA'//' PIVOT NIJE POZITIVAN ZA JEDNACINU BR.',I4//' "
          "PIVOT=',E20.12)",
          equation, pivot);
    StopRun(listing, ofNodes ? equation : kNoSystem);
}

// V(n) -= sum of l(r,n) V(r), from the diagonal outward. Each sum begins with the value found last, so the
// additions follow one another and their latency is the bound.
void ReduceVector(const double* store, const std::int32_t* pointers, double* values, Word NN) {
    for (Word n = 0; n < NN; ++n) {
        const double* column = store + (pointers[n] - 1);
        const Word height = pointers[n + 1] - pointers[n] - 1;
        if (height <= 0)
            continue;
        double sum = 0.0;
        for (Word i = 1; i <= height; ++i)
            sum += column[i] * values[n - i];
        values[n] -= sum;
    }
}

// V(r) -= l(r,n) V(n) for the columns from the last to the second. Columns and their entries are taken from
// the end of the store to its beginning, one stream that the memory system can run ahead of.
void SubstituteBack(const double* __restrict store, const std::int32_t* __restrict pointers,
                    double* __restrict values, Word NN) {
    for (Word n = NN - 1; n >= 1; --n) {
        const double* __restrict column = store + (pointers[n] - 1);
        const double value = values[n];
        for (Word i = pointers[n + 1] - pointers[n] - 1; i >= 1; --i)
            values[n - i] -= column[i] * value;
    }
}

} // namespace

void SubstituteSkyline(ConstRealArray SkylineMatrix, RealArray V, ConstIntArray MAXA, Word NN) {
    ReduceVector(SkylineMatrix.data, MAXA.data, V.data, NN);
    for (Word n = 1; n <= NN; ++n)
        V(n) = V(n) / SkylineMatrix(MAXA(n));
    SubstituteBack(SkylineMatrix.data, MAXA.data, V.data, NN);
}

void SkylineSolve(RealArray SkylineMatrix, RealArray V, ConstIntArray MAXA, std::int32_t NN,
                  std::int32_t /*NWK*/, std::int32_t mode, TextUnit& listing, Workers& workers) {
    if (mode >= kSubstituteMode) {
        SubstituteSkyline(SkylineMatrix, V, MAXA, NN);
        return;
    }
    const Word failed = FactorSkyline(SkylineMatrix, MAXA, NN, WidestInstructionSet(), workers);
    if (failed != 0)
        StopAtPivot(listing, failed, SkylineMatrix(MAXA(failed)), mode == kFactorNodesMode);
}

} // namespace zurt
