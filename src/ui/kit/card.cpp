#include "ui/kit/card.h"

#include <QEvent>
#include <QGridLayout>
#include <QPainter>

#include "ui/kit/look.h"

namespace zorvel {

Card::Card(QWidget* parent) : QFrame(parent) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

// The hairlines move with the rows.
bool Card::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) update();
    return QFrame::event(event);
}

void Card::paintEvent(QPaintEvent* /*event*/) {
    const LookColors& colors = lookColors(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colors.hairline);
    painter.setBrush(colors.raised);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    const auto* grid = qobject_cast<const QGridLayout*>(layout());
    if (grid == nullptr) return;
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (int row = 1; row < grid->rowCount(); ++row) {
        // Where the item stands: a cell does not know of the height that wrapped text takes.
        const QLayoutItem* item = grid->itemAtPosition(row, 0);
        if (item == nullptr) continue;
        const QRect room = grid->contentsRect();
        painter.fillRect(room.x(), item->geometry().y(), room.width(), 1, colors.hairline);
    }
}

}  // namespace zorvel
