// A ring that turns while work runs, and is not to be seen otherwise. It keeps its room, so that
// nothing moves when it comes and goes. Main thread.
#pragma once

#include <QTimer>
#include <QWidget>

namespace zorvel {

class Spinner : public QWidget {
    Q_OBJECT
  public:
    explicit Spinner(QWidget* parent = nullptr);

    void startAnimation();
    void stopAnimation();
    [[nodiscard]] bool isAnimated() const { return timer_.isActive(); }
    [[nodiscard]] QSize sizeHint() const override { return {16, 16}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QTimer timer_;
    int step_ = 0;
};

}  // namespace zorvel
