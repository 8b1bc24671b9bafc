// Reads what the user types into cells, fields and preferences. A problem is a sentence in English.
// The same under every locale. Any thread.
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

// A name as it is stored. Each line break (CR LF is one), tab or other control character (U+0000 to
// U+001F, U+007F to U+009F) becomes a space, and white space at the ends goes. Absent if nothing is
// left. Spaces within stay as they are, so that editing a name with two of them does not change it.
std::optional<std::string> typedName(std::string_view typed);

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

// A sample size of the preferences: an optional sign and digits that fit in 64 bits, without white
// space. Any value: the caller limits it.
Typed<std::int64_t> parseTypedSampleSize(std::string_view text);

// A quota of the preferences: one number as strtod reads it in the C locale (".75", "1e-1",
// "0x1p-1"), of any value. The words for infinity and not-a-number that strtod takes too, and what
// is too large for a double, are refused.
Typed<double> parseTypedQuota(std::string_view text);

// Without the white space (ASCII, and the no-break space) at both ends.
std::string_view withoutOuterSpace(std::string_view text);

}  // namespace zorvel
