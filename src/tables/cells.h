// What the cells of a table mean. Pure; the same under every locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/time_stamp.h"
#include "tables/reading.h"

namespace zorvel {

// How numbers are written: 1.234,5 has the decimal mark ',' and the thousands mark '.'.
struct NumberMarks {
    char decimal = '.';
    char thousands = 0;  // 0: none
};

// A number in digits, with a sign, a fraction and an exponent as far as they are there. Absent for
// anything else, and where a thousands mark does not part groups of three digits.
std::optional<double> tableNumber(std::string_view cell, NumberMarks marks);

// NA, n.d., "-", "?" and the like: no value was taken.
bool isMissingMark(std::string_view cell);

// A formula without its result, "=A1+1", as a workbook holds it that no spreadsheet has computed.
// "=" alone if the formula is that of another cell.
bool isFormula(std::string_view cell);

// What a spreadsheet shows where a formula has no value: "#REF!", "#N/A", "Err:502".
bool isErrorValue(std::string_view cell);

struct CellCount {
    enum class Kind {
        count,
        blank,
        missing,   // see isMissingMark()
        fraction,  // or a percentage; value: rounded half away from zero
        negative,
        tooLarge,  // above 2^63 - 1
        notANumber,
    };
    Kind kind = Kind::blank;
    std::int64_t value = 0;
};

CellCount cellCount(std::string_view cell, NumberMarks marks);

// The value of at most 18 digits alone, as nearly all counts are written; otherwise 0.
inline std::int64_t plainCount(std::string_view cell) {
    if (cell.size() > 18) return 0;
    std::int64_t value = 0;
    for (const char c : cell) {
        if (c < '0' || c > '9') return 0;
        value = value * 10 + (c - '0');
    }
    return value;
}

// What stands for an abundance and is no number: 20%, <5, ca. 5, +, r, 2a.
bool isAbundanceMark(std::string_view cell);

// x, X, a tick or 1 (true), 0 or an empty cell (false); absent for anything else.
std::optional<bool> presenceMark(std::string_view cell);

// Decimal degrees within the limit (90 or 180) either way: a number, or degrees, minutes and
// seconds with or without their signs, N, S, E, W or O (west in Spanish and French, east in German:
// absent).
std::optional<double> tableDegrees(std::string_view cell, NumberMarks marks, double limit);

struct CellDate {
    std::optional<TimeStamp> time;
    bool needsOrder = false;  // 03/04/2021 while the order is not known
};

// 2021-04-03 with or without a time, 3.4.2021, 3/4/2021, 20210403, or the start of a span
// 2021-04-03/2021-04-05. In the computer's time zone unless a zone is given. Two digits of a year
// are not read.
CellDate tableDate(std::string_view cell, DateOrder order);

// The order that a date like 13/4/2021 gives away; unknown where both or none are possible.
DateOrder dateOrderOf(std::string_view cell);

// Yes and no in a column of include marks: 1, true, yes, x; 0, false, no. Absent for anything else.
std::optional<bool> yesOrNo(std::string_view cell);

}  // namespace zorvel
