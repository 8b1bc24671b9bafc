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
        fitFont();
        setCursorPosition(0);
    });
}

void ValueField::setScale(double scale) {
    scale_ = scale;
    fitFont();
}

void ValueField::setStale(const QString& reason) {
    stale_ = !reason.isEmpty();
    setToolTip(stale_ ? reason : explanation_);
    setAccessibleDescription(toolTip());
    showColor();
}

void ValueField::setExplanation(const QString& explanation) {
    explanation_ = explanation;
    if (stale_) return;
    setToolTip(explanation);
    setAccessibleDescription(explanation);
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
    if (!hasFocus()) return;
    QPainter painter(this);
    painter.fillRect(0, height() - 1, width(), 1, lookColors(palette()).accent);
}

void ValueField::fitFont() {
    if (scale_ == 1 || parentWidget() == nullptr) return;
    const QScopedValueRollback guard(adjusting_, true);
    QFont wanted = scaledFont(parentWidget()->font(), scale_, true);
    const double needed = QFontMetricsF(wanted).horizontalAdvance(text()) + 8;
    const double room = width();
    if (needed > room && room > 0) {
        wanted = scaledFont(parentWidget()->font(), std::max(0.5, scale_ * room / needed), true);
    }
    if (wanted != font()) setFont(wanted);
}

void ValueField::showColor() {
    const QScopedValueRollback guard(adjusting_, true);
    QPalette own;
    own.setColor(QPalette::Base, Qt::transparent);
    if (stale_) own.setColor(QPalette::Text, lookColors(QPalette()).stale);
    setPalette(own);
}

}  // namespace zorvel
