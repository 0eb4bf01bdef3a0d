// The ranks of zurt-mpi. MPI is started and ended by main_mpi.cpp.
#include "core/ranks_mpi.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <mpi.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace zurt {

namespace {

// Larger transfers go in parts, as MPI counts by 32-bit integers.
constexpr Word kMostAtOnce = Word{1} << 28;

// How long a rank whose library has failed waits for the others.
constexpr std::chrono::seconds kPatience{10};

constexpr int kAborted = 2; // status, of a fault of what the program stands on

std::int32_t OwnRank() {
    int rank = 0;
    MPI_Comm_rank(MPI_COMM_WORLD, &rank);
    return rank;
}

std::int32_t RankCount() {
    int count = 1;
    MPI_Comm_size(MPI_COMM_WORLD, &count);
    return count;
}

Share ShareOfRank(Word n, Word rank) {
    const Word count = RankCount();
    return {n * rank / count + 1, n * (rank + 1) / count};
}

// The question whether all are well: becomes the lowest rank that has stopped, or the count of ranks.
struct Enquiry {
    std::int32_t lowest = 0;
    MPI_Request request = MPI_REQUEST_NULL;
};

void BeginEnquiry(bool stopped, Enquiry& enquiry) {
    enquiry.lowest = stopped ? OwnRank() : RankCount();
    MPI_Iallreduce(MPI_IN_PLACE, &enquiry.lowest, 1, MPI_INT32_T, MPI_MIN, MPI_COMM_WORLD, &enquiry.request);
}

std::int32_t LowestStopped(bool stopped) {
    Enquiry enquiry;
    BeginEnquiry(stopped, enquiry);
    MPI_Wait(&enquiry.request, MPI_STATUS_IGNORE);
    return enquiry.lowest;
}

// What a rank that isn't the first one has written to standard error: nobody sees it, but what it tells ahead of its stop.
struct NotesOfRank {
    char* text = nullptr;
    std::size_t size = 0;
    std::size_t inCommon = 0; // so much when all ranks were last well
};

NotesOfRank& OwnNotes() {
    static NotesOfRank notes; // the stream keeps its address
    return notes;
}

template <class T> void SumInParts(ArrayView<T> values, MPI_Datatype type) {
    StopWithOtherRanks();
    for (Word first = 0; first < values.length; first += kMostAtOnce)
        MPI_Allreduce(MPI_IN_PLACE, values.data + first,
                      static_cast<int>(std::min(kMostAtOnce, values.length - first)), type, MPI_SUM,
                      MPI_COMM_WORLD);
}

void SendBytes(void* bytes, Word count, std::int32_t from) {
    for (Word first = 0; first < count; first += kMostAtOnce)
        MPI_Bcast(static_cast<char*>(bytes) + first, static_cast<int>(std::min(kMostAtOnce, count - first)),
                  MPI_BYTE, from, MPI_COMM_WORLD);
}

void SendText(std::string& text, std::int32_t from) {
    Word length = static_cast<Word>(text.size());
    SendBytes(&length, sizeof length, from);
    text.resize(static_cast<std::size_t>(length));
    SendBytes(text.data(), length, from);
}

} // namespace

void StartRanks() {
    int provided = 0;
    MPI_Init_thread(nullptr, nullptr, MPI_THREAD_FUNNELED, &provided);
    if (OwnRank() == 0)
        return;
    // The streams alone: the descriptors stay for what must be told before a sudden end.
    stdout = std::fopen("/dev/null", "w");
    stderr = open_memstream(&OwnNotes().text, &OwnNotes().size);
}

void EndRanks() {
    MPI_Finalize();
}

void SumToShares(ConstRealArray values, double* own) {
    std::vector<int> counts;
    for (std::int32_t rank = 0; rank < RankCount(); ++rank) {
        const Share share = ShareOfRank(values.length, rank);
        counts.push_back(static_cast<int>(share.last - share.first + 1));
    }
    MPI_Reduce_scatter(values.data, own, counts.data(), MPI_DOUBLE, MPI_SUM, MPI_COMM_WORLD);
}

void StopInJointWork(const std::string& text) {
    Enquiry enquiry;
    BeginEnquiry(true, enquiry);
    int answered = 0;
    const auto last = std::chrono::steady_clock::now() + kPatience;
    while (answered == 0 && std::chrono::steady_clock::now() < last) {
        MPI_Test(&enquiry.request, &answered, MPI_STATUS_IGNORE);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    if (answered != 0)
        throw RunStop{StopKind::LibraryError, text, "", "", true, enquiry.lowest};
    std::fflush(nullptr);
    dprintf(STDERR_FILENO, "zurt: error: %s (process %d of %d)\n", text.c_str(), OwnRank() + 1, RankCount());
    MPI_Abort(MPI_COMM_WORLD, kAborted);
    std::_Exit(kAborted);
}

bool IsFirstRank() {
    return OwnRank() == 0;
}

Share ShareOf(Word n) {
    return ShareOfRank(n, OwnRank());
}

void StopWithOtherRanks() {
    const std::int32_t lowest = LowestStopped(false);
    if (lowest < RankCount())
        throw RunStop{StopKind::LibraryError, "", "", "", true, lowest};
    if (IsFirstRank())
        return;
    std::fflush(stderr);
    OwnNotes().inCommon = OwnNotes().size;
}

void SumOverRanks(RealArray values) {
    SumInParts(values, MPI_DOUBLE);
}

void SumOverRanks(IntArray values) {
    SumInParts(values, MPI_INT32_T);
}

void GatherShares(RealTable values) {
    StopWithOtherRanks();
    for (std::int32_t rank = 0; rank < RankCount(); ++rank) {
        const Share share = ShareOfRank(values.columns, rank);
        SendBytes(values.data + values.rows * (share.first - 1),
                  values.rows * (share.last - share.first + 1) * static_cast<Word>(sizeof(double)), rank);
    }
}

void TakeFromFirstRank(void* bytes, Word count) {
    StopWithOtherRanks();
    SendBytes(bytes, count, 0);
}

RunStop AgreeOnStop(const RunStop& stop) {
    RunStop agreed = stop;
    const std::int32_t rank = stop.isKnown ? stop.rank : LowestStopped(true);
    SendBytes(&agreed.kind, sizeof agreed.kind, rank);
    for (std::string* text : {&agreed.text, &agreed.place, &agreed.records})
        SendText(*text, rank);
    std::string notes;
    if (rank != 0 && rank == OwnRank()) {
        std::fflush(stderr);
        notes.assign(OwnNotes().text + OwnNotes().inCommon, OwnNotes().size - OwnNotes().inCommon);
    }
    SendText(notes, rank);
    if (IsFirstRank())
        std::fputs(notes.c_str(), stderr);
    return agreed;
}

} // namespace zurt
