// The metrics of one census, each a caption and a value. What takes no time is filled in at once;
// rarefied richness and SQS come from background jobs. A value that belongs to another census than
// the panel's heading is grey and says whose it is. Main thread.
#pragma once

#include <QString>
#include <QWidget>
#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

#include "metrics/counts.h"
#include "metrics/random_source.h"
#include "metrics/sqs.h"

namespace Ui {
class MetricsPanel;
}
class QLabel;

namespace zorvel {

class JobQueue;
class ValueField;

// Called on the main thread, one source a job.
using RandomSourceMaker = std::function<std::unique_ptr<RandomSource>()>;

class MetricsPanel : public QWidget {
    Q_OBJECT
  public:
    explicit MetricsPanel(QWidget* parent = nullptr);
    ~MetricsPanel() override;

    // Before the first refresh. The queue must outlive the panel.
    void setServices(JobQueue& jobs, RandomSourceMaker makeRandom);

    // counts: the included taxa of the census. Of several refreshes the last one stands, whichever
    // job ends last; jobs that have not begun when another refresh comes do no work.
    void refresh(const QString& censusName, const CountsVector& counts);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    struct Row {
        std::string_view key;
        ValueField* value;
        QLabel* caption;
    };
    using Rows = std::array<Row, 10>;

    [[nodiscard]] Rows rows() const;
    void nameRows();
    void showSecondaryTexts();
    void fillAtOnce(const CountsVector& counts);
    void startRarefaction(const CountsVector& counts);
    void startSqs(const CountsVector& counts);
    void showRarefied(double estimate, std::int64_t size);
    void showSqs(const SqsResult& result, double quota);
    void setCaption(QLabel* caption, ValueField* value, const QString& text);
    void markPending(ValueField* value, const QString& owner);

    std::unique_ptr<Ui::MetricsPanel> ui_;
    JobQueue* jobs_ = nullptr;
    RandomSourceMaker makeRandom_;
    // Number of the last refresh; jobs look at it before they begin.
    std::shared_ptr<std::atomic<std::uint64_t>> latest_;
    QString census_;
    // Whose value stands in the field; empty before the first.
    QString rarefiedOwner_;
    QString sqsOwner_;
};

}  // namespace zorvel
