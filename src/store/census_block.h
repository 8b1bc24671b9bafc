// The records of a project as plain values. The block of one census is immutable once made: a
// context holds it and frozen copies share it. Any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "base/shared_text.h"
#include "base/time_stamp.h"

namespace zorvel {

// Identity of a record within its project; never given to another.
using RecordId = std::uint64_t;

struct CensusAttributes {
    std::optional<SharedText> name;
    double latitude = 0;   // degrees
    double longitude = 0;  // degrees
    std::optional<SharedText> notes;
    std::optional<TimeStamp> timeStamp;
};

struct TaxonValues {
    std::optional<SharedText> name;
    std::int64_t abundance = 0;
    bool include = true;

    friend bool operator==(const TaxonValues&, const TaxonValues&) = default;
};

struct TaxonRecord {
    RecordId id = 0;
    TaxonValues values;
};

// A few hundred taxa, shared between blocks.
using TaxonChunk = std::vector<TaxonRecord>;

struct CensusBlock {
    RecordId id = 0;
    CensusAttributes attributes;
    std::vector<std::shared_ptr<const TaxonChunk>> chunks;

    [[nodiscard]] std::size_t taxonCount() const {
        std::size_t count = 0;
        for (const auto& chunk : chunks) count += chunk->size();
        return count;
    }
    template <class Visit>
    void forEachTaxon(Visit&& visit) const {
        for (const auto& chunk : chunks) {
            for (const TaxonRecord& taxon : *chunk) visit(taxon);
        }
    }
};

using BlockPointer = std::shared_ptr<const CensusBlock>;

// All records of a project: read from a file, on any thread, and then taken over by a context.
struct ProjectRecords {
    // Ascending by identity, and so are the taxa within each; no identity stands twice.
    std::vector<BlockPointer> censuses;
    // The pool of the names in the blocks; null if they come from several.
    std::shared_ptr<NamePool> names;
};

}  // namespace zorvel
