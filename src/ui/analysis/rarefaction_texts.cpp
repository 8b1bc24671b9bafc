#include "ui/analysis/rarefaction_texts.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "metrics/census_metrics.h"

namespace zorvel {

namespace {

constexpr int digits = 1;  // of expected taxa

auto limitedRecords(std::span<const Rarefaction> data, ConfidenceLevel level) {
    return std::count_if(data.begin(), data.end(),
                         [&](const Rarefaction& point) { return hasLimits(point, level); });
}

bool hasBand(std::span<const Rarefaction> data, ConfidenceLevel level) {
    return data.size() >= kFewestPlotPoints && limitedRecords(data, level) > 0;
}

QString taxa(double value) {
    return QString::fromStdString(formatMetric(value, digits));
}

}  // namespace

QString RarefactionTexts::sampleSizeTitle() const {
    return kind_ == RarefactionKind::individualBased ? "Specimens" : "Censuses";
}

QString RarefactionTexts::richnessTitle() {
    return "Expected taxa";
}

QString RarefactionTexts::units(std::int64_t sampleSize) const {
    if (kind_ == RarefactionKind::individualBased) {
        return sampleSize == 1 ? "1 specimen" : QString("%1 specimens").arg(sampleSize);
    }
    return sampleSize == 1 ? "1 census" : QString("%1 censuses").arg(sampleSize);
}

QString RarefactionTexts::summary(std::span<const Rarefaction> data,
                                  std::optional<ConfidenceLevel> level) const {
    const QString kind = kind_ == RarefactionKind::individualBased ? "Individual-based rarefaction"
                                                                   : "Sample-based rarefaction";
    QStringList parts{kind};
    if (!data.empty()) parts.append(QString("up to %1").arg(units(data.back().sampleSize)));
    if (level && hasBand(data, *level))
        parts.append(QString("band: %1 confidence limits").arg(confidenceLevelText(*level)));
    return parts.join(QStringLiteral(" \u00b7 "));
}

QString RarefactionTexts::readout(const Rarefaction& point,
                                  std::optional<ConfidenceLevel> level) const {
    QStringList parts{units(point.sampleSize),
                      QString("%1 expected taxa").arg(taxa(point.estimate))};
    if (level) {
        parts.append(QString("%1 limits %2 to %3")
                         .arg(confidenceLevelText(*level), taxa(lowerLimit(point, *level)),
                              taxa(upperLimit(point, *level))));
    }
    return parts.join(QStringLiteral(" \u00b7 "));
}

QString RarefactionTexts::absence(std::span<const Rarefaction> data,
                                  std::optional<ConfidenceLevel> level) const {
    if (data.size() < kFewestPlotPoints) {
        const QString points = data.empty() ? "none" : data.size() == 1 ? "one" : "two";
        return QString("A curve is drawn from three points on; this one has %1.").arg(points);
    }
    if (!level) {
        return "The confidence level of the preferences is neither 95% nor 99%: the curve has "
               "no band, and the axis of taxa ends at 1.";
    }
    return missingLimits(data, *level);
}

// Without a value of Chao2 no variance of a sample-based curve has one.
QString RarefactionTexts::missingLimits(std::span<const Rarefaction> data,
                                        ConfidenceLevel level) const {
    const auto lacksVariance = [](const Rarefaction& point) { return std::isnan(point.variance); };
    const auto limited = limitedRecords(data, level);
    if (limited == std::ssize(data)) return {};
    if (kind_ == RarefactionKind::individualBased && std::isnan(data.back().estimate)) {
        return "The curve cannot be drawn: there are more than 10^18 specimens, too many to "
               "rarefy exactly.";
    }
    if (limited > 0) {
        return "The band has gaps where no confidence limit can be computed.";
    }
    if (kind_ == RarefactionKind::sampleBased &&
        std::all_of(data.begin(), data.end(), lacksVariance)) {
        return "The curve has no confidence band: its variance rests on Chao2, which has no "
               "value for these censuses.";
    }
    return "The curve has no confidence band: no limit of it can be computed.";
}

}  // namespace zorvel
