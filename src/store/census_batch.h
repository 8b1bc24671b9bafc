// Whole censuses made away from their context, in numbers that would keep the main thread waiting:
// the context hands out a batch that knows which identities are its own and which names there are
// already, any one thread fills it, and the context takes it back as one change. The context may
// change meanwhile. A batch that is never taken back leaves nothing behind.
#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "store/census_block.h"
#include "store/change_set.h"
#include "store/text_set.h"

namespace zorvel {

// Sets of names that will not change any more.
using NameLayers = std::vector<std::shared_ptr<const TextSet>>;

class CensusBatch {
  public:
    // The identities [first, end) are the batch's own.
    CensusBatch(RecordId first, RecordId end, NameLayers known)
        : next_(first), end_(end), known_(std::move(known)) {}

    // At the end of the batch. False, and nothing is added, where the batch was made for fewer
    // records.
    bool add(CensusAttributes attributes, std::vector<TaxonValues> taxa);

    [[nodiscard]] std::size_t censusCount() const { return changes_.size(); }

  private:
    friend class ObjectContext;
    SharedText intern(const SharedText& name);

    RecordId next_;
    RecordId end_;
    NameLayers known_;
    TextSet newNames_;
    ChangeSet changes_;
};

}  // namespace zorvel
