#include "ui/analysis/coverage_computation.h"

#include <algorithm>
#include <utility>

#include "platform/job_queue.h"

namespace zorvel {

namespace {

constexpr std::size_t rowsPerPiece = 12;

}  // namespace

CoverageComputation::CoverageComputation(JobQueue& jobs, QObject* parent)
    : QObject(parent), jobs_(jobs) {}

CoverageComputation::~CoverageComputation() {
    stop_.request_stop();
}

void CoverageComputation::start(DiversityCurves curves, double coverage) {
    stop_.request_stop();
    stop_ = std::stop_source();
    curves_ = std::move(curves);
    coverage_ = coverage;
    setRunning(true);
    if (!computesRows_) computeRows();
}

// While the line is dragged, rows of a place that it has left are shown until the next ones come.
void CoverageComputation::computeRows() {
    computesRows_ = true;
    jobs_.start(
        this, [curves = curves_, coverage = coverage_] { return coverageRows(*curves, coverage); },
        [this, curves = curves_, stop = stop_.get_token()](const std::vector<CoverageRow>& rows) {
            computesRows_ = false;
            if (curves == curves_) emit rowsDidArrive(rows);
            stop.stop_requested() ? computeRows() : computeErrors(0);
        });
}

void CoverageComputation::computeErrors(std::size_t first) {
    const std::size_t end = std::min(first + rowsPerPiece, curves_->size());
    if (first == end) return setRunning(false);
    jobs_.start(
        this,
        [curves = curves_, coverage = coverage_, first, end, stop = stop_.get_token()] {
            Errors errors;
            for (std::size_t i = first; i < end && !stop.stop_requested(); ++i) {
                errors.push_back(errorsAt((*curves)[i], coverage, stop));
            }
            return errors;
        },
        [this, first, end, stop = stop_.get_token()](const Errors& errors) {
            if (stop.stop_requested()) return;
            emit errorsDidArrive(first, errors);
            computeErrors(end);
        });
}

void CoverageComputation::setRunning(bool running) {
    if (std::exchange(running_, running) != running) emit runningDidChange();
}

}  // namespace zorvel
