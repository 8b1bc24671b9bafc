#include "metrics/census_metrics.h"

#include <algorithm>
#include <cmath>

#include "base/numbers.h"
#include "metrics/abundance_tally.h"
#include "metrics/saturating_sum.h"

namespace zorvel {
namespace {

// The terms of the two sums over shares; the sum of the first is -H.
double entropyTerm(double share) {
    return share * std::log(share);
}
double unlikeTerm(double share) {
    return share * (1 - share);
}

struct ShareSums {
    double entropy = 0;
    double unlike = 0;
};

double shannonOf(double entropySum) {
    return 0.0 - entropySum;  // a sum of 0 gives 0, where a change of sign would give -0
}

double shannonOf(const AbundanceTally& tally) {
    double sum = 0;
    tally.forEachShare([&sum](double share, double taxa) { sum += taxa * entropyTerm(share); });
    return shannonOf(sum);
}

double pielouOf(double shannon, const AbundanceTally& tally) {
    // 0 / -infinity is -0 without taxa; adding 0 leaves all else as it is.
    return shannon / std::log(static_cast<double>(tally.richness())) + 0.0;
}

double buzasOf(double shannon, const AbundanceTally& tally) {
    return std::exp(shannon) / static_cast<double>(tally.richness());
}

double simpsonOf(double unlikeSum, const AbundanceTally& tally) {
    const auto specimens = static_cast<double>(tally.individuals());
    return unlikeSum * (specimens / (specimens - 1));
}

double chaoOneOf(const AbundanceTally& tally) {
    const auto f1 = static_cast<double>(tally.taxaWith(1));
    const auto f2 = static_cast<double>(tally.taxaWith(2));
    return static_cast<double>(tally.richness()) + f1 * (f1 - 1) / (2 * (f2 + 1));
}

double chaoClassicOf(const AbundanceTally& tally) {
    const auto f1 = static_cast<double>(tally.taxaWith(1));
    const auto f2 = static_cast<double>(tally.taxaWith(2));
    return static_cast<double>(tally.richness()) + f1 * f1 / (2 * f2);
}

bool largestBelowFive(const AbundanceTally& tally) {
    return tally.taxaWith(1) + tally.taxaWith(2) + tally.taxaWith(3) + tally.taxaWith(4) ==
           tally.richness();
}

// Each step is monotonic in alpha in floating point too, so the steps cannot cycle and the loop
// ends. With as many individuals as taxa (possible only beside negative entries) alpha has no
// finite value.
double fisherOf(const AbundanceTally& tally) {
    const std::int64_t individuals = tally.individuals();
    if (largestBelowFive(tally) || individuals <= tally.richness()) return 0;
    const auto specimens = static_cast<double>(individuals);
    const auto taxa = static_cast<double>(tally.richness());
    double alpha = 1;
    double change = 0;
    do {
        const double next = taxa / std::log(specimens / alpha + 1);
        change = std::fabs(next - alpha);
        alpha = next;
    } while (change > 1e-5);
    return alpha;
}

}  // namespace

std::int64_t individuals(CountsView counts) {
    SaturatingSum sum;
    for (const std::int64_t count : counts) sum.add(count);
    return sum.value();
}

std::int64_t richness(CountsView counts) {
    return std::count_if(counts.begin(), counts.end(),
                         [](std::int64_t count) { return count >= 1; });
}

std::vector<double> proportions(CountsView counts) {
    const AbundanceTally tally(counts);
    const auto total = static_cast<double>(tally.present());
    std::vector<double> shares;
    shares.reserve(static_cast<std::size_t>(tally.richness()));
    for (const std::int64_t count : counts)
        if (count >= 1) shares.push_back(static_cast<double>(count) / total);
    return shares;
}

double shannonH(CountsView counts) {
    return shannonOf(AbundanceTally(counts));
}

double fisherAlpha(CountsView counts) {
    return fisherOf(AbundanceTally(counts));
}

double pielouJ(CountsView counts) {
    const AbundanceTally tally(counts);
    return pielouOf(shannonOf(tally), tally);
}

double simpsonD(CountsView counts) {
    const AbundanceTally tally(counts);
    double sum = 0;
    tally.forEachShare([&sum](double share, double taxa) { sum += taxa * unlikeTerm(share); });
    return simpsonOf(sum, tally);
}

double buzasE(CountsView counts) {
    const AbundanceTally tally(counts);
    return buzasOf(shannonOf(tally), tally);
}

double chaoOne(CountsView counts) {
    return chaoOneOf(AbundanceTally(counts));
}

double chaoClassic(CountsView counts) {
    return chaoClassicOf(AbundanceTally(counts));
}

CensusMetrics censusMetrics(CountsView counts) {
    const AbundanceTally tally(counts);
    ShareSums sums;
    tally.forEachShare([&sums](double share, double taxa) {
        sums.entropy += taxa * entropyTerm(share);
        sums.unlike += taxa * unlikeTerm(share);
    });
    CensusMetrics metrics;
    metrics.individuals = tally.individuals();
    metrics.richness = tally.richness();
    metrics.chaoOne = chaoOneOf(tally);
    metrics.chaoClassic = chaoClassicOf(tally);
    metrics.shannonH = shannonOf(sums.entropy);
    metrics.fisherAlpha = fisherOf(tally);
    metrics.pielouJ = pielouOf(metrics.shannonH, tally);
    metrics.simpsonD = simpsonOf(sums.unlike, tally);
    metrics.buzasE = buzasOf(metrics.shannonH, tally);
    return metrics;
}

std::string formatMetric(double value, int digits) {
    if (!std::isfinite(value)) return "-";
    if (value == 0) return "0.0";
    return fixedText(value, digits);
}

}  // namespace zorvel
