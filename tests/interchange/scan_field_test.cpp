#include "interchange/scan_field.h"

#include <gtest/gtest.h>

#include <string>

#include "base/numbers.h"

namespace zorvel {
namespace {

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
    using namespace std::string_literals;
    const struct {
        std::string text;
        std::string fields;
    } cases[] = {
        {"", "<>$"},
        {"a,b\nc", "<a>,<b>/<c>$"},
        {"a,b\n", "<a>,<b>/<>$"},
        {",,\n", "<>,<>,<>/<>$"},
        // Spaces are dropped after a comma alone, whatever kind of space.
        {" a , \t b \n c", "< a >,<b >/< c>$"},
        {"a,\u00A0\u1680\u2000\u200A\u202F\u205F\u3000b", "<a>,<b>$"},
        {"a,\u200Bb,\u180Ec", "<a>,<\u200Bb>,<\u180Ec>$"},
        {"a,  ", "<a>,<>$"},
        {"a, \nb", "<a>,<>/<b>$"},
        // A run of line breaks of any kind is one.
        {"a\r\n\r\n\v\f\u0085\u2028\u2029b", "<a>/<b>$"},
        {"\n\na", "<>/<a>$"},
        // First bytes of line breaks and spaces in other characters, and at the end of the text.
        {"\u00A5,\u20AC\u2027\u202A,\u3001", "<\u00A5>,<\u20AC\u2027\u202A>,<\u3001>$"},
        {"a\xE2\x80", "<a\xE2\x80>$"},
        {"a\xC2", "<a\xC2>$"},
        {"a\0b\0,\0\n"s, "<a\0b\0>,<\0>/<>$"s},
        // Quotes.
        {"\"Abies, alba\",12", "<Abies, alba>,<12>$"},
        {"a\"b,c\"d", "<ab,cd>$"},
        {"\"\",x", "<>,<x>$"},
        {"\"a\"\"b\"", "<a\"b>$"},
        {"a\"\"b", "<ab>$"},
        {"\"\"\"\"", "<\">$"},
        {"\"a\r\n\u2028b\",c", "<a\r\n\u2028b>,<c>$"},
        {"\"a,  b\",  c", "<a,  b>,<c>$"},
        {"\"open, to\nthe end", "<open, to\nthe end>$"},
        {"\"closed\"\"", "<closed\">$"},
        {"\"a\"x\"b\"\n,", "<axb>/<>,<>$"},
    };
    for (const auto& c : cases) EXPECT_EQ(fieldsOf(c.text), c.fields) << c.text;
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

TEST(WholeInteger, WholeTextsOnly) {
    const struct {
        std::string_view text;
        std::optional<std::int64_t> value;
    } cases[] = {
        {"0", 0},
        {"-0", 0},
        {"+0", 0},
        {"007", 7},
        {"+12", 12},
        {"-12", -12},
        {"9223372036854775807", INT64_MAX},
        {"-9223372036854775808", INT64_MIN},
        {"000000000000000000000000000009", 9},
        {"9223372036854775808", {}},
        {"-9223372036854775809", {}},
        {"", {}},
        {"+", {}},
        {"-", {}},
        {"+-1", {}},
        {"--1", {}},
        {" 1", {}},
        {"1 ", {}},
        {"1.0", {}},
        {"1e3", {}},
        {"0x1", {}},
        {"1,000", {}},
        {"\u0661", {}},
        {std::string_view("1\0", 2), {}},
    };
    for (const auto& c : cases) EXPECT_EQ(parseWholeInteger(c.text), c.value) << c.text;
}

}  // namespace
}  // namespace zorvel
