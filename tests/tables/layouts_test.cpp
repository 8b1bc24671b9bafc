// Whole tables: files of the layouts that people have, with what must come out, and random records
// written in every layout.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tables/guess.h"
#include "tables/reader.h"

namespace zorvel {
namespace {

const std::string layoutFolder = ZORVEL_SOURCE_DIR "/tests/data/tables/";

std::string bytesOfFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string localDate(const std::optional<TimeStamp>& time) {
    if (!time) return "";
    const std::time_t seconds = std::chrono::system_clock::to_time_t(
        std::chrono::time_point_cast<std::chrono::system_clock::duration>(*time));
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%d", &local)};
}

nlohmann::json jsonOf(const MockCensus& census) {
    nlohmann::json json{{"name", census.name}, {"taxa", nlohmann::json::object()}};
    for (const MockTaxon& taxon : census.taxa) json["taxa"][taxon.name.str()] = taxon.abundance;
    if (census.latitude != 0) json["latitude"] = census.latitude;
    if (census.longitude != 0) json["longitude"] = census.longitude;
    if (census.timeStamp) json["date"] = localDate(census.timeStamp);
    if (!census.notes.empty()) json["notes"] = census.notes;
    return json;
}

TableRecords readBytes(const std::string& bytes, const TableReading& reading) {
    TextRows rows(bytesOf(bytes), reading.form);
    return readTable(rows, reading);
}

std::vector<std::string> textsOf(const TableRemarks& remarks) {
    std::vector<std::string> texts;
    for (const TableRemark& remark : remarks.kept) texts.push_back(remarkText(remark));
    return texts;
}

TEST(TableLayouts, FilesOfEachAreReadAsExpected) {
    const std::map<std::string, TableLayout> layouts = {{"wide", TableLayout::censusRows},
                                                        {"species rows", TableLayout::speciesRows},
                                                        {"long", TableLayout::records}};
    const std::map<std::string, TableDoubt> doubts = {{"separator", TableDoubt::separator},
                                                      {"layout", TableDoubt::layout},
                                                      {"dateOrder", TableDoubt::dateOrder},
                                                      {"thousandsMark", TableDoubt::thousandsMark}};
    const auto expected = nlohmann::json::parse(bytesOfFile(layoutFolder + "expected.json"));
    for (const auto& [name, wanted] : expected.items()) {
        SCOPED_TRACE(name);
        const std::string bytes = bytesOfFile(layoutFolder + name);
        const TableGuess guess = guessTable(bytes, true);
        if (wanted.contains("doubt")) {
            EXPECT_THAT(guess.doubts, testing::Contains(doubts.at(wanted["doubt"])));
            continue;
        }
        EXPECT_TRUE(guess.doubts.empty());
        EXPECT_EQ(guess.reading.layout, layouts.at(wanted["kind"]));
        const TableRecords read = readBytes(bytes, guess.reading);
        EXPECT_THAT(textsOf(read.problems), testing::IsEmpty());
        nlohmann::json censuses = nlohmann::json::array();
        for (const MockCensus& census : read.censuses) censuses.push_back(jsonOf(census));
        EXPECT_EQ(censuses, wanted["censuses"]);
        if (wanted.contains("totalsRow")) {
            EXPECT_EQ(read.notices.totalsRow, wanted["totalsRow"]);
        }
        if (wanted.contains("blanks")) {
            EXPECT_EQ(read.notices.blankCells, wanted["blanks"]);
        }
    }
}

// --- random records ---

using Records = std::map<std::string, std::map<std::string, std::int64_t>>;
using Grid = std::vector<std::vector<std::string>>;

Records randomRecords(std::mt19937& random) {
    const auto number = [&random](int most) {
        return static_cast<int>(random() % static_cast<unsigned>(most));
    };
    const std::vector<std::string> genera = {"Abies",     "Épicéa",  "Carabus \"A\"",
                                             "Larix; L.", "Poa, sp", "Acer"};
    Records records;
    const int species = 3 + number(6);
    for (int c = 0; c < 4 + number(8); ++c) {
        auto& taxa = records["Plot " + std::to_string(c + 1)];
        for (int s = 0; s < species; ++s) {
            if (number(3) > 0) taxa[genera[s % 6] + " alba" + std::to_string(s)] = 1 + number(2000);
        }
        taxa["Everywhere commonis"] = 1;
    }
    return records;
}

Grid wideGrid(const Records& records, bool speciesRows) {
    std::set<std::string> species;
    for (const auto& [name, taxa] : records) {
        for (const auto& [taxon, count] : taxa) species.insert(taxon);
    }
    Grid grid{{"Plot"}};
    for (const std::string& taxon : species) grid[0].push_back(taxon);
    for (const auto& [name, taxa] : records) {
        grid.push_back({name});
        for (const std::string& taxon : species) {
            const auto found = taxa.find(taxon);
            grid.back().push_back(found == taxa.end() ? "0" : std::to_string(found->second));
        }
    }
    if (!speciesRows) return grid;
    Grid turned(grid[0].size());
    for (const auto& row : grid) {
        for (std::size_t i = 0; i < row.size(); ++i) turned[i].push_back(row[i]);
    }
    turned[0][0] = "Species";
    return turned;
}

Grid longGrid(const Records& records) {
    Grid grid{{"Site", "Species", "Count"}};
    for (const auto& [name, taxa] : records) {
        for (const auto& [taxon, count] : taxa)
            grid.push_back({name, taxon, std::to_string(count)});
    }
    return grid;
}

std::string textOf(const Grid& grid, char separator, const std::string& lineEnd) {
    std::string text;
    for (const auto& row : grid) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (i > 0) text += separator;
            std::string quoted = row[i];
            for (std::size_t at = quoted.find('"'); at != std::string::npos;
                 at = quoted.find('"', at + 2)) {
                quoted.insert(at, 1, '"');
            }
            const bool plain = row[i].find_first_of("\";,\t ") == std::string::npos;
            text += plain ? row[i] : '"' + quoted + '"';
        }
        text += lineEnd;
    }
    return text;
}

std::string utf16(const std::string& text) {
    std::string wide = "\xFF\xFE";
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned unit = static_cast<unsigned char>(text[i]);
        if (unit >= 0xC0) {
            unit = (unit & 0x1F) << 6 | (static_cast<unsigned char>(text[++i]) & 0x3F);
        }
        wide += static_cast<char>(unit & 0xFF);
        wide += static_cast<char>(unit >> 8);
    }
    return wide;
}

TEST(TableLayouts, RandomRecordsComeBackFromEachForm) {
    std::mt19937 random(20260101);
    for (int i = 0; i < 60; ++i) {
        const Records records = randomRecords(random);
        const std::vector<Grid> grids = {wideGrid(records, false), wideGrid(records, true),
                                         longGrid(records)};
        for (const char separator : {',', ';', '\t', ' '}) {
            for (std::size_t layout = 0; layout < grids.size(); ++layout) {
                std::string text = textOf(grids[layout], separator, i % 2 == 0 ? "\n" : "\r\n");
                if (i % 5 == 0) text = utf16(text);
                const TableGuess guess = guessTable(text, true);
                SCOPED_TRACE(textOf(grids[layout], separator, "\n"));
                ASSERT_EQ(static_cast<std::size_t>(guess.reading.layout), layout);
                const TableRecords read = readBytes(text, guess.reading);
                ASSERT_EQ(read.problems.count, 0U);
                Records found;
                for (const MockCensus& census : read.censuses) {
                    for (const MockTaxon& taxon : census.taxa)
                        found[census.name][taxon.name.str()] += taxon.abundance;
                }
                ASSERT_EQ(found, records);
            }
        }
    }
}

// A reading of small pieces is that of the whole: no row depends on where a piece ends.
TEST(TableLayouts, PiecesOfAnySizeGiveTheSameRows) {
    const std::string text = "a,\"b \"\"c\"\"\",d\r\n\"e\nf\",g\r\rh,\"i\"j,\"k\n,\xC3\xA9";
    const auto rowsOf = [&text](std::size_t piece) {
        ByteSource whole = bytesOf(text);
        TextRows rows(
            [&](char* place, std::size_t size) { return whole(place, std::min(size, piece)); }, {});
        std::vector<std::vector<std::string>> found;
        for (TableRow row; rows.next(row);) found.emplace_back(row.cells.begin(), row.cells.end());
        return found;
    };
    const std::vector<std::vector<std::string>> expected = {
        {"a", "b \"c\"", "d"}, {"e\nf", "g"}, {""}, {"h", "\"i\"j", "\"k"}, {"", "é"}};
    for (const std::size_t piece : {1U, 2U, 3U, 7U, 100U})
        EXPECT_EQ(rowsOf(piece), expected) << piece;
}

}  // namespace
}  // namespace zorvel
