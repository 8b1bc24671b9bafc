#include "model/typed_values.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <regex>

#include "base/numbers.h"
#include "base/time_stamp.h"
#include "interchange/characters.h"

namespace zorvel {
namespace {

constexpr const char* notWhole =
    "An abundance is a whole number, without a decimal point or spaces.";
constexpr const char* negative = "An abundance is 0 or more.";
constexpr const char* tooLarge = "This abundance is larger than the program can hold.";
constexpr const char* notLatitude =
    "A latitude is a number of degrees from -90 to 90, such as 48.25 or 48\u00B0 15' N.";
constexpr const char* notLongitude =
    "A longitude is a number of degrees from -180 to 180, such as 16.5 or 16\u00B0 30' E.";
constexpr const char* notTime =
    "A time is written as year, month and day, with or without hours and minutes: 2024-05-31 "
    "14:05.";
constexpr const char* noSuchTime = "The calendar has no such day or time.";
constexpr const char* sizeNotWhole = "A sample size is a whole number.";
constexpr const char* numberTooLarge = "This number is too large.";
constexpr const char* notQuota = "A quota is a number with a decimal point.";

// Bytes of the control character, line break or tab that begins at text[at]; 0 if none does.
std::size_t controlLength(std::string_view text, std::size_t at) {
    if (text.substr(at, 2) == "\r\n") return 2;
    if (const std::size_t length = lineBreakLength(text, at)) return length;
    const auto first = static_cast<unsigned char>(text[at]);
    if (first < 0x20 || first == 0x7F) return 1;
    if (first != 0xC2 || at + 1 == text.size()) return 0;
    const auto second = static_cast<unsigned char>(text[at + 1]);
    return second >= 0x80 && second <= 0x9F ? 2 : 0;
}

std::string onOneLine(std::string_view text) {
    std::string line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = controlLength(text, i);
        line += length == 0 ? text[i] : ' ';
        i += std::max<std::size_t>(length, 1);
    }
    return line;
}

// Of any size, even beyond 64 bits.
bool isWholeNumber(std::string_view text) {
    if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

using Match = std::match_results<std::string_view::const_iterator>;

// Of a group of digits; 0 if it is absent.
std::int64_t numberIn(const Match& match, std::size_t group) {
    return parseWholeInteger(match.str(group)).value_or(0);
}

// Degrees, with or without minutes and seconds, of which the last may have decimals. letters: of
// the positive and of the negative hemisphere; one stands before or after, instead of a minus sign.
std::optional<double> coordinate(std::string_view text, double limit, std::string_view letters) {
    static const std::string space = "(?:\\s|\u00A0)*";
    static const std::string number = "([0-9.,]+)(?![0-9.,])" + space;
    // No two runs of space side by side: to try all ways to part them would take long.
    static const std::regex form("([a-z]?)" + space + "([-+]|\u2212)?" + number +
                                     "(?:(?:\u00B0|\u00BA)" + space + ")?(?:" + number +
                                     "(?:(?:'|\u2032|\u2019)" + space + ")?(?:" + number +
                                     "(?:(?:''|\"|\u2033|\u201D)" + space + ")?)?)?([a-z]?)",
                                 std::regex::icase);
    constexpr std::size_t longest = 1000;  // a regex takes stack for each character
    text = withoutOuterSpace(text);
    Match match;
    if (text.size() > longest || !std::regex_match(text.begin(), text.end(), match, form)) {
        return std::nullopt;
    }
    bool isNegative = match[2].matched && match.str(2) != "+";
    if (const std::string letter = match.str(1) + match.str(6); !letter.empty()) {
        const bool isSecond = static_cast<char>(letter[0] & ~0x20) == letters[1];
        const bool isFirst = static_cast<char>(letter[0] & ~0x20) == letters[0];
        if (letter.size() > 1 || isNegative || !(isFirst || isSecond)) return std::nullopt;
        isNegative = isSecond;
    }
    double degrees = 0;
    double unit = 1;
    for (std::size_t group = 3; group <= 5 && match[group].matched; ++group, unit *= 60) {
        std::string digits = match.str(group);
        std::replace(digits.begin(), digits.end(), ',', '.');
        const std::optional<double> part = parseWholeDouble(digits);
        const bool isLast = group == 5 || !match[group + 1].matched;
        const bool isFraction = digits.find('.') != std::string::npos;
        if (!part || (unit > 1 && *part >= 60) || (isFraction && !isLast)) return std::nullopt;
        degrees += *part / unit;
    }
    if (degrees > limit) return std::nullopt;
    return isNegative ? -degrees : degrees;
}

}  // namespace

std::string_view withoutOuterSpace(std::string_view text) {
    constexpr std::string_view noBreak = "\u00A0";
    const auto isSpace = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    for (;;) {
        if (!text.empty() && isSpace(text.front())) {
            text.remove_prefix(1);
        } else if (!text.empty() && isSpace(text.back())) {
            text.remove_suffix(1);
        } else if (text.starts_with(noBreak)) {
            text.remove_prefix(noBreak.size());
        } else if (text.ends_with(noBreak)) {
            text.remove_suffix(noBreak.size());
        } else {
            return text;
        }
    }
}

std::optional<std::string> typedName(std::string_view typed) {
    const std::string line = onOneLine(typed);
    const std::size_t begin = skipSpaces(line, 0);
    std::size_t end = begin;  // after the last character that is not a space
    for (std::size_t i = begin; i < line.size(); i = skipSpaces(line, i)) {
        if (spaceLength(line, i) == 0) end = ++i;
    }
    if (end == begin) return std::nullopt;
    return line.substr(begin, end - begin);
}

Typed<std::int64_t> parseTypedAbundance(std::string_view text) {
    text = withoutOuterSpace(text);
    if (!isWholeNumber(text)) return notWhole;
    const std::optional<std::int64_t> value = parseWholeInteger(text);
    if (value.value_or(text.starts_with('-') ? -1 : 0) < 0) return negative;
    if (!value) return tooLarge;
    return *value;
}

Typed<double> parseTypedLatitude(std::string_view text) {
    if (const auto value = coordinate(text, 90, "NS")) return *value;
    return notLatitude;
}

Typed<double> parseTypedLongitude(std::string_view text) {
    if (const auto value = coordinate(text, 180, "EW")) return *value;
    return notLongitude;
}

Typed<std::optional<TimeStamp>> parseTypedTime(std::string_view text) {
    static const std::regex dayForm("([0-9]{4,6})-([0-9]{1,2})-([0-9]{1,2})");
    static const std::regex timeForm(
        "([0-9]{1,2}):([0-9]{2})(?::([0-5][0-9])(?:\\.([0-9]{1,6}))?)?");
    text = withoutOuterSpace(text);
    if (text.empty()) return std::optional<TimeStamp>();
    const std::string_view day = text.substr(0, text.find_first_of("T "));
    Match match;
    if (!std::regex_match(day.begin(), day.end(), match, dayForm)) return notTime;
    WallClock clock{numberIn(match, 1), numberIn(match, 2), numberIn(match, 3), 0, 0};
    std::int64_t microseconds = 0;  // within the minute
    if (day.size() < text.size()) {
        const std::string_view time = withoutOuterSpace(text.substr(day.size() + 1));
        if (!std::regex_match(time.begin(), time.end(), match, timeForm)) return notTime;
        clock.hour = numberIn(match, 1);
        clock.minute = numberIn(match, 2);
        std::string decimals = match[4].str();
        decimals.resize(6, '0');
        microseconds = 1'000'000 * numberIn(match, 3) + parseWholeInteger(decimals).value_or(0);
    }
    const std::optional<TimeStamp> minute = localTime(clock);
    if (!minute) return noSuchTime;
    return std::optional(*minute + std::chrono::microseconds(microseconds));
}

std::string typedTimeText(TimeStamp time) {
    // By division: a whole second may lie before the first time stamp.
    constexpr std::int64_t perSecond = 1'000'000;
    const std::int64_t count = time.time_since_epoch().count();
    const std::int64_t fraction = (count % perSecond + perSecond) % perSecond;
    const std::time_t since = count / perSecond - (count % perSecond < 0 ? 1 : 0);
    std::tm local{};
    if (localtime_r(&since, &local) == nullptr) return {};
    std::array<char, 64> text{};
    const int length =
        std::snprintf(text.data(), text.size(), "%04lld-%02d-%02d %02d:%02d:%02d.%06lld",
                      local.tm_year + 1900LL, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                      local.tm_min, local.tm_sec, static_cast<long long>(fraction));
    std::string shown(text.data(), static_cast<std::size_t>(length));
    if (local.tm_sec == 0 && fraction == 0) return shown.substr(0, shown.rfind(':'));
    if (fraction == 0) return shown.substr(0, shown.find('.'));
    return shown.substr(0, shown.find_last_not_of('0') + 1);
}

Typed<std::int64_t> parseTypedSampleSize(std::string_view text) {
    if (!isWholeNumber(text)) return sizeNotWhole;
    if (const auto value = parseWholeInteger(text)) return *value;
    return numberTooLarge;
}

Typed<double> parseTypedQuota(std::string_view text) {
    const std::optional<double> value = parseWholeDouble(text);
    if (!value) return notQuota;
    const bool isWord = text.find_first_of("nN") != std::string_view::npos;
    if (!std::isfinite(*value)) return isWord ? notQuota : numberTooLarge;
    return *value;
}

}  // namespace zorvel
