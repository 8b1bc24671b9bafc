// Tables with a row for each census and species: records.
#include <algorithm>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "tables/row_reader.h"

namespace zorvel {
namespace {

bool isAbsent(std::string_view status) {
    std::string word(status);
    for (char& c : word) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return word == "absent" || word == "0" || word == "no" || word == "false";
}

std::string placeAndTime(const MockCensus& census) {
    return shortestText(census.latitude) + ' ' + shortestText(census.longitude) + ' ' +
           (census.timeStamp ? integerText(census.timeStamp->time_since_epoch().count()) : "");
}

class LongRows final : public RowReader {
  public:
    using RowReader::RowReader;

    void begin(const TableHeader& /*header*/) override {}

    void read(const TableRow& row) override {
        const std::optional<std::size_t> index = censusOf(row);
        if (!index) return;
        const std::string_view species = row.cell(columns_.species.value_or(0));
        if (columns_.status) {
            const std::string_view status = row.cell(*columns_.status);
            if (!rules_.isText(status, placeOf(row, columns_.status))) return;
            if (isAbsent(status)) {
                ++records_.notices.absentRecords;
                return;
            }
        }
        const auto counts =
            columns_.counts.empty() ? std::nullopt : std::optional(columns_.counts.front());
        const std::string_view cell = counts ? row.cell(*counts) : "";
        if (columns_.exact && beginsCensus(row)) return;
        if (species.empty() && !columns_.exact) {
            // A census without species has such a row.
            if (!cell.empty() && cell != "0") {
                rules_.problem(placeOf(row, columns_.species), {}, "The species has no name.");
            }
            return;
        }
        if (!columns_.exact && !isSpeciesText(row)) return;
        const TablePlace place = placeOf(row, counts.value_or(0));
        std::int64_t value = 1;
        if (!cell.empty()) {
            value = rules_.count(cell, place).value;
        } else if (counts) {
            rules_.noteCountedOnce(place);
        }
        const std::size_t number =
            gathered_.species.number(columns_.genus ? speciesName(row, species) : species);
        const bool added = addTaxon(*index, number, value, place);
        if (columns_.included) readIncluded(row, *index, added);
    }

    // Rows of records have no sums.
    [[nodiscard]] bool isTotal(const std::vector<std::string>& /*cells*/) const override {
        return false;
    }

  private:
    // added: the taxon of the row is the last of the census.
    void readIncluded(const TableRow& row, std::size_t census, bool added) {
        const std::string_view mark = row.cell(*columns_.included);
        const std::optional<bool> included = mark.empty() ? true : yesOrNo(mark);
        if (!included) {
            rules_.problem(placeOf(row, columns_.included), mark,
                           shownInQuotes(mark) + " is neither yes nor no.");
        } else if (!*included && added) {
            records_.excluded.resize(gathered_.censuses.size());
            records_.excluded[census].push_back(gathered_.censuses[census].taxa.size() - 1);
        }
    }

    // Of a long table of Zorvel's own: tells of a census, not of a taxon.
    [[nodiscard]] bool beginsCensus(const TableRow& row) const {
        return row.cell(*columns_.species).empty() && row.cell(columns_.counts.front()).empty();
    }

    // Absent where it has no name and that is a problem.
    std::optional<std::size_t> censusOf(const TableRow& row) {
        const bool isNew = columns_.exact && beginsCensus(row);
        if (!isNew && repeatsCensus(row)) return lastCensus_;
        const std::size_t problems = records_.problems.count;
        const std::optional<std::string> name = censusName(row);
        if (!name) return std::nullopt;
        MockCensus census;
        census.name = *name;
        readAttributes(census, row);
        const std::size_t index = openCensus(std::move(census), isNew);
        lastCensus_.reset();
        if (records_.problems.count == problems) keepCensus(row, index);
        return index;
    }

    // The census of that name, date and place, or of that name alone; otherwise a new one.
    std::size_t openCensus(MockCensus census, bool isNew) {
        std::string key = columns_.exact ? census.name : canonicalForm(census.name);
        if (columns_.exact || reading_.sameCensus == SameRule::apart) {
            key += '\0' + placeAndTime(census);
        }
        return isNew ? gathered_.openNew(std::move(census), std::move(key))
                     : gathered_.open(std::move(census), std::move(key));
    }

    // Whether all that a record tells of its census is, to the letter, what the one before told.
    [[nodiscard]] bool repeatsCensus(const TableRow& row) const {
        if (!lastCensus_) return false;
        std::size_t i = 0;
        const auto repeats = [&](std::size_t column) {
            return row.cell(column) == lastCells_[i++];
        };
        return repeats(*columns_.census) &&
               std::all_of(columns_.attributes.begin(), columns_.attributes.end(),
                           [&](const auto& attribute) { return repeats(attribute.second); }) &&
               std::all_of(columns_.dateParts.begin(), columns_.dateParts.end(), repeats);
    }

    void keepCensus(const TableRow& row, std::size_t index) {
        if (!columns_.census || (row.cell(*columns_.census).empty() && !columns_.exact)) return;
        lastCensus_ = index;
        lastCells_.assign(1, std::string(row.cell(*columns_.census)));
        for (const auto& attribute : columns_.attributes) {
            lastCells_.emplace_back(row.cell(attribute.second));
        }
        for (const std::size_t column : columns_.dateParts) {
            lastCells_.emplace_back(row.cell(column));
        }
    }

    std::optional<std::size_t> lastCensus_;  // of the record before, if it was read without fault
    std::vector<std::string> lastCells_;     // by which it was known
};

}  // namespace

std::unique_ptr<RowReader> longRowReader(const TableReading& reading, TableRecords& records,
                                         NamePool* names) {
    return std::make_unique<LongRows>(reading, records, names);
}

}  // namespace zorvel
