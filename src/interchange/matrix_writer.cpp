#include <array>
#include <charconv>
#include <cstdint>

#include "interchange/writers.h"

namespace zorvel {
namespace {

constexpr std::size_t longestCell = 21;                  // a comma, a minus sign and 19 digits
constexpr std::size_t pieceSize = std::size_t{1} << 18;  // what is handed on at once, or a row

void appendHeader(std::string& text, const std::vector<std::string>& taxonNames) {
    text += ' ';
    for (const std::string& name : taxonNames) {
        text += ", ";
        text += name;
    }
    text += '\n';
}

char* writeCount(char* out, std::int64_t count) {
    *out++ = ',';
    if (count >= 0 && count < 10) {
        *out++ = static_cast<char>('0' + count);
        return out;
    }
    return std::to_chars(out, out + longestCell, count).ptr;
}

std::string manyZeroCells(std::size_t count) {
    std::string cells;
    cells.reserve(2 * count);
    for (std::size_t i = 0; i < count; ++i) cells += ",0";
    return cells;
}

// zeros: those of a row without any taxon.
void appendRow(std::string& text, const SparseCounts& matrix, std::size_t row,
               std::string_view zeros) {
    const CountsView counts = matrix.row(row);
    const auto columns = matrix.columnsOfRow(row);
    std::array<char, longestCell> cell{};
    std::size_t next = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        text += zeros.substr(0, 2 * (columns[i] - next));
        text.append(cell.data(), writeCount(cell.data(), counts[i]));
        next = std::size_t{columns[i]} + 1;
    }
    text += zeros.substr(0, 2 * (matrix.columns() - next));
    text += '\n';
}

}  // namespace

bool writeCensusMatrix(const SparseCounts& matrix, const std::vector<std::string>& taxonNames,
                       const std::vector<std::string>& censusNames, const ByteSink& sink) {
    const std::string zeros = manyZeroCells(matrix.columns());
    std::string text;
    appendHeader(text, taxonNames);
    for (std::size_t row = 0; row < matrix.rows(); ++row) {
        text += censusNames[row];
        appendRow(text, matrix, row, zeros);
        if (text.size() < pieceSize) continue;
        if (!sink(text)) return false;
        text.clear();
    }
    return text.empty() || sink(text);
}

}  // namespace zorvel
