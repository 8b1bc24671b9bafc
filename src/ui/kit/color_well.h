// A colour that can be changed: a press opens the panel of colours. Its accessible description is
// the colour in words. Main thread.
#pragma once

#include "ui/kit/color_chip.h"

namespace zorvel {

class ColorPanel;

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

}  // namespace zorvel
