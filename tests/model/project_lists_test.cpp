// The lists of a project, worked examples and random projects beside plain first-match scans.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "base/text.h"
#include "model/diversity_document.h"
#include "model/taxon_formatter.h"

namespace zorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// --- The plain form: names are compared one by one, the first match counts. ---

std::string plainName(const std::optional<SharedText>& name) {
    return name ? name->str() : "unnamed";
}

std::size_t firstIndex(const NameList& names, std::string_view name) {
    const auto same = [&](const std::string& other) { return canonicallyEqual(other, name); };
    return static_cast<std::size_t>(std::find_if(names.begin(), names.end(), same) - names.begin());
}

NameList plainTaxonNames(const std::vector<Zorvel>& taxa) {
    NameList names;
    for (const Zorvel& taxon : taxa) {
        const std::string name = plainName(taxon.name());
        if (firstIndex(names, name) == names.size()) names.push_back(name);
    }
    std::sort(names.begin(), names.end(),
              [](const auto& a, const auto& b) { return canonicalForm(a) < canonicalForm(b); });
    return names;
}

CountsVector plainPooled(const std::vector<Zorvel>& taxa) {
    const NameList names = plainTaxonNames(taxa);
    CountsVector pooled(names.size(), 0);
    for (const Zorvel& taxon : taxa) {
        if (taxon.name()) pooled[firstIndex(names, *taxon.name())] += taxon.abundance();
    }
    return pooled;
}

CountsMatrixResult plainMatrix(const std::vector<Zorvel>& taxa,
                               const std::vector<Census>& censuses) {
    CountsMatrixResult result;
    for (const Census& census : censuses) result.censusNames.push_back(plainName(census.name()));
    result.taxonNames = plainTaxonNames(taxa);
    result.matrix.assign(censuses.size(), CountsVector(result.taxonNames.size(), 0));
    for (const Zorvel& taxon : taxa) {
        if (!taxon.name() || !taxon.census() || !taxon.census()->name()) continue;
        const std::size_t row = firstIndex(result.censusNames, *taxon.census()->name());
        if (row == result.matrix.size()) continue;
        result.matrix[row][firstIndex(result.taxonNames, *taxon.name())] = taxon.abundance();
    }
    return result;
}

// What equal and missing names made of the records, counted taxon by taxon.
void expectSameMerging(const SparseCountsResult& result, const std::vector<Zorvel>& taxa,
                       const std::vector<Census>& censuses) {
    std::size_t mergedCensuses = 0;
    for (std::size_t i = 0; i < censuses.size(); ++i) {
        const auto name = censuses[i].name();
        if (name && firstIndex(result.censusNames, *name) != i) ++mergedCensuses;
    }
    std::size_t taxaInNoRow = 0;
    std::vector<std::pair<std::size_t, std::size_t>> cells;
    for (const Zorvel& taxon : taxa) {
        if (!taxon.exists()) continue;
        const auto census = taxon.census()->name();
        const std::size_t row = census ? firstIndex(result.censusNames, *census) : censuses.size();
        if (!taxon.name() || row == censuses.size()) {
            ++taxaInNoRow;
        } else {
            cells.emplace_back(row, firstIndex(result.taxonNames, *taxon.name()));
        }
    }
    const std::size_t all = cells.size();
    std::sort(cells.begin(), cells.end());
    cells.erase(std::unique(cells.begin(), cells.end()), cells.end());
    ASSERT_EQ(result.mergedCensuses, mergedCensuses);
    ASSERT_EQ(result.taxaInNoRow, taxaInNoRow);
    ASSERT_EQ(result.replacedTaxa, all - cells.size());
}

// Row by row, so that a cell of 0 that is stored, or two of one column, show.
void expectSameRows(const SparseCounts& counts, const CountsMatrix& plain) {
    ASSERT_EQ(counts.rows(), plain.size());
    for (std::size_t i = 0; i < plain.size(); ++i) {
        std::vector<SparseCounts::Column> columns;
        CountsVector cells;
        for (std::size_t j = 0; j < plain[i].size(); ++j) {
            if (plain[i][j] == 0) continue;
            columns.push_back(static_cast<SparseCounts::Column>(j));
            cells.push_back(plain[i][j]);
        }
        ASSERT_THAT(counts.row(i), testing::ElementsAreArray(cells));
        ASSERT_THAT(counts.columnsOfRow(i), testing::ElementsAreArray(columns));
        ASSERT_EQ(counts.columns(), plain[i].size());
    }
}

void expectSameSparse(const SparseCountsResult& result, const std::vector<Zorvel>& taxa,
                      const std::vector<Census>& censuses) {
    const CountsMatrixResult plain = plainMatrix(taxa, censuses);
    ASSERT_EQ(result.taxonNames, plain.taxonNames);
    ASSERT_EQ(result.censusNames, plain.censusNames);
    ASSERT_EQ(result.pooled, plainPooled(taxa));
    ASSERT_NO_FATAL_FAILURE(expectSameRows(result.counts, plain.matrix));
    ASSERT_NO_FATAL_FAILURE(expectSameMerging(result, taxa, censuses));
}

void expectSameLists(const std::vector<Zorvel>& taxa, const std::vector<Census>& censuses) {
    ASSERT_EQ(projectTaxonNames(taxa), plainTaxonNames(taxa));
    ASSERT_EQ(pooledCountsVector(taxa), plainPooled(taxa));
    const CountsMatrixResult result = buildCountsMatrix(taxa, censuses);
    const CountsMatrixResult plain = plainMatrix(taxa, censuses);
    ASSERT_EQ(result.matrix, plain.matrix);
    ASSERT_EQ(result.taxonNames, plain.taxonNames);
    ASSERT_EQ(result.censusNames, plain.censusNames);
    ASSERT_EQ(censusNameList(censuses), plain.censusNames);
    ASSERT_NO_FATAL_FAILURE(expectSameSparse(buildSparseCounts(taxa, censuses), taxa, censuses));
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
            const Census census = context.insertCensus();
            context.setName(census, names[below(variety)]);
            for (std::size_t j = below(12); j > 0; --j) {
                const Zorvel taxon = context.insertTaxon(census);
                context.setName(taxon, names[below(variety)]);
                context.setAbundance(taxon, static_cast<std::int64_t>(below(9)) - 2);
                context.setInclude(taxon, below(2) == 0);
            }
        }
        std::vector<Zorvel> taxa = context.taxa();
        std::vector<Census> censuses = context.censuses();
        ASSERT_NO_FATAL_FAILURE(expectSameLists(taxa, censuses)) << "seed " << seed;
        const auto frozen = context.frozenCopy();
        ASSERT_NO_FATAL_FAILURE(expectSameLists(frozen->taxa(), frozen->censuses()));
        ASSERT_NO_FATAL_FAILURE(expectSameSparse(buildSparseCounts(*frozen), taxa, censuses))
            << "seed " << seed;
        // Any other order, and lists that lack some censuses or hold deleted taxa.
        std::shuffle(taxa.begin(), taxa.end(), random);
        if (!censuses.empty()) censuses.erase(censuses.begin());
        if (!taxa.empty()) context.deleteTaxon(taxa[below(taxa.size())]);
        ASSERT_NO_FATAL_FAILURE(expectSameLists(taxa, censuses)) << "seed " << seed;
    }
}

// --- Worked examples ---

class ExampleProject : public testing::Test {
  protected:
    Census addCensus(const std::optional<SharedText>& name) {
        const Census census = context_.insertCensus();
        context_.setName(census, name);
        return census;
    }
    Zorvel addTaxon(const Census& census, const std::optional<SharedText>& name,
                    std::int64_t abundance) {
        const Zorvel taxon = context_.insertTaxon(census);
        context_.setName(taxon, name);
        context_.setAbundance(taxon, abundance);
        return taxon;
    }
    CountsMatrixResult matrix() { return buildCountsMatrix(context_.taxa(), context_.censuses()); }

    ObjectContext context_;
};

TEST_F(ExampleProject, NoRecords) {
    EXPECT_THAT(matrix().matrix, IsEmpty());
    EXPECT_THAT(pooledCountsVector({}), IsEmpty());
    const Census census = addCensus("North");
    EXPECT_THAT(matrix().matrix, ElementsAre(IsEmpty()));
    EXPECT_THAT(includedCountsVector(census), IsEmpty());
}

TEST_F(ExampleProject, OneTaxonFollowedAcrossCensuses) {
    for (const auto& [name, abundance] :
         {std::pair("A", 2), std::pair("B", 5), std::pair("C", 1)}) {
        addTaxon(addCensus(name), "Abies", abundance);
    }
    addTaxon(context_.censuses()[1], "Zea", 3);
    addTaxon(context_.censuses()[1], "abies", 4);
    EXPECT_THAT(projectTaxonNames(context_.taxa()), ElementsAre("Abies", "Zea", "abies"));
    EXPECT_THAT(pooledCountsVector(context_.taxa()), ElementsAre(8, 3, 4));
    EXPECT_THAT(matrix().matrix,
                ElementsAre(ElementsAre(2, 0, 0), ElementsAre(5, 3, 4), ElementsAre(1, 0, 0)));
}

TEST_F(ExampleProject, ExcludedTaxaLeaveTheIncludedCountsAlone) {
    const Census census = addCensus("North");
    addTaxon(census, "Abies", 0);
    context_.setInclude(addTaxon(census, "Larix", 7), false);
    addTaxon(census, "Picea", -2);
    EXPECT_THAT(includedCountsVector(census), ElementsAre(0, -2));
    EXPECT_THAT(fullCountsVector(census), ElementsAre(0, 7, -2));
    EXPECT_THAT(pooledCountsVector(context_.taxa()), ElementsAre(0, 7, -2));
    EXPECT_THAT(matrix().matrix, ElementsAre(ElementsAre(0, 7, -2)));
}

TEST_F(ExampleProject, CensusesOfOneNameShareTheFirstRow) {
    const Census first = addCensus("caf\u00E9");
    const Census second = addCensus("cafe\u0301");
    addTaxon(second, "Abies", 4);
    addTaxon(first, "Picea", 1);
    addTaxon(second, "Picea", 2);
    EXPECT_THAT(matrix().matrix, ElementsAre(ElementsAre(4, 2), ElementsAre(0, 0)));
    EXPECT_THAT(matrix().censusNames, ElementsAre("caf\u00E9", "cafe\u0301"));
}

TEST_F(ExampleProject, ALaterZeroReplacesAnEarlierCount) {
    const Census first = addCensus("North");
    addTaxon(first, "Abies", 4);
    addTaxon(addCensus("North"), "Abies", 0);
    const SparseCountsResult result = buildSparseCounts(context_);
    EXPECT_THAT(result.counts.row(0), IsEmpty());
    EXPECT_EQ(result.counts.columns(), 1U);
    EXPECT_EQ(result.counts.rows(), 2U);
    EXPECT_THAT(result.pooled, ElementsAre(4));
    EXPECT_EQ(result.mergedCensuses, 1U);
    EXPECT_EQ(result.replacedTaxa, 1U);
}

// More names than any table has room for at first.
TEST_F(ExampleProject, ManyNames) {
    const Census census = addCensus("North");
    std::vector<TaxonValues> taxa;
    for (std::int64_t i = 9'999; i >= 0; --i) {
        taxa.push_back({SharedText(std::to_string(10'000 + i)), i, true});
    }
    context_.insertTaxa(census, std::move(taxa));
    const CountsVector pooled = buildSparseCounts(context_).pooled;
    ASSERT_EQ(pooled.size(), 10'000U);
    for (std::size_t i = 0; i < pooled.size(); ++i) {
        ASSERT_EQ(pooled[i], static_cast<std::int64_t>(i));
    }
}

TEST_F(ExampleProject, UnnamedEntriesStayZeroUnlessNamedSo) {
    const Census nameless = addCensus(std::nullopt);
    const Census literal = addCensus("unnamed");
    addTaxon(nameless, "Abies", 1);
    addTaxon(literal, "Abies", 2);
    addTaxon(literal, std::nullopt, 3);
    EXPECT_THAT(matrix().taxonNames, ElementsAre("Abies", "unnamed"));
    EXPECT_THAT(matrix().matrix, ElementsAre(ElementsAre(2, 0), ElementsAre(0, 0)));
    EXPECT_THAT(pooledCountsVector(context_.taxa()), ElementsAre(3, 0));
    addTaxon(literal, "unnamed", 5);
    EXPECT_THAT(matrix().matrix, ElementsAre(ElementsAre(2, 5), ElementsAre(0, 0)));
    EXPECT_THAT(pooledCountsVector(context_.taxa()), ElementsAre(3, 5));
}

TEST_F(ExampleProject, TheFirstSpellingIsShown) {
    const Census census = addCensus("North");
    addTaxon(census, "cafe\u0301", 1);
    addTaxon(census, "caf\u00E9", 2);
    EXPECT_THAT(projectTaxonNames(context_.taxa()), ElementsAre("cafe\u0301"));
    EXPECT_THAT(pooledCountsVector(context_.taxa()), ElementsAre(3));
}

TEST_F(ExampleProject, HugeAbundancesSaturate) {
    const Census census = addCensus("North");
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    for (int i = 0; i < 3; ++i) addTaxon(census, "Abies", most);
    EXPECT_THAT(pooledCountsVector(context_.taxa()), ElementsAre(most));
}

TEST_F(ExampleProject, CompletionNamesAreComparedExactly) {
    const Census census = addCensus("North");
    for (const char* name : {"Abies", "abies", "Abies", "cafe\u0301", "caf\u00E9", " Abies"}) {
        addTaxon(census, name, 1);
    }
    addTaxon(census, std::nullopt, 1);
    EXPECT_THAT(taxonNameSet(context_.taxa()),
                ElementsAre(" Abies", "Abies", "abies", "cafe\u0301", "caf\u00E9"));
    EXPECT_THAT(taxonNameSet({}), IsEmpty());
}

}  // namespace
}  // namespace zorvel
