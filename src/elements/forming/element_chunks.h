// The elements of a group shared by the workers of a run: chunks of them side by side, what they give added in order.
//
// At the exact end of a curve an element takes what the curve gave last (HeldCurveValues), maybe to an element of another
// chunk. So a chunk begins with values that are not numbers; an element in which one of them has had a part ends its
// chunk, which is then done again in turn. Included by forming and fluxes.
#pragma once

#include "core/workers.h"
#include "elements/forming/element_visit.h"

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace zurt {

/// Elements of a chunk: some microseconds of work, whose results stay in the inner caches.
constexpr Word kChunkElements = 32;
constexpr Word kLeastChunk = 4;

/// Several chunks for each worker, as far as there are elements.
inline Word ElementsOfChunk(const Run& run, const ElementGroup& group) {
    return std::clamp<Word>(group.NET / (8 * Word{run.workers.count}), kLeastChunk, kChunkElements);
}

/// What one worker has of a visit: the visit of the elements in hand, and what curves gave them last.
template <class Visit> struct WorkerVisit {
    Visit visit;
    HeldCurveValues held;
};

/// Whether workers share the elements of a group. Under ITOR 3 each of them writes a line.
inline bool SharesElements(const Run& run, const ElementGroup& group) {
    return run.workers.count > 1 && run.control.header.ITOR != 3 && group.NET > kLeastChunk;
}

/// The fields as an array; all of them are reals.
constexpr int kHeldValues = sizeof(HeldCurveValues) / sizeof(double);
inline double* HeldValues(HeldCurveValues& held) {
    return &held.K[0];
}

/// Nothing is known of what curves gave last, but for a source that is the same for all elements.
inline HeldCurveValues UnknownValues(const HeldCurveValues& held, bool sourceStays) {
    HeldCurveValues unknown;
    std::fill(HeldValues(unknown), HeldValues(unknown) + kHeldValues,
              std::numeric_limits<double>::quiet_NaN());
    if (sourceStays)
        unknown.QV = held.QV;
    return unknown;
}

/// What the curves of a chunk gave last takes the place of what those before it gave.
inline void TakeOverValues(HeldCurveValues& chunk, HeldCurveValues& held) {
    for (int i = 0; i < kHeldValues; ++i)
        if (!std::isnan(HeldValues(chunk)[i]))
            HeldValues(held)[i] = HeldValues(chunk)[i];
}

/// Ends the chunk when one of these is not a number.
inline void RequireNumbers(const double* values, Word count) {
    int others = 0; // infinities too: whoever meets one ends the run, or goes on alone
    for (Word i = 0; i < count; ++i)
        others |= values[i] - values[i] != 0.0 ? 1 : 0;
    if (others != 0)
        throw OutOfTurn{};
}

/// All elements of the group in chunks.
///   sourceStays                   the group's source is the same for all elements
///   begin(visit)                  makes a worker's visit ready
///   compute(visit, n, place)      element n; `place`, from 0, is its own in the chunk
///   add(visit, n, place)          in the order of the elements
template <class Visit, class Begin, class Compute, class Add>
void ElementsInTurn(Run& run, const ElementGroup& group, bool sourceStays, const Begin& begin,
                    const Compute& compute, const Add& add) {
    HeldCurveValues& held = run.visits.held[group.NGE];
    const HeldCurveValues unknown = UnknownValues(held, sourceStays);
    const Word grain = ElementsOfChunk(run, group);
    std::vector<std::unique_ptr<WorkerVisit<Visit>>> visits(static_cast<std::size_t>(run.workers.count));
    const auto computeChunk = [&](Word chunk, int worker) {
        std::unique_ptr<WorkerVisit<Visit>>& own = visits[static_cast<std::size_t>(worker)];
        if (own == nullptr) {
            std::unique_ptr<WorkerVisit<Visit>> begun(new WorkerVisit<Visit>{Visit(run, group), {}});
            begin(begun->visit);
            begun->visit.elements.held = &begun->held;
            own = std::move(begun); // never one that could not begin
        }
        own->held = run.workers.sideBySide ? unknown : held;
        own->visit.elements.material.MATE = 0; // chosen anew, with what is known now
        const ChunkRange range = RangeOfChunk(group.NET, grain, chunk);
        for (Word n = range.first; n <= range.last; ++n)
            compute(own->visit, static_cast<std::int32_t>(n), static_cast<std::size_t>(n - range.first));
    };
    const auto addChunk = [&](Word chunk, int worker) {
        WorkerVisit<Visit>& own = *visits[static_cast<std::size_t>(worker)];
        const ChunkRange range = RangeOfChunk(group.NET, grain, chunk);
        for (Word n = range.first; n <= range.last; ++n)
            add(own.visit, static_cast<std::int32_t>(n), static_cast<std::size_t>(n - range.first));
        TakeOverValues(own.held, held);
    };
    InTurn(run.workers, ChunkCount(group.NET, grain), computeChunk, addChunk);
}

} // namespace zurt
