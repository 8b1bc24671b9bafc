// The size and place of a window that opens, so that its screen has room for it. Main thread.
#pragma once

#include <QMainWindow>
#include <QPoint>
#include <QRect>
#include <QSize>

namespace zorvel {

// The size of a window's inside that fits, with its frame, into the available part of a screen if
// the frame's top-left corner is at that place.
QSize fittingSize(const QSize& wanted, const QSize& available, const QPoint& corner = {});

// On the screen that the window will be shown on.
void resizeToFit(QWidget& window, const QSize& wanted, const QPoint& corner = {});

// The place of a new window's frame: a step right of and below that of the one before, as far
// as there is room for the least size of its inside, and after the farthest place in the corner of
// the screen again.
QPoint cascadedPlace(const QPoint& before, const QSize& least, const QRect& available);
// Moves the window there, and makes it fit.
void cascade(QWidget& window, const QWidget& before);

// A window that belongs to no project: whenever it opens, its frame, with the title bar of the
// window manager, stands at one place of the screen.
class PlacedWindow : public QMainWindow {
    Q_OBJECT
  public:
    // left: pixels from the left edge of the screen; top: below the top of the part of the screen
    // that windows may use.
    PlacedWindow(int left, int top) : left_(left), top_(top) {}

    // To that size, or to what the screen has room for at the window's place.
    void resizeToFit(const QSize& wanted);

    void setVisible(bool visible) override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // Of the frame's corner, on the screen that the window is on.
    [[nodiscard]] QPoint place() const;

    int left_;
    int top_;
    bool wasExposed_ = false;  // since it appeared
};

}  // namespace zorvel
