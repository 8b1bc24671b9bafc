#include "store/block_builder.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "store/chunk_list.h"

namespace zorvel {

BlockBuilder::BlockBuilder() {
    waiting_.reserve(taxaPerChunk);
}

void BlockBuilder::addCensus(RecordId id, CensusAttributes attributes) {
    auto block = std::make_shared<CensusBlock>();
    block->id = id;
    block->attributes = std::move(attributes);
    censuses_.push_back({id, std::move(block), nullptr});
}

bool BlockBuilder::isCensus(RecordId id) {
    while (passed_ < censuses_.size() && censuses_[passed_].id < id) ++passed_;
    return passed_ < censuses_.size() && censuses_[passed_].id == id;
}

bool BlockBuilder::addTaxon(RecordId census, TaxonRecord taxon) {
    const bool entered = room_ > 0 && censuses_[current_].id == census;
    if (!entered && !enter(census)) return false;
    waiting_.push_back(std::move(taxon));
    if (waiting_.size() == room_) flush();
    return true;
}

bool BlockBuilder::enter(RecordId census) {
    flush();
    const auto next =
        current_ + 1 < censuses_.size() && censuses_[current_ + 1].id == census
            ? censuses_.begin() + static_cast<std::ptrdiff_t>(current_) + 1
            : std::lower_bound(censuses_.begin(), censuses_.end(), census,
                               [](const Open& open, RecordId wanted) { return open.id < wanted; });
    if (next == censuses_.end() || next->id != census) return false;
    current_ = static_cast<std::size_t>(next - censuses_.begin());
    room_ = taxaPerChunk - (next->chunk ? next->chunk->size() : 0);
    return true;
}

void BlockBuilder::flush() {
    room_ = 0;
    if (waiting_.empty()) return;
    Open& open = censuses_[current_];
    const auto first = std::make_move_iterator(waiting_.begin());
    const auto last = std::make_move_iterator(waiting_.end());
    if (open.chunk) {
        open.chunk->insert(open.chunk->end(), first, last);
    } else {
        open.chunk = std::make_shared<TaxonChunk>(first, last);
        open.block->chunks.push_back(open.chunk);
    }
    waiting_.clear();
    if (open.chunk->size() == taxaPerChunk) {
        open.chunk->shrink_to_fit();
        open.chunk = nullptr;
    }
}

std::vector<BlockPointer> BlockBuilder::take() {
    flush();
    std::vector<BlockPointer> blocks;
    blocks.reserve(censuses_.size());
    for (Open& open : censuses_) {
        if (open.chunk) open.chunk->shrink_to_fit();
        open.block->chunks.shrink_to_fit();
        blocks.push_back(std::move(open.block));
    }
    censuses_.clear();
    return blocks;
}

}  // namespace zorvel
