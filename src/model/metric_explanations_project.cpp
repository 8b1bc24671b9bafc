#include <algorithm>

#include "base/numbers.h"
#include "model/metric_explanation_texts.h"
#include "model/metric_explanations.h"

namespace zorvel {
namespace {

// Why an average is "-", or what its censuses bring into it: told where there is any such census.
struct CensusRemark {
    std::string_view key;
    std::int64_t ProjectMetricInputs::*censuses;
    const char* text;
};
constexpr CensusRemark censusRemarks[] = {
    {"averageChaoClassic", &ProjectMetricInputs::withoutDoubletons,
     QT_TRANSLATE_NOOP("MetricExplanations",
                       "Censuses without a species of two specimens: %1 of %2. Their Chao1 has no "
                       "value, and so the average has none.")},
    {"averageFisherAlpha", &ProjectMetricInputs::withoutFive,
     QT_TRANSLATE_NOOP("MetricExplanations",
                       "Censuses in which no species has 5 specimens: %1 of %2. Their alpha counts "
                       "as 0.")},
    {"averagePielouJ", &ProjectMetricInputs::ofOneSpecies,
     QT_TRANSLATE_NOOP("MetricExplanations",
                       "Censuses of a single species: %1 of %2. Their J has no value, and so the "
                       "average has none.")},
    {"averageSimpsonD", &ProjectMetricInputs::ofOneSpecimen,
     QT_TRANSLATE_NOOP("MetricExplanations",
                       "Censuses of a single specimen: %1 of %2. Their D has no value, and so the "
                       "average has none.")},
    {"averageBuzasE", &ProjectMetricInputs::withoutSpecies,
     QT_TRANSLATE_NOOP("MetricExplanations",
                       "Censuses without a species: %1 of %2. Their E has no value, and so the "
                       "average has none.")},
    {"averageRarefiedRichness", &ProjectMetricInputs::beyondRarefaction,
     QT_TRANSLATE_NOOP(
         "MetricExplanations",
         "Censuses of more than 10^18 specimens, too many to rarefy exactly: %1 of %2. They have "
         "no value, and so the average has none.")},
    {"averageRarefiedRichness", &ProjectMetricInputs::withinSampleSize,
     QT_TRANSLATE_NOOP("MetricExplanations",
                       "Censuses of n specimens or fewer: %1 of %2. They count with their whole "
                       "richness.")},
};

MetricRemark averageSqsRemark(const ProjectMetricInputs& inputs) {
    if (inputs.censuses == 0) return {};
    if (!(inputs.pooled.quota > 0)) {
        MetricInputs census;
        census.absence = SqsAbsence::quotaNotPositive;
        return metricRemark("alroySQS", census);
    }
    MetricRemark remark{
        QT_TRANSLATE_NOOP("MetricExplanations", "Censuses that have an estimate: %1 of %2."),
        {integerText(inputs.withSqs), integerText(inputs.censuses)}};
    if (inputs.withSqs == inputs.censuses) return remark;
    remark.text = QT_TRANSLATE_NOOP(
        "MetricExplanations",
        "Censuses that have an estimate: %1 of %2. Those without one, by reason: fewer than 11 "
        "specimens: %3; each species found once: %4; a reachable coverage below the quota: %5; the "
        "first species drawn exceeds the quota and is thrown back in every trial: %6.");
    for (const SqsAbsence absence :
         {SqsAbsence::fewerThanElevenSpecimens, SqsAbsence::everySpecimenSingleton,
          SqsAbsence::quotaAboveCoverage, SqsAbsence::noTrialKeptATaxon}) {
        remark.arguments.push_back(
            integerText(inputs.withoutSqs[static_cast<std::size_t>(absence)]));
    }
    return remark;
}

MetricRemark incidenceRemark(std::string_view key, const ProjectMetricInputs& inputs) {
    if (inputs.censuses == 0) return {};
    const std::int64_t unseen = inputs.taxonNames - inputs.taxaFound;
    if (key == "chaoTwo" && inputs.duplicates == 0) {
        return {QT_TRANSLATE_NOOP("MetricExplanations",
                                  "It has no value without a species found in exactly two "
                                  "censuses.")};
    }
    if (key == "chaoTwo" && unseen > 0) {
        return {QT_TRANSLATE_NOOP("MetricExplanations",
                                  "Species names without any specimen: %1. Each raises the "
                                  "estimate by one."),
                {integerText(unseen)}};
    }
    if (key == "sampleBasedRarefiedRichness" && inputs.pooled.sampleSize >= inputs.censuses) {
        return {QT_TRANSLATE_NOOP("MetricExplanations",
                                  "There are no more than t censuses, so this is the number of "
                                  "species found in any.")};
    }
    return {};
}

bool isAverage(std::string_view key) {
    return key.substr(0, 7) == "average";
}

std::string averageInputsText(std::string_view key, const ProjectMetricInputs& inputs) {
    std::string text = "T = " + integerText(inputs.censuses);
    if (key == "averageRarefiedRichness") text += ", n = " + integerText(inputs.pooled.sampleSize);
    if (key == "averageAlroySQS") text += ", q = " + shortestText(inputs.pooled.quota);
    return text;
}

}  // namespace

void countCensuses(const SparseCounts& counts, ProjectMetricInputs& inputs) {
    inputs.censuses = static_cast<std::int64_t>(counts.rows());
    for (std::size_t row = 0; row < counts.rows(); ++row) {
        const MetricInputs census = metricInputs(counts.row(row), inputs.pooled.sampleSize, 0);
        inputs.withoutDoubletons += census.doubletons == 0 ? 1 : 0;
        inputs.withoutFive += census.richness > 0 && census.largest < 5 ? 1 : 0;
        inputs.withoutSpecies += census.richness == 0 ? 1 : 0;
        inputs.ofOneSpecies += census.richness == 1 ? 1 : 0;
        inputs.ofOneSpecimen += census.individuals == 1 ? 1 : 0;
        inputs.beyondRarefaction += isBeyondRarefaction(census) ? 1 : 0;
        inputs.withinSampleSize += census.individuals <= inputs.pooled.sampleSize ? 1 : 0;
    }
}

void takeIncidence(const IncidenceSummary& summary, ProjectMetricInputs& inputs) {
    inputs.censuses = summary.censuses;
    inputs.taxonNames = summary.taxonNames;
    inputs.taxaFound = summary.taxonNames - summary.taxaIn(0);
    inputs.uniques = summary.taxaIn(1);
    inputs.duplicates = summary.taxaIn(2);
}

std::string inputsText(std::string_view key, const ProjectMetricInputs& inputs) {
    if (isAverage(key)) return averageInputsText(key, inputs);
    const std::string censuses = "T = " + integerText(inputs.censuses);
    if (key == "chaoTwo") {
        return censuses + ", S_all = " + integerText(inputs.taxonNames) +
               ", Q1 = " + integerText(inputs.uniques) + ", Q2 = " + integerText(inputs.duplicates);
    }
    if (key == "sampleBasedRarefiedRichness") {
        return censuses + ", S = " + integerText(inputs.taxaFound) +
               ", t = " + integerText(inputs.pooled.sampleSize);
    }
    return inputsText(key, inputs.pooled);
}

MetricRemark metricRemark(std::string_view key, const ProjectMetricInputs& inputs) {
    if (key == "averageAlroySQS") return averageSqsRemark(inputs);
    if (key == "chaoTwo" || key == "sampleBasedRarefiedRichness") {
        return incidenceRemark(key, inputs);
    }
    if (!isAverage(key)) return metricRemark(key, inputs.pooled);
    const auto* found = std::find_if(std::begin(censusRemarks), std::end(censusRemarks),
                                     [&](const CensusRemark& remark) {
                                         return remark.key == key && inputs.*remark.censuses > 0;
                                     });
    if (found == std::end(censusRemarks)) return {};
    return {found->text, {integerText(inputs.*found->censuses), integerText(inputs.censuses)}};
}

}  // namespace zorvel
