// The abundances of one census, gathered for the metrics and for rarefaction. Any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "metrics/counts.h"

namespace zorvel {

// The sums over the counts of one census that its metrics share, computed in one pass without heap
// memory. Refers to the counts. For one thread at a time.
//
// Most taxa of a census are rare, so counts below 64 are tallied by value: a sum over shares then
// takes one logarithm per distinct small count instead of one per taxon.
class AbundanceTally {
  public:
    // Implicit, so that a metric can be called with counts.
    // NOLINTBEGIN(google-explicit-constructor)
    AbundanceTally(CountsView counts);
    AbundanceTally(const CountsVector& counts) : AbundanceTally(CountsView(counts)) {}
    // NOLINTEND(google-explicit-constructor)

    // Sums of all entries and of those that are at least 1; saturating.
    [[nodiscard]] std::int64_t individuals() const { return individuals_; }
    [[nodiscard]] std::int64_t present() const { return present_; }
    // The number of entries that are at least 1.
    [[nodiscard]] std::int64_t richness() const { return richness_; }
    // The number of taxa with exactly count specimens; count is 1 .. 63.
    [[nodiscard]] std::int64_t taxaWith(std::int64_t count) const {
        return small_[static_cast<std::size_t>(count)];
    }
    // No entry is 5 or more.
    [[nodiscard]] bool allBelowFive() const {
        return taxaWith(1) + taxaWith(2) + taxaWith(3) + taxaWith(4) == richness_;
    }

    // The sum of p ln p and the sum of p (1 - p) over the shares p, computed when first needed.
    struct ShareSums {
        double entropy = 0;
        double unlike = 0;
    };
    [[nodiscard]] const ShareSums& shareSums() const;

  private:
    // Entries of at least this many specimens share one bin, and are read again from the counts.
    static constexpr std::int64_t large = 64;

    CountsView counts_;
    std::array<std::int64_t, large + 1> small_{};  // bin 0: absent, bin 64: large
    std::int64_t individuals_ = 0;
    std::int64_t present_ = 0;
    std::int64_t richness_ = 0;
    mutable std::optional<ShareSums> shareSums_;
};

// The taxa of a census in classes of equal counts, which sums over taxa or pairs of taxa need.
struct AbundanceClass {
    std::int64_t count = 0;  // specimens of each taxon, at least 1
    std::int64_t taxa = 0;   // how many taxa have it
};

// In increasing order of count; entries below 1 belong to none.
std::vector<AbundanceClass> abundanceClasses(CountsView counts);

}  // namespace zorvel
