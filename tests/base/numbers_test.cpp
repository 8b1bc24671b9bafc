#include "base/numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace zorvel {
namespace {

using namespace std::string_literals;
using Limits = std::numeric_limits<double>;

std::string printed(double value, int digits) {
    std::string text(400, '\0');
    text.resize(
        static_cast<std::size_t>(std::snprintf(text.data(), text.size(), "%.*f", digits, value)));
    return text;
}

TEST(Numbers, FixedTextIsWhatPrintfWrites) {
    std::vector<double> values = {0.0,           -0.0,           0.5,    1.5,  2.5,
                                  0.0005,        1.0005,         2.675,  1e15, 1e-320,
                                  Limits::max(), -Limits::max(), -0.0001};
    std::mt19937_64 random(1);
    while (values.size() < 3000) {
        const double any = std::bit_cast<double>(random());
        if (std::isfinite(any)) values.push_back(any);
        values.push_back(static_cast<double>(random() % 100000) / 16.0);
    }
    for (const double value : values) {
        for (const int digits : {0, 1, 3, 17}) {
            ASSERT_EQ(fixedText(value, digits), printed(value, digits));
        }
    }
    EXPECT_EQ(fixedText(Limits::infinity(), 3), "inf");
    EXPECT_EQ(fixedText(-Limits::infinity(), 0), "-inf");
}

TEST(Numbers, ShortestTextReadsBackAsTheSameDouble) {
    std::mt19937_64 random(2);
    for (int i = 0; i < 3000; ++i) {
        const double value = std::bit_cast<double>(random());
        if (!std::isfinite(value)) continue;
        ASSERT_EQ(parseWholeDouble(shortestText(value)), value);
    }
    EXPECT_EQ(shortestText(0.1), "0.1");
    const std::pair<double, const char*> rows[] = {{0.9204545454545454, "0.9204545454545454"},
                                                   {1, "1.0"},
                                                   {-0.0, "-0.0"},
                                                   {100'000, "100000.0"},
                                                   {0.0001, "0.0001"},
                                                   {0.00005, "5.0e-05"},
                                                   {1e16, "1.0e+16"},
                                                   {1.5e300, "1.5e+300"}};
    for (const auto& [value, text] : rows) EXPECT_EQ(shortestTextWithPoint(value), text);
    EXPECT_EQ(shortestText(-Limits::quiet_NaN()), "nan");
    EXPECT_EQ(integerText(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(Numbers, WholeDoubles) {
    struct Row {
        std::string text;
        double value;
    };
    const std::vector<Row> rows = {{"47.61", 47.61},
                                   {"-122.33", -122.33},
                                   {"+5", 5.0},
                                   {".5", 0.5},
                                   {"5.", 5.0},
                                   {"1e3", 1000.0},
                                   {"1E-2", 0.01},
                                   {"0x1p4", 16.0},
                                   {"-0x.8", -0.5},
                                   {"007", 7.0},
                                   {"1e999", Limits::infinity()},
                                   {"-1e999", -Limits::infinity()},
                                   {"4e-324", Limits::denorm_min()},
                                   {"1e-999", 0.0},
                                   {"Infinity", Limits::infinity()},
                                   {"-inf", -Limits::infinity()}};
    for (const Row& row : rows) EXPECT_EQ(parseWholeDouble(row.text), row.value) << row.text;
    for (const std::string& text :
         {""s, " 1"s, "1 "s, "\n1"s, "1,5"s, "1e"s, "0x"s, "-"s, "."s, "+-1"s, "1\0"s, "1\0002"s,
          "12abc"s, "\xEF\xBC\x91"s, "infinit"s}) {
        EXPECT_EQ(parseWholeDouble(text), std::nullopt) << testing::PrintToString(text);
    }
    for (const char* text : {"nan", "-NaN", "nan(1)"}) {
        const auto value = parseWholeDouble(text);
        EXPECT_TRUE(value && std::isnan(*value)) << text;
    }
}

TEST(Numbers, WholeIntegers) {
    const std::pair<const char*, std::int64_t> rows[] = {
        {"-0", 0},
        {"007", 7},
        {"+12", 12},
        {"9223372036854775807", INT64_MAX},
        {"-9223372036854775808", INT64_MIN},
        {"000000000000000000000000000009", 9},
    };
    for (const auto& [text, value] : rows) EXPECT_EQ(parseWholeInteger(text), value) << text;
    for (const std::string& text : {"9223372036854775808"s, ""s, "-"s, "+-1"s, " 1"s, "1 "s, "1.0"s,
                                    "1e3"s, "0x1"s, "\u0661"s, "1\0"s}) {
        EXPECT_EQ(parseWholeInteger(text), std::nullopt) << text;
    }
}

}  // namespace
}  // namespace zorvel
