// Completes a species name while it is typed, from the names already used in the project. The
// editor of the cell calls it before it accepts an edit. Places and lengths are in bytes of UTF-8.
// Main thread.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "store/change_set.h"
#include "store/object_context.h"

namespace zorvel {

struct TextRange {
    std::size_t location = 0;
    std::size_t length = 0;
    friend bool operator==(const TextRange&, const TextRange&) = default;
};

class TaxonFormatter {
  public:
    using Names = std::set<std::string, std::less<>>;

    // Known names in order. Learns all waiting names first.
    [[nodiscard]] const Names& taxonNames();
    void setTaxonNames(Names names) { taxonNames_ = std::move(names); }
    void addTaxonNames(const Names& names) { taxonNames_.insert(names.begin(), names.end()); }

    // Learns the names of new and changed taxa: at once, except that many taxa of new censuses
    // wait. No name is ever forgotten.
    void updatedTaxonNotification(const ChangeSet& changes);
    // Learns waiting names for a few milliseconds. True if more are waiting: call again soon.
    bool learnSome();

    // True if the text stays as it was typed. If not, partial is now the completion and proposed
    // the part of it that was not typed, to be selected so that further typing replaces it.
    // proposed: the selection after the edit; originalSelection: the one before it. Nothing is
    // completed when the edit did not move the caret forward (a deletion), when the caret is not at
    // the end, or when the name continues within the last character typed (an accent). Case counts.
    // Of several names the first in order is proposed.
    bool isPartialStringValid(std::string& partial, std::optional<TextRange>& proposed,
                              std::string_view original, TextRange originalSelection) const;

  private:
    void learn(const TaxonRecord& taxon);

    Names taxonNames_;
    std::deque<std::shared_ptr<const TaxonChunk>> waiting_;
    // Within one call: most names are the very same shared text.
    std::unordered_set<const std::string*> seen_;
};

// The name of every taxon of the context that has one, compared exactly.
TaxonFormatter::Names taxonNameSet(const ObjectContext& context);

}  // namespace zorvel
