// Tables with a row for each census and species: records.
#include <algorithm>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "tables/row_reader.h"
#include "tables/words.h"

namespace zorvel {
namespace {

bool isAbsent(std::string_view status) {
    std::string word(status);
    for (char& c : word) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return word == "absent" || word == "0" || word == "no" || word == "false";
}

class LongRows final : public RowReader {
  public:
    using RowReader::RowReader;

    void begin(const TableHeader& /*header*/) override {
        censusColumns_ = columns_.names;
        for (const auto& attribute : columns_.attributes) {
            censusColumns_.push_back(attribute.second);
        }
        censusColumns_.insert(censusColumns_.end(), columns_.dateParts.begin(),
                              columns_.dateParts.end());
    }

    void read(const SparseRow& row) override {
        const std::size_t census = censusOf(row);
        if (census == noCensus) return;
        const std::string_view species = row.cell(columns_.species.value_or(0));
        if (columns_.status) {
            const std::string_view status = row.cell(*columns_.status);
            if (!rules_.isText(status, placeOf(row, columns_.status))) return;
            if (isAbsent(status)) {
                ++records_.notices.absentRecords;
                return;
            }
        }
        if (columns_.exact && beginsCensus(row)) return;
        if (species.empty() && !columns_.exact) {
            // A census without species has such a row.
            const bool hasCounts = std::any_of(
                columns_.counts.begin(), columns_.counts.end(), [&row](std::size_t column) {
                    return !row.cell(column).empty() && row.cell(column) != "0";
                });
            if (hasCounts) {
                rules_.problem(placeOf(row, columns_.species), {}, "The species has no name.");
            }
            return;
        }
        if (!columns_.exact && !isSpeciesText(row)) return;
        const std::size_t number = columns_.genus
                                       ? gathered_.species.number(speciesName(row, species))
                                       : gathered_.species.number(species);
        const bool isNew = gathered_.species.size() > knownSpecies_;
        knownSpecies_ = gathered_.species.size();
        if (isNew && !columns_.exact) refuseTotal(row, species, columns_.species);
        const bool added = addCounts(row, census, number);
        if (columns_.included) readIncluded(row, census, added);
    }

    // Rows of records have no sums.
    [[nodiscard]] bool isTotal(const std::vector<std::string>& /*cells*/) const override {
        return false;
    }

  private:
    // Sums among the records would count twice.
    void refuseTotal(const SparseRow& row, std::string_view cell,
                     std::optional<std::size_t> column) {
        const auto meaning = headerMeaning(cell);
        if (!meaning || meaning->role != ColumnRole::total) return;
        rules_.problem(placeOf(row, column), cell,
                       shownInQuotes(cell) + " is the name of a total. Leave such rows out.");
    }

    // Of all columns of counts; 1 where they are blank. False where nothing was added to the taxa.
    bool addCounts(const SparseRow& row, std::size_t census, std::size_t species) {
        bool added = false;
        bool isBlank = true;
        for (const std::size_t column : columns_.counts) {
            const std::string_view cell = row.cell(column);
            if (cell.empty()) continue;
            isBlank = false;
            const TablePlace place = placeOf(row, column);
            const CellRules::Count count = rules_.count(cell, place);
            added |= addTaxon(census, species, count.value, place);
            cells_.resize(gathered_.censuses.size());
            cells_[census].hasMissing |= count.missing;
            cells_[census].hasValues |= !count.missing;
        }
        if (!isBlank) return added;
        cells_.resize(gathered_.censuses.size());
        cells_[census].hasValues = true;
        const TablePlace place =
            placeOf(row, columns_.counts.empty() ? 0 : columns_.counts.front());
        if (!columns_.counts.empty()) rules_.noteCountedOnce(place);
        return addTaxon(census, species, 1, place);
    }

    // added: the taxon of the row is the last of the census.
    void readIncluded(const SparseRow& row, std::size_t census, bool added) {
        const std::string_view mark = row.cell(*columns_.included);
        const std::optional<bool> included = mark.empty() ? true : yesOrNo(mark);
        if (!included) {
            rules_.problem(placeOf(row, columns_.included), mark,
                           shownInQuotes(mark) + " is neither yes nor no.");
        } else if (!*included && added) {
            MockCensus& its = gathered_.censuses[census];
            its.excluded.push_back(its.taxa.size() - 1);
        }
    }

    // Of a long table of Zorvel's own: tells of a census, not of a taxon.
    [[nodiscard]] bool beginsCensus(const SparseRow& row) const {
        return row.cell(*columns_.species).empty() && row.cell(columns_.counts.front()).empty();
    }

    // None where it has no name and that is a problem.
    std::size_t censusOf(const SparseRow& row) {
        const bool isNew = columns_.exact && beginsCensus(row);
        if (!isNew && repeatsCensus(row)) return lastCensus_;
        const std::size_t problems = records_.problems.count;
        const std::optional<std::string> name = censusName(row);
        if (!name) return noCensus;
        MockCensus census;
        census.name = *name;
        if (!columns_.exact && *name != lastName_)
            refuseTotal(
                row, *name,
                columns_.names.empty() ? std::nullopt : std::optional(columns_.names.front()));
        lastName_ = *name;
        readAttributes(census, row);
        const std::size_t index = openCensus(std::move(census), isNew);
        lastCensus_ = noCensus;
        if (records_.problems.count == problems) keepCensus(row, index);
        return index;
    }

    std::size_t openCensus(MockCensus census, bool isNew) {
        std::string key = keyOf(census);
        return isNew ? gathered_.openNew(std::move(census), std::move(key))
                     : gathered_.open(std::move(census), std::move(key));
    }

    // Whether all that a record tells of its census is, to the letter, what the one before told.
    [[nodiscard]] bool repeatsCensus(const SparseRow& row) const {
        if (lastCensus_ == noCensus) return false;
        for (std::size_t i = 0; i < censusColumns_.size(); ++i) {
            if (row.cell(censusColumns_[i]) != lastCells_[i]) return false;
        }
        return true;
    }

    void keepCensus(const SparseRow& row, std::size_t index) {
        const std::vector<std::size_t>& names = columns_.names;
        const bool isNamed = std::none_of(names.begin(), names.end(),
                                          [&row](auto column) { return row.cell(column).empty(); });
        if (names.empty() || (!isNamed && !columns_.exact)) return;
        lastCensus_ = index;
        lastCells_.clear();
        for (const std::size_t column : censusColumns_) lastCells_.emplace_back(row.cell(column));
    }

    static constexpr std::size_t noCensus = SIZE_MAX;

    std::size_t knownSpecies_ = 0;
    std::string lastName_;
    std::vector<std::size_t> censusColumns_;  // that tell of the census
    std::size_t lastCensus_ = noCensus;       // of the record before, if it was read without fault
    std::vector<std::string> lastCells_;      // by which it was known
};

}  // namespace

std::unique_ptr<RowReader> longRowReader(const TableReading& reading, TableRecords& records,
                                         NamePool* names) {
    return std::make_unique<LongRows>(reading, records, names);
}

}  // namespace zorvel
