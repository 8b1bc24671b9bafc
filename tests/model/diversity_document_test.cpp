#include "model/diversity_document.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "tests/model/fake_view.h"
#include "tests/support/import_censuses.h"

namespace zorvel {
namespace {

class FakeTurns {
  public:
    DiversityDocument::AtTurnEnd atTurnEnd() {
        return [this](std::function<void()> action) { waiting.push_back(std::move(action)); };
    }
    void endTurn() {
        const std::vector<std::function<void()>> actions = std::exchange(waiting, {});
        for (const std::function<void()>& action : actions) action();
    }
    std::vector<std::function<void()>> waiting;
};

TEST(DiversityDocument, AnnouncesOnceATurn) {
    FakeTurns turns;
    DiversityDocument document(turns.atTurnEnd());
    ObjectContext& context = document.objectContext();
    std::vector<std::size_t> heard;  // changed censuses of each announcement
    context.addObserver([&](const ChangeSet& changes) {
        heard.push_back(changes.size());
        if (heard.size() == 1) context.insertCensus();
    });
    importCensuses(context, std::vector<MockCensus>(3));
    editName(context, context.censuses()[0], "North");
    EXPECT_EQ(turns.waiting.size(), 1U);
    EXPECT_TRUE(heard.empty());
    turns.endTurn();
    EXPECT_EQ(heard, (std::vector<std::size_t>{3}));
    turns.endTurn();
    turns.endTurn();
    EXPECT_EQ(heard, (std::vector<std::size_t>{3, 1}));
    context.undo();
    turns.endTurn();
    EXPECT_EQ(heard.size(), 3U);
}

TEST(DiversityDocument, ATurnThatEndsAfterItDoesNothing) {
    FakeTurns turns;
    bool heard = false;
    auto document = std::make_unique<DiversityDocument>(turns.atTurnEnd());
    document->objectContext().addObserver([&](const ChangeSet&) { heard = true; });
    addCensus(document->objectContext());
    document.reset();
    ASSERT_EQ(turns.waiting.size(), 1U);
    turns.endTurn();
    EXPECT_FALSE(heard);
}

TEST(DiversityDocument, MayBeClosedByAnObserver) {
    FakeTurns turns;
    auto document = std::make_unique<DiversityDocument>(turns.atTurnEnd());
    int heard = 0;
    const auto close = [&](const ChangeSet&) {
        ++heard;
        document.reset();
    };
    document->objectContext().addObserver(close);
    document->objectContext().addObserver(close);
    addCensus(document->objectContext());
    turns.endTurn();
    EXPECT_EQ(heard, 2);
}

TEST(DiversityDocument, TalksToItsWindowWhileThereIsOne) {
    DiversityDocument document;
    ObjectContext& context = document.objectContext();
    const auto runCommands = [&document] {
        document.addCensus();
        document.addSpecies();
        document.deleteSpecies();
        document.deleteCensus();
        document.reloadTaxonNames();
    };
    document.makeWindowControllers([] { return nullptr; });
    EXPECT_EQ(document.documentMainViewController(), nullptr);
    runCommands();
    EXPECT_EQ(context.censusCount(), 0U);

    MockCensus census;
    census.taxa = {{3, "Abies"}, {2, "Picea"}, {9, "Larix"}};
    importCensuses(context, {census, census});
    context.announceChanges();
    {
        FakeView view;
        view.formatter.setTaxonNames({"forgotten"});
        document.makeWindowControllers([&] { return &view; });
        EXPECT_EQ(view.formatter.taxonNames(), (TaxonFormatter::Names{"Abies", "Larix", "Picea"}));
        runCommands();
        EXPECT_EQ(view.commands, "+C+S-S-C");
        editName(context, context.taxa()[0], "Pinus");
        context.announceChanges();
        EXPECT_TRUE(view.formatter.taxonNames().contains("Pinus"));
        document.forgetMainView();
    }
    editName(context, context.taxa()[0], "Tsuga");
    context.announceChanges();
    runCommands();
}

}  // namespace
}  // namespace zorvel
