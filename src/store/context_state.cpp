#include "store/context_state.h"

#include <utility>

namespace zorvel {

namespace {
// So few names are copied at once; more of them are a layer, which is not.
constexpr std::size_t smallLayer = 1024;
}  // namespace

SharedText NamePool::intern(const SharedText& name) {
    if (name.empty()) return {};
    for (const auto& layer : frozen_) {
        const auto known = layer->find(name.view());
        if (known != layer->end()) return *known;
    }
    const auto known = names_.find(name.view());
    return known != names_.end() ? *known : *names_.insert(name).first;
}

std::optional<SharedText> NamePool::intern(const std::optional<SharedText>& name) {
    if (!name) return std::nullopt;
    return intern(*name);
}

std::vector<SharedText> NamePool::all() const {
    if (frozen_.empty()) return {names_.begin(), names_.end()};
    // A name may have come from two sides at once.
    TextSet distinct = names_;
    for (const auto& layer : frozen_) distinct.insert(layer->begin(), layer->end());
    return {distinct.begin(), distinct.end()};
}

NameLayers NamePool::known() {
    if (names_.size() > smallLayer) {
        frozen_.push_back(std::make_shared<const TextSet>(std::exchange(names_, {})));
    }
    NameLayers layers = frozen_;
    if (!names_.empty()) layers.push_back(std::make_shared<const TextSet>(names_));
    return layers;
}

void NamePool::add(TextSet names) {
    if (names.size() > smallLayer) {
        frozen_.push_back(std::make_shared<const TextSet>(std::move(names)));
    } else {
        for (const SharedText& name : names) intern(name);
    }
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
