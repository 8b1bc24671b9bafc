// The user's preferences: the one place that knows their keys, defaults and limits. It holds no
// state: every read goes to the store (platform/settings.h), so a value written anywhere is seen by
// the next read everywhere. Main thread.
//
// There are two layers: a stored value, and below it the default registered for this run, which is
// held in memory only and never written. A number that has neither reads as 0.
#pragma once

#include <QColor>
#include <cstdint>

namespace zorvel {

// How a plot is exported as an image.
struct PlotImage {
    static constexpr double leastWidth = 1, mostWidth = 200;  // cm
    static constexpr int leastDpi = 36, mostDpi = 2400;

    bool svg = false;     // PNG otherwise
    double widthCm = 16;  // on paper
    int dpi = 300;        // of PNG
    bool titles = true;   // around the plot, also when printed or copied

    bool operator==(const PlotImage&) const = default;
};

// What the plot of diversity at equal coverage shows.
struct DiversityPlot {
    int order = 0;   // 0, 1 or 2
    int across = 1;  // specimens, coverage, orders

    bool operator==(const DiversityPlot&) const = default;
};

class Preferences {
  public:
    // Registers the defaults: 50, 0.8, 0.95, red. Call once, at start-up.
    void initializePreferences();

    // Specimens (or censuses) to which richness is rarefied.
    [[nodiscard]] std::int64_t rarefactionSize() const;
    // Stores size, at least 1.
    static std::int64_t limitedSize(std::int64_t size);
    void setRarefactionSize(std::int64_t size);

    // Coverage at which shareholder quorum subsampling stops.
    [[nodiscard]] double sqsQuota() const;
    // Stores 0.1 for a negative quota, 0.99 for a quota above 1, and any other as it is.
    static double limitedQuota(double quota);
    void setSqsQuota(double quota);

    // Of the limits around a rarefaction curve: 0.95 or 0.99.
    [[nodiscard]] double confidence() const;
    void setConfidence(double confidence);

    // Of the rarefaction curve, with its alpha. Red if the stored entry is no colour; one that
    // cannot be parsed is reported on the console.
    [[nodiscard]] QColor plotColor() const;
    void setPlotColor(const QColor& color);

    // As chosen last. Values beyond the limits read as the default.
    [[nodiscard]] PlotImage plotImage() const;
    void setPlotImage(const PlotImage& image);

    // As chosen last; what is none of its choices reads as the default.
    [[nodiscard]] DiversityPlot diversityPlot() const;
    void setDiversityPlot(const DiversityPlot& plot);
};

}  // namespace zorvel
