// Draws several curves on white ground, with an upright line that can be dragged. Main thread.
#pragma once

#include <optional>

#include "ui/analysis/curves_painting.h"
#include "ui/analysis/plot_view.h"

namespace zorvel {

class CurvesView : public PlotView {
    Q_OBJECT
  public:
    using PlotView::PlotView;

    // The mark goes if its curve is gone.
    void setPlot(CurvesPlot plot);
    [[nodiscard]] const CurvesPlot& plot() const { return plot_; }
    [[nodiscard]] bool isDrawable() const override;
    [[nodiscard]] bool hasMark() const override { return mark_.has_value(); }
    void drawRect(QPainter& painter) override;

    // A point on a curve.
    struct Mark {
        int curve = 0;
        double x = 0;
        friend bool operator==(const Mark&, const Mark&) = default;
    };
    [[nodiscard]] const std::optional<Mark>& mark() const { return mark_; }
    void setMark(std::optional<Mark> mark);

    [[nodiscard]] QSize sizeHint() const override { return {640, 340}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {280, 160}; }

  signals:
    // Where the user put the line; it stands there once the plot says so.
    void lineDidMove(double x);

  protected:
    void clearMark() override { setMark(std::nullopt); }
    void markAt(const QPointF& place) override;
    bool markByKey(int key, Qt::KeyboardModifiers modifiers) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    [[nodiscard]] bool isOnLine(const QPointF& place) const;
    void moveLine(int steps);

    CurvesPlot plot_;
    std::optional<Mark> mark_;
    bool dragging_ = false;
};

}  // namespace zorvel
