#include "metrics/diversity.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "metrics/hill_sums.h"
#include "metrics/special_functions.h"

namespace zorvel {

namespace {

double sumOver(const FrequencyCounts& sample, double (*term)(double)) {
    double sum = 0;
    for (const AbundanceClass& each : sample.classes) {
        sum += static_cast<double>(each.taxa) * term(static_cast<double>(each.count));
    }
    return sum;
}

// size: of a sample of incidences; otherwise it is the sum of the counts.
FrequencyCounts frequencies(std::vector<AbundanceClass> classes,
                            std::optional<std::int64_t> size = {}) {
    const SampleKind kind = size ? SampleKind::incidence : SampleKind::abundance;
    FrequencyCounts sample{kind, std::move(classes)};
    sample.total = sumOver(sample, [](double x) { return x; });
    sample.taxa = sumOver(sample, [](double) { return 1.0; });
    sample.size = size ? static_cast<double>(*size) : sample.total;
    return sample;
}

// x + x (x - 1) ln(1 - 1 / x), which falls from 1 to 1/2.
double entropyOfOneLess(double x) {
    if (x <= 1) return 1;
    if (x < 32) return x + x * (x - 1) * std::log1p(-1 / x);
    double sum = 0;
    double power = 1;
    for (int j = 1; j < 14; ++j) {
        sum += power / (j * (j + 1.0));
        power /= x;
    }
    return sum;
}

double hill(double sumOfPowers, double q) {
    return std::pow(sumOfPowers, 1 / (1 - q));
}

}  // namespace

double FrequencyCounts::taxaWith(std::int64_t count) const {
    for (const AbundanceClass& each : classes) {
        if (each.count >= count) return each.count == count ? static_cast<double>(each.taxa) : 0;
    }
    return 0;
}

FrequencyCounts abundanceFrequencies(CountsView counts) {
    return frequencies(abundanceClasses(counts));
}

FrequencyCounts incidenceFrequencies(CountsView censusesOfTaxon, std::int64_t censuses) {
    return frequencies(abundanceClasses(censusesOfTaxon), censuses);
}

FrequencyCounts incidenceFrequencies(const IncidenceSummary& summary) {
    return frequencies(summary.classes(), summary.censuses);
}

DiversityEstimator::DiversityEstimator(FrequencyCounts sample)
    : sample_(std::move(sample)), once_(sample_.taxaWith(1)), twice_(sample_.taxaWith(2)) {
    const double n = sample_.size;
    if (!hasEstimates()) return;
    const double rest = (n - 1) * (twice_ > 0 ? once_ : once_ - 1);
    if (once_ > 0) stepLack_ = twice_ > 0 ? 2 * twice_ / (rest + 2 * twice_) : 2 / (rest + 2);
    const double factor = (n - 1) / n;
    unseen_ = twice_ > 0 ? factor * once_ * once_ / (2 * twice_) : factor * once_ * (once_ - 1) / 2;
    pairs_ = sumOver(sample_, [](double x) { return x * (x - 1); }) / n / (n - 1);
    shannon_ = *observed(1);
    shannonLimit_ = estimatedEntropyExponential();
    const double fall =
        (sumOver(sample_, entropyOfOneLess) / sample_.total - entropyOfOneLess(n) / n) / (n - 1);
    const double step = -shannon_ * std::expm1(-fall);
    if (shannonLimit_ > shannon_) shannonStep_ = step / (shannonLimit_ - shannon_ + step);
}

std::optional<double> DiversityEstimator::observed(double q) const {
    if (sample_.taxa == 0) return std::nullopt;
    if (q == 0) return sample_.taxa;
    double sum = 0;
    for (const AbundanceClass& each : sample_.classes) {
        const double share = static_cast<double>(each.count) / sample_.total;
        const double term = q == 1 ? -share * std::log(share) : std::pow(share, q);
        sum += static_cast<double>(each.taxa) * term;
    }
    return q == 1 ? std::exp(sum) : hill(sum, q);
}

std::optional<DiversityAbsence> DiversityEstimator::estimateAbsence(double q) const {
    if (sample_.taxa == 0) return DiversityAbsence::noTaxa;
    if (sample_.size < 2) return DiversityAbsence::sizeOne;
    if (q == 2 && pairs_ == 0) return DiversityAbsence::allSingletons;
    return std::nullopt;
}

std::optional<double> DiversityEstimator::estimated(double q) const {
    if (estimateAbsence(q)) return std::nullopt;
    if (q == 0) return sample_.taxa + unseen_;
    if (q == 1) return shannonLimit_;
    if (q == 2) {
        const double share = sample_.total / sample_.size;
        return share * share / pairs_;
    }
    return estimatedOfOrder(q);
}

double DiversityEstimator::estimatedEntropyExponential() const {
    const double n = sample_.size;
    const double last = digamma(n);
    double entropy = once_ / n * entropyTail(n, stepLack_);
    for (const AbundanceClass& each : sample_.classes) {
        const auto x = static_cast<double>(each.count);
        entropy += static_cast<double>(each.taxa) * (x / n) * (last - digamma(x));
    }
    const double units = n / sample_.total;
    return std::exp(units * entropy) / units;
}

// The sum over k < n of C(k - q, k) Delta(k) is, by Vandermonde's identity, that of
// f_x g(x) / g(n), g(x) = Gamma(x + 1) / Gamma(x + 1 - q); what follows from the taxa not found is
// a hypergeometric function.
double DiversityEstimator::estimatedOfOrder(double q) const {
    const double n = sample_.size;
    const double last = logGammaRatio(n, q);
    double sum = 0;
    for (const AbundanceClass& each : sample_.classes) {
        sum += static_cast<double>(each.taxa) *
               std::exp(logGammaRatio(static_cast<double>(each.count), q) - last);
    }
    if (once_ > 0 && stepLack_ < 1) {
        const double odds = (1 - stepLack_) / stepLack_;
        sum += once_ / n * odds * std::exp(-last) / std::tgamma(1 - q) *
               hypergeometricTail(q, n + 1, odds);
    }
    return hill(std::pow(n / sample_.total, q) * sum, q);
}

// Both forms of Chao & Jost (2012): of a subsample, and from the sample on.
double DiversityEstimator::coverageOf(double size) const {
    const double n = sample_.size;
    if (size < n) {
        if (once_ == sample_.taxa) return 0;
        return 1 - n / sample_.total / (n - size) * missedSums(sample_.classes, n, size).counts;
    }
    if (once_ == 0 || stepLack_ == 1) return 1;
    return 1 - once_ / sample_.total * std::exp((size - n + 1) * std::log1p(-stepLack_));
}

double DiversityEstimator::lackingShare() const {
    return once_ / sample_.size * (1 - stepLack_);
}

std::optional<double> DiversityEstimator::coverage() const {
    return hasEstimates() ? std::optional(coverageOf(sample_.size)) : std::nullopt;
}

std::optional<double> DiversityEstimator::coverageAtTwice() const {
    return hasEstimates() ? std::optional(coverageOf(2 * sample_.size)) : std::nullopt;
}

double DiversityEstimator::simpsonAt(double size) const {
    const double units = sample_.size / sample_.total;
    return 1 / (units / size + (1 - 1 / size) * units * units * pairs_);
}

// 1 <= size <= n, whole.
DiversityPoint DiversityEstimator::wholePoint(double size) const {
    const double n = sample_.size;
    if (size >= n) {
        return {n, coverageOf(n), {sample_.taxa, shannon_, *observed(2)}, SampleMethod::observed};
    }
    const MissedSums missed = missedSums(sample_.classes, n, size);
    return {size,
            once_ == sample_.taxa ? 0 : 1 - n / sample_.total / (n - size) * missed.counts,
            {sample_.taxa - missed.taxa,
             std::exp(expectedEntropy(sample_.classes, n, sample_.total, size)), simpsonAt(size)},
            SampleMethod::rarefied};
}

// Richness as in Colwell et al. (2012). Order 1 approaches its limit from the last step at a
// constant rate; Chao et al. (2014) mix the two entropies instead, with nearly the same values.
DiversityPoint DiversityEstimator::extrapolated(double size) const {
    const double n = sample_.size;
    const double more = size - n;
    // 1 - (1 - share)^more.
    const auto approach = [&](double share) {
        return share >= 1 ? 1.0 : -std::expm1(more * std::log1p(-share));
    };
    const double found = unseen_ > 0 ? approach(once_ / (n * unseen_ + once_)) : 0;
    return {size,
            coverageOf(size),
            {sample_.taxa + unseen_ * found,
             shannon_ + std::max(0.0, shannonLimit_ - shannon_) * approach(shannonStep_),
             simpsonAt(size)},
            SampleMethod::extrapolated,
            size > 2 * n};
}

DiversityPoint DiversityEstimator::between(double size) const {
    const double below = std::floor(size);
    DiversityPoint point = wholePoint(below);
    const double share = size - below;
    if (share == 0) return point;
    const DiversityPoint next = wholePoint(below + 1);
    const auto mix = [&](double a, double b) { return a + share * (b - a); };
    point.size = size;
    point.coverage = mix(point.coverage, next.coverage);
    for (std::size_t q = 0; q < kHillOrders; ++q) {
        point.diversity[q] = mix(point.diversity[q], next.diversity[q]);
    }
    return point;
}

std::optional<DiversityPoint> DiversityEstimator::atSize(double size) const {
    if (sample_.taxa == 0 || !(size >= 1) || !std::isfinite(size)) return std::nullopt;
    if (hasEstimates()) return size > sample_.size ? extrapolated(size) : between(size);
    if (size > 1) return std::nullopt;
    // One unit: its taxa are equally common, and nothing is known of the rest.
    DiversityPoint point;
    point.size = 1;
    point.coverage = std::numeric_limits<double>::quiet_NaN();
    point.diversity.fill(sample_.taxa);
    return point;
}

std::optional<DiversityAbsence> DiversityEstimator::coverageAbsence(double coverage) const {
    if (sample_.taxa == 0) return DiversityAbsence::noTaxa;
    if (sample_.size < 2) return DiversityAbsence::sizeOne;
    if (coverage >= 1 && coverageOf(sample_.size) < 1) return DiversityAbsence::neverReached;
    return std::nullopt;
}

std::optional<DiversityPoint> DiversityEstimator::atCoverage(double coverage) const {
    double below = 1;
    return atCoverageFrom(coverage, below);
}

std::vector<std::optional<DiversityPoint>> DiversityEstimator::atCoverages(
    std::span<const double> coverages) const {
    std::vector<std::optional<DiversityPoint>> points;
    double below = 1;
    for (const double coverage : coverages) points.push_back(atCoverageFrom(coverage, below));
    return points;
}

// below: a whole size whose coverage is no larger, as far as one is known; afterwards the largest.
std::optional<DiversityPoint> DiversityEstimator::atCoverageFrom(double coverage,
                                                                 double& below) const {
    if (!(coverage >= 0 && coverage <= 1) || coverageAbsence(coverage)) return std::nullopt;
    const double n = sample_.size;
    const double own = coverageOf(n);
    if (coverage == own) return wholePoint(n);
    if (coverage > own) {
        const double more =
            (std::log(sample_.total / once_) + std::log1p(-coverage)) / std::log1p(-stepLack_) - 1;
        // The coverage of twice the sample is not rounded to beyond that.
        DiversityPoint point = extrapolated(coverage == coverageOf(2 * n) ? 2 * n : n + more);
        point.coverage = coverage;
        return point;
    }
    if (below == 1 && coverageOf(1) > coverage) {
        DiversityPoint point = wholePoint(1);
        point.belowOne = true;
        return point;
    }
    // First outwards in growing steps, then by halves.
    double above = std::min(below + 1, n);
    for (double step = 2; above < n && coverageOf(above) <= coverage; step *= 2) {
        below = above;
        above = std::min(above + step, n);
    }
    while (above - below > 1) {
        const double middle = std::floor(below + (above - below) / 2);
        if (middle == below || middle == above) break;  // beyond whole doubles
        (coverageOf(middle) <= coverage ? below : above) = middle;
    }
    const double lower = coverageOf(below);
    const double upper = coverageOf(above);
    const double share = upper > lower ? (coverage - lower) / (upper - lower) : 0;
    DiversityPoint point = between(below + std::min(share, 1.0));
    point.method = SampleMethod::rarefied;
    point.coverage = coverage;
    return point;
}

std::vector<double> standardSizes(double size) {
    constexpr int steps = 20;
    std::vector<double> sizes{1};
    for (int j = 1; j <= 2 * steps; ++j) {
        const double next = j <= steps ? std::floor(size * j / steps)
                                       : size + std::floor(size * (j - steps) / steps);
        if (next > sizes.back()) sizes.push_back(next);
    }
    return sizes;
}

}  // namespace zorvel
