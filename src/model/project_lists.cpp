// Name lists, counts vectors and the counts matrix of a list of records. Each gives what a plain
// scan of the name lists for the first match would give, in one pass over the taxa.
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

// The columns of a project: its distinct taxon names in ascending order.
class Columns {
  public:
    explicit Columns(const std::vector<Zorvel>& taxa) {
        TaxonCursor cursor;
        for (const Zorvel& taxon : taxa) {
            const TaxonRecord* record = cursor.find(taxon);
            table_.add(record ? nameOrUnnamed(record->values.name) : unnamed());
        }
        columns_.resize(table_.size());
        names_.reserve(table_.size());
        for (const std::size_t number : table_.sortedNumbers()) {
            columns_[number] = names_.size();
            names_.push_back(table_.name(number));
        }
    }

    [[nodiscard]] const NameList& names() const { return names_; }
    // Of a name that one of the taxa has.
    std::size_t column(const SharedText& name) { return columns_[table_.add(name.str())]; }

  private:
    NameTable table_;
    std::vector<std::size_t> columns_;  // by number in the table
    NameList names_;
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
    return Columns(taxa).names();
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
    Columns columns(taxa);
    std::vector<SaturatingSum> sums(columns.names().size());
    TaxonCursor cursor;
    for (const Zorvel& taxon : taxa) {
        const TaxonRecord* record = cursor.find(taxon);
        if (!record || !record->values.name) continue;
        sums[columns.column(*record->values.name)].add(record->values.abundance);
    }
    CountsVector pooled;
    pooled.reserve(sums.size());
    for (const SaturatingSum& sum : sums) pooled.push_back(sum.value());
    return pooled;
}

CountsMatrixResult buildCountsMatrix(const std::vector<Zorvel>& taxa,
                                     const std::vector<Census>& censuses) {
    Columns columns(taxa);
    CountsMatrixResult result;
    result.taxonNames = columns.names();
    result.censusNames = censusNameList(censuses);
    result.matrix.assign(censuses.size(), CountsVector(result.taxonNames.size(), 0));
    Rows rows(result.censusNames);
    TaxonCursor cursor;
    for (const Zorvel& taxon : taxa) {
        const TaxonRecord* record = cursor.find(taxon);
        if (!record || !record->values.name) continue;
        const std::optional<std::size_t> row = rows.row(cursor.block());
        if (!row) continue;
        result.matrix[*row][columns.column(*record->values.name)] = record->values.abundance;
    }
    return result;
}

}  // namespace zorvel
