#include "model/import.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <string>
#include <vector>

#include "model/diversity_document.h"
#include "model/edits.h"

namespace zorvel {
namespace {

TEST(Import, EveryFieldIsStored) {
    DiversityDocument document;
    MockCensus mock;
    mock.name = "North";
    mock.notes = "wet, cold";
    mock.latitude = 47.61;
    mock.longitude = -122.33;
    mock.timeStamp = TimeStamp(std::chrono::seconds(1457221320));
    mock.taxa = {{5, "Abies"}, {std::numeric_limits<std::int64_t>::max(), "Abies"}, {1, ""}};
    importCensuses(document.objectContext(), {mock, MockCensus{}});
    const Census census = document.fetchCensuses()[0];
    EXPECT_EQ(census.name(), SharedText(mock.name));
    EXPECT_EQ(census.notes(), SharedText(mock.notes));
    EXPECT_EQ(census.latitude(), mock.latitude);
    EXPECT_EQ(census.longitude(), mock.longitude);
    EXPECT_EQ(census.timeStamp(), mock.timeStamp);
    const std::vector<Zorvel> taxa = census.taxa();
    ASSERT_EQ(taxa.size(), mock.taxa.size());
    for (std::size_t i = 0; i < taxa.size(); ++i) {
        EXPECT_EQ(taxa[i].name(), mock.taxa[i].name);
        EXPECT_EQ(taxa[i].abundance(), mock.taxa[i].abundance);
        EXPECT_TRUE(taxa[i].include());
    }
    EXPECT_FALSE(document.fetchCensuses()[1].timeStamp());
}

TEST(Import, EachKindGoesToItsParser) {
    const std::string phone =
        "\"Name\",\"Date\",\"Notes\",\"Latitude\",\"Longitude\",\"Abies\"\n"
        "\"North\",\"Mar 5, 2016 3:42 PM\",\"\",1,2,4\n";
    struct Row {
        FileKind kind;
        std::string text;
        std::string name;
        std::string taxon;
    };
    for (const Row& row : {Row{FileKind::list, "4", "imported census", "unnamed taxon"},
                           Row{FileKind::census, "Abies,4", "imported census", "Abies"},
                           Row{FileKind::matrix, " , Abies\nNorth,4\n", "North", "Abies"},
                           Row{FileKind::ios, phone, "North", "Abies"}}) {
        const auto parsed = parseFile(row.kind, row.text);
        ASSERT_TRUE(parsed.value) << row.text;
        ASSERT_EQ(parsed.value->size(), 1U);
        EXPECT_EQ(parsed.value->front().name, row.name);
        EXPECT_EQ(parsed.value->front().taxa.front().name.str(), row.taxon);
        EXPECT_EQ(parsed.value->front().taxa.front().abundance, 4);
        EXPECT_EQ(guessFileKind(row.text), row.kind);
    }
}

TEST(Import, AProblemKeepsItsLinesAndPlace) {
    const auto parsed = parseFile(FileKind::list, "4\n5\n2.5");
    EXPECT_FALSE(parsed.value);
    EXPECT_EQ(parsed.consoleLines.size(), 1U);
    EXPECT_EQ(parsed.place.line, 3U);
}

TEST(Import, CellsThatNoCommaSeparatesAreRefused) {
    struct Row {
        FileKind kind;
        std::string text;
        std::string separator;  // empty: read, or refused for another reason
    };
    const std::string rest =
        "\";\"D\";\"O\";\"La\";\"Lo\";\"Abies\"\n\"North\";\"Mar\";\"\";1;2;4\n";
    const std::vector<Row> rows = {
        {FileKind::matrix, "site;A;B\nNorth;3;4\nSouth;0;1\n", "semicolons"},
        {FileKind::matrix, "\r\nsite\tA\tB\r\n\r\nNorth\t3\t", "tabs"},
        {FileKind::matrix, "site;A;B\nNorth;3,5;4\n", "semicolons"},
        {FileKind::matrix, "\"site\";\"A, b\"\n\"North\nEast\";\"3\"\n", "semicolons"},
        {FileKind::matrix, "site;Abies, alba\nNorth, East;3\n", "semicolons"},
        {FileKind::census, "Abies\t12\nPicea\t3\n", "tabs"},
        {FileKind::list, "3;5;7", "semicolons"},
        {FileKind::ios, "\"N" + rest, "semicolons"},
        {FileKind::matrix, " ,A;a,B;b\nN;n,1,2\nS;s,0,0\n", ""},
        {FileKind::matrix, " ,A;a,B;b\nN;1,0,0\n", ""},
        {FileKind::matrix, " ,A;1,B;2\nN;n,1,x\n", ""},
        {FileKind::matrix, " ,A;a\nN;1,x\n", ""},
        {FileKind::matrix, "site;A\nNorth; upper slope\n", ""},
        {FileKind::matrix, " ,A\nNorth;3\n", ""},
        {FileKind::list, "Abies\t5\nPicea\t1\n", ""},
        {FileKind::census, "Abies;1,12\n", ""},
    };
    for (const Row& row : rows) {
        const auto parsed = parseFile(row.kind, row.text);
        EXPECT_EQ(parsed.advice.find("separated by " + row.separator + ",") != std::string::npos,
                  !row.separator.empty())
            << row.text;
        EXPECT_FALSE(parsed.value && !row.separator.empty()) << row.text;
    }
    const auto silent = parseFile(FileKind::matrix, rows.front().text);
    EXPECT_TRUE(silent.consoleLines.empty());
    EXPECT_EQ(reasonOf({}, silent.advice), silent.advice);
    EXPECT_EQ(parseFile(FileKind::list, "3;5;7").consoleLines.size(), 1U);
    EXPECT_EQ(reasonOf(parseFile(FileKind::matrix, ",Abies,Picea\nNorth,,3\n").consoleLines),
              "Not an abundance value, or not an integer: (empty)");
}

TEST(Import, ImportsAlwaysAdd) {
    DiversityDocument document;
    const auto parsed = parseFile(FileKind::matrix, " , Abies, Picea\nNorth,4,0\nSouth,0,0\n");
    importCensuses(document.objectContext(), *parsed.value);
    importCensuses(document.objectContext(), *parsed.value);
    EXPECT_THAT(censusNameList(document.fetchCensuses()),
                testing::ElementsAre("North", "South", "North", "South"));
    EXPECT_EQ(document.fetchTaxa().size(), 2U);
}

}  // namespace
}  // namespace zorvel
