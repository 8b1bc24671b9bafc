// The values at the ends of the number types.
#pragma once

#include <cstdint>
#include <limits>

namespace zorvel {

inline constexpr double nan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double infinity = std::numeric_limits<double>::infinity();
inline constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
inline constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();

}  // namespace zorvel
