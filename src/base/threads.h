// Work on all processors, while the caller waits. The parts of the work must not depend on each
// other, so that the result is the same on any number of threads.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <system_error>
#include <thread>
#include <vector>

namespace zorvel {

inline unsigned allThreads() {
    return std::max(1U, std::thread::hardware_concurrency());
}

// Calls work(i) for every i below count, on that many threads, the caller's included; each thread
// takes a few at a time, since some take longer than others. work must not throw.
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

}  // namespace zorvel
