#include "store/context_state.h"

#include <utility>

namespace zorvel {

SharedText NamePool::intern(const SharedText& name) {
    if (name.empty()) return {};
    const auto known = names_.find(name.view());
    return known != names_.end() ? *known : *names_.insert(name).first;
}

std::optional<SharedText> NamePool::intern(const std::optional<SharedText>& name) {
    if (!name) return std::nullopt;
    return intern(*name);
}

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
