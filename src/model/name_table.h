// The distinct names of a list of taxa, numbered as first met: what makes the lookups of the
// project's lists one hash look-up each. Two spellings that are canonically equivalent are one
// name, shown as the first of them. For one operation on one thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/shared_text.h"
#include "base/text.h"

namespace zorvel {

// Numbers of texts by their place in memory, in a flat table: a look-up that finds touches one
// place, and nothing of the text.
class TextNumbers {
  public:
    // The number of that very text; where it is new, the given one.
    std::size_t add(const std::string* text, std::size_t number);
    // Of a text that was added.
    void setNumber(const std::string* text, std::size_t number) { slot(text).number = number; }

  private:
    struct Slot {
        const std::string* text = nullptr;  // null: free
        std::size_t number = 0;
    };
    // That of the text, or the free one that it would take.
    Slot& slot(const std::string* text);
    void grow();

    unsigned bits_ = 10;
    std::size_t used_ = 0;  // at most half of the slots
    std::vector<Slot> slots_ = std::vector<Slot>(std::size_t{1} << bits_);
};

class NameTable {
  public:
    // The number of the name, new ones at the end. The text must live as long as the table.
    std::size_t add(const std::string& name);

    // The number of a name that was added; the number of names otherwise.
    [[nodiscard]] std::size_t find(std::string_view name) const;
    [[nodiscard]] std::size_t size() const { return names_.size(); }

    // The numbers of the names in ascending order of the names.
    [[nodiscard]] std::vector<std::size_t> sortedNumbers() const;
    [[nodiscard]] const std::string& name(std::size_t number) const { return *names_[number]; }

  private:
    std::vector<const std::string*> names_;
    std::unordered_map<std::string_view, std::size_t, CanonicalHash, CanonicalEqual> numbers_;
    // Most names are met again as the very same shared text: no need to look at their bytes.
    TextNumbers sameText_;
};

}  // namespace zorvel
