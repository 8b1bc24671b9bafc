#include "model/text_project.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "base/console.h"
#include "model/diversity_document.h"
#include "tests/support/scratch_folder.h"

namespace zorvel {
namespace {

class TextProjectTest : public ScratchFolder {
  protected:
    void SetUp() override {
        ScratchFolder::SetUp();
        setConsoleSink([this](std::string_view line) { console.emplace_back(line); });
    }
    void TearDown() override {
        setConsoleSink({});
        ScratchFolder::TearDown();
    }

    TextProject read(const std::string& bytes) {
        put("counts.csv", bytes);
        return readTextProject(path("counts.csv"));
    }

    std::vector<std::string> console;
};

TEST_F(TextProjectTest, ReadsAMatrix) {
    const TextProject project = read("site,oak,elm\nNorth,3,4\nSouth,0,5\n");
    EXPECT_EQ(project.failure, "");
    ObjectContext context;
    context.adopt(project.records);
    EXPECT_FALSE(context.canUndo());
    const std::vector<Census> censuses = context.censuses();
    ASSERT_EQ(censuses.size(), 2u);
    EXPECT_EQ(censuses[1].name(), SharedText("South"));
    EXPECT_THAT(fullCountsVector(censuses[0]), testing::ElementsAre(3, 4));
    EXPECT_THAT(buildSparseCounts(context).taxonNames, testing::ElementsAre("elm", "oak"));
    EXPECT_GT(context.insertTaxon(censuses[0]).id(), context.taxa().back().id());
    EXPECT_TRUE(console.empty());
}

TEST_F(TextProjectTest, ABadCellGivesReasonPlaceAndBothConsoleLines) {
    const TextProject project = read("site,oak,elm\nNorth,3,4\nSouth,0,five\n");
    EXPECT_TRUE(project.records.censuses.empty());
    ASSERT_GE(console.size(), 2u);
    EXPECT_EQ(console.back(), "WARNING: Censuses could not be obtained from census matrix");
    EXPECT_NE(project.failure, "");
    EXPECT_EQ(project.failure.find("WARNING"), std::string::npos);
    EXPECT_NE(console.front().find(project.failure.substr(0, project.failure.find(';'))),
              std::string::npos);
    EXPECT_EQ(project.place.line, 3u);
    EXPECT_EQ(project.place.cell, 3u);
}

TEST_F(TextProjectTest, FilesThatGiveNoText) {
    EXPECT_EQ(read("").failure, "the file is empty");
    EXPECT_EQ(console.back(), "WARNING: no string obtained from file");
    EXPECT_NE(readTextProject(path("missing.csv")).failure, "");
    EXPECT_EQ(console.back(), "WARNING: no string obtained from file");
    EXPECT_NE(read("name\xff\xfe,1\n").failure, "");
}

}  // namespace
}  // namespace zorvel
