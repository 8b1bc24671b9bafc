#include "tables/reader.h"

#include <algorithm>
#include <utility>

#include "base/numbers.h"
#include "tables/row_reader.h"
#include "tables/rows_ahead.h"
#include "tables/words.h"

namespace zorvel {
namespace {

// Tells header, data, totals and notes apart.
class Reader {
  public:
    Reader(const TableReading& reading, NamePool* names)
        : reading_(reading),
          header_(reading),
          rows_(reading.layout == TableLayout::records ? longRowReader(reading, records_, names)
                                                       : wideRowReader(reading, records_, names)) {}

    TableRecords read(RowSource& source, const std::stop_token& stop) {
        RowsAhead rows(source, reading_.lastRow);
        while (const SparseRow* const row = stop.stop_requested() ? nullptr : rows.next()) {
            if (row->number < reading_.firstRow) continue;
            if (reading_.lastRow != 0 && row->number > reading_.lastRow) break;
            if (row->number < reading_.firstDataRow()) {
                header_.add(textsOf(*row));
                continue;
            }
            if (row->number == reading_.firstDataRow()) beginData();
            takeDataRow(*row);
        }
        if (!begun_) beginData();
        settleHeld();
        rows_->finish();
        return std::move(records_);
    }

  private:
    static std::vector<std::string> textsOf(const SparseRow& row) {
        std::vector<std::string> texts;
        for (std::size_t column = 0; column < row.width; ++column) {
            texts.emplace_back(row.cell(column));
        }
        return texts;
    }

    void beginData() {
        begun_ = true;
        for (const std::size_t column : reading_.columnsOf(ColumnRole::ignored)) {
            const std::string text = header_.text(column);
            if (text.empty()) continue;
            refuseSecondTable(column, text);
            records_.notices.ignoredColumns.push_back(columnLetters(column) + " \"" + text + "\"");
        }
        for (const std::size_t column : reading_.columnsOf(ColumnRole::total)) {
            const std::string text = header_.text(column);
            const auto meaning = headerMeaning(text);
            if (meaning && meaning->role == ColumnRole::total) continue;
            records_.notices.totalsColumns.push_back(columnLetters(column) + " \"" + text + "\"");
        }
        rows_->begin(header_);
    }

    // Of tables side by side, the first alone would be read.
    void refuseSecondTable(std::size_t column, const std::string& text) {
        for (const ColumnRole role : {ColumnRole::census, ColumnRole::species}) {
            for (const std::size_t named : reading_.columnsOf(role)) {
                if (header_.text(named) != text) continue;
                rows_->rules().problem(
                    {reading_.firstRow, 0, column}, text,
                    "This is also the header of column " + columnLetters(named) +
                        ". Put tables that stand side by side below each other.");
            }
        }
    }

    void takeDataRow(const SparseRow& row) {
        const bool isLeftOut = std::binary_search(reading_.leftOutRows.begin(),
                                                  reading_.leftOutRows.end(), row.number);
        if (isLeftOut) return;
        if (!hasFilled(row, 1)) {
            afterEmpty_ = true;
            return;
        }
        if (rows_->columns().exact) {
            if (row.width > 1) readRow(row);
            return;
        }
        const bool note = afterEmpty_ && reading_.columns.size() > 2 && !hasFilled(row, 2);
        if (note || rankAsSummary(row)) {
            held_.emplace_back().add(row);
            return;
        }
        if (!held_.empty()) readHeld();
        afterEmpty_ = false;
        readRow(row);
    }

    // More rows follow those that are held.
    void readHeld() {
        for (const RowBatch& batch : std::exchange(held_, {})) {
            const SparseRow& held = batch.rows().front();
            if (rankAsSummary(held) == 0) {
                rows_->rules().problem(
                    {held.number, held.line, std::nullopt}, held.cell(0),
                    "The row is named as a total, but more rows follow. Leave it out, or give it "
                    "another name.");
            }
            readRow(held);
        }
    }

    // At least that many cells that are not empty.
    static bool hasFilled(const SparseRow& row, std::size_t count) {
        std::size_t filled = row.width - row.cells.size();
        for (std::size_t i = 0; filled < count && i < row.cells.size(); ++i) {
            filled += !row.cells[i].empty();
        }
        return filled >= count;
    }

    void readRow(const SparseRow& row) {
        records_.lastRow = row.number;
        rows_->read(row);
    }

    // Labelled, where the names are, as a total (rank 0) or another value computed of the rows
    // above.
    [[nodiscard]] std::optional<int> rankAsSummary(const SparseRow& row) const {
        if (reading_.layout == TableLayout::records) return std::nullopt;
        if (row.number == reading_.totalsRow) return 0;
        for (std::size_t column = 0; column < row.width; ++column) {
            if (reading_.role(column) == ColumnRole::count) return std::nullopt;
            const std::string_view cell = row.cell(column);
            if (cell.empty()) continue;
            return summaryRank(cell);
        }
        return std::nullopt;
    }

    // What is held at the end is no record: a total whose sums agree, and notes below the table.
    void settleHeld() {
        const SparseRow* total = nullptr;
        for (const RowBatch& batch : held_) {
            const SparseRow& held = batch.rows().front();
            if (total == nullptr && rankAsSummary(held) == 0) {
                total = &held;
                records_.notices.totalsRow = held.number;
            } else {
                records_.notices.noteRows.push_back(held.number);
            }
        }
        // Where the user has left rows out, sums are those of more rows.
        const bool hasAll = reading_.leftOutRows.empty();
        if (total != nullptr && hasAll && !rows_->isTotal(textsOf(*total))) {
            rows_->rules().problem(
                {total->number, total->line, std::nullopt}, total->cell(0),
                "The row is named as a total, but its numbers are not the sums of the rows above. "
                "Leave it out, or correct it.");
        }
    }

    const TableReading& reading_;
    TableRecords records_;
    TableHeader header_;
    std::unique_ptr<RowReader> rows_;
    std::vector<RowBatch> held_;  // rows that may be a total or notes, until the next one tells
    bool begun_ = false;
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
