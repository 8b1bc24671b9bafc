#include "cli/tables.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <functional>
#include <memory>

#include "base/numbers.h"
#include "base/text.h"
#include "cli/call.h"
#include "cli/output.h"
#include "tables/source.h"
#include "tables/texts.h"

namespace zorvel::cli {
namespace {

constexpr ColumnRole roles[] = {ColumnRole::census,   ColumnRole::species,   ColumnRole::genus,
                                ColumnRole::count,    ColumnRole::date,      ColumnRole::year,
                                ColumnRole::month,    ColumnRole::day,       ColumnRole::notes,
                                ColumnRole::latitude, ColumnRole::longitude, ColumnRole::status,
                                ColumnRole::total,    ColumnRole::included,  ColumnRole::ignored};

[[noreturn]] void refuse(const char* option, const std::string& text, const std::string& allowed) {
    throw CLI::ValidationError(option, "'" + text + "' is not " + allowed);
}

char readCharacter(const char* option, const std::string& text) {
    if (text.size() != 1) refuse(option, text, "a single character");
    return text.front();
}

char readSeparator(const std::string& text) {
    for (const SeparatorName& each : separatorNames()) {
        if (text == each.name) return each.separator;
    }
    if (text.size() != 1) {
        refuse("--separator", text, "comma, semicolon, tab, space, bar or a single character");
    }
    return text.front();
}

std::size_t readNumber(const char* option, std::string_view text) {
    std::size_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || text.empty()) {
        refuse(option, std::string(text), "a whole number");
    }
    return value;
}

// "3-20", or "3-" to the end.
void readRows(const std::string& text, TableChoices& choices) {
    const std::size_t dash = text.find('-');
    if (dash == std::string::npos) refuse("--rows", text, "of the form FIRST-LAST or FIRST-");
    choices.firstRow = readNumber("--rows", std::string_view(text).substr(0, dash));
    const std::string_view last = std::string_view(text).substr(dash + 1);
    if (!last.empty()) choices.lastRow = readNumber("--rows", last);
    if (*choices.firstRow < 1 || (choices.lastRow && *choices.lastRow < *choices.firstRow)) {
        refuse("--rows", text, "a range of rows, which count from 1");
    }
}

std::pair<std::string, ColumnRole> readColumn(const std::string& text) {
    const std::size_t sign = text.rfind('=');
    const std::string role = sign == std::string::npos ? std::string() : text.substr(sign + 1);
    std::string allowed;
    for (const ColumnRole each : roles) {
        if (sign != std::string::npos && role == roleName(each))
            return {text.substr(0, sign), each};
        allowed += (allowed.empty() ? "" : ", ") + std::string(roleName(each));
    }
    refuse("--column", text, "of the form HEADER=ROLE with a role of " + allowed);
}

template <class T>
T readChoice(const char* option, const std::string& text,
             const std::vector<std::pair<const char*, T>>& choices) {
    std::string allowed;
    for (const auto& [name, value] : choices) {
        if (text == name) return value;
        allowed += (allowed.empty() ? "" : ", ") + std::string(name);
    }
    refuse(option, text, "one of " + allowed);
}

// --- reading ---

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
            text += (text.empty() ? "" : " ") + std::string(row.cell(i));
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

// Roles of which there is one column at most; the column that had it is ignored from now on.
bool isOfOneColumn(ColumnRole role) {
    return role != ColumnRole::count && role != ColumnRole::total && role != ColumnRole::ignored;
}

void setRole(TableReading& reading, std::size_t column, ColumnRole role) {
    const bool single = isOfOneColumn(role) ||
                        (role == ColumnRole::count && reading.layout == TableLayout::records);
    if (single)
        std::replace(reading.columns.begin(), reading.columns.end(), role, ColumnRole::ignored);
    reading.columns[column] = role;
}

std::string namesOf(const std::vector<SheetInfo>& sheets) {
    std::string text;
    for (const SheetInfo& sheet : sheets) {
        text += (text.empty() ? "'" : ", '") + terminalLine(sheet.name) + "'";
        if (sheet.hidden) text += " (hidden)";
    }
    return text;
}

// The sheet that the options name, or the first that is not hidden and holds something. None, with
// the reason on standard error, where there is no such sheet or the workbook cannot be used.
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
    std::size_t sheet = workbook->usualSheet();
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

void applyRules(TableReading& reading, const TableOptions& options) {
    reading.decimalMark = options.decimalMark.value_or(reading.decimalMark);
    reading.thousandsMark = options.thousandsMark.value_or(reading.thousandsMark);
    if (reading.thousandsMark == reading.decimalMark) reading.thousandsMark = 0;
    reading.dateOrder = options.dateOrder.value_or(reading.dateOrder);
    reading.missing = options.missing.value_or(reading.missing);
    reading.fractions = options.fractions.value_or(reading.fractions);
    reading.sameCensus = options.sameCensus.value_or(reading.sameCensus);
    reading.sameSpecies = options.sameSpecies.value_or(reading.sameSpecies);
    reading.presence = reading.presence || options.presence;
}

void settleDoubts(std::vector<TableDoubt>& doubts, const TableOptions& options) {
    std::erase_if(doubts, [&options](TableDoubt doubt) {
        switch (doubt) {
            case TableDoubt::separator:
                return options.choices.separator.has_value();
            case TableDoubt::layout:
                return options.choices.layout.has_value();
            case TableDoubt::dateOrder:
                return options.dateOrder.has_value();
            case TableDoubt::thousandsMark:
                return options.thousandsMark || options.decimalMark;
        }
        return false;
    });
}

// Guesses, and takes what the options say; false, with a message, where they name no column.
bool settle(ReadTable& table, const TableSource& source, const TableOptions& options) {
    table.guess = source.guess(options.choices);
    TableReading& reading = table.guess.reading;
    applyRules(reading, options);
    table.header = headerTexts(*source.rows(reading.form, {}), reading);
    for (const auto& [name, role] : options.columns) {
        const std::optional<std::size_t> column = findColumn(table.header, name);
        if (!column) {
            tellAt(table.place, {}, "has no column '" + name + "'");
            return false;
        }
        setRole(reading, *column, role);
    }
    settleDoubts(table.guess.doubts, options);
    return true;
}

const char* optionFor(TableDoubt doubt) {
    switch (doubt) {
        case TableDoubt::separator:
            return "--separator";
        case TableDoubt::layout:
            return "--layout";
        case TableDoubt::dateOrder:
            return "--date-order";
        case TableDoubt::thousandsMark:
            return "--thousands or --decimal";
    }
    return "";
}

std::int64_t individualsOf(const MockCensus& census) {
    double sum = 0;
    for (const MockTaxon& taxon : census.taxa) sum += static_cast<double>(taxon.abundance);
    return static_cast<std::int64_t>(std::min(sum, 9.2e18));
}

// --- preview ---

void writePreviewText(Output& output, const std::string& file, const ReadTable& table) {
    constexpr std::size_t mostPreviewed = 50;
    const TableReading& reading = table.guess.reading;
    std::string text = file + ": " + understoodText(reading) + "\n";
    for (std::size_t i = 0; i < table.header.size(); ++i) {
        text += "  " + columnLetters(i) + "  " + roleName(reading.role(i)) + "  " +
                terminalLine(table.header[i]) + "\n";
    }
    const auto& censuses = table.records.censuses;
    for (std::size_t i = 0; i < std::min(censuses.size(), mostPreviewed); ++i) {
        text += "  " + terminalLine(censuses[i].name) + "\t" +
                integerText(static_cast<std::int64_t>(censuses[i].taxa.size())) + " species\t" +
                integerText(individualsOf(censuses[i])) + " individuals\n";
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
        json.field("encoding", std::string_view(encodingName(reading.form.encoding)));
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
    json.field("layout", std::string_view(layoutName(reading.layout)));
    json.field("firstRow", number(reading.firstRow));
    json.field("lastRow", number(reading.lastRow == 0 ? table.records.lastRow : reading.lastRow));
    json.field("headerRows", number(reading.headerRows.size()));
    json.field("decimal", std::string_view(markText(reading.decimalMark)));
    json.field("thousands", std::string_view(markText(reading.thousandsMark)));
    json.field("presence", reading.presence);
    json.key("columns");
    json.begin('[');
    for (std::size_t i = 0; i < table.header.size(); ++i) {
        json.begin('{');
        json.field("column", std::string_view(columnLetters(i)));
        json.field("header", std::string_view(table.header[i]));
        json.field("role", std::string_view(roleName(reading.role(i))));
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

void addTableOptions(CLI::App& app, TableOptions& options) {
    const auto add = [&](const char* name, const char* type, const char* text,
                         std::function<void(const std::string&)> read) {
        app.add_option_function<std::string>(
               name,
               [&options, name, read = std::move(read)](const std::string& value) {
                   options.given.emplace_back(name);
                   read(value);
               },
               text)
            ->type_name(type)
            ->group("Tables");
    };
    const auto flag = [&](const char* name, const char* text, bool& value) {
        app.add_flag_callback(
               name,
               [&options, &value, name] {
                   options.given.emplace_back(name);
                   value = true;
               },
               text)
            ->group("Tables");
    };
    TableChoices& choices = options.choices;
    add("--sheet", "SHEET",
        "The sheet of a workbook (.xlsx, .ods), by name or number\n"
        "(default: the first that is not hidden and not empty)",
        [&](const std::string& text) { options.sheet = text; });
    add("--separator", "SEP", "comma, semicolon, tab, space, bar or a character",
        [&](const std::string& text) { choices.separator = readSeparator(text); });
    add("--encoding", "NAME", "UTF-8, UTF-16LE, UTF-16BE or Windows-1252",
        [&](const std::string& text) {
            choices.encoding =
                readChoice<TableEncoding>("--encoding", text,
                                          {{"UTF-8", TableEncoding::utf8},
                                           {"UTF-16LE", TableEncoding::utf16LittleEndian},
                                           {"UTF-16BE", TableEncoding::utf16BigEndian},
                                           {"Windows-1252", TableEncoding::windows1252}});
        });
    add("--layout", "LAYOUT",
        "Where the censuses are: rows, columns, or long (a row for\n"
        "each species of a census)",
        [&](const std::string& text) {
            choices.layout = readChoice<TableLayout>("--layout", text,
                                                     {{"rows", TableLayout::censusRows},
                                                      {"columns", TableLayout::speciesRows},
                                                      {"long", TableLayout::records}});
        });
    add("--header", "N", "Number of header rows",
        [&](const std::string& text) { choices.headerRows = readNumber("--header", text); });
    add("--rows", "A-B", "The rows to read, header included: 3-20, or 3- to the end",
        [&](const std::string& text) { readRows(text, choices); });
    app.add_option_function<std::vector<std::string>>(
           "--column",
           [&options](const std::vector<std::string>& values) {
               options.given.emplace_back("--column");
               for (const std::string& value : values) options.columns.push_back(readColumn(value));
           },
           "What a column holds, as in Plot=census or C=ignored; may be\n"
           "given several times")
        ->type_name("HEADER=ROLE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(false)
        ->group("Tables");
    add("--decimal", "CHAR", "The decimal mark",
        [&](const std::string& text) { options.decimalMark = readCharacter("--decimal", text); });
    add("--thousands", "CHAR", "The mark between groups of three digits",
        [&](const std::string& text) {
            options.thousandsMark = readCharacter("--thousands", text);
        });
    add("--date-order", "ORDER", "Of 3/4/2021: dmy or mdy", [&](const std::string& text) {
        options.dateOrder = readChoice<DateOrder>(
            "--date-order", text, {{"dmy", DateOrder::dayFirst}, {"mdy", DateOrder::monthFirst}});
    });
    add("--missing", "RULE", "NA and the like: zero (default), fault, or leave-out (the census)",
        [&](const std::string& text) {
            options.missing = readChoice<MissingRule>("--missing", text,
                                                      {{"zero", MissingRule::zero},
                                                       {"fault", MissingRule::problem},
                                                       {"leave-out", MissingRule::leaveOut}});
        });
    add("--fractions", "RULE", "fault (default) or round", [&](const std::string& text) {
        options.fractions = readChoice<FractionRule>(
            "--fractions", text,
            {{"fault", FractionRule::problem}, {"round", FractionRule::round}});
    });
    add("--same-census", "RULE", "Rows of one census: apart (default) or sum",
        [&](const std::string& text) {
            options.sameCensus = readChoice<SameRule>(
                "--same-census", text, {{"apart", SameRule::apart}, {"sum", SameRule::sum}});
        });
    add("--same-species", "RULE", "Counts of one species in a census: sum (default) or apart",
        [&](const std::string& text) {
            options.sameSpecies = readChoice<SameRule>(
                "--same-species", text, {{"apart", SameRule::apart}, {"sum", SameRule::sum}});
        });
    flag("--presence", "Take each mark as 1", options.presence);
    flag("--guess", "Take what is in doubt as it seems to be", options.guess);
}

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
        table.records = readTable(*rows, table.guess.reading, {}, &names);
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
    table.records = readTable(rows, table.guess.reading, {}, &names);
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
                   std::string("it is in doubt ") + doubtText(doubt) + ": give " +
                       optionFor(doubt) + ", or --guess to take it as it seems to be");
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
