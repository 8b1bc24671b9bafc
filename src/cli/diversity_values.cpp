#include "cli/diversity_values.h"

#include "model/diversity_texts.h"

namespace zorvel::cli {
namespace {

using Form = DiversityOptions::Form;

constexpr const char* fewReplicates =
    "Fewer than half of the simulated samples have this value, so there are no limits.";

BootstrapPlan planOf(const Call& call) {
    BootstrapPlan plan;
    plan.replicates = call.diversity.replicates;
    plan.seed = call.seed.value_or(1);
    return plan;
}

// Why there are no limits at all; null if none are wanted.
const char* limitsReason(const DiversitySample& sample, const Call& call) {
    if (call.diversity.replicates == 0) return nullptr;
    const char* reason = absenceReason(sample, sample.estimator.estimateAbsence(0));
    return reason != nullptr ? reason
                             : "The sample is too large to be simulated, so there are no limits.";
}

// Order by order, each at all places. reason: why places are absent; withoutErrors: limits.
std::vector<OrderPoint> ordered(const std::vector<std::optional<DiversityPoint>>& places,
                                const std::vector<StandardErrors::Orders>& errors,
                                const char* reason, const char* withoutErrors) {
    std::vector<OrderPoint> points;
    for (std::size_t order = 0; order < kHillOrders; ++order) {
        for (std::size_t i = 0; i < places.size(); ++i) {
            OrderPoint point{order, places[i], std::nullopt, places[i] ? withoutErrors : reason};
            if (i < errors.size() && places[i]) {
                point.standardError = errors[i][order];
                point.reason = point.standardError ? nullptr : fewReplicates;
            }
            points.push_back(point);
        }
    }
    return points;
}

std::vector<OrderPoint> pointsAtSizes(const DiversitySample& sample,
                                      const std::vector<double>& sizes, const Call& call) {
    std::vector<std::optional<DiversityPoint>> places;
    for (const double size : sizes) places.push_back(sample.estimator.atSize(size));
    BootstrapPlan plan = planOf(call);
    plan.sizes = sizes;
    const std::optional<StandardErrors> errors = bootstrapErrors(sample.estimator, plan);
    return ordered(places, errors ? errors->atSizes : std::vector<StandardErrors::Orders>(),
                   absenceReason(sample, sample.estimator.estimateAbsence(0)),
                   limitsReason(sample, call));
}

std::vector<OrderPoint> pointsAtCoverages(const DiversitySample& sample,
                                          const std::vector<double>& coverages, const Call& call) {
    BootstrapPlan plan = planOf(call);
    plan.coverages = coverages;
    const std::optional<StandardErrors> errors = bootstrapErrors(sample.estimator, plan);
    return ordered(sample.estimator.atCoverages(coverages),
                   errors ? errors->atCoverages : std::vector<StandardErrors::Orders>(),
                   absenceReason(sample, sample.estimator.coverageAbsence(
                                             coverages.empty() ? 0 : coverages.front())),
                   limitsReason(sample, call));
}

std::vector<OrderPoint> curveOf(const DiversitySample& sample, const Call& call) {
    const DiversityEstimator& estimator = sample.estimator;
    const std::vector<double> sizes =
        estimator.coverage() ? standardSizes(estimator.sample().size) : std::vector<double>{1};
    if (call.diversity.form == Form::sizeCurve || !estimator.coverage()) {
        return pointsAtSizes(sample, sizes, call);
    }
    std::vector<double> coverages;
    for (const double size : sizes) {
        const double coverage = estimator.atSize(size)->coverage;
        if (coverages.empty() || coverage > coverages.back()) coverages.push_back(coverage);
    }
    return pointsAtCoverages(sample, coverages, call);
}

}  // namespace

const char* absenceReason(const DiversitySample& sample, std::optional<DiversityAbsence> absence) {
    if (!absence) return nullptr;
    return diversityAbsenceText(*absence, sample.estimator.sample().kind);
}

std::vector<OrderPoint> orderPoints(const DiversitySample& sample,
                                    const std::optional<double>& coverage, const Call& call) {
    switch (call.diversity.form) {
        case Form::atSize:
            return pointsAtSizes(sample, {call.diversity.size}, call);
        case Form::atCoverage:
            return pointsAtCoverages(sample, {coverage.value_or(0)}, call);
        default:
            return curveOf(sample, call);
    }
}

std::vector<ProfilePoint> profilePoints(const DiversitySample& sample, const Call& call) {
    BootstrapPlan plan = planOf(call);
    for (int tenths = 0; tenths <= 20; ++tenths) plan.orders.push_back(tenths / 10.0);
    const std::optional<StandardErrors> errors = bootstrapErrors(sample.estimator, plan);
    std::vector<ProfilePoint> profile;
    for (std::size_t i = 0; i < plan.orders.size(); ++i) {
        const double q = plan.orders[i];
        ProfilePoint point{q, sample.estimator.observed(q), sample.estimator.estimated(q),
                           std::nullopt,
                           absenceReason(sample, sample.estimator.estimateAbsence(q))};
        if (errors && point.estimated) {
            point.standardError = errors->estimated[i];
            if (!point.standardError) point.reason = fewReplicates;
        } else if (point.estimated) {
            point.reason = limitsReason(sample, call);
        }
        profile.push_back(point);
    }
    return profile;
}

}  // namespace zorvel::cli
