#include "metrics/sqs_trials.h"

#include <algorithm>
#include <bit>

#include "metrics/counts.h"

namespace zorvel {
namespace {

// How far counts must be shifted to the right so that their sum fits in 63 bits: 0 unless the
// number of specimens does not fit itself.
unsigned weightShift(const std::vector<AbundanceClass>& classes) {
    UInt128 total = 0;
    for (const AbundanceClass& each : classes)
        total +=
            UInt128{static_cast<std::uint64_t>(each.count)} * static_cast<std::uint64_t>(each.taxa);
    unsigned shift = 0;
    while ((total >> shift) >> 63 != 0) ++shift;
    return shift;
}

}  // namespace

SqsTrials::SqsTrials(const std::vector<AbundanceClass>& classes, const AdjustedFrequency& frequency,
                     double quota)
    : quota_(quota) {
    const unsigned shift = weightShift(classes);
    all_.reserve(classes.size());
    std::uint64_t end = 0;
    for (const AbundanceClass& each : classes) {
        const std::uint64_t weight =
            std::max<std::uint64_t>(static_cast<std::uint64_t>(each.count) >> shift, 1);
        end += weight * static_cast<std::uint64_t>(each.taxa);
        all_.push_back({end, end, weight, frequency.of(each.count)});
        taxa_ += each.taxa;
    }
    // Built once: a fine one, and one bucket per position for a small census.
    allGuide_.build(all_, std::max<std::size_t>(4 * all_.size(), 4096));
}

// At least one bucket, and at most the number asked for, rounded up to a power of two.
void SqsTrials::Guide::build(const std::vector<Interval>& intervals, std::size_t buckets) {
    total = intervals.back().end;
    const auto indexBits = static_cast<unsigned>(std::bit_width(buckets - 1));
    const auto totalBits = static_cast<unsigned>(std::bit_width(total - 1));
    bucketShift = totalBits > indexBits ? totalBits - indexBits : 0;
    first.resize(((total - 1) >> bucketShift) + 1);
    std::uint32_t i = 0;
    for (std::size_t bucket = 0; bucket < first.size(); ++bucket) {
        while (intervals[i].end <= std::uint64_t{bucket} << bucketShift) ++i;
        first[bucket] = i;
    }
}

// Keeps the fronts and closes them up. The new guide and the walk over the intervals cost about as
// much as the repeats that led to them.
void SqsTrials::layOutUnseen() {
    std::size_t kept = 0;
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    for (const Interval& each : intervals_) {
        Interval interval = each;
        const std::uint64_t unseen = interval.front - start;
        start = interval.end;
        if (unseen == 0) continue;
        end += unseen;
        interval.end = interval.front = end;
        intervals_[kept++] = interval;
    }
    intervals_.resize(kept);
    unseenGuide_.build(intervals_, kept);
    guide_ = &unseenGuide_;
}

// Repeats and new taxa come in an order that no processor can predict, so a draw has no branch on
// it: a repeat adds nothing to everything.
inline void SqsTrials::draw(RandomSource& random, Trial& trial) {
    const std::uint64_t total = guide_->total;
    const unsigned shift = guide_->bucketShift;
    const std::uint32_t* const first = guide_->first.data();
    Interval* const intervals = intervals_.data();
    std::size_t repeatsLeft = 4 + 2 * intervals_.size();
    Trial state = trial;
    while (repeatsLeft > 0 && state.coverage < quota_ && state.seen < taxa_) {
        const std::uint64_t position = random.below(total);
        std::size_t i = first[position >> shift];
        i += position >= intervals[i].end ? 1 : 0;
        while (position >= intervals[i].end) ++i;
        const std::uint64_t unseen = position < intervals[i].front ? 1 : 0;
        intervals[i].front -= intervals[i].weight * unseen;
        state.frequency = intervals[i].frequency * static_cast<double>(unseen);
        state.coverage += state.frequency;
        state.seen += static_cast<std::int64_t>(unseen);
        repeatsLeft -= 1 - unseen;
    }
    trial = state;
}

std::int64_t SqsTrials::next(RandomSource& random) {
    if (!(quota_ > 0)) return 0;
    intervals_ = all_;
    guide_ = &allGuide_;
    Trial trial;
    for (;;) {
        draw(random, trial);
        if (!(trial.coverage < quota_) || trial.seen == taxa_) break;
        layOutUnseen();
    }
    const bool thrownBack =
        trial.coverage > quota_ && random.bits32() / 4294967295.0 <= trial.frequency;
    return thrownBack ? trial.seen - 1 : trial.seen;
}

}  // namespace zorvel
