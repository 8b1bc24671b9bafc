// What has changed in a project: the censuses that differ, each as the block that it was and the
// block that it became. One form serves undo, the notices to the windows, and the writer of the
// project file. Immutable values; safe on any thread.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "store/census_block.h"
#include "store/chunk_list.h"

namespace zorvel {

// A null block stands for no census; one of the two is always there.
struct CensusChange {
    RecordId census = 0;
    BlockPointer before;
    BlockPointer after;

    [[nodiscard]] bool inserted() const { return !before; }
    [[nodiscard]] bool deleted() const { return !after; }
};

// One entry per census, ascending by identity.
using ChangeSet = std::vector<CensusChange>;

// The change that leads from one list of censuses to another, both ascending by identity. A census
// whose block is the same one in both is no change.
ChangeSet changesBetween(const std::vector<BlockPointer>& before,
                         const std::vector<BlockPointer>& after);

// The same changes the other way round.
ChangeSet reversed(const ChangeSet& changes);

// Collects changes: of a census that changes repeatedly, the first block before and the last block
// after are kept. Changes that cancel out are dropped.
class ChangeLog {
  public:
    void add(const CensusChange& change);
    [[nodiscard]] bool empty() const { return changes_.empty(); }
    // The resulting changes; the log is empty afterwards.
    ChangeSet take();

  private:
    std::map<RecordId, CensusChange> changes_;
};

// Calls visit(const TaxonRecord* before, const TaxonRecord* after) for each taxon that is inserted
// (before null), deleted (after null) or of other values, ascending by identity. A null block has
// no taxa. Chunks that both blocks share cost nothing.
template <class Visit>
void forEachTaxonChange(const CensusBlock* before, const CensusBlock* after, Visit&& visit) {
    static const ChunkList<TaxonRecord> none;
    forEachRecordChange(
        before ? before->chunks : none, after ? after->chunks : none,
        [](const TaxonRecord& a, const TaxonRecord& b) { return a.values == b.values; },
        std::forward<Visit>(visit));
}

// Not a number is the same as not a number; 0 and -0 differ.
bool sameValue(double a, double b);
bool sameAttributes(const CensusAttributes& a, const CensusAttributes& b);
// Whether the attributes and all the taxa are the same.
bool sameBlock(const CensusBlock& a, const CensusBlock& b);

}  // namespace zorvel
