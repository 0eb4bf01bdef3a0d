// The inner part of the skyline factorisation: a panel of neighbouring columns, reduced side by side.
//
// Within a column each sum begins with the entry that the sum before it has given, so the only sums that can
// run at the same time are those of different columns. A panel takes 16 columns as vector lanes and walks
// down their rows together. In row K the sums of all lanes run over the finished column K, from the diagonal
// outward, as the plain loops do; what lies above the top of a lane stays out of its sum. The diagonal is one
// more lane of its own row, for its sum is of the same products in the same order.
//
// So rows can't be tiled, and every product takes one number from `reduced`: what a register of it costs to load is
// the bound. Heights up to about 350 stay in the innermost cache (48 KB); above that it is the speed of the second one.
// More lanes are no gain: 16 cover the latency of an addition, and 24 or 32 leave the innermost cache sooner.
// Included by solver/skyline_factor.cpp alone, which makes one copy of this code for each instruction set.
#pragma once

#include "core/array_view.h"
#include "core/lanes.h"
#include "core/workers.h"

#include <algorithm>

#include <cstddef>

namespace zurt {

constexpr Word kPanelLanes = 16;
constexpr Word kWidestLanes = 8;

/// One row of a panel.
struct alignas(64) PanelRow {
    double lane[kPanelLanes];
};

struct PanelOrder;

/// Columns first .. first + columns - 1; rows and columns are counted from zero.
struct SkylinePanel {
    double* store;                // the whole skyline store
    const std::int32_t* pointers; // MAXA; the diagonal of column c is store[pointers[c] - 1]
    Word NN;                      // columns of the whole store
    PanelOrder* order;            // null where one worker has all panels
    PanelRow* reduced;            // entries before the division by the pivot: row r at bottom - r
    Word stride;                  // columns from this panel to the next one that falls to the worker
    Word first;
    Word columns;              // lanes in use, 1..16
    Word bottom;               // row of the last lane's diagonal
    Word top;                  // highest row of any lane
    Word allTop;               // from this row down every lane in use has entries
    Word entry[kPanelLanes];   // entry (r, lane) is store[entry[lane] - r]
    Word laneTop[kPanelLanes]; // highest row of the lane; below bottom for a lane that is not in use
    Word known;                // columns that are known to be finished; NN where no one is to be waited for
    Word whole;        // entries of `reduced` below this one, but for the panel's own rows, have all 16 lanes
    PanelRow laneTops; // the same as reals, to compare vectors with
};

/// Where workers factorise panels side by side: each takes the next panel, and of the columns before it the finished ones.
struct PanelOrder {
    const Workers* workers;
    std::atomic<Word> next;   // first column of the panel to be taken
    Progress finished;        // columns, from the first on; kStopped behind a pivot that failed
    std::atomic<Word> failed; // the number of that pivot, 0 none
};
constexpr Word kStopped = Word{1} << 62;

/// Waits until column K is finished. False when it will not be.
ZURT_INLINE bool AwaitColumn(SkylinePanel& panel, Word K) {
    if (K >= panel.known)
        panel.known = AwaitProgress(*panel.order->workers, panel.order->finished, K + 1);
    return panel.known != kStopped;
}

/// Column K is finished, as are all before it.
ZURT_INLINE void FinishedColumn(SkylinePanel& panel, Word K) {
    if (panel.order == nullptr)
        return;
    panel.known = K + 1;
    Reach(panel.order->finished, K + 1);
}

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
    const Word wholeRows = panel.columns == kPanelLanes ? std::max<Word>(panel.first - panel.allTop, 0) : 0;
    panel.whole = kPanelLanes + wholeRows / kWidestLanes * kWidestLanes;
}

/// The sums of row K, lane by lane: the products with column K, rows K - 1 and up, as far as both columns
/// reach. `newest` is row K - 1, still in registers.
template <int kWidth>
ZURT_INLINE void SumRow(const SkylinePanel& panel, Word K, const typename Lanes<kWidth>::Vector* newest,
                        typename Lanes<kWidth>::Vector* sum) {
    using Vector = typename Lanes<kWidth>::Vector;
    constexpr int kVectors = kPanelLanes / kWidth;
    const double* __restrict column = panel.store + (panel.pointers[K] - 1);
    const PanelRow* __restrict reduced = panel.reduced + (panel.bottom - K);
    const Word height = panel.pointers[K + 1] - panel.pointers[K] - 1;
    const Word common = std::min(height, K - panel.allTop);
    const Word count = std::min(height, K - panel.top);
#pragma GCC unroll 8
    for (int v = 0; v < kVectors; ++v)
        sum[v] = Vector{};
    Word i = 1;
    if (common >= 1) {
        const double factor = column[1];
#pragma GCC unroll 8
        for (int v = 0; v < kVectors; ++v)
            sum[v] += factor * newest[v];
        i = 2;
    }
    for (; i <= common; ++i) {
        const Vector* row = reinterpret_cast<const Vector*>(reduced[i].lane);
        const double factor = column[i];
#pragma GCC unroll 8
        for (int v = 0; v < kVectors; ++v)
            sum[v] += factor * row[v];
    }
    const Vector* tops = reinterpret_cast<const Vector*>(panel.laneTops.lane);
    Vector r = Vector{} + static_cast<double>(K - i);
    for (; i <= count; ++i) {
        const Vector* row = reinterpret_cast<const Vector*>(reduced[i].lane);
        const double factor = column[i];
#pragma GCC unroll 8
        for (int v = 0; v < kVectors; ++v)
            sum[v] = tops[v] <= r ? sum[v] + factor * row[v] : sum[v];
        r -= 1.0;
    }
}

/// Row K of a panel: its sums taken from `value`, the row's entries; `newest` goes from the row before to this one.
template <int kWidth>
ZURT_INLINE void ReduceRow(const SkylinePanel& panel, Word K, PanelRow& value,
                           typename Lanes<kWidth>::Vector* newest) {
    using Vector = typename Lanes<kWidth>::Vector;
    constexpr std::ptrdiff_t kVectors = kPanelLanes / kWidth;
    // Without a sum nothing is subtracted: even a zero would flush a denormal diagonal.
    if (panel.pointers[K + 1] - panel.pointers[K] <= 1) {
#pragma GCC unroll 8
        for (std::ptrdiff_t v = 0; v < kVectors; ++v)
            newest[v] = LanesAt<kWidth>(&value.lane[v * kWidth]);
        return;
    }
    Vector sums[kVectors];
    SumRow<kWidth>(panel, K, newest, sums);
#pragma GCC unroll 8
    for (std::ptrdiff_t v = 0; v < kVectors; ++v)
        LanesAt<kWidth>(&value.lane[v * kWidth]) = newest[v] =
            LanesAt<kWidth>(&value.lane[v * kWidth]) - sums[v];
}

/// Rows above the panel's own, places from .. to - 1 of `reduced` (multiples of the widest lanes): entries into `reduced` (kLoad), or quotients by the pivots out of it. Squares of
/// columns and rows are turned in registers.
template <int kWidth, bool kLoad>
ZURT_INLINE void MoveWholeRows(const SkylinePanel& panel, Word from, Word to) {
    using Vector = typename Lanes<kWidth>::Vector;
    for (Word j = from; j < to; j += kWidth)
#pragma GCC unroll 8
        for (Word lane = 0; lane < kPanelLanes; lane += kWidth) {
            Vector square[kWidth];
#pragma GCC unroll 8
            for (Word i = 0; i < kWidth; ++i) {
                if (kLoad)
                    LoadLanes<kWidth>(panel.store + (panel.entry[lane + i] - panel.bottom + j), square[i]);
                else
                    square[i] = LanesAt<kWidth>(&panel.reduced[j + i].lane[lane]) /
                                panel.store[panel.pointers[panel.bottom - j - i] - 1];
            }
            TransposeLanes<kWidth>(square);
#pragma GCC unroll 8
            for (Word i = 0; i < kWidth; ++i) {
                if (kLoad)
                    LanesAt<kWidth>(&panel.reduced[j + i].lane[lane]) = square[i];
                else
                    StoreLanes<kWidth>(square[i], panel.store + (panel.entry[lane + i] - panel.bottom + j));
            }
        }
}

/// The same for the ragged rows at the top, entry by entry; outside the profile `reduced` takes zeros.
template <bool kLoad> ZURT_INLINE void MoveRaggedRows(const SkylinePanel& panel) {
    for (Word j = panel.whole; j <= panel.bottom - panel.top; ++j) {
        const Word r = panel.bottom - j;
        const double pivot = kLoad ? 1.0 : panel.store[panel.pointers[r] - 1];
        for (Word lane = 0; lane < kPanelLanes; ++lane) {
            double& value = panel.reduced[j].lane[lane];
            const bool inside = panel.laneTop[lane] <= r;
            if (kLoad)
                value = inside ? panel.store[panel.entry[lane] - r] : 0.0;
            else if (inside)
                panel.store[panel.entry[lane] - r] = value / pivot;
        }
    }
}

/// One of the panel's own rows: sums, subtraction, pivot test, division by the pivot. Returns false when the pivot is
/// not above zero.
template <int kWidth>
ZURT_INLINE bool FinishOwnRow(const SkylinePanel& panel, Word K, typename Lanes<kWidth>::Vector* newest) {
    PanelRow& value = panel.reduced[panel.bottom - K];
    for (Word lane = 0; lane < kPanelLanes; ++lane) {
        const bool inside = panel.laneTop[lane] <= K && K <= panel.first + lane;
        value.lane[lane] = inside ? panel.store[panel.entry[lane] - K] : 0.0;
    }
    ReduceRow<kWidth>(panel, K, value, newest);
    const Word own = K - panel.first;
    const double pivot = value.lane[own];
    panel.store[panel.pointers[K] - 1] = pivot;
    if (0.0 >= pivot)
        return false;
    for (Word lane = own + 1; lane < panel.columns; ++lane)
        if (panel.laneTop[lane] <= K)
            panel.store[panel.entry[lane] - K] = value.lane[lane] / pivot;
    return true;
}

/// Calls the entries from one place of the store up to another towards the processor.
ZURT_INLINE void PrefetchEntries(const double* store, Word from, Word to) {
    constexpr Word kEntriesOfCacheLine = 8;
    for (; from < to; from += kEntriesOfCacheLine)
        __builtin_prefetch(store + from);
}

/// Rows `from` .. `to` - 1 of a panel, above its own. The columns of the next panel were touched last when the matrix was
/// assembled: some of them come with each row. False when a column will not be finished.
template <int kWidth>
ZURT_INLINE bool ReduceRows(SkylinePanel& panel, Word from, Word to, Word& ahead,
                            typename Lanes<kWidth>::Vector* newest) {
    const Word next = std::min(panel.first + panel.stride, panel.NN);
    const Word end = panel.pointers[std::min(next + kPanelLanes, panel.NN)] - 1;
    const Word withEachRow =
        (end - panel.pointers[next] + 1) / std::max<Word>(panel.first - panel.top, 1) + 1;
    for (Word K = from; K < to; ++K) {
        PrefetchEntries(panel.store, ahead, std::min(ahead + withEachRow, end));
        ahead += withEachRow;
        if (!AwaitColumn(panel, K))
            return false;
        ReduceRow<kWidth>(panel, K, panel.reduced[panel.bottom - K], newest);
    }
    return true;
}

/// Reduces, divides and tests the columns of a placed panel. Returns 0, or the one-based number of the pivot
/// that failed, or kStopped when one before the panel has. Side by side with others, what the panel before it
/// does not touch is brought to its end ahead of the wait for that panel.
template <int kWidth> ZURT_INLINE Word FactorPanel(SkylinePanel& panel) {
    const Word early = panel.order == nullptr ? panel.first : std::max(panel.top, panel.first - kPanelLanes);
    const Word late = panel.order == nullptr ? kPanelLanes : std::min(2 * kPanelLanes, panel.whole);
    MoveWholeRows<kWidth, true>(panel, kPanelLanes, panel.whole);
    MoveRaggedRows<true>(panel);
    typename Lanes<kWidth>::Vector newest[kPanelLanes / kWidth] = {};
    Word ahead = panel.pointers[std::min(panel.first + panel.stride, panel.NN)] - 1;
    if (!ReduceRows<kWidth>(panel, panel.top, early, ahead, newest))
        return kStopped;
    if (late < panel.whole)
        MoveWholeRows<kWidth, false>(panel, late, panel.whole);
    if (!ReduceRows<kWidth>(panel, early, panel.first, ahead, newest) ||
        (panel.first > 0 && !AwaitColumn(panel, panel.first - 1)))
        return kStopped;
    MoveWholeRows<kWidth, false>(panel, kPanelLanes, late);
    MoveRaggedRows<false>(panel);
    for (Word K = panel.first; K < panel.first + panel.columns; ++K) {
        if (!FinishOwnRow<kWidth>(panel, K, newest))
            return K + 1;
        FinishedColumn(panel, K);
    }
    return 0;
}

} // namespace zurt
