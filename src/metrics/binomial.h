// Binomial random numbers from our own source, the same on every machine (those of the standard
// library differ between libraries).
#pragma once

#include <cstdint>

#include "metrics/random_source.h"

namespace zorvel {

// Uniform in (0, 1).
double uniform(RandomSource& random);

// The successes of `trials` with that chance each; trials >= 0, chance from 0 to 1. Few successes
// are counted one by one (geometric gaps), many drawn by transformed rejection (Hormann 1993, "The
// generation of binomial random variates"), so that the time does not grow with trials.
std::int64_t binomial(RandomSource& random, std::int64_t trials, double chance);

}  // namespace zorvel
