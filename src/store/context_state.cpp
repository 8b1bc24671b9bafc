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

void History::beginStep(std::string name) {
    if (depth_++ == 0) openName_ = std::move(name);
}

void History::endStep() {
    if (depth_ > 0 && --depth_ == 0) push({std::move(openName_), open_.take()});
}

void History::record(ChangeSet changes) {
    if (depth_ == 0) return push({"", std::move(changes)});
    for (const CensusChange& change : changes) open_.add(change);
}

void History::push(Step step) {
    if (step.changes.empty()) return;
    undone_.clear();
    done_.push_back(std::move(step));
}

ChangeSet History::undo() {
    undone_.push_back(std::move(done_.back()));
    done_.pop_back();
    return reversed(undone_.back().changes);
}

ChangeSet History::redo() {
    done_.push_back(std::move(undone_.back()));
    undone_.pop_back();
    return done_.back().changes;
}

void History::forget() {
    done_.clear();
    undone_.clear();
}

}  // namespace zorvel
