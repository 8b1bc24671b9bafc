#include "metrics/rarefaction.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <new>

#include "base/console.h"
#include "metrics/census_metrics.h"
#include "metrics/rarefaction_limits.h"
#include "metrics/rarefaction_sums.h"

namespace zorvel {

namespace {

constexpr std::int64_t kInitialLogFactorials = 10000;

Rarefaction fixedPoint() {
    return {1, 1.0, 0.0, 1.0, 1.0, 1.0, 1.0};
}

// No subsample that holds a specimen holds fewer than one taxon.
Rarefaction raisedToOne(Rarefaction point) {
    const auto raise = [](double& limit) {
        if (limit <= 1.0) limit = 1.0;
    };
    raise(point.lower95);
    raise(point.lower99);
    return point;
}

Rarefaction pointAt(const RarefactionSums& sums, std::int64_t n, bool ready) {
    if (n < 0 || !ready) return undefinedPoint(n);
    const RichnessMoments richness = sums.at(n);
    return raisedToOne(pointWithLimits(n, richness.estimate, richness.variance));
}

}  // namespace

RarefactionCalculator::RarefactionCalculator() {
    buildLogFactorials(kInitialLogFactorials);
}

void RarefactionCalculator::buildLogFactorials(std::int64_t size) {
    const std::unique_lock lock(mutex_);
    logfact_.assign(1, 0.0);
    append(size);
}

void RarefactionCalculator::extendLogFactorials(std::int64_t size) {
    std::unique_lock lock(mutex_);
    if (size > static_cast<std::int64_t>(logfact_.size())) {
        append(size);
        return;
    }
    lock.unlock();
    writeConsoleLine("WARNING: attempt to decrease size of log factorial array ignored");
}

bool RarefactionCalculator::ensureLogFactorials(std::int64_t last) {
    const auto reaches = [this, last] { return last < static_cast<std::int64_t>(logfact_.size()); };
    if (last >= kMaxLogFactorials) return false;
    {
        const std::shared_lock lock(mutex_);
        if (reaches()) return true;
    }
    const std::unique_lock lock(mutex_);
    if (!reaches()) append(last + 1);  // another thread may have grown it meanwhile
    return reaches();
}

void RarefactionCalculator::append(std::int64_t size) {
    size = std::min(size, kMaxLogFactorials);
    auto k = static_cast<std::int64_t>(logfact_.size());
    if (size <= k) return;
    try {
        logfact_.reserve(static_cast<std::size_t>(size));
    } catch (const std::bad_alloc&) {
        return;
    }
    for (; k < size; ++k) logfact_.push_back(logfact_.back() + std::log(static_cast<double>(k)));
}

std::vector<double> RarefactionCalculator::logfact() const {
    const std::shared_lock lock(mutex_);
    return logfact_;
}

std::size_t RarefactionCalculator::logfactSize() const {
    const std::shared_lock lock(mutex_);
    return logfact_.size();
}

Rarefaction RarefactionCalculator::individualBasedPoint(CountsView counts, std::int64_t n) {
    if (n == 1) return fixedPoint();
    const RarefactionSums sums(counts, n);
    return pointAt(sums, n, ensureLogFactorials(sums.individuals()));
}

std::vector<Rarefaction> RarefactionCalculator::individualBasedCurve(CountsView counts) {
    const std::int64_t total = individuals(counts);
    std::vector<Rarefaction> curve;
    if (total < 1) return curve;
    const std::int64_t step = total < 200 ? 1 : total / 100;
    const RarefactionSums sums(counts, std::max<std::int64_t>(step, 2));
    const bool ready = ensureLogFactorials(total);
    curve.push_back(fixedPoint());
    for (std::int64_t multiple = step > 1 ? 1 : 2; multiple <= total / step; ++multiple) {
        curve.push_back(pointAt(sums, multiple * step, ready));
    }
    if (total % step != 0) curve.push_back(pointAt(sums, total, ready));
    return curve;
}

RarefactionCalculator& sharedCalculator() {
    static RarefactionCalculator* const calculator = new RarefactionCalculator;
    return *calculator;
}

}  // namespace zorvel
