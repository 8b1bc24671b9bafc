// What has changed in a project: the censuses that differ, each as the block that it was and the
// block that it became. One form serves undo, the notices to the windows, and the writer of the
// project file. Immutable values; safe on any thread.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
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

// What can be undone and redone: the steps since the project was opened, each the changes between
// its beginning and its end. It keeps blocks and applies nothing itself.
class History {
  public:
    // Steps nest; the outermost one has the name and becomes one entry, if anything changed.
    void beginStep(std::string name);
    void endStep();
    [[nodiscard]] bool isStepOpen() const { return depth_ > 0; }

    // Changes that were made. Outside a step they are one by themselves, without a name.
    void record(const ChangeSet& changes);

    [[nodiscard]] bool canUndo() const { return depth_ == 0 && !done_.empty(); }
    [[nodiscard]] bool canRedo() const { return depth_ == 0 && !undone_.empty(); }
    // Empty if there is no step, or it has no name.
    [[nodiscard]] std::string undoName() const { return canUndo() ? done_.back().name : ""; }
    [[nodiscard]] std::string redoName() const { return canRedo() ? undone_.back().name : ""; }

    // The changes to make now. Only where canUndo(), canRedo().
    ChangeSet undo();
    ChangeSet redo();

  private:
    struct Step {
        std::string name;
        ChangeSet changes;
    };
    void push(Step step);

    std::vector<Step> done_;
    std::vector<Step> undone_;
    int depth_ = 0;
    std::string openName_;
    ChangeLog open_;
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
bool sameAttributes(const CensusAttributes& a, const CensusAttributes& b);
// Whether the attributes and all the taxa are the same.
bool sameBlock(const CensusBlock& a, const CensusBlock& b);

}  // namespace zorvel
