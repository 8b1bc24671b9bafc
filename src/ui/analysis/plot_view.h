// What the views of plots share: a point can be marked by pointing at it or with the arrow keys,
// and Escape takes the mark away. And what surrounds them on the screen. Main thread.
#pragma once

#include <QFrame>
#include <QLabel>
#include <QWidget>
#include <optional>

namespace zorvel {

class PlotView : public QWidget {
    Q_OBJECT
  public:
    explicit PlotView(QWidget* parent = nullptr);

    // Whether there is anything to mark.
    [[nodiscard]] virtual bool isDrawable() const = 0;
    [[nodiscard]] virtual bool hasMark() const = 0;
    // Onto any device, over the rectangle of the view's size from the painter's (0, 0). The mark is
    // on the screen alone.
    virtual void drawRect(QPainter& painter) = 0;

  signals:
    void markDidChange();
    // shown: the focus came by the keyboard, so a frame shows where it is.
    void focusDidChange(bool shown);

  protected:
    virtual void clearMark() = 0;
    // The next two only while there is something to mark.
    virtual void markAt(const QPointF& place) = 0;
    // False for a key that is not the view's.
    virtual bool markByKey(int key, Qt::KeyboardModifiers modifiers) = 0;

    // The place from 0 to last to which an arrow, page, Home or End key leads from another, -1 for
    // none; absent for other keys.
    static std::optional<int> placeAfterKey(int key, int place, int last);

    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
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
