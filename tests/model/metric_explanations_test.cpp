#include "model/metric_explanations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <string>
#include <vector>

#include "model/project_metrics.h"

namespace zorvel {
namespace {

constexpr MetricGroup allGroups[] = {MetricGroup::census, MetricGroup::pooled,
                                     MetricGroup::averages, MetricGroup::incidence};

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
    for (const MetricGroup group : allGroups) {
        for (const ShownMetric& shown : metricsOf(group)) {
            const MetricExplanation words = explanationOf(shown);
            const std::string caption = plainCaption(shown);
            SCOPED_TRACE(caption);
            const bool isSqs = shown.metric == Metric::alroySQS;
            const std::string start = isSqs ? "" : caption;
            EXPECT_EQ(std::string(words.name).rfind(start, 0), 0u) << words.name;
            EXPECT_EQ(std::string(words.name).find("SQS") != std::string::npos, isSqs);
            EXPECT_STRNE(words.meaning, "");
            EXPECT_STRNE(words.formula, "");
            EXPECT_EQ(*words.source == '\0', descriptorOf(shown.metric).kind == MetricKind::count);
        }
    }
}

MetricInputs inputsOfCensus(const CountsVector& counts, double quota = 0.8) {
    MetricInputs inputs;
    inputs.sample = SampleInputs(counts);
    inputs.parameters = {5, quota};
    return inputs;
}

// All values of a project whose every name is a column.
ProjectMetrics metricsOfProject(const CountsMatrix& censuses, double quota = 0.8) {
    ProjectCounts counts;
    counts.countsVector = CountsVector(censuses.front().size(), 0);
    counts.countsMatrix = SparseCounts(censuses.front().size());
    std::vector<SparseCounts::Column> columns(censuses.front().size());
    std::iota(columns.begin(), columns.end(), SparseCounts::Column{0});
    for (const CountsVector& census : censuses) {
        counts.countsMatrix->addRow(columns, census);
        for (std::size_t i = 0; i < census.size(); ++i) (*counts.countsVector)[i] += census[i];
    }
    SeededRandom random(1);
    ProjectMetrics metrics;
    metrics.inputs.parameters = {5, quota};
    for (const ProjectStep& step : projectSteps()) step.compute(counts, random, metrics);
    return metrics;
}

bool isDash(Metric metric, const MetricValue& value) {
    return metricText(metric, value) == "-";
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
            const MetricValue& value = values[row.metric];
            const bool notComputed = row.metric == Metric::fisherAlpha &&
                                     values.number(row.metric) == 0 && inputs.sample.richness > 0;
            const std::string remark = metricRemark({MetricGroup::census, row.metric}, inputs);
            EXPECT_EQ(!remark.empty(), isDash(row.metric, value) || notComputed)
                << row.key << " of " << testing::PrintToString(counts) << ": " << remark;
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
            const std::string remark = metricRemark(shown, metrics.inputs);
            if (isDash(shown.metric, value)) {
                EXPECT_NE(remark, "") << metricKey(shown) << testing::PrintToString(project);
            }
        }
    }
}

// Of censuses of no species, of one specimen, of one species, and of two species below five.
TEST(MetricExplanations, RemarksAndInputsOfAProject) {
    const MetricInputs inputs =
        metricsOfProject({{0, 0, 0}, {1, 0, 0}, {7, 0, 0}, {2, 1, 0}}).inputs;
    const struct {
        ShownMetric shown;
        const char* inputs;
        const char* remark;
    } rows[] = {
        {{MetricGroup::pooled, Metric::richness}, "N = 11, S = 2", ""},
        {{MetricGroup::pooled, Metric::chaoClassic},
         "N = 11, S = 2, f1 = 1, f2 = 0",
         "It has no value without a species of two specimens."},
        {{MetricGroup::pooled, Metric::rarefiedRichness}, "N = 11, S = 2, n = 5", ""},
        {{MetricGroup::averages, Metric::chaoClassic},
         "T = 4",
         "Censuses without a species of two specimens: 3 of 4. Their Chao1 has no value, and so "
         "the average has none."},
        {{MetricGroup::averages, Metric::fisherAlpha},
         "T = 4",
         "Censuses in which no species has 5 specimens: 2 of 4. Their alpha counts as 0."},
        {{MetricGroup::averages, Metric::pielouJ},
         "T = 4",
         "Censuses of a single species: 2 of 4. Their J has no value, and so the average has "
         "none."},
        {{MetricGroup::averages, Metric::simpsonD},
         "T = 4",
         "Censuses of a single specimen: 1 of 4. Their D has no value, and so the average has "
         "none."},
        {{MetricGroup::averages, Metric::buzasE},
         "T = 4",
         "Censuses without a species: 1 of 4. Their E has no value, and so the average has none."},
        {{MetricGroup::averages, Metric::rarefiedRichness},
         "T = 4, n = 5",
         "Censuses of n specimens or fewer: 3 of 4. They count with their whole richness."},
        {{MetricGroup::averages, Metric::shannonH}, "T = 4", ""},
        {{MetricGroup::incidence, Metric::chaoTwo},
         "T = 4, S_all = 3, Q1 = 1, Q2 = 0",
         "It has no value without a species found in exactly two censuses."},
        {{MetricGroup::incidence, Metric::sampleBasedRarefiedRichness},
         "T = 4, S = 2, t = 5",
         "There are no more than t censuses, so this is the number of species found in any."},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(inputsText(row.shown, inputs), row.inputs) << metricKey(row.shown);
        EXPECT_EQ(metricRemark(row.shown, inputs), row.remark) << metricKey(row.shown);
    }
}

TEST(MetricExplanations, WhyThereIsNoSqs) {
    SeededRandom random(1);
    const struct {
        CountsVector counts;
        double quota;
        const char* words;
    } rows[] = {
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
    for (const auto& row : rows) {
        MetricInputs inputs = inputsOfCensus(row.counts, row.quota);
        inputs.sqs = shareholderQuorum(row.counts, sqsTrials, row.quota, random);
        const std::string remark = metricRemark({MetricGroup::census, Metric::alroySQS}, inputs);
        EXPECT_NE(remark.find(row.words), std::string::npos) << remark;
        EXPECT_EQ(remark.empty(), inputs.sqs.estimate && std::isfinite(*inputs.sqs.estimate))
            << testing::PrintToString(row.counts) << remark;
    }
}

TEST(MetricExplanations, WhyAnAverageLacksSqsOfCensuses) {
    CountsMatrix censuses = {{5, 5}, {4, 4}, {3, 0}, {0, 30}, {20, 1}};
    for (CountsVector& census : censuses) census.resize(12);
    censuses.push_back(CountsVector(12, 1));
    const auto numbers = [&](double quota) {
        const MetricInputs inputs = metricsOfProject(censuses, quota).inputs;
        std::string numbersAlone;
        for (const char c : metricRemark({MetricGroup::averages, Metric::alroySQS}, inputs))
            if (std::isdigit(static_cast<unsigned char>(c)) != 0 || c == ';') numbersAlone += c;
        return numbersAlone;
    };
    // Estimates and censuses, 11 and those with fewer, singletons, out of reach, always thrown
    // back.
    EXPECT_EQ(numbers(0.93), "16113;1;0;1");
    EXPECT_EQ(numbers(0.97), "06113;1;1;1");
    EXPECT_EQ(numbers(0), "0");
    censuses = {censuses[3], censuses[3], censuses[3]};
    EXPECT_EQ(numbers(0.8), "03110;0;0;3");
    EXPECT_EQ(numbers(1), "33");
}

}  // namespace
}  // namespace zorvel
