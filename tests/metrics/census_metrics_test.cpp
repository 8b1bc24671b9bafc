#include "metrics/census_metrics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "bench/plain_census_metrics.h"
#include "metrics/metric_table.h"
#include "metrics/random_source.h"
#include "tests/metrics/metric_support.h"

namespace zorvel {
namespace {

// Those that follow from the counts alone: N, S, Chao1, classic, H, alpha, J, D, E.
using Numbers = std::array<double, 9>;

Numbers numbersOf(CountsView counts) {
    const MetricValues values = censusMetrics(counts);
    Numbers numbers{};
    std::size_t next = 0;
    for (const MetricDescriptor& row : metricTable)
        if (row.compute != nullptr) numbers.at(next++) = values.number(row.metric);
    return numbers;
}

void expectSame(const Numbers& actual, const Numbers& expected, const std::string& what) {
    for (std::size_t i = 0; i < actual.size(); ++i)
        EXPECT_TRUE(sameNumber(actual[i], expected[i]))
            << what << ", number " << i << ": " << actual[i] << ", not " << expected[i];
}

TEST(CensusMetrics, DegenerateCensuses) {
    const Numbers nothing{0, 0, 0, nan, 0, 0, 0, -0.0, infinity};
    const struct {
        const char* what;
        CountsVector counts;
        Numbers expected;
    } rows[] = {
        {"empty", {}, nothing},
        {"zeros", CountsVector(300, 0), nothing},
        {"one specimen", {1}, {1, 1, 1, infinity, 0, 0, nan, nan, 1}},
        {"one specimen among zeros", {0, 1, 0}, {1, 1, 1, infinity, 0, 0, nan, nan, 1}},
        {"one doubleton", {2}, {2, 1, 1, 1, 0, 0, nan, 0, 1}},
        {"one taxon", {7}, {7, 1, 1, nan, 0, plain::fisherAlpha(CountsVector{7}), nan, 0, 1}},
        {"two taxa below five", {4, 4}, {8, 2, 2, nan, std::log(2.0), 0, 1, 0.5 * (8.0 / 7), 1}},
        {"only negative", {-3}, {-3, 0, 0, nan, 0, 0, 0, 0, infinity}},
        {"N of 1 from a negative entry", {4, -3}, {1, 1, 1, nan, 0, 0, nan, nan, 1}},
        {"N below S",
         {6, 1, -6},
         {1, 2, 2, infinity, plain::shannonH(CountsVector{6, 1}), 0,
          plain::pielouJ(CountsVector{6, 1}), infinity, plain::buzasE(CountsVector{6, 1})}},
        {"huge",
         {most},
         {static_cast<double>(most), 1, 1, nan, 0, fisherAlpha(CountsVector{most}), nan, 0, 1}},
    };
    for (const auto& row : rows) expectSame(numbersOf(row.counts), row.expected, row.what);
}

// alpha has no finite value where N = S: the steps would go on for a hundred million rounds.
TEST(CensusMetrics, FisherEndsWhereAlphaIsInfinite) {
    EXPECT_EQ(fisherAlpha(CountsVector{5, -4}), 0);
    EXPECT_EQ(fisherAlpha(CountsVector{100, 1, 1, -99}), 0);
    EXPECT_GT(fisherAlpha(CountsVector{100, 1, 1, -98}), 0);
}

TEST(CensusMetrics, SumsSaturate) {
    const std::pair<CountsVector, std::int64_t> rows[] = {{{most, 1}, most},
                                                          {{most, most, most}, most},
                                                          {{least, -1}, least},
                                                          {{most, 1, least, least}, least},
                                                          {{most, most, least, 2}, most}};
    for (const auto& [counts, sum] : rows) EXPECT_EQ(individuals(counts), sum);
    // N = 2^64 - 2 + 5 saturates to half of it, and the shares are taken of that.
    EXPECT_TRUE(std::isfinite(shannonH(CountsVector{most, most, 5})));
    EXPECT_TRUE(std::isfinite(fisherAlpha(CountsVector{most, most, 5})));
}

TEST(CensusMetrics, PublishedExamples) {
    const CountsVector oakwood = {35, 26, 25, 21, 16, 11, 6, 5, 3, 3, 3, 3, 3, 2, 2, 2, 1, 1, 1, 1};
    const CountsVector spruce = {30, 30, 3, 65, 20, 11, 4, 2, 14, 3, 9, 5, 1, 1};
    CountsVector oldGrowth(84, 1);  // Colwell et al. 2012, table 1b
    oldGrowth.insert(oldGrowth.end(), 10, 2);
    for (const std::int64_t count : {3, 3, 3, 3, 4, 4, 4, 5, 5, 5, 5, 5, 6, 7, 7, 8, 14, 42})
        oldGrowth.push_back(count);
    CountsVector amazon(75, 1);  // the Amazon soil bacteria of mothur's manual
    for (const std::int64_t count : {2, 2, 2, 2, 2, 2, 3, 4, 4}) amazon.push_back(count);
    const CountsVector chaoExample = {1, 1, 4, 2, 5, 2, 4, 1, 2};
    const struct {
        const char* source;
        CountsVector counts;
        double (*metric)(const AbundanceTally&);
        double expected;
        double tolerance;
    } rows[] = {
        {"Magurran 1988, oakwood H", oakwood, shannonH, 2.408, 5e-4},
        {"Magurran 1988, oakwood J", oakwood, pielouJ, 0.8038044, 5e-8},
        {"Magurran 1988, oakwood D", oakwood, simpsonD, 1 - 0.1147233, 5e-8},
        {"Magurran 1988, oakwood E", oakwood, buzasE, 0.5555763, 5e-8},
        {"Magurran 1988, oakwood alpha", oakwood, fisherAlpha, 5.8875351, 2e-5},
        {"Magurran 1988, oakwood Chao1", oakwood, chaoOne, 21.5, 1e-12},
        {"Magurran 1988, oakwood classic", oakwood, chaoClassic, 22 + 2.0 / 3, 1e-12},
        {"Magurran 1988, spruce H", spruce, shannonH, 2.0559909, 5e-8},
        {"Magurran 1988, spruce alpha", spruce, fisherAlpha, 3.4397185, 2e-5},
        {"Magurran 1988, spruce classic", spruce, chaoClassic, 16, 1e-12},
        {"mothur, Amazon Chao1", amazon, chaoOne, 480.428571, 1e-6},
        {"mothur, Amazon H", amazon, shannonH, 4.353294, 1e-6},
        {"mothur, Amazon D", amazon, simpsonD, 1 - 0.004418, 1e-6},
        {"EstimateS, Chao1", chaoExample, chaoOne, 9.75, 1e-12},
        {"EstimateS, classic", chaoExample, chaoClassic, 10.5, 1e-12},
        {"scikit-bio, J", chaoExample, pielouJ, 0.9248549056, 1e-10},
        {"scikit-bio, H", {1, 2, 3, 4}, shannonH, 1.279854226, 1e-9},
        {"scikit-bio, E", {1, 2, 3, 4}, buzasE, 0.8990288667, 1e-10},
        {"scikit-bio, D", {1, 2, 5, 2}, simpsonD, 11.0 / 15, 1e-12},
        {"vegan, alpha of two taxa", {61, 1}, fisherAlpha, 0.3950909, 1e-5},
        {"vegan, alpha of a dominant", {999, 10}, fisherAlpha, 0.2396492, 1e-5},
        {"Colwell et al. 2012, classic", oldGrowth, chaoClassic, 464.8, 1e-10},
        {"Colwell et al. 2012, Chao1", oldGrowth, chaoOne, 428.9090909, 5e-8},
    };
    for (const auto& row : rows)
        EXPECT_NEAR(row.metric(row.counts), row.expected, row.tolerance) << row.source;
}

// Counts spread evenly over the logarithms, with zeros, over lengths on both sides of a block.
CountsVector randomCensus(RandomSource& random) {
    CountsVector counts(1 + random.below(700));
    const double magnitude = static_cast<double>(1 + random.below(20));
    const std::uint64_t absentOf = 1 + random.below(4);
    for (std::int64_t& count : counts) {
        const double uniform = random.bits32() / 4294967296.0;
        count = random.below(absentOf + 1) == 0
                    ? 0
                    : static_cast<std::int64_t>(std::exp(uniform * magnitude));
    }
    return counts;
}

double relativeError(double actual, long double exact) {
    if (exact == 0) return std::fabs(actual);
    return static_cast<double>(std::fabs((actual - exact) / exact));
}

TEST(CensusMetrics, RandomCensusesAgainstTheTextbook) {
    SeededRandom random(2024);
    double worst = 0;
    double worstOfTextbook = 0;
    const auto compare = [&](double actual, double textbook, long double exact) {
        if (!std::isfinite(exact)) {
            EXPECT_TRUE(sameNumber(actual, textbook));
            return;
        }
        worst = std::max(worst, relativeError(actual, exact));
        worstOfTextbook = std::max(worstOfTextbook, relativeError(textbook, exact));
    };
    for (int round = 0; round < 1000; ++round) {
        const CountsVector counts = randomCensus(random);
        Numbers actual = numbersOf(counts);
        const Numbers textbook = plain::censusMetrics(counts);
        compare(actual[4], textbook[4], plain::shannonH<long double>(counts));
        compare(actual[6], textbook[6], plain::pielouJ<long double>(counts));
        compare(actual[7], textbook[7], plain::simpsonD<long double>(counts));
        compare(actual[8], textbook[8], plain::buzasE<long double>(counts));
        // Integers, both Chao estimates and each of Fisher's steps are the textbook's to the bit.
        for (const std::size_t rounded : {4, 6, 7, 8}) actual[rounded] = textbook[rounded];
        expectSame(actual, textbook, "textbook");
    }
    EXPECT_LE(worst, worstOfTextbook);
    EXPECT_LT(worst, 1e-13);
}

TEST(FormatMetric, Texts) {
    const struct {
        double value;
        int digits;
        const char* text;
    } rows[] = {{nan, 1, "-"},
                {infinity, 3, "-"},
                {-infinity, 3, "-"},
                {0.0, 3, "0.0"},
                {-0.0, 1, "0.0"},
                {2.5, 3, "2.500"},
                {2.5, 0, "2"},
                {0.25, 1, "0.2"},
                {0.0004, 3, "0.000"},
                {-0.04, 1, "-0.0"},
                {9.96, 1, "10.0"},
                {1.0005, 3, "1.000"},
                {1e21, 1, "1000000000000000000000.0"}};
    for (const auto& row : rows) EXPECT_EQ(formatMetric(row.value, row.digits), row.text);
}

}  // namespace
}  // namespace zorvel
