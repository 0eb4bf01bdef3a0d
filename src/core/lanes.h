// Wide instructions: which of them the machine has, and registers of lanes as a kernel writes them.
//
// A kernel is a template of the number of lanes, made once for each set of instructions and chosen at run time. Lanes
// do what the plain loop does, each for a sum of its own, so all sets give the same bits. Included by the kernels of
// solver/ and elements/.
#pragma once

#include <cstdint>

namespace zurt {

/// Instruction sets that kernels are made for, the narrowest first; Portable is what every machine of the kind has.
enum class InstructionSet { Portable, Avx2, Avx512 };

/// The widest set that this machine runs.
InstructionSet WidestInstructionSet();

#define ZURT_INLINE inline __attribute__((always_inline))

/// kWidth numbers in one register: 2, 4 and 8 for the three sets; in memory at a multiple of its size.
template <int kWidth> struct Lanes {
    typedef double Vector __attribute__((vector_size(kWidth * sizeof(double)), may_alias));
    typedef std::int64_t Mask __attribute__((vector_size(kWidth * sizeof(double)), may_alias));
};

/// The lanes from `place` on, which is a multiple of their size.
template <int kWidth> ZURT_INLINE typename Lanes<kWidth>::Vector& LanesAt(double* place) {
    return *reinterpret_cast<typename Lanes<kWidth>::Vector*>(place);
}
template <int kWidth> ZURT_INLINE const typename Lanes<kWidth>::Vector& LanesAt(const double* place) {
    return *reinterpret_cast<const typename Lanes<kWidth>::Vector*>(place);
}

/// The lanes from any `place` on, by a copy that compilers turn into one move. (A vector type of lesser alignment would not
/// do: some compilers lose the alignment in a template.)
template <int kWidth> ZURT_INLINE void LoadLanes(const double* place, typename Lanes<kWidth>::Vector& lanes) {
    __builtin_memcpy(&lanes, place, sizeof lanes);
}
template <int kWidth>
ZURT_INLINE void StoreLanes(const typename Lanes<kWidth>::Vector& lanes, double* place) {
    __builtin_memcpy(place, &lanes, sizeof lanes);
}

/// The number of each lane, from 0.
template <int kWidth> ZURT_INLINE void SetLaneNumbers(typename Lanes<kWidth>::Mask& numbers) {
#pragma GCC unroll 8
    for (int lane = 0; lane < kWidth; ++lane)
        numbers[lane] = lane;
}

/// Lanes of two registers by number; those of the second one have the numbers from kWidth on.
template <int kWidth>
ZURT_INLINE void
ShuffleLanes(const typename Lanes<kWidth>::Vector& first, const typename Lanes<kWidth>::Vector& second,
             const typename Lanes<kWidth>::Mask& numbers, typename Lanes<kWidth>::Vector& lanes) {
#if defined(__clang__) // which has shuffles by constants alone
    for (int lane = 0; lane < kWidth; ++lane)
        lanes[lane] = numbers[lane] < kWidth ? first[numbers[lane]] : second[numbers[lane] - kWidth];
#else
    lanes = __builtin_shuffle(first, second, numbers);
#endif
}

/// Transposes a square of lanes: lane l of row r and lane r of row l change places. By squares of 1, 2, 4 .. rows.
template <int kWidth> ZURT_INLINE void TransposeLanes(typename Lanes<kWidth>::Vector (&row)[kWidth]) {
    using Vector = typename Lanes<kWidth>::Vector;
    using Mask = typename Lanes<kWidth>::Mask;
    Mask number;
    SetLaneNumbers<kWidth>(number);
#pragma GCC unroll 4
    for (int size = 1; size < kWidth; size *= 2) {
        const Mask upper = (number & size) == 0 ? number : number - size + kWidth;
        const Mask lower = (number & size) == 0 ? number + size : number + kWidth;
#pragma GCC unroll 8
        for (int r = 0; r < kWidth; ++r) {
            if ((r & size) != 0)
                continue;
            const Vector first = row[r], second = row[r + size];
            ShuffleLanes<kWidth>(first, second, upper, row[r]);
            ShuffleLanes<kWidth>(first, second, lower, row[r + size]);
        }
    }
}

} // namespace zurt
