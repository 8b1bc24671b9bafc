#include "tables/cells.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

namespace zorvel {
namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

// Bytes of the thousands mark that the text begins with; a blank may be one that does not break,
// and a quote the typographic one.
std::size_t markLength(std::string_view text, char mark) {
    if (mark == 0) return 0;
    if (text.starts_with(mark)) return 1;
    if (mark == '\'') return text.starts_with("\u2019") ? 3 : 0;
    if (mark != ' ') return 0;
    if (text.starts_with("\u00A0")) return 2;
    return text.starts_with("\u202F") ? 3 : 0;
}

// The number with a point and without thousands marks; empty where it is none.
std::string plainNumber(std::string_view cell, NumberMarks marks) {
    std::string plain;
    std::size_t digitsBefore = 0;  // since the start or the last thousands mark
    bool grouped = false;
    std::size_t i = 0;
    if (i < cell.size() && (cell[i] == '+' || cell[i] == '-')) {
        if (cell[i] == '-') plain += '-';
        ++i;
    }
    for (; i < cell.size(); ++i) {
        if (isDigit(cell[i])) {
            plain += cell[i];
            ++digitsBefore;
        } else if (const std::size_t mark = markLength(cell.substr(i), marks.thousands)) {
            i += mark - 1;
            if (digitsBefore == 0 || (grouped ? digitsBefore != 3 : digitsBefore > 3)) return {};
            grouped = true;
            digitsBefore = 0;
        } else {
            break;
        }
    }
    const bool leadingZero = plain.starts_with('0') || plain.starts_with("-0");
    if (grouped && (digitsBefore != 3 || leadingZero)) return {};
    bool hasDigits = digitsBefore > 0;
    if (i < cell.size() && cell[i] == marks.decimal) {
        plain += '.';
        for (++i; i < cell.size() && isDigit(cell[i]); ++i) {
            plain += cell[i];
            hasDigits = true;
        }
    }
    if (!hasDigits) return {};
    if (i < cell.size() && (cell[i] == 'e' || cell[i] == 'E')) {
        plain += 'e';
        ++i;
        if (i < cell.size() && (cell[i] == '+' || cell[i] == '-')) plain += cell[i++];
        if (i == cell.size()) return {};
        for (; i < cell.size() && isDigit(cell[i]); ++i) plain += cell[i];
    }
    return i == cell.size() ? plain : std::string();
}

// Of plainNumber().
std::optional<double> valueOfPlain(std::string_view plain) {
    double value = 0;
    const char* const end = plain.data() + plain.size();
    const auto result = std::from_chars(plain.data(), end, value);
    if (plain.empty() || result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return value;
}

struct DateParts {
    std::array<std::int64_t, 3> numbers{};
    std::array<std::size_t, 3> digits{};
    char separator = 0;                     // 0: 20210403
    std::optional<std::size_t> namedMonth;  // which of the numbers was a word
    std::string_view rest;
};

// The month that the text begins with, in Roman numbers or its English name or the first three
// letters of it, and the bytes of that; 0 for none.
std::pair<std::int64_t, std::size_t> namedMonth(std::string_view text) {
    constexpr auto roman = std::to_array<std::string_view>(
        {"i", "ii", "iii", "iv", "v", "vi", "vii", "viii", "ix", "x", "xi", "xii"});
    constexpr auto names = std::to_array<std::string_view>(
        {"january", "february", "march", "april", "may", "june", "july", "august", "september",
         "october", "november", "december"});
    const auto end = std::find_if_not(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    });
    const std::string word = lowerCase({text.begin(), end});
    for (std::size_t i = 0; i < names.size(); ++i) {
        const bool short3 = word.size() == 3 && names[i].starts_with(word);
        if (word == roman[i] || word == names[i] || short3) {
            return {static_cast<std::int64_t>(i + 1), word.size()};
        }
    }
    return {0, 0};
}

// The three parts of a date, and what follows them. May 3, 2021 has its month first.
std::optional<DateParts> dateParts(std::string_view cell) {
    constexpr std::size_t shortest = 8;  // 3.4.2021
    if (cell.size() < shortest) return std::nullopt;
    DateParts parts;
    const auto digits = [&cell] {
        return static_cast<std::size_t>(std::find_if_not(cell.begin(), cell.end(), isDigit) -
                                        cell.begin());
    };
    const auto read = [&](std::size_t i, std::size_t count) {
        parts.digits[i] = count;
        std::from_chars(cell.data(), cell.data() + count, parts.numbers[i]);
        cell.remove_prefix(count);
    };
    if (digits() == 8) {
        read(0, 4);
        read(1, 2);
        read(2, 2);
        parts.rest = cell;
        return parts;
    }
    for (std::size_t i = 0; i < 3; ++i) {
        const auto [month, length] = namedMonth(cell);
        if (month > 0 && i < 2 && !parts.namedMonth) {
            parts.namedMonth = i;
            parts.numbers[i] = month;
            parts.digits[i] = 2;
            cell.remove_prefix(length);
        } else {
            const std::size_t count = digits();
            if (count == 0 || count > 4) return std::nullopt;
            read(i, count);
        }
        if (i == 2) break;
        const std::size_t end = std::min(cell.find_first_not_of("-/., "), cell.size());
        if (end == 0) return std::nullopt;
        if (i == 0) parts.separator = cell.front();
        const bool same = cell.front() == parts.separator;
        if (!same && !parts.namedMonth) return std::nullopt;
        cell.remove_prefix(end);
    }
    parts.rest = cell;
    return parts;
}

// "T14:05:09.5Z", " 14:05" or nothing; the offset of the zone in minutes if there is one.
struct TimeOfDay {
    std::int64_t hour = 0;
    std::int64_t minute = 0;
    std::int64_t second = 0;
    std::int64_t microsecond = 0;
    std::optional<std::int64_t> offset;
};

std::optional<TimeOfDay> timeOfDay(std::string_view rest) {
    TimeOfDay time;
    const std::size_t span = rest.find('/');
    if (span != std::string_view::npos) rest = rest.substr(0, span);
    if (rest.empty()) return time;
    if (rest.front() != 'T' && rest.front() != ' ') return std::nullopt;
    rest.remove_prefix(1);
    const auto number = [&rest](std::int64_t& value) {
        const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
        const auto length = static_cast<std::size_t>(end - rest.data());
        if (error != std::errc() || length > 2 || value < 0) return false;
        rest.remove_prefix(length);
        return true;
    };
    const auto take = [&rest](char c) {
        if (!rest.starts_with(c)) return false;
        rest.remove_prefix(1);
        return true;
    };
    if (!number(time.hour) || !take(':') || !number(time.minute)) return std::nullopt;
    if (take(':')) {
        if (!number(time.second)) return std::nullopt;
        if (take('.')) {
            std::int64_t unit = 100'000;
            for (; !rest.empty() && isDigit(rest.front()); unit /= 10) {
                time.microsecond += unit * (rest.front() - '0');
                rest.remove_prefix(1);
            }
        }
    }
    if (rest == "Z") {
        time.offset = 0;
    } else if (!rest.empty() && (rest.front() == '+' || rest.front() == '-')) {
        const std::int64_t sign = rest.front() == '-' ? -1 : 1;
        rest.remove_prefix(1);
        std::int64_t hours = 0;
        std::int64_t minutes = 0;
        // -0330 is -03:30.
        const bool joined = rest.size() == 4 && std::all_of(rest.begin(), rest.end(), isDigit);
        const std::string_view tail = joined ? rest.substr(2) : std::string_view();
        if (joined) rest = rest.substr(0, 2);
        if (!number(hours)) return std::nullopt;
        if (joined) rest = tail;
        if (!rest.empty() && ((!joined && !take(':')) || !number(minutes))) return std::nullopt;
        if (!rest.empty() || hours > 18 || minutes > 59) return std::nullopt;
        time.offset = sign * (hours * 60 + minutes);
    } else if (!rest.empty()) {
        return std::nullopt;
    }
    if (time.hour > 23 || time.minute > 59 || time.second > 59) return std::nullopt;
    return time;
}

// Year, month and day of three numbers, or the question which is which.
struct Calendar {
    std::optional<WallClock> day;
    bool needsOrder = false;
};

Calendar calendarDay(const DateParts& parts, DateOrder order) {
    const auto& [a, b, c] = parts.numbers;
    Calendar found;
    if (parts.namedMonth && parts.digits[2] == 4) {
        found.day = *parts.namedMonth == 0 ? WallClock{c, a, b, 0, 0} : WallClock{c, b, a, 0, 0};
    } else if (parts.digits[0] == 4) {
        found.day = WallClock{a, b, c, 0, 0};
    } else if (parts.digits[2] == 4) {
        // A point parts days from months wherever it is used.
        const bool dayFirst = parts.separator == '.' || a > 12 || order == DateOrder::dayFirst;
        const bool monthFirst =
            parts.separator != '.' && (b > 12 || order == DateOrder::monthFirst);
        if (dayFirst == monthFirst && a != b) {
            found.needsOrder = !dayFirst;
        } else {
            found.day = monthFirst ? WallClock{c, a, b, 0, 0} : WallClock{c, b, a, 0, 0};
        }
    }
    return found;
}

// The number of 12 %, at most 1000.
std::optional<double> percentage(std::string_view cell, NumberMarks marks) {
    if (!cell.ends_with('%')) return std::nullopt;
    cell.remove_suffix(1);
    while (cell.ends_with(' ')) cell.remove_suffix(1);
    const std::optional<double> value = tableNumber(cell, marks);
    return value && *value >= 0 && *value <= 1000 ? value : std::nullopt;
}

}  // namespace

std::optional<double> tableNumber(std::string_view cell, NumberMarks marks) {
    if (const std::int64_t plain = plainCount(cell)) return static_cast<double>(plain);
    return valueOfPlain(plainNumber(cell, marks));
}

bool isMissingMark(std::string_view cell) {
    constexpr auto marks = std::to_array<std::string_view>(
        {"na", "n/a", "n.a.", "nd", "n.d.", "k.a.", "s/d", "s.d.", "n.b.", "nan", "null", "-", "--",
         "–", "—", "?", ".", "#n/a"});
    if (cell.size() > 4 || cell.empty() || isDigit(cell.front())) return false;
    return std::find(marks.begin(), marks.end(), lowerCase(cell)) != marks.end();
}

bool isFormula(std::string_view cell) {
    return cell.starts_with('=');
}

// Their words differ between languages: #VALUE!, #WERT!, #¡VALOR!
bool isErrorValue(std::string_view cell) {
    if (cell.starts_with("Err:")) {
        cell.remove_prefix(4);
        return cell.size() == 3 && std::all_of(cell.begin(), cell.end(), isDigit);
    }
    if (cell.size() < 3 || cell.front() != '#') return false;
    if (cell == "#N/A" || cell == "#NV" || cell == "#N/D") return true;
    const bool isMarked = cell.back() == '!' || cell.back() == '?';
    return isMarked && std::all_of(cell.begin() + 1, cell.end() - 1, [](char c) {
               return (c >= 'A' && c <= 'Z') || c == '/' || isDigit(c) ||
                      static_cast<unsigned char>(c) >= 0x80;
           });
}

bool isAbundanceMark(std::string_view cell) {
    constexpr auto marks = std::to_array<std::string_view>({"+", "r"});
    if (std::find(marks.begin(), marks.end(), cell) != marks.end()) return true;
    constexpr std::string_view halves = "abm+-";
    const bool isClass =
        cell.size() == 2 && isDigit(cell[0]) && halves.find(cell[1]) < halves.size();
    if (isClass || percentage(cell, {}) || percentage(cell, {',', 0})) return true;
    for (const std::string_view sign : {"<", ">", "~", "≤", "≥", "±", "ca.", "ca", "c."}) {
        if (!cell.starts_with(sign)) continue;
        const std::size_t number = cell.find_first_not_of("=. ", sign.size());
        return number != std::string_view::npos && isDigit(cell[number]);
    }
    return false;
}

CellCount cellCount(std::string_view cell, NumberMarks marks) {
    using Kind = CellCount::Kind;
    if (cell.empty()) return {Kind::blank, 0};
    if (cell.size() == 1 && isDigit(cell.front())) return {Kind::count, cell.front() - '0'};
    std::int64_t whole = 0;
    const char* const end = cell.data() + cell.size();
    const auto plain = std::from_chars(cell.data(), end, whole);
    if (plain.ptr == end) {
        if (plain.ec == std::errc::result_out_of_range) return {Kind::tooLarge, 0};
        return {whole < 0 ? Kind::negative : Kind::count, whole};
    }
    if (isMissingMark(cell)) return {Kind::missing, 0};
    if (const std::optional<double> percent = percentage(cell, marks)) {
        return {Kind::fraction, static_cast<std::int64_t>(std::round(*percent))};
    }
    const std::string digits = plainNumber(cell, marks);
    const std::optional<double> value = valueOfPlain(digits);
    if (!value) return {Kind::notANumber, 0};
    if (*value < 0) return {Kind::negative, 0};
    // Digits alone, as in 1 234, are read without rounding.
    const bool exact = digits.find_first_of(".e") == std::string::npos;
    if (exact) {
        const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), whole);
        if (result.ec != std::errc()) return {Kind::tooLarge, 0};
        return {Kind::count, whole};
    }
    if (*value >= 0x1p63) return {Kind::tooLarge, 0};
    const double rounded = std::round(*value);
    return {rounded == *value ? Kind::count : Kind::fraction, static_cast<std::int64_t>(rounded)};
}

std::optional<bool> presenceMark(std::string_view cell) {
    if (cell.empty() || cell == "0") return false;
    const bool isTick = cell == "✓" || cell == "✔" || cell == "√";
    if (cell == "1" || cell == "x" || cell == "X" || isTick) return true;
    return std::nullopt;
}

std::optional<double> tableDegrees(std::string_view cell, NumberMarks marks, double limit) {
    double sign = 1;
    if (!cell.empty()) {
        const char last = cell.back();
        const bool vertical = limit == 90 && (last == 'N' || last == 'S');
        const bool horizontal = limit == 180 && (last == 'E' || last == 'W');
        if (vertical || horizontal) {
            sign = last == 'S' || last == 'W' ? -1 : 1;
            cell.remove_suffix(1);
        }
    }
    std::string parts(cell);
    for (const std::string_view mark : {"°", "′", "″", "'", "\"", "’", "”"}) {
        for (std::size_t at = parts.find(mark); at != std::string::npos; at = parts.find(mark)) {
            parts.replace(at, mark.size(), 1, ' ');
        }
    }
    std::array<double, 3> values{};
    std::size_t count = 0;
    for (std::size_t at = 0; at < parts.size();) {
        const std::size_t end = std::min(parts.find(' ', at), parts.size());
        if (end > at) {
            const auto value = tableNumber(std::string_view(parts).substr(at, end - at), marks);
            if (!value || count == 3 || (count > 0 && (*value < 0 || *value >= 60))) {
                return std::nullopt;
            }
            values[count++] = *value;
        }
        at = end + 1;
    }
    if (count == 0) return std::nullopt;
    const double size = std::abs(values[0]) + values[1] / 60 + values[2] / 3600;
    const double degrees = sign * (std::signbit(values[0]) ? -size : size);
    if (!(std::abs(degrees) <= limit)) return std::nullopt;
    return degrees;
}

CellDate tableDate(std::string_view cell, DateOrder order) {
    CellDate date;
    const std::optional<DateParts> parts = dateParts(cell);
    if (!parts) return date;
    const Calendar calendar = calendarDay(*parts, order);
    const std::optional<TimeOfDay> time = timeOfDay(parts->rest);
    date.needsOrder = calendar.needsOrder && time.has_value();
    if (!calendar.day || !time) return date;
    WallClock clock = *calendar.day;
    if (time->offset) {
        const std::chrono::year_month_day day{
            std::chrono::year(static_cast<int>(clock.year)),
            std::chrono::month(static_cast<unsigned>(clock.month)),
            std::chrono::day(static_cast<unsigned>(clock.day))};
        if (!day.ok()) return date;
        date.time = std::chrono::sys_days(day) + std::chrono::hours(time->hour) +
                    std::chrono::minutes(time->minute - *time->offset) +
                    std::chrono::seconds(time->second) +
                    std::chrono::microseconds(time->microsecond);
        return date;
    }
    clock.hour = time->hour;
    clock.minute = time->minute;
    date.time = localTime(clock);
    if (date.time) {
        *date.time +=
            std::chrono::seconds(time->second) + std::chrono::microseconds(time->microsecond);
    }
    return date;
}

DateOrder dateOrderOf(std::string_view cell) {
    const std::optional<DateParts> parts = dateParts(cell);
    if (!parts || parts->digits[2] != 4 || parts->separator == '.' || parts->namedMonth)
        return DateOrder::unknown;
    const bool dayFirst = parts->numbers[0] > 12;
    const bool monthFirst = parts->numbers[1] > 12;
    if (dayFirst == monthFirst) return DateOrder::unknown;
    return dayFirst ? DateOrder::dayFirst : DateOrder::monthFirst;
}

std::optional<bool> yesOrNo(std::string_view cell) {
    const std::string word = lowerCase(cell);
    if (word == "1" || word == "true" || word == "yes" || word == "x" || word == "y") return true;
    if (word == "0" || word == "false" || word == "no" || word == "n") return false;
    return std::nullopt;
}

}  // namespace zorvel
