#include "metrics/rarefaction_sums.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#include "metrics/census_metrics.h"

namespace zorvel {
namespace {

// Sums of two counts are listed up to here. All points of a curve stay below, since their n is at
// least a hundredth of N.
constexpr std::int64_t kListedSums = 8192;

// Terms smaller than exp(-nats) may be left out of a sum over all pairs of taxa.
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

// q(s) as a product.
long double missingAll(std::int64_t s, std::int64_t total, std::int64_t n) {
    if (s > total - n) return 0;
    long double q = 1;
    for (std::int64_t k = 0; k < n; ++k) {
        q *= static_cast<long double>(total - s - k) / static_cast<long double>(total - k);
    }
    return q;
}

// Negative entries can leave N below the sum of two counts. This is no longer sampling, but the
// sums still have a value; n is small here.
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

PairSums::PairSums(const std::vector<AbundanceClass>& classes, std::int64_t total,
                   std::int64_t largestSum)
    : total_(total) {
    const auto size = static_cast<std::size_t>(std::max<std::int64_t>(largestSum, 0)) + 1;
    taxa_.assign(size, 0);
    pairs_.assign(size, 0);
    ratio_.assign(size, 0);
    countPairs(classes);
    for (std::int64_t s = 1; s < std::min(total, static_cast<std::int64_t>(size)); ++s) {
        ratio_[static_cast<std::size_t>(s)] =
            static_cast<long double>(s) / static_cast<long double>(total - s);
    }
}

void PairSums::countPairs(const std::vector<AbundanceClass>& classes) {
    const auto last = static_cast<std::int64_t>(pairs_.size()) - 1;
    for (auto first = classes.begin(); first != classes.end() && first->count <= last; ++first) {
        const auto taxa = static_cast<double>(first->taxa);
        taxa_[static_cast<std::size_t>(first->count)] = taxa;
        if (first->count > last - first->count) continue;
        pairs_[static_cast<std::size_t>(2 * first->count)] += taxa * (taxa - 1) / 2;
        double* const sums = pairs_.data() + first->count;
        for (auto other = first + 1; other != classes.end(); ++other) {
            if (other->count > last - first->count) break;
            sums[other->count] += taxa * static_cast<double>(other->taxa);
        }
    }
}

// With u = 1 - n / N, the chance that s given specimens are all left out is q(s) = u^s (1 + A(s)),
// A(0) = 0. From q(s + 1) / q(s) = (N - s - n) / (N - s) follows
//     1 + A(s + 1) = (1 + A(s)) (1 - s n / ((N - s) (N - n))),
// a step that loses nothing: A stays as exact as its terms. q(s) = 0 from s = N - n + 1 on is A =
// -1.
//
// u^(c_i + c_j) is the same in q_ij and in q_i q_j. So with D = sum of (q_i - u^c_i), U = sum of
// u^c_i, and twice the sum over pairs of q_i q_j being the square of the sum less the squares,
//     variance = sum of (q_i - u^2c_i) + 2 sum over pairs of (q_ij - u^(c_i + c_j)) - D (2 U + D).
MissingTaxa PairSums::at(std::int64_t n, std::int64_t cut) const {
    const auto left = static_cast<long double>(total_ - n);
    const long double u = left / static_cast<long double>(total_);
    const long double odds = static_cast<long double>(n) / left;
    long double power = 1, a = 0;
    long double powers = 0, shifts = 0, single = 0, paired = 0;
    const auto last = std::min(static_cast<std::size_t>(cut), pairs_.size() - 1);
    const auto lastPossible = static_cast<std::size_t>(total_ - n);
    for (std::size_t s = 1; s <= last; ++s) {
        a = s > lastPossible ? -1 : a - (1 + a) * (ratio_[s - 1] * odds);
        power *= u;
        const long double shift = power * a;
        paired += pairs_[s] * shift;
        if (taxa_[s] == 0) continue;
        powers += taxa_[s] * power;
        shifts += taxa_[s] * shift;
        single += taxa_[s] * (power - power * power + shift);
    }
    return {powers + shifts, single + 2 * paired - shifts * (2 * powers + shifts)};
}

}  // namespace zorvel
