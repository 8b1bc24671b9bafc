// Rarefaction: the expected number of taxa in a random subsample, with its variance and confidence
// limits. Individual-based (specimens drawn from one census) and sample-based (censuses drawn from
// a project). One calculator, sharedCalculator, serves the whole process from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <shared_mutex>
#include <vector>

#include "metrics/abundance.h"
#include "metrics/counts.h"

namespace zorvel {

// One point of a rarefaction curve.
struct Rarefaction {
    std::int64_t sampleSize = 0;  // specimens, or censuses where sample-based
    double estimate = 0;          // expected number of taxa
    double variance = 0;
    double lower95 = 0;
    double upper95 = 0;
    double lower99 = 0;
    double upper99 = 0;
};

// Presence and absence of taxa over the censuses of a project: all that sample-based rarefaction
// and Chao2 need. T is the number of censuses, Q_k the number of taxa found in exactly k of them.
struct IncidenceSummary {
    std::int64_t censuses = 0;    // T
    std::int64_t taxonNames = 0;  // every name of the project, one without any specimen included
    std::vector<std::int64_t> frequencyCounts = {0};  // Q_0 .. Q_T: T + 1 entries

    // Q_k; 0 for a k that no taxon can have.
    [[nodiscard]] std::int64_t taxaIn(std::int64_t k) const {
        const bool inside = k >= 0 && k < static_cast<std::int64_t>(frequencyCounts.size());
        return inside ? frequencyCounts[static_cast<std::size_t>(k)] : 0;
    }
    // The taxa found in so many of the censuses each.
    [[nodiscard]] std::vector<AbundanceClass> classes() const;
};

IncidenceSummary summariseIncidence(const SparseCounts& counts);

// Chao2, classic form (Chao 1987) with the factor (T - 1) / T:
//     S + ((T - 1) / T) Q_1^2 / (2 Q_2),
// S counting every taxon name, so that a name found in no census raises it by one. The
// bias-corrected form, with Q_1 (Q_1 - 1) / (2 (Q_2 + 1)), differs. 0 for fewer than two censuses;
// without a taxon found exactly twice +infinity, or NaN if none is found once either.
double chaoTwo(const IncidenceSummary& summary);

class RarefactionCalculator {
  public:
    // A calculator whose table of log-factorials has 10000 entries (0! to 9999!).
    RarefactionCalculator();

    // The expected number of taxa among n specimens drawn without replacement (Hurlbert
    // 1971) and its variance (Heck, van Belle & Simberloff 1975). n = 1 gives
    // (1, 1, 0, 1, 1, 1, 1) for any counts; n from N on gives S without variance. Lower limits are
    // at least 1, upper limits are not capped at S. NaN throughout for n < 0 and, n = 1 apart, for
    // N above kMostIndividuals.
    Rarefaction individualBasedPoint(CountsView counts, std::int64_t n);
    // Every n up to N where N < 200; otherwise 1, the multiples of N / 100, and N. Empty for N < 1.
    std::vector<Rarefaction> individualBasedCurve(CountsView counts);

    // Mao's tau, the expected number of taxa in t of the T censuses, with its unconditional
    // variance about the richness given by Chao2 (Colwell, Mao & Chang 2004).
    // Limits are not clamped; NaN where the variance is negative. NaN throughout for t < 0.
    Rarefaction sampleBasedPoint(const IncidenceSummary& summary, std::int64_t t);
    // t = 1 .. T - 1; empty for T < 2.
    std::vector<Rarefaction> sampleBasedCurve(const IncidenceSummary& summary);

    // Replaces the table by one of size entries, at least 1 and at most kMaxLogFactorials.
    void buildLogFactorials(std::int64_t size);
    // Appends entries up to size (at most kMaxLogFactorials), or none if there is no memory for
    // them. A size that would not grow the table is refused with a console line.
    void extendLogFactorials(std::int64_t size);
    // Entry k of the table is ln k!.
    [[nodiscard]] std::int64_t logfactSize() const;

    // The largest total for which individual-based values were checked against quadruple precision.
    static constexpr std::int64_t kMostIndividuals = 1'000'000'000'000'000'000;
    // A table of 2 GiB. Sample-based rarefaction reads it, and gives NaN for this many censuses or
    // more, or if there is no memory for the entries.
    static constexpr std::int64_t kMaxLogFactorials = std::int64_t{1} << 28;

  private:
    // Grows the table, where needed, so that it has the entry last. False if it cannot.
    bool ensureLogFactorials(std::int64_t last);
    // Under the exclusive lock. A table of that size or more stays as it is.
    void grow(std::int64_t size);

    mutable std::shared_mutex mutex_;
    std::vector<double> logfact_;
};

// The calculator of this process, created when first used and never released.
RarefactionCalculator& sharedCalculator();

}  // namespace zorvel
