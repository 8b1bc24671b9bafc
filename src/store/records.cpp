// The handles, which find their record in the context at each read; the cursor over taxa; batches.
#include <algorithm>
#include <memory>

#include "store/object_context.h"

namespace zorvel {
namespace {

const BlockPointer& emptyBlock() {
    static const BlockPointer block = std::make_shared<const CensusBlock>();
    return block;
}

}  // namespace

bool Census::exists() const {
    return context_->find(id_) != nullptr;
}

const BlockPointer& Census::found() const {
    const BlockPointer* block = context_->find(id_);
    return block ? *block : emptyBlock();
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

bool Zorvel::exists() const {
    const BlockPointer* block = context_->find(census_);
    return block && findRecord((*block)->chunks, id_);
}

std::optional<Census> Zorvel::census() const {
    if (!exists()) return std::nullopt;
    return Census(context_, census_);
}

const TaxonRecord* TaxonCursor::find(const Zorvel& taxon) {
    if (taxon.context_ != context_ || taxon.census_ != census_) {
        context_ = taxon.context_;
        census_ = taxon.census_;
        const BlockPointer* block = context_->find(census_);
        block_ = block ? block->get() : nullptr;
        next_.reset();
        if (block_) next_.emplace(block_->chunks);
    }
    if (!block_) return nullptr;
    if (next_->atEnd() || next_->record().id != taxon.id_) {
        return findRecord(block_->chunks, taxon.id_);
    }
    const TaxonRecord* record = &next_->record();
    next_->next();
    return record;
}

bool CensusBatch::add(CensusAttributes attributes, std::size_t taxa,
                      const std::function<TaxonValues(std::size_t)>& valuesOf) {
    if (end_ - next_ <= taxa) return false;
    auto block = std::make_shared<CensusBlock>();
    block->id = next_++;
    block->attributes = std::move(attributes);
    block->chunks.reserve((taxa + taxaPerChunk - 1) / taxaPerChunk);
    for (std::size_t start = 0; start < taxa; start += taxaPerChunk) {
        auto chunk = std::make_shared<TaxonChunk>();
        const std::size_t end = std::min(taxa, start + taxaPerChunk);
        chunk->reserve(end - start);
        for (std::size_t i = start; i < end; ++i) chunk->push_back({next_++, valuesOf(i)});
        block->chunks.push_back(std::move(chunk));
    }
    blocks_.push_back(std::move(block));
    return true;
}

}  // namespace zorvel
