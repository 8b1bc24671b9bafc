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
    countBins();
    sumEntries();
    richness_ = static_cast<std::int64_t>(counts.size()) - small_[0];
}

// Two tables in turn: a run of equal counts (zeros, mostly) would otherwise wait for its own store
// at each step.
void AbundanceTally::countBins() {
    const auto bin = [](std::int64_t count) {
        return static_cast<std::size_t>(
            std::clamp<std::int64_t>(count, 0, static_cast<std::int64_t>(large)));
    };
    // Blocks keep the 32-bit bins from overflowing.
    constexpr std::size_t block = std::size_t{1} << 31;
    for (std::size_t start = 0; start < counts_.size(); start += block) {
        const CountsView part = counts_.subspan(start, std::min(block, counts_.size() - start));
        std::array<std::uint32_t, 2 * (large + 1)> bins{};
        std::size_t i = 0;
        for (; i + 1 < part.size(); i += 2) {
            ++bins[2 * bin(part[i])];
            ++bins[2 * bin(part[i + 1]) + 1];
        }
        if (i < part.size()) ++bins[2 * bin(part[i])];
        for (std::size_t k = 0; k < small_.size(); ++k) {
            small_[k] += std::int64_t{bins[2 * k]} + bins[2 * k + 1];
        }
    }
}

void AbundanceTally::sumEntries() {
    std::uint64_t bits = 0;
    std::uint64_t sum = 0;
    for (const std::int64_t count : counts_) {
        bits |= static_cast<std::uint64_t>(count);
        sum += static_cast<std::uint64_t>(count);
    }
    // No entry is negative or huge: the plain sum is exact, and absent entries are zeros.
    constexpr std::uint64_t ordinary = std::uint64_t{1} << 31;
    if (bits < ordinary && counts_.size() < ordinary) {
        individuals_ = present_ = static_cast<std::int64_t>(sum);
        return;
    }
    SaturatingSum all;
    SaturatingSum present;
    for (const std::int64_t count : counts_) {
        all.add(count);
        present.add(std::max<std::int64_t>(count, 0));
    }
    individuals_ = all.value();
    present_ = present.value();
}

const AbundanceTally::ShareSums& AbundanceTally::shareSums() const {
    if (shareSums_) return *shareSums_;
    ShareSums sums;
    forEachShare([&sums](double share, double taxa) {
        sums.entropy += taxa * (share * std::log(share));
        sums.unlike += taxa * (share * (1 - share));
    });
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
