// Diversity as its formulas are printed: every taxon and every number of its specimens, sums term
// by term. For benches and tests.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <vector>

#include "metrics/counts.h"

namespace zorvel::plain {

inline std::vector<double> logFactorialsUpTo(std::int64_t n) {
    std::vector<double> logs(static_cast<std::size_t>(n) + 1, 0);
    for (std::size_t i = 2; i < logs.size(); ++i) {
        logs[i] = logs[i - 1] + std::log(static_cast<double>(i));
    }
    return logs;
}

// exp of the entropy expected in m of n specimens (Chao et al. 2014).
inline double shannonDiversityOfSubsample(const std::vector<double>& logs,
                                          const CountsVector& counts, std::int64_t m) {
    const std::int64_t n = std::accumulate(counts.begin(), counts.end(), std::int64_t{0});
    const auto choose = [&](std::int64_t a, std::int64_t b) {
        return logs[static_cast<std::size_t>(a)] - logs[static_cast<std::size_t>(b)] -
               logs[static_cast<std::size_t>(a - b)];
    };
    double entropy = 0;
    for (const std::int64_t x : counts) {
        const std::int64_t most = std::min(x, m);
        for (std::int64_t k = std::max<std::int64_t>(1, m - (n - x)); k <= most; ++k) {
            const double share = static_cast<double>(k) / static_cast<double>(m);
            entropy -= share * std::log(share) *
                       std::exp(choose(x, k) + choose(n - x, m - k) - choose(n, m));
        }
    }
    return std::exp(entropy);
}

// The estimate of order q, no whole number (Chao & Jost 2015): a sum over k < n, each over the
// taxa, and a series of n terms for the taxa not found.
inline double estimatedDiversity(const CountsVector& counts, double q) {
    const auto n =
        static_cast<double>(std::accumulate(counts.begin(), counts.end(), std::int64_t{0}));
    const auto f1 = static_cast<double>(std::count(counts.begin(), counts.end(), 1));
    const auto f2 = static_cast<double>(std::count(counts.begin(), counts.end(), 2));
    std::vector<double> chances(counts.size(), 1);  // C(n - x, k) / C(n - 1, k)
    double sum = 0;
    double choose = 1;  // C(k - q, k)
    const auto size = static_cast<std::int64_t>(n);
    for (std::int64_t step = 0; step < size; ++step) {
        const auto k = static_cast<double>(step);
        double delta = 0;
        for (std::size_t i = 0; i < counts.size(); ++i) {
            const auto x = static_cast<double>(counts[i]);
            delta += x / n * chances[i];
            chances[i] *= std::max(0.0, n - x - k) / std::max(1.0, n - 1 - k);
        }
        sum += choose * delta;
        choose *= (k + 1 - q) / (k + 1);
    }
    if (f1 > 0) {
        const double a = f2 > 0 ? 2 * f2 / ((n - 1) * f1 + 2 * f2) : 2 / ((n - 1) * (f1 - 1) + 2);
        double series = 0;
        double term = 1;  // C(q - 1, r) (a - 1)^r
        for (std::int64_t step = 0; step < size; ++step) {
            const auto r = static_cast<double>(step);
            series += term;
            term *= (q - 1 - r) / (r + 1) * (a - 1);
        }
        sum += f1 / n * std::pow(1 - a, 1 - n) * (std::pow(a, q - 1) - series);
    }
    return std::pow(sum, 1 / (1 - q));
}

}  // namespace zorvel::plain
