#include "model/project_metrics.h"

#include <gtest/gtest.h>

#include <string>

#include "metrics/census_metrics.h"
#include "metrics/sqs.h"

namespace zorvel {
namespace {

TEST(MetricsTable, WholeText) {
    ObjectContext context;
    const auto insert = [&](const char* name, const std::vector<std::int64_t>& counts) {
        CensusAttributes attributes;
        if (name != nullptr) attributes.name = name;
        std::vector<TaxonValues> taxa;
        for (const std::int64_t count : counts) taxa.push_back({"taxon", count, taxa.size() > 0});
        return context.insertCensus(attributes, std::move(taxa));
    };
    const Census north = insert("North", {10, 5, 3, 2, 1, 1});  // of one taxon not included
    insert("Empty", {});
    insert(nullptr, {});
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
