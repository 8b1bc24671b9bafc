// Work off the main thread, as far as the model asks for it. The desktop answers with its queue.
#pragma once

#include <functional>

namespace zorvel {

class Jobs {
  public:
    Jobs() = default;
    Jobs(const Jobs&) = delete;
    Jobs& operator=(const Jobs&) = delete;
    virtual ~Jobs() = default;

    // Calls work() on another thread and then done() on this one, unless whoever asked has gone by
    // then. What both need is shared: done() is destroyed on this thread in any case.
    virtual void start(std::function<void()> work, std::function<void()> done) = 0;
};

}  // namespace zorvel
