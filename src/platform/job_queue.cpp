#include "platform/job_queue.h"

#include <QCoreApplication>
#include <QEvent>
#include <algorithm>
#include <system_error>

namespace zorvel {

JobQueue::JobQueue(unsigned threads, std::chrono::milliseconds patience) {
    if (threads == 0) threads = std::max(2u, std::thread::hardware_concurrency());
    for (unsigned i = 0; i < threads; ++i) addThread();
    patience_.setInterval(patience);
    connect(&patience_, &QTimer::timeout, this, &JobQueue::addThreadIfStuck);
}

JobQueue::~JobQueue() {
    stop(std::chrono::milliseconds(0));
    for (std::thread& thread : threads_) thread.join();
}

void JobQueue::addThread() {
    threads_.emplace_back([this] { runJobs(); });
}

void JobQueue::addThreadIfStuck() {
    const std::lock_guard lock(mutex_);
    if (jobs_.empty()) return patience_.stop();
    if (std::exchange(begunBefore_, begun_) != begun_) return;
    try {
        addThread();
    } catch (const std::system_error&) {
        // The system has no thread now; this is tried again.
    }
}

bool JobQueue::stop(std::chrono::milliseconds atMost) {
    std::deque<Job> dropped;  // destroyed after the lock
    std::unique_lock lock(mutex_);
    stopping_ = true;
    dropped.swap(jobs_);
    jobsChanged_.notify_all();
    return jobsChanged_.wait_for(lock, atMost, [this] { return running_ == 0; });
}

bool JobQueue::finishWrites(std::chrono::milliseconds atMost) {
    bool finished = false;
    {
        std::unique_lock lock(mutex_);
        finished = jobsChanged_.wait_for(lock, atMost, [this] { return writes_ == 0; });
    }
    // One result at a time: its event brings the next.
    while (hasMail()) QCoreApplication::sendPostedEvents(this, QEvent::User);
    return finished;
}

void JobQueue::enqueue(Job job) {
    {
        const std::lock_guard lock(mutex_);
        if (job.writes) ++writes_;
        jobs_.push_back(std::move(job));
        if (!patience_.isActive()) begunBefore_ = begun_;
    }
    jobsChanged_.notify_one();
    if (patience_.interval() > 0 && !patience_.isActive()) patience_.start();
}

// Events are posted under the lock: only this mutex orders the worker's writes before the reading.
// One event is pending exactly while there is mail.
void JobQueue::runJobs() {
    while (std::optional<Job> job = nextJob()) {
        job->work();
        job->work = nullptr;  // the inputs are destroyed before the result is reported
        const std::lock_guard lock(mutex_);
        const bool writes = job->writes;
        mail_.push_back(std::move(*job));
        if (mail_.size() == 1) QCoreApplication::postEvent(this, new QEvent(QEvent::User));
        --running_;
        if (writes) --writes_;
        if (stopping_ || writes) jobsChanged_.notify_all();
    }
}

std::optional<JobQueue::Job> JobQueue::nextJob() {
    std::unique_lock lock(mutex_);
    jobsChanged_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
    if (stopping_) return std::nullopt;
    Job job = std::move(jobs_.front());
    jobs_.pop_front();
    ++begun_;
    ++running_;
    return job;
}

bool JobQueue::hasMail() {
    const std::lock_guard lock(mutex_);
    return !mail_.empty();
}

std::optional<JobQueue::Job> JobQueue::nextReport() {
    const std::lock_guard lock(mutex_);
    if (mail_.empty()) return std::nullopt;
    Job job = std::move(mail_.front());
    mail_.pop_front();
    if (!mail_.empty()) QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    return job;
}

// One result per event: a delivery may run an event loop of its own, which must not hold up the
// other results, or destroy this queue.
void JobQueue::customEvent(QEvent* /*event*/) {
    const std::optional<Job> job = nextReport();
    if (job && job->receiver) job->deliver();
}

}  // namespace zorvel
