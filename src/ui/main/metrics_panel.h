// The metrics of one census. What takes no time is filled in at once; rarefied richness and SQS
// come from background jobs. A value that belongs to another census than the panel's heading is
// grey and says whose it is. Main thread.
#pragma once

#include <QString>
#include <QWidget>
#include <cstdint>
#include <optional>
#include <stop_token>

#include "metrics/counts.h"
#include "metrics/random_source.h"
#include "metrics/sqs.h"
#include "ui/kit/metric_sheet.h"

class QVBoxLayout;

namespace zorvel {

class ElidedLabel;
class JobQueue;
class WrappedLabel;

class MetricsPanel : public QWidget {
    Q_OBJECT
  public:
    explicit MetricsPanel(QWidget* parent = nullptr);

    // Before the first refresh. The queue must outlive the panel.
    void setServices(JobQueue& jobs, RandomSourceMaker makeRandom);

    // counts: the included taxa of the census. Of several refreshes the last one stands, whichever
    // job ends last; jobs that have not begun when another refresh comes do no work. Where neither
    // census nor counts nor preferences have changed, what is shown stays until SQS has been drawn
    // anew.
    void refresh(const QString& censusName, const CountsVector& counts);

    void copyAll() const { sheet_->copyAll(); }
    [[nodiscard]] QList<MetricLine> lines() const { return sheet_->lines(); }

  private:
    // All that the values follow from.
    struct Request {
        QString census;
        CountsVector counts;
        std::int64_t size = 0;
        double quota = 0;

        bool operator==(const Request&) const = default;
    };

    void layOut(QVBoxLayout& all);
    void expect(const ShownMetric& shown, const QString& owner);
    void startRarefaction();
    void startSqs();
    void showRarefied(double estimate);
    void showSqs(const SqsResult& result);

    ElidedLabel* heading_;
    WrappedLabel* rarefiedNote_;
    WrappedLabel* metricsNote_;
    MetricSheet* sheet_;
    JobQueue* jobs_ = nullptr;
    RandomSourceMaker makeRandom_;
    std::stop_source stop_;  // of the jobs of the last refresh, which look at it before they begin
    std::optional<Request> request_;
    // Whose value stands in the field; empty before the first.
    QString rarefiedOwner_;
    QString sqsOwner_;
};

}  // namespace zorvel
