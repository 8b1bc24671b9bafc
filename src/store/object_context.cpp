#include "store/object_context.h"

#include <algorithm>
#include <utility>

namespace zorvel {
namespace {

constexpr std::size_t censusesPerChunk = 64;

// A copy of the block with those changes of its taxa, ascending by identity.
BlockPointer withTaxa(const CensusBlock& block, std::vector<RecordChange<TaxonRecord>> changes) {
    auto after = std::make_shared<CensusBlock>(block);
    changeRecords(after->chunks, std::move(changes), taxaPerChunk);
    return after;
}

}  // namespace

Census ObjectContext::insertCensus(const CensusAttributes& attributes,
                                   std::vector<TaxonValues> taxa) {
    auto block = std::make_shared<CensusBlock>();
    block->id = nextId_++;
    block->attributes = attributes;
    block->attributes.name = intern(attributes.name);
    appendInChunks(block->chunks, newRecords(std::move(taxa)), taxaPerChunk);
    const RecordId id = block->id;
    change({{id, nullptr, std::move(block)}});
    return Census(this, id);
}

std::shared_ptr<CensusBatch> ObjectContext::newBatch(std::size_t records) {
    const RecordId first = nextId_;
    nextId_ += records;
    return std::make_shared<CensusBatch>(first, nextId_);
}

void ObjectContext::insertCensuses(CensusBatch& batch) {
    ChangeSet changes;
    changes.reserve(batch.censusCount());
    for (BlockPointer& block : batch.take()) {
        const RecordId id = block->id;
        changes.push_back({id, nullptr, std::move(block)});
    }
    change(changes);
}

std::vector<TaxonRecord> ObjectContext::newRecords(std::vector<TaxonValues> taxa) {
    std::vector<TaxonRecord> records;
    records.reserve(taxa.size());
    for (TaxonValues& values : taxa) {
        values.name = intern(values.name);
        records.push_back({nextId_++, std::move(values)});
    }
    return records;
}

Zorvel ObjectContext::insertTaxon(const Census& census) {
    const std::vector<Zorvel> inserted = insertTaxa(census, std::vector<TaxonValues>(1));
    return inserted.empty() ? Zorvel(this, 0, 0) : inserted.front();
}

std::vector<Zorvel> ObjectContext::insertTaxa(const Census& census, std::vector<TaxonValues> taxa) {
    const BlockPointer* found = own(census);
    if (!found || taxa.empty()) return {};
    std::vector<Zorvel> handles;
    std::vector<RecordChange<TaxonRecord>> changes;
    handles.reserve(taxa.size());
    changes.reserve(taxa.size());
    for (TaxonRecord& record : newRecords(std::move(taxa))) {
        handles.push_back(Zorvel(this, census.id_, record.id));
        changes.push_back({record.id, std::move(record)});
    }
    const BlockPointer before = *found;
    change({{census.id_, before, withTaxa(*before, std::move(changes))}});
    return handles;
}

void ObjectContext::deleteCensuses(const std::vector<Census>& censuses) {
    ChangeLog gone;
    for (const Census& census : censuses) {
        if (const BlockPointer* before = own(census)) gone.add({census.id_, *before, nullptr});
    }
    change(gone.take());
}

void ObjectContext::deleteTaxa(const std::vector<Zorvel>& taxa) {
    changeTaxa(taxa, [](const TaxonRecord& old) {
        return std::optional(RecordChange<TaxonRecord>{old.id, std::nullopt});
    });
}

template <class Edit>
void ObjectContext::changeTaxa(std::vector<Zorvel> taxa, Edit&& edit) {
    std::erase_if(taxa, [&](const Zorvel& taxon) { return taxon.context_ != this; });
    std::sort(taxa.begin(), taxa.end(), [](const Zorvel& a, const Zorvel& b) {
        return a.census_ != b.census_ ? a.census_ < b.census_ : a.id_ < b.id_;
    });
    taxa.erase(std::unique(taxa.begin(), taxa.end()), taxa.end());
    ChangeSet changes;
    for (auto taxon = taxa.begin(); taxon != taxa.end();) {
        const RecordId census = taxon->census_;
        const BlockPointer* before = find(census);
        std::vector<RecordChange<TaxonRecord>> edits;
        for (; taxon != taxa.end() && taxon->census_ == census; ++taxon) {
            const auto* old = before ? findRecord((*before)->chunks, taxon->id_) : nullptr;
            if (!old) continue;
            if (auto change = edit(*old)) edits.push_back(std::move(*change));
        }
        if (edits.empty()) continue;
        changes.push_back({census, *before, withTaxa(**before, std::move(edits))});
    }
    change(changes);
}

const BlockPointer* ObjectContext::find(RecordId census) const {
    const Entry* entry = findRecord(censuses_, census);
    return entry ? &entry->block : nullptr;
}

const BlockPointer* ObjectContext::own(const Census& census) const {
    return census.context_ == this ? find(census.id_) : nullptr;
}

template <class Value>
void ObjectContext::set(const Census& census, Value CensusAttributes::*member, const Value& value) {
    const BlockPointer* found = own(census);
    if (!found) return;
    const BlockPointer before = *found;
    auto after = std::make_shared<CensusBlock>(*before);
    after->attributes.*member = value;
    if (sameAttributes(before->attributes, after->attributes)) return;
    change({{census.id_, before, std::move(after)}});
}

template <class Value>
void ObjectContext::set(const std::vector<Zorvel>& taxa, Value TaxonValues::*member,
                        const Value& value) {
    changeTaxa(taxa, [&](const TaxonRecord& old) {
        std::optional<RecordChange<TaxonRecord>> change;
        if (old.values.*member == value) return change;
        change.emplace(RecordChange<TaxonRecord>{old.id, old});
        change->after->values.*member = value;
        return change;
    });
}

void ObjectContext::setName(const Census& census, const std::optional<SharedText>& name) {
    set(census, &CensusAttributes::name, intern(name));
}

void ObjectContext::setLatitude(const Census& census, double degrees) {
    set(census, &CensusAttributes::latitude, degrees);
}

void ObjectContext::setLongitude(const Census& census, double degrees) {
    set(census, &CensusAttributes::longitude, degrees);
}

void ObjectContext::setNotes(const Census& census, const std::optional<SharedText>& notes) {
    set(census, &CensusAttributes::notes, notes);
}

void ObjectContext::setTimeStamp(const Census& census, std::optional<TimeStamp> timeStamp) {
    set(census, &CensusAttributes::timeStamp, timeStamp);
}

void ObjectContext::setName(const Zorvel& taxon, const std::optional<SharedText>& name) {
    set({taxon}, &TaxonValues::name, intern(name));
}

void ObjectContext::setAbundance(const Zorvel& taxon, std::int64_t abundance) {
    set({taxon}, &TaxonValues::abundance, abundance);
}

void ObjectContext::setInclude(const std::vector<Zorvel>& taxa, bool include) {
    set(taxa, &TaxonValues::include, include);
}

std::vector<Census> ObjectContext::censuses() const {
    std::vector<Census> handles;
    handles.reserve(censusCount());
    for (const auto& chunk : censuses_) {
        for (const Entry& entry : *chunk) handles.push_back(Census(this, entry.id));
    }
    return handles;
}

std::vector<Zorvel> ObjectContext::taxa() const {
    std::vector<Zorvel> handles;
    for (const Census& census : censuses()) {
        const std::vector<Zorvel> taxa = census.taxa();
        handles.insert(handles.end(), taxa.begin(), taxa.end());
    }
    return handles;
}

std::size_t ObjectContext::censusCount() const {
    std::size_t count = 0;
    for (const auto& chunk : censuses_) count += chunk->size();
    return count;
}

std::optional<Census> ObjectContext::census(RecordId id) const {
    if (!find(id)) return std::nullopt;
    return Census(this, id);
}

std::shared_ptr<const ObjectContext> ObjectContext::frozenCopy(const Edits& edits) const {
    auto copy = std::make_shared<ObjectContext>();
    copy->censuses_ = censuses_;
    if (edits) edits(*copy);
    copy->history_ = History();
    return copy;
}

std::vector<BlockPointer> ObjectContext::blocks() const {
    std::vector<BlockPointer> all;
    all.reserve(censusCount());
    for (const auto& chunk : censuses_) {
        for (const Entry& entry : *chunk) all.push_back(entry.block);
    }
    return all;
}

void ObjectContext::adopt(ProjectRecords records) {
    names_ = records.names ? std::move(records.names) : std::make_shared<NamePool>();
    history_ = History();
    unannounced_ = ChangeLog();
    ++revision_;
    Chunk<Entry> entries;
    entries.reserve(records.censuses.size());
    for (BlockPointer& block : records.censuses) {
        nextId_ = std::max(nextId_, block->id + 1);
        if (!block->chunks.empty()) {
            nextId_ = std::max(nextId_, block->chunks.back()->back().id + 1);
        }
        const RecordId id = block->id;
        entries.push_back({id, std::move(block)});
    }
    censuses_.clear();
    appendInChunks(censuses_, std::move(entries), censusesPerChunk);
}

std::optional<SharedText> ObjectContext::intern(const std::optional<SharedText>& name) const {
    return name ? std::optional(names_->intern(*name)) : std::nullopt;
}

void ObjectContext::change(const ChangeSet& changes) {
    history_.record(changes);
    apply(changes);
}

void ObjectContext::apply(const ChangeSet& changes) {
    if (changes.empty()) return;
    const bool first = unannounced_.empty();
    std::vector<RecordChange<Entry>> entries;
    entries.reserve(changes.size());
    for (const CensusChange& change : changes) {
        RecordChange<Entry>& entry = entries.emplace_back();
        entry.id = change.census;
        if (change.after) entry.after = Entry{change.census, change.after};
        unannounced_.add(change);
    }
    changeRecords(censuses_, std::move(entries), censusesPerChunk);
    ++revision_;
    if (first && onFirstChange_) onFirstChange_();
}

void ObjectContext::undo() {
    if (canUndo()) apply(history_.undo());
}

void ObjectContext::redo() {
    if (canRedo()) apply(history_.redo());
}

ChangeSet ObjectContext::changesSince(const ObjectContext& earlier) const {
    ChangeSet changes;
    forEachRecordChange(
        earlier.censuses_, censuses_,
        [](const Entry& a, const Entry& b) {
            return a.block == b.block || sameBlock(*a.block, *b.block);
        },
        [&](const Entry* before, const Entry* after) {
            changes.push_back({(before ? before : after)->id, before ? before->block : nullptr,
                               after ? after->block : nullptr});
        });
    return changes;
}

void ObjectContext::changeTo(const ObjectContext& earlier) {
    change(earlier.changesSince(*this));
}

ObjectContext::ObserverId ObjectContext::addObserver(ChangeObserver observer) {
    const ObserverId id = nextObserver_++;
    observers_.emplace(id, std::move(observer));
    return id;
}

void ObjectContext::announceChanges() {
    if (announcing_) return;
    const ChangeSet changes = unannounced_.take();
    if (changes.empty()) return;
    announcing_ = true;
    std::vector<ObserverId> known;
    for (const auto& [id, observer] : observers_) known.push_back(id);
    for (const ObserverId id : known) {
        const auto found = observers_.find(id);
        if (found == observers_.end()) continue;
        const ChangeObserver observer = found->second;
        observer(changes);
    }
    announcing_ = false;
}

}  // namespace zorvel
