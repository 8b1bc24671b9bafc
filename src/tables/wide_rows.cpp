// Tables with a row for each census and a column for each species, or the other way round.
#include <algorithm>
#include <cmath>
#include <utility>

#include "base/text.h"
#include "tables/row_reader.h"

namespace zorvel {
namespace {

class WideRows final : public RowReader {
  public:
    using RowReader::RowReader;

    void begin(const TableHeader& header) override {
        sums_.assign(columns_.counts.size(), 0);
        if (columns_.counts.empty() && !reading_.columns.empty()) {
            rules_.problem({reading_.firstRow, 0, std::nullopt}, {},
                           "No column holds counts, so that no species would be read. Choose what "
                           "the columns hold.");
        }
        for (const std::size_t column : columns_.counts) {
            const std::string name = header.name(column);
            if (name.empty() && !reading_.headerRows.empty()) {
                rules_.problem({reading_.firstRow, 0, column}, {},
                               hasCensusRows()
                                   ? "There is no name of a species above these counts."
                                   : "There is no name of a census above these counts.");
            }
            for (std::size_t i = 0; i < header.height(); ++i) {
                if (header.isOfNames(i)) {
                    rules_.isText(header.cell(i, column), {reading_.firstRow + i, 0, column});
                }
            }
            const std::string shown =
                reading_.headerRows.empty() ? "Column " + columnLetters(column) : name;
            if (hasCensusRows()) {
                columnNames_.push_back(gathered_.species.number(shown));
            } else {
                addCensus(header, column, shown);
            }
        }
        const bool areApart = reading_.sameSpecies == SameRule::apart ||
                              gathered_.species.size() == columnNames_.size();
        isDirect_ = hasCensusRows() && reading_.sameCensus == SameRule::apart && areApart;
    }

    void read(const TableRow& row) override {
        if (hasCensusRows()) {
            readCensus(row);
        } else {
            readSpecies(row);
        }
    }

    [[nodiscard]] bool isTotal(const std::vector<std::string>& cells) const override {
        for (std::size_t i = 0; i < columns_.counts.size(); ++i) {
            const std::size_t column = columns_.counts[i];
            const double value = column < cells.size() ? rules_.sum(cells[column]) : 0;
            // A column with a text has no sum, and a formula without its result has no value.
            if (std::isnan(sums_[i]) || std::isnan(value)) continue;
            if (std::abs(value - sums_[i]) > 1e-9 * std::max(1.0, sums_[i])) return false;
        }
        return true;
    }

  private:
    [[nodiscard]] bool hasCensusRows() const { return reading_.layout == TableLayout::censusRows; }

    // Most cells of a wide table.
    static bool isZero(std::string_view cell) { return cell.size() == 1 && cell.front() == '0'; }

    void addCensus(const TableHeader& header, std::size_t column, const std::string& name) {
        MockCensus census;
        census.name = nameInOneLine(name);
        for (std::size_t i = 0; i < header.height(); ++i) {
            rules_.readAttribute(census, reading_.headerRows[i], header.cell(i, column),
                                 {reading_.firstRow + i, 0, column}, false);
        }
        gathered_.add(std::move(census));
    }

    void readCensus(const TableRow& row) {
        MockCensus census;
        census.name = censusName(row).value_or(std::string());
        readAttributes(census, row);
        const std::size_t index = addOrOpen(std::move(census));
        cells_.resize(gathered_.censuses.size());
        taxa_.clear();
        for (std::size_t i = 0; i < columns_.counts.size(); ++i) {
            const std::string_view cell = row.cell(columns_.counts[i]);
            if (isZero(cell)) {
                cells_[index].hasValues = true;
            } else {
                readCount(cell, row, i, index, columnNames_[i]);
            }
        }
        if (isDirect_) gathered_.setTaxa(index, taxa_);
    }

    std::size_t addOrOpen(MockCensus census) {
        if (reading_.sameCensus == SameRule::apart) return gathered_.add(std::move(census));
        std::string key = canonicalForm(census.name);
        return gathered_.open(std::move(census), std::move(key));
    }

    void readSpecies(const TableRow& row) {
        const std::string_view cell = columns_.species ? row.cell(*columns_.species) : "";
        if (cell.empty()) {
            rules_.problem(placeOf(row, columns_.species), {}, "The species has no name.");
            return;
        }
        if (!isSpeciesText(row)) return;
        const std::size_t species = gathered_.species.number(speciesName(row, cell));
        cells_.resize(gathered_.censuses.size());
        for (std::size_t i = 0; i < columns_.counts.size(); ++i) {
            const std::string_view value = row.cell(columns_.counts[i]);
            if (isZero(value)) {
                cells_[i].hasValues = true;
            } else {
                readCount(value, row, i, i, species);
            }
        }
    }

    // The cell of the i-th column of counts.
    void readCount(std::string_view cell, const TableRow& row, std::size_t i, std::size_t census,
                   std::size_t species) {
        const TablePlace place = placeOf(row, columns_.counts[i]);
        const CellRules::Count count = rules_.count(cell, place);
        cells_[census].hasValues |= !cell.empty() && !count.missing;
        cells_[census].hasMissing |= count.missing;
        sums_[i] += count.written;
        if (count.value == 0) return;
        if (isDirect_) {
            taxa_.push_back({species, count.value});
        } else {
            addTaxon(census, species, count.value, place);
        }
    }

    std::vector<double> sums_;                 // of each column of counts
    std::vector<std::size_t> columnNames_;     // of each, where species have columns
    bool isDirect_ = false;                    // a row has each species once and is a census
    std::vector<CensusGatherer::Taxon> taxa_;  // of the row then
};

}  // namespace

std::unique_ptr<RowReader> wideRowReader(const TableReading& reading, TableRecords& records,
                                         NamePool* names) {
    return std::make_unique<WideRows>(reading, records, names);
}

}  // namespace zorvel
