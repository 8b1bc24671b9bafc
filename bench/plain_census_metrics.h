// The metrics of one census as a textbook states them: each function by itself, over the list of
// proportions. What the faster forms are timed and checked against; Real may be a wider type.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "metrics/counts.h"

namespace zorvel::plain {

inline std::int64_t individuals(CountsView counts) {
    std::int64_t sum = 0;
    for (const std::int64_t count : counts) sum += count;
    return sum;
}

inline std::int64_t taxaOf(CountsView counts, std::int64_t count) {
    return std::count(counts.begin(), counts.end(), count);
}

inline std::int64_t richness(CountsView counts) {
    std::int64_t taxa = 0;
    for (const std::int64_t count : counts)
        if (count >= 1) ++taxa;
    return taxa;
}

template <typename Real = double>
std::vector<Real> proportions(CountsView counts) {
    Real total = 0;
    std::vector<Real> shares;
    for (const std::int64_t count : counts)
        if (count >= 1) total += static_cast<Real>(count);
    for (const std::int64_t count : counts)
        if (count >= 1) shares.push_back(static_cast<Real>(count) / total);
    return shares;
}

template <typename Real = double>
Real shannonH(CountsView counts) {
    Real sum = 0;
    for (const Real p : proportions<Real>(counts)) sum += p * std::log(p);
    return -sum;
}

template <typename Real = double>
Real pielouJ(CountsView counts) {
    return shannonH<Real>(counts) / std::log(static_cast<Real>(richness(counts)));
}

template <typename Real = double>
Real buzasE(CountsView counts) {
    return std::exp(shannonH<Real>(counts)) / static_cast<Real>(richness(counts));
}

template <typename Real = double>
Real simpsonD(CountsView counts) {
    Real sum = 0;
    for (const Real p : proportions<Real>(counts)) sum += p * (1 - p);
    const auto n = static_cast<Real>(individuals(counts));
    return sum * (n / (n - 1));
}

inline double chaoOne(CountsView counts) {
    const auto f1 = static_cast<double>(taxaOf(counts, 1));
    const auto f2 = static_cast<double>(taxaOf(counts, 2));
    return static_cast<double>(richness(counts)) + f1 * (f1 - 1) / (2 * (f2 + 1));
}

inline double chaoClassic(CountsView counts) {
    const auto f1 = static_cast<double>(taxaOf(counts, 1));
    const auto f2 = static_cast<double>(taxaOf(counts, 2));
    return static_cast<double>(richness(counts)) + f1 * f1 / (2 * f2);
}

inline double fisherAlpha(CountsView counts) {
    if (counts.empty() || *std::max_element(counts.begin(), counts.end()) < 5) return 0;
    const auto n = static_cast<double>(individuals(counts));
    const auto s = static_cast<double>(richness(counts));
    if (n < 1 || s == 0 || n < s) return 0;
    double alpha = 1;
    double change = 1;
    while (change > 0.00001) {
        const double next = s / std::log(n / alpha + 1);
        change = std::fabs(next - alpha);
        alpha = next;
    }
    return alpha;
}

// All that follow from the counts alone, in the order of metricTable.
inline std::array<double, 9> censusMetrics(CountsView counts) {
    return {static_cast<double>(individuals(counts)),
            static_cast<double>(richness(counts)),
            chaoOne(counts),
            chaoClassic(counts),
            shannonH(counts),
            fisherAlpha(counts),
            pielouJ(counts),
            simpsonD(counts),
            buzasE(counts)};
}

}  // namespace zorvel::plain
