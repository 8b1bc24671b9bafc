#include "ui/analysis/plot_export.h"

#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>
#include <QPointer>
#include <utility>

#include "platform/job_queue.h"
#include "ui/analysis/image_dialog.h"
#include "ui/kit/alerts.h"

namespace zorvel {

namespace {

constexpr int copiedDpi = 144;

}  // namespace

PlotExport::PlotExport(Source source, JobQueue& jobs, const Panels& panels, QWidget& owner)
    : QObject(&owner), source_(std::move(source)), jobs_(jobs), panels_(panels), owner_(owner) {}

PlotDrawing PlotExport::figure() const {
    return source_.drawing(Preferences().plotImage().titles);
}

QString PlotExport::choosePath(const QString& title, const FileType& type) {
    const QPointer<PlotExport> self(this);
    const QString path =
        panels_.save.chooseFile(owner_.window(), title, source_.fileName(), {type});
    return self ? path : QString();
}

// bytes: called in the job.
void PlotExport::write(const QString& path, const QString& failure,
                       std::function<QByteArray()> bytes) {
    const auto produce = [bytes = std::move(bytes)](const ByteSink& sink) {
        const QByteArray all = bytes();
        sink({all.constData(), static_cast<std::size_t>(all.size())});
    };
    const auto tell = [self = QPointer(this), path](bool there) {
        if (there && self) emit self->saved(QString("Saved to %1").arg(QFileInfo(path).fileName()));
    };
    writeInBackground(jobs_, panels_.alerts, owner_.window(), path, failure, produce, tell);
}

void PlotExport::savePlot() {
    const QString path = choosePath("Save Plot", {"PDF document", ".pdf"});
    if (path.isEmpty()) return;
    write(path, "The plot could not be saved",
          [page = pdfOf(source_.drawing(false))] { return page; });
}

void PlotExport::saveImage() {
    if (!source_.isDrawable()) return;
    auto* dialog = new ImageDialog(
        Preferences().plotImage(), [this](bool titles) { return source_.drawing(titles).size; },
        &owner_);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] { saveImageAs(dialog->choice()); });
    dialog->open();
}

void PlotExport::saveImageAs(const PlotImage& image) {
    Preferences().setPlotImage(image);
    emit imageChosen();
    const QString path = choosePath(
        "Save Image", image.svg ? FileType{"SVG drawing", ".svg"} : FileType{"PNG image", ".png"});
    if (path.isEmpty()) return;
    const QString failure = "The image could not be saved";
    if (image.svg) {
        return write(path, failure, [svg = svgOf(figure(), image.widthCm)] { return svg; });
    }
    const QImage pixels = imageOf(figure(), image.widthCm, image.dpi);
    if (pixels.isNull()) {
        return panels_.alerts.warn(
            owner_.window(), failure,
            "There is not enough memory for it. Choose a smaller width or resolution.");
    }
    write(path, failure, [pixels] { return pngOf(pixels); });
}

void PlotExport::saveTable() {
    const QByteArray text = source_.table();
    if (text.isEmpty()) return;
    const QString path = choosePath(source_.tableTitle, {"Comma-separated table", ".csv"});
    if (path.isEmpty()) return;
    write(path, "The table could not be saved", [text] { return QByteArray(text); });
}

void PlotExport::copyPlot() {
    const PlotDrawing plot = figure();
    const double width = naturalWidth(plot);
    auto* copied = new QMimeData;
    copied->setImageData(imageOf(plot, width, copiedDpi));
    copied->setData("application/pdf", pdfOf(plot));
    copied->setData("image/svg+xml", svgOf(plot, width));
    QGuiApplication::clipboard()->setMimeData(copied);
}

void PlotExport::copyTable() {
    const QByteArray table = source_.table();
    if (table.isEmpty()) return;
    auto* copied = new QMimeData;
    copied->setText(source_.cells());
    copied->setData("text/csv", table);
    QGuiApplication::clipboard()->setMimeData(copied);
}

}  // namespace zorvel
