#include "model/metrics_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "metrics/census_metrics.h"
#include "metrics/sqs.h"
#include "model/edits.h"

namespace zorvel {
namespace {

constexpr const char* header =
    " , Abundance, Richness, Chao-1, alroySQS, Shannon's H, Fisher's alpha, Pielou's J, "
    "Simpson's D, Buzas-Gibson E\n";

std::string written(const DiversityDocument& document, std::uint64_t seed) {
    SeededRandom random(seed);
    const MetricsTable table = buildMetricsTable(document.fetchCensuses(), random);
    return writeMetricsTable(table.rows, table.columnTitles, table.censusNames);
}

std::vector<MockTaxon> taxaOf(const std::vector<std::int64_t>& counts) {
    std::vector<MockTaxon> taxa;
    for (const std::int64_t count : counts) taxa.push_back({count, "taxon"});
    return taxa;
}

MockCensus censusOf(const std::string& name, const std::vector<std::int64_t>& counts) {
    MockCensus census;
    census.name = name;
    census.taxa = taxaOf(counts);
    return census;
}

TEST(MetricsTable, WholeText) {
    DiversityDocument document;
    EXPECT_EQ(written(document, 1), header);
    importCensuses(document.objectContext(),
                   {censusOf("North", {10, 5, 3, 2, 1, 1}), censusOf("Empty", {})});
    const Census north = document.fetchCensuses().front();
    document.objectContext().setInclude(north.taxa().front(), false);
    document.objectContext().setName(document.objectContext().insertCensus(), std::nullopt);
    SeededRandom random(1);
    const double sqs = alroySQS(fullCountsVector(north), 100, 0.8, random).value();
    EXPECT_EQ(written(document, 1), std::string(header) + "North, 22, 6, 8.0, " +
                                        formatMetric(sqs, 1) +
                                        ", 1.466, 2.718, 0.818, 0.745, 0.722\n"
                                        "Empty, 0, 0, -, 0.0, 0.0, 0.0, 0.0, 0.0, -\n"
                                        "unnamed, 0, 0, -, 0.0, 0.0, 0.0, 0.0, 0.0, -\n");
}

TEST(MetricsTable, RowsStandInTheOrderGiven) {
    DiversityDocument document;
    importCensuses(document.objectContext(), {censusOf("A", {1}), censusOf("B", {1, 1})});
    std::vector<Census> censuses = document.fetchCensuses();
    std::swap(censuses[0], censuses[1]);
    SeededRandom random(1);
    const MetricsTable table = buildMetricsTable(censuses, random);
    EXPECT_THAT(table.censusNames, testing::ElementsAre("B", "A"));
    EXPECT_EQ(table.rows[0][1], 2);
    EXPECT_EQ(table.rows[1][1], 1);
    EXPECT_EQ(table.columnTitles.size(), table.rows[0].size());
}

}  // namespace
}  // namespace zorvel
