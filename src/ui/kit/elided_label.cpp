#include "ui/kit/elided_label.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>

namespace zorvel {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

QSize ElidedLabel::minimumSizeHint() const {
    return {fontMetrics().horizontalAdvance(u'\u2026'), QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRect room = contentsRect();
    const QString line = fontMetrics().elidedText(text(), Qt::ElideRight, room.width());
    style()->drawItemText(&painter, room, QStyle::visualAlignment(layoutDirection(), alignment()),
                          palette(), isEnabled(), line, foregroundRole());
}

}  // namespace zorvel
