// The random numbers of the analyses, passed in by the caller: the programs use the system's, tests
// and the --seed option a seeded generator. For one thread at a time.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include "metrics/counts.h"

namespace zorvel {

class RandomSource {
  public:
    virtual ~RandomSource() = default;
    RandomSource(const RandomSource&) = delete;
    RandomSource& operator=(const RandomSource&) = delete;

    // Uniform over all 32-bit values.
    std::uint32_t bits32() {
        if (next_ == buffer_.size()) refill();
        return buffer_[next_++];
    }
    // Uniform over all 64-bit values.
    std::uint64_t bits64() {
        const std::uint64_t high = bits32();
        return high << 32 | bits32();
    }
    // Uniform over 0 .. bound - 1, without bias; bound is at least 1. The high half of a product,
    // rejecting the few low halves that would favour some values (Lemire 2019, "Fast random integer
    // generation in an interval"). A small bound takes 32 bits.
    std::uint64_t below(std::uint64_t bound) {
        if (bound < smallBound) return below32(bound);
        UInt128 product = UInt128{bits64()} * bound;
        if (static_cast<std::uint64_t>(product) < bound) {
            const std::uint64_t threshold = (0 - bound) % bound;
            while (static_cast<std::uint64_t>(product) < threshold)
                product = UInt128{bits64()} * bound;
        }
        return static_cast<std::uint64_t>(product >> 64);
    }

    // Calls use(below(bound)) until it returns false, at most n times (n > 0), and returns how
    // often. It can end sooner, even before the first call. Faster than calls of below() where use
    // writes to memory, because the place in the buffer stays in a register.
    template <class Use>
    std::size_t someBelow(std::uint64_t bound, std::size_t n, Use use) {
        if (bound >= smallBound) {
            std::size_t used = 1;
            while (use(below(bound)) && used < n) ++used;
            return used;
        }
        if (next_ == buffer_.size()) refill();
        const std::uint32_t* const start = buffer_.data() + next_;
        const std::uint32_t* const end = start + std::min(n, buffer_.size() - next_);
        const std::uint32_t* at = start;
        std::size_t rejected = 0;
        while (at != end) {
            const std::uint64_t product = *at++ * bound;
            if (isBiased(product, bound))
                ++rejected;
            else if (!use(product >> 32))
                break;
        }
        next_ += static_cast<std::size_t>(at - start);
        return static_cast<std::size_t>(at - start) - rejected;
    }

  protected:
    RandomSource() = default;
    using Buffer = std::array<std::uint32_t, 256>;
    virtual void fill(Buffer& buffer) = 0;

  private:
    static constexpr auto smallBound = std::uint64_t{1} << 28;
    // Cold, so that a loop of draws keeps its sums in registers.
    [[gnu::cold]] void refill();
    static bool isBiased(std::uint64_t product, std::uint64_t bound) {
        const std::uint64_t low = product & 0xffffffffU;
        return low < bound && low < (std::uint64_t{1} << 32) % bound;
    }
    std::uint64_t below32(std::uint64_t bound) {
        for (;;) {
            const std::uint64_t product = bits32() * bound;
            if (!isBiased(product, bound)) return product >> 32;
        }
    }

    Buffer buffer_{};
    std::size_t next_ = Buffer{}.size();
};

// xoshiro256** (Blackman & Vigna 2021) from 256 bits of state, which must not all be 0.
class GeneratedRandom : public RandomSource {
  protected:
    using State = std::array<std::uint64_t, 4>;
    explicit GeneratedRandom(const State& state) : state_(state) {}
    void fill(Buffer& buffer) final;

  private:
    State state_;
};

// Different numbers in every run: the generator starts from random numbers of the system
// (getrandom). Taking every number from the system would be most of the time of an SQS estimate.
class SystemRandom final : public GeneratedRandom {
  public:
    SystemRandom();
};

// The same numbers for the same seed, on every machine (the state is drawn from the seed by
// SplitMix64).
class SeededRandom final : public GeneratedRandom {
  public:
    explicit SeededRandom(std::uint64_t seed);
};

// Uniform in (0, 1).
double uniform(RandomSource& random);

// The successes of `trials` with that chance each; trials >= 0, chance from 0 to 1. Few successes
// are counted one by one (geometric gaps), many drawn by transformed rejection (Hormann 1993, "The
// generation of binomial random variates"), so that the time does not grow with trials.
std::int64_t binomial(RandomSource& random, std::int64_t trials, double chance);

// One source per job; called on the thread that starts the job.
using RandomSourceMaker = std::function<std::unique_ptr<RandomSource>()>;

}  // namespace zorvel
