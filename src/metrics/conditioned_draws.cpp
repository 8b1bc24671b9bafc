// The missing taxa of small subsamples of large censuses, where the sums of two counts spread too
// widely to be listed.
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
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <vector>

#include "metrics/rarefaction_sums.h"

namespace zorvel {
namespace {

using Complex = std::complex<long double>;

// exp(z) - 1 to full relative precision.
Complex expm1(Complex z) {
    const long double half = std::sin(z.imag() / 2);
    return {std::expm1(z.real()) * std::cos(z.imag()) - 2 * half * half,
            std::exp(z.real()) * std::sin(z.imag())};
}

// One angle t.
struct Node {
    Complex logFactor;  // ln f(t)
    Complex weight;     // w(t)
};

Node nodeAt(long double t, std::int64_t total, std::int64_t n) {
    const auto drawn = static_cast<long double>(n);
    const auto size = static_cast<long double>(total);
    const long double p = drawn / size;
    const long double half = std::sin(t / 2);
    const long double logModulus = std::log1p(-4 * p * (1 - p) * half * half) / 2;
    const long double angle = std::atan2(p * std::sin(t), 1 - 2 * p * half * half);
    return {{logModulus, angle}, std::polar(std::exp(size * logModulus), size * angle - drawn * t)};
}

// How many equally spaced angles: the first totals that are mistaken for n lie that far from it,
// and Bernstein's inequality bounds their chance. Odd, so that no angle meets a zero of f.
std::int64_t angles(std::int64_t total, std::int64_t n, long double nats) {
    const auto drawn = static_cast<long double>(n);
    const long double spread = drawn * static_cast<long double>(total - n) / total;
    const long double reach = nats / 3 + std::sqrt(nats * nats / 9 + 2 * nats * spread);
    const std::int64_t exact = total - n + 1;
    return std::min(static_cast<std::int64_t>(reach) + 1, exact) | 1;
}

// f^-c - 1 for increasing c, without a transcendental function after the first.
class PowersLessOne {
  public:
    explicit PowersLessOne(Complex logFactor, std::int64_t largest) {
        powers_.push_back(expm1(-1.0L * logFactor));
        while (largest >>= 1) powers_.push_back(product(powers_.back(), powers_.back()));
    }

    Complex at(std::int64_t c) {
        auto step = static_cast<std::uint64_t>(c - count_);
        count_ = c;
        for (; step != 0; step &= step - 1) {
            value_ = product(value_, powers_[static_cast<std::size_t>(std::countr_zero(step))]);
        }
        return value_;
    }

  private:
    // (1 + a) (1 + b) - 1
    static Complex product(Complex a, Complex b) { return a + b + a * b; }

    std::vector<Complex> powers_;  // entry k: f^-(2^k) - 1
    std::int64_t count_ = 0;
    Complex value_;
};

// A class of taxa, with the means over the angles that it needs.
struct Taxa {
    long double number;
    long double power;       // u^c, the chance of missing it before the condition
    long double first = 0;   // mean of e = f^-c - 1
    long double second = 0;  // mean of e^2
};

std::vector<Taxa> unconditioned(std::span<const AbundanceClass> classes, long double logLeft) {
    std::vector<Taxa> taxa;
    taxa.reserve(classes.size());
    for (const AbundanceClass& each : classes) {
        taxa.push_back({static_cast<long double>(each.taxa),
                        std::exp(static_cast<long double>(each.count) * logLeft)});
    }
    return taxa;
}

}  // namespace

// With e_i = f^-c_i - 1, G = sum of u^c_i e_i and [x] the mean of x weighted by w,
//     q_i = u^c_i (1 + [e_i]), q_ij = u^(c_i + c_j) [(1 + e_i) (1 + e_j)],
// and the variance sum of q_i (1 - q_i) + sum over i /= j of (q_ij - q_i q_j) is
//     sum of (q_i - u^2c_i [(1 + e_i)^2]) + [G^2] - [G]^2,
// in which no large terms are left to cancel.
MissingTaxa conditionedDraws(std::span<const AbundanceClass> classes, std::int64_t total,
                             std::int64_t n, long double nats) {
    if (classes.empty()) return {};
    const long double logLeft =
        std::log1p(-static_cast<long double>(n) / static_cast<long double>(total));
    std::vector<Taxa> taxa = unconditioned(classes, logLeft);
    // An angle weighs most by sums of counts near 0, or near N.
    const bool keepAll = -logLeft * static_cast<long double>(total) < nats;
    const std::int64_t count = angles(total, n, nats);
    long double weights = 0, mean = 0, square = 0;
    for (std::int64_t k = 0; k <= count / 2; ++k) {
        const long double t = 2 * std::numbers::pi_v<long double> * k / count;
        const Node node = nodeAt(t, total, n);
        if (!keepAll && static_cast<long double>(total) * node.logFactor.real() < -nats) break;
        const Complex weight = k == 0 ? node.weight : 2.0L * node.weight;
        PowersLessOne powers(node.logFactor, classes.back().count);
        Complex sum;
        for (std::size_t i = 0; i < taxa.size(); ++i) {
            const Complex e = powers.at(classes[i].count);
            const Complex weighted = weight * e;
            taxa[i].first += weighted.real();
            taxa[i].second += (weighted * e).real();
            sum = sum + (taxa[i].number * taxa[i].power) * e;
        }
        weights += weight.real();
        mean += (weight * sum).real();
        square += (weight * (sum * sum)).real();
    }
    mean /= weights;
    MissingTaxa missing{0, square / weights - mean * mean};
    for (const Taxa& each : taxa) {
        const long double u = each.power;
        const long double first = each.first / weights, second = each.second / weights;
        missing.expected += each.number * u * (1 + first);
        missing.variance += each.number * (u * (1 - u) + u * (1 - 2 * u) * first - u * u * second);
    }
    return missing;
}

}  // namespace zorvel
