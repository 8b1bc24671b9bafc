#include "store/object_context.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "store/object_context.h"

namespace zorvel {
namespace {

using testing::ElementsAre;

std::vector<TaxonValues> someTaxa(std::size_t count) {
    std::vector<TaxonValues> taxa(count);
    for (std::size_t i = 0; i < count; ++i) {
        taxa[i].name = "taxon " + std::to_string(i % 7);
        taxa[i].abundance = static_cast<std::int64_t>(i);
    }
    return taxa;
}

std::vector<std::int64_t> abundances(const Census& census) {
    std::vector<std::int64_t> counts;
    for (const Zorvel& taxon : census.taxa()) counts.push_back(taxon.abundance());
    return counts;
}

TEST(ObjectContext, NewRecordsHaveTheirDefaults) {
    ObjectContext context;
    const Census census = context.insertCensus();
    const Zorvel taxon = context.insertTaxon(census);
    EXPECT_FALSE(census.name() || census.notes() || census.timeStamp());
    EXPECT_EQ(census.latitude(), 0);
    EXPECT_EQ(census.longitude(), 0);
    EXPECT_FALSE(taxon.name());
    EXPECT_EQ(taxon.abundance(), 0);
    EXPECT_TRUE(taxon.include());
    EXPECT_EQ(taxon.census(), census);
    EXPECT_THAT(census.taxa(), ElementsAre(taxon));
}

TEST(ObjectContext, AttributesAreKeptAndTakenBack) {
    ObjectContext context;
    const Census census = context.insertCensus();
    const Census other = context.insertCensus();
    const Zorvel taxon = context.insertTaxon(census);
    const TimeStamp time{std::chrono::microseconds(-5)};
    context.setName(census, "North");
    context.setNotes(census, "");
    context.setLatitude(census, -47.25);
    context.setLongitude(census, std::numeric_limits<double>::infinity());
    context.setTimeStamp(census, time);
    context.setName(taxon, "Abies");
    context.setAbundance(taxon, std::numeric_limits<std::int64_t>::min());
    context.setInclude({taxon}, false);
    EXPECT_EQ(census.name(), SharedText("North"));
    EXPECT_EQ(census.notes(), SharedText(""));
    EXPECT_EQ(census.latitude(), -47.25);
    EXPECT_EQ(census.longitude(), std::numeric_limits<double>::infinity());
    EXPECT_EQ(census.timeStamp(), time);
    EXPECT_EQ(taxon.name(), SharedText("Abies"));
    EXPECT_EQ(taxon.abundance(), std::numeric_limits<std::int64_t>::min());
    EXPECT_FALSE(taxon.include());
    EXPECT_FALSE(other.name());
    context.setName(census, std::nullopt);
    context.setTimeStamp(census, std::nullopt);
    context.setName(taxon, std::nullopt);
    EXPECT_FALSE(census.name() || census.timeStamp() || taxon.name());
}

TEST(ObjectContext, DeletingACensusDeletesItsTaxa) {
    ObjectContext context;
    const Census gone = context.insertCensus({}, someTaxa(300));
    const Census kept = context.insertCensus({}, someTaxa(2));
    const Zorvel orphan = gone.taxa().front();
    context.deleteCensuses({gone});
    EXPECT_FALSE(gone.exists());
    EXPECT_FALSE(orphan.exists());
    EXPECT_FALSE(orphan.census());
    EXPECT_FALSE(orphan.name());
    EXPECT_TRUE(gone.taxa().empty());
    EXPECT_EQ(gone.block()->taxonCount(), 0U);
    EXPECT_THAT(context.censuses(), ElementsAre(kept));
    EXPECT_EQ(context.taxa().size(), 2U);
}

TEST(ObjectContext, DeletingATaxonTakesItOutOfItsCensus) {
    ObjectContext context;
    const Census census = context.insertCensus({}, someTaxa(3));
    const std::vector<Zorvel> taxa = census.taxa();
    context.deleteTaxa({taxa[1]});
    EXPECT_THAT(census.taxa(), ElementsAre(taxa[0], taxa[2]));
    EXPECT_FALSE(taxa[1].census());
    context.deleteTaxa({taxa[0]});
    context.deleteTaxa({taxa[2]});
    EXPECT_EQ(census.taxonCount(), 0U);
    EXPECT_TRUE(context.insertTaxon(census).exists());
}

TEST(ObjectContext, HandlesOfNoRecordOfThisContextChangeNothing) {
    ObjectContext context;
    ObjectContext other;
    const Census census = context.insertCensus({}, someTaxa(1));
    const Zorvel taxon = census.taxa().front();
    other.insertCensus({}, someTaxa(1));  // of the same identities
    const auto before = other.censuses().front().block();
    const auto frozen = context.frozenCopy();
    for (const Census& foreign : {census, frozen->censuses().front()}) {
        other.setName(foreign, "changed");
        other.deleteTaxa({foreign.taxa().front()});
        EXPECT_FALSE(other.insertTaxon(foreign).exists());
        other.deleteCensuses({foreign});
    }
    other.setAbundance(taxon, 7);
    EXPECT_EQ(other.censuses().front().block(), before);
    context.deleteCensuses({census});
    context.setName(census, "changed");
    context.setInclude({taxon}, false);
    context.deleteTaxa({taxon});
    EXPECT_EQ(context.censusCount(), 0U);
    EXPECT_FALSE(context.census(census.id()));
}

TEST(ObjectContext, AnUnchangedValueIsNoChange) {
    ObjectContext context;
    const Census census = context.insertCensus({}, someTaxa(1));
    const Zorvel taxon = census.taxa().front();
    context.setName(census, "North");
    const auto before = census.block();
    context.setName(census, "North");
    context.setLatitude(census, 0);
    context.setNotes(census, std::nullopt);
    context.setAbundance(taxon, taxon.abundance());
    context.setInclude({taxon}, true);
    EXPECT_EQ(census.block(), before);
    context.setNotes(census, "");
    EXPECT_NE(census.block(), before);
}

TEST(ObjectContext, NamesAreKeptOnceByTheirBytes) {
    ObjectContext context;
    const Census census = context.insertCensus();
    std::vector<Zorvel> taxa;
    for (const char* name : {"caf\u00E9", "cafe\u0301", "caf\u00E9", ""}) {
        taxa.push_back(context.insertTaxon(census));
        context.setName(taxa.back(), name);
    }
    EXPECT_EQ(&taxa[0].name()->str(), &taxa[2].name()->str());
    EXPECT_EQ(taxa[1].name()->str(), "cafe\u0301");
    EXPECT_EQ(taxa[3].name(), SharedText(""));
}

TEST(ObjectContext, AFrozenCopyNeverChangesAndOutlivesItsSource) {
    auto context = std::make_unique<ObjectContext>();
    const Census north = context->insertCensus({}, someTaxa(600));
    context->insertCensus({}, someTaxa(1));
    const auto frozen = context->frozenCopy();
    std::thread reader([&frozen] {
        for (int round = 0; round < 20; ++round) {
            const Census census = frozen->censuses().front();
            EXPECT_EQ(abundances(census).back(), 599);
            EXPECT_FALSE(census.name());
            EXPECT_EQ(frozen->taxa().size(), 601U);
        }
    });
    for (const Zorvel& taxon : north.taxa()) context->setAbundance(taxon, -1);
    context->setName(north, "North");
    context->insertTaxon(north);
    context->deleteCensuses({context->censuses().back()});
    context->insertCensus();
    reader.join();
    const auto second = context->frozenCopy();
    context.reset();
    EXPECT_EQ(frozen->censuses().front().taxonCount(), 600U);
    EXPECT_EQ(second->censuses().front().taxonCount(), 601U);
    EXPECT_EQ(second->censuses().front().name(), SharedText("North"));
    EXPECT_EQ(second->frozenCopy()->censusCount(), 2U);
}

TEST(ObjectContext, AnEditSharesWhatItDoesNotTouch) {
    ObjectContext context;
    const Census census = context.insertCensus({}, someTaxa(2000));
    const auto before = census.block();
    context.setAbundance(census.taxa()[1000], -1);
    const auto after = census.block();
    ASSERT_EQ(after->chunks.size(), before->chunks.size());
    std::size_t copied = 0;
    for (std::size_t i = 0; i < after->chunks.size(); ++i) {
        copied += after->chunks[i] != before->chunks[i];
    }
    EXPECT_EQ(copied, 1U);
}

TEST(ObjectContext, ManyTaxaAreDeletedAtOnce) {
    ObjectContext context;
    ObjectContext other;
    const Census north = context.insertCensus({}, someTaxa(1000));
    const Census south = context.insertCensus({}, someTaxa(3));
    other.insertCensus({}, someTaxa(1000));
    const std::vector<Zorvel> taxa = context.taxa();
    std::vector<Zorvel> gone(taxa.rbegin(), taxa.rbegin() + 2);       // of the south
    gone.insert(gone.end(), taxa.begin() + 200, taxa.begin() + 600);  // over whole chunks
    gone.push_back(taxa[300]);
    gone.push_back(other.taxa()[0]);
    context.deleteTaxa({taxa[599]});
    const auto before = north.block();
    context.deleteTaxa(gone);
    std::vector<std::int64_t> expected;
    for (std::int64_t i = 0; i < 1000; ++i) {
        if (i < 200 || i >= 600) expected.push_back(i);
    }
    EXPECT_EQ(abundances(north), expected);
    EXPECT_THAT(abundances(south), ElementsAre(0));
    EXPECT_EQ(north.block()->chunks.back(), before->chunks.back());
    EXPECT_EQ(other.taxa().size(), 1000U);
    context.undo();
    EXPECT_EQ(north.block(), before);
    EXPECT_EQ(south.taxonCount(), 3U);
}

TEST(ObjectContext, ManyTaxaAreIncludedAtOnce) {
    ObjectContext context;
    const Census census = context.insertCensus({}, someTaxa(600));
    const std::vector<Zorvel> taxa = census.taxa();
    context.setInclude({taxa[599], taxa[256], taxa[255]}, false);
    const auto before = census.block();
    context.setInclude({taxa[599], taxa[256]}, false);  // as they are
    EXPECT_EQ(census.block(), before);
    context.setInclude({taxa[256], taxa[0]}, true);
    std::vector<std::size_t> left;
    for (std::size_t i = 0; i < taxa.size(); ++i) {
        if (!taxa[i].include()) left.push_back(i);
    }
    EXPECT_THAT(left, ElementsAre(255U, 599U));
}

TEST(ObjectContext, TaxaInsertedOneByOneOrTogetherFillTheirChunks) {
    ObjectContext context;
    const Census census = context.insertCensus({}, someTaxa(200));
    const std::vector<Zorvel> added = context.insertTaxa(census, someTaxa(500));
    for (int i = 0; i < 400; ++i) context.insertTaxon(census);
    ASSERT_EQ(census.taxonCount(), 1100U);
    EXPECT_EQ(census.taxa()[200], added.front());
    EXPECT_EQ(added.back().abundance(), 499);
    std::vector<std::size_t> sizes;
    for (const auto& chunk : census.block()->chunks) {
        sizes.push_back(chunk->size());
        EXPECT_EQ(chunk->capacity(), chunk->size());
    }
    EXPECT_THAT(sizes, ElementsAre(256U, 256U, 256U, 256U, 76U));
    EXPECT_THAT(context.insertTaxa(census, {}), ElementsAre());
    context.deleteCensuses({census});
    EXPECT_THAT(context.insertTaxa(census, someTaxa(2)), ElementsAre());
}

TEST(ObjectContext, ATaxonIsFoundByItsIdentityInItsCensusAlone) {
    ObjectContext context;
    const Census census = context.insertCensus({}, someTaxa(700));
    const Census other = context.insertCensus({}, someTaxa(1));
    const std::vector<Zorvel> taxa = census.taxa();
    context.deleteTaxa({taxa[300]});
    for (const std::size_t place : {0, 255, 256, 299, 300, 301, 699}) {
        const std::optional<Zorvel> expected =
            place == 300 ? std::nullopt : std::optional(taxa[place]);
        EXPECT_EQ(census.taxon(taxa[place].id()), expected) << place;
        EXPECT_EQ(other.taxon(taxa[place].id()), std::nullopt) << place;
    }
    EXPECT_EQ(census.taxon(other.taxa()[0].id()), std::nullopt);
    context.deleteCensuses({census});
    EXPECT_EQ(census.taxon(taxa[0].id()), std::nullopt);
}

TEST(TaxonCursor, FindsTaxaInAnyOrder) {
    ObjectContext context;
    context.insertCensus({}, someTaxa(700));
    context.insertCensus();
    const Census third = context.insertCensus({}, someTaxa(3));
    const std::vector<Zorvel> inOrder = context.taxa();
    std::vector<Zorvel> taxa = inOrder;
    taxa.insert(taxa.end(), inOrder.rbegin(), inOrder.rend());
    taxa.push_back(inOrder[700]);
    taxa.push_back(inOrder[256]);
    taxa.push_back(inOrder[256]);
    context.deleteTaxa({inOrder[255]});
    context.deleteTaxa({inOrder[300]});
    context.deleteCensuses({third});
    TaxonCursor cursor;
    for (const Zorvel& taxon : taxa) {
        const TaxonRecord* record = cursor.find(taxon);
        ASSERT_EQ(record != nullptr, taxon.exists());
        if (!record) continue;
        EXPECT_EQ(record->id, taxon.id());
        EXPECT_EQ(record->values.abundance, taxon.abundance());
        EXPECT_EQ(cursor.block().id, taxon.census()->id());
    }
}

}  // namespace
}  // namespace zorvel
