#include "ui/analysis/rarefaction_view_controller.h"

#include <QEvent>
#include <QShowEvent>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>
#include <utility>

#include "interchange/writers.h"
#include "metrics/census_metrics.h"
#include "ui/analysis/rarefaction_view.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui_rarefaction_page.h"

namespace zorvel {

namespace {

using Curve = std::span<const Rarefaction>;

const char separation[] = " \u00b7 ";

std::ptrdiff_t limitedRecords(Curve curve, ConfidenceLevel level) {
    return std::count_if(curve.begin(), curve.end(),
                         [&](const Rarefaction& point) { return hasLimits(point, level); });
}

// With one decimal.
QString expectedTaxa(double value) {
    return QString::fromStdString(formatMetric(value, 1));
}

QString sizeWithUnit(RarefactionKind kind, std::int64_t sampleSize) {
    if (kind == RarefactionKind::individualBased) {
        return sampleSize == 1 ? "1 specimen" : QString("%1 specimens").arg(sampleSize);
    }
    return sampleSize == 1 ? "1 census" : QString("%1 censuses").arg(sampleSize);
}

// Kind, end and level of the curve in a line.
QString summaryOf(RarefactionKind kind, Curve curve, std::optional<ConfidenceLevel> level) {
    QStringList parts{kind == RarefactionKind::individualBased ? "Individual-based rarefaction"
                                                               : "Sample-based rarefaction"};
    if (!curve.empty())
        parts.append(QString("up to %1").arg(sizeWithUnit(kind, curve.back().sampleSize)));
    if (level && curve.size() >= kFewestPlotPoints && limitedRecords(curve, *level) > 0)
        parts.append(QString("band: %1 confidence limits").arg(confidenceLevelText(*level)));
    return parts.join(separation);
}

// Without a value of Chao2 no variance of a sample-based curve has one.
QString missingLimits(RarefactionKind kind, Curve curve, ConfidenceLevel level) {
    const auto lacksVariance = [](const Rarefaction& point) { return std::isnan(point.variance); };
    const auto limited = limitedRecords(curve, level);
    if (limited == std::ssize(curve)) return {};
    if (kind == RarefactionKind::individualBased && std::isnan(curve.back().estimate)) {
        return "The curve cannot be drawn: there are more than 10^18 specimens, too many to "
               "rarefy exactly.";
    }
    if (limited > 0) {
        return "The band has gaps where no confidence limit can be computed.";
    }
    if (kind == RarefactionKind::sampleBased &&
        std::all_of(curve.begin(), curve.end(), lacksVariance)) {
        return "The curve has no confidence band: its variance rests on Chao2, which has no "
               "value for these censuses.";
    }
    return "The curve has no confidence band: no limit of it can be computed.";
}

// Why nothing is drawn, or what is left out; empty if nothing is missing.
QString absenceOf(RarefactionKind kind, Curve curve, std::optional<ConfidenceLevel> level) {
    if (curve.size() < kFewestPlotPoints) {
        const QString points = curve.empty() ? "none" : curve.size() == 1 ? "one" : "two";
        return QString("A curve is drawn from three points on; this one has %1.").arg(points);
    }
    if (!level) {
        return "The confidence level of the preferences is neither 95% nor 99%: the curve has "
               "no band, and the axis of taxa ends at 1.";
    }
    return missingLimits(kind, curve, *level);
}

}  // namespace

RarefactionViewController::RarefactionViewController(RarefactionKind kind, JobQueue& jobs,
                                                     const Panels& panels, QWidget* parent)
    : PlotPage(jobs, panels, parent), ui_(std::make_unique<Ui::RarefactionPage>()), kind_(kind) {
    ui_->setupUi(this);
    addPlot({"Rarefaction curve", "rarefaction", "Rarefaction Table"});
    ui_->rarefactionSummary->setForegroundRole(secondaryText);
    ui_->rarefactionAbsence->setContentsMargins(0, 6, 0, 0);
    ui_->widthAxisTitle->setText(kind == RarefactionKind::individualBased ? "Specimens"
                                                                          : "Censuses");
    showTexts();
}

RarefactionViewController::~RarefactionViewController() = default;

RarefactionView& RarefactionViewController::rarefactionView() const {
    return *ui_->rarefactionView;
}

const std::optional<std::vector<Rarefaction>>& RarefactionViewController::rarefactionData() const {
    return rarefactionView().rarefactionData();
}

void RarefactionViewController::setRarefactionData(std::vector<Rarefaction> curve,
                                                   const QString& subject) {
    rarefactionView().setRarefactionData(std::move(curve));
    setSubject(subject);
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
    Curve curve;
    if (rarefactionData()) curve = *rarefactionData();
    ui_->plotSubject->setText(shortened(subject(), longestSubject));
    ui_->plotSubject->setToolTip(ui_->plotSubject->text());
    ui_->plotSubject->setVisible(!subject().isEmpty());
    ui_->rarefactionSummary->setText(summaryOf(kind_, curve, levelNow()));
    const QString absence = absenceOf(kind_, curve, levelNow());
    ui_->rarefactionAbsence->setText(absence);
    ui_->rarefactionAbsence->setVisible(!absence.isEmpty());
    showPlot();
}

// A record: sample size, estimate and the limits of the level, with one decimal.
QString RarefactionViewController::readout() const {
    if (!rarefactionView().isDrawable()) return {};
    if (!rarefactionView().hasMark())
        return "Point at the curve, or press an arrow key, to read out its values.";
    const auto marked = static_cast<std::size_t>(rarefactionView().markedPoint());
    const Rarefaction& point = (*rarefactionData())[marked];
    QStringList parts{sizeWithUnit(kind_, point.sampleSize),
                      QString("%1 expected taxa").arg(expectedTaxa(point.estimate))};
    if (const std::optional<ConfidenceLevel> level = levelNow()) {
        parts.append(QString("%1 limits %2 to %3")
                         .arg(confidenceLevelText(*level), expectedTaxa(lowerLimit(point, *level)),
                              expectedTaxa(upperLimit(point, *level))));
    }
    return parts.join(separation);
}

QString RarefactionViewController::tableText(char separator) const {
    if (!rarefactionData()) return {};
    QString text = QString::fromStdString(writeRarefactionTable(*rarefactionData()));
    return separator == '\t' ? text.remove(' ').replace(',', '\t') : text;
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
