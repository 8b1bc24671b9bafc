// Shareholder quorum subsampling as a textbook states it: a pool with a slot for each specimen,
// copied for each trial, from which specimens are drawn without replacement.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "metrics/counts.h"
#include "metrics/random_source.h"

namespace zorvel::plain {

class SqsTrials {
  public:
    SqsTrials(CountsView counts, double quota) : quota_(quota) {
        for (const std::int64_t count : counts)
            if (count >= 1) counts_.push_back(count);
        double singletonsAndDoubletons = 0;
        for (std::size_t k = 1; k < counts_.size(); ++k) {
            specimens_ += static_cast<double>(counts_[k]);
            if (counts_[k] == 1) ++singletons_;
            if (counts_[k] <= 2) ++singletonsAndDoubletons;
        }
        const double taken =
            singletonsAndDoubletons * 0.5 / static_cast<double>(counts_.size() - 1);
        for (const std::int64_t count : counts_) {
            frequencies_.push_back((static_cast<double>(count) - taken) / specimens_);
            frequencySum_ += frequencies_.back();
        }
    }

    [[nodiscard]] bool possible() const {
        return specimens_ >= 11 && 1 - singletons_ / specimens_ != 0 && !(frequencySum_ < quota_) &&
               !(specimens_ < quota_);
    }

    void buildPool() {
        pool_.assign(1, 0);
        for (std::size_t k = 1; k < counts_.size(); ++k)
            for (std::int64_t i = 0; i < counts_[k]; ++i) pool_.push_back(static_cast<int>(k));
    }

    std::int64_t next(RandomSource& random) {
        std::int64_t richness = 0;
        if (!(quota_ > 0)) return richness;
        left_ = pool_;
        seen_.assign(counts_.size(), 0);
        double coverage = 0;
        for (std::size_t left = left_.size() - 1; left > 0 && coverage < quota_; --left) {
            const auto x = static_cast<std::size_t>(random.below(left)) + 1;
            const auto k = static_cast<std::size_t>(left_[x]);
            if (seen_[k] == 0) {
                seen_[k] = 1;
                coverage += frequencies_[k];
                const bool thrownBack =
                    coverage > quota_ && random.bits32() / 4294967295.0 <= frequencies_[k];
                if (!thrownBack) ++richness;
            }
            left_[x] = left_[left];
        }
        return richness;
    }

  private:
    double quota_;
    std::vector<std::int64_t> counts_{0};
    std::vector<double> frequencies_;
    double specimens_ = 0;
    double singletons_ = 0;
    double frequencySum_ = 0;
    std::vector<int> pool_;
    std::vector<int> left_;
    std::vector<char> seen_;
};

inline std::optional<double> alroySQS(CountsView counts, std::int64_t trials, double quota,
                                      RandomSource& random) {
    SqsTrials subsamples(counts, quota);
    if (!subsamples.possible()) return std::nullopt;
    subsamples.buildPool();
    double sum = 0;
    double positive = 0;
    for (std::int64_t trial = 0; trial < trials; ++trial) {
        const auto richness = static_cast<double>(subsamples.next(random));
        if (richness > 0) {
            sum += std::log(richness);
            ++positive;
        }
    }
    return std::exp(sum / positive) * positive / static_cast<double>(trials);
}

}  // namespace zorvel::plain
