// What each number means, how it is computed and who published it, and what went into the value at
// hand: the words behind a value of the windows and behind the help pages. In English, to be
// translated where they are shown. Pure; safe on any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "metrics/counts.h"
#include "metrics/incidence.h"
#include "metrics/sparse_counts.h"
#include "metrics/sqs.h"

namespace zorvel {

struct MetricExplanation {
    std::string_view key;
    const char* name;  // "Chao1, bias-corrected"
    const char* meaning;
    const char* formula;  // in the symbols of the inputs; p stands for a species' share of N
    const char* variant;  // how it differs from what others call so; may be empty
    const char* source;   // the publication
};

// Those of one census first, under the keys of metric_captions.h; then those that a project has
// besides: its own counts ("pooledRichness"), averages ("averageShannonH") and what rests on
// incidence.
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
// N is above what can be rarefied to n.
bool isBeyondRarefaction(const MetricInputs& inputs);

// What goes into the metrics of a project.
struct ProjectMetricInputs {
    MetricInputs pooled;        // all censuses as one; n counts censuses where sample-based
    std::int64_t censuses = 0;  // T
    // How many of them have no species with two specimens, and so on: their values, or the lack of
    // one, decide over the average.
    std::int64_t withoutDoubletons = 0;
    std::int64_t withoutFive = 0;  // no species with five specimens
    std::int64_t withoutSpecies = 0;
    std::int64_t ofOneSpecies = 0;
    std::int64_t ofOneSpecimen = 0;
    std::int64_t withinSampleSize = 0;   // N is not above n
    std::int64_t beyondRarefaction = 0;  // isBeyondRarefaction()
    std::int64_t withSqs = 0;            // there is an estimate
    SqsAbsenceCounts withoutSqs{};
    std::int64_t taxonNames = 0;  // S_all, those without any specimen included
    std::int64_t taxaFound = 0;   // S
    std::int64_t uniques = 0;     // Q1, species found in one census
    std::int64_t duplicates = 0;  // Q2, in two
};
// What the averages take of the censuses; what is known of SQS stays. The pooled n must be there.
void countCensuses(const SparseCounts& counts, ProjectMetricInputs& inputs);
void takeIncidence(const IncidenceSummary& summary, ProjectMetricInputs& inputs);

// "N = 140, S = 20, f1 = 4, f2 = 2": those that the metric takes, in that order.
std::string inputsText(std::string_view key, const MetricInputs& inputs);
std::string inputsText(std::string_view key, const ProjectMetricInputs& inputs);

// Why a value is "-", missing, or 0 although there are species, as a sentence; or what is
// particular about it. %1, %2 stand for the arguments. Null where there is nothing to say.
struct MetricRemark {
    const char* text = nullptr;
    std::vector<std::string> arguments = {};
};
MetricRemark metricRemark(std::string_view key, const MetricInputs& inputs);
MetricRemark metricRemark(std::string_view key, const ProjectMetricInputs& inputs);

}  // namespace zorvel
