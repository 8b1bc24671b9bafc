// Computes the table of diversity at one coverage in the background: the values of all rows, then
// their limits, piece by piece. Main thread.
#pragma once

#include <QObject>
#include <cstddef>
#include <optional>
#include <stop_token>
#include <vector>

#include "ui/analysis/diversity_curves.h"

namespace zorvel {

class JobQueue;

class CoverageComputation : public QObject {
    Q_OBJECT
  public:
    using Errors = std::vector<std::optional<StandardErrors::Orders>>;

    // The queue must outlive the computation.
    CoverageComputation(JobQueue& jobs, QObject* parent);
    ~CoverageComputation() override;

    // In place of what runs. Of coverages that follow each other fast, some are left out.
    void start(DiversityCurves curves, double coverage);
    // Until the last limits are there.
    [[nodiscard]] bool isRunning() const { return running_; }

  signals:
    void rowsDidArrive(const std::vector<CoverageRow>& rows);
    // Of the rows from the first on.
    void errorsDidArrive(std::size_t first, const Errors& errors);
    void runningDidChange();

  private:
    void computeRows();
    void computeErrors(std::size_t first);
    void setRunning(bool running);

    JobQueue& jobs_;
    DiversityCurves curves_;
    double coverage_ = 0;
    bool running_ = false;
    bool computesRows_ = false;
    std::stop_source stop_;
};

}  // namespace zorvel
