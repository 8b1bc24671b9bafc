// The trials of shareholder quorum subsampling. Internal to this folder and its tests.
//
// A trial draws specimens without replacement and asks only in which order the taxa first appear,
// since coverage and richness change only then. While a set of taxa is unseen, all their specimens
// are still there, so the next specimen of an unseen taxon belongs to taxon k with probability
// count_k / (sum of the counts of the unseen taxa), whatever was drawn between. Drawing with
// replacement in proportion to the counts and ignoring repeats gives each next taxon the same
// probability. Both orders have therefore the same distribution, and no pool of specimens is
// needed.
//
// Taxa of equal count have equal frequency and equal chance: which of them appears does not matter,
// only how many of them are still unseen. So the state of a trial is one number a distinct count,
// of which there are at most min(S, sqrt(2 N)).
//
// Each class of equal counts is an interval of positions, as long as its specimens are many; the
// unseen taxa hold the front of it. A draw is a uniform position: one in a front is a new taxon,
// and one behind it a repeat. A guide table finds the interval in a step or two. When more repeats
// were met than it costs, the intervals are laid out anew for the unseen taxa alone, and no
// repeat is possible at first: a rare last taxon is not waited for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "metrics/counts.h"
#include "metrics/random_source.h"

namespace zorvel {

// The taxa that share a count.
struct CountClass {
    std::int64_t count = 0;  // at least 1
    std::int64_t taxa = 0;
    double frequency = 0;  // adjusted frequency of each of them, above 0
};

// The classes of the present entries, frequencies not yet set; ascending by count.
std::vector<CountClass> countClasses(CountsView counts);

class SqsTrials {
  public:
    // classes: at least one, of distinct counts.
    SqsTrials(const std::vector<CountClass>& classes, double quota);

    // The richness of one trial: the taxa seen until their summed frequencies reach the quota, the
    // one that takes them past it being thrown back with its frequency's probability. 0 for a quota
    // that is not above 0 (NaN included). All taxa where rounding keeps the sum below the quota.
    std::int64_t next(RandomSource& random);

  private:
    struct Interval {
        std::uint64_t end = 0;  // the first position behind it; it starts where its neighbour ends
        std::uint64_t weight = 0;  // positions a taxon
        double frequency = 0;
    };
    struct Layout {
        std::vector<Interval> intervals;
        std::vector<std::uint32_t> guide;  // the first interval that reaches into each bucket
        unsigned bucketShift = 0;
        std::uint64_t total = 0;
        std::uint64_t repeatsAllowed = 0;

        void finish();
        [[nodiscard]] std::size_t find(std::uint64_t position) const {
            std::size_t i = guide[position >> bucketShift];
            while (position >= intervals[i].end) ++i;
            return i;
        }
    };

    double nextFrequency(RandomSource& random);
    void layOutUnseen();

    double quota_;
    std::int64_t taxa_ = 0;
    Layout all_;
    Layout unseen_;
    // Of the trial that runs: its layout, the end of each interval's unseen front, the repeats met.
    const Layout* layout_ = nullptr;
    std::vector<std::uint64_t> fronts_;
    std::uint64_t repeats_ = 0;
};

}  // namespace zorvel
