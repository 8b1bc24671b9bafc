// A rounded ground for what belongs together, its rows parted by hairlines.
#pragma once

#include <QFrame>

namespace zorvel {

class Card : public QFrame {
    Q_OBJECT
  public:
    explicit Card(QWidget* parent = nullptr);

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace zorvel
