#include "ui/analysis/plot_page.h"

#include <QAccessible>
#include <QCheckBox>
#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QKeySequence>
#include <QLabel>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>
#include <utility>

#include "platform/file_names.h"
#include "platform/job_queue.h"
#include "ui/analysis/image_dialog.h"
#include "ui/analysis/plot_view.h"
#include "ui/kit/alerts.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {

constexpr int copiedDpi = 144;

}  // namespace

PlotPage::PlotPage(JobQueue& jobs, const Panels& panels, QWidget* parent)
    : QWidget(parent), jobs_(jobs), panels_(panels) {}

void PlotPage::addPlot(const Kind& kind) {
    kind_ = kind;
    view_ = findChild<PlotView*>();
    const struct {
        const char* button;
        QKeySequence keys;
        void (PlotPage::*run)();
    } commands[] = {
        {"copyPlotButton", QKeySequence::Copy, &PlotPage::copyPlot},
        {"copyTableButton", Qt::CTRL | Qt::SHIFT | Qt::Key_C, &PlotPage::copyTable},
        {"printPlotButton", QKeySequence::Print, &PlotPage::printRequested},
        {"saveTableButton", Qt::CTRL | Qt::SHIFT | Qt::Key_S, &PlotPage::saveTable},
        {"saveImageButton", Qt::CTRL | Qt::SHIFT | Qt::Key_I, &PlotPage::saveImage},
        {"savePlotButton", QKeySequence::Save, &PlotPage::savePlot},
    };
    for (const auto& [name, keys, run] : commands) {
        auto* button = findChild<QPushButton*>(name);
        button->setToolTip(keys.toString(QKeySequence::NativeText));
        connect(button, &QPushButton::clicked, this, run);
        // The button's own shortcut would replace its mnemonic.
        connect(new QShortcut(keys, this), &QShortcut::activated, button, &QPushButton::click);
    }
    connect(findChild<QCheckBox*>("plotTitlesBox"), &QCheckBox::clicked, this, [](bool checked) {
        PlotImage image = Preferences().plotImage();
        image.titles = checked;
        Preferences().setPlotImage(image);
    });
    findChild<QLabel*>("plotSubject")->setFont(scaledFont(font(), 1.3));
    findChild<QLabel*>("plotSaved")->setForegroundRole(secondaryText);
    connect(view_, &PlotView::markDidChange, this, &PlotPage::showReadout);
    connect(view_, &PlotView::focusDidChange, findChild<PlotPaper*>(), &PlotPaper::setFocused);
}

std::optional<ConfidenceLevel> PlotPage::levelNow() {
    return confidenceLevelOf(Preferences().confidence());
}

void PlotPage::showPlot() {
    findChild<QCheckBox*>("plotTitlesBox")->setChecked(Preferences().plotImage().titles);
    findChild<QPushButton*>("saveImageButton")->setEnabled(view_->isDrawable());
    showReadout();
}

// The view that has the focus speaks, not the label.
void PlotPage::showReadout() {
    const QString text = readout();
    auto* label = findChild<QLabel*>("plotReadout");
    label->setForegroundRole(view_->hasMark() ? QPalette::WindowText : secondaryText);
    label->setText(text);
    view_->setAccessibleDescription(text);
}

void PlotPage::showSaved(const QString& news) {
    const QString text = shortened(news, longestSubject);
    auto* label = findChild<QLabel*>("plotSaved");
    label->setText(text);
    label->setToolTip(text);
    label->setAccessibleName(text);
    QAccessibleEvent alert(label, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

PlotDrawing PlotPage::drawing() const {
    const QString title = subject_.isEmpty() ? kind_.title : kind_.title + ": " + subject_;
    return {view_->size(), title, [view = view_](QPainter& painter) { view->drawRect(painter); }};
}

PlotDrawing PlotPage::figure() const {
    return figure(Preferences().plotImage().titles);
}

PlotDrawing PlotPage::figure(bool titles) const {
    if (!titles || !view_->isDrawable()) return drawing();
    const auto textOf = [this](const char* label) { return findChild<QLabel*>(label)->text(); };
    return titledPlot(drawing(), {shortened(subject_, longestSubject), textOf("widthAxisTitle"),
                                  textOf("heightAxisTitle")});
}

QString PlotPage::choosePath(const QString& title, const FileType& type) {
    const QPointer<PlotPage> self(this);
    const QString name =
        subject_.isEmpty() ? kind_.fileName : asFileName(subject_) + ' ' + kind_.fileName;
    const QString path = panels_.save.chooseFile(window(), title, name, type);
    return self ? path : QString();
}

// bytes: called in the job.
void PlotPage::write(const QString& path, const QString& failure,
                     std::function<QByteArray()> bytes) {
    const auto produce = [bytes = std::move(bytes)](const ByteSink& sink) {
        const QByteArray all = bytes();
        sink({all.constData(), static_cast<std::size_t>(all.size())});
    };
    const auto tell = [self = QPointer(this), path](bool there) {
        if (there && self) self->showSaved(QString("Saved to %1").arg(QFileInfo(path).fileName()));
    };
    writeInBackground(jobs_, panels_.alerts, window(), path, failure, produce, tell);
}

void PlotPage::savePlot() {
    const QString path = choosePath("Save Plot", {"PDF document", ".pdf"});
    if (path.isEmpty()) return;
    write(path, "The plot could not be saved", [page = pdfOf(drawing())] { return page; });
}

void PlotPage::saveImage() {
    if (!view_->isDrawable()) return;
    askForImage(
        Preferences().plotImage(), [this](bool titles) { return figure(titles).size; }, *this,
        [this](const PlotImage& image) { saveImageAs(image); });
}

void PlotPage::saveImageAs(const PlotImage& image) {
    Preferences().setPlotImage(image);
    showPlot();
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
            window(), failure,
            "There is not enough memory for it. Choose a smaller width or resolution.");
    }
    write(path, failure, [pixels] { return pngOf(pixels); });
}

void PlotPage::saveTable() {
    const QByteArray text = tableText(',').toUtf8();
    if (text.isEmpty()) return;
    const QString path = choosePath("Save " + kind_.table, {"Comma-separated table", ".csv"});
    if (path.isEmpty()) return;
    write(path, "The table could not be saved", [text] { return QByteArray(text); });
}

void PlotPage::copyPlot() {
    const PlotDrawing plot = figure();
    const double width = naturalWidth(plot);
    auto* copied = new QMimeData;
    copied->setImageData(imageOf(plot, width, copiedDpi));
    copied->setData("application/pdf", pdfOf(plot));
    copied->setData("image/svg+xml", svgOf(plot, width));
    QGuiApplication::clipboard()->setMimeData(copied);
}

void PlotPage::copyTable() {
    const QByteArray table = tableText(',').toUtf8();
    if (table.isEmpty()) return;
    auto* copied = new QMimeData;
    copied->setText(tableText('\t'));
    copied->setData("text/csv", table);
    QGuiApplication::clipboard()->setMimeData(copied);
}

}  // namespace zorvel
