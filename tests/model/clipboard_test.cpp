// The two forms of the clipboard: copied records, and rows of a spreadsheet.
#include "model/copied_records.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "base/text.h"
#include "model/pasted_rows.h"
#include "tests/support/extreme_values.h"
#include "tests/support/same_records.h"

namespace zorvel {
namespace {

std::vector<CopiedCensus> oddCensuses() {
    const TimeStamp early = TimeStamp::min();
    return {{{"North", 46.5, -0.0, "wet\nand cold", TimeStamp()},
             {{"Abies", 3, true}, {std::nullopt, least, false}, {"", 0, true}}},
            {{std::nullopt, nan, -infinity, std::nullopt, std::nullopt}, {}},
            {{"", 0, 0, "", early}, {{"Abies", most, false}, {"\u00C9picea\t\"q\"", 1, true}}}};
}

std::string copyOf(const std::vector<CopiedCensus>& censuses) {
    RecordCopy copy;
    for (const CopiedCensus& census : censuses) {
        copy.addCensus(census.attributes);
        for (const TaxonValues& taxon : census.taxa) copy.addTaxon(taxon);
    }
    return copy.take().value();
}

TEST(CopiedRecords, HoldEveryValue) {
    const std::vector<CopiedCensus> censuses = oddCensuses();
    const auto read = readCopiedRecords(copyOf(censuses));
    ASSERT_TRUE(read);
    ASSERT_EQ(read->size(), censuses.size());
    for (std::size_t i = 0; i < censuses.size(); ++i) {
        EXPECT_TRUE(sameAttributes((*read)[i].attributes, censuses[i].attributes)) << i;
        EXPECT_EQ((*read)[i].taxa, censuses[i].taxa) << i;
    }
}

// What is taken can be stored: a file with other text would be refused as damaged.
TEST(CopiedRecords, AreTakenWholeOrNotAtAll) {
    const std::string whole = copyOf(oddCensuses());
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(readCopiedRecords(std::string_view(whole).substr(0, size))) << size;
    }
    EXPECT_FALSE(readCopiedRecords(whole + 'E'));
    std::mt19937 random(7);
    int taken = 0;
    for (int i = 0; i < 20'000; ++i) {
        std::string bytes = whole;
        for (int flips = 1 + i % 3; flips > 0; --flips) {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        const auto read = readCopiedRecords(bytes);
        if (!read) continue;
        ++taken;
        for (const CopiedCensus& census : *read) {
            const auto isText = [](const std::optional<SharedText>& text) {
                return !text || !firstInvalidUtf8(text->view());
            };
            EXPECT_TRUE(isText(census.attributes.name) && isText(census.attributes.notes));
            for (const TaxonValues& taxon : census.taxa) EXPECT_TRUE(isText(taxon.name));
        }
    }
    EXPECT_GT(taken, 1000);
}

TEST(CopiedRecords, ThereIsALimit) {
    const std::string half(longestCopy / 2, 'n');
    const SharedText notes[] = {half, half};
    for (const int censuses : {1, 2}) {
        RecordCopy copy;
        for (int i = 0; i < censuses; ++i) copy.addCensus({{}, 0, 0, notes[i], {}});
        EXPECT_EQ(copy.take().has_value(), censuses == 1);
    }
}

std::string shown(const PasteProblem& problem) {
    return "row " + std::to_string(problem.row) + ", column " + std::to_string(problem.column);
}

std::string shownTaxa(const std::string& text) {
    const auto taxa = pastedTaxa(text);
    if (!taxa) return shown(taxa.problem());
    std::string all;
    for (const TaxonValues& taxon : taxa.value()) {
        all += taxon.name->str() + "=" + std::to_string(taxon.abundance) + ";";
        EXPECT_TRUE(taxon.include);
    }
    return all;
}

TEST(PastedRows, Species) {
    const struct {
        const char* what;
        std::string text;
        std::string taxa;
    } rows[] = {
        {"as copied from a spreadsheet", "Abies alba\t12\nPicea abies\t3\n",
         "Abies alba=12;Picea abies=3;"},
        {"lines of Windows and old Macs", "Abies\t1\r\nPicea\t2\rLarix\t3",
         "Abies=1;Picea=2;Larix=3;"},
        {"names alone", "Abies\nPicea\n", "Abies=0;Picea=0;"},
        {"space and empty cells around", " Abies \t 12 \t\t\nPicea\t0\t \n", "Abies=12;Picea=0;"},
        {"control characters around", "\x01 Abies\x7F\t1", "Abies=1;"},
        {"empty rows", "\n\nAbies\t1\n\t\n\nPicea\t2\n\n", "Abies=1;Picea=2;"},
        {"a quoted cell", "\"Abies\nalba\"\t1\n\"say \"\"fir\"\"\"\t2",
         "Abies alba=1;say \"fir\"=2;"},
        {"a quote that quotes nothing", "\"A\" alba\t1\n\"B\t2", "\"A\" alba=1;\"B=2;"},
        {"equal names stay apart", "Abies\t1\nAbies\t2", "Abies=1;Abies=2;"},
        {"a heading", "Species\tCount\nAbies\t1", "row 1, column 2"},
        {"a decimal number", "Abies\t1\nPicea\t1.5", "row 2, column 2"},
        {"a negative number", "Abies\t-1", "row 1, column 2"},
        {"a missing name", "Abies\t1\n\n\t4", "row 3, column 1"},
        {"numbers alone", "3\n4", "row 1, column 1"},
        {"a third column", "Abies\t1\tx", "row 1, column 3"},
        {"nothing", " \n\t\n", "row 0, column 0"},
        {"not text", "Abies\xFF\t1", "row 0, column 0"},
    };
    for (const auto& row : rows) EXPECT_EQ(shownTaxa(row.text), row.taxa) << row.what;
}

TEST(PastedRows, Censuses) {
    const auto names = pastedCensusNames("North\t20\n South\t3\r\n\nEast");
    ASSERT_TRUE(names);
    EXPECT_EQ(names.value(), (std::vector<std::string>{"North", "South", "East"}));
    const auto nameless = pastedCensusNames("North\n\t3");
    ASSERT_FALSE(nameless);
    EXPECT_EQ(shown(nameless.problem()), "row 2, column 1");
}

}  // namespace
}  // namespace zorvel
