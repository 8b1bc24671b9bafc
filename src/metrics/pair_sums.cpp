#include "metrics/pair_sums.h"

#include <algorithm>
#include <cstddef>

namespace zorvel {

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
