#include "ui/kit/file_writing.h"

#include <QPointer>
#include <QWidget>
#include <utility>

#include "platform/file_names.h"
#include "platform/job_queue.h"
#include "platform/project_writes.h"
#include "ui/kit/alerts.h"

namespace zorvel {

namespace {

// Empty, or the system's words for what went wrong.
QString writeOrSayWhy(const QString& path, const ByteProducer& produce) {
    const std::optional<Problem> problem = writeFileWhole(encodedPath(path), produce);
    return problem ? qt_error_string(problem->systemError) : QString();
}

}  // namespace

// The queue itself receives, since the window may have gone.
void writeInBackground(JobQueue& jobs, Alerts& alerts, QWidget* window, const QString& path,
                       const QString& failure, ByteProducer produce,
                       std::function<void(bool there)> written) {
    jobs.startWrite(
        &jobs, [path, produce = std::move(produce)] { return writeOrSayWhy(path, produce); },
        [&alerts, parent = QPointer<QWidget>(window), failure,
         written = std::move(written)](const QString& problem) {
            written(problem.isEmpty());
            if (!problem.isEmpty()) alerts.warn(parent, failure, problem);
        });
}

}  // namespace zorvel
