// A window that belongs to no project: at each opening its frame, with the title bar that a window
// manager gives it, stands at one place of the screen. Main thread.
#pragma once

#include <QMainWindow>
#include <QPoint>

namespace zorvel {

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
