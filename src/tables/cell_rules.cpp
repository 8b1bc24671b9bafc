#include "tables/cell_rules.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"

namespace zorvel {
namespace {

void keepRemark(TableRemarks& remarks, const TablePlace& place, std::string_view cell,
                std::string reason, std::optional<CountFault> fault = {}) {
    if (++remarks.count > TableRemarks::mostKept) return;
    remarks.kept.push_back(
        {place.row, place.line, place.column, std::string(cell), std::move(reason), fault});
}

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

constexpr const char* formulaPredicate =
    " is a formula without its result. Open the table in a spreadsheet program and save it, so "
    "that "
    "the results are stored.";

}  // namespace

std::string shownInQuotes(std::string_view cell) {
    std::string text(1, '"');
    text += terminalLine(cell);
    text += '"';
    return text;
}

CellRules::Count CellRules::otherCount(std::string_view cell, const TablePlace& place) {
    Count count = countByRules(cell, place);
    const bool rounds = reading_.fractions == FractionRule::round;
    const bool isPlain = cell.empty() || (count.value != 0 && !rounds);
    count.written = isPlain ? static_cast<double>(count.value)
                            : tableNumber(cell, marks_).value_or(count.missing ? 0 : noNumber);
    return count;
}

double CellRules::sum(std::string_view cell) const {
    return isFormula(cell) ? noNumber : tableNumber(cell, marks_).value_or(0);
}

CellRules::Count CellRules::countByRules(std::string_view cell, const TablePlace& place) {
    if (isFormula(cell)) {
        return takeFault(CountFault::notANumber, terminalLine(cell), formulaPredicate, cell, place);
    }
    if (reading_.presence) {
        const std::optional<bool> mark = presenceMark(cell);
        if (!mark && !isMissingMark(cell)) {
            return takeFault(CountFault::notANumber, shownInQuotes(cell),
                             " is neither x nor 1 nor 0.", cell, place);
        }
        return {mark.value_or(false) ? 1 : 0, !mark};
    }
    using Kind = CellCount::Kind;
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
            return takeFault(CountFault::fraction, terminalLine(cell),
                             " is not a whole number. Zorvel counts individuals.", cell, place);
        case Kind::negative:
            return takeFault(CountFault::negative, terminalLine(cell), " is below zero.", cell,
                             place);
        case Kind::tooLarge:
            return takeFault(CountFault::tooLarge, terminalLine(cell),
                             " is more than 9223372036854775807.", cell, place);
        case Kind::notANumber:
            break;
    }
    return takeFault(CountFault::notANumber, shownInQuotes(cell), " is not a number.", cell, place);
}

// As 0 where the rule says so; otherwise a problem.
CellRules::Count CellRules::takeFault(CountFault fault, const std::string& subject,
                                      const char* predicate, std::string_view cell,
                                      const TablePlace& place) {
    const auto& zero = reading_.takenAsZero;
    const bool isZero = std::find(zero.begin(), zero.end(), fault) != zero.end();
    keepRemark(isZero ? records_.notices.takenAsZero : records_.problems, place, cell,
               subject + (isZero ? " is taken as 0." : predicate), fault);
    return {};
}

CellRules::Count CellRules::takeMissing(std::string_view cell, const TablePlace& place) {
    if (reading_.missing == MissingRule::problem) {
        problem(place, cell, terminalLine(cell) + " is no value.");
        return {0, true};
    }
    const char* const taken = reading_.missing == MissingRule::zero
                                  ? " is no value; taken as 0."
                                  : " is no value; its census is left out.";
    keepRemark(records_.notices.missing, place, cell, terminalLine(cell) + taken);
    return {0, true};
}

void CellRules::readAttribute(MockCensus& census, ColumnRole role, std::string_view cell,
                              const TablePlace& place, bool exact) {
    const bool mayMiss = role != ColumnRole::notes && !exact;
    if (cell.empty() || (mayMiss && isMissingMark(cell))) return;
    switch (role) {
        case ColumnRole::latitude:
            readDegrees(census.latitude, cell, 90, place, exact);
            break;
        case ColumnRole::longitude:
            readDegrees(census.longitude, cell, 180, place, exact);
            break;
        case ColumnRole::notes:
            if (exact || isText(cell, place)) census.notes = cell;
            break;
        case ColumnRole::date:
            readDate(census, cell, place);
            break;
        default:
            break;
    }
}

void CellRules::readDegrees(double& degrees, std::string_view cell, double limit,
                            const TablePlace& place, bool exact) {
    if (!exact && !isText(cell, place)) return;
    // A project may hold any value, even none that is a number.
    const std::optional<double> value =
        exact ? parseWholeDouble(cell) : tableDegrees(cell, marks_, limit);
    if (value) {
        degrees = *value;
        return;
    }
    problem(place, cell,
            shownInQuotes(cell) + (limit == 90 ? " is not a latitude from -90 to 90."
                                               : " is not a longitude from -180 to 180."));
}

void CellRules::readDate(MockCensus& census, std::string_view cell, const TablePlace& place) {
    if (!isText(cell, place)) return;
    const CellDate date = tableDate(cell, reading_.dateOrder);
    census.timeStamp = date.time;
    if (date.time) return;
    problem(place, cell,
            date.needsOrder ? terminalLine(cell) + " may begin with the day or the month."
                            : shownInQuotes(cell) + " is not a date.");
}

// True, with a problem, where the cell is a formula or an error.
bool CellRules::refuseFormula(std::string_view cell, const TablePlace& place) {
    if (isFormula(cell)) {
        problem(place, cell, terminalLine(cell) + formulaPredicate);
    } else if (isErrorValue(cell)) {
        problem(place, cell,
                terminalLine(cell) +
                    " is the error of a formula. Correct it in the spreadsheet program and save "
                    "the table again.");
    } else {
        return false;
    }
    return true;
}

void CellRules::problem(const TablePlace& place, std::string_view cell, std::string reason) {
    keepRemark(records_.problems, place, cell, std::move(reason));
}

void CellRules::noteCountedOnce(const TablePlace& place) {
    keepRemark(records_.notices.countedOnce, place, {}, "no count, taken as 1");
}

}  // namespace zorvel
