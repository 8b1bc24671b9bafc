// The white sheet that a plot stands on, in both schemes, with the titles of its axes around it.
// Main thread.
#pragma once

#include <QFrame>
#include <QLabel>

namespace zorvel {

// A line of text that reads upwards.
class UpwardLabel : public QLabel {
    Q_OBJECT
  public:
    explicit UpwardLabel(const QString& text, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

class PlotPaper : public QFrame {
    Q_OBJECT
  public:
    // Takes the plot.
    PlotPaper(QWidget* plot, const QString& xTitle, const QString& yTitle,
              QWidget* parent = nullptr);

    // Framed as what has the keyboard's focus.
    void setFocused(bool focused);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    bool focused_ = false;
};

}  // namespace zorvel
