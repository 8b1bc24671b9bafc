#include "base/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zorvel {
namespace {

using namespace std::string_literals;

const CanonicalHash hashOf;

TEST(Text, EquivalentSpellingsAreOneName) {
    struct Row {
        const char* what;
        std::string a;
        std::string b;
        bool equal;
    };
    const std::vector<Row> rows = {
        {"composed and decomposed", "Carex f\u00E9tida", "Carex fe\u0301tida", true},
        {"a character with a twin", "\u212Bland", "\u00C5land", true},
        {"marks in another order", "q\u0307\u0323", "q\u0323\u0307", true},
        {"marks of one class keep their order", "q\u0307\u0301", "q\u0301\u0307", false},
        {"Hangul", "\uAC01", "\u1100\u1161\u11A8", true},
        {"excluded from composition", "\u0958", "\u0915\u093C", true},
        {"beyond the first plane", "\U0001D15E", "\U0001D157\U0001D165", true},
        {"a ligature is no equivalent", "\uFB01", "fi", false},
        {"capitals", "Abies", "abies", false},
        {"spaces", "Abies", "Abies ", false},
        {"Latin without marks", "\u00E9", "\u00E8", false},
        {"NUL is a character", "a\0b"s, "a\0c"s, false},
        {"bytes that are not UTF-8", "\xE9", "\u00E9", false},
        {"broken text stands for itself", "e\u0301\xFF", "\u00E9\xFF", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        EXPECT_EQ(canonicallyEqual(row.a, row.b), row.equal);
        EXPECT_EQ(canonicalForm(row.a) == canonicalForm(row.b), row.equal);
        EXPECT_EQ(canonicalForm(canonicalForm(row.a)), canonicalForm(row.a));
        EXPECT_EQ(hashOf(row.a) == hashOf(row.b), row.equal);
    }
}

TEST(Text, NamesSortByScalarValuesOfTheirComposedForm) {
    // Decomposed, the first e-acute would stand before f by its bytes; in 16-bit units the last two
    // names would stand the other way round.
    const std::vector<std::string> sorted = {
        "", "Abies", "Zea", "abies", "f", "e\u0301", "\u00E9a", "\u0439", "\uFF21", "\U00010000"};
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        for (std::size_t j = 0; j < sorted.size(); ++j) {
            EXPECT_EQ(canonicalForm(sorted[i]) < canonicalForm(sorted[j]), i < j) << i << " " << j;
        }
    }
}

TEST(Text, LongRunsOfMarksTakeNoQuadraticTime) {
    constexpr std::size_t pairs = 50'000;
    std::string alternating = "a";
    std::string above = "a";
    std::string below;
    for (std::size_t i = 0; i < pairs; ++i) {
        alternating += "\u0301\u0323";
        below += "\u0323";
        above += "\u0301";
    }
    EXPECT_TRUE(canonicallyEqual(alternating, "a" + below + above.substr(1)));
}

TEST(Text, FirstByteThatIsNotUtf8) {
    const std::string ascii(37, 'x');
    const std::vector<std::string> broken = {"\x80",
                                             "\xC0\xAF",
                                             "\xC1\xBF",
                                             "\xC3",
                                             "\xC3(",
                                             "\xE0\x9F\xBF",
                                             "\xE2\x82",
                                             "\xED\xA0\x80",
                                             "\xF0\x8F\xBF\xBF",
                                             "\xF0\x9F\x98",
                                             "\xF4\x90\x80\x80",
                                             "\xF5\x80\x80\x80",
                                             "\xFE",
                                             "\xFF"};
    for (const std::string& bytes : broken) {
        EXPECT_EQ(firstInvalidUtf8(bytes + ascii), 0U) << testing::PrintToString(bytes);
        EXPECT_EQ(firstInvalidUtf8(ascii + "\u00E9\U0001F600" + bytes), 43U)
            << testing::PrintToString(bytes);
    }
    for (const char* whole : {"", "plain", "\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000",
                              "\U0010FFFF and on"}) {
        EXPECT_EQ(firstInvalidUtf8(whole), std::nullopt) << whole;
    }
}

TEST(Text, AsciiIsSeenAtEveryPlace) {
    for (std::size_t length = 0; length < 20; ++length) {
        EXPECT_TRUE(isAscii(std::string(length, '\x7F')));
        for (std::size_t at = 0; at < length; ++at) {
            std::string text(length, 'a');
            text[at] = '\x80';
            EXPECT_FALSE(isAscii(text)) << length << " " << at;
        }
    }
}

TEST(Text, GraphemeBoundaries) {
    struct Row {
        const char* what;
        std::string text;
        std::vector<std::size_t> boundaries;
    };
    const std::vector<Row> rows = {
        {"ASCII", "ab", {0, 1, 2}},
        {"an accent belongs to its letter", "e\u0301a", {0, 3, 4}},
        {"within a sequence", "\u00E9", {0, 2}},
        {"a line break of two", "\r\n", {0, 2}},
        {"Hangul letters of one syllable", "\u1100\u1161", {0, 6}},
        {"a pair of flags", "\U0001F1E9\U0001F1EA\U0001F1EB\U0001F1F7", {0, 8, 16}},
        {"not UTF-8", "\xFF\u0301", {0, 1, 2, 3}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        std::vector<std::size_t> found;
        for (std::size_t i = 0; i <= row.text.size(); ++i) {
            if (isGraphemeBoundary(row.text, i)) found.push_back(i);
        }
        EXPECT_EQ(found, row.boundaries);
    }
}

TEST(TerminalLine, ShowsWhatATerminalWouldObey) {
    struct Row {
        std::string text;
        std::string line;
    };
    const Row rows[] = {
        {"", ""},
        {"C: not an integer: \u00e9\t\u2603 \U0001F332\u200d",
         "C: not an integer: \u00e9\t\u2603 \U0001F332\u200d"},
        {"\x1b]52;c;QQ==\a", "\\x1b]52;c;QQ==\\x07"},
        {std::string("a\0b\nc\r\x7f", 7), "a\\x00b\\x0ac\\x0d\\x7f"},
        {"\u0085\u009b31m", "\\u0085\\u009b31m"},
        {"\u202eabc\u2066\u200b\ufeff\u2028", "\\u202eabc\\u2066\\u200b\\ufeff\\u2028"},
        {"caf\xe9 \x9b\xc3", "caf\\xe9 \\x9b\\xc3"},
        {std::string(1000, 'a'), std::string(1000, 'a')},
    };
    for (const Row& row : rows) EXPECT_EQ(terminalLine(row.text), row.line);
    std::string emphatic = "it says: ";
    for (int i = 0; i < 500'000; ++i) emphatic += "\u00e9";
    EXPECT_EQ(terminalLine(emphatic + ". See help"), emphatic.substr(0, 599) +
                                                         " [... 999120 bytes left out ...] " +
                                                         emphatic.substr(9, 290) + ". See help");
}

}  // namespace
}  // namespace zorvel
