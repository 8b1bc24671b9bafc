#include "metrics/census_metrics.h"

#include <cmath>

#include "base/numbers.h"

namespace zorvel {
namespace {

struct Rare {
    double f1;
    double f2;
};
Rare rareTaxa(const AbundanceTally& census) {
    return {static_cast<double>(census.taxaWith(1)), static_cast<double>(census.taxaWith(2))};
}

double taxaOf(const AbundanceTally& census) {
    return static_cast<double>(census.richness());
}

}  // namespace

std::int64_t individuals(const AbundanceTally& census) {
    return census.individuals();
}

std::int64_t richness(const AbundanceTally& census) {
    return census.richness();
}

double shannonH(const AbundanceTally& census) {
    return 0.0 - census.shareSums().entropy;  // a change of sign would make -0 of a sum of 0
}

// Each step is monotonic in alpha in floating point too, so the steps cannot cycle and the loop
// ends. With as many individuals as taxa (possible only beside negative entries) alpha has no
// finite value.
double fisherAlpha(const AbundanceTally& census) {
    if (census.allBelowFive() || census.individuals() <= census.richness()) return 0;
    const auto specimens = static_cast<double>(census.individuals());
    double alpha = 1;
    double change = 0;
    do {
        const double next = taxaOf(census) / std::log(specimens / alpha + 1);
        change = std::fabs(next - alpha);
        alpha = next;
    } while (change > 1e-5);
    return alpha;
}

double pielouJ(const AbundanceTally& census) {
    // 0 / -infinity is -0 without taxa; adding 0 leaves all else as it is.
    return shannonH(census) / std::log(taxaOf(census)) + 0.0;
}

double simpsonD(const AbundanceTally& census) {
    const auto specimens = static_cast<double>(census.individuals());
    return census.shareSums().unlike * (specimens / (specimens - 1));
}

double buzasE(const AbundanceTally& census) {
    return std::exp(shannonH(census)) / taxaOf(census);
}

double chaoOne(const AbundanceTally& census) {
    const auto [f1, f2] = rareTaxa(census);
    return taxaOf(census) + f1 * (f1 - 1) / (2 * (f2 + 1));
}

double chaoClassic(const AbundanceTally& census) {
    const auto [f1, f2] = rareTaxa(census);
    return taxaOf(census) + f1 * f1 / (2 * f2);
}

std::string formatMetric(double value, int digits) {
    if (!std::isfinite(value)) return "-";
    if (value == 0) return "0.0";
    return fixedText(value, digits);
}

}  // namespace zorvel
