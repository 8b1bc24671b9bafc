// What an object context holds. For this folder only; the rest of the program sees ObjectContext
// and its handles. Every change of a project goes through change() or apply().
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "store/census_block.h"
#include "store/change_set.h"
#include "store/chunk_list.h"
#include "store/object_context.h"

namespace zorvel {

// What can be undone and redone: the steps since the project was opened, each the changes between
// its beginning and its end. It keeps blocks and applies nothing itself.
class History {
  public:
    // Steps nest; the outermost one has the name and becomes one entry, if anything changed.
    void beginStep(std::string name);
    void endStep();
    [[nodiscard]] bool isStepOpen() const { return depth_ > 0; }

    // Changes that were made. Outside a step they are one by themselves, without a name.
    void record(ChangeSet changes);

    [[nodiscard]] bool canUndo() const { return depth_ == 0 && !done_.empty(); }
    [[nodiscard]] bool canRedo() const { return depth_ == 0 && !undone_.empty(); }
    // Empty if there is no step, or it has no name.
    [[nodiscard]] std::string undoName() const { return canUndo() ? done_.back().name : ""; }
    [[nodiscard]] std::string redoName() const { return canRedo() ? undone_.back().name : ""; }

    // The changes to make now. Only where canUndo(), canRedo().
    ChangeSet undo();
    ChangeSet redo();

    void forget();

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

inline constexpr std::size_t censusesPerChunk = 64;

struct ObjectContext::State {
    // The id stands beside the pointer so that a search does not touch the blocks.
    struct Entry {
        RecordId id = 0;
        BlockPointer block;
    };

    // Identities grow with every insertion, so that the order of insertion is the order of the
    // identities, here and among the taxa of a census: both are found by binary search, and a
    // record that comes back takes its old place.
    ChunkList<Entry> censuses;
    RecordId nextId = 1;
    std::shared_ptr<NamePool> names = std::make_shared<NamePool>();

    RecordId newId() { return nextId++; }
    [[nodiscard]] std::optional<SharedText> intern(const std::optional<SharedText>& name) const {
        return name ? std::optional(names->intern(*name)) : std::nullopt;
    }
    [[nodiscard]] const BlockPointer* find(RecordId census) const;
    template <class Visit>
    void forEachCensus(Visit&& visit) const {
        for (const auto& chunk : censuses) {
            for (const Entry& entry : *chunk) visit(entry);
        }
    }

    // New changes, ascending by identity: they go into the history, and will be announced.
    void change(ChangeSet changes);
    // Changes that the history knows already.
    void apply(const ChangeSet& changes);

    History history;
    // Since the last announcement.
    ChangeLog unannounced;
    std::function<void()> onFirstChange;
    std::map<ObserverId, ChangeObserver> observers;
    ObserverId nextObserver = 1;
    std::uint64_t revision = 0;

  private:
    void replace(const ChangeSet& changes);
};

// A copy of block with those changes of its taxa, ascending by identity.
BlockPointer withTaxa(const CensusBlock& block, std::vector<RecordChange<TaxonRecord>> changes);

}  // namespace zorvel
