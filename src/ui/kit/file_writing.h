// Writes a whole file off the main thread (see base/files.h) and tells of a failure.
#pragma once

#include <QString>
#include <functional>

#include "base/files.h"

class QWidget;

namespace zorvel {

class Alerts;
class JobQueue;

// Writes the file in a job, which quitting waits for. produce must own what it reads. An alert
// reports a failure, even if the window has closed meanwhile. written(): called on the main thread
// when the file is there or is not. Main thread; queue and alerts must outlive the job, window may
// be null.
void writeInBackground(
    JobQueue& jobs, Alerts& alerts, QWidget* window, const QString& path, const QString& failure,
    ByteProducer produce, std::function<void(bool there)> written = [](bool) {});

}  // namespace zorvel
