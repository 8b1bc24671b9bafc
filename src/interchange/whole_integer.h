// The integer rule of all comma-separated formats. Pure, and the same under every locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zorvel {

// The whole text as one decimal integer: an optional single "+" or "-", then ASCII digits and
// nothing else. Leading zeros are allowed. Nothing for an empty text, a lone sign, any other
// character (spaces, a decimal point, an exponent), or a value that does not fit in 64 bits.
std::optional<std::int64_t> parseWholeInteger(std::string_view text);

}  // namespace zorvel
