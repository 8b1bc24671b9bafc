// The metrics of one census, each a caption and a value. What takes no time is filled in at once;
// rarefied richness and SQS come from background jobs. A value that belongs to another census than
// the panel's heading is grey and says whose it is. Each value explains itself beside its row on
// demand. Main thread.
#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "metrics/counts.h"
#include "metrics/random_source.h"
#include "metrics/sqs.h"
#include "model/metric_explanations.h"
#include "ui/main/metric_rows.h"

namespace Ui {
class MetricsPanel;
}

namespace zorvel {

class JobQueue;
class Popover;

class MetricsPanel : public QWidget {
    Q_OBJECT
  public:
    explicit MetricsPanel(QWidget* parent = nullptr);
    ~MetricsPanel() override;

    // Before the first refresh. The queue must outlive the panel.
    void setServices(JobQueue& jobs, RandomSourceMaker makeRandom);

    // counts: the included taxa of the census. Of several refreshes the last one stands, whichever
    // job ends last; jobs that have not begun when another refresh comes do no work. Where neither
    // census nor counts nor preferences have changed, what is shown stays until SQS has been drawn
    // anew.
    void refresh(const QString& censusName, const CountsVector& counts);

    // The census's name, then a line a value: its caption, a tab, the text; "-" where there is no
    // estimate, and nothing where the value is still on its way.
    [[nodiscard]] QString text() const;
    void copyAll() const;

  public slots:
    // Beside the row, counted from the top; closes the explanation where it is that row's.
    void explain(int row);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    // All that the values follow from.
    struct Request {
        QString census;
        CountsVector counts;
        std::int64_t size = 0;
        double quota = 0;

        bool operator==(const Request&) const = default;
    };

    [[nodiscard]] MetricRows::Rows rows() const;
    void nameRows();
    void showSecondaryTexts();
    void fillAtOnce();
    void startJobs();
    void startRarefaction();
    void startSqs();
    void showRarefied(double estimate);
    void showSqs(const SqsResult& result);
    void setCaption(QLabel* caption, ValueField* value, const QString& text);
    void markPending(ValueField* value, const QString& owner);
    void setNote(const QString& note);
    void updateExplanation();
    void followValues();  // in the explanation, while it is open

    std::unique_ptr<Ui::MetricsPanel> ui_;
    JobQueue* jobs_ = nullptr;
    RandomSourceMaker makeRandom_;
    // Number of the last refresh; jobs look at it before they begin.
    std::shared_ptr<std::atomic<std::uint64_t>> latest_;
    std::optional<Request> request_;
    MetricInputs inputs_;
    bool sqsPending_ = false;
    // Whose value stands in the field; empty before the first.
    QString rarefiedOwner_;
    QString sqsOwner_;
    QPointer<Popover> popover_;
    int explained_ = -1;  // the row that the popover is about
};

}  // namespace zorvel
