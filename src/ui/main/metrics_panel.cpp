#include "ui/main/metrics_panel.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QStringList>
#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "base/console.h"
#include "base/numbers.h"
#include "metrics/census_metrics.h"
#include "metrics/metric_captions.h"
#include "metrics/rarefaction.h"
#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "ui/kit/look.h"
#include "ui/kit/popover.h"
#include "ui/kit/shown_text.h"
#include "ui/kit/value_field.h"
#include "ui/main/explanation_text.h"
#include "ui_metrics_panel.h"

namespace zorvel {

namespace {

constexpr std::int64_t sqsTrials = 100;

int digitsOf(std::string_view key) {
    const auto row = std::find_if(metricsPanelRows.begin(), metricsPanelRows.end(),
                                  [key](const PanelRow& each) { return each.key == key; });
    return row->digits;
}

QString metricText(std::string_view key, double value) {
    return QString::fromStdString(formatMetric(value, digitsOf(key)));
}

}  // namespace

MetricsPanel::MetricsPanel(QWidget* parent)
    : QWidget(parent),
      ui_(std::make_unique<Ui::MetricsPanel>()),
      latest_(std::make_shared<std::atomic<std::uint64_t>>(0)) {
    ui_->setupUi(this);
    ui_->metricsHeading->setFont(scaledFont(font(), 1.35, true));
    for (QLabel* group : {ui_->estimatesGroupLabel, ui_->diversityGroupLabel}) {
        group->setFont(scaledFont(font(), 1, true));
        group->setContentsMargins(0, 0, 0, 8);
    }
    ui_->individualsValueTextField->setScale(1.9);
    ui_->richnessValueTextField->setScale(1.9);
    for (ValueField* number : {ui_->individualsValueTextField, ui_->richnessValueTextField}) {
        number->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }
    ui_->metricsNote->setContentsMargins(0, 12, 0, 0);
    setNote({});
    showSecondaryTexts();
    nameRows();
    auto* moves = new MetricRows(rows(), this);
    connect(moves, &MetricRows::explanationRequested, this, &MetricsPanel::explain);
    connect(moves, &MetricRows::copyAllRequested, this, &MetricsPanel::copyAll);
}

MetricsPanel::~MetricsPanel() {
    delete popover_;
}

void MetricsPanel::setServices(JobQueue& jobs, RandomSourceMaker makeRandom) {
    jobs_ = &jobs;
    makeRandom_ = std::move(makeRandom);
}

void MetricsPanel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange) return;
    showSecondaryTexts();
    followValues();
}

void MetricsPanel::showSecondaryTexts() {
    QPalette quiet;
    quiet.setColor(QPalette::WindowText, lookColors(QPalette()).secondary);
    for (QLabel* label :
         {ui_->individualsLabelTextField, ui_->richnessLabelTextField, ui_->metricsNote}) {
        label->setPalette(quiet);
    }
}

MetricRows::Rows MetricsPanel::rows() const {
    return {{
        {"individuals", ui_->individualsValueTextField, ui_->individualsLabelTextField},
        {"richness", ui_->richnessValueTextField, ui_->richnessLabelTextField},
        {"rarefiedRichness", ui_->rarefiedRichnessValueTextField,
         ui_->rarefiedRichnessLabelTextField},
        {"chaoOne", ui_->chaoOneValueTextField, ui_->chaoOneLabelTextField},
        {"alroySQS", ui_->alroySQSValueTextField, ui_->alroySQSLabelTextField},
        {"shannonH", ui_->shannonHValueTextField, ui_->shannonHLabelTextField},
        {"fisherAlpha", ui_->fisherAlphaValueTextField, ui_->fisherAlphaLabelTextField},
        {"pielouJ", ui_->pielouJValueTextField, ui_->pielouJLabelTextField},
        {"simpsonD", ui_->simpsonDValueTextField, ui_->simpsonDLabelTextField},
        {"buzasE", ui_->buzasEValueTextField, ui_->buzasELabelTextField},
    }};
}

void MetricsPanel::nameRows() {
    const Preferences preferences;
    for (const MetricRow& row : rows()) {
        const auto caption =
            std::find_if(metricsPanelRows.begin(), metricsPanelRows.end(),
                         [&row](const PanelRow& each) { return each.key == row.key; });
        const std::string text =
            metricCaption(*caption, preferences.rarefactionSize(), preferences.sqsQuota());
        setCaption(row.caption, row.value, QString::fromStdString(text));
        const QString meaning =
            metricMeaning(row.key) + '\n' + tr("F1 or a click tells how it is computed.");
        row.value->setExplanation(meaning);
        row.caption->setToolTip(meaning);
    }
}

void MetricsPanel::setCaption(QLabel* caption, ValueField* value, const QString& text) {
    caption->setText(text);
    value->setAccessibleName(text);
}

void MetricsPanel::refresh(const QString& censusName, const CountsVector& counts) {
    const Preferences preferences;
    Request request{censusName, counts, preferences.rarefactionSize(), preferences.sqsQuota()};
    const bool isAgain = request_ == request;
    request_ = std::move(request);
    ++*latest_;
    // What stands there is of these counts, and stays black until another draw of SQS takes its
    // place.
    if (isAgain) return startJobs();
    inputs_ = metricInputs(counts, request_->size, request_->quota);
    sqsPending_ = true;
    ui_->metricsHeading->setText(censusName);
    ui_->metricsHeading->setToolTip(censusName);
    setNote({});
    fillAtOnce();
    markPending(ui_->rarefiedRichnessValueTextField, rarefiedOwner_);
    markPending(ui_->alroySQSValueTextField, sqsOwner_);
    startJobs();
    followValues();
}

void MetricsPanel::startJobs() {
    startRarefaction();
    startSqs();
}

void MetricsPanel::fillAtOnce() {
    const CensusMetrics metrics = censusMetrics(request_->counts);
    const auto whole = [](std::int64_t value) {
        return QString::fromStdString(integerText(value));
    };
    ui_->richnessValueTextField->setText(whole(metrics.richness));
    ui_->individualsValueTextField->setText(whole(metrics.individuals));
    ui_->chaoOneValueTextField->setText(metricText("chaoOne", metrics.chaoOne));
    ui_->shannonHValueTextField->setText(metricText("shannonH", metrics.shannonH));
    ui_->fisherAlphaValueTextField->setText(metricText("fisherAlpha", metrics.fisherAlpha));
    ui_->pielouJValueTextField->setText(metricText("pielouJ", metrics.pielouJ));
    ui_->simpsonDValueTextField->setText(metricText("simpsonD", metrics.simpsonD));
    ui_->buzasEValueTextField->setText(metricText("buzasE", metrics.buzasE));
}

// The field keeps its text until its job ends.
void MetricsPanel::markPending(ValueField* value, const QString& owner) {
    if (!owner.isEmpty()) value->setStale(tr("Value of %1; the new one is on its way.").arg(owner));
}

void MetricsPanel::startRarefaction() {
    const std::uint64_t number = *latest_;
    const auto work = [counts = request_->counts, size = request_->size, number,
                       latest = latest_]() -> std::optional<double> {
        if (*latest != number) return std::nullopt;
        return sharedCalculator().individualBasedPoint(counts, size).estimate;
    };
    jobs_->start(this, work, [this, number](std::optional<double> estimate) {
        if (estimate && *latest_ == number) showRarefied(*estimate);
    });
}

void MetricsPanel::startSqs() {
    const std::uint64_t number = *latest_;
    const auto work = [counts = request_->counts, quota = request_->quota, number, latest = latest_,
                       random = std::shared_ptr(makeRandom_())]() -> std::optional<SqsResult> {
        if (*latest != number) return std::nullopt;
        SqsResult result = shareholderQuorum(counts, sqsTrials, quota, *random);
        if (const std::string line = result.warning(); !line.empty()) writeConsoleLine(line);
        return result;
    };
    jobs_->start(this, work, [this, number](const std::optional<SqsResult>& result) {
        if (result && *latest_ == number) showSqs(*result);
    });
}

void MetricsPanel::showRarefied(double estimate) {
    ValueField* value = ui_->rarefiedRichnessValueTextField;
    value->setText(metricText("rarefiedRichness", estimate));
    setCaption(ui_->rarefiedRichnessLabelTextField, value,
               QString::fromStdString(rarefiedRichnessCaption(request_->size)));
    value->setStale({});
    rarefiedOwner_ = request_->census;
    followValues();
}

void MetricsPanel::showSqs(const SqsResult& result) {
    sqsPending_ = false;
    inputs_.absence = result.absence;
    inputs_.coverage = result.frequencySum;
    ValueField* value = ui_->alroySQSValueTextField;
    if (result.estimate) {
        value->setText(metricText("alroySQS", *result.estimate));
        setCaption(ui_->alroySQSLabelTextField, value,
                   QString::fromStdString(sqsCaption(request_->quota)));
        value->setStale({});
        sqsOwner_ = request_->census;
    } else {
        QString note = metricRemarkText("alroySQS", inputs_);
        if (!sqsOwner_.isEmpty()) note += ' ' + tr("The grey value is that of %1.").arg(sqsOwner_);
        value->setStale(note);
        setNote(note);
    }
    followValues();
}

void MetricsPanel::setNote(const QString& note) {
    ui_->metricsNote->setText(breakable(note));
    ui_->metricsNote->setVisible(!note.isEmpty());
}

QString MetricsPanel::text() const {
    if (!request_) return {};
    QStringList lines{request_->census};
    for (const MetricRow& row : rows()) {
        const bool sqs = row.key == "alroySQS";
        // The caption of a grey value may tell of the parameter that it was computed with.
        const QString caption =
            !row.value->isStale() ? row.caption->text()
            : sqs                 ? QString::fromStdString(sqsCaption(request_->quota))
                                  : QString::fromStdString(rarefiedRichnessCaption(request_->size));
        const QString none = sqs && !sqsPending_ ? "-" : "";
        lines.append(caption + '\t' + (row.value->isStale() ? none : row.value->text()));
    }
    return lines.join('\n');
}

void MetricsPanel::copyAll() const {
    if (const QString all = text(); !all.isEmpty()) QGuiApplication::clipboard()->setText(all);
}

void MetricsPanel::explain(int row) {
    if (!request_) return;
    if (!popover_) popover_ = new Popover(window());
    if (popover_->isVisible() && explained_ == row) return popover_->dismiss();
    explained_ = row;
    updateExplanation();
    const MetricRow anchor = rows()[static_cast<std::size_t>(row)];
    popover_->showBeside(MetricRows::placeIn(*window(), anchor));
}

void MetricsPanel::followValues() {
    if (popover_ && popover_->isVisible()) updateExplanation();
}

void MetricsPanel::updateExplanation() {
    const MetricRow row = rows()[static_cast<std::size_t>(explained_)];
    ExplainedValue value{row.key, request_->census, row.value->text(), {}, inputs_};
    if (row.value->isStale()) {
        value.text.clear();
        value.note = row.value->toolTip();
    }
    const ExplanationText text = explanationText(value, lookColors(palette()).secondary);
    popover_->setText(text.rich, text.plain);
}

}  // namespace zorvel
