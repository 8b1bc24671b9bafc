// The metrics as they are shown: key, caption, decimals and order, the same in the windows and in
// the command-line tool. Plain data; safe on any thread.
//
// A value is shown by formatMetric with the row's digits, save where digits is wholeNumber: then it
// is a decimal integer without grouping. A value that is absent is shown as "-".
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/numbers.h"

namespace zorvel {

inline constexpr int wholeNumber = -1;

struct MetricCaption {
    std::string_view key;      // the name in code and in JSON
    std::string_view caption;  // some take a parameter: metricCaption
    int digits = 0;            // decimals, or wholeNumber
};
using PanelRow = MetricCaption;

// The metrics panel of one census, top to bottom. Its values are over the included taxa.
inline constexpr std::array<PanelRow, 10> metricsPanelRows = {{
    {"individuals", "Individuals", wholeNumber},
    {"richness", "Richness", wholeNumber},
    {"rarefiedRichness", "Rarefied richness", 1},
    {"chaoOne", "Chao1", 1},
    {"alroySQS", "Alroy SQS", 1},
    {"shannonH", "Shannon's H", 3},
    {"fisherAlpha", "Fisher's alpha", 3},
    {"pielouJ", "Pielou's J", 3},
    {"simpsonD", "Simpson's D", 3},
    {"buzasE", "Buzas-Gibson's E", 3},
}};

// The project-wide metrics, group by group. Chao1 is the classic form here, as Chao2 is.
inline constexpr std::array<MetricCaption, 10> pooledMetricRows = {{
    {"individuals", "Individuals", wholeNumber},
    {"richness", "Richness", wholeNumber},
    {"chaoClassic", "Chao1", 1},
    {"shannonH", "Shannon's H", 3},
    {"fisherAlpha", "Fisher's alpha", 3},
    {"pielouJ", "Pielou's J", 3},
    {"simpsonD", "Simpson's D", 3},
    {"buzasE", "Buzas-Gibson's E", 3},
    {"rarefiedRichness", "Rarefied richness", 1},
    {"alroySQS", "Alroy SQS", 1},
}};
inline constexpr std::array<MetricCaption, 10> averageMetricRows = {{
    {"individuals", "Average abundance", 1},
    {"richness", "Average richness", 1},
    {"chaoClassic", "Average Chao1", 1},
    {"shannonH", "Average Shannon's H", 3},
    {"fisherAlpha", "Average Fisher's alpha", 3},
    {"pielouJ", "Average Pielou's J", 3},
    {"simpsonD", "Average Simpson's D", 3},
    {"buzasE", "Average Buzas-Gibson's E", 3},
    {"averageRarefiedRichness", "Average rarefied richness", 1},
    {"averageAlroySQS", "Average Alroy SQS", 1},
}};
inline constexpr std::array<MetricCaption, 2> incidenceMetricRows = {{
    {"chaoTwo", "Chao2", 1},
    {"sampleBasedRarefiedRichness", "Sample-based rarefied richness", 1},
}};

// "Rarefied richness (50)": n specimens, or n censuses in a window whose group says that it is
// sample-based.
inline std::string rarefiedRichnessCaption(std::int64_t n) {
    return "Rarefied richness (" + integerText(n) + ")";
}

// "Alroy SQS (quota: 0.80)".
inline std::string sqsCaption(double quota) {
    return "Alroy SQS (quota: " + fixedText(quota, 2) + ")";
}

// The whole caption of a row, its parameter included where it has one; unique among the rows of its
// kind of analysis ("Sample-based rarefied richness (50)").
inline std::string metricCaption(const MetricCaption& row, std::int64_t n, double quota) {
    std::string caption(row.caption);
    if (row.key == "rarefiedRichness") return rarefiedRichnessCaption(n);
    if (row.key == "alroySQS") return sqsCaption(quota);
    if (row.key == "averageRarefiedRichness" || row.key == "sampleBasedRarefiedRichness") {
        return caption + " (" + integerText(n) + ")";
    }
    if (row.key == "averageAlroySQS") return caption + " (quota: " + fixedText(quota, 2) + ")";
    return caption;
}

}  // namespace zorvel
