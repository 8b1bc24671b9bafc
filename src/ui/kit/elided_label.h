// A line of plain text that ends in an ellipsis where its room does not do. Main thread.
#pragma once

#include <QLabel>

namespace zorvel {

class ElidedLabel : public QLabel {
    Q_OBJECT
  public:
    using QLabel::QLabel;

    [[nodiscard]] QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace zorvel
