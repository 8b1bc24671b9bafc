#include "store/census_batch.h"

#include <utility>

#include "store/context_state.h"

namespace zorvel {

SharedText CensusBatch::intern(const SharedText& name) {
    if (name.empty()) return {};
    for (const auto& names : known_) {
        const auto found = names->find(name.view());
        if (found != names->end()) return *found;
    }
    return *newNames_.insert(name).first;
}

bool CensusBatch::add(CensusAttributes attributes, std::vector<TaxonValues> taxa) {
    if (end_ - next_ <= taxa.size()) return false;
    auto block = std::make_shared<CensusBlock>();
    block->id = next_++;
    block->attributes = std::move(attributes);
    if (block->attributes.name) block->attributes.name = intern(*block->attributes.name);
    std::vector<TaxonRecord> records;
    records.reserve(taxa.size());
    for (TaxonValues& values : taxa) {
        if (values.name) values.name = intern(*values.name);
        records.push_back({next_++, std::move(values)});
    }
    appendInChunks(block->chunks, std::move(records), taxaPerChunk);
    const RecordId id = block->id;
    changes_.push_back({id, nullptr, std::move(block)});
    return true;
}

}  // namespace zorvel
