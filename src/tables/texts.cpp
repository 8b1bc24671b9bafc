#include "tables/texts.h"

#include <algorithm>

#include "base/numbers.h"
#include "base/text.h"
#include "tables/rule_names.h"

namespace zorvel {
namespace {

std::string countedText(std::size_t count, const char* one, const char* several) {
    return integerText(static_cast<std::int64_t>(count)) + " " + (count == 1 ? one : several);
}

// "a, b and 3 more".
std::string listText(const std::vector<std::string>& names) {
    constexpr std::size_t most = 5;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), most); ++i) {
        text += (i == 0 ? "" : ", ") + terminalLine(names[i]);
    }
    if (names.size() > most) {
        text += " and " + integerText(static_cast<std::int64_t>(names.size() - most)) + " more";
    }
    return text;
}

std::string rowsText(const std::vector<std::size_t>& rows) {
    std::vector<std::string> numbers;
    for (const std::size_t row : rows) {
        numbers.push_back(integerText(static_cast<std::int64_t>(row)));
    }
    return (rows.size() == 1 ? "row " : "rows ") + listText(numbers);
}

// What is done with the sexes and stages that these header rows or columns tell: censuses of
// another date or place are different ones. Year, month and day are a date in columns only.
const char* addedText(const TableReading& reading, const std::vector<ColumnRole>& roles) {
    const auto has = [&roles](ColumnRole role) {
        return std::find(roles.begin(), roles.end(), role) != roles.end();
    };
    const bool areColumns = &roles == &reading.columns;
    const bool areDated = has(ColumnRole::date) || (areColumns && has(ColumnRole::year) &&
                                                    has(ColumnRole::month) && has(ColumnRole::day));
    const bool mayDiffer = areDated || has(ColumnRole::latitude) || has(ColumnRole::longitude);
    return mayDiffer && reading.sameCensus == SameRule::apart
               ? " added where date and place are the same"
               : " added";
}

}  // namespace

const std::vector<SeparatorName>& separatorNames() {
    static const std::vector<SeparatorName> names = {{',', "comma", "commas"},
                                                     {';', "semicolon", "semicolons"},
                                                     {'\t', "tab", "tabs"},
                                                     {' ', "space", "spaces"},
                                                     {'|', "bar", "bars"}};
    return names;
}

std::string formText(const TableReading& reading) {
    if (!reading.sheet.empty()) return "sheet \"" + terminalLine(reading.sheet) + "\"";
    const auto& names = separatorNames();
    const auto name = std::find_if(names.begin(), names.end(), [&](const SeparatorName& each) {
        return each.separator == reading.form.separator;
    });
    std::string text =
        name == names.end() ? std::string("'") + reading.form.separator + "'" : name->plural;
    if (reading.decimalMark == ',') text += ", decimal comma";
    if (reading.form.encoding != TableEncoding::utf8) {
        text += std::string(", ") + ruleName(encodingNames, reading.form.encoding);
    }
    return text;
}

std::string understoodText(const TableReading& reading) {
    std::string text = formText(reading);
    switch (reading.layout) {
        case TableLayout::censusRows:
            text += "; a row for each census";
            break;
        case TableLayout::speciesRows:
            text += "; a row for each species";
            break;
        case TableLayout::records:
            text += "; a row for each species of a census";
            break;
    }
    return text + joinedText(reading);
}

std::string joinedText(const TableReading& reading) {
    const auto columnsText = [&reading](ColumnRole role) {
        std::string text;
        const std::vector<std::size_t> columns = reading.columnsOf(role);
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const char* const gap = i == 0 ? "" : i + 1 == columns.size() ? " and " : ", ";
            text += gap + columnLetters(columns[i]);
        }
        return columns.size() < 2 ? std::string() : text;
    };
    std::string text;
    const std::string names = columnsText(ColumnRole::census);
    if (!names.empty()) text += "; names of censuses from columns " + names;
    for (std::size_t i = 0; i < reading.headerRows.size(); ++i) {
        if (reading.headerRows[i] != ColumnRole::stage) continue;
        text += "; sexes or stages of row " +
                integerText(static_cast<std::int64_t>(reading.firstRow + i)) +
                addedText(reading, reading.headerRows);
    }
    // In the other layouts, stages are added as rows of the same species.
    const bool addsRows =
        reading.layout == TableLayout::censusRows || reading.sameSpecies == SameRule::sum;
    for (const std::size_t column : reading.columnsOf(ColumnRole::stage)) {
        if (!addsRows) break;
        text += "; sexes or stages of column " + columnLetters(column) +
                addedText(reading, reading.columns);
    }
    if (reading.layout != TableLayout::records) return text;
    const std::string counts = columnsText(ColumnRole::count);
    if (!counts.empty()) text += "; counts of columns " + counts + " added";
    if (reading.columnsOf(ColumnRole::count).empty()) text += "; each row is one individual";
    return text;
}

std::vector<std::string> noticeTexts(const TableNotices& notices, const TableReading& reading) {
    std::vector<std::string> texts;
    const auto add = [&texts](std::size_t count, const char* one, const char* several) {
        if (count > 0) texts.push_back(countedText(count, one, several));
    };
    if (reading.presence) {
        texts.emplace_back(
            "presence only: each mark is taken as 1, so metrics of abundance mean nothing");
    }
    if (!notices.stageColumns.empty()) {
        std::vector<std::string> letters;
        for (const std::size_t column : notices.stageColumns) {
            letters.push_back(columnLetters(column));
        }
        texts.push_back("sexes or stages in the headers of columns " + listText(letters) +
                        addedText(reading, reading.headerRows));
    }
    if (notices.totalsRow) texts.push_back(rowsText({*notices.totalsRow}) + " (total) left out");
    if (!notices.totalsColumns.empty()) {
        texts.push_back("column " + listText(notices.totalsColumns) + " (total) left out");
    }
    if (!notices.noteRows.empty()) {
        texts.push_back(rowsText(notices.noteRows) + " below the table left out");
    }
    if (!notices.ignoredColumns.empty()) {
        texts.push_back((notices.ignoredColumns.size() == 1 ? "column " : "columns ") +
                        listText(notices.ignoredColumns) + " ignored");
    }
    add(notices.blankCells, "blank cell taken as 0", "blank cells taken as 0");
    add(notices.missing.count, "cell without a value", "cells without a value");
    for (std::size_t i = 0; i < std::min<std::size_t>(3, notices.missing.kept.size()); ++i) {
        texts.push_back(remarkText(notices.missing.kept[i]));
    }
    add(notices.takenAsZero.count, "cell that holds no count taken as 0",
        "cells that hold no count taken as 0");
    for (std::size_t i = 0; i < std::min<std::size_t>(3, notices.takenAsZero.kept.size()); ++i) {
        texts.push_back(remarkText(notices.takenAsZero.kept[i]));
    }
    add(notices.countedOnce.count, "record without a count taken as 1",
        "records without a count taken as 1");
    add(notices.roundedCells, "fraction rounded", "fractions rounded");
    add(notices.summedSpecies, "count added to another of the same species and census",
        "counts added to others of the same species and census");
    add(notices.absentRecords, "record of an absent species left out",
        "records of absent species left out");
    if (!notices.leftOutCensuses.empty()) {
        texts.push_back("without values, left out: " + listText(notices.leftOutCensuses));
    }
    add(notices.emptyCensuses, "census without species", "censuses without species");
    return texts;
}

const char* doubtText(TableDoubt doubt) {
    switch (doubt) {
        case TableDoubt::separator:
            return "which character separates the cells";
        case TableDoubt::layout:
            return "whether a row is a census, a species, or a species of a census";
        case TableDoubt::names:
            return "which columns name the census and the species";
        case TableDoubt::counts:
            return "which columns hold the counts";
        case TableDoubt::stages:
            return "whether to add the counts of columns whose headers differ in nothing but a sex "
                   "or stage";
        case TableDoubt::numbers:
            return "whether there are counts in columns that look like years, areas or the like";
        case TableDoubt::amounts:
            return "whether the numbers are counts of individuals: the table tells of a cover or a "
                   "mass";
        case TableDoubt::visits:
            return "whether the dates are those of censuses or of single records";
        case TableDoubt::dateOrder:
            return "whether dates begin with the day or the month";
        case TableDoubt::thousandsMark:
            return "whether 1.234 or 1,234 is a whole number";
    }
    return "";
}

}  // namespace zorvel
