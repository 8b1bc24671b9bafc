#include "ui/analysis/project_wide_metrics_view_controller.h"

#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <algorithm>
#include <utility>

#include "metrics/random_source.h"
#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "ui/analysis/project_wide_rows.h"
#include "ui/kit/look.h"
#include "ui/kit/metric_sheet.h"
#include "ui/kit/shown_text.h"
#include "ui/kit/small_widgets.h"
#include "ui/kit/value_field.h"

namespace zorvel {

ProjectWideMetricsViewController::ProjectWideMetricsViewController(JobQueue& jobs,
                                                                   RandomSourceMaker makeRandom,
                                                                   QWidget* parent)
    : QWidget(parent),
      jobs_(jobs),
      makeRandom_(std::move(makeRandom)),
      widgets_(layOutProjectWide(*this)),
      sheet_(new MetricSheet(widgets_.rows, widgets_.content,
                             [this](int row) { return detailsOf(row); })) {
    nameRows();
    showSecondaryTexts();
    showHead();
    connect(widgets_.copyAll, &QPushButton::clicked, sheet_, &MetricSheet::copyAll);
    connect(widgets_.print, &QPushButton::clicked, this,
            &ProjectWideMetricsViewController::printRequested);
    setKey(*widgets_.copyAll, tr("All values as text (%1)"),
           QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C));
    setKey(*widgets_.print, tr("All values on paper (%1)"), QKeySequence::Print);
    widgets_.rows.front().value->setFocus();
}

ProjectWideMetricsViewController::~ProjectWideMetricsViewController() = default;

// meaning: with a place for the key.
void ProjectWideMetricsViewController::setKey(QPushButton& button, const QString& meaning,
                                              const QKeySequence& key) {
    connect(new QShortcut(key, this), &QShortcut::activated, &button, &QPushButton::click);
    button.setToolTip(meaning.arg(key.toString(QKeySequence::NativeText)));
}

PrintedSheet ProjectWideMetricsViewController::printedSheet() const {
    PrintedSheet sheet;
    sheet.title = widgets_.heading->text();
    sheet.lines = {tr("Project-wide Metrics"), widgets_.summary->text()};
    sheet.lines += notes_;
    sheet.tables = printedMetrics(sheet_->lines());
    return sheet;
}

void ProjectWideMetricsViewController::nameRows() {
    sheet_->setSubject(tr("the project"));
    for (std::size_t i = 0; i < projectWideRows().size(); ++i) {
        const std::string_view plain = projectWideRows()[i].metric.caption;
        const QString text = QString::fromUtf8(plain.data(), static_cast<qsizetype>(plain.size()));
        const int row = static_cast<int>(i);
        sheet_->setCaption(row, text);
        sheet_->expect(row, text, {});
    }
    for (const ProjectWideGroup group :
         {ProjectWideGroup::pooled, ProjectWideGroup::averages, ProjectWideGroup::incidence}) {
        sheet_->setHeading(static_cast<int>(firstRowOf(group)), projectWideGroupTitle(group));
    }
}

// Where nothing has come, nothing is known of what went into it.
MetricDetails ProjectWideMetricsViewController::detailsOf(int row) const {
    const auto place = static_cast<std::size_t>(row);
    const ValueField& value = *widgets_.rows[place].value;
    if (value.text().isEmpty() && !value.isStale()) return {};
    return metricDetails(projectWideRows()[place].explanation, explained_);
}

void ProjectWideMetricsViewController::showSecondaryTexts() {
    QPalette quiet;
    quiet.setColor(QPalette::WindowText, lookColors(QPalette()).secondary);
    for (QLabel* label : widgets_.quiet) label->setPalette(quiet);
}

void ProjectWideMetricsViewController::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange) return;
    showSecondaryTexts();
    sheet_->followValues();
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
        widgets_.heading->setText(title);
        widgets_.summary->setText(tr("Reading the censuses\u2026"));
        widgets_.copyAll->setEnabled(false);
        widgets_.print->setEnabled(false);
        widgets_.spinner->startAnimation();
        return widgets_.notes->setText(tr("A click on a value, or F1, tells how it is computed."));
    }
    const QString project = shortened(inputs_->project, 200);
    setWindowTitle(project.isEmpty() ? title
                                     : tr("%1 \u2013 %2").arg(title, asWindowTitle(project)));
    widgets_.heading->setText(project.isEmpty() ? title : project);
    widgets_.heading->setToolTip(project);
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
    widgets_.summary->setText(summary);
    if (!inputs_->note.isEmpty()) addNote(inputs_->note);
}

void ProjectWideMetricsViewController::addNote(const QString& note) {
    notes_.append(note);
    widgets_.notes->setText(widgets_.notes->text() + "\n\n" + note);
}

QString ProjectWideMetricsViewController::caption(std::size_t row) const {
    return QString::fromStdString(
        projectWideCaption(projectWideRows()[row], task_.size, task_.quota));
}

void ProjectWideMetricsViewController::compute() {
    const Preferences preferences;
    task_ = {inputs_, preferences.rarefactionSize(), preferences.sqsQuota(),
             std::shared_ptr<RandomSource>(makeRandom_())};
    for (const ProjectWideStep& step : projectWideSteps()) {
        for (std::size_t row = step.firstRow; row < step.firstRow + step.rowCount; ++row) {
            if (step.hasInput(*inputs_)) {
                sheet_->expect(static_cast<int>(row), caption(row), {});
            } else {
                sheet_->show(static_cast<int>(row), widgets_.rows[row].caption->text(), {});
            }
        }
    }
    widgets_.copyAll->setEnabled(true);
    startStep(0);
}

// From the step on, the first that has its input.
void ProjectWideMetricsViewController::startStep(std::size_t step) {
    const std::vector<ProjectWideStep>& steps = projectWideSteps();
    while (step < steps.size() && !steps[step].hasInput(*inputs_)) ++step;
    if (step == steps.size()) return finish();
    jobs_.start(
        this,
        [task = task_, explained = explained_, compute = steps[step].compute] {
            return compute(task, explained);
        },
        [this, step](const ProjectWideResult& result) {
            showResult(projectWideSteps()[step], result);
            startStep(step + 1);
        });
}

void ProjectWideMetricsViewController::showResult(const ProjectWideStep& step,
                                                  const ProjectWideResult& result) {
    explained_ = result.explained;
    for (std::size_t i = 0; i < result.texts.size(); ++i) {
        const std::size_t row = step.firstRow + i;
        if (result.texts[i]) {
            sheet_->show(static_cast<int>(row), caption(row),
                         QString::fromStdString(*result.texts[i]));
            if (projectWideRows()[row].explanation == "averageAlroySQS") noteCensusesWithSqs();
            continue;
        }
        const QString reason = metricDetails(projectWideRows()[row].explanation, explained_).remark;
        sheet_->showAbsent(static_cast<int>(row), caption(row), reason);
        addNote(reason);
    }
}

// Unlike the other averages, this one may leave censuses out.
void ProjectWideMetricsViewController::noteCensusesWithSqs() {
    addNote(tr("The average SQS is that of the %L1 of %L2 censuses that have an estimate.")
                .arg(explained_.withSqs)
                .arg(explained_.censuses));
}

void ProjectWideMetricsViewController::finish() {
    widgets_.print->setEnabled(true);
    widgets_.spinner->stopAnimation();
    task_ = {};
    inputs_.reset();
    emit didFill();
}

}  // namespace zorvel
