#include "platform/text_project.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>
#include <string>
#include <vector>

#include "base/console.h"

namespace zorvel {
namespace {

class TextProjectTest : public ::testing::Test {
  protected:
    void SetUp() override {
        setConsoleSink([this](std::string_view line) { console.emplace_back(line); });
    }
    void TearDown() override { setConsoleSink({}); }

    TextProject read(const QByteArray& bytes) {
        QFile file(folder.filePath("counts.csv"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        return readTextProject(file.fileName().toStdString());
    }

    QTemporaryDir folder;
    std::vector<std::string> console;
};

TEST_F(TextProjectTest, ReadsAMatrix) {
    const TextProject project = read("site,oak,elm\nNorth,3,4\nSouth,0,5\n");
    EXPECT_EQ(project.failure, "");
    ASSERT_EQ(project.censuses.size(), 2u);
    EXPECT_EQ(project.censuses[1].name, "South");
    EXPECT_TRUE(console.empty());
}

TEST_F(TextProjectTest, ABadCellGivesReasonPlaceAndBothConsoleLines) {
    const TextProject project = read("site,oak,elm\nNorth,3,4\nSouth,0,five\n");
    EXPECT_TRUE(project.censuses.empty());
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
    const std::string missing = folder.filePath("missing.csv").toStdString();
    EXPECT_NE(readTextProject(missing).failure, "");
    EXPECT_EQ(console.back(), "WARNING: no string obtained from file");
    EXPECT_NE(read("name\xff\xfe,1\n").failure, "");
}

}  // namespace
}  // namespace zorvel
