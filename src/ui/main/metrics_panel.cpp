#include "ui/main/metrics_panel.h"

#include <QEvent>
#include <QLabel>
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
#include "ui/kit/shown_text.h"
#include "ui/kit/value_field.h"
#include "ui/main/metric_explanations.h"
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
    showSecondaryTexts();
    nameRows();
}

MetricsPanel::~MetricsPanel() = default;

void MetricsPanel::setServices(JobQueue& jobs, RandomSourceMaker makeRandom) {
    jobs_ = &jobs;
    makeRandom_ = std::move(makeRandom);
}

void MetricsPanel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) showSecondaryTexts();
}

void MetricsPanel::showSecondaryTexts() {
    QPalette quiet;
    quiet.setColor(QPalette::WindowText, lookColors(QPalette()).secondary);
    for (QLabel* label :
         {ui_->individualsLabelTextField, ui_->richnessLabelTextField, ui_->metricsNote}) {
        label->setPalette(quiet);
    }
}

MetricsPanel::Rows MetricsPanel::rows() const {
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
    for (const Row& row : rows()) {
        const auto caption =
            std::find_if(metricsPanelRows.begin(), metricsPanelRows.end(),
                         [&row](const PanelRow& each) { return each.key == row.key; });
        const std::string text =
            metricCaption(*caption, preferences.rarefactionSize(), preferences.sqsQuota());
        setCaption(row.caption, row.value, QString::fromStdString(text));
        row.value->setExplanation(metricExplanation(row.key));
        row.caption->setToolTip(metricExplanation(row.key));
    }
}

void MetricsPanel::setCaption(QLabel* caption, ValueField* value, const QString& text) {
    caption->setText(text);
    value->setAccessibleName(text);
}

void MetricsPanel::refresh(const QString& censusName, const CountsVector& counts) {
    ++*latest_;
    census_ = censusName;
    ui_->metricsHeading->setText(censusName);
    ui_->metricsHeading->setToolTip(censusName);
    ui_->metricsNote->clear();
    fillAtOnce(counts);
    markPending(ui_->rarefiedRichnessValueTextField, rarefiedOwner_);
    markPending(ui_->alroySQSValueTextField, sqsOwner_);
    startRarefaction(counts);
    startSqs(counts);
}

void MetricsPanel::fillAtOnce(const CountsVector& counts) {
    const CensusMetrics metrics = censusMetrics(counts);
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

void MetricsPanel::startRarefaction(const CountsVector& counts) {
    const std::int64_t size = Preferences().rarefactionSize();
    const std::uint64_t request = *latest_;
    const auto work = [counts, size, request, latest = latest_]() -> std::optional<double> {
        if (*latest != request) return std::nullopt;
        return sharedCalculator().individualBasedPoint(counts, size).estimate;
    };
    jobs_->start(this, work, [this, size, request](std::optional<double> estimate) {
        if (estimate && *latest_ == request) showRarefied(*estimate, size);
    });
}

void MetricsPanel::startSqs(const CountsVector& counts) {
    const double quota = Preferences().sqsQuota();
    const std::uint64_t request = *latest_;
    const auto work = [counts, quota, request, latest = latest_,
                       random = std::shared_ptr(makeRandom_())]() -> std::optional<SqsResult> {
        if (*latest != request) return std::nullopt;
        SqsResult result = shareholderQuorum(counts, sqsTrials, quota, *random);
        if (const std::string line = result.warning(); !line.empty()) writeConsoleLine(line);
        return result;
    };
    jobs_->start(this, work, [this, quota, request](const std::optional<SqsResult>& result) {
        if (result && *latest_ == request) showSqs(*result, quota);
    });
}

void MetricsPanel::showRarefied(double estimate, std::int64_t size) {
    ValueField* value = ui_->rarefiedRichnessValueTextField;
    value->setText(metricText("rarefiedRichness", estimate));
    setCaption(ui_->rarefiedRichnessLabelTextField, value,
               QString::fromStdString(rarefiedRichnessCaption(size)));
    value->setStale({});
    rarefiedOwner_ = census_;
}

void MetricsPanel::showSqs(const SqsResult& result, double quota) {
    ValueField* value = ui_->alroySQSValueTextField;
    if (result.estimate) {
        value->setText(metricText("alroySQS", *result.estimate));
        setCaption(ui_->alroySQSLabelTextField, value, QString::fromStdString(sqsCaption(quota)));
        value->setStale({});
        sqsOwner_ = census_;
        return;
    }
    QString note = tr("No SQS estimate for %1: %2.").arg(census_, sqsAbsenceReason(result));
    if (!sqsOwner_.isEmpty()) note += ' ' + tr("The grey value is that of %1.").arg(sqsOwner_);
    value->setStale(note);
    ui_->metricsNote->setText(breakable(note));
}

}  // namespace zorvel
