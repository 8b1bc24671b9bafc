#include "ui/analysis/project_wide_metrics_window_controller.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>
#include <utility>

#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "ui/kit/look.h"
#include "ui/kit/metric_sheet.h"
#include "ui/kit/shown_text.h"
#include "ui/kit/small_widgets.h"
#include "ui_project_wide_page.h"

namespace zorvel {
namespace {

constexpr MetricGroup projectGroups[] = {MetricGroup::pooled, MetricGroup::averages,
                                         MetricGroup::incidence};
constexpr std::size_t largeRows = 2;  // at the head of each group
constexpr int gapOfCards = 12;

QLabel* headOfColumn(const QString& title, QWidget& content) {
    auto* label = new QLabel(title, &content);
    label->setFont(scaledFont(content.font(), 1));
    label->setMinimumHeight(44);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
    return label;
}

const char* titleOf(MetricGroup group) {
    if (group == MetricGroup::pooled) return "All censuses as one sample";
    if (group == MetricGroup::averages) return "Average of the censuses";
    return "Presence in censuses (sample-based)";
}

}  // namespace

ProjectWideMetricsViewController::ProjectWideMetricsViewController(JobQueue& jobs,
                                                                   RandomSourceMaker makeRandom,
                                                                   QWidget* parent)
    : QWidget(parent),
      ui_(std::make_unique<Ui::ProjectWidePage>()),
      jobs_(jobs),
      makeRandom_(std::move(makeRandom)) {
    ui_->setupUi(this);
    ui_->scrollArea->viewport()->setAutoFillBackground(false);
    ui_->content->setAutoFillBackground(false);
    ui_->projectHeading->setFont(scaledFont(font(), 1.6));
    ui_->projectSummary->setContentsMargins(0, 4, 0, 0);
    ui_->projectSummary->setForegroundRole(secondaryText);
    addShortcut(*ui_->copyAllMetrics, Qt::CTRL | Qt::SHIFT | Qt::Key_C);
    addShortcut(*ui_->printMetrics, QKeySequence::Print);
    sheet_ = new MetricSheet(*ui_->content);
    sheet_->setSubject("the project");
    addColumn(MetricGroup::pooled);
    addColumn(MetricGroup::averages);
    addNotes(addColumn(MetricGroup::incidence));
    showHead();
    connect(ui_->copyAllMetrics, &QPushButton::clicked, sheet_, &MetricSheet::copyAll);
    connect(ui_->printMetrics, &QPushButton::clicked, this,
            &ProjectWideMetricsViewController::printRequested);
    sheet_->focusRow(0);
}

ProjectWideMetricsViewController::~ProjectWideMetricsViewController() = default;

// The button's tooltip has a place for the key.
void ProjectWideMetricsViewController::addShortcut(QPushButton& button, const QKeySequence& key) {
    button.setToolTip(button.toolTip().arg(key.toString(QKeySequence::NativeText)));
    connect(new QShortcut(key, this), &QShortcut::activated, &button, &QPushButton::click);
}

// The first values of a group are large.
QVBoxLayout& ProjectWideMetricsViewController::addColumn(MetricGroup group) {
    auto* column = new QVBoxLayout;
    column->setSpacing(gapOfCards);
    // The captions of averages are the longest.
    ui_->columns->addLayout(column, group == MetricGroup::averages ? 6 : 5);
    column->addWidget(headOfColumn(titleOf(group), *ui_->content));
    std::vector<ShownMetric> rows = metricsOf(group);
    // Where they are all, there is room for one below the other.
    const bool isShort = rows.size() == largeRows;
    QBoxLayout* large = column;
    if (!isShort) {
        large = new QHBoxLayout;
        column->addLayout(large);
    }
    large->setSpacing(gapOfCards);
    for (std::size_t i = 0; i < largeRows; ++i) {
        Card* card = sheet_->makeLargeCard(rows[i], i == 0 ? titleOf(group) : QString());
        if (!isShort)  // of one height
            card->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
        large->addWidget(card, isShort ? 0 : 1);
    }
    rows.erase(rows.begin(), rows.begin() + largeRows);
    if (!rows.empty()) column->addWidget(sheet_->makeListCard(rows));
    column->addStretch();
    for (const ShownMetric& shown : metricsOf(group)) sheet_->expect(shown);
    return *column;
}

void ProjectWideMetricsViewController::addNotes(QVBoxLayout& column) {
    column.insertWidget(column.count() - 1, headOfColumn("Notes", *ui_->content));
    auto* card = new Card(ui_->content);
    card->setObjectName("notesCard");
    card->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    auto* inside = new QVBoxLayout(card);
    inside->setContentsMargins(12, 10, 12, 10);
    notesLabel_ = new WrappedLabel(card);
    notesLabel_->setObjectName("projectNotes");
    notesLabel_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    inside->addWidget(notesLabel_);
    column.insertWidget(column.count() - 1, card);
}

PrintedSheet ProjectWideMetricsViewController::printedSheet() const {
    PrintedSheet sheet;
    sheet.title = ui_->projectHeading->text();
    sheet.lines = {"Project-wide Metrics", ui_->projectSummary->text()};
    sheet.lines += notes_;
    sheet.tables = printedMetrics(sheet_->lines());
    return sheet;
}

void ProjectWideMetricsViewController::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!std::exchange(appeared_, true)) viewWillAppear();
}

void ProjectWideMetricsViewController::viewWillAppear() {
    if (inputs_) compute();
}

void ProjectWideMetricsViewController::setInputs(ProjectWideInputs inputs) {
    inputs_ = std::make_shared<const ProjectWideInputs>(std::move(inputs));
    showHead();
    if (appeared_) compute();
}

void ProjectWideMetricsViewController::showHead() {
    const QString title = "Project-wide Metrics";
    if (!inputs_) {
        setWindowTitle(title);
        ui_->projectHeading->setText(title);
        ui_->projectSummary->setText("Reading the censuses\u2026");
        ui_->copyAllMetrics->setEnabled(false);
        ui_->printMetrics->setEnabled(false);
        ui_->progressIndicator->startAnimation();
        return notesLabel_->setText("A click on a value, or F1, tells how it is computed.");
    }
    const QString project = shortened(inputs_->project, 200);
    setWindowTitle(project.isEmpty() ? title
                                     : QString("%1 \u2013 %2").arg(title, asWindowTitle(project)));
    ui_->projectHeading->setText(project.isEmpty() ? title : project);
    ui_->projectHeading->setToolTip(project);
    if (!project.isEmpty()) sheet_->setSubject(project);
    const bool hasAny = inputs_->countsVector || inputs_->countsMatrix;
    QString summary = "There are no values: the censuses could not be read.";
    if (hasAny) summary = "All species count here, whether they are included or not.";
    if (inputs_->countsMatrix) {
        summary = QString("%L1 censuses, %L2 species names.")
                      .arg(qulonglong{inputs_->countsMatrix->rows()})
                      .arg(qulonglong{inputs_->countsMatrix->columns()}) +
                  ' ' + summary;
    }
    ui_->projectSummary->setText(summary);
    if (!inputs_->note.isEmpty()) addNote(inputs_->note);
}

void ProjectWideMetricsViewController::addNote(const QString& note) {
    notes_.append(note);
    notesLabel_->setText(notesLabel_->text() + "\n\n" + note);
}

void ProjectWideMetricsViewController::compute() {
    const Preferences preferences;
    sheet_->setParameters({preferences.rarefactionSize(), preferences.sqsQuota()});
    random_ = std::shared_ptr<RandomSource>(makeRandom_());
    for (const MetricGroup group : projectGroups) {
        for (const ShownMetric& shown : metricsOf(group)) {
            if (inputs_->has(group)) {
                sheet_->expect(shown);
            } else {
                sheet_->leaveEmpty(shown);
            }
        }
    }
    ui_->copyAllMetrics->setEnabled(true);
    startStep(0);
}

// From the step on, the first that has its counts.
void ProjectWideMetricsViewController::startStep(std::size_t step) {
    const auto steps = projectSteps();
    while (step < steps.size() && !inputs_->has(steps[step].group)) ++step;
    if (step == steps.size()) return finish();
    jobs_.start(
        this,
        [counts = inputs_, random = random_, known = sheet_->inputs(),
         compute = steps[step].compute] {
            ProjectMetrics metrics{{}, known};
            compute(*counts, *random, metrics);
            return metrics;
        },
        [this, step](const ProjectMetrics& metrics) {
            showResult(metrics);
            startStep(step + 1);
        });
}

void ProjectWideMetricsViewController::showResult(const ProjectMetrics& metrics) {
    const MetricInputs& known = sheet_->inputs() = metrics.inputs;
    for (const auto& [shown, value] : metrics.values) {
        if (std::holds_alternative<std::monostate>(value)) {
            const QString reason = QString::fromStdString(metricRemark(shown, known));
            sheet_->show(shown, value, reason);
            addNote(reason);
            continue;
        }
        sheet_->show(shown, value);
        // Unlike the other averages, this one may leave censuses out.
        if (shown == ShownMetric{MetricGroup::averages, Metric::alroySQS}) {
            addNote(
                QString("The average SQS is that of the %L1 of %L2 censuses that have an estimate.")
                    .arg(known.averageSqs.censuses)
                    .arg(known.censuses));
        }
    }
}

void ProjectWideMetricsViewController::finish() {
    ui_->printMetrics->setEnabled(true);
    ui_->progressIndicator->stopAnimation();
    random_.reset();
    inputs_.reset();
}

ProjectWideMetricsWindowController::ProjectWideMetricsWindowController(JobQueue& jobs,
                                                                       RandomSourceMaker makeRandom)
    : PlacedWindow(100, 100),
      viewController_(new ProjectWideMetricsViewController(jobs, std::move(makeRandom), this)) {
    setObjectName("projectWideMetricsWindow");
    setCentralWidget(viewController_);
    setWindowTitle(viewController_->windowTitle());
    connect(viewController_, &QWidget::windowTitleChanged, this, &QWidget::setWindowTitle);
    resizeToFit({1000, 620});
}

}  // namespace zorvel
