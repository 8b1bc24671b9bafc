// A line of plain text that takes what width there is, and ends in an ellipsis where that does not
// do. Main thread.
#pragma once

#include <QLabel>

namespace zorvel {

class ElidedLabel : public QLabel {
    Q_OBJECT
  public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    [[nodiscard]] QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace zorvel
