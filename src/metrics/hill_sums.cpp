#include "metrics/hill_sums.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

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

double logOfWhole(double k) {
    static const std::array<double, 1024> table = [] {
        std::array<double, 1024> logs{};
        for (std::size_t i = 1; i < logs.size(); ++i) logs[i] = std::log(static_cast<double>(i));
        return logs;
    }();
    const auto place = static_cast<std::size_t>(k);
    return place < table.size() ? table[place] : std::log(k);
}

// K of a taxon: hypergeometric with n, x and m.
struct Draw {
    double n = 0;
    double x = 0;
    double m = 0;

    [[nodiscard]] double mean() const { return x * (m / n); }
    // Of the probabilities of k + 1 and k.
    [[nodiscard]] double ratio(double k) const {
        return (x - k) * (m - k) / ((k + 1) * (n - x - m + k + 1));
    }
};

// E[K ln(u / K)], from the most probable K outwards. Ratios of probabilities fall away from it, so
// that what is left out at either end is below a geometric series.
double meanByWalk(const Draw& draw, double logU) {
    constexpr double least = 0x1p-56;
    const double lowest = std::max(0.0, draw.m - (draw.n - draw.x));
    const double highest = std::min(draw.x, draw.m);
    const double mode =
        std::clamp(std::floor((draw.x + 1) * ((draw.m + 1) / (draw.n + 2))), lowest, highest);
    const auto term = [&](double k) { return k > 0 ? k * (logU - logOfWhole(k)) : 0.0; };
    double weights = 1;
    double sum = term(mode);
    double weight = 1;
    double k = mode;
    while (k < highest) {
        const double ratio = draw.ratio(k);
        if (ratio < 1 && weight * ratio < least * weights * (1 - ratio)) break;
        weight *= ratio;
        weights += weight;
        sum += weight * term(++k);
    }
    weight = 1;
    k = mode;
    while (k > lowest) {
        const double ratio = 1 / draw.ratio(k - 1);
        if (ratio < 1 && weight * ratio < least * weights * (1 - ratio)) break;
        weight *= ratio;
        weights += weight;
        sum += weight * term(--k);
    }
    return sum / weights;
}

// The same for a large mean, by Taylor's series of K ln K about it and the central moments M_j,
// which follow from the ratio of probabilities:
// (n - r) M_(r+1) = -sum over j = 1..r of (-1)^j C(r, j) (v M_(r-j) + (n - x - m + 2 mean)
// M_(r+1-j) + [j >= 2] M_(r+2-j)), v = x m (n - x)(n - m) / n^2.
double meanByMoments(const Draw& draw, double logU) {
    constexpr std::size_t terms = 12;
    const double mean = draw.mean();
    const double spread = mean * ((draw.n - draw.x) / draw.n) * (draw.n - draw.m);
    const double skew = draw.n - draw.x - draw.m + 2 * mean;
    std::array<double, terms + 1> moments{1, 0};
    for (std::size_t r = 1; r < terms; ++r) {
        double sum = 0;
        double choose = 1;  // (-1)^j C(r, j)
        for (std::size_t j = 1; j <= r; ++j) {
            choose *= -static_cast<double>(r - j + 1) / static_cast<double>(j);
            sum += choose * (spread * moments[r - j] + skew * moments[r + 1 - j] +
                             (j >= 2 ? moments[r + 2 - j] : 0));
        }
        moments[r + 1] = -sum / (draw.n - static_cast<double>(r));
    }
    double series = 0;
    double power = 1 / mean;
    for (std::size_t j = 2; j <= terms; ++j) {
        const auto order = static_cast<double>(j);
        series += (j % 2 == 0 ? 1 : -1) * moments[j] / (order * (order - 1)) * power;
        power /= mean;
    }
    return mean * (logU - std::log(mean)) - series;
}

}  // namespace

double expectedEntropy(std::span<const AbundanceClass> classes, double n, double total, double m) {
    constexpr double largeMean = 400;
    const double u = m * (total / n);
    const double logU = std::log(u);
    double entropy = 0;
    for (const AbundanceClass& each : classes) {
        const Draw draw{n, static_cast<double>(each.count), m};
        const bool byMoments = draw.mean() > largeMean;
        entropy += static_cast<double>(each.taxa) *
                   (byMoments ? meanByMoments(draw, logU) : meanByWalk(draw, logU));
    }
    return entropy / u;
}

}  // namespace zorvel
