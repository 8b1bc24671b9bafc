#include "ui/tables/table_preview.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <utility>

#include "base/numbers.h"
#include "tables/texts.h"

namespace zorvel {

namespace {

using Row = TablePreview::Row;
using RowState = TablePreview::RowState;
using RowNumbers = std::set<std::size_t>;

constexpr std::size_t mostRowsOfProblems = 50;

// Rows in memory, as they were read before.
class KeptRows final : public RowSource {
  public:
    explicit KeptRows(const TableRows& rows) : rows_(rows) {}

    bool next(TableRow& row) override {
        if (next_ == rows_.size()) return false;
        const TableSample::Row& kept = rows_[next_++];
        row.number = kept.number;
        row.line = kept.number;
        row.cells.assign(kept.cells.begin(), kept.cells.end());
        return true;
    }

  private:
    const TableRows& rows_;
    std::size_t next_ = 0;
};

std::string numberText(std::size_t number) {
    return integerText(static_cast<std::int64_t>(number));
}

// "2-41", or "2" alone.
std::string rangeText(const std::string& first, const std::string& last) {
    return first == last ? first : first + "-" + last;
}

std::int64_t individualsOf(const MockCensus& census) {
    std::int64_t sum = 0;
    for (const MockTaxon& taxon : census.taxa) {
        if (__builtin_add_overflow(sum, taxon.abundance, &sum)) return INT64_MAX;
    }
    return sum;
}

// At a whole character.
std::string shortCell(std::string_view cell) {
    if (cell.size() <= TablePreview::longestCell) return std::string(cell);
    std::size_t end = TablePreview::longestCell;
    while (end > 0 && (static_cast<unsigned char>(cell[end]) & 0xC0U) == 0x80U) --end;
    return std::string(cell.substr(0, end)) + "...";
}

RowNumbers problemRows(const TableRemarks& problems) {
    RowNumbers rows;
    for (const TableRemark& remark : problems.kept) {
        rows.insert(remark.row);
        if (rows.size() == mostRowsOfProblems) break;
    }
    return rows;
}

class Previewer {
  public:
    Previewer(const TableInput& input, std::size_t sheet, const TableCorrections& corrections,
              const TableRows& others, std::stop_token stop)
        : source_(*input.sheets[sheet].rows),
          corrections_(corrections),
          others_(others),
          stop_(std::move(stop)) {
        preview_.sheet = input.sheets[sheet].name;
        preview_.whole = input.isShort;
    }

    TablePreview preview() {
        TableGuess guess = source_.guess(corrections_.choices, stop_);
        applyCorrections(guess, corrections_);
        preview_.reading = std::move(guess.reading);
        preview_.doubts = std::move(guess.doubts);
        preview_.unlikely = std::move(guess.unlikely);
        if (!preview_.whole) {
            const auto source = source_.rows(preview_.reading.form, stop_);
            TableSample sample = sampleRows(*source, true);
            if (const auto problem = source->problem()) preview_.failure = problem->message;
            preview_.whole = sample.whole;
            sample_ = std::move(sample.rows);
            sample_.insert(sample_.end(), others_.begin(), others_.end());
        }
        readAll();
        findColumns();
        keepRows();
        return std::move(preview_);
    }

  private:
    [[nodiscard]] std::unique_ptr<RowSource> rows() const {
        if (preview_.whole) return source_.rows(preview_.reading.form, stop_);
        return std::make_unique<KeptRows>(sample_);
    }

    void readAll() {
        const auto source = rows();
        TableRecords records = readTable(*source, preview_.reading, stop_);
        if (const auto problem = source->problem()) preview_.failure = problem->message;
        preview_.censusCount = records.censuses.size();
        records.censuses.resize(std::min(records.censuses.size(), TablePreview::mostCensuses));
        for (const MockCensus& census : records.censuses) {
            preview_.censuses.push_back(
                {shortCell(census.name), census.taxa.size(), individualsOf(census)});
        }
        preview_.problems = std::move(records.problems);
        for (const TableRemark& remark : preview_.problems.kept) {
            if (remark.column) ++preview_.problemsOfColumn[*remark.column];
        }
        preview_.lastRow = records.lastRow;
        TableNotices& notices = records.notices;
        preview_.totalsRow = notices.totalsRow.value_or(0);
        notices.totalsRow.reset();
        preview_.stageColumns = notices.stageColumns;
        dropIdleDoubts(preview_.doubts, notices);
        preview_.noteRows = std::exchange(notices.noteRows, {});
        preview_.notices = noticeTexts(notices, preview_.reading);
    }

    void findColumns() {
        std::size_t width = preview_.reading.columns.size();
        if (width == 0) width = TablePreview::mostColumns;
        for (std::size_t i = 0; i < std::min(width, TablePreview::mostColumns); ++i) {
            preview_.columns.push_back(i);
        }
        for (const auto& [column, count] : preview_.problemsOfColumn) {
            const bool room = preview_.columns.size() < 2 * TablePreview::mostColumns;
            if (column >= TablePreview::mostColumns && room) preview_.columns.push_back(column);
        }
    }

    // From a little above the block on, so that a title above it is seen.
    void keepRows() {
        constexpr std::size_t above = 20;
        const std::size_t firstRow = preview_.reading.firstRow;
        const std::size_t first = firstRow > above ? firstRow - above : 1;
        const RowNumbers wanted = problemRows(preview_.problems);
        const auto source = rows();
        TableRow row;
        std::size_t width = 0;
        while (!stop_.stop_requested() && source->next(row)) {
            preview_.readRows = row.number;
            if (row.number >= firstRow && row.number < preview_.reading.firstDataRow()) {
                for (const std::string_view cell : row.cells) {
                    preview_.header += std::string(cell) + '\t';
                }
                preview_.header += '\n';
            }
            const bool isShown = row.number >= first && row.number < first + TablePreview::mostRows;
            if (!isShown && !wanted.contains(row.number)) continue;
            width = std::max(width, row.cells.size());
            preview_.rows.push_back(shownRow(row));
        }
        // Without a reading the columns are those of the rows.
        if (!preview_.reading.columns.empty() || width >= preview_.columns.size()) return;
        preview_.columns.resize(width);
        for (Row& shown : preview_.rows) shown.cells.resize(width);
    }

    [[nodiscard]] Row shownRow(const TableRow& row) const {
        const TableReading& reading = preview_.reading;
        const bool isHeader = row.number >= reading.firstRow && row.number < reading.firstDataRow();
        // A header that lacks its corner stands one column further left in the file.
        const bool isShort = reading.shortHeader && row.number == reading.firstRow;
        Row shown{row.number, isHeader ? RowState::header : stateOf(row.number), {}};
        for (const std::size_t column : preview_.columns) {
            if (isShort && column == 0) {
                shown.cells.emplace_back();
            } else {
                shown.cells.push_back(shortCell(row.cell(isShort ? column - 1 : column)));
            }
        }
        return shown;
    }

    [[nodiscard]] RowState stateOf(std::size_t row) const {
        const TableReading& reading = preview_.reading;
        const auto contains = [row](const std::vector<std::size_t>& rows) {
            return std::find(rows.begin(), rows.end(), row) != rows.end();
        };
        const bool leftOut = row < reading.firstRow ||
                             (reading.lastRow != 0 && row > reading.lastRow) ||
                             row == preview_.totalsRow || contains(preview_.noteRows) ||
                             contains(reading.leftOutRows);
        return leftOut ? RowState::leftOut : RowState::read;
    }

    const TableSource& source_;
    const TableCorrections& corrections_;
    const TableRows& others_;
    std::stop_token stop_;
    TableRows sample_;
    TablePreview preview_;
};

}  // namespace

TablePreview previewTable(const TableInput& input, std::size_t sheet,
                          const TableCorrections& corrections, const TableRows& others,
                          const std::stop_token& stop) {
    return Previewer(input, sheet, corrections, others, stop).preview();
}

TableRows rowsOfProblems(RowSource& source, const TableRemarks& problems) {
    const RowNumbers wanted = problemRows(problems);
    TableRows rows;
    TableRow row;
    while (rows.size() < wanted.size() && source.next(row)) {
        if (wanted.contains(row.number)) {
            rows.push_back({row.number, {row.cells.begin(), row.cells.end()}});
        }
    }
    return rows;
}

std::string columnsText(const std::vector<std::size_t>& columns) {
    constexpr int mostRanges = 3;
    std::string text;
    int ranges = 0;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::size_t first = columns[i];
        while (i + 1 < columns.size() && columns[i + 1] == columns[i] + 1) ++i;
        if (ranges++ == mostRanges) return text + " and others";
        text +=
            (text.empty() ? "" : ", ") + rangeText(columnLetters(first), columnLetters(columns[i]));
    }
    return text;
}

std::string understoodText(const TablePreview& preview) {
    const TableReading& reading = preview.reading;
    const std::string first = numberText(reading.firstDataRow());
    const std::string rows = preview.whole ? "rows " + rangeText(first, numberText(preview.lastRow))
                                           : "row " + first + " and below";
    const std::string columns = columnsText(reading.columnsOf(ColumnRole::count));
    const std::string ofColumns =
        (columns.find_first_of("-, ") == std::string::npos ? "column " : "columns ") + columns;
    std::string text =
        (preview.sheet.empty() ? formText(reading) : "sheet " + preview.sheet) + "; ";
    switch (reading.layout) {
        case TableLayout::censusRows:
            text += "censuses in " + rows + ", species in " + ofColumns;
            break;
        case TableLayout::speciesRows:
            text += "species in " + rows + ", censuses in " + ofColumns;
            break;
        case TableLayout::records:
            text += "a record in each of " + rows;
            break;
    }
    text += joinedText(reading);
    if (preview.totalsRow != 0)
        text += "; row " + numberText(preview.totalsRow) + " (total) left out";
    if (!preview.noteRows.empty()) {
        text += "; notes below the table left out";
    }
    return text;
}

}  // namespace zorvel
