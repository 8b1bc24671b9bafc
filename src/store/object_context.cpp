#include "store/object_context.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "store/context_state.h"

namespace zorvel {
namespace {

template <class Value>
bool sameValue(const Value& a, const Value& b) {
    return a == b;
}

// Not a number is the same as not a number; 0 and -0 differ.
bool sameValue(double a, double b) {
    return a == b ? std::signbit(a) == std::signbit(b) : std::isnan(a) && std::isnan(b);
}

}  // namespace

ObjectContext::ObjectContext() : state_(std::make_unique<State>()) {}
ObjectContext::~ObjectContext() = default;

Census ObjectContext::insertCensus() {
    return insertCensus(CensusAttributes{}, {});
}

Census ObjectContext::insertCensus(const CensusAttributes& attributes,
                                   const std::vector<TaxonValues>& taxa) {
    auto block = std::make_shared<CensusBlock>();
    block->id = state_->newId();
    block->attributes = attributes;
    block->attributes.name = state_->names.intern(attributes.name);
    for (std::size_t start = 0; start < taxa.size(); start += taxaPerChunk) {
        auto chunk = std::make_shared<TaxonChunk>();
        const std::size_t end = std::min(start + taxaPerChunk, taxa.size());
        chunk->reserve(end - start);
        for (std::size_t i = start; i < end; ++i) {
            TaxonRecord& record = chunk->emplace_back();
            record.id = state_->newId();
            record.values = taxa[i];
            record.values.name = state_->names.intern(taxa[i].name);
        }
        block->chunks.push_back(std::move(chunk));
    }
    const RecordId id = block->id;
    state_->put(id, std::move(block));
    return Census(this, id);
}

Zorvel ObjectContext::insertTaxon(const Census& census) {
    const BlockPointer* before = own(census);
    if (!before) return Zorvel(this, 0, 0);
    TaxonRecord taxon;
    taxon.id = state_->newId();
    state_->put(census.id_, withTaxonAppended(**before, taxon));
    return Zorvel(this, census.id_, taxon.id);
}

void ObjectContext::deleteCensus(const Census& census) {
    if (own(census)) state_->put(census.id_, nullptr);
}

void ObjectContext::deleteTaxon(const Zorvel& taxon) {
    const BlockPointer* before = own(Census(taxon.context_, taxon.census_));
    if (!before || !findTaxon(**before, taxon.id_)) return;
    state_->put(taxon.census_, withoutTaxon(**before, taxon.id_));
}

const std::shared_ptr<const CensusBlock>* ObjectContext::own(const Census& census) const {
    return census.context_ == this ? state_->find(census.id_) : nullptr;
}

template <class Value>
void ObjectContext::set(const Census& census, Value CensusAttributes::*member, const Value& value) {
    const BlockPointer* before = own(census);
    if (!before || sameValue((*before)->attributes.*member, value)) return;
    auto after = std::make_shared<CensusBlock>(**before);
    after->attributes.*member = value;
    state_->put(census.id_, std::move(after));
}

template <class Value>
void ObjectContext::set(const Zorvel& taxon, Value TaxonValues::*member, const Value& value) {
    const BlockPointer* before = own(Census(taxon.context_, taxon.census_));
    const TaxonRecord* found = before ? findTaxon(**before, taxon.id_) : nullptr;
    if (!found || found->values.*member == value) return;
    TaxonCopy copy = withTaxonCopied(**before, taxon.id_);
    copy.taxon->values.*member = value;
    state_->put(taxon.census_, std::move(copy.block));
}

void ObjectContext::setName(const Census& census, const std::optional<SharedText>& name) {
    set(census, &CensusAttributes::name, state_->names.intern(name));
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
    set(taxon, &TaxonValues::name, state_->names.intern(name));
}

void ObjectContext::setAbundance(const Zorvel& taxon, std::int64_t abundance) {
    set(taxon, &TaxonValues::abundance, abundance);
}

void ObjectContext::setInclude(const Zorvel& taxon, bool include) {
    set(taxon, &TaxonValues::include, include);
}

std::vector<Census> ObjectContext::censuses() const {
    std::vector<Census> handles;
    handles.reserve(state_->censuses.size());
    for (const State::Entry& entry : state_->censuses) handles.push_back(Census(this, entry.id));
    return handles;
}

std::vector<Zorvel> ObjectContext::taxa() const {
    std::size_t count = 0;
    for (const State::Entry& entry : state_->censuses) count += entry.block->taxonCount();
    std::vector<Zorvel> handles;
    handles.reserve(count);
    for (const State::Entry& entry : state_->censuses) {
        entry.block->forEachTaxon(
            [&](const TaxonRecord& taxon) { handles.push_back(Zorvel(this, entry.id, taxon.id)); });
    }
    return handles;
}

std::size_t ObjectContext::censusCount() const {
    return state_->censuses.size();
}

std::optional<Census> ObjectContext::census(RecordId id) const {
    if (!state_->find(id)) return std::nullopt;
    return Census(this, id);
}

std::shared_ptr<const ObjectContext> ObjectContext::frozenCopy() const {
    auto copy = std::make_shared<ObjectContext>();
    copy->state_->censuses = state_->censuses;
    return copy;
}

std::vector<BlockPointer> ObjectContext::blocks() const {
    std::vector<BlockPointer> all;
    all.reserve(state_->censuses.size());
    for (const State::Entry& entry : state_->censuses) all.push_back(entry.block);
    return all;
}

ProjectRecords ObjectContext::records() const {
    return {blocks(), state_->names.all()};
}

void ObjectContext::adopt(ProjectRecords records) {
    auto state = std::make_unique<State>();
    state->observers = std::move(state_->observers);
    state->nextObserver = state_->nextObserver;
    state->onFirstChange = std::move(state_->onFirstChange);
    state->nextId = state_->nextId;
    state->revision = state_->revision + 1;
    for (const SharedText& name : records.names) state->names.intern(name);
    state->censuses.reserve(records.censuses.size());
    for (BlockPointer& block : records.censuses) {
        state->nextId = std::max(state->nextId, block->id + 1);
        if (!block->chunks.empty()) {
            state->nextId = std::max(state->nextId, block->chunks.back()->back().id + 1);
        }
        const RecordId id = block->id;
        state->censuses.push_back({id, std::move(block)});
    }
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

void ObjectContext::changeTo(const ObjectContext& earlier) {
    for (const CensusChange& change : changesBetween(blocks(), earlier.blocks())) {
        state_->put(change.census, change.after);
    }
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
    const ChangeSet changes = state_->unannounced.take();
    if (changes.empty()) return;
    std::vector<ObserverId> known;
    for (const auto& [id, observer] : state_->observers) known.push_back(id);
    for (const ObserverId id : known) {
        const auto found = state_->observers.find(id);
        if (found == state_->observers.end()) continue;
        const ChangeObserver observer = found->second;
        observer(changes);
    }
}

void ObjectContext::setFirstChangeHandler(std::function<void()> handler) {
    state_->onFirstChange = std::move(handler);
}

}  // namespace zorvel
