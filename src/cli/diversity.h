// The options of zorvel-cli diversity.
#pragma once

#include <cstdint>
#include <optional>

namespace CLI {
class App;
}

namespace zorvel::cli {

struct DiversityOptions {
    enum class Form { summary, atSize, atCoverage, sizeCurve, coverageCurve, profile };
    Form form = Form::summary;
    double size = 1;                 // of atSize
    std::optional<double> coverage;  // of atCoverage; absent: the largest that all censuses reach
    bool pooled = false;
    std::int64_t replicates = 200;  // 0: no standard errors and limits
};

void addDiversityOptions(CLI::App& app, DiversityOptions& options);

}  // namespace zorvel::cli
