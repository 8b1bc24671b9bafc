#include "metrics/rarefaction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "base/console.h"
#include "bench/plain_rarefaction.h"
#include "metrics/abundance_classes.h"
#include "metrics/census_metrics.h"
#include "metrics/conditioned_draws.h"
#include "metrics/int128.h"
#include "metrics/pair_sums.h"
#include "metrics/random_source.h"
#include "tests/metrics/rarefaction_support.h"
#include "tests/support/extreme_values.h"

namespace zorvel {
namespace {

TEST(IndividualBasedPoint, FixedCases) {
    constexpr std::int64_t limit = RarefactionCalculator::kMostIndividuals;
    const Rarefaction one{1, 1, 0, 1, 1, 1, 1};
    const auto undefined = [](std::int64_t n) {
        return Rarefaction{n, nan, nan, nan, nan, nan, nan};
    };
    struct Case {
        CountsVector counts;
        std::int64_t n;
        Rarefaction expected;
    };
    const std::vector<Case> cases = {
        {{}, 1, one},
        {{7}, 1, one},
        {{most, most}, 1, one},
        {{}, 2, {2, 0, 0, 1, 0, 1, 0}},
        {{0, 0}, 50, {50, 0, 0, 1, 0, 1, 0}},
        {{9}, 4, {4, 1, 0, 1, 1, 1, 1}},
        {{9}, 9, {9, 1, 0, 1, 1, 1, 1}},
        {{1, 1, 1}, 2, {2, 2, 0, 2, 2, 2, 2}},
        {{5, 4, 0, 1}, 10, {10, 3, 0, 3, 3, 3, 3}},
        {{5, 4, 0, 1}, 11, {11, 3, 0, 3, 3, 3, 3}},
        {{5, 4, 1}, most, {most, 3, 0, 3, 3, 3, 3}},
        {{5, 4, 3}, 10, {10, 3, 0, 3, 3, 3, 3}},  // each is larger than what is left behind
        {{5, 4, 1}, 0, {0, 0, 0, 1, 0, 1, 0}},
        {{5, 4, 1}, -1, undefined(-1)},
        {{5, 4, 1}, least, undefined(least)},
        // Negative entries: more taxa than specimens, or no specimens at all.
        {{5, -7}, 2, {2, 1, 0, 1, 1, 1, 1}},
        {{5, least, -1}, 2, {2, 1, 0, 1, 1, 1, 1}},
        {{5, least, -1}, most, {most, 1, 0, 1, 1, 1, 1}},
        {{most, most - 1, 1 - most, -most}, 2, {2, 2, 0, 2, 2, 2, 2}},
        // Totals beyond any table, and beyond what is known to be exact.
        {{limit - 1, 1}, limit / 2, {limit / 2, 1.5, 0.25, 1, 2.48, 1, 2.79}},
        {{limit, 1}, limit / 2, undefined(limit / 2)},
        {{limit, 1}, 1, one},
        {{most, 3}, 2, undefined(2)},
        {{most - 5, 3}, most, undefined(most)},
    };
    RarefactionCalculator calculator;
    for (const Case& each : cases) {
        SCOPED_TRACE(testing::PrintToString(each.counts) + " " + std::to_string(each.n));
        EXPECT_EQ(bits(calculator.individualBasedPoint(each.counts, each.n)), bits(each.expected));
    }
    EXPECT_EQ(calculator.logfactSize(), 10000u);
}

TEST(IndividualBasedPoint, LimitsTakeOneSidedFloor) {
    RarefactionCalculator calculator;
    const Rarefaction narrow = calculator.individualBasedPoint(CountsVector{98, 1, 1}, 50);
    const double sd = std::sqrt(narrow.variance);
    ASSERT_GT(sd, 0.6);
    EXPECT_EQ(narrow.lower95, 1.0);
    EXPECT_EQ(narrow.lower99, 1.0);
    EXPECT_EQ(narrow.upper95, narrow.estimate + 1.96 * sd);
    EXPECT_EQ(narrow.upper99, narrow.estimate + 2.58 * sd);  // above S, and not capped
    EXPECT_GT(narrow.upper99, 3);
    const Rarefaction wide = calculator.individualBasedPoint(CountsVector(50, 3), 40);
    EXPECT_EQ(wide.lower95, wide.estimate - 1.96 * std::sqrt(wide.variance));
    EXPECT_EQ(wide.lower99, wide.estimate - 2.58 * std::sqrt(wide.variance));
}

TEST(IndividualBasedPoint, AbsentTaxaChangeNothing) {
    RarefactionCalculator calculator;
    for (const std::int64_t n : {2, 10, 21}) {
        const auto expected =
            bits(calculator.individualBasedPoint(CountsVector{10, 5, 3, 2, 1, 1}, n));
        EXPECT_EQ(
            bits(calculator.individualBasedPoint(CountsVector{0, 0, 1, 5, 0, 1, 3, 10, 2, 0}, n)),
            expected);
    }
}

// The definition in whole numbers, for N up to 30.
class ExactRarefaction {
  public:
    ExactRarefaction(CountsVector counts, std::int64_t n)
        : counts_(std::move(counts)), total_(individuals(counts_)), n_(n) {
        const Int128 all = choose(total_);
        Int128 estimate = 0, variance = 0;
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            const Int128 missing = choose(total_ - counts_[i]);
            estimate += all - missing;
            variance += missing * (all - missing);
            for (std::size_t j = 0; j < i; ++j) {
                const Int128 both = choose(total_ - counts_[i] - counts_[j]);
                variance += 2 * (both * all - missing * choose(total_ - counts_[j]));
            }
        }
        const auto one = static_cast<long double>(all);
        estimate_ = static_cast<double>(static_cast<long double>(estimate) / one);
        variance_ = static_cast<double>(static_cast<long double>(variance) / one / one);
    }
    [[nodiscard]] double estimate() const { return estimate_; }
    [[nodiscard]] double variance() const { return variance_; }

  private:
    [[nodiscard]] Int128 choose(std::int64_t from) const {
        if (from < n_) return 0;
        Int128 value = 1;
        for (std::int64_t k = 1; k <= n_; ++k) value = value * (from - n_ + k) / k;
        return value;
    }

    CountsVector counts_;
    std::int64_t total_, n_;
    double estimate_ = 0, variance_ = 0;
};

TEST(IndividualBasedPoint, EqualsWholeNumbersForSmallCensuses) {
    RarefactionCalculator calculator;
    SeededRandom random(1);
    for (int trial = 0; trial < 300; ++trial) {
        CountsVector counts;
        std::int64_t left = 2 + static_cast<std::int64_t>(random.below(29));
        const std::int64_t total = left;
        while (left > 0) {
            counts.push_back(
                1 + static_cast<std::int64_t>(random.below(static_cast<std::uint64_t>(left))));
            left -= counts.back();
        }
        for (std::int64_t n = 2; n < total; ++n) {
            SCOPED_TRACE(testing::PrintToString(counts) + " " + std::to_string(n));
            const ExactRarefaction exact(counts, n);
            const Rarefaction point = calculator.individualBasedPoint(counts, n);
            EXPECT_DOUBLE_EQ(point.estimate, exact.estimate());
            EXPECT_NEAR(point.variance, exact.variance(), 1e-15 * std::max(1.0, exact.variance()));
            EXPECT_GE(point.variance, 0);
        }
    }
}

// Within the rounding of the plain form, which grows with the number of taxa.
TEST(IndividualBasedPoint, AgreesWithThePlainForm) {
    RarefactionCalculator calculator;
    const std::vector<double> lf = plain::logFactorials(10000);
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        const CountsVector counts = randomCommunity(seed, 5 * seed, 5);
        const std::int64_t total = individuals(counts);
        const auto taxa = static_cast<double>(counts.size());
        for (const std::int64_t n :
             {std::int64_t{2}, std::int64_t{50}, total / 9, total / 2, total - 3, total - 1}) {
            SCOPED_TRACE(std::to_string(seed) + " " + std::to_string(n));
            const plain::Richness expected = plain::individualBasedPoint(lf, counts, n);
            const Rarefaction point = calculator.individualBasedPoint(counts, n);
            EXPECT_NEAR(point.estimate, expected.estimate, 2e-11 * taxa);
            EXPECT_NEAR(point.variance, expected.variance, 2e-9 * taxa);
        }
    }
}

// The plain form is negative or NaN at many of these.
TEST(IndividualBasedPoint, RoundingNeverMakesTheVarianceNegative) {
    CountsVector half(50'000, 1);
    half.push_back(50'000);
    const std::vector<CountsVector> communities = {CountsVector(100'000, 1), CountsVector(2'000, 5),
                                                   CountsVector(20'000, 40), half,
                                                   randomCommunity(3, 20'000, 8)};
    RarefactionCalculator calculator;
    for (const CountsVector& counts : communities) {
        std::vector<Rarefaction> points = calculator.individualBasedCurve(counts);
        const std::int64_t total = points.back().sampleSize;
        for (const std::int64_t n : {std::int64_t{2}, std::int64_t{3}, total - 2, total - 1}) {
            points.push_back(calculator.individualBasedPoint(counts, n));
        }
        for (const Rarefaction& point : points) {
            EXPECT_GE(point.variance, 0) << point.sampleSize;
            EXPECT_LE(point.lower99, point.upper99) << point.sampleSize;
            EXPECT_LE(point.estimate, static_cast<double>(counts.size())) << point.sampleSize;
        }
    }
}

// Where the plain form has a value, but N is less than the counts of two taxa.
TEST(IndividualBasedPoint, NegativeEntriesFollowTheDefinition) {
    RarefactionCalculator calculator;
    CountsVector many(40, 6);
    many.push_back(-230);
    const std::vector<CountsVector> cases = {
        {9, 8, -7}, {6, 6, -2}, {9000, 8000, 5, 1, 1, -7100}, many};
    const std::vector<double> lf = plain::logFactorials(10000);
    for (const CountsVector& counts : cases) {
        for (const std::int64_t n : {2, 3, 4, 5, 9}) {
            SCOPED_TRACE(testing::PrintToString(counts) + " " + std::to_string(n));
            const plain::Richness expected = plain::individualBasedPoint(lf, counts, n);
            const Rarefaction point = calculator.individualBasedPoint(counts, n);
            EXPECT_NEAR(point.estimate, expected.estimate, 1e-10 * expected.estimate);
            EXPECT_NEAR(point.variance, expected.variance,
                        1e-9 * std::max(1.0, std::abs(expected.variance)));
        }
    }
    const Rarefaction negative = calculator.individualBasedPoint(many, 2);
    EXPECT_LT(negative.variance, -1);  // the definition's own value, not rounding
    EXPECT_TRUE(std::isnan(negative.lower95) && std::isnan(negative.upper99));
}

TEST(RarefactionSums, BothWaysOfSummingAgree) {
    for (const std::uint64_t seed : {1, 2, 3}) {
        const CountsVector counts = randomCommunity(seed, 300, 6);
        const std::vector<AbundanceClass> classes = abundanceClasses(counts);
        const std::int64_t total = individuals(counts);
        const PairSums pairs(classes, total, 2 * classes.back().count);
        for (const std::int64_t n : {std::int64_t{2}, std::int64_t{60}, total / 100, total / 2}) {
            SCOPED_TRACE(std::to_string(seed) + " " + std::to_string(n));
            std::vector<AbundanceClass> possible = classes;
            while (possible.back().count > total - n) possible.pop_back();
            const MissingTaxa listed = pairs.at(n, 2 * classes.back().count);
            const MissingTaxa conditioned = conditionedDraws(possible, total, n, 60);
            EXPECT_NEAR(static_cast<double>(listed.expected - conditioned.expected), 0, 1e-14);
            EXPECT_NEAR(static_cast<double>(listed.variance - conditioned.variance), 0, 1e-12);
        }
    }
}

TEST(IndividualBasedCurve, SampleSizes) {
    struct Case {
        std::int64_t total;
        std::size_t points;
        std::vector<std::int64_t> first, last;
    };
    const std::vector<Case> cases = {{-3, 0, {}, {}},
                                     {0, 0, {}, {}},
                                     {1, 1, {1}, {1}},
                                     {150, 150, {1, 2, 3}, {149, 150}},
                                     {199, 199, {1, 2, 3}, {198, 199}},
                                     {200, 101, {1, 2, 4}, {198, 200}},
                                     {250, 126, {1, 2, 4}, {248, 250}},
                                     {299, 151, {1, 2, 4}, {298, 299}},
                                     {1003, 102, {1, 10, 20}, {1000, 1003}}};
    RarefactionCalculator calculator;
    EXPECT_TRUE(calculator.individualBasedCurve({}).empty());
    for (const Case& each : cases) {
        SCOPED_TRACE(each.total);
        const CountsVector counts = {1, each.total - 1};
        const std::vector<Rarefaction> curve = calculator.individualBasedCurve(counts);
        std::vector<std::int64_t> sizes;
        for (const Rarefaction& point : curve) {
            sizes.push_back(point.sampleSize);
            EXPECT_EQ(bits(point), bits(calculator.individualBasedPoint(counts, point.sampleSize)));
        }
        ASSERT_EQ(sizes.size(), each.points);
        EXPECT_TRUE(std::equal(each.first.begin(), each.first.end(), sizes.begin()));
        EXPECT_TRUE(std::equal(each.last.rbegin(), each.last.rend(), sizes.rbegin()));
    }
}

// A curve shares the pairs that its smallest sample needs; a point counts its own.
TEST(IndividualBasedCurve, EqualsItsPointsAndRises) {
    RarefactionCalculator calculator;
    const CountsVector counts = randomCommunity(9, 800, 9);
    const std::vector<Rarefaction> curve = calculator.individualBasedCurve(counts);
    for (std::size_t k = 1; k < curve.size(); ++k) {
        EXPECT_EQ(bits(curve[k]),
                  bits(calculator.individualBasedPoint(counts, curve[k].sampleSize)));
        EXPECT_GT(curve[k].estimate, curve[k - 1].estimate);
    }
}

TEST(LogFactorials, AreRunningSumsAndGrowOnce) {
    std::vector<std::string> lines;
    setConsoleSink([&lines](std::string_view line) { lines.emplace_back(line); });
    RarefactionCalculator calculator;
    const auto sizeAfter = [&calculator](CountsVector counts) {
        calculator.individualBasedPoint(counts, 50);
        return calculator.logfactSize();
    };
    EXPECT_EQ(sizeAfter({9000, 999}), 10000u);
    EXPECT_EQ(sizeAfter({9000, 1000}), 10001u);
    EXPECT_EQ(sizeAfter({12000}), 12001u);
    EXPECT_EQ(sizeAfter({11000}), 12001u);
    EXPECT_EQ(lines, std::vector<std::string>{});
    calculator.extendLogFactorials(12001);
    calculator.extendLogFactorials(-1);
    const std::string warning = "WARNING: attempt to decrease size of log factorial array ignored";
    EXPECT_EQ(lines, (std::vector<std::string>{warning, warning}));
    calculator.extendLogFactorials(13000);
    EXPECT_EQ(lines.size(), 2u);
    EXPECT_EQ(calculator.logfact(), plain::logFactorials(13000));
    calculator.buildLogFactorials(5);
    EXPECT_EQ(calculator.logfact(), plain::logFactorials(5));
    calculator.buildLogFactorials(0);
    EXPECT_EQ(calculator.logfact(), plain::logFactorials(1));
    setConsoleSink({});
}

}  // namespace
}  // namespace zorvel
