// The records of one project and every change to them. A project's state is a list of censuses,
// each one immutable block held by a shared pointer, its taxa in shared chunks: an edit replaces
// one block and copies one chunk, and a frozen copy shares the list, which is in chunks too. The
// order of censuses and of taxa is the order of insertion. A live context belongs to the main
// thread; a frozen one may be read by any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/shared_text.h"
#include "base/time_stamp.h"
#include "store/census_block.h"
#include "store/change_set.h"
#include "store/chunk_list.h"

namespace zorvel {

class ObjectContext;
class Zorvel;

// A census: a light handle of context and identity, valid while the context lives. A handle whose
// record was deleted reads as a record of defaults without taxa.
class Census {
  public:
    [[nodiscard]] RecordId id() const { return id_; }
    [[nodiscard]] std::optional<SharedText> name() const { return found()->attributes.name; }
    [[nodiscard]] double latitude() const { return found()->attributes.latitude; }    // degrees
    [[nodiscard]] double longitude() const { return found()->attributes.longitude; }  // degrees
    [[nodiscard]] std::optional<SharedText> notes() const { return found()->attributes.notes; }
    [[nodiscard]] std::optional<TimeStamp> timeStamp() const {
        return found()->attributes.timeStamp;
    }
    [[nodiscard]] std::vector<Zorvel> taxa() const;
    [[nodiscard]] std::size_t taxonCount() const { return found()->taxonCount(); }
    // The taxon of that identity; absent if this census has none. Faster than a search in taxa().
    [[nodiscard]] std::optional<Zorvel> taxon(RecordId id) const;
    // The taxa's values without handles: the fast way to read them all. Stays valid while held; an
    // empty block if the record was deleted.
    [[nodiscard]] BlockPointer block() const { return found(); }

    friend bool operator==(const Census&, const Census&) = default;

  private:
    friend class ObjectContext;
    friend class Zorvel;
    Census(const ObjectContext* context, RecordId id) : context_(context), id_(id) {}
    [[nodiscard]] const BlockPointer& found() const;

    const ObjectContext* context_;
    RecordId id_;
};

// A taxon of a census: one species line with its count of specimens.
class Zorvel {
  public:
    [[nodiscard]] RecordId id() const { return id_; }
    [[nodiscard]] std::optional<SharedText> name() const { return found().name; }
    [[nodiscard]] std::int64_t abundance() const { return found().abundance; }
    [[nodiscard]] bool include() const { return found().include; }
    // Absent once the taxon was deleted.
    [[nodiscard]] std::optional<Census> census() const;

    friend bool operator==(const Zorvel&, const Zorvel&) = default;

  private:
    friend class ObjectContext;
    friend class Census;
    Zorvel(const ObjectContext* context, RecordId census, RecordId id)
        : context_(context), census_(census), id_(id) {}
    [[nodiscard]] const TaxonValues& found() const;

    const ObjectContext* context_;
    RecordId census_;
    RecordId id_;
};

// Whole censuses made away from their context, in numbers that would keep the main thread waiting.
// Any one thread fills a batch, and the context takes it back as one change, or adopts its blocks.
// The context may change meanwhile. A batch that is never taken back leaves nothing behind.
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

class ObjectContext {
  public:
    ObjectContext() = default;
    ObjectContext(const ObjectContext&) = delete;
    ObjectContext& operator=(const ObjectContext&) = delete;

    // At the end of the project. New records have no name, notes or time, position 0, abundance 0,
    // and include set.
    Census insertCensus(const CensusAttributes& attributes = {},
                        std::vector<TaxonValues> taxa = {});
    // At the end of the census's taxa. The census must exist in this context; otherwise nothing is
    // inserted and the handle is of no record.
    Zorvel insertTaxon(const Census& census);
    // Many taxa at once, in order; none where the census is of no record of this context.
    std::vector<Zorvel> insertTaxa(const Census& census, std::vector<TaxonValues> taxa);
    // Many censuses with their taxa, made elsewhere: a batch for that many records, censuses and
    // taxa counted together, and the insertion of its censuses as one change. Their place in the
    // order is that of the call of newBatch(). The batch is empty afterwards.
    std::shared_ptr<CensusBatch> newBatch(std::size_t records);
    void insertCensuses(CensusBatch& batch);

    // Deleting and setting act only on records of this context: a handle of a deleted record, or
    // of another context (a frozen copy too), changes nothing. Nor does a value that the record has
    // already. Many at once, in any order, are one change, which costs little more than reading
    // them.
    void deleteCensuses(const std::vector<Census>& censuses);  // and their taxa
    void deleteTaxa(const std::vector<Zorvel>& taxa);
    void setInclude(const std::vector<Zorvel>& taxa, bool include);

    void setName(const Census& census, const std::optional<SharedText>& name);
    void setLatitude(const Census& census, double degrees);
    void setLongitude(const Census& census, double degrees);
    void setNotes(const Census& census, const std::optional<SharedText>& notes);
    void setTimeStamp(const Census& census, std::optional<TimeStamp> timeStamp);
    void setName(const Zorvel& taxon, const std::optional<SharedText>& name);
    void setAbundance(const Zorvel& taxon, std::int64_t abundance);

    // In order of insertion.
    [[nodiscard]] std::vector<Census> censuses() const;
    [[nodiscard]] std::vector<Zorvel> taxa() const;  // census by census
    [[nodiscard]] std::size_t censusCount() const;

    // The record of that identity, for instance one that a job met in a frozen copy; absent if
    // it was deleted.
    [[nodiscard]] std::optional<Census> census(RecordId id) const;

    // The state as it stands now, never to change; costs one pointer per few dozen censuses. With
    // edits, which insert no records, they are made in the copy alone. Its revision is 0 if nothing
    // was changed.
    using Edits = std::function<void(ObjectContext& copy)>;
    [[nodiscard]] std::shared_ptr<const ObjectContext> frozenCopy(const Edits& edits = {}) const;

    // All records, ascending by identity: the blocks of a frozen copy cost one pointer per census.
    [[nodiscard]] std::vector<BlockPointer> blocks() const;
    // The pool of the names of these records. Records to be inserted should take their names from
    // it.
    [[nodiscard]] std::shared_ptr<NamePool> names() const { return names_; }
    // The blocks with the names, to be adopted by another context. A frozen copy has no names.
    [[nodiscard]] ProjectRecords records() const { return {blocks(), names_}; }
    // Replaces all records, as on opening: this cannot be undone and is not announced.
    void adopt(ProjectRecords records);

    // Undo. A step is what is undone at once: all changes between its beginning and its end, which
    // may be turns apart. Steps nest, the outermost counts. A change outside any step is a step
    // without a name. Undo goes back to the opening, and is no step itself.
    void beginStep(std::string name) { history_.beginStep(std::move(name)); }
    void endStep() { history_.endStep(); }
    [[nodiscard]] bool isStepOpen() const { return history_.isStepOpen(); }
    // False while a step is open.
    [[nodiscard]] bool canUndo() const { return history_.canUndo(); }
    [[nodiscard]] bool canRedo() const { return history_.canRedo(); }
    [[nodiscard]] std::string undoName() const { return history_.undoName(); }  // empty if none
    [[nodiscard]] std::string redoName() const { return history_.redoName(); }
    void undo();
    void redo();
    // What leads from an earlier frozen copy of this context to this state. The censuses
    // that did not change since cost next to nothing.
    [[nodiscard]] ChangeSet changesSince(const ObjectContext& earlier) const;
    // Makes the records those of an earlier frozen copy of this context; a change like any other.
    void changeTo(const ObjectContext& earlier);

    // Grows with every change, undo and redo too.
    [[nodiscard]] std::uint64_t revision() const { return revision_; }

    // announceChanges(), called at the end of a turn, passes all changes since the last
    // announcement to the observers as one set. Changes that cancel out are not announced. An
    // observer may change records, which is announced next time, and may remove itself or others.
    using ChangeObserver = std::function<void(const ChangeSet&)>;
    using ObserverId = std::uint64_t;
    ObserverId addObserver(ChangeObserver observer);
    void removeObserver(ObserverId observer) { observers_.erase(observer); }
    // Does nothing when an observer calls it: the changes wait for the next call.
    void announceChanges();
    // Called at the first change after an announcement, so that announceChanges() can be scheduled
    // for the end of the turn.
    void setFirstChangeHandler(std::function<void()> handler) {
        onFirstChange_ = std::move(handler);
    }

  private:
    friend class Census;
    friend class Zorvel;
    // The id stands beside the pointer so that a search does not touch the blocks.
    struct Entry {
        RecordId id = 0;
        BlockPointer block;
    };
    // Null if there is no such census.
    [[nodiscard]] const BlockPointer* find(RecordId census) const;
    // Null for a handle of another context too.
    [[nodiscard]] const BlockPointer* own(const Census& census) const;
    template <class Value>
    void set(const Census& census, Value CensusAttributes::*member, const Value& value);
    template <class Value>
    void set(const std::vector<Zorvel>& taxa, Value TaxonValues::*member, const Value& value);
    // edit(record) returns the change of the record, or nothing if it stays as it is.
    template <class Edit>
    void changeTaxa(std::vector<Zorvel> taxa, Edit&& edit);
    [[nodiscard]] std::vector<TaxonRecord> newRecords(std::vector<TaxonValues> taxa);
    [[nodiscard]] std::optional<SharedText> intern(const std::optional<SharedText>& name) const;
    // New changes, ascending by identity, which go into the history.
    void change(const ChangeSet& changes);
    // Changes that the history knows already. All changes of records go through this function.
    void apply(const ChangeSet& changes);

    // Identities grow with every insertion, so that the order of insertion is the order of the
    // identities, here and among the taxa of a census: both are found by binary search, and a
    // record that comes back takes its old place.
    ChunkList<Entry> censuses_;
    RecordId nextId_ = 1;
    std::shared_ptr<NamePool> names_ = std::make_shared<NamePool>();
    History history_;
    ChangeLog unannounced_;
    std::function<void()> onFirstChange_;
    std::map<ObserverId, ChangeObserver> observers_;
    ObserverId nextObserver_ = 1;
    bool announcing_ = false;
    std::uint64_t revision_ = 0;
};

// A step of undo for as long as this object lives.
class UndoStep {
  public:
    UndoStep(ObjectContext& context, std::string name) : context_(context) {
        context_.beginStep(std::move(name));
    }
    ~UndoStep() { context_.endStep(); }
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;

  private:
    ObjectContext& context_;
};

}  // namespace zorvel
