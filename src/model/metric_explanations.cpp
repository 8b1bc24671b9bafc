#include "model/metric_explanations.h"

#include <algorithm>

#include "base/numbers.h"
#include "metrics/census_metrics.h"
#include "metrics/rarefaction.h"
#include "model/metric_explanation_texts.h"

namespace zorvel {
namespace {

struct Symbols {
    std::string_view key;
    bool singletonsAndDoubletons;
    bool sampleSize;
    bool quota;
};
constexpr Symbols symbols[] = {
    {"rarefiedRichness", false, true, false}, {"pooledRarefiedRichness", false, true, false},
    {"chaoOne", true, false, false},          {"chaoClassic", true, false, false},
    {"alroySQS", true, false, true},
};

MetricRemark sqsRemark(const MetricInputs& inputs) {
    switch (inputs.absence) {
        case SqsAbsence::fewerThanElevenSpecimens:
            return {QT_TRANSLATE_NOOP("MetricExplanations",
                                      "SQS has no estimate: it needs at least 11 specimens.")};
        case SqsAbsence::everySpecimenSingleton:
            return {QT_TRANSLATE_NOOP(
                "MetricExplanations",
                "SQS has no estimate: every specimen belongs to a species of its own.")};
        case SqsAbsence::quotaAboveCoverage:
            return {QT_TRANSLATE_NOOP(
                        "MetricExplanations",
                        "SQS has no estimate: the quota is above the reachable coverage, %1."),
                    {fixedText(inputs.coverage, 2)}};
        case SqsAbsence::quotaAboveSpecimens:
            return {QT_TRANSLATE_NOOP(
                "MetricExplanations",
                "SQS has no estimate: the quota is above the number of specimens.")};
        case SqsAbsence::quotaNotPositive:
            return {QT_TRANSLATE_NOOP("MetricExplanations",
                                      "SQS has no value: a quota that is not above 0 is reached "
                                      "before any specimen is drawn.")};
        case SqsAbsence::noTrialKeptATaxon:
            if (inputs.richness == 1) {
                return {QT_TRANSLATE_NOOP("MetricExplanations",
                                          "SQS has no value: the only species exceeds the quota "
                                          "by itself, and is thrown back in every trial.")};
            }
            return {QT_TRANSLATE_NOOP("MetricExplanations",
                                      "SQS has no value: in every trial the first species drawn "
                                      "exceeded the quota by itself and was thrown back.")};
        case SqsAbsence::none:
            break;
    }
    return {};
}

MetricRemark rarefiedRemark(const MetricInputs& inputs) {
    if (isBeyondRarefaction(inputs)) {
        return {
            QT_TRANSLATE_NOOP("MetricExplanations",
                              "There are more than 10^18 specimens, too many to rarefy exactly.")};
    }
    if (inputs.individuals > 0 && inputs.sampleSize >= inputs.individuals) {
        return {QT_TRANSLATE_NOOP(
            "MetricExplanations",
            "There are no more than n specimens, so this is the richness itself.")};
    }
    return {};
}

MetricRemark fisherRemark(const MetricInputs& inputs) {
    if (inputs.richness == 0) return {};
    if (inputs.largest < 5) {
        return {QT_TRANSLATE_NOOP(
            "MetricExplanations",
            "It is not computed, and shown as 0, where no species has 5 specimens.")};
    }
    if (inputs.individuals <= inputs.richness) {
        return {QT_TRANSLATE_NOOP("MetricExplanations",
                                  "It is not computed, and shown as 0: negative abundances leave "
                                  "no more specimens than species.")};
    }
    return {};
}

}  // namespace

const std::vector<MetricExplanation>& metricExplanations() {
    static const std::vector<MetricExplanation> all = [] {
        std::vector<MetricExplanation> list = censusExplanations();
        const std::vector<MetricExplanation> project = projectExplanations();
        list.insert(list.end(), project.begin(), project.end());
        return list;
    }();
    return all;
}

const MetricExplanation* explanationOf(std::string_view key) {
    for (const MetricExplanation& explanation : metricExplanations()) {
        if (explanation.key == key) return &explanation;
    }
    return nullptr;
}

MetricInputs metricInputs(CountsView counts, std::int64_t sampleSize, double quota) {
    MetricInputs inputs;
    inputs.individuals = individuals(counts);
    inputs.richness = richness(counts);
    inputs.singletons = std::count(counts.begin(), counts.end(), 1);
    inputs.doubletons = std::count(counts.begin(), counts.end(), 2);
    if (!counts.empty()) inputs.largest = *std::max_element(counts.begin(), counts.end());
    inputs.sampleSize = sampleSize;
    inputs.quota = quota;
    return inputs;
}

bool isBeyondRarefaction(const MetricInputs& inputs) {
    return inputs.sampleSize != 1 && inputs.individuals > RarefactionCalculator::kMostIndividuals;
}

std::string inputsText(std::string_view key, const MetricInputs& inputs) {
    std::string text =
        "N = " + integerText(inputs.individuals) + ", S = " + integerText(inputs.richness);
    const auto* found = std::find_if(std::begin(symbols), std::end(symbols),
                                     [&](const Symbols& each) { return each.key == key; });
    if (found == std::end(symbols)) return text;
    if (found->singletonsAndDoubletons) {
        text += ", f1 = " + integerText(inputs.singletons);
        text += ", f2 = " + integerText(inputs.doubletons);
    }
    if (found->sampleSize) text += ", n = " + integerText(inputs.sampleSize);
    if (found->quota) text += ", q = " + shortestText(inputs.quota);
    return text;
}

MetricRemark metricRemark(std::string_view key, const MetricInputs& inputs) {
    if (key == "alroySQS") return sqsRemark(inputs);
    if (key == "rarefiedRichness" || key == "pooledRarefiedRichness") return rarefiedRemark(inputs);
    if (key == "fisherAlpha") return fisherRemark(inputs);
    if (key == "pielouJ" && inputs.richness == 1) {
        return {QT_TRANSLATE_NOOP("MetricExplanations",
                                  "It has no value for a single species: ln S is 0.")};
    }
    if (key == "simpsonD" && inputs.individuals == 1) {
        return {QT_TRANSLATE_NOOP("MetricExplanations",
                                  "It has no value where N is 1: there are no two specimens to "
                                  "draw.")};
    }
    if (key == "buzasE" && inputs.richness == 0) {
        return {QT_TRANSLATE_NOOP("MetricExplanations", "It has no value without a species.")};
    }
    if (key == "chaoClassic" && inputs.doubletons == 0) {
        return {QT_TRANSLATE_NOOP("MetricExplanations",
                                  "It has no value without a species of two specimens.")};
    }
    return {};
}

}  // namespace zorvel
