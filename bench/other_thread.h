// A thread that waits. The window reads tables on a thread beside its own, and counting the
// references of shared names takes longer there than in a program of one thread.
#pragma once

#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

namespace zorvel {

inline const std::jthread otherThread([](const std::stop_token& stop) {
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any().wait(lock, stop, [] { return false; });
});

}  // namespace zorvel
