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

Rarefaction pointAt(const RarefactionSums& sums, std::int64_t n) {
    if (n < 0 || sums.individuals() > RarefactionCalculator::kMostIndividuals) {
        return undefinedPoint(n);
    }
    const RichnessMoments richness = sums.at(n);
    return raisedToOne(pointWithLimits(n, richness.estimate, richness.variance));
}

}  // namespace

RarefactionCalculator::RarefactionCalculator() {
    buildLogFactorials(kInitialLogFactorials);
}

void RarefactionCalculator::buildLogFactorials(std::int64_t size) {
    const std::unique_lock lock(mutex_);
    size_ = 0;
    logfact_.assign(1, 0.0);
    grow(std::max<std::int64_t>(size, 1));
    fill(size_);
}

void RarefactionCalculator::extendLogFactorials(std::int64_t size) {
    std::unique_lock lock(mutex_);
    if (size > size_) {
        grow(size);
        return;
    }
    lock.unlock();
    writeConsoleLine("WARNING: attempt to decrease size of log factorial array ignored");
}

bool RarefactionCalculator::ensureLogFactorials(std::int64_t last) {
    if (last >= kMaxLogFactorials) return false;
    {
        const std::shared_lock lock(mutex_);
        if (last < size_) return true;
    }
    const std::unique_lock lock(mutex_);
    grow(last + 1);
    return true;
}

bool RarefactionCalculator::fillLogFactorials(std::int64_t last) {
    if (!ensureLogFactorials(last)) return false;
    {
        const std::shared_lock lock(mutex_);
        if (last < static_cast<std::int64_t>(logfact_.size())) return true;
    }
    const std::unique_lock lock(mutex_);
    return fill(last + 1);
}

// Another thread may have grown or filled it further meanwhile.
void RarefactionCalculator::grow(std::int64_t size) {
    size_ = std::max(size_, std::min(size, kMaxLogFactorials));
}

bool RarefactionCalculator::fill(std::int64_t size) {
    auto k = static_cast<std::int64_t>(logfact_.size());
    if (size <= k) return true;
    try {
        logfact_.reserve(static_cast<std::size_t>(size));
    } catch (const std::bad_alloc&) {
        return false;
    }
    for (; k < size; ++k) logfact_.push_back(logfact_.back() + std::log(static_cast<double>(k)));
    return true;
}

std::vector<double> RarefactionCalculator::logfact() {
    const std::unique_lock lock(mutex_);
    fill(size_);
    return logfact_;
}

std::size_t RarefactionCalculator::logfactSize() const {
    const std::shared_lock lock(mutex_);
    return static_cast<std::size_t>(size_);
}

Rarefaction RarefactionCalculator::individualBasedPoint(CountsView counts, std::int64_t n) {
    if (n == 1) return fixedPoint();
    const RarefactionSums sums(counts, n);
    ensureLogFactorials(sums.individuals());
    return pointAt(sums, n);
}

std::vector<Rarefaction> RarefactionCalculator::individualBasedCurve(CountsView counts) {
    const std::int64_t total = individuals(counts);
    std::vector<Rarefaction> curve;
    if (total < 1) return curve;
    const std::int64_t step = total < 200 ? 1 : total / 100;
    const RarefactionSums sums(counts, std::max<std::int64_t>(step, 2));
    ensureLogFactorials(total);
    curve.push_back(fixedPoint());
    for (std::int64_t multiple = step > 1 ? 1 : 2; multiple <= total / step; ++multiple) {
        curve.push_back(pointAt(sums, multiple * step));
    }
    if (total % step != 0) curve.push_back(pointAt(sums, total));
    return curve;
}

RarefactionCalculator& sharedCalculator() {
    static RarefactionCalculator* const calculator = new RarefactionCalculator;
    return *calculator;
}

}  // namespace zorvel
