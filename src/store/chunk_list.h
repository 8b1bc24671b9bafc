// A list of records ascending by identity, in chunks that copies of the list share: the censuses of
// a project and the taxa of a census alike. A copy costs one pointer per chunk, a change of a few
// records one chunk each. Plain functions on immutable chunks; safe on any thread.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "store/census_block.h"

namespace zorvel {

// Of the taxa of a census: an edit copies one chunk, and a pointer for each other.
inline constexpr std::size_t taxaPerChunk = 256;

template <class Record>
using Chunk = std::vector<Record>;

// No chunk is empty.
template <class Record>
using ChunkList = std::vector<std::shared_ptr<const Chunk<Record>>>;

// A change of a list: the record of that identity is inserted or replaced, or removed if absent.
template <class Record>
struct RecordChange {
    RecordId id = 0;
    std::optional<Record> after;
};

// The place of the first record that is not below the identity.
template <class Iterator>
Iterator recordPlace(Iterator begin, Iterator end, decltype(begin->id) id) {
    return std::lower_bound(begin, end, id,
                            [](const auto& record, auto wanted) { return record.id < wanted; });
}

// The chunk that holds the record if any does.
template <class List>
auto chunkPlace(List& list, RecordId id) {
    return std::lower_bound(list.begin(), list.end(), id, [](const auto& chunk, RecordId wanted) {
        return chunk->back().id < wanted;
    });
}

// Null if the list does not hold it.
template <class Record>
const Record* findRecord(const ChunkList<Record>& list, RecordId id) {
    const auto chunk = chunkPlace(list, id);
    if (chunk == list.end()) return nullptr;
    const auto record = recordPlace((*chunk)->begin(), (*chunk)->end(), id);
    return record->id == id ? &*record : nullptr;
}

// Adds the records at the end, in chunks of their own.
template <class Record>
void appendInChunks(ChunkList<Record>& list, Chunk<Record> records, std::size_t perChunk) {
    for (std::size_t start = 0; start < records.size(); start += perChunk) {
        const auto begin = records.begin() + static_cast<std::ptrdiff_t>(start);
        const std::size_t count = std::min(perChunk, records.size() - start);
        const auto end = begin + static_cast<std::ptrdiff_t>(count);
        list.push_back(std::make_shared<const Chunk<Record>>(std::make_move_iterator(begin),
                                                             std::make_move_iterator(end)));
    }
}

// The records of a chunk with the changes made to them. Takes the records out of the changes.
template <class Record, class Change>
Chunk<Record> changedChunk(const Chunk<Record>& chunk, Change change, Change end) {
    Chunk<Record> records;
    records.reserve(chunk.size() + static_cast<std::size_t>(end - change));
    auto old = chunk.begin();
    for (; change != end; ++change) {
        const auto place = recordPlace(old, chunk.end(), change->id);
        records.insert(records.end(), old, place);
        old = place != chunk.end() && place->id == change->id ? place + 1 : place;
        if (change->after) records.push_back(std::move(*change->after));
    }
    records.insert(records.end(), old, chunk.end());
    return records;
}

// Makes the changes, which ascend by identity, in one pass that leaves the chunks before the first
// of them alone. Chunks grow to perChunk at most; one that has room takes what comes at the end.
template <class Record>
void changeRecords(ChunkList<Record>& list, std::vector<RecordChange<Record>> changes,
                   std::size_t perChunk) {
    if (changes.empty()) return;
    const auto takesMore = [&](const auto& chunk) { return chunk->size() < perChunk; };
    auto first = chunkPlace(list, changes.front().id);
    if (first == list.end() && !list.empty() && takesMore(list.back())) --first;
    ChunkList<Record> tail(std::make_move_iterator(first), std::make_move_iterator(list.end()));
    list.erase(first, list.end());
    auto change = changes.begin();
    for (auto& chunk : tail) {
        const bool takesRest = &chunk == &tail.back() && takesMore(chunk);
        const auto end = takesRest
                             ? changes.end()
                             : std::upper_bound(change, changes.end(), chunk->back().id,
                                                [](RecordId last, const RecordChange<Record>& one) {
                                                    return last < one.id;
                                                });
        if (change == end) {
            list.push_back(std::move(chunk));
        } else {
            appendInChunks(list, changedChunk(*chunk, change, end), perChunk);
        }
        change = end;
    }
    appendInChunks(list, changedChunk(Chunk<Record>(), change, changes.end()), perChunk);
}

// Reads the records of a list in order, and can step over a chunk as a whole. The list must live.
template <class Record>
class ChunkWalk {
  public:
    explicit ChunkWalk(const ChunkList<Record>& list) : list_(list) {}
    [[nodiscard]] bool atEnd() const { return chunk_ == list_.size(); }
    [[nodiscard]] const Record& record() const { return (*list_[chunk_])[place_]; }
    // The chunk that begins here; null within one.
    [[nodiscard]] const Chunk<Record>* chunkAhead() const {
        return place_ == 0 ? list_[chunk_].get() : nullptr;
    }
    void skipChunk() {
        ++chunk_;
        place_ = 0;
    }
    void next() {
        if (++place_ == list_[chunk_]->size()) skipChunk();
    }

  private:
    const ChunkList<Record>& list_;
    std::size_t chunk_ = 0;
    std::size_t place_ = 0;
};

// Calls visit(const Record* before, const Record* after) for each record that is inserted (before
// null), deleted (after null), or not the same (by same(before, after)), ascending by identity.
// Chunks that both lists share cost nothing.
template <class Record, class Same, class Visit>
void forEachRecordChange(const ChunkList<Record>& before, const ChunkList<Record>& after,
                         Same&& same, Visit&& visit) {
    constexpr const Record* none = nullptr;
    ChunkWalk<Record> old(before);
    ChunkWalk<Record> now(after);
    while (!old.atEnd() && !now.atEnd()) {
        if (old.chunkAhead() && old.chunkAhead() == now.chunkAhead()) {
            old.skipChunk();
            now.skipChunk();
        } else if (old.record().id < now.record().id) {
            visit(&old.record(), none);
            old.next();
        } else if (now.record().id < old.record().id) {
            visit(none, &now.record());
            now.next();
        } else {
            if (!same(old.record(), now.record())) visit(&old.record(), &now.record());
            old.next();
            now.next();
        }
    }
    for (; !old.atEnd(); old.next()) visit(&old.record(), none);
    for (; !now.atEnd(); now.next()) visit(none, &now.record());
}

}  // namespace zorvel
