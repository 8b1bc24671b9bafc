// The inputs of every analysis: abundances of taxa, without names; and sums of them.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace zorvel {

// One entry per taxon: its number of specimens. An entry below 1 is an absent taxon; the order has
// no meaning. A sum that does not fit in 64 bits saturates.
using CountsVector = std::vector<std::int64_t>;
using CountsView = std::span<const std::int64_t>;

// One row per census, one column per taxon name of the project; every row has the same length.
using CountsMatrix = std::vector<CountsVector>;

// 128-bit integers, a language extension of both compilers the program is built with.
__extension__ typedef __int128 Int128;
__extension__ typedef unsigned __int128 UInt128;

// A sum of 64-bit counts that never overflows: formed in 128 bits and clamped once at the end, so
// that the result does not depend on the order of the entries.
class SaturatingSum {
  public:
    void add(std::int64_t value) { sum_ += value; }

    [[nodiscard]] std::int64_t value() const {
        using Limits = std::numeric_limits<std::int64_t>;
        if (sum_ > Limits::max()) return Limits::max();
        if (sum_ < Limits::min()) return Limits::min();
        return static_cast<std::int64_t>(sum_);
    }

  private:
    Int128 sum_ = 0;
};

}  // namespace zorvel
