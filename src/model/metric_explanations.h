// The explanations beside a value in the windows and in the help: what each metric means, how it is
// computed, who published it, and its inputs. Pure; safe on any thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "metrics/counts.h"
#include "metrics/metric_table.h"
#include "metrics/project_wide.h"
#include "metrics/rarefaction.h"
#include "metrics/sqs.h"

namespace zorvel {

struct MetricExplanation {
    const char* name;  // "Chao1, bias-corrected"
    const char* meaning;
    const char* formula;  // in the symbols of the inputs; p stands for a species' share of N
    const char* variant;  // how it differs from others of the same name; may be empty
    const char* source;   // the publication; empty for a plain count or its mean
};
MetricExplanation explanationOf(const ShownMetric& shown);

// What the value of one census, or of all pooled, is computed from.
struct SampleInputs {
    SampleInputs() = default;
    explicit SampleInputs(const AbundanceTally& counts);

    std::int64_t individuals = 0;  // N
    std::int64_t richness = 0;     // S
    std::int64_t singletons = 0;   // f1, species with one specimen
    std::int64_t doubletons = 0;   // f2, species with two
    bool allBelowFive = true;      // no species has five specimens
};

// All that goes into the metrics of a census or of a project, as far as it is known.
struct MetricInputs {
    SampleInputs sample;
    MetricParameters parameters;
    SqsResult sqs;  // of the sample

    // Only of a project:
    std::int64_t censuses = 0;           // T
    std::vector<std::int64_t> peculiar;  // the censuses of each kind that remarks speak of
    AverageSqs averageSqs;
    IncidenceSummary incidence;
};
// Sets the number of censuses and the peculiar ones among them. The parameters must be there.
void countCensuses(const SparseCounts& counts, MetricInputs& inputs);

// "N = 140, S = 20, f1 = 4, f2 = 2": those that the metric takes, in that order.
std::string inputsText(const ShownMetric& shown, const MetricInputs& inputs);

// Why a value is "-", missing, or 0 although there are species, as a sentence; or what is
// particular about it. Empty where there is nothing to say.
std::string metricRemark(const ShownMetric& shown, const MetricInputs& inputs);

// Standard error and 95% limits of Chao1 and Chao2, or why there are none; empty for the other
// metrics and where there is no value.
std::string limitsText(const ShownMetric& shown, const MetricInputs& inputs);

}  // namespace zorvel
