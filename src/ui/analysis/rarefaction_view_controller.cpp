#include "ui/analysis/rarefaction_view_controller.h"

#include <QAccessible>
#include <QAccessibleEvent>
#include <QBoxLayout>
#include <QCheckBox>
#include <QClipboard>
#include <QEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLabel>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>
#include <QShowEvent>
#include <utility>

#include "interchange/writers.h"
#include "platform/file_names.h"
#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "ui/analysis/image_dialog.h"
#include "ui/analysis/rarefaction_view.h"
#include "ui/kit/file_writing.h"
#include "ui/kit/look.h"
#include "ui/kit/look_style.h"
#include "ui/kit/panels.h"
#include "ui/kit/shown_text.h"
#include "ui/kit/small_widgets.h"

namespace zorvel {

namespace {

constexpr qsizetype longestSubject = 120;  // characters
constexpr int copiedDpi = 144;
constexpr int widestNews = 320;  // pixels

std::optional<ConfidenceLevel> levelNow() {
    return confidenceLevelOf(Preferences().confidence());
}

// A label of plain text that leaves its width to the window.
QLabel* addLabel(QBoxLayout& column, const char* name, const QString& accessibleName,
                 QWidget* parent) {
    auto* label = new WrappedLabel(parent);
    label->setObjectName(name);
    label->setAccessibleName(accessibleName);
    column.addWidget(label);
    return label;
}

}  // namespace

RarefactionViewController::RarefactionViewController(RarefactionKind kind, JobQueue& jobs,
                                                     const Panels& panels, QWidget* parent)
    : QWidget(parent),
      kind_(kind),
      texts_(kind),
      jobs_(jobs),
      panels_(panels),
      rarefactionView_(new RarefactionView(this)) {
    auto* paper = new PlotPaper(rarefactionView_, texts_.sampleSizeTitle(),
                                RarefactionTexts::richnessTitle(), this);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 14, 16, 14);
    column->setSpacing(10);
    column->addLayout(headingRows());
    column->addWidget(paper, 1);
    column->addLayout(readoutRow());
    column->addLayout(buttonRow());
    connect(rarefactionView_, &RarefactionView::preferencesWereFollowed, this,
            &RarefactionViewController::showTexts);
    connect(rarefactionView_, &RarefactionView::markedPointDidChange, this,
            &RarefactionViewController::showReadout);
    connect(rarefactionView_, &RarefactionView::focusDidChange, paper, &PlotPaper::setFocused);
    showTexts();
}

RarefactionViewController::~RarefactionViewController() = default;

QBoxLayout* RarefactionViewController::headingRows() {
    auto* rows = new QVBoxLayout;
    rows->setSpacing(2);
    heading_ = new ElidedLabel(this);
    heading_->setObjectName("rarefactionSubject");
    heading_->setAccessibleName(tr("Subject"));
    saved_ = new ElidedLabel(this);
    saved_->setObjectName("rarefactionSaved");
    saved_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    saved_->setMaximumWidth(widestNews);
    saved_->setForegroundRole(QPalette::PlaceholderText);
    auto* first = new QHBoxLayout;
    first->addWidget(heading_, 1);
    first->addWidget(saved_, 0, Qt::AlignTop);
    rows->addLayout(first);
    heading_->setFont(scaledFont(font(), 1.3, true));
    summary_ = addLabel(*rows, "rarefactionSummary", tr("Curve"), this);
    summary_->setForegroundRole(QPalette::PlaceholderText);
    absence_ = addLabel(*rows, "rarefactionAbsence", tr("Note"), this);
    absence_->setContentsMargins(0, 6, 0, 0);
    return rows;
}

QPushButton* RarefactionViewController::addButton(QBoxLayout& row, const char* name,
                                                  const QString& title, const QKeySequence& keys,
                                                  void (RarefactionViewController::*command)()) {
    auto* button = new QPushButton(title, this);
    button->setObjectName(name);
    button->setToolTip(keys.toString(QKeySequence::NativeText));
    connect(button, &QPushButton::clicked, this, command);
    // Beside the button's mnemonic, which its own shortcut would take the place of.
    connect(new QShortcut(keys, this), &QShortcut::activated, this, command);
    row.addWidget(button);
    return button;
}

QBoxLayout* RarefactionViewController::buttonRow() {
    using Self = RarefactionViewController;
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    addButton(*row, "copyPlotButton", tr("&Copy Plot"), QKeySequence::Copy, &Self::copyPlot);
    addButton(*row, "copyTableButton", tr("Copy &Table"),
              QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C), &Self::copyTable);
    row->addStretch(1);
    addButton(*row, "printPlotButton", tr("P&rint\u2026"), QKeySequence::Print,
              &Self::printRequested);
    addButton(*row, "saveDataButton", tr("Save T&able\u2026"),
              QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), &Self::saveDataTapped);
    saveImageButton_ =
        addButton(*row, "saveImageButton", tr("Save &Image\u2026"),
                  QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_I), &Self::saveImageTapped);
    addButton(*row, "savePlotButton", tr("Save &Plot\u2026"), QKeySequence::Save,
              &Self::savePlotTapped)
        ->setProperty(primaryButtonProperty, true);
    return row;
}

// The line of the marked point's values, and the choice that copies and prints follow.
QBoxLayout* RarefactionViewController::readoutRow() {
    auto* row = new QHBoxLayout;
    row->setSpacing(16);
    readout_ = addLabel(*row, "rarefactionReadout", tr("Values of the marked point"), this);
    row->setStretch(0, 1);
    titlesBox_ = new QCheckBox(tr("Tit&les"), this);
    titlesBox_->setObjectName("plotTitlesBox");
    titlesBox_->setToolTip(
        tr("Copy, print and save as an image with the titles of the axes and the name"));
    connect(titlesBox_, &QCheckBox::clicked, this, [](bool checked) {
        PlotImage image = Preferences().plotImage();
        image.titles = checked;
        Preferences().setPlotImage(image);
    });
    row->addWidget(titlesBox_, 0, Qt::AlignTop);
    return row;
}

void RarefactionViewController::setRarefactionData(std::vector<Rarefaction> curve,
                                                   const QString& subject) {
    rarefactionData_ = std::move(curve);
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
    if (!std::exchange(hasAppeared_, true)) viewWillAppear();
}

void RarefactionViewController::viewWillAppear() {
    if (rarefactionData_) rarefactionView_->setRarefactionData(*rarefactionData_);
    rarefactionView_->setFocus();
    showTexts();
}

void RarefactionViewController::preferencesDidChange() {
    titlesBox_->setChecked(Preferences().plotImage().titles);
    rarefactionView_->preferencesDidChange();
}

void RarefactionViewController::showTexts() {
    const std::span<const Rarefaction> curve = rarefactionData_
                                                   ? std::span<const Rarefaction>(*rarefactionData_)
                                                   : std::span<const Rarefaction>();
    heading_->setText(shortened(subject_, longestSubject));
    heading_->setToolTip(heading_->text());
    heading_->setVisible(!subject_.isEmpty());
    summary_->setText(texts_.summary(curve, levelNow()));
    const QString absence = texts_.absence(curve, levelNow());
    absence_->setText(absence);
    absence_->setVisible(!absence.isEmpty());
    titlesBox_->setChecked(Preferences().plotImage().titles);
    saveImageButton_->setEnabled(isDrawn());
    rarefactionView_->setAccessibleName(tr("Rarefaction curve"));
    showReadout();
}

bool RarefactionViewController::isDrawn() const {
    return rarefactionData_ && rarefactionData_->size() >= kFewestPlotPoints;
}

// The view that has the focus speaks, not the label that stands by.
void RarefactionViewController::showReadout() {
    const int marked = rarefactionView_->markedPoint();
    const bool isMarked = isDrawn() && marked >= 0;
    QString text;
    if (isMarked) {
        text = texts_.readout((*rarefactionData_)[static_cast<std::size_t>(marked)], levelNow());
    } else if (isDrawn()) {
        text = tr("Point at the curve, or press an arrow key, to read out its values.");
    }
    readout_->setForegroundRole(isMarked ? QPalette::WindowText : QPalette::PlaceholderText);
    readout_->setText(text);
    rarefactionView_->setAccessibleDescription(text);
}

PlotDrawing RarefactionViewController::drawing() const {
    RarefactionView* view = rarefactionView_;
    const QString title =
        subject_.isEmpty() ? tr("Rarefaction curve") : tr("Rarefaction curve: %1").arg(subject_);
    return {view->size(), title, [view](QPainter& painter) { view->drawRect(painter); }};
}

PlotDrawing RarefactionViewController::figure() const {
    return figure(Preferences().plotImage().titles);
}

PlotDrawing RarefactionViewController::figure(bool titles) const {
    if (!titles || !isDrawn()) return drawing();
    return titledPlot(drawing(), {shortened(subject_, longestSubject), texts_.sampleSizeTitle(),
                                  RarefactionTexts::richnessTitle()});
}

QString RarefactionViewController::fileNameFor(const QString& what) const {
    return subject_.isEmpty() ? what : asFileName(subject_) + " " + what;
}

QString RarefactionViewController::choosePath(const QString& title, const FileType& type) {
    const QPointer<RarefactionViewController> self(this);
    const QString path =
        panels_.save.chooseFile(window(), title, fileNameFor(tr("rarefaction")), {type});
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
        if (there && self) self->showSaved(tr("Saved to %1").arg(QFileInfo(path).fileName()));
    };
    writeInBackground(jobs_, panels_.alerts, window(), path, failure, produce, tell);
}

void RarefactionViewController::showSaved(const QString& news) {
    saved_->setText(shortened(news, longestSubject));
    saved_->setToolTip(saved_->text());
    saved_->setAccessibleName(saved_->text());
    QAccessibleEvent alert(saved_, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void RarefactionViewController::savePlot() {
    const QString path = choosePath(tr("Save Plot"), {tr("PDF document"), ".pdf"});
    if (path.isEmpty()) return;
    write(path, tr("The plot could not be saved"), [page = pdfOf(drawing())] { return page; });
}

void RarefactionViewController::saveImage() {
    if (!isDrawn()) return;
    auto* dialog = new ImageDialog(
        Preferences().plotImage(), [this](bool titles) { return figure(titles).size; }, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] { saveImageAs(dialog->choice()); });
    dialog->open();
}

void RarefactionViewController::saveImageAs(const PlotImage& image) {
    Preferences().setPlotImage(image);
    showTexts();
    const QString path =
        choosePath(tr("Save Image"), image.svg ? FileType{tr("SVG drawing"), ".svg"}
                                               : FileType{tr("PNG image"), ".png"});
    if (path.isEmpty()) return;
    const QString failure = tr("The image could not be saved");
    if (image.svg) {
        return write(path, failure, [svg = svgOf(figure(), image.widthCm)] { return svg; });
    }
    const QImage pixels = imageOf(figure(), image.widthCm, image.dpi);
    if (pixels.isNull()) {
        return panels_.alerts.warn(
            window(), failure,
            tr("There is not enough memory for it. Choose a smaller width or resolution."));
    }
    write(path, failure, [pixels] { return pngOf(pixels); });
}

void RarefactionViewController::saveData() {
    if (!rarefactionData_) return;
    const QByteArray text = QByteArray::fromStdString(writeRarefactionTable(*rarefactionData_));
    const QString path =
        choosePath(tr("Save Rarefaction Table"), {tr("Comma-separated table"), ".csv"});
    if (path.isEmpty()) return;
    write(path, tr("The table could not be saved"), [text] { return QByteArray(text); });
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
    if (!rarefactionData_) return;
    const QByteArray table = QByteArray::fromStdString(writeRarefactionTable(*rarefactionData_));
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
