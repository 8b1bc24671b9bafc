// Draws one rarefaction curve over its confidence band, in the colour and at the level that the
// preferences name at each draw. The mark of a record is on the screen alone. The plot stands on a
// sheet of white paper. Main thread.
#pragma once

#include <optional>
#include <vector>

#include "metrics/rarefaction.h"
#include "ui/analysis/plot_view.h"
#include "ui/analysis/rarefaction_plot.h"

namespace zorvel {

class RarefactionView : public PlotView {
    Q_OBJECT
  public:
    explicit RarefactionView(QWidget* parent = nullptr);

    // In increasing sample size.
    void setRarefactionData(std::vector<Rarefaction> curve);
    [[nodiscard]] const std::optional<std::vector<Rarefaction>>& rarefactionData() const {
        return rarefactionData_;
    }

    // Whether there are records enough for a curve.
    [[nodiscard]] bool isDrawable() const override;
    [[nodiscard]] bool hasMark() const override { return marked_ >= 0; }
    // Nothing at all for fewer than three records. A stored confidence level that is neither 0.95
    // nor 0.99 is told on the console, twice a draw: the richness axis then runs to 1, without a
    // band.
    void drawRect(QPainter& painter) override;
    // As of the last draw.
    [[nodiscard]] const PlotGeometry& geometry() const { return geometry_; }

    // The place of the marked record; -1: none.
    [[nodiscard]] int markedPoint() const { return marked_; }
    void markPoint(int place);

    [[nodiscard]] QSize sizeHint() const override { return {600, 400}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {200, 150}; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void clearMark() override { markPoint(-1); }
    void markAt(const QPointF& place) override;
    bool markByKey(int key, Qt::KeyboardModifiers modifiers) override;

  private:
    void drawMark(QPainter& painter) const;

    std::optional<std::vector<Rarefaction>> rarefactionData_;
    PlotGeometry geometry_;
    int marked_ = -1;
};

}  // namespace zorvel
