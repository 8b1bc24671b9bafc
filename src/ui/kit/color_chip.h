// A button that shows a colour, over a chequered ground where it lets something through. Space and
// Return press it. Main thread.
#pragma once

#include <QAbstractButton>
#include <QColor>

namespace zorvel {

class ColorChip : public QAbstractButton {
    Q_OBJECT
  public:
    explicit ColorChip(const QSize& size, QWidget* parent = nullptr);

    [[nodiscard]] QColor color() const { return color_; }
    void setColor(const QColor& color);
    // Marks it as the one in use among several.
    void setInUse(bool inUse);
    [[nodiscard]] bool isInUse() const { return inUse_; }

    [[nodiscard]] QSize sizeHint() const override { return size_; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    void paintColor(QPainter& painter, const QRectF& rect) const;

    QSize size_;
    QColor color_;
    bool inUse_ = false;
};

}  // namespace zorvel
