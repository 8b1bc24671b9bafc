// The characters that structure every text format, as UTF-8 sequences: line breaks (U+000A to
// U+000D, U+0085, U+2028, U+2029) and spaces (the tab and the Unicode space separators, category
// Zs). Pure; a NUL byte is an ordinary character.
#pragma once

#include <cstddef>
#include <string_view>

namespace zorvel {

// Bytes of the line-break character that begins at text[at]; 0 if none does. CR LF is two.
std::size_t lineBreakLength(std::string_view text, std::size_t at);

// Bytes of the space character that begins at text[at]; 0 if none does.
std::size_t spaceLength(std::string_view text, std::size_t at);

// The place of the first line-break character from `at` on; the text's size if there is none.
std::size_t lineEnd(std::string_view text, std::size_t at);

// The first place from `at` on that begins no line break, or no space.
std::size_t skipLineBreaks(std::string_view text, std::size_t at);
std::size_t skipSpaces(std::string_view text, std::size_t at);

// The line that holds text[at], from 1; CR LF counts once. Reads the text before it: for messages,
// not for loops.
std::size_t lineNumber(std::string_view text, std::size_t at);

}  // namespace zorvel
