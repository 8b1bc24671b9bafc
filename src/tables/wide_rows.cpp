// Tables with a row for each census and a column for each species, or the other way round.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "tables/row_reader.h"
#include "tables/stage_names.h"
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
        nameColumns(header);
        const bool areApart = reading_.sameSpecies == SameRule::apart ||
                              gathered_.species.size() == speciesOf_.size();
        cells_.resize(gathered_.censuses.size());
        if (!hasCensusRows()) valueless_.resize(columns_.counts.size());
        counts_.resize((hasCensusRows() ? 1 : mostHeld) * firstColumns_.size());
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
            cells_[groups_[i]].hasValues |= valueless_[i] < speciesRows_;
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

    // Names the species or census of each column, and joins those that differ in a sex or stage.
    void nameColumns(const TableHeader& header) {
        std::map<std::size_t, std::string> joined;
        if (reading_.sameStages == SameRule::sum) joined = namesWithoutStages(header, reading_);
        const std::set<std::string> overStages = namesOverStages(header);
        for (const std::size_t column : columns_.counts) {
            const auto found = joined.find(column);
            const bool isJoined = found != joined.end();
            const std::string name = isJoined ? found->second : header.name(column);
            if (isJoined) records_.notices.stageColumns.push_back(column);
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
            const bool isOfStages = isJoined || overStages.contains(name);
            groups_.push_back(hasCensusRows() ? addSpecies(shown, isOfStages)
                                              : addCensus(header, column, shown, isOfStages));
            if (groups_.back() == firstColumns_.size()) firstColumns_.push_back(column);
        }
    }

    // The names of the columns above which a row of the header has a sex or stage.
    [[nodiscard]] std::set<std::string> namesOverStages(const TableHeader& header) const {
        std::set<std::string> names;
        for (std::size_t i = 0; i < header.height(); ++i) {
            if (reading_.headerRows[i] != ColumnRole::stage) continue;
            for (const std::size_t column : columns_.counts) {
                if (!header.cell(i, column).empty()) names.insert(header.name(column));
            }
        }
        return names;
    }

    // The group of a column.
    std::size_t addSpecies(const std::string& name, bool isOfStages) {
        const std::size_t group = speciesOf_.size();
        const std::size_t species = gathered_.species.number(name);
        if (isOfStages) {
            const std::size_t known = stageGroups_.emplace(species, group).first->second;
            if (known != group) return known;
        }
        speciesOf_.push_back(species);
        return group;
    }

    std::size_t addCensus(const TableHeader& header, std::size_t column, const std::string& name,
                          bool isOfStages) {
        MockCensus census;
        census.name = nameInOneLine(isOfSheet(name) ? reading_.sheet : name);
        for (std::size_t i = 0; i < header.height(); ++i) {
            rules_.readAttribute(census, reading_.headerRows[i], header.cell(i, column),
                                 {reading_.firstRow + i, 0, column}, false);
        }
        return isOfStages ? openCensus(std::move(census)) : gathered_.add(std::move(census));
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
        std::size_t valueless = 0;
        std::fill(counts_.begin(), counts_.end(), 0);
        forCounts(row, [&](std::size_t i, std::string_view cell) {
            const CellRules::Count count = readCount(cell, row, i, counts_.data());
            cells_[index].hasMissing |= count.missing;
            valueless += count.missing || cell.empty();
        });
        cells_[index].hasValues |= valueless < columns_.counts.size();
        taxa_.clear();
        for (std::size_t group = 0; group < counts_.size(); ++group) {
            if (counts_[group] == 0) continue;
            if (isDirect_) {
                taxa_.push_back({speciesOf_[group], counts_[group]});
                continue;
            }
            const TablePlace place = placeOf(row, firstColumns_[group]);
            if (columns_.stages && reading_.sameSpecies == SameRule::apart) {
                addStage(index, group, place);
            } else {
                addTaxon(index, speciesOf_[group], counts_[group], place);
            }
        }
        if (isDirect_) gathered_.setTaxa(index, taxa_);
    }

    // To the other stages of the same columns; columns of one species stay apart.
    void addStage(std::size_t census, std::size_t group, const TablePlace& place) {
        std::vector<MockTaxon>& taxa = gathered_.censuses[census].taxa;
        const auto [found, isNew] = stageTaxa_.try_emplace({census, group}, taxa.size());
        if (isNew) {
            addTaxon(census, speciesOf_[group], counts_[group], place);
        } else {
            addCount(taxa[found->second].abundance, counts_[group], place);
        }
    }

    void readSpecies(const SparseRow& row) {
        const std::string_view cell = columns_.species ? row.cell(*columns_.species) : "";
        if (cell.empty()) {
            rules_.problem(placeOf(row, columns_.species), {}, "The species has no name.");
            return;
        }
        if (!isSpeciesText(row)) return;
        if (isMeasured(row, cell)) {
            rules_.problem(
                placeOf(row, columns_.species), cell,
                shownInQuotes(cell) +
                    " is the label of years or of a measurement, not of a species. Leave "
                    "the row out, or count it among the header rows.");
            return;
        }
        const std::size_t known = gathered_.species.size();
        const std::size_t species = gathered_.species.number(speciesName(row, cell));
        ++speciesRows_;
        const bool isNew = species == known;
        if (!isNew || heldSpecies_.size() == mostHeld) addHeld();
        const std::size_t censuses = firstColumns_.size();
        std::int64_t* const counts = counts_.data() + heldSpecies_.size() * censuses;
        std::fill_n(counts, censuses, 0);
        forCounts(row, [&](std::size_t i, std::string_view value) {
            const CellRules::Count count = readCount(value, row, i, counts);
            cells_[groups_[i]].hasMissing |= count.missing;
            valueless_[i] += count.missing || value.empty();
        });
        if (isNew) {
            heldSpecies_.push_back(species);
            return;
        }
        for (std::size_t census = 0; census < censuses; ++census) {
            addTaxon(census, species, counts[census], placeOf(row, firstColumns_[census]));
        }
    }

    // A measurement is known by one word alone: "Oxygen weed" is a species.
    [[nodiscard]] bool isMeasured(const SparseRow& row, std::string_view label) const {
        const auto meaning = headerMeaning(label);
        if (!meaning) return false;
        if (meaning->role == ColumnRole::ignored) {
            // Sand or litter may be counted like a species.
            return meaning->rank > 2 && label.find_first_of(" ._-") == std::string_view::npos;
        }
        // "Ar" may be the code of a species.
        return meaning->role == ColumnRole::year &&
               std::all_of(columns_.counts.begin(), columns_.counts.end(),
                           [&row](std::size_t column) {
                               const auto year = parseWholeInteger(row.cell(column));
                               return year && *year >= 1000 && *year < 3000;
                           });
    }

    void addHeld() {
        gathered_.addNewSpecies(heldSpecies_, counts_);
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

    // counts: of the row, for each group.
    CellRules::Count readCount(std::string_view cell, const SparseRow& row, std::size_t i,
                               std::int64_t* counts) {
        const TablePlace place = placeOf(row, columns_.counts[i]);
        const CellRules::Count count = rules_.count(cell, place);
        sums_[i] += count.written;
        std::int64_t& sum = counts[groups_[i]];
        if (sum == 0) {
            sum = count.value;
        } else if (count.value != 0) {
            addCount(sum, count.value, place);
        }
        return count;
    }

    static constexpr std::uint32_t noPosition = UINT32_MAX;

    std::vector<std::uint32_t> positions_;  // of each column among those of counts
    std::vector<double> sums_;              // of each column of counts
    // Columns of counts that differ in a sex or stage are a group, as is any other: it is a species
    // or, where species have rows, the census of its number.
    std::vector<std::size_t> groups_;                 // of each column of counts
    std::vector<std::size_t> firstColumns_;           // of each group
    std::vector<std::size_t> speciesOf_;              // of each group
    std::map<std::size_t, std::size_t> stageGroups_;  // of species
    // Of a census and a group, its place among the taxa; see addStage().
    std::map<std::pair<std::size_t, std::size_t>, std::size_t> stageTaxa_;
    bool isDirect_ = false;                    // a row has each species once and is a census
    std::vector<CensusGatherer::Taxon> taxa_;  // of the row then
    // Of each column of counts, where species have rows: cells without a value.
    std::vector<std::size_t> valueless_;
    std::size_t speciesRows_ = 0;
    // New species wait for others, so that the memory of each census is used for several at once.
    static constexpr std::size_t mostHeld = 16;
    std::vector<std::size_t> heldSpecies_;
    std::vector<std::int64_t> counts_;  // of the row or of each species held, for each group
};

}  // namespace

std::unique_ptr<RowReader> wideRowReader(const TableReading& reading, TableRecords& records,
                                         NamePool* names) {
    return std::make_unique<WideRows>(reading, records, names);
}

}  // namespace zorvel
