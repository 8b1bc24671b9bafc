// Many threads at one table while it grows.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "base/console.h"
#include "metrics/rarefaction.h"
#include "tests/metrics/rarefaction_support.h"

namespace zorvel {
namespace {

TEST(SharedTable, GrowsUnderReaders) {
    std::vector<std::string> lines;
    setConsoleSink([&lines](std::string_view line) { lines.emplace_back(line); });
    RarefactionCalculator alone;
    RarefactionCalculator shared;
    const CountsMatrix matrix = {{1, 0, 2, 0}, {0, 3, 1, 0}, {1, 1, 0, 0}, {0, 0, 5, 1}};
    const auto expectedSamples = bits(alone.sampleBasedPoint(matrix, 2));
    std::atomic<int> wrong{0};
    struct Asked {
        CountsVector counts;
        std::array<std::int64_t, 7> answer;
        std::array<std::int64_t, 7> samples;
    };
    std::vector<std::vector<Asked>> asked(6);
    const auto work = [&](std::size_t thread) {
        for (std::size_t step = 0; step < 40; ++step) {
            const auto largest = static_cast<std::int64_t>(9000 + thread * 13 + step * 700);
            const CountsVector counts = {largest, 200, 3, 1, 1};
            asked[thread].push_back({counts, bits(shared.individualBasedPoint(counts, 100)), {}});
            if (shared.logfactSize() <= static_cast<std::size_t>(largest + 205)) ++wrong;
            if (bits(shared.sampleBasedPoint(matrix, 2)) != expectedSamples) ++wrong;
            // Reads the entries up to its number of censuses, which others are working out.
            const IncidenceSummary many = {largest, 3, {0, 1, 2}};
            asked[thread].back().samples = bits(shared.sampleBasedPoint(many, 7));
        }
    };
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < asked.size(); ++thread)
        threads.emplace_back(work, thread);
    for (std::thread& thread : threads) thread.join();
    setConsoleSink({});
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(lines, std::vector<std::string>{});  // no growth was asked for twice
    for (const std::vector<Asked>& questions : asked) {
        for (const Asked& each : questions) {
            EXPECT_EQ(bits(alone.individualBasedPoint(each.counts, 100)), each.answer);
            const IncidenceSummary many = {each.counts.front(), 3, {0, 1, 2}};
            EXPECT_EQ(bits(alone.sampleBasedPoint(many, 7)), each.samples);
        }
    }
    EXPECT_EQ(shared.logfact(), alone.logfact());
}

TEST(SharedCalculator, IsOneForAllThreads) {
    std::vector<RarefactionCalculator*> seen(8);
    std::vector<std::thread> threads;
    for (RarefactionCalculator*& place : seen) {
        threads.emplace_back([&place] { place = &sharedCalculator(); });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(seen, std::vector<RarefactionCalculator*>(8, &sharedCalculator()));
}

}  // namespace
}  // namespace zorvel
