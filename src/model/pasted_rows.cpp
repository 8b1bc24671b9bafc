#include "model/pasted_rows.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

#include "base/text.h"
#include "model/typed_values.h"

namespace zorvel {
namespace {

constexpr const char* nothing = "There is no text to paste.";
constexpr const char* notText = "What was copied is not text.";
constexpr const char* noName = "A species needs a name here.";
constexpr const char* noCensusName = "A census needs a name here.";
constexpr const char* numberForName =
    "A name is expected here, not a number; copy the names and the abundances side by side.";
constexpr const char* tooManyColumns =
    "There is a column too many: only names and abundances can be pasted.";

struct Row {
    std::size_t number = 0;  // from 1, in the text
    std::vector<std::string> cells;
};

constexpr std::string_view cellEnds = "\t\r\n";

// Takes a quoted cell from the front of the text. None if not the whole cell is quoted: a name may
// begin with a quote.
std::optional<std::string> takeQuotedCell(std::string_view& text) {
    if (!text.starts_with('"')) return std::nullopt;
    std::string cell;
    std::size_t at = 1;
    for (;;) {
        const std::size_t quote = text.find('"', at);
        if (quote == std::string_view::npos) return std::nullopt;
        cell += text.substr(at, quote - at);
        at = quote + 1;
        if (at == text.size() || cellEnds.find(text[at]) != std::string_view::npos) break;
        if (text[at] != '"') return std::nullopt;
        cell += text[at++];
    }
    text.remove_prefix(at);
    return cell;
}

std::string takeCell(std::string_view& text) {
    if (std::optional<std::string> quoted = takeQuotedCell(text)) return std::move(*quoted);
    const std::size_t end = std::min(text.find_first_of(cellEnds), text.size());
    std::string cell(text.substr(0, end));
    text.remove_prefix(end);
    return cell;
}

// Takes a row with its line break.
std::vector<std::string> takeRow(std::string_view& text) {
    std::vector<std::string> cells{takeCell(text)};
    while (text.starts_with('\t')) {
        text.remove_prefix(1);
        cells.push_back(takeCell(text));
    }
    const std::size_t lineBreak = text.starts_with("\r\n") ? 2 : 1;
    text.remove_prefix(std::min(lineBreak, text.size()));
    return cells;
}

// The rows that are not empty, without empty cells at their right ends. most: of those looked at.
std::vector<Row> filledRows(std::string_view text, std::size_t most = SIZE_MAX) {
    std::vector<Row> rows;
    for (std::size_t number = 1; number <= most && !text.empty(); ++number) {
        Row row{number, takeRow(text)};
        while (!row.cells.empty() && withoutOuterSpace(row.cells.back()).empty()) {
            row.cells.pop_back();
        }
        if (!row.cells.empty()) rows.push_back(std::move(row));
    }
    return rows;
}

template <class T>
using PastedRow = Result<T, PasteProblem>;

PastedRow<std::string> nameOf(const Row& row, const char* ifMissing) {
    std::optional<std::string> name = typedName(row.cells[0]);
    if (!name) return PasteProblem{row.number, 1, ifMissing};
    return std::move(*name);
}

PastedRow<TaxonValues> taxonOf(const Row& row) {
    if (row.cells.size() > 2) return PasteProblem{row.number, 3, tooManyColumns};
    const PastedRow<std::string> name = nameOf(row, noName);
    if (!name) return name.problem();
    TaxonValues taxon{SharedText(name.value())};
    if (row.cells.size() == 1) {
        if (!parseTypedAbundance(name.value())) return taxon;
        return PasteProblem{row.number, 1, numberForName};
    }
    const Typed<std::int64_t> abundance = parseTypedAbundance(row.cells[1]);
    if (!abundance) return PasteProblem{row.number, 2, abundance.problem()};
    taxon.abundance = abundance.value();
    return taxon;
}

template <class T>
Pasted<T> pastedRows(std::string_view text, PastedRow<T> (*read)(const Row& row)) {
    const std::vector<Row> rows = filledRows(text);
    if (firstInvalidUtf8(text)) return PasteProblem{0, 0, notText};
    if (rows.empty()) return PasteProblem{0, 0, nothing};
    std::vector<T> records;
    records.reserve(rows.size());
    for (const Row& row : rows) {
        PastedRow<T> record = read(row);
        if (!record) return record.problem();
        records.push_back(std::move(record).value());
    }
    return records;
}

}  // namespace

std::size_t pastedColumns(std::string_view text) {
    constexpr std::size_t firstRows = 100;
    std::size_t columns = 0;
    for (const Row& row : filledRows(text, firstRows)) {
        columns = std::max(columns, row.cells.size());
    }
    return columns;
}

Pasted<TaxonValues> pastedTaxa(std::string_view text) {
    return pastedRows(text, taxonOf);
}

Pasted<std::string> pastedCensusNames(std::string_view text) {
    return pastedRows<std::string>(text, [](const Row& row) { return nameOf(row, noCensusName); });
}

}  // namespace zorvel
