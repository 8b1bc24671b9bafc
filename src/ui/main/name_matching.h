// How names are found and sorted in the tables: found by any part, ignoring case and accents
// ("malmo" in "Malmö"), and sorted without regard to case and with numbers by value ("Core 2"
// before "Core 10"). foldedForSearch: one thread. naturalKey: any thread.
#pragma once

#include <string>
#include <string_view>

namespace zorvel {

// The text without case, accents and compatibility forms (ligatures, wide letters); letters with a
// stroke and joined vowels as the plain letters that people type for them. Folded character by
// character, so that the fold of a part is a part of the fold.
std::string foldedForSearch(std::string_view text);

// A key whose byte order is the sort order. Names that differ only in case or leading zeros have
// the same key.
std::string naturalKey(std::string_view name);

}  // namespace zorvel
