// The inner part of the skyline factorisation: a panel of neighbouring columns, reduced side by side.
//
// Within a column each sum begins with the entry that the sum before it has given, so the only sums that can
// run at the same time are those of different columns. A panel takes 16 columns as vector lanes and walks
// down their rows together. In row K the sums of all lanes run over the finished column K, from the diagonal
// outward, as the plain loops do; what lies above the top of a lane stays out of its sum. The diagonal is one
// more lane of its own row, for its sum is of the same products in the same order.
//
// More lanes are no gain: 16 cover the latency of an addition, and their reduced rows still fit the innermost
// cache for heights up to about 350.
// Included by solver/skyline_factor.cpp alone, which makes one copy of this code for each instruction set.
#pragma once

#include "core/array_view.h"

#include <algorithm>

namespace zurt {

#define ZURT_INLINE inline __attribute__((always_inline))

constexpr Word kPanelLanes = 16;

/// kWidth lanes in one register.
template <int kWidth> struct Lanes {
    typedef double Vector __attribute__((vector_size(kWidth * sizeof(double)), may_alias));
    static constexpr int kVectors = kPanelLanes / kWidth;
};

/// One row of a panel.
struct alignas(64) PanelRow {
    double lane[kPanelLanes];
};

/// Columns first .. first + columns - 1; rows and columns are counted from zero.
struct SkylinePanel {
    double* store;                // the whole skyline store
    const std::int32_t* pointers; // MAXA; the diagonal of column c is store[pointers[c] - 1]
    PanelRow* reduced;            // entries before the division by the pivot: row r at bottom - r
    Word first;
    Word columns;              // lanes in use, 1..16
    Word bottom;               // row of the last lane's diagonal
    Word top;                  // highest row of any lane
    Word allTop;               // from this row down every lane in use has entries
    Word entry[kPanelLanes];   // entry (r, lane) is store[entry[lane] - r]
    Word laneTop[kPanelLanes]; // highest row of the lane; below bottom for a lane that is not in use
    PanelRow laneTops;         // the same as reals, to compare vectors with
};

/// Sets all that follows from `first` and `columns`.
ZURT_INLINE void PlacePanel(SkylinePanel& panel) {
    panel.bottom = panel.first + kPanelLanes - 1;
    panel.top = panel.first;
    panel.allTop = 0;
    for (Word lane = 0; lane < kPanelLanes; ++lane) {
        panel.entry[lane] = 0;
        panel.laneTop[lane] = panel.bottom + 1;
        if (lane < panel.columns) {
            const Word column = panel.first + lane;
            panel.entry[lane] = panel.pointers[column] - 1 + column;
            panel.laneTop[lane] = column - (panel.pointers[column + 1] - panel.pointers[column] - 1);
            panel.top = std::min(panel.top, panel.laneTop[lane]);
            panel.allTop = std::max(panel.allTop, panel.laneTop[lane]);
        }
        panel.laneTops.lane[lane] = static_cast<double>(panel.laneTop[lane]);
    }
}

/// The sums of row K, lane by lane: the products with column K, rows K - 1 and up, as far as both columns
/// reach.
template <int kWidth>
ZURT_INLINE void SumRow(const SkylinePanel& panel, Word K, typename Lanes<kWidth>::Vector* sum) {
    using Vector = typename Lanes<kWidth>::Vector;
    constexpr int kVectors = Lanes<kWidth>::kVectors;
    const double* __restrict column = panel.store + (panel.pointers[K] - 1);
    const PanelRow* __restrict reduced = panel.reduced + (panel.bottom - K);
    const Word height = panel.pointers[K + 1] - panel.pointers[K] - 1;
    const Word common = std::min(height, K - panel.allTop);
    const Word count = std::min(height, K - panel.top);
#pragma GCC unroll 8
    for (int v = 0; v < kVectors; ++v)
        sum[v] = Vector{};
    Word i = 1;
    for (; i <= common; ++i) {
        const Vector* row = reinterpret_cast<const Vector*>(reduced[i].lane);
        const double factor = column[i];
#pragma GCC unroll 8
        for (int v = 0; v < kVectors; ++v)
            sum[v] += factor * row[v];
    }
    const Vector* tops = reinterpret_cast<const Vector*>(panel.laneTops.lane);
    for (; i <= count; ++i) {
        const Vector* row = reinterpret_cast<const Vector*>(reduced[i].lane);
        const double factor = column[i];
        const double r = static_cast<double>(K - i);
#pragma GCC unroll 8
        for (int v = 0; v < kVectors; ++v)
            sum[v] = tops[v] <= r ? sum[v] + factor * row[v] : sum[v];
    }
}

/// Row K of a panel: sums, subtraction, pivot if the row's own column is a lane, division by the pivot.
/// `kWhole` says that all sixteen lanes have an entry above their diagonal in the row. Returns false when the
/// pivot is not above zero.
template <int kWidth, bool kWhole> ZURT_INLINE bool FinishRow(const SkylinePanel& panel, Word K) {
    using Vector = typename Lanes<kWidth>::Vector;
    constexpr int kVectors = Lanes<kWidth>::kVectors;
    double idle = 0.0; // stands in for entries outside the profile
    double* place[kPanelLanes];
    PanelRow& value = panel.reduced[panel.bottom - K];
    // Fetched ahead of the sums, which hide the time that this takes.
#pragma GCC unroll 16
    for (Word lane = 0; lane < kPanelLanes; ++lane) {
        const bool inside = kWhole || (panel.laneTop[lane] <= K && K <= panel.first + lane);
        place[lane] = inside ? panel.store + (panel.entry[lane] - K) : &idle;
        value.lane[lane] = *place[lane];
    }
    Vector sums[kVectors];
    SumRow<kWidth>(panel, K, sums);
    Vector* values = reinterpret_cast<Vector*>(value.lane);
    // Without a sum nothing is subtracted: even a zero would flush a denormal diagonal.
    if (panel.pointers[K + 1] - panel.pointers[K] > 1) {
#pragma GCC unroll 8
        for (int v = 0; v < kVectors; ++v)
            values[v] -= sums[v];
    }

    double& pivot = panel.store[panel.pointers[K] - 1];
    if (!kWhole && K >= panel.first) {
        pivot = value.lane[K - panel.first];
        if (0.0 >= pivot)
            return false;
        place[K - panel.first] = &idle;
    }
    PanelRow quotient;
    Vector* quotients = reinterpret_cast<Vector*>(quotient.lane);
#pragma GCC unroll 8
    for (int v = 0; v < kVectors; ++v)
        quotients[v] = values[v] / pivot;
#pragma GCC unroll 16
    for (Word lane = 0; lane < kPanelLanes; ++lane)
        *place[lane] = quotient.lane[lane];
    return true;
}

/// Reduces, divides and tests the columns of a placed panel. Returns 0, or the one-based number of the pivot
/// that failed.
template <int kWidth> ZURT_INLINE Word FactorPanel(const SkylinePanel& panel) {
    const Word last = panel.first + panel.columns - 1;
    const Word firstWhole = panel.columns == kPanelLanes ? std::min(panel.allTop, panel.first) : panel.first;
    Word K = panel.top;
    for (; K < firstWhole; ++K)
        FinishRow<kWidth, false>(panel, K);
    for (; K < panel.first; ++K)
        FinishRow<kWidth, true>(panel, K);
    for (; K <= last; ++K)
        if (!FinishRow<kWidth, false>(panel, K))
            return K + 1;
    return 0;
}

} // namespace zurt
