// Completes what is typed into a species name from the names already used in the project. The
// editor of the cell drives it: it asks before it takes an edit, and shows what comes back. Places
// and lengths are in bytes of UTF-8. Main thread.
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

    // Known names in order; one that begins with what is typed is found without a scan. Learns what
    // waits.
    [[nodiscard]] const Names& taxonNames();
    void setTaxonNames(Names names) { taxonNames_ = std::move(names); }
    void addTaxonNames(const Names& names) { taxonNames_.insert(names.begin(), names.end()); }

    // Every name of a taxon that came or changed becomes known: at once, but for those of many taxa
    // in new censuses, which wait. None is ever forgotten.
    void updatedTaxonNotification(const ChangeSet& changes);
    // Learns for a few milliseconds from what waits. Whether more waits: call again soon.
    bool learnSome();

    // Whether the text stands as it was typed. If not, partial has become the completion and
    // proposed the part of it that was not typed, to be selected so that typing on replaces it.
    // proposed: the selection after the edit; originalSelection: the one before it. Nothing is
    // completed when the edit did not move the caret forward (a deletion), when the caret is not at
    // the end, or when the name goes on within the character that was typed last (an accent). Case
    // counts. Of several names the first in order is proposed.
    bool isPartialStringValid(std::string& partial, std::optional<TextRange>& proposed,
                              std::string_view original, TextRange originalSelection) const;

  private:
    void learn(const TaxonRecord& taxon);

    Names taxonNames_;
    std::deque<std::shared_ptr<const TaxonChunk>> waiting_;
    // In the turn: most names are met again as the very same shared text.
    std::unordered_set<const std::string*> seen_;
};

// The name of every taxon that has one, compared exactly.
TaxonFormatter::Names taxonNameSet(const std::vector<Zorvel>& taxa);

}  // namespace zorvel
