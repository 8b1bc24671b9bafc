// The explanations beside the values and curves of diversity at equal coverage: what each means,
// how it is computed, and who published it. Pure; safe on any thread.
#pragma once

#include <cstddef>
#include <string>

#include "metrics/diversity_limits.h"

namespace zorvel {

enum class DiversityTopic {
    size,            // of the sample
    coverage,        // of the sample
    commonCoverage,  // that all samples reach
    neededSize,      // for a coverage
    richness,        // at a coverage, as the next two
    shannon,
    simpson,
    overSizes,  // curves
    overCoverage,
    overOrders,
};
// The topic of order 0, 1 or 2 at a coverage.
DiversityTopic topicOfOrder(std::size_t order);

// Each may be empty except for the name and the meaning.
struct DiversityExplanation {
    const char* name = "";
    const char* meaning = "";
    const char* formula = "";  // in the symbols of diversityInputs()
    const char* variant = "";  // how it differs from others of the same name
    const char* bands = "";    // what its limits mean
    const char* source = "";
};
DiversityExplanation explanationOf(DiversityTopic topic, SampleKind kind);

// "N = 140, S = 20, f1 = 4, f2 = 2", or T, U, S, f1 and f2 of incidences.
std::string diversityInputs(const FrequencyCounts& sample);
// "q = 0: 22.1; q = 1: 14.2; q = 2: 10.3", what is estimated for the whole community, with the
// other forms of Chao1 beside it.
std::string estimatesText(const DiversityEstimator& estimator);
// Both limits and the standard error of a diversity.
std::string diversityLimitsText(double estimate, double standardError);

}  // namespace zorvel
