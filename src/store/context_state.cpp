#include "store/context_state.h"

#include <utility>

namespace zorvel {

const BlockPointer* ObjectContext::State::find(RecordId census) const {
    const Entry* entry = findRecord(censuses, census);
    return entry ? &entry->block : nullptr;
}

void ObjectContext::State::change(ChangeSet changes) {
    if (changes.empty()) return;
    const bool first = unannounced.empty();
    replace(changes);
    history.record(std::move(changes));
    if (first && onFirstChange) onFirstChange();
}

void ObjectContext::State::apply(const ChangeSet& changes) {
    if (changes.empty()) return;
    const bool first = unannounced.empty();
    replace(changes);
    if (first && onFirstChange) onFirstChange();
}

void ObjectContext::State::replace(const ChangeSet& changes) {
    std::vector<RecordChange<Entry>> entries;
    entries.reserve(changes.size());
    for (const CensusChange& change : changes) {
        RecordChange<Entry>& entry = entries.emplace_back();
        entry.id = change.census;
        if (change.after) entry.after = Entry{change.census, change.after};
        unannounced.add(change);
    }
    changeRecords(censuses, std::move(entries), censusesPerChunk);
    ++revision;
}

BlockPointer withTaxa(const CensusBlock& block, std::vector<RecordChange<TaxonRecord>> changes) {
    auto after = std::make_shared<CensusBlock>(block);
    changeRecords(after->chunks, std::move(changes), taxaPerChunk);
    return after;
}

}  // namespace zorvel
