#include "metrics/sqs_trials.h"

#include <algorithm>
#include <array>
#include <bit>

#include "metrics/int128.h"

namespace zorvel {
namespace {

// How far counts must be shifted to the right so that their sum fits in 63 bits: 0 unless the
// number of specimens does not fit itself.
unsigned weightShift(const std::vector<CountClass>& classes) {
    UInt128 total = 0;
    for (const CountClass& each : classes)
        total +=
            UInt128{static_cast<std::uint64_t>(each.count)} * static_cast<std::uint64_t>(each.taxa);
    unsigned shift = 0;
    while ((total >> shift) >> 62 != 0) ++shift;
    return shift;
}

}  // namespace

std::vector<CountClass> countClasses(CountsView counts) {
    constexpr std::int64_t large = 1024;
    std::array<std::int64_t, large> tally{};
    std::vector<std::int64_t> others;
    for (const std::int64_t count : counts) {
        if (count >= large)
            others.push_back(count);
        else if (count >= 1)
            ++tally[static_cast<std::size_t>(count)];
    }
    std::vector<CountClass> classes;
    for (std::int64_t count = 1; count < large; ++count) {
        const std::int64_t taxa = tally[static_cast<std::size_t>(count)];
        if (taxa != 0) classes.push_back({count, taxa, 0});
    }
    std::sort(others.begin(), others.end());
    for (const std::int64_t count : others) {
        if (classes.empty() || classes.back().count != count) classes.push_back({count, 0, 0});
        ++classes.back().taxa;
    }
    return classes;
}

SqsTrials::SqsTrials(const std::vector<CountClass>& classes, double quota) : quota_(quota) {
    const unsigned shift = weightShift(classes);
    all_.intervals.reserve(classes.size());
    std::uint64_t end = 0;
    for (const CountClass& each : classes) {
        const std::uint64_t weight =
            std::max<std::uint64_t>(static_cast<std::uint64_t>(each.count) >> shift, 1);
        end += weight * static_cast<std::uint64_t>(each.taxa);
        all_.intervals.push_back({end, weight, each.frequency});
        taxa_ += each.taxa;
    }
    all_.finish();
    fronts_.reserve(classes.size());
}

// One to two buckets an interval.
void SqsTrials::Layout::finish() {
    total = intervals.back().end;
    const auto indexBits = static_cast<unsigned>(std::bit_width(intervals.size()));
    const auto totalBits = static_cast<unsigned>(std::bit_width(total - 1));
    bucketShift = totalBits > indexBits ? totalBits - indexBits : 0;
    guide.resize(((total - 1) >> bucketShift) + 1);
    std::uint32_t i = 0;
    for (std::size_t bucket = 0; bucket < guide.size(); ++bucket) {
        while (intervals[i].end <= std::uint64_t{bucket} << bucketShift) ++i;
        guide[bucket] = i;
    }
    repeatsAllowed = 8 + intervals.size() / 2;
}

// Reads and writes unseen_ in step where it is the layout in use already: an interval never moves
// to a later place.
void SqsTrials::layOutUnseen() {
    const Layout& from = *layout_;
    const std::size_t size = from.intervals.size();
    unseen_.intervals.resize(std::max(unseen_.intervals.size(), size));
    std::size_t kept = 0;
    std::uint64_t start = 0;
    std::uint64_t end = 0;
    for (std::size_t i = 0; i < size; ++i) {
        Interval interval = from.intervals[i];
        const std::uint64_t unseen = fronts_[i] - start;
        start = interval.end;
        if (unseen == 0) continue;
        end += unseen;
        interval.end = end;
        unseen_.intervals[kept] = interval;
        fronts_[kept] = end;
        ++kept;
    }
    unseen_.intervals.resize(kept);
    fronts_.resize(kept);
    unseen_.finish();
    layout_ = &unseen_;
    repeats_ = 0;
}

// Draws until a taxon appears that was not seen, and marks it seen.
double SqsTrials::nextFrequency(RandomSource& random) {
    for (;;) {
        const std::uint64_t position = random.below(layout_->total);
        const std::size_t i = layout_->find(position);
        if (position < fronts_[i]) {
            fronts_[i] -= layout_->intervals[i].weight;
            return layout_->intervals[i].frequency;
        }
        if (++repeats_ > layout_->repeatsAllowed) layOutUnseen();
    }
}

std::int64_t SqsTrials::next(RandomSource& random) {
    if (!(quota_ > 0)) return 0;
    layout_ = &all_;
    repeats_ = 0;
    fronts_.resize(all_.intervals.size());
    for (std::size_t i = 0; i < fronts_.size(); ++i) fronts_[i] = all_.intervals[i].end;
    double coverage = 0;
    for (std::int64_t seen = 0; seen < taxa_;) {
        const double frequency = nextFrequency(random);
        coverage += frequency;
        if (coverage > quota_) {
            const bool thrownBack = random.bits32() / 4294967295.0 <= frequency;
            return thrownBack ? seen : seen + 1;
        }
        ++seen;
        if (!(coverage < quota_)) return seen;
    }
    return taxa_;
}

}  // namespace zorvel
