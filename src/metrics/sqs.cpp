#include "metrics/sqs.h"

#include <array>
#include <cmath>

#include "base/console.h"
#include "base/numbers.h"
#include "metrics/abundance.h"
#include "metrics/sqs_trials.h"

namespace zorvel {
namespace {

AdjustedFrequency adjustedFrequency(const AbundanceTally& tally) {
    const std::int64_t rare = tally.taxaWith(1) + tally.taxaWith(2);
    return {static_cast<double>(tally.present()),
            static_cast<double>(rare) * 0.5 / static_cast<double>(tally.richness())};
}

// The placeholder of count 0 comes first; the order of the terms decides the last digit.
double sumOfFrequencies(CountsView counts, const AdjustedFrequency& frequency) {
    double sum = frequency.of(0);
    for (const std::int64_t count : counts)
        if (count >= 1) sum += frequency.of(count);
    return sum;
}

// The geometric mean of the trials that saw a taxon, times their share of the trials. Trials that
// agree share a logarithm where richness is small.
double meanOfTrials(SqsTrials& subsamples, std::int64_t trials, RandomSource& random) {
    std::array<std::int64_t, 64> trialsWith{};
    double logarithms = 0;
    std::int64_t positive = 0;
    for (std::int64_t trial = 0; trial < trials; ++trial) {
        const auto seen = static_cast<std::size_t>(subsamples.next(random));
        if (seen < trialsWith.size())
            ++trialsWith[seen];
        else
            logarithms += std::log(static_cast<double>(seen));
        positive += seen > 0 ? 1 : 0;
    }
    for (std::size_t seen = 2; seen < trialsWith.size(); ++seen)
        if (trialsWith[seen] != 0)
            logarithms +=
                static_cast<double>(trialsWith[seen]) * std::log(static_cast<double>(seen));
    const auto counted = static_cast<double>(positive);
    return std::exp(logarithms / counted) * counted / static_cast<double>(trials);
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
            return "WARNING: Quota exceeds sum of frequencies: " +
                   shortestTextWithPoint(frequencySum);
        case SqsAbsence::quotaAboveSpecimens:
            return "WARNING: Quota exceeds number of specimens";
        case SqsAbsence::none:
        case SqsAbsence::fewerThanElevenSpecimens:
        case SqsAbsence::quotaNotPositive:
        case SqsAbsence::noTrialKeptATaxon:
            break;
    }
    return {};
}

void SqsResult::writeWarning() const {
    if (const std::string line = warning(); !line.empty()) writeConsoleLine(line);
}

SqsResult shareholderQuorum(CountsView counts, std::int64_t trials, double quota,
                            RandomSource& random) {
    const AbundanceTally tally(counts);
    if (tally.present() < 11) return absent(SqsAbsence::fewerThanElevenSpecimens);
    if (tally.taxaWith(1) == tally.present())  // Good's u = 1 - f1 / N
        return absent(SqsAbsence::everySpecimenSingleton);
    const AdjustedFrequency frequency = adjustedFrequency(tally);
    const double sum = sumOfFrequencies(counts, frequency);
    if (sum < quota) return absent(SqsAbsence::quotaAboveCoverage, sum);
    if (frequency.specimens < quota) return absent(SqsAbsence::quotaAboveSpecimens, sum);
    SqsTrials subsamples(abundanceClasses(counts), frequency, quota);
    const double estimate = meanOfTrials(subsamples, trials, random);
    if (!std::isnan(estimate)) return {estimate, SqsAbsence::none, sum};
    return {estimate, quota > 0 ? SqsAbsence::noTrialKeptATaxon : SqsAbsence::quotaNotPositive,
            sum};
}

std::optional<double> alroySQS(CountsView counts, std::int64_t trials, double quota,
                               RandomSource& random) {
    const SqsResult result = shareholderQuorum(counts, trials, quota, random);
    result.writeWarning();
    return result.estimate;
}

}  // namespace zorvel
