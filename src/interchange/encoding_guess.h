// What bytes that are not UTF-8 text seem to be. Only for messages: nothing is converted.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zorvel {

// The first byte at fault, and a name for what the bytes are.
struct NotUtf8 {
    std::size_t offset = 0;
    std::string seems;
};

// Absent for UTF-8 text (without a byte-order mark). Text that is full of NUL bytes is UTF-8 only
// by accident and counts as UTF-16, UTF-32 or binary data.
std::optional<NotUtf8> whyNotUtf8(std::string_view bytes);

}  // namespace zorvel
