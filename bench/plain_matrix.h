// The census matrix read and written in the plainest way, one std::string a cell: what the fast
// forms are measured against and compared with. Shares no code with them but the records.
#pragma once

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "interchange/parsers.h"
#include "metrics/counts.h"

namespace zorvel::plain {

inline constexpr std::string_view lineBreaks[] = {"\n",       "\v",           "\f",          "\r",
                                                  "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"};
inline constexpr std::string_view spaces[] = {"\t",           " ",
                                              "\xC2\xA0",     "\xE1\x9A\x80",
                                              "\xE2\x80\x80", "\xE2\x80\x81",
                                              "\xE2\x80\x82", "\xE2\x80\x83",
                                              "\xE2\x80\x84", "\xE2\x80\x85",
                                              "\xE2\x80\x86", "\xE2\x80\x87",
                                              "\xE2\x80\x88", "\xE2\x80\x89",
                                              "\xE2\x80\x8A", "\xE2\x80\xAF",
                                              "\xE2\x81\x9F", "\xE3\x80\x80"};

// Length of the member of a set that begins at text[at], 0 for none. All members below U+0080 are
// control characters, spaces or one byte long.
template <std::size_t N>
std::size_t memberAt(const std::string_view (&set)[N], std::string_view text, std::size_t at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte > ' ' && byte < 0x80) return 0;
    for (const std::string_view member : set) {
        if (text.compare(at, member.size(), member) == 0) return member.size();
    }
    return 0;
}

struct Field {
    std::string text;
    char end = 'A';  // 'C' comma, 'B' line break, 'A' end of the text
    std::size_t start = 0;
};

inline Field scanField(std::string_view text, std::size_t& at) {
    Field field;
    field.start = at;
    bool inQuotes = false;
    for (;;) {
        const std::size_t run = at;
        while (at < text.size() && text[at] != ',' && text[at] != '"' &&
               memberAt(lineBreaks, text, at) == 0) {
            ++at;
        }
        field.text.append(text, run, at - run);
        if (at == text.size()) return field;
        if (const std::size_t length = memberAt(lineBreaks, text, at)) {
            if (inQuotes) {
                field.text.append(text, at, length);
                at += length;
                continue;
            }
            while (at < text.size()) {
                const std::size_t next = memberAt(lineBreaks, text, at);
                if (next == 0) break;
                at += next;
            }
            field.end = 'B';
            return field;
        }
        const char delimiter = text[at++];
        if (delimiter == '"') {
            if (inQuotes && at < text.size() && text[at] == '"') {
                field.text += '"';
                ++at;
            } else {
                inQuotes = !inQuotes;
            }
        } else if (inQuotes) {
            field.text += ',';
        } else {
            while (at < text.size()) {
                const std::size_t next = memberAt(spaces, text, at);
                if (next == 0) break;
                at += next;
            }
            field.end = 'C';
            return field;
        }
    }
}

inline std::optional<std::int64_t> parseWholeInteger(const std::string& text) {
    std::size_t digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (!digit && !(i == 0 && (text[i] == '+' || text[i] == '-'))) return std::nullopt;
        if (digit) ++digits;
    }
    if (digits == 0) return std::nullopt;
    errno = 0;
    const long long value = std::strtoll(text.c_str(), nullptr, 10);
    if (errno == ERANGE) return std::nullopt;
    return value;
}

inline std::size_t lineOf(std::string_view text, std::size_t place) {
    std::size_t line = 1;
    for (std::size_t i = 0; i < place;) {
        const std::size_t length = memberAt(lineBreaks, text, i);
        const bool pair = text.compare(i, 2, "\r\n") == 0;
        if (length != 0) ++line;
        i += pair ? 2 : (length == 0 ? 1 : length);
    }
    return line;
}

inline Parsed<std::vector<MockCensus>> problem(std::string message, TextPlace place) {
    Parsed<std::vector<MockCensus>> result;
    result.consoleLines.push_back(std::move(message));
    result.place = place;
    return result;
}

// The message that refuses the row's count-th abundance cell; empty if none does.
inline std::string cellMessage(const Field& field, std::optional<std::int64_t> value,
                               std::size_t count, std::size_t species) {
    const std::string kind(1, field.end);
    if (!value) return kind + ": Not an abundance value, or not an integer: " + field.text;
    if (*value < 0) {
        return kind +
               ": File contains negative abundance value, but all abundances must be positive "
               "integers: " +
               field.text + ".  See help for formatting an input file.";
    }
    const std::string end =
        " abundances found in a row than there are species. See help for formatting an input file.";
    if (field.end != 'C' && count > species) return kind + ": More" + end;
    if (field.end != 'C' && count < species) return kind + ": Fewer" + end;
    if (*value != 0 && count > species) return "B: More" + end;
    return {};
}

inline Parsed<std::vector<MockCensus>> parseCensusMatrix(std::string_view text) {
    std::vector<std::string> header;
    std::size_t species = 0;
    std::size_t row = 0;
    std::size_t column = 0;
    std::size_t count = 0;
    std::size_t zeros = 0;
    bool named = false;
    MockCensus census;
    census.name = "imported census";
    Parsed<std::vector<MockCensus>> result;
    result.value.emplace();
    for (std::size_t at = 0;;) {
        const Field field = plain::scanField(text, at);
        if (field.text.empty() && field.end != 'C') {
            // Nothing but the row's end.
        } else if (row == 0) {
            header.push_back(field.text);
        } else if (column == 0) {
            census.name = field.text;
            named = true;
        } else {
            ++count;
            const auto value = plain::parseWholeInteger(field.text);
            const std::string message = cellMessage(field, value, count, species);
            if (!message.empty()) return problem(message, {lineOf(text, field.start), column + 1});
            if (*value == 0) ++zeros;
            if (*value != 0) census.taxa.push_back({*value, header[column]});
        }
        ++column;
        if (field.end == 'C') continue;
        if (row == 0 && !header.empty()) species = header.size() - 1;
        if (census.name != "imported census") {
            result.value->push_back(census);
            result.leftOut.zeroCells += zeros;
            if (count < species) ++result.leftOut.shortRows;
        } else if (named) {
            ++result.leftOut.markedRows;
        }
        census = MockCensus();
        census.name = "imported census";
        column = 0;
        count = 0;
        zeros = 0;
        named = false;
        ++row;
        if (field.end == 'A') break;
    }
    if (result.value->empty()) return problem("No censuses could be imported", {});
    return result;
}

inline std::string writeCensusMatrix(const CountsMatrix& matrix,
                                     const std::vector<std::string>& taxonNames,
                                     const std::vector<std::string>& censusNames) {
    std::string text = " ";
    for (const std::string& name : taxonNames) text += ", " + name;
    text += "\n";
    for (std::size_t row = 0; row < matrix.size(); ++row) {
        text += censusNames[row];
        for (const std::int64_t count : matrix[row]) {
            char cell[32];
            std::snprintf(cell, sizeof cell, ",%ld", static_cast<long>(count));
            text += cell;
        }
        text += "\n";
    }
    return text;
}

}  // namespace zorvel::plain
