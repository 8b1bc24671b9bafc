// A point in absolute time, to the microsecond.
#pragma once

#include <chrono>

namespace zorvel {

using TimeStamp = std::chrono::sys_time<std::chrono::microseconds>;

}  // namespace zorvel
