#include "metrics/hill_sums.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "metrics/special_functions.h"

namespace zorvel {

namespace {

constexpr double nats = 46;  // e^-46 of a taxon is nothing
constexpr double longestProduct = 4096;

// The sum of ln(1 - j / n) over j < x, by the Euler-Maclaurin formula; n - x is at least 100.
double logOfFalling(double n, double x) {
    const double share = x / n;
    double integral = 0;
    if (share < 0.1) {
        // -n times the sum of share^k / (k (k - 1)), k >= 2.
        double power = share;
        for (int k = 2; k < 24; ++k) {
            power *= share;
            integral -= power / (k * (k - 1.0));
        }
        integral *= n;
    } else {
        integral = -(n - x) * std::log1p(-share) - x;
    }
    const auto cube = [](double y) { return y * y * y; };
    return integral - std::log1p(-share) / 2 - (1 / (n - x) - 1 / n) / 12 +
           (1 / cube(n - x) - 1 / cube(n)) / 360;
}

// q(x) as a product over the m of the subsample.
double missedBySize(double n, double m, double x) {
    double missed = 1;
    for (int j = 0; j < static_cast<int>(m); ++j) missed *= (n - x - j) / (n - j);
    return missed;
}

// It is the same with m and x exchanged; the smaller of them as x leaves no large terms to cancel.
double missedByLogarithm(double n, double m, double x) {
    if (m < x) std::swap(m, x);
    const double left = n - m;
    if (left - x < 100) return 0;  // far below e^-46 where this form is used
    return std::exp(x * std::log1p(-m / n) + logOfFalling(left, x) - logOfFalling(n, x));
}

}  // namespace

MissedSums missedSums(std::span<const AbundanceClass> classes, double n, double m) {
    MissedSums sums;
    if (classes.empty() || m >= n) return sums;
    const double last =
        std::min({static_cast<double>(classes.back().count), n - m, std::ceil(nats * n / m)});
    const auto add = [&](const AbundanceClass& each, double missed) {
        const auto taxa = static_cast<double>(each.taxa);
        sums.taxa += taxa * missed;
        sums.counts += taxa * static_cast<double>(each.count) * missed;
    };
    if (m <= 64 && (m * static_cast<double>(classes.size()) < last || last > longestProduct)) {
        for (const AbundanceClass& each : classes) {
            if (static_cast<double>(each.count) > n - m) break;
            add(each, missedBySize(n, m, static_cast<double>(each.count)));
        }
        return sums;
    }
    // A running product over x, from class to class.
    double missed = 1;
    double x = 0;
    for (const AbundanceClass& each : classes) {
        const auto count = static_cast<double>(each.count);
        if (count > last) break;
        if (last > longestProduct) {
            add(each, missedByLogarithm(n, m, count));
            continue;
        }
        while (x < count) {
            missed *= (n - m - x) / (n - x);
            ++x;
        }
        add(each, missed);
    }
    return sums;
}

namespace {

constexpr double smallMean = 24;

// K of a taxon: hypergeometric with n, x and m.
struct Draw {
    double n = 0;
    double x = 0;
    double m = 0;
};

// k ln k, as far as a K with a small mean goes.
const std::array<double, 256> wholeTimesLog = [] {
    std::array<double, 256> table{};
    for (std::size_t k = 2; k < table.size(); ++k) {
        table[k] = static_cast<double>(k) * std::log(static_cast<double>(k));
    }
    return table;
}();

// E[K ln K] for a small mean, from the least K upwards. Beyond the most probable K the ratios of
// successive probabilities fall, so that what is left out is below a geometric series.
double meanByWalk(const Draw& draw) {
    constexpr double least = 0x1p-56;
    const double lowest = std::max(0.0, draw.m - (draw.n - draw.x));
    const double highest =
        std::min({draw.x, draw.m, static_cast<double>(wholeTimesLog.size() - 1)});
    const double mode = std::floor((draw.x + 1) * ((draw.m + 1) / (draw.n + 2)));
    const double others = draw.n - draw.x - draw.m;
    auto place = static_cast<std::size_t>(lowest);
    double weight = 1;
    double weights = 1;
    double sum = wholeTimesLog[place];
    double k = lowest;
    while (k < highest) {
        const double ratio = (draw.x - k) * (draw.m - k) / ((k + 1) * (others + k + 1));
        if (k >= mode && weight * ratio < least * weights * (1 - ratio)) break;
        weight *= ratio;
        weights += weight;
        sum += weight * wholeTimesLog[++place];
        ++k;
    }
    return sum / weights;
}

// The absolute values of Gregory's coefficients, from the first: 1/2, 1/12, 1/24, ...
const std::array<double, 40> gregory = [] {
    std::array<double, 40> values{};
    for (std::size_t r = 0; r < values.size(); ++r) {
        values[r] = 1 / static_cast<double>(r + 2);
        for (std::size_t k = 0; k < r; ++k) {
            values[r] -= values[k] / static_cast<double>(r + 1 - k);
        }
    }
    return values;
}();

// E[K ln K] for a larger mean, in a closed form whose terms are all positive. The estimate
// (K / m) (psi(m) - psi(K)) of a term of the entropy (Chao, Wang & Jost 2013) is unbiased up to
// the order m, so that E[K psi(K)] = mean (psi(x) + psi(m) - psi(n)), but for a share of about
// q(x) < e^-mean. The rest is Gregory's series
// K (ln K - psi(K)) = sum over r >= 1 of G_r (r - 1)! / ((K + 1) ... (K + r - 1)),
// of which each term has the expectation G_r (r - 1)! times the product over i < r of
// (n + i) / ((x + i) (m + i)), again but for such a share. At most 40 terms, mostly 10.
double meanInClosedForm(const Draw& draw, double mean, double psiOfX, double psiFall) {
    double rest = 0;
    double term = 1;
    double r = 1;
    for (const double coefficient : gregory) {
        const double part = coefficient * term;
        rest += part;
        if (part < 0x1p-56 * mean) break;
        term *= r * (draw.n + r) / ((draw.x + r) * (draw.m + r));
        ++r;
    }
    return mean * (psiOfX - psiFall) + rest;
}

}  // namespace

double expectedEntropy(std::span<const AbundanceClass> classes, double n, double total, double m) {
    const double u = m * (total / n);
    const double logU = std::log(u);
    const double psiFall = digamma(n) - digamma(m);
    double entropy = 0;
    for (const AbundanceClass& each : classes) {
        const Draw draw{n, static_cast<double>(each.count), m};
        if (draw.x == n) {  // K is m: without rounding, so that one taxon has no entropy
            entropy += static_cast<double>(each.taxa) * m * (logU - std::log(m));
            continue;
        }
        const double mean = draw.x * (m / n);
        const double logs = mean < smallMean
                                ? meanByWalk(draw)
                                : meanInClosedForm(draw, mean, digamma(draw.x), psiFall);
        entropy += static_cast<double>(each.taxa) * (mean * logU - logs);
    }
    return entropy / u;
}

}  // namespace zorvel
