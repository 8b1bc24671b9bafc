#include "metrics/project_wide.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "base/console.h"
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

// --- Counts without zeros beside the full matrix ---

SparseCounts withoutZeros(const CountsMatrix& matrix, std::size_t columns) {
    std::vector<SparseCounts::Column> all(columns);
    std::iota(all.begin(), all.end(), 0U);
    SparseCounts counts(columns);
    for (const CountsVector& row : matrix) counts.addRow(all, row);
    return counts;
}

// Rare and common names, names and censuses without a specimen, and now and then a negative or a
// huge cell.
CountsMatrix randomMatrix(SeededRandom& random) {
    const std::size_t columns = random.below(40);
    const bool odd = random.below(4) == 0;
    CountsMatrix matrix(random.below(9), CountsVector(columns, 0));
    for (CountsVector& row : matrix) {
        if (random.below(5) == 0) continue;
        for (std::size_t j = 0; j < columns; ++j) {
            if (random.below(columns) < j) continue;
            row[j] = static_cast<std::int64_t>(random.below(1 + random.below(90)));
            if (odd && random.below(9) == 0) row[j] = static_cast<std::int64_t>(random.bits64());
        }
    }
    return matrix;
}

void expectSameAverages(const AverageMetrics& a, const AverageMetrics& b) {
    EXPECT_TRUE(sameNumber(a.abundance, b.abundance));
    EXPECT_TRUE(sameNumber(a.richness, b.richness));
    EXPECT_TRUE(sameNumber(a.chaoClassic, b.chaoClassic));
    EXPECT_TRUE(sameNumber(a.shannonH, b.shannonH));
    EXPECT_TRUE(sameNumber(a.fisherAlpha, b.fisherAlpha));
    EXPECT_TRUE(sameNumber(a.pielouJ, b.pielouJ));
    EXPECT_TRUE(sameNumber(a.simpsonD, b.simpsonD));
    EXPECT_TRUE(sameNumber(a.buzasE, b.buzasE));
}

void expectSameEstimates(const AverageSqs& a, const AverageSqs& b) {
    EXPECT_EQ(a.censuses, b.censuses);
    ASSERT_EQ(a.estimate.has_value(), b.estimate.has_value());
    EXPECT_TRUE(!a.estimate || sameNumber(*a.estimate, *b.estimate));
}

TEST(SparseCounts, GiveWhatTheFullMatrixGivesToTheBit) {
    SeededRandom random(9);
    for (int i = 0; i < 400; ++i) {
        const CountsMatrix matrix = randomMatrix(random);
        SCOPED_TRACE(testing::PrintToString(matrix));
        const SparseCounts counts =
            withoutZeros(matrix, matrix.empty() ? 3 : matrix.front().size());
        const IncidenceSummary full = summariseIncidence(matrix);
        const IncidenceSummary sparse = summariseIncidence(counts);
        EXPECT_EQ(sparse.censuses, full.censuses);
        EXPECT_EQ(sparse.taxonNames, full.taxonNames);
        EXPECT_EQ(sparse.frequencyCounts, full.frequencyCounts);
        EXPECT_TRUE(sameNumber(chaoTwo(counts), chaoTwo(matrix)));
        expectSameAverages(averageMetrics(counts), averageMetrics(matrix));
        EXPECT_TRUE(sameNumber(averageRarefiedRichness(counts, 5, sharedCalculator()),
                               averageRarefiedRichness(matrix, 5, sharedCalculator())));
        SeededRandom one(7);
        SeededRandom other(7);
        expectSameEstimates(averageAlroySQS(counts, 0.6, one), averageAlroySQS(matrix, 0.6, other));
        EXPECT_EQ(counts.dense(), matrix);
    }
}

TEST(AverageRarefiedRichness, SmallCensusesTakePartWithTheirRichness) {
    // Of (10, 0, 3) two specimens hold 1 + 60/156 taxa; the others hold no more than two.
    const CountsMatrix matrix = {{10, 0, 3}, {1, 0, 0}, {0, 1, 1}};
    EXPECT_NEAR(averageRarefiedRichness(matrix, 2, sharedCalculator()), (4 + 60.0 / 156) / 3,
                1e-12);
    EXPECT_TRUE(std::isnan(averageRarefiedRichness(SparseCounts(3), 2, sharedCalculator())));
}

TEST(AverageSqs, IsOverTheCensusesThatHaveOneAndSilent) {
    // Too few specimens, all singletons, a quota beyond reach, and a taxon that every trial throws
    // back, beside one that has an estimate.
    const CountsVector even = {20, 20, 20};
    const CountsMatrix matrix = {
        {10}, CountsVector(12, 1), {6, 1, 1, 1, 1, 1, 1, 1, 1}, {11}, even};
    SeededRandom random(1);
    std::size_t lines = 0;
    setConsoleSink([&lines](std::string_view) { ++lines; });
    const AverageSqs average = averageAlroySQS(matrix, 0.7, random);
    setConsoleSink({});
    EXPECT_EQ(lines, 0U);
    EXPECT_EQ(average.censuses, 1);
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
    SeededRandom same(5);
    const AverageSqs alone = averageAlroySQS(matrix, 0.7, same, 1);
    EXPECT_EQ(alone.censuses, 300);
    EXPECT_NEAR(*alone.estimate, sum / 300, 0.1);
    for (const unsigned threads : {0U, 2U, 7U}) {
        SeededRandom again(5);
        expectSameEstimates(averageAlroySQS(matrix, 0.7, again, threads), alone);
    }
}

}  // namespace
}  // namespace zorvel
