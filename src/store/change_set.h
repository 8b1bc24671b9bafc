// What has changed in a project: the censuses that differ, each as the block that it was and the
// block that it became. One form serves undo, the notices to the windows, and the writer of the
// project file. Immutable values; safe on any thread.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <vector>

#include "store/census_block.h"

namespace zorvel {

using BlockPointer = std::shared_ptr<const CensusBlock>;

// A null block stands for no census; one of the two is always there.
struct CensusChange {
    RecordId census = 0;
    BlockPointer before;
    BlockPointer after;

    [[nodiscard]] bool inserted() const { return !before; }
    [[nodiscard]] bool deleted() const { return !after; }
};

// One entry a census, ascending by identity.
using ChangeSet = std::vector<CensusChange>;

// The change that leads from one list of censuses to another, both ascending by identity. A census
// whose block is the same one in both is no change.
ChangeSet changesBetween(const std::vector<BlockPointer>& before,
                         const std::vector<BlockPointer>& after);

// The same changes the other way round.
ChangeSet reversed(const ChangeSet& changes);

// Gathers changes one after the other: of a census that changes often, the first before and the
// last after are kept.
class ChangeLog {
  public:
    void add(RecordId census, const BlockPointer& before, const BlockPointer& after);
    [[nodiscard]] bool empty() const { return changes_.empty(); }
    // What has come of it, without what came to nothing; the log is empty afterwards.
    ChangeSet take();

  private:
    std::map<RecordId, CensusChange> changes_;
};

// Reads the taxa of a block in order, and can step over a chunk as a whole. The block must live.
class TaxonWalk {
  public:
    // A null block has no taxa.
    explicit TaxonWalk(const CensusBlock* block) : block_(block) {}
    [[nodiscard]] bool atEnd() const { return !block_ || chunk_ == block_->chunks.size(); }
    [[nodiscard]] const TaxonRecord& taxon() const { return (*block_->chunks[chunk_])[place_]; }
    [[nodiscard]] const TaxonChunk* chunkAhead() const {
        return place_ == 0 ? block_->chunks[chunk_].get() : nullptr;
    }
    void skipChunk() {
        ++chunk_;
        place_ = 0;
    }
    void next() {
        if (++place_ == block_->chunks[chunk_]->size()) skipChunk();
    }

  private:
    const CensusBlock* block_;
    std::size_t chunk_ = 0;
    std::size_t place_ = 0;
};

// Calls visit(const TaxonRecord* before, const TaxonRecord* after) for each taxon that is inserted
// (before null), deleted (after null) or of other values, ascending by identity. A null block has
// no taxa. Chunks that both blocks share cost nothing.
template <class Visit>
void forEachTaxonChange(const CensusBlock* before, const CensusBlock* after, Visit&& visit) {
    TaxonWalk old(before);
    TaxonWalk now(after);
    while (!old.atEnd() && !now.atEnd()) {
        if (old.chunkAhead() && old.chunkAhead() == now.chunkAhead()) {
            old.skipChunk();
            now.skipChunk();
        } else if (old.taxon().id < now.taxon().id) {
            visit(&old.taxon(), nullptr);
            old.next();
        } else if (now.taxon().id < old.taxon().id) {
            visit(nullptr, &now.taxon());
            now.next();
        } else {
            if (!(old.taxon().values == now.taxon().values)) visit(&old.taxon(), &now.taxon());
            old.next();
            now.next();
        }
    }
    for (; !old.atEnd(); old.next()) visit(&old.taxon(), nullptr);
    for (; !now.atEnd(); now.next()) visit(nullptr, &now.taxon());
}

}  // namespace zorvel
