// Whether two doubles are the same number to the last bit, the sign of zero included; any NaN is
// the same as any other.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace zorvel {

inline bool sameNumber(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

}  // namespace zorvel
