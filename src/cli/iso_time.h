// Points in time as text.
#pragma once

#include <string>

#include "base/time_stamp.h"

namespace zorvel::cli {

// ISO 8601 in the computer's time zone with its offset then, as "2016-03-05T15:42:00+01:00";
// decimals of the second where there are any. An offset with seconds, as before standard time, is
// cut to whole minutes, and the clock time with it, so that the instant is right. Years past 9999
// take a plus sign and more digits, those before 0 a minus sign.
std::string isoLocalTime(TimeStamp time);

}  // namespace zorvel::cli
