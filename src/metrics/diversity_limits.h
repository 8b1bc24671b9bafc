// Standard errors and confidence limits of diversity, by a bootstrap of the estimated assemblage
// (Chao & Jost 2012; Chao et al. 2014, Appendix G), and the log-normal limits of estimated richness
// (Chao 1987). Any thread.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

#include "base/threads.h"
#include "metrics/diversity.h"

namespace zorvel {

// What a simulated sample is drawn from.
struct EstimatedAssemblage {
    struct Class {
        double chance = 0;      // of a specimen to be of the taxon, or of a census to hold it
        std::int64_t taxa = 0;  // with that chance
    };
    std::vector<Class> found;  // as the classes of the sample
    double unseenTaxa = 0;     // whole
    double unseenChance = 0;   // of each
};
EstimatedAssemblage estimatedAssemblage(const DiversityEstimator& estimator);

struct BootstrapPlan {
    std::vector<double> sizes;
    std::vector<double> coverages;  // ascending
    std::vector<double> orders;     // of estimated diversity
    std::int64_t replicates = 200;
    std::uint64_t seed = 1;
    unsigned threads = allThreads();
};

// The standard deviation over the replicates that have a value; absent if fewer than half have
// one. In the order of the plan.
struct StandardErrors {
    using Orders = std::array<std::optional<double>, kHillOrders>;
    std::vector<Orders> atSizes;
    std::vector<std::optional<double>> coverages;  // of the coverage at each size
    std::vector<Orders> atCoverages;  // at the size at which a replicate has the coverage
    std::vector<std::optional<double>> estimated;
};

// The same for the same seed on any number of threads. Absent below size 2 and from 2^63 on,
// without replicates, and if stopped.
std::optional<StandardErrors> bootstrapErrors(const DiversityEstimator& estimator,
                                              const BootstrapPlan& plan,
                                              const std::stop_token& stop = {});

struct ConfidenceLimits {
    double lower95 = 0;
    double upper95 = 0;
    double lower99 = 0;
    double upper99 = 0;
};
// estimate -+ 1.96 and 2.58 standard errors, kept within lowest and highest.
ConfidenceLimits normalLimits(double estimate, double standardError, double lowest, double highest);

// Estimated richness with its standard error and log-normal limits, which are never below the
// number of taxa found.
struct RichnessEstimate {
    double estimate = 0;
    double standardError = 0;
    ConfidenceLimits limits;
};
enum class ChaoForm {
    classic,        // S + c f1^2 / (2 f2); without f2 as the next
    biasCorrected,  // S + c f1 (f1 - 1) / (2 (f2 + 1))
};
// c: (n - 1) / n, or 1. Absent if no taxon is estimated to be missing: there is nothing to vary.
std::optional<RichnessEstimate> chaoEstimate(const FrequencyCounts& sample, ChaoForm form,
                                             double c);

}  // namespace zorvel
