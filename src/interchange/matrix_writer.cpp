#include <charconv>
#include <cstring>

#include "interchange/writers.h"

namespace zorvel {
namespace {

constexpr std::size_t longestCell = 21;  // a comma, a minus sign and 19 digits

void appendHeader(std::string& text, const std::vector<std::string>& taxonNames) {
    text += ' ';
    for (const std::string& name : taxonNames) {
        text += ", ";
        text += name;
    }
    text += '\n';
}

// Writes the cells of a row from `out` on and returns the end. There is room for the longest cells.
char* writeCells(const CountsVector& row, char* out) {
    for (const std::int64_t count : row) {
        *out++ = ',';
        out = std::to_chars(out, out + longestCell, count).ptr;
    }
    return out;
}

}  // namespace

std::string writeCensusMatrix(const CountsMatrix& matrix,
                              const std::vector<std::string>& taxonNames,
                              const std::vector<std::string>& censusNames) {
    std::string text;
    appendHeader(text, taxonNames);
    std::vector<char> cells;
    for (std::size_t i = 0; i < matrix.size(); ++i) {
        cells.resize(matrix[i].size() * longestCell);
        text += censusNames[i];
        text.append(cells.data(), writeCells(matrix[i], cells.data()));
        text += '\n';
    }
    return text;
}

}  // namespace zorvel
