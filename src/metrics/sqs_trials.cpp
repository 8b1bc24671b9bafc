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
    allGuide_.build(all_);
}

// So many buckets that few of them reach into several intervals.
void SqsTrials::Guide::build(const std::vector<Interval>& intervals) {
    if (intervals.size() <= few)
        fill(firstOfFew, 16 * intervals.size(), intervals);
    else
        fill(firstOfMany, 8 * intervals.size(), intervals);
}

// At least one bucket, and at most the number asked for, rounded up to a power of two.
template <class Number>
void SqsTrials::Guide::fill(std::vector<Number>& first, std::size_t buckets,
                            const std::vector<Interval>& intervals) {
    total = intervals.back().end;
    const auto indexBits = static_cast<unsigned>(std::bit_width(buckets - 1));
    const auto totalBits = static_cast<unsigned>(std::bit_width(total - 1));
    bucketShift = totalBits > indexBits ? totalBits - indexBits : 0;
    first.resize(((total - 1) >> bucketShift) + 1);
    auto bucket = first.begin();
    for (std::size_t i = 0; i < intervals.size(); ++i) {
        const std::uint64_t last = (intervals[i].end - 1) >> bucketShift;
        const auto end = first.begin() + static_cast<std::ptrdiff_t>(last) + 1;
        std::fill(bucket, end, static_cast<Number>(i));
        bucket = end;
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
    unseenGuide_.build(intervals_);
    guide_ = &unseenGuide_;
}

// Repeats and new taxa come in an order that no processor can predict, so a draw has no branch on
// it: a repeat adds nothing to everything. Not inlined, so that its values stay in registers.
template <class Number>
[[gnu::noinline]] void SqsTrials::draw(const std::vector<Number>& first, RandomSource& random,
                                       Trial& trial) {
    const unsigned shift = guide_->bucketShift;
    const Number* const numbers = first.data();
    Interval* const intervals = intervals_.data();
    Interval* drawn = intervals;
    const double quota = quota_;
    double coverage = trial.coverage;
    std::uint64_t unseen = trial.unseen;
    std::uint64_t repeatsLeft = 4 + 2 * intervals_.size();
    while (coverage < quota && unseen != 0 && repeatsLeft != 0) {
        const std::uint64_t before = repeatsLeft;
        const std::size_t draws = random.someBelow(guide_->total, unseen, [&](auto position) {
            drawn = intervals + numbers[position >> shift];
            while (position >= drawn->end) ++drawn;
            // All bits or none: positions have 63 bits.
            const auto difference = static_cast<std::int64_t>(position - drawn->front);
            const auto ifNew = static_cast<std::uint64_t>(difference >> 63);
            drawn->front -= drawn->weight & ifNew;
            const auto frequency = std::bit_cast<std::uint64_t>(drawn->frequency);
            coverage += std::bit_cast<double>(frequency & ifNew);
            repeatsLeft -= ifNew + 1;
            return coverage < quota && repeatsLeft != 0;
        });
        unseen -= draws - (before - repeatsLeft);
    }
    trial = {coverage, drawn->frequency, unseen};
}

std::int64_t SqsTrials::next(RandomSource& random) {
    if (!(quota_ > 0)) return 0;
    intervals_ = all_;
    guide_ = &allGuide_;
    Trial trial{0, 0, static_cast<std::uint64_t>(taxa_)};
    for (;;) {
        if (intervals_.size() <= Guide::few)
            draw(guide_->firstOfFew, random, trial);
        else
            draw(guide_->firstOfMany, random, trial);
        if (!(trial.coverage < quota_) || trial.unseen == 0) break;
        layOutUnseen();
    }
    const std::int64_t seen = taxa_ - static_cast<std::int64_t>(trial.unseen);
    const bool thrownBack =
        trial.coverage > quota_ && random.bits32() / 4294967295.0 <= trial.frequency;
    return thrownBack ? seen - 1 : seen;
}

}  // namespace zorvel
