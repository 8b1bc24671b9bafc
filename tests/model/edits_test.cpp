#include "model/edits.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace zorvel {
namespace {

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
             Row{"Delete Censuses", [&] { deleteCensuses(context, context.censuses()); }},
             Row{"Delete Species", [&] { deleteTaxa(context, context.taxa()); }},
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
    EXPECT_FALSE(context.canUndo());
}

TEST_F(EditsTest, EmptiedTextsAreNone) {
    CensusAttributes attributes;
    attributes.name = attributes.notes = "";
    const Census empty = context.insertCensus(attributes, {{"", 1, true}});
    editName(context, empty, "");
    editName(context, empty.taxa()[0], "\n");
    editNotes(context, empty, "");
    EXPECT_FALSE(empty.name() || empty.taxa()[0].name() || empty.notes());
    editNotes(context, empty, "wet,\n cold \n");
    EXPECT_EQ(empty.notes(), SharedText("wet,\n cold \n"));
}

}  // namespace
}  // namespace zorvel
