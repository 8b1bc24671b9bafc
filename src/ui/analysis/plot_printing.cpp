#include "ui/analysis/plot_printing.h"

#include <QPagedPaintDevice>
#include <QPainter>
#include <algorithm>

namespace zorvel {

bool printDrawing(QPagedPaintDevice& device, const PlotDrawing& drawing) {
    QPainter painter;
    if (drawing.size.isEmpty() || !painter.begin(&device)) return false;
    const double unit = device.logicalDpiX() / 72.0;  // pixels a point
    const QSizeF page(device.width(), device.height());
    const QSizeF size(drawing.size);
    const double scale =
        std::min({unit, page.width() / size.width(), page.height() / size.height()});
    painter.translate((page.width() - scale * size.width()) / 2,
                      (page.height() - scale * size.height()) / 2);
    painter.scale(scale, scale);
    drawing.draw(painter);
    return painter.end();
}

}  // namespace zorvel
