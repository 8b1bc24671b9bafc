#include <utility>

#include "cli/call.h"
#include "cli/diversity.h"
#include "model/diversity_table.h"

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

// At the sizes or at the coverages that the call names.
void addPlaces(BootstrapPlan& plan, const DiversityEstimator& estimator,
               const std::optional<double>& coverage, const Call& call) {
    switch (call.diversity.form) {
        case Form::atSize:
            plan.sizes = {call.diversity.size};
            return;
        case Form::atCoverage:
            plan.coverages = {coverage.value_or(0)};
            return;
        default:
            break;
    }
    plan.sizes = {1};
    if (!estimator.coverage()) return;
    plan.sizes = standardSizes(estimator.sample().size);
    if (call.diversity.form == Form::sizeCurve) return;
    for (const double size : std::exchange(plan.sizes, {})) {
        const double reached = estimator.atSize(size)->coverage;
        if (plan.coverages.empty() || reached > plan.coverages.back()) {
            plan.coverages.push_back(reached);
        }
    }
}

}  // namespace

const char* absenceReason(const DiversitySample& sample, std::optional<DiversityAbsence> absence) {
    if (!absence) return nullptr;
    return diversityAbsenceText(*absence, sample.estimator.sample().kind);
}

std::vector<OrderPoint> orderPoints(const DiversitySample& sample,
                                    const std::optional<double>& coverage, const Call& call) {
    const DiversityEstimator& estimator = sample.estimator;
    BootstrapPlan plan = planOf(call);
    addPlaces(plan, estimator, coverage, call);
    const bool bySize = plan.coverages.empty();
    const char* reason =
        absenceReason(sample, bySize ? estimator.estimateAbsence(0)
                                     : estimator.coverageAbsence(plan.coverages.front()));
    std::vector<std::optional<DiversityPoint>> places = estimator.atCoverages(plan.coverages);
    for (const double size : plan.sizes) places.push_back(estimator.atSize(size));
    const std::optional<StandardErrors> errors = bootstrapErrors(estimator, plan);
    std::vector<OrderPoint> points;
    for (std::size_t order = 0; order < kHillOrders; ++order) {
        for (std::size_t i = 0; i < places.size(); ++i) {
            OrderPoint point{order, places[i], std::nullopt, reason};
            if (point.at && !errors) point.reason = limitsReason(sample, call);
            if (point.at && errors) {
                point.standardError = (bySize ? errors->atSizes : errors->atCoverages)[i][order];
                point.reason = point.standardError ? nullptr : fewReplicates;
            }
            points.push_back(point);
        }
    }
    return points;
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
