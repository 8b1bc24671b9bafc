#include "metrics/rarefaction.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>

#include "base/console.h"
#include "metrics/census_metrics.h"

namespace zorvel {

namespace {

constexpr std::int64_t kInitialLogFactorials = 10000;

Rarefaction fixedPoint() {
    return {1, 1.0, 0.0, 1.0, 1.0, 1.0, 1.0};
}

Rarefaction withLimits(std::int64_t sampleSize, double estimate, double variance) {
    const double sd = std::sqrt(variance);
    const auto lower = [](double limit) { return limit <= 1.0 ? 1.0 : limit; };
    return {sampleSize,
            estimate,
            variance,
            lower(estimate - 1.96 * sd),
            estimate + 1.96 * sd,
            lower(estimate - 2.58 * sd),
            estimate + 2.58 * sd};
}

}  // namespace

RarefactionCalculator::RarefactionCalculator() {
    buildLogFactorials(kInitialLogFactorials);
}

void RarefactionCalculator::buildLogFactorials(std::int64_t size) {
    std::unique_lock lock(mutex_);
    logfact_.assign(1, 0.0);
    append(std::max<std::int64_t>(size, 1));
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
    if (last >= kMaxLogFactorials) return false;
    const std::int64_t size = last + 1;
    {
        const std::shared_lock lock(mutex_);
        if (size <= static_cast<std::int64_t>(logfact_.size())) return true;
    }
    const std::unique_lock lock(mutex_);
    if (size > static_cast<std::int64_t>(logfact_.size())) append(size);
    return true;
}

void RarefactionCalculator::append(std::int64_t size) {
    auto k = static_cast<std::int64_t>(logfact_.size());
    logfact_.reserve(static_cast<std::size_t>(size));
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
    const std::int64_t total = individuals(counts);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    if (n < 0 || !ensureLogFactorials(total)) {
        return {n, nan, nan, nan, nan, nan, nan};
    }
    std::vector<std::int64_t> taxa;
    for (const std::int64_t count : counts) {
        if (count >= 1) taxa.push_back(count);
    }
    if (n >= total) return withLimits(n, static_cast<double>(taxa.size()), 0.0);
    const std::shared_lock lock(mutex_);
    const auto missing = [&](std::int64_t count) {
        if (count > total - n) return 0.0;
        const auto lf = [this](std::int64_t k) { return logfact_[static_cast<std::size_t>(k)]; };
        return std::exp((lf(total - count) - lf(n) - lf(total - count - n)) -
                        (lf(total) - lf(n) - lf(total - n)));
    };
    double estimate = 0, variance = 0, covariance = 0;
    for (std::size_t i = 0; i < taxa.size(); ++i) {
        const double q = missing(taxa[i]);
        estimate += 1 - q;
        variance += q * (1 - q);
        for (std::size_t j = 0; j < i; ++j) {
            const bool none = taxa[i] > total - n || taxa[j] > total - n - taxa[i];
            const double both = none ? 0.0 : missing(taxa[i] + taxa[j]);
            covariance = (covariance + both) - missing(taxa[j]) * q;
        }
    }
    return withLimits(n, estimate, std::max(0.0, variance + (covariance + covariance)));
}

std::vector<Rarefaction> RarefactionCalculator::individualBasedCurve(CountsView counts) {
    const std::int64_t total = individuals(counts);
    const std::int64_t step = total < 200 ? 1 : total / 100;
    std::vector<Rarefaction> curve;
    if (step > 1 || total >= 200) curve.push_back(fixedPoint());
    const std::int64_t multiples = total < 1 ? 0 : total / step;
    for (std::int64_t k = 1; k <= multiples; ++k) {
        curve.push_back(individualBasedPoint(counts, k * step));
    }
    if (total > 0 && total % step != 0) curve.push_back(individualBasedPoint(counts, total));
    return curve;
}

RarefactionCalculator& sharedCalculator() {
    static RarefactionCalculator* const calculator = new RarefactionCalculator;
    return *calculator;
}

}  // namespace zorvel
