#include "model/taxon_formatter.h"

#include "base/text.h"
#include "store/object_context.h"

namespace zorvel {

namespace {
constexpr std::size_t taxaAtOnce = 4096;  // about 4 ms if every name is new
}

const TaxonFormatter::Names& TaxonFormatter::taxonNames() {
    while (learnSome()) {
    }
    return taxonNames_;
}

void TaxonFormatter::learn(const TaxonRecord& taxon) {
    if (!taxon.values.name) return;
    const std::string& name = taxon.values.name->str();
    if (seen_.insert(&name).second) taxonNames_.insert(name);
}

void TaxonFormatter::updatedTaxonNotification(const ChangeSet& changes) {
    seen_.clear();
    for (const CensusChange& change : changes) {
        if (change.deleted()) continue;
        if (change.inserted()) {
            waiting_.insert(waiting_.end(), change.after->chunks.begin(),
                            change.after->chunks.end());
            continue;
        }
        forEachTaxonChange(change.before.get(), change.after.get(),
                           [&](const TaxonRecord* /*before*/, const TaxonRecord* after) {
                               if (after) learn(*after);
                           });
    }
    learnSome();
}

bool TaxonFormatter::learnSome() {
    seen_.clear();
    for (std::size_t taxa = 0; taxa < taxaAtOnce && !waiting_.empty(); waiting_.pop_front()) {
        for (const TaxonRecord& taxon : *waiting_.front()) learn(taxon);
        taxa += waiting_.front()->size();
    }
    seen_.clear();
    return !waiting_.empty();
}

bool TaxonFormatter::isPartialStringValid(std::string& partial, std::optional<TextRange>& proposed,
                                          std::string_view /*original*/,
                                          TextRange originalSelection) const {
    if (partial.empty() || !proposed) return true;
    if (proposed->location == originalSelection.location) return true;
    if (*proposed != TextRange{partial.size(), 0}) return true;
    // A name comes before all longer ones that begin with it.
    const auto name = taxonNames_.lower_bound(partial);
    if (name == taxonNames_.end() || !name->starts_with(partial)) return true;
    if (name->size() == partial.size() || !isGraphemeBoundary(*name, partial.size())) return true;
    proposed->length = name->size() - partial.size();
    partial = *name;
    return false;
}

TaxonFormatter::Names taxonNameSet(const ObjectContext& context) {
    TaxonFormatter::Names names;
    std::unordered_set<const std::string*> seen;  // most names are the very same shared text
    for (const BlockPointer& block : context.blocks()) {
        block->forEachTaxon([&](const TaxonRecord& taxon) {
            if (!taxon.values.name) return;
            const std::string& name = taxon.values.name->str();
            if (seen.insert(&name).second) names.insert(name);
        });
    }
    return names;
}

}  // namespace zorvel
