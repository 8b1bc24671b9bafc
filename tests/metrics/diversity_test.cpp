#include "metrics/diversity.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <limits>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "bench/plain_diversity.h"
#include "metrics/diversity_limits.h"
#include "metrics/hill_sums.h"

namespace zorvel {
namespace {

constexpr double absent = std::numeric_limits<double>::quiet_NaN();

double numberOf(const std::string& word) {
    return word == "-" ? absent : std::stod(word);
}

// One line of the file of expected values, and the sample that it is about.
struct ExpectedLine {
    std::string text;
    std::string word;
    std::vector<std::string> rest;
    FrequencyCounts sample;
};

std::vector<ExpectedLine> expectedLines() {
    std::ifstream file(ZORVEL_SOURCE_DIR "/tests/data/diversity/expected.txt");
    std::vector<ExpectedLine> lines;
    FrequencyCounts sample;
    for (std::string text; std::getline(file, text);) {
        std::istringstream words(text);
        ExpectedLine line{text, {}, {}, {}};
        words >> line.word;
        for (std::string word; words >> word;) line.rest.push_back(word);
        if (line.word == "sample") {
            CountsVector counts;
            for (std::size_t i = 2; i < line.rest.size(); ++i) {
                counts.push_back(std::stoll(line.rest[i]));
            }
            const std::int64_t censuses = std::stoll(line.rest[1]);
            sample = censuses == 0 ? abundanceFrequencies(counts)
                                   : incidenceFrequencies(counts, censuses);
        }
        line.sample = sample;
        if (line.word != "#") lines.push_back(line);
    }
    return lines;
}

double orNone(const std::optional<double>& value) {
    return value.value_or(absent);
}

std::vector<double> valuesOf(const std::optional<DiversityPoint>& point, double first) {
    if (!point) return {absent, absent, absent, absent};
    return {first, point->diversity[0], point->diversity[1], point->diversity[2]};
}

TEST(Diversity, AgreesWithTheFormulasToElevenDigits) {
    const std::vector<ExpectedLine> lines = expectedLines();
    std::size_t compared = 0;
    for (const ExpectedLine& line : lines) {
        if (line.word == "sample" || line.word == "errors") continue;
        const DiversityEstimator estimator(line.sample);
        const double at = numberOf(line.rest[0]);
        std::vector<double> found;
        std::size_t first = 1;
        if (line.word == "coverage") {
            found = {orNone(estimator.coverage())};
            first = 0;
        } else if (line.word == "observed") {
            found = {orNone(estimator.observed(at))};
        } else if (line.word == "estimated") {
            found = {orNone(estimator.estimated(at))};
        } else if (line.word == "size") {
            const std::optional<DiversityPoint> point = estimator.atSize(at);
            found = valuesOf(point, point ? point->coverage : 0);
        } else {
            const std::optional<DiversityPoint> point = estimator.atCoverage(at);
            found = valuesOf(point, point ? point->size : 0);
        }
        for (std::size_t i = 0; i < found.size(); ++i) {
            const double expected = numberOf(line.rest[first + i]);
            ++compared;
            if (std::isnan(expected)) {
                EXPECT_TRUE(std::isnan(found[i])) << line.text;
            } else {
                EXPECT_NEAR(found[i], expected, 1e-11 * std::max(1.0, expected)) << line.text;
            }
        }
    }
    EXPECT_GT(compared, 2700U);
}

TEST(Diversity, OfSamplesWithoutAnEstimateSaysWhy) {
    struct Case {
        const char* name;
        CountsVector counts;
        double q;
        std::optional<DiversityAbsence> estimate;
        std::optional<DiversityAbsence> coverageOfOne;
    };
    using Absence = DiversityAbsence;
    const std::vector<Case> cases{
        {"nothing", {0, -3}, 0, Absence::noTaxa, Absence::noTaxa},
        {"one specimen", {1}, 1, Absence::sizeOne, Absence::sizeOne},
        {"each once", {1, 1, 1}, 2, Absence::allSingletons, Absence::neverReached},
        {"each once, order 1", {1, 1, 1}, 1, std::nullopt, Absence::neverReached},
        {"none once", {2, 2, 7}, 2, std::nullopt, std::nullopt},
        {"one once, none twice", {1, 7}, 0, std::nullopt, std::nullopt},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const DiversityEstimator estimator(abundanceFrequencies(each.counts));
        EXPECT_EQ(estimator.estimateAbsence(each.q), each.estimate);
        EXPECT_EQ(estimator.estimated(each.q).has_value(), !each.estimate);
        EXPECT_EQ(estimator.coverageAbsence(1), each.coverageOfOne);
        EXPECT_EQ(estimator.atCoverage(1).has_value(), !each.coverageOfOne);
    }
    const DiversityEstimator one(abundanceFrequencies(CountsVector{1}));
    EXPECT_EQ(one.atSize(1)->diversity[1], 1);
    EXPECT_FALSE(one.atSize(2));
    EXPECT_FALSE(one.atSize(0.5));
}

// What holds of every sample, on random ones.
TEST(Diversity, KeepsItsIdentities) {
    SeededRandom random(7);
    for (int round = 0; round < 60; ++round) {
        CountsVector counts;
        for (std::uint64_t i = 1 + random.below(25); i > 0; --i) {
            counts.push_back(1 + static_cast<std::int64_t>(random.below(1 + random.below(40))));
        }
        const auto censuses = static_cast<std::int64_t>(40 + random.below(20));
        const bool abundance = round % 2 == 0;
        const DiversityEstimator estimator(abundance ? abundanceFrequencies(counts)
                                                     : incidenceFrequencies(counts, censuses));
        const double n = estimator.sample().size;
        if (n < 3) continue;
        const double perUnit = estimator.sample().total / n;
        std::optional<DiversityPoint> last;
        for (double m = 1; m <= 2 * n; ++m) {
            const DiversityPoint point = *estimator.atSize(m);
            if (m < n) {
                const double gain = estimator.atSize(m + 1)->diversity[0] - point.diversity[0];
                EXPECT_NEAR(1 - point.coverage, gain / perUnit, 1e-12);
            }
            if (m <= n) {
                EXPECT_GE(point.diversity[0], point.diversity[1] - 1e-9);
                EXPECT_GE(point.diversity[1], point.diversity[2] - 1e-9);
            }
            if (last) {
                EXPECT_GE(point.coverage, last->coverage - 1e-12);
                for (std::size_t q = 0; q < kHillOrders; ++q) {
                    EXPECT_GE(point.diversity[q], last->diversity[q] - 1e-9);
                }
            }
            last = point;
        }
        const std::optional<double> twice = estimator.coverageAtTwice();
        if (twice && *twice > *estimator.coverage() && *twice < 1) {
            EXPECT_EQ(estimator.atCoverage(*twice)->size, 2 * n) << "not rounded to beyond";
        }
        std::vector<double> coverages;
        for (double c = 0.05; c < 1; c += 0.09) coverages.push_back(c);
        const auto together = estimator.atCoverages(coverages);
        for (std::size_t i = 0; i < coverages.size(); ++i) {
            const std::optional<DiversityPoint> point = estimator.atCoverage(coverages[i]);
            ASSERT_EQ(point.has_value(), together[i].has_value());
            if (!point) continue;
            EXPECT_EQ(point->size, together[i]->size);
            if (point->belowOne) continue;
            EXPECT_NEAR(estimator.atSize(point->size)->coverage, coverages[i], 1e-12);
        }
    }
}

TEST(Diversity, EqualsThePrintedFormulas) {
    CountsVector withCommon{1, 1, 1, 1, 2, 2, 3, 5, 9, 14, 30, 88, 240, 1400};
    CountsVector withSingletons(60, 1);
    withSingletons.insert(withSingletons.end(), {3, 40, 300});
    for (const CountsVector& counts : {withCommon, withSingletons}) {
        const auto n = std::accumulate(counts.begin(), counts.end(), std::int64_t{0});
        const std::vector<double> logs = plain::logFactorialsUpTo(n);
        const DiversityEstimator estimator(abundanceFrequencies(counts));
        for (std::int64_t m = 1; m < n; m += 1 + m / 8) {
            EXPECT_NEAR(estimator.atSize(static_cast<double>(m))->diversity[1],
                        plain::shannonDiversityOfSubsample(logs, counts, m), 1e-9);
        }
        for (const double q : {0.3, 0.5, 0.97, 1.5, 1.9}) {
            const double printed = plain::estimatedDiversity(counts, q);
            EXPECT_NEAR(*estimator.estimated(q), printed, 1e-9 * printed) << q;
        }
    }
    EXPECT_EQ(DiversityEstimator(abundanceFrequencies(CountsVector{700})).atSize(90)->diversity[1],
              1);
}

// Sums over classes of huge samples take the same values as those of smaller ones of the same
// shares, nearly, and hardly any time.
TEST(Diversity, OfHugeSamplesIsThatOfTheirShares) {
    CountsVector small;
    CountsVector huge;
    for (std::int64_t i = 1; i <= 40; ++i) {
        small.push_back(i * i * 1000);
        huge.push_back(i * i * 10'000'000'000'000);
    }
    const DiversityEstimator one(abundanceFrequencies(small));
    const DiversityEstimator other(abundanceFrequencies(huge));
    for (const double m : {2.0, 40.0, 200.0, 5000.0}) {
        const DiversityPoint a = *one.atSize(m);
        const DiversityPoint b = *other.atSize(m);
        for (std::size_t q = 0; q < kHillOrders; ++q) {
            EXPECT_NEAR(a.diversity[q], b.diversity[q], 1e-3 * b.diversity[q]);
        }
        EXPECT_NEAR(a.coverage, b.coverage, 1e-3);
    }
    EXPECT_NEAR(other.atCoverage(0.9)->size, one.atCoverage(0.9)->size, 0.1);
}

TEST(Diversity, SizesOfACurveAscend) {
    for (const double n : {1.0, 2.0, 7.0, 168.0, 1e6}) {
        const std::vector<double> sizes = standardSizes(n);
        EXPECT_EQ(sizes.front(), 1);
        EXPECT_EQ(sizes.back(), 2 * n);
        EXPECT_NE(std::find(sizes.begin(), sizes.end(), n), sizes.end());
        for (std::size_t i = 1; i < sizes.size(); ++i) EXPECT_LT(sizes[i - 1], sizes[i]);
    }
    EXPECT_EQ(standardSizes(168).size(), 41U);
}

TEST(Binomial, HasItsMeanAndVariance) {
    struct Case {
        std::int64_t trials;
        double chance;
    };
    for (const Case& each : {Case{5, 0.3}, Case{1000, 0.004}, Case{60, 0.5}, Case{400, 0.9},
                             Case{1'000'000'000'000, 1e-3}}) {
        SeededRandom random(11);
        constexpr int draws = 40000;
        const double mean = static_cast<double>(each.trials) * each.chance;
        const double variance = mean * (1 - each.chance);
        double sum = 0;
        double squares = 0;
        for (int i = 0; i < draws; ++i) {
            const std::int64_t value = binomial(random, each.trials, each.chance);
            ASSERT_GE(value, 0);
            ASSERT_LE(value, each.trials);
            const double off = static_cast<double>(value) - mean;
            sum += off;
            squares += off * off;
        }
        EXPECT_NEAR(sum / draws / std::sqrt(variance), 0, 4 / std::sqrt(draws));
        EXPECT_NEAR(squares / draws / variance, 1, 0.04);
    }
    SeededRandom random(1);
    EXPECT_EQ(binomial(random, 9, 0), 0);
    EXPECT_EQ(binomial(random, 9, 1), 9);
}

void expectClose(const std::optional<double>& found, const std::string& expected,
                 const std::string& line) {
    ASSERT_TRUE(found) << line;
    EXPECT_NEAR(*found / numberOf(expected), 1, 0.08) << line;
}

TEST(Bootstrap, GivesTheStandardErrorsOfManyMoreReplicates) {
    for (const ExpectedLine& line : expectedLines()) {
        if (line.word != "errors") continue;
        const double at = numberOf(line.rest[1]);
        BootstrapPlan plan;
        plan.replicates = 2000;
        if (line.rest[0] == "size") plan.sizes = {at};
        if (line.rest[0] == "at") plan.coverages = {at};
        if (line.rest[0] == "estimated") plan.orders = {at};
        const StandardErrors errors = *bootstrapErrors(DiversityEstimator(line.sample), plan);
        if (!plan.orders.empty()) {
            expectClose(errors.estimated[0], line.rest[2], line.text);
            continue;
        }
        const bool bySize = !plan.sizes.empty();
        if (bySize) expectClose(errors.coverages[0], line.rest[2], line.text);
        for (std::size_t q = 0; q < kHillOrders; ++q) {
            expectClose((bySize ? errors.atSizes : errors.atCoverages)[0][q],
                        line.rest[q + (bySize ? 3 : 2)], line.text);
        }
    }
}

// Without random numbers: a statistic that is a sum of phi(count) over the taxa varies, to first
// order, by the sum of the variances of phi, less what the fixed number of specimens takes away.
TEST(Bootstrap, AgreesWithTheVarianceOfSums) {
    const CountsVector counts{46, 22, 17, 15, 15, 9, 8, 6, 6, 4, 2, 2, 2,
                              2,  1,  1,  1,  1,  1, 1, 1, 1, 1, 1, 1, 1};
    const DiversityEstimator estimator(abundanceFrequencies(counts));
    const double n = estimator.sample().size;
    const std::vector<double> logs = plain::logFactorialsUpTo(static_cast<std::int64_t>(n));
    const EstimatedAssemblage assemblage = estimatedAssemblage(estimator);
    const auto deviationOf = [&](const std::function<double(std::int64_t)>& phi) {
        double variance = 0;
        double weighted = 0;
        const auto add = [&](double p, double taxa) {
            double mean = 0;
            double square = 0;
            double covariance = 0;
            for (std::int64_t k = 0; k <= static_cast<std::int64_t>(n); ++k) {
                const auto i = static_cast<std::size_t>(k);
                const double x = static_cast<double>(k);
                const double chance = std::exp(logs.back() - logs[i] - logs[logs.size() - 1 - i] +
                                               x * std::log(p) + (n - x) * std::log1p(-p));
                const double value = k == 0 ? 0 : phi(k);
                mean += chance * value;
                square += chance * value * value;
                covariance += chance * value * (x - n * p);
            }
            const double slope = covariance / (n * p * (1 - p));
            variance += taxa * (square - mean * mean + n * p * p * slope * slope);
            weighted += taxa * p * slope;
        };
        for (const EstimatedAssemblage::Class& each : assemblage.found) {
            add(each.chance, static_cast<double>(each.taxa));
        }
        add(assemblage.unseenChance, assemblage.unseenTaxa);
        return std::sqrt(variance - n * weighted * weighted);
    };
    BootstrapPlan plan;
    plan.sizes = {20, 84};
    plan.replicates = 3000;
    const StandardErrors errors = *bootstrapErrors(estimator, plan);
    for (std::size_t i = 0; i < plan.sizes.size(); ++i) {
        const double m = plan.sizes[i];
        const auto present = [&](std::int64_t k) {
            return 1 - missedSums(std::vector<AbundanceClass>{{k, 1}}, n, m).taxa;
        };
        const auto entropy = [&](std::int64_t k) {
            return expectedEntropy(std::vector<AbundanceClass>{{k, 1}}, n, n, m);
        };
        EXPECT_NEAR(*errors.atSizes[i][0] / deviationOf(present), 1, 0.05);
        EXPECT_NEAR(
            *errors.atSizes[i][1] / deviationOf(entropy) / estimator.atSize(m)->diversity[1], 1,
            0.06);
    }
}

TEST(Bootstrap, DependsOnTheSeedAloneAndCanBeStopped) {
    const DiversityEstimator estimator(
        abundanceFrequencies(CountsVector{30, 12, 7, 3, 2, 2, 1, 1, 1, 1}));
    BootstrapPlan plan;
    plan.sizes = {10, 60, 120};
    plan.coverages = {0.5, 0.9};
    plan.orders = {0, 1, 2};
    const auto with = [&](unsigned threads, std::uint64_t seed) {
        plan.threads = threads;
        plan.seed = seed;
        return *bootstrapErrors(estimator, plan);
    };
    const StandardErrors one = with(1, 1);
    const StandardErrors four = with(4, 1);
    EXPECT_EQ(one.atSizes, four.atSizes);
    EXPECT_EQ(one.coverages, four.coverages);
    EXPECT_EQ(one.atCoverages, four.atCoverages);
    EXPECT_EQ(one.estimated, four.estimated);
    EXPECT_NE(one.atSizes, with(4, 2).atSizes);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_FALSE(bootstrapErrors(estimator, plan, stop.get_token()));
    plan.replicates = 0;
    EXPECT_FALSE(bootstrapErrors(estimator, plan));
    const DiversityEstimator single(abundanceFrequencies(CountsVector{4}));
    plan.replicates = 50;
    EXPECT_EQ(*bootstrapErrors(single, plan)->atSizes[0][0], 0);
}

// Printed by published programs for the same data (spiders, Ellison et al. 2010).
TEST(ChaoEstimate, HasTheStandardErrorAndLimitsThatArePublished) {
    const FrequencyCounts spiders = abundanceFrequencies(CountsVector{
        46, 22, 17, 15, 15, 9, 8, 6, 6, 4, 2, 2, 2, 2, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    const RichnessEstimate found = *chaoEstimate(spiders, ChaoForm::classic, 167.0 / 168);
    EXPECT_NEAR(found.estimate, 43.893, 5e-4);
    EXPECT_NEAR(found.standardError, 14.306, 5e-4);
    EXPECT_NEAR(found.limits.lower95, 30.511, 5e-3);
    EXPECT_NEAR(found.limits.upper95, 96.971, 5e-2);
    EXPECT_LT(found.limits.lower99, found.limits.lower95);
    const FrequencyCounts none = abundanceFrequencies(CountsVector{5, 2, 2});
    EXPECT_FALSE(chaoEstimate(none, ChaoForm::classic, 1));
    const FrequencyCounts noPairs = abundanceFrequencies(CountsVector{5, 1, 1, 1});
    EXPECT_EQ(chaoEstimate(noPairs, ChaoForm::classic, 1)->estimate, 7);
    EXPECT_EQ(chaoEstimate(noPairs, ChaoForm::biasCorrected, 1)->estimate, 7);
    EXPECT_NEAR(chaoEstimate(noPairs, ChaoForm::biasCorrected, 1)->standardError,
                std::sqrt(3 + 75.0 / 4 - 81.0 / 28), 1e-12);
}

}  // namespace
}  // namespace zorvel
