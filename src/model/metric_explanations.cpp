#include "model/metric_explanations.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "base/numbers.h"
#include "metrics/diversity_limits.h"
#include "metrics/rarefaction.h"

namespace zorvel {
namespace {

// --- What it means ---

constexpr const char* hurlbert =
    "Hurlbert, S. H. (1971) The nonconcept of species diversity: a critique and alternative "
    "parameters. Ecology 52, 577-586.";
constexpr const char* rarefiedFormula = "the sum over the species of 1 - C(N - N_i, n) / C(N, n)";
constexpr const char* rarefiedVariant =
    "Exact, drawn without replacement; where n is N or more it is S itself, never an "
    "extrapolation.";

struct Words {
    const char* name = nullptr;
    const char* meaning = nullptr;
    const char* formula = nullptr;
    const char* variant = "";
};
struct MetricWords {
    Metric metric;
    const char* source;
    Words sample;
    Words average = {};
    Words pooled = {};  // where they differ from those of a sample
};
constexpr MetricWords allWords[] = {
    {.metric = Metric::individuals,
     .source = "",
     .sample = {"Individuals", "The number of specimens of all included species.",
                "N = the sum of the abundances"},
     .average = {"Average abundance", "The mean number of specimens per census.",
                 "(the sum of N over the T censuses) / T",
                 "Species that are not included count too."},
     .pooled = {"Individuals of all censuses",
                "The number of specimens of all species in all censuses, included or not.",
                "N = the sum of the abundances"}},
    {.metric = Metric::richness,
     .source = "",
     .sample = {"Richness", "The number of included species with at least one specimen.",
                "S = the number of abundances of 1 or more"},
     .average = {"Average richness", "The mean number of species per census.",
                 "(the sum of S over the T censuses) / T",
                 "Species that are not included count too."},
     .pooled = {"Richness of all censuses",
                "The number of species names with at least one specimen in any census, included or "
                "not.",
                "S = the number of summed abundances of 1 or more"}},
    {.metric = Metric::rarefiedRichness,
     .source = hurlbert,
     .sample = {"Rarefied richness",
                "The number of species expected in a random subsample of n specimens: it makes "
                "censuses of different size comparable.",
                rarefiedFormula, rarefiedVariant},
     .average = {"Average rarefied richness",
                 "The mean over the censuses of the number of species expected in a random "
                 "subsample of n specimens.",
                 "(the sum of the rarefied richness over the T censuses) / T",
                 "A census of n specimens or fewer counts with its whole richness."},
     .pooled = {"Rarefied richness of all censuses",
                "The number of species expected in a random subsample of n of all specimens of the "
                "project.",
                rarefiedFormula, rarefiedVariant}},
    {.metric = Metric::chaoOne,
     .source = "Chao, A. (2005) Species estimation and applications. Encyclopedia of Statistical "
               "Sciences, 2nd edition, 12, 7907-7916.",
     .sample = {"Chao1, bias-corrected",
                "An estimate of the number of species including those not seen, from those seen "
                "once and twice.",
                "S + f1 (f1 - 1) / (2 (f2 + 1))",
                "The bias-corrected form, without the factor (N - 1) / N. The table of metrics and "
                "the project-wide metrics give the classic form S + f1^2 / (2 f2)."}},
    {.metric = Metric::chaoClassic,
     .source = "Chao, A. (1984) Nonparametric estimation of the number of classes in a population. "
               "Scandinavian Journal of Statistics 11, 265-270.",
     .sample = {"Chao1, classic",
                "An estimate of the number of species including those not seen, from those seen "
                "once and twice.",
                "S + f1^2 / (2 f2)",
                "The classic form, without the factor (N - 1) / N; it has no value without species "
                "seen twice. The main window gives the bias-corrected form."},
     .average = {"Average Chao1, classic",
                 "The mean over the censuses of the estimated number of species including those "
                 "not seen.",
                 "(the sum of S + f1^2 / (2 f2) over the T censuses) / T",
                 "The classic form; a census without species seen twice has no value, and then "
                 "neither has the average. The main window gives the bias-corrected form."}},
    {.metric = Metric::alroySQS,
     .source = "Alroy, J. (2010) The shifting balance of diversity among major marine animal "
               "groups. Science 329, 1191-1194.",
     .sample = {"Shareholder quorum subsampling (SQS)",
                "The number of species found on average when specimens are drawn until the species "
                "seen make up the share q of the community.",
                "the geometric mean of 100 trials; a species counts with (N_i - a) / N, where a = "
                "(f1 + f2) / (2 S)",
                "Rare species are discounted in each frequency, and the quota is not divided by "
                "Good's u. Drawn at random: it varies slightly from one calculation to the next."},
     .average = {"Average SQS", "The mean of the SQS estimates of the censuses that have one.",
                 "(the sum of the estimates) / (the number of censuses that have one)",
                 "Unlike the other averages it leaves out the censuses without an estimate. Drawn "
                 "at random: it varies slightly from one calculation to the next."}},
    {.metric = Metric::shannonH,
     .source = "Shannon, C. E. (1948) A mathematical theory of communication. Bell System "
               "Technical Journal 27, 379-423, 623-656.",
     .sample = {"Shannon's H",
                "The entropy of the species' shares: high where there are many species of even "
                "abundance.",
                "-(the sum of p ln p)", "Natural logarithm, not corrected for the sample's size."},
     .average = {"Average Shannon's H",
                 "The mean over the censuses of the entropy of the species' shares.",
                 "(the sum of H over the T censuses) / T",
                 "Each census counts alike, whatever its size; natural logarithm."}},
    {.metric = Metric::fisherAlpha,
     .source = "Fisher, R. A., Corbet, A. S. & Williams, C. B. (1943) The relation between the "
               "number of species and the number of individuals in a random sample of an animal "
               "population. Journal of Animal Ecology 12, 42-58.",
     .sample = {"Fisher's alpha",
                "The parameter of the log series that has this number of specimens and species.",
                "the root of S = alpha ln(1 + N / alpha)",
                "Solved by fixed-point iteration (tolerance 0.00001)."},
     .average = {"Average Fisher's alpha",
                 "The mean over the censuses of the parameter of the log series.",
                 "(the sum of alpha over the T censuses) / T",
                 "A census in which no species has 5 specimens counts as 0."}},
    {.metric = Metric::pielouJ,
     .source = "Pielou, E. C. (1966) The measurement of diversity in different types of biological "
               "collections. Journal of Theoretical Biology 13, 131-144.",
     .sample = {"Pielou's J",
                "Evenness: Shannon's H divided by the largest value that this number of species "
                "allows.",
                "H / ln S"},
     .average = {"Average Pielou's J", "The mean over the censuses of the evenness J.",
                 "(the sum of H / ln S over the T censuses) / T",
                 "A census of a single species has no value, and then neither has the average."}},
    {.metric = Metric::simpsonD,
     .source = "Simpson, E. H. (1949) Measurement of diversity. Nature 163, 688.",
     .sample = {"Simpson's D",
                "The probability that two specimens drawn without replacement are of different "
                "species.",
                "1 - (the sum of N_i (N_i - 1)) / (N (N - 1))",
                "The form that grows with diversity, for a finite sample; neither the "
                "concentration (the sum of p^2) nor its inverse."},
     .average = {"Average Simpson's D",
                 "The mean over the censuses of the probability that two specimens of a census are "
                 "of different species.",
                 "(the sum of D over the T censuses) / T",
                 "The form for a finite sample, drawn without replacement. A census of a single "
                 "specimen has no value, and then neither has the average."}},
    {.metric = Metric::buzasE,
     .source = "Buzas, M. A. & Gibson, T. G. (1969) Species diversity: benthonic Foraminifera in "
               "western North Atlantic. Science 163, 72-75.",
     .sample = {"Buzas-Gibson's E",
                "Evenness: the number of equally common species that would give this H, divided by "
                "S.",
                "e^H / S"},
     .average = {"Average Buzas-Gibson's E", "The mean over the censuses of the evenness E.",
                 "(the sum of e^H / S over the T censuses) / T",
                 "A census without a species has no value, and then neither has the average."}},
    {.metric = Metric::chaoTwo,
     .source = "Chao, A. (1987) Estimating the population size for capture-recapture data with "
               "unequal catchability. Biometrics 43, 783-791.",
     .sample = {"Chao2, classic",
                "An estimate of the number of species including those not seen, from those found "
                "in one census and in two.",
                "S_all + ((T - 1) / T) Q1^2 / (2 Q2), where Q1 and Q2 are the species found in one "
                "and in two censuses",
                "The classic form, with the factor (T - 1) / T; it has no value without species "
                "found in two censuses. S_all counts every species name of the project, one "
                "without any specimen too."}},
    {.metric = Metric::sampleBasedRarefiedRichness,
     .source = "Colwell, R. K., Mao, C. X. & Chang, J. (2004) Interpolating, extrapolating, and "
               "comparing incidence-based species accumulation curves. Ecology 85, 2717-2727.",
     .sample = {"Sample-based rarefied richness",
                "The number of species expected in t of the T censuses, drawn at random.",
                "S - the sum over the species of C(T - T_i, t) / C(T, t), where T_i is the number "
                "of censuses that hold the species",
                "Mao's tau; exact, and where t is T or more it is S itself, never an "
                "extrapolation."}},
};
static_assert(std::size(allWords) == metricCount &&
              std::equal(metricTable.begin(), metricTable.end(), allWords,
                         [](const MetricDescriptor& row, const MetricWords& words) {
                             return row.metric == words.metric;
                         }));

// --- What is particular about a value ---

// A kind of census, or of all censuses pooled, whose value is absent or peculiar.
struct Peculiarity {
    Metric metric;
    bool (*holds)(const SampleInputs& sample, std::int64_t size);
    const char* remark;  // on the value of such a sample; empty: none
    // On an average that such censuses take part in; null: none.
    const char* censuses = nullptr;
    const char* effect = nullptr;
};
constexpr Peculiarity peculiarities[] = {
    {Metric::chaoClassic, [](const SampleInputs& s, std::int64_t) { return s.doubletons == 0; },
     "It has no value without a species of two specimens.", "without a species of two specimens",
     "Their Chao1 has no value, and so the average has none."},
    {Metric::fisherAlpha,
     [](const SampleInputs& s, std::int64_t) { return s.richness > 0 && s.allBelowFive; },
     "It is not computed, and shown as 0, where no species has 5 specimens.",
     "in which no species has 5 specimens", "Their alpha counts as 0."},
    {Metric::fisherAlpha,
     [](const SampleInputs& s, std::int64_t) {
         return s.richness > 0 && s.individuals <= s.richness;
     },
     "It is not computed, and shown as 0: negative abundances leave no more specimens than "
     "species."},
    {Metric::pielouJ, [](const SampleInputs& s, std::int64_t) { return s.richness == 1; },
     "It has no value for a single species: ln S is 0.", "of a single species",
     "Their J has no value, and so the average has none."},
    {Metric::simpsonD, [](const SampleInputs& s, std::int64_t) { return s.individuals == 1; },
     "It has no value where N is 1: there are no two specimens to draw.", "of a single specimen",
     "Their D has no value, and so the average has none."},
    {Metric::buzasE, [](const SampleInputs& s, std::int64_t) { return s.richness == 0; },
     "It has no value without a species.", "without a species",
     "Their E has no value, and so the average has none."},
    {Metric::rarefiedRichness,
     [](const SampleInputs& s, std::int64_t size) {
         return size != 1 && s.individuals > RarefactionCalculator::kMostIndividuals;
     },
     "There are more than 10^18 specimens, too many to rarefy exactly.",
     "of more than 10^18 specimens, too many to rarefy exactly",
     "They have no value, and so the average has none."},
    {Metric::rarefiedRichness,
     [](const SampleInputs& s, std::int64_t size) {
         return s.individuals > 0 && s.individuals <= size;
     },
     "There are no more than n specimens, so this is the richness itself."},
    {Metric::rarefiedRichness,
     [](const SampleInputs& s, std::int64_t size) { return s.individuals <= size; }, "",
     "of n specimens or fewer", "They count with their whole richness."},
};
std::string sampleRemark(Metric metric, const MetricInputs& inputs) {
    for (const Peculiarity& each : peculiarities) {
        if (each.metric == metric && each.holds(inputs.sample, inputs.parameters.size))
            return each.remark;
    }
    return {};
}

std::string ofCensuses(std::int64_t some, const MetricInputs& inputs) {
    return ": " + integerText(some) + " of " + integerText(inputs.censuses) + ".";
}

std::string averageRemark(Metric metric, const MetricInputs& inputs) {
    for (std::size_t i = 0; i < inputs.peculiar.size(); ++i) {
        const Peculiarity& each = peculiarities[i];
        if (each.metric != metric || each.censuses == nullptr || inputs.peculiar[i] == 0) continue;
        return std::string("Censuses ") + each.censuses + ofCensuses(inputs.peculiar[i], inputs) +
               ' ' + each.effect;
    }
    return {};
}

constexpr const char* quotaRemark =
    "SQS has no value: a quota that is not above 0 is reached before any specimen is drawn.";

std::string sqsRemark(const MetricInputs& inputs) {
    switch (inputs.sqs.absence) {
        case SqsAbsence::fewerThanElevenSpecimens:
            return "SQS has no estimate: it needs at least 11 specimens.";
        case SqsAbsence::everySpecimenSingleton:
            return "SQS has no estimate: every specimen belongs to a species of its own.";
        case SqsAbsence::quotaAboveCoverage:
            return "SQS has no estimate: the quota is above the reachable coverage, " +
                   fixedText(inputs.sqs.frequencySum, 2) + ".";
        case SqsAbsence::quotaAboveSpecimens:
            return "SQS has no estimate: the quota is above the number of specimens.";
        case SqsAbsence::quotaNotPositive:
            return quotaRemark;
        case SqsAbsence::noTrialKeptATaxon:
            if (inputs.sample.richness == 1) {
                return "SQS has no value: the only species exceeds the quota by itself, and is "
                       "thrown back in every trial.";
            }
            return "SQS has no value: in every trial the first species drawn exceeded the quota by "
                   "itself and was thrown back.";
        case SqsAbsence::none:
            break;
    }
    return {};
}

std::string averageSqsRemark(const MetricInputs& inputs) {
    if (inputs.censuses == 0) return {};
    if (!(inputs.parameters.quota > 0)) return quotaRemark;
    const AverageSqs& sqs = inputs.averageSqs;
    std::string some = "Censuses that have an estimate" + ofCensuses(sqs.censuses, inputs);
    if (sqs.censuses == inputs.censuses) return some;
    const auto lacking = [&sqs](SqsAbsence absence) {
        return integerText(sqs.lacking[static_cast<std::size_t>(absence)]);
    };
    return some + " Those without one, by reason: fewer than 11 specimens: " +
           lacking(SqsAbsence::fewerThanElevenSpecimens) +
           "; each species found once: " + lacking(SqsAbsence::everySpecimenSingleton) +
           "; a reachable coverage below the quota: " + lacking(SqsAbsence::quotaAboveCoverage) +
           "; the first species drawn exceeds the quota and is thrown back in every trial: " +
           lacking(SqsAbsence::noTrialKeptATaxon) + ".";
}

std::string chaoTwoRemark(const MetricInputs& inputs) {
    if (inputs.censuses == 0) return {};
    if (inputs.incidence.taxaIn(2) == 0) {
        return "It has no value without a species found in exactly two censuses.";
    }
    if (inputs.incidence.taxaIn(0) == 0) return {};
    return "Species names without any specimen: " + integerText(inputs.incidence.taxaIn(0)) +
           ". Each raises the estimate by one.";
}

}  // namespace

MetricExplanation explanationOf(const ShownMetric& shown) {
    const MetricWords& all = allWords[static_cast<std::size_t>(shown.metric)];
    const Words* words = &all.sample;
    if (shown.group == MetricGroup::averages) words = &all.average;
    if (shown.group == MetricGroup::pooled && all.pooled.name != nullptr) words = &all.pooled;
    return {words->name, words->meaning, words->formula, words->variant, all.source};
}

SampleInputs::SampleInputs(const AbundanceTally& counts)
    : individuals(counts.individuals()),
      richness(counts.richness()),
      singletons(counts.taxaWith(1)),
      doubletons(counts.taxaWith(2)),
      allBelowFive(counts.allBelowFive()) {}

void countCensuses(const SparseCounts& counts, MetricInputs& inputs) {
    inputs.censuses = static_cast<std::int64_t>(counts.rows());
    inputs.peculiar.assign(std::size(peculiarities), 0);
    for (std::size_t row = 0; row < counts.rows(); ++row) {
        const SampleInputs census{AbundanceTally(counts.row(row))};
        for (std::size_t i = 0; i < std::size(peculiarities); ++i)
            if (peculiarities[i].holds(census, inputs.parameters.size)) ++inputs.peculiar[i];
    }
}

std::string inputsText(const ShownMetric& shown, const MetricInputs& inputs) {
    const SampleInputs& sample = inputs.sample;
    std::string text = "T = " + integerText(inputs.censuses);
    if (shown.group == MetricGroup::census || shown.group == MetricGroup::pooled)
        text = "N = " + integerText(sample.individuals) + ", S = " + integerText(sample.richness);
    const char* sizeSymbol = ", n = ";
    switch (shown.metric) {
        case Metric::chaoOne:
        case Metric::chaoClassic:
        case Metric::alroySQS:
            if (shown.group == MetricGroup::averages) break;
            text += ", f1 = " + integerText(sample.singletons) +
                    ", f2 = " + integerText(sample.doubletons);
            break;
        case Metric::chaoTwo:
            text += ", S_all = " + integerText(inputs.incidence.taxonNames) +
                    ", Q1 = " + integerText(inputs.incidence.taxaIn(1)) +
                    ", Q2 = " + integerText(inputs.incidence.taxaIn(2));
            break;
        case Metric::sampleBasedRarefiedRichness:
            text +=
                ", S = " + integerText(inputs.incidence.taxonNames - inputs.incidence.taxaIn(0));
            sizeSymbol = ", t = ";
            break;
        default:
            break;
    }
    switch (descriptorOf(shown.metric).parameter) {
        case MetricParameter::size:
            return text + sizeSymbol + integerText(inputs.parameters.size);
        case MetricParameter::quota:
            return text + ", q = " + shortestText(inputs.parameters.quota);
        case MetricParameter::none:
            break;
    }
    return text;
}

std::string metricRemark(const ShownMetric& shown, const MetricInputs& inputs) {
    const bool isAverage = shown.group == MetricGroup::averages;
    switch (shown.metric) {
        case Metric::alroySQS:
            return isAverage ? averageSqsRemark(inputs) : sqsRemark(inputs);
        case Metric::chaoTwo:
            return chaoTwoRemark(inputs);
        case Metric::sampleBasedRarefiedRichness:
            if (inputs.censuses == 0 || inputs.parameters.size < inputs.censuses) return {};
            return "There are no more than t censuses, so this is the number of species found in "
                   "any.";
        default:
            return isAverage ? averageRemark(shown.metric, inputs)
                             : sampleRemark(shown.metric, inputs);
    }
}

std::string limitsText(const ShownMetric& shown, const MetricInputs& inputs) {
    const auto of = [](std::int64_t once, std::int64_t twice, std::int64_t taxa) {
        FrequencyCounts counts;
        if (once > 0) counts.classes.push_back({1, once});
        if (twice > 0) counts.classes.push_back({2, twice});
        counts.taxa = static_cast<double>(taxa);
        return counts;
    };
    const SampleInputs& sample = inputs.sample;
    const IncidenceSummary& incidence = inputs.incidence;
    std::optional<RichnessEstimate> estimate;
    if (shown.metric == Metric::chaoTwo) {
        if (incidence.taxaIn(2) == 0) return {};
        const auto censuses = static_cast<double>(incidence.censuses);
        estimate = chaoEstimate(of(incidence.taxaIn(1), incidence.taxaIn(2), incidence.taxonNames),
                                ChaoForm::classic, (censuses - 1) / censuses);
    } else {
        const bool classic = shown.metric == Metric::chaoClassic;
        if (shown.group == MetricGroup::averages || sample.richness == 0) return {};
        if (shown.metric != Metric::chaoOne && (!classic || sample.doubletons == 0)) return {};
        estimate = chaoEstimate(of(sample.singletons, sample.doubletons, sample.richness),
                                classic ? ChaoForm::classic : ChaoForm::biasCorrected, 1);
    }
    if (!estimate) return "None: no species is estimated to be missing.";
    return "95%: " + fixedText(estimate->limits.lower95, 1) + " to " +
           fixedText(estimate->limits.upper95, 1) + "; standard error " +
           fixedText(estimate->standardError, 1) + " (log-normal, Chao 1987)";
}

}  // namespace zorvel
