// Draws several curves on white ground, marks a point on one of them by pointing at it or with the
// arrow keys, and holds an upright line that can be dragged. Main thread.
#pragma once

#include <QWidget>
#include <optional>

#include "ui/analysis/curves_painting.h"

namespace zorvel {

class CurvesView : public QWidget {
    Q_OBJECT
  public:
    explicit CurvesView(QWidget* parent = nullptr);

    // The mark goes if its curve is gone.
    void setPlot(CurvesPlot plot);
    [[nodiscard]] const CurvesPlot& plot() const { return plot_; }
    [[nodiscard]] bool isDrawable() const;
    // Without mark and emphasis, over the view's size.
    void draw(QPainter& painter) const;

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
    void markDidChange();
    // Where the user put the line; it stands there once the plot says so.
    void lineDidMove(double x);
    // shown: the focus came by the keyboard.
    void focusDidChange(bool shown);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    [[nodiscard]] bool isOnLine(const QPointF& place) const;
    void moveMark(int key);
    void moveLine(int steps);

    CurvesPlot plot_;
    std::optional<Mark> mark_;
    bool dragging_ = false;
};

}  // namespace zorvel
