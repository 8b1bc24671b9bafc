#include "ui/analysis/titled_plot.h"

#include <QFontMetrics>
#include <QPainter>

#include "ui/analysis/rarefaction_painting.h"

namespace zorvel {

namespace {

constexpr int axisTitleRoom = 24;  // points, as all lengths
constexpr int nameRoom = 28;
constexpr int nameMargin = 8;
constexpr int centredLine = Qt::AlignCenter | Qt::TextSingleLine;

QFont fontOf(int size, bool bold) {
    QFont font = plotLabelFont();
    font.setPixelSize(size);
    font.setBold(bold);
    return font;
}

void drawTitles(QPainter& painter, const PlotTitles& titles, const QSize& page, const QRect& plot) {
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setPen(Qt::black);
    painter.setFont(fontOf(14, true));
    const QString name =
        QFontMetrics(painter.font())
            .elidedText(titles.name, Qt::ElideRight, page.width() - 2 * nameMargin);
    painter.drawText(QRect(0, 0, page.width(), plot.top()), centredLine, name);
    painter.setFont(fontOf(12, false));
    painter.drawText(QRect(plot.left(), plot.bottom() + 1, plot.width(), axisTitleRoom),
                     centredLine, titles.below);
    painter.translate(0, plot.bottom() + 1);
    painter.rotate(-90);
    painter.drawText(QRect(0, 0, plot.height(), axisTitleRoom), centredLine, titles.beside);
}

}  // namespace

PlotDrawing titledPlot(const PlotDrawing& plot, const PlotTitles& titles) {
    const QRect inner(QPoint(axisTitleRoom, titles.name.isEmpty() ? 0 : nameRoom), plot.size);
    const QSize page(inner.right() + 1, inner.bottom() + 1 + axisTitleRoom);
    return {page, plot.title, [plot, titles, page, inner](QPainter& painter) {
                painter.fillRect(QRect(QPoint(), page), Qt::white);
                painter.save();
                painter.translate(inner.topLeft());
                plot.draw(painter);
                painter.restore();
                painter.save();
                drawTitles(painter, titles, page, inner);
                painter.restore();
            }};
}

}  // namespace zorvel
