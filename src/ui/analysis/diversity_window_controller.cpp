#include "ui/analysis/diversity_window_controller.h"

#include <QAccessible>
#include <QHeaderView>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <cmath>
#include <utility>

#include "base/numbers.h"
#include "platform/file_names.h"
#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "ui/analysis/curves_view.h"
#include "ui/analysis/diversity_tables.h"
#include "ui/analysis/plot_paper.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui_diversity_page.h"

namespace zorvel {

namespace {

constexpr qsizetype longestName = 120;  // characters
constexpr double snap = 0.006;          // of the coverage to the common one

std::optional<ConfidenceLevel> preferredConfidence() {
    return confidenceLevelOf(Preferences().confidence());
}

QString decimals(double value, int digits) {
    return QString::fromStdString(fixedText(value, digits));
}

}  // namespace

DiversityViewController::DiversityViewController(JobQueue& jobs, const Panels& panels,
                                                 QWidget* parent)
    : QWidget(parent),
      ui_(std::make_unique<Ui::DiversityPage>()),
      jobs_(jobs),
      export_(new PlotExport(exportSource(), jobs, panels, *this)),
      coverages_(new CoverageTableModel(this)),
      points_(new CurvePointsModel(this)) {
    ui_->setupUi(this);
    ui_->diversitySubject->setFont(scaledFont(font(), 1.3, true));
    ui_->diversitySaved->setForegroundRole(secondaryText);
    ui_->coverageNote->setForegroundRole(secondaryText);
    ui_->acrossBox->addItems({"Specimens", "Coverage", "Order q"});
    ui_->acrossBox->setCurrentIndex(static_cast<int>(DiversityAcross::coverage));
    ui_->diversityTable->setModel(coverages_);
    ui_->diversityTable->horizontalHeader()->setStretchLastSection(true);
    addCommand(*ui_->copyPlotButton, QKeySequence::Copy, [this] { export_->copyPlot(); });
    addCommand(*ui_->copyTableButton, Qt::CTRL | Qt::SHIFT | Qt::Key_C,
               [this] { export_->copyTable(); });
    addCommand(*ui_->printPlotButton, QKeySequence::Print, [this] { emit printRequested(); });
    addCommand(*ui_->saveTableButton, Qt::CTRL | Qt::SHIFT | Qt::Key_S,
               [this] { export_->saveTable(); });
    addCommand(*ui_->saveImageButton, Qt::CTRL | Qt::SHIFT | Qt::Key_I,
               [this] { export_->saveImage(); });
    addCommand(*ui_->savePlotButton, QKeySequence::Save, [this] { export_->savePlot(); });
    connect(ui_->plotTitlesBox, &QCheckBox::clicked, this, [](bool checked) {
        PlotImage image = Preferences().plotImage();
        image.titles = checked;
        Preferences().setPlotImage(image);
    });
    connect(export_, &PlotExport::saved, this, &DiversityViewController::showSaved);
    connect(export_, &PlotExport::imageChosen, this, &DiversityViewController::showCurves);
    connect(ui_->ofBox, &QComboBox::currentIndexChanged, this, &DiversityViewController::compute);
    connect(ui_->orderBox, &QComboBox::currentIndexChanged, this,
            &DiversityViewController::showCurves);
    connect(ui_->acrossBox, &QComboBox::currentIndexChanged, this,
            &DiversityViewController::showCurves);
    connect(ui_->tableBox, &QComboBox::currentIndexChanged, this, [this](int shown) {
        ui_->diversityTable->setModel(shown == 0 ? static_cast<QAbstractItemModel*>(coverages_)
                                                 : points_);
        ui_->diversityTable->setAccessibleName(ui_->tableBox->currentText());
        ui_->diversityTable->resizeColumnsToContents();
    });
    connect(ui_->coverageField, &QDoubleSpinBox::valueChanged, this, [this](double coverage) {
        followsCommon_ = false;
        setCoverage(coverage);
    });
    connect(ui_->commonCoverageButton, &QPushButton::clicked, this, [this] {
        followsCommon_ = true;
        if (common_) setCoverage(common_->coverage);
    });
    connect(ui_->curvesView, &CurvesView::markDidChange, this,
            &DiversityViewController::showReadout);
    connect(ui_->curvesView, &CurvesView::lineDidMove, this, [this](double x) {
        followsCommon_ = common_ && std::fabs(x - common_->coverage) < snap;
        setCoverage(followsCommon_ ? common_->coverage : x);
    });
    connect(ui_->curvesView, &CurvesView::focusDidChange, ui_->plotPaper, &PlotPaper::setFocused);
    ui_->diversitySubject->setText("Reading the censuses…");
    showCurves();
    ui_->progressIndicator->startAnimation();
}

DiversityViewController::~DiversityViewController() {
    stopErrors_.request_stop();
    stopTableErrors_.request_stop();
}

PlotExport::Source DiversityViewController::exportSource() {
    return {[this] { return ui_->curvesView->isDrawable(); },
            [this](bool titles) { return drawing(titles); },
            [this] { return curves_ ? tableText(',').toUtf8() : QByteArray(); },
            [this] { return tableText('\t'); },
            [this] {
                const QString name = "diversity";
                return subject().isEmpty() ? name : asFileName(subject()) + ' ' + name;
            },
            "Save Diversity Table"};
}

void DiversityViewController::addCommand(QPushButton& button, const QKeySequence& keys,
                                         const std::function<void()>& command) {
    button.setToolTip(keys.toString(QKeySequence::NativeText));
    connect(&button, &QPushButton::clicked, this, command);
    // The button's own shortcut would replace its mnemonic.
    connect(new QShortcut(keys, this), &QShortcut::activated, this, command);
}

void DiversityViewController::setInputs(DiversityInputs inputs) {
    inputs_ = std::move(inputs);
    const QString name = shortened(inputs_.project, longestName);
    ui_->diversitySubject->setText(name.isEmpty() ? "Diversity at equal coverage" : name);
    ui_->diversitySubject->setToolTip(name);
    const QSignalBlocker quiet(ui_->ofBox);
    ui_->ofBox->addItem("Selected censuses", static_cast<int>(Of::selected));
    if (inputs_.pooled) ui_->ofBox->addItem("All pooled", static_cast<int>(Of::pooled));
    if (inputs_.incidence) {
        ui_->ofBox->addItem("Over the censuses", static_cast<int>(Of::incidence));
    }
    compute();
}

std::size_t DiversityViewController::order() const {
    return static_cast<std::size_t>(ui_->orderBox->currentIndex());
}

DiversityAcross DiversityViewController::across() const {
    return static_cast<DiversityAcross>(ui_->acrossBox->currentIndex());
}

bool DiversityViewController::isIncidence() const {
    return ui_->ofBox->currentData().toInt() == static_cast<int>(Of::incidence) &&
           inputs_.incidence;
}

std::vector<DiversitySubject> DiversityViewController::subjects() const {
    const auto of = static_cast<Of>(ui_->ofBox->currentData().toInt());
    if (of == Of::pooled && inputs_.pooled) return {*inputs_.pooled};
    if (of == Of::incidence && inputs_.incidence) return {*inputs_.incidence};
    return inputs_.selected;
}

// --- Computing: curves, their errors, and the errors of the table ---

void DiversityViewController::updateSpinner() {
    if (running_ > 0) {
        ui_->progressIndicator->startAnimation();
    } else {
        ui_->progressIndicator->stopAnimation();
    }
}

void DiversityViewController::compute() {
    stopErrors_.request_stop();
    stopTableErrors_.request_stop();
    const std::size_t generation = ++generation_;
    ++running_;
    updateSpinner();
    ui_->acrossBox->setItemText(0, isIncidence() ? "Censuses" : "Specimens");
    jobs_.start(
        this,
        [all = subjects()] {
            auto curves = std::make_shared<std::vector<DiversityCurve>>();
            for (const DiversitySubject& subject : all) curves->push_back(diversityCurve(subject));
            return std::shared_ptr<const std::vector<DiversityCurve>>(std::move(curves));
        },
        [this, generation](std::shared_ptr<const std::vector<DiversityCurve>> curves) {
            --running_;
            updateSpinner();
            if (generation != generation_) return;
            curves_ = std::move(curves);
            drawn_.clear();
            for (const DiversityCurve& curve : *curves_) {
                if (!curve.points.empty() && drawn_.size() < mostCurves) drawn_.push_back(curve);
            }
            common_ = commonCoverage(*curves_);
            ui_->commonCoverageButton->setEnabled(common_.has_value());
            showCurves();
            if (common_ && followsCommon_) {
                setCoverage(common_->coverage);
            } else {
                setCoverage(coverage_);
            }
            ui_->diversityTable->resizeColumnsToContents();
            computeErrors();
        });
}

void DiversityViewController::computeErrors() {
    stopErrors_ = std::stop_source();
    ++running_;
    updateSpinner();
    jobs_.start(
        this,
        [curves = drawn_, stop = stopErrors_.get_token()]() mutable {
            for (DiversityCurve& curve : curves) curve.errors = errorsOf(curve, stop);
            return std::move(curves);
        },
        [this, generation = generation_](std::vector<DiversityCurve> curves) {
            --running_;
            updateSpinner();
            if (generation != generation_) return;
            drawn_ = std::move(curves);
            showCurves();
        });
}

void DiversityViewController::computeTableErrors() {
    stopTableErrors_.request_stop();
    stopTableErrors_ = std::stop_source();
    const std::stop_token stop = stopTableErrors_.get_token();
    ++running_;
    updateSpinner();
    jobs_.start(
        this,
        [curves = curves_, coverage = coverage_, stop] {
            std::vector<CoverageRow> rows;
            if (!stop.stop_requested()) rows = coverageRows(*curves, coverage);
            for (std::size_t i = 0; i < rows.size() && !stop.stop_requested(); ++i) {
                if (rows[i].at) rows[i].errors = errorsAt((*curves)[i], coverage, stop);
            }
            return rows;
        },
        [this, stop](std::vector<CoverageRow> rows) {
            --running_;
            updateSpinner();
            if (stop.stop_requested()) return;  // another coverage, or other curves
            coverages_->setRows(std::move(rows), preferredConfidence());
            ui_->diversityTable->resizeColumnsToContents();
        });
}

// --- Showing ---

void DiversityViewController::preferencesDidChange() {
    showCurves();
    coverages_->setRows(coverages_->rows(), preferredConfidence());
}

QString DiversityViewController::widthTitle() const {
    switch (across()) {
        case DiversityAcross::sizes:
            return isIncidence() ? "Number of censuses" : "Number of specimens";
        case DiversityAcross::coverage:
            return "Sample coverage";
        default:
            return "Order q";
    }
}

QString DiversityViewController::heightTitle() const {
    if (across() == DiversityAcross::orders) return "Diversity of order q";
    return ui_->orderBox->currentText();
}

void DiversityViewController::showCurves() {
    CurvesPlot plot;
    plot.curves = plotCurves(drawn_, order(), across(), preferredConfidence());
    if (across() == DiversityAcross::coverage && !plot.curves.empty()) plot.line = coverage_;
    ui_->curvesView->setPlot(plot);
    ui_->orderBox->setEnabled(across() != DiversityAcross::orders);
    ui_->widthAxisTitle->setText(widthTitle());
    ui_->heightAxisTitle->setText(heightTitle());
    ui_->plotTitlesBox->setChecked(Preferences().plotImage().titles);
    ui_->saveImageButton->setEnabled(ui_->curvesView->isDrawable());
    points_->setCurves(plot.curves, widthTitle(), heightTitle());
    showReadout();
}

QString DiversityViewController::placeText(double x) const {
    switch (across()) {
        case DiversityAcross::sizes:
            return QString("%1 %2")
                .arg(QLocale().toString(x, 'f', 0))
                .arg(isIncidence() ? "censuses" : "specimens");
        case DiversityAcross::coverage:
            return "coverage " + decimals(x, 3);
        default:
            return "order " + decimals(x, 1);
    }
}

// The view that has the focus speaks, not the label.
void DiversityViewController::showReadout() {
    const CurvesView& view = *ui_->curvesView;
    const auto& mark = view.mark();
    QString text;
    if (mark) {
        const PlotCurve& curve = view.plot().curves[static_cast<std::size_t>(mark->curve)];
        const std::optional<double> known = valueAt(curve.known, mark->x);
        const std::optional<double> value = known ? known : valueAt(curve.predicted, mark->x);
        text = QString("%1: %2 at %3")
                   .arg(shortened(oneLine(curve.label), longestName),
                        value ? decimals(*value, 2) : "-", placeText(mark->x));
        const std::optional<double> lower = valueAt(curve.lower, mark->x);
        const std::optional<double> upper = valueAt(curve.upper, mark->x);
        if (lower && upper) {
            text += QString(", %1 limits %2 to %3")
                        .arg(confidenceLevelText(
                                 preferredConfidence().value_or(ConfidenceLevel::percent95)),
                             decimals(*lower, 2), decimals(*upper, 2));
        }
        if (!known) text += across() == DiversityAcross::orders ? ", estimated" : ", predicted";
    } else if (view.isDrawable()) {
        text =
            "Solid: from the sample itself. Dashed: predicted, up to twice the sample. Point "
            "at a curve, or press an arrow key, to read out its values.";
        if (across() == DiversityAcross::orders) {
            text =
                "Solid: observed. Dashed: estimated for the whole community. Point at a curve, "
                "or press an arrow key, to read out its values.";
        }
        if (curves_ && curves_->size() > drawn_.size()) {
            text +=
                QString(" %1 of %2 censuses are drawn.").arg(drawn_.size()).arg(curves_->size());
        }
    } else if (curves_) {
        text = isIncidence() ? "Nothing can be drawn: a curve needs at least two censuses."
                             : "Nothing can be drawn: a curve needs at least two specimens.";
    }
    ui_->diversityReadout->setForegroundRole(mark ? QPalette::WindowText : secondaryText);
    ui_->diversityReadout->setText(text);
    ui_->curvesView->setAccessibleDescription(text);
}

void DiversityViewController::setCoverage(double coverage) {
    coverage_ = coverage;
    const QSignalBlocker quiet(ui_->coverageField);
    ui_->coverageField->setValue(coverage);
    QString note;
    if (common_ && followsCommon_) {
        const DiversityCurve& limit = (*curves_)[common_->limitedBy];
        note = QString("as far as all reach: %1, limited by %2 (%3 %4)")
                   .arg(decimals(common_->coverage, 3), shortened(oneLine(limit.name), 60))
                   .arg(QLocale().toString(limit.estimator.sample().size, 'f', 0))
                   .arg(isIncidence() ? "censuses" : "specimens");
    }
    ui_->coverageNote->setText(note);
    ui_->coverageNote->setToolTip(note);
    if (!curves_) return;
    showTable();
    CurvesPlot plot = ui_->curvesView->plot();
    if (plot.line) plot.line = coverage_;
    ui_->curvesView->setPlot(std::move(plot));
}

// The values at once, their limits when they are there.
void DiversityViewController::showTable() {
    coverages_->setRows(coverageRows(*curves_, coverage_), preferredConfidence());
    computeTableErrors();
}

void DiversityViewController::showSaved(const QString& news) {
    const QString text = shortened(news, longestName);
    ui_->diversitySaved->setText(text);
    ui_->diversitySaved->setToolTip(text);
    ui_->diversitySaved->setAccessibleName(text);
    QAccessibleEvent alert(ui_->diversitySaved, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

PlotDrawing DiversityViewController::drawing(bool titles) const {
    const CurvesView* view = ui_->curvesView;
    const QString title = subject().isEmpty() ? "Diversity at equal coverage"
                                              : "Diversity at equal coverage: " + subject();
    PlotDrawing plot{view->size(), title, [view](QPainter& painter) { view->draw(painter); }};
    if (!titles || !view->isDrawable()) return plot;
    return titledPlot(plot, {shortened(subject(), longestName), widthTitle(), heightTitle()});
}

QString DiversityViewController::tableText(char separator) const {
    if (ui_->tableBox->currentIndex() == 1) return points_->text(separator);
    return coverageTable(coverages_->rows(), separator);
}

DiversityWindowController::DiversityWindowController(JobQueue& jobs, const Panels& panels)
    : PlacedWindow(140, 110), viewController_(new DiversityViewController(jobs, panels, this)) {
    setObjectName("diversityWindow");
    setCentralWidget(viewController_);
    setWindowTitle("Diversity at Equal Coverage");
    resizeToFit({900, 720});
}

}  // namespace zorvel
