// The options for tables.
#include <CLI/CLI.hpp>

#include <charconv>
#include <functional>
#include <optional>
#include <utility>

#include "cli/tables.h"
#include "tables/rule_names.h"
#include "tables/texts.h"

namespace zorvel::cli {
namespace {

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

template <class T, std::size_t size>
std::string listOf(const RuleNames<T, size>& rules) {
    std::string text;
    for (const auto& [name, value] : rules) text += (text.empty() ? "" : ", ") + std::string(name);
    return text;
}

std::pair<std::string, ColumnRole> readColumn(const std::string& text) {
    const std::size_t sign = text.rfind('=');
    const auto role = sign == std::string::npos
                          ? std::nullopt
                          : ruleNamed(roleNames, std::string_view(text).substr(sign + 1));
    if (role) return {text.substr(0, sign), *role};
    refuse("--column", text, "of the form HEADER=ROLE with a role of " + listOf(roleNames));
}

template <class T, std::size_t size>
T readRule(const char* option, const std::string& text, const RuleNames<T, size>& rules) {
    if (const auto value = ruleNamed(rules, text)) return *value;
    refuse(option, text, "one of " + listOf(rules));
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
    const auto addSeveral = [&](const char* name, const char* type, const char* text,
                                std::function<void(const std::string&)> read) {
        app.add_option_function<std::vector<std::string>>(
               name,
               [&options, name, read = std::move(read)](const std::vector<std::string>& values) {
                   options.given.emplace_back(name);
                   for (const std::string& value : values) read(value);
               },
               text)
            ->type_name(type)
            ->expected(1)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
            ->allow_extra_args(false)
            ->group("Tables");
    };
    const auto flag = [&](const char* name, const char* text, auto& value) {
        app.add_flag_callback(
               name,
               [&options, &value, name] {
                   options.given.emplace_back(name);
                   value = true;
               },
               text)
            ->group("Tables");
    };
    TableCorrections& corrections = options.corrections;
    TableChoices& choices = corrections.choices;
    add("--sheet", "SHEET",
        "The sheet of a workbook (.xlsx, .ods), by name or number\n"
        "(default: the first that is not empty, or the only one with a table)",
        [&](const std::string& text) { options.sheet = text; });
    add("--separator", "SEP", "comma, semicolon, tab, space, bar or a character",
        [&](const std::string& text) { choices.separator = readSeparator(text); });
    add("--encoding", "NAME",
        "UTF-8, UTF-16LE, UTF-16BE, Windows-1250 or\n"
        "Windows-1252",
        [&](const std::string& text) {
            choices.encoding = readRule("--encoding", text, encodingNames);
        });
    add("--layout", "LAYOUT",
        "Where the censuses are: rows, columns, or long (a row for\n"
        "each species of a census)",
        [&](const std::string& text) { choices.layout = readRule("--layout", text, layoutNames); });
    add("--header", "N", "Number of header rows",
        [&](const std::string& text) { choices.headerRows = readNumber("--header", text); });
    add("--rows", "A-B", "The rows to read, header included: 3-20, or 3- to the end",
        [&](const std::string& text) { readRows(text, choices); });
    addSeveral("--column", "HEADER=ROLE",
               "What a column holds, as in Plot=census or C=ignored; may be\n"
               "given several times. Columns that name the census are joined,\n"
               "those of counts in a long table are added",
               [&](const std::string& text) { options.columns.push_back(readColumn(text)); });
    add("--decimal", "CHAR", "The decimal mark", [&](const std::string& text) {
        corrections.decimalMark = readCharacter("--decimal", text);
    });
    add("--thousands", "CHAR", "The mark between groups of three digits",
        [&](const std::string& text) {
            corrections.thousandsMark = readCharacter("--thousands", text);
        });
    add("--date-order", "ORDER", "Of 3/4/2021: dmy or mdy", [&](const std::string& text) {
        corrections.dateOrder = readRule("--date-order", text, dateOrderNames);
    });
    add("--missing", "RULE", "NA and the like: zero (default), fault, or leave-out (the census)",
        [&](const std::string& text) {
            corrections.missing = readRule("--missing", text, missingRuleNames);
        });
    add("--fractions", "RULE", "fault (default) or round", [&](const std::string& text) {
        corrections.fractions = readRule("--fractions", text, fractionRuleNames);
    });
    addSeveral("--zero", "FAULT",
               "Counts to take as 0: fraction, negative, large or text; may be\n"
               "given several times",
               [&](const std::string& text) {
                   corrections.takenAsZero.push_back(readRule("--zero", text, countFaultNames));
               });
    add("--same-census", "RULE", "Rows of one census: apart (default) or sum",
        [&](const std::string& text) {
            corrections.sameCensus = readRule("--same-census", text, sameRuleNames);
        });
    add("--same-species", "RULE", "Counts of one species in a census: sum (default) or apart",
        [&](const std::string& text) {
            corrections.sameSpecies = readRule("--same-species", text, sameRuleNames);
        });
    add("--stages", "RULE",
        "Columns of a species or census whose headers differ in a sex or\n"
        "stage at their end, as in \"Parus major M\": sum or apart",
        [&](const std::string& text) {
            corrections.sameStages = readRule("--stages", text, sameRuleNames);
        });
    add("--unnamed", "RULE",
        "A census without a name: fault (default), row (\"row 7\") or\n"
        "above (the name in the row above, as in merged cells)",
        [&](const std::string& text) {
            corrections.unnamed = readRule("--unnamed", text, unnamedRuleNames);
        });
    flag("--presence", "Take each mark as 1", corrections.presence);
    flag("--guess", "Take what is in doubt as it seems to be", options.guess);
}

}  // namespace zorvel::cli
