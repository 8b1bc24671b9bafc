// The table of metrics: what each is called, how it is computed and where it is shown. The metrics
// panel, the project-wide window, the exports, zorvel-cli and the help follow it. Plain data; safe
// on any thread.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "metrics/census_metrics.h"

namespace zorvel {

enum class Metric : std::uint8_t {
    individuals,
    richness,
    rarefiedRichness,
    chaoOne,
    chaoClassic,
    alroySQS,
    shannonH,
    fisherAlpha,
    pielouJ,
    simpsonD,
    buzasE,
    chaoTwo,
    sampleBasedRarefiedRichness,
};

// Absent, a whole number, or a number that may not be finite.
using MetricValue = std::variant<std::monostate, std::int64_t, double>;

// Decides the place in the panel, and the decimals: an estimate has 1, an index 3.
enum class MetricKind : std::uint8_t { count, estimate, index };

enum class MetricParameter : std::uint8_t { none, size, quota };

struct MetricDescriptor {
    Metric metric;
    const char* key;             // the name in code, in JSON and in the help
    const char* field;           // the start of its widgets' names in the project-wide window
    const char* caption;         // where it has a parameter, metricCaption() appends it
    const char* averageCaption;  // null: there is no average, nor a value of all censuses pooled
    const char* column;          // the title in the metrics export; null: it has no column
    bool inPanel;                // of one census
    MetricKind kind;
    MetricParameter parameter;
    // Of the counts of one census, or of all; null where it takes more than counts.
    MetricValue (*compute)(const AbundanceTally& counts);
};

template <auto metric>
MetricValue computed(const AbundanceTally& counts) {
    return metric(counts);
}

// In the order of the enumeration and of the windows. A project has the classic form of Chao1, as
// of Chao2; the metrics export has it too.
inline constexpr auto metricTable = [] {
    using M = Metric;
    using K = MetricKind;
    using P = MetricParameter;
    return std::to_array<MetricDescriptor>({
        // clang-format off
        {M::individuals, "individuals", "abundance", "Individuals", "Average abundance", "Abundance",
         true, K::count, P::none, computed<individuals>},
        {M::richness, "richness", "richness", "Richness", "Average richness", "Richness",
         true, K::count, P::none, computed<richness>},
        {M::rarefiedRichness, "rarefiedRichness", "rarefiedRichness", "Rarefied richness",
         "Average rarefied richness", nullptr, true, K::estimate, P::size, nullptr},
        {M::chaoOne, "chaoOne", nullptr, "Chao1", nullptr, nullptr,
         true, K::estimate, P::none, computed<chaoOne>},
        {M::chaoClassic, "chaoClassic", "chaoOne", "Chao1", "Average Chao1", "Chao-1",
         false, K::estimate, P::none, computed<chaoClassic>},
        {M::alroySQS, "alroySQS", "alroySqs", "Alroy SQS", "Average Alroy SQS", "alroySQS",
         true, K::estimate, P::quota, nullptr},
        {M::shannonH, "shannonH", "shannon", "Shannon's H", "Average Shannon's H", "Shannon's H",
         true, K::index, P::none, computed<shannonH>},
        {M::fisherAlpha, "fisherAlpha", "fisher", "Fisher's alpha", "Average Fisher's alpha",
         "Fisher's alpha", true, K::index, P::none, computed<fisherAlpha>},
        {M::pielouJ, "pielouJ", "pielou", "Pielou's J", "Average Pielou's J", "Pielou's J",
         true, K::index, P::none, computed<pielouJ>},
        {M::simpsonD, "simpsonD", "simpson", "Simpson's D", "Average Simpson's D", "Simpson's D",
         true, K::index, P::none, computed<simpsonD>},
        {M::buzasE, "buzasE", "buzas", "Buzas-Gibson's E", "Average Buzas-Gibson's E",
         "Buzas-Gibson E", true, K::index, P::none, computed<buzasE>},
        {M::chaoTwo, "chaoTwo", "chaoTwo", "Chao2", nullptr, nullptr,
         false, K::estimate, P::none, nullptr},
        {M::sampleBasedRarefiedRichness, "sampleBasedRarefiedRichness", "sampleBasedRarefaction",
         "Sample-based rarefied richness", nullptr, nullptr,
         false, K::estimate, P::size, nullptr},
        // clang-format on
    });
}();
inline constexpr std::size_t metricCount = metricTable.size();

constexpr const MetricDescriptor& descriptorOf(Metric metric) {
    return metricTable[static_cast<std::size_t>(metric)];
}
static_assert(std::all_of(metricTable.begin(), metricTable.end(), [](const MetricDescriptor& row) {
    return &descriptorOf(row.metric) == &row;
}));

// The metrics of one census, of all pooled, averaged over the censuses, and those of incidence.
enum class MetricGroup : std::uint8_t { census, pooled, averages, incidence };

struct ShownMetric {
    MetricGroup group;
    Metric metric;
    bool operator==(const ShownMetric&) const = default;
};

// Those of a group in the order in which they are shown; of a project, what follows from the counts
// alone comes first.
std::vector<ShownMetric> metricsOf(MetricGroup group);

// The columns of the metrics export.
inline constexpr auto metricColumns = [] {
    constexpr auto hasColumn = [](const MetricDescriptor& row) { return row.column != nullptr; };
    std::array<Metric, std::count_if(metricTable.begin(), metricTable.end(), hasColumn)> columns{};
    std::size_t column = 0;
    for (const MetricDescriptor& row : metricTable)
        if (hasColumn(row)) columns[column++] = row.metric;
    return columns;
}();

// In JSON and in the help.
std::string metricKey(const ShownMetric& shown);

struct MetricParameters {
    std::int64_t size = 0;  // n, specimens or censuses to rarefy to
    double quota = 0;       // q, coverage at which SQS stops
};
// "Rarefied richness": without a parameter.
const char* plainCaption(const ShownMetric& shown);
// "Rarefied richness (50)", "Average Alroy SQS (quota: 0.80)".
std::string metricCaption(const ShownMetric& shown, const MetricParameters& parameters);

// As it is shown: a whole number without grouping, "-" where it is absent, else by formatMetric.
std::string metricText(Metric metric, const MetricValue& value);

// A value per metric.
class MetricValues {
  public:
    MetricValue& operator[](Metric metric) { return values_[static_cast<std::size_t>(metric)]; }
    const MetricValue& operator[](Metric metric) const {
        return values_[static_cast<std::size_t>(metric)];
    }
    // NaN where it is absent.
    [[nodiscard]] double number(Metric metric) const;

  private:
    std::array<MetricValue, metricCount> values_;
};
// All that follow from counts alone; the others are absent.
MetricValues censusMetrics(const AbundanceTally& counts);

}  // namespace zorvel
