#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "base/numbers.h"
#include "base/time_stamp.h"
#include "interchange/parsers.h"

namespace zorvel {
namespace {

constexpr std::array<std::string_view, 12> monthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// Fills the pieces between the separators; the number of pieces that there are, counted no further
// than one more than are wanted.
template <std::size_t Count>
std::size_t cut(std::string_view text, char separator,
                std::array<std::string_view, Count>& pieces) {
    std::size_t count = 0;
    for (std::size_t start = 0; count < Count; ++count) {
        const std::size_t end = text.find(separator, start);
        pieces[count] = text.substr(start, end - start);
        if (end == std::string_view::npos) return count + 1;
        start = end + 1;
    }
    return Count + 1;
}

std::optional<std::int64_t> integerWithoutCommas(std::string_view piece) {
    if (piece.find(',') == std::string_view::npos) return parseWholeInteger(piece);
    std::string digits(piece);
    std::erase(digits, ',');
    return parseWholeInteger(digits);
}

// On the 24-hour clock; an hour that no day has stays one.
std::int64_t hourOfDay(std::int64_t hour, bool afternoon) {
    if (hour == 12) hour = 0;
    // Nothing is added to an hour past the day's last: it may be any 64-bit value.
    return afternoon && hour < 24 ? hour + 12 : hour;
}

std::optional<int> monthNumber(std::string_view piece) {
    const auto found = std::find(monthNames.begin(), monthNames.end(), piece);
    if (found == monthNames.end()) return std::nullopt;
    return static_cast<int>(found - monthNames.begin()) + 1;
}

}  // namespace

Parsed<TimeStamp> parseIOSDate(std::string_view text) {
    std::array<std::string_view, 5> pieces;
    if (cut(text, ' ', pieces) != pieces.size()) {
        return refused<TimeStamp>("WARNING: incorrect number of components in date");
    }
    const std::optional<int> month = monthNumber(pieces[0]);
    if (!month) {
        return refused<TimeStamp>("WARNING: unexpected string for month: " +
                                  std::string(pieces[0]));
    }
    const std::optional<std::int64_t> day = integerWithoutCommas(pieces[1]);
    if (!day) return refused<TimeStamp>("WARNING: unable to extract day");
    const std::optional<std::int64_t> year = integerWithoutCommas(pieces[2]);
    if (!year) return refused<TimeStamp>("WARNING: unable to extract day year");
    std::array<std::string_view, 2> time;
    if (cut(pieces[3], ':', time) != time.size()) {
        return refused<TimeStamp>("WARNING time does not have two parts");
    }
    const std::optional<std::int64_t> hour = parseWholeInteger(time[0]);
    if (!hour) return refused<TimeStamp>("WARNING: could not extract hour");
    if (pieces[4] != "AM" && pieces[4] != "PM") {
        return refused<TimeStamp>("WARNING: neither AM nor PM");
    }
    const std::int64_t hourOf24 = hourOfDay(*hour, pieces[4] == "PM");
    const std::optional<std::int64_t> minute = parseWholeInteger(time[1]);
    Parsed<TimeStamp> date;
    if (minute) date.value = localTime({*year, *month, *day, hourOf24, *minute});
    return date;
}

}  // namespace zorvel
