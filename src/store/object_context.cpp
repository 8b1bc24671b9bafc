#include "store/object_context.h"

#include <algorithm>
#include <utility>

#include "store/context_state.h"

namespace zorvel {
namespace {

template <class Value>
bool sameValue(const Value& a, const Value& b) {
    return a == b;
}

}  // namespace

ObjectContext::ObjectContext() : state_(std::make_unique<State>()) {}
ObjectContext::~ObjectContext() = default;

Census ObjectContext::insertCensus() {
    return insertCensus(CensusAttributes{}, {});
}

Census ObjectContext::insertCensus(const CensusAttributes& attributes,
                                   std::vector<TaxonValues> taxa) {
    auto block = std::make_shared<CensusBlock>();
    block->id = state_->newId();
    block->attributes = attributes;
    block->attributes.name = state_->intern(attributes.name);
    appendInChunks(block->chunks, newRecords(std::move(taxa)), taxaPerChunk);
    const RecordId id = block->id;
    state_->change({{id, nullptr, std::move(block)}});
    return Census(this, id);
}

std::shared_ptr<CensusBatch> ObjectContext::newBatch(std::size_t records) {
    const RecordId first = state_->nextId;
    state_->nextId += records;
    return std::make_shared<CensusBatch>(first, state_->nextId);
}

void ObjectContext::insertCensuses(CensusBatch& batch) {
    ChangeSet changes;
    changes.reserve(batch.censusCount());
    for (BlockPointer& block : batch.take()) {
        const RecordId id = block->id;
        changes.push_back({id, nullptr, std::move(block)});
    }
    state_->change(std::move(changes));
}

std::vector<TaxonRecord> ObjectContext::newRecords(std::vector<TaxonValues> taxa) {
    std::vector<TaxonRecord> records;
    records.reserve(taxa.size());
    for (TaxonValues& values : taxa) {
        values.name = state_->intern(values.name);
        records.push_back({state_->newId(), std::move(values)});
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
    state_->change({{census.id_, before, withTaxa(*before, std::move(changes))}});
    return handles;
}

void ObjectContext::deleteCensuses(const std::vector<Census>& censuses) {
    ChangeLog gone;
    for (const Census& census : censuses) {
        if (const BlockPointer* before = own(census)) gone.add({census.id_, *before, nullptr});
    }
    state_->change(gone.take());
}

void ObjectContext::deleteTaxa(const std::vector<Zorvel>& taxa) {
    changeTaxa(taxa, [](const TaxonRecord& old) {
        return std::optional(RecordChange<TaxonRecord>{old.id, std::nullopt});
    });
}

template <class Edit>
void ObjectContext::changeTaxa(std::vector<Zorvel> taxa, Edit&& edit) {
    taxa.erase(std::remove_if(taxa.begin(), taxa.end(),
                              [&](const Zorvel& taxon) { return taxon.context_ != this; }),
               taxa.end());
    std::sort(taxa.begin(), taxa.end(), [](const Zorvel& a, const Zorvel& b) {
        return a.census_ != b.census_ ? a.census_ < b.census_ : a.id_ < b.id_;
    });
    taxa.erase(std::unique(taxa.begin(), taxa.end()), taxa.end());
    ChangeSet changes;
    std::vector<RecordChange<TaxonRecord>> edits;  // of one census
    TaxonCursor cursor;
    for (std::size_t i = 0; i < taxa.size(); ++i) {
        if (const TaxonRecord* old = cursor.find(taxa[i])) {
            if (auto change = edit(*old)) edits.push_back(std::move(*change));
        }
        const RecordId census = taxa[i].census_;
        const bool last = i + 1 == taxa.size() || taxa[i + 1].census_ != census;
        if (!last || edits.empty()) continue;
        const BlockPointer& before = *state_->find(census);
        changes.push_back({census, before, withTaxa(*before, std::move(edits))});
        edits.clear();
    }
    state_->change(std::move(changes));
}

const BlockPointer* ObjectContext::own(const Census& census) const {
    return census.context_ == this ? state_->find(census.id_) : nullptr;
}

template <class Value>
void ObjectContext::set(const Census& census, Value CensusAttributes::*member, const Value& value) {
    const BlockPointer* found = own(census);
    if (!found || sameValue((*found)->attributes.*member, value)) return;
    const BlockPointer before = *found;
    auto after = std::make_shared<CensusBlock>(*before);
    after->attributes.*member = value;
    state_->change({{census.id_, before, std::move(after)}});
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
    set(census, &CensusAttributes::name, state_->intern(name));
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
    set({taxon}, &TaxonValues::name, state_->intern(name));
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
    state_->forEachCensus(
        [&](const State::Entry& entry) { handles.push_back(Census(this, entry.id)); });
    return handles;
}

std::vector<Zorvel> ObjectContext::taxa() const {
    std::size_t count = 0;
    state_->forEachCensus([&](const State::Entry& entry) { count += entry.block->taxonCount(); });
    std::vector<Zorvel> handles;
    handles.reserve(count);
    state_->forEachCensus([&](const State::Entry& entry) {
        entry.block->forEachTaxon(
            [&](const TaxonRecord& taxon) { handles.push_back(Zorvel(this, entry.id, taxon.id)); });
    });
    return handles;
}

std::size_t ObjectContext::censusCount() const {
    std::size_t count = 0;
    for (const auto& chunk : state_->censuses) count += chunk->size();
    return count;
}

std::optional<Census> ObjectContext::census(RecordId id) const {
    if (!state_->find(id)) return std::nullopt;
    return Census(this, id);
}

std::shared_ptr<const ObjectContext> ObjectContext::frozenCopy() const {
    return frozenCopy({});
}

std::shared_ptr<const ObjectContext> ObjectContext::frozenCopy(const Edits& edits) const {
    auto copy = std::make_shared<ObjectContext>();
    copy->state_->censuses = state_->censuses;
    if (edits) edits(*copy);
    copy->state_->history.forget();
    return copy;
}

std::vector<BlockPointer> ObjectContext::blocks() const {
    std::vector<BlockPointer> all;
    all.reserve(censusCount());
    state_->forEachCensus([&](const State::Entry& entry) { all.push_back(entry.block); });
    return all;
}

std::shared_ptr<NamePool> ObjectContext::names() const {
    return state_->names;
}

ProjectRecords ObjectContext::records() const {
    return {blocks(), state_->names};
}

void ObjectContext::adopt(ProjectRecords records) {
    auto state = std::make_unique<State>();
    state->observers = std::move(state_->observers);
    state->nextObserver = state_->nextObserver;
    state->onFirstChange = std::move(state_->onFirstChange);
    state->nextId = state_->nextId;
    state->revision = state_->revision + 1;
    if (records.names) state->names = std::move(records.names);
    Chunk<State::Entry> entries;
    entries.reserve(records.censuses.size());
    for (BlockPointer& block : records.censuses) {
        state->nextId = std::max(state->nextId, block->id + 1);
        if (!block->chunks.empty()) {
            state->nextId = std::max(state->nextId, block->chunks.back()->back().id + 1);
        }
        const RecordId id = block->id;
        entries.push_back({id, std::move(block)});
    }
    appendInChunks(state->censuses, std::move(entries), censusesPerChunk);
    state_ = std::move(state);
}

void ObjectContext::beginStep(std::string name) {
    state_->history.beginStep(std::move(name));
}

void ObjectContext::endStep() {
    state_->history.endStep();
}

bool ObjectContext::isStepOpen() const {
    return state_->history.isStepOpen();
}

bool ObjectContext::canUndo() const {
    return state_->history.canUndo();
}

bool ObjectContext::canRedo() const {
    return state_->history.canRedo();
}

std::string ObjectContext::undoName() const {
    return state_->history.undoName();
}

std::string ObjectContext::redoName() const {
    return state_->history.redoName();
}

void ObjectContext::undo() {
    if (canUndo()) state_->apply(state_->history.undo());
}

void ObjectContext::redo() {
    if (canRedo()) state_->apply(state_->history.redo());
}

ChangeSet ObjectContext::changesSince(const ObjectContext& earlier) const {
    ChangeSet changes;
    forEachRecordChange(
        earlier.state_->censuses, state_->censuses,
        [](const State::Entry& a, const State::Entry& b) {
            return a.block == b.block || sameBlock(*a.block, *b.block);
        },
        [&](const State::Entry* before, const State::Entry* after) {
            changes.push_back({(before ? before : after)->id, before ? before->block : nullptr,
                               after ? after->block : nullptr});
        });
    return changes;
}

void ObjectContext::changeTo(const ObjectContext& earlier) {
    state_->change(earlier.changesSince(*this));
}

std::uint64_t ObjectContext::revision() const {
    return state_->revision;
}

ObjectContext::ObserverId ObjectContext::addObserver(ChangeObserver observer) {
    const ObserverId id = state_->nextObserver++;
    state_->observers.emplace(id, std::move(observer));
    return id;
}

void ObjectContext::removeObserver(ObserverId observer) {
    state_->observers.erase(observer);
}

void ObjectContext::announceChanges() {
    if (announcing_) return;
    const ChangeSet changes = state_->unannounced.take();
    if (changes.empty()) return;
    announcing_ = true;
    std::vector<ObserverId> known;
    for (const auto& [id, observer] : state_->observers) known.push_back(id);
    for (const ObserverId id : known) {
        const auto found = state_->observers.find(id);
        if (found == state_->observers.end()) continue;
        const ChangeObserver observer = found->second;
        observer(changes);
    }
    announcing_ = false;
}

void ObjectContext::setFirstChangeHandler(std::function<void()> handler) {
    state_->onFirstChange = std::move(handler);
}

}  // namespace zorvel
