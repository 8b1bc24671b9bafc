// zorvel-cli diversity: its options, and what it computes and writes. Any thread; output on the
// main thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "metrics/diversity_limits.h"

namespace CLI {
class App;
}

namespace zorvel::cli {

struct Call;
class Output;

struct DiversityOptions {
    enum class Form { summary, atSize, atCoverage, sizeCurve, coverageCurve, profile };
    Form form = Form::summary;
    double size = 1;                 // of atSize
    std::optional<double> coverage;  // of atCoverage; absent: the largest that all censuses reach
    bool pooled = false;
    std::int64_t replicates = 200;  // 0: no standard errors and limits
};

void addDiversityOptions(CLI::App& app, DiversityOptions& options);

struct DiversitySample {
    std::optional<std::string> census;  // absent: all of them
    DiversityEstimator estimator;
};

// A point of an order; each of its values may be absent.
struct OrderPoint {
    std::size_t order = 0;
    std::optional<DiversityPoint> at;
    std::optional<double> standardError;
    const char* reason = nullptr;  // of what is absent

    [[nodiscard]] std::optional<double> estimate() const {
        return at ? std::optional(at->diversity[order]) : std::nullopt;
    }
};

struct ProfilePoint {
    double order = 0;
    std::optional<double> observed;
    std::optional<double> estimated;
    std::optional<double> standardError;
    const char* reason = nullptr;
};

// Order by order, each at all places that the call names; coverage: of atCoverage.
std::vector<OrderPoint> orderPoints(const DiversitySample& sample,
                                    const std::optional<double>& coverage, const Call& call);
std::vector<ProfilePoint> profilePoints(const DiversitySample& sample, const Call& call);

// Why a value is absent; null if it is not.
const char* absenceReason(const DiversitySample& sample, std::optional<DiversityAbsence> absence);

// The whole result, as JSON or comma-separated. They end early once the output has failed.
void writeDiversityJson(const std::vector<DiversitySample>& samples,
                        const std::optional<double>& coverage, const Call& call, Output& output);
void writeDiversityText(const std::vector<DiversitySample>& samples,
                        const std::optional<double>& coverage, const Call& call, Output& output);

}  // namespace zorvel::cli
