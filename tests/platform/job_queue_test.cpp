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
#include <vector>

namespace zorvel {
namespace {

TEST(JobQueue, WorksElsewhereAndDeliversHere) {
    JobQueue queue;
    QObject receiver;
    std::thread::id worker;
    std::thread::id here;
    std::vector<int> result;
    queue.start(
        &receiver,
        [input = std::vector<int>{3, 4}] { return std::pair(std::this_thread::get_id(), input); },
        [&](std::pair<std::thread::id, std::vector<int>> value) {
            worker = value.first;
            result = std::move(value.second);
            here = std::this_thread::get_id();
        });
    ASSERT_TRUE(waitUntil([&] { return !result.empty(); }));
    EXPECT_EQ(result, (std::vector<int>{3, 4}));
    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_EQ(here, std::this_thread::get_id());
}

TEST(JobQueue, CarriesResultsThatCannotBeCopied) {
    JobQueue queue;
    QObject receiver;
    std::unique_ptr<int> result;
    queue.start(
        &receiver, [] { return std::make_unique<int>(5); },
        [&](std::unique_ptr<int> value) { result = std::move(value); });
    ASSERT_TRUE(waitUntil([&] { return result != nullptr; }));
    EXPECT_EQ(*result, 5);
}

TEST(JobQueue, DeliversEveryOneOfManyJobsOnce) {
    JobQueue queue(4);
    QObject receiver;
    constexpr int jobs = 2000;
    std::multiset<int> delivered;
    for (int i = 0; i < jobs; ++i) {
        queue.start(
            &receiver, [i] { return i; }, [&](int value) { delivered.insert(value); });
    }
    ASSERT_TRUE(waitUntil([&] { return delivered.size() >= jobs; }));
    for (int i = 0; i < jobs; ++i) EXPECT_EQ(delivered.count(i), 1u) << i;
}

TEST(JobQueue, DropsTheResultOfAReceiverThatIsGone) {
    JobQueue queue(1);
    auto gone = std::make_unique<QObject>();
    QObject stays;
    std::promise<void> gate;
    bool late = false;
    bool done = false;
    queue.start(
        gone.get(),
        [opened = gate.get_future().share()] {
            opened.wait();
            return 1;
        },
        [&](int) { late = true; });
    queue.start(
        &stays, [] { return 2; }, [&](int) { done = true; });
    gone.reset();
    gate.set_value();
    ASSERT_TRUE(waitUntil([&] { return done; }));
    EXPECT_FALSE(late);
}

// Counts where its last copy goes.
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
            queue.start(
                &receiver, [] { return 0; }, [witness, &delivered](int) { ++delivered; });
        }
        waitUntil([&] { return delivered > 250; });
    }
    EXPECT_GT(delivered, 250);
    EXPECT_EQ(foreign, 0);
}

TEST(JobQueue, ALongJobDoesNotHoldUpAShortOne) {
    JobQueue queue;
    QObject receiver;
    std::promise<void> gate;
    bool shortDone = false;
    bool longDone = false;
    queue.start(
        &receiver,
        [opened = gate.get_future().share()] {
            opened.wait();
            return 0;
        },
        [&](int) { longDone = true; });
    queue.start(
        &receiver, [] { return 0; }, [&](int) { shortDone = true; });
    ASSERT_TRUE(waitUntil([&] { return shortDone; }));
    EXPECT_FALSE(longDone);
    gate.set_value();
    ASSERT_TRUE(waitUntil([&] { return longDone; }));
}

TEST(JobQueue, JobsThatHangHoldNothingUp) {
    JobQueue queue(2, std::chrono::milliseconds(5));
    QObject receiver;
    std::promise<void> gate;
    const std::shared_future<void> opened = gate.get_future().share();
    const auto hang = [opened] {
        opened.wait();
        return 0;
    };
    int ended = 0;
    for (int i = 0; i < 4; ++i) queue.start(&receiver, hang, [&](int) { ++ended; });
    bool done = false;
    queue.start(
        &receiver, [] { return 0; }, [&](int) { done = true; });
    EXPECT_TRUE(waitUntil([&] { return done; }));
    EXPECT_EQ(ended, 0);
    gate.set_value();
    EXPECT_TRUE(waitUntil([&] { return ended == 4; }));
}

TEST(JobQueue, DeliveryMayRunAnEventLoopOfItsOwn) {
    JobQueue queue(1);
    QObject receiver;
    bool inner = false;
    bool innerSeenInside = false;
    queue.start(
        &receiver, [] { return 0; },
        [&](int) { innerSeenInside = waitUntil([&] { return inner; }); });
    queue.start(
        &receiver, [] { return 0; }, [&](int) { inner = true; });
    ASSERT_TRUE(waitUntil([&] { return innerSeenInside; }));
}

TEST(JobQueue, DestructionJoinsTheRunningJobAndForgetsTheRest) {
    std::atomic<int> ran{0};
    bool delivered = false;
    QObject receiver;
    {
        JobQueue queue(1);
        std::promise<void> begun;
        std::future<void> running = begun.get_future();
        queue.start(
            &receiver,
            [&ran, &begun] {
                begun.set_value();
                std::this_thread::yield();
                return ++ran;
            },
            [&](int) { delivered = true; });
        running.wait();
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(ran, 1);
    EXPECT_FALSE(delivered);
}

TEST(JobQueue, StoppingWaitsForWhatRunsButNotForEver) {
    JobQueue queue(1);
    QObject receiver;
    std::promise<void> begun, end;
    queue.start(
        &receiver,
        [&begun, &end] {
            begun.set_value();
            end.get_future().wait();
            return 0;
        },
        [](int) {});
    begun.get_future().wait();
    EXPECT_FALSE(queue.stop(std::chrono::milliseconds(20)));
    end.set_value();
    EXPECT_TRUE(queue.stop(std::chrono::seconds(10)));
}

// A file that was asked for is written although the program is about to end, and a write that
// failed is told.
TEST(JobQueue, FinishingWritesWaitsForThemAndDelivers) {
    JobQueue queue(1);
    QObject receiver;
    std::promise<void> gate;
    queue.start(
        &receiver,
        [opened = gate.get_future().share()] {
            opened.wait();
            return 0;
        },
        [](int) {});
    EXPECT_TRUE(queue.finishWrites(std::chrono::milliseconds(0)));  // there is none
    std::atomic<bool> written = false;
    bool told = false;
    queue.startWrite(
        &receiver, [&written] { return written.exchange(true); }, [&told](bool) { told = true; });
    EXPECT_FALSE(queue.finishWrites(std::chrono::milliseconds(20)));
    EXPECT_FALSE(told);
    gate.set_value();
    EXPECT_TRUE(queue.finishWrites(std::chrono::seconds(10)));
    EXPECT_TRUE(written);
    EXPECT_TRUE(told);
}

}  // namespace
}  // namespace zorvel
