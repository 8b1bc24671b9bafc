// Reads what a person types into the cells and fields of a record. What is wrong is told as one of
// a few sentences in English, to be translated where it is shown. The same under every locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/result.h"
#include "base/time_stamp.h"

namespace zorvel {

template <class T>
using Typed = Result<T, const char*>;

// A whole number of 0 or more that fits in 64 bits; white space around it does not matter.
Typed<std::int64_t> parseTypedAbundance(std::string_view text);

// Degrees from -90 to 90, or -180 to 180: a number with a decimal point or comma, or degrees,
// minutes and seconds with or without their signs; a letter N or S, E or W stands for the sign.
Typed<double> parseTypedLatitude(std::string_view text);
Typed<double> parseTypedLongitude(std::string_view text);

// Year, month and day as 2024-05-31, with or without a time of the day as 14:05 or 14:05:09.25
// after it, in the computer's time zone. An empty text is no time.
Typed<std::optional<TimeStamp>> parseTypedTime(std::string_view text);

// As parseTypedTime reads it, with no more digits than it takes; in the computer's time zone.
std::string typedTimeText(TimeStamp time);

// Without the white space (ASCII, and the no-break space) at both ends.
std::string_view withoutOuterSpace(std::string_view text);

}  // namespace zorvel
