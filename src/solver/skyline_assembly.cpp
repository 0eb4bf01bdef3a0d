#include "solver/skyline_assembly.h"

#include "core/vector.h"

namespace zurt {

namespace {

/// The word of the store that holds the entry of two equations.
inline Word EntryPosition(ConstIntArray MAXA, Word I, Word J) {
    return J >= I ? MAXA(J) + J - I : MAXA(I) + I - J;
}

} // namespace

double* SkylineEntry(RealArray SkylineMatrix, ConstIntArray MAXA, Word I, Word J) {
    return SkylineMatrix.data + EntryPosition(MAXA, I, J) - 1;
}

void AddElementVector(RealArray R, ConstRealArray F, ConstIntArray LM, Word ND) {
    AddScatter(R, F, LM, ND);
}

void SkylineAddElement(RealArray SkylineMatrix, ConstIntArray MAXA, RealArray R, ConstRealArray S,
                       ConstRealArray F, ConstIntArray LM, Word ND, std::int32_t matrixFlag) {
    if (matrixFlag != 0) {
        Word K = 0;
        for (Word i = 1; i <= ND; ++i) {
            const Word II = LM(i);
            if (II > 0) {
                for (Word j = i; j <= ND; ++j) {
                    const Word JJ = LM(j);
                    if (JJ <= 0)
                        continue;
                    SkylineMatrix(EntryPosition(MAXA, II, JJ)) += S(K + j - i + 1);
                }
            }
            K += ND - i + 1;
        }
    }
    AddElementVector(R, F, LM, ND);
}

void LocateSkylineElement(RealArray SkylineMatrix, ConstIntArray MAXA, ConstIntArray LM, Word ND,
                          ElementPlaces& places) {
    double** place = places.entry;
    places.count = ND * (ND + 1) / 2;
    places.dropped = 0.0;
    for (Word i = 1; i <= ND; ++i)
        for (Word j = i; j <= ND; ++j) {
            double* const entry =
                LM(i) > 0 && LM(j) > 0 ? SkylineEntry(SkylineMatrix, MAXA, LM(i), LM(j)) : &places.dropped;
            __builtin_prefetch(entry, 1);
            *place++ = entry;
        }
}

void AddAtPlaces(ElementPlaces& places, ConstRealArray S) {
    for (Word k = 0; k < places.count; ++k)
        *places.entry[k] += S.data[k];
}

void SkylineMultiply(ConstRealArray SkylineMatrix, ConstRealArray X, RealArray Y, ConstIntArray MAXA,
                     Word JEDN, double factor) {
    for (Word n = 1; n <= JEDN; ++n) {
        const Word diagonal = MAXA(n);
        const Word height = MAXA(n + 1) - diagonal - 1;
        double sum = SkylineMatrix(diagonal) * X(n);
        for (Word i = 1; i <= height; ++i) {
            Y(n - i) += factor * (SkylineMatrix(diagonal + i) * X(n));
            sum += SkylineMatrix(diagonal + i) * X(n - i);
        }
        Y(n) += factor * sum;
    }
}

} // namespace zurt
