#include "cli/tables.h"

#include <algorithm>
#include <memory>

#include "base/numbers.h"
#include "base/text.h"
#include "cli/call.h"
#include "cli/output.h"
#include "tables/rule_names.h"
#include "tables/source.h"
#include "tables/texts.h"

namespace zorvel::cli {
namespace {

// The header of each column, from the first rows of the table.
std::vector<std::string> headerTexts(RowSource& rows, const TableReading& reading) {
    std::vector<std::string> header(reading.columns.size());
    TableRow row;
    while (rows.next(row) && row.number < reading.firstDataRow()) {
        if (row.number < reading.firstRow) continue;
        const std::size_t shift = reading.shortHeader && row.number == reading.firstRow ? 1 : 0;
        for (std::size_t i = 0; i + shift < header.size(); ++i) {
            std::string& text = header[i + shift];
            if (row.cell(i).empty()) continue;
            if (!text.empty()) text += ' ';
            text += row.cell(i);
        }
    }
    return header;
}

// Headers come before letters: a column may be called "A".
std::optional<std::size_t> findColumn(const std::vector<std::string>& header,
                                      const std::string& name) {
    const auto found = std::find(header.begin(), header.end(), name);
    if (found != header.end()) return static_cast<std::size_t>(found - header.begin());
    for (std::size_t i = 0; i < header.size(); ++i) {
        if (columnLetters(i) == name) return i;
    }
    return std::nullopt;
}

std::string namesOf(const std::vector<SheetInfo>& sheets) {
    std::string text;
    for (const SheetInfo& sheet : sheets) {
        text += (text.empty() ? "'" : ", '") + terminalLine(sheet.name) + "'";
        if (sheet.hidden) text += " (hidden)";
    }
    return text;
}

// The sheet that the options name, or else the usual one. None, with the reason on standard error,
// where there is no such sheet or the workbook cannot be used.
std::unique_ptr<TableSource> openSheet(std::string bytes, const TableOptions& options,
                                       ReadTable& table) {
    const std::string file = table.place;
    for (const std::string& option : options.given) {
        if (option != "--separator" && option != "--encoding") continue;
        tellAt(file, {}, "is a workbook, and not a text: leave out " + option);
        return nullptr;
    }
    Result<Workbook> opened = Workbook::open(std::make_shared<const std::string>(std::move(bytes)));
    if (!opened) {
        tellAt(file, {}, opened.problem().message);
        return nullptr;
    }
    const auto workbook = std::make_shared<const Workbook>(std::move(opened).value());
    table.sheets = workbook->sheets();
    std::size_t sheet = 0;
    if (options.sheet) {
        const auto found = workbook->findSheet(*options.sheet);
        if (!found) {
            tellAt(
                file, {},
                "has no sheet '" + *options.sheet + "'; its sheets are " + namesOf(table.sheets));
            return nullptr;
        }
        sheet = *found;
    } else {
        const auto usual = workbook->usualSheet();
        if (!usual) {
            tellAt(file, {},
                   "has several sheets that hold a table, and the first does not: choose one by "
                   "--sheet from " +
                       namesOf(table.sheets));
            return nullptr;
        }
        sheet = *usual;
        std::vector<SheetInfo> others = table.sheets;
        others.erase(others.begin() + static_cast<std::ptrdiff_t>(sheet));
        std::erase_if(others, [](const SheetInfo& each) { return each.empty; });
        if (!others.empty()) {
            table.sheetNotice = "of several sheets, '" + terminalLine(table.sheets[sheet].name) +
                                "' is taken; --sheet chooses another: " + namesOf(others);
        }
    }
    table.place += "!" + table.sheets[sheet].name;
    return std::make_unique<SheetSource>(workbook, sheet);
}

// Guesses, and takes what the options say; false, with a message, where they name no column.
bool settle(ReadTable& table, const TableSource& source, const TableOptions& options) {
    TableCorrections corrections = options.corrections;
    table.guess = source.guess(corrections.choices, {});
    const TableReading& reading = table.guess.reading;
    table.header = headerTexts(*source.rows(reading.form, {}), reading);
    for (const auto& [name, role] : options.columns) {
        const std::optional<std::size_t> column = findColumn(table.header, name);
        if (!column) {
            tellAt(table.place, {}, "has no column '" + name + "'");
            return false;
        }
        corrections.roles[*column] = role;
    }
    applyCorrections(table.guess, corrections);
    return true;
}

const char* optionFor(TableDoubt doubt) {
    switch (doubt) {
        case TableDoubt::separator:
            return "--separator";
        case TableDoubt::layout:
            return "--layout";
        case TableDoubt::names:
            return "--column HEADER=census and --column HEADER=species";
        case TableDoubt::counts:
            return "--column HEADER=count for each of them, or HEADER=ignored";
        case TableDoubt::stages:
            return "--stages sum or apart";
        case TableDoubt::numbers:
            return "--column HEADER=ignored or HEADER=count for each of them";
        case TableDoubt::amounts:
            return "--column HEADER=count for one of them";
        case TableDoubt::visits:
            return "--same-census apart or sum";
        case TableDoubt::dateOrder:
            return "--date-order";
        case TableDoubt::thousandsMark:
            return "--thousands or --decimal";
    }
    return "";
}

// The columns that may be meant: " (C "Males", D "Females")".
std::string candidatesText(TableDoubt doubt, const ReadTable& table) {
    std::string text;
    for (std::size_t i = 0; i < table.header.size(); ++i) {
        const ColumnRole role = table.guess.reading.role(i);
        const auto& unlikely = table.guess.unlikely;
        const auto& ofStages = table.records.notices.stageColumns;
        const bool isMeant = (doubt == TableDoubt::counts && role == ColumnRole::count) ||
                             (doubt == TableDoubt::names &&
                              (role == ColumnRole::census || role == ColumnRole::species)) ||
                             (doubt == TableDoubt::stages &&
                              std::binary_search(ofStages.begin(), ofStages.end(), i)) ||
                             (doubt == TableDoubt::numbers &&
                              std::binary_search(unlikely.begin(), unlikely.end(), i));
        if (!isMeant) continue;
        text += (text.empty() ? " (" : ", ") + columnLetters(i) + " \"" +
                terminalLine(table.header[i]) + "\"";
    }
    return text.empty() ? text : text + ")";
}

std::int64_t individualsOf(const MockCensus& census) {
    double sum = 0;
    for (const MockTaxon& taxon : census.taxa) sum += static_cast<double>(taxon.abundance);
    return static_cast<std::int64_t>(std::min(sum, 9.2e18));
}

std::string individualsText(const MockCensus& census) {
    const std::int64_t count = individualsOf(census);
    return integerText(count) + (count == 1 ? " individual" : " individuals");
}

void readAsGuessed(ReadTable& table, RowSource& rows, NamePool& names) {
    table.records = readTable(rows, table.guess.reading, {}, &names);
    dropIdleDoubts(table.guess.doubts, table.records.notices);
}

// --- preview ---

void writePreviewText(Output& output, const std::string& file, const ReadTable& table) {
    constexpr std::size_t mostPreviewed = 50;
    const TableReading& reading = table.guess.reading;
    std::string text = file + ": " + understoodText(reading) + "\n";
    for (std::size_t i = 0; i < table.header.size(); ++i) {
        text += "  " + columnLetters(i) + "  " + ruleName(roleNames, reading.role(i)) + "  " +
                terminalLine(table.header[i]) + "\n";
    }
    const auto& censuses = table.records.censuses;
    for (std::size_t i = 0; i < std::min(censuses.size(), mostPreviewed); ++i) {
        text += "  " + terminalLine(censuses[i].name) + "\t" +
                integerText(static_cast<std::int64_t>(censuses[i].taxa.size())) + " species\t" +
                individualsText(censuses[i]) + "\n";
    }
    if (censuses.size() > mostPreviewed) {
        text += "  and " + integerText(static_cast<std::int64_t>(censuses.size() - mostPreviewed)) +
                " more censuses\n";
    }
    if (!table.sheetNotice.empty()) text += "  " + table.sheetNotice + "\n";
    for (const std::string& notice : noticeTexts(table.records.notices, reading)) {
        text += "  " + notice + "\n";
    }
    output.write(text);
}

std::string markText(char mark) {
    return mark == 0 ? std::string() : std::string(1, mark);
}

void writePreviewJson(JsonWriter& json, const std::string& file, const ReadTable& table) {
    const TableReading& reading = table.guess.reading;
    const auto number = [](std::size_t value) { return static_cast<std::int64_t>(value); };
    json.begin('{');
    json.field("file", std::string_view(file));
    if (table.sheets.empty()) {
        json.field("encoding", std::string_view(ruleName(encodingNames, reading.form.encoding)));
        json.field("separator", std::string_view(markText(reading.form.separator)));
        json.field("quotes", reading.form.quotes);
    } else {
        json.field("sheet", std::string_view(reading.sheet));
        json.key("sheets");
        json.begin('[');
        for (const SheetInfo& sheet : table.sheets) {
            json.begin('{');
            json.field("name", std::string_view(sheet.name));
            json.field("hidden", sheet.hidden);
            json.end('}');
        }
        json.end(']');
    }
    json.field("layout", std::string_view(ruleName(layoutNames, reading.layout)));
    json.field("firstRow", number(reading.firstRow));
    json.field("lastRow", number(reading.lastRow == 0 ? table.records.lastRow : reading.lastRow));
    json.field("headerRows", number(reading.headerRows.size()));
    json.field("decimal", std::string_view(markText(reading.decimalMark)));
    json.field("thousands", std::string_view(markText(reading.thousandsMark)));
    json.field("presence", reading.presence);
    json.field("dateOrder", std::string_view(ruleName(dateOrderNames, reading.dateOrder)));
    json.field("missing", std::string_view(ruleName(missingRuleNames, reading.missing)));
    json.field("fractions", std::string_view(ruleName(fractionRuleNames, reading.fractions)));
    json.field("sameCensus", std::string_view(ruleName(sameRuleNames, reading.sameCensus)));
    json.field("sameSpecies", std::string_view(ruleName(sameRuleNames, reading.sameSpecies)));
    json.field("stages", std::string_view(ruleName(sameRuleNames, reading.sameStages)));
    json.field("unnamed", std::string_view(ruleName(unnamedRuleNames, reading.unnamed)));
    json.key("zero");
    json.begin('[');
    for (const CountFault fault : reading.takenAsZero) {
        json.value(std::string_view(ruleName(countFaultNames, fault)));
    }
    json.end(']');
    json.key("columns");
    json.begin('[');
    for (std::size_t i = 0; i < table.header.size(); ++i) {
        json.begin('{');
        json.field("column", std::string_view(columnLetters(i)));
        json.field("header", std::string_view(table.header[i]));
        json.field("role", std::string_view(ruleName(roleNames, reading.role(i))));
        json.end('}');
    }
    json.end(']');
    json.key("doubts");
    json.begin('[');
    for (const TableDoubt doubt : table.guess.doubts)
        json.value(std::string_view(optionFor(doubt)));
    json.end(']');
    json.field("problems", number(table.records.problems.count));
    json.key("notices");
    json.begin('[');
    if (!table.sheetNotice.empty()) json.value(std::string_view(table.sheetNotice));
    for (const std::string& notice : noticeTexts(table.records.notices, reading)) {
        json.value(std::string_view(notice));
    }
    json.end(']');
    json.key("censuses");
    json.begin('[');
    for (const MockCensus& census : table.records.censuses) {
        json.begin('{');
        json.field("name", std::string_view(census.name));
        json.field("species", number(census.taxa.size()));
        json.field("individuals", individualsOf(census));
        json.end('}');
    }
    json.end(']');
    json.end('}');
}

}  // namespace

std::optional<ReadTable> readTableFile(const std::string& file, InputFile input,
                                       const TableOptions& options, NamePool& names) {
    // One byte more tells whether the table goes on.
    input.readStart(TableSample::mostBytes + 1);
    ReadTable table;
    table.place = file;
    if (looksLikeWorkbook(input.start())) {
        Result<std::string> bytes = std::move(input).bytes();
        if (!bytes) {
            tellAt(file, {}, bytes.problem().message);
            return std::nullopt;
        }
        const auto sheet = openSheet(std::move(bytes).value(), options, table);
        if (!sheet) return std::nullopt;
        if (!settle(table, *sheet, options)) return std::nullopt;
        const auto rows = sheet->rows({}, {});
        readAsGuessed(table, *rows, names);
        if (const auto problem = rows->problem()) {
            tellAt(file, {}, problem->message);
            return std::nullopt;
        }
        return table;
    }
    if (options.sheet) {
        tellAt(file, {}, "is a text, which has no sheets: leave out --sheet");
        return std::nullopt;
    }
    const TextSource start(input.start().substr(0, TableSample::mostBytes), input.atEnd());
    if (!settle(table, start, options)) return std::nullopt;
    TextRows rows([&input](char* bytes, std::size_t size) { return input.read(bytes, size); },
                  table.guess.reading.form);
    readAsGuessed(table, rows, names);
    if (const auto problem = input.problem()) {
        tellAt(file, {}, problem->message);
        return std::nullopt;
    }
    return table;
}

bool isUsable(const ReadTable& table, const TableOptions& options) {
    const bool doubtful = !table.guess.doubts.empty() && !options.guess;
    if (doubtful) {
        for (const TableDoubt doubt : table.guess.doubts) {
            tellAt(table.place, {},
                   std::string("it is in doubt ") + doubtText(doubt) +
                       candidatesText(doubt, table) + ": give " + optionFor(doubt) +
                       ", or --guess to take it as it seems to be");
        }
        return false;
    }
    const TableRemarks& problems = table.records.problems;
    for (const TableRemark& remark : problems.kept) {
        tellAt(table.place, {remark.line, remark.column ? *remark.column + 1 : 0},
               remarkText(remark));
    }
    if (problems.count > problems.kept.size()) {
        tellAt(table.place, {},
               "and " +
                   integerText(static_cast<std::int64_t>(problems.count - problems.kept.size())) +
                   " problems more");
    }
    const TableReading& reading = table.guess.reading;
    const bool hasUnnamed =
        std::any_of(problems.kept.begin(), problems.kept.end(), [&](const TableRemark& remark) {
            return remark.column && remark.cell.empty() &&
                   reading.role(*remark.column) == ColumnRole::census;
        });
    if (hasUnnamed) {
        tellAt(table.place, {},
               "--unnamed above takes the name in the row above, as in merged cells; --unnamed row "
               "names a census by its row");
    }
    return problems.count == 0;
}

bool previewTables(const Call& call, Output& output) {
    bool usable = true;
    JsonWriter json(output);
    if (call.json) json.begin('[');
    for (const std::string& name : call.files) {
        const std::string file = shownFile(name);
        Result<InputFile> input = InputFile::openAny(name);
        if (!input) {
            tellAt(file, {}, input.problem().message);
            usable = false;
            continue;
        }
        NamePool names;
        const auto table = readTableFile(file, std::move(input).value(), call.table, names);
        if (table && call.json) writePreviewJson(json, file, *table);
        if (table && !call.json) writePreviewText(output, file, *table);
        usable = table && isUsable(*table, call.table) && usable;
    }
    if (call.json) json.end(']');
    return usable;
}

}  // namespace zorvel::cli
