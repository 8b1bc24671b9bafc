#include "cli/iso_time.h"

#include <ctime>

#include <cstdlib>

#include "base/numbers.h"

namespace zorvel::cli {
namespace {

std::string padded(std::int64_t value, std::size_t width) {
    const std::string digits = integerText(value);
    return std::string(digits.size() < width ? width - digits.size() : 0, '0') + digits;
}

std::chrono::minutes offsetAt(std::chrono::sys_seconds seconds) {
    const auto clock = static_cast<std::time_t>(seconds.time_since_epoch().count());
    std::tm local{};
    if (localtime_r(&clock, &local) == nullptr) return std::chrono::minutes(0);
    return std::chrono::duration_cast<std::chrono::minutes>(std::chrono::seconds(local.tm_gmtoff));
}

// A time stamp reaches further than the years of the library's calendar, which repeats itself every
// 400 years.
std::string dateText(std::chrono::sys_days day) {
    constexpr std::int64_t daysOfEra = 146'097;
    const std::int64_t days = day.time_since_epoch().count();
    const std::int64_t era = days / daysOfEra - (days % daysOfEra < 0 ? 1 : 0);
    const std::chrono::year_month_day date(day - std::chrono::days(era * daysOfEra));
    const std::int64_t year = static_cast<int>(date.year()) + 400 * era;
    const std::string sign = year < 0 ? "-" : (year > 9999 ? "+" : "");
    return sign + padded(std::abs(year), 4) + "-" + padded(static_cast<unsigned>(date.month()), 2) +
           "-" + padded(static_cast<unsigned>(date.day()), 2);
}

std::string clockText(std::chrono::microseconds sinceMidnight) {
    const std::chrono::hh_mm_ss clock(sinceMidnight);
    std::string text = padded(clock.hours().count(), 2) + ":" + padded(clock.minutes().count(), 2) +
                       ":" + padded(clock.seconds().count(), 2);
    std::string decimals = padded(clock.subseconds().count(), 6);
    decimals.erase(decimals.find_last_not_of('0') + 1);
    if (!decimals.empty()) text += "." + decimals;
    return text;
}

}  // namespace

std::string isoLocalTime(TimeStamp time) {
    // In seconds, since the first and last time stamps leave no room for an offset.
    const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
    constexpr std::chrono::microseconds second = std::chrono::seconds(1);
    const auto fraction = (time.time_since_epoch() % second + second) % second;
    const std::chrono::minutes offset = offsetAt(seconds);
    const std::chrono::sys_seconds local = seconds + offset;
    const auto day = std::chrono::floor<std::chrono::days>(local);
    const std::int64_t minutes = std::abs(offset.count());
    return dateText(day) + "T" + clockText(local - day + fraction) +
           (offset.count() < 0 ? "-" : "+") + padded(minutes / 60, 2) + ":" +
           padded(minutes % 60, 2);
}

}  // namespace zorvel::cli
