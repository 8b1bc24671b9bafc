#include <algorithm>
#include <cmath>
#include <string_view>

#include "base/numbers.h"
#include "interchange/writers.h"

namespace zorvel {
namespace {

void appendPadded(std::string& text, std::string_view number, std::size_t width) {
    text.append(width - std::min(width, number.size()), ' ');
    text += number;
}

// A NaN has no sign here.
void appendPadded(std::string& text, double value, std::size_t width) {
    appendPadded(text, std::isnan(value) ? std::string("nan") : fixedText(value, 3), width);
}

void appendMetricRow(std::string& text, const MetricRow& row) {
    for (std::size_t column = 0; column < row.size(); ++column) {
        const bool isCount = descriptorOf(metricColumns[column]).kind == MetricKind::count;
        text += ", ";
        text +=
            isCount ? fixedText(row[column], 0) : metricText(metricColumns[column], row[column]);
    }
    text += '\n';
}

}  // namespace

std::string writeMetricsTable(std::span<const MetricRow> rows,
                              std::span<const char* const> columnTitles,
                              std::span<const std::string> censusNames) {
    std::string text = " ";
    for (const char* title : columnTitles) {
        text += ", ";
        text += title;
    }
    text += '\n';
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
        appendPadded(text, integerText(point.sampleSize), 10);
        text += ',';
        appendPadded(text, point.estimate, 17);
        text += ',';
        appendPadded(text, point.variance, 8);
        for (const double limit : {point.lower95, point.upper95, point.lower99, point.upper99}) {
            text += ',';
            appendPadded(text, limit, 12);
        }
        text += '\n';
    }
    return text;
}

}  // namespace zorvel
