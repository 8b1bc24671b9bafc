#include "metrics/rarefaction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

#include "base/console.h"
#include "bench/plain_rarefaction.h"
#include "metrics/abundance.h"
#include "metrics/census_metrics.h"
#include "metrics/rarefaction_sums.h"
#include "tests/metrics/metric_support.h"
#include "tests/support/counts_of_rows.h"

namespace zorvel {
namespace {

TEST(IndividualBasedPoint, FixedCases) {
    constexpr std::int64_t limit = RarefactionCalculator::kMostIndividuals;
    const Rarefaction one{1, 1, 0, 1, 1, 1, 1};
    const auto undefined = [](std::int64_t n) {
        return Rarefaction{n, nan, nan, nan, nan, nan, nan};
    };
    const struct {
        CountsVector counts;
        std::int64_t n;
        Rarefaction expected;
    } cases[] = {
        {{}, 1, one},
        {{most, most}, 1, one},
        {{}, 2, {2, 0, 0, 1, 0, 1, 0}},
        {{9}, 4, {4, 1, 0, 1, 1, 1, 1}},
        {{1, 1, 1}, 2, {2, 2, 0, 2, 2, 2, 2}},
        {{5, 4, 0, 1}, 10, {10, 3, 0, 3, 3, 3, 3}},
        {{5, 4, 1}, most, {most, 3, 0, 3, 3, 3, 3}},
        {{5, 4, 3}, 10, {10, 3, 0, 3, 3, 3, 3}},  // each is larger than what is left behind
        {{5, 4, 1}, 0, {0, 0, 0, 1, 0, 1, 0}},
        {{5, 4, 1}, -1, undefined(-1)},
        // Negative entries: more taxa than specimens, or no specimens at all.
        {{5, -7}, 2, {2, 1, 0, 1, 1, 1, 1}},
        {{5, least, -1}, most, {most, 1, 0, 1, 1, 1, 1}},
        {{most, most - 1, 1 - most, -most}, 2, {2, 2, 0, 2, 2, 2, 2}},
        // Totals at the limit, and beyond it.
        {{limit - 1, 1}, limit / 2, {limit / 2, 1.5, 0.25, 1, 2.48, 1, 2.79}},
        {{limit, 1}, limit / 2, undefined(limit / 2)},
        {{limit, 1}, 1, one},
        {{most - 5, 3}, most, undefined(most)},
    };
    RarefactionCalculator calculator;
    for (const auto& each : cases) {
        EXPECT_TRUE(samePoint(calculator.individualBasedPoint(each.counts, each.n), each.expected))
            << testing::PrintToString(each.counts) << " " << each.n;
    }
    // Lower limits are raised to 1; upper ones are not capped at S.
    const Rarefaction narrow = calculator.individualBasedPoint(CountsVector{98, 1, 1}, 50);
    EXPECT_EQ(narrow.lower95, 1.0);
    EXPECT_EQ(narrow.lower99, 1.0);
    EXPECT_EQ(narrow.upper95, narrow.estimate + 1.96 * std::sqrt(narrow.variance));
    EXPECT_EQ(narrow.upper99, narrow.estimate + 2.58 * std::sqrt(narrow.variance));
    EXPECT_GT(narrow.upper99, 3);
}

// Within the rounding of the plain form, which grows with the number of taxa. Of negative entries
// too, where N may be less than the counts of two taxa.
TEST(IndividualBasedPoint, AgreesWithThePlainForm) {
    RarefactionCalculator calculator;
    const std::vector<double> lf = plain::logFactorials(10000);
    std::vector<CountsVector> communities = {
        {9, 8, -7}, {6, 6, -2}, {9000, 8000, 5, 1, 1, -7100}, CountsVector(40, 6)};
    communities.back().push_back(-230);
    const Rarefaction negative = calculator.individualBasedPoint(communities.back(), 2);
    EXPECT_LT(negative.variance, -1);  // the definition's own value, not rounding
    EXPECT_TRUE(std::isnan(negative.lower95) && std::isnan(negative.upper99));
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        communities.push_back(randomCommunity(seed, 5 * seed, 5));
    }
    for (const CountsVector& counts : communities) {
        const std::int64_t total = individuals(counts);
        const auto taxa = static_cast<double>(counts.size());
        for (const std::int64_t n : {std::int64_t{2}, std::int64_t{5}, std::int64_t{50}, total / 9,
                                     total / 2, total - 3, total - 1}) {
            if (n < 2) continue;
            const plain::Richness expected = plain::individualBasedPoint(lf, counts, n);
            const Rarefaction point = calculator.individualBasedPoint(counts, n);
            EXPECT_NEAR(point.estimate, expected.estimate, 2e-11 * taxa) << total << " " << n;
            EXPECT_NEAR(point.variance, expected.variance,
                        2e-9 * std::max(taxa, std::abs(expected.variance)))
                << total << " " << n;
        }
    }
}

// The plain form is negative or NaN at many of these.
TEST(IndividualBasedCurve, RoundingNeverMakesTheVarianceNegative) {
    CountsVector half(50'000, 1);
    half.push_back(50'000);
    RarefactionCalculator calculator;
    for (const CountsVector& counts :
         {CountsVector(100'000, 1), CountsVector(2'000, 5), half, randomCommunity(3, 20'000, 8)}) {
        for (const Rarefaction& point : calculator.individualBasedCurve(counts)) {
            EXPECT_GE(point.variance, 0) << point.sampleSize;
            EXPECT_LE(point.estimate, static_cast<double>(counts.size())) << point.sampleSize;
        }
    }
}

TEST(RarefactionSums, BothWaysOfSummingAgree) {
    const CountsVector counts = randomCommunity(1, 300, 6);
    const std::vector<AbundanceClass> classes = abundanceClasses(counts);
    const std::int64_t total = individuals(counts);
    const PairSums pairs(classes, total, 2 * classes.back().count);
    for (const std::int64_t n : {std::int64_t{2}, std::int64_t{60}, total / 100, total / 2}) {
        std::vector<AbundanceClass> possible = classes;
        while (possible.back().count > total - n) possible.pop_back();
        const MissingTaxa listed = pairs.at(n, 2 * classes.back().count);
        const MissingTaxa conditioned = conditionedDraws(possible, total, n, 60);
        EXPECT_NEAR(static_cast<double>(listed.expected - conditioned.expected), 0, 1e-14) << n;
        EXPECT_NEAR(static_cast<double>(listed.variance - conditioned.variance), 0, 1e-12) << n;
    }
}

// A curve shares the pairs that its smallest sample needs; a point counts its own.
TEST(IndividualBasedCurve, SampleSizesAndPoints) {
    const struct {
        std::int64_t total;
        std::size_t points;
        std::vector<std::int64_t> first, last;
    } cases[] = {{-3, 0, {}, {}},
                 {0, 0, {}, {}},
                 {1, 1, {1}, {1}},
                 {199, 199, {1, 2, 3}, {198, 199}},
                 {200, 101, {1, 2, 4}, {198, 200}},
                 {299, 151, {1, 2, 4}, {298, 299}},
                 {1003, 102, {1, 10, 20}, {1000, 1003}}};
    RarefactionCalculator calculator;
    for (const auto& each : cases) {
        SCOPED_TRACE(each.total);
        CountsVector counts = randomCommunity(9, each.total > 200 ? 90 : 1, 1);
        counts.push_back(each.total - individuals(counts));
        std::vector<std::int64_t> sizes;
        for (const Rarefaction& point : calculator.individualBasedCurve(counts)) {
            sizes.push_back(point.sampleSize);
            EXPECT_TRUE(
                samePoint(point, calculator.individualBasedPoint(counts, point.sampleSize)));
        }
        ASSERT_EQ(sizes.size(), each.points);
        EXPECT_TRUE(std::equal(each.first.begin(), each.first.end(), sizes.begin()));
        EXPECT_TRUE(std::equal(each.last.rbegin(), each.last.rend(), sizes.rbegin()));
    }
}

// --- As printed in the literature. Standard deviations without a printed value are the cited
// formula's, computed from the same counts.

using Classes = std::map<std::int64_t, std::int64_t>;  // count, or frequency: number of taxa

TEST(PublishedRarefaction, IndividualBased) {
    const Classes benthos = {{365, 1}, {112, 1}, {81, 1}, {61, 1}, {55, 1}, {46, 1},
                             {40, 1},  {38, 1},  {29, 1}, {23, 1}, {21, 1}, {15, 1},
                             {13, 1},  {12, 1},  {10, 1}, {8, 1},  {7, 2},  {6, 2},
                             {5, 3},   {4, 1},   {3, 3},  {2, 6},  {1, 7}};
    const Classes beetles = {{1, 84}, {2, 10}, {3, 4}, {4, 3},  {5, 5},
                             {6, 1},  {7, 2},  {8, 1}, {14, 1}, {42, 1}};
    const Classes bacteria = {{1, 75}, {2, 6}, {3, 1}, {4, 2}};
    const struct {
        const char* source;
        Classes classes;
        std::int64_t n;
        double estimate, tolerance;
        double sd;  // 0: none given
    } examples[] = {
        {"Hurlbert 1971, table 2, community a", {{10, 100}}, 100, 65.3, 0.05, 3.0370005},
        {"Hurlbert 1971, table 2, community c (Sanders 1968)", benthos, 100, 20.4, 0.05, 2.1977738},
        {"Hurlbert 1971, table 2, community e", {{901, 1}, {1, 99}}, 100, 10.9, 0.05, 2.8347744},
        {"Colwell et al. 2012, table 1b", beetles, 20, 15.891665207609165, 1e-9, 1.75848984},
        {"Colwell et al. 2012, table 1b", beetles, 200, 98.63181822376555, 1e-9, 0},
        {"Amazonian soil bacteria, mothur manual", bacteria, 50, 45.62, 0.001, 0},
    };
    RarefactionCalculator calculator;
    for (const auto& each : examples) {
        SCOPED_TRACE(each.source);
        CountsVector counts;
        for (const auto& [count, taxa] : each.classes) {
            counts.insert(counts.end(), static_cast<std::size_t>(taxa), count);
        }
        const Rarefaction point = calculator.individualBasedPoint(counts, each.n);
        EXPECT_NEAR(point.estimate, each.estimate, each.tolerance);
        EXPECT_TRUE(each.sd == 0 || std::abs(std::sqrt(point.variance) - each.sd) < 1e-7);
    }
}

TEST(PublishedRarefaction, SampleBased) {
    const Classes dune = {{1, 5}, {2, 7}, {3, 4}};
    const Classes ciliates = {{1, 107}, {2, 44}, {3, 26}, {4, 14}, {5, 6},  {6, 5}, {7, 4},
                              {8, 3},   {9, 2},  {10, 2}, {11, 1}, {12, 1}, {14, 1}};
    const Classes seeds = {{1, 3},  {2, 2},  {3, 3},  {4, 3},  {5, 1},  {6, 5},
                           {7, 1},  {8, 1},  {9, 3},  {10, 1}, {11, 2}, {13, 1},
                           {17, 1}, {24, 2}, {43, 2}, {47, 1}, {52, 1}, {61, 1}};
    const double seedChao = 34 + 120.0 / 121 * 9 / 4;
    const struct {
        const char* source;
        std::int64_t censuses;
        Classes classes;
        std::int64_t t;
        double estimate, tolerance;
        double sd;  // 0: none given; with this form of Chao2
        double chaoTwo;
    } examples[] = {
        {"Dune meadow, vegan manual", 3, dune, 2, 43.0 / 3, 1e-12, 0, 17.19048},
        {"Soil ciliates, iNEXT manual", 19, ciliates, 1, 27.158, 6e-4, 0, 339.255},
        {"Soil ciliates, iNEXT manual", 19, ciliates, 10, 153.26, 6e-4, 6.888639, 339.255},
        {"Colwell, Mao & Chang 2004", 121, seeds, 10, 17.2908874, 1e-6, 0, seedChao},
        {"Colwell, Mao & Chang 2004", 121, seeds, 60, 31.3058782, 1e-6, 1.584772, seedChao}};
    RarefactionCalculator calculator;
    for (const auto& each : examples) {
        SCOPED_TRACE(each.source);
        IncidenceSummary summary;
        summary.censuses = each.censuses;
        summary.frequencyCounts.assign(static_cast<std::size_t>(each.censuses) + 1, 0);
        for (const auto& [frequency, taxa] : each.classes) {
            summary.frequencyCounts[static_cast<std::size_t>(frequency)] = taxa;
            summary.taxonNames += taxa;
        }
        const Rarefaction point = calculator.sampleBasedPoint(summary, each.t);
        EXPECT_NEAR(point.estimate, each.estimate, each.tolerance);
        EXPECT_NEAR(chaoTwo(summary), each.chaoTwo, 5e-4);
        EXPECT_TRUE(each.sd == 0 || std::abs(std::sqrt(point.variance) - each.sd) < 1e-6);
    }
}

// --- Sample-based rarefaction, incidence and Chao2

TEST(SampleBasedPoint, DegenerateProjects) {
    const CountsVector four = {3, 1, 7, 2};
    const struct {
        CountsMatrix matrix;
        std::vector<std::int64_t> frequencyCounts;
        double chaoTwo;
    } projects[] = {
        {{}, {0}, 0},
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
        {{{-2, 1, 1}, {1, 1, 0}, {0, 0, 0}}, {0, 1, 1, 0}, 3 + 2.0 / 6}};
    RarefactionCalculator calculator;
    for (const auto& project : projects) {
        SCOPED_TRACE(testing::PrintToString(project.matrix));
        const IncidenceSummary summary = summariseIncidence(withoutZeros(project.matrix));
        EXPECT_EQ(summary.frequencyCounts, project.frequencyCounts);
        EXPECT_TRUE(sameNumber(chaoTwo(summary), project.chaoTwo));
        std::int64_t observed = 0;
        for (std::int64_t k = 1; k <= summary.censuses; ++k) observed += summary.taxaIn(k);
        const auto all = static_cast<double>(observed);
        for (const std::int64_t t : {std::max<std::int64_t>(summary.censuses, 1), most}) {
            const Rarefaction point = calculator.sampleBasedPoint(summary, t);
            EXPECT_EQ(point.estimate, all);
            EXPECT_TRUE(sameNumber(point.variance, all - all * all / project.chaoTwo));
        }
        EXPECT_TRUE(std::isnan(calculator.sampleBasedPoint(summary, -1).estimate));
        EXPECT_EQ(calculator.sampleBasedCurve(summary).size(),
                  std::max<std::size_t>(project.matrix.size(), 1) - 1);
    }
    // Limits are not raised to 1.
    EXPECT_LT(calculator.sampleBasedCurve(summariseIncidence(withoutZeros(projects[5].matrix)))[0]
                  .lower95,
              0);
}

// Of random matrices of 30 names; the last is in no census.
TEST(SampleBasedPoint, IsThePlainFormToTheBit) {
    RarefactionCalculator calculator;
    const std::vector<double> lf = plain::logFactorials(100);
    for (const std::size_t censuses : {2, 3, 5, 17, 60}) {
        SeededRandom random(censuses);
        CountsMatrix matrix(censuses, CountsVector(30, 0));
        for (CountsVector& row : matrix) {
            for (std::size_t j = 0; j + 1 < row.size(); ++j) {
                if (random.below(30) > j) row[j] = 1 + static_cast<std::int64_t>(random.below(9));
            }
        }
        const IncidenceSummary summary = summariseIncidence(withoutZeros(matrix));
        const std::vector<Rarefaction> curve = calculator.sampleBasedCurve(summary);
        ASSERT_EQ(curve.size(), censuses - 1);
        for (std::size_t t = 0; t <= censuses; ++t) {
            SCOPED_TRACE(std::to_string(censuses) + " " + std::to_string(t));
            const auto size = static_cast<std::int64_t>(t);
            const Rarefaction point = calculator.sampleBasedPoint(summary, size);
            const plain::Richness expected = plain::sampleBasedPoint(lf, matrix, t);
            const double sd = std::sqrt(expected.variance);
            EXPECT_TRUE(
                samePoint(point, {size, expected.estimate, expected.variance,
                                  expected.estimate - 1.96 * sd, expected.estimate + 1.96 * sd,
                                  expected.estimate - 2.58 * sd, expected.estimate + 2.58 * sd}));
            EXPECT_TRUE(t < 1 || t >= censuses || samePoint(point, curve[t - 1]));
        }
    }
}

TEST(LogFactorials, GrowWithTheCensuses) {
    std::vector<std::string> lines;
    setConsoleSink([&lines](std::string_view line) { lines.emplace_back(line); });
    RarefactionCalculator calculator;
    EXPECT_EQ(calculator.logfactSize(), 10'000);
    IncidenceSummary summary{12'000, 5, std::vector<std::int64_t>(12'001, 0)};
    summary.frequencyCounts[1] = 2;
    summary.frequencyCounts[2] = summary.frequencyCounts[6'000] = 1;
    EXPECT_NEAR(calculator.sampleBasedPoint(summary, 6'000).estimate, 2 * 0.5 + 0.75 + 1, 1e-3);
    EXPECT_EQ(calculator.logfactSize(), 12'001);
    EXPECT_EQ(calculator.sampleBasedCurve(summary).size(), 11'999u);
    EXPECT_EQ(lines, std::vector<std::string>{});
    calculator.extendLogFactorials(12'001);
    setConsoleSink({});
    EXPECT_EQ(lines, (std::vector<std::string>{"WARNING: attempt to decrease size of log factorial "
                                               "array ignored"}));
    summary.censuses = RarefactionCalculator::kMaxLogFactorials;
    EXPECT_TRUE(std::isnan(calculator.sampleBasedPoint(summary, 2).estimate));
}

}  // namespace
}  // namespace zorvel
