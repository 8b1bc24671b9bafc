#include "ui/kit/color_well.h"

#include <QPointer>

#include "ui/kit/color_palette.h"
#include "ui/kit/color_panel.h"

namespace zorvel {

ColorWell::ColorWell(QWidget* parent) : ColorChip({56, 34}, parent) {
    connect(this, &QAbstractButton::clicked, this, &ColorWell::openPanel);
}

void ColorWell::showColor(const QColor& color) {
    setColor(color);
    setAccessibleDescription(describedColor(color));
    setToolTip(describedColor(color));
}

void ColorWell::choose(const QColor& color) {
    showColor(color);
    emit colorDidChange();
}

void ColorWell::openPanel() {
    if (panel_ == nullptr) return;
    panel_->chooseColor(this, accessibleName(), color(),
                        [well = QPointer<ColorWell>(this)](const QColor& chosen) {
                            if (well) well->choose(chosen);
                        });
}

}  // namespace zorvel
