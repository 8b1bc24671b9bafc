// Rarefaction: the expected number of taxa in a random subsample, with its variance and confidence
// limits. Individual-based (specimens drawn from one census) and sample-based (censuses drawn from
// a project). One calculator, sharedCalculator, serves the whole process from any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <shared_mutex>
#include <vector>

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

class RarefactionCalculator {
  public:
    // A calculator whose table of log-factorials has 10000 entries (0! to 9999!).
    RarefactionCalculator();

    Rarefaction individualBasedPoint(CountsView counts, std::int64_t n);
    std::vector<Rarefaction> individualBasedCurve(CountsView counts);

    Rarefaction sampleBasedPoint(const CountsMatrix& matrix, std::int64_t t);
    std::vector<Rarefaction> sampleBasedCurve(const CountsMatrix& matrix);

    void buildLogFactorials(std::int64_t size);
    void extendLogFactorials(std::int64_t size);
    // A copy of the table, entry k holding ln k!.
    [[nodiscard]] std::vector<double> logfact() const;
    [[nodiscard]] std::size_t logfactSize() const;
};

// The calculator of this process, made at its first use and never released.
RarefactionCalculator& sharedCalculator();

// Presence and absence over censuses.
CountsMatrix incidenceMatrix(const CountsMatrix& matrix);
std::vector<std::int64_t> incidenceFrequencies(const CountsMatrix& matrix);
std::vector<std::int64_t> incidenceFrequencyCounts(const CountsMatrix& matrix);
double chaoTwo(const CountsMatrix& matrix);

}  // namespace zorvel
