// Text is UTF-8. Two names are the same name when they are canonically equivalent (Unicode Standard
// Annex 15), and names are ordered by the scalar values of their NFC form, which is the order of
// its bytes. Bytes that are not UTF-8 stand for themselves and equal only themselves. Any thread.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zorvel {

// The NFC form; the text itself if it is ASCII or not UTF-8.
std::string canonicalForm(std::string_view text);

bool canonicallyEqual(std::string_view a, std::string_view b);

// Function objects for hash containers by name.
struct CanonicalHash {
    std::size_t operator()(std::string_view text) const;
};
struct CanonicalEqual {
    bool operator()(std::string_view a, std::string_view b) const { return canonicallyEqual(a, b); }
};

bool isAscii(std::string_view text);

// The place of the first byte that begins no well-formed UTF-8 sequence (overlong forms, surrogates
// and values past U+10FFFF are ill-formed); absent if all of the text is UTF-8.
std::optional<std::size_t> firstInvalidUtf8(std::string_view text);

// The text as one line that is safe to show on a terminal: control characters except tabs, line
// separators, characters that turn the direction of writing or have no width, and bytes that are
// not UTF-8 are shown as \x1b or \u202e. The middle of a long text is left out.
std::string terminalLine(std::string_view text);

// Whether a reader would see a character end at that byte (Unicode Standard Annex 29): false
// between a letter and its accents. The ends of the text are boundaries; so is every place in a
// text that is not UTF-8.
bool isGraphemeBoundary(std::string_view text, std::size_t byte);

}  // namespace zorvel
