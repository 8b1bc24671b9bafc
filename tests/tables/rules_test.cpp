// What single cells mean, and the rules for those that are no plain counts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "tables/cells.h"
#include "tables/guess.h"
#include "tables/reader.h"
#include "tables/sample_grid.h"
#include "tables/texts.h"

namespace zorvel {
namespace {

using Kind = CellCount::Kind;
using testing::ElementsAre;

TEST(TableCells, Counts) {
    struct Case {
        const char* cell;
        NumberMarks marks;
        Kind kind;
        std::int64_t value;
    };
    const NumberMarks english{'.', ','};
    const NumberMarks german{',', '.'};
    for (const Case& c :
         std::vector<Case>{{"", {}, Kind::blank, 0},
                           {"12", {}, Kind::count, 12},
                           {"+12", {}, Kind::count, 12},
                           {"4.0", {}, Kind::count, 4},
                           {"4,0", german, Kind::count, 4},
                           {"1e3", {}, Kind::count, 1000},
                           {"1 234", {'.', ' '}, Kind::count, 1234},
                           {"1,234,567", english, Kind::count, 1234567},
                           {"1,23", english, Kind::notANumber, 0},
                           {"1,2345", english, Kind::notANumber, 0},
                           {"1234,567", english, Kind::notANumber, 0},
                           {"1,234", {}, Kind::notANumber, 0},
                           {"9007199254740993", {}, Kind::count, 9007199254740993},
                           {"9,007,199,254,740,993", english, Kind::count, 9007199254740993},
                           {"9223372036854775808", {}, Kind::tooLarge, 0},
                           {"1e19", {}, Kind::tooLarge, 0},
                           {"2.5", {}, Kind::fraction, 3},
                           {"0.4", {}, Kind::fraction, 0},
                           {"-1", {}, Kind::negative, -1},
                           {"-0.5", {}, Kind::negative, 0},
                           {"NA", {}, Kind::missing, 0},
                           {"n.d.", {}, Kind::missing, 0},
                           {"–", {}, Kind::missing, 0},
                           {"?", {}, Kind::missing, 0},
                           {">100", {}, Kind::notANumber, 0},
                           {"ca. 5", {}, Kind::notANumber, 0},
                           {"2a", {}, Kind::notANumber, 0},
                           {"+", {}, Kind::notANumber, 0},
                           {"0x10", {}, Kind::notANumber, 0},
                           {"inf", {}, Kind::notANumber, 0},
                           {"12 %", {}, Kind::fraction, 12},
                           {"#REF!", {}, Kind::notANumber, 0}}) {
        const CellCount count = cellCount(c.cell, c.marks);
        EXPECT_EQ(count.kind, c.kind) << c.cell;
        if (c.kind == Kind::count || c.kind == Kind::fraction) {
            EXPECT_EQ(count.value, c.value) << c.cell;
        }
    }
}

TEST(TableCells, ErrorValues) {
    for (const char* cell : {"#REF!", "#N/A", "#DIV/0!", "#NAME?", "#¡VALOR!", "Err:502"}) {
        EXPECT_TRUE(isErrorValue(cell)) << cell;
    }
    for (const char* cell : {"#OTU ID", "#!", "#12", "#plot!", "Err:", "Err:502a", "REF!", ""}) {
        EXPECT_FALSE(isErrorValue(cell)) << cell;
    }
}

TEST(TableCells, Degrees) {
    struct Case {
        const char* cell;
        double limit;
        std::optional<double> degrees;
    };
    for (const Case& c : std::vector<Case>{{"47.61", 90, 47.61},
                                           {"-122.33", 180, -122.33},
                                           {"46° 30' N", 90, 46.5},
                                           {"46°30'36\"S", 90, -46.51},
                                           {"7.5 W", 180, -7.5},
                                           {"90.1", 90, std::nullopt},
                                           {"46 60", 90, std::nullopt},
                                           {"7 W", 90, std::nullopt},
                                           {"north", 90, std::nullopt},
                                           {"", 90, std::nullopt}}) {
        const std::optional<double> degrees = tableDegrees(c.cell, {}, c.limit);
        ASSERT_EQ(degrees.has_value(), c.degrees.has_value()) << c.cell;
        if (degrees) {
            EXPECT_NEAR(*degrees, *c.degrees, 1e-12) << c.cell;
        }
    }
}

TEST(TableCells, Dates) {
    const auto at = [](int year, unsigned month, unsigned day, int minutes) {
        return TimeStamp(std::chrono::sys_days(std::chrono::year(year) / static_cast<int>(month) /
                                               static_cast<int>(day)) +
                         std::chrono::minutes(minutes));
    };
    struct Case {
        const char* cell;
        DateOrder order;
        std::optional<TimeStamp> utc;  // of a cell with a zone
        const char* same;              // otherwise a plain form of the same date
    };
    for (const Case& c : std::vector<Case>{
             {"2021-04-03T14:05:00Z", DateOrder::unknown, at(2021, 4, 3, 845), nullptr},
             {"2021-04-03T14:05+02:00", DateOrder::unknown, at(2021, 4, 3, 725), nullptr},
             {"2021-04-03T14:05-0330", DateOrder::unknown, at(2021, 4, 3, 1055), nullptr},
             {"3.4.2021", DateOrder::unknown, std::nullopt, "2021-04-03"},
             {"03.04.2021 7:30", DateOrder::monthFirst, std::nullopt, "2021-04-03 07:30"},
             {"13/4/2021", DateOrder::unknown, std::nullopt, "2021-04-13"},
             {"4/13/2021", DateOrder::unknown, std::nullopt, "2021-04-13"},
             {"4/4/2021", DateOrder::unknown, std::nullopt, "2021-04-04"},
             {"03/04/2021", DateOrder::dayFirst, std::nullopt, "2021-04-03"},
             {"03/04/2021", DateOrder::monthFirst, std::nullopt, "2021-03-04"},
             {"20210403", DateOrder::unknown, std::nullopt, "2021-04-03"},
             {"2021-04-03/2021-04-05", DateOrder::unknown, std::nullopt, "2021-04-03"}}) {
        const CellDate date = tableDate(c.cell, c.order);
        if (c.same != nullptr) {
            ASSERT_TRUE(date.time) << c.cell;
            EXPECT_EQ(date.time, tableDate(c.same, DateOrder::unknown).time) << c.cell;
        } else {
            EXPECT_EQ(date.time, c.utc) << c.cell;
        }
        EXPECT_FALSE(date.needsOrder) << c.cell;
    }
    EXPECT_TRUE(tableDate("03/04/2021", DateOrder::unknown).needsOrder);
    for (const char* cell :
         {"2021-02-30", "13/13/2021", "3.4.21", "May 2021", "2021-04-03 25:00", ""}) {
        EXPECT_FALSE(tableDate(cell, DateOrder::dayFirst).time) << cell;
    }
}

TEST(TableCells, NumbersOfAnyFormAreThoseOfAnyMarks) {
    constexpr const char* parts[] = {"0", "1", "9", "00", "123", ".",      ",",      "-",
                                     "+", "e", " ", "'",  "x",   "\u00A0", "\u202F", "\u2019"};
    std::mt19937 random(20261126);
    for (int i = 0; i < 50000; ++i) {
        std::string cell;
        for (unsigned k = 1 + random() % 6; k > 0; --k) cell += parts[random() % std::size(parts)];
        const bool isNumber = tableNumber(cell, {'.', 0}) || tableNumber(cell, {',', 0}) ||
                              tableNumber(cell, {'.', ','}) || tableNumber(cell, {',', '.'}) ||
                              tableNumber(cell, {'.', ' '}) || tableNumber(cell, {'.', '\''});
        ASSERT_EQ(isNumberOfAnyForm(cell), isNumber) << cell;
    }
}

// --- rules ---

TableRecords readWith(const std::string& text, void (*change)(TableReading&) = nullptr) {
    TableReading reading = guessTable(text, true).reading;
    if (change != nullptr) change(reading);
    TextRows rows(bytesOf(text), reading.form);
    return readTable(rows, reading);
}

std::string shownRecords(const TableRecords& records) {
    std::string text;
    for (const MockCensus& census : records.censuses) {
        text += census.name + ":";
        for (const MockTaxon& taxon : census.taxa) {
            text += " " + taxon.name.str() + "=" + std::to_string(taxon.abundance);
        }
        text += "; ";
    }
    for (const TableRemark& remark : records.problems.kept) text += "! " + remarkText(remark) + " ";
    return text;
}

TEST(TableRules, EachIsKept) {
    struct Case {
        const char* text;
        void (*change)(TableReading&);
        const char* records;
    };
    const char* const gaps = "Plot,Abies alba,Picea abies\nA,3,NA\nB,NA,NA\nC,1,2\n";
    const char* const records = "Site,Species,Count\nA,Bellis,NA\nA,Poa,3\nB,Poa,NA\nC,Poa,1\n";
    const char* const fractions = "Plot,Abies alba,Picea abies\nA,2.5,1\nB,3,0.2\n";
    const char* const twice = "Plot,Abies alba,Picea abies,Abies alba\nA,2,1,3\nA,1,0,0\n";
    const char* const unnamed = "Plot,Abies alba,Picea abies\nA,2,1\n,3,1\n";
    const char* const places =
        "Site,Date,Species,Count\nA,2021-05-03,Abies alba,2\nA,2021-05-04,Abies alba,3\n";
    for (
        const Case& c : std::vector<Case>{
            {gaps, nullptr, "A: Abies alba=3; C: Abies alba=1 Picea abies=2; "},
            {gaps, [](TableReading& r) { r.missing = MissingRule::leaveOut; },
             "C: Abies alba=1 Picea abies=2; "},
            {gaps, [](TableReading& r) { r.missing = MissingRule::problem; },
             "A: Abies alba=3; C: Abies alba=1 Picea abies=2; ! C2: NA is no value. ! B3: NA is no "
             "value. ! C3: NA is no value. "},
            {records, nullptr, "A: Poa=3; C: Poa=1; "},
            {records, [](TableReading& r) { r.missing = MissingRule::leaveOut; }, "C: Poa=1; "},
            {fractions, nullptr,
             "A: Picea abies=1; B: Abies alba=3; ! B2: 2.5 is not a whole number. Zorvel counts "
             "individuals. ! C3: 0.2 is not a whole number. Zorvel counts individuals. "},
            {fractions, [](TableReading& r) { r.fractions = FractionRule::round; },
             "A: Abies alba=3 Picea abies=1; B: Abies alba=3; "},
            {twice, nullptr, "A: Abies alba=5 Picea abies=1; A: Abies alba=1; "},
            {twice, [](TableReading& r) { r.sameSpecies = SameRule::apart; },
             "A: Abies alba=2 Picea abies=1 Abies alba=3; A: Abies alba=1; "},
            {twice, [](TableReading& r) { r.sameCensus = SameRule::sum; },
             "A: Abies alba=6 Picea abies=1; "},
            {unnamed, nullptr,
             "A: Abies alba=2 Picea abies=1; : Abies alba=3 Picea abies=1; ! A3: The census has no "
             "name. "},
            {unnamed, [](TableReading& r) { r.unnamed = UnnamedRule::rowNumber; },
             "A: Abies alba=2 Picea abies=1; row 3: Abies alba=3 Picea abies=1; "},
            {unnamed, [](TableReading& r) { r.unnamed = UnnamedRule::above; },
             "A: Abies alba=2 Picea abies=1; A: Abies alba=3 Picea abies=1; "},
            {places, nullptr, "A: Abies alba=2; A: Abies alba=3; "},
            {places, [](TableReading& r) { r.sameCensus = SameRule::sum; }, "A: Abies alba=5; "},
            {"Plot,Abies alba,Picea abies\nA,9223372036854775807,1\nA,1,1\n",
             [](TableReading& r) { r.sameCensus = SameRule::sum; },
             "A: Abies alba=9223372036854775807 Picea abies=2; ! B3: The sum of the counts of this "
             "species is more than 9223372036854775807. "},
            // A total is left out only where its sums agree.
            {"Plot,Abies alba,Picea abies\nA,2,1\nB,3,1\nTotal,5,2\n", nullptr,
             "A: Abies alba=2 Picea abies=1; B: Abies alba=3 Picea abies=1; "},
            {"Plot,Abies alba,Picea abies\nA,2,1\nB,3,1\nTotal,5,9\n", nullptr,
             "A: Abies alba=2 Picea abies=1; B: Abies alba=3 Picea abies=1; ! row 4: The row is "
             "named as a total, but its numbers are not the sums of the rows above. Leave it out, "
             "or correct it. "},
            // Sums are those of the cells as they are written, whatever the rules make of them.
            {"Plot,Abies alba,Picea abies\nA,2,1.5\nB,3,1\nTotal,5,2.5\n",
             [](TableReading& reading) { reading.fractions = FractionRule::round; },
             "A: Abies alba=2 Picea abies=2; B: Abies alba=3 Picea abies=1; "},
            {"Plot,Abies alba,Picea abies,Larix\nA,2,ca. 4,1\nB,3,2,1\nC,1,1,1\nTotal,6,7,3\n",
             nullptr,
             "A: Abies alba=2 Larix=1; B: Abies alba=3 Picea abies=2 Larix=1; C: Abies alba=1 "
             "Picea abies=1 Larix=1; ! C2: \"ca. 4\" is not a number. "},
            // A formula without its result is no value, and no name either.
            {"Plot,Date,Abies alba,#REF!\n=A1,2021-05-03,3,2\nB,=A2,1,=C2\nTotal,,=C2,=D2\n",
             nullptr,
             ": Abies alba=3 #REF!=2; B: Abies alba=1; ! D1: #REF! is the error of a formula. "
             "Correct it in the spreadsheet program and save the table again. ! A2: =A1 is a "
             "formula without its result. Open the table in a spreadsheet program and save it, so "
             "that the results are stored. ! B3: =A2 is a formula without its result. Open the "
             "table in a spreadsheet program and save it, so that the results are stored. ! D3: "
             "=C2 is a formula without its result. Open the table in a spreadsheet program and "
             "save it, so that the results are stored. "},
            {"Site,Species,Count\nA,Abies alba,2\nA,=B2,1\nB,#N/A,1\n", nullptr,
             "A: Abies alba=2; B:; ! B3: =B2 is a formula without its result. Open the table in a "
             "spreadsheet program and save it, so that the results are stored. ! B4: #N/A is the "
             "error of a formula. Correct it in the spreadsheet program and save the table "
             "again. "},
            {"Plot,Abies alba,Picea abies\nA,2,1\nB,3,1\n\nSource: field book\n", nullptr,
             "A: Abies alba=2 Picea abies=1; B: Abies alba=3 Picea abies=1; "}}) {
        EXPECT_EQ(shownRecords(readWith(c.text, c.change)), c.records) << c.text;
    }
}

TEST(TableRules, SexesAreAddedUnlessTheyAreKeptApart) {
    const char* const text = "Species,M,F\nAbies alba,1,2\n";
    const auto inSheet = [](TableReading& reading) { reading.sheet = "Bog"; };
    const auto apart = [](TableReading& reading) { reading.sameStages = SameRule::apart; };
    EXPECT_EQ(shownRecords(readWith(text, inSheet)), "Bog: Abies alba=3; ");
    EXPECT_EQ(shownRecords(readWith(text, apart)), "M: Abies alba=1; F: Abies alba=2; ");
}

TEST(TableRules, StagesAreAddedOnlyWhereColumnsDifferInThem) {
    const auto sum = [](TableReading& reading) {
        reading.sameStages = SameRule::sum;
        reading.sameSpecies = SameRule::apart;
    };
    struct Case {
        const char* text;
        const char* records;
        std::vector<std::size_t> columns;  // that are said to be added
    };
    for (const Case& c : std::vector<Case>{
             {"Species,Bog M,Bog F,Fen,Fen\nPoa annua,1,2,3,4\nPoa annua,5,6,0,0\n",
              "Bog: Poa annua=3 Poa annua=11; Fen: Poa annua=3; Fen: Poa annua=4; ",
              {1, 2}},
             {"Species,Bog,Bog,Fen,Fen\nSex,M,F,,\nPoa annua,1,2,3,4\n",
              "Bog: Poa annua=3; Fen: Poa annua=3; Fen: Poa annua=4; ",
              {}},
             {"Species,Bog juv,Bog adult,Plot A,Plot F,Plot M\nPoa annua,1,2,3,4,5\n",
              "Bog: Poa annua=3; Plot A: Poa annua=3; Plot F: Poa annua=4; Plot M: Poa annua=5; ",
              {1, 2}},
             {"Species,Transect F,Bog\nPoa annua,1,2\n",
              "Transect F: Poa annua=1; Bog: Poa annua=2; ",
              {}},
             {"Site,Parus M,Larus,Parus F,Larus\nA,1,2,3,4\n",
              "A: Parus=4 Larus=2 Larus=4; ",
              {1, 3}},
             {"Species,Bog M,Bog F,Bog M,Fen M,Fen F\nDate,2021-05-01,2021-05-01,2021-06-01,"
              "2021-05-01,2021-06-01\nPoa,1,2,3,4,5\n",
              "Bog: Poa=3; Bog: Poa=3; Fen: Poa=4; Fen: Poa=5; ",
              {1, 2, 3, 4, 5}},
             {"Site,Stage,Poa\nA,juv,1\nA,adult,2\n", "A: Poa=3; ", {}},
             {"Site,Stage,Poa,Poa\nA,juv,1,2\nA,adult,3,4\n", "A: Poa=4 Poa=6; ", {}},
             {"Site,Poa,Rumex\nA,1,2\n", "A: Poa=1 Rumex=2; ", {}},
             {"Site,Poa M,Poa F\nA,9223372036854775807,1\n",
              "A: Poa=9223372036854775807; ! C2: The sum of the counts of this species is more "
              "than "
              "9223372036854775807. ",
              {1, 2}}}) {
        const TableRecords records = readWith(c.text, sum);
        EXPECT_EQ(shownRecords(records), c.records) << c.text;
        EXPECT_EQ(records.notices.stageColumns, c.columns) << c.text;
    }
}

TEST(TableRules, StagesOfAnotherDateAreNotSaidToBeAdded) {
    const char* const apart = " added where date and place are the same";
    const std::string columns = "Species,Bog,Bog\nSex,M,F\n";
    EXPECT_EQ(joinedText(guessTable(columns + "Poa,1,2\n", true).reading),
              "; sexes or stages of row 2 added");
    EXPECT_EQ(
        joinedText(guessTable(columns + "Date,2021-05-01,2021-06-01\nPoa,1,2\n", true).reading),
        "; sexes or stages of row 2" + std::string(apart));
    TableReading reading =
        guessTable("Site,Date,Sex,Poa\nA,2021-05-01,M,1\nA,2021-05-01,F,2\n", true).reading;
    EXPECT_EQ(joinedText(reading), "; sexes or stages of column C" + std::string(apart));
    reading.sameCensus = SameRule::sum;
    EXPECT_EQ(joinedText(reading), "; sexes or stages of column C added");
    reading.sameCensus = SameRule::apart;
    reading.columns[1] = ColumnRole::year;  // which is no date by itself
    EXPECT_EQ(joinedText(reading), "; sexes or stages of column C added");
    TableNotices notices;
    notices.stageColumns = {1, 2};
    reading =
        guessTable("Species,Bog M,Bog F\nDate,2021-05-01,2021-06-01\nPoa,1,2\n", true).reading;
    EXPECT_THAT(noticeTexts(notices, reading),
                ElementsAre("sexes or stages in the headers of columns B, C" + std::string(apart)));
}

TEST(TableRules, NoticesShowNoControlCharacters) {
    TableNotices notices;
    notices.ignoredColumns = {"B \"\x1b[31mRed\""};
    notices.leftOutCensuses = {"Plot\t\x07"};
    EXPECT_THAT(noticeTexts(notices, {}), ElementsAre("column B \"\\x1b[31mRed\" ignored",
                                                      "without values, left out: Plot\t\\x07"));
}

TEST(TableRules, NoticesCountWhatWasTakenByRule) {
    const TableRecords records = readWith(
        "Site,Date,Observer,Species,Count,Status\nA,3.5.2021,KM,Abies alba,,present\n"
        "A,3.5.2021,KM,Picea abies,0,absent\nB,3.5.2021,KM,,,absent\n");
    EXPECT_EQ(shownRecords(records), "A: Abies alba=1; B:; ");
    EXPECT_EQ(records.notices.countedOnce.count, 1U);
    EXPECT_EQ(records.notices.absentRecords, 2U);
    EXPECT_EQ(records.notices.emptyCensuses, 1U);
    EXPECT_THAT(records.notices.ignoredColumns, ElementsAre("C \"Observer\""));
}

TEST(TableRules, ManyProblemsAreCountedAndTheFirstKept) {
    std::string text = "Plot,Abies alba,Picea abies\n";
    for (int i = 0; i < 1500; ++i) text += "P" + std::to_string(i) + ",x2,1\n";
    TableReading reading = guessTable("Plot,Abies alba,Picea abies\nP,2,1\nQ,2,1\n", true).reading;
    TextRows rows(bytesOf(text), reading.form);
    const TableRecords records = readTable(rows, reading);
    EXPECT_EQ(records.problems.count, 1500U);
    EXPECT_EQ(records.problems.kept.size(), TableRemarks::mostKept);
}

TEST(TableDoubts, AreNamed) {
    struct Case {
        const char* text;
        TableDoubt doubt;
    };
    for (const Case& c : std::vector<Case>{
             {"x,a,b\nc,1,2\nd,3,4\n", TableDoubt::layout},
             {"Site,Date,Species,Count\nA,03/04/2021,Abies alba,2\n", TableDoubt::dateOrder},
             {"Plot;Abies alba;Picea abies\nA;1.234;2\nB;3;4\n", TableDoubt::thousandsMark}}) {
        EXPECT_THAT(guessTable(c.text, true).doubts, ElementsAre(c.doubt)) << c.text;
    }
}

}  // namespace
}  // namespace zorvel
