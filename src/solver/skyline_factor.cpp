#include "solver/skyline_factor.h"

#include <algorithm>

namespace zurt {

namespace {

// Reduces column n by the finished columns before it, then divides it and forms its diagonal. `store` and `pointers`
// are zero-based.
void FinishColumn(double* store, const std::int32_t* pointers, Word n) {
    double* column = store + (pointers[n] - 1);
    const Word height = pointers[n + 1] - pointers[n] - 1;
    for (Word i = height - 1; i >= 1; --i) {
        const Word K = n - i;
        const double* other = store + (pointers[K] - 1);
        const Word count = std::min<Word>(height - i, pointers[K + 1] - pointers[K] - 1);
        if (count <= 0)
            continue;
        double sum = 0.0;
        for (Word l = 1; l <= count; ++l)
            sum += other[l] * column[i + l];
        column[i] -= sum;
    }
    if (height <= 0)
        return;
    double sum = 0.0;
    for (Word i = 1; i <= height; ++i) {
        const double quotient = column[i] / store[pointers[n - i] - 1];
        sum += quotient * column[i];
        column[i] = quotient;
    }
    column[0] -= sum;
}

} // namespace

Word FactorSkyline(RealArray SkylineMatrix, ConstIntArray MAXA, Word NN) {
    for (Word n = 0; n < NN; ++n) {
        FinishColumn(SkylineMatrix.data, MAXA.data, n);
        if (0.0 >= SkylineMatrix(MAXA(n + 1)))
            return n + 1;
    }
    return 0;
}

double SkylineFactorOperations(ConstIntArray MAXA, Word NN) {
    double operations = 0.0;
    for (Word n = 1; n <= NN; ++n) {
        const Word height = MAXA(n + 1) - MAXA(n) - 1;
        for (Word i = 1; i < height; ++i) {
            const Word count = std::min<Word>(height - i, MAXA(n - i + 1) - MAXA(n - i) - 1);
            if (count > 0)
                operations += 2.0 * static_cast<double>(count) + 1.0;
        }
        if (height > 0)
            operations += 3.0 * static_cast<double>(height) + 1.0;
    }
    return operations;
}

} // namespace zurt
