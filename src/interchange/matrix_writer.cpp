#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "interchange/writers.h"

namespace zorvel {
namespace {

constexpr std::size_t longestCell = 21;  // a comma, a minus sign and 19 digits
constexpr std::size_t blockCells = 8;
constexpr const char* zeroCells = ",0,0,0,0,0,0,0,0";    // a block of them
constexpr std::size_t pieceSize = std::size_t{1} << 18;  // what is handed on at once, or a row

// The least size of the text, one digit a count, and an eighth more: room enough for most matrices.
std::size_t likelySize(std::size_t rows, const std::vector<std::string>& taxonNames,
                       const std::vector<std::string>& censusNames) {
    std::size_t size = 2 * (taxonNames.size() + 1) * (rows + 1);
    for (const std::string& name : taxonNames) size += name.size();
    for (const std::string& name : censusNames) size += name.size();
    return size + size / 8;
}

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

// Bit i is set where the i-th count of a block is not zero.
std::uint32_t presentCells(const std::int64_t* counts) {
    std::uint32_t present = 0;
    for (std::size_t i = 0; i < blockCells; ++i) {
        present |= static_cast<std::uint32_t>(counts[i] != 0) << i;
    }
    return present;
}

// Writes a block: the zeros before each present cell in one copy of 16 bytes, of which what follows
// overwrites the rest.
char* writeBlock(const std::int64_t* counts, char* out) {
    std::uint32_t present = presentCells(counts);
    std::size_t cell = 0;
    while (present != 0) {
        const auto next = static_cast<std::size_t>(std::countr_zero(present));
        std::memcpy(out, zeroCells, 2 * blockCells);
        out = writeCount(out + 2 * (next - cell), counts[next]);
        cell = next + 1;
        present &= present - 1;
    }
    std::memcpy(out, zeroCells, 2 * blockCells);
    return out + 2 * (blockCells - cell);
}

// Writes the cells of a row from `out` on and returns their end. There must be room for the longest
// cells and one block.
char* writeCells(const CountsVector& row, char* out) {
    std::size_t i = 0;
    for (; i + blockCells <= row.size(); i += blockCells) out = writeBlock(row.data() + i, out);
    for (; i < row.size(); ++i) out = writeCount(out, row[i]);
    return out;
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

std::string writeCensusMatrix(const CountsMatrix& matrix,
                              const std::vector<std::string>& taxonNames,
                              const std::vector<std::string>& censusNames) {
    std::string text;
    text.reserve(likelySize(matrix.size(), taxonNames, censusNames));
    appendHeader(text, taxonNames);
    std::vector<char> cells;
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        cells.resize(matrix[i].size() * longestCell + 2 * blockCells);
        text += censusNames[i];
        text.append(cells.data(), writeCells(matrix[i], cells.data()));
        text += '\n';
    }
    return text;
}

}  // namespace zorvel
