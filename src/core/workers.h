// Threads that share the loops of a run, and the three ways in which they do.
//
// What a loop gives must not depend on the number of threads: either its parts are independent of each other
// (ForRanges), or what they give is added in the order of the parts (InTurn), or the body keeps the order of its sums
// by itself, with all threads in one parallel section and a meeting point in it (InTeam). With one worker no thread is
// started and each of the three is the plain loop. Parallel sections do not nest.
//
// A part that ends with an exception is done again by the calling thread alone, once all parts ahead of it are done and
// no other thread is at work, and so are the parts behind it; so a message that ends the run is written once, by the
// calling thread, behind what stands ahead of it with one thread. To begin a message is such an end while threads
// are at work side by side (core/text_unit.h). Hence bodies must be such that a part can be begun anew.
//
// Callers: everything that loops over elements, columns, points or records, with the workers of the run.
#pragma once

#include "core/array_view.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <type_traits>

namespace zurt {

struct WorkerTeam; // threads, and where they meet (workers.cpp)

struct Workers {
    int count = 1;                    // threads at work in a parallel section, the calling one included
    bool sideBySide = false;          // a parallel section is under way: no message may begin
    std::shared_ptr<WorkerTeam> team; // none with one worker; its end ends the threads
};

/// Thrown in place of a message by a part that is done side by side with others; never leaves a parallel section.
struct OutOfTurn {};

/// Processors that this process may use, at least 1.
int ProcessorCount();

/// Starts threads, so that `count` are at work with the calling one; 0 takes one a processor. They take over the
/// calling thread's treatment of denormal numbers. Ends the run with a library error when the system gives no thread.
void StartWorkers(Workers& workers, int count);

/// All workers of a parallel section come here before any goes on. Called by each of them equally often. Cheap: waiting
/// threads spin for a while, then leave the processor to others.
void MeetWorkers(Workers& workers);

/// How far something has come that one worker after the other carries on: it never falls within a section. Everything
/// written ahead of Reach is seen behind an AwaitProgress for the same number.
struct alignas(64) Progress {
    std::atomic<Word> reached{0};
};
inline void Reach(Progress& progress, Word number) {
    progress.reached.store(number, std::memory_order_release);
}

/// Waits until `number` is reached, in a body of InTeam; returns how far it has come.
Word AwaitProgress(const Workers& workers, const Progress& progress, Word number);

// The bodies without their types: a context and functions that know its type.
struct ChunkBodies {
    void* context;
    void (*compute)(void* context, Word chunk, int worker);
    void (*add)(void* context, Word chunk, int worker); // null: nothing is to be done in turn
};
void RunChunks(Workers& workers, Word chunks, const ChunkBodies& bodies);
void RunTeam(Workers& workers, void (*body)(void* context, int worker), void* context);

/// The first and the last of the indices 1..count that part `chunk`, 1 and up, of `grain` indices takes.
struct ChunkRange {
    Word first, last;
};
inline ChunkRange RangeOfChunk(Word count, Word grain, Word chunk) {
    return {(chunk - 1) * grain + 1, std::min(count, chunk * grain)};
}
inline Word ChunkCount(Word count, Word grain) {
    return (count + grain - 1) / grain;
}

/// Calls body(first, last, worker) for ranges of at most `grain` indices that make up 1..count, in any order, side by
/// side. worker 0..workers.count-1 names the thread: room of its own can be had by it. One worker takes 1..count at once.
template <class Body> void ForRanges(Workers& workers, Word count, Word grain, Body&& body) {
    if (count <= 0)
        return;
    if (workers.count == 1 || count <= grain)
        return body(Word{1}, count, 0);
    struct Loop {
        std::remove_reference_t<Body>& body;
        Word count, grain;
    } loop = {body, count, grain};
    const auto compute = [](void* context, Word chunk, int worker) {
        const Loop& own = *static_cast<Loop*>(context);
        const ChunkRange range = RangeOfChunk(own.count, own.grain, chunk);
        own.body(range.first, range.last, worker);
    };
    RunChunks(workers, ChunkCount(count, grain), {&loop, compute, nullptr});
}

/// Calls compute(chunk, worker) for chunks 1..chunks side by side and add(chunk, worker) strictly in the order of the
/// chunks, on any thread but with the worker that has computed the chunk, whose room holds till then what compute has left
/// in it. `add` begins no message.
template <class Compute, class Add> void InTurn(Workers& workers, Word chunks, Compute&& compute, Add&& add) {
    if (workers.count == 1 || chunks == 1) {
        for (Word chunk = 1; chunk <= chunks; ++chunk) {
            compute(chunk, 0);
            add(chunk, 0);
        }
        return;
    }
    struct Loop {
        std::remove_reference_t<Compute>& compute;
        std::remove_reference_t<Add>& add;
    } loop = {compute, add};
    const auto computeChunk = [](void* context, Word chunk, int worker) {
        static_cast<Loop*>(context)->compute(chunk, worker);
    };
    const auto addChunk = [](void* context, Word chunk, int worker) {
        static_cast<Loop*>(context)->add(chunk, worker);
    };
    RunChunks(workers, chunks, {&loop, computeChunk, addChunk});
}

/// Calls body(worker) once on each worker, side by side; the bodies share the work out themselves and meet with
/// MeetWorkers. An exception ends all of them at their next meeting, and the one of the lowest worker is thrown on.
template <class Body> void InTeam(Workers& workers, Body&& body) {
    if (workers.count == 1)
        return body(0);
    struct Section {
        std::remove_reference_t<Body>& body;
    } section = {body};
    const auto run = [](void* context, int worker) { static_cast<Section*>(context)->body(worker); };
    RunTeam(workers, run, &section);
}

} // namespace zurt
