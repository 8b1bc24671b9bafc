// The model's jobs on the desktop's queue, for as long as a receiver lives: what is not done when
// it goes is never heard of. Main thread.
#pragma once

#include <QPointer>
#include <utility>

#include "model/jobs.h"
#include "platform/job_queue.h"

namespace zorvel {

class QueueJobs : public Jobs {
  public:
    // The queue must outlive this.
    QueueJobs(JobQueue& queue, QObject* receiver) : queue_(queue), receiver_(receiver) {}

    void start(std::function<void()> work, std::function<void()> done) override {
        queue_.start(
            receiver_,
            [work = std::move(work)] {
                work();
                return true;
            },
            [done = std::move(done)](bool) { done(); });
    }

  private:
    JobQueue& queue_;
    QPointer<QObject> receiver_;
};

}  // namespace zorvel
