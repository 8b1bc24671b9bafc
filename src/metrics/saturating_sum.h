// Sums of 64-bit counts that never overflow: formed in 128 bits and clamped once at the end, so
// that the result does not depend on the order of the entries.
#pragma once

#include <cstdint>
#include <limits>

#include "metrics/int128.h"

namespace zorvel {

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
