#include "tables/reader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "tables/cells.h"
#include "tables/words.h"

namespace zorvel {
namespace {

using Kind = CellCount::Kind;

void add(TableRemarks& remarks, TableRemark remark) {
    if (++remarks.count <= TableRemarks::mostKept) remarks.kept.push_back(std::move(remark));
}

// A name on one line.
std::string nameOf(std::string_view cell) {
    std::string name(cell);
    for (char& c : name) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = ' ';
    }
    return name;
}

// Gives each name a number, in the order of their first appearance; equal names share one.
class Names {
  public:
    explicit Names(NamePool* pool) : pool_(pool) {}

    std::size_t number(std::string_view cell) {
        const auto known = numbers_.find(std::string(cell));
        if (known != numbers_.end()) return known->second;
        const std::string name = nameOf(cell);
        const std::size_t next = names_.size();
        const std::size_t number = canonical_.try_emplace(canonicalForm(name), next).first->second;
        if (number == next)
            names_.push_back(pool_ != nullptr ? pool_->intern(name) : SharedText(name));
        numbers_.emplace(cell, number);
        return number;
    }
    [[nodiscard]] const SharedText& name(std::size_t number) const { return names_[number]; }

  private:
    std::unordered_map<std::string, std::size_t> numbers_;
    std::unordered_map<std::string, std::size_t> canonical_;
    std::vector<SharedText> names_;
    NamePool* pool_;
};

class Reader {
  public:
    Reader(const TableReading& reading, NamePool* names)
        : reading_(reading),
          marks_{reading.decimalMark, reading.thousandsMark},
          speciesNames_(names) {}

    TableRecords read(RowSource& source, const std::stop_token& stop) {
        TableRow row;
        while (!stop.stop_requested() && source.next(row)) {
            if (row.number < reading_.firstRow) continue;
            if (reading_.lastRow != 0 && row.number > reading_.lastRow) break;
            if (row.number < reading_.firstDataRow()) {
                readHeader(row);
                continue;
            }
            if (row.number == reading_.firstDataRow()) beginData();
            takeDataRow(row);
        }
        if (!begun_) beginData();
        finish();
        return std::move(records_);
    }

  private:
    using Cells = std::vector<std::string>;

    // A row that may be a total or a note below the table, until the next one tells.
    struct HeldRow {
        std::size_t number = 0;
        std::size_t line = 0;
        Cells cells;
    };

    // --- header ---

    void readHeader(const TableRow& row) {
        Cells cells(row.cells.begin(), row.cells.end());
        if (reading_.shortHeader && header_.empty()) cells.insert(cells.begin(), std::string());
        header_.push_back(std::move(cells));
    }

    [[nodiscard]] std::string_view headerCell(std::size_t i, std::size_t column) const {
        return column < header_[i].size() ? std::string_view(header_[i][column])
                                          : std::string_view();
    }

    // Of the header rows that hold the names of a column, parted by blanks: genus over epithet.
    [[nodiscard]] std::string headerName(std::size_t column) const {
        std::string name;
        for (std::size_t i = 0; i < header_.size(); ++i) {
            const ColumnRole role = reading_.headerRows[i];
            if (role != ColumnRole::species && role != ColumnRole::census) continue;
            if (headerCell(i, column).empty()) continue;
            if (!name.empty()) name += ' ';
            name += headerCell(i, column);
        }
        return name;
    }

    [[nodiscard]] std::optional<std::size_t> columnOf(ColumnRole role) const {
        const auto found = std::find(reading_.columns.begin(), reading_.columns.end(), role);
        if (found == reading_.columns.end()) return std::nullopt;
        return static_cast<std::size_t>(found - reading_.columns.begin());
    }

    void beginData() {
        begun_ = true;
        census_ = columnOf(ColumnRole::census);
        species_ = columnOf(ColumnRole::species);
        for (std::size_t column = 0; column < reading_.columns.size(); ++column) {
            if (reading_.columns[column] == ColumnRole::count) counts_.push_back(column);
            if (reading_.columns[column] == ColumnRole::ignored && !headerName2(column).empty()) {
                records_.notices.ignoredColumns.push_back(columnLetters(column) + " \"" +
                                                          headerName2(column) + "\"");
            }
        }
        sums_.assign(counts_.size(), 0);
        if (reading_.layout == TableLayout::records) return;
        for (const std::size_t column : counts_) {
            const std::string name = headerName(column);
            if (name.empty() && !reading_.headerRows.empty()) {
                problem(reading_.firstRow, 0, column, {},
                        reading_.layout == TableLayout::censusRows
                            ? "There is no name of a species above these counts."
                            : "There is no name of a census above these counts.");
            }
            const std::string shown =
                reading_.headerRows.empty() ? "Column " + columnLetters(column) : name;
            if (reading_.layout == TableLayout::censusRows) {
                columnNames_.push_back(speciesNames_.number(shown));
            } else {
                addCensusOfColumn(column, shown);
            }
        }
    }

    // The text of the header in any layout.
    [[nodiscard]] std::string headerName2(std::size_t column) const {
        std::string name = headerName(column);
        if (name.empty() && !header_.empty()) name = headerCell(0, column);
        return name;
    }

    void addCensusOfColumn(std::size_t column, const std::string& name) {
        MockCensus census;
        census.name = nameOf(name);
        for (std::size_t i = 0; i < header_.size(); ++i) {
            readAttribute(census, reading_.headerRows[i], headerCell(i, column),
                          {reading_.firstRow + i, 0, column});
        }
        addCensus(std::move(census));
    }

    // --- rows ---

    struct Place {
        std::size_t row = 0;
        std::size_t line = 0;
        std::size_t column = 0;
    };

    void takeDataRow(const TableRow& row) {
        const bool isLeftOut = std::binary_search(reading_.leftOutRows.begin(),
                                                  reading_.leftOutRows.end(), row.number);
        const auto filled = static_cast<std::size_t>(
            std::count_if(row.cells.begin(), row.cells.end(), [](auto c) { return !c.empty(); }));
        if (isLeftOut) return;
        if (filled == 0) {
            afterEmpty_ = true;
            return;
        }
        const bool note = afterEmpty_ && filled == 1 && reading_.columns.size() > 2;
        if (note || summaryRank(row)) {
            held_.push_back({row.number, row.line, Cells(row.cells.begin(), row.cells.end())});
            return;
        }
        releaseHeld();
        afterEmpty_ = false;
        readRow(row);
    }

    // Labelled, where the names are, as a total (rank 0) or another value computed of the rows
    // above.
    [[nodiscard]] std::optional<int> summaryRank(const TableRow& row) const {
        if (reading_.layout == TableLayout::records) return std::nullopt;
        for (std::size_t column = 0; column < row.cells.size(); ++column) {
            if (reading_.role(column) == ColumnRole::count) return std::nullopt;
            if (row.cells[column].empty()) continue;
            const auto meaning = headerMeaning(row.cells[column]);
            if (!meaning || meaning->role != ColumnRole::total) return std::nullopt;
            return meaning->rank;
        }
        return std::nullopt;
    }

    void releaseHeld() {
        for (const HeldRow& held : std::exchange(held_, {})) {
            TableRow row{held.number, held.line, {held.cells.begin(), held.cells.end()}};
            readRow(row);
        }
    }

    [[nodiscard]] bool holdsSums(const HeldRow& held) const {
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            const std::size_t column = counts_[i];
            const std::string cell =
                column < held.cells.size() ? held.cells[column] : std::string();
            const double value = tableNumber(cell, marks_).value_or(0);
            if (std::abs(value - sums_[i]) > 1e-9 * std::max(1.0, sums_[i])) return false;
        }
        return true;
    }

    // What is held at the end is no record: a total whose sums agree, and notes below the table.
    void settleHeld() {
        const auto total = std::find_if(held_.begin(), held_.end(), [this](const HeldRow& held) {
            TableRow row{held.number, held.line, {held.cells.begin(), held.cells.end()}};
            return summaryRank(row) == 0;
        });
        if (total != held_.end() && !holdsSums(*total)) {
            releaseHeld();
            return;
        }
        for (const HeldRow& held : held_) {
            if (total != held_.end() && held.number == total->number) {
                records_.notices.totalsRow = held.number;
            } else {
                records_.notices.noteRows.push_back(held.number);
            }
        }
    }

    void readRow(const TableRow& row) {
        records_.lastRow = row.number;
        switch (reading_.layout) {
            case TableLayout::censusRows:
                readCensusRow(row);
                break;
            case TableLayout::speciesRows:
                readSpeciesRow(row);
                break;
            case TableLayout::records:
                readRecord(row);
                break;
        }
    }

    // The count of a cell; 0 where there is none. missing: it has a mark for that.
    struct Count {
        std::int64_t value = 0;
        bool missing = false;
    };

    Count countOf(std::string_view cell, const Place& place) {
        if (reading_.presence) {
            const std::optional<bool> mark = presenceMark(cell);
            if (!mark && !isMissingMark(cell)) {
                return takeFault(CountFault::notANumber, "\"" + shown(cell) + "\"",
                                 " is neither x nor 1 nor 0.", cell, place);
            }
            return {mark.value_or(false) ? 1 : 0, !mark};
        }
        const CellCount count = cellCount(cell, marks_);
        switch (count.kind) {
            case Kind::count:
                return {count.value, false};
            case Kind::blank:
                ++records_.notices.blankCells;
                return {};
            case Kind::missing:
                return takeMissing(cell, place);
            case Kind::fraction:
                if (reading_.fractions == FractionRule::round) {
                    ++records_.notices.roundedCells;
                    return {count.value, false};
                }
                return takeFault(CountFault::fraction, shown(cell),
                                 " is not a whole number. Zorvel counts individuals.", cell, place);
            case Kind::negative:
                return takeFault(CountFault::negative, shown(cell), " is below zero.", cell, place);
            case Kind::tooLarge:
                return takeFault(CountFault::tooLarge, shown(cell),
                                 " is more than 9223372036854775807.", cell, place);
            case Kind::notANumber:
                break;
        }
        return takeFault(CountFault::notANumber, "\"" + shown(cell) + "\"", " is not a number.",
                         cell, place);
    }

    // As 0 where the rule says so; otherwise a problem.
    Count takeFault(CountFault fault, const std::string& subject, const char* predicate,
                    std::string_view cell, const Place& place) {
        const auto& zero = reading_.takenAsZero;
        const bool isZero = std::find(zero.begin(), zero.end(), fault) != zero.end();
        add(isZero ? records_.notices.takenAsZero : records_.problems,
            {place.row, place.line, place.column, std::string(cell),
             subject + (isZero ? " is taken as 0." : predicate), fault});
        return {};
    }

    Count takeMissing(std::string_view cell, const Place& place) {
        if (reading_.missing == MissingRule::problem) {
            problem(place, cell, shown(cell) + " is no value.");
            return {0, true};
        }
        const char* const taken = reading_.missing == MissingRule::zero
                                      ? " is no value; taken as 0."
                                      : " is no value; its census is left out.";
        add(records_.notices.missing,
            {place.row, place.line, place.column, std::string(cell), shown(cell) + taken});
        return {0, true};
    }

    void readAttribute(MockCensus& census, ColumnRole role, std::string_view cell,
                       const Place& place) {
        if (cell.empty() || (role != ColumnRole::notes && isMissingMark(cell))) return;
        switch (role) {
            case ColumnRole::latitude:
                readDegrees(census.latitude, cell, 90, place);
                break;
            case ColumnRole::longitude:
                readDegrees(census.longitude, cell, 180, place);
                break;
            case ColumnRole::notes:
                census.notes = cell;
                break;
            case ColumnRole::date:
                readDate(census, cell, place);
                break;
            default:
                break;
        }
    }

    void readDegrees(double& degrees, std::string_view cell, double limit, const Place& place) {
        const std::optional<double> value = tableDegrees(cell, marks_, limit);
        if (value) degrees = *value;
        if (!value) {
            problem(place, cell,
                    "\"" + shown(cell) + "\" is not a " +
                        (limit == 90 ? "latitude from -90 to 90." : "longitude from -180 to 180."));
        }
    }

    void readDate(MockCensus& census, std::string_view cell, const Place& place) {
        const CellDate date = tableDate(cell, reading_.dateOrder);
        census.timeStamp = date.time;
        if (date.time) return;
        problem(place, cell,
                date.needsOrder ? shown(cell) + " may begin with the day or the month."
                                : "\"" + shown(cell) + "\" is not a date.");
    }

    void readAttributes(MockCensus& census, const TableRow& row) {
        for (const ColumnRole role :
             {ColumnRole::latitude, ColumnRole::longitude, ColumnRole::date, ColumnRole::notes}) {
            if (const auto column = columnOf(role)) {
                readAttribute(census, role, row.cell(*column), {row.number, row.line, *column});
            }
        }
        const auto year = columnOf(ColumnRole::year);
        const auto month = columnOf(ColumnRole::month);
        const auto day = columnOf(ColumnRole::day);
        if (columnOf(ColumnRole::date) || !year || !month || !day) return;
        std::string date;
        for (const std::size_t column : {*year, *month, *day}) {
            if (row.cell(column).empty()) return;
            date += (date.empty() ? "" : "-") + std::string(row.cell(column));
        }
        readDate(census, date, {row.number, row.line, *year});
    }

    // The name of the census of a row; absent where it has none and that is a problem.
    std::optional<std::string> censusName(const TableRow& row) {
        const std::string_view cell = census_ ? row.cell(*census_) : std::string_view();
        if (!cell.empty()) return nameOf(cell);
        const std::string number = "row " + integerText(static_cast<std::int64_t>(row.number));
        if (reading_.unnamed == UnnamedRule::rowNumber || !census_) return number;
        if (reading_.unnamed == UnnamedRule::above && !lastName_.empty()) return lastName_;
        problem(row.number, row.line, census_, {}, "The census has no name.");
        return std::nullopt;
    }

    void readCensusRow(const TableRow& row) {
        const std::optional<std::string> name = censusName(row);
        lastName_ = name.value_or(std::string());
        MockCensus census;
        census.name = lastName_;
        readAttributes(census, row);
        const std::size_t first =
            openCensus(std::move(census), reading_.sameCensus == SameRule::sum);
        std::size_t filled = 0;
        std::size_t missing = 0;
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            const std::string_view cell = row.cell(counts_[i]);
            const Count count = countOf(cell, {row.number, row.line, counts_[i]});
            filled += !cell.empty();
            missing += count.missing;
            addTaxon(first, columnNames_[i], count.value, {row.number, row.line, counts_[i]});
            sums_[i] += static_cast<double>(count.value);
        }
        noteMissing(first, filled, missing);
    }

    [[nodiscard]] std::string withGenus(const TableRow& row, std::string_view species) const {
        const auto genus = columnOf(ColumnRole::genus);
        if (!genus || row.cell(*genus).empty()) return std::string(species);
        return std::string(row.cell(*genus)) + " " + std::string(species);
    }

    void readSpeciesRow(const TableRow& row) {
        const std::string_view cell = species_ ? row.cell(*species_) : std::string_view();
        if (cell.empty()) {
            problem(row.number, row.line, species_, {}, "The species has no name.");
            return;
        }
        const std::size_t name = speciesNames_.number(withGenus(row, cell));
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            const std::string_view value = row.cell(counts_[i]);
            const Place place{row.number, row.line, counts_[i]};
            const Count count = countOf(value, place);
            addTaxon(i, name, count.value, place);
            sums_[i] += static_cast<double>(count.value);
            filled_.resize(counts_.size());
            filled_[i].first += !value.empty();
            filled_[i].second += count.missing;
        }
    }

    void readRecord(const TableRow& row) {
        const std::optional<std::string> name = censusName(row);
        if (!name) return;
        lastName_ = *name;
        MockCensus census;
        census.name = *name;
        readAttributes(census, row);
        const std::size_t index = openCensus(std::move(census), true);
        const std::string_view species = row.cell(species_.value_or(0));
        const auto statusColumn = columnOf(ColumnRole::status);
        if (statusColumn && isAbsent(row.cell(*statusColumn))) {
            ++records_.notices.absentRecords;
            return;
        }
        const std::string_view cell = counts_.empty() ? std::string_view() : row.cell(counts_[0]);
        if (species.empty()) {
            // A census without species has such a row.
            if (!cell.empty() && cell != "0") {
                problem(row.number, row.line, species_, {}, "The species has no name.");
            }
            return;
        }
        const Place place{row.number, row.line, counts_.empty() ? 0 : counts_[0]};
        std::int64_t value = 1;
        if (cell.empty()) {
            if (!counts_.empty()) {
                add(records_.notices.countedOnce,
                    {row.number, row.line, place.column, {}, "no count, taken as 1"});
            }
        } else {
            value = countOf(cell, place).value;
        }
        const bool added =
            addTaxon(index, speciesNames_.number(withGenus(row, species)), value, place);
        const auto include = columnOf(ColumnRole::included);
        if (!include) return;
        const std::string_view mark = row.cell(*include);
        const std::optional<bool> included = mark.empty() ? true : yesOrNo(mark);
        if (!included) {
            problem(row.number, row.line, include, mark,
                    "\"" + shown(mark) + "\" is neither yes nor no.");
        } else if (!*included && added) {
            records_.excluded.resize(records_.censuses.size());
            records_.excluded[index].push_back(records_.censuses[index].taxa.size() - 1);
        }
    }

    static bool isAbsent(std::string_view status) {
        std::string word(status);
        for (char& c : word) {
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        }
        return word == "absent" || word == "0" || word == "no" || word == "false";
    }

    // --- censuses and taxa ---

    std::size_t addCensus(MockCensus census) {
        records_.censuses.push_back(std::move(census));
        return records_.censuses.size() - 1;
    }

    // The census of that name, if rows of one name may be one census; otherwise a new one.
    std::size_t openCensus(MockCensus census, bool joins) {
        if (!joins) return addCensus(std::move(census));
        std::string key = canonicalForm(census.name);
        if (reading_.layout == TableLayout::records && reading_.sameCensus == SameRule::apart) {
            key +=
                '\0' + shortestText(census.latitude) + ' ' + shortestText(census.longitude) + ' ' +
                (census.timeStamp ? integerText(census.timeStamp->time_since_epoch().count()) : "");
        }
        const auto [found, isNew] =
            censusOfKey_.try_emplace(std::move(key), records_.censuses.size());
        if (isNew) return addCensus(std::move(census));
        MockCensus& known = records_.censuses[found->second];
        if (known.notes.empty()) known.notes = std::move(census.notes);
        return found->second;
    }

    // False where there is nothing to add, or the count was added to that of the species.
    bool addTaxon(std::size_t census, std::size_t name, std::int64_t value, const Place& place) {
        if (value <= 0) return false;
        std::vector<MockTaxon>& taxa = records_.censuses[census].taxa;
        if (reading_.sameSpecies == SameRule::sum) {
            const auto key = static_cast<std::uint64_t>(census) << 32 | name;
            const auto [found, isNew] = taxonOf_.try_emplace(key, taxa.size());
            if (!isNew) {
                ++records_.notices.summedSpecies;
                std::int64_t& sum = taxa[found->second].abundance;
                if (__builtin_add_overflow(sum, value, &sum)) {
                    sum = std::numeric_limits<std::int64_t>::max();
                    problem(
                        place, {},
                        "The sum of the counts of this species is more than 9223372036854775807.");
                }
                return false;
            }
        }
        taxa.push_back({value, speciesNames_.name(name)});
        return true;
    }

    void noteMissing(std::size_t census, std::size_t filled, std::size_t missing) {
        filled_.resize(std::max(filled_.size(), census + 1));
        filled_[census].first += filled;
        filled_[census].second += missing;
    }

    // Censuses of missing marks alone are left out, and those with any if the rule says so.
    void leaveOutCensuses() {
        const bool any = reading_.missing == MissingRule::leaveOut;
        std::vector<MockCensus> kept;
        for (std::size_t i = 0; i < records_.censuses.size(); ++i) {
            const auto [filled, missing] =
                i < filled_.size() ? filled_[i] : std::pair<std::size_t, std::size_t>();
            MockCensus& census = records_.censuses[i];
            if (missing > 0 && (any || missing == filled)) {
                records_.notices.leftOutCensuses.push_back(census.name);
            } else {
                records_.notices.emptyCensuses += census.taxa.empty();
                kept.push_back(std::move(census));
            }
        }
        records_.censuses = std::move(kept);
    }

    void finish() {
        settleHeld();
        leaveOutCensuses();
        if (!records_.excluded.empty()) records_.excluded.resize(records_.censuses.size());
    }

    // --- problems ---

    static std::string shown(std::string_view cell) { return terminalLine(cell); }

    void problem(std::size_t row, std::size_t line, std::optional<std::size_t> column,
                 std::string_view cell, std::string reason) {
        add(records_.problems, {row, line, column, std::string(cell), std::move(reason)});
    }
    void problem(const Place& place, std::string_view cell, std::string reason) {
        problem(place.row, place.line, place.column, cell, std::move(reason));
    }

    const TableReading& reading_;
    NumberMarks marks_;
    TableRecords records_;
    bool begun_ = false;
    std::vector<Cells> header_;
    std::optional<std::size_t> census_;
    std::optional<std::size_t> species_;
    std::vector<std::size_t> counts_;       // columns
    std::vector<double> sums_;              // of each
    std::vector<std::size_t> columnNames_;  // of each, where species have columns
    Names speciesNames_;
    std::unordered_map<std::string, std::size_t> censusOfKey_;
    std::unordered_map<std::uint64_t, std::size_t> taxonOf_;
    std::vector<std::pair<std::size_t, std::size_t>> filled_;  // of a census: filled, missing
    std::vector<HeldRow> held_;
    std::string lastName_;
    bool afterEmpty_ = false;
};

}  // namespace

std::string columnLetters(std::size_t column) {
    std::string letters;
    for (++column; column > 0; column = (column - 1) / 26) {
        letters.insert(letters.begin(), static_cast<char>('A' + (column - 1) % 26));
    }
    return letters;
}

TableRecords readTable(RowSource& source, const TableReading& reading, const std::stop_token& stop,
                       NamePool* names) {
    return Reader(reading, names).read(source, stop);
}

std::string remarkText(const TableRemark& remark) {
    const std::string row = integerText(static_cast<std::int64_t>(remark.row));
    const std::string place = remark.column ? columnLetters(*remark.column) + row : "row " + row;
    return place + ": " + remark.reason;
}

}  // namespace zorvel
