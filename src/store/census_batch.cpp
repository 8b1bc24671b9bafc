#include "store/census_batch.h"

#include <algorithm>
#include <memory>

namespace zorvel {

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
