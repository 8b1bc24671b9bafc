// Tables with a row for each census and a column for each species, or the other way round.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <set>
#include <string>
#include <utility>

#include "base/text.h"
#include "tables/row_reader.h"
#include "tables/words.h"

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
        positions_.assign(reading_.columns.size(), noPosition);
        for (std::size_t i = 0; i < columns_.counts.size(); ++i) {
            positions_[columns_.counts[i]] = static_cast<std::uint32_t>(i);
        }
        if (reading_.sameStages == SameRule::sum) stagesName_ = nameOfStages(header);
        for (const std::size_t column : columns_.counts) {
            const std::string name = nameAbove(header, column);
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
                addCensus(header, column, isOfSheet(shown) ? reading_.sheet : shown);
            }
        }
        const bool areApart = reading_.sameSpecies == SameRule::apart ||
                              gathered_.species.size() == columnNames_.size();
        cells_.resize(gathered_.censuses.size());
        valueless_.resize(columnCensuses_.size());
        heldCounts_.resize(mostHeld * columnCensuses_.size());
        isDirect_ = hasCensusRows() && !joinsCensuses() && areApart;
    }

    void read(const SparseRow& row) override {
        if (hasCensusRows()) {
            readCensus(row);
        } else {
            readSpecies(row);
        }
    }

    void finish() override {
        addHeld();
        for (std::size_t i = 0; i < valueless_.size(); ++i) {
            cells_[columnCensuses_[i]].hasValues |= valueless_[i] < speciesRows_;
        }
        RowReader::finish();
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
    // One census in a sheet of its own: its column is headed by a word for counts.
    [[nodiscard]] bool isOfSheet(std::string_view header) const {
        const auto meaning = headerMeaning(header);
        return columns_.counts.size() == 1 && !reading_.sheet.empty() && meaning &&
               meaning->role == ColumnRole::count;
    }

    [[nodiscard]] bool hasCensusRows() const { return reading_.layout == TableLayout::censusRows; }

    // Where sexes or stages are added, a name has none of them.
    [[nodiscard]] std::string nameAbove(const TableHeader& header, std::size_t column) const {
        std::string name = header.name(column);
        if (reading_.sameStages == SameRule::apart) return name;
        const auto stem = withoutStage(name);
        if (stem) name = stem->empty() ? stagesName_ : std::string(*stem);
        return name;
    }

    // Of what has nothing but sexes or stages above it: the sheet, or "M + F".
    [[nodiscard]] std::string nameOfStages(const TableHeader& header) const {
        if (!hasCensusRows() && !reading_.sheet.empty()) return reading_.sheet;
        std::set<std::string> known;
        std::string joined;
        for (const std::size_t column : columns_.counts) {
            const std::string name = header.name(column);
            if (withoutStage(name) != std::string_view() || !known.insert(name).second) continue;
            joined += (joined.empty() ? "" : " + ") + name;
        }
        return joined;
    }

    void addCensus(const TableHeader& header, std::size_t column, const std::string& name) {
        MockCensus census;
        census.name = nameInOneLine(name);
        for (std::size_t i = 0; i < header.height(); ++i) {
            rules_.readAttribute(census, reading_.headerRows[i], header.cell(i, column),
                                 {reading_.firstRow + i, 0, column}, false);
        }
        columnCensuses_.push_back(columns_.stages ? openCensus(std::move(census))
                                                  : gathered_.add(std::move(census)));
    }

    // Whether several rows may be one census.
    [[nodiscard]] bool joinsCensuses() const {
        return columns_.stages || reading_.sameCensus == SameRule::sum;
    }

    std::size_t openCensus(MockCensus census) {
        std::string key = keyOf(census);
        return gathered_.open(std::move(census), std::move(key));
    }

    void readCensus(const SparseRow& row) {
        MockCensus census;
        census.name = censusName(row).value_or(std::string());
        readAttributes(census, row);
        const std::size_t index =
            joinsCensuses() ? openCensus(std::move(census)) : gathered_.add(std::move(census));
        cells_.resize(gathered_.censuses.size());
        taxa_.clear();
        std::size_t valueless = 0;
        forCounts(row, [&](std::size_t i, std::string_view cell) {
            const CellRules::Count count = readCount(cell, row, i);
            cells_[index].hasMissing |= count.missing;
            valueless += count.missing || cell.empty();
            if (count.value == 0) return;
            if (isDirect_) {
                taxa_.push_back({columnNames_[i], count.value});
            } else {
                addTaxon(index, columnNames_[i], count.value, placeOf(row, columns_.counts[i]));
            }
        });
        cells_[index].hasValues |= valueless < columns_.counts.size();
        if (isDirect_) gathered_.setTaxa(index, taxa_);
    }

    void readSpecies(const SparseRow& row) {
        const std::string_view cell = columns_.species ? row.cell(*columns_.species) : "";
        if (cell.empty()) {
            rules_.problem(placeOf(row, columns_.species), {}, "The species has no name.");
            return;
        }
        if (!isSpeciesText(row)) return;
        const std::size_t known = gathered_.species.size();
        const std::size_t species = gathered_.species.number(speciesName(row, cell));
        ++speciesRows_;
        const bool isHeld = species == known && !columns_.stages;
        if (!isHeld || heldSpecies_.size() == mostHeld) addHeld();
        std::int64_t* const held =
            heldCounts_.data() + heldSpecies_.size() * columnCensuses_.size();
        if (isHeld) {
            heldSpecies_.push_back(species);
            std::fill_n(held, columnCensuses_.size(), 0);
        }
        forCounts(row, [&](std::size_t i, std::string_view value) {
            const CellRules::Count count = readCount(value, row, i);
            const std::size_t census = columnCensuses_[i];
            cells_[census].hasMissing |= count.missing;
            valueless_[i] += count.missing || value.empty();
            if (count.value == 0) return;
            if (isHeld) {
                held[i] = count.value;
            } else {
                addTaxon(census, species, count.value, placeOf(row, columns_.counts[i]));
            }
        });
    }

    void addHeld() {
        gathered_.addNewSpecies(heldSpecies_, columnCensuses_, heldCounts_);
        heldSpecies_.clear();
    }

    // Calls back for the cells of counts other than "0", with the place of the column among those
    // of counts. Cells beyond the end of the row are empty.
    template <class Take>
    void forCounts(const SparseRow& row, const Take& take) {
        for (std::size_t k = 0; k < row.cells.size(); ++k) {
            const std::size_t column = row.columns[k];
            if (column >= positions_.size()) break;
            if (positions_[column] != noPosition) take(positions_[column], row.cells[k]);
        }
        const auto& counts = columns_.counts;
        const auto end = std::lower_bound(counts.begin(), counts.end(), row.width);
        for (auto i = static_cast<std::size_t>(end - counts.begin()); i < counts.size(); ++i) {
            take(i, std::string_view());
        }
    }

    CellRules::Count readCount(std::string_view cell, const SparseRow& row, std::size_t i) {
        const CellRules::Count count = rules_.count(cell, placeOf(row, columns_.counts[i]));
        sums_[i] += count.written;
        return count;
    }

    static constexpr std::uint32_t noPosition = UINT32_MAX;

    std::string stagesName_;
    std::vector<std::uint32_t> positions_;     // of each column among those of counts
    std::vector<double> sums_;                 // of each column of counts
    std::vector<std::size_t> columnNames_;     // of each, where species have columns
    bool isDirect_ = false;                    // a row has each species once and is a census
    std::vector<CensusGatherer::Taxon> taxa_;  // of the row then
    // Of each column of counts, where species have rows: its census, and cells without a value.
    std::vector<std::size_t> columnCensuses_;
    std::vector<std::size_t> valueless_;
    std::size_t speciesRows_ = 0;
    // New species wait for others, so that the memory of each census is used for several at once.
    static constexpr std::size_t mostHeld = 16;
    std::vector<std::size_t> heldSpecies_;
    std::vector<std::int64_t> heldCounts_;  // of each of them, for each column
};

}  // namespace

std::unique_ptr<RowReader> wideRowReader(const TableReading& reading, TableRecords& records,
                                         NamePool* names) {
    return std::make_unique<WideRows>(reading, records, names);
}

}  // namespace zorvel
