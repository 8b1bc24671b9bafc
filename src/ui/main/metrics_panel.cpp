#include "ui/main/metrics_panel.h"

#include <QEvent>
#include <QLabel>
#include <algorithm>
#include <initializer_list>
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
#include "ui/kit/shown_text.h"
#include "ui/kit/value_field.h"
#include "ui_metrics_panel.h"

namespace zorvel {

namespace {

constexpr std::int64_t sqsTrials = 100;

int rowOf(std::string_view key) {
    const auto* row = std::find_if(metricsPanelRows.begin(), metricsPanelRows.end(),
                                   [key](const PanelRow& each) { return each.key == key; });
    return static_cast<int>(row - metricsPanelRows.begin());
}

const PanelRow& panelRow(std::string_view key) {
    return metricsPanelRows[static_cast<std::size_t>(rowOf(key))];
}

QString metricText(std::string_view key, double value) {
    return QString::fromStdString(formatMetric(value, panelRow(key).digits));
}

void showNote(QLabel& label, const QString& note) {
    label.setText(note);
    label.setVisible(!note.isEmpty());
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
    for (QLabel* wrapped : {ui_->rarefiedRichnessLabelTextField, ui_->alroySQSLabelTextField}) {
        wrapped->setContentsMargins(0, 6, 0, 6);
    }
    ui_->metricsNote->setContentsMargins(0, 12, 0, 0);
    ui_->rarefiedNote->setContentsMargins(0, 8, 0, 0);
    showNote(*ui_->metricsNote, {});
    showNote(*ui_->rarefiedNote, {});
    showSecondaryTexts();
    sheet_ = new MetricSheet(rows(), this, [this](int row) {
        return metricDetails(metricsPanelRows[static_cast<std::size_t>(row)].key, inputs_);
    });
    nameRows();
}

MetricsPanel::~MetricsPanel() = default;

void MetricsPanel::setServices(JobQueue& jobs, RandomSourceMaker makeRandom) {
    jobs_ = &jobs;
    makeRandom_ = std::move(makeRandom);
}

void MetricsPanel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange) return;
    showSecondaryTexts();
    sheet_->followValues();
}

void MetricsPanel::showSecondaryTexts() {
    QPalette quiet;
    quiet.setColor(QPalette::WindowText, lookColors(QPalette()).secondary);
    for (QLabel* label :
         std::initializer_list<QLabel*>{ui_->individualsLabelTextField, ui_->richnessLabelTextField,
                                        ui_->rarefiedNote, ui_->metricsNote}) {
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
    for (int row = 0; row < static_cast<int>(metricsPanelRows.size()); ++row) {
        const std::string text =
            metricCaption(metricsPanelRows[static_cast<std::size_t>(row)],
                          preferences.rarefactionSize(), preferences.sqsQuota());
        sheet_->setCaption(row, QString::fromStdString(text));
    }
}

QString MetricsPanel::caption(std::string_view key) const {
    return QString::fromStdString(metricCaption(panelRow(key), request_->size, request_->quota));
}

void MetricsPanel::showValue(std::string_view key, const QString& text) {
    sheet_->show(rowOf(key), caption(key), text);
}

// The field keeps its text until its job ends.
void MetricsPanel::expect(std::string_view key, const QString& owner) {
    const QString reason =
        owner.isEmpty() ? QString() : tr("Value of %1; the new one is on its way.").arg(owner);
    sheet_->expect(rowOf(key), caption(key), reason);
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
    sheet_->setSubject(censusName);
    ui_->metricsHeading->setText(censusName);
    ui_->metricsHeading->setToolTip(censusName);
    showNote(*ui_->metricsNote, {});
    showNote(*ui_->rarefiedNote, {});
    fillAtOnce();
    expect("rarefiedRichness", rarefiedOwner_);
    expect("alroySQS", sqsOwner_);
    startJobs();
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
    showValue("individuals", whole(metrics.individuals));
    showValue("richness", whole(metrics.richness));
    const std::pair<std::string_view, double> values[] = {
        {"chaoOne", metrics.chaoOne},         {"shannonH", metrics.shannonH},
        {"fisherAlpha", metrics.fisherAlpha}, {"pielouJ", metrics.pielouJ},
        {"simpsonD", metrics.simpsonD},       {"buzasE", metrics.buzasE}};
    for (const auto& [key, value] : values) showValue(key, metricText(key, value));
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
    showValue("rarefiedRichness", metricText("rarefiedRichness", estimate));
    rarefiedOwner_ = request_->census;
    if (inputs_.individuals < 1 || inputs_.individuals >= request_->size) return;
    const QString meaning =
        tr("N < n: the census has %L1 specimens, fewer than the %L2 asked for; its rarefied "
           "richness is that of the whole census.")
            .arg(inputs_.individuals)
            .arg(request_->size);
    sheet_->mark(rowOf("rarefiedRichness"), tr("N < n"), meaning);
    showNote(*ui_->rarefiedNote, meaning);
}

void MetricsPanel::showSqs(const SqsResult& result) {
    inputs_.absence = result.absence;
    inputs_.coverage = result.frequencySum;
    if (result.estimate) {
        showValue("alroySQS", metricText("alroySQS", *result.estimate));
        sqsOwner_ = request_->census;
        return;
    }
    QString note = metricDetails("alroySQS", inputs_).remark;
    if (!sqsOwner_.isEmpty()) note += ' ' + tr("The grey value is that of %1.").arg(sqsOwner_);
    sheet_->showAbsent(rowOf("alroySQS"), caption("alroySQS"), note);
    showNote(*ui_->metricsNote, note);
}

}  // namespace zorvel
