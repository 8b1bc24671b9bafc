// The richness of a trial has the distribution of the textbook form, which draws from a pool of
// specimens without replacement. Seeds are fixed, so a pass stays a pass.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "bench/plain_sqs.h"
#include "metrics/sqs_trials.h"

namespace zorvel {
namespace {

constexpr std::int64_t trialCount = 200'000;

AdjustedFrequency frequencyOf(const std::vector<AbundanceClass>& classes) {
    double specimens = 0;
    double taxa = 0;
    double rare = 0;
    for (const AbundanceClass& each : classes) {
        specimens += static_cast<double>(each.count * each.taxa);
        taxa += static_cast<double>(each.taxa);
        if (each.count <= 2) rare += static_cast<double>(each.taxa);
    }
    return {specimens, rare * 0.5 / taxa};
}

// How many trials gave each richness.
template <typename Trials>
std::vector<double> histogram(Trials& trials, std::size_t taxa, std::uint64_t seed) {
    SeededRandom random(seed);
    std::vector<double> hits(taxa + 1);
    for (std::int64_t trial = 0; trial < trialCount; ++trial)
        ++hits.at(static_cast<std::size_t>(trials.next(random)));
    return hits;
}

std::vector<double> histogramOfClasses(const CountsVector& counts, double quota,
                                       std::uint64_t seed) {
    const std::vector<AbundanceClass> classes = abundanceClasses(counts);
    SqsTrials trials(classes, frequencyOf(classes), quota);
    return histogram(trials, counts.size(), seed);
}

std::vector<double> histogramOfPool(const CountsVector& counts, double quota, std::uint64_t seed) {
    plain::SqsTrials trials(counts, quota);
    EXPECT_TRUE(trials.possible());
    trials.buildPool();
    return histogram(trials, counts.size(), seed);
}

// The largest distance between the two distribution functions.
double kolmogorovSmirnov(const std::vector<double>& a, const std::vector<double>& b) {
    double difference = 0;
    double largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        difference += (a[i] - b[i]) / static_cast<double>(trialCount);
        largest = std::max(largest, std::fabs(difference));
    }
    return largest;
}

// At 1%, for two samples of trialCount each.
const double critical = 1.6276 * std::sqrt(2.0 / static_cast<double>(trialCount));

CountsVector ladder(std::int64_t from, std::int64_t to) {
    CountsVector counts;
    for (std::int64_t count = from; count <= to; ++count) counts.push_back(count);
    return counts;
}

CountsVector joined(CountsVector counts, std::size_t taxa, std::int64_t count) {
    counts.insert(counts.end(), taxa, count);
    return counts;
}

TEST(SqsDistribution, EqualsDrawingFromAPool) {
    struct Row {
        std::string what;
        CountsVector counts;
        double quota;
    };
    const Row rows[] = {
        {"eleven specimens", {4, 3, 2, 1, 1}, 0.6},
        {"worked example", {10, 5, 3, 2, 1, 1}, 0.8},
        {"quota at the coverage within reach", {10, 5, 3, 2, 1, 1}, 0.9204545454545454},
        {"a small quota", ladder(1, 20), 0.05},
        {"one taxon that overshoots", {100, 3, 3, 3, 2, 1, 1}, 0.3},
        {"every count its own, near the reach", ladder(3, 16), 0.97},
        {"more counts, nearer the reach", ladder(3, 22), 0.98},
        {"rare taxa beside a dominant, near the reach", joined({80}, 24, 2), 0.9},
        {"singletons, near the reach", joined(ladder(1, 18), 10, 1), 0.96},
        {"even taxa, nearly all to be seen", CountsVector(12, 7), 0.9},
    };
    std::uint64_t seed = 100;
    for (const Row& row : rows) {
        const std::vector<double> classes = histogramOfClasses(row.counts, row.quota, ++seed);
        const std::vector<double> pool = histogramOfPool(row.counts, row.quota, ++seed);
        EXPECT_LT(kolmogorovSmirnov(classes, pool), critical) << row.what;
    }
}

// A single specimen moved to another taxon shows.
TEST(SqsDistribution, ComparisonIsSensitive) {
    const std::vector<double> classes = histogramOfClasses({10, 5, 3, 2, 1, 1}, 0.8, 1);
    EXPECT_GT(kolmogorovSmirnov(classes, histogramOfPool({11, 5, 2, 2, 1, 1}, 0.8, 2)), critical);
    const std::vector<double> longer = histogramOfClasses(ladder(3, 16), 0.9, 3);
    CountsVector moved = ladder(3, 16);
    --moved.front();
    ++moved.back();
    EXPECT_GT(kolmogorovSmirnov(longer, histogramOfPool(moved, 0.9, 4)), critical);
}

// Without singletons and doubletons only the proportions matter, so a pool of a few specimens
// stands for a census of billions.
TEST(SqsDistribution, HugeCountsFollowTheirProportions) {
    const CountsVector small = ladder(3, 14);
    for (const std::int64_t factor : {std::int64_t{1'000'000}, std::int64_t{10'000'000'000}}) {
        CountsVector large = small;
        for (std::int64_t& count : large) count *= factor;
        const std::vector<double> classes = histogramOfClasses(large, 0.8123, 5);
        EXPECT_LT(kolmogorovSmirnov(classes, histogramOfPool(small, 0.8123, 6)), critical);
    }
}

// The probability of each richness by following every order in which the taxa can appear.
struct EveryOrder {
    CountsVector counts;
    double quota = 0;
    AdjustedFrequency frequency;
    std::vector<double> probability;

    void follow(unsigned seen, std::size_t richness, double coverage, double chance) {
        double unseen = 0;
        for (std::size_t k = 0; k < counts.size(); ++k)
            if ((seen >> k & 1U) == 0) unseen += static_cast<double>(counts[k]);
        for (std::size_t k = 0; k < counts.size(); ++k) {
            if ((seen >> k & 1U) != 0) continue;
            const double chosen = chance * static_cast<double>(counts[k]) / unseen;
            const double adjusted = frequency.of(counts[k]);
            const double reached = coverage + adjusted;
            if (reached < quota) {
                follow(seen | 1U << k, richness + 1, reached, chosen);
            } else {
                const double back = reached > quota ? adjusted : 0;
                probability[richness] += chosen * back;
                probability[richness + 1] += chosen * (1 - back);
            }
        }
    }

    // A factor on the counts and on what reduces them leaves all probabilities as they are.
    void expect(std::int64_t factor) const {
        std::vector<AbundanceClass> classes = abundanceClasses(counts);
        for (AbundanceClass& each : classes) each.count *= factor;
        const auto scale = static_cast<double>(factor);
        SqsTrials trials(classes, {frequency.specimens * scale, frequency.reduction * scale},
                         quota);
        const std::vector<double> hits = histogram(trials, counts.size(), 77);
        for (std::size_t r = 0; r < hits.size(); ++r) {
            const double expected = probability[r] * static_cast<double>(trialCount);
            const double deviation = std::sqrt(expected * (1 - probability[r]));
            // Some eight cells a row: 3.5 standard deviations are about 1% a row.
            EXPECT_NEAR(hits[r], expected, 3.5 * deviation + 1e-9) << "richness " << r;
        }
    }
};

TEST(SqsDistribution, EqualsExactProbabilities) {
    struct Row {
        CountsVector counts;
        double quota;
    };
    const Row rows[] = {{{10, 5, 3, 2, 1, 1}, 0.8},
                        {{10, 5, 3, 2, 1, 1}, 0.33},
                        {{40, 9, 8, 7, 2, 2, 1}, 0.9},
                        {{1000, 3, 3, 3, 3, 3, 3}, 0.996}};
    for (const Row& row : rows) {
        EveryOrder exact{row.counts, row.quota, frequencyOf(abundanceClasses(row.counts)),
                         std::vector<double>(row.counts.size() + 1)};
        exact.follow(0, 0, 0, 1);
        for (const std::int64_t factor : {std::int64_t{1}, std::int64_t{10'000'000'000}})
            exact.expect(factor);
    }
}
}  // namespace
}  // namespace zorvel
