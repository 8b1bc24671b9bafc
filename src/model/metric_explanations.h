// What each number means, how it is computed and who published it, and what went into the value at
// hand: the words behind a value of the windows and behind the help pages. In English, to be
// translated where they are shown. Pure; safe on any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "metrics/counts.h"
#include "metrics/sqs.h"

namespace zorvel {

struct MetricExplanation {
    std::string_view key;  // as in metric_captions.h
    const char* name;      // "Chao1, bias-corrected"
    const char* meaning;
    const char* formula;  // in the symbols of MetricInputs; p stands for a species' share of N
    const char* variant;  // how it differs from what others call so; may be empty
    const char* source;   // the publication
};

// Those of one census first, then those of a project.
const std::vector<MetricExplanation>& metricExplanations();
// Null for an unknown key.
const MetricExplanation* explanationOf(std::string_view key);

// What goes into the metrics of one census.
struct MetricInputs {
    std::int64_t individuals = 0;  // N
    std::int64_t richness = 0;     // S
    std::int64_t singletons = 0;   // f1, species with one specimen
    std::int64_t doubletons = 0;   // f2, species with two
    std::int64_t largest = 0;      // specimens of the commonest species
    std::int64_t sampleSize = 0;   // n, specimens to rarefy to
    double quota = 0;              // q, coverage at which SQS stops
    double coverage = 0;           // the largest that SQS can reach, 0 where it is not known
    SqsAbsence absence = SqsAbsence::none;
};
MetricInputs metricInputs(CountsView counts, std::int64_t sampleSize, double quota);

// "N = 140, S = 20, f1 = 4, f2 = 2": those that the metric takes, in that order.
std::string inputsText(std::string_view key, const MetricInputs& inputs);

// Why a value is "-", missing, or 0 although there are species, as a sentence; or what is
// particular about it. %1 stands for a number, which argument gives. Null where there is nothing to
// say.
struct MetricRemark {
    const char* text = nullptr;
    std::string argument;
};
MetricRemark metricRemark(std::string_view key, const MetricInputs& inputs);

}  // namespace zorvel
