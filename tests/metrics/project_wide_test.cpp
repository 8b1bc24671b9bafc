#include "metrics/project_wide.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/console.h"
#include "metrics/sqs.h"
#include "tests/metrics/metric_support.h"
#include "tests/support/counts_of_rows.h"

namespace zorvel {
namespace {

TEST(AverageMetrics, ThreeCensuses) {
    const CountsMatrix matrix = {{10, 0, 3}, {5, 2, 0}, {1, 1, 1}};
    const MetricValues averages = averageMetrics(withoutZeros(matrix));
    // By hand.
    const auto entropy = [](double p) { return -p * std::log(p); };
    const double first = entropy(10 / 13.0) + entropy(3 / 13.0);
    const double second = entropy(5 / 7.0) + entropy(2 / 7.0);
    const std::pair<Metric, double> expected[] = {
        {Metric::individuals, 23 / 3.0},
        {Metric::richness, 7 / 3.0},
        {Metric::shannonH, (first + second + std::log(3.0)) / 3},
        {Metric::fisherAlpha, (fisherAlpha(matrix[0]) + fisherAlpha(matrix[1]) + 0) / 3},
        {Metric::pielouJ, ((first + second) / std::log(2.0) + 1) / 3},
        {Metric::simpsonD, (60 / 156.0 + 20 / 42.0 + 1) / 3},
        {Metric::buzasE, (std::exp(first) / 2 + std::exp(second) / 2 + 1) / 3}};
    for (const auto& [metric, value] : expected)
        EXPECT_NEAR(averages.number(metric), value, 1e-14) << descriptorOf(metric).key;
    EXPECT_FALSE(std::isfinite(averages.number(Metric::chaoClassic)));
}

TEST(AverageMetrics, OneValueThatIsNotFiniteSpoilsItsAverageAlone) {
    const MetricValues averages = averageMetrics(withoutZeros({{7, 0}, {5, 2}, {2, 6}}));
    EXPECT_TRUE(std::isnan(averages.number(Metric::pielouJ)));
    EXPECT_TRUE(std::isnan(averages.number(Metric::chaoClassic)));
    EXPECT_DOUBLE_EQ(averages.number(Metric::richness), 5.0 / 3);
    EXPECT_TRUE(std::isfinite(averages.number(Metric::shannonH)));
    EXPECT_TRUE(std::isfinite(averages.number(Metric::buzasE)));
}

// In doubles each census of one specimen would vanish beside 2^53.
TEST(AverageMetrics, SumsOfIntegersAndOfNothing) {
    constexpr std::int64_t large = std::int64_t{1} << 53;
    const MetricValues averages = averageMetrics(withoutZeros({{large}, {1}, {1}, {2}}));
    EXPECT_EQ(averages.number(Metric::individuals), (9007199254740992.0 + 4) / 4);
    for (const ShownMetric& shown : metricsOf(MetricGroup::averages))
        EXPECT_TRUE(std::isnan(averageMetrics(SparseCounts(3)).number(shown.metric)));
}

TEST(AverageRarefiedRichness, SmallCensusesTakePartWithTheirRichness) {
    // Of (10, 0, 3) two specimens hold 1 + 60/156 taxa; the others hold no more than two.
    const CountsMatrix matrix = {{10, 0, 3}, {1, 0, 0}, {0, 1, 1}};
    EXPECT_NEAR(averageRarefiedRichness(withoutZeros(matrix), 2, sharedCalculator()),
                (4 + 60.0 / 156) / 3, 1e-12);
    EXPECT_TRUE(std::isnan(averageRarefiedRichness(SparseCounts(3), 2, sharedCalculator())));
}

TEST(AverageSqs, IsOverTheCensusesThatHaveOneAndSilent) {
    // Too few specimens, all singletons, a quota beyond reach, and a taxon that every trial throws
    // back, beside one that has an estimate.
    const CountsVector even = {20, 20, 20};
    CountsMatrix rows = {
        {10}, CountsVector(12, 1), CountsVector(11, 1), {6, 1, 1, 1, 1, 1, 1, 1, 1}, {11}, even};
    for (CountsVector& row : rows) row.resize(12);
    const SparseCounts matrix = withoutZeros(rows);
    SeededRandom random(1);
    std::size_t lines = 0;
    setConsoleSink([&lines](std::string_view) { ++lines; });
    const AverageSqs average = averageAlroySQS(matrix, 0.7, random);
    setConsoleSink({});
    EXPECT_EQ(lines, 0U);
    EXPECT_EQ(average.censuses, 1);
    EXPECT_EQ(average.lacking, (SqsAbsenceCounts{0, 1, 2, 1, 0, 0, 1}));
    ASSERT_TRUE(average.estimate.has_value());
    EXPECT_NEAR(*average.estimate, *alroySQS(even, 100'000, 0.7, random), 0.1);
    EXPECT_FALSE(averageAlroySQS(SparseCounts(4), 0.7, random).estimate.has_value());
    EXPECT_FALSE(averageAlroySQS(matrix, 0, random).estimate.has_value());
}

// Near the average of the rows' own estimates, and the same on any number of threads.
TEST(AverageSqs, DoesNotDependOnThreads) {
    SeededRandom random(3);
    CountsMatrix matrix(300, CountsVector(20));
    double sum = 0;
    for (CountsVector& row : matrix) {
        for (std::int64_t& cell : row) cell = static_cast<std::int64_t>(1 + random.below(30));
        sum += *alroySQS(row, 100, 0.7, random);
    }
    const SparseCounts counts = withoutZeros(matrix);
    SeededRandom same(5);
    const AverageSqs alone = averageAlroySQS(counts, 0.7, same, 1);
    EXPECT_EQ(alone.censuses, 300);
    EXPECT_NEAR(*alone.estimate, sum / 300, 0.1);
    for (const unsigned threads : {0U, 2U, 7U}) {
        SeededRandom again(5);
        const AverageSqs shared = averageAlroySQS(counts, 0.7, again, threads);
        EXPECT_EQ(shared.censuses, alone.censuses);
        EXPECT_EQ(shared.estimate, alone.estimate);
    }
}

}  // namespace
}  // namespace zorvel
