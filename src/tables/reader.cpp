#include "tables/reader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "tables/cells.h"
#include "tables/gathering.h"
#include "tables/words.h"

namespace zorvel {
namespace {

using Kind = CellCount::Kind;

void add(TableRemarks& remarks, TableRemark remark) {
    if (++remarks.count <= TableRemarks::mostKept) remarks.kept.push_back(std::move(remark));
}

class Reader {
  public:
    Reader(const TableReading& reading, NamePool* names)
        : reading_(reading),
          marks_{reading.decimalMark, reading.thousandsMark},
          gathered_(names, reading.isExact()) {}

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
        genus_ = columnOf(ColumnRole::genus);
        exact_ =
            reading_.isExact() && census_ && species_ && columnOf(ColumnRole::count).has_value();
        status_ = columnOf(ColumnRole::status);
        included_ = columnOf(ColumnRole::included);
        for (const ColumnRole role :
             {ColumnRole::latitude, ColumnRole::longitude, ColumnRole::date, ColumnRole::notes}) {
            if (const auto column = columnOf(role)) attributes_.emplace_back(role, *column);
        }
        const auto year = columnOf(ColumnRole::year);
        const auto month = columnOf(ColumnRole::month);
        const auto day = columnOf(ColumnRole::day);
        if (!columnOf(ColumnRole::date) && year && month && day) dateParts_ = {*year, *month, *day};
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
                columnNames_.push_back(gathered_.species.number(shown));
            } else {
                addCensusOfColumn(column, shown);
            }
        }
        const bool areApart = reading_.sameSpecies == SameRule::apart ||
                              gathered_.species.size() == columnNames_.size();
        isDirect_ = reading_.layout == TableLayout::censusRows &&
                    reading_.sameCensus == SameRule::apart && areApart;
    }

    // The text of the header in any layout.
    [[nodiscard]] std::string headerName2(std::size_t column) const {
        std::string name = headerName(column);
        if (name.empty() && !header_.empty()) name = headerCell(0, column);
        return name;
    }

    void addCensusOfColumn(std::size_t column, const std::string& name) {
        MockCensus census;
        census.name = nameInOneLine(name);
        for (std::size_t i = 0; i < header_.size(); ++i) {
            readAttribute(census, reading_.headerRows[i], headerCell(i, column),
                          {reading_.firstRow + i, 0, column});
        }
        gathered_.add(std::move(census));
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
        if (isLeftOut) return;
        const auto isFilled = [](std::string_view cell) { return !cell.empty(); };
        if (exact_) {
            if (row.cells.size() > 1) readRow(row);
            return;
        }
        const auto first = std::find_if(row.cells.begin(), row.cells.end(), isFilled);
        if (first == row.cells.end()) {
            afterEmpty_ = true;
            return;
        }
        const bool note = afterEmpty_ && reading_.columns.size() > 2 &&
                          std::none_of(first + 1, row.cells.end(), isFilled);
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
            if (std::isnan(sums_[i])) continue;  // of a column with a text
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
        // Where the user has left rows out, sums are those of more rows.
        const bool hasAll = reading_.leftOutRows.empty();
        if (total != held_.end() && hasAll && !holdsSums(*total)) {
            problem(total->number, total->line, std::nullopt, total->cells.front(),
                    "The row is named as a total, but its numbers are not the sums of the rows "
                    "above. Leave it out, or correct it.");
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

    // What the cells of counts of a census hold.
    struct CellsOfCensus {
        bool hasValues = false;
        bool hasMissing = false;  // marks of missing values
    };

    // The count of a cell; 0 where there is none. missing: it has a mark for that.
    // written: the number in the cell, whatever the rules make of it; NaN for a text.
    struct Count {
        std::int64_t value = 0;
        bool missing = false;
        double written = 0;
    };

    Count countOf(std::string_view cell, const Place& place) {
        Count count = countByRules(cell, place);
        const bool isPlain = cell.empty() || (count.value != 0 && !isFractions());
        constexpr double none = std::numeric_limits<double>::quiet_NaN();
        count.written = isPlain ? static_cast<double>(count.value)
                                : tableNumber(cell, marks_).value_or(count.missing ? 0 : none);
        return count;
    }

    [[nodiscard]] bool isFractions() const { return reading_.fractions == FractionRule::round; }

    Count countByRules(std::string_view cell, const Place& place) {
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
        const bool mayMiss = role != ColumnRole::notes && !exact_;
        if (cell.empty() || (mayMiss && isMissingMark(cell))) return;
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
        // A project may hold any value, even none that is a number.
        const std::optional<double> value =
            exact_ ? parseWholeDouble(cell) : tableDegrees(cell, marks_, limit);
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
        for (const auto& [role, column] : attributes_) {
            readAttribute(census, role, row.cell(column), {row.number, row.line, column});
        }
        if (dateParts_.empty()) return;
        std::string date;
        for (const std::size_t column : dateParts_) {
            if (row.cell(column).empty()) return;
            date += (date.empty() ? "" : "-") + std::string(row.cell(column));
        }
        readDate(census, date, {row.number, row.line, dateParts_.front()});
    }

    // The name of the census of a row; absent where it has none and that is a problem.
    std::optional<std::string> censusName(const TableRow& row) {
        const std::string_view cell = census_ ? row.cell(*census_) : std::string_view();
        if (exact_) return std::string(cell);
        if (!cell.empty()) return nameInOneLine(cell);
        const std::string number = "row " + integerText(static_cast<std::int64_t>(row.number));
        if (reading_.unnamed == UnnamedRule::rowNumber || !census_) return number;
        if (reading_.unnamed == UnnamedRule::above && !lastName_.empty()) return lastName_;
        problem(row.number, row.line, census_, {}, "The census has no name.");
        return std::nullopt;
    }

    // Most cells of a wide table.
    static bool isZero(std::string_view cell) { return cell.size() == 1 && cell.front() == '0'; }

    void readCensusRow(const TableRow& row) {
        const std::optional<std::string> name = censusName(row);
        lastName_ = name.value_or(std::string());
        MockCensus census;
        census.name = lastName_;
        readAttributes(census, row);
        const std::size_t index = reading_.sameCensus == SameRule::sum
                                      ? openCensus(std::move(census))
                                      : gathered_.add(std::move(census));
        cells_.resize(gathered_.censuses.size());
        taxa_.clear();
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            const std::string_view cell = row.cell(counts_[i]);
            if (isZero(cell)) {
                cells_[index].hasValues = true;
            } else {
                readCount(cell, row, i, index, columnNames_[i]);
            }
        }
        if (isDirect_) gathered_.setTaxa(index, taxa_);
    }

    void readSpeciesRow(const TableRow& row) {
        const std::string_view cell = species_ ? row.cell(*species_) : std::string_view();
        if (cell.empty()) {
            problem(row.number, row.line, species_, {}, "The species has no name.");
            return;
        }
        const std::size_t species = gathered_.species.number(withGenus(row, cell));
        cells_.resize(gathered_.censuses.size());
        for (std::size_t i = 0; i < counts_.size(); ++i) {
            const std::string_view value = row.cell(counts_[i]);
            if (isZero(value)) {
                cells_[i].hasValues = true;
            } else {
                readCount(value, row, i, i, species);
            }
        }
    }

    // Of a wide table: the cell of the i-th column of counts.
    void readCount(std::string_view cell, const TableRow& row, std::size_t i, std::size_t census,
                   std::size_t species) {
        const Place place{row.number, row.line, counts_[i]};
        const Count count = countOf(cell, place);
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

    [[nodiscard]] std::string withGenus(const TableRow& row, std::string_view species) const {
        if (!genus_ || row.cell(*genus_).empty()) return std::string(species);
        return std::string(row.cell(*genus_)) + " " + std::string(species);
    }

    void readRecord(const TableRow& row) {
        const std::optional<std::size_t> index = censusOfRecord(row);
        if (!index) return;
        const std::string_view species = row.cell(species_.value_or(0));
        if (status_ && isAbsent(row.cell(*status_))) {
            ++records_.notices.absentRecords;
            return;
        }
        const std::string_view cell = counts_.empty() ? std::string_view() : row.cell(counts_[0]);
        if (exact_ && beginsCensus(row)) return;
        if (species.empty() && !exact_) {
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
        const std::size_t number = genus_ ? gathered_.species.number(withGenus(row, species))
                                          : gathered_.species.number(species);
        const bool added = addTaxon(*index, number, value, place);
        if (included_) readIncluded(row, *index, added);
    }

    // added: the taxon of the row is the last of the census.
    void readIncluded(const TableRow& row, std::size_t census, bool added) {
        const std::string_view mark = row.cell(*included_);
        const std::optional<bool> included = mark.empty() ? true : yesOrNo(mark);
        if (!included) {
            problem(row.number, row.line, included_, mark,
                    "\"" + shown(mark) + "\" is neither yes nor no.");
        } else if (!*included && added) {
            records_.excluded.resize(gathered_.censuses.size());
            records_.excluded[census].push_back(gathered_.censuses[census].taxa.size() - 1);
        }
    }

    // Of a long table of Zorvel's own: tells of a census, not of a taxon.
    [[nodiscard]] bool beginsCensus(const TableRow& row) const {
        return row.cell(*species_).empty() && row.cell(counts_.front()).empty();
    }

    // Absent where it has no name and that is a problem.
    std::optional<std::size_t> censusOfRecord(const TableRow& row) {
        const bool isNew = exact_ && beginsCensus(row);
        if (!isNew && repeatsCensus(row)) return lastCensus_;
        const std::size_t problems = records_.problems.count;
        const std::optional<std::string> name = censusName(row);
        if (!name) return std::nullopt;
        lastName_ = *name;
        MockCensus census;
        census.name = *name;
        readAttributes(census, row);
        const std::size_t index =
            exact_ ? openExactCensus(std::move(census), isNew) : openCensus(std::move(census));
        lastCensus_.reset();
        if (records_.problems.count == problems) keepCensus(row, index);
        return index;
    }

    // Whether all that a record tells of its census is, to the letter, what the one before told.
    [[nodiscard]] bool repeatsCensus(const TableRow& row) const {
        if (!lastCensus_) return false;
        std::size_t i = 0;
        const auto repeats = [&](std::size_t column) {
            return row.cell(column) == lastCells_[i++];
        };
        return repeats(*census_) &&
               std::all_of(attributes_.begin(), attributes_.end(),
                           [&](const auto& attribute) { return repeats(attribute.second); }) &&
               std::all_of(dateParts_.begin(), dateParts_.end(), repeats);
    }

    void keepCensus(const TableRow& row, std::size_t index) {
        if (!census_ || (row.cell(*census_).empty() && !exact_)) return;
        lastCensus_ = index;
        lastCells_.assign(1, std::string(row.cell(*census_)));
        for (const auto& attribute : attributes_)
            lastCells_.emplace_back(row.cell(attribute.second));
        for (const std::size_t column : dateParts_) lastCells_.emplace_back(row.cell(column));
    }

    static bool isAbsent(std::string_view status) {
        std::string word(status);
        for (char& c : word) {
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        }
        return word == "absent" || word == "0" || word == "no" || word == "false";
    }

    // --- censuses and taxa ---

    // The census of that name, and in records of that date and place; otherwise a new one.
    std::size_t openCensus(MockCensus census) {
        std::string key = canonicalForm(census.name);
        if (reading_.layout == TableLayout::records && reading_.sameCensus == SameRule::apart) {
            key += '\0' + placeAndTime(census);
        }
        return gathered_.open(std::move(census), std::move(key));
    }

    std::size_t openExactCensus(MockCensus census, bool isNew) {
        std::string key = census.name + '\0' + placeAndTime(census);
        return isNew ? gathered_.openNew(std::move(census), std::move(key))
                     : gathered_.open(std::move(census), std::move(key));
    }

    static std::string placeAndTime(const MockCensus& census) {
        return shortestText(census.latitude) + ' ' + shortestText(census.longitude) + ' ' +
               (census.timeStamp ? integerText(census.timeStamp->time_since_epoch().count()) : "");
    }

    // False where there is nothing to add, or the count was added to that of the species.
    bool addTaxon(std::size_t census, std::size_t species, std::int64_t value, const Place& place) {
        if (value <= 0 && !exact_) return false;
        if (reading_.sameSpecies == SameRule::sum) {
            if (const auto known = gathered_.find(census, species)) {
                ++records_.notices.summedSpecies;
                std::int64_t& sum = gathered_.censuses[census].taxa[*known].abundance;
                if (__builtin_add_overflow(sum, value, &sum)) {
                    sum = std::numeric_limits<std::int64_t>::max();
                    problem(
                        place, {},
                        "The sum of the counts of this species is more than 9223372036854775807.");
                }
                return false;
            }
        }
        gathered_.addTaxon(census, species, value);
        return true;
    }

    // Censuses of missing marks alone are left out, and those with any if the rule says so.
    void leaveOutCensuses() {
        const bool any = reading_.missing == MissingRule::leaveOut;
        cells_.resize(gathered_.censuses.size());
        for (std::size_t i = 0; i < cells_.size(); ++i) {
            MockCensus& census = gathered_.censuses[i];
            if (cells_[i].hasMissing && (any || !cells_[i].hasValues)) {
                records_.notices.leftOutCensuses.push_back(census.name);
            } else {
                records_.notices.emptyCensuses += census.taxa.empty();
                census.taxa.shrink_to_fit();
                records_.censuses.push_back(std::move(census));
            }
        }
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
    bool exact_ = false;  // see TableReading::isExact()
    std::vector<Cells> header_;
    std::optional<std::size_t> census_;
    std::optional<std::size_t> species_;
    std::optional<std::size_t> genus_;
    std::optional<std::size_t> status_;
    std::optional<std::size_t> included_;
    std::vector<std::pair<ColumnRole, std::size_t>> attributes_;  // of censuses
    std::vector<std::size_t> dateParts_;    // year, month and day, where there is no date
    std::vector<std::size_t> counts_;       // columns
    std::vector<double> sums_;              // of each
    std::vector<std::size_t> columnNames_;  // of each, where species have columns
    CensusGatherer gathered_;
    bool isDirect_ = false;                    // a row has each species once and is a census
    std::vector<CensusGatherer::Taxon> taxa_;  // of the row then
    std::vector<CellsOfCensus> cells_;         // of each census
    std::vector<HeldRow> held_;
    std::string lastName_;
    std::optional<std::size_t> lastCensus_;  // of the record before, if it was read without fault
    std::vector<std::string> lastCells_;     // by which it was known
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
