// Which names of a list of records stand in it more than once, kept name by name as records come
// and go: a change costs what has changed, however long the list. Two names are one where they are
// canonically equivalent; a record without a name shares it with none. One thread.
#pragma once

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "base/shared_text.h"
#include "base/text.h"

namespace zorvel {

class SharedNames {
  public:
    void add(const std::optional<SharedText>& name);
    // Of a record that was added before.
    void remove(const std::optional<SharedText>& name);
    void clear();
    void reserve(std::size_t records) { counts_.reserve(records); }

    [[nodiscard]] bool isShared(const std::optional<SharedText>& name) const;
    // The records whose names are shared, and the distinct names that they share.
    [[nodiscard]] std::size_t recordCount() const { return records_; }
    [[nodiscard]] std::size_t nameCount() const { return shared_.size(); }
    // One of the shared names; there must be one.
    [[nodiscard]] const SharedText& oneName() const { return *shared_.begin(); }

  private:
    std::unordered_map<SharedText, std::size_t, CanonicalHash, CanonicalEqual> counts_;
    std::unordered_set<SharedText, CanonicalHash, CanonicalEqual> shared_;
    std::size_t records_ = 0;
};

}  // namespace zorvel
