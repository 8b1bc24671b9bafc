#include "ui/analysis/plot_files.h"

#include <QBuffer>
#include <QFontMetrics>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>
#include <algorithm>

namespace zorvel {

namespace {

constexpr int pointsPerInch = 72;
constexpr double cmPerInch = 2.54;
constexpr int axisTitleRoom = 24;  // points, as all lengths
constexpr int nameRoom = 28;
constexpr int nameMargin = 8;
constexpr int centredLine = Qt::AlignCenter | Qt::TextSingleLine;

// Whether something could be painted; the bytes are in memory, so only an empty size fails.
bool paintOn(QPaintDevice& device, const PlotDrawing& drawing) {
    QPainter painter;
    if (!painter.begin(&device)) return false;
    drawing.draw(painter);
    return painter.end();
}

void drawTitles(QPainter& painter, const PlotTitles& titles, const QSize& page, const QRect& plot) {
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setPen(Qt::black);
    painter.setFont(plotFont(14, true));
    const QString name =
        QFontMetrics(painter.font())
            .elidedText(titles.name, Qt::ElideRight, page.width() - 2 * nameMargin);
    painter.drawText(QRect(0, 0, page.width(), plot.top()), centredLine, name);
    painter.setFont(plotFont(12));
    painter.drawText(QRect(plot.left(), plot.bottom() + 1, plot.width(), axisTitleRoom),
                     centredLine, titles.below);
    painter.translate(0, plot.bottom() + 1);
    painter.rotate(-90);
    painter.drawText(QRect(0, 0, plot.height(), axisTitleRoom), centredLine, titles.beside);
}

}  // namespace

QFont plotFont(int size, bool bold) {
    QFont font(QStringLiteral("Helvetica"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(size);
    font.setBold(bold);
    return font;
}

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

QByteArray pdfOf(const PlotDrawing& drawing) {
    if (drawing.size.isEmpty()) return {};
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setTitle(drawing.title);
    writer.setCreator(QStringLiteral("Zorvel"));
    writer.setResolution(pointsPerInch);
    const QPageSize page(QSizeF(drawing.size), QPageSize::Point, QStringLiteral("plot"),
                         QPageSize::ExactMatch);
    QPageLayout layout(page, QPageLayout::Portrait, QMarginsF(), QPageLayout::Point);
    layout.setMode(QPageLayout::FullPageMode);
    writer.setPageLayout(layout);
    return paintOn(writer, drawing) ? bytes : QByteArray();
}

double naturalWidth(const PlotDrawing& drawing) {
    return drawing.size.width() * cmPerInch / pointsPerInch;
}

QByteArray svgOf(const PlotDrawing& drawing, double widthCm) {
    if (drawing.size.isEmpty()) return {};
    constexpr int unitsPerCm = 1000;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setTitle(drawing.title);
    generator.setResolution(qRound(unitsPerCm * cmPerInch));
    generator.setSize(
        (QSizeF(drawing.size) * (widthCm * unitsPerCm / drawing.size.width())).toSize());
    generator.setViewBox(QRect(QPoint(), drawing.size));
    return paintOn(generator, drawing) ? bytes : QByteArray();
}

QSize pixelsOf(const QSize& drawing, double widthCm, int dpi) {
    return (QSizeF(drawing) * (widthCm / cmPerInch * dpi / drawing.width())).toSize();
}

QImage imageOf(const PlotDrawing& drawing, double widthCm, int dpi) {
    if (drawing.size.isEmpty()) return {};
    QImage image(pixelsOf(drawing.size, widthCm, dpi), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return image;
    const int perMetre = qRound(dpi * 100 / cmPerInch);
    image.setDotsPerMeterX(perMetre);
    image.setDotsPerMeterY(perMetre);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(static_cast<double>(image.width()) / drawing.size.width(),
                  static_cast<double>(image.height()) / drawing.size.height());
    drawing.draw(painter);
    return image;
}

QByteArray pngOf(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "PNG") ? bytes : QByteArray();
}

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
