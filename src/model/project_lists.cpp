// Name lists, counts vectors and the counts matrix of a list of records. Each gives what a plain
// scan of the name lists for the first match would give, in one pass over the taxa.
#include <numeric>
#include <utility>

#include "metrics/saturating_sum.h"
#include "model/diversity_document.h"
#include "model/name_table.h"
#include "store/taxon_cursor.h"

namespace zorvel {
namespace {

const std::string& unnamed() {
    static const std::string text = unnamedName;
    return text;
}

const std::string& nameOrUnnamed(const std::optional<SharedText>& name) {
    return name ? name->str() : unnamed();
}

// The records of these taxa in order: visit(block of the census, record), both null for a taxon
// that is gone.
template <class Visit>
void forEachRecord(const std::vector<Zorvel>& taxa, Visit visit) {
    TaxonCursor cursor;
    for (const Zorvel& taxon : taxa) {
        const TaxonRecord* record = cursor.find(taxon);
        visit(record ? &cursor.block() : nullptr, record);
    }
}
template <class Visit>
void forEachRecord(const std::vector<BlockPointer>& blocks, Visit visit) {
    for (const BlockPointer& block : blocks) {
        block->forEachTaxon([&](const TaxonRecord& record) { visit(block.get(), &record); });
    }
}

// The distinct taxon names of a project in ascending order, from their numbers in the table.
struct Columns {
    explicit Columns(const NameTable& table) : columnOf(table.size()) {
        names.reserve(table.size());
        for (const std::size_t number : table.sortedNumbers()) {
            columnOf[number] = static_cast<SparseCounts::Column>(names.size());
            names.push_back(table.name(number));
        }
    }

    NameList names;
    std::vector<SparseCounts::Column> columnOf;  // by number in the table
};

// The row of each census name: the first of those that are equal. Remembers the row of the census
// last asked for, since its taxa follow one another.
class Rows {
  public:
    // The names must live as long as this.
    explicit Rows(const NameList& censusNames) {
        for (std::size_t i = 0; i < censusNames.size(); ++i) {
            if (table_.add(censusNames[i]) == rowOf_.size()) rowOf_.push_back(i);
        }
    }

    // Absent for a census without a name, or whose name no row has.
    std::optional<std::size_t> row(const CensusBlock& census) {
        if (&census != last_) {
            last_ = &census;
            lastRow_ = find(census.attributes.name);
        }
        return lastRow_;
    }

  private:
    [[nodiscard]] std::optional<std::size_t> find(const std::optional<SharedText>& name) const {
        if (!name) return std::nullopt;
        const std::size_t number = table_.find(*name);
        return number < rowOf_.size() ? std::optional(rowOf_[number]) : std::nullopt;
    }

    NameTable table_;
    std::vector<std::size_t> rowOf_;  // by number in the table
    const CensusBlock* last_ = nullptr;
    std::optional<std::size_t> lastRow_;
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
    explicit CountsBuilder(const std::vector<BlockPointer>& censuses)
        : names_(censusNames(censuses)), rows_(names_) {
        for (std::size_t i = 0; i < censuses.size(); ++i) {
            const std::optional<std::size_t> row = rows_.row(*censuses[i]);
            if (row && *row != i) ++result_.mergedCensuses;
        }
    }

    template <class Taxa>
    SparseCountsResult build(const Taxa& taxa) {
        forEachRecord(taxa, [this](const CensusBlock* census, const TaxonRecord* record) {
            add(census, record);
        });
        const Columns columns(table_);
        fillRows(columns);
        fillPooled(columns);
        result_.taxonNames = columns.names;
        result_.censusNames = std::move(names_);
        return std::move(result_);
    }

  private:
    static NameList censusNames(const std::vector<BlockPointer>& censuses) {
        NameList names;
        names.reserve(censuses.size());
        for (const BlockPointer& block : censuses) {
            names.push_back(nameOrUnnamed(block->attributes.name));
        }
        return names;
    }

    void add(const CensusBlock* census, const TaxonRecord* record) {
        const bool named = record && record->values.name;
        const std::size_t number = table_.add(named ? record->values.name->str() : unnamed());
        if (number == sums_.size()) sums_.emplace_back();
        const std::optional<std::size_t> row = named ? rows_.row(*census) : std::nullopt;
        if (named) sums_[number].add(record->values.abundance);
        if (row) {
            cells_.push_back({static_cast<std::uint32_t>(*row),
                              static_cast<SparseCounts::Column>(number), record->values.abundance});
        } else if (record) {
            ++result_.taxaInNoRow;
        }
    }

    void fillRows(const Columns& columns) {
        for (Cell& cell : cells_) cell.column = columns.columnOf[cell.column];
        cells_ =
            ordered(cells_, columns.names.size(), [](const Cell& cell) { return cell.column; });
        cells_ = ordered(cells_, names_.size(), [](const Cell& cell) { return cell.row; });
        result_.counts = SparseCounts(columns.names.size());
        result_.counts.reserve(names_.size(), cells_.size());
        std::vector<SparseCounts::Column> places;  // of one row
        CountsVector counts;
        auto cell = cells_.begin();
        for (std::size_t row = 0; row < names_.size(); ++row) {
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
        cells_ = {};
    }

    void fillPooled(const Columns& columns) {
        result_.pooled.resize(sums_.size());
        for (std::size_t number = 0; number < sums_.size(); ++number) {
            result_.pooled[columns.columnOf[number]] = sums_[number].value();
        }
    }

    NameList names_;
    Rows rows_;
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

NameList projectTaxonNames(const std::vector<Zorvel>& taxa) {
    NameTable table;
    forEachRecord(taxa, [&](const CensusBlock*, const TaxonRecord* record) {
        table.add(record ? nameOrUnnamed(record->values.name) : unnamed());
    });
    return Columns(table).names;
}

NameList censusNameList(const std::vector<Census>& censuses) {
    NameList names;
    names.reserve(censuses.size());
    for (const Census& census : censuses) {
        names.push_back(nameOrUnnamed(census.block()->attributes.name));
    }
    return names;
}

CountsVector pooledCountsVector(const std::vector<Zorvel>& taxa) {
    return buildSparseCounts(taxa, {}).pooled;
}

SparseCountsResult buildSparseCounts(const std::vector<Zorvel>& taxa,
                                     const std::vector<Census>& censuses) {
    std::vector<BlockPointer> rows;
    rows.reserve(censuses.size());
    for (const Census& census : censuses) rows.push_back(census.block());
    return CountsBuilder(rows).build(taxa);
}

SparseCountsResult buildSparseCounts(const ObjectContext& context) {
    const std::vector<BlockPointer> blocks = context.blocks();
    return CountsBuilder(blocks).build(blocks);
}

CountsMatrixResult buildCountsMatrix(const std::vector<Zorvel>& taxa,
                                     const std::vector<Census>& censuses) {
    SparseCountsResult sparse = buildSparseCounts(taxa, censuses);
    CountsMatrixResult result;
    result.matrix = sparse.counts.dense();
    result.taxonNames = std::move(sparse.taxonNames);
    result.censusNames = std::move(sparse.censusNames);
    return result;
}

}  // namespace zorvel
