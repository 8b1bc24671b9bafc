#include "model/typed_preferences.h"

#include <charconv>
#include <cmath>
#include <system_error>

#include "base/numbers.h"

namespace zorvel {
namespace {

constexpr const char* sizeNotWhole = "A sample size is a whole number.";
constexpr const char* numberTooLarge = "This number is too large.";
constexpr const char* notQuota = "A quota is a number with a decimal point.";

}  // namespace

Typed<std::int64_t> parseTypedSampleSize(std::string_view text) {
    // from_chars takes a minus sign alone, and would take one after the plus.
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return sizeNotWhole;
    }
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::invalid_argument || end != text.data() + text.size())
        return sizeNotWhole;
    if (error != std::errc()) return numberTooLarge;
    return value;
}

Typed<double> parseTypedQuota(std::string_view text) {
    const std::optional<double> value = parseWholeDouble(text);
    if (!value) return notQuota;
    const bool isWord = text.find_first_of("nN") != std::string_view::npos;
    if (!std::isfinite(*value)) return isWord ? notQuota : numberTooLarge;
    return *value;
}

}  // namespace zorvel
