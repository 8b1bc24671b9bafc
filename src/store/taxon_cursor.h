// Reads the records of many taxa one after the other. Remembers where the last one stood, so that
// taxa in the order of their census cost no search. For one operation on one thread: the contexts
// of the taxa must live and not change meanwhile.
#pragma once

#include <cstddef>

#include "store/object_context.h"

namespace zorvel {

class TaxonCursor {
  public:
    // The record, whose census is block() from then on; null where the taxon is gone.
    const TaxonRecord* find(const Zorvel& taxon);

    // The census of the taxon last found.
    [[nodiscard]] const CensusBlock& block() const { return *block_; }

  private:
    const TaxonRecord* nextInOrder(RecordId id);
    void enter(const Zorvel& taxon);

    const ObjectContext* context_ = nullptr;
    RecordId census_ = 0;
    const CensusBlock* block_ = nullptr;
    std::size_t chunk_ = 0;
    std::size_t place_ = 0;  // of the expected next taxon, in its chunk
};

}  // namespace zorvel
