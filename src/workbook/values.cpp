#include "workbook/values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <optional>
#include <system_error>

namespace zorvel {
namespace {

std::optional<double> doubleOf(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool read = error == std::errc() && end == text.data() + text.size() && !text.empty();
    return read && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

// Digits as this program would write them too.
bool isPlainCount(std::string_view text) {
    return !text.empty() && text.size() <= 15 && (text.front() != '0' || text.size() == 1) &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string padded(std::int64_t value, int digits) {
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "%0*lld", digits, static_cast<long long>(value));
    return text.data();
}

std::string timeText(std::int64_t seconds) {
    std::string text = padded(seconds / 3600, 2);
    text += ':';
    text += padded(seconds / 60 % 60, 2);
    if (seconds % 60 != 0) text.append(1, ':').append(padded(seconds % 60, 2));
    return text;
}

// The letters of a format code outside quotes, escapes and brackets, of its first section.
std::string formatLetters(std::string_view code) {
    std::string letters;
    for (std::size_t i = 0; i < code.size() && code[i] != ';'; ++i) {
        const char c = code[i];
        if (c == '"') {
            i = std::min(code.find('"', i + 1), code.size());
        } else if (c == '\\' || c == '_' || c == '*') {
            ++i;
        } else if (c == '[') {
            const std::size_t end = std::min(code.find(']', i), code.size());
            const std::string_view inner = code.substr(i + 1, end - i - 1);
            if (!inner.empty() && inner.find_first_not_of("hHmMsS") == std::string_view::npos) {
                letters += 'h';
            }
            i = end;
        } else if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) {
            letters += static_cast<char>(c | 0x20);
        }
    }
    return letters;
}

// Four hexadecimal digits.
std::optional<char32_t> unitOf(std::string_view digits) {
    unsigned value = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (digits.size() != 4 || error != std::errc() || end != digits.data() + 4) return std::nullopt;
    return value;
}

// The unit that _xHHHH_ at the start of the text stands for.
std::optional<char32_t> escapedUnit(std::string_view text) {
    if (text.size() < 7 || text[0] != '_' || text[1] != 'x' || text[6] != '_') return std::nullopt;
    return unitOf(text.substr(2, 4));
}

void appendCharacter(std::string& text, char32_t c) {
    const auto byte = [&text](char32_t value) { text += static_cast<char>(value); };
    if (c < 0x80) {
        byte(c);
        return;
    }
    if (c < 0x800) {
        byte(0xC0 | c >> 6);
    } else {
        if (c < 0x10000) {
            byte(0xE0 | c >> 12);
        } else {
            byte(0xF0 | c >> 18);
            byte(0x80 | (c >> 12 & 0x3F));
        }
        byte(0x80 | (c >> 6 & 0x3F));
    }
    byte(0x80 | (c & 0x3F));
}

}  // namespace

std::string numberText(std::string_view number) {
    if (isPlainCount(number)) return std::string(number);
    const std::optional<double> value = doubleOf(number);
    if (!value) return std::string(number);
    const double size = std::abs(*value);
    const bool plain = size == 0 || (size >= 1e-6 && size < 1e17);
    std::array<char, 64> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), *value,
                      plain ? std::chars_format::fixed : std::chars_format::scientific);
    return size == 0 ? "0" : std::string(text.data(), end.ptr);
}

NumberFormat formatOfCode(std::string_view code) {
    const std::string letters = formatLetters(code);
    if (letters.starts_with("general")) return NumberFormat::number;
    const auto has = [&letters](char c) { return letters.find(c) != std::string::npos; };
    if (has('y') || has('d')) return NumberFormat::date;
    if (has('h') || has('s')) return NumberFormat::time;
    return has('m') ? NumberFormat::date : NumberFormat::number;
}

NumberFormat formatOfId(std::size_t id) {
    const auto within = [id](std::size_t first, std::size_t last) {
        return id >= first && id <= last;
    };
    if (within(14, 17) || id == 22 || within(27, 31) || id == 36 || within(50, 54) ||
        within(57, 58)) {
        return NumberFormat::date;
    }
    const bool time = within(18, 21) || within(32, 35) || within(45, 47) || within(55, 56);
    return time ? NumberFormat::time : NumberFormat::number;
}

std::string dateText(std::string_view days, NumberFormat format, bool from1904) {
    using std::chrono::year;
    constexpr double last = 2958466;  // the day after 9999-12-31
    const double value = doubleOf(days).value_or(-1);
    if (!(value >= 0 && value < last) || (format == NumberFormat::time && value >= 1)) {
        return numberText(days);
    }
    const auto seconds = static_cast<std::int64_t>(std::llround(value * 86400));
    const std::int64_t day = seconds / 86400;
    const std::int64_t second = seconds % 86400;
    const bool timeOnly = day == 0 && !from1904 && (second > 0 || format == NumberFormat::time);
    if (timeOnly || format == NumberFormat::time) return timeText(seconds);
    std::string text;
    if (day == 60 && !from1904) {
        text = "1900-02-29";
    } else if (day == 0 && !from1904) {
        return numberText(days);
    } else {
        const auto first = std::chrono::sys_days(from1904   ? year(1904) / 1 / 1
                                                 : day < 60 ? year(1899) / 12 / 31
                                                            : year(1899) / 12 / 30);
        const std::chrono::year_month_day date(first + std::chrono::days(day));
        text = padded(static_cast<int>(date.year()), 4) + "-" +
               padded(static_cast<unsigned>(date.month()), 2) + "-" +
               padded(static_cast<unsigned>(date.day()), 2);
    }
    return second == 0 ? text : text + "T" + timeText(second);
}

std::string isoDateText(std::string_view date) {
    date = date.substr(0, date.find('.'));
    if (date.ends_with("T00:00:00")) date.remove_suffix(9);
    return std::string(date);
}

void appendUnescaped(std::string& to, std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        auto unit = text[i] == '_' ? escapedUnit(text.substr(i)) : std::nullopt;
        if (!unit) {
            to += text[i++];
            continue;
        }
        i += 7;
        if (*unit >= 0xD800 && *unit < 0xE000) {
            const auto low = escapedUnit(text.substr(i));
            const bool paired = *unit < 0xDC00 && low && *low >= 0xDC00 && *low < 0xE000;
            unit = paired ? 0x10000 + ((*unit - 0xD800) << 10) + (*low - 0xDC00) : 0xFFFD;
            if (paired) i += 7;
        }
        // Of the two characters of a line break one is enough.
        if (*unit == '\r' && i < text.size() && text[i] == '\n') continue;
        appendCharacter(to, *unit);
    }
}

}  // namespace zorvel
