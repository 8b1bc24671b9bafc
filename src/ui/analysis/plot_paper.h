// What surrounds a plot on the screen. Main thread.
#pragma once

#include <QFrame>
#include <QLabel>

namespace zorvel {

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
