// The formats of one census: bare counts, and names with counts; and the list of names.
#include <gtest/gtest.h>

#include <string>

#include "interchange/parsers.h"
#include "shown.h"

namespace zorvel {
namespace {

using namespace std::string_literals;

struct Case {
    std::string text;
    std::string shown;
};

// As the parser gives them, with the taxa's name cut short.
std::string shownList(std::string_view text) {
    std::string shown = zorvel::shown(parseAbundanceList(text));
    const std::string name = "unnamed taxon";
    for (auto at = shown.find(name); at != std::string::npos; at = shown.find(name)) {
        shown.replace(at, name.size(), "t");
    }
    return shown;
}

TEST(AbundanceList, EveryOutcome) {
    const std::string notNumeric =
        " | File contains non-numeric characters (possibly a decimal point), but should contain "
        "only a list of integers. See help for formatting an input file.";
    const std::string notPositive =
        " | File contains zero or negative abundance value, but all abundances must be positive "
        "integers. See help for formatting an input file.";
    const Case cases[] = {
        {"3 5\n7", "imported census: t=3 t=5 t=7"},
        {"3,,5", "imported census: t=3 t=5"},
        {" \t,\r\n\r\n3\r\n\u0085\u2028\u2029\v\f5,", "imported census: t=3 t=5"},
        {"+4 007", "imported census: t=4 t=7"},
        {"5+3", "imported census: t=5 t=3"},
        {"9223372036854775807", "imported census: t=9223372036854775807"},
        {"", "none @0:0 | No taxon abundances were added"},
        {" ,\t\r\n\u2029", "none @0:0 | No taxon abundances were added"},
        {"3;5", "none @1:1" + notNumeric},
        {"2.5", "none @1:1" + notNumeric},
        {"1 2\r\n\r\n, 7 ,  12abc", "none @3:2" + notNumeric},
        {"3\u00A05", "none @1:1" + notNumeric},
        {"3 +", "none @1:2" + notNumeric},
        {"+ 3", "none @1:1" + notNumeric},
        {"+-3", "none @1:1" + notNumeric},
        {"--3", "none @1:1" + notNumeric},
        {"1\n9223372036854775808", "none @2:1" + notNumeric},
        {"+99999999999999999999", "none @1:1" + notNumeric},
        {"3\0"s, "none @1:1" + notNumeric},
        {"\"3\"", "none @1:1" + notNumeric},
        {"3 0 x", "none @1:2" + notPositive},
        {"-4", "none @1:1" + notPositive},
        {"5-3", "none @1:1" + notPositive},
        {"-0", "none @1:1" + notPositive},
        {"1,2\n3,-99999999999999999999", "none @2:2" + notPositive},
    };
    for (const Case& c : cases) EXPECT_EQ(shownList(c.text), c.shown) << c.text;
}

TEST(SingleCensus, EveryOutcome) {
    const std::string missing =
        " | An abundance value is missing.  See help for formatting an input file.";
    const std::string empty = " | Empty string; expected some sort of value";
    const std::string notInteger = " | Not an abundance value, or not an integer";
    const std::string notPositive =
        " | File contains zero or negative abundance value, but all abundances must be positive "
        "integers.  See help for formatting an input file.";
    const Case cases[] = {
        {"Abies alba,12\nPicea abies, 3", "imported census: Abies alba=12 Picea abies=3"},
        {"a,1\r\n\r\nb,2\r\n", "imported census: a=1 b=2"},
        {"\"a, \"\"b\"\"\",5", "imported census: a, \"b\"=5"},
        {"\"a\nb\",5", "imported census: a\nb=5"},
        {" a ,+7", "imported census:  a =7"},
        {",4\na,\"5\"", "imported census: =4 a=5"},
        {"a,1\na,1", "imported census: a=1 a=1"},
        {"a,1\nb,", "imported census: a=1"},
        {"a,1\n\"\"", "imported census: a=1"},
        {"", "none @0:0 | No taxa in census"},
        {"a,", "none @0:0 | No taxa in census"},
        {"\n\n", "none @1:1" + empty},
        {"\na,1", "none @1:1" + empty},
        {"a,1\n\"\"\nb,2", "none @2:1" + empty},
        {"a,1\nb,\nc,2", "none @2:2" + empty},
        {"a,1\nb", "none @2:1" + missing},
        {"a,1\nb\n", "none @2:1" + missing},
        {"a,1,2", "none @1:2" + missing},
        {"a,x,2", "none @1:2" + missing},
        {"a,,2", "none @1:2" + missing},
        {"species,count\na,1", "none @1:2" + notInteger},
        {"a,1\r\n\r\nb,1 ", "none @3:2" + notInteger},
        {"a,2.5", "none @1:2" + notInteger},
        {"a,9223372036854775808", "none @1:2" + notInteger},
        {"\"a\nb\",x", "none @2:2" + notInteger},
        {"a,1\0"s, "none @1:2" + notInteger},
        {"a,0", "none @1:2" + notPositive},
        {"a,-2\nb", "none @1:2" + notPositive},
    };
    for (const Case& c : cases) EXPECT_EQ(shown(parseCensus(c.text)), c.shown) << c.text;
}

TEST(SpeciesList, Names) {
    const Case cases[] = {
        {"Abies alba, Picea abies", "<Abies alba>< Picea abies>"},
        {"Abies alba\tPicea abies\n\nLarix", "<Abies alba><Picea abies><Larix>"},
        {"a,a\r\nb \u2028\"c\"", "<a><a><b ><\"c\">"},
        {",\t\r\n\u0085", ""},
        {" ", "< >"},
        {"", ""},
        {"a\0,\u00C5\xC2"s, "<a\0><\u00C5\xC2>"s},
    };
    for (const Case& c : cases) EXPECT_EQ(shown(parseSpeciesList(c.text)), c.shown) << c.text;
    const auto noText = parseSpeciesList({});
    EXPECT_EQ(shown(noText), " | WARNING: no names found");
}

}  // namespace
}  // namespace zorvel
