#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "bench/plain_rarefaction.h"
#include "metrics/incidence.h"
#include "metrics/random_source.h"
#include "metrics/rarefaction.h"
#include "tests/metrics/rarefaction_support.h"
#include "tests/support/extreme_values.h"

namespace zorvel {
namespace {

struct Project {
    CountsMatrix matrix;
    std::vector<std::int64_t> frequencyCounts;
    double chaoTwo;
};

std::vector<Project> projects() {
    const CountsVector four = {3, 1, 7, 2};
    return {{{}, {0}, 0},
            {{{}}, {0, 0}, 0},
            {{{4, 0, 1}}, {1, 2}, 0},
            {{{}, {}, {}}, {0, 0, 0, 0}, nan},
            // All censuses share their taxa: 0 / 0.
            {{four, four, four, four, four}, {0, 0, 0, 0, 0, 4}, nan},
            // No taxon twice.
            {{{1, 0, 0}, {0, 7, 0}, {0, 0, 1}}, {0, 3, 0, 0}, infinity},
            // A name without specimens counts as a name: 4 + 2 * 1 * 1 / (2 * 3 * 1).
            {{{1, 0, 5, 0}, {0, 7, 2, 0}, {0, 9, 1, 0}}, {1, 1, 1, 1}, 4 + 2.0 / 6},
            // Negative cells are no presences; a taxon with a negative sum has no frequency.
            {{{-2, 1, 1}, {1, 1, 0}, {0, 0, 0}}, {0, 1, 1, 0}, 3 + 2.0 / 6},
            // Rows of other lengths than the first.
            {{{1, 1}, {1}, {1, 1, 8}}, {0, 0, 1, 1}, 2}};
}

TEST(Incidence, FrequencyCountsAndChaoTwo) {
    for (const Project& project : projects()) {
        SCOPED_TRACE(testing::PrintToString(project.matrix));
        EXPECT_EQ(incidenceFrequencyCounts(project.matrix), project.frequencyCounts);
        const double chao = chaoTwo(project.matrix);
        EXPECT_TRUE(std::isnan(project.chaoTwo) ? std::isnan(chao) : chao == project.chaoTwo)
            << chao;
    }
}

TEST(Incidence, MatrixKeepsCellsBelowTwo) {
    const CountsMatrix incidence = incidenceMatrix({{7, 0, 1, -3}, {2, 1, 0, 0}});
    EXPECT_EQ(incidence, (CountsMatrix{{1, 0, 1, -3}, {1, 1, 0, 0}}));
    EXPECT_EQ(incidenceFrequencies(incidence), (std::vector<std::int64_t>{2, 1, 1, -3}));
}

// A random matrix of 30 names; the last is in no census.
CountsMatrix randomMatrix(std::size_t censuses, std::uint64_t seed) {
    SeededRandom random(seed);
    CountsMatrix matrix(censuses, CountsVector(30, 0));
    for (CountsVector& row : matrix) {
        for (std::size_t j = 0; j + 1 < row.size(); ++j) {
            if (random.below(30) > j) row[j] = 1 + static_cast<std::int64_t>(random.below(9));
        }
    }
    return matrix;
}

TEST(SampleBasedPoint, IsThePlainFormToTheBit) {
    RarefactionCalculator calculator;
    const std::vector<double> lf = plain::logFactorials(100);
    for (const std::size_t censuses : {2, 3, 5, 17, 60}) {
        const CountsMatrix matrix = randomMatrix(censuses, censuses);
        const std::vector<Rarefaction> curve = calculator.sampleBasedCurve(matrix);
        ASSERT_EQ(curve.size(), censuses - 1);
        for (std::size_t t = 0; t <= censuses + 1; ++t) {
            SCOPED_TRACE(std::to_string(censuses) + " " + std::to_string(t));
            const auto size = static_cast<std::int64_t>(t);
            const Rarefaction point = calculator.sampleBasedPoint(matrix, size);
            if (t <= censuses) {
                const plain::Richness expected = plain::sampleBasedPoint(lf, matrix, t);
                const double sd = std::sqrt(expected.variance);
                EXPECT_EQ(bits(point),
                          bits({size, expected.estimate, expected.variance,
                                expected.estimate - 1.96 * sd, expected.estimate + 1.96 * sd,
                                expected.estimate - 2.58 * sd, expected.estimate + 2.58 * sd}));
            } else {
                EXPECT_EQ(point.estimate, calculator.sampleBasedPoint(matrix, size - 1).estimate);
            }
            if (t >= 1 && t < censuses) {
                EXPECT_EQ(bits(point), bits(curve[t - 1]));
            }
        }
    }
}

TEST(SampleBasedPoint, DegenerateProjects) {
    RarefactionCalculator calculator;
    for (const Project& project : projects()) {
        SCOPED_TRACE(testing::PrintToString(project.matrix));
        const auto censuses = static_cast<std::int64_t>(project.matrix.size());
        std::int64_t observed = 0;
        for (std::int64_t k = 1; k <= censuses; ++k) {
            observed += project.frequencyCounts[static_cast<std::size_t>(k)];
        }
        const auto all = static_cast<double>(observed);
        for (const std::int64_t t : {std::max<std::int64_t>(censuses, 1), std::int64_t{50},
                                     std::numeric_limits<std::int64_t>::max()}) {
            const Rarefaction point = calculator.sampleBasedPoint(project.matrix, t);
            const double variance = all - all * all / project.chaoTwo;
            EXPECT_EQ(point.estimate, all);
            EXPECT_TRUE(std::isnan(variance) ? std::isnan(point.variance)
                                             : point.variance == variance);
        }
        EXPECT_TRUE(std::isnan(calculator.sampleBasedPoint(project.matrix, -1).estimate));
        EXPECT_EQ(calculator.sampleBasedCurve(project.matrix).size(),
                  static_cast<std::size_t>(censuses < 2 ? 0 : censuses - 1));
    }
}

TEST(SampleBasedCurve, SharedTaxaAndDisjointTaxa) {
    RarefactionCalculator calculator;
    for (const Rarefaction& point : calculator.sampleBasedCurve(projects()[4].matrix)) {
        EXPECT_EQ(point.estimate, 4);
        EXPECT_TRUE(std::isnan(point.variance) && std::isnan(point.lower95) &&
                    std::isnan(point.upper99));
    }
    const std::vector<Rarefaction> disjoint = calculator.sampleBasedCurve(projects()[5].matrix);
    ASSERT_EQ(disjoint.size(), 2u);
    EXPECT_NEAR(disjoint[0].estimate, 1, 1e-14);
    EXPECT_NEAR(disjoint[0].variance, 1.0 / 3, 1e-14);  // V alone
    EXPECT_LT(disjoint[0].lower95, 0);                  // not raised to 1
}

TEST(SampleBasedPoint, TakesASummaryAndGrowsTheTable) {
    RarefactionCalculator calculator;
    IncidenceSummary summary;
    summary.censuses = 12'000;
    summary.taxonNames = 5;
    summary.frequencyCounts.assign(12'001, 0);
    summary.frequencyCounts[1] = 2;
    summary.frequencyCounts[2] = 1;
    summary.frequencyCounts[6'000] = 1;
    const Rarefaction half = calculator.sampleBasedPoint(summary, 6'000);
    EXPECT_NEAR(half.estimate, 2 * 0.5 + 0.75 + 1, 1e-3);
    EXPECT_EQ(calculator.logfactSize(), 12'001u);
    EXPECT_NEAR(chaoTwo(summary), 7 - 2.0 / 12'000, 1e-12);
    EXPECT_EQ(calculator.sampleBasedCurve(summary).size(), 11'999u);
}

}  // namespace
}  // namespace zorvel
