// Loops shared by threads: every part once, additions in order, faults as with one thread, and no crawl where there are
// more threads than processors.
#include "core/stop.h"
#include "core/text_unit.h"
#include "core/workers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace zurt {
namespace {

class WorkersOf : public testing::TestWithParam<int> {
protected:
    void SetUp() override { StartWorkers(workers, GetParam()); }
    Workers workers;
};

// A range that is lost, done twice or cut wrongly at the end would show in the counts.
TEST_P(WorkersOf, RangesMakeUpTheWhole) {
    for (const Word count : {0, 1, 7, 64, 1000}) {
        std::vector<std::atomic<int>> visits(static_cast<std::size_t>(count));
        ForRanges(workers, count, 7, [&](Word first, Word last, int worker) {
            EXPECT_LT(worker, GetParam());
            for (Word i = first; i <= last; ++i)
                ++visits[static_cast<std::size_t>(i - 1)];
        });
        for (const std::atomic<int>& visit : visits)
            EXPECT_EQ(visit, 1);
    }
}

// An addition ahead of its turn, or of another worker's room, would change the text.
TEST_P(WorkersOf, AdditionsKeepTheirOrder) {
    std::vector<Word> room(static_cast<std::size_t>(GetParam()));
    std::string sum, expected;
    InTurn(
        workers, 300, [&](Word chunk, int worker) { room[static_cast<std::size_t>(worker)] = chunk; },
        [&](Word, int worker) { sum += std::to_string(room[static_cast<std::size_t>(worker)]) + ' '; });
    for (int chunk = 1; chunk <= 300; ++chunk)
        expected += std::to_string(chunk) + ' ';
    EXPECT_EQ(sum, expected);
}

// Chunks 40 and 60 stop the run with a message. It must be that of 40, begun by the calling thread behind all of 1 to 39.
TEST_P(WorkersOf, TheFirstFaultInOrderStopsTheRun) {
    TextUnit unit;
    unit.workers = &workers;
    const std::thread::id caller = std::this_thread::get_id();
    std::vector<Word> added;
    const auto compute = [&](Word chunk, int) {
        if (chunk != 40 && chunk != 60)
            return;
        BeginMessage(unit);
        EXPECT_EQ(std::this_thread::get_id(), caller);
        PutRecord(unit, "chunk " + std::to_string(chunk));
        StopRun(unit);
    };
    try {
        InTurn(workers, 100, compute, [&](Word chunk, int) { added.push_back(chunk); });
        ADD_FAILURE() << "no stop";
    } catch (const RunStop& stop) {
        EXPECT_EQ(stop.text, "chunk 40");
        EXPECT_EQ(added.size(), 39U);
    }
    added.clear(); // and the threads are there again
    InTurn(
        workers, 10, [](Word, int) {}, [&](Word chunk, int) { added.push_back(chunk); });
    EXPECT_EQ(added.size(), 10U);
}

// A fault of an addition, and one between meetings, must not leave the others waiting.
TEST_P(WorkersOf, OtherFaultsReachTheCaller) {
    const auto add = [](Word chunk, int) {
        if (chunk == 5)
            StopWithLibraryError("disk full");
    };
    EXPECT_THROW(InTurn(
                     workers, 50, [](Word, int) {}, add),
                 RunStop);
    const auto body = [&](int worker) {
        MeetWorkers(workers);
        if (worker == GetParam() - 1)
            throw std::bad_alloc();
        MeetWorkers(workers);
    };
    EXPECT_THROW(InTeam(workers, body), std::bad_alloc);
}

// Every worker sees what all others have written ahead of a meeting.
TEST_P(WorkersOf, MeetingsSeparate) {
    const auto n = static_cast<std::size_t>(GetParam());
    std::vector<int> mine(n), wrong(n);
    InTeam(workers, [&](int worker) {
        for (int meeting = 1; meeting <= 200; ++meeting) {
            mine[static_cast<std::size_t>(worker)] = meeting;
            MeetWorkers(workers);
            for (const int other : mine)
                wrong[static_cast<std::size_t>(worker)] += other != meeting;
            MeetWorkers(workers);
        }
    });
    for (const int count : wrong)
        EXPECT_EQ(count, 0);
}

INSTANTIATE_TEST_SUITE_P(Workers, WorkersOf, testing::Values(1, 2, 5));

#if defined(__x86_64__)
// Threads take denormal numbers as the calling thread does when it starts them.
TEST(Workers, DenormalsAreTreatedAlike) {
    Workers workers;
    const unsigned before = __builtin_ia32_stmxcsr();
    __builtin_ia32_ldmxcsr(before | 0x8040); // to zero, as results and as operands
    StartWorkers(workers, 3);
    double product[3] = {1.0, 1.0, 1.0};
    InTeam(workers, [&](int worker) {
        const volatile double least = std::numeric_limits<double>::min();
        product[worker] = least * 0.5;
    });
    __builtin_ia32_ldmxcsr(before);
    for (const double p : product)
        EXPECT_EQ(p, 0.0);
}
#endif

} // namespace
} // namespace zurt
