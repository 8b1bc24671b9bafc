#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <string>
#include <vector>

#include "interchange/parsers.h"
#include "zone.h"

namespace zorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string header(const std::string& taxa) {
    return "\"Name\",\"Date\",\"Notes\",\"Latitude\",\"Longitude\"," + taxa + "\n";
}

std::string line(const std::string& tail, const std::string& date = "Mar 5, 2016 3:42 PM") {
    return "\"North\",\"" + date + "\",\"wet\"," + tail + "\n";
}

std::vector<std::string> taxaOf(const MockCensus& census) {
    std::vector<std::string> texts;
    for (const MockTaxon& taxon : census.taxa) {
        texts.push_back(taxon.name.str() + "=" + std::to_string(taxon.abundance));
    }
    return texts;
}

TEST(ParseIOSFile, WholeRecords) {
    const Zone zone(easternZone);
    const auto parsed = parseIOSFile(
        header("\"Abies \"alba\"\",\" Picea, wet\",\"\",Larix") +
        "\"No\"rth\",\"Mar 5, 2016 3:42 PM\",\"wet, cold\",47.61,-122.33,4,0,7,-3\n"
        "\"\",\"Dec 31, 20\"15 12:00 AM\",\"\",1e2,-inf, 1 2 ,+3,-0,9223372036854775807\n"
        "\"None\",\"Dec 31, 2015 12:00 AM\",\"\",0,0,0,0,0,0\n"
        "lost for want of a line break");
    ASSERT_TRUE(parsed.value);
    EXPECT_THAT(parsed.consoleLines, IsEmpty());
    ASSERT_EQ(parsed.value->size(), 3U);
    const MockCensus& first = (*parsed.value)[0];
    EXPECT_EQ(first.name, "North");
    EXPECT_EQ(first.notes, "wet, cold");
    EXPECT_EQ(first.latitude, 47.61);
    EXPECT_EQ(first.longitude, -122.33);
    EXPECT_EQ(first.timeStamp, TimeStamp(std::chrono::seconds(1457210520)));
    EXPECT_THAT(taxaOf(first), ElementsAre("Abies alba=4", "=7"));
    const MockCensus& second = (*parsed.value)[1];
    EXPECT_EQ(second.name, "");
    EXPECT_EQ(second.notes, "");
    EXPECT_EQ(second.latitude, 100);
    EXPECT_EQ(second.longitude, -std::numeric_limits<double>::infinity());
    EXPECT_THAT(taxaOf(second),
                ElementsAre("Abies alba=12", " Picea, wet=3", "Larix=9223372036854775807"));
    EXPECT_THAT(taxaOf((*parsed.value)[2]), IsEmpty());
}

TEST(ParseIOSFile, FilesWithoutCensuses) {
    for (const std::string& text : {header("\"A\""), header("\"A\"") + "lost line"}) {
        const auto parsed = parseIOSFile(text);
        ASSERT_TRUE(parsed.value);
        EXPECT_THAT(*parsed.value, IsEmpty());
        EXPECT_THAT(parsed.consoleLines, IsEmpty());
    }
}

TEST(ParseIOSFile, ProblemsWithTheirPlace) {
    const Zone zone("UTC0");
    const std::string good = line("1,2,4,5");
    const std::string top = header("\"A\",\"B\"");
    const std::string items = "WARNING: incorrect number of items in data line";
    const std::string date = "WARNING: could not create date";
    const std::string few = "WARNING: too few numerial components";
    const std::string species =
        "WARNING: number of species in sample doesn't equal the expected number of species";
    const std::string latitude = "WARNING: non-numerical value of latitude";
    const std::string longitude = "WARNING: non-numerical value of longitude";
    const std::string abundance = "WARNING: non-integer abundance detected";
    struct Row {
        const char* what;
        std::string text;
        std::vector<std::string> lines;
        std::size_t line;
        std::size_t cell;
    };
    const std::vector<Row> rows = {
        {"empty", "", {"WARNING: fewer than six components on first line"}, 1, 0},
        {"five header cells",
         "\"a\",\"b\",\"c\",\"d\",\"e\"\n" + good,
         {"WARNING: fewer than six components on first line"},
         1,
         0},
        {"no line break", top.substr(0, top.size() - 1), {"WARNING: no data lines detected"}, 0, 0},
        {"three pieces", top + "\"North\",\"wet\",1,2,4,5\n", {items}, 2, 0},
        {"five pieces", top + "\"x\"," + good, {items}, 2, 0},
        {"an empty line", top + good + "\n" + good, {items}, 3, 0},
        {"a separator line", top + good + "\u2028" + good, {items}, 3, 0},
        {"a wrong month",
         top + good + line("1,2,4,5", "mar 5, 2016 3:42 PM"),
         {"WARNING: unexpected string for month: mar", date},
         3,
         2},
        {"a day that is not", top + line("1,2,4,5", "Apr 31, 2016 3:42 PM"), {date}, 2, 2},
        {"two values", top + line("1,2"), {few}, 2, 0},
        {"the date comes first",
         top + line("1,2", ""),
         {"WARNING: incorrect number of components in date", date},
         2,
         2},
        {"latitude", top + line("N47,W122,4,5"), {latitude}, 2, 4},
        {"no latitude", top + line(",2,4,5"), {latitude}, 2, 4},
        {"space before the longitude", top + line("1, 2,4,5"), {longitude}, 2, 5},
        {"the longitude comes before the count", top + line("1,x,4"), {longitude}, 2, 5},
        {"too few species", top + line("1,2,x"), {species}, 2, 0},
        {"too many species", top + line("1,2,x,5,6"), {species}, 2, 0},
        {"a decimal", top + line("1,2,4,2.5"), {abundance}, 2, 7},
        {"an empty abundance", top + line("1,2,,5"), {abundance}, 2, 6},
        {"spaces for an abundance", top + line("1,2,  ,5"), {abundance}, 2, 6},
        {"a tab", top + line("1,2,4,\t5"), {abundance}, 2, 7},
        {"too large", top + line("1,2,4,9223372036854775808"), {abundance}, 2, 7},
    };
    for (const Row& row : rows) {
        const auto parsed = parseIOSFile(row.text);
        EXPECT_FALSE(parsed.value) << row.what;
        EXPECT_EQ(parsed.consoleLines, row.lines) << row.what;
        EXPECT_EQ(parsed.place.line, row.line) << row.what;
        EXPECT_EQ(parsed.place.cell, row.cell) << row.what;
    }
}

TEST(ParseIOSFile, CarriageReturnsMakeEmptyLinesOfWhichTheAdviceTells) {
    const Zone zone("UTC0");
    std::string text = header("\"A\"") + line("1,2,4");
    EXPECT_NE(parseIOSFile(text + "\n\n").advice.find("line is empty"), std::string::npos);
    EXPECT_EQ(parseIOSFile(text + "North\n").advice, "");
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2) {
        text.replace(at, 1, "\r\n");
    }
    const auto parsed = parseIOSFile(text);
    EXPECT_THAT(parsed.consoleLines,
                ElementsAre("WARNING: incorrect number of items in data line"));
    EXPECT_NE(parsed.advice.find("CR LF"), std::string::npos);
}

TEST(ParseIOSFile, HostileTextsTakeNoLongTime) {
    const Zone zone("UTC0");
    constexpr std::size_t many = 300'000;
    std::string taxa = "\"A\"";
    std::string tail = "1,2,0";
    for (std::size_t i = 1; i < many; ++i) {
        taxa += ",\"\"";
        tail += ",0";
    }
    const auto wide = parseIOSFile(header(taxa) + line(tail));
    ASSERT_TRUE(wide.value);
    EXPECT_THAT(wide.value->front().taxa, IsEmpty());
    const std::string big(10 * many, ' ');
    EXPECT_THAT(parseIOSFile(header("\"A\"") + line("1,2," + big)).consoleLines,
                ElementsAre("WARNING: non-integer abundance detected"));
    const std::string quotes(10 * many, '"');
    EXPECT_FALSE(parseIOSFile(quotes).value);
    EXPECT_FALSE(parseIOSFile(header("\"A\"") + quotes + "\n").value);
    EXPECT_TRUE(parseIOSFile(header("\"A\"") + line("1,2,4") + std::string(many, '\n'))
                    .consoleLines.size() == 1);
}

}  // namespace
}  // namespace zorvel
