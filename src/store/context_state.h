// What an object context holds. For this folder only; the rest of the program sees ObjectContext
// and its handles. Every change of a project goes through put(), one census at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "store/census_block.h"
#include "store/change_set.h"
#include "store/history.h"
#include "store/object_context.h"

namespace zorvel {

// Names kept once by their bytes. Never shrinks: a project holds few names that it has not shown.
class NamePool {
  public:
    SharedText intern(const SharedText& name);
    std::optional<SharedText> intern(const std::optional<SharedText>& name);
    [[nodiscard]] std::vector<SharedText> all() const { return {names_.begin(), names_.end()}; }

  private:
    struct BytesHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>{}(text);
        }
    };
    struct BytesEqual {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const { return a == b; }
    };
    std::unordered_set<SharedText, BytesHash, BytesEqual> names_;
};

struct ObjectContext::State {
    // The id stands beside the pointer so that a search does not touch the blocks.
    struct Entry {
        RecordId id = 0;
        BlockPointer block;
    };

    // Identities grow with every insertion, so that the order of insertion is the order of the
    // identities, here and among the taxa of a census: both are found by binary search, and a
    // record that comes back takes its old place.
    std::vector<Entry> censuses;
    RecordId nextId = 1;
    NamePool names;

    RecordId newId() { return nextId++; }
    [[nodiscard]] const BlockPointer* find(RecordId census) const;
    // The census's block becomes after: a new census if there was none, none if after is empty.
    // This is a change: it goes into the history, and will be announced.
    void put(RecordId census, const BlockPointer& after);
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
    void replace(RecordId census, const BlockPointer& after);
    void replaceMany(const ChangeSet& changes);
    void note(RecordId census, const BlockPointer& before, const BlockPointer& after);
};

// The taxon of that identity; null where the block does not hold it.
const TaxonRecord* findTaxon(const CensusBlock& block, RecordId taxon);

// Chunks hold at most this many taxa: an edit copies one chunk, and one pointer a chunk.
inline constexpr std::size_t taxaPerChunk = 256;

// A copy of a block, and the taxon in it that is to change: its chunk is the copy's own.
struct TaxonCopy {
    std::shared_ptr<CensusBlock> block;
    TaxonRecord* taxon = nullptr;
};

// Copies of block for one change. The taxon must be there for the last two.
std::shared_ptr<CensusBlock> withTaxonAppended(const CensusBlock& block, TaxonRecord taxon);
TaxonCopy withTaxonCopied(const CensusBlock& block, RecordId taxon);
std::shared_ptr<CensusBlock> withoutTaxon(const CensusBlock& block, RecordId taxon);

}  // namespace zorvel
