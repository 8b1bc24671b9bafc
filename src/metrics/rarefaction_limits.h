// The confidence limits of a point of either kind of rarefaction. Internal to this folder.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "metrics/rarefaction.h"

namespace zorvel {

// estimate -+ 1.96 and 2.58 standard deviations; NaN where the variance is negative or NaN.
inline Rarefaction pointWithLimits(std::int64_t sampleSize, double estimate, double variance) {
    const double sd = std::sqrt(variance);
    return {sampleSize,
            estimate,
            variance,
            estimate - 1.96 * sd,
            estimate + 1.96 * sd,
            estimate - 2.58 * sd,
            estimate + 2.58 * sd};
}

// A point that cannot be computed: NaN throughout.
inline Rarefaction undefinedPoint(std::int64_t sampleSize) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    return {sampleSize, nan, nan, nan, nan, nan, nan};
}

}  // namespace zorvel
