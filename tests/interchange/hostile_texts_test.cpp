// Texts made to exhaust a parser: each must be read in linear time and without a crash. A form that
// is quadratic would need hours on these sizes.
#include <gtest/gtest.h>

#include <string>

#include "interchange/parsers.h"
#include "shown.h"

namespace zorvel {
namespace {

constexpr std::size_t large = 10'000'000;

std::string repeated(std::string_view part, std::size_t times) {
    std::string text;
    text.reserve(part.size() * times);
    for (std::size_t i = 0; i < times; ++i) text += part;
    return text;
}

TEST(HostileTexts, AMillionColumns) {
    const std::size_t columns = 1'000'000;
    const std::string text =
        "x" + repeated(",a", columns) + "\nN" + repeated(",0", columns - 1) + ",1\n";
    EXPECT_EQ(shown(parseCensusMatrix(text)), "N: a=1");
    EXPECT_EQ(parseCensusMatrix(text + "N" + repeated(",0", columns + 1)).place,
              (TextPlace{3, columns + 2}));
}

TEST(HostileTexts, NothingButQuotes) {
    const std::string quotes(large, '"');
    EXPECT_EQ(shown(parseCensusMatrix(quotes)), "none @0:0 | No censuses could be imported");
    // The last of an odd number opens a quote anew; within it all pairs are single quotes.
    const auto census = parseCensus("\"" + quotes + "\",5");
    ASSERT_TRUE(census.value);
    EXPECT_EQ(census.value->taxa.at(0).name.str(), std::string(large / 2, '"'));
}

TEST(HostileTexts, OneEndlessField) {
    for (const std::string_view part : {"a", "1", "0", "+", "\xE2\x80", "\xC2", "\"\"", " "}) {
        const std::string field = repeated(part, large / part.size());
        parseCensusMatrix(field);
        const auto inMatrix = parseCensusMatrix("x,a\nN," + field + "b,1\n");
        ASSERT_FALSE(inMatrix.value) << part;
        EXPECT_LT(inMatrix.consoleLines.at(0).size(), large + 200);
        EXPECT_FALSE(parseCensus("a," + field + "b").value);
        EXPECT_FALSE(parseAbundanceList(field + "b").value);
        EXPECT_LE(parseSpeciesList(field).value->size(), 1U);
    }
}

TEST(HostileTexts, ManyOfTheSmallestRecords) {
    const std::size_t count = 500'000;
    EXPECT_EQ(parseCensusMatrix("x\n" + repeated("a\n", count)).value->size(), count);
    EXPECT_EQ(parseCensus(repeated(",1\n", count)).value->taxa.size(), count);
    EXPECT_EQ(parseAbundanceList(repeated("1+", count) + "1").value->taxa.size(), count + 1);
    EXPECT_EQ(parseSpeciesList(repeated("a,", count)).value->size(), count);
    EXPECT_FALSE(parseCensusMatrix(std::string(large, ',')).value);
    EXPECT_FALSE(parseCensusMatrix(std::string(large, '\0')).value);
    EXPECT_FALSE(parseCensusMatrix("x" + std::string(large, '\n')).value);
}

}  // namespace
}  // namespace zorvel
