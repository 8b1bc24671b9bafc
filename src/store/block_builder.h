// Builds the blocks of a project from its censuses, and then its taxa in the order of their
// identities, whatever census each belongs to. Chunks take no more memory than they need.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "store/change_set.h"

namespace zorvel {

class BlockBuilder {
  public:
    BlockBuilder();
    // Identities must ascend.
    void addCensus(RecordId id, CensusAttributes attributes);
    // Whether that is the identity of a census. Identities must ascend from call to call.
    bool isCensus(RecordId id);
    // False where there is no such census. Identities must ascend.
    bool addTaxon(RecordId census, TaxonRecord taxon);

    std::vector<BlockPointer> take();

  private:
    struct Open {
        RecordId id = 0;
        std::shared_ptr<CensusBlock> block;
        // The block's last chunk, which grows until it is full.
        std::shared_ptr<TaxonChunk> chunk;
    };
    bool enter(RecordId census);
    // Moves what waits to the current census.
    void flush();

    std::vector<Open> censuses_;
    std::size_t current_ = 0;
    std::size_t passed_ = 0;  // censuses that isCensus() has left behind
    // Taxa of the current census on their way to its chunk, and how many fit there.
    TaxonChunk waiting_;
    std::size_t room_ = 0;
};

}  // namespace zorvel
