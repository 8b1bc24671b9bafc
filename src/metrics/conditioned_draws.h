// The missing taxa of small subsamples of large censuses, where the sums of two counts spread too
// widely to be listed. Internal to this folder; pure and safe on any thread.
//
// Let each of N specimens be drawn on its own with probability p = n / N. Taxa are then missing
// independently, with probability u^c_i, u = 1 - p, and draws whose total happens to be n are as
// likely as a subsample of n. The condition is applied by Fourier inversion over the total X
// (Bartlett 1938, "The characteristic function of a conditional statistic"): with
// f(t) = 1 - p + p exp(it),
//     E[exp(it (X - n)); taxon i missing] = w(t) (u / f(t))^c_i, w(t) = f(t)^N exp(-int),
// and the mean over t, divided by that of w, is the conditional chance. The integrand is periodic
// and smooth, so equally spaced angles give it to full precision (Trefethen & Weideman 2014); only
// a few dozen of them contribute. Time and memory are in proportion to the classes.
#pragma once

#include <cstdint>
#include <span>

#include "metrics/abundance.h"

namespace zorvel {

// The result of a sum over the taxa of a subsample.
struct MissingTaxa {
    long double expected = 0;  // sum of q_i: the mean number of taxa missing from the subsample
    long double variance = 0;  // of that number, and so of the number of taxa present
};

// n: from 1 to half of N = total. No two taxa may have more than N specimens together. Terms
// smaller than exp(-nats) are left out.
MissingTaxa conditionedDraws(std::span<const AbundanceClass> classes, std::int64_t total,
                             std::int64_t n, long double nats);

}  // namespace zorvel
