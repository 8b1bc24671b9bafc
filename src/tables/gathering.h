// Gathers the censuses of a table while its rows are read, in whatever order their species come.
// Beside the records it needs no memory for tables that are in order: rows of one census or of one
// species that follow each other. One thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/shared_text.h"
#include "interchange/parsers.h"

namespace zorvel {

// A name on one line: control characters become blanks.
std::string nameInOneLine(std::string_view cell);

// Gives each name a number, in the order of their first appearance; equal names share one. exact:
// names are as the cells, and equal by their bytes.
class SpeciesNumbers {
  public:
    SpeciesNumbers(NamePool* pool, bool exact) : pool_(pool), exact_(exact) {}

    std::size_t number(std::string_view cell);
    // Of the name of a species.
    [[nodiscard]] const SharedText& name(std::size_t number) const { return names_[number].text; }
    [[nodiscard]] std::size_t size() const { return names_.size(); }

  private:
    // What a look-up compares is together, in one line of the processor's cache.
    struct alignas(64) Name {
        SharedText text;
        std::size_t length = 0;
        std::uint32_t hash = 0;
        std::array<char, 36> start{};
    };
    static std::uint32_t hashOf(std::string_view name) {
        return static_cast<std::uint32_t>(BytesHash()(name));
    }
    [[nodiscard]] bool isName(std::size_t number, std::string_view cell) const;
    // Faster than an optional number, which the callers would load right after it was stored.
    static constexpr std::size_t notFound = SIZE_MAX;
    [[nodiscard]] std::size_t find(std::string_view name) const;
    void insert(std::size_t number);

    std::vector<Name> names_;
    // The number of a name + 1, or 0, by its hash, in open addressing; a power of two.
    std::vector<std::uint32_t> slots_;
    // Of cells that are no name to the letter, and of the canonical forms of names.
    std::unordered_map<std::string, std::size_t, BytesHash, std::equal_to<>> others_;
    std::unordered_map<std::string, std::size_t> canonical_;
    NamePool* pool_;
    bool exact_;
};

class CensusGatherer {
  public:
    CensusGatherer(NamePool* pool, bool exact) : species(pool, exact) {}

    SpeciesNumbers species;
    std::vector<MockCensus> censuses;

    std::size_t add(MockCensus census);
    // The census of the key, to which the notes are added if it has none; otherwise a new one.
    std::size_t open(MockCensus census, std::string key);
    // A new one, which is that of the key from now on.
    std::size_t openNew(MockCensus census, std::string key);
    // The taxon of the census of that species, by its number; null without it. Only sure for a
    // table whose every taxon was looked for before it was added. Valid until the next is added.
    MockTaxon* find(std::size_t census, std::size_t number);
    void addTaxon(std::size_t census, std::size_t number, std::int64_t abundance);
    // The same of species that no other row had: of each species, an abundance or 0 for each of the
    // censuses.
    void addNewSpecies(const std::vector<std::size_t>& numbers,
                       const std::vector<std::int64_t>& abundances);
    // All taxa of a census, whose species are never looked for.
    struct Taxon {
        std::size_t number;
        std::int64_t abundance;
    };
    void setTaxa(std::size_t census, const std::vector<Taxon>& taxa);

  private:
    struct Place {
        std::uint32_t census = UINT32_MAX;
        std::uint32_t taxon = 0;
    };
    using Index = std::unordered_map<const std::string*, std::size_t>;

    void enter(std::size_t number);

    std::unordered_map<std::string, std::size_t> censusOfKey_;
    std::vector<Place> lastPlaces_;      // of each species
    std::size_t newCensus_ = SIZE_MAX;   // the last that was made; no other had a taxon since
    std::size_t newSpecies_ = SIZE_MAX;  // first met, and no other since
    std::unordered_map<std::size_t, Index> indices_;  // of censuses whose species came out of order
};

}  // namespace zorvel
