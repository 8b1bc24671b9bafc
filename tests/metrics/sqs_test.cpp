#include "metrics/sqs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "base/console.h"
#include "metrics/sqs_trials.h"
#include "tests/metrics/metric_support.h"

namespace zorvel {
namespace {

// How many random bits a trial needs.
class CountingRandom final : public RandomSource {
  public:
    [[nodiscard]] std::size_t words() const { return words_; }

  protected:
    void fill(Buffer& buffer) override {
        for (std::uint32_t& word : buffer) word = source_.bits32();
        words_ += buffer.size() / 2;
    }

  private:
    SeededRandom source_{3};
    std::size_t words_ = 0;
};

TEST(AlroySqs, AbsencesAndTheirWarnings) {
    const std::string singletons =
        "WARNING: Good's U is 0: everything but the dominant is a singleton, and it may be too";
    const std::string coverage = "WARNING: Quota exceeds sum of frequencies: ";
    const CountsVector worked = {10, 5, 3, 2, 1, 1};
    const struct {
        const char* what;
        CountsVector counts;
        double quota;
        bool present;
        std::string warning;
    } rows[] = {
        {"no taxa", {}, 0.8, false, ""},
        {"ten specimens", {5, 3, 2}, 0.8, false, ""},
        {"ten singletons", CountsVector(10, 1), 0.8, false, ""},
        {"absent taxa do not count", {5, 3, 2, 0, -4}, 0.8, false, ""},
        {"eleven specimens", {5, 4, 2}, 0.5, true, ""},
        {"eleven singletons", CountsVector(11, 1), 0.8, false, singletons},
        {"singletons at quota 0", CountsVector(11, 1), 0, false, singletons},
        {"within reach", worked, 0.8, true, ""},
        {"coverage itself", worked, 0.9204545454545454, true, ""},
        {"above coverage", worked, 0.95, false, coverage + "0.9204545454545454"},
        {"far above coverage", worked, infinity, false, coverage + "0.9204545454545454"},
        {"above a whole coverage", {20, 20}, 1.5, false, coverage + "1.0"},
        {"above the specimens", {20, 20}, 41, false, coverage + "1.0"},
    };
    std::string console;
    setConsoleSink([&console](std::string_view line) { console += line; });
    for (const auto& row : rows) {
        console.clear();
        SeededRandom random(1);
        EXPECT_EQ(alroySQS(row.counts, 100, row.quota, random).has_value(), row.present)
            << row.what;
        EXPECT_EQ(console, row.warning) << row.what;
    }
    setConsoleSink({});
    EXPECT_EQ((SqsResult{std::nullopt, SqsAbsence::quotaAboveSpecimens, 1}.warning()),
              "WARNING: Quota exceeds number of specimens");
}

TEST(AlroySqs, PresentButNotANumber) {
    const CountsVector counts = {10, 5, 3, 2, 1, 1};
    for (const auto& [trials, quota] :
         {std::pair(100, 0.0), {100, -0.5}, {100, -infinity}, {100, nan}, {0, 0.8}, {-3, 0.8}}) {
        SeededRandom random(1);
        const SqsResult result = shareholderQuorum(counts, trials, quota, random);
        ASSERT_TRUE(result.estimate.has_value());
        EXPECT_TRUE(std::isnan(*result.estimate)) << trials << " trials, quota " << quota;
        EXPECT_EQ(result.absence,
                  quota > 0 ? SqsAbsence::noTrialKeptATaxon : SqsAbsence::quotaNotPositive);
    }
}

// Four taxa of frequency 1/4: the quota is met by the second exactly, and nothing is thrown back.
TEST(AlroySqs, QuotaMetExactlyKeepsTheLastTaxon) {
    SeededRandom random(1);
    EXPECT_NEAR(*alroySQS(CountsVector(4, 4), 100, 0.5, random), 2, 1e-14);
    // Half of two hundred taxa: more than a machine word has bits.
    EXPECT_NEAR(*alroySQS(CountsVector(200, 4), 100, 0.5, random), 100, 1e-12);
}

// One taxon holds all: it is thrown back at random with its frequency, here nearly always, and the
// few trials that keep it are scaled by their share.
TEST(AlroySqs, TrialsWithoutTaxaLowerTheEstimate) {
    const CountsVector counts = {199, 1};  // frequencies (199 - 0.25) / 200 and 0.75 / 200
    SeededRandom random(5);
    const double estimate = *alroySQS(counts, 20'000, 0.5, random);
    EXPECT_GT(estimate, 0);
    EXPECT_LT(estimate, 0.03);
}

// At the largest quota within reach, rounding can keep the sum just below it.
TEST(AlroySqs, EndsWhereRoundingKeepsTheQuotaOutOfReach) {
    SeededRandom random(9);
    int outOfReach = 0;
    for (int round = 0; round < 300; ++round) {
        CountsVector counts(3 + random.below(30));
        for (std::int64_t& count : counts) count = 3 + static_cast<std::int64_t>(random.below(90));
        const double quota = shareholderQuorum(counts, 0, 2, random).frequencySum;
        std::vector<AbundanceClass> classes = abundanceClasses(counts);
        double specimens = 0;
        for (const AbundanceClass& each : classes)
            specimens += static_cast<double>(each.count * each.taxa);
        double ascending = 0;
        for (const AbundanceClass& each : classes)
            for (std::int64_t i = 0; i < each.taxa; ++i)
                ascending += static_cast<double>(each.count) / specimens;
        outOfReach += ascending < quota ? 1 : 0;
        SqsTrials trials(classes, {specimens, 0}, quota);
        const auto taxa = static_cast<std::int64_t>(counts.size());
        for (int trial = 0; trial < 50; ++trial) {
            const std::int64_t seen = trials.next(random);
            EXPECT_TRUE(seen == taxa || seen == taxa - 1) << seen << " of " << taxa;
        }
    }
    EXPECT_GT(outOfReach, 0);
}

// Drawing with replacement alone would wait a billion draws for each of the last taxa.
TEST(AlroySqs, RareTaxaBesideAGiantTakeFewDraws) {
    CountsVector counts(200, 3);
    counts.push_back(1'000'000'000'000);
    const double specimens = 1e12 + 600;
    SqsTrials trials(abundanceClasses(counts), {specimens, 0}, 1 - 30 / specimens);
    CountingRandom random;
    std::int64_t fewest = 201;
    for (int trial = 0; trial < 100; ++trial) fewest = std::min(fewest, trials.next(random));
    EXPECT_GE(fewest, 190);
    EXPECT_LT(random.words(), 100U * 2 * 1000);
}

TEST(AlroySqs, SpecimensBeyondSixtyFourBits) {
    for (const CountsVector& counts :
         {CountsVector{most, most, most, 5, 1}, CountsVector(1000, most), CountsVector{most, 1}}) {
        SeededRandom random(1);
        const SqsResult result = shareholderQuorum(counts, 100, 0.8, random);
        ASSERT_TRUE(result.estimate.has_value());
        EXPECT_TRUE(std::isnan(*result.estimate) || *result.estimate > 0);
    }
}

// --- The distribution of the richness of a trial. Seeds are fixed, so a pass stays a pass.

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
        SeededRandom random(77);
        std::vector<double> hits(counts.size() + 1);  // how many trials gave each richness
        for (std::int64_t trial = 0; trial < trialCount; ++trial)
            ++hits.at(static_cast<std::size_t>(trials.next(random)));
        for (std::size_t r = 0; r < hits.size(); ++r) {
            const double expected = probability[r] * static_cast<double>(trialCount);
            const double deviation = std::sqrt(expected * (1 - probability[r]));
            // Some eight cells a row: 3.5 standard deviations are about 1% a row.
            EXPECT_NEAR(hits[r], expected, 3.5 * deviation + 1e-9) << "richness " << r;
        }
    }
};

TEST(SqsDistribution, EqualsExactProbabilities) {
    const std::pair<CountsVector, double> rows[] = {{{10, 5, 3, 2, 1, 1}, 0.8},
                                                    {{10, 5, 3, 2, 1, 1}, 0.33},
                                                    {{40, 9, 8, 7, 2, 2, 1}, 0.9},
                                                    {{1000, 3, 3, 3, 3, 3, 3}, 0.996}};
    for (const auto& [counts, quota] : rows) {
        EveryOrder exact{counts, quota, frequencyOf(abundanceClasses(counts)),
                         std::vector<double>(counts.size() + 1)};
        exact.follow(0, 0, 0, 1);
        for (const std::int64_t factor : {std::int64_t{1}, std::int64_t{10'000'000'000}})
            exact.expect(factor);
    }
}

}  // namespace
}  // namespace zorvel
