// Colours that readers with any kind of colour vision can tell apart, as buttons in a row: those of
// the palette of Okabe and Ito (2008, Color Universal Design, its table of RGB values) that stand
// out against a white page, with a contrast of at least 3:1. Main thread.
#pragma once

#include <QColor>
#include <QString>
#include <QWidget>
#include <vector>

namespace zorvel {

class ColorChip;

struct NamedColor {
    QString name;  // translated
    QColor color;  // opaque
};

std::vector<NamedColor> distinctColors();

// In words: the name of a colour of the palette or else "#RRGGBB", and how opaque it is where it is
// not wholly.
QString describedColor(const QColor& color);

class ColorPalette : public QWidget {
    Q_OBJECT
  public:
    explicit ColorPalette(QWidget* parent = nullptr);

    // Marks the colour in use, if it is one of these; alpha aside.
    void showUsed(const QColor& color);

  signals:
    void colorChosen(const QColor& color);

  private:
    std::vector<ColorChip*> chips_;
};

}  // namespace zorvel
