// Rarefaction as a textbook states it: binomial coefficients from running sums of logarithms, one
// exponential for every pair of taxa, the whole matrix read again for every sample-based point.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "metrics/counts.h"

namespace zorvel::plain {

struct Richness {
    double estimate = 0;
    double variance = 0;
};

inline std::vector<double> logFactorials(std::int64_t size) {
    std::vector<double> lf(static_cast<std::size_t>(size), 0.0);
    for (std::size_t k = 1; k < lf.size(); ++k) lf[k] = lf[k - 1] + std::log(double(k));
    return lf;
}

// lf: N + 1 log-factorials or more; n of 1 or more.
inline Richness individualBasedPoint(const std::vector<double>& lf, CountsView counts,
                                     std::int64_t n) {
    std::int64_t total = 0;
    std::vector<std::int64_t> taxa;
    for (const std::int64_t count : counts) {
        total += count;
        if (count >= 1) taxa.push_back(count);
    }
    if (n > total) return {static_cast<double>(taxa.size()), 0};
    const auto at = [&lf](std::int64_t k) { return lf[static_cast<std::size_t>(k)]; };
    const auto missing = [&](std::int64_t s) {
        if (total - s < n) return 0.0;
        return std::exp((at(total - s) - at(n) - at(total - s - n)) -
                        (at(total) - at(n) - at(total - n)));
    };
    std::vector<double> q;
    for (const std::int64_t count : taxa) q.push_back(missing(count));
    Richness richness;
    double covariance = 0;
    for (std::size_t i = 0; i < taxa.size(); ++i) {
        richness.estimate += 1 - q[i];
        richness.variance += q[i] * (1 - q[i]);
        for (std::size_t j = i + 1; j < taxa.size(); ++j)
            covariance = (covariance + missing(taxa[i] + taxa[j])) - q[j] * q[i];
    }
    richness.variance += covariance + covariance;
    return richness;
}

struct Incidence {
    std::vector<double> frequencyCounts;
    double chaoTwo = 0;
};

inline Incidence incidence(const CountsMatrix& matrix) {
    CountsMatrix presence = matrix;
    for (CountsVector& row : presence)
        for (std::int64_t& cell : row) cell = cell >= 2 ? 1 : cell;
    Incidence result;
    result.frequencyCounts.assign(matrix.size() + 1, 0);
    for (std::size_t j = 0; j < matrix.front().size(); ++j) {
        std::int64_t sum = 0;
        for (const CountsVector& row : presence) sum += row[j];
        ++result.frequencyCounts[static_cast<std::size_t>(sum)];
    }
    const auto t = static_cast<double>(matrix.size());
    const double q1 = result.frequencyCounts[1], q2 = result.frequencyCounts[2];
    result.chaoTwo = static_cast<double>(matrix.front().size()) + q1 * (t - 1) * q1 / (2 * t * q2);
    return result;
}

// The sums of one point over every possible frequency.
inline Richness tau(const std::vector<double>& lf, const Incidence& incidence, std::size_t t) {
    const std::size_t censuses = incidence.frequencyCounts.size() - 1;
    Richness richness;
    double squares = 0;
    for (std::size_t j = 1; j <= censuses; ++j) {
        const double alpha = j + t > censuses ? 0
                                              : std::exp(lf[censuses - t] + lf[censuses - j] -
                                                         lf[censuses - t - j] - lf[censuses]);
        richness.estimate += (1 - alpha) * incidence.frequencyCounts[j];
        squares += incidence.frequencyCounts[j] * (1 - alpha) * (1 - alpha);
    }
    richness.variance = squares - richness.estimate * richness.estimate / incidence.chaoTwo;
    return richness;
}

inline Richness sampleBasedPoint(const std::vector<double>& lf, const CountsMatrix& matrix,
                                 std::size_t t) {
    return tau(lf, incidence(matrix), t);
}

}  // namespace zorvel::plain
