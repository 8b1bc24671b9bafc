#include "metrics/abundance.h"

#include <cmath>

namespace zorvel {
namespace {

// Counts below this are tallied by value, since most taxa of a census are rare; only the others
// are sorted. A table as long as a few times the census costs no more than reading it.
std::size_t tallied(CountsView counts) {
    return std::clamp<std::size_t>(4 * counts.size(), 64, 65'536);
}

void append(std::vector<AbundanceClass>& classes, std::int64_t count, std::int64_t taxa) {
    if (taxa > 0) classes.push_back({count, taxa});
}

}  // namespace

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

std::vector<AbundanceClass> abundanceClasses(CountsView counts) {
    std::vector<std::int64_t> tally(tallied(counts));
    std::vector<std::int64_t> others;
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
        append(classes, static_cast<std::int64_t>(k), tally[k]);
    }
    for (auto run = others.begin(); run != others.end();) {
        const auto end = std::upper_bound(run, others.end(), *run);
        append(classes, *run, end - run);
        run = end;
    }
    return classes;
}

}  // namespace zorvel
