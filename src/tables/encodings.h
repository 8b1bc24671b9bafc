// The encodings of texts: how one is told from its bytes, and how it becomes UTF-8. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tables/rows.h"

namespace zorvel {

// Never Windows-1250. A mark of the encoding, or what the bytes seem to be. whole: they are all of
// the text; otherwise the last character may be cut.
TableEncoding guessEncoding(std::string_view bytes, bool whole);

// Adds the bytes to the text in UTF-8 and returns how many were read: fewer than four are left if
// the last character is not complete. Ill-formed UTF-8 stays as it is; a unit that is not valid
// UTF-16 becomes U+FFFD.
std::size_t appendDecoded(std::string& text, std::string_view bytes, TableEncoding encoding,
                          bool atEnd);

}  // namespace zorvel
