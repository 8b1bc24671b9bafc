#include "model/metric_explanation_texts.h"

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
constexpr const char* shannon =
    "Shannon, C. E. (1948) A mathematical theory of communication. Bell System Technical Journal "
    "27, 379-423, 623-656.";
constexpr const char* fisher =
    "Fisher, R. A., Corbet, A. S. & Williams, C. B. (1943) The relation between the number of "
    "species and the number of individuals in a random sample of an animal population. Journal of "
    "Animal Ecology 12, 42-58.";
constexpr const char* pielou =
    "Pielou, E. C. (1966) The measurement of diversity in different types of biological "
    "collections. Journal of Theoretical Biology 13, 131-144.";
constexpr const char* simpson = "Simpson, E. H. (1949) Measurement of diversity. Nature 163, 688.";
constexpr const char* buzas =
    "Buzas, M. A. & Gibson, T. G. (1969) Species diversity: benthonic Foraminifera in western "
    "North Atlantic. Science 163, 72-75.";

}  // namespace

std::vector<MetricExplanation> censusExplanations() {
    return {
        {"individuals", QT_TRANSLATE_NOOP("MetricExplanations", "Individuals"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The number of specimens of all included species."),
         QT_TRANSLATE_NOOP("MetricExplanations", "N = the sum of the abundances"), "",
         QT_TRANSLATE_NOOP("MetricExplanations", "A count; it has no author.")},
        {"richness", QT_TRANSLATE_NOOP("MetricExplanations", "Richness"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The number of included species with at least one specimen."),
         QT_TRANSLATE_NOOP("MetricExplanations", "S = the number of abundances of 1 or more"), "",
         QT_TRANSLATE_NOOP("MetricExplanations", "A count; it has no author.")},
        {"rarefiedRichness", QT_TRANSLATE_NOOP("MetricExplanations", "Rarefied richness"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The number of species expected in a random subsample of n specimens: "
                           "it makes censuses of different size comparable."),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "the sum over the species of 1 - C(N - N_i, n) / C(N, n)"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "Exact, drawn without replacement; where n is N or more it is S itself, "
                           "never an extrapolation."),
         hurlbert},
        {"chaoOne", QT_TRANSLATE_NOOP("MetricExplanations", "Chao1, bias-corrected"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "An estimate of the number of species including those not seen, from "
                           "those seen once and twice."),
         QT_TRANSLATE_NOOP("MetricExplanations", "S + f1 (f1 - 1) / (2 (f2 + 1))"),
         QT_TRANSLATE_NOOP(
             "MetricExplanations",
             "The bias-corrected form, without the factor (N - 1) / N. The table of metrics and "
             "the project-wide metrics give the classic form S + f1^2 / (2 f2)."),
         "Chao, A. (2005) Species estimation and applications. Encyclopedia of Statistical "
         "Sciences, 2nd edition, 12, 7907-7916."},
        {"alroySQS",
         QT_TRANSLATE_NOOP("MetricExplanations", "Shareholder quorum subsampling (SQS)"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The number of species found on average when specimens are drawn until "
                           "the species seen make up the share q of the community."),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "the geometric mean of 100 trials; a species counts with (N_i - a) / N, "
                           "where a = (f1 + f2) / (2 S)"),
         QT_TRANSLATE_NOOP(
             "MetricExplanations",
             "Rare species are discounted in each frequency, and the quota is not divided by "
             "Good's u. Drawn at random: it varies slightly from one calculation to the next."),
         alroy},
        {"shannonH", QT_TRANSLATE_NOOP("MetricExplanations", "Shannon's H"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The entropy of the species' shares: high where there are many species "
                           "of even abundance."),
         QT_TRANSLATE_NOOP("MetricExplanations", "-(the sum of p ln p)"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "Natural logarithm, not corrected for the sample's size."),
         shannon},
        {"fisherAlpha", QT_TRANSLATE_NOOP("MetricExplanations", "Fisher's alpha"),
         QT_TRANSLATE_NOOP(
             "MetricExplanations",
             "The parameter of the log series that has this number of specimens and species."),
         QT_TRANSLATE_NOOP("MetricExplanations", "the root of S = alpha ln(1 + N / alpha)"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "Found by repetition until alpha changes by no more than 0.00001."),
         fisher},
        {"pielouJ", QT_TRANSLATE_NOOP("MetricExplanations", "Pielou's J"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "Evenness: Shannon's H as a part of the largest value that this number "
                           "of species allows."),
         QT_TRANSLATE_NOOP("MetricExplanations", "H / ln S"), "", pielou},
        {"simpsonD", QT_TRANSLATE_NOOP("MetricExplanations", "Simpson's D"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The probability that two specimens drawn without replacement are of "
                           "different species."),
         QT_TRANSLATE_NOOP("MetricExplanations", "1 - (the sum of N_i (N_i - 1)) / (N (N - 1))"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The form that grows with diversity, for a finite sample; neither the "
                           "concentration (the sum of p^2) nor its inverse."),
         simpson},
        {"buzasE", QT_TRANSLATE_NOOP("MetricExplanations", "Buzas-Gibson's E"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "Evenness: the number of equally common species that would give this H, "
                           "as a part of S."),
         QT_TRANSLATE_NOOP("MetricExplanations", "e^H / S"), "", buzas},
    };
}

std::vector<MetricExplanation> projectExplanations() {
    return {
        {"pooledIndividuals",
         QT_TRANSLATE_NOOP("MetricExplanations", "Individuals of all censuses"),
         QT_TRANSLATE_NOOP(
             "MetricExplanations",
             "The number of specimens of all species in all censuses, included or not."),
         QT_TRANSLATE_NOOP("MetricExplanations", "N = the sum of the abundances"), "",
         QT_TRANSLATE_NOOP("MetricExplanations", "A count; it has no author.")},
        {"pooledRichness", QT_TRANSLATE_NOOP("MetricExplanations", "Richness of all censuses"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The number of species names with at least one specimen in any census, "
                           "included or not."),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "S = the number of summed abundances of 1 or more"),
         "", QT_TRANSLATE_NOOP("MetricExplanations", "A count; it has no author.")},
        {"pooledRarefiedRichness",
         QT_TRANSLATE_NOOP("MetricExplanations", "Rarefied richness of all censuses"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The number of species expected in a random subsample of n of all "
                           "specimens of the project."),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "the sum over the species of 1 - C(N - N_i, n) / C(N, n)"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "Exact, drawn without replacement; where n is N or more it is S itself, "
                           "never an extrapolation."),
         hurlbert},
        {"chaoClassic", QT_TRANSLATE_NOOP("MetricExplanations", "Chao1, classic"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "An estimate of the number of species including those not seen, from "
                           "those seen once and twice."),
         QT_TRANSLATE_NOOP("MetricExplanations", "S + f1^2 / (2 f2)"),
         QT_TRANSLATE_NOOP(
             "MetricExplanations",
             "The classic form, without the factor (N - 1) / N; it has no value without species "
             "seen twice. The main window gives the bias-corrected form."),
         chao1984},
        {"averageAbundance", QT_TRANSLATE_NOOP("MetricExplanations", "Average abundance"),
         QT_TRANSLATE_NOOP("MetricExplanations", "The mean number of specimens of a census."),
         QT_TRANSLATE_NOOP("MetricExplanations", "(the sum of the N of the T censuses) / T"),
         QT_TRANSLATE_NOOP("MetricExplanations", "Species that are not included count too."),
         QT_TRANSLATE_NOOP("MetricExplanations", "A mean; it has no author.")},
        {"averageRichness", QT_TRANSLATE_NOOP("MetricExplanations", "Average richness"),
         QT_TRANSLATE_NOOP("MetricExplanations", "The mean number of species of a census."),
         QT_TRANSLATE_NOOP("MetricExplanations", "(the sum of the S of the T censuses) / T"),
         QT_TRANSLATE_NOOP("MetricExplanations", "Species that are not included count too."),
         QT_TRANSLATE_NOOP("MetricExplanations", "A mean; it has no author.")},
        {"averageChaoClassic", QT_TRANSLATE_NOOP("MetricExplanations", "Average Chao1, classic"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The mean over the censuses of the estimated number of species "
                           "including those not seen."),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "(the sum of S + f1^2 / (2 f2) over the T censuses) / T"),
         QT_TRANSLATE_NOOP(
             "MetricExplanations",
             "The classic form; a census without species seen twice has no value, and then neither "
             "has the average. The main window gives the bias-corrected form."),
         chao1984},
        {"averageShannonH", QT_TRANSLATE_NOOP("MetricExplanations", "Average Shannon's H"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The mean over the censuses of the entropy of the species' shares."),
         QT_TRANSLATE_NOOP("MetricExplanations", "(the sum of the H of the T censuses) / T"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "Each census counts alike, whatever its size; natural logarithm."),
         shannon},
        {"averageFisherAlpha", QT_TRANSLATE_NOOP("MetricExplanations", "Average Fisher's alpha"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The mean over the censuses of the parameter of the log series."),
         QT_TRANSLATE_NOOP("MetricExplanations", "(the sum of the alpha of the T censuses) / T"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "A census in which no species has 5 specimens counts as 0."),
         fisher},
        {"averagePielouJ", QT_TRANSLATE_NOOP("MetricExplanations", "Average Pielou's J"),
         QT_TRANSLATE_NOOP("MetricExplanations", "The mean over the censuses of the evenness J."),
         QT_TRANSLATE_NOOP("MetricExplanations", "(the sum of H / ln S over the T censuses) / T"),
         QT_TRANSLATE_NOOP(
             "MetricExplanations",
             "A census of a single species has no value, and then neither has the average."),
         pielou},
        {"averageSimpsonD", QT_TRANSLATE_NOOP("MetricExplanations", "Average Simpson's D"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The mean over the censuses of the probability that two specimens of a "
                           "census are of different species."),
         QT_TRANSLATE_NOOP("MetricExplanations", "(the sum of the D of the T censuses) / T"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The form for a finite sample, drawn without replacement. A census of a "
                           "single specimen has no value, and then neither has the average."),
         simpson},
        {"averageBuzasE", QT_TRANSLATE_NOOP("MetricExplanations", "Average Buzas-Gibson's E"),
         QT_TRANSLATE_NOOP("MetricExplanations", "The mean over the censuses of the evenness E."),
         QT_TRANSLATE_NOOP("MetricExplanations", "(the sum of e^H / S over the T censuses) / T"),
         QT_TRANSLATE_NOOP(
             "MetricExplanations",
             "A census without a species has no value, and then neither has the average."),
         buzas},
        {"averageRarefiedRichness",
         QT_TRANSLATE_NOOP("MetricExplanations", "Average rarefied richness"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The mean over the censuses of the number of species expected in a "
                           "random subsample of n specimens."),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "(the sum of the rarefied richness of the T censuses) / T"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "A census of n specimens or fewer counts with its whole richness."),
         hurlbert},
        {"averageAlroySQS", QT_TRANSLATE_NOOP("MetricExplanations", "Average SQS"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The mean of the SQS estimates of the censuses that have one."),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "(the sum of the estimates) / (the number of censuses that have one)"),
         QT_TRANSLATE_NOOP(
             "MetricExplanations",
             "Unlike the other averages it leaves out the censuses without an estimate. Drawn at "
             "random: it varies slightly from one calculation to the next."),
         alroy},
        {"chaoTwo", QT_TRANSLATE_NOOP("MetricExplanations", "Chao2, classic"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "An estimate of the number of species including those not seen, from "
                           "those found in one census and in two."),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "S_all + ((T - 1) / T) Q1^2 / (2 Q2), where Q1 and Q2 are the species "
                           "found in one and in two censuses"),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "The classic form, with the factor (T - 1) / T; it has no value without "
                           "species found in two censuses. S_all counts every species name of the "
                           "project, one without any specimen too."),
         "Chao, A. (1987) Estimating the population size for capture-recapture data with unequal "
         "catchability. Biometrics 43, 783-791."},
        {"sampleBasedRarefiedRichness",
         QT_TRANSLATE_NOOP("MetricExplanations", "Sample-based rarefied richness"),
         QT_TRANSLATE_NOOP(
             "MetricExplanations",
             "The number of species expected in t of the T censuses, drawn at random."),
         QT_TRANSLATE_NOOP("MetricExplanations",
                           "S - the sum over the species of C(T - T_i, t) / C(T, t), where T_i is "
                           "the number of censuses that hold the species"),
         QT_TRANSLATE_NOOP(
             "MetricExplanations",
             "Mao's tau; exact, and where t is T or more it is S itself, never an extrapolation."),
         "Colwell, R. K., Mao, C. X. & Chang, J. (2004) Interpolating, extrapolating, and "
         "comparing incidence-based species accumulation curves. Ecology 85, 2717-2727."},
    };
}

}  // namespace zorvel
