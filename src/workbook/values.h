// Values of cells as text: numbers, dates and escapes. Pure; the same under every locale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zorvel {

// The shortest text of the number that reads back the same: 47.610000000000001 becomes 47.61. An
// exponent only where the number is very large or small. What is no number stays as it is.
std::string numberText(std::string_view number);

// How a number of a cell is shown.
enum class NumberFormat : std::uint8_t { number, date, time };

// Of a format code: "dd.mm.yyyy", "[h]:mm", "0.00".
NumberFormat formatOfCode(std::string_view code);
// Of the formats without a code.
NumberFormat formatOfId(std::size_t id);

// The ISO form of a number of days: "2016-03-05", "2016-03-05T14:05" or "14:05:09". Days count from
// 1900, which these programs take for a leap year: day 60 is 1900-02-29; or from 1904. A number
// that is no such date stays a number.
std::string dateText(std::string_view days, NumberFormat format, bool from1904);

// The ISO form of a point in time: without a time of 00:00 and fractions of a second.
std::string isoDateText(std::string_view date);

// Adds the text with its escapes replaced: _x0041_ stands for A.
void appendUnescaped(std::string& to, std::string_view text);

}  // namespace zorvel
