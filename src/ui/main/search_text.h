// Finds names by any part of them, whatever the case and the accents: "rhizoctonia" in
// "Rhizoctonia", "malmo" in "Malmö". One thread.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "base/shared_text.h"

namespace zorvel {

// The text without case, accents and forms of compatibility (ligatures, wide letters); letters with
// a stroke and joined vowels as the plain letters that people type for them. Folded character by
// character, so that the fold of a part is the part of the fold.
std::string foldedForSearch(std::string_view text);

// Asks many names for the same few texts. A name that is not ASCII is folded once and kept so.
class NameSearch {
  public:
    // folded: by foldedForSearch; an empty text is held by every name.
    bool holds(const SharedText& name, std::string_view folded);
    // Forgets the names, for instance when others take their place.
    void clear() { forms_.clear(); }

  private:
    struct Form {
        SharedText name;  // keeps the address of its text taken
        std::string folded;
    };

    std::string ascii_;  // the fold of the name at hand
    std::unordered_map<const std::string*, Form> forms_;
};

}  // namespace zorvel
