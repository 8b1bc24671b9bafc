#include "base/numbers.h"

#include <sys/random.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <system_error>

namespace zorvel {
namespace {

// The C locale for strtod_l, made once and kept for the life of the process.
locale_t cLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

}  // namespace

std::string fixedText(double value, int digits) {
    // The largest double has 309 digits before its point.
    std::string text(static_cast<std::size_t>(digits) + 320, '\0');
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   std::chars_format::fixed, digits);
    text.resize(static_cast<std::size_t>(end.ptr - text.data()));
    return text;
}

std::string shortestText(double value) {
    if (std::isnan(value)) return "nan";
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return {buffer.data(), end.ptr};
}

std::string shortestTextWithPoint(double value) {
    if (!std::isfinite(value)) return shortestText(value);
    const double size = std::abs(value);
    const bool plain = size == 0 || (size >= 1e-4 && size < 1e16);
    std::array<char, 64> buffer{};
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                      plain ? std::chars_format::fixed : std::chars_format::scientific);
    std::string text(buffer.data(), end.ptr);
    if (text.find('.') != std::string::npos) return text;
    return text.insert(std::min(text.find('e'), text.size()), ".0");
}

std::string integerText(std::int64_t value) {
    return std::to_string(value);
}

std::optional<double> parseWholeDouble(std::string_view text) {
    // strtod skips leading white space and stops at a NUL byte; neither is part of a number.
    if (text.empty()) return std::nullopt;
    const char first = text.front();
    const bool starts = (first >= '0' && first <= '9') || first == '+' || first == '-' ||
                        first == '.' || first == 'i' || first == 'I' || first == 'n' ||
                        first == 'N';
    if (!starts) return std::nullopt;
    double value = 0;
    const auto plain = std::from_chars(text.data(), text.data() + text.size(), value);
    if (plain.ec == std::errc() && plain.ptr == text.data() + text.size()) return value;
    // What from_chars leaves: a plus sign, hexadecimals, values out of range.
    const std::string terminated(text);
    char* end = nullptr;
    value = strtod_l(terminated.c_str(), &end, cLocale());
    if (end != terminated.c_str() + terminated.size()) return std::nullopt;
    return value;
}

std::optional<std::int64_t> parseWholeInteger(std::string_view text) {
    // from_chars takes a minus but no plus.
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    std::int64_t value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end) return std::nullopt;
    return value;
}

// So few bytes are filled whole, but a signal may interrupt the wait for the system's first random
// numbers. No other failure is possible on a kernel that has the call; without it we abort.
void fillRandom(void* bytes, std::size_t size) {
    while (getrandom(bytes, size, 0) != static_cast<ssize_t>(size)) {
        if (errno != EINTR) std::abort();
    }
}

std::string randomHexadecimal(std::size_t bytes) {
    std::string raw(bytes, '\0');
    fillRandom(raw.data(), bytes);
    std::string text;
    for (const char byte : raw) {
        text += "0123456789abcdef"[static_cast<unsigned char>(byte) >> 4];
        text += "0123456789abcdef"[static_cast<unsigned char>(byte) & 15];
    }
    return text;
}

}  // namespace zorvel
