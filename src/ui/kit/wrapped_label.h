// A label whose text wraps in any room: between words, and within a word where that is too long for
// a line. What is selected in it is copied as it was set. Main thread.
#pragma once

#include <QLabel>

class QTextDocument;

namespace zorvel {

class WrappedLabel : public QLabel {
    Q_OBJECT
  public:
    explicit WrappedLabel(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QTextDocument* laidOut() const;
};

}  // namespace zorvel
