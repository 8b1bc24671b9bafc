#include "model/diversity_explanations.h"

#include <array>
#include <cmath>
#include <optional>

#include "base/numbers.h"
#include "model/diversity_table.h"

namespace zorvel {
namespace {

constexpr const char* chaoJost =
    "Chao, A. & Jost, L. (2012) Coverage-based rarefaction and extrapolation: standardizing "
    "samples by completeness rather than size. Ecology 93, 2533-2547.";
constexpr const char* hillJost =
    "Hill, M. O. (1973) Diversity and evenness: a unifying notation and its consequences. Ecology "
    "54, 427-432. Jost, L. (2006) Entropy and diversity. Oikos 113, 363-375. At equal coverage: "
    "Chao, A. & Jost, L. (2012) Ecology 93, 2533-2547; Chao, A. et al. (2014) Ecological "
    "Monographs 84, 45-67.";
constexpr const char* chaoAndOthers =
    "Chao, A., Gotelli, N. J., Hsieh, T. C., Sander, E. L., Ma, K. H., Colwell, R. K. & Ellison, "
    "A. "
    "M. (2014) Rarefaction and extrapolation with Hill numbers. Ecological Monographs 84, 45-67.";

constexpr const char* bandsAtCoverage =
    "95% of samples like this would give a value in a band like this. From 200 simulated samples, "
    "the same at every calculation. They are wider than at equal size, because the size needed "
    "varies too.";
constexpr const char* bandsAtSize =
    "95% (or 99%) of samples like this would give a value in a band like this; from 200 simulated "
    "samples, the same at every calculation. These bands say how uncertain the estimate is, and do "
    "not close. The band of individual-based rarefaction says how richness varies among subsamples "
    "of this census, and closes at N; that of sample-based rarefaction how the richness of so many "
    "new censuses varies. They differ widely: for 10 of 50 plots of a tropical forest, the "
    "standard deviation is 4.98 by sample-based rarefaction and 1.61 here; for all 50, 3.29 and "
    "3.22.";
constexpr const char* bandsOverOrders =
    "The bands are those of the estimate: 95% (or 99%) of samples like this would give an estimate "
    "in a band like this. From 200 simulated samples, the same at every calculation.";

constexpr const char* partsOfCurves =
    "Solid: drawn from the sample itself, as all its smaller samples would show it on average. "
    "Dashed: predicted, up to twice the sample; beyond that, richness is not reliable. The mark is "
    "the sample itself.";

// The words for incidences stand in place of the others where they differ.
struct TopicWords {
    DiversityTopic topic;
    DiversityExplanation abundance;
    DiversityExplanation incidence = {};
};

constexpr TopicWords allTopics[] = {
    {.topic = DiversityTopic::size,
     .abundance = {"Specimens", "The number of specimens in the sample.",
                   "N = the sum of the abundances",
                   "Of a census, those of the included species; of all pooled, those of every "
                   "species."},
     .incidence = {"Censuses", "The number of censuses in which species were looked for.",
                   "T, the number of censuses",
                   "All species count, whether they are included or not."}},
    {.topic = DiversityTopic::coverage,
     .abundance = {"Sample coverage",
                   "The share of all specimens in the community that belong to species found here: "
                   "how complete the sample is.",
                   "1 - (f1 / N) (N - 1) f1 / ((N - 1) f1 + 2 f2)",
                   "Estimated from the species found once (f1) and twice (f2). Where f2 is 0, the "
                   "last factor is (N - 1) (f1 - 1) / ((N - 1) (f1 - 1) + 2). Good's u, 1 - f1 / "
                   "N, lacks that factor.",
                   "", chaoJost},
     .incidence = {.meaning = "The share of all presences in the community that belong to species "
                              "found here: how complete the sample is.",
                   .formula = "1 - (f1 / U) (T - 1) f1 / ((T - 1) f1 + 2 f2)",
                   .variant =
                       "Estimated from the species found in one census (f1) and in two (f2). "
                       "Where f2 is 0, the last factor is (T - 1) (f1 - 1) / ((T - 1) (f1 - "
                       "1) + 2).",
                   .source = chaoAndOthers}},
    {.topic = DiversityTopic::commonCoverage,
     .abundance = {"Coverage that all reach",
                   "The largest coverage that every sample reaches at twice its size: as far as "
                   "predictions of richness are reliable.",
                   "C = the smallest C(2N) of the samples",
                   "Samples that are too small for any coverage do not count.", "", chaoAndOthers},
     .incidence = {.formula = "C = C(2T)"}},
    {.topic = DiversityTopic::neededSize,
     .abundance = {"Size needed", "The size of the smallest sample with the coverage C.",
                   "the m for which C(m) = C; below N, C(m) = 1 - the sum of (N_i / N) C(N - N_i, "
                   "m) / C(N - 1, m); from N on, C(m) = 1 - (f1 / N) A^(m - N + 1), A = (N - 1) f1 "
                   "/ ((N - 1) f1 + 2 f2)",
                   "Found exactly, also where the coverage hardly grows with the size; linear "
                   "between whole sizes.",
                   "", chaoJost},
     .incidence = {.formula = "the m for which C(m) = C; below T, C(m) = 1 - the sum of (T_i / U) "
                              "C(T - T_i, m) / C(T - 1, m); from T on, C(m) = 1 - (f1 / U) A^(m - "
                              "T + 1), A = (T - 1) f1 / ((T - 1) f1 + 2 f2)",
                   .source = chaoAndOthers}},
    {.topic = DiversityTopic::richness,
     .abundance = {"Species richness (q = 0)",
                   "The number of species in a sample just large enough to cover the share C of "
                   "the community. Rare species count fully.",
                   "S for the sample itself; S - the sum of C(N - N_i, m) / C(N, m) for a smaller "
                   "one; S + f0 (1 - (1 - f1 / (N f0 + f1))^(m - N)) for a larger one, f0 = ((N - "
                   "1) / N) f1^2 / (2 f2)",
                   "SQS aims at the same; this is its exact form, without random draws. For Core "
                   "1, 12 and 5 of the oribatid mites at a coverage of 0.8 it is 10.7, 8.1 and "
                   "10.3, and SQS gives 10.3, 8.2 and 10.4.",
                   bandsAtCoverage, hillJost},
     .incidence = {.formula = "S for the sample itself; S - the sum of C(T - T_i, m) / C(T, m) for "
                              "a smaller one; S + f0 (1 - (1 - f1 / (T f0 + f1))^(m - T)) for a "
                              "larger one, f0 = ((T - 1) / T) f1^2 / (2 f2)",
                   .variant = "Sample-based rarefaction, carried on beyond the sample."}},
    {.topic = DiversityTopic::shannon,
     .abundance = {"Shannon diversity (q = 1)",
                   "As many equally common species would give the same Shannon's H in a sample "
                   "just large enough to cover the share C of the community. Species count in "
                   "proportion to their abundance.",
                   "e^H, H = -(the sum of p ln p), for the sample itself; e^(the expected H of m "
                   "specimens) for a smaller one; a larger one approaches the estimate of the "
                   "community",
                   "H is the Shannon's H of the panel. In larger samples the diversity itself "
                   "approaches its estimate at a constant rate; Chao et al. (2014) mix the two "
                   "entropies instead, with nearly the same values.",
                   bandsAtCoverage, hillJost},
     .incidence = {.formula = "e^H, H = -(the sum of p ln p), p = T_i / U, for the sample itself; "
                              "e^(the expected H of m censuses) for a smaller one; a larger one "
                              "approaches the estimate of the community",
                   .variant = "In larger samples the diversity itself approaches its estimate at a "
                              "constant rate; Chao et al. (2014) mix the two entropies instead, "
                              "with nearly the same values."}},
    {.topic = DiversityTopic::simpson,
     .abundance = {"Simpson diversity (q = 2)",
                   "As many equally common species would give the same sum of p^2 in a sample just "
                   "large enough to cover the share C of the community. Rare species hardly count.",
                   "1 / (the sum of p^2) for the sample itself; 1 / (1 / m + (1 - 1 / m) the sum "
                   "of N_i (N_i - 1) / (N (N - 1))) for one of m specimens",
                   "A number of species, not the Simpson's D of the panel, which is a probability.",
                   bandsAtCoverage, hillJost},
     .incidence = {.formula =
                       "1 / (the sum of p^2), p = T_i / U, for the sample itself; 1 / (r / m "
                       "+ (1 - 1 / m) r^2 the sum of T_i (T_i - 1) / (T (T - 1))) for one of "
                       "m censuses, r = T / U"}},
    {.topic = DiversityTopic::overSizes,
     .abundance =
         {"Diversity over the sample size", partsOfCurves,
          "richness S - the sum of C(N - N_i, m) / C(N, m) for m < N, and S + f0 (1 - (1 - "
          "f1 / (N f0 + f1))^(m - N)) for m > N, f0 = ((N - 1) / N) f1^2 / (2 f2)",
          "Equal sizes cover a poor community better than a rich one: compare at equal "
          "coverage.",
          bandsAtSize, chaoAndOthers},
     .incidence = {.formula = "richness S - the sum of C(T - T_i, m) / C(T, m) for m < T, and S + "
                              "f0 (1 - (1 - f1 / (T f0 + f1))^(m - T)) for m > T, f0 = ((T - 1) / "
                              "T) f1^2 / (2 f2)"}},
    {.topic = DiversityTopic::overCoverage,
     .abundance = {"Diversity over sample coverage", partsOfCurves,
                   "the diversity at the size m for which C(m) = C",
                   "SQS aims at equal coverage too; across coverage, richness is its exact form, "
                   "without random draws.",
                   bandsAtCoverage, chaoJost},
     .incidence = {.variant = "Coverage is the share of presences, not of specimens.",
                   .source = chaoAndOthers}},
    {.topic = DiversityTopic::overOrders,
     .abundance =
         {"Diversity over the order q",
          "Solid: observed. Dashed: the value expected if everything were found; for "
          "richness a lower bound. The larger q, the less rare species count.",
          "observed (the sum of p^q)^(1 / (1 - q)); estimated, q = 0: S + ((N - 1) / N) "
          "f1^2 / (2 f2), or without f2 S + ((N - 1) / N) f1 (f1 - 1) / 2; q = 2: N (N - "
          "1) / the sum of N_i (N_i - 1)",
          "The estimated richness is the classic Chao1 with the factor (N - 1) / N, so not "
          "the Chao1 of the panel, which is the bias-corrected form without the factor, "
          "S + f1 (f1 - 1) / (2 (f2 + 1)).",
          bandsOverOrders,
          "Chao, A. (1984) Scandinavian Journal of Statistics 11, 265-270 (q = 0). Chao, "
          "A., Wang, Y. T. & Jost, L. (2013) Methods in Ecology and Evolution 4, "
          "1091-1100 (q = 1). Chao, A. & Jost, L. (2015) Methods in Ecology and Evolution "
          "6, 873-882 (other orders)."},
     .incidence = {.formula = "observed (the sum of p^q)^(1 / (1 - q)), p = T_i / U; estimated, q "
                              "= 0: S + ((T - 1) / T) f1^2 / (2 f2), or without f2 S + ((T - 1) / "
                              "T) f1 (f1 - 1) / 2; q = 2: U^2 (T - 1) / (T the sum of T_i (T_i - "
                              "1))",
                   .variant = "The estimated richness is the classic Chao2 with the factor (T - 1) "
                              "/ T, as that of the project-wide metrics, which however also counts "
                              "species names without a specimen.",
                   .source = "Chao, A. (1987) Biometrics 43, 783-791 (q = 0). Chao, A. et al. "
                             "(2014) Ecological Monographs 84, 45-67 (q = 1). Chao, A. & Jost, L. "
                             "(2015) Methods in Ecology and Evolution 6, 873-882 (other orders)."}},
};

}  // namespace

DiversityTopic topicOfOrder(std::size_t order) {
    constexpr std::array topics{DiversityTopic::richness, DiversityTopic::shannon,
                                DiversityTopic::simpson};
    return topics[order];
}

DiversityExplanation explanationOf(DiversityTopic topic, SampleKind kind) {
    const TopicWords& words = allTopics[static_cast<std::size_t>(topic)];
    DiversityExplanation all = words.abundance;
    if (kind == SampleKind::abundance) return all;
    for (const auto part : {&DiversityExplanation::name, &DiversityExplanation::meaning,
                            &DiversityExplanation::formula, &DiversityExplanation::variant,
                            &DiversityExplanation::bands, &DiversityExplanation::source}) {
        if (*(words.incidence.*part) != '\0') all.*part = words.incidence.*part;
    }
    return all;
}

std::string diversityInputs(const FrequencyCounts& sample) {
    const bool isIncidence = sample.kind == SampleKind::incidence;
    std::string text = (isIncidence ? "T = " : "N = ") + fixedText(sample.size, 0);
    if (isIncidence) text += ", U = " + fixedText(sample.total, 0);
    return text + ", S = " + fixedText(sample.taxa, 0) +
           ", f1 = " + fixedText(sample.taxaWith(1), 0) +
           ", f2 = " + fixedText(sample.taxaWith(2), 0);
}

std::string estimatesText(const DiversityEstimator& estimator) {
    std::string text;
    for (int q = 0; q < static_cast<int>(kHillOrders); ++q) {
        const std::optional<double> estimate = estimator.estimated(q);
        text += (q == 0 ? "q = " : "; q = ") + std::to_string(q) + ": " + numberCell(estimate, 2);
        if (q > 0 || !estimate || estimator.sample().kind == SampleKind::incidence) continue;
        const double f1 = estimator.sample().taxaWith(1);
        const double f2 = estimator.sample().taxaWith(2);
        const double chaoOne = estimator.sample().taxa + f1 * (f1 - 1) / (2 * (f2 + 1));
        text += " (the Chao1 of the panel: " + fixedText(chaoOne, 2) + ')';
    }
    return text;
}

std::string diversityLimitsText(double estimate, double standardError) {
    const ConfidenceLimits limits = diversityLimits(estimate, standardError);
    return "95%: " + diversityCell(limits.lower95) + " to " + diversityCell(limits.upper95) +
           "; 99%: " + diversityCell(limits.lower99) + " to " + diversityCell(limits.upper99) +
           "; standard error " + diversityCell(standardError);
}

}  // namespace zorvel
