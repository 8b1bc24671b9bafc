// How names are found and sorted in the tables: found by any part, ignoring case and accents
// ("malmo" in "Malmö"), and sorted without regard to case and with numbers by value ("Core 2"
// before "Core 10"). foldedForSearch and NameSearch: one thread. naturalKey: any thread.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "base/shared_text.h"

namespace zorvel {

// The text without case, accents and compatibility forms (ligatures, wide letters); letters with a
// stroke and joined vowels as the plain letters that people type for them. Folded character by
// character, so that the fold of a part is a part of the fold.
std::string foldedForSearch(std::string_view text);

// Searches many names for a few texts. A name that is not ASCII is folded once and kept.
class NameSearch {
  public:
    // folded: by foldedForSearch; every name contains the empty text.
    bool contains(const SharedText& name, std::string_view folded);
    // Forgets the kept names.
    void clear() { forms_.clear(); }

  private:
    struct Form {
        SharedText name;  // keeps the text at its address
        std::string folded;
    };

    std::unordered_map<const std::string*, Form> forms_;
};

// A key whose byte order is the sort order. Names that differ only in case or leading zeros have
// the same key.
std::string naturalKey(std::string_view name);

}  // namespace zorvel
