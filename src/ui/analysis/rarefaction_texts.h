// What the rarefaction window says about a curve, apart from its widgets. Pure; any thread.
#pragma once

#include <QString>
#include <span>

#include "metrics/rarefaction.h"
#include "ui/analysis/rarefaction_plot.h"

namespace zorvel {

enum class RarefactionKind { individualBased, sampleBased };

class RarefactionTexts {
  public:
    explicit RarefactionTexts(RarefactionKind kind) : kind_(kind) {}

    // Of the axes.
    [[nodiscard]] QString sampleSizeTitle() const;
    [[nodiscard]] static QString richnessTitle();

    // Kind, end and level of the curve in a line; level: none if the preferences name none that is
    // in use.
    [[nodiscard]] QString summary(std::span<const Rarefaction> data,
                                  std::optional<ConfidenceLevel> level) const;
    // A record: sample size, estimate and the limits of the level, with one decimal.
    [[nodiscard]] QString readout(const Rarefaction& point,
                                  std::optional<ConfidenceLevel> level) const;
    // Why nothing is drawn, or what is left out; empty if nothing is missing.
    [[nodiscard]] QString absence(std::span<const Rarefaction> data,
                                  std::optional<ConfidenceLevel> level) const;

  private:
    [[nodiscard]] QString missingLimits(std::span<const Rarefaction> data,
                                        ConfidenceLevel level) const;
    [[nodiscard]] QString units(std::int64_t sampleSize) const;

    RarefactionKind kind_;
};

}  // namespace zorvel
