// What the random edits do not reach: handles, names, sharing, and observers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <limits>

#include "tests/store/plain_project.h"

namespace zorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<TaxonValues> someTaxa(std::size_t count) {
    std::vector<TaxonValues> taxa(count);
    for (std::size_t i = 0; i < count; ++i) taxa[i].abundance = static_cast<std::int64_t>(i);
    return taxa;
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
        EXPECT_EQ(other.insertTaxon(foreign).census(), std::nullopt);
        other.deleteCensuses({foreign});
    }
    other.setAbundance(taxon, 7);
    EXPECT_EQ(other.censuses().front().block(), before);
    context.deleteCensuses({census});
    context.setName(census, "changed");
    context.setInclude({taxon}, false);
    context.deleteTaxa({taxon});
    EXPECT_THAT(context.insertTaxa(census, someTaxa(2)), IsEmpty());
    EXPECT_EQ(context.censusCount(), 0U);
    EXPECT_FALSE(context.census(census.id()) || taxon.census() || taxon.name());
    EXPECT_EQ(census.block()->taxonCount(), 0U);
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

TEST(ObjectContext, ChunksAreFilledAndSharedWithTheStateBefore) {
    ObjectContext context;
    const Census census = context.insertCensus({}, someTaxa(200));
    context.insertTaxa(census, someTaxa(500));
    for (int i = 0; i < 400; ++i) context.insertTaxon(census);
    const auto before = census.block();
    std::vector<std::size_t> sizes;
    for (const auto& chunk : before->chunks) {
        sizes.push_back(chunk->size());
        EXPECT_EQ(chunk->capacity(), chunk->size());
    }
    EXPECT_THAT(sizes, ElementsAre(256U, 256U, 256U, 256U, 76U));
    context.setAbundance(census.taxa()[1000], -1);
    std::size_t copied = 0;
    for (std::size_t i = 0; i < before->chunks.size(); ++i) {
        copied += census.block()->chunks[i] != before->chunks[i];
    }
    EXPECT_EQ(copied, 1U);
}

TEST(ObjectContext, TaxaAreFoundInTheirCensus) {
    ObjectContext context;
    const Census first = context.insertCensus({}, someTaxa(700));
    const Census second = context.insertCensus({}, someTaxa(3));
    const std::vector<Zorvel> taxa = context.taxa();
    const std::vector<Zorvel> gone = {taxa[702], taxa[255], taxa[300], taxa[255]};
    context.deleteTaxa(gone);
    for (const Zorvel& taxon : taxa) {
        const bool exists = std::find(gone.begin(), gone.end(), taxon) == gone.end();
        ASSERT_EQ(taxon.census().has_value(), exists);
        EXPECT_EQ(first.taxon(taxon.id()).has_value(), exists && taxon.census() == first);
        EXPECT_EQ(second.taxon(taxon.id()).has_value(), exists && taxon.census() == second);
    }
}

TEST(History, ValuesOfACensusAreUndoneAndRedone) {
    ObjectContext context;
    const Census census = context.insertCensus();
    const BlockPointer before = census.block();
    const std::function<void()> edits[] = {
        [&] { context.setLatitude(census, -0.0); },
        [&] { context.setLongitude(census, std::numeric_limits<double>::quiet_NaN()); },
        [&] { context.setNotes(census, ""); }, [&] { context.setTimeStamp(census, TimeStamp()); }};
    for (const auto& edit : edits) {
        edit();
        const BlockPointer after = census.block();
        EXPECT_NE(after, before);
        context.undo();
        EXPECT_EQ(census.block(), before);
        context.redo();
        EXPECT_EQ(census.block(), after);
        context.undo();
    }
}

class AnnouncementsTest : public testing::Test {
  protected:
    // Notes each set that comes, as the identities of its censuses, under that name.
    ObjectContext::ObserverId listen(const std::string& name) {
        return context.addObserver([this, name](const ChangeSet& changes) {
            std::string line = name + ":";
            for (const CensusChange& change : changes) {
                const char* sign = change.inserted() ? " +" : change.deleted() ? " -" : " ";
                line += sign + std::to_string(change.census);
            }
            heard.push_back(line);
        });
    }
    std::vector<std::string> announce() {
        heard.clear();
        context.announceChanges();
        return heard;
    }

    ObjectContext context;
    const Census first = context.insertCensus();
    const Census second = context.insertCensus();
    std::vector<std::string> heard;
};

TEST_F(AnnouncementsTest, AnObserverMayChangeRecords) {
    listen("a");
    bool done = false;
    context.addObserver([&](const ChangeSet&) {
        if (done) return;
        done = true;
        context.setName(first, "changed");
        context.announceChanges();  // waits
    });
    listen("b");
    EXPECT_THAT(announce(), ElementsAre("a: +1 +2", "b: +1 +2"));
    EXPECT_THAT(announce(), ElementsAre("a: 1", "b: 1"));
    EXPECT_THAT(announce(), IsEmpty());
}

TEST_F(AnnouncementsTest, AnObserverMayRemoveItselfAndOthersAndAdd) {
    std::optional<ObjectContext::ObserverId> self;
    std::optional<ObjectContext::ObserverId> next;
    self = context.addObserver([&](const ChangeSet&) {
        context.removeObserver(*self);
        context.removeObserver(*next);
        listen("added");
    });
    next = listen("removed");
    listen("stays");
    EXPECT_THAT(announce(), ElementsAre("stays: +1 +2"));
    context.deleteCensuses({first});
    EXPECT_THAT(announce(), ElementsAre("stays: -1", "added: -1"));
}

TEST_F(AnnouncementsTest, TheFirstChangeOfATurnIsTold) {
    announce();
    int told = 0;
    context.setFirstChangeHandler([&] { ++told; });
    context.setLatitude(first, 0);  // as it is
    EXPECT_EQ(told, 0);
    context.setLatitude(first, 1);
    context.setLatitude(first, 2);
    EXPECT_EQ(told, 1);
    announce();
    context.undo();
    EXPECT_EQ(told, 2);
}

}  // namespace
}  // namespace zorvel
