// Censuses and species on their way from one project to another, perhaps of another run of the
// program: all that a record holds, where text for a spreadsheet holds what a table shows. Whoever
// fills the clipboard may have written the bytes, so that reading them takes all or nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "store/census_block.h"

namespace zorvel {

// Species without their census are those of one census whose attributes mean nothing.
struct CopiedCensus {
    CensusAttributes attributes;
    std::vector<TaxonValues> taxa;
};

// Far above any table, and far below what would stop the window for long.
inline constexpr std::size_t longestCopy = std::size_t{64} * 1024 * 1024;  // bytes

// Writes a copy. Names must live until it is done: one that stands in many records is written once.
class RecordCopy {
  public:
    RecordCopy();
    void addCensus(const CensusAttributes& attributes);
    // Of the census added last; there must be one.
    void addTaxon(const TaxonValues& taxon);
    void addTaxa(const CensusBlock& census);
    // Absent where the copy is longer than longestCopy. Nothing is added afterwards.
    [[nodiscard]] std::optional<std::string> take();

  private:
    [[nodiscard]] bool isTooLong() const { return bytes_.size() > longestCopy; }
    void append(std::uint64_t number, int bytes);
    void append(const SharedText& text);
    std::uint32_t numberOf(const SharedText& name);

    std::string bytes_;
    std::unordered_map<const std::string*, std::uint32_t> names_;
};

// In the order in which they were added. Absent where the bytes are anything but a whole copy.
std::optional<std::vector<CopiedCensus>> readCopiedRecords(std::string_view bytes);

}  // namespace zorvel
