#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/store/plain_project.h"

namespace zorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AnnouncementsTest : public testing::Test {
  protected:
    // Notes each set that comes, as the identities of its censuses, under that name.
    ObjectContext::ObserverId listen(const std::string& name) {
        return context.addObserver([this, name](const ChangeSet& changes) {
            std::string line = name + ":";
            for (const CensusChange& change : changes) {
                line += (change.inserted()  ? " +"
                         : change.deleted() ? " -"
                                            : " ") +
                        std::to_string(change.census);
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

TEST_F(AnnouncementsTest, OneSetATurn) {
    listen("a");
    EXPECT_THAT(announce(), ElementsAre("a: +1 +2"));
    EXPECT_THAT(announce(), IsEmpty());
    context.setName(second, "South");
    context.insertTaxon(second);
    context.deleteCensuses({first});
    EXPECT_THAT(announce(), ElementsAre("a: -1 2"));
    context.undo();
    EXPECT_THAT(announce(), ElementsAre("a: +1"));
    context.redo();
    context.undo();
    context.setName(first, "North");
    context.setName(first, std::nullopt);
    EXPECT_THAT(announce(), IsEmpty());
}

TEST_F(AnnouncementsTest, ALateObserverHearsOfNoEarlierTurn) {
    announce();
    listen("late");
    EXPECT_THAT(announce(), IsEmpty());
    context.insertTaxon(first);
    EXPECT_THAT(announce(), ElementsAre("late: 1"));
}

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

TEST_F(AnnouncementsTest, ObserversOutliveAnAdoption) {
    listen("a");
    ObjectContext source;
    source.insertCensus();
    context.addObserver([&](const ChangeSet& changes) {
        if (changes.size() == 2) context.adopt(source.records());
    });
    listen("b");
    EXPECT_THAT(announce(), ElementsAre("a: +1 +2", "b: +1 +2"));
    EXPECT_THAT(announce(), IsEmpty());
    context.deleteCensuses({context.censuses().front()});
    EXPECT_THAT(announce(), ElementsAre("a: -1", "b: -1"));
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
    context.redo();
    EXPECT_EQ(told, 2);
}

}  // namespace
}  // namespace zorvel
