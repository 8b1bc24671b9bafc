#include "model/metric_explanations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <string>
#include <vector>

#include "metrics/census_metrics.h"
#include "metrics/incidence.h"
#include "metrics/metric_captions.h"
#include "metrics/project_wide.h"
#include "metrics/random_source.h"
#include "metrics/sparse_counts.h"

namespace zorvel {
namespace {

TEST(MetricExplanations, EveryRowOfTheWindowsIsExplained) {
    std::vector<std::string_view> keys;
    for (const auto& row : metricsPanelRows) keys.push_back(row.key);
    for (const auto& row : pooledMetricRows) keys.push_back(row.key);
    for (const auto& row : averageMetricRows) keys.push_back(row.key);
    for (const auto& row : incidenceMetricRows) keys.push_back(row.key);
    for (const std::string_view key : keys) {
        SCOPED_TRACE(std::string(key));
        const MetricExplanation* explanation = explanationOf(key);
        ASSERT_NE(explanation, nullptr);
        for (const char* text :
             {explanation->name, explanation->meaning, explanation->formula, explanation->source}) {
            EXPECT_FALSE(std::string(text).empty());
        }
    }
}

TEST(MetricExplanations, InputsOfTheValue) {
    const MetricInputs inputs = metricInputs(CountsVector{10, 5, 3, 2, 1, 1, 0}, 50, 0.8);
    EXPECT_EQ(inputsText("shannonH", inputs), "N = 22, S = 6");
    EXPECT_EQ(inputsText("chaoOne", inputs), "N = 22, S = 6, f1 = 2, f2 = 1");
    EXPECT_EQ(inputsText("rarefiedRichness", inputs), "N = 22, S = 6, n = 50");
    EXPECT_EQ(inputsText("alroySQS", inputs), "N = 22, S = 6, f1 = 2, f2 = 1, q = 0.8");
}

// A remark stands wherever a value of the panel shows as a dash, and not where it is plain.
TEST(MetricExplanations, NoDashWithoutAReason) {
    const std::vector<CountsVector> censuses = {
        {},        {0},     {1},     {7},        {1, 1, 1}, {1, 1},    {2, 2}, {10, 5, 3, 2, 1, 1},
        {3, 3, 3}, {-3, 4}, {7, -9}, {5, 1, -4}, {5, -4},   {3, 2, -4}};
    for (const CountsVector& counts : censuses) {
        const CensusMetrics metrics = censusMetrics(counts);
        const MetricInputs inputs = metricInputs(counts, 5, 0.8);
        const struct {
            const char* key;
            double value;
        } values[] = {{"chaoOne", metrics.chaoOne},   {"chaoClassic", metrics.chaoClassic},
                      {"shannonH", metrics.shannonH}, {"fisherAlpha", metrics.fisherAlpha},
                      {"pielouJ", metrics.pielouJ},   {"simpsonD", metrics.simpsonD},
                      {"buzasE", metrics.buzasE}};
        for (const auto& [key, value] : values) {
            SCOPED_TRACE(std::string(key) + ", S = " + std::to_string(inputs.richness));
            const bool zero =
                value == 0 && std::string(key) == "fisherAlpha" && metrics.richness > 0;
            EXPECT_EQ(metricRemark(key, inputs).text != nullptr, !std::isfinite(value) || zero);
        }
    }
}

ProjectMetricInputs inputsOfProject(const std::vector<CountsVector>& censuses) {
    SparseCounts counts(censuses.front().size());
    std::vector<SparseCounts::Column> columns(censuses.front().size());
    std::iota(columns.begin(), columns.end(), SparseCounts::Column{0});
    for (const CountsVector& census : censuses) counts.addRow(columns, census);
    ProjectMetricInputs inputs;
    inputs.pooled.sampleSize = 5;
    inputs.pooled.quota = 0.8;
    countCensuses(counts, inputs);
    takeIncidence(summariseIncidence(counts), inputs);
    return inputs;
}

// The same of averages and Chao2; where there is a reason, it tells how many censuses are to blame.
TEST(MetricExplanations, NoDashOfAProjectWithoutAReason) {
    const std::vector<std::vector<CountsVector>> projects = {
        {{10, 2, 3}, {5, 2, 0}, {6, 2, 1}}, {{0, 0, 0}, {7, 2, 0}, {2, 1, 0}},
        {{1, 0, 0}, {0, 2, 9}, {2, 2, 0}},  {{8, 0, 0}, {0, 8, 0}, {0, 0, 8}},
        {{2, 5, 0}, {2, 5, 0}, {2, 5, 0}},  {{1, 1, 1}, {2, 3, 4}, {9, 2, 0}}};
    for (const auto& censuses : projects) {
        const AverageMetrics mean = averageMetrics(censuses);
        const ProjectMetricInputs inputs = inputsOfProject(censuses);
        const struct {
            const char* key;
            double value;
        } values[] = {{"averageAbundance", mean.abundance},     {"averageRichness", mean.richness},
                      {"averageChaoClassic", mean.chaoClassic}, {"averageShannonH", mean.shannonH},
                      {"averagePielouJ", mean.pielouJ},         {"averageSimpsonD", mean.simpsonD},
                      {"averageBuzasE", mean.buzasE},           {"chaoTwo", chaoTwo(censuses)}};
        for (const auto& [key, value] : values) {
            SCOPED_TRACE(std::string(key) + ", Q2 = " + std::to_string(inputs.duplicates));
            const bool raised =
                std::string(key) == "chaoTwo" && inputs.taxonNames > inputs.taxaFound;
            EXPECT_EQ(metricRemark(key, inputs).text != nullptr, !std::isfinite(value) || raised);
        }
    }
    const ProjectMetricInputs inputs = inputsOfProject(projects[1]);
    EXPECT_EQ(metricRemark("averageChaoClassic", inputs).arguments,
              (std::vector<std::string>{"1", "3"}));
    EXPECT_EQ(metricRemark("averageFisherAlpha", inputs).arguments,
              (std::vector<std::string>{"1", "3"}));
    EXPECT_EQ(metricRemark("averageRarefiedRichness", inputs).arguments,
              (std::vector<std::string>{"2", "3"}));
    EXPECT_EQ(inputsText("averageRarefiedRichness", inputs), "T = 3, n = 5");
    EXPECT_EQ(inputsText("chaoTwo", inputs), "T = 3, S_all = 3, Q1 = 0, Q2 = 2");
}

TEST(MetricExplanations, WhyThereIsNoSqs) {
    SeededRandom random(1);
    struct Row {
        CountsVector counts;
        double quota;
        const char* words;
        std::vector<std::string> arguments;
    };
    const std::vector<Row> rows = {
        {{5, 5}, 0.8, "at least 11 specimens", {}},
        {CountsVector(12, 1), 0.8, "of its own", {}},
        {{20, 1, 1, 1}, 0.99, "reachable coverage", {"0.92"}},
        {{20, 10}, 0, "before any specimen", {}},
        {{5, 5}, 0, "at least 11 specimens", {}},
        {{30}, 0.8, "only species exceeds the quota", {}},
        {{30}, 1, nullptr, {}},
        {{30}, 1.01, "reachable coverage", {"1.00"}},
        {{1'000'000'000, 1}, 0.5, "in every trial the first species", {}},
        {{10, 5, 3, 2, 1, 1}, 0.8, nullptr, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.counts) + " " + std::to_string(row.quota));
        MetricInputs inputs = metricInputs(row.counts, 50, row.quota);
        const SqsResult result = shareholderQuorum(row.counts, 100, row.quota, random);
        inputs.absence = result.absence;
        inputs.coverage = result.frequencySum;
        const MetricRemark remark = metricRemark("alroySQS", inputs);
        ASSERT_EQ(remark.text != nullptr, row.words != nullptr);
        EXPECT_EQ(remark.text == nullptr, result.estimate && std::isfinite(*result.estimate));
        if (remark.text == nullptr) continue;
        EXPECT_NE(std::string(remark.text).find(row.words), std::string::npos);
        EXPECT_EQ(remark.arguments, row.arguments);
    }
}

TEST(MetricExplanations, WhyAnAverageLacksSqsOfCensuses) {
    SeededRandom random(1);
    CountsMatrix censuses = {{5, 5}, {4, 4}, {3, 0}, {0, 30}, {20, 1}};
    for (CountsVector& census : censuses) census.resize(12);
    censuses.push_back(CountsVector(12, 1));
    const auto arguments = [&](double quota) {
        ProjectMetricInputs inputs = inputsOfProject(censuses);
        const AverageSqs average = averageAlroySQS(censuses, quota, random);
        inputs.withSqs = average.censuses;
        inputs.withoutSqs = average.lacking;
        inputs.pooled.quota = quota;
        return metricRemark("averageAlroySQS", inputs).arguments;
    };
    using Arguments = std::vector<std::string>;
    EXPECT_EQ(arguments(0.93), (Arguments{"1", "6", "3", "1", "0", "1"}));
    EXPECT_EQ(arguments(0.97), (Arguments{"0", "6", "3", "1", "1", "1"}));
    EXPECT_EQ(arguments(0), Arguments{});
    censuses = {censuses[3], censuses[3], censuses[3]};
    EXPECT_EQ(arguments(0.8), (Arguments{"0", "3", "0", "0", "0", "3"}));
    EXPECT_EQ(arguments(1), (Arguments{"3", "3"}));
}

}  // namespace
}  // namespace zorvel
