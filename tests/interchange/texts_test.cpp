// The plain formats: fields, lists, single censuses, and the tables that are written; in every
// locale, and of texts made to exhaust a parser.
#include <gtest/gtest.h>

#include <limits>
#include <locale>
#include <string>
#include <vector>

#include "interchange/parsers.h"
#include "interchange/scan_field.h"
#include "interchange/writers.h"
#include "shown.h"

namespace zorvel {
namespace {

using namespace std::string_literals;
using Real = std::numeric_limits<double>;

// Every field in angle brackets, then its terminator: a comma, "/" for a line break, "$" for the
// end.
std::string fieldsOf(std::string_view text) {
    FieldCursor cursor(text);
    std::string shown;
    for (;;) {
        const ScannedField field = scanField(cursor);
        shown += "<" + std::string(field.text) + ">";
        if (field.terminator == FieldTerminator::endOfInput) return shown + "$";
        shown += field.terminator == FieldTerminator::comma ? "," : "/";
    }
}

TEST(ScanField, Fields) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "<>$"},
        {"a,b\nc", "<a>,<b>/<c>$"},
        {"a,b\n", "<a>,<b>/<>$"},
        // Spaces are dropped after a comma alone, whatever kind of space.
        {" a , \t b \n c", "< a >,<b >/< c>$"},
        {"a,\u00A0\u1680\u2000\u200A\u202F\u205F\u3000b", "<a>,<b>$"},
        {"a,\u200Bb,\u180Ec", "<a>,<\u200Bb>,<\u180Ec>$"},
        {"a, \nb", "<a>,<>/<b>$"},
        // A run of line breaks of any kind is one.
        {"a\r\n\r\n\v\f\u0085\u2028\u2029b", "<a>/<b>$"},
        // First bytes of line breaks and spaces in other characters, and at the end of the text.
        {"\u00A5,\u20AC\u2027\u202A,\u3001", "<\u00A5>,<\u20AC\u2027\u202A>,<\u3001>$"},
        {"a\xE2\x80", "<a\xE2\x80>$"},
        {"a\xC2", "<a\xC2>$"},
        {"a\0b\0,\0\n"s, "<a\0b\0>,<\0>/<>$"s},
        // Quotes.
        {"\"Abies, alba\",12", "<Abies, alba>,<12>$"},
        {"a\"b,c\"d", "<ab,cd>$"},
        {"\"a\"\"b\"", "<a\"b>$"},
        {"a\"\"b", "<ab>$"},
        {"\"a\r\n\u2028b\",c", "<a\r\n\u2028b>,<c>$"},
        {"\"a,  b\",  c", "<a,  b>,<c>$"},
        {"\"open, to\nthe end", "<open, to\nthe end>$"},
        {"\"closed\"\"", "<closed\">$"},
        {"\"a\"x\"b\"\n,", "<axb>/<>,<>$"},
    };
    for (const auto& [text, fields] : cases) EXPECT_EQ(fieldsOf(text), fields) << text;
}

TEST(ScanField, ViewsTheTextUnlessQuoted) {
    const std::string text = "Abies,12";
    FieldCursor cursor(text);
    EXPECT_EQ(scanField(cursor).text.data(), text.data());
    const ScannedField second = scanField(cursor);
    EXPECT_EQ(second.text.data(), text.data() + 6);
    EXPECT_EQ(second.start, 6U);
    EXPECT_TRUE(cursor.atEnd());
}

struct Case {
    std::string text;
    std::string shown;
};

TEST(AbundanceList, EveryOutcome) {
    const std::string notNumeric =
        " | File contains non-numeric characters (possibly a decimal point), but should contain "
        "only a list of integers. See help for formatting an input file.";
    const std::string notPositive =
        " | File contains zero or negative abundance value, but all abundances must be positive "
        "integers. See help for formatting an input file.";
    const Case cases[] = {
        {"3 5\n7", "imported census: unnamed taxon=3 unnamed taxon=5 unnamed taxon=7"},
        {" \t,\r\n\r\n3\r\n\u0085\u2028\u2029\v\f5,",
         "imported census: unnamed taxon=3 unnamed taxon=5"},
        {"+4 007", "imported census: unnamed taxon=4 unnamed taxon=7"},
        {"5+3", "imported census: unnamed taxon=5 unnamed taxon=3"},
        {"", "none @0:0 | No taxon abundances were added"},
        {" ,\t\r\n\u2029", "none @0:0 | No taxon abundances were added"},
        {"2.5", "none @1:1" + notNumeric},
        {"1 2\r\n\r\n, 7 ,  12abc", "none @3:2" + notNumeric},
        {"3\u00A05", "none @1:1" + notNumeric},
        {"3 +", "none @1:2" + notNumeric},
        {"+ 3", "none @1:1" + notNumeric},
        {"+-3", "none @1:1" + notNumeric},
        {"1\n9223372036854775808", "none @2:1" + notNumeric},
        {"+99999999999999999999", "none @1:1" + notNumeric},
        {"3\0"s, "none @1:1" + notNumeric},
        {"3 0 x", "none @1:2" + notPositive},
        {"5-3", "none @1:1" + notPositive},
        {"-0", "none @1:1" + notPositive},
        {"1,2\n3,-99999999999999999999", "none @2:2" + notPositive},
    };
    for (const Case& c : cases) EXPECT_EQ(shown(parseAbundanceList(c.text)), c.shown) << c.text;
}

TEST(SingleCensus, EveryOutcome) {
    const std::string missing =
        " | An abundance value is missing.  See help for formatting an input file.";
    const std::string empty = " | Empty string; expected some sort of value";
    const std::string noInteger = " | Not an abundance value, or not an integer";
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
        {"a,1\nb,", "imported census: a=1"},
        {"a,1\n\"\"", "imported census: a=1"},
        {"", "none @0:0 | No taxa in census"},
        {"a,", "none @0:0 | No taxa in census"},
        {"\na,1", "none @1:1" + empty},
        {"a,1\n\"\"\nb,2", "none @2:1" + empty},
        {"a,1\nb,\nc,2", "none @2:2" + empty},
        {"a,1\nb", "none @2:1" + missing},
        {"a,1,2", "none @1:2" + missing},
        {"a,x,2", "none @1:2" + missing},
        {"species,count\na,1", "none @1:2" + noInteger},
        {"a,1\r\n\r\nb,1 ", "none @3:2" + noInteger},
        {"a,9223372036854775808", "none @1:2" + noInteger},
        {"\"a\nb\",x", "none @2:2" + noInteger},
        {"a,1\0"s, "none @1:2" + noInteger},
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

TEST(WriteMetricsTable, WholeText) {
    const std::string header =
        " , Abundance, Richness, Chao-1, alroySQS, Shannon's H, Fisher's alpha, Pielou's J, "
        "Simpson's D, Buzas-Gibson E\n";
    EXPECT_EQ(writeMetricsTable({}, metricColumnTitles, {}), header);
    const std::vector<MetricRow> rows = {
        {22, 6, 8.25, 5.75, 1.4655, 2.5, 0.0, -0.0, 1e-9},
        {1e15, 2147483648.0, Real::quiet_NaN(), Real::infinity(), -Real::infinity(), 1e20, -0.0005,
         0.0625, -Real::quiet_NaN()}};
    const std::vector<std::string> names = {"North, wet", "\u00C5 \"quoted\""};
    EXPECT_EQ(writeMetricsTable(rows, metricColumnTitles, names),
              header +
                  "North, wet, 22, 6, 8.2, 5.8, 1.466, 2.500, 0.0, 0.0, 0.000\n"
                  "\u00C5 \"quoted\", 1000000000000000, 2147483648, -, -, -, "
                  "100000000000000000000.000, -0.001, 0.062, -\n");
}

TEST(WriteRarefactionTable, WholeText) {
    const std::string header =
        "sampleSize,estimatedRichness,variance,lower95limit,upper95limit,lower99limit,"
        "upper99limit\n";
    EXPECT_EQ(writeRarefactionTable({}), header);
    const std::vector<Rarefaction> curve = {
        {5, 3.25, 0.5, 2.0, 4.5, 1.5, 5.0},
        {12345678901, 1e20, 1234567.8, -1.5, 0.0005, 0.0015, 123456789012.25},
        {-1, Real::quiet_NaN(), -Real::quiet_NaN(), Real::infinity(), -Real::infinity(), -0.0,
         -0.0001}};
    EXPECT_EQ(writeRarefactionTable(curve),
              header +
                  "         5,            3.250,   0.500,       2.000,       4.500,       1.500,"
                  "       5.000\n"
                  "12345678901,100000000000000000000.000,1234567.800,      -1.500,       0.001,"
                  "       0.002,123456789012.250\n"
                  "        -1,              nan,     nan,         inf, "
                  "       -inf,      -0.000,"
                  "      -0.000\n");
}

// --- Formats do not follow the user's locale: neither its decimal comma nor its digit groups.

struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(Locale, OfStreamsChangesNothing) {
    const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));
    SparseCounts counts(2);
    counts.addRow(std::vector<SparseCounts::Column>{0, 1}, CountsVector{1234567, -1234567});
    writeCensusMatrix(counts, {"a", "b"}, {"N"}, [](std::string_view text) {
        EXPECT_EQ(text, " , a, b\nN,1234567,-1234567\n");
        return true;
    });
    const std::vector<MetricRow> rows = {{1234567, 2, 0, 1.5, 0, 0, 0, 0, 0.25}};
    const std::string table =
        writeMetricsTable(rows, metricColumnTitles, std::vector<std::string>{"N"});
    EXPECT_TRUE(table.ends_with("N, 1234567, 2, 0.0, 1.5, 0.0, 0.0, 0.0, 0.0, 0.250\n")) << table;
    EXPECT_EQ(shown(parseCensusMatrix("x,a\nN,1234567\n")), "N: a=1234567");
    EXPECT_FALSE(parseCensusMatrix("x,a\nN,1.234.567\n").value);
    EXPECT_FALSE(parseAbundanceList("1.234").value);
    EXPECT_EQ(shown(parseIOSFile("\"n\",\"d\",\"o\",\"la\",\"lo\",\"a\"\n"
                                 "\"N\",\"Mar 5, 2016 3:42 PM\",\"\",47.61,-122.33,1234567\n")),
              "N: a=1234567 [47.61,-122.33] [dated]");
    std::locale::global(before);
}

// --- Texts made to exhaust a parser: each is read in linear time. A form that is quadratic would
// need hours on these sizes.

constexpr std::size_t large = 2'000'000;

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
