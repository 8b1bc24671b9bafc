#include "interchange/whole_integer.h"

#include <charconv>

namespace zorvel {

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

}  // namespace zorvel
