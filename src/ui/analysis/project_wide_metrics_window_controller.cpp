#include "ui/analysis/project_wide_metrics_window_controller.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QVBoxLayout>
#include <utility>

#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "ui/kit/look.h"
#include "ui/kit/metric_sheet.h"
#include "ui/kit/shown_text.h"
#include "ui/kit/small_widgets.h"

namespace zorvel {
namespace {

constexpr MetricGroup projectGroups[] = {MetricGroup::pooled, MetricGroup::averages,
                                         MetricGroup::incidence};
constexpr std::size_t largeRows = 2;  // at the head of each group
constexpr int gapOfCards = 12;

QWidget* scrolledContent(QWidget& host) {
    auto* scroll = new QScrollArea(&host);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    auto* outer = new QVBoxLayout(&host);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(scroll);
    auto* content = new QWidget;
    scroll->setWidget(content);
    scroll->viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    return content;
}

QLabel* headOfColumn(const QString& title, QWidget& content) {
    auto* label = new QLabel(title, &content);
    label->setFont(scaledFont(content.font(), 1, true));
    label->setMinimumHeight(44);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
    return label;
}

QString titleOf(MetricGroup group) {
    using Controller = ProjectWideMetricsViewController;
    if (group == MetricGroup::pooled) return Controller::tr("All censuses as one sample");
    if (group == MetricGroup::averages) return Controller::tr("Average of the censuses");
    return Controller::tr("Presence in censuses (sample-based)");
}

}  // namespace

ProjectWideMetricsViewController::ProjectWideMetricsViewController(JobQueue& jobs,
                                                                   RandomSourceMaker makeRandom,
                                                                   QWidget* parent)
    : QWidget(parent), jobs_(jobs), makeRandom_(std::move(makeRandom)) {
    QWidget* content = scrolledContent(*this);
    sheet_ = new MetricSheet(*content);
    layOut(*content);
    sheet_->setSubject(tr("the project"));
    for (const MetricGroup group : projectGroups) {
        const std::vector<ShownMetric> rows = metricsOf(group);
        for (const ShownMetric& shown : rows) sheet_->expect(shown);
        sheet_->setHeading(rows.front(), titleOf(group));
    }
    showHead();
    connect(copyAll_, &QPushButton::clicked, sheet_, &MetricSheet::copyAll);
    connect(print_, &QPushButton::clicked, this, &ProjectWideMetricsViewController::printRequested);
    sheet_->focusRow(0);
}

ProjectWideMetricsViewController::~ProjectWideMetricsViewController() = default;

// --- Layout: a head, and a column per group, its first values large ---

void ProjectWideMetricsViewController::layOut(QWidget& content) {
    constexpr int edge = 24;
    auto* all = new QVBoxLayout(&content);
    all->setContentsMargins(edge, edge - 4, edge, edge);
    all->setSpacing(0);
    addHead(*all, content);
    auto* columns = new QHBoxLayout;
    columns->setSpacing(20);
    all->addLayout(columns);
    all->addStretch();
    addColumn(*columns, MetricGroup::pooled, content);
    addColumn(*columns, MetricGroup::averages, content);
    addNotes(addColumn(*columns, MetricGroup::incidence, content), content);
}

void ProjectWideMetricsViewController::addHead(QVBoxLayout& all, QWidget& content) {
    auto* line = new QHBoxLayout;
    line->setSpacing(gapOfCards);
    all.addLayout(line);
    heading_ = new ElidedLabel(&content);
    heading_->setObjectName("projectHeading");
    heading_->setFont(scaledFont(content.font(), 1.6, true));
    line->addWidget(heading_, 1);
    spinner_ = new Spinner(&content);
    spinner_->setObjectName("progressIndicator");
    line->addWidget(spinner_);
    copyAll_ = makeButton("copyAllMetrics", tr("Copy &All"), tr("All values as text (%1)"),
                          QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C), content);
    line->addWidget(copyAll_);
    print_ = makeButton("printMetrics", tr("&Print\u2026"), tr("All values on paper (%1)"),
                        QKeySequence::Print, content);
    line->addWidget(print_);
    summary_ = new QLabel(&content);
    summary_->setObjectName("projectSummary");
    summary_->setTextFormat(Qt::PlainText);
    summary_->setWordWrap(true);
    summary_->setContentsMargins(0, 4, 0, 0);
    summary_->setForegroundRole(secondaryText);
    all.addWidget(summary_);
}

// meaning: with a place for the key.
QPushButton* ProjectWideMetricsViewController::makeButton(const char* name, const QString& text,
                                                          const QString& meaning,
                                                          const QKeySequence& key,
                                                          QWidget& content) {
    auto* button = new QPushButton(text, &content);
    button->setObjectName(name);
    button->setToolTip(meaning.arg(key.toString(QKeySequence::NativeText)));
    connect(new QShortcut(key, this), &QShortcut::activated, button, &QPushButton::click);
    return button;
}

QVBoxLayout& ProjectWideMetricsViewController::addColumn(QHBoxLayout& columns, MetricGroup group,
                                                         QWidget& content) {
    auto* column = new QVBoxLayout;
    column->setSpacing(gapOfCards);
    // The captions of averages are the longest.
    columns.addLayout(column, group == MetricGroup::averages ? 6 : 5);
    column->addWidget(headOfColumn(titleOf(group), content));
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
        Card* card = sheet_->makeLargeCard(rows[i]);
        if (!isShort)  // of one height
            card->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
        large->addWidget(card, isShort ? 0 : 1);
    }
    rows.erase(rows.begin(), rows.begin() + largeRows);
    if (!rows.empty()) column->addWidget(sheet_->makeListCard(rows));
    column->addStretch();
    return *column;
}

void ProjectWideMetricsViewController::addNotes(QVBoxLayout& column, QWidget& content) {
    column.insertWidget(column.count() - 1, headOfColumn(tr("Notes"), content));
    auto* card = new Card(&content);
    card->setObjectName("notesCard");
    card->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    auto* inside = new QVBoxLayout(card);
    inside->setContentsMargins(12, 10, 12, 10);
    notesLabel_ = new WrappedLabel(&content);
    notesLabel_->setObjectName("projectNotes");
    notesLabel_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    inside->addWidget(notesLabel_);
    column.insertWidget(column.count() - 1, card);
}

// --- Values ---

PrintedSheet ProjectWideMetricsViewController::printedSheet() const {
    PrintedSheet sheet;
    sheet.title = heading_->text();
    sheet.lines = {tr("Project-wide Metrics"), summary_->text()};
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
    const QString title = tr("Project-wide Metrics");
    if (!inputs_) {
        setWindowTitle(title);
        heading_->setText(title);
        summary_->setText(tr("Reading the censuses\u2026"));
        copyAll_->setEnabled(false);
        print_->setEnabled(false);
        spinner_->startAnimation();
        return notesLabel_->setText(tr("A click on a value, or F1, tells how it is computed."));
    }
    const QString project = shortened(inputs_->project, 200);
    setWindowTitle(project.isEmpty() ? title
                                     : tr("%1 \u2013 %2").arg(title, asWindowTitle(project)));
    heading_->setText(project.isEmpty() ? title : project);
    heading_->setToolTip(project);
    if (!project.isEmpty()) sheet_->setSubject(project);
    const bool hasAny = inputs_->countsVector || inputs_->countsMatrix;
    QString summary = tr("There are no values: the censuses could not be read.");
    if (hasAny) summary = tr("All species count here, whether they are included or not.");
    if (inputs_->countsMatrix) {
        summary = tr("%L1 censuses, %L2 species names.")
                      .arg(qulonglong{inputs_->countsMatrix->rows()})
                      .arg(qulonglong{inputs_->countsMatrix->columns()}) +
                  ' ' + summary;
    }
    summary_->setText(summary);
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
    copyAll_->setEnabled(true);
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
            addNote(tr("The average SQS is that of the %L1 of %L2 censuses that have an estimate.")
                        .arg(known.averageSqs.censuses)
                        .arg(known.censuses));
        }
    }
}

void ProjectWideMetricsViewController::finish() {
    print_->setEnabled(true);
    spinner_->stopAnimation();
    random_.reset();
    inputs_.reset();
    emit didFill();
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
