// The values of one census, immutable once made: what a context holds, what frozen copies share.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "base/shared_text.h"
#include "base/time_stamp.h"

namespace zorvel {

// Identity of a record within its project; never used twice.
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

}  // namespace zorvel
