// What the cells of a table stand for by the rules of its reading, and what is wrong with them:
// part of reader.h. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tables/cells.h"
#include "tables/reader.h"

namespace zorvel {

// A cell, or a row where the column is not set.
struct TablePlace {
    std::size_t row = 0;
    std::size_t line = 0;
    std::optional<std::size_t> column;
};

// A cell in a message.
std::string shownInQuotes(std::string_view cell);

class CellRules {
  public:
    // Problems and notices go to the records.
    CellRules(const TableReading& reading, TableRecords& records)
        : reading_(reading),
          records_(records),
          marks_{reading.decimalMark, reading.thousandsMark} {}

    // The count of a cell; 0 where there is none. missing: it has a mark for that.
    // written: the number in the cell, whatever the rules make of it; NaN for a text.
    struct Count {
        std::int64_t value = 0;
        bool missing = false;
        double written = 0;
    };
    Count count(std::string_view cell, const TablePlace& place) {
        const std::int64_t plain = reading_.presence ? 0 : plainCount(cell);
        if (plain > 0) return {plain, false, static_cast<double>(plain)};
        return otherCount(cell, place);
    }

    // Latitude, longitude, date or notes of a census. exact: as Zorvel writes them.
    void readAttribute(MockCensus& census, ColumnRole role, std::string_view cell,
                       const TablePlace& place, bool exact);
    void readDate(MockCensus& census, std::string_view cell, const TablePlace& place);

    // False, with a problem, where the cell is a formula or an error value instead of a text.
    bool isText(std::string_view cell, const TablePlace& place) {
        const bool may =
            !cell.empty() && (cell.front() == '=' || cell.front() == '#' || cell.front() == 'E');
        return !may || !refuseFormula(cell, place);
    }

    // The number in a cell that may be a sum; NaN where its formula has no result.
    [[nodiscard]] double sum(std::string_view cell) const;

    void problem(const TablePlace& place, std::string_view cell, std::string reason);
    // Of a record without a count.
    void noteCountedOnce(const TablePlace& place);

  private:
    bool refuseFormula(std::string_view cell, const TablePlace& place);
    Count otherCount(std::string_view cell, const TablePlace& place);
    Count countByRules(std::string_view cell, const TablePlace& place);
    Count takeFault(CountFault fault, const std::string& subject, const char* predicate,
                    std::string_view cell, const TablePlace& place);
    Count takeMissing(std::string_view cell, const TablePlace& place);
    void readDegrees(double& degrees, std::string_view cell, double limit, const TablePlace& place,
                     bool exact);

    const TableReading& reading_;
    TableRecords& records_;
    NumberMarks marks_;
};

}  // namespace zorvel
