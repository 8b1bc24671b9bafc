// Draws one rarefaction curve over its confidence band, in the colour and at the level that the
// preferences name at each draw. A record can be marked, by pointing at it or with the arrow keys;
// the mark is on the screen alone. The plot stands on a sheet of white paper. Main thread.
#pragma once

#include <QFrame>
#include <QLabel>
#include <QWidget>
#include <optional>
#include <vector>

#include "metrics/rarefaction.h"
#include "ui/analysis/rarefaction_plot.h"

namespace zorvel {

class RarefactionView : public QWidget {
    Q_OBJECT
  public:
    explicit RarefactionView(QWidget* parent = nullptr);

    // In increasing sample size.
    void setRarefactionData(std::vector<Rarefaction> curve);
    [[nodiscard]] const std::optional<std::vector<Rarefaction>>& rarefactionData() const {
        return rarefactionData_;
    }

    // Whether there are records enough for a curve.
    [[nodiscard]] bool isDrawable() const;
    // Onto any device, over the rectangle of the view's size from the painter's (0, 0). Nothing at
    // all for fewer than three records. A stored confidence level that is neither 0.95 nor 0.99 is
    // told on the console, twice a draw: the richness axis then runs to 1, without a band.
    void drawRect(QPainter& painter);
    // As of the last draw.
    [[nodiscard]] const PlotGeometry& geometry() const { return geometry_; }

    // The place of the marked record; -1: none.
    [[nodiscard]] int markedPoint() const { return marked_; }
    void markPoint(int place);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

  signals:
    void markedPointDidChange(int place);
    // shown: the focus came by the keyboard, so a frame shows where it is.
    void focusDidChange(bool shown);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    void drawMark(QPainter& painter) const;
    [[nodiscard]] int placeAfterKey(int key) const;

    std::optional<std::vector<Rarefaction>> rarefactionData_;
    PlotGeometry geometry_;
    int marked_ = -1;
};

// The white sheet under a plot and the titles of its axes, white in both schemes.
class PlotPaper : public QFrame {
    Q_OBJECT
  public:
    explicit PlotPaper(QWidget* parent = nullptr);

    // Framed as what has the keyboard's focus.
    void setFocused(bool focused);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    bool focused_ = false;
};

// A line of text that reads upwards.
class UpwardLabel : public QLabel {
    Q_OBJECT
  public:
    using QLabel::QLabel;

    [[nodiscard]] QSize sizeHint() const override { return QLabel::sizeHint().transposed(); }
    [[nodiscard]] QSize minimumSizeHint() const override {
        return QLabel::minimumSizeHint().transposed();
    }

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace zorvel
