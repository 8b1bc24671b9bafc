#include "ui/analysis/rarefaction_view_controller.h"

#include <QAccessible>
#include <QClipboard>
#include <QEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>
#include <QPointer>
#include <QShortcut>
#include <QShowEvent>
#include <utility>

#include "interchange/writers.h"
#include "platform/file_names.h"
#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "ui/analysis/image_dialog.h"
#include "ui/analysis/rarefaction_view.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui_rarefaction_page.h"

namespace zorvel {

namespace {

constexpr qsizetype longestSubject = 120;  // characters
constexpr int copiedDpi = 144;

std::optional<ConfidenceLevel> levelNow() {
    return confidenceLevelOf(Preferences().confidence());
}

QByteArray tableOf(const std::vector<Rarefaction>& curve) {
    return QByteArray::fromStdString(writeRarefactionTable(curve));
}

}  // namespace

RarefactionViewController::RarefactionViewController(RarefactionKind kind, JobQueue& jobs,
                                                     const Panels& panels, QWidget* parent)
    : QWidget(parent),
      ui_(std::make_unique<Ui::RarefactionPage>()),
      texts_(kind),
      jobs_(jobs),
      panels_(panels) {
    using Self = RarefactionViewController;
    ui_->setupUi(this);
    ui_->rarefactionSubject->setFont(scaledFont(font(), 1.3, true));
    ui_->rarefactionSaved->setForegroundRole(secondaryText);
    ui_->rarefactionSummary->setForegroundRole(secondaryText);
    ui_->rarefactionAbsence->setContentsMargins(0, 6, 0, 0);
    ui_->sampleSizeAxisTitle->setText(texts_.sampleSizeTitle());
    ui_->richnessAxisTitle->setText(RarefactionTexts::richnessTitle());
    addCommand(*ui_->copyPlotButton, QKeySequence::Copy, &Self::copyPlot);
    addCommand(*ui_->copyTableButton, Qt::CTRL | Qt::SHIFT | Qt::Key_C, &Self::copyTable);
    addCommand(*ui_->printPlotButton, QKeySequence::Print, &Self::printRequested);
    addCommand(*ui_->saveDataButton, Qt::CTRL | Qt::SHIFT | Qt::Key_S, &Self::saveDataTapped);
    addCommand(*ui_->saveImageButton, Qt::CTRL | Qt::SHIFT | Qt::Key_I, &Self::saveImage);
    addCommand(*ui_->savePlotButton, QKeySequence::Save, &Self::savePlotTapped);
    connect(ui_->plotTitlesBox, &QCheckBox::clicked, this, [](bool checked) {
        PlotImage image = Preferences().plotImage();
        image.titles = checked;
        Preferences().setPlotImage(image);
    });
    connect(ui_->rarefactionView, &RarefactionView::markedPointDidChange, this, &Self::showReadout);
    connect(ui_->rarefactionView, &RarefactionView::focusDidChange, ui_->plotPaper,
            &PlotPaper::setFocused);
    showTexts();
}

RarefactionViewController::~RarefactionViewController() = default;

void RarefactionViewController::addCommand(QPushButton& button, const QKeySequence& keys,
                                           void (RarefactionViewController::*command)()) {
    button.setToolTip(keys.toString(QKeySequence::NativeText));
    connect(&button, &QPushButton::clicked, this, command);
    // The button's own shortcut would replace its mnemonic.
    connect(new QShortcut(keys, this), &QShortcut::activated, this, command);
}

RarefactionView& RarefactionViewController::rarefactionView() const {
    return *ui_->rarefactionView;
}

const std::optional<std::vector<Rarefaction>>& RarefactionViewController::rarefactionData() const {
    return rarefactionView().rarefactionData();
}

void RarefactionViewController::setRarefactionData(std::vector<Rarefaction> curve,
                                                   const QString& subject) {
    rarefactionView().setRarefactionData(std::move(curve));
    subject_ = subject;
    showTexts();
}

bool RarefactionViewController::event(QEvent* event) {
    // A preference may have been changed in another window, or by another process.
    if (event->type() == QEvent::WindowActivate) preferencesDidChange();
    return QWidget::event(event);
}

void RarefactionViewController::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!event->spontaneous()) rarefactionView().setFocus();
}

void RarefactionViewController::preferencesDidChange() {
    rarefactionView().update();
    showTexts();
}

void RarefactionViewController::showTexts() {
    std::span<const Rarefaction> curve;
    if (rarefactionData()) curve = *rarefactionData();
    ui_->rarefactionSubject->setText(shortened(subject_, longestSubject));
    ui_->rarefactionSubject->setToolTip(ui_->rarefactionSubject->text());
    ui_->rarefactionSubject->setVisible(!subject_.isEmpty());
    ui_->rarefactionSummary->setText(texts_.summary(curve, levelNow()));
    const QString absence = texts_.absence(curve, levelNow());
    ui_->rarefactionAbsence->setText(absence);
    ui_->rarefactionAbsence->setVisible(!absence.isEmpty());
    ui_->plotTitlesBox->setChecked(Preferences().plotImage().titles);
    ui_->saveImageButton->setEnabled(rarefactionView().isDrawable());
    showReadout();
}

// The view that has the focus speaks, not the label.
void RarefactionViewController::showReadout() {
    const int marked = rarefactionView().markedPoint();
    const bool isDrawn = rarefactionView().isDrawable();
    const bool isMarked = isDrawn && marked >= 0;
    QString text;
    if (isMarked) {
        text = texts_.readout((*rarefactionData())[static_cast<std::size_t>(marked)], levelNow());
    } else if (isDrawn) {
        text = "Point at the curve, or press an arrow key, to read out its values.";
    }
    ui_->rarefactionReadout->setForegroundRole(isMarked ? QPalette::WindowText : secondaryText);
    ui_->rarefactionReadout->setText(text);
    rarefactionView().setAccessibleDescription(text);
}

PlotDrawing RarefactionViewController::drawing() const {
    RarefactionView* view = ui_->rarefactionView;
    const QString title =
        subject_.isEmpty() ? "Rarefaction curve" : QString("Rarefaction curve: %1").arg(subject_);
    return {view->size(), title, [view](QPainter& painter) { view->drawRect(painter); }};
}

PlotDrawing RarefactionViewController::figure() const {
    return figure(Preferences().plotImage().titles);
}

PlotDrawing RarefactionViewController::figure(bool titles) const {
    if (!titles || !rarefactionView().isDrawable()) return drawing();
    return titledPlot(drawing(), {shortened(subject_, longestSubject), texts_.sampleSizeTitle(),
                                  RarefactionTexts::richnessTitle()});
}

QString RarefactionViewController::choosePath(const QString& title, const FileType& type) {
    const QPointer<RarefactionViewController> self(this);
    QString name = "rarefaction";
    if (!subject_.isEmpty()) name.prepend(asFileName(subject_) + ' ');
    const QString path = panels_.save.chooseFile(window(), title, name, {type});
    return self ? path : QString();
}

// bytes: called in the job.
void RarefactionViewController::write(const QString& path, const QString& failure,
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

void RarefactionViewController::showSaved(const QString& news) {
    const QString text = shortened(news, longestSubject);
    ui_->rarefactionSaved->setText(text);
    ui_->rarefactionSaved->setToolTip(text);
    ui_->rarefactionSaved->setAccessibleName(text);
    QAccessibleEvent alert(ui_->rarefactionSaved, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void RarefactionViewController::savePlot() {
    const QString path = choosePath("Save Plot", {"PDF document", ".pdf"});
    if (path.isEmpty()) return;
    write(path, "The plot could not be saved", [page = pdfOf(drawing())] { return page; });
}

void RarefactionViewController::saveImage() {
    if (!rarefactionView().isDrawable()) return;
    auto* dialog = new ImageDialog(
        Preferences().plotImage(), [this](bool titles) { return figure(titles).size; }, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] { saveImageAs(dialog->choice()); });
    dialog->open();
}

void RarefactionViewController::saveImageAs(const PlotImage& image) {
    Preferences().setPlotImage(image);
    showTexts();
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

void RarefactionViewController::saveData() {
    if (!rarefactionData()) return;
    const QByteArray text = tableOf(*rarefactionData());
    const QString path = choosePath("Save Rarefaction Table", {"Comma-separated table", ".csv"});
    if (path.isEmpty()) return;
    write(path, "The table could not be saved", [text] { return QByteArray(text); });
}

void RarefactionViewController::copyPlot() {
    const PlotDrawing plot = figure();
    const double width = naturalWidth(plot);
    auto* copied = new QMimeData;
    copied->setImageData(imageOf(plot, width, copiedDpi));
    copied->setData("application/pdf", pdfOf(plot));
    copied->setData("image/svg+xml", svgOf(plot, width));
    QGuiApplication::clipboard()->setMimeData(copied);
}

void RarefactionViewController::copyTable() {
    if (!rarefactionData()) return;
    const QByteArray table = tableOf(*rarefactionData());
    QString cells = QString::fromUtf8(table);
    cells.remove(' ').replace(',', '\t');
    auto* copied = new QMimeData;
    copied->setText(cells);
    copied->setData("text/csv", table);
    QGuiApplication::clipboard()->setMimeData(copied);
}

RarefactionWindowController::RarefactionWindowController(RarefactionKind kind, JobQueue& jobs,
                                                         const Panels& panels)
    : PlacedWindow(120, 120),
      viewController_(new RarefactionViewController(kind, jobs, panels, this)) {
    setObjectName("rarefactionWindow");
    setCentralWidget(viewController_);
    resizeToFit({720, 560});
}

}  // namespace zorvel
