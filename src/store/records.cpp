// The handles: every read finds its record in the context afresh.
#include "store/context_state.h"

namespace zorvel {
namespace {

const BlockPointer& emptyBlock() {
    static const BlockPointer block = std::make_shared<const CensusBlock>();
    return block;
}

}  // namespace

bool Census::exists() const {
    return context_->state_->find(id_) != nullptr;
}

const std::shared_ptr<const CensusBlock>& Census::found() const {
    const BlockPointer* block = context_->state_->find(id_);
    return block ? *block : emptyBlock();
}

std::shared_ptr<const CensusBlock> Census::block() const {
    return found();
}

std::optional<SharedText> Census::name() const {
    return found()->attributes.name;
}

double Census::latitude() const {
    return found()->attributes.latitude;
}

double Census::longitude() const {
    return found()->attributes.longitude;
}

std::optional<SharedText> Census::notes() const {
    return found()->attributes.notes;
}

std::optional<TimeStamp> Census::timeStamp() const {
    return found()->attributes.timeStamp;
}

std::vector<Zorvel> Census::taxa() const {
    std::vector<Zorvel> handles;
    const CensusBlock& block = *found();
    handles.reserve(block.taxonCount());
    block.forEachTaxon(
        [&](const TaxonRecord& taxon) { handles.push_back(Zorvel(context_, id_, taxon.id)); });
    return handles;
}

std::optional<Zorvel> Census::taxon(RecordId id) const {
    if (!findRecord(found()->chunks, id)) return std::nullopt;
    return Zorvel(context_, id_, id);
}

std::size_t Census::taxonCount() const {
    return found()->taxonCount();
}

const TaxonValues& Zorvel::found() const {
    static const TaxonValues none;
    const BlockPointer* block = context_->state_->find(census_);
    const TaxonRecord* taxon = block ? findRecord((*block)->chunks, id_) : nullptr;
    return taxon ? taxon->values : none;
}

bool Zorvel::exists() const {
    const BlockPointer* block = context_->state_->find(census_);
    return block && findRecord((*block)->chunks, id_);
}

std::optional<SharedText> Zorvel::name() const {
    return found().name;
}

std::int64_t Zorvel::abundance() const {
    return found().abundance;
}

bool Zorvel::include() const {
    return found().include;
}

std::optional<Census> Zorvel::census() const {
    if (!exists()) return std::nullopt;
    return Census(context_, census_);
}

}  // namespace zorvel
