#include "model/edits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "model/diversity_document.h"

namespace zorvel {
namespace {

using testing::ElementsAre;

class EditsTest : public testing::Test {
  protected:
    EditsTest() {
        ObjectContext source;
        source.insertCensus({}, std::vector<TaxonValues>(3));
        source.insertCensus();
        context.adopt(source.records());
    }
    [[nodiscard]] Census north() const { return context.censuses()[0]; }
    [[nodiscard]] Census south() const { return context.censuses()[1]; }
    [[nodiscard]] Zorvel taxon() const { return context.taxa()[0]; }

    ObjectContext context;
};

TEST_F(EditsTest, EachIsOneStepUnderItsName) {
    MockCensus mock;
    mock.taxa.resize(2);
    struct Row {
        const char* name;
        std::function<void()> edit;
    };
    for (const Row& row : {
             Row{"Rename Census", [&] { editName(context, north(), " x "); }},
             Row{"Rename Species", [&] { editName(context, taxon(), "x"); }},
             Row{"Change Abundance", [&] { editAbundance(context, taxon(), 4); }},
             Row{"Leave Out Species", [&] { editInclude(context, context.taxa(), false); }},
             Row{"Change Latitude", [&] { editLatitude(context, north(), 4); }},
             Row{"Change Longitude", [&] { editLongitude(context, north(), 4); }},
             Row{"Change Notes", [&] { editNotes(context, north(), " a\nb\n"); }},
             Row{"Change Date", [&] { editTimeStamp(context, north(), TimeStamp()); }},
             Row{"Add Census", [&] { addCensus(context); }},
             Row{"Add Species", [&] { addTaxon(context, south()); }},
             Row{"Paste", [&] { pasteTaxa(context, north(), std::vector<TaxonValues>(2)); }},
             Row{"Delete Census", [&] { deleteCensuses(context, {north()}); }},
             Row{"Delete Censuses",
                 [&] {
                     deleteCensuses(context, {south(), north()});
                 }},
             Row{"Delete Species", [&] { deleteTaxa(context, context.taxa()); }},
             Row{"Import",
                 [&] {
                     importCensuses(context, {mock, mock});
                 }},
         }) {
        const std::vector<BlockPointer> before = context.blocks();
        row.edit();
        EXPECT_EQ(context.undoName(), row.name);
        EXPECT_NE(context.blocks(), before) << row.name;
        context.undo();
        EXPECT_EQ(context.blocks(), before) << row.name;
        EXPECT_FALSE(context.canUndo()) << row.name;
    }
    editInclude(context, {taxon()}, false);
    editInclude(context, context.taxa(), true);
    EXPECT_EQ(context.undoName(), "Include Species");
}

TEST_F(EditsTest, WhatChangesNothingIsNoStep) {
    editName(context, north(), " \t");
    editName(context, taxon(), "");
    editNotes(context, north(), "");
    editAbundance(context, taxon(), 0);
    editInclude(context, context.taxa(), true);
    editLatitude(context, north(), 0);
    editTimeStamp(context, north(), std::nullopt);
    pasteTaxa(context, north(), {});
    deleteCensuses(context, {});
    deleteTaxa(context, {});
    importCensuses(context, {});
    EXPECT_FALSE(context.canUndo());
}

TEST_F(EditsTest, AnEmptiedNameIsNoneAndAnImportedEmptyNameIsText) {
    importCensuses(context, {MockCensus{0, 0, "", "", {{1, ""}}, std::nullopt}});
    const Census census = context.censuses().back();
    EXPECT_EQ(census.name(), SharedText(""));
    EXPECT_EQ(census.taxa()[0].name(), SharedText(""));
    EXPECT_EQ(census.notes(), SharedText(""));
    editName(context, census, "");
    editName(context, census.taxa()[0], "\n");
    editNotes(context, census, "");
    EXPECT_FALSE(census.name() || census.taxa()[0].name() || census.notes());
}

TEST_F(EditsTest, NotesKeepTheirLines) {
    editNotes(context, north(), "wet,\n cold \n");
    EXPECT_EQ(north().notes(), SharedText("wet,\n cold \n"));
}

TEST_F(EditsTest, AnImportIsUndoneWithAllItsNamesAndOrder) {
    std::vector<MockCensus> mocks(130);
    for (std::size_t i = 0; i < mocks.size(); ++i) mocks[i].name = std::to_string(i);
    const std::size_t before = context.censusCount();
    importCensuses(context, mocks);
    const std::vector<Census> imported = context.censuses();
    context.undo();
    EXPECT_EQ(context.censusCount(), before);
    context.redo();
    EXPECT_EQ(context.censuses(), imported);
    EXPECT_EQ(imported[before + 77].name(), SharedText("77"));
}

}  // namespace
}  // namespace zorvel
