#include "metrics/sqs.h"

#include <cmath>

#include "base/console.h"
#include "base/numbers.h"
#include "metrics/abundance_tally.h"
#include "metrics/sqs_trials.h"

namespace zorvel {
namespace {

// The adjusted frequency of a taxon with this count.
struct Adjustment {
    explicit Adjustment(const AbundanceTally& tally)
        : specimens(static_cast<double>(tally.present())),
          subtracted(static_cast<double>(tally.taxaWith(1) + tally.taxaWith(2)) * 0.5 /
                     static_cast<double>(tally.richness())) {}
    [[nodiscard]] double frequency(std::int64_t count) const {
        return (static_cast<double>(count) - subtracted) / specimens;
    }
    double specimens;
    double subtracted;  // half the singletons and doubletons, a taxon
};

// The placeholder of count 0 comes first; the order of the terms decides the last digit.
double sumOfFrequencies(CountsView counts, const Adjustment& adjustment) {
    double sum = adjustment.frequency(0);
    for (const std::int64_t count : counts)
        if (count >= 1) sum += adjustment.frequency(count);
    return sum;
}

// The geometric mean of the trials that saw a taxon, times their share of the trials.
double meanOfTrials(SqsTrials& subsamples, std::int64_t trials, RandomSource& random) {
    double logarithms = 0;
    double positive = 0;
    for (std::int64_t trial = 0; trial < trials; ++trial) {
        const std::int64_t seen = subsamples.next(random);
        if (seen <= 0) continue;
        logarithms += std::log(static_cast<double>(seen));
        ++positive;
    }
    return std::exp(logarithms / positive) * positive / static_cast<double>(trials);
}

SqsResult absent(SqsAbsence absence, double frequencySum = 0) {
    return {std::nullopt, absence, frequencySum};
}

}  // namespace

std::string SqsResult::warning() const {
    switch (absence) {
        case SqsAbsence::everySpecimenSingleton:
            return "WARNING: Good's U is 0: everything but the dominant is a singleton, and it may "
                   "be too";
        case SqsAbsence::quotaAboveCoverage:
            return "WARNING: Quota exceeds sum of frequencies: " + shortestText(frequencySum);
        case SqsAbsence::quotaAboveSpecimens:
            return "WARNING: Quota exceeds number of specimens";
        case SqsAbsence::none:
        case SqsAbsence::fewerThanElevenSpecimens:
            break;
    }
    return {};
}

SqsResult shareholderQuorum(CountsView counts, std::int64_t trials, double quota,
                            RandomSource& random) {
    const AbundanceTally tally(counts);
    if (tally.present() < 11) return absent(SqsAbsence::fewerThanElevenSpecimens);
    if (tally.taxaWith(1) == tally.present()) return absent(SqsAbsence::everySpecimenSingleton);
    const Adjustment adjustment(tally);
    const double sum = sumOfFrequencies(counts, adjustment);
    if (sum < quota) return absent(SqsAbsence::quotaAboveCoverage, sum);
    if (adjustment.specimens < quota) return absent(SqsAbsence::quotaAboveSpecimens, sum);

    std::vector<CountClass> classes = countClasses(counts);
    for (CountClass& each : classes) each.frequency = adjustment.frequency(each.count);
    SqsTrials subsamples(classes, quota);
    return {meanOfTrials(subsamples, trials, random), SqsAbsence::none, sum};
}

std::optional<double> alroySQS(CountsView counts, std::int64_t trials, double quota,
                               RandomSource& random) {
    const SqsResult result = shareholderQuorum(counts, trials, quota, random);
    const std::string warning = result.warning();
    if (!warning.empty()) writeConsoleLine(warning);
    return result.estimate;
}

}  // namespace zorvel
