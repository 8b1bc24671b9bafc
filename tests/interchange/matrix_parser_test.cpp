#include <gtest/gtest.h>

#include <string>

#include "interchange/parsers.h"
#include "shown.h"

namespace zorvel {
namespace {

using namespace std::string_literals;

const std::string more =
    ": More abundances found in a row than there are species. See help for formatting an input "
    "file.";
const std::string fewer =
    ": Fewer abundances found in a row than there are species. See help for formatting an input "
    "file.";
const std::string notInteger = ": Not an abundance value, or not an integer: ";
const std::string negative =
    ": File contains negative abundance value, but all abundances must be positive integers: ";
const std::string help = ".  See help for formatting an input file.";
const std::string none = "none @0:0 | No censuses could be imported";

struct MatrixCase {
    std::string text;
    std::string shown;
};

template <std::size_t N>
void expectAll(const MatrixCase (&cases)[N]) {
    for (const MatrixCase& c : cases)
        EXPECT_EQ(shown(parseCensusMatrix(c.text)), c.shown) << c.text;
}

TEST(MatrixParser, Censuses) {
    expectAll({
        {"x,Abies,Larix,Picea\nNorth,3,0,12\n", "North: Abies=3 Picea=12"},
        {" , a, b\nN,1,2\nS,0,+3", "N: a=1 b=2; S: b=3"},
        {"x,a,b\r\n\r\nN,1,2\r\n\r\nS,0,007", "N: a=1 b=2; S: b=7"},
        {"x,a,b\nN, 00, \t-0\nS,+0,\u00A04\n", "N:; S: b=4"},
        {"x,\"a, b\",\"c\"\"\"\n\"N\nW\",\"1\",2\n", "N\nW: a, b=1 c\"=2"},
        {"x,a\nN,1\nN,2\n", "N: a=1; N: a=2"},
        {"x,a\nN,9223372036854775807\n", "N: a=9223372036854775807"},
        // Names: empty ones, and the one that marks a row to be dropped.
        {"x,,a\nN,3,4\n,1,2\n", "N: =3 a=4; : =1 a=2"},
        {"x,a\nimported census,1\nN,2\nImported census,3", "N: a=2; Imported census: a=3"},
        {"x,a\n\"\"\nN,2\n", "N: a=2"},
        // A row's length is tested at a last cell that is not empty.
        {"x,a,b,c\nN,1,2,\n", "N: a=1 b=2"},
        {"x,a,b,c\nN,1,2, ", "N: a=1 b=2"},
        {"x,a,b,c\nN\nS,\nW", "N:; S:; W:"},
        {"x,a\nN,1,0,0,\n", "N: a=1"},
        // The cells before an empty last cell of the header are the header.
        {"x,a,b,\nN,1,2\n", "N: a=1 b=2"},
        {"\nN,0,\n", "N:"},
        {"x,\nN\n", "N:"},
        {"", none},
        {"\n\n", none},
        {"x,a,b", none},
        {"x,a,b\n", none},
        {"x,a\nimported census,1\n", none},
        {"x,a\n\"\"", none},
    });
}

TEST(MatrixParser, Problems) {
    expectAll({
        {"x,a,b,c\nN,1,2.5,3\n", "none @2:3 | C" + notInteger + "2.5"},
        {"x,a,b,c\nN,1,,3\n", "none @2:3 | C" + notInteger},
        {"x,a,b\nN,\"a,\n1\",2\n", "none @2:2 | C" + notInteger + "a,\n1"},
        {"x,a,b\nN,1,2 \n", "none @2:3 | B" + notInteger + "2 "},
        {"x,a,b\nN,1,2\r\n\r\nS,1,b", "none @4:3 | A" + notInteger + "b"},
        {"x,a,b\nN,1\0,2\n"s, "none @2:2 | C" + notInteger + "1\0"s},
        {"x,a,b\nN,9223372036854775808,2\n", "none @2:2 | C" + notInteger + "9223372036854775808"},
        {"x,a,b\nN,-1,2\n", "none @2:2 | C" + negative + "-1" + help},
        {"x,a,b\nN,1,-1\n", "none @2:3 | B" + negative + "-1" + help},
        {"x,a,b\nN,1,-01", "none @2:3 | A" + negative + "-01" + help},
        // Integer and sign are tested before the length.
        {"x,a\nN,1,0,x\n", "none @2:4 | B" + notInteger + "x"},
        {"x,a,b\nN,-1", "none @2:2 | A" + negative + "-1" + help},
        {"x,a\nN,1,0\n", "none @2:3 | B" + more},
        {"x,a\nN,1,0,0", "none @2:4 | A" + more},
        {"x,a\nN,1,5", "none @2:3 | A" + more},
        {"x,a,b\nN,1\n", "none @2:2 | B" + fewer},
        {"x,a,b\nN,1,1\nS,0", "none @3:2 | A" + fewer},
        {"x,a,b\nimported census,1\n", "none @2:2 | B" + fewer},
        // A count that has no name.
        {"x,a\nN,1,2,\n", "none @2:3 | B" + more},
        {"x,a\nN,1,0,2,0", "none @2:4 | B" + more},
        {"x,a\nimported census,1,+2,\n", "none @2:3 | B" + more},
        {"x,a,\nN,1,2,\n", "none @2:3 | B" + more},
        {"x,\nN,1\n", "none @2:2 | B" + more},
        {"\nN,1\n", "none @2:2 | B" + more},
        {"\nN,0", "none @2:2 | A" + more},
        {"\nN,5,\n", "none @2:2 | B" + more},
    });
}

TEST(MatrixParser, CountsWhatItLeavesOut) {
    struct Row {
        const char* text;
        std::size_t zeroCells;
        std::size_t markedRows;
        std::size_t shortRows;
    };
    const Row rows[] = {
        {",a,b,c\nN,1,2,3", 0, 0, 0},
        {",a,b,c\nN,0,2,0\nS,0,0,0\n", 5, 0, 0},
        {",a,b,c,d,e,f,g,h,i,j\nN,0,0,0,0,0,0,0,0,0,7\nS,00,0,0,0,0,0,0,0,0,0", 19, 0, 0},
        {",a,b,c\nN,0,2,\nS\nT,0,0,1,", 3, 0, 2},
        {",a,b,c\nimported census,0,0,\nN,1,0,1", 1, 1, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        const LeftOut leftOut = parseCensusMatrix(row.text).leftOut;
        EXPECT_EQ(leftOut.zeroCells, row.zeroCells);
        EXPECT_EQ(leftOut.markedRows, row.markedRows);
        EXPECT_EQ(leftOut.shortRows, row.shortRows);
    }
}

TEST(MatrixParser, SharesOneNameAColumn) {
    const auto parsed = parseCensusMatrix("x,a\nN,1\nS,2\n");
    ASSERT_TRUE(parsed.value);
    EXPECT_EQ(&parsed.value->at(0).taxa.at(0).name.str(),
              &parsed.value->at(1).taxa.at(0).name.str());
}

}  // namespace
}  // namespace zorvel
