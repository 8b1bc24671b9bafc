#include "ui/analysis/plot_paper.h"

#include <QApplication>
#include <QPainter>

#include "ui/kit/look.h"

namespace zorvel {

PlotPaper::PlotPaper(QWidget* parent) : QFrame(parent) {
    setPalette(lookPalette(ColorScheme::light));
}

void PlotPaper::setFocused(bool focused) {
    focused_ = focused;
    update();
}

void PlotPaper::paintEvent(QPaintEvent* /*event*/) {
    const LookColors& around = lookColors(QApplication::palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(focused_ ? around.accent : around.border, focused_ ? 2 : 1));
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 8, 8);
}

void UpwardLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.translate(0, height());
    painter.rotate(-90);
    painter.drawText(QRect(0, 0, height(), width()), Qt::AlignCenter, text());
}

}  // namespace zorvel
