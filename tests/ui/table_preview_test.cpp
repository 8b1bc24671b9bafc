// What the window for tables shows, without the window.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/settings.h"
#include "ui/tables/table_corrections.h"
#include "ui/tables/table_preview.h"

namespace zorvel {
namespace {

TablePreview preview(const std::string& text, const TableCorrections& corrections = {}) {
    return previewTable(tableInput(text), 0, corrections);
}

std::vector<std::string> problemTexts(const TablePreview& preview) {
    std::vector<std::string> texts;
    for (const TableRemark& remark : preview.problems.kept) texts.push_back(remarkText(remark));
    return texts;
}

// "title|2 x|3 header|4|...", with x for rows left out.
std::string rowStates(const TablePreview& preview) {
    std::string text;
    for (const TablePreview::Row& row : preview.rows) {
        const char* const states[] = {"", "h", "x"};
        text += std::to_string(row.number) + states[static_cast<int>(row.state)] + " ";
    }
    return text;
}

const std::string field =
    "Beetles of 2021;;;\nPlot;Carabus;Poecilus;Place\nP1;3;NA;wet\nP2;1;4;dry\nTotal;4;4;\n";

TEST(TablePreview, TellsWhatEachRowAndColumnIsTakenFor) {
    const TablePreview shown = preview(field);
    EXPECT_EQ(rowStates(shown), "1x 2h 3 4 5x ");
    EXPECT_EQ(understoodText(shown),
              "semicolons; censuses in rows 3-4, species in columns B-C; row 5 (total) left out");
    ASSERT_EQ(shown.censuses.size(), 2u);
    EXPECT_EQ(shown.censuses[1].name, "P2");
    EXPECT_EQ(shown.censuses[1].species, 2u);
    EXPECT_EQ(shown.censuses[1].individuals, 5);
    EXPECT_EQ(shown.header, "Plot\tCarabus\tPoecilus\tPlace\t\n");
    EXPECT_EQ(shown.problems.count, 0u);
    EXPECT_THAT(shown.notices, testing::Contains("C3: NA is no value; taken as 0."));
}

TEST(TablePreview, FollowsEachCorrection) {
    TableCorrections corrections;
    corrections.missing = MissingRule::problem;
    EXPECT_THAT(problemTexts(preview(field, corrections)),
                testing::ElementsAre("C3: NA is no value."));
    corrections.roles[2] = ColumnRole::ignored;
    EXPECT_EQ(preview(field, corrections).problems.count, 0u);
    corrections.roles.clear();
    corrections.leftOutRows = {3};
    EXPECT_EQ(rowStates(preview(field, corrections)), "1x 2h 3x 4 5x ");
    EXPECT_EQ(preview(field, corrections).problems.count, 0u) << "the sum of more rows";
    // Another column takes the only role of its kind.
    corrections.roles[3] = ColumnRole::census;
    const TablePreview other = preview(field, corrections);
    EXPECT_EQ(other.reading.role(0), ColumnRole::ignored);
    EXPECT_EQ(other.censuses.front().name, "dry");
    corrections.choices.layout = TableLayout::speciesRows;
    corrections.roles.clear();
    EXPECT_EQ(preview(field, corrections).censuses.front().name, "Carabus");
}

TEST(TablePreview, OfALongTextShowsTheFirstRowsAndThoseWithProblems) {
    std::string text = "Plot,Carabus\n";
    for (int i = 2; i <= 3000; ++i) text += "P" + std::to_string(i) + ",1\n";
    text += "P,2.5\n";
    const TablePreview whole = preview(text);
    EXPECT_EQ(whole.censusCount, 3000u);
    ASSERT_EQ(whole.rows.size(), TablePreview::mostRows + 1);
    EXPECT_EQ(whole.rows.back().number, 3001u);

    // Of a start that is cut the rest is not known, until the import has found its problems.
    TableInput input = tableInput(text);
    input.isShort = false;
    TablePreview cut = previewTable(input, 0, {});
    EXPECT_FALSE(cut.whole);
    EXPECT_EQ(cut.censusCount, TableSample::mostRows - 1);
    EXPECT_EQ(understoodText(cut), "commas; censuses in row 2 and below, species in column B");
    EXPECT_EQ(cut.problems.count, 0u);
    const TableRows found =
        rowsOfProblems(*input.sheets[0].rows->rows(cut.reading.form, {}), whole.problems);
    cut = previewTable(input, 0, {}, found);
    EXPECT_THAT(problemTexts(cut), testing::ElementsAre(testing::StartsWith("B3001: 2.5")));
    EXPECT_EQ(cut.rows.back().number, 3001u);
    TableCorrections rounded;
    rounded.fractions = FractionRule::round;
    EXPECT_EQ(previewTable(input, 0, rounded, found).problems.count, 0u);
}

TEST(TablePreview, OfAWideTableShowsTheFirstColumnsAndThoseWithProblems) {
    std::string header = "Plot";
    std::string row = "P1";
    for (int i = 0; i < 300; ++i) {
        header += ",S" + std::to_string(i);
        row += i == 250 ? ",-1" : ",1";
    }
    const TablePreview shown = preview(header + "\n" + row + "\n");
    ASSERT_EQ(shown.columns.size(), TablePreview::mostColumns + 1);
    EXPECT_EQ(shown.columns.back(), 251u);
    EXPECT_EQ(shown.rows.back().cells.back(), "-1");
    EXPECT_EQ(shown.problemsOfColumn.at(251), 1u);
}

TEST(TablePreview, OfTextsThatHoldNoTable) {
    for (const std::string& text :
         {std::string("\n\n"), std::string("word"), std::string("\0\1\2", 3), std::string("1\n")}) {
        const TablePreview shown = preview(text);
        EXPECT_LE(shown.censusCount, 1u);
        for (const auto& row : shown.rows) EXPECT_EQ(row.cells.size(), shown.columns.size());
    }
}

TEST(TableCorrectionsTest, ComeBackWithTheNextTableOfTheHeader) {
    clearSettings();
    TableCorrections corrections;
    corrections.choices.layout = TableLayout::speciesRows;
    corrections.roles[3] = ColumnRole::ignored;
    corrections.leftOutRows = {7};
    corrections.thousandsMark = 0;
    corrections.missing = MissingRule::leaveOut;
    keepCorrections("Plot\tA", corrections);
    for (int i = 0; i < 49; ++i) {
        TableCorrections other;
        other.presence = true;
        keepCorrections(std::to_string(i), other);
    }
    const auto kept = keptCorrections("Plot\tA");
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->choices.layout, TableLayout::speciesRows);
    EXPECT_EQ(kept->roles, corrections.roles);
    EXPECT_TRUE(kept->leftOutRows.empty()) << "rows are of one file";
    EXPECT_EQ(kept->thousandsMark, 0);
    EXPECT_EQ(kept->missing, MissingRule::leaveOut);
    keepCorrections("one more", corrections);
    EXPECT_FALSE(keptCorrections("Plot\tA")) << "the oldest goes";
    keepCorrections("one more", {});
    EXPECT_FALSE(keptCorrections("one more")) << "nothing is left to correct";
    corrections = {};
    corrections.dateOrder = DateOrder::unknown;
    keepCorrections("one more", corrections);
    EXPECT_FALSE(keptCorrections("one more")) << "nothing that has a name is left";
    clearSettings();
}

// They stay the same whatever is added to the program; what it does not know is left out.
TEST(TableCorrectionsTest, AreKeptByTheNamesThatOptionsHave) {
    TableCorrections corrections;
    corrections.choices.separator = ';';
    corrections.choices.layout = TableLayout::records;
    corrections.roles[2] = ColumnRole::stage;
    corrections.sameCensus = SameRule::sum;
    corrections.takenAsZero = {CountFault::notANumber};
    const QString text = R"({"layout":"long","roles":{"2":"stage"},"sameCensus":"sum",)"
                         R"("separator":59,"zero":["text"]})";
    EXPECT_EQ(correctionsText(corrections), text);
    EXPECT_EQ(correctionsText(readCorrections(text)), text);
    EXPECT_EQ(
        correctionsText(readCorrections(
            R"({"layout":2,"missing":"x","roles":{"a":"count","1":3,"2":"new"},"zero":[1]})")),
        "{}");
}

}  // namespace
}  // namespace zorvel
