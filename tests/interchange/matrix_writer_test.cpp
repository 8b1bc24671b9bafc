#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "interchange/parsers.h"
#include "interchange/writers.h"
#include "shown.h"

namespace zorvel {
namespace {

TEST(MatrixWriter, WholeTexts) {
    const struct {
        CountsMatrix matrix;
        std::vector<std::string> taxonNames;
        std::vector<std::string> censusNames;
        std::string text;
    } cases[] = {
        {{{3, 0}, {0, 12}},
         {"Abies", "Picea"},
         {"North", "South"},
         " , Abies, Picea\nNorth,3,0\nSouth,0,12\n"},
        {{}, {"Abies"}, {}, " , Abies\n"},
        {{{}, {}}, {}, {"North", ""}, " \nNorth\n\n"},
        {{}, {}, {}, " \n"},
        // Nothing is quoted or escaped.
        {{{1, 2}}, {"a, b", " \"c\"\n"}, {"N,W"}, " , a, b,  \"c\"\n\nN,W,1,2\n"},
        {{{INT64_MAX, INT64_MIN, -1, 1000000}},
         {"a", "b", "c", "d"},
         {"N"},
         " , a, b, c, d\nN,9223372036854775807,-9223372036854775808,-1,1000000\n"},
        {{{0, 0, 0, 0, 0, 0, 0, 5, 0, 0, 0}},
         std::vector<std::string>(11, "t"),
         {"N"},
         " , t, t, t, t, t, t, t, t, t, t, t\nN,0,0,0,0,0,0,0,5,0,0,0\n"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(writeCensusMatrix(c.matrix, c.taxonNames, c.censusNames), c.text);
    }
}

TEST(MatrixWriter, RowsOfTheLongestCells) {
    for (std::size_t taxa = 1; taxa <= 24; ++taxa) {
        std::string row;
        for (std::size_t i = 0; i < taxa; ++i) row += "," + std::to_string(INT64_MIN);
        const std::string text = writeCensusMatrix({CountsVector(taxa, INT64_MIN)},
                                                   std::vector<std::string>(taxa), {"N"});
        EXPECT_TRUE(text.ends_with("\nN" + row + "\n")) << taxa;
    }
}

TEST(MatrixWriter, ReadsBack) {
    const std::string text = writeCensusMatrix({{3, 0}, {0, 12}, {0, 0}}, {"Abies", "Picea"},
                                               {"North", "South", "unnamed"});
    EXPECT_EQ(shown(parseCensusMatrix(text)), "North: Abies=3; South: Picea=12; unnamed:");
}

}  // namespace
}  // namespace zorvel
