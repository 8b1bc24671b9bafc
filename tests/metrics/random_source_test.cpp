#include "metrics/random_source.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <vector>

namespace zorvel {
namespace {

// Gives the words of a list, the low half of each first, and then zeros.
class ListedRandom final : public RandomSource {
  public:
    explicit ListedRandom(std::vector<std::uint64_t> words) : words_(std::move(words)) {}

  protected:
    void fill(Buffer& buffer) override {
        buffer.fill(0);
        for (std::size_t i = 0; i < words_.size(); ++i) {
            buffer.at(2 * i) = static_cast<std::uint32_t>(words_[i]);
            buffer.at(2 * i + 1) = static_cast<std::uint32_t>(words_[i] >> 32);
        }
    }

  private:
    std::vector<std::uint64_t> words_;
};

// The first outputs of xoshiro256** from the state that SplitMix64 makes of 0.
TEST(SeededRandom, PublishedGenerator) {
    SeededRandom random(0);
    for (const std::uint64_t expected : {0x99ec5f36cb75f2b4U, 0xbf6e1f784956452aU}) {
        const std::uint64_t low = random.bits32();
        const std::uint64_t high = random.bits32();
        EXPECT_EQ(high << 32 | low, expected);
    }
}

TEST(SystemRandom, NeverRepeats) {
    SystemRandom one, other;
    std::set<std::uint64_t> values;
    for (int i = 0; i < 5000; ++i) values.insert({one.bits64(), other.bits64()});
    EXPECT_EQ(values.size(), 10000U);
}

// A product whose low half lies below 2^32 mod bound (or 2^64 mod bound) would favour some values.
TEST(RandomSource, RejectsWhatWouldBias) {
    ListedRandom small({(std::uint64_t{0x80000000} << 32) | 0});  // words 0, 0x80000000
    EXPECT_EQ(small.below(3), 1U);
    ListedRandom accepted({1});  // low half 3, not below 1
    EXPECT_EQ(accepted.below(3), 0U);
    const std::uint64_t bound = std::uint64_t{3} << 62;
    ListedRandom large({0, ~std::uint64_t{0}});  // 64 bits of 0, then of 1
    EXPECT_EQ(large.below(bound), bound - 1);
}

// Small bounds, of which one rejects a value in 17, and one of 64 bits.
TEST(RandomSource, SomeBelowGivesTheValuesOfBelow) {
    for (const std::uint64_t bound :
         {std::uint64_t{3}, std::uint64_t{0x0f0f0f10}, std::uint64_t{3} << 62}) {
        SeededRandom one(5), other(5);
        for (std::size_t n = 1, total = 0; total < 3000; n = n % 40 + 1) {
            std::size_t calls = 0;
            bool stopped = false;
            const std::size_t used = one.someBelow(bound, n, [&](std::uint64_t value) {
                EXPECT_FALSE(stopped);
                EXPECT_EQ(value, other.below(bound)) << bound;
                ++calls;
                stopped = value % 8 == 0;
                return !stopped;
            });
            EXPECT_EQ(used, calls);
            EXPECT_LE(used, n);
            total += used;
        }
        EXPECT_EQ(one.bits32(), other.bits32());
    }
}

TEST(RandomSource, BelowIsUniform) {
    SeededRandom random(11);
    constexpr int draws = 60'000;
    constexpr std::size_t cells = 6;
    for (const std::uint64_t bound : {std::uint64_t{6}, std::uint64_t{0x0ffffffe},
                                      std::uint64_t{0x60000000}, std::uint64_t{3} << 62}) {
        std::array<double, cells> hits{};
        for (int i = 0; i < draws; ++i) {
            const std::uint64_t value = random.below(bound);
            ASSERT_LT(value, bound);
            ++hits[std::min<std::size_t>(value / (bound / cells), cells - 1)];
        }
        double chiSquare = 0;
        for (const double hit : hits)
            chiSquare += (hit - draws / 6.0) * (hit - draws / 6.0) / (draws / 6.0);
        EXPECT_LT(chiSquare, 15.09) << bound;  // 5 degrees of freedom, 1%
    }
    for (int i = 0; i < 100; ++i) EXPECT_EQ(random.below(1), 0U);
}

}  // namespace
}  // namespace zorvel
