#include "metrics/rarefaction.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>
#include <new>

#include "base/console.h"
#include "metrics/census_metrics.h"
#include "metrics/rarefaction_sums.h"

namespace zorvel {

namespace {

constexpr std::int64_t kInitialLogFactorials = 10000;

// estimate -+ 1.96 and 2.58 standard deviations; NaN where the variance is negative or NaN.
Rarefaction pointWithLimits(std::int64_t sampleSize, double estimate, double variance) {
    const double sd = std::sqrt(variance);
    return {sampleSize,
            estimate,
            variance,
            estimate - 1.96 * sd,
            estimate + 1.96 * sd,
            estimate - 2.58 * sd,
            estimate + 2.58 * sd};
}

// A point that cannot be computed: NaN throughout.
Rarefaction undefinedPoint(std::int64_t sampleSize) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    return {sampleSize, nan, nan, nan, nan, nan, nan};
}

Rarefaction fixedPoint() {
    return {1, 1.0, 0.0, 1.0, 1.0, 1.0, 1.0};
}

Rarefaction pointAt(const RarefactionSums& sums, std::int64_t n) {
    if (n < 0 || sums.individuals() > RarefactionCalculator::kMostIndividuals) {
        return undefinedPoint(n);
    }
    const RichnessMoments richness = sums.at(n);
    Rarefaction point = pointWithLimits(n, richness.estimate, richness.variance);
    // No subsample that holds a specimen holds fewer than one taxon.
    for (double* limit : {&point.lower95, &point.lower99}) *limit = std::max(*limit, 1.0);
    return point;
}

// 1 - exp(x) is 1 for any x below: half a unit in the last place of 1 is exp(-37.4).
constexpr double kCertain = -38;

// Mao's tau at t with its unconditional variance. lf[k] = ln k! up to T. alpha_j, the chance that a
// taxon of frequency j is missing, falls with j: once it is lost against 1, so are all that follow.
Rarefaction tauPoint(const std::vector<double>& lf, const std::vector<AbundanceClass>& classes,
                     std::int64_t censuses, double chao, std::int64_t t) {
    const auto entry = [&lf](std::int64_t k) { return lf[static_cast<std::size_t>(k)]; };
    double estimate = 0, squares = 0;
    auto each = classes.begin();
    for (; each != classes.end() && t <= censuses - each->count; ++each) {
        const std::int64_t j = each->count;
        const double logAlpha =
            entry(censuses - t) + entry(censuses - j) - entry(censuses - t - j) - entry(censuses);
        if (logAlpha < kCertain) break;
        const double found = 1 - std::exp(logAlpha);
        estimate += found * static_cast<double>(each->taxa);
        squares += static_cast<double>(each->taxa) * found * found;
    }
    for (; each != classes.end(); ++each) {
        estimate += static_cast<double>(each->taxa);
        squares += static_cast<double>(each->taxa);
    }
    return pointWithLimits(t, estimate, squares - estimate * estimate / chao);
}

}  // namespace

// A class without taxa would add exactly 0 to any sum.
std::vector<AbundanceClass> IncidenceSummary::classes() const {
    std::vector<AbundanceClass> classes;
    for (std::int64_t k = 1; k <= censuses; ++k) {
        if (taxaIn(k) != 0) classes.push_back({k, taxaIn(k)});
    }
    return classes;
}

// A cell that is not there is 0 and adds nothing. A taxon whose sum is negative, by negative cells,
// has no frequency.
IncidenceSummary summariseIncidence(const SparseCounts& counts) {
    std::vector<SaturatingSum> sums(counts.rows() == 0 ? 0 : counts.columns());
    for (std::size_t i = 0; i < counts.rows(); ++i) {
        const CountsView row = counts.row(i);
        const auto columns = counts.columnsOfRow(i);
        for (std::size_t k = 0; k < row.size(); ++k) {
            sums[columns[k]].add(std::min<std::int64_t>(row[k], 1));
        }
    }
    IncidenceSummary summary;
    summary.censuses = static_cast<std::int64_t>(counts.rows());
    summary.taxonNames = static_cast<std::int64_t>(sums.size());
    summary.frequencyCounts.assign(counts.rows() + 1, 0);
    for (const SaturatingSum& sum : sums) {
        if (sum.value() >= 0) ++summary.frequencyCounts[static_cast<std::size_t>(sum.value())];
    }
    return summary;
}

double chaoTwo(const IncidenceSummary& summary) {
    if (summary.censuses < 2) return 0;
    const auto t = static_cast<double>(summary.censuses);
    const auto q1 = static_cast<double>(summary.taxaIn(1));
    const auto q2 = static_cast<double>(summary.taxaIn(2));
    return static_cast<double>(summary.taxonNames) + (q1 * (t - 1)) * q1 / (2 * t * q2);
}

RarefactionCalculator::RarefactionCalculator() {
    buildLogFactorials(kInitialLogFactorials);
}

void RarefactionCalculator::buildLogFactorials(std::int64_t size) {
    const std::unique_lock lock(mutex_);
    logfact_.assign(1, 0.0);
    grow(size);
}

void RarefactionCalculator::extendLogFactorials(std::int64_t size) {
    std::unique_lock lock(mutex_);
    if (size > static_cast<std::int64_t>(logfact_.size())) return grow(size);
    lock.unlock();
    writeConsoleLine("WARNING: attempt to decrease size of log factorial array ignored");
}

bool RarefactionCalculator::ensureLogFactorials(std::int64_t last) {
    if (last < logfactSize()) return true;
    if (last >= kMaxLogFactorials) return false;
    const std::unique_lock lock(mutex_);
    grow(last + 1);
    return last < static_cast<std::int64_t>(logfact_.size());
}

void RarefactionCalculator::grow(std::int64_t size) {
    size = std::min(size, kMaxLogFactorials);
    try {
        logfact_.reserve(static_cast<std::size_t>(std::max<std::int64_t>(size, 1)));
    } catch (const std::bad_alloc&) {
        return;
    }
    for (auto k = static_cast<std::int64_t>(logfact_.size()); k < size; ++k) {
        logfact_.push_back(logfact_.back() + std::log(static_cast<double>(k)));
    }
}

std::int64_t RarefactionCalculator::logfactSize() const {
    const std::shared_lock lock(mutex_);
    return static_cast<std::int64_t>(logfact_.size());
}

Rarefaction RarefactionCalculator::individualBasedPoint(CountsView counts, std::int64_t n) {
    if (n == 1) return fixedPoint();
    const RarefactionSums sums(counts, n);
    return pointAt(sums, n);
}

std::vector<Rarefaction> RarefactionCalculator::individualBasedCurve(CountsView counts) {
    const std::int64_t total = individuals(counts);
    std::vector<Rarefaction> curve;
    if (total < 1) return curve;
    const std::int64_t step = total < 200 ? 1 : total / 100;
    const RarefactionSums sums(counts, std::max<std::int64_t>(step, 2));
    curve.push_back(fixedPoint());
    for (std::int64_t multiple = step > 1 ? 1 : 2; multiple <= total / step; ++multiple) {
        curve.push_back(pointAt(sums, multiple * step));
    }
    if (total % step != 0) curve.push_back(pointAt(sums, total));
    return curve;
}

Rarefaction RarefactionCalculator::sampleBasedPoint(const IncidenceSummary& summary,
                                                    std::int64_t t) {
    if (t < 0 || !ensureLogFactorials(summary.censuses)) return undefinedPoint(t);
    const double chao = chaoTwo(summary);
    const std::vector<AbundanceClass> classes = summary.classes();
    const std::shared_lock lock(mutex_);
    return tauPoint(logfact_, classes, summary.censuses, chao, t);
}

std::vector<Rarefaction> RarefactionCalculator::sampleBasedCurve(const IncidenceSummary& summary) {
    std::vector<Rarefaction> curve;
    if (summary.censuses < 2) return curve;
    const bool ready = ensureLogFactorials(summary.censuses);
    const double chao = chaoTwo(summary);
    const std::vector<AbundanceClass> classes = summary.classes();
    const std::shared_lock lock(mutex_);
    for (std::int64_t t = 1; t < summary.censuses; ++t) {
        curve.push_back(ready ? tauPoint(logfact_, classes, summary.censuses, chao, t)
                              : undefinedPoint(t));
    }
    return curve;
}

RarefactionCalculator& sharedCalculator() {
    static RarefactionCalculator* const calculator = new RarefactionCalculator;
    return *calculator;
}

}  // namespace zorvel
