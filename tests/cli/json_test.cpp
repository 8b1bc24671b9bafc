// The JSON writer, read back by another reader.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>

#include "cli/json_writer.h"
#include "tool.h"

namespace zorvel::test {
namespace {

using cli::JsonWriter;
using nlohmann::json;

template <class Write>
std::string written(Write&& write) {
    const TemporaryFolder folder;
    cli::Output output(folder.file("result.json"));
    JsonWriter writer(output);
    write(writer);
    EXPECT_FALSE(output.finish());
    return readBytes(folder.file("result.json"));
}

TEST(JsonWriter, StringsReadBack) {
    std::string everyAscii;
    for (char byte = 0; byte >= 0 && byte < 127; ++byte) everyAscii += byte;
    const std::vector<std::string> texts = {"",
                                            everyAscii,
                                            "\x7f",
                                            "\"\\\"",
                                            "Caf\u00e9 \U0001F33F",
                                            "\u2028\u2029",
                                            std::string(200'000, '\n') + "x"};
    const std::string text = written([&texts](JsonWriter& writer) {
        writer.beginArray();
        for (const std::string& each : texts) writer.string(each);
        writer.endArray();
    });
    EXPECT_EQ(json::parse(text).get<std::vector<std::string>>(), texts);
    EXPECT_NE(text.find("Caf\u00e9 \U0001F33F"), std::string::npos) << "UTF-8 stays as it is";
}

TEST(JsonWriter, NumbersReadBackBitForBit) {
    std::vector<double> numbers = {0.0, -0.0, 0.1, 1e22, 5e-324, 1.7976931348623157e308, 23.0 / 3};
    std::mt19937_64 random(1);
    while (numbers.size() < 2000) {
        const auto number = std::bit_cast<double>(random());
        if (std::isfinite(number)) numbers.push_back(number);
    }
    const std::string text = written([&numbers](JsonWriter& writer) {
        writer.beginArray();
        for (const double number : numbers) writer.number(number);
        writer.number(std::numeric_limits<double>::quiet_NaN());
        writer.number(-std::numeric_limits<double>::infinity());
        writer.integer(std::numeric_limits<std::int64_t>::min());
        writer.endArray();
    });
    const json values = json::parse(text);
    ASSERT_EQ(values.size(), numbers.size() + 3);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const double value = values[i].get<double>();
        if (numbers[i] == 0) {
            EXPECT_EQ(value, 0);
        } else {
            EXPECT_EQ(std::bit_cast<std::uint64_t>(value),
                      std::bit_cast<std::uint64_t>(numbers[i]));
        }
    }
    EXPECT_NE(text.find("\n  0.1,\n  1e+22,\n  5e-324,\n"), std::string::npos) << "shortest";
    EXPECT_TRUE(values[numbers.size()].is_null());
    EXPECT_TRUE(values[numbers.size() + 1].is_null());
    EXPECT_EQ(values.back().get<std::int64_t>(), std::numeric_limits<std::int64_t>::min());
}

}  // namespace
}  // namespace zorvel::test
