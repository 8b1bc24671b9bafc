// A colour shown and changed: the chip, the well that opens the panel of colours, and the palette
// of colours to choose from. Main thread.
#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QString>
#include <QWidget>
#include <vector>

namespace zorvel {

class ColorPanel;

// A button that shows a colour, over a chequered ground if it is not opaque. Space and Return press
// it.
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

  private:
    void paintColor(QPainter& painter, const QRectF& rect) const;

    QSize size_;
    QColor color_;
    bool inUse_ = false;
};

// A colour that can be changed: a press opens the panel of colours. Its accessible description is
// the colour in words.
class ColorWell : public ColorChip {
    Q_OBJECT
  public:
    explicit ColorWell(QWidget* parent = nullptr);

    // Must outlive the well; without one a press does nothing.
    void setPanel(ColorPanel& panel) { panel_ = &panel; }

    // Emits nothing.
    void showColor(const QColor& color);

  public slots:
    // As if it had been chosen in the panel.
    void choose(const QColor& color);

  signals:
    void colorDidChange();

  private:
    void openPanel();

    ColorPanel* panel_ = nullptr;
};

// Colours that readers with any kind of colour vision can tell apart: those of the palette of Okabe
// and Ito (2008, Color Universal Design, its table of RGB values) that stand out against a white
// page, with a contrast of at least 3:1.
struct NamedColor {
    QString name;
    QColor color;  // opaque
};

std::vector<NamedColor> distinctColors();

// The distinct colours as buttons in a row.
class ColorPalette : public QWidget {
    Q_OBJECT
  public:
    explicit ColorPalette(QWidget* parent = nullptr);

    // Marks the colour in use, if it is one of these, whatever its alpha.
    void showUsed(const QColor& color);

  signals:
    void colorChosen(const QColor& color);

  private:
    std::vector<ColorChip*> chips_;
};

}  // namespace zorvel
