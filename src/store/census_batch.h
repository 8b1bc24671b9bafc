// Whole censuses made away from their context, in numbers that would keep the main thread waiting:
// any one thread fills a batch, and the context takes it back as one change, or adopts its blocks.
// The context may change meanwhile. A batch that is never taken back leaves nothing behind.
#pragma once

#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "store/change_set.h"

namespace zorvel {

class CensusBatch {
  public:
    // The identities [first, end) are the batch's own.
    CensusBatch(RecordId first, RecordId end) : next_(first), end_(end) {}

    // At the end of the batch, with as many taxa, of the values valuesOf(0), valuesOf(1) ... The
    // names should be those of the context's pool. False, and nothing is added, where the batch was
    // made for fewer records.
    bool add(CensusAttributes attributes, std::size_t taxa,
             const std::function<TaxonValues(std::size_t)>& valuesOf);

    [[nodiscard]] std::size_t censusCount() const { return blocks_.size(); }
    // The censuses; the batch is empty afterwards.
    [[nodiscard]] std::vector<BlockPointer> take() { return std::exchange(blocks_, {}); }

  private:
    RecordId next_;
    RecordId end_;
    std::vector<BlockPointer> blocks_;
};

}  // namespace zorvel
