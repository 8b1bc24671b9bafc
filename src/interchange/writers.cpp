#include "interchange/writers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "base/numbers.h"

namespace zorvel {
namespace {

constexpr std::size_t longestCell = 21;                  // a comma, a minus sign and 19 digits
constexpr std::size_t pieceSize = std::size_t{1} << 18;  // what is handed on at once, or a row

// Over a column of names.
std::string headerRow(const auto& titles) {
    std::string text = " ";
    for (const auto& title : titles) text.append(", ").append(title);
    return text + '\n';
}

char* writeCount(char* out, std::int64_t count) {
    *out++ = ',';
    if (count >= 0 && count < 10) {
        *out++ = static_cast<char>('0' + count);
        return out;
    }
    return std::to_chars(out, out + longestCell, count).ptr;
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

std::string padded(const std::string& number, std::size_t width) {
    return std::string(width - std::min(width, number.size()), ' ') + number;
}

// A comma and the value; a NaN has no sign here.
void appendPadded(std::string& text, double value, std::size_t width) {
    text += ',' + padded(std::isnan(value) ? "nan" : fixedText(value, 3), width);
}

void appendMetricRow(std::string& text, const MetricRow& row) {
    for (std::size_t column = 0; column < row.size(); ++column) {
        const bool isCount = descriptorOf(metricColumns[column]).kind == MetricKind::count;
        text += ", " + (isCount ? fixedText(row[column], 0)
                                : metricText(metricColumns[column], row[column]));
    }
    text += '\n';
}

}  // namespace

bool writeCensusMatrix(const SparseCounts& matrix, const std::vector<std::string>& taxonNames,
                       const std::vector<std::string>& censusNames, const ByteSink& sink) {
    std::string zeros;
    for (std::size_t i = 0; i < matrix.columns(); ++i) zeros += ",0";
    std::string text = headerRow(taxonNames);
    for (std::size_t row = 0; row < matrix.rows(); ++row) {
        text += censusNames[row];
        appendRow(text, matrix, row, zeros);
        if (text.size() < pieceSize) continue;
        if (!sink(text)) return false;
        text.clear();
    }
    return text.empty() || sink(text);
}

std::string writeMetricsTable(std::span<const MetricRow> rows,
                              std::span<const char* const> columnTitles,
                              std::span<const std::string> censusNames) {
    std::string text = headerRow(columnTitles);
    for (std::size_t i = 0; i < std::min(rows.size(), censusNames.size()); ++i) {
        text += censusNames[i];
        appendMetricRow(text, rows[i]);
    }
    return text;
}

std::string writeRarefactionTable(std::span<const Rarefaction> curve) {
    std::string text =
        "sampleSize,estimatedRichness,variance,lower95limit,upper95limit,lower99limit,"
        "upper99limit\n";
    for (const Rarefaction& point : curve) {
        text += padded(integerText(point.sampleSize), 10);
        appendPadded(text, point.estimate, 17);
        appendPadded(text, point.variance, 8);
        for (const double limit : {point.lower95, point.upper95, point.lower99, point.upper99}) {
            appendPadded(text, limit, 12);
        }
        text += '\n';
    }
    return text;
}

}  // namespace zorvel
