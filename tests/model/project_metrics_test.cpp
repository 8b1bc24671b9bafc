// The metrics table and the explanations of metrics.
#include "model/metric_explanations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include "model/project_metrics.h"
#include "tests/support/counts_of_rows.h"

namespace zorvel {
namespace {

// By its formula, worked out from the inputs, each explained metric has the value of its function.
TEST(MetricExplanations, FormulasAreThoseOfTheValues) {
    const CountsVector counts = {10, 5, 3, 2, 1, 1};
    const MetricValues values = censusMetrics(counts);
    const double H = values.number(Metric::shannonH);
    const struct {
        Metric metric;
        const char* formula;
        double value;
    } rows[] = {
        {Metric::individuals, "N = the sum of the abundances", 22},
        {Metric::richness, "S = the number of abundances of 1 or more", 6},
        {Metric::chaoOne, "S + f1 (f1 - 1) / (2 (f2 + 1))", 6 + 2 * 1 / (2.0 * 2)},
        {Metric::chaoClassic, "S + f1^2 / (2 f2)", 6 + 4 / 2.0},
        {Metric::shannonH, "-(the sum of p ln p)", 1.4658},
        {Metric::fisherAlpha, "the root of S = alpha ln(1 + N / alpha)", 2.7176},
        {Metric::pielouJ, "H / ln S", H / std::log(6.0)},
        {Metric::simpsonD, "1 - (the sum of N_i (N_i - 1)) / (N (N - 1))",
         1 - (90 + 20 + 6 + 2) / (22.0 * 21)},
        {Metric::buzasE, "e^H / S", std::exp(H) / 6},
    };
    for (const auto& row : rows) {
        const MetricExplanation words = explanationOf({MetricGroup::census, row.metric});
        EXPECT_STREQ(words.formula, row.formula);
        EXPECT_NEAR(values.number(row.metric), row.value, 1e-3) << row.formula;
    }
}

TEST(MetricExplanations, EachIsNamedAfterItsCaption) {
    for (const MetricGroup group : {MetricGroup::census, MetricGroup::pooled, MetricGroup::averages,
                                    MetricGroup::incidence}) {
        for (const ShownMetric& shown : metricsOf(group)) {
            const MetricExplanation words = explanationOf(shown);
            const bool isSqs = shown.metric == Metric::alroySQS;
            const std::string start = isSqs ? "" : plainCaption(shown);
            EXPECT_EQ(std::string(words.name).rfind(start, 0), 0u) << words.name;
            EXPECT_EQ(std::string(words.name).find("SQS") != std::string::npos, isSqs);
            EXPECT_FALSE(*words.meaning == '\0' || *words.formula == '\0') << words.name;
        }
    }
}

MetricInputs inputsOfCensus(const CountsVector& counts, double quota = 0.8) {
    MetricInputs inputs;
    inputs.sample = SampleInputs(counts);
    inputs.parameters = {5, quota};
    return inputs;
}

ProjectMetrics metricsOfProject(const CountsMatrix& censuses, double quota = 0.8) {
    const ProjectCounts counts{summed(censuses), withoutZeros(censuses)};
    SeededRandom random(1);
    ProjectMetrics metrics;
    metrics.inputs.parameters = {5, quota};
    for (const ProjectStep& step : projectSteps()) step.compute(counts, random, metrics);
    return metrics;
}

TEST(MetricExplanations, NoDashOfACensusWithoutAReason) {
    const std::vector<CountsVector> censuses = {
        {},        {0},     {1},     {7},        {1, 1, 1}, {1, 1},    {2, 2}, {10, 5, 3, 2, 1, 1},
        {3, 3, 3}, {-3, 4}, {7, -9}, {5, 1, -4}, {5, -4},   {3, 2, -4}};
    for (const CountsVector& counts : censuses) {
        const MetricValues values = censusMetrics(counts);
        const MetricInputs inputs = inputsOfCensus(counts);
        for (const MetricDescriptor& row : metricTable) {
            if (row.compute == nullptr) continue;
            const bool notComputed = row.metric == Metric::fisherAlpha &&
                                     values.number(row.metric) == 0 && inputs.sample.richness > 0;
            const bool isDash = metricText(row.metric, values[row.metric]) == "-";
            const std::string remark = metricRemark({MetricGroup::census, row.metric}, inputs);
            EXPECT_EQ(!remark.empty(), isDash || notComputed) << row.key << ": " << remark;
        }
    }
}

TEST(MetricExplanations, NoDashOfAProjectWithoutAReason) {
    const std::vector<CountsMatrix> projects = {
        {{10, 2, 3}, {5, 2, 0}, {6, 2, 1}}, {{0, 0, 0}, {7, 2, 0}, {2, 1, 0}},
        {{1, 0, 0}, {0, 2, 9}, {2, 2, 0}},  {{8, 0, 0}, {0, 8, 0}, {0, 0, 8}},
        {{2, 5, 0}, {2, 5, 0}, {2, 5, 0}},  {{1, 1, 1}, {2, 3, 4}, {9, 2, 0}}};
    for (const CountsMatrix& project : projects) {
        const ProjectMetrics metrics = metricsOfProject(project);
        for (const auto& [shown, value] : metrics.values) {
            if (metricText(shown.metric, value) != "-") continue;
            EXPECT_NE(metricRemark(shown, metrics.inputs), "") << metricKey(shown);
        }
    }
}

TEST(MetricExplanations, ChaoHasLimitsOrSaysWhyNot) {
    const ShownMetric chaoOne{MetricGroup::census, Metric::chaoOne};
    const ShownMetric chaoClassic{MetricGroup::census, Metric::chaoClassic};
    const ShownMetric chaoTwo{MetricGroup::incidence, Metric::chaoTwo};
    // Core 1 of the mites has five species of one specimen and three of two.
    CountsVector core(12, 3);
    for (const std::int64_t rare : {1, 1, 1, 1, 1, 2, 2, 2}) core.push_back(rare);
    const MetricInputs known = inputsOfCensus(core);
    EXPECT_EQ(limitsText(chaoOne, known),
              "95%: 20.4 to 37.0; standard error 3.2 (log-normal, Chao 1987)");
    EXPECT_EQ(limitsText(chaoClassic, known).substr(0, 18), "95%: 20.7 to 45.8;");
    const MetricInputs complete = inputsOfCensus({5, 4, 2});
    EXPECT_EQ(limitsText(chaoOne, complete), "None: no species is estimated to be missing.");
    EXPECT_EQ(limitsText(chaoClassic, inputsOfCensus({1, 1, 9})), "");
    EXPECT_EQ(limitsText({MetricGroup::census, Metric::shannonH}, known), "");
    EXPECT_EQ(limitsText(chaoOne, inputsOfCensus({})), "");
    // T = 3, Q1 = 2, Q2 = 1.
    const MetricInputs project = metricsOfProject({{1, 0, 4}, {0, 2, 4}, {0, 1, 0}}).inputs;
    EXPECT_EQ(limitsText(chaoTwo, project).substr(0, 5), "95%: ");
}

// Of censuses of no species, of one specimen, of one species, and of two species below five.
TEST(MetricExplanations, RemarksAndInputsOfAProject) {
    const MetricInputs inputs =
        metricsOfProject({{0, 0, 0}, {1, 0, 0}, {7, 0, 0}, {2, 1, 0}}).inputs;
    constexpr MetricGroup pooled = MetricGroup::pooled;
    constexpr MetricGroup averages = MetricGroup::averages;
    constexpr MetricGroup incidence = MetricGroup::incidence;
    using M = Metric;
    const struct {
        ShownMetric shown;
        const char* inputs;
        const char* remark;
    } rows[] = {
        {{pooled, M::richness}, "N = 11, S = 2", ""},
        {{pooled, M::chaoClassic}, "N = 11, S = 2, f1 = 1, f2 = 0", "species of two specimens."},
        {{pooled, M::rarefiedRichness}, "N = 11, S = 2, n = 5", ""},
        {{averages, M::chaoClassic}, "T = 4", "without a species of two specimens: 3 of 4. Their "},
        {{averages, M::fisherAlpha}, "T = 4", "in which no species has 5 specimens: 2 of 4. "},
        {{averages, M::pielouJ}, "T = 4", "Censuses of a single species: 2 of 4. Their J has no "},
        {{averages, M::simpsonD}, "T = 4", "Censuses of a single specimen: 1 of 4. Their D has "},
        {{averages, M::buzasE}, "T = 4", "Censuses without a species: 1 of 4. Their E has no "},
        {{averages, M::rarefiedRichness}, "T = 4, n = 5", "of n specimens or fewer: 3 of 4. They"},
        {{averages, M::shannonH}, "T = 4", ""},
        {{incidence, M::chaoTwo}, "T = 4, S_all = 3, Q1 = 1, Q2 = 0", "in exactly two censuses."},
        {{incidence, M::sampleBasedRarefiedRichness}, "T = 4, S = 2, t = 5", "more than t cens"},
    };
    for (const auto& row : rows) {
        const std::string remark = metricRemark(row.shown, inputs);
        EXPECT_EQ(inputsText(row.shown, inputs), row.inputs) << metricKey(row.shown);
        EXPECT_NE(remark.find(row.remark), std::string::npos) << remark;
        EXPECT_EQ(remark.empty(), *row.remark == '\0') << remark;
    }
}

TEST(MetricExplanations, WhyThereIsNoSqs) {
    SeededRandom random(1);
    const std::tuple<CountsVector, double, const char*> rows[] = {
        {{5, 5}, 0.8, "at least 11 specimens"},
        {CountsVector(12, 1), 0.8, "of its own"},
        {{20, 1, 1, 1}, 0.99, "reachable coverage, 0.92."},
        {{20, 10}, 0, "before any specimen"},
        {{5, 5}, 0, "at least 11 specimens"},
        {{30}, 0.8, "only species exceeds the quota"},
        {{30}, 1, ""},
        {{30}, 1.01, "reachable coverage, 1.00."},
        {{1'000'000'000, 1}, 0.5, "in every trial the first species"},
        {{10, 5, 3, 2, 1, 1}, 0.8, ""},
    };
    for (const auto& [counts, quota, words] : rows) {
        MetricInputs inputs = inputsOfCensus(counts, quota);
        inputs.sqs = shareholderQuorum(counts, sqsTrials, quota, random);
        const std::string remark = metricRemark({MetricGroup::census, Metric::alroySQS}, inputs);
        EXPECT_NE(remark.find(words), std::string::npos) << remark;
        EXPECT_EQ(remark.empty(), inputs.sqs.estimate && std::isfinite(*inputs.sqs.estimate))
            << testing::PrintToString(counts) << remark;
    }
}

TEST(MetricExplanations, WhyAnAverageLacksSqsOfCensuses) {
    CountsMatrix censuses = {{5, 5}, {4, 4}, {3, 0}, {0, 30}, {20, 1}, CountsVector(12, 1)};
    for (CountsVector& census : censuses) census.resize(12);
    const CountsMatrix onlyOneSpecies(3, censuses[3]);
    const std::tuple<CountsMatrix, double, const char*> rows[] = {
        {censuses, 0.93, "1 of 6. Those without one, by reason: fewer than 11 specimens: 3; each "},
        {censuses, 0.97, "found once: 1; a reachable coverage below the quota: 1; the first"},
        {censuses, 0.97, "is thrown back in every trial: 1."},
        {censuses, 0, "a quota that is not above 0"},
        {onlyOneSpecies, 0.8, "0 of 3. Those without"},
        {onlyOneSpecies, 1, "Censuses that have an estimate: 3 of 3."},
    };
    for (const auto& [rowsOfCounts, quota, words] : rows) {
        const MetricInputs inputs = metricsOfProject(rowsOfCounts, quota).inputs;
        const std::string remark = metricRemark({MetricGroup::averages, Metric::alroySQS}, inputs);
        EXPECT_NE(remark.find(words), std::string::npos) << remark;
    }
}

TEST(MetricsTable, WholeText) {
    ObjectContext context;
    CensusAttributes named;
    named.name = "North";
    const Census north = context.insertCensus(
        named, {{"a", 10, false}, {"b", 5}, {"c", 3}, {"d", 2}, {"e", 1}, {"f", 1}});
    named.name = "Empty";
    context.insertCensus(named, {});
    context.insertCensus();
    int asked = 0;
    const auto text = [&](int limit) -> std::string {
        asked = 0;
        const auto table = buildMetricsTable(
            context.censuses(), [] { return std::make_unique<SeededRandom>(1); },
            [&] { return ++asked <= limit; });
        if (!table) return "cancelled";
        return writeMetricsTable(table->rows, table->columnTitles, table->censusNames);
    };
    SeededRandom random(1);
    const double sqs = alroySQS(fullCountsVector(north), 100, 0.8, random).value();
    EXPECT_EQ(text(9),
              " , Abundance, Richness, Chao-1, alroySQS, Shannon's H, Fisher's alpha, Pielou's J, "
              "Simpson's D, Buzas-Gibson E\n"
              "North, 22, 6, 8.0, " +
                  formatMetric(sqs, 1) +
                  ", 1.466, 2.718, 0.818, 0.745, 0.722\n"
                  "Empty, 0, 0, -, 0.0, 0.0, 0.0, 0.0, 0.0, -\n"
                  "unnamed, 0, 0, -, 0.0, 0.0, 0.0, 0.0, 0.0, -\n");
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(text(1), "cancelled");
}

}  // namespace
}  // namespace zorvel
