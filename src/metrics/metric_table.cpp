#include "metrics/metric_table.h"

#include <algorithm>
#include <cctype>
#include <limits>

#include "base/numbers.h"

namespace zorvel {
namespace {

bool isIn(MetricGroup group, const MetricDescriptor& row) {
    switch (group) {
        case MetricGroup::census:
            return row.inPanel;
        case MetricGroup::pooled:
        case MetricGroup::averages:
            return row.averageCaption != nullptr;
        case MetricGroup::incidence:
            break;
    }
    return !row.inPanel && row.averageCaption == nullptr;
}

}  // namespace

std::vector<ShownMetric> metricsOf(MetricGroup group) {
    std::vector<ShownMetric> shown;
    for (const MetricDescriptor& row : metricTable)
        if (isIn(group, row)) shown.push_back({group, row.metric});
    if (group != MetricGroup::census) {
        std::stable_partition(shown.begin(), shown.end(), [](const ShownMetric& each) {
            return descriptorOf(each.metric).compute != nullptr;
        });
    }
    return shown;
}

std::string metricKey(const ShownMetric& shown) {
    const MetricDescriptor& row = descriptorOf(shown.metric);
    std::string key = row.key;
    if (shown.group != MetricGroup::averages || row.compute != nullptr) return key;
    key.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(key.front())));
    return "average" + key;
}

const char* plainCaption(const ShownMetric& shown) {
    const MetricDescriptor& row = descriptorOf(shown.metric);
    return shown.group == MetricGroup::averages ? row.averageCaption : row.caption;
}

std::string metricCaption(const ShownMetric& shown, const MetricParameters& parameters) {
    std::string caption = plainCaption(shown);
    switch (descriptorOf(shown.metric).parameter) {
        case MetricParameter::size:
            return caption + " (" + integerText(parameters.size) + ")";
        case MetricParameter::quota:
            return caption + " (quota: " + fixedText(parameters.quota, 2) + ")";
        case MetricParameter::none:
            break;
    }
    return caption;
}

std::string metricText(Metric metric, const MetricValue& value) {
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return integerText(*whole);
    const auto* number = std::get_if<double>(&value);
    if (number == nullptr) return "-";
    return formatMetric(*number, descriptorOf(metric).kind == MetricKind::index ? 3 : 1);
}

double MetricValues::number(Metric metric) const {
    const MetricValue& value = (*this)[metric];
    if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
    const auto* number = std::get_if<double>(&value);
    return number == nullptr ? std::numeric_limits<double>::quiet_NaN() : *number;
}

MetricValues censusMetrics(const AbundanceTally& counts) {
    MetricValues values;
    for (const MetricDescriptor& row : metricTable)
        if (row.compute != nullptr) values[row.metric] = row.compute(counts);
    return values;
}

}  // namespace zorvel
