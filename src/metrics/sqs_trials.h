// The trials of shareholder quorum subsampling. Internal to this folder and its tests.
//
// A trial draws specimens without replacement. Only the order in which the taxa first appear
// matters, since coverage and richness change only then. While a set of taxa is unseen, all their
// specimens are still there, so the next specimen of an unseen taxon belongs to taxon k with
// probability count_k / (sum of the counts of the unseen taxa), whatever was drawn between. Drawing
// with replacement in proportion to the counts and ignoring repeats gives each next taxon the same
// probability. Both orders have therefore the same distribution, and no pool of specimens is
// needed.
//
// Taxa of equal count have equal frequency and equal chance: which of them appears does not matter,
// only how many of them are still unseen. So the state of a trial is one number per distinct count,
// of which there are at most min(S, sqrt(2 N)).
//
// Each class of equal counts is an interval of positions, as long as its specimens are many; the
// unseen taxa hold the front of it. A draw is a uniform position: one in a front is a new taxon,
// and one behind it a repeat. A guide table finds the interval in a step or two. When the
// repeats have cost more than a new layout, the intervals are laid out again for the unseen taxa
// alone. Repeats are then impossible at first, so the last rare taxa do not take many draws.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "metrics/abundance.h"
#include "metrics/random_source.h"

namespace zorvel {

// The frequency of a taxon, reduced by half the singletons and doubletons per taxon of the census.
struct AdjustedFrequency {
    [[nodiscard]] double of(std::int64_t count) const {
        return (static_cast<double>(count) - reduction) / specimens;
    }
    double specimens = 1;
    double reduction = 0;  // at most 0.5: the frequency of a present taxon is above 0
};

class SqsTrials {
  public:
    // classes: at least one, of distinct counts.
    SqsTrials(const std::vector<AbundanceClass>& classes, const AdjustedFrequency& frequency,
              double quota);

    // The richness of one trial: the taxa seen until their summed frequencies reach the quota, the
    // one that takes them past it being thrown back with its frequency's probability. 0 for a quota
    // that is not above 0 (NaN included). All taxa where rounding keeps the sum below the quota.
    std::int64_t next(RandomSource& random);

  private:
    struct Interval {
        std::uint64_t end = 0;     // the first position behind it; it starts where another ends
        std::uint64_t front = 0;   // the first position behind its unseen taxa
        std::uint64_t weight = 0;  // positions per taxon
        double frequency = 0;
    };
    // Finds the interval of a position: it is the first one that reaches into the position's
    // bucket, or one soon behind it. Numbers of few intervals are bytes, which are laid out faster.
    struct Guide {
        void build(const std::vector<Interval>& intervals);
        template <class Number>
        void fill(std::vector<Number>& first, std::size_t buckets,
                  const std::vector<Interval>& intervals);

        static constexpr std::size_t few = 256;
        std::uint64_t total = 0;
        unsigned bucketShift = 0;
        std::vector<std::uint8_t> firstOfFew;
        std::vector<std::uint32_t> firstOfMany;
    };

    struct Trial {
        double coverage = 0;
        double frequency = 0;      // of the taxon drawn last
        std::uint64_t unseen = 0;  // taxa
    };
    // Draws until the quota is reached, no taxon is left, or repeats have become too many.
    template <class Number>
    void draw(const std::vector<Number>& first, RandomSource& random, Trial& trial);
    void layOutUnseen();

    double quota_;
    std::int64_t taxa_ = 0;
    std::vector<Interval> all_;
    Guide allGuide_;
    // Of the trial that runs.
    std::vector<Interval> intervals_;
    Guide unseenGuide_;
    const Guide* guide_ = nullptr;
};

}  // namespace zorvel
