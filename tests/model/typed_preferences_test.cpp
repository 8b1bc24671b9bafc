#include "model/typed_values.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <optional>

namespace zorvel {
namespace {

TEST(TypedPreferences, ASampleSizeIsASignAndDigitsAlone) {
    using Limits = std::numeric_limits<std::int64_t>;
    const struct {
        const char* text;
        std::optional<std::int64_t> size;
    } rows[] = {
        {"50", 50},
        {"+50", 50},
        {"-50", -50},
        {"0", 0},
        {"-0", 0},
        {"007", 7},
        {"9223372036854775807", Limits::max()},
        {"+9223372036854775807", Limits::max()},
        {"-9223372036854775808", Limits::min()},
        {"9223372036854775808", {}},
        {"-9223372036854775809", {}},
        {"+99999999999999999999x", {}},
        {"", {}},
        {"+", {}},
        {"-", {}},
        {"+-5", {}},
        {"-+5", {}},
        {"++5", {}},
        {" 50", {}},
        {"50 ", {}},
        {"25.5", {}},
        {"50.", {}},
        {"5e1", {}},
        {"0x10", {}},
        {"1,000", {}},
        {"\u0665\u0660", {}},  // digits of another script
    };
    for (const auto& row : rows) {
        const auto read = parseTypedSampleSize(row.text);
        ASSERT_EQ(read.ok(), row.size.has_value()) << '"' << row.text << '"';
        if (read) {
            EXPECT_EQ(read.value(), *row.size) << row.text;
        }
    }
    EXPECT_STRNE(parseTypedSampleSize("9223372036854775808").problem(),
                 parseTypedSampleSize("fifty").problem());
}

TEST(TypedPreferences, AQuotaIsOneNumberUnderEveryLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    const struct {
        const char* text;
        std::optional<double> quota;
    } rows[] = {
        {"0.8", 0.8},   {".75", 0.75},    {"+.75", 0.75}, {"1.", 1},         {"1e-1", 0.1},
        {"1E-1", 0.1},  {"+1e+0", 1},     {"-3", -3},     {"1.2", 1.2},      {"-0.0", -0.0},
        {"1e-400", 0},  {"1e308", 1e308}, {"1e400", {}},  {"-1e400", {}},    {"", {}},
        {".", {}},      {"-", {}},        {"e5", {}},     {"1e", {}},        {"1e+", {}},
        {"+-1", {}},    {"-+1", {}},      {" 0.8", {}},   {"0.8 ", {}},      {"0,8", {}},
        {"0.8.", {}},   {"80%", {}},      {"inf", {}},    {"-infinity", {}}, {"nan", {}},
        {"nan(1)", {}}, {"0x1p-1", 0.5},  {"0x0", 0},     {"0.8f", {}},      {"1d-1", {}},
    };
    for (const auto& row : rows) {
        const auto read = parseTypedQuota(row.text);
        EXPECT_EQ(read.ok(), row.quota.has_value()) << '"' << row.text << '"';
        if (!read || !row.quota) continue;
        EXPECT_EQ(read.value(), *row.quota) << row.text;
        EXPECT_EQ(std::signbit(read.value()), std::signbit(*row.quota)) << row.text;
    }
    EXPECT_FALSE(parseTypedQuota(std::string_view("0.8\0", 4)));
    std::setlocale(LC_ALL, before.c_str());
}

}  // namespace
}  // namespace zorvel
