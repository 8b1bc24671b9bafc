// Name lists, counts vectors and the sparse counts of a project. They give what a plain scan of the
// name lists for the first match would give, in one pass over the taxa.
#include <algorithm>
#include <cstdint>
#include <numeric>
#include <unordered_map>
#include <utility>

#include "base/text.h"
#include "metrics/counts.h"
#include "model/diversity_document.h"

namespace zorvel {
namespace {

const std::string& nameOrUnnamed(const std::optional<SharedText>& name) {
    static const std::string unnamed = unnamedName;
    return name ? name->str() : unnamed;
}

// Numbers of texts by their place in memory, in a flat table: a look-up that finds touches one
// place, and nothing of the text.
class TextNumbers {
  public:
    // The number of that very text; if it is new, the given one.
    std::size_t add(const std::string* text, std::size_t number) {
        Slot& found = slot(text);
        if (found.text) return found.number;
        found = {text, number};
        if (++used_ > slots_.size() / 2) grow();
        return number;
    }
    // Of a text that was added.
    void setNumber(const std::string* text, std::size_t number) { slot(text).number = number; }

  private:
    struct Slot {
        const std::string* text = nullptr;  // null: free
        std::size_t number = 0;
    };

    // That of the text, or the free one that it would take. Texts lie a few dozen bytes apart:
    // multiplied by 2^64 / golden ratio, the highest bits of their places are spread evenly (Knuth
    // 1998, section 6.4).
    Slot& slot(const std::string* text) {
        const auto place = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(text));
        std::size_t i = static_cast<std::size_t>((place * 0x9e3779b97f4a7c15U) >> (64 - bits_));
        while (slots_[i].text != text && slots_[i].text) i = (i + 1) & (slots_.size() - 1);
        return slots_[i];
    }
    void grow() {
        std::vector<Slot> old(std::size_t{1} << ++bits_);
        old.swap(slots_);
        for (const Slot& each : old) {
            if (each.text) slot(each.text) = each;
        }
    }

    unsigned bits_ = 10;
    std::size_t used_ = 0;  // at most half of the slots
    std::vector<Slot> slots_ = std::vector<Slot>(std::size_t{1} << bits_);
};

// Distinct names, numbered as first met: one hash look-up each. Two spellings that are canonically
// equivalent are one name, shown as the first of them.
class NameTable {
  public:
    // The number of the name, new ones at the end. The text must live as long as the table.
    std::size_t add(const std::string& name) {
        const std::size_t known = sameText_.add(&name, names_.size());
        if (known < names_.size()) return known;
        const auto [place, inserted] = numbers_.try_emplace(name, names_.size());
        if (inserted) {
            names_.push_back(&name);
        } else {
            sameText_.setNumber(&name, place->second);
        }
        return place->second;
    }

    [[nodiscard]] std::size_t size() const { return names_.size(); }
    [[nodiscard]] const std::string& name(std::size_t number) const { return *names_[number]; }

    // The numbers of the names in ascending order of the names.
    [[nodiscard]] std::vector<std::size_t> sortedNumbers() const {
        // The canonical form of each name is made once, not at every comparison.
        std::vector<std::pair<std::string, std::size_t>> forms;
        forms.reserve(names_.size());
        for (std::size_t i = 0; i < names_.size(); ++i) {
            forms.emplace_back(canonicalForm(*names_[i]), i);
        }
        std::sort(forms.begin(), forms.end());
        std::vector<std::size_t> numbers;
        numbers.reserve(forms.size());
        for (const auto& form : forms) numbers.push_back(form.second);
        return numbers;
    }

  private:
    std::vector<const std::string*> names_;
    std::unordered_map<std::string_view, std::size_t, CanonicalHash, CanonicalEqual> numbers_;
    // Most names are met again as the very same shared text: no need to look at their bytes.
    TextNumbers sameText_;
};

// A taxon that goes into a row, in the order of the taxa.
struct Cell {
    std::uint32_t row = 0;
    SparseCounts::Column column = 0;
    std::int64_t count = 0;
};

// The cells in ascending order of key(cell), which is below `keys`; those of one key stay in order.
template <class Key>
std::vector<Cell> ordered(const std::vector<Cell>& cells, std::size_t keys, Key key) {
    std::vector<std::size_t> next(keys + 1);
    for (const Cell& cell : cells) ++next[key(cell) + 1];
    std::partial_sum(next.begin(), next.end(), next.begin());
    std::vector<Cell> sorted(cells.size());
    for (const Cell& cell : cells) sorted[next[key(cell)]++] = cell;
    return sorted;
}

// One pass over the taxa gathers their cells by the numbers of their names; then the names are
// sorted, and the rows made.
class CountsBuilder {
  public:
    SparseCountsResult build(const std::vector<BlockPointer>& censuses) {
        gather(censuses);
        sortNames();
        fillRows();
        return std::move(result_);
    }

  private:
    // The row of a census is the first of its name.
    void gather(const std::vector<BlockPointer>& censuses) {
        NameTable rowNames;
        std::vector<std::size_t> rows;  // by number in the table
        for (const BlockPointer& census : censuses) {
            const std::optional<SharedText>& name = census->attributes.name;
            const std::size_t number = rowNames.add(nameOrUnnamed(name));
            if (number == rows.size()) rows.push_back(result_.censusNames.size());
            if (name && rows[number] != result_.censusNames.size()) ++result_.mergedCensuses;
            result_.censusNames.push_back(nameOrUnnamed(name));
            census->forEachTaxon([&](const TaxonRecord& taxon) {
                add(taxon.values, name ? std::optional(rows[number]) : std::nullopt);
            });
        }
    }

    void add(const TaxonValues& taxon, std::optional<std::size_t> row) {
        const std::size_t number = table_.add(nameOrUnnamed(taxon.name));
        if (number == sums_.size()) sums_.emplace_back();
        if (taxon.name) sums_[number].add(taxon.abundance);
        if (taxon.name && row) {
            cells_.push_back({static_cast<std::uint32_t>(*row),
                              static_cast<SparseCounts::Column>(number), taxon.abundance});
        } else {
            ++result_.taxaInNoRow;
        }
    }

    void sortNames() {
        std::vector<SparseCounts::Column> columnOf(table_.size());  // by number in the table
        for (const std::size_t number : table_.sortedNumbers()) {
            columnOf[number] = static_cast<SparseCounts::Column>(result_.taxonNames.size());
            result_.taxonNames.push_back(table_.name(number));
            result_.pooled.push_back(sums_[number].value());
        }
        for (Cell& cell : cells_) cell.column = columnOf[cell.column];
    }

    void fillRows() {
        const std::size_t columns = result_.taxonNames.size();
        const std::size_t rows = result_.censusNames.size();
        cells_ = ordered(cells_, columns, [](const Cell& cell) { return cell.column; });
        cells_ = ordered(cells_, rows, [](const Cell& cell) { return cell.row; });
        result_.counts = SparseCounts(columns);
        result_.counts.reserve(rows, cells_.size());
        std::vector<SparseCounts::Column> places;  // of one row
        CountsVector counts;
        auto cell = cells_.begin();
        for (std::size_t row = 0; row < rows; ++row) {
            places.clear();
            counts.clear();
            for (; cell != cells_.end() && cell->row == row; ++cell) {
                if (!places.empty() && places.back() == cell->column) {
                    counts.back() = cell->count;
                    ++result_.replacedTaxa;
                } else {
                    places.push_back(cell->column);
                    counts.push_back(cell->count);
                }
            }
            result_.counts.addRow(places, counts);
        }
    }

    NameTable table_;
    std::vector<SaturatingSum> sums_;  // by number in the table
    std::vector<Cell> cells_;          // column: a number in the table until the names are sorted
    SparseCountsResult result_;
};

}  // namespace

CountsVector includedCountsVector(const Census& census) {
    CountsVector counts;
    census.block()->forEachTaxon([&](const TaxonRecord& taxon) {
        if (taxon.values.include) counts.push_back(taxon.values.abundance);
    });
    return counts;
}

CountsVector fullCountsVector(const Census& census) {
    CountsVector counts;
    census.block()->forEachTaxon(
        [&](const TaxonRecord& taxon) { counts.push_back(taxon.values.abundance); });
    return counts;
}

NameList censusNameList(const std::vector<Census>& censuses) {
    NameList names;
    names.reserve(censuses.size());
    for (const Census& census : censuses) {
        names.push_back(nameOrUnnamed(census.block()->attributes.name));
    }
    return names;
}

SparseCountsResult buildSparseCounts(const ObjectContext& context) {
    return CountsBuilder().build(context.blocks());
}

}  // namespace zorvel
