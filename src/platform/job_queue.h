// Runs work on background threads and brings the results back to the thread that owns the queue
// (the main thread). Jobs start in the order given, finish in any order, and are never cancelled; a
// result whose receiver has been destroyed is dropped. A job that hangs, as in a file on a dead
// network, keeps its thread; jobs that wait behind it get another one. Destroying the queue drops
// the jobs that have not begun, waits for those that run, and delivers nothing more.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace zorvel {

class JobQueue : public QObject {
  public:
    // threads: 0 for one per processor, at least two, so that a long job leaves room for short
    // ones. patience: one more thread is started each time jobs wait and none has begun for that
    // long; 0: never.
    explicit JobQueue(unsigned threads = 0,
                      std::chrono::milliseconds patience = std::chrono::milliseconds(0));
    ~JobQueue() override;

    // work() runs on a worker: it must not throw, and must own all that it reads. deliver(result)
    // runs later on this queue's thread, if receiver still exists then; it is also destroyed there,
    // whether it was called or not. Call on this queue's thread.
    template <class Work, class Deliver>
    void start(QObject* receiver, Work work, Deliver deliver, bool writes = false) {
        using Value = std::invoke_result_t<Work&>;
        auto slot = std::make_shared<std::optional<Value>>();
        enqueue({receiver, [slot, work = std::move(work)]() mutable { slot->emplace(work()); },
                 [slot, deliver = std::move(deliver)]() mutable { deliver(std::move(**slot)); },
                 writes});
    }

    // The same for work that writes, such as a file: finishWrites() waits for it.
    template <class Work, class Deliver>
    void startWrite(QObject* receiver, Work work, Deliver deliver) {
        start(receiver, std::move(work), std::move(deliver), true);
    }

    // Waits for the writes, but no longer than atMost, and delivers the results so far. False if a
    // write has not ended.
    bool finishWrites(std::chrono::milliseconds atMost);

    // For quitting: drops the jobs that have not begun and waits for those that run, but no longer
    // than atMost. False if one still runs: the queue must then not be destroyed, which would wait
    // for it. No job may be started afterwards.
    bool stop(std::chrono::milliseconds atMost);

  protected:
    void customEvent(QEvent* event) override;

  private:
    // A worker only moves the receiver and deliver(), so that no closure of a window is copied or
    // destroyed there.
    struct Job {
        QPointer<QObject> receiver;
        std::function<void()> work;
        std::function<void()> deliver;
        bool writes = false;
    };

    void enqueue(Job job);
    void addThread();
    void addThreadIfStuck();
    void runJobs();
    std::optional<Job> nextJob();
    bool hasMail();
    std::optional<Job> nextReport();

    // Only the owner's thread uses these.
    std::vector<std::thread> threads_;
    QTimer patience_;  // runs while jobs may be waiting
    std::uint64_t begunBefore_ = 0;

    std::mutex mutex_;
    std::condition_variable jobsChanged_;
    std::deque<Job> jobs_;
    bool stopping_ = false;
    std::uint64_t begun_ = 0;  // ever
    std::size_t running_ = 0;
    std::size_t writes_ = 0;  // that have not ended
    std::deque<Job> mail_;    // jobs whose results wait
};

}  // namespace zorvel
