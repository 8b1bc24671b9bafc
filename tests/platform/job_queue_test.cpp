// Work on other threads, results on this one, and ends that nothing holds up.
#include "platform/job_queue.h"
#include "tests/support/wait_until.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <set>
#include <thread>

namespace zorvel {
namespace {

using std::chrono::milliseconds;

// Work that waits until the test opens the gate.
struct Gate {
    auto job() {
        return [opened = opened] {
            opened.wait();
            return 0;
        };
    }
    void open() { promise.set_value(); }

    std::promise<void> promise;
    std::shared_future<void> opened = promise.get_future().share();
};

int nothing() {
    return 0;
}

TEST(JobQueue, WorksElsewhereAndDeliversEachResultHereOnce) {
    JobQueue queue(4);
    QObject receiver;
    constexpr int jobs = 2000;
    std::multiset<int> delivered;
    int misplaced = 0;
    const auto home = std::this_thread::get_id();
    for (int i = 0; i < jobs; ++i) {
        queue.start(
            &receiver, [i] { return std::pair(i, std::this_thread::get_id()); },
            [&](const auto& result) {
                delivered.insert(result.first);
                if (result.second == home || std::this_thread::get_id() != home) ++misplaced;
            });
    }
    ASSERT_TRUE(waitUntil([&] { return delivered.size() >= jobs; }));
    for (int i = 0; i < jobs; ++i) EXPECT_EQ(delivered.count(i), 1u) << i;
    EXPECT_EQ(misplaced, 0);
}

TEST(JobQueue, DropsTheResultOfAReceiverThatIsGone) {
    JobQueue queue(1);
    auto gone = std::make_unique<QObject>();
    QObject stays;
    Gate gate;
    bool late = false;
    bool done = false;
    queue.start(gone.get(), gate.job(), [&](int) { late = true; });
    queue.start(&stays, nothing, [&](int) { done = true; });
    gone.reset();
    gate.open();
    ASSERT_TRUE(waitUntil([&] { return done; }));
    EXPECT_FALSE(late);
}

// Counts destructions on another thread.
struct Witness {
    explicit Witness(std::atomic<int>* counter) : foreign(counter) {}
    ~Witness() {
        if (std::this_thread::get_id() != home) ++*foreign;
    }
    std::thread::id home = std::this_thread::get_id();
    std::atomic<int>* foreign;
};

TEST(JobQueue, ClosuresOfTheReceiverDieOnItsOwnThread) {
    std::atomic<int> foreign{0};
    int delivered = 0;
    {
        JobQueue queue(4);
        QObject receiver;
        for (int i = 0; i < 500; ++i) {
            auto witness = std::make_shared<Witness>(&foreign);
            queue.start(&receiver, nothing, [witness, &delivered](int) { ++delivered; });
        }
        EXPECT_TRUE(waitUntil([&] { return delivered > 250; }));
    }
    EXPECT_EQ(foreign, 0);
}

// Fewer than the threads do not delay a short job; nor do more, after a while.
TEST(JobQueue, JobsThatHangHoldNothingUp) {
    for (const int hanging : {1, 4}) {
        JobQueue queue(2, milliseconds(hanging == 1 ? 0 : 5));
        QObject receiver;
        Gate gate;
        int ended = 0;
        bool done = false;
        for (int i = 0; i < hanging; ++i) queue.start(&receiver, gate.job(), [&](int) { ++ended; });
        queue.start(&receiver, nothing, [&](int) { done = true; });
        EXPECT_TRUE(waitUntil([&] { return done; }));
        EXPECT_EQ(ended, 0);
        gate.open();
        EXPECT_TRUE(waitUntil([&] { return ended == hanging; }));
    }
}

TEST(JobQueue, DeliveryMayRunAnEventLoopOfItsOwn) {
    JobQueue queue(1);
    QObject receiver;
    bool inner = false;
    bool seenInside = false;
    queue.start(&receiver, nothing, [&](int) { seenInside = waitUntil([&] { return inner; }); });
    queue.start(&receiver, nothing, [&](int) { inner = true; });
    EXPECT_TRUE(waitUntil([&] { return seenInside; }));
}

TEST(JobQueue, DestructionJoinsTheRunningJobAndForgetsTheRest) {
    std::atomic<int> ran{0};
    bool delivered = false;
    QObject receiver;
    {
        JobQueue queue(1);
        std::promise<void> begun;
        queue.start(
            &receiver,
            [&ran, &begun] {
                begun.set_value();
                std::this_thread::yield();
                return ++ran;
            },
            [&](int) { delivered = true; });
        begun.get_future().wait();
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(ran, 1);
    EXPECT_FALSE(delivered);
}

TEST(JobQueue, StoppingWaitsForWhatRunsButNotForEver) {
    JobQueue queue(1);
    QObject receiver;
    Gate gate;
    std::promise<void> begun;
    queue.start(
        &receiver,
        [&begun, work = gate.job()] {
            begun.set_value();
            return work();
        },
        [](int) {});
    begun.get_future().wait();
    EXPECT_FALSE(queue.stop(milliseconds(20)));
    gate.open();
    EXPECT_TRUE(queue.stop(std::chrono::seconds(10)));
}

// A file that was asked for is written although the program is about to end, and a write that
// failed is told.
TEST(JobQueue, FinishingWritesWaitsForThemAndDelivers) {
    JobQueue queue(1);
    QObject receiver;
    Gate gate;
    queue.start(&receiver, gate.job(), [](int) {});
    EXPECT_TRUE(queue.finishWrites(milliseconds(0)));  // there is none
    std::atomic<bool> written = false;
    bool told = false;
    queue.startWrite(
        &receiver, [&written] { return written.exchange(true); }, [&told](bool) { told = true; });
    EXPECT_FALSE(queue.finishWrites(milliseconds(20)));
    EXPECT_FALSE(told);
    gate.open();
    EXPECT_TRUE(queue.finishWrites(std::chrono::seconds(10)));
    EXPECT_TRUE(written && told);
}

}  // namespace
}  // namespace zorvel
