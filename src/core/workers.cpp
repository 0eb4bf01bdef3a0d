#include "core/workers.h"

#include "core/stop.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <sched.h>
#include <system_error>
#include <thread>
#include <vector>

#ifdef __linux__
#include <sys/prctl.h>
#endif
#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace zurt {

namespace {

// A wait spins for some ten microseconds, what a meeting of busy threads takes; then it sleeps, a little longer each time. It
// never yields: on a machine that others use too, a thread that yields waits for a turn of all of them, while one
// that has slept is soon let in.
constexpr int kSpins = 1000;
constexpr std::chrono::microseconds kFirstNap{5}, kLongestNap{50};

// What one thread writes and others read has a cache line of its own.
struct alignas(64) SharedWord {
    std::atomic<Word> value{0};
};

void Pause() {
#if defined(__x86_64__)
    _mm_pause();
#endif
}

// True once the condition holds; false when it did not while spinning.
template <class Condition> bool HoldsSoon(int spins, const Condition& condition) {
    for (int i = 0; i < spins; ++i) {
        if (condition())
            return true;
        Pause();
    }
    return condition();
}

template <class Condition> void WaitUntil(int spins, const Condition& condition) {
    if (HoldsSoon(spins, condition))
        return;
    for (std::chrono::microseconds nap = kFirstNap; !condition(); nap = std::min(2 * nap, kLongestNap))
        std::this_thread::sleep_for(nap);
}

// Sleeps of microseconds last no longer than that; without it the system rounds them to some fifty.
void SleepPrecisely() {
#ifdef __linux__
    prctl(PR_SET_TIMERSLACK, 1000UL); // nanoseconds
#endif
}

// A chunk that waits for its turn, and the worker in whose room it is.
struct alignas(64) ComputedChunk {
    std::atomic<Word> chunk{0};
    int worker = 0;
};

// Thrown at a meeting point that another worker will not reach.
struct MeetingBroken {};

} // namespace

struct WorkerTeam {
    std::vector<std::thread> threads; // of workers 1 and up
    int spins = 0;                    // none where there are more threads than processors

    // The section in hand; written by the calling thread ahead of `section`.
    void (*body)(void* context, int worker) = nullptr;
    void* context = nullptr;
    std::vector<std::exception_ptr> faults; // by worker

    SharedWord section;  // counts the sections; -1: the end
    SharedWord gate;     // of the section: its number, whether it is shut, and how many threads have entered
    SharedWord finished; // threads that have done with the section
    SharedWord arrived;  // at the meeting point
    SharedWord meetings; // that are over
    std::atomic<bool> broken{false};

    SharedWord next;                     // chunk to be taken
    SharedWord turn;                     // chunk to be added
    SharedWord failed;                   // lowest chunk that has failed
    std::vector<ComputedChunk> computed; // one place a worker, by the chunk's number
    std::atomic<bool> adding{false};     // someone adds

    // Threads without work for long.
    std::mutex mutex;
    std::condition_variable wake;
    std::atomic<int> sleepers{0};
};

namespace {

void AwaitSection(WorkerTeam& team, Word seen) {
    const auto begun = [&] { return team.section.value.load() != seen; };
    if (HoldsSoon(team.spins, begun))
        return;
    std::unique_lock<std::mutex> lock(team.mutex);
    ++team.sleepers;
    team.wake.wait(lock, begun);
    --team.sleepers;
}

// The gate: the section's number times 2^16, a bit that shuts it, and below that the count of threads.
constexpr Word kGateShut = Word{1} << 15;
constexpr Word GateOf(Word section) {
    return section * 2 * kGateShut;
}

// False when the section has ended without this thread.
bool EntersSection(WorkerTeam& team, Word section) {
    Word gate = team.gate.value.load();
    while (gate >= GateOf(section) && gate < GateOf(section) + kGateShut)
        if (team.gate.value.compare_exchange_weak(gate, gate + 1))
            return true;
    return false;
}

void BeginSection(WorkerTeam& team, Word section) {
    team.gate.value.store(GateOf(section));
    team.section.value.store(section);
    if (team.sleepers.load() > 0) {
        const std::lock_guard<std::mutex> lock(team.mutex);
        team.wake.notify_all();
    }
}

void DoBody(WorkerTeam& team, int worker) {
    try {
        team.body(team.context, worker);
    } catch (const MeetingBroken&) { // another worker's fault is the reason
    } catch (...) {
        team.faults[static_cast<std::size_t>(worker)] = std::current_exception();
        team.broken.store(true);
    }
}

void WorkerMain(WorkerTeam& team, int worker) {
    SleepPrecisely();
    for (Word seen = 0;;) {
        AwaitSection(team, seen);
        seen = team.section.value.load();
        if (seen < 0)
            return;
        if (!EntersSection(team, seen))
            continue;
        DoBody(team, worker);
        team.finished.value.fetch_add(1);
    }
}

void EndTeam(WorkerTeam* team) {
    BeginSection(*team, -1);
    for (std::thread& thread : team->threads)
        thread.join();
    delete team;
}

// A worker takes no further chunk ahead of its last one's addition, so those taken and not yet added have places of their own.
ComputedChunk& PlaceOfChunk(WorkerTeam& team, Word chunk) {
    return team.computed[static_cast<std::size_t>(chunk) % team.computed.size()];
}

// Adds what is ready in turn, whoever has computed it: on a busy machine that worker may be asleep. What becomes ready while
// another worker adds is seen by it, at the latest behind its last addition.
void AddReadyChunks(WorkerTeam& team, const ChunkBodies& bodies) {
    const auto ready = [&](Word turn) { return PlaceOfChunk(team, turn).chunk.load() == turn; };
    while (ready(team.turn.value.load()) && !team.adding.exchange(true)) {
        for (Word turn = team.turn.value.load(); ready(turn); team.turn.value.store(++turn))
            bodies.add(bodies.context, turn, PlaceOfChunk(team, turn).worker);
        team.adding.store(false);
    }
}

// What one worker does of a loop over chunks. Chunks are taken in ascending order, so all ahead of the lowest that fails
// are taken by workers that finish them.
void DoChunks(WorkerTeam& team, Word chunks, const ChunkBodies& bodies, int worker) {
    for (;;) {
        const Word chunk = team.next.value.fetch_add(1);
        if (chunk > chunks || chunk > team.failed.value.load())
            return;
        try {
            bodies.compute(bodies.context, chunk, worker);
        } catch (...) { // done again by the calling thread
            Word lowest = team.failed.value.load();
            while (chunk < lowest && !team.failed.value.compare_exchange_weak(lowest, chunk)) {
            }
            return;
        }
        if (bodies.add == nullptr)
            continue;
        ComputedChunk& own = PlaceOfChunk(team, chunk);
        own.worker = worker;
        own.chunk.store(chunk);
        AddReadyChunks(team, bodies);
        WaitUntil(team.spins, [&] {
            return team.turn.value.load() > chunk || team.failed.value.load() < chunk || team.broken.load();
        });
        if (team.turn.value.load() <= chunk)
            return;
    }
}

} // namespace

int ProcessorCount() {
    cpu_set_t set;
    CPU_ZERO(&set);
    const int allowed = sched_getaffinity(0, sizeof set, &set) == 0 ? CPU_COUNT(&set) : 0;
    return allowed > 0 ? allowed : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

void StartWorkers(Workers& workers, int count) {
    workers.team.reset();
    workers.count = count > 0 ? count : ProcessorCount();
    if (workers.count == 1)
        return;
    SleepPrecisely();
    workers.team = std::shared_ptr<WorkerTeam>(new WorkerTeam, EndTeam);
    WorkerTeam& team = *workers.team;
    team.spins = workers.count <= ProcessorCount() ? kSpins : 0;
    team.faults.resize(static_cast<std::size_t>(workers.count));
    team.computed = std::vector<ComputedChunk>(static_cast<std::size_t>(workers.count));
    try {
        for (int worker = 1; worker < workers.count; ++worker)
            team.threads.emplace_back([&team, worker] { WorkerMain(team, worker); });
    } catch (const std::system_error& fault) {
        workers.team.reset();
        workers.count = 1;
        StopWithLibraryError(std::string("can't start the threads asked for: ") + fault.what());
    }
}

void MeetWorkers(Workers& workers) {
    if (workers.count == 1)
        return;
    WorkerTeam& team = *workers.team;
    const Word meeting = team.meetings.value.load(std::memory_order_relaxed);
    if (team.arrived.value.fetch_add(1) == workers.count - 1) {
        team.arrived.value.store(0, std::memory_order_relaxed);
        team.meetings.value.store(meeting + 1, std::memory_order_release);
        return;
    }
    const auto over = [&] { return team.meetings.value.load(std::memory_order_acquire) != meeting; };
    WaitUntil(team.spins, [&] { return over() || team.broken.load(std::memory_order_relaxed); });
    if (!over())
        throw MeetingBroken{};
}

Word AwaitProgress(const Workers& workers, const Progress& progress, Word number) {
    Word reached = progress.reached.load(std::memory_order_acquire);
    if (reached >= number)
        return reached;
    const WorkerTeam& team = *workers.team;
    WaitUntil(team.spins, [&] {
        reached = progress.reached.load(std::memory_order_acquire);
        return reached >= number || team.broken.load(std::memory_order_relaxed);
    });
    if (reached < number)
        throw MeetingBroken{};
    return reached;
}

namespace {

// One section. Where not all are needed, threads that have not come by the time the calling one is done stay out: on a busy
// machine nobody waits for a thread without a processor.
void RunSection(Workers& workers, void (*body)(void* context, int worker), void* context, bool allNeeded) {
    WorkerTeam& team = *workers.team;
    team.body = body;
    team.context = context;
    team.finished.value = 0;
    team.arrived.value = 0;
    team.broken = false;
    workers.sideBySide = true;
    BeginSection(team, team.section.value.load() + 1);
    DoBody(team, 0);
    const Word entered =
        allNeeded ? Word{workers.count} - 1 : team.gate.value.fetch_or(kGateShut) & (kGateShut - 1);
    WaitUntil(team.spins, [&] { return team.finished.value.load() == entered; });
    workers.sideBySide = false;
    std::exception_ptr first;
    for (std::exception_ptr& fault : team.faults) {
        if (!first)
            first = fault;
        fault = nullptr;
    }
    if (first)
        std::rethrow_exception(first);
}

// A loop over chunks, as the context of a section.
struct ChunkLoop {
    WorkerTeam& team;
    Word chunks;
    const ChunkBodies& bodies;
};

} // namespace

void RunTeam(Workers& workers, void (*body)(void* context, int worker), void* context) {
    RunSection(workers, body, context, true);
}

void RunChunks(Workers& workers, Word chunks, const ChunkBodies& bodies) {
    WorkerTeam& team = *workers.team;
    team.next.value = 1;
    team.turn.value = 1;
    team.failed.value = chunks + 1;
    team.adding = false;
    for (ComputedChunk& place : team.computed)
        place.chunk = 0;
    ChunkLoop loop = {team, chunks, bodies};
    const auto body = [](void* context, int worker) {
        const ChunkLoop& own = *static_cast<ChunkLoop*>(context);
        DoChunks(own.team, own.chunks, own.bodies, worker);
    };
    RunSection(workers, body, &loop, false);
    for (Word chunk = team.failed.value; chunk <= chunks; ++chunk) {
        bodies.compute(bodies.context, chunk, 0);
        if (bodies.add != nullptr)
            bodies.add(bodies.context, chunk, 0);
    }
}

} // namespace zurt
