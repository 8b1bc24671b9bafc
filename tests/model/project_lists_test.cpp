// The lists of a project: worked examples, and random projects beside plain first-match scans.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "base/text.h"
#include "bench/plain_project_lists.h"
#include "model/diversity_document.h"
#include "model/taxon_formatter.h"
#include "tests/support/extreme_values.h"

namespace zorvel {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// What equal and missing names made of the records, counted taxon by taxon.
void expectSameMerging(const SparseCountsResult& result, const ObjectContext& context) {
    const std::vector<Census> censuses = context.censuses();
    std::size_t mergedCensuses = 0;
    for (std::size_t i = 0; i < censuses.size(); ++i) {
        const auto name = censuses[i].name();
        if (name && plain::firstIndex(result.censusNames, *name) != i) ++mergedCensuses;
    }
    std::size_t taxaInNoRow = 0;
    std::size_t inRows = 0;
    std::set<std::pair<std::size_t, std::size_t>> cells;
    for (const Zorvel& taxon : context.taxa()) {
        const auto census = taxon.census()->name();
        if (!taxon.name() || !census) {
            ++taxaInNoRow;
            continue;
        }
        ++inRows;
        cells.emplace(plain::firstIndex(result.censusNames, *census),
                      plain::firstIndex(result.taxonNames, *taxon.name()));
    }
    ASSERT_EQ(result.mergedCensuses, mergedCensuses);
    ASSERT_EQ(result.taxaInNoRow, taxaInNoRow);
    ASSERT_EQ(result.replacedTaxa, inRows - cells.size());
}

// Row by row, so that a cell of 0 that is stored, or two of one column, show.
void expectSameAsPlain(const ObjectContext& context) {
    const SparseCountsResult result = buildSparseCounts(context);
    const plain::CountsMatrixResult plain =
        plain::buildCountsMatrix(context.taxa(), context.censuses());
    ASSERT_EQ(result.taxonNames, plain.taxonNames);
    ASSERT_EQ(result.censusNames, plain.censusNames);
    ASSERT_EQ(censusNameList(context.censuses()), plain.censusNames);
    ASSERT_EQ(result.pooled, plain::pooledCountsVector(context.taxa()));
    ASSERT_EQ(result.counts.rows(), plain.matrix.size());
    for (std::size_t i = 0; i < plain.matrix.size(); ++i) {
        std::vector<SparseCounts::Column> columns;
        CountsVector cells;
        for (std::size_t j = 0; j < plain.matrix[i].size(); ++j) {
            if (plain.matrix[i][j] == 0) continue;
            columns.push_back(static_cast<SparseCounts::Column>(j));
            cells.push_back(plain.matrix[i][j]);
        }
        ASSERT_THAT(result.counts.row(i), ElementsAreArray(cells));
        ASSERT_THAT(result.counts.columnsOfRow(i), ElementsAreArray(columns));
        ASSERT_EQ(result.counts.columns(), plain.matrix[i].size());
    }
    ASSERT_NO_FATAL_FAILURE(expectSameMerging(result, context));
}

TEST(ProjectLists, RandomProjectsGiveWhatPlainScansGive) {
    const std::vector<std::optional<SharedText>> names = {
        std::nullopt, "unnamed", "Zea",    "abies",  "Abies",   "",     "caf\u00E9",
        "cafe\u0301", "cafe",    "\u212B", "\u00C5", "A\u030A", "\xFF", "Abies "};
    for (unsigned seed = 1; seed <= 300; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&](std::size_t bound) { return random() % bound; };
        const std::size_t variety = 1 + below(names.size());
        ObjectContext context;
        for (std::size_t i = below(7); i > 0; --i) {
            CensusAttributes census;
            census.name = names[below(variety)];
            std::vector<TaxonValues> taxa(below(12));
            for (TaxonValues& taxon : taxa) {
                taxon.name = names[below(variety)];
                taxon.abundance = static_cast<std::int64_t>(below(9)) - 2;
                taxon.include = below(2) == 0;
            }
            context.insertCensus(census, std::move(taxa));
        }
        ASSERT_NO_FATAL_FAILURE(expectSameAsPlain(context)) << "seed " << seed;
        ASSERT_NO_FATAL_FAILURE(expectSameAsPlain(*context.frozenCopy())) << "seed " << seed;
    }
}

TEST(ProjectLists, WorkedExample) {
    ObjectContext context;
    CensusAttributes named;
    named.name = "North";
    const Census census = context.insertCensus(
        named, {{"Abies", 0}, {"Larix", 7, false}, {"Picea", -2}, {"abies", 4}});
    context.insertCensus({}, {{"Abies", 3}});
    named.name = "South";
    context.insertCensus(named, {{"Larix", most}, {std::nullopt, 9}});
    EXPECT_THAT(includedCountsVector(census), ElementsAre(0, -2, 4));
    EXPECT_THAT(fullCountsVector(census), ElementsAre(0, 7, -2, 4));
    const SparseCountsResult result = buildSparseCounts(context);
    EXPECT_THAT(result.taxonNames, ElementsAre("Abies", "Larix", "Picea", "abies", "unnamed"));
    EXPECT_THAT(result.pooled, ElementsAre(3, most, -2, 4, 0)) << "a sum saturates";
    EXPECT_THAT(result.censusNames, ElementsAre("North", "unnamed", "South"));
    EXPECT_THAT(result.counts.row(0), ElementsAre(7, -2, 4));
    EXPECT_THAT(result.counts.columnsOfRow(0), ElementsAre(1, 2, 3));
    EXPECT_THAT(result.counts.row(1), ElementsAre());
    EXPECT_THAT(result.counts.columnsOfRow(2), ElementsAre(1));
}

// More names than any table has room for at first.
TEST(ProjectLists, ManyNames) {
    std::vector<TaxonValues> taxa;
    for (std::int64_t i = 9'999; i >= 0; --i) {
        taxa.push_back({SharedText(std::to_string(10'000 + i)), i, true});
    }
    ObjectContext context;
    context.insertCensus({}, std::move(taxa));
    const CountsVector pooled = buildSparseCounts(context).pooled;
    ASSERT_EQ(pooled.size(), 10'000U);
    for (std::size_t i = 0; i < pooled.size(); ++i) {
        ASSERT_EQ(pooled[i], static_cast<std::int64_t>(i));
    }
}

TEST(ProjectLists, CompletionNamesAreComparedExactly) {
    ObjectContext context;
    EXPECT_THAT(taxonNameSet(context), IsEmpty());
    context.insertCensus({}, {{"Abies"},
                              {"abies"},
                              {"Abies"},
                              {"cafe\u0301"},
                              {"caf\u00E9"},
                              {" Abies"},
                              {std::nullopt}});
    EXPECT_THAT(taxonNameSet(context),
                ElementsAre(" Abies", "Abies", "abies", "cafe\u0301", "caf\u00E9"));
}

}  // namespace
}  // namespace zorvel
