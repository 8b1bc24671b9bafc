#include "base/numbers.h"
#include "interchange/characters.h"
#include "interchange/parsers.h"
#include "interchange/scan_field.h"

namespace zorvel {
namespace {

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

Parsed<MockCensus> parseCensus(std::string_view text, const std::stop_token& stop,
                               NamePool* names) {
    NamePool own;
    NamePool& pool = names ? *names : own;
    MockCensus census;
    LeftOut leftOut;
    census.name = importedCensusName;
    FieldCursor cursor(text);
    while (!cursor.atEnd()) {
        if (stop.stop_requested()) return {};
        const Record record = readRecord(cursor);
        const bool atEnd = record.last.terminator == FieldTerminator::endOfInput;
        // A name without a value at the very end of the text is dropped in silence.
        if (atEnd && record.last.text.empty()) {
            if (record.name) leftOut.unfinishedLines = 1;
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
    Parsed<MockCensus> result;
    result.value = std::move(census);
    result.leftOut = leftOut;
    return result;
}

}  // namespace zorvel
