#include "ui/kit/color_palette.h"

#include <QHBoxLayout>
#include <algorithm>

#include "ui/kit/color_chip.h"

namespace zorvel {

std::vector<NamedColor> distinctColors() {
    const auto tr = [](const char* text) { return ColorPalette::tr(text); };
    return {{tr("Black"), {0, 0, 0}},
            {tr("Bluish green"), {0, 158, 115}},
            {tr("Blue"), {0, 114, 178}},
            {tr("Vermillion"), {213, 94, 0}},
            {tr("Reddish purple"), {204, 121, 167}}};
}

QString describedColor(const QColor& color) {
    const std::vector<NamedColor> named = distinctColors();
    const auto found = std::find_if(named.begin(), named.end(), [&](const NamedColor& each) {
        return each.color.rgb() == (color.rgb() | 0xff000000U);
    });
    QString name = found != named.end() ? found->name : color.name().toUpper();
    if (color.alpha() == 255) return name;
    return ColorPalette::tr("%1, %2% opaque").arg(name).arg(qRound(color.alphaF() * 100));
}

ColorPalette::ColorPalette(QWidget* parent) : QWidget(parent) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    for (const NamedColor& each : distinctColors()) {
        auto* chip = new ColorChip({28, 28}, this);
        chip->setColor(each.color);
        chip->setAccessibleName(each.name);
        chip->setToolTip(each.name);
        connect(chip, &QAbstractButton::clicked, this,
                [this, color = each.color] { emit colorChosen(color); });
        row->addWidget(chip);
        chips_.push_back(chip);
    }
    row->addStretch();
}

void ColorPalette::showUsed(const QColor& color) {
    for (ColorChip* chip : chips_) {
        const bool used = chip->color().rgb() == (color.rgb() | 0xff000000U);
        chip->setInUse(used);
        chip->setAccessibleDescription(used ? tr("In use") : QString());
    }
}

}  // namespace zorvel
