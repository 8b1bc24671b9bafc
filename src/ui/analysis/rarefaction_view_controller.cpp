#include "ui/analysis/rarefaction_view_controller.h"

#include <QAccessible>
#include <QEvent>
#include <QShortcut>
#include <QShowEvent>
#include <utility>

#include "interchange/writers.h"
#include "platform/file_names.h"
#include "platform/preferences.h"
#include "ui/analysis/plot_paper.h"
#include "ui/analysis/rarefaction_view.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui_rarefaction_page.h"

namespace zorvel {

namespace {

constexpr qsizetype longestSubject = 120;  // characters

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
      export_(new PlotExport(exportSource(), jobs, panels, *this)) {
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
    connect(export_, &PlotExport::saved, this, &Self::showSaved);
    connect(export_, &PlotExport::imageChosen, this, &Self::showTexts);
    connect(ui_->rarefactionView, &RarefactionView::markDidChange, this, &Self::showReadout);
    connect(ui_->rarefactionView, &RarefactionView::focusDidChange, ui_->plotPaper,
            &PlotPaper::setFocused);
    showTexts();
}

RarefactionViewController::~RarefactionViewController() = default;

PlotExport::Source RarefactionViewController::exportSource() {
    const auto table = [this] {
        return rarefactionData() ? tableOf(*rarefactionData()) : QByteArray();
    };
    return {[this] { return rarefactionView().isDrawable(); },
            [this](bool titles) { return figure(titles); },
            table,
            [table] { return QString::fromUtf8(table()).remove(' ').replace(',', '\t'); },
            [this] {
                const QString name = "rarefaction";
                return subject_.isEmpty() ? name : asFileName(subject_) + ' ' + name;
            },
            "Save Rarefaction Table"};
}

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

PlotDrawing RarefactionViewController::figure(bool titles) const {
    if (!titles || !rarefactionView().isDrawable()) return drawing();
    return titledPlot(drawing(), {shortened(subject_, longestSubject), texts_.sampleSizeTitle(),
                                  RarefactionTexts::richnessTitle()});
}

void RarefactionViewController::showSaved(const QString& news) {
    const QString text = shortened(news, longestSubject);
    ui_->rarefactionSaved->setText(text);
    ui_->rarefactionSaved->setToolTip(text);
    ui_->rarefactionSaved->setAccessibleName(text);
    QAccessibleEvent alert(ui_->rarefactionSaved, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
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
