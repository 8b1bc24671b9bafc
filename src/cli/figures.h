// The metrics of a counts vector or a project under the names that JSON and captions use, computed
// with the options of a call, and their two forms: fields of a JSON object, and lines of text.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <variant>
#include <vector>

#include "cli/call.h"
#include "cli/json_writer.h"
#include "cli/output.h"
#include "metrics/counts.h"
#include "metrics/metric_captions.h"
#include "metrics/random_source.h"

namespace zorvel::cli {

// Absent, a whole number, or a number that may not be finite.
using Figure = std::variant<std::monostate, std::int64_t, double>;

struct NamedFigure {
    std::string_view key;  // of a literal
    Figure value;
};
using Figures = std::vector<NamedFigure>;

// The random numbers of one SQS estimate. With a seed each estimate starts its own sequence: it
// depends on its counts alone, not on which other censuses the file holds.
std::unique_ptr<RandomSource> randomSource(const Call& call);

// individuals, richness, rarefiedRichness, chaoOne, chaoClassic, alroySQS, shannonH, fisherAlpha,
// pielouJ, simpsonD, buzasE. SQS warnings go to the console.
Figures censusFigures(CountsView counts, const Call& call);

// A field each, in order.
void writeFields(JsonWriter& json, const Figures& figures);

// Caption, tab and value, a line each; "-" for a figure that is absent or not finite.
void writeLines(Output& output, std::span<const MetricCaption> rows, const Figures& figures,
                const Call& call);

}  // namespace zorvel::cli
