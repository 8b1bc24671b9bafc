#include "ui/kit/color_controls.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <algorithm>

#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/kit/panels.h"

namespace zorvel {

namespace {

constexpr double ring = 3;    // room around the colour for the focus
constexpr double radius = 4;  // of the colour's corners
constexpr int square = 5;     // of the chequered ground

// The ground is the same in both schemes: that of a page.
void paintChequered(QPainter& painter, const QRect& rect) {
    painter.fillRect(rect, Qt::white);
    for (int y = 0; y * square < rect.height(); ++y) {
        for (int x = y % 2; x * square < rect.width(); x += 2) {
            painter.fillRect(rect.x() + x * square, rect.y() + y * square, square, square,
                             QColor("#c4c9c6"));
        }
    }
}

// The one of black and white that stands out against the colour on white.
QColor markColor(const QColor& color) {
    const double alpha = color.alphaF();
    const double lightness = qGray(color.rgb()) * alpha + 255 * (1 - alpha);
    return lightness > 140 ? Qt::black : Qt::white;
}

// In words: the name of a colour of the palette or else "#RRGGBB", and how opaque it is unless
// wholly.
QString describedColor(const QColor& color) {
    const std::vector<NamedColor> named = distinctColors();
    const auto found = std::find_if(named.begin(), named.end(), [&](const NamedColor& each) {
        return each.color.rgb() == (color.rgb() | 0xff000000U);
    });
    QString name = found != named.end() ? found->name : color.name().toUpper();
    if (color.alpha() == 255) return name;
    return QString("%1, %2% opaque").arg(name).arg(qRound(color.alphaF() * 100));
}

}  // namespace

ColorChip::ColorChip(const QSize& size, QWidget* parent) : QAbstractButton(parent), size_(size) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);  // repainted when the mouse comes and goes
}

void ColorChip::setColor(const QColor& color) {
    color_ = color;
    update();
}

void ColorChip::setInUse(bool inUse) {
    inUse_ = inUse;
    update();
}

void ColorChip::paintColor(QPainter& painter, const QRectF& rect) const {
    QPainterPath outline;
    outline.addRoundedRect(rect, radius, radius);
    painter.save();
    painter.setClipPath(outline);
    if (color_.alpha() < 255) paintChequered(painter, rect.toAlignedRect());
    painter.fillRect(rect, color_);
    painter.restore();
    const LookColors& colors = lookColors(palette());
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(underMouse() || isDown() ? colors.text : colors.border, 1));
    painter.drawPath(outline);
}

void ColorChip::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF inner = QRectF(rect()).adjusted(ring + 0.5, ring + 0.5, -ring - 0.5, -ring - 0.5);
    paintColor(painter, inner);
    if (inUse_) {
        paintGlyph(painter, Glyph::tick, inner.adjusted(2, 2, -2, -2), markColor(color_));
    }
    if (!hasFocus()) return;
    painter.setPen(QPen(lookColors(palette()).accent, 1.5));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius + 2, radius + 2);
}

void ColorChip::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return click();
    QAbstractButton::keyPressEvent(event);
}

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

std::vector<NamedColor> distinctColors() {
    return {{"Black", {0, 0, 0}},
            {"Bluish green", {0, 158, 115}},
            {"Blue", {0, 114, 178}},
            {"Vermillion", {213, 94, 0}},
            {"Reddish purple", {204, 121, 167}}};
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
        chip->setAccessibleDescription(used ? "In use" : QString());
    }
}

}  // namespace zorvel
