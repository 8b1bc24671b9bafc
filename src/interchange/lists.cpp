// The parsers of lists: only counts, names with counts, only names.
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

#include "base/numbers.h"
#include "interchange/characters.h"
#include "interchange/parsers.h"
#include "interchange/scan_field.h"

namespace zorvel {
namespace {

constexpr const char* notNumericMessage =
    "File contains non-numeric characters (possibly a decimal point), but should contain only a "
    "list of integers. See help for formatting an input file.";
constexpr const char* listNotPositiveMessage =
    "File contains zero or negative abundance value, but all abundances must be positive integers. "
    "See help for formatting an input file.";
constexpr const char* noValueMessage = "No taxon abundances were added";

// Bytes of the separator that begins at text[at]; 0 if none does.
std::size_t countSeparatorLength(std::string_view text, std::size_t at) {
    if (at < text.size() && (text[at] == ' ' || text[at] == ',' || text[at] == '\t')) return 1;
    return lineBreakLength(text, at);
}

std::size_t skipSeparators(std::string_view text, std::size_t at) {
    while (const std::size_t length = countSeparatorLength(text, at)) at += length;
    return at;
}

// The line of text[at] and which of the line's entries, divided by separators, it belongs to.
TextPlace entryPlace(std::string_view text, std::size_t at) {
    TextPlace place{lineNumber(text, at), 1};
    bool inEntry = false;
    for (std::size_t i = 0; i < at;) {
        const std::size_t separator = countSeparatorLength(text, i);
        if (separator != 0 && inEntry) ++place.cell;
        if (lineBreakLength(text, i) != 0) place.cell = 1;
        inEntry = separator == 0;
        i += std::max<std::size_t>(separator, 1);
    }
    return place;
}

// An integer read from the front of a text. length 0: there is none, or its value is past the
// largest of 64 bits. A value below the smallest reads as the smallest.
struct LeadingInteger {
    std::int64_t value = 0;
    std::size_t length = 0;
};

LeadingInteger readLeadingInteger(std::string_view text) {
    // from_chars takes a minus but no plus.
    const bool plus = text.starts_with('+');
    if (text.starts_with("+-")) return {};
    const char* first = text.data() + (plus ? 1 : 0);
    LeadingInteger read;
    const auto [stop, error] = std::from_chars(first, text.data() + text.size(), read.value);
    if (error == std::errc::result_out_of_range && text.front() == '-')
        read.value = INT64_MIN;
    else if (error != std::errc{})
        return {};
    read.length = static_cast<std::size_t>(stop - text.data());
    return read;
}

// The doubled spaces are part of the texts.
constexpr const char* missingMessage =
    "An abundance value is missing.  See help for formatting an input file.";
constexpr const char* emptyMessage = "Empty string; expected some sort of value";
constexpr const char* notIntegerReason = "Not an abundance value, or not an integer";
constexpr const char* notPositiveMessage =
    "File contains zero or negative abundance value, but all abundances must be positive integers. "
    " See help for formatting an input file.";
constexpr const char* noTaxonMessage = "No taxa in census";

// One line of the file as far as it has been read.
struct Record {
    std::optional<std::string> name;  // absent until its comma has been read
    ScannedField last;
};

// Reads up to the end of the line, or to a second comma, which is one too many.
Record readRecord(FieldCursor& cursor) {
    Record record;
    record.last = scanField(cursor);
    if (record.last.terminator != FieldTerminator::comma) return record;
    record.name.emplace(record.last.text);
    record.last = scanField(cursor);
    return record;
}

// What is wrong with a record, or null. Fills `abundance` if nothing is.
const char* checkRecord(const Record& record, std::int64_t& abundance) {
    const ScannedField& field = record.last;
    if (field.terminator == FieldTerminator::comma) return missingMessage;
    if (field.onlyEndsRow()) return emptyMessage;
    if (!record.name) return missingMessage;
    const auto value = parseWholeInteger(field.text);
    if (!value) return notIntegerReason;
    if (*value < 1) return notPositiveMessage;
    abundance = *value;
    return nullptr;
}

}  // namespace

Parsed<MockCensus> parseAbundanceList(std::string_view text, const std::stop_token& stop,
                                      NamePool* names) {
    NamePool own;
    const SharedText taxonName = (names ? *names : own).intern("unnamed taxon");
    MockCensus census;
    census.name = importedCensusName;
    for (std::size_t at = skipSeparators(text, 0); at < text.size();) {
        if (stop.stop_requested()) return {};
        const LeadingInteger read = readLeadingInteger(text.substr(at));
        if (read.length == 0) return refused<MockCensus>(notNumericMessage, entryPlace(text, at));
        if (read.value < 1)
            return refused<MockCensus>(listNotPositiveMessage, entryPlace(text, at));
        census.taxa.push_back({read.value, taxonName});
        at = skipSeparators(text, at + read.length);
    }
    if (census.taxa.empty()) return refused<MockCensus>(noValueMessage);
    Parsed<MockCensus> result;
    result.value = std::move(census);
    return result;
}

Parsed<MockCensus> parseCensus(std::string_view text, const std::stop_token& stop,
                               NamePool* names) {
    NamePool own;
    NamePool& pool = names ? *names : own;
    Parsed<MockCensus> result;
    MockCensus census;
    census.name = importedCensusName;
    FieldCursor cursor(text);
    while (!cursor.atEnd()) {
        if (stop.stop_requested()) return {};
        const Record record = readRecord(cursor);
        const bool atEnd = record.last.terminator == FieldTerminator::endOfInput;
        // A name without a value at the very end of the text is dropped in silence.
        if (atEnd && record.last.text.empty()) {
            if (record.name) result.leftOut.unfinishedLines = 1;
            break;
        }
        std::int64_t abundance = 0;
        if (const char* message = checkRecord(record, abundance)) {
            const std::size_t cell = record.name ? 2 : 1;
            return refused<MockCensus>(message, {lineNumber(text, record.last.start), cell});
        }
        census.taxa.push_back({abundance, pool.intern(*record.name)});
    }
    if (census.taxa.empty()) return refused<MockCensus>(noTaxonMessage);
    result.value = std::move(census);
    return result;
}

Parsed<std::vector<std::string>> parseSpeciesList(std::optional<std::string_view> text) {
    Parsed<std::vector<std::string>> result;
    result.value.emplace();
    if (!text) {
        result.consoleLines.emplace_back("WARNING: no names found");
        return result;
    }
    std::size_t start = 0;  // of the name under way
    for (std::size_t at = 0; at <= text->size();) {
        const bool ends = at == text->size();
        // A space is part of a name.
        const bool apart = !ends && (*text)[at] != ' ';
        const std::size_t separator = apart ? countSeparatorLength(*text, at) : 0;
        if ((ends || separator != 0) && at > start) {
            result.value->emplace_back(text->substr(start, at - start));
        }
        at += std::max<std::size_t>(separator, 1);
        if (separator != 0) start = at;
    }
    return result;
}

}  // namespace zorvel
