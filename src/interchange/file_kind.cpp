#include <algorithm>

#include "base/numbers.h"
#include "interchange/characters.h"
#include "interchange/file_kind.h"
#include "interchange/parsers.h"
#include "interchange/scan_field.h"

namespace zorvel {
namespace {

using namespace std::string_view_literals;

// The line that begins there, without its line break.
std::string_view lineAt(std::string_view text, std::size_t start) {
    return text.substr(start, lineEnd(text, start) - start);
}

std::size_t quotedCells(std::string_view line) {
    std::size_t count = 1;
    for (std::size_t at = 0; (at = line.find("\",", at)) != std::string_view::npos; at += 2)
        ++count;
    return count;
}

// Six quoted header cells or more, and then a line of four, give or take one that is damaged. A
// quoted matrix has one quoted cell in its further lines, or as many as in its header.
bool isPhoneExport(std::string_view text) {
    const std::string_view header = lineAt(text, 0);
    if (quotedCells(header) < 6) return false;
    const std::size_t next = skipLineBreaks(text, header.size());
    const std::string_view line = lineAt(text, next);
    const std::size_t cells = quotedCells(line);
    return line.empty() || (cells >= 3 && cells <= 5);
}

// Whole numbers and what may stand between them, and at least one digit.
bool isList(std::string_view text) {
    bool digits = false;
    for (std::size_t at = 0; at < text.size();) {
        const char c = text[at];
        const bool digit = c >= '0' && c <= '9';
        digits = digits || digit;
        if (digit || " ,\t+-"sv.find(c) != std::string_view::npos) {
            ++at;
            continue;
        }
        const std::size_t length = lineBreakLength(text, at);
        if (length == 0) return false;
        at += length;
    }
    return digits;
}

// A name and a whole number on the first line, and no more.
bool isSingleCensus(std::string_view text) {
    FieldCursor cursor(text);
    if (scanField(cursor).terminator != FieldTerminator::comma) return false;
    const ScannedField second = scanField(cursor);
    return second.terminator != FieldTerminator::comma && parseWholeInteger(second.text);
}

// What the lines up to and with the second one that holds anything say.
std::string_view firstTwoLines(std::string_view text) {
    const std::size_t next = skipLineBreaks(text, lineEnd(text, 0));
    return text.substr(0, lineEnd(text, next));
}

bool isMatrixBeyondDoubt(std::string_view text) {
    FieldCursor cursor(text);
    std::size_t cells = 0;
    for (;; ++cells) {
        const ScannedField field = scanField(cursor);
        if (cells > 0 && parseWholeInteger(field.text)) return false;
        if (field.terminator != FieldTerminator::comma) break;
    }
    const auto parsed = parseCensusMatrix(firstTwoLines(text));
    return cells >= 2 && parsed.value && parsed.leftOut.shortRows == 0;
}

// Where a line ends that begins there: at the first line break outside quotes.
std::size_t unquotedLineEnd(std::string_view text, std::size_t at) {
    bool inQuotes = false;
    for (; at < text.size(); ++at) {
        if (text[at] == '"') inQuotes = !inQuotes;
        if (!inQuotes && lineBreakLength(text, at) > 0) break;
    }
    return at;
}

// Also with decimals, grouped digits or quotes: whatever programs write for a count.
bool looksLikeNumber(std::string_view cell) {
    return cell.find_first_not_of("0123456789+-., \"") == std::string_view::npos &&
           cell.find_first_of("0123456789") != std::string_view::npos;
}

// What the lines so far say for a separator.
struct Candidate {
    char separator;
    bool onEveryLine = true;
    bool separatesNumbers = false;

    void addLine(std::string_view line) {
        std::size_t start = std::string_view::npos;  // of the cell after a separator
        bool inQuotes = false;
        for (std::size_t at = 0; at <= line.size(); ++at) {
            const bool ends = at == line.size() || (!inQuotes && line[at] == separator);
            if (ends && start != std::string_view::npos) {
                separatesNumbers |= looksLikeNumber(line.substr(start, at - start));
            }
            if (ends && at < line.size()) start = at + 1;
            if (!ends && line[at] == '"') inQuotes = !inQuotes;
        }
        onEveryLine = onEveryLine && start != std::string_view::npos;
    }
    [[nodiscard]] bool separates() const { return onEveryLine && separatesNumbers; }
};

}  // namespace

FileKind guessFileKind(std::string_view text) {
    if (isPhoneExport(text)) return FileKind::ios;
    if (isList(text)) return FileKind::list;
    if (isSingleCensus(text)) return FileKind::census;
    return FileKind::matrix;
}

bool isCertain(FileKind guess, std::string_view text) {
    if (guess == FileKind::matrix) return isMatrixBeyondDoubt(text);
    return guess != FileKind::census;
}

std::string_view foreignSeparator(std::string_view text) {
    Candidate semicolon{';'};
    Candidate tab{'\t'};
    Candidate comma{','};
    std::size_t at = skipLineBreaks(text, 0);
    while (at < text.size() && (semicolon.onEveryLine || tab.onEveryLine)) {
        const std::size_t end = unquotedLineEnd(text, at);
        for (Candidate* each : {&semicolon, &tab, &comma}) each->addLine(text.substr(at, end - at));
        at = skipLineBreaks(text, end);
    }
    if (comma.separates()) return {};
    if (semicolon.separates()) return "semicolons";
    return tab.separates() ? "tabs" : std::string_view();
}

}  // namespace zorvel
