#include "store/context_state.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace zorvel {
namespace {

// The place of the record with that identity, or where it would stand.
template <class Records>
auto lowerBound(Records& records, RecordId id) {
    return std::lower_bound(records.begin(), records.end(), id,
                            [](const auto& record, RecordId wanted) { return record.id < wanted; });
}

// The chunk that holds the taxon if any does.
auto chunkOf(const CensusBlock& block, RecordId taxon) {
    return std::lower_bound(block.chunks.begin(), block.chunks.end(), taxon,
                            [](const auto& chunk, RecordId id) { return chunk->back().id < id; });
}

}  // namespace

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
    const auto place = lowerBound(censuses, census);
    return place != censuses.end() && place->id == census ? &place->block : nullptr;
}

void ObjectContext::State::put(RecordId census, const BlockPointer& after) {
    const BlockPointer* found = find(census);
    const BlockPointer before = found ? *found : nullptr;
    if (before == after) return;
    replace(census, after);
    history.record(census, before, after);
    note(census, before, after);
}

void ObjectContext::State::apply(const ChangeSet& changes) {
    constexpr std::size_t few = 32;
    if (changes.size() > few) {
        replaceMany(changes);
    } else {
        for (const CensusChange& change : changes) replace(change.census, change.after);
    }
    for (const CensusChange& change : changes) note(change.census, change.before, change.after);
}

void ObjectContext::State::note(RecordId census, const BlockPointer& before,
                                const BlockPointer& after) {
    ++revision;
    const bool first = unannounced.empty();
    unannounced.add(census, before, after);
    if (first && onFirstChange) onFirstChange();
}

void ObjectContext::State::replace(RecordId census, const BlockPointer& after) {
    const auto place = lowerBound(censuses, census);
    const bool known = place != censuses.end() && place->id == census;
    if (known && after) {
        place->block = after;
    } else if (known) {
        censuses.erase(place);
    } else if (after) {
        censuses.insert(place, Entry{census, after});
    }
}

// One pass over the list, however many of its entries come and go.
void ObjectContext::State::replaceMany(const ChangeSet& changes) {
    std::vector<Entry> merged;
    merged.reserve(censuses.size() + changes.size());
    auto old = censuses.begin();
    for (const CensusChange& change : changes) {
        for (; old != censuses.end() && old->id < change.census; ++old) {
            merged.push_back(std::move(*old));
        }
        if (old != censuses.end() && old->id == change.census) ++old;
        if (change.after) merged.push_back({change.census, change.after});
    }
    std::move(old, censuses.end(), std::back_inserter(merged));
    censuses = std::move(merged);
}

const TaxonRecord* findTaxon(const CensusBlock& block, RecordId taxon) {
    const auto chunk = chunkOf(block, taxon);
    if (chunk == block.chunks.end()) return nullptr;
    const auto record = lowerBound(**chunk, taxon);
    return record->id == taxon ? &*record : nullptr;
}

std::shared_ptr<CensusBlock> withTaxonAppended(const CensusBlock& block, TaxonRecord taxon) {
    auto after = std::make_shared<CensusBlock>(block);
    auto chunk = std::make_shared<TaxonChunk>();
    chunk->reserve(taxaPerChunk);
    if (!after->chunks.empty() && after->chunks.back()->size() < taxaPerChunk) {
        chunk->assign(after->chunks.back()->begin(), after->chunks.back()->end());
        after->chunks.pop_back();
    }
    chunk->push_back(std::move(taxon));
    after->chunks.push_back(std::move(chunk));
    return after;
}

TaxonCopy withTaxonCopied(const CensusBlock& block, RecordId taxon) {
    TaxonCopy copy{std::make_shared<CensusBlock>(block), nullptr};
    const auto place = chunkOf(block, taxon) - block.chunks.begin();
    auto& shared = copy.block->chunks[static_cast<std::size_t>(place)];
    auto chunk = std::make_shared<TaxonChunk>(*shared);
    copy.taxon = &*lowerBound(*chunk, taxon);
    shared = std::move(chunk);
    return copy;
}

std::shared_ptr<CensusBlock> withoutTaxon(const CensusBlock& block, RecordId taxon) {
    auto after = std::make_shared<CensusBlock>(block);
    const auto place = after->chunks.begin() + (chunkOf(block, taxon) - block.chunks.begin());
    auto chunk = std::make_shared<TaxonChunk>(**place);
    chunk->erase(lowerBound(*chunk, taxon));
    if (chunk->empty()) {
        after->chunks.erase(place);
    } else {
        *place = std::move(chunk);
    }
    return after;
}

}  // namespace zorvel
