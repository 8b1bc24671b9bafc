// Whether two lists of records are the same in every value, for tests of what a file gives back.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "store/change_set.h"

namespace zorvel {

// NaNs of the same bits are the same.
inline bool sameAttributes(const CensusAttributes& a, const CensusAttributes& b) {
    const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value); };
    return a.name == b.name && a.notes == b.notes && a.timeStamp == b.timeStamp &&
           bits(a.latitude) == bits(b.latitude) && bits(a.longitude) == bits(b.longitude);
}

inline bool sameCensus(const CensusBlock& a, const CensusBlock& b) {
    if (a.id != b.id || !sameAttributes(a.attributes, b.attributes)) return false;
    bool same = true;
    forEachTaxonChange(&a, &b, [&](const TaxonRecord*, const TaxonRecord*) { same = false; });
    return same;
}

inline bool sameRecords(const std::vector<BlockPointer>& a, const std::vector<BlockPointer>& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!sameCensus(*a[i], *b[i])) return false;
    }
    return true;
}

}  // namespace zorvel
