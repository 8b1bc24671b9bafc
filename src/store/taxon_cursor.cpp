#include "store/taxon_cursor.h"

#include "store/context_state.h"

namespace zorvel {

const TaxonRecord* TaxonCursor::find(const Zorvel& taxon) {
    if (taxon.context_ != context_ || taxon.census_ != census_) enter(taxon);
    if (!block_) return nullptr;
    const TaxonRecord* next = nextInOrder(taxon.id_);
    return next ? next : findRecord(block_->chunks, taxon.id_);
}

void TaxonCursor::enter(const Zorvel& taxon) {
    context_ = taxon.context_;
    census_ = taxon.census_;
    const BlockPointer* block = context_->state_->find(census_);
    block_ = block ? block->get() : nullptr;
    chunk_ = 0;
    place_ = 0;
}

const TaxonRecord* TaxonCursor::nextInOrder(RecordId id) {
    if (chunk_ == block_->chunks.size()) return nullptr;
    const TaxonChunk& chunk = *block_->chunks[chunk_];
    if (chunk[place_].id != id) return nullptr;
    const TaxonRecord* record = &chunk[place_];
    if (++place_ == chunk.size()) {
        ++chunk_;
        place_ = 0;
    }
    return record;
}

}  // namespace zorvel
