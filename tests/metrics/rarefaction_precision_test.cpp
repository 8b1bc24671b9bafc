// Individual-based rarefaction against its definition in quadruple precision.
#include <gtest/gtest.h>
#include <quadmath.h>

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>

#include "metrics/abundance.h"
#include "metrics/census_metrics.h"
#include "metrics/rarefaction_sums.h"
#include "tests/metrics/metric_support.h"

namespace zorvel {
namespace {

__extension__ typedef __float128 Quad;

class QuadRarefaction {
  public:
    QuadRarefaction(CountsView counts, std::int64_t n) : total_(individuals(counts)), n_(n) {
        const std::vector<AbundanceClass> classes = abundanceClasses(counts);
        for (std::size_t i = 0; i < classes.size(); ++i) {
            const Quad taxa = classes[i].taxa, q = missing(classes[i].count);
            estimate_ += taxa * (1 - q);
            if (q < 1e-50) continue;  // as for every pair with such a taxon
            variance_ += taxa * q * (1 - q);
            variance_ += taxa * (taxa - 1) * (missing(2 * classes[i].count) - q * q);
            for (std::size_t j = 0; j < i; ++j) {
                const Quad both = missing(classes[i].count + classes[j].count);
                variance_ += 2 * taxa * classes[j].taxa * (both - q * missing(classes[j].count));
            }
        }
    }
    // Of a value, relative to max(1, true value).
    [[nodiscard]] double estimateError(double value) const { return error(value, estimate_); }
    [[nodiscard]] double varianceError(double value) const { return error(value, variance_); }

  private:
    static double error(double value, Quad truth) {
        return static_cast<double>(fabsq(value - truth) / fmaxq(1, fabsq(truth)));
    }
    // What ln k! is above (k + 1/2) ln k - k + ln(2 pi) / 2.
    static Quad stirlingTail(Quad k) {
        const Quad square = 1 / (k * k);
        Quad sum = 0;
        for (const Quad divisor : {1188, -1680, 1260, -360, 12}) sum = sum * square + 1 / divisor;
        return sum / k;
    }
    // The logarithm of C(N - s, n) / C(N, n) = the product of 1 - b / (N - k) over k < a, a and b
    // being the smaller and the larger of s and n. For totals beyond all log-factorials that hold
    // enough digits their leading terms are taken together, which leaves nothing above a.
    [[nodiscard]] Quad lnMissing(std::int64_t s) const {
        const Quad a = std::min(s, n_), b = std::max(s, n_), total = total_, rest = total - b;
        if (a <= 8) {
            Quad sum = 0;
            for (int k = 0; k < a; ++k) sum += log1pq(-b / (total - k));
            return sum;
        }
        if (rest - a < 4096) {
            return lgammaq(rest + 1) - lgammaq(rest - a + 1) - lgammaq(total + 1) +
                   lgammaq(total - a + 1);
        }
        const Quad half = 0.5;
        return (total + half) * log1pq(-a / total) - (rest + half) * log1pq(-a / rest) +
               a * log1pq(-b / (total - a)) + stirlingTail(rest) - stirlingTail(rest - a) -
               stirlingTail(total) + stirlingTail(total - a);
    }
    Quad missing(std::int64_t s) {
        if (s > total_ - n_) return 0;
        const auto known = known_.find(s);
        if (known != known_.end()) return known->second;
        return known_.emplace(s, expq(lnMissing(s))).first->second;
    }

    std::int64_t total_, n_;
    std::unordered_map<std::int64_t, Quad> known_;
    Quad estimate_ = 0, variance_ = 0;
};

CountsVector joined(CountsVector counts, std::size_t taxa, std::int64_t count) {
    counts.insert(counts.end(), taxa, count);
    return counts;
}

CountsVector ladder(std::int64_t largest) {
    CountsVector counts;
    for (std::int64_t count = 1; count <= largest; ++count) counts.push_back(count);
    return counts;
}

TEST(RarefactionPrecision, HoldsForEverySize) {
    constexpr std::int64_t limit = RarefactionCalculator::kMostIndividuals;
    const std::pair<std::string, CountsVector> communities[] = {
        {"few", {10, 5, 3, 2, 1, 1}},
        {"one rare", {999'999, 1}},
        {"singletons", CountsVector(10'000'000, 1)},
        {"half singletons", joined({5'000'000}, 5'000'000, 1)},
        {"steps of 9", joined(joined(ladder(300), 20'000, 9), 20'000, 18)},
        {"20000 taxa", randomCommunity(5, 20'000, 8.3)},
        {"10^9 and a ladder", joined(ladder(1'000), 1, 1'000'000'000)},
        {"10^15 and singletons", joined({1'000'000'000'000'000}, 1'000'000, 1)},
        {"10^18, few", {6 * limit / 10, 4 * limit / 10 - 7, 3, 2, 1, 1}},
        {"10^18, 2000 alike", CountsVector(2'000, limit / 2'000)},
        {"10^18, wide", randomCommunity(8, 120, 39.5)},
        {"negative ladder", joined(ladder(200), 1, -19'000)},
    };
    for (const auto& [name, counts] : communities) {
        const std::int64_t total = individuals(counts);
        ASSERT_LE(total, limit);
        for (const std::int64_t n :
             {std::int64_t{2}, std::int64_t{50}, std::int64_t{90}, total / 1'000'000'000,
              total / 2000, total / 100, total / 2, total - total / 50, total - 7, total - 1}) {
            if (n < 2 || n >= total) continue;
            SCOPED_TRACE(name + ", n = " + std::to_string(n));
            const QuadRarefaction truth(counts, n);
            const RichnessMoments found = RarefactionSums(counts, n).at(n);
            EXPECT_LE(truth.estimateError(found.estimate), 1e-12);
            EXPECT_LE(truth.varianceError(found.variance), 1e-11);
        }
    }
}

}  // namespace
}  // namespace zorvel
