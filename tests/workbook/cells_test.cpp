// What comes out of the cells of workbooks that spreadsheet programs, libraries and hands wrote.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tables/guess.h"
#include "tables/reader.h"
#include "tests/workbook/workbook_files.h"

namespace zorvel {
namespace {

using test::Cells;

Result<Workbook> openData(const std::string& name) {
    return test::openBytes(test::bytesOfData(name));
}

TEST(WorkbookCells, OfEachKind) {
    EXPECT_EQ(
        test::cellsOf(openData("workbooks/cells.xlsx"), 1),
        (Cells{{},
               {"", "plain", "", "Abies alba", "東京", "two\nlines _x0041_ 🐞 & <", ""},
               {"inline", "TRUE", "FALSE", "#REF!", "text", "=SUM(A1)", "2", "", "2021-05-03"},
               {},
               {"47.61", "100000", "1e-07", "0", "12345678901234568", "0.1", "2.5"},
               {"2016-03-05", "1900-02-28", "1900-02-29", "1900-03-01", "2016-03-05T14:30", "12:00",
                "1.5", "-1"}}));
    EXPECT_EQ(test::cellsOf(openData("workbooks/cells.ods"), 1),
              (Cells{{"47.61", "0.5", "2021-05-03", "2021-05-03T14:05:00", "14:05:09", "TRUE",
                      "shown", "", "#DIV/0!", "=[.A1]"},
                     {"", "", "", "3", "3"},
                     {"", "", "", "3", "3"},
                     {},
                     {},
                     {},
                     {"a b   c\td\ne\nf", "base", "merged", "", "end"}}));
    EXPECT_EQ(test::cellsOf(openData("workbooks/dates_from_1904.xlsx"), 0),
              (Cells{{"1904-01-01", "2016-03-05"}}));
    EXPECT_EQ(
        test::cellsOf(openData("workbooks/xlsxwriter_inline.xlsx"), 0),
        (Cells{{"Plot", "Abies alba", "Poa annua"}, {"Plot 1", "3", "4"}, {"Plot 2", "0", "1"}}));
}

// A title, a cell merged downwards and one among the data lend nothing; one over two columns does.
TEST(WorkbookCells, MergedInAHeaderLendTheirText) {
    EXPECT_EQ(test::cellsOf(openData("workbooks/merged.xlsx"), 0),
              (Cells{{"Beetles", "", "", "", "", "2021"},
                     {"Site", "Carabus", "Carabus", "Poa annua", "Abax", "Abax"},
                     {"", "nitens", "auratus", "", "ater"},
                     {"N1", "4", "2", "", "1"},
                     {"N2", "none"}}));
}

// Libraries write formulas without results, with empty ones, or with 0 and a mark that they are to
// be computed. A formula that repeats that of another cell has no text.
TEST(WorkbookCells, FormulasWithoutResultsAreNoValues) {
    test::Files files = test::sheetFiles(
        "<worksheet><sheetData><row><c><f>A1</f></c><c><f>A1</f><v/></c>"
        "<c><f t='shared' si='0'/></c><c t='str'><f>A1</f><v></v></c><c><f>A1</f><v>0</v></c>"
        "<c><v>2</v></c></row></sheetData></worksheet>");
    EXPECT_EQ(test::cellsOf(test::openBytes(test::archiveOf(files)), 0),
              (Cells{{"=A1", "=A1", "=", "", "0", "2"}}));
    files[1].second.insert(files[1].second.rfind("</"), "<calcPr fullCalcOnLoad='1'/>");
    EXPECT_EQ(test::cellsOf(test::openBytes(test::archiveOf(files)), 0),
              (Cells{{"=A1", "=A1", "=", "=A1", "=A1", "2"}}));
}

TEST(WorkbookSheets, HiddenOnesAreLastAndEmptyOnesAreNotUsual) {
    for (const std::string name : {"workbooks/cells.xlsx", "workbooks/cells.ods"}) {
        const Result<Workbook> workbook = openData(name);
        ASSERT_TRUE(workbook) << workbook.problem().message;
        std::string sheets;
        for (const SheetInfo& sheet : workbook.value().sheets()) {
            sheets +=
                sheet.name + (sheet.hidden ? " hidden" : "") + (sheet.empty ? " empty" : "") + ";";
        }
        EXPECT_EQ(sheets, "empty empty;cells;hidden hidden;") << name;
        EXPECT_EQ(workbook.value().usualSheet(), 1U);
        EXPECT_EQ(workbook.value().findSheet("hidden"), 2U);
        EXPECT_EQ(workbook.value().findSheet("1"), 0U);
        for (const char* const none : {"0", "4", "", "Cells", "1a"}) {
            EXPECT_EQ(workbook.value().findSheet(none), std::nullopt) << none;
        }
    }
}

// Sheets of inline texts and numbers, by their letters: w words, t a table, e nothing.
Result<Workbook> bookOf(const std::string& sheets) {
    const auto text = [](const std::string& shown) {
        return "<c t='inlineStr'><is><t>" + shown + "</t></is></c>";
    };
    const std::map<char, std::string> rows = {
        {'e', ""},
        {'w', "<row>" + text("Author") + text("Jane") + "</row><row>" + text("Year") +
                  "<c><v>2021</v></c>" + "</row>"},
        {'t', "<row>" + text("Plot") + text("Poa annua") + "</row><row>" + text("P1") +
                  "<c><v>4</v></c></row>"}};
    std::string list;
    std::string relations;
    test::Files files = test::sheetFiles("");
    for (std::size_t i = 0; i < sheets.size(); ++i) {
        const std::string name = "s" + std::to_string(i + 1);
        list += "<sheet name='" + name + "' id='" + name + "'/>";
        relations +=
            "<Relationship Id='" + name + "' Type='/worksheet' Target='" + name + ".xml'/>";
        files.emplace_back("xl/" + name + ".xml", "<worksheet><sheetData>" + rows.at(sheets[i]) +
                                                      "</sheetData></worksheet>");
    }
    files[1].second = "<workbook><sheets>" + list + "</sheets></workbook>";
    files[2].second = "<Relationships>" + relations + "</Relationships>";
    return test::openBytes(test::archiveOf(files));
}

TEST(WorkbookSheets, TheUsualOneHoldsATable) {
    const std::vector<std::pair<std::string, std::optional<std::size_t>>> cases = {
        {"tt", 0U}, {"wt", 1U}, {"ewet", 3U}, {"wtt", std::nullopt}, {"ww", 0U}, {"ew", 1U}};
    for (const auto& [sheets, usual] : cases) {
        const Result<Workbook> workbook = bookOf(sheets);
        ASSERT_TRUE(workbook) << workbook.problem().message;
        EXPECT_EQ(workbook.value().usualSheet(), usual) << sheets;
    }
}

// The sheet that was looked at to find the usual one is not read again for its guess.
TEST(WorkbookSheets, AreGuessedOnceUnlessTheReadingWasStopped) {
    const Result<Workbook> workbook = bookOf("tt");
    ASSERT_TRUE(workbook);
    std::stop_source stop;
    stop.request_stop();
    const auto columns = [&](std::size_t sheet, const std::stop_token& token) {
        return workbook.value().guess(sheet, {}, token).reading.columns.size();
    };
    EXPECT_EQ(workbook.value().usualSheet(), 0U);
    EXPECT_EQ(columns(0, stop.get_token()), 2U);
    EXPECT_EQ(columns(1, stop.get_token()), 0U);
    EXPECT_EQ(columns(1, {}), 2U);
}

TEST(WorkbookCells, TheLastPlaceOfASheetNeedsNoMemoryForTheOthers) {
    WorkbookLimits limits;
    limits.cells = 2;
    const auto workbook = test::openBytes(test::bytesOfData("workbooks/far_cell.xlsx"), limits);
    ASSERT_TRUE(workbook);
    const auto source = workbook.value().rows(0);
    std::size_t cells = 0;
    TableRow row;
    while (source->next(row)) cells += row.cells.size();
    EXPECT_EQ(row.number, 1048576U);
    EXPECT_EQ(row.cells.size(), 16384U);
    EXPECT_EQ(row.cells.back(), "8");
    EXPECT_EQ(cells, 16385U);
    EXPECT_FALSE(source->problem());
}

TEST(WorkbookCells, NoRowFollowsAStop) {
    const auto workbook = openData("workbooks/xlsxwriter_inline.xlsx");
    std::stop_source stop;
    const auto source = workbook.value().rows(0, stop.get_token());
    TableRow row;
    EXPECT_TRUE(source->next(row));
    stop.request_stop();
    EXPECT_FALSE(source->next(row));
    EXPECT_FALSE(source->problem());
}

// --- whole tables ---

TableRecords readWorkbook(const std::string& name) {
    Result<Workbook> workbook = openData(name);
    if (!workbook) {
        ADD_FAILURE() << workbook.problem().message;
        return {};
    }
    const auto shared = std::make_shared<const Workbook>(std::move(workbook).value());
    const SheetSource source(shared, shared->usualSheet().value());
    const TableGuess guess = source.guess({}, {});
    EXPECT_THAT(guess.doubts, testing::IsEmpty());
    EXPECT_EQ(guess.reading.sheet, shared->sheets()[shared->usualSheet().value()].name);
    return readTable(*source.rows({}, {}), guess.reading);
}

// Each workbook holds the same table as a text of commas.
TEST(WorkbookTables, AreReadLikeTheSameTableAsText) {
    struct Case {
        std::string workbook;
        std::string text;
    };
    std::vector<Case> cases = {
        {"workbooks/genus_species_merged.xlsx",
         ",Carabus,Carabus,Harpalus\nSite,auratus,nitens,affinis\nN1,4,0,2\nN2,0,1,7\n"},
        {"workbooks/metadata_columns.xlsx",
         "Site,Treatment,Lat,Lon,Date,Abies alba,Larix decidua,Sum\n"
         "S1,burnt,47.61,-122.33,2016-03-05,3,2,5\nS2,control,47.62,-122.31,2016-03-06,0,9,9\n"},
    };
    for (const std::string name :
         {"species_rows_totals", "long_field", "genus_over_epithet_repeated_sites",
          "ground_beetles_title_footnotes"}) {
        const std::string text = test::bytesOfData("tables/" + name + ".csv");
        cases.push_back({"workbooks/libreoffice_" + name + ".xlsx", text});
        if (name.starts_with("ground")) continue;
        cases.push_back({"workbooks/libreoffice_" + name + ".ods", text});
    }
    for (const auto& [name, text] : cases) {
        SCOPED_TRACE(name);
        const TableGuess guess = guessTable(text, true);
        TextRows rows(bytesOf(text), guess.reading.form);
        const TableRecords expected = readTable(rows, guess.reading);
        ASSERT_GT(expected.censuses.size(), 1U);
        const TableRecords read = readWorkbook(name);
        EXPECT_EQ(read.problems.count, 0U);
        EXPECT_TRUE(read.censuses == expected.censuses);
        EXPECT_EQ(read.notices.totalsRow, expected.notices.totalsRow);
    }
}

}  // namespace
}  // namespace zorvel
