#include "metrics/rarefaction_sums.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#include "metrics/census_metrics.h"
#include "metrics/conditioned_draws.h"

namespace zorvel {
namespace {

// Sums of two counts are listed up to here. All points of a curve stay below, since their n is at
// least a hundredth of N.
constexpr std::int64_t kListedSums = 8192;

// What is smaller than exp(-nats) may be left out of a sum over all pairs of taxa.
long double insignificantNats(std::int64_t richness) {
    return 2 * std::log(static_cast<long double>(richness)) + 40;
}

// The largest sum of counts for which listing is possible at all.
std::int64_t largestSum(const std::vector<AbundanceClass>& classes, std::int64_t ofWeight) {
    const std::int64_t largest = std::min(classes.back().count, ofWeight);
    return std::min(ofWeight, 2 * largest);
}

// The specimens of the two largest taxa; 0 without two taxa.
std::int64_t largestPair(std::span<const AbundanceClass> classes) {
    if (classes.empty()) return 0;
    const AbundanceClass& last = classes.back();
    if (last.taxa > 1) return 2 * last.count;
    return classes.size() > 1 ? last.count + classes[classes.size() - 2].count : 0;
}

// q(s) as the product that it is.
long double missingAll(std::int64_t s, std::int64_t total, std::int64_t n) {
    if (s > total - n) return 0;
    long double q = 1;
    for (std::int64_t k = 0; k < n; ++k) {
        q *= static_cast<long double>(total - s - k) / static_cast<long double>(total - k);
    }
    return q;
}

// Negative entries can leave N below the sum of two counts. That is no sampling any more, but the
// sums still have a value; here n is small.
MissingTaxa overlappingTaxa(std::span<const AbundanceClass> classes, std::int64_t total,
                            std::int64_t n) {
    std::vector<long double> alone;
    for (const AbundanceClass& each : classes) alone.push_back(missingAll(each.count, total, n));
    MissingTaxa missing;
    for (std::size_t i = 0; i < classes.size(); ++i) {
        const auto taxa = static_cast<long double>(classes[i].taxa);
        const auto both = [&](std::size_t j) {
            return missingAll(classes[i].count + classes[j].count, total, n) - alone[i] * alone[j];
        };
        missing.expected += taxa * alone[i];
        missing.variance += taxa * alone[i] * (1 - alone[i]) + taxa * (taxa - 1) * both(i);
        for (std::size_t j = 0; j < i; ++j) {
            missing.variance += 2 * taxa * static_cast<long double>(classes[j].taxa) * both(j);
        }
    }
    return missing;
}

}  // namespace

RarefactionSums::RarefactionSums(CountsView counts, std::int64_t smallest)
    : total_(zorvel::individuals(counts)), classes_(abundanceClasses(counts)) {
    for (const AbundanceClass& each : classes_) richness_ += each.taxa;
    if (richness_ == 0 || smallest < 1 || smallest >= total_) return;
    const std::int64_t sums = largestSum(classes_, largestOfWeight(smallest));
    if (sums <= kListedSums) pairs_.emplace(classes_, total_, sums);
}

std::int64_t RarefactionSums::largestOfWeight(std::int64_t n) const {
    const auto drawn = static_cast<long double>(n);
    const long double natsEach = -std::log1p(-drawn / static_cast<long double>(total_));
    // The bound keeps the total of a census too large to be rarefied from overflowing here.
    return static_cast<std::int64_t>(std::min(insignificantNats(richness_) / natsEach, 1e18L)) + 1;
}

MissingTaxa RarefactionSums::missingAt(std::int64_t n) const {
    const std::int64_t cut = largestOfWeight(n);
    if (pairs_) return pairs_->at(n, cut);
    const auto end = std::upper_bound(
        classes_.begin(), classes_.end(), cut,
        [](std::int64_t most, const AbundanceClass& each) { return most < each.count; });
    const std::span<const AbundanceClass> weighty(classes_.begin(), end);
    if (largestPair(weighty) > total_) return overlappingTaxa(weighty, total_, n);
    return conditionedDraws(weighty, total_, n, insignificantNats(richness_));
}

RichnessMoments RarefactionSums::at(std::int64_t n) const {
    const auto richness = static_cast<double>(richness_);
    if (n < 1 || richness_ == 0) return {0, 0};
    // No taxon can be missing where each has more specimens than are left behind.
    if (n >= total_ || classes_.front().count > total_ - n) return {richness, 0};
    const MissingTaxa missing = missingAt(n);
    const auto estimate =
        static_cast<double>(static_cast<long double>(richness_) - missing.expected);
    const auto variance = static_cast<double>(missing.variance);
    const bool rounding = variance < 0 && variance > -kVarianceBound;
    return {estimate, rounding ? 0 : variance};
}

}  // namespace zorvel
