#include "ui/kit/card.h"

#include <QGridLayout>
#include <QPainter>

#include "ui/kit/look.h"

namespace zorvel {

Card::Card(QWidget* parent) : QFrame(parent) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
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
        const QRect cell = grid->cellRect(row, 0);
        painter.fillRect(cell.x(), cell.y(), grid->contentsRect().width(), 1, colors.hairline);
    }
}

}  // namespace zorvel
