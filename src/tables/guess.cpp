#include "tables/guess.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>
#include <utility>

#include "interchange/writers.h"
#include "tables/guess_parts.h"

namespace zorvel {
namespace {

// Whether a title or a row of the header tells of a cover or a mass; what one column holds is said
// by a header of one row.
bool tellsOfAmounts(const SampleRows& rows, const SampleGrid& grid, std::size_t header) {
    const auto tells = [](const SampleRow& row) {
        const bool hasNumbers =
            std::any_of(row.cells.begin(), row.cells.end(), [](std::string_view cell) {
                return !cell.empty() && cell.front() >= '0' && cell.front() <= '9';
            });
        return !hasNumbers && std::any_of(row.cells.begin(), row.cells.end(), isAmountHeader);
    };
    const std::size_t first = grid.row(0).number;
    for (const SampleRow& row : rows) {
        if (row.number > first + header) break;
        if ((row.number != first || header > 1) && tells(row)) return true;
    }
    return false;
}

// Where the records of a place nearly all have another date or time, these may be those of the
// records, not of visits.
bool visitsAreDoubtful(const SampleGrid& grid, const TableReading& reading) {
    std::set<std::string> places;
    std::set<std::string> visits;
    const std::size_t header = reading.headerRows.size();
    for (std::size_t i = header; i < grid.height(); ++i) {
        std::string key;
        for (const std::size_t column : reading.columnsOf(ColumnRole::census)) {
            key.append(grid.cell(i, column)).append(1, '\n');
        }
        places.insert(key);
        for (const ColumnRole role :
             {ColumnRole::date, ColumnRole::year, ColumnRole::month, ColumnRole::day}) {
            for (const std::size_t column : reading.columnsOf(role)) {
                key.append(grid.cell(i, column)).append(1, '\n');
            }
        }
        visits.insert(key);
    }
    const std::size_t records = grid.height() - header;
    constexpr std::size_t sure = 6;
    return records >= sure && visits.size() * 10 >= records * 8 &&
           places.size() * 2 <= visits.size();
}

// known: the form of the text, or the sheet.
TableGuess guessRows(const SampleRows& rows, const TableReading& known,
                     const TableChoices& choices) {
    TableGuess guess{known, {}};
    TableReading& reading = guess.reading;
    const SampleGrid grid(rows, findBlock(rows, choices));
    if (grid.height() == 0 || grid.width() == 0) return guess;
    reading.firstRow = grid.row(0).number;
    reading.lastRow = choices.lastRow.value_or(0);
    const std::size_t header =
        std::min(choices.headerRows.value_or(headerHeight(grid)), grid.height());
    const WordRoles roles = rolesByWords(grid, header);
    const RecordGuess asRecords = guessRecords(grid, roles);
    const bool records = choices.layout ? *choices.layout == TableLayout::records : asRecords.fits;
    const bool isDoubtful = !choices.layout && asRecords.doubtful;
    if (isDoubtful) guess.doubts.push_back(TableDoubt::layout);
    if (records) {
        reading.layout = TableLayout::records;
        reading.headerRows.assign(
            std::min(choices.headerRows.value_or(asRecords.header), grid.height()),
            ColumnRole::ignored);
        reading.columns = asRecords.columns;
        if (asRecords.namesAreDoubtful) guess.doubts.push_back(TableDoubt::names);
        if (asRecords.countsAreDoubtful) guess.doubts.push_back(TableDoubt::counts);
        if (visitsAreDoubtful(grid, reading)) guess.doubts.push_back(TableDoubt::visits);
    } else {
        reading.shortHeader = isShort(grid, header);
        const double score = speciesRowsScore(grid, header);
        if (!choices.layout && !isDoubtful && std::abs(score) < 0.5) {
            guess.doubts.push_back(TableDoubt::layout);
        }
        const bool speciesRows =
            choices.layout ? *choices.layout == TableLayout::speciesRows : score > 0;
        reading.layout = speciesRows ? TableLayout::speciesRows : TableLayout::censusRows;
        for (std::size_t i = 0; i < header; ++i) {
            const ColumnRole names = speciesRows ? ColumnRole::census : ColumnRole::species;
            auto metadata = speciesRows && i > 0 ? metadataOf(grid, i) : std::nullopt;
            if (i > 0 && isRowOfUnits(grid, i)) metadata = ColumnRole::ignored;
            reading.headerRows.push_back(metadata.value_or(names));
        }
        reading.columns =
            wideRoles(grid, reading, reading.shortHeader ? WordRoles(grid.width()) : roles);
        guessStages(grid, roles, guess);
        if (tellsOfAmounts(rows, grid, header)) guess.doubts.push_back(TableDoubt::amounts);
    }
    guessMarks(grid, guess);
    guessDateOrder(grid, guess);
    if (!records) {
        settleTotals(grid, reading, rows.size() < TableSample::mostRows && !choices.lastRow);
        guessNumbers(grid, guess);
        std::sort(guess.doubts.begin(), guess.doubts.end());
        reading.presence = isPresenceTable(grid, reading);
    }
    return guess;
}

// A long table as Zorvel writes it has this header and nothing to guess.
bool isOwnTable(std::string_view bytes, const TableChoices& choices) {
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    if (choices != TableChoices() || !bytes.starts_with(LongTableWriter::header)) return false;
    bytes.remove_prefix(LongTableWriter::header.size());
    return bytes.empty() || bytes.front() == '\n' || bytes.front() == '\r';
}

TableReading ownReading() {
    TableReading reading;
    reading.form.exact = true;
    reading.layout = TableLayout::records;
    reading.headerRows = {ColumnRole::ignored};
    reading.columns = {ColumnRole::census,    ColumnRole::date,    ColumnRole::latitude,
                       ColumnRole::longitude, ColumnRole::notes,   ColumnRole::species,
                       ColumnRole::count,     ColumnRole::included};
    reading.missing = MissingRule::problem;
    reading.sameSpecies = SameRule::apart;
    return reading;
}

}  // namespace

TableSample sampleRows(RowSource& source, bool whole, std::size_t mostCells) {
    TableSample sample;
    TableRow row;
    std::size_t cells = 0;
    std::size_t bytes = 0;
    while (source.next(row)) {
        cells += row.cells.size();
        for (const std::string_view cell : row.cells) bytes += cell.size();
        constexpr std::size_t enoughRows = 20;  // of any width
        const bool isEnough = cells > mostCells && sample.rows.size() >= enoughRows;
        if (sample.rows.size() == TableSample::mostRows || isEnough ||
            cells > TableSample::mostCells || bytes > 4 * TableSample::mostBytes) {
            sample.whole = false;
            return sample;
        }
        sample.rows.push_back({row.number, {row.cells.begin(), row.cells.end()}});
    }
    sample.whole = whole;
    if (!whole && sample.rows.size() > 1) sample.rows.pop_back();
    return sample;
}

TableGuess guessTable(const TableSample& sample, const TextForm& form,
                      const TableChoices& choices) {
    SampleRows rows;
    for (const TableSample::Row& row : sample.rows) {
        rows.push_back(
            {row.number, {row.cells.begin(), row.cells.end()}, nullptr, filledCells(row.cells)});
    }
    TableReading known;
    known.form = form;
    known.sheet = sample.sheet;
    return guessRows(rows, known, choices);
}

TableGuess guessTable(std::string_view bytes, bool whole, const TableChoices& choices) {
    // In another encoding a spreadsheet has written it.
    if (isOwnTable(bytes, choices) && guessEncoding(bytes, whole) == TableEncoding::utf8) {
        return {ownReading(), {}};
    }
    FormGuess form = guessForm(bytes, whole, choices);
    // The last row may be cut.
    const bool ended = form.rows.size() < TableSample::mostRows;
    if (ended && !whole && form.rows.size() > 1) form.rows.pop_back();
    TableReading known;
    known.form = form.form;
    TableGuess guess = guessRows(form.rows, known, choices);
    if (form.doubtful) guess.doubts.insert(guess.doubts.begin(), TableDoubt::separator);
    return guess;
}

}  // namespace zorvel
