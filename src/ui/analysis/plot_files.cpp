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
constexpr double cmPerInch = 2.54;

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

}  // namespace zorvel
