#include "model/taxon_formatter.h"

#include <unordered_set>

#include "base/text.h"

namespace zorvel {

void TaxonFormatter::updatedTaxonNotification(const ChangeSet& changes) {
    // Most names are met again as the very same shared text.
    std::unordered_set<const std::string*> seen;
    for (const CensusChange& change : changes) {
        if (change.deleted()) continue;
        forEachTaxonChange(change.before.get(), change.after.get(),
                           [&](const TaxonRecord* /*before*/, const TaxonRecord* after) {
                               if (!after || !after->values.name) return;
                               const std::string& name = after->values.name->str();
                               if (seen.insert(&name).second) taxonNames_.insert(name);
                           });
    }
}

bool TaxonFormatter::isPartialStringValid(std::string& partial, std::optional<TextRange>& proposed,
                                          std::string_view /*original*/,
                                          TextRange originalSelection) const {
    if (partial.empty() || !proposed) return true;
    if (proposed->location == originalSelection.location) return true;
    if (*proposed != TextRange{partial.size(), 0}) return true;
    // The name itself, where it is known, stands before all longer ones.
    const auto name = taxonNames_.lower_bound(partial);
    if (name == taxonNames_.end() || !name->starts_with(partial)) return true;
    if (name->size() == partial.size() || !isGraphemeBoundary(*name, partial.size())) return true;
    proposed->length = name->size() - partial.size();
    partial = *name;
    return false;
}

}  // namespace zorvel
