// The handles, which find their record in the context at each read; batches.
#include <memory>

#include "store/object_context.h"

namespace zorvel {

const BlockPointer& Census::found() const {
    static const BlockPointer none = std::make_shared<const CensusBlock>();
    const BlockPointer* block = context_->find(id_);
    return block ? *block : none;
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

const TaxonValues& Zorvel::found() const {
    static const TaxonValues none;
    const BlockPointer* block = context_->find(census_);
    const TaxonRecord* taxon = block ? findRecord((*block)->chunks, id_) : nullptr;
    return taxon ? taxon->values : none;
}

std::optional<Census> Zorvel::census() const {
    const Census census(context_, census_);
    return census.taxon(id_) ? std::optional(census) : std::nullopt;
}

bool CensusBatch::add(CensusAttributes attributes, std::size_t taxa,
                      const std::function<TaxonValues(std::size_t)>& valuesOf) {
    if (end_ - next_ <= taxa) return false;
    auto block = std::make_shared<CensusBlock>();
    block->id = next_++;
    block->attributes = std::move(attributes);
    Chunk<TaxonRecord> records;
    records.reserve(taxa);
    for (std::size_t i = 0; i < taxa; ++i) records.push_back({next_++, valuesOf(i)});
    appendInChunks(block->chunks, std::move(records), taxaPerChunk);
    blocks_.push_back(std::move(block));
    return true;
}

}  // namespace zorvel
