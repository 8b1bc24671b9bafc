// Work on several processors, with a result that does not depend on their number.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <semaphore>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace zorvel {

inline unsigned allThreads() {
    return std::max(1U, std::thread::hardware_concurrency());
}

// Calls work(i) while the caller waits, for every i below count, on that many threads, the caller's
// included; each thread takes a few at a time, since some take longer than others. The parts of the
// work must not depend on each other. work must not throw.
template <class Work>
void onThreads(std::size_t count, unsigned threads, Work work) {
    constexpr std::size_t atATime = 8;
    std::atomic<std::size_t> next = 0;
    const auto run = [&] {
        for (;;) {
            const std::size_t begin = next.fetch_add(atATime);
            if (begin >= count) return;
            for (std::size_t i = begin; i < std::min(count, begin + atATime); ++i) work(i);
        }
    };
    const std::size_t useful = std::min<std::size_t>(threads, (count + atATime - 1) / atATime);
    std::vector<std::jthread> others;
    try {
        for (std::size_t i = 1; i < useful; ++i) others.emplace_back(run);
    } catch (const std::system_error&) {  // no more threads: fewer do the work
    }
    run();
}

// Items of a sequence: the caller makes the first, and another thread the others, ahead of their
// use.
template <class Item>
class MadeAhead {
  public:
    // make: fills the item, which may be one that was used before; false if it is the last.
    explicit MadeAhead(std::function<bool(Item&)> make) : make_(std::move(make)) {}
    ~MadeAhead() {
        stopped_ = true;
        free_.release();
    }
    MadeAhead(const MadeAhead&) = delete;
    MadeAhead& operator=(const MadeAhead&) = delete;

    // Valid until the next call; null after the last. Rethrows what make throws.
    Item* next() {
        if (thread_.joinable()) {
            free_.release();
            if (used_ < end_) made_.acquire();
        } else if (used_ < end_) {
            if (!make_(items_[used_ % items_.size()])) {
                end_ = used_ + 1;
            } else if (used_ == 0) {
                start();
            }
        }
        if (used_ < end_) return &items_[used_++ % items_.size()];
        if (failure_) std::rethrow_exception(failure_);
        return nullptr;
    }

  private:
    static constexpr std::size_t room = 4;

    void start() {
        try {
            thread_ = std::jthread([this] { run(); });
        } catch (const std::system_error&) {  // no more threads: the caller makes all items
        }
    }

    void run() {
        for (std::size_t i = 1; i < end_; ++i) {
            free_.acquire();
            if (stopped_) return;
            try {
                if (!make_(items_[i % items_.size()])) end_ = i + 1;
            } catch (...) {
                failure_ = std::current_exception();
                end_ = i;
            }
            made_.release();
        }
    }

    std::function<bool(Item&)> make_;
    std::array<Item, room> items_;
    std::size_t used_ = 0;
    std::exception_ptr failure_;
    std::atomic<std::size_t> end_ = SIZE_MAX;  // the number of items, once it is known
    std::atomic<bool> stopped_ = false;
    std::counting_semaphore<> free_{room - 1};  // items beside the one in use
    std::counting_semaphore<> made_{0};
    std::jthread thread_;
};

}  // namespace zorvel
