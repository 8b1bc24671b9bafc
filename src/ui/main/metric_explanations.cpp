#include "ui/main/metric_explanations.h"

#include <QCoreApplication>

#include "base/numbers.h"

namespace zorvel {

namespace {

QString translated(const char* text) {
    return QCoreApplication::translate("MetricsPanel", text);
}

struct Explanation {
    std::string_view key;
    const char* text;
};

constexpr Explanation explanations[] = {
    {"individuals",
     QT_TRANSLATE_NOOP("MetricsPanel", "Number of specimens of all included species.")},
    {"richness",
     QT_TRANSLATE_NOOP("MetricsPanel", "Number of included species with at least one specimen.")},
    {"rarefiedRichness",
     QT_TRANSLATE_NOOP("MetricsPanel",
                       "Species expected in a random subsample of this many specimens "
                       "(Hurlbert 1971).")},
    {"chaoOne",
     QT_TRANSLATE_NOOP("MetricsPanel",
                       "Estimate of richness with the unseen species, from the species seen once "
                       "and twice; bias-corrected form (Chao 1984, 2005).")},
    {"alroySQS",
     QT_TRANSLATE_NOOP("MetricsPanel",
                       "Shareholder quorum subsampling: species found when the sampled share of "
                       "the community reaches the quota (Alroy 2010). Drawn at random, so it "
                       "varies slightly from one calculation to the next.")},
    {"shannonH", QT_TRANSLATE_NOOP("MetricsPanel",
                                   "Shannon's entropy of the species' shares, natural logarithm "
                                   "(Shannon 1948).")},
    {"fisherAlpha",
     QT_TRANSLATE_NOOP("MetricsPanel",
                       "Parameter of the log series fitted to individuals and richness "
                       "(Fisher, Corbet & Williams 1943).")},
    {"pielouJ",
     QT_TRANSLATE_NOOP("MetricsPanel",
                       "Evenness: Shannon's H over its largest possible value, the logarithm of "
                       "the richness (Pielou 1966).")},
    {"simpsonD",
     QT_TRANSLATE_NOOP("MetricsPanel",
                       "Probability that two specimens drawn without replacement are of "
                       "different species (Simpson 1949).")},
    {"buzasE", QT_TRANSLATE_NOOP("MetricsPanel",
                                 "Evenness: the exponential of Shannon's H over the richness "
                                 "(Buzas & Gibson 1969).")},
};

}  // namespace

QString metricExplanation(std::string_view key) {
    for (const Explanation& explanation : explanations) {
        if (explanation.key == key) return translated(explanation.text);
    }
    return {};
}

QString sqsAbsenceReason(const SqsResult& result) {
    switch (result.absence) {
        case SqsAbsence::none:
            return {};
        case SqsAbsence::fewerThanElevenSpecimens:
            return translated("fewer than 11 specimens are counted");
        case SqsAbsence::everySpecimenSingleton:
            return translated("every specimen belongs to a species of its own");
        case SqsAbsence::quotaAboveCoverage:
            return translated("the quota is above the coverage within reach, %1")
                .arg(QString::fromStdString(fixedText(result.frequencySum, 3)));
        case SqsAbsence::quotaAboveSpecimens:
            return translated("the quota is above the number of specimens");
    }
    return {};
}

}  // namespace zorvel
