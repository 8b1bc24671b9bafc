// Reads the rows of data of a table, for each layout: part of reader.h. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tables/cell_rules.h"
#include "tables/gathering.h"
#include "tables/reader.h"
#include "tables/reading.h"

namespace zorvel {

// The header rows of a table, with a cell above each column.
class TableHeader {
  public:
    explicit TableHeader(const TableReading& reading) : reading_(reading) {}

    void add(std::vector<std::string> cells);
    [[nodiscard]] std::size_t height() const { return rows_.size(); }
    [[nodiscard]] std::string_view cell(std::size_t i, std::size_t column) const;
    // Whether a row holds names of species or censuses.
    [[nodiscard]] bool isOfNames(std::size_t i) const {
        return reading_.headerRows[i] == ColumnRole::species ||
               reading_.headerRows[i] == ColumnRole::census;
    }
    // Of the rows that hold the names of species or censuses, parted by blanks: genus over epithet.
    [[nodiscard]] std::string name(std::size_t column) const;
    // The column that has the text over a column: of merged cells, the first.
    [[nodiscard]] std::size_t groupOf(std::size_t i, std::size_t column) const;
    // In any layout; the first row where no row holds names.
    [[nodiscard]] std::string text(std::size_t column) const;

  private:
    const TableReading& reading_;
    std::vector<std::vector<std::string>> rows_;
};

// The columns of a table by their roles; of some roles only the first.
struct ColumnsByRole {
    explicit ColumnsByRole(const TableReading& reading);

    std::vector<std::size_t> names;  // of the census
    std::optional<std::size_t> species;
    std::optional<std::size_t> genus;
    std::optional<std::size_t> status;
    std::optional<std::size_t> included;
    std::vector<std::pair<ColumnRole, std::size_t>> attributes;  // of censuses
    std::vector<std::size_t> dateParts;  // year, month and day, where there is no date
    std::vector<std::size_t> counts;
    bool stages = false;  // rows of a census that are of sexes or stages are added
    bool exact = false;   // see TableReading::isExact()
};

class RowReader {
  public:
    RowReader(const TableReading& reading, TableRecords& records, NamePool* names);
    virtual ~RowReader() = default;
    RowReader(const RowReader&) = delete;
    RowReader& operator=(const RowReader&) = delete;

    [[nodiscard]] const ColumnsByRole& columns() const { return columns_; }
    [[nodiscard]] CellRules& rules() { return rules_; }

    // Before the first row of data, once.
    virtual void begin(const TableHeader& header) = 0;
    virtual void read(const SparseRow& row) = 0;
    // Whether a row holds the sums of the rows that were read.
    [[nodiscard]] virtual bool isTotal(const std::vector<std::string>& cells) const = 0;
    // Moves the censuses to the records.
    virtual void finish();

  protected:
    // The name of the census of a row, of its parts; absent, with a problem, where one is blank or
    // no text.
    std::optional<std::string> censusName(const SparseRow& row);
    void readAttributes(MockCensus& census, const SparseRow& row);
    // By which rows and columns of one census are known: its name, with date and place or alone.
    [[nodiscard]] std::string keyOf(const MockCensus& census) const;
    // Genus and species. False, with a problem, where one of them is no text.
    bool isSpeciesText(const SparseRow& row);
    [[nodiscard]] std::string speciesName(const SparseRow& row, std::string_view species) const;
    // False where there is nothing to add, or the count was added to that of the species.
    bool addTaxon(std::size_t census, std::size_t species, std::int64_t value,
                  const TablePlace& place);
    // To another count of the species and census.
    void addCount(std::int64_t& sum, std::int64_t value, const TablePlace& place);

    static TablePlace placeOf(const SparseRow& row, std::optional<std::size_t> column) {
        return {row.number, row.line, column};
    }

    // What the cells of counts of a census hold.
    struct CellsOfCensus {
        bool hasValues = false;
        bool hasMissing = false;  // marks of missing values
    };

    const TableReading& reading_;
    TableRecords& records_;
    ColumnsByRole columns_;
    CellRules rules_;
    CensusGatherer gathered_;
    std::vector<CellsOfCensus> cells_;  // of each census

  private:
    std::vector<std::string> nameParts_;  // of the row before
};

// Rows of a census or of a species.
std::unique_ptr<RowReader> wideRowReader(const TableReading& reading, TableRecords& records,
                                         NamePool* names);
// Rows of a census and a species.
std::unique_ptr<RowReader> longRowReader(const TableReading& reading, TableRecords& records,
                                         NamePool* names);

}  // namespace zorvel
