// Many threads at one table while it grows.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "base/console.h"
#include "metrics/rarefaction.h"
#include "tests/metrics/metric_support.h"

namespace zorvel {
namespace {

TEST(SharedTable, GrowsUnderReaders) {
    std::vector<std::string> lines;
    setConsoleSink([&lines](std::string_view line) { lines.emplace_back(line); });
    RarefactionCalculator alone;
    RarefactionCalculator shared;
    std::vector<std::vector<Rarefaction>> found(6);
    // Each reads the entries up to its number of censuses, which others are working out.
    const auto point = [](RarefactionCalculator& calculator, std::size_t thread, std::size_t step) {
        return calculator.sampleBasedPoint(
            {static_cast<std::int64_t>(9000 + thread * 13 + step * 700), 3, {0, 1, 2}}, 7);
    };
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < found.size(); ++thread) {
        threads.emplace_back([&, thread] {
            for (std::size_t step = 0; step < 40; ++step) {
                found[thread].push_back(point(shared, thread, step));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    setConsoleSink({});
    EXPECT_EQ(lines, std::vector<std::string>{});  // no growth was asked for twice
    for (std::size_t thread = 0; thread < found.size(); ++thread) {
        for (std::size_t step = 0; step < 40; ++step) {
            EXPECT_TRUE(samePoint(found[thread][step], point(alone, thread, step)));
        }
    }
    EXPECT_EQ(shared.logfactSize(), alone.logfactSize());
}

}  // namespace
}  // namespace zorvel
