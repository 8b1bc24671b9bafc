#include "metrics/project_wide.h"

#include <gtest/gtest.h>

#include <cmath>

#include "metrics/sqs.h"
#include "tests/metrics/same_number.h"

namespace zorvel {
namespace {

const CountsMatrix threeCensuses = {{10, 0, 3}, {5, 2, 0}, {1, 1, 1}};

TEST(ProjectWide, ThreeCensuses) {
    SeededRandom random(4);
    const CountsVector pooled = {16, 3, 4};
    const ProjectWideMetrics metrics =
        projectWideMetrics(pooled, threeCensuses, 10, 0.8, random, sharedCalculator());
    EXPECT_EQ(metrics.pooled.individuals, 23);
    EXPECT_EQ(metrics.pooled.richness, 3);
    EXPECT_EQ(formatMetric(metrics.pooled.chaoClassic, 1), "-");  // no entry equal to 2
    EXPECT_EQ(formatMetric(metrics.averages.abundance, 1), "7.7");
    EXPECT_EQ(formatMetric(metrics.averages.richness, 1), "2.3");
    EXPECT_EQ(formatMetric(metrics.averages.chaoClassic, 1), "-");
    // 1 - sum C(23 - n_i, 10) / C(23, 10), worked out with binomial coefficients.
    EXPECT_NEAR(metrics.pooledRarefiedRichness, 3 - (0 + 184756.0 + 92378.0) / 1144066.0, 1e-10);
    // The averages of (10, 0, 3), (5, 2, 0) and (1, 1, 1), by hand.
    const auto entropy = [](double p) { return -p * std::log(p); };
    const double first = entropy(10 / 13.0) + entropy(3 / 13.0);
    const double second = entropy(5 / 7.0) + entropy(2 / 7.0);
    EXPECT_NEAR(metrics.averages.shannonH, (first + second + std::log(3.0)) / 3, 1e-15);
    EXPECT_NEAR(metrics.averages.pielouJ, ((first + second) / std::log(2.0) + 1) / 3, 1e-15);
    EXPECT_NEAR(metrics.averages.simpsonD, (60 / 156.0 + 20 / 42.0 + 1) / 3, 1e-15);
    EXPECT_NEAR(metrics.averages.buzasE, (std::exp(first) / 2 + std::exp(second) / 2 + 1) / 3,
                1e-15);
    EXPECT_DOUBLE_EQ(metrics.averages.fisherAlpha,
                     (fisherAlpha(threeCensuses[0]) + fisherAlpha(threeCensuses[1]) + 0) / 3);
    // Q1 = 0, Q2 = 2, Q3 = 1: Chao2 is the number of names, as is a sample of at least T censuses.
    EXPECT_DOUBLE_EQ(metrics.chaoTwo, 3);
    EXPECT_DOUBLE_EQ(metrics.sampleBasedRarefiedRichness, 3);
    SeededRandom same(4);
    EXPECT_TRUE(sameNumber(*metrics.pooledAlroySQS, *alroySQS(pooled, 100, 0.8, same)));
}

TEST(ProjectWide, TenSpecimensLackOnlySqs) {
    SeededRandom random(1);
    const CountsMatrix matrix = {{3, 0}, {3, 2}, {1, 1}};
    const ProjectWideMetrics metrics =
        projectWideMetrics(CountsVector{7, 3}, matrix, 50, 0.8, random, sharedCalculator());
    EXPECT_FALSE(metrics.pooledAlroySQS.has_value());
    EXPECT_DOUBLE_EQ(metrics.averages.abundance, 10.0 / 3);
    EXPECT_DOUBLE_EQ(metrics.sampleBasedRarefiedRichness, 2);
}

TEST(AverageMetrics, OneValueThatIsNotFiniteSpoilsItsAverageAlone) {
    const AverageMetrics averages = averageMetrics(CountsMatrix{{7, 0}, {5, 2}, {2, 6}});
    EXPECT_TRUE(std::isnan(averages.pielouJ));
    EXPECT_TRUE(std::isnan(averages.chaoClassic));
    EXPECT_DOUBLE_EQ(averages.richness, 5.0 / 3);
    EXPECT_TRUE(std::isfinite(averages.shannonH));
    EXPECT_TRUE(std::isfinite(averages.buzasE));
}

// In doubles each census of one specimen would vanish beside 2^53.
TEST(AverageMetrics, AbundancesAreSummedAsIntegers) {
    constexpr std::int64_t large = std::int64_t{1} << 53;
    EXPECT_EQ(averageMetrics(CountsMatrix{{large}, {1}, {1}, {2}}).abundance,
              (9007199254740992.0 + 4) / 4);
}

TEST(AverageMetrics, NoCensusesGiveNan) {
    const AverageMetrics averages = averageMetrics(CountsMatrix());
    for (const double value :
         {averages.abundance, averages.richness, averages.chaoClassic, averages.shannonH,
          averages.fisherAlpha, averages.pielouJ, averages.simpsonD, averages.buzasE})
        EXPECT_TRUE(std::isnan(value));
}

}  // namespace
}  // namespace zorvel
