#include "model/taxon_names.h"

#include <unordered_set>

#include "store/taxon_cursor.h"

namespace zorvel {

std::set<std::string, std::less<>> taxonNameSet(const std::optional<std::vector<Zorvel>>& taxa) {
    std::set<std::string, std::less<>> names;
    if (!taxa) return names;
    // Most names are met again as the very same shared text.
    std::unordered_set<const std::string*> seen;
    TaxonCursor cursor;
    for (const Zorvel& taxon : *taxa) {
        const TaxonRecord* record = cursor.find(taxon);
        if (!record || !record->values.name) continue;
        const std::string& name = record->values.name->str();
        if (seen.insert(&name).second) names.insert(name);
    }
    return names;
}

}  // namespace zorvel
