#include "model/metric_explanations.h"

#include <algorithm>
#include <cmath>

#include "base/numbers.h"
#include "metrics/census_metrics.h"
#include "metrics/rarefaction.h"

namespace zorvel {
namespace {

constexpr const char* hurlbert =
    "Hurlbert, S. H. (1971) The nonconcept of species diversity: a critique and alternative "
    "parameters. Ecology 52, 577-586.";
constexpr const char* chao1984 =
    "Chao, A. (1984) Nonparametric estimation of the number of classes in a population. "
    "Scandinavian Journal of Statistics 11, 265-270.";
constexpr const char* alroy =
    "Alroy, J. (2010) The shifting balance of diversity among major marine animal groups. Science "
    "329, 1191-1194.";

std::vector<MetricExplanation> censusExplanations() {
    return {
        {"individuals", "Individuals", "The number of specimens of all included species.",
         "N = the sum of the abundances", "", "A count; it has no author."},
        {"richness", "Richness", "The number of included species with at least one specimen.",
         "S = the number of abundances of 1 or more", "", "A count; it has no author."},
        {"rarefiedRichness", "Rarefied richness",
         "The number of species expected in a random subsample of n specimens: it makes censuses "
         "of "
         "different size comparable.",
         "the sum over the species of 1 - C(N - N_i, n) / C(N, n)",
         "Exact, drawn without replacement; where n is N or more it is S itself, never an "
         "extrapolation.",
         hurlbert},
        {"chaoOne", "Chao1, bias-corrected",
         "An estimate of the number of species including those not seen, from those seen once and "
         "twice.",
         "S + f1 (f1 - 1) / (2 (f2 + 1))",
         "The bias-corrected form, without the factor (N - 1) / N. The table of metrics and the "
         "project-wide metrics give the classic form S + f1^2 / (2 f2).",
         "Chao, A. (2005) Species estimation and applications. Encyclopedia of Statistical "
         "Sciences, 2nd edition, 12, 7907-7916."},
        {"alroySQS", "Shareholder quorum subsampling (SQS)",
         "The number of species found on average when specimens are drawn until the species seen "
         "make up the share q of the community.",
         "the geometric mean of 100 trials; a species counts with (N_i - a) / N, where "
         "a = (f1 + f2) / (2 S)",
         "Rare species are discounted in each frequency, and the quota is not divided by Good's u. "
         "Drawn at random: it varies slightly from one calculation to the next.",
         alroy},
        {"shannonH", "Shannon's H",
         "The entropy of the species' shares: high where there are many species of even abundance.",
         "-(the sum of p ln p)", "Natural logarithm, not corrected for the sample's size.",
         "Shannon, C. E. (1948) A mathematical theory of communication. Bell System Technical "
         "Journal 27, 379-423, 623-656."},
        {"fisherAlpha", "Fisher's alpha",
         "The parameter of the log series that has this number of specimens and species.",
         "the root of S = alpha ln(1 + N / alpha)",
         "Found by repetition until alpha changes by no more than 0.00001.",
         "Fisher, R. A., Corbet, A. S. & Williams, C. B. (1943) The relation between the number of "
         "species and the number of individuals in a random sample of an animal population. "
         "Journal of Animal Ecology 12, 42-58."},
        {"pielouJ", "Pielou's J",
         "Evenness: Shannon's H as a part of the largest value that this number of species allows.",
         "H / ln S", "",
         "Pielou, E. C. (1966) The measurement of diversity in different types of biological "
         "collections. Journal of Theoretical Biology 13, 131-144."},
        {"simpsonD", "Simpson's D",
         "The probability that two specimens drawn without replacement are of different species.",
         "1 - (the sum of N_i (N_i - 1)) / (N (N - 1))",
         "The form that grows with diversity, for a finite sample; neither the concentration "
         "(the sum of p^2) nor its inverse.",
         "Simpson, E. H. (1949) Measurement of diversity. Nature 163, 688."},
        {"buzasE", "Buzas-Gibson's E",
         "Evenness: the number of equally common species that would give this H, as a part of S.",
         "e^H / S", "",
         "Buzas, M. A. & Gibson, T. G. (1969) Species diversity: benthonic Foraminifera in western "
         "North Atlantic. Science 163, 72-75."},
    };
}

std::vector<MetricExplanation> projectExplanations() {
    return {
        {"chaoClassic", "Chao1, classic",
         "An estimate of the number of species including those not seen, from those seen once and "
         "twice.",
         "S + f1^2 / (2 f2)",
         "The classic form, without the factor (N - 1) / N; it has no value without species seen "
         "twice. The main window gives the bias-corrected form.",
         chao1984},
        {"chaoTwo", "Chao2, classic",
         "An estimate of the number of species including those not seen, from those found in one "
         "census and in two.",
         "S + Q1^2 / (2 Q2), where Q1 and Q2 are the species found in one and in two censuses",
         "The classic form, without the factor (T - 1) / T; it has no value without species found "
         "in two censuses.",
         "Chao, A. (1987) Estimating the population size for capture-recapture data with unequal "
         "catchability. Biometrics 43, 783-791."},
        {"sampleBasedRarefiedRichness", "Sample-based rarefied richness",
         "The number of species expected in t of the T censuses, drawn at random.",
         "S - the sum over the species of C(T - T_i, t) / C(T, t), where T_i is the number of "
         "censuses that hold the species",
         "Mao's tau; exact, never an extrapolation.",
         "Colwell, R. K., Mao, C. X. & Chang, J. (2004) Interpolating, extrapolating, and "
         "comparing "
         "incidence-based species accumulation curves. Ecology 85, 2717-2727."},
    };
}

struct Symbols {
    std::string_view key;
    bool singletonsAndDoubletons;
    bool sampleSize;
    bool quota;
};
constexpr Symbols symbols[] = {
    {"rarefiedRichness", false, true, false},
    {"chaoOne", true, false, false},
    {"chaoClassic", true, false, false},
    {"alroySQS", true, false, true},
};

MetricRemark sqsRemark(const MetricInputs& inputs) {
    switch (inputs.absence) {
        case SqsAbsence::fewerThanElevenSpecimens:
            return {"There is no estimate: SQS needs at least 11 specimens.", ""};
        case SqsAbsence::everySpecimenSingleton:
            return {"There is no estimate: every specimen belongs to a species of its own.", ""};
        case SqsAbsence::quotaAboveCoverage:
            return {"There is no estimate: the quota is above the reachable coverage, %1.",
                    fixedText(inputs.coverage, 2)};
        case SqsAbsence::quotaAboveSpecimens:
            return {"There is no estimate: the quota is above the number of specimens.", ""};
        case SqsAbsence::none:
            break;
    }
    if (!(inputs.quota > 0)) return {"A quota that is not above 0 is reached by no trial.", ""};
    return {};
}

MetricRemark rarefiedRemark(const MetricInputs& inputs) {
    if (inputs.individuals > RarefactionCalculator::kMaxLogFactorials) {
        return {"There are too many specimens to rarefy; the limit is %1.",
                integerText(RarefactionCalculator::kMaxLogFactorials)};
    }
    if (inputs.individuals > 0 && inputs.sampleSize >= inputs.individuals) {
        return {"The census has no more than n specimens, so this is its richness.", ""};
    }
    return {};
}

MetricRemark fisherRemark(const MetricInputs& inputs) {
    if (inputs.richness > 0 && inputs.largest < 5) {
        return {"It is not computed, and shown as 0, where no species has 5 specimens.", ""};
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
    if (key == "rarefiedRichness") return rarefiedRemark(inputs);
    if (key == "fisherAlpha") return fisherRemark(inputs);
    if (key == "pielouJ" && inputs.richness == 1) {
        return {"It has no value for a single species: ln S is 0.", ""};
    }
    if (key == "simpsonD" && inputs.individuals == 1) {
        return {"It has no value for a single specimen: there are no two to draw.", ""};
    }
    if (key == "buzasE" && inputs.richness == 0) {
        return {"It has no value without a species.", ""};
    }
    if (key == "chaoClassic" && inputs.doubletons == 0) {
        return {"It has no value without a species of two specimens.", ""};
    }
    return {};
}

}  // namespace zorvel
