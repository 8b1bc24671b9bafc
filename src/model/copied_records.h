// Copied censuses and species as bytes for the clipboard, with everything that a record has, for
// this or another run of the program. Any program may have written the bytes, so reading takes all
// or nothing. Any thread.
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

// Species copied without their census are in one census without attributes.
struct CopiedCensus {
    CensusAttributes attributes;
    std::vector<TaxonValues> taxa;
};

// Larger than any table, and small enough not to block the window for long.
inline constexpr std::size_t longestCopy = std::size_t{64} * 1024 * 1024;  // bytes

// Writes a copy. Texts must exist until it is done: each is written once.
class RecordCopy {
  public:
    RecordCopy();
    void addCensus(const CensusAttributes& census);
    // Of the census added last; there must be one.
    void addTaxon(const TaxonValues& taxon);
    void addTaxa(const CensusBlock& census);
    // Absent if the copy is longer than longestCopy. Call last.
    [[nodiscard]] std::optional<std::string> take();

  private:
    [[nodiscard]] bool isTooLong() const { return bytes_.size() > longestCopy; }
    template <class Number>
    void write(const Number& number);
    template <class T>
    void write(const std::optional<T>& value);
    void write(const SharedText& text);

    std::string bytes_;
    std::unordered_map<const std::string*, std::uint32_t> texts_;  // and their numbers
};

// In the order in which they were added. Absent if the bytes are no complete copy.
std::optional<std::vector<CopiedCensus>> readCopiedRecords(std::string_view bytes);

}  // namespace zorvel
