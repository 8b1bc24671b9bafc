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

// Reads one cell after another.
class Cells {
  public:
    explicit Cells(std::string_view text) : rest_(text) {}

    [[nodiscard]] bool atEnd() const { return rest_.empty(); }

    std::vector<std::string> nextRow() {
        std::vector<std::string> cells;
        do {
            cells.push_back(nextCell());
        } while (takeTab());
        takeLineEnd();
        return cells;
    }

  private:
    std::string nextCell() {
        if (std::optional<std::string> quoted = quotedCell()) return std::move(*quoted);
        const std::size_t end = std::min(rest_.find_first_of("\t\r\n"), rest_.size());
        std::string cell(rest_.substr(0, end));
        rest_.remove_prefix(end);
        return cell;
    }

    // Only if the whole cell is quoted: a name may begin with a quote.
    std::optional<std::string> quotedCell() {
        if (!rest_.starts_with('"')) return std::nullopt;
        std::string cell;
        for (std::size_t i = 1; i < rest_.size(); ++i) {
            if (rest_[i] != '"') {
                cell += rest_[i];
            } else if (i + 1 < rest_.size() && rest_[i + 1] == '"') {
                cell += rest_[i++];
            } else {
                const bool ends =
                    i + 1 == rest_.size() ||
                    std::string_view("\t\r\n").find(rest_[i + 1]) != std::string_view::npos;
                if (!ends) return std::nullopt;
                rest_.remove_prefix(i + 1);
                return cell;
            }
        }
        return std::nullopt;
    }

    bool takeTab() {
        if (!rest_.starts_with('\t')) return false;
        rest_.remove_prefix(1);
        return true;
    }

    void takeLineEnd() {
        if (rest_.starts_with("\r\n")) rest_.remove_prefix(1);
        if (!rest_.empty()) rest_.remove_prefix(1);
    }

    std::string_view rest_;
};

// The rows that are not empty, without empty cells at their right ends. most: of those looked at.
std::vector<Row> filledRows(std::string_view text, std::size_t most = SIZE_MAX) {
    std::vector<Row> rows;
    Cells cells(text);
    for (std::size_t number = 1; number <= most && !cells.atEnd(); ++number) {
        Row row{number, cells.nextRow()};
        while (!row.cells.empty() && withoutOuterSpace(row.cells.back()).empty()) {
            row.cells.pop_back();
        }
        if (!row.cells.empty()) rows.push_back(std::move(row));
    }
    return rows;
}

std::optional<PasteProblem> problemOf(std::string_view text, const std::vector<Row>& rows) {
    if (firstInvalidUtf8(text)) return PasteProblem{0, 0, notText};
    if (rows.empty()) return PasteProblem{0, 0, nothing};
    return std::nullopt;
}

Result<TaxonValues, PasteProblem> taxonOf(const Row& row) {
    if (row.cells.size() > 2) return PasteProblem{row.number, 3, tooManyColumns};
    TaxonValues taxon;
    const std::string name = typedName(row.cells[0]).value_or("");
    if (name.empty()) return PasteProblem{row.number, 1, noName};
    if (row.cells.size() == 1 && parseTypedAbundance(name)) {
        return PasteProblem{row.number, 1, numberForName};
    }
    taxon.name = name;
    if (row.cells.size() == 1) return taxon;
    const Typed<std::int64_t> abundance = parseTypedAbundance(row.cells[1]);
    if (!abundance) return PasteProblem{row.number, 2, abundance.problem()};
    taxon.abundance = abundance.value();
    return taxon;
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
    const std::vector<Row> rows = filledRows(text);
    if (const auto problem = problemOf(text, rows)) return *problem;
    std::vector<TaxonValues> taxa;
    taxa.reserve(rows.size());
    for (const Row& row : rows) {
        Result<TaxonValues, PasteProblem> taxon = taxonOf(row);
        if (!taxon) return taxon.problem();
        taxa.push_back(std::move(taxon).value());
    }
    return taxa;
}

Pasted<std::string> pastedCensusNames(std::string_view text) {
    const std::vector<Row> rows = filledRows(text);
    if (const auto problem = problemOf(text, rows)) return *problem;
    std::vector<std::string> names;
    names.reserve(rows.size());
    for (const Row& row : rows) {
        names.push_back(typedName(row.cells[0]).value_or(""));
        if (names.back().empty()) return PasteProblem{row.number, 1, noCensusName};
    }
    return names;
}

}  // namespace zorvel
