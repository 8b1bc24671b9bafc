#include "model/pasted_rows.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zorvel {
namespace {

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
    struct Row {
        const char* what;
        std::string text;
        std::string taxa;
    };
    const std::vector<Row> rows = {
        {"as copied from a spreadsheet", "Abies alba\t12\nPicea abies\t3\n",
         "Abies alba=12;Picea abies=3;"},
        {"lines of Windows and old Macs", "Abies\t1\r\nPicea\t2\rLarix\t3",
         "Abies=1;Picea=2;Larix=3;"},
        {"names alone", "Abies\nPicea\n", "Abies=0;Picea=0;"},
        {"space and empty cells around", " Abies \t 12 \t\t\nPicea\t0\t \n", "Abies=12;Picea=0;"},
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
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(shownTaxa(row.text), row.taxa);
    }
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
