#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "store/object_context.h"
#include "tests/store/plain_project.h"

namespace zorvel {
namespace {

using testing::ElementsAre;

class HistoryTest : public testing::Test {
  protected:
    // As many censuses with three taxa each, as if a file had been opened.
    void open(std::size_t censuses) {
        ObjectContext source;
        for (std::size_t i = 0; i < censuses; ++i) {
            source.insertCensus({}, std::vector<TaxonValues>(3));
        }
        context.adopt(source.records());
        opened = plainProject(context);
    }
    [[nodiscard]] Census census(std::size_t place) const { return context.censuses()[place]; }
    [[nodiscard]] Zorvel taxon(std::size_t place) const { return context.taxa()[place]; }

    ObjectContext context;
    PlainProject opened;
};

TEST_F(HistoryTest, EachEditIsUndoneAndRedone) {
    struct Row {
        const char* name;
        std::function<void()> edit;
    };
    for (const Row& row : {
             Row{"insert a census", [&] { context.insertCensus(); }},
             Row{"insert a taxon", [&] { context.insertTaxon(census(1)); }},
             Row{"delete a census", [&] { context.deleteCensuses({census(1)}); }},
             Row{"delete all", [&] { context.deleteCensuses(context.censuses()); }},
             Row{"delete a taxon", [&] { context.deleteTaxa({taxon(4)}); }},
             Row{"delete all taxa", [&] { context.deleteTaxa(context.taxa()); }},
             Row{"name a census", [&] { context.setName(census(2), ""); }},
             Row{"latitude", [&] { context.setLatitude(census(2), -0.0); }},
             Row{"longitude",
                 [&] {
                     context.setLongitude(census(0), std::numeric_limits<double>::quiet_NaN());
                 }},
             Row{"notes", [&] { context.setNotes(census(2), "wet"); }},
             Row{"time", [&] { context.setTimeStamp(census(2), TimeStamp()); }},
             Row{"name a taxon", [&] { context.setName(taxon(8), "Abies"); }},
             Row{"abundance", [&] { context.setAbundance(taxon(8), -1); }},
             Row{"include", [&] { context.setInclude(context.taxa(), false); }},
         }) {
        open(3);
        const std::vector<BlockPointer> before = context.blocks();
        row.edit();
        const std::vector<BlockPointer> after = context.blocks();
        EXPECT_NE(after, before) << row.name;
        context.undo();
        EXPECT_EQ(context.blocks(), before) << row.name;
        EXPECT_FALSE(context.canUndo()) << row.name;
        context.redo();
        EXPECT_EQ(context.blocks(), after) << row.name;
        EXPECT_FALSE(context.canRedo()) << row.name;
    }
}

TEST_F(HistoryTest, StepsNestUnderTheNameOfTheOutermost) {
    open(2);
    {
        const UndoStep outer(context, "Import");
        context.setName(census(0), "North");
        {
            const UndoStep inner(context, "Rename Census");
            context.setName(census(1), "South");
        }
        EXPECT_FALSE(context.canUndo());
        context.undo();  // not now
        context.deleteTaxa({taxon(0)});
    }
    EXPECT_EQ(context.undoName(), "Import");
    context.undo();
    EXPECT_EQ(plainProject(context), opened);
    EXPECT_EQ(context.redoName(), "Import");
}

TEST_F(HistoryTest, WhatComesToNothingIsNoStep) {
    open(1);
    context.setAbundance(taxon(0), 1);
    context.undo();
    {
        const UndoStep step(context, "Change");
        context.setAbundance(taxon(0), 2);
        context.setAbundance(taxon(0), 0);
        context.setLatitude(census(0), std::numeric_limits<double>::quiet_NaN());
        context.setLatitude(census(0), 0);
        context.deleteCensuses({context.insertCensus()});
    }
    EXPECT_FALSE(context.canUndo());
    EXPECT_TRUE(context.canRedo());
    context.setAbundance(taxon(0), 3);
    EXPECT_EQ(context.undoName(), "");
    EXPECT_FALSE(context.canRedo());
}

TEST_F(HistoryTest, RecordsComeBackToTheirPlacesAsThemselves) {
    open(200);
    const std::vector<Census> censuses = context.censuses();
    const std::vector<Zorvel> taxa = context.taxa();
    context.deleteTaxa({taxa[1]});
    context.deleteCensuses({censuses[150], censuses[3], censuses[64]});
    const Census later = context.insertCensus();
    EXPECT_FALSE(taxa[1].exists() || censuses[64].exists());
    for (int step = 0; step < 3; ++step) context.undo();
    EXPECT_EQ(context.censuses(), censuses);
    EXPECT_EQ(context.taxa(), taxa);
    context.setAbundance(taxa[1], 5);
    EXPECT_EQ(census(0).taxa()[1].abundance(), 5);
    EXPECT_FALSE(later.exists());
    EXPECT_GT(context.insertCensus().id(), later.id());
}

TEST_F(HistoryTest, AnEarlierStateIsOneStepAway) {
    open(3);
    const auto earlier = context.frozenCopy();
    context.deleteCensuses({census(1)});
    context.setName(census(0), "North");
    context.insertCensus();
    const PlainProject edited = plainProject(context);
    {
        const UndoStep step(context, "Revert");
        context.changeTo(*earlier);
    }
    EXPECT_EQ(plainProject(context), opened);
    EXPECT_EQ(context.undoName(), "Revert");
    context.undo();
    EXPECT_EQ(plainProject(context), edited);
    context.changeTo(*earlier);
    context.undo();
    EXPECT_EQ(plainProject(context), edited);
}

TEST_F(HistoryTest, NothingLeadsBackBehindTheOpening) {
    open(1);
    context.setName(census(0), "North");
    context.beginStep("Import");
    context.insertCensus();
    open(2);
    EXPECT_FALSE(context.isStepOpen() || context.canUndo() || context.canRedo());
    context.endStep();  // of the step that the opening cut off
    context.setName(census(1), "South");
    context.undo();
    EXPECT_EQ(plainProject(context), opened);
    EXPECT_FALSE(context.canUndo());
}

}  // namespace
}  // namespace zorvel
