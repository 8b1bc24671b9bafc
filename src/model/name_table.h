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
    std::unordered_map<const std::string*, std::size_t> sameText_;
};

}  // namespace zorvel
