#include <cmath>
#include <mutex>
#include <shared_mutex>

#include "metrics/rarefaction.h"
#include "metrics/rarefaction_limits.h"

namespace zorvel {
namespace {

// The frequencies that some taxon has: a frequency without taxa adds exactly 0 to both sums.
struct FrequencyClass {
    std::int64_t frequency;
    double taxa;
};

std::vector<FrequencyClass> frequencyClasses(const IncidenceSummary& summary) {
    std::vector<FrequencyClass> classes;
    for (std::int64_t k = 1; k <= summary.censuses; ++k) {
        const std::int64_t taxa = summary.taxaIn(k);
        if (taxa != 0) classes.push_back({k, static_cast<double>(taxa)});
    }
    return classes;
}

// 1 - exp(x) is 1 for any x below: half a unit in the last place of 1 is exp(-37.4).
constexpr double kCertain = -38;

// Mao's tau at t with its unconditional variance. lf[k] = ln k! up to T. alpha_j, the chance that a
// taxon of frequency j is missing, falls with j: once it is lost against 1, so are all that follow.
Rarefaction tauPoint(const std::vector<double>& lf, const std::vector<FrequencyClass>& classes,
                     std::int64_t censuses, double chao, std::int64_t t) {
    const auto entry = [&lf](std::int64_t k) { return lf[static_cast<std::size_t>(k)]; };
    double estimate = 0, squares = 0;
    auto each = classes.begin();
    for (; each != classes.end() && t <= censuses - each->frequency; ++each) {
        const std::int64_t j = each->frequency;
        const double logAlpha =
            entry(censuses - t) + entry(censuses - j) - entry(censuses - t - j) - entry(censuses);
        if (logAlpha < kCertain) break;
        const double found = 1 - std::exp(logAlpha);
        estimate += found * each->taxa;
        squares += each->taxa * found * found;
    }
    for (; each != classes.end(); ++each) {
        estimate += each->taxa;
        squares += each->taxa;
    }
    return pointWithLimits(t, estimate, squares - estimate * estimate / chao);
}

}  // namespace

Rarefaction RarefactionCalculator::sampleBasedPoint(const IncidenceSummary& summary,
                                                    std::int64_t t) {
    if (t < 0 || !fillLogFactorials(summary.censuses)) return undefinedPoint(t);
    const double chao = chaoTwo(summary);
    const std::vector<FrequencyClass> classes = frequencyClasses(summary);
    const std::shared_lock lock(mutex_);
    return tauPoint(logfact_, classes, summary.censuses, chao, t);
}

std::vector<Rarefaction> RarefactionCalculator::sampleBasedCurve(const IncidenceSummary& summary) {
    std::vector<Rarefaction> curve;
    if (summary.censuses < 2) return curve;
    const bool ready = fillLogFactorials(summary.censuses);
    const double chao = chaoTwo(summary);
    const std::vector<FrequencyClass> classes = frequencyClasses(summary);
    const std::shared_lock lock(mutex_);
    for (std::int64_t t = 1; t < summary.censuses; ++t) {
        curve.push_back(ready ? tauPoint(logfact_, classes, summary.censuses, chao, t)
                              : undefinedPoint(t));
    }
    return curve;
}

Rarefaction RarefactionCalculator::sampleBasedPoint(const CountsMatrix& matrix, std::int64_t t) {
    return sampleBasedPoint(summariseIncidence(matrix), t);
}

std::vector<Rarefaction> RarefactionCalculator::sampleBasedCurve(const CountsMatrix& matrix) {
    if (matrix.size() < 2) return {};
    return sampleBasedCurve(summariseIncidence(matrix));
}

}  // namespace zorvel
