#include "ui/analysis/plot_files.h"

#include <QBuffer>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

namespace zorvel {

namespace {

constexpr int pointsPerInch = 72;
constexpr int pixelsPerPoint = 2;

// Whether something could be painted; the bytes are in memory, so only an empty size fails.
bool paintOn(QPaintDevice& device, const PlotDrawing& drawing) {
    QPainter painter;
    if (!painter.begin(&device)) return false;
    drawing.draw(painter);
    return painter.end();
}

}  // namespace

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

QByteArray svgOf(const PlotDrawing& drawing) {
    if (drawing.size.isEmpty()) return {};
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setTitle(drawing.title);
    generator.setResolution(pointsPerInch);
    generator.setSize(drawing.size);
    generator.setViewBox(QRect(QPoint(), drawing.size));
    return paintOn(generator, drawing) ? bytes : QByteArray();
}

QImage imageOf(const PlotDrawing& drawing) {
    QImage image(drawing.size * pixelsPerPoint, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(pixelsPerPoint);
    image.fill(Qt::transparent);
    if (!image.isNull()) paintOn(image, drawing);
    return image;
}

QByteArray pngOf(const PlotDrawing& drawing) {
    QImage image = imageOf(drawing);
    // So that programs that lay out by physical size give it the drawing's.
    const int perMetre = qRound(pixelsPerPoint * pointsPerInch / 0.0254);
    image.setDotsPerMeterX(perMetre);
    image.setDotsPerMeterY(perMetre);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "PNG") ? bytes : QByteArray();
}

}  // namespace zorvel
