#include "ui/kit/value_field.h"

#include <QClipboard>
#include <QEvent>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPalette>
#include <QScopedValueRollback>
#include <algorithm>

#include "ui/kit/look.h"

namespace zorvel {

ValueField::ValueField(QWidget* parent) : QLineEdit(parent) {
    setReadOnly(true);
    setFrame(false);
    setTextMargins(-2, 0, -2, 0);  // the text begins and ends where the field does
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    showColor();
    connect(this, &QLineEdit::textChanged, this, [this] {
        setPending(false);
        fitFont();
        setCursorPosition(0);
        updateGeometry();
    });
}

void ValueField::setScale(double scale) {
    scale_ = scale;
    fitFont();
    // Also while a long text is set smaller.
    setMinimumHeight(QLineEdit::sizeHint().height());
}

QSize ValueField::sizeHint() const {
    const int marked = mark_.isEmpty() ? 0 : fontMetrics().horizontalAdvance(mark_) + 8;
    const int width = fontMetrics().horizontalAdvance(text()) + 6 + marked;
    return {width, QLineEdit::sizeHint().height()};
}

void ValueField::setStale(const QString& reason) {
    reason_ = reason;
    showDescription();
    showColor();
}

void ValueField::setExplanation(const QString& explanation) {
    explanation_ = explanation;
    showDescription();
}

void ValueField::setMark(const QString& mark, const QString& meaning) {
    mark_ = mark;
    markMeaning_ = meaning;
    showDescription();
    updateGeometry();
    update();
}

void ValueField::setPending(bool pending) {
    if (pending_ == pending) return;
    pending_ = pending;
    showDescription();
    update();
}

void ValueField::showDescription() {
    const QString marked = mark_.isEmpty() ? explanation_ : markMeaning_ + '\n' + explanation_;
    setToolTip(isStale() ? reason_ : marked);
    setAccessibleDescription(pending_ ? "It is being computed." : toolTip());
}

void ValueField::resizeEvent(QResizeEvent* event) {
    QLineEdit::resizeEvent(event);
    fitFont();
}

void ValueField::changeEvent(QEvent* event) {
    QLineEdit::changeEvent(event);
    if (adjusting_) return;
    // The application's look or font has changed, not this field's own.
    if (event->type() == QEvent::PaletteChange) showColor();
    if (event->type() == QEvent::FontChange) fitFont();
}

void ValueField::copyValue() const {
    const QString copied = hasSelectedText() ? selectedText() : text();
    if (!copied.isEmpty()) QGuiApplication::clipboard()->setText(copied);
}

void ValueField::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) return copyValue();
    QLineEdit::keyPressEvent(event);
}

void ValueField::paintEvent(QPaintEvent* event) {
    QLineEdit::paintEvent(event);
    QPainter painter(this);
    if (pending_) paintPending(painter);
    if (!mark_.isEmpty()) {
        painter.setPen(lookColors(QPalette()).secondary);
        painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, mark_);
    }
    if (!hasFocus()) return;
    painter.fillRect(0, height() - 1, width(), 1, lookColors(palette()).accent);
}

void ValueField::paintPending(QPainter& painter) const {
    const double thick = fontMetrics().xHeight() + 2;
    const double wide = std::min(width() * 0.6, fontMetrics().averageCharWidth() * 6.0);
    const double left = alignment().testFlag(Qt::AlignRight) ? width() - wide : 0;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(lookColors(palette()).hairline);
    painter.drawRoundedRect(QRectF(left, (height() - thick) / 2, wide, thick), 3, 3);
}

void ValueField::fitFont() {
    if (scale_ == 1 || parentWidget() == nullptr) return;
    const QScopedValueRollback guard(adjusting_, true);
    QFont wanted = scaledFont(parentWidget()->font(), scale_);
    const double needed = QFontMetricsF(wanted).horizontalAdvance(text()) + 8;
    const double room = width();
    if (needed > room && room > 0) {
        wanted = scaledFont(parentWidget()->font(), std::max(0.5, scale_ * room / needed));
    }
    if (wanted != font()) setFont(wanted);
}

void ValueField::showColor() {
    const QScopedValueRollback guard(adjusting_, true);
    QPalette own;
    own.setColor(QPalette::Base, Qt::transparent);
    if (isStale()) own.setColor(QPalette::Text, lookColors(QPalette()).greyed);
    setPalette(own);
}

}  // namespace zorvel
