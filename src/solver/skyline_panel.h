// The inner part of the skyline factorisation: a panel of neighbouring columns reduced side by side.
//
// Within one column every entry waits for the whole sum of the entry above it, so the only independent sums are those
// of different columns. A panel therefore takes kLanes columns at once, lane by lane, and walks down their rows
// together: in each row the sums of all lanes run from the diagonal outward over the same finished column.
// The diagonal is one more lane of its own row, since its sum is of the same products in the same order.
// Included by solver/skyline_factor.cpp alone, which makes one copy for each instruction set.
#pragma once

#include "core/array_view.h"

#include <algorithm>

namespace zurt {

/// Eight lanes; the compiler splits them where registers are narrower.
typedef double LaneVector __attribute__((vector_size(64)));
constexpr Word kVectorLanes = 8;

#define ZURT_INLINE inline __attribute__((always_inline))

/// One panel. Rows and columns are counted from zero.
template <int kVectors> struct SkylinePanel {
    static constexpr Word kLanes = kVectors * kVectorLanes;

    double* store;                // the whole store, entry 0 first
    const std::int32_t* pointers; // MAXA, entry 0 first
    LaneVector* reduced;          // row r of all lanes at (r - top) * kVectors: entries before division by the pivot
    Word first;                   // column of lane 0
    Word columns;                 // lanes in use
    Word top;                     // highest row of any lane
    Word allTop;                  // from this row down every lane in use has entries
    double* entry[kLanes];        // entry (r, lane) stands at entry[lane] - r
    Word laneTop[kLanes];         // highest row of the lane
    LaneVector laneTops[kVectors];
};

template <int kVectors>
ZURT_INLINE void BeginPanel(SkylinePanel<kVectors>& panel) {
    panel.top = panel.first;
    panel.allTop = 0;
    double* tops = reinterpret_cast<double*>(panel.laneTops);
    for (Word lane = 0; lane < panel.kLanes; ++lane) {
        const Word column = panel.first + lane;
        panel.laneTop[lane] = column;
        if (lane < panel.columns) {
            panel.entry[lane] = panel.store + (panel.pointers[column] - 1) + column;
            panel.laneTop[lane] = column - (panel.pointers[column + 1] - panel.pointers[column] - 1);
            panel.top = std::min(panel.top, panel.laneTop[lane]);
            panel.allTop = std::max(panel.allTop, panel.laneTop[lane]);
        }
        tops[lane] = static_cast<double>(panel.laneTop[lane]);
    }
}

/// The sums of row K: for each lane the products of column K and the lane, rows K-1 and up.
template <int kVectors>
ZURT_INLINE void SumRow(const SkylinePanel<kVectors>& panel, Word K, LaneVector* result) {
    const double* __restrict other = panel.store + (panel.pointers[K] - 1) + K;
    const Word otherTop = K - (panel.pointers[K + 1] - panel.pointers[K] - 1);
    const Word last = std::max(panel.top, otherTop);
    const Word lastCommon = std::max(last, panel.allTop);
    const LaneVector* __restrict rows = panel.reduced + (panel.first + panel.kLanes - 1) * kVectors;
    LaneVector sum[kVectors];
#pragma GCC unroll 16
    for (int v = 0; v < kVectors; ++v)
        sum[v] = LaneVector{};
    Word r = K - 1;
    for (; r >= lastCommon; --r) {
        const double factor = other[-r];
#pragma GCC unroll 16
        for (int v = 0; v < kVectors; ++v)
            sum[v] += factor * rows[v - r * kVectors];
    }
    for (; r >= last; --r) {
        const double factor = other[-r];
        const double row = static_cast<double>(r);
#pragma GCC unroll 16
        for (int v = 0; v < kVectors; ++v)
            sum[v] = panel.laneTops[v] <= row ? sum[v] + factor * rows[v - r * kVectors] : sum[v];
    }
#pragma GCC unroll 16
    for (int v = 0; v < kVectors; ++v)
        result[v] = sum[v];
}

/// Row K: sums, subtraction, pivot of lane K - first if that is in the panel, division by the pivot. Returns false
/// when the pivot is not above zero.
template <int kVectors>
ZURT_INLINE bool FinishRow(const SkylinePanel<kVectors>& panel, Word K) {
    LaneVector value[kVectors], sum[kVectors];
    double* values = reinterpret_cast<double*>(value);
    const double* sums = reinterpret_cast<const double*>(sum);
    const bool common = K > panel.allTop && K < panel.first && panel.columns == panel.kLanes;
    const Word otherHeight = panel.pointers[K + 1] - panel.pointers[K] - 1;
    SumRow(panel, K, sum);
    if (common && otherHeight > 0) {
#pragma GCC unroll 64
        for (Word lane = 0; lane < panel.kLanes; ++lane)
            values[lane] = panel.entry[lane][-K];
#pragma GCC unroll 16
        for (int v = 0; v < kVectors; ++v)
            value[v] -= sum[v];
    } else {
        for (Word lane = 0; lane < panel.kLanes; ++lane) {
            values[lane] = 0.0;
            if (lane < panel.columns && panel.laneTop[lane] <= K && K <= panel.first + lane) {
                values[lane] = panel.entry[lane][-K];
                if (otherHeight > 0 && panel.laneTop[lane] < K)
                    values[lane] -= sums[lane];
            }
        }
    }
#pragma GCC unroll 16
    for (int v = 0; v < kVectors; ++v)
        panel.reduced[(panel.first + panel.kLanes - 1 - K) * kVectors + v] = value[v];

    Word lane = 0;
    if (K >= panel.first) {
        lane = K - panel.first;
        panel.entry[lane][-K] = values[lane];
        if (0.0 >= values[lane])
            return false;
        ++lane;
    }
    const double pivot = panel.store[panel.pointers[K] - 1];
#pragma GCC unroll 16
    for (int v = 0; v < kVectors; ++v)
        value[v] = value[v] / pivot;
    if (common) {
#pragma GCC unroll 64
        for (lane = 0; lane < panel.kLanes; ++lane)
            panel.entry[lane][-K] = values[lane];
    } else {
        for (; lane < panel.columns; ++lane)
            if (panel.laneTop[lane] <= K)
                panel.entry[lane][-K] = values[lane];
    }
    return true;
}

/// Reduces, divides and tests the panel's columns. Returns 0, or the one-based number of the failed pivot.
template <int kVectors>
ZURT_INLINE Word FactorPanel(SkylinePanel<kVectors>& panel) {
    BeginPanel(panel);
    for (Word K = panel.top; K < panel.first + panel.columns; ++K)
        if (!FinishRow(panel, K))
            return K + 1;
    return 0;
}

} // namespace zurt
