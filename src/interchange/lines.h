// Where the lines of a text end. Pure.
#pragma once

#include <cstddef>
#include <string_view>

namespace zorvel {

// The place of the first line-break character from `at` on; the text's size where there is none.
std::size_t lineEnd(std::string_view text, std::size_t at);

}  // namespace zorvel
