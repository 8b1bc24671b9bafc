#include "ui/analysis/diversity_window_controller.h"

#include <QHeaderView>
#include <QLocale>
#include <QSignalBlocker>
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "ui/analysis/coverage_computation.h"
#include "ui/analysis/curves_view.h"
#include "ui/analysis/diversity_readout.h"
#include "ui/analysis/diversity_tables.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui_diversity_page.h"

namespace zorvel {

namespace {

constexpr double stepsOfCoverage = 10000;  // as the field distinguishes

}  // namespace

DiversityViewController::DiversityViewController(JobQueue& jobs, const Panels& panels,
                                                 const DiversityChoice& choice, QWidget* parent)
    : PlotPage(jobs, panels, parent),
      ui_(std::make_unique<Ui::DiversityPage>()),
      jobs_(jobs),
      choice_(choice),
      coverages_(new CoverageTableModel(this)),
      points_(new CurvePointsModel(this)),
      computation_(new CoverageComputation(jobs, this)) {
    ui_->setupUi(this);
    addPlot({"Diversity at equal coverage", "diversity", "Diversity Table"});
    ui_->coverageNote->setForegroundRole(secondaryText);
    ui_->diversityTable->setModel(coverages_);
    // Only what is in sight: to look through a thousand rows takes too long.
    ui_->diversityTable->horizontalHeader()->setResizeContentsPrecision(0);
    ui_->diversityTable->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 12);
    // The plot keeps its size when the text of a point takes the place of the longer hint.
    ui_->plotReadout->setMinimumHeight(2 * fontMetrics().lineSpacing());
    coverages_->setLevel(levelNow());
    addChoices();
    addExplanations();
    ui_->progressIndicator->startAnimation();
    ui_->curvesView->setFocus();
    showCurves();
}

DiversityViewController::~DiversityViewController() {
    stop_.request_stop();
}

void DiversityViewController::addChoices() {
    using Self = DiversityViewController;
    const DiversityPlot plot = Preferences().diversityPlot();
    ui_->coverageField->setLocale(QLocale::c());  // as all numbers of the window are written
    ui_->acrossBox->setCurrentIndex(plot.across);
    ui_->orderBox->setCurrentIndex(plot.order);
    connect(ui_->ofBox, &QComboBox::currentIndexChanged, this, [this] {
        choose({static_cast<std::size_t>(ui_->ofBox->currentIndex()), choice_.coverage});
        compute();
    });
    for (const QComboBox* box : {ui_->orderBox, ui_->acrossBox}) {
        connect(box, &QComboBox::currentIndexChanged, this, [this, box] {
            Preferences().setDiversityPlot(
                {ui_->orderBox->currentIndex(), ui_->acrossBox->currentIndex()});
            if (box == ui_->acrossBox) ui_->curvesView->setMark(std::nullopt);
            showCurves();
        });
    }
    connect(ui_->tableBox, &QComboBox::currentIndexChanged, this, [this](int shown) {
        ui_->diversityTable->setModel(shown == 0 ? static_cast<QAbstractItemModel*>(coverages_)
                                                 : points_);
        ui_->diversityTable->setAccessibleName(ui_->tableBox->currentText());
        hideEmptyRemarks();
        fitColumns(true);
        showRunning();
    });
    connect(ui_->coverageField, &QDoubleSpinBox::valueChanged, this, [this](double coverage) {
        choose({choice_.group, coverage});
        showCoverage();
    });
    connect(ui_->commonCoverageButton, &QPushButton::clicked, this, [this] {
        choose({choice_.group, std::nullopt});
        showCoverage();
    });
    connect(ui_->curvesView, &CurvesView::lineDidMove, this, [this](double x) {
        std::optional<double> coverage = std::round(x * stepsOfCoverage) / stepsOfCoverage;
        if (common_ && x == common_->coverage) coverage.reset();
        choose({choice_.group, coverage});
        showCoverage();
    });
    connect(computation_, &CoverageComputation::rowsDidArrive, this,
            [this](const std::vector<CoverageRow>& rows) {
                const bool areFirst = coverages_->rows().empty();
                coverages_->setRows(rows);
                hideEmptyRemarks();
                if (areFirst) fitColumns(true);
            });
    connect(computation_, &CoverageComputation::errorsDidArrive, this,
            [this](std::size_t first, const CoverageComputation::Errors& errors) {
                coverages_->setErrors(first, errors);
                if (first == 0) fitColumns(false);
            });
    connect(computation_, &CoverageComputation::runningDidChange, this, &Self::showRunning);
}

void DiversityViewController::setInputs(DiversityInputs inputs) {
    setSubject(inputs.project);
    inputs_ = std::make_shared<const DiversityInputs>(std::move(inputs));
    const QString name = shortened(subject(), longestSubject);
    ui_->plotSubject->setText(name.isEmpty() ? "Diversity at equal coverage" : name);
    ui_->plotSubject->setToolTip(name);
    const QSignalBlocker quiet(ui_->ofBox);
    for (const DiversityInputs::Group& group : inputs_->groups) ui_->ofBox->addItem(group.title);
    if (choice_.group >= inputs_->groups.size()) choice_.group = 0;
    ui_->ofBox->setCurrentIndex(static_cast<int>(choice_.group));
    compute();
}

void DiversityViewController::choose(const DiversityChoice& choice) {
    choice_ = choice;
    emit choiceDidChange(choice_);
}

// The kind is that of the curves that are shown, while others may be on their way.
DiversityView DiversityViewController::view() const {
    DiversityView view{static_cast<std::size_t>(ui_->orderBox->currentIndex()),
                       static_cast<DiversityAcross>(ui_->acrossBox->currentIndex())};
    if (curves_ && !curves_->empty()) view.kind = curves_->front().estimator.sample().kind;
    return view;
}

// --- Computing: curves, and their errors ---

void DiversityViewController::compute() {
    stop_.request_stop();
    stop_ = std::stop_source();
    ++running_;
    showRunning();
    jobs_.start(
        this,
        [inputs = inputs_, group = choice_.group] {
            auto curves = std::make_shared<std::vector<DiversityCurve>>();
            for (const DiversitySubject& subject : inputs->groups[group].subjects) {
                curves->push_back(diversityCurve(subject));
            }
            return DiversityCurves(std::move(curves));
        },
        [this, stop = stop_.get_token()](DiversityCurves curves) {
            --running_;
            if (!stop.stop_requested()) takeCurves(std::move(curves));
            showRunning();
        });
}

void DiversityViewController::takeCurves(DiversityCurves curves) {
    curves_ = std::move(curves);
    drawn_.clear();
    for (const DiversityCurve& curve : *curves_) {
        if (!curve.points.empty() && drawn_.size() < mostCurves) drawn_.push_back(curve);
    }
    common_ = commonCoverage(*curves_);
    ui_->commonCoverageButton->setEnabled(common_.has_value());
    ui_->acrossBox->setItemText(0, view().kind == SampleKind::incidence ? "Censuses" : "Specimens");
    coverages_->setRows({});
    showCurves();
    showCoverage();
    computeErrors();
}

void DiversityViewController::computeErrors() {
    ++running_;
    jobs_.start(
        this,
        [curves = drawn_, stop = stop_.get_token()]() mutable {
            for (DiversityCurve& curve : curves) curve.errors = errorsOf(curve, stop);
            return std::move(curves);
        },
        [this, stop = stop_.get_token()](std::vector<DiversityCurve> curves) {
            --running_;
            if (!stop.stop_requested()) {
                drawn_ = std::move(curves);
                showCurves();
            }
            showRunning();
        });
}

// --- Showing ---

void DiversityViewController::preferencesDidChange() {
    showCurves();
    coverages_->setLevel(levelNow());
}

// A table leaves the window only with its limits.
void DiversityViewController::showRunning() {
    const bool isRunning = running_ > 0 || computation_->isRunning();
    isRunning ? ui_->progressIndicator->startAnimation() : ui_->progressIndicator->stopAnimation();
    const bool isWhole = curves_ && (ui_->tableBox->currentIndex() == 0 ? !computation_->isRunning()
                                                                        : running_ == 0);
    ui_->copyTableButton->setEnabled(isWhole);
    ui_->saveTableButton->setEnabled(isWhole);
}

// The column takes room only where a row has a remark.
void DiversityViewController::hideEmptyRemarks() {
    const std::vector<CoverageRow>& rows = coverages_->rows();
    const bool any = std::any_of(rows.begin(), rows.end(),
                                 [](const CoverageRow& row) { return !row.remark.isEmpty(); });
    ui_->diversityTable->setColumnHidden(
        CoverageTableModel::remarkColumn,
        ui_->diversityTable->model() == coverages_ && !rows.empty() && !any);
}

void DiversityViewController::fitColumns(bool mayShrink) {
    QTableView& table = *ui_->diversityTable;
    if (mayShrink) return table.resizeColumnsToContents();
    const QAbstractItemView& hints = table;
    for (int column = 0; column + 1 < table.model()->columnCount(); ++column) {
        const int wanted = hints.sizeHintForColumn(column);
        if (wanted > table.columnWidth(column)) table.setColumnWidth(column, wanted);
    }
}

void DiversityViewController::showCurves() {
    const DiversityView shown = view();
    CurvesPlot plot;
    plot.curves = plotCurves(drawn_, shown, levelNow());
    if (shown.across == DiversityAcross::coverage && !plot.curves.empty()) plot.line = coverage();
    if (common_) plot.rest = common_->coverage;
    points_->setCurves(plot.curves, shown, levelNow());
    ui_->curvesView->setPlot(std::move(plot));
    ui_->orderBox->setEnabled(shown.across != DiversityAcross::orders);
    ui_->widthAxisTitle->setText(widthTitle(shown));
    ui_->heightAxisTitle->setText(heightTitle(shown));
    showPlot();
}

QString DiversityViewController::readout() const {
    const CurvesView& plot = *ui_->curvesView;
    if (const auto& mark = plot.mark()) {
        return readoutText(plot.plot().curves[static_cast<std::size_t>(mark->curve)], mark->x,
                           view(), levelNow().value_or(ConfidenceLevel::percent95));
    }
    if (!curves_) return {};
    return plotHint(view(), plot.isDrawable() ? drawn_.size() : 0, curves_->size());
}

// The coverage that is chosen, or as far as all reach.
double DiversityViewController::coverage() const {
    return choice_.coverage.value_or(common_ ? common_->coverage : 0);
}

// The table follows in the background.
void DiversityViewController::showCoverage() {
    if (!curves_) return;
    const QSignalBlocker quiet(ui_->coverageField);
    ui_->coverageField->setValue(coverage());
    QString note;
    if (common_ && !choice_.coverage) {
        const DiversityCurve& limit = (*curves_)[common_->limitedBy];
        const FrequencyCounts& sample = limit.estimator.sample();
        note =
            QString("limited by %1 (%2)")
                .arg(shortened(oneLine(limit.name), 60), sampleSizeText(sample.size, sample.kind));
    }
    ui_->coverageNote->setText(note);
    ui_->coverageNote->setToolTip(note.isEmpty() ? note : "As far as all reach, " + note);
    CurvesPlot plot = ui_->curvesView->plot();
    if (plot.line) plot.line = coverage();
    ui_->curvesView->setPlot(std::move(plot));
    computation_->start(curves_, coverage());
}

QString DiversityViewController::tableText(char separator) const {
    if (!curves_) return {};
    if (ui_->tableBox->currentIndex() == 1) return points_->text(separator);
    return coverageTable(coverages_->rows(), separator);
}

DiversityWindowController::DiversityWindowController(JobQueue& jobs, const Panels& panels,
                                                     const DiversityChoice& choice)
    : PlacedWindow(140, 110),
      viewController_(new DiversityViewController(jobs, panels, choice, this)) {
    setObjectName("diversityWindow");
    setCentralWidget(viewController_);
    setWindowTitle("Diversity at Equal Coverage");
    resizeToFit({1000, 720});
}

}  // namespace zorvel
