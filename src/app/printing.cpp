#include "app/printing.h"

#include <QBuffer>
#include <QFileInfo>
#include <QMarginsF>
#include <QPdfWriter>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>
#include <functional>
#include <utility>

#include "app/project_windows.h"
#include "platform/file_names.h"
#include "ui/analysis/plot_files.h"
#include "ui/analysis/plot_page.h"
#include "ui/analysis/project_wide_metrics_window_controller.h"
#include "ui/kit/message_strip.h"
#include "ui/kit/printed_sheet.h"
#include "ui/kit/shown_text.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

struct PrintSubject {
    QString title;
    QPageLayout::Orientation orientation = QPageLayout::Portrait;
    std::function<bool(QPagedPaintDevice&)> paint;
};

// Absent for a window of another kind, and where there is nothing to print.
std::optional<PrintSubject> printSubjectOf(QWidget* window) {
    if (const auto* plot = window->findChild<PlotPage*>()) {
        const PlotDrawing drawing = plot->figure();
        const bool wide = drawing.size.width() > drawing.size.height();
        return PrintSubject{
            drawing.title, wide ? QPageLayout::Landscape : QPageLayout::Portrait,
            [drawing](QPagedPaintDevice& device) { return printDrawing(device, drawing); }};
    }
    std::optional<PrintedSheet> sheet;
    if (auto* metrics = qobject_cast<ProjectWideMetricsWindowController*>(window)) {
        sheet = metrics->viewController().printedSheet();
    } else if (auto* project = qobject_cast<MainWindowController*>(window)) {
        sheet = project->mainView().printedCensus();
    }
    if (!sheet) return std::nullopt;
    return PrintSubject{
        sheet->title, QPageLayout::Portrait,
        [sheet = *sheet](QPagedPaintDevice& device) { return printSheet(device, sheet); }};
}

// Empty if nothing could be painted.
QByteArray pdfOn(const PrintTarget& target, const PrintSubject& subject) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setTitle(subject.title);
    writer.setCreator(QStringLiteral("Zorvel"));
    writer.setPageLayout(target.layout);
    writer.setPageRanges(target.pages);
    return subject.paint(writer) ? bytes : QByteArray();
}

void warnOfPrinting(QWidget* window, ProjectWindows& windows, const PrintSubject& subject,
                    const QString& reason) {
    windows.panels().alerts.warn(
        window, QString("“%1” could not be printed").arg(shortened(subject.title, 80)), reason);
}

void printToFile(QWidget* window, ProjectWindows& windows, const PrintTarget& target,
                 const PrintSubject& subject) {
    const QByteArray bytes = pdfOn(target, subject);
    if (bytes.isEmpty())
        return warnOfPrinting(window, windows, subject, "No page could be painted.");
    const QString name = QFileInfo(target.path).fileName();
    const auto tell = [self = QPointer<ProjectWindows>(&windows), name,
                       shown = QPointer<QWidget>(window)](bool there) {
        if (!there || !self || !shown) return;
        const QString news = QString("Printed to %1").arg(name);
        if (auto* project = qobject_cast<MainWindowController*>(shown)) {
            self->tell(project, news + '.', MessageStrip::Tone::news);
        } else if (auto* plot = shown->findChild<PlotPage*>()) {
            plot->showSaved(news);
        }
    };
    writeInBackground(
        windows.jobs(), windows.panels().alerts, window, target.path,
        QString("“%1” could not be written").arg(name),
        [bytes](const ByteSink& sink) {
            sink({bytes.constData(), static_cast<std::size_t>(bytes.size())});
        },
        tell);
}

void printWindow(QWidget* window, ProjectWindows& windows, PrintPanel& panel) {
    const std::optional<PrintSubject> subject = printSubjectOf(window);
    if (!subject) return;
    const QPointer<QWidget> guard(window);
    const std::optional<PrintTarget> target =
        panel.choosePrinter(window, subject->title, subject->orientation);
    if (!target || !guard) return;
    if (target->printer == nullptr) return printToFile(window, windows, *target, *subject);
    if (!subject->paint(*target->printer)) {
        warnOfPrinting(window, windows, *subject, "The printer did not accept the job.");
    }
}

}  // namespace

std::optional<PrintTarget> PrintPanel::choosePrinter(QWidget* parent, const QString& title,
                                                     QPageLayout::Orientation orientation) {
    auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    // The panel's file is named after this, without the ending.
    printer->setDocName(asFileName(title) + ".pdf");
    printer->setPageOrientation(orientation);
    printer->setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
    QPrintDialog dialog(printer.get(), parent);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    printer->setDocName(title);
    PrintTarget target;
    target.layout = printer->pageLayout();
    target.pages = printer->pageRanges();
    if (printer->outputFormat() == QPrinter::PdfFormat) {
        target.path = printer->outputFileName();
    } else {
        target.printer = std::move(printer);
    }
    return target;
}

void printOnRequest(ProjectWindows& windows, PrintPanel& panel) {
    QObject::connect(&windows, &ProjectWindows::printRequested, &windows,
                     [&](QWidget* window) { printWindow(window, windows, panel); });
}

}  // namespace zorvel
