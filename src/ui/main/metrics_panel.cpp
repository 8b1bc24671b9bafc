#include "ui/main/metrics_panel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <utility>

#include "metrics/rarefaction.h"
#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "ui/kit/look.h"
#include "ui/kit/small_widgets.h"

namespace zorvel {

namespace {

constexpr ShownMetric rarefied = {MetricGroup::census, Metric::rarefiedRichness};
constexpr ShownMetric sqs = {MetricGroup::census, Metric::alroySQS};

std::vector<ShownMetric> panelRows(MetricKind kind) {
    std::vector<ShownMetric> rows;
    for (const ShownMetric& shown : metricsOf(MetricGroup::census))
        if (descriptorOf(shown.metric).kind == kind) rows.push_back(shown);
    return rows;
}

QLabel* groupTitle(const QString& title, QWidget& panel) {
    auto* label = new QLabel(title, &panel);
    label->setFont(scaledFont(panel.font(), 1));
    label->setMinimumHeight(48);
    label->setContentsMargins(0, 0, 0, 8);
    label->setAlignment(Qt::AlignLeading | Qt::AlignBottom);
    return label;
}

WrappedLabel* makeNote(const char* name, int gapAbove, QWidget& panel) {
    auto* note = new WrappedLabel(&panel);
    note->setObjectName(name);
    note->setContentsMargins(0, gapAbove, 0, 0);
    note->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    note->setForegroundRole(secondaryText);
    note->hide();
    return note;
}

void showNote(WrappedLabel& label, const QString& note) {
    label.setText(note);
    label.setVisible(!note.isEmpty());
}

}  // namespace

MetricsPanel::MetricsPanel(QWidget* parent)
    : QWidget(parent),
      heading_(new ElidedLabel(this)),
      rarefiedNote_(makeNote("rarefiedNote", 8, *this)),
      metricsNote_(makeNote("metricsNote", 12, *this)),
      sheet_(new MetricSheet(*this)) {
    const Preferences preferences;
    sheet_->setParameters({preferences.rarefactionSize(), preferences.sqsQuota()});
    layOut(*new QVBoxLayout(this));
}

void MetricsPanel::layOut(QVBoxLayout& all) {
    all.setSpacing(0);
    all.setContentsMargins(16, 0, 16, 16);
    heading_->setObjectName("metricsHeading");
    heading_->setMinimumHeight(48);
    heading_->setFont(scaledFont(font(), 1.35));
    all.addWidget(heading_);
    auto* cards = new QHBoxLayout;
    cards->setSpacing(12);
    for (const ShownMetric& count : panelRows(MetricKind::count))
        cards->addWidget(sheet_->makeLargeCard(count), 1);
    all.addLayout(cards);
    all.addWidget(groupTitle("Richness estimates", *this));
    all.addWidget(sheet_->makeListCard(panelRows(MetricKind::estimate)));
    all.addWidget(rarefiedNote_);
    all.addWidget(groupTitle("Diversity and evenness", *this));
    all.addWidget(sheet_->makeListCard(panelRows(MetricKind::index)));
    all.addWidget(metricsNote_);
    all.addStretch();
}

void MetricsPanel::setServices(JobQueue& jobs, RandomSourceMaker makeRandom) {
    jobs_ = &jobs;
    makeRandom_ = std::move(makeRandom);
}

void MetricsPanel::refresh(const QString& censusName, const CountsVector& counts) {
    const Preferences preferences;
    Request request{censusName, counts, preferences.rarefactionSize(), preferences.sqsQuota()};
    const bool isAgain = request_ == request;
    request_ = std::move(request);
    stop_.request_stop();
    stop_ = std::stop_source();
    // Otherwise what is shown is of these counts, and stays black until SQS has been drawn again.
    if (!isAgain) {
        const AbundanceTally tally(request_->counts);
        sheet_->setSubject(censusName);
        sheet_->inputs() = {};
        sheet_->inputs().sample = SampleInputs(tally);
        sheet_->setParameters({request_->size, request_->quota});
        heading_->setText(censusName);
        heading_->setToolTip(censusName);
        showNote(*metricsNote_, {});
        showNote(*rarefiedNote_, {});
        const MetricValues values = censusMetrics(tally);
        for (const ShownMetric& shown : metricsOf(MetricGroup::census))
            if (descriptorOf(shown.metric).compute) sheet_->show(shown, values[shown.metric]);
        expect(rarefied, rarefiedOwner_);
        expect(sqs, sqsOwner_);
    }
    startRarefaction();
    startSqs();
}

// The field keeps its text until its job ends.
void MetricsPanel::expect(const ShownMetric& shown, const QString& owner) {
    const QString reason =
        owner.isEmpty() ? QString() : QString("Value of %1; the new one is on its way.").arg(owner);
    sheet_->expect(shown, reason);
}

void MetricsPanel::startRarefaction() {
    const auto work = [counts = request_->counts, size = request_->size,
                       stop = stop_.get_token()]() -> std::optional<double> {
        if (stop.stop_requested()) return std::nullopt;
        return sharedCalculator().individualBasedPoint(counts, size).estimate;
    };
    jobs_->start(this, work, [this, stop = stop_.get_token()](std::optional<double> estimate) {
        if (estimate && !stop.stop_requested()) showRarefied(*estimate);
    });
}

void MetricsPanel::startSqs() {
    const auto work = [counts = request_->counts, quota = request_->quota, stop = stop_.get_token(),
                       random = std::shared_ptr(makeRandom_())]() -> std::optional<SqsResult> {
        if (stop.stop_requested()) return std::nullopt;
        const SqsResult result = shareholderQuorum(counts, sqsTrials, quota, *random);
        result.writeWarning();
        return result;
    };
    jobs_->start(this, work,
                 [this, stop = stop_.get_token()](const std::optional<SqsResult>& result) {
                     if (result && !stop.stop_requested()) showSqs(*result);
                 });
}

void MetricsPanel::showRarefied(double estimate) {
    sheet_->show(rarefied, estimate);
    rarefiedOwner_ = request_->census;
    const std::int64_t specimens = sheet_->inputs().sample.individuals;
    if (specimens < 1 || specimens >= request_->size) return;
    const QString meaning =
        QString(
            "N < n: the census has %L1 specimens, fewer than the %L2 asked for; its rarefied "
            "richness is that of the whole census.")
            .arg(specimens)
            .arg(request_->size);
    sheet_->mark(rarefied, "N < n", meaning);
    showNote(*rarefiedNote_, meaning);
}

void MetricsPanel::showSqs(const SqsResult& result) {
    sheet_->inputs().sqs = result;
    if (result.estimate) {
        sheet_->show(sqs, *result.estimate);
        sqsOwner_ = request_->census;
        return;
    }
    QString note = QString::fromStdString(metricRemark(sqs, sheet_->inputs()));
    if (!sqsOwner_.isEmpty()) note += ' ' + QString("The grey value is that of %1.").arg(sqsOwner_);
    sheet_->show(sqs, {}, note);
    showNote(*metricsNote_, note);
}

}  // namespace zorvel
