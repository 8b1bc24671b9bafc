// A plot taken out of the program: with titles around it, as a PDF page, SVG or an image, and on
// paper. Main thread (fonts).
#pragma once

#include <QByteArray>
#include <QFont>
#include <QImage>
#include <QSize>
#include <QString>
#include <functional>

class QPagedPaintDevice;
class QPainter;

namespace zorvel {

// Helvetica or another sans serif, `size` units high whatever the device's resolution, so that
// screen and page agree.
QFont plotFont(int size, bool bold = false);

struct PlotDrawing {
    QSize size;     // whole points
    QString title;  // of the document
    // Paints the rectangle of that size from (0, 0), in units of points.
    std::function<void(QPainter&)> draw;
};

struct PlotTitles {
    QString name;  // of the census or project; may be empty
    QString below;
    QString beside;
};

// The plot, painted as it is, on a larger white page: the name above it, shortened to the page's
// width, and the titles of its axes below and, reading upwards, beside it.
PlotDrawing titledPlot(const PlotDrawing& plot, const PlotTitles& titles);

// On a page of exactly the drawing's size. Text stays text in this and in SVG. Both are empty if
// the drawing has no size.
QByteArray pdfOf(const PlotDrawing& drawing);

// As wide on paper as given, and as high in proportion. naturalWidth(): at one point per unit.
double naturalWidth(const PlotDrawing& drawing);  // cm
QByteArray svgOf(const PlotDrawing& drawing, double widthCm);
// With its physical resolution; transparent where nothing is drawn. Null if memory has no room for
// it.
QImage imageOf(const PlotDrawing& drawing, double widthCm, int dpi);
QSize pixelsOf(const QSize& drawing, double widthCm, int dpi);

// Any thread.
QByteArray pngOf(const QImage& image);

// In the middle of the page at its own size, one point per unit; smaller if the page is. False if
// the device cannot be painted on.
bool printDrawing(QPagedPaintDevice& device, const PlotDrawing& drawing);

}  // namespace zorvel
