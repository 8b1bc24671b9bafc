#include "metrics/abundance.h"

#include <algorithm>
#include <cmath>

namespace zorvel {

AbundanceTally::AbundanceTally(CountsView counts) : counts_(counts) {
    SaturatingSum all;
    SaturatingSum present;
    for (const std::int64_t count : counts) {
        ++small_[static_cast<std::size_t>(std::clamp<std::int64_t>(count, 0, large))];
        all.add(count);
        present.add(std::max<std::int64_t>(count, 0));
    }
    individuals_ = all.value();
    present_ = present.value();
    richness_ = static_cast<std::int64_t>(counts.size()) - small_[0];
}

// The order of the terms depends on the counts alone.
const AbundanceTally::ShareSums& AbundanceTally::shareSums() const {
    if (shareSums_) return *shareSums_;
    ShareSums sums;
    const auto add = [&](std::int64_t count, std::int64_t taxaWithIt) {
        const double share = static_cast<double>(count) / static_cast<double>(present_);
        const auto taxa = static_cast<double>(taxaWithIt);
        sums.entropy += taxa * (share * std::log(share));
        sums.unlike += taxa * (share * (1 - share));
    };
    for (std::int64_t count = 1; count < large; ++count) {
        if (taxaWith(count) != 0) add(count, taxaWith(count));
    }
    for (const std::int64_t count : counts_) {
        if (small_.back() != 0 && count >= large) add(count, 1);
    }
    return shareSums_.emplace(sums);
}

// Most taxa of a census are rare: only counts beyond a table are sorted, and the table costs no
// more than reading the counts.
std::vector<AbundanceClass> abundanceClasses(CountsView counts) {
    std::vector<std::int64_t> tally(std::clamp<std::size_t>(4 * counts.size(), 64, 65'536));
    CountsVector others;
    for (const std::int64_t count : counts) {
        if (count >= static_cast<std::int64_t>(tally.size())) {
            others.push_back(count);
        } else if (count >= 1) {
            ++tally[static_cast<std::size_t>(count)];
        }
    }
    std::sort(others.begin(), others.end());
    std::vector<AbundanceClass> classes;
    for (std::size_t k = 1; k < tally.size(); ++k) {
        if (tally[k] != 0) classes.push_back({static_cast<std::int64_t>(k), tally[k]});
    }
    for (const std::int64_t count : others) {
        if (classes.empty() || classes.back().count != count) classes.push_back({count, 0});
        ++classes.back().taxa;
    }
    return classes;
}

}  // namespace zorvel
